// Small pictures drawn from simple shapes, with smooth edges, at any size. No toolkit in here.
#pragma once
#include <cstdint>
#include <vector>

#include "host/theme/palette.h"

namespace fax::theme {

struct Point {
  double x, y;
};

// Origin at the top left. Shapes are given in points; a point is `scale` pixels wide.
class Picture {
 public:
  Picture(double width, double height, double scale = 1);

  void circle(Point centre, double radius, Colour colour);
  void rounded(Point corner, double width, double height, double radius, Colour colour);
  // A stroke through the points with round ends and corners.
  void stroke(std::vector<Point> const &points, double width, Colour colour);
  // Filled; corners in either direction of turning, and no dents.
  void convex(std::vector<Point> const &corners, Colour colour);

  double width() const { return width_; }
  double height() const { return height_; }
  int columns() const { return columns_; }
  int rows() const { return rows_; }
  // Four bytes a pixel, red, green, blue, alpha; the colours are multiplied by alpha. Row after row from the top.
  std::vector<std::uint8_t> const &pixels() const { return pixels_; }

 private:
  template <typename Distance>
  void fill(Distance distance, Colour colour);

  double width_, height_, scale_;
  int columns_, rows_;
  std::vector<std::uint8_t> pixels_;
};

}  // namespace fax::theme
