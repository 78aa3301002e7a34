// The languages that a user asks for through the environment, as POSIX says it. Plain C++.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

// The value of an environment variable; nullptr when it is not set. std::getenv is one.
using Environment = std::function<char const *(char const *)>;

// The languages that the product speaks, by the names of their folders on macOS: "en", "pt-BR", "zh-Hans" and so on.
std::vector<std::string> const &known_languages();

// One of known_languages() for the name of a locale ("pt_BR.UTF-8", "de_AT@euro", "zh_TW") or of a language as macOS
// writes it ("pt-BR", "zh-Hans-CN"). "" for any other, traditional Chinese among them: who reads that is not served by
// simplified letters.
std::string known_language(std::string_view locale);

// The known languages that the user asks for, best first, none twice. LC_ALL, LC_MESSAGES or LANG, the first that is set
// and not empty, names the language; unless that is none ("C", "POSIX", not set), LANGUAGE, a list with colons, comes
// before it. Ends with "en", the language of the sources; languages behind "en" are left out.
std::vector<std::string> wanted_languages(Environment const &environment);

}  // namespace fax
