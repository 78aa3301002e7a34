#include "platform/languages.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fax {

namespace {

std::string_view set_value(Environment const &environment, char const *name) {
  char const *const value = environment(name);
  return value != nullptr ? value : "";
}

std::string_view locale_of(Environment const &environment) {
  for (char const *name : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (auto const value = set_value(environment, name); !value.empty()) return value;
  return "C";
}

// "C" with any code set.
bool is_no_language(std::string_view locale) {
  auto const name = locale.substr(0, locale.find('.'));
  return name == "C" || name == "POSIX";
}

// The parts of a name between '_' and '-', without code set and modifier.
std::vector<std::string_view> parts_of(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  std::vector<std::string_view> parts;
  while (!locale.empty()) {
    auto const end = std::min(locale.find_first_of("_-"), locale.size());
    parts.push_back(locale.substr(0, end));
    locale.remove_prefix(std::min(end + 1, locale.size()));
  }
  return parts;
}

bool has(std::vector<std::string_view> const &parts, std::initializer_list<std::string_view> any) {
  return std::any_of(parts.begin(), parts.end(),
                     [&](auto part) { return std::find(any.begin(), any.end(), part) != any.end(); });
}

void add(std::vector<std::string> &languages, std::string_view locale) {
  auto language = known_language(locale);
  if (language.empty() || std::find(languages.begin(), languages.end(), language) != languages.end()) return;
  languages.push_back(std::move(language));
}

}  // namespace

std::vector<std::string> const &known_languages() {
  static std::vector<std::string> const languages = {"en", "ja", "de", "fr",    "es",
                                                     "it", "nl", "pt-BR", "zh-Hans", "ko"};
  return languages;
}

std::string known_language(std::string_view locale) {
  auto const parts = parts_of(locale);
  if (parts.empty()) return {};
  if (parts.front() == "zh") return has(parts, {"TW", "HK", "MO", "Hant"}) ? "" : "zh-Hans";
  // Who reads European Portuguese reads Brazilian more easily than English.
  if (parts.front() == "pt") return "pt-BR";
  auto const &known = known_languages();
  auto const found = std::find(known.begin(), known.end(), parts.front());
  return found != known.end() ? *found : "";
}

std::vector<std::string> wanted_languages(Environment const &environment) {
  std::vector<std::string> languages;
  auto const locale = locale_of(environment);
  if (!is_no_language(locale)) {
    auto list = set_value(environment, "LANGUAGE");
    while (!list.empty()) {
      auto const end = std::min(list.find(':'), list.size());
      add(languages, list.substr(0, end));
      list.remove_prefix(std::min(end + 1, list.size()));
    }
    add(languages, locale);
  }
  auto const english = std::find(languages.begin(), languages.end(), "en");
  languages.erase(english, languages.end());
  languages.push_back("en");
  return languages;
}

}  // namespace fax
