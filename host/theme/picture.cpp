#include "host/theme/picture.h"

#include <algorithm>
#include <cmath>

namespace fax::theme {

namespace {

// std::hypot guards against overflow, which no picture is large enough for, and takes several times as long.
double length(double x, double y) { return std::sqrt(x * x + y * y); }

double distance_to_segment(Point p, Point a, Point b) {
  double const dx = b.x - a.x, dy = b.y - a.y;
  double const square = dx * dx + dy * dy;
  double const along = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
  return length(p.x - a.x - along * dx, p.y - a.y - along * dy);
}

}  // namespace

Picture::Picture(double width, double height, double scale)
    : width_(width), height_(height), scale_(scale), columns_(static_cast<int>(std::ceil(width * scale))),
      rows_(static_cast<int>(std::ceil(height * scale))),
      pixels_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_) * 4) {}

// distance: of a point from the edge of the shape, negative inside.
template <typename Distance>
void Picture::fill(Distance distance, Colour colour) {
  std::uint8_t const parts[] = {colour.red, colour.green, colour.blue, 255};
  std::uint8_t *pixel = pixels_.data();
  for (int row = 0; row < rows_; ++row) {
    for (int column = 0; column < columns_; ++column, pixel += 4) {
      double const away = distance(Point{(column + 0.5) / scale_, (row + 0.5) / scale_}) * scale_;
      if (away >= 0.5) continue;
      double const cover = std::min(0.5 - away, 1.0);
      for (int part = 0; part < 4; ++part)
        pixel[part] = static_cast<std::uint8_t>(std::lround(parts[part] * cover + pixel[part] * (1 - cover)));
    }
  }
}

void Picture::circle(Point centre, double radius, Colour colour) {
  fill([=](Point p) { return length(p.x - centre.x, p.y - centre.y) - radius; }, colour);
}

void Picture::rounded(Point corner, double width, double height, double radius, Colour colour) {
  Point const middle{corner.x + width / 2, corner.y + height / 2};
  fill(
      [=](Point p) {
        double const dx = std::abs(p.x - middle.x) - (width / 2 - radius);
        double const dy = std::abs(p.y - middle.y) - (height / 2 - radius);
        return length(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
      },
      colour);
}

void Picture::stroke(std::vector<Point> const &points, double width, Colour colour) {
  fill(
      [&](Point p) {
        double nearest = HUGE_VAL;
        for (std::size_t at = 0; at + 1 < points.size(); ++at)
          nearest = std::min(nearest, distance_to_segment(p, points[at], points[at + 1]));
        return nearest - width / 2;
      },
      colour);
}

void Picture::convex(std::vector<Point> const &corners, Colour colour) {
  double turning = 0;
  auto const next = [&](std::size_t at) { return corners[(at + 1) % corners.size()]; };
  for (std::size_t at = 0; at < corners.size(); ++at)
    turning += corners[at].x * next(at).y - next(at).x * corners[at].y;
  double const sign = turning < 0 ? -1 : 1;
  fill(
      [&](Point p) {
        double farthest = -HUGE_VAL;
        for (std::size_t at = 0; at < corners.size(); ++at) {
          Point const a = corners[at], b = next(at);
          double const across = (b.y - a.y) * (p.x - a.x) - (b.x - a.x) * (p.y - a.y);
          farthest = std::max(farthest, sign * across / length(b.x - a.x, b.y - a.y));
        }
        return farthest;
      },
      colour);
}

}  // namespace fax::theme
