#include "host/theme/icons.h"

namespace fax::theme {

namespace {

enum class Towards { up, down, left, right };

void chevron(Picture &to, Point middle, double size, Towards where, Colour colour) {
  double const near = size / 2, far = size;
  Point const shapes[][3] = {
      {{-far, near}, {0, -near}, {far, near}},
      {{-far, -near}, {0, near}, {far, -near}},
      {{near, -far}, {-near, 0}, {near, far}},
      {{-near, -far}, {near, 0}, {-near, far}},
  };
  std::vector<Point> points;
  for (Point const &p : shapes[static_cast<int>(where)]) points.push_back({middle.x + p.x, middle.y + p.y});
  to.stroke(points, 1.5, colour);
}

template <Towards where>
void arrow(Picture &to, Palette const &colours) {
  chevron(to, {to.width() / 2, to.height() / 2}, 3.5, where, colours.glyph);
}

template <Towards where>
void chosen_arrow(Picture &to, Palette const &colours) {
  chevron(to, {to.width() / 2, to.height() / 2}, 3.5, where, colours.on_accent);
}

void both_ways(Picture &to, Palette const &colours) {
  chevron(to, {to.width() / 2, to.height() / 2 - 3.5}, 3, Towards::up, colours.glyph);
  chevron(to, {to.width() / 2, to.height() / 2 + 3.5}, 3, Towards::down, colours.glyph);
}

void tick(Picture &to, double left, double top, Colour colour) {
  to.stroke({{left, top + 3.2}, {left + 2.8, top + 6}, {left + 8, top}}, 1.8, colour);
}

void framed(Picture &to, double radius, Colour edge, Colour inside) {
  double const w = to.width(), h = to.height();
  to.rounded({0, 0}, w, h, radius, edge);
  if (edge != inside) to.rounded({1, 1}, w - 2, h - 2, radius - 1, inside);
}

void box_off(Picture &to, Palette const &colours) { framed(to, 3.5, colours.glyph, colours.field); }

void box_on(Picture &to, Palette const &colours) {
  framed(to, 3.5, colours.accent, colours.accent);
  tick(to, 3.5, 4.6, colours.on_accent);
}

void radio_off(Picture &to, Palette const &colours) { framed(to, 7.5, colours.glyph, colours.field); }

void radio_on(Picture &to, Palette const &colours) {
  framed(to, 7.5, colours.accent, colours.accent);
  to.circle({7.5, 7.5}, 2.8, colours.on_accent);
}

void menu_tick(Picture &to, Palette const &colours) { tick(to, 1.5, 3, colours.text); }

void menu_dash(Picture &to, Palette const &colours) { to.stroke({{2.5, 6}, {9.5, 6}}, 1.8, colours.text); }

void lens(Picture &to, Palette const &colours) {
  to.circle({6.5, 6.5}, 4.5, colours.glyph);
  to.circle({6.5, 6.5}, 3.1, colours.field);
  to.stroke({{10, 10}, {13, 13}}, 1.6, colours.glyph);
}

void clear(Picture &to, Palette const &colours) {
  to.circle({7, 7}, 6, colours.knob);
  to.stroke({{4.8, 4.8}, {9.2, 9.2}}, 1.4, colours.field);
  to.stroke({{9.2, 4.8}, {4.8, 9.2}}, 1.4, colours.field);
}

void home(Picture &to, Palette const &colours) {
  to.convex({{8, 1.5}, {15, 8}, {1, 8}}, colours.glyph);
  to.rounded({3, 7}, 10, 7.5, 1, colours.glyph);
  to.rounded({6.5, 10}, 3, 4.5, 0.5, colours.button);
}

void mount(Picture &to, Palette const &colours) {
  to.rounded({1, 8}, 14, 6, 2, colours.glyph);
  to.circle({12, 11}, 1, colours.button);
  chevron(to, {8, 4}, 3.5, Towards::down, colours.glyph);
}

void unmount(Picture &to, Palette const &colours) {
  to.convex({{8, 2}, {14, 9}, {2, 9}}, colours.glyph);
  to.rounded({2, 11}, 12, 2.5, 0.5, colours.glyph);
}

void folder(Picture &to, Palette const &colours) {
  double const unit = to.width() / 16;
  to.rounded({1 * unit, 2.5 * unit}, 7 * unit, 5 * unit, 1.2 * unit, colours.accent);
  to.rounded({1 * unit, 4.5 * unit}, 14 * unit, 9.5 * unit, 1.5 * unit, colours.accent);
  to.rounded({1 * unit, 6.5 * unit}, 14 * unit, 7.5 * unit, 1.5 * unit, colours.focus);
}

void sheet(Picture &to, Palette const &colours) {
  double const unit = to.width() / 16;
  to.rounded({3 * unit, 1 * unit}, 10 * unit, 14 * unit, 1.5 * unit, colours.glyph);
  to.rounded({4 * unit, 2 * unit}, 8 * unit, 12 * unit, 0.8 * unit, colours.field);
  for (double y : {5.0, 8.0, 11.0})
    to.stroke({{6 * unit, y * unit}, {10 * unit, y * unit}}, unit, colours.knob);
}

void tile(Picture &to, Palette const &colours) { to.rounded({0, 0}, to.width(), to.height(), 8, colours.panel); }

void nothing(Picture &, Palette const &) {}

// The names starting with GS are what the toolkit makes of the NS names before it looks for a picture.
constexpr ControlPicture kControls[] = {
    {"GSSwitch", 15, 15, box_off},
    {"GSSwitchSelected", 15, 15, box_on},
    {"GSRadio", 15, 15, radio_off},
    {"GSRadioSelected", 15, 15, radio_on},
    {"GSMenuSelected", 11, 12, menu_tick},
    {"GSMenuMixed", 12, 12, menu_dash},
    {"GSMenuArrow", 9, 12, arrow<Towards::right>},
    {"NSHighlightedMenuArrow", 9, 12, chosen_arrow<Towards::right>},
    {"common_3DArrowRightH", 9, 12, arrow<Towards::right>},
    {"common_Nibble", 12, 16, both_ways},
    {"common_3DArrowDown", 12, 12, arrow<Towards::down>},
    {"common_3DArrowUp", 12, 12, arrow<Towards::up>},
    {"common_3DArrowLeft", 12, 12, arrow<Towards::left>},
    {"GSComboArrow", 12, 12, arrow<Towards::down>},
    {"NSAscendingSortIndicator", 12, 9, arrow<Towards::up>},
    {"NSDescendingSortIndicator", 12, 9, arrow<Towards::down>},
    {"GSSearch", 15, 15, lens},
    {"NSStopProgressTemplate", 14, 14, clear},
    {"common_Home", 16, 16, home},
    {"common_Mount", 16, 16, mount},
    {"common_Unmount", 16, 16, unmount},
    {"Folder", 48, 48, folder},
    {"NSFolder", 48, 48, folder},
    {"ImageFolder", 48, 48, folder},
    {"DocsFolder", 48, 48, folder},
    {"DownloadFolder", 48, 48, folder},
    {"GSFolder", 48, 48, folder},
    {"LibraryFolder", 48, 48, folder},
    {"MusicFolder", 48, 48, folder},
    {"VideoFolder", 48, 48, folder},
    {"HomeDirectory", 48, 48, folder},
    {"Desktop", 48, 48, folder},
    {"Root_PC", 48, 48, folder},
    {"Unknown", 48, 48, sheet},
    {"UnknownTool", 48, 48, sheet},
    {"UnknownApplication", 48, 48, sheet},
    {"common_Tile", 64, 64, tile},  // below the icons of minimised windows
    {"common_ret", 1, 1, nothing},
    {"common_retH", 1, 1, nothing},
};

void exclamation(Picture &to, Point top, double height, Colour colour) {
  to.stroke({top, {top.x, top.y + height * 0.6}}, 4.6, colour);
  to.circle({top.x, top.y + height}, 2.7, colour);
}

}  // namespace

std::span<ControlPicture const> control_pictures() { return kControls; }

bool looks_like(ControlPicture const &one, ControlPicture const &other) {
  return one.draw == other.draw && one.width == other.width && one.height == other.height;
}

Picture alert_picture(AlertKind kind, Palette const &palette, double scale) {
  Picture icon(48, 48, scale);
  switch (kind) {
    case AlertKind::note:
      icon.circle({24, 24}, 20, palette.note);
      icon.circle({24, 14.5}, 2.9, palette.window);
      icon.stroke({{24, 22}, {24, 34}}, 4.6, palette.window);
      break;
    case AlertKind::warning:
      icon.convex({{24, 8}, {42, 39}, {6, 39}}, palette.warning);
      icon.stroke({{24, 8}, {42, 39}, {6, 39}, {24, 8}}, 6, palette.warning);
      exclamation(icon, {24, 17}, 19, palette.window);
      break;
    case AlertKind::stop:
      icon.circle({24, 24}, 20, palette.stop);
      icon.stroke({{17, 17}, {31, 31}}, 4.6, palette.window);
      icon.stroke({{31, 17}, {17, 31}}, 4.6, palette.window);
      break;
  }
  return icon;
}

Picture program_picture(double side) {
  Picture icon(64, 64, side / 64);
  constexpr Colour tile = hex(0x1F62D0), paper = hex(0xFFFFFF), ink = hex(0x9DB4D8), body = hex(0xE3EBF8);
  constexpr Colour slot = hex(0x17335F), lamp = hex(0x2FB36B);
  icon.rounded({2, 2}, 60, 60, 14, tile);
  icon.rounded({19, 9}, 26, 32, 3, paper);
  for (double y : {15.0, 21.0, 27.0}) icon.stroke({{24, y}, {y < 27 ? 40.0 : 34.0, y}}, 2.4, ink);
  icon.rounded({10, 34}, 44, 20, 5, body);
  icon.stroke({{17, 38}, {47, 38}}, 2.4, slot);
  for (double x : {18.0, 25.0, 32.0}) icon.circle({x, 47}, 2.2, ink);
  icon.circle({46, 47}, 2.6, lamp);
  return icon;
}

}  // namespace fax::theme
