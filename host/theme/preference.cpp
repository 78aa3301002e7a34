#include "host/theme/preference.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "host/theme/portal.h"

namespace fax::theme {

namespace {

std::string environment(char const *name) {
  char const *const value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string lower(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](unsigned char c) { return std::tolower(c); });
  return folded;
}

// "Name-dark" and "Name:dark" are how themes call their dark variants.
std::optional<Scheme> scheme_of_theme_name(std::string_view name) {
  std::string const folded = lower(name);
  if (folded.empty()) return std::nullopt;
  return folded.ends_with("-dark") || folded.ends_with(":dark") ? Scheme::dark : Scheme::light;
}

}  // namespace

std::optional<Choice> choice_named(std::string_view word) {
  if (word == "auto") return Choice::automatic;
  if (word == "light") return Choice::light;
  if (word == "dark") return Choice::dark;
  return std::nullopt;
}

Scheme scheme_for(Choice choice, Desktop const &desktop) {
  if (choice == Choice::automatic) choice = choice_named(desktop.own).value_or(Choice::automatic);
  if (choice != Choice::automatic) return choice == Choice::dark ? Scheme::dark : Scheme::light;
  if (auto const scheme = scheme_of_theme_name(desktop.gtk_theme)) return *scheme;
  if (desktop.portal) return *desktop.portal;
  return desktop.gtk_settings.value_or(Scheme::light);
}

std::optional<Scheme> scheme_of_gtk_settings(GtkSettings const &settings) {
  if (auto const wish = settings.find("gtk-application-prefer-dark-theme"); wish != settings.end()) {
    std::string const value = lower(wish->second);
    if (value == "1" || value == "true") return Scheme::dark;
  }
  auto const name = settings.find("gtk-theme-name");
  return name != settings.end() ? scheme_of_theme_name(name->second) : std::nullopt;
}

Desktop this_desktop() {
  PortalLooks const portal = looks_of_portal();
  GtkSettings const gtk = user_gtk_settings();
  Desktop desktop{environment("DIRECTFAX_THEME"), environment("GTK_THEME"), portal.scheme, scheme_of_gtk_settings(gtk),
                  portal.font};
  if (auto const font = gtk.find("gtk-font-name"); desktop.font.empty() && font != gtk.end())
    desktop.font = font->second;
  return desktop;
}

}  // namespace fax::theme
