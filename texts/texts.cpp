#include "texts/texts.h"

#include "platform/languages.h"

#include <fmt/args.h>
#include <fmt/format.h>
#include <libintl.h>

#include <cstdlib>
#include <clocale>
#include <filesystem>
#include <optional>
#include <system_error>

namespace fax {

namespace {

constexpr char kDomain[] = "directfax";

// The folder of a language in a tree of catalogues.
std::string locale_name(std::string const &language) {
  if (language == "pt-BR") return "pt_BR";
  if (language == "zh-Hans") return "zh_CN";
  return language;
}

std::optional<std::string> with_values(char const *text, std::vector<std::string> const &values) {
  fmt::dynamic_format_arg_store<fmt::format_context> store;
  for (auto const &value : values) store.push_back(value);
  try {
    return fmt::vformat(text, store);
  } catch (fmt::format_error const &) {
    return std::nullopt;
  }
}

std::string first_that_fills(char const *translated, char const *english, std::vector<std::string> const &values) {
  if (auto text = with_values(translated, values)) return *text;
  return with_values(english, values).value_or(english);
}

}  // namespace

std::vector<std::string> catalogue_folders() {
  std::error_code failed;
  auto const program = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  std::vector<std::string> folders;
  auto folder = program.parent_path();
  for (int up = 0; up < 5 && folder.has_relative_path(); ++up, folder = folder.parent_path()) {
    folders.push_back((folder / "locale").string());
    folders.push_back((folder / "share/locale").string());
  }
  return folders;
}

void speak(std::vector<std::string> const &catalogues) {
  std::string list;
  for (auto const &language : wanted_languages([](char const *name) { return std::getenv(name); })) {
    if (!list.empty()) list += ':';
    list += locale_name(language);
  }
  // The C library translates nothing in the locale "C", which is also what it falls back to when the user's locale is
  // not installed; LANGUAGE then decides in "C.UTF-8" as in any other.
  setenv("LANGUAGE", list.c_str(), 1);
  for (int const category : {LC_CTYPE, LC_MESSAGES}) {
    char const *const set = std::setlocale(category, "");
    if (set == nullptr || std::string_view(set) == "C" || std::string_view(set) == "POSIX")
      std::setlocale(category, "C.UTF-8");
  }
  for (auto const &folder : catalogues) {
    std::error_code failed;
    for (auto const &language : known_languages()) {
      auto const catalogue = std::filesystem::path(folder) / locale_name(language) / "LC_MESSAGES/directfax.mo";
      if (!std::filesystem::exists(catalogue, failed)) continue;
      bindtextdomain(kDomain, folder.c_str());
      bind_textdomain_codeset(kDomain, "UTF-8");
      return;
    }
  }
}

std::string tr(char const *english) { return dgettext(kDomain, english); }

namespace texts {

std::string filled(char const *english, std::vector<std::string> const &values) {
  return first_that_fills(dgettext(kDomain, english), english, values);
}

std::string filled(char const *one, char const *many, unsigned long count, std::vector<std::string> const &values) {
  return first_that_fills(dngettext(kDomain, one, many, count), count == 1 ? one : many, values);
}

}  // namespace texts

}  // namespace fax
