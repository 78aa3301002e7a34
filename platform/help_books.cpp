#include "platform/help_books.h"

#include <algorithm>
#include <utility>

namespace fax {

namespace fs = std::filesystem;

namespace {

constexpr std::pair<std::string_view, std::string_view> kLanguages[] = {
    {"English", "en"}, {"Japanese", "ja"}, {"French", "fr"},  {"German", "de"},     {"Spanish", "es"},
    {"Italian", "it"}, {"Dutch", "nl"},    {"Swedish", "sv"}, {"Portuguese", "pt"}, {"Danish", "da"},
    {"Finnish", "fi"}, {"Russian", "ru"},  {"Polish", "pl"},  {"Korean", "ko"},     {"Chinese", "zh"},
    {"Czech", "cs"},   {"Turkish", "tr"},  {"Norwegian", "nb"},
};

void add_once(std::vector<std::string> &names, std::string name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
}

// The real path of what base/inner names, when it exists and lies in base.
std::optional<fs::path> inside(fs::path const &base, fs::path const &inner) {
  if (inner.is_absolute() || inner.native().find('\0') != std::string::npos) return std::nullopt;
  std::error_code error;
  fs::path const root = fs::canonical(base, error);
  if (error) return std::nullopt;
  fs::path const real = fs::canonical(root / inner, error);
  if (error) return std::nullopt;
  if (std::mismatch(root.begin(), root.end(), real.begin(), real.end()).first != root.end()) return std::nullopt;
  return real;
}

std::vector<fs::path> folders_for(std::string const &language, std::string const &folder) {
  fs::path const own(folder);
  fs::path const inner = own / "Contents" / "Resources";
  if (language.empty()) return {own, inner};
  std::string const lproj = language + ".lproj";
  return {own / lproj, lproj / own, inner / lproj};
}

}  // namespace

std::vector<std::string> language_names(std::string const &language) {
  std::vector<std::string> names;
  if (language.empty() || language.find('/') != std::string::npos) return names;
  names.push_back(language);
  std::string const bare = language.substr(0, language.find_first_of("_-"));
  if (!bare.empty()) add_once(names, bare);
  for (auto const &[name, code] : kLanguages) {
    if (bare == name) add_once(names, std::string(code));
    if (bare == code) add_once(names, std::string(name));
  }
  return names;
}

std::optional<fs::path> find_help_page(HelpBook const &book, std::string const &page,
                                       std::vector<std::string> const &languages) {
  if (book.folder.empty() || fs::path(book.folder).is_absolute()) return std::nullopt;
  std::vector<std::string> names;
  for (auto const &language : languages)
    for (auto &name : language_names(language)) add_once(names, std::move(name));
  for (auto &name : language_names("English")) add_once(names, std::move(name));
  names.emplace_back();
  std::vector<std::string> const pages =
      page.empty() ? std::vector<std::string>{"index.htm", "index.html"} : std::vector<std::string>{page};

  for (auto const &name : names) {
    for (auto const &folder : folders_for(name, book.folder)) {
      auto const place = inside(book.resources, folder);
      if (!place) continue;
      for (auto const &file : pages) {
        auto found = inside(*place, file);
        std::error_code error;
        if (found && fs::is_regular_file(*found, error)) return found;
      }
    }
  }
  return std::nullopt;
}

}  // namespace fax
