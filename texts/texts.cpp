#include "texts/texts.h"

#include "platform/languages.h"

#include <fmt/args.h>
#include <fmt/format.h>
#include <libintl.h>
#include <locale.h>

#include <cstdlib>
#include <clocale>
#include <filesystem>
#include <map>
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

// A locale as systems have it installed, for a known language.
std::string full_locale_name(std::string const &language) {
  static std::map<std::string, std::string> const names{
      {"en", "en_US"}, {"ja", "ja_JP"}, {"de", "de_DE"}, {"fr", "fr_FR"},    {"es", "es_ES"},
      {"it", "it_IT"}, {"nl", "nl_NL"}, {"ko", "ko_KR"}, {"pt-BR", "pt_BR"}, {"zh-Hans", "zh_CN"}};
  return names.at(language) + ".UTF-8";
}

// The C library translates nothing in the locale "C"; LANGUAGE decides in "C.UTF-8" as in any other. So every text is
// looked up in this one, on whatever thread, and the program's own locale may be any: the user's is often not installed.
locale_t texts_locale = nullptr;

class InTextsLocale {
public:
  InTextsLocale() : before_(uselocale(texts_locale)) {}
  ~InTextsLocale() { uselocale(before_); }
  InTextsLocale(InTextsLocale const &) = delete;
  InTextsLocale &operator=(InTextsLocale const &) = delete;

private:
  locale_t before_;
};

void bind(std::string const &folder) {
  bindtextdomain(kDomain, folder.c_str());
  bind_textdomain_codeset(kDomain, "UTF-8");
}

// For what else speaks to the user: the system's reasons, and CUPS with its PPD files, which reads LC_MESSAGES from the
// locale, or from the environment where the locale is "C".
void choose_locale(std::string const &language) {
  std::string const name = full_locale_name(language);
  setenv("LC_MESSAGES", name.c_str(), 1);
  if (std::setlocale(LC_MESSAGES, name.c_str()) == nullptr) std::setlocale(LC_MESSAGES, "C");
  char const *const set = std::setlocale(LC_CTYPE, "");
  if (set == nullptr || std::string_view(set) == "C" || std::string_view(set) == "POSIX")
    std::setlocale(LC_CTYPE, "C.UTF-8");
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
  auto const wanted = wanted_languages([](char const *name) { return std::getenv(name); });
  std::string list;
  for (auto const &language : wanted) list += (list.empty() ? "" : ":") + locale_name(language);
  setenv("LANGUAGE", list.c_str(), 1);
  choose_locale(wanted.front());
  if (texts_locale == nullptr) texts_locale = newlocale(LC_CTYPE_MASK | LC_MESSAGES_MASK, "C.UTF-8", nullptr);
  for (auto const &folder : catalogues) {
    std::error_code failed;
    for (auto const &language : known_languages()) {
      auto const catalogue = std::filesystem::path(folder) / locale_name(language) / "LC_MESSAGES/directfax.mo";
      if (std::filesystem::exists(catalogue, failed)) return bind(folder);
    }
  }
}

std::string tr(char const *english) {
  InTextsLocale const locale;
  return dgettext(kDomain, english);
}

namespace texts {

std::string filled(char const *english, std::vector<std::string> const &values) {
  return first_that_fills(tr(english).c_str(), english, values);
}

std::string filled(char const *one, char const *many, unsigned long count, std::vector<std::string> const &values) {
  InTextsLocale const locale;
  return first_that_fills(dngettext(kDomain, one, many, count), count == 1 ? one : many, values);
}

}  // namespace texts

}  // namespace fax
