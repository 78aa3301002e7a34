#include "host/theme/scale.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace fax::theme {

namespace {

constexpr double kToolkitPoints = 12;    // of the text that every window is laid out for
constexpr double kDesktopPoints = 11;    // up to this size desktops call their text normal
constexpr double kDotsPerInch = 96;
constexpr double kDialogWidth = 840;     // what the largest window needs, with its title and room beside it
constexpr double kDialogHeight = 640;

std::string environment(char const *name) {
  char const *const value = std::getenv(name);
  return value != nullptr ? value : "";
}

double number(std::string_view text) {
  double value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(value) ? value : 0;
}

bool is_style(std::string_view word) {
  constexpr std::array<std::string_view, 14> kStyles{"Regular", "Book",     "Normal",  "Medium", "Bold",
                                                     "Semi-Bold", "Light",  "Thin",    "Italic", "Oblique",
                                                     "Roman",   "Condensed", "Heavy",  "Black"};
  return std::find(kStyles.begin(), kStyles.end(), word) != kStyles.end();
}

// Takes the last word off a text.
std::string_view take_word(std::string_view &text) {
  std::size_t const end = text.find_last_not_of(" ,");
  text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
  std::size_t const space = text.find_last_of(" ,");
  std::string_view const word = space == std::string_view::npos ? text : text.substr(space + 1);
  text.remove_suffix(word.size());
  return word;
}

double screen_scale(Sizes const &sizes) {
  if (sizes.toolkit_scale > 0) return sizes.toolkit_scale;
  return std::max(number(sizes.gdk_scale), sizes.dots_per_inch / kDotsPerInch);
}

double text_scale(Sizes const &sizes) {
  if (sizes.toolkit_points > 0) return sizes.toolkit_points / kToolkitPoints;
  return sizes.font_points / kDesktopPoints;
}

double in_eighths(double scale) { return std::floor(scale * 8 + 0.01) / 8; }

}  // namespace

FontWish font_wish(std::string_view name) {
  std::string_view rest = name;
  double const points = number(take_word(rest));
  std::string_view family = points > 0 ? rest : name;
  for (rest = family; is_style(take_word(rest));) family = rest;
  std::size_t const end = family.find_last_not_of(" ,");
  return {std::string(family.substr(0, end == std::string_view::npos ? 0 : end + 1)), points};
}

double scale_named(std::string_view word) {
  double const scale = number(word);
  return scale >= 1 && scale <= kLargestScale ? scale : 0;
}

double scale_for(Sizes const &sizes) {
  double scale = sizes.asked > 0 ? sizes.asked : scale_named(sizes.own);
  if (scale <= 0) scale = std::max(1.0, screen_scale(sizes)) * std::max(1.0, text_scale(sizes));
  if (sizes.screen_width > 0 && sizes.screen_height > 0)
    scale = std::min({scale, sizes.screen_width / kDialogWidth, sizes.screen_height / kDialogHeight});
  return in_eighths(std::clamp(scale, 1.0, kLargestScale));
}

Sizes screen_sizes() {
  Sizes sizes;
  sizes.own = environment("DIRECTFAX_SCALE");
  sizes.gdk_scale = environment("GDK_SCALE");
  Display *const display = XOpenDisplay(nullptr);
  if (display == nullptr) return sizes;
  sizes.screen_width = DisplayWidth(display, DefaultScreen(display));
  sizes.screen_height = DisplayHeight(display, DefaultScreen(display));
  if (char const *const dots = XGetDefault(display, "Xft", "dpi")) sizes.dots_per_inch = number(dots);
  XCloseDisplay(display);
  return sizes;
}

}  // namespace fax::theme
