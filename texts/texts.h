// What the programs say, in the user's language. The English text is the key of every other; po/ holds the translations,
// one catalogue for all programs, read by the C library's gettext. script/texts gathers the keys from the sources.
//
//   tr("Print")                                      a text
//   tr("The document \"{0}\" is empty.", name)       one with values in it: strings, numbers; {{ is a brace
//   tr_n("{0} entry", "{0} entries", count, count)   one whose form depends on a number, which is no value by itself
//   mark("Held")                                     a text in a table, of which tr() is asked later
//
// Say whole sentences: a translator cannot join pieces.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

// For a text that tr() is given later, as a variable.
constexpr char const *mark(char const *english) { return english; }

// Makes the user's choice of a language (see platform/languages.h) the program's own. Call it first in main(), before
// there is a thread: it sets LANGUAGE, LC_MESSAGES and the locale's LC_CTYPE and LC_MESSAGES, so that what the C library
// and CUPS say is in that language too, as far as they know it. catalogues are folders that may hold
// LOCALE/LC_MESSAGES/directfax.mo; the first that exists is used. Without any the program speaks English.
void speak(std::vector<std::string> const &catalogues);

// The folders where a program finds its catalogues: "locale" in its own folder, in the folder above, and
// "share/locale" of the tree that it is installed in.
std::vector<std::string> catalogue_folders();

namespace texts {

// The text with {0}, {1}... replaced; a translation whose braces are broken is put aside for the English text.
std::string filled(char const *english, std::vector<std::string> const &values);
std::string filled(char const *one, char const *many, unsigned long count, std::vector<std::string> const &values);

inline std::string value(std::string_view text) { return std::string(text); }
std::string value(std::integral auto number) { return std::to_string(number); }

}  // namespace texts

// UTF-8. english is never empty: gettext keeps its own header there.
std::string tr(char const *english);

template <typename... Values>
  requires(sizeof...(Values) > 0)
std::string tr(char const *english, Values const &...values) {
  return texts::filled(english, {texts::value(values)...});
}

template <typename... Values>
std::string tr_n(char const *one, char const *many, unsigned long count, Values const &...values) {
  return texts::filled(one, many, count, {texts::value(values)...});
}

}  // namespace fax
