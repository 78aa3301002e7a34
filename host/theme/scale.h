// How large everything is drawn, and with which font: as the desktop's other programs, so far as it tells.
#pragma once
#include <string>
#include <string_view>

namespace fax::theme {

// A font as GTK names it. The family without the words for its style; points 0 when there is no size.
struct FontWish {
  std::string family;
  double points = 0;
};
FontWish font_wish(std::string_view name);

// What can be known about sizes; 0 or empty where nobody says anything.
struct Sizes {
  double asked = 0;           // of the command line: the whole factor
  std::string own{};           // DIRECTFAX_SCALE: the same
  double toolkit_scale = 0;   // GSScaleFactor in the user's defaults of the toolkit
  double toolkit_points = 0;  // NSFontSize there; 12 unless told otherwise
  std::string gdk_scale{};    // GDK_SCALE, a whole number
  double dots_per_inch = 0;   // Xft.dpi of the X server; 96 where nothing is enlarged
  double font_points = 0;     // of the desktop's font; 10 or 11 where nothing is enlarged
  int screen_width = 0;       // pixels
  int screen_height = 0;
};

inline constexpr double kLargestScale = 4;

// "1" to "4", with a point; 0 for any other word.
double scale_named(std::string_view word);

// How many pixels a point is, in eighths, 1 to kLargestScale: what was asked for, else screen and text together. Never so
// large that the print dialog would not fit the screen.
double scale_for(Sizes const &sizes);

// Of the environment and the X server, which is asked by a connection that is then closed.
Sizes screen_sizes();

}  // namespace fax::theme
