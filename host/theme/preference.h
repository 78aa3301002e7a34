// Whether the theme is to be light or dark: what the user said, else what the desktop says.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "host/theme/gtk_settings.h"
#include "host/theme/palette.h"

namespace fax::theme {

enum class Choice { automatic, light, dark };

// "auto", "light" or "dark"; nothing for any other word.
std::optional<Choice> choice_named(std::string_view word);

// What can be known about the desktop; empty where it says nothing.
struct Desktop {
  std::string own;                     // DIRECTFAX_THEME: a word as for choice_named
  std::string gtk_theme;               // GTK_THEME, such as "Adwaita:dark"
  std::optional<Scheme> portal;        // the desktop portal's color-scheme
  std::optional<Scheme> gtk_settings;  // of settings.ini
  std::string font;                    // its font and the size in points, such as "Cantarell 11"
};

// The choice first, then the members of the desktop from above, and light when nobody says anything.
Scheme scheme_for(Choice choice, Desktop const &desktop);

// gtk-application-prefer-dark-theme, else a gtk-theme-name that ends in "-dark".
std::optional<Scheme> scheme_of_gtk_settings(GtkSettings const &settings);

// Asks the session bus and reads files. Takes two thirds of a second at most: a portal that does not answer says nothing.
Desktop this_desktop();

}  // namespace fax::theme
