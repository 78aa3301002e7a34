#include "host/theme/gtk_settings.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fax::theme {

namespace {

std::string environment(char const *name) {
  char const *const value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string_view trimmed(std::string_view text) {
  auto const space = " \t\r";
  std::size_t const first = text.find_first_not_of(space);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(space) - first + 1);
}

}  // namespace

GtkSettings read_gtk_settings(std::string_view text) {
  GtkSettings settings;
  bool in_settings = false;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) in_settings = line == "[Settings]";
    std::size_t const equals = line.find('=');
    if (!in_settings || equals == std::string_view::npos || line.starts_with('#')) continue;
    settings[std::string(trimmed(line.substr(0, equals)))] = trimmed(line.substr(equals + 1));
  }
  return settings;
}

GtkSettings user_gtk_settings() {
  std::string folder = environment("XDG_CONFIG_HOME");
  if (folder.empty()) folder = environment("HOME") + "/.config";
  GtkSettings settings;
  for (char const *version : {"gtk-4.0", "gtk-3.0"}) {
    std::ifstream file(std::filesystem::path(folder) / version / "settings.ini");
    settings.merge(read_gtk_settings(std::string{std::istreambuf_iterator<char>(file), {}}));
  }
  return settings;
}

}  // namespace fax::theme
