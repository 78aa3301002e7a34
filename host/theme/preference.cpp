#include "host/theme/preference.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

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

std::string_view trimmed(std::string_view text) {
  auto const space = " \t\r";
  std::size_t const first = text.find_first_not_of(space);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(space) - first + 1);
}

// "Name-dark" and "Name:dark" are how themes call their dark variants.
std::optional<Scheme> scheme_of_theme_name(std::string_view name) {
  std::string const folded = lower(name);
  if (folded.empty()) return std::nullopt;
  return folded.ends_with("-dark") || folded.ends_with(":dark") ? Scheme::dark : Scheme::light;
}

std::optional<Scheme> read_gtk_settings() {
  std::string folder = environment("XDG_CONFIG_HOME");
  if (folder.empty()) folder = environment("HOME") + "/.config";
  for (char const *version : {"gtk-4.0", "gtk-3.0"}) {
    std::ifstream file(std::filesystem::path(folder) / version / "settings.ini");
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    if (auto const scheme = scheme_of_gtk_settings(text)) return scheme;
  }
  return std::nullopt;
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

std::optional<Scheme> scheme_of_gtk_settings(std::string_view text) {
  std::optional<Scheme> by_name;
  bool in_settings = false;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) in_settings = line == "[Settings]";
    std::size_t const equals = line.find('=');
    if (!in_settings || equals == std::string_view::npos) continue;
    std::string_view const key = trimmed(line.substr(0, equals));
    std::string const value = lower(trimmed(line.substr(equals + 1)));
    if (key == "gtk-application-prefer-dark-theme") {
      if (value == "1" || value == "true") return Scheme::dark;
    } else if (key == "gtk-theme-name") {
      by_name = scheme_of_theme_name(value);
    }
  }
  return by_name;
}

Desktop this_desktop() {
  Desktop desktop{environment("DIRECTFAX_THEME"), environment("GTK_THEME"), std::nullopt, std::nullopt};
  // The bus is asked only when its answer decides.
  if (!choice_named(desktop.own) && desktop.gtk_theme.empty()) {
    desktop.portal = scheme_of_portal();
    desktop.gtk_settings = read_gtk_settings();
  }
  return desktop;
}

}  // namespace fax::theme
