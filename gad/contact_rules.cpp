#include "gad/contact_rules.h"

#include "addressbook/destination_rules.h"
#include "gad/text.h"
#include "quoltanis/gad_file.h"
#include "texts/texts.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace fax::tool {
namespace {

// What the fax dialog shows as the number of a group, and knows a group by.
constexpr std::string_view number_of_groups = "Group";

// A text of an entry, and what can be wrong with it.
struct Rule {
  std::size_t limit;
  char const *not_utf8, *holds_null, *too_long;
};

constexpr Rule of_name{gad::Limits::name, mark("The name is not valid UTF-8."), mark("The name holds a null character."),
                       mark("The name is too long: {0} characters of {1}.")};
constexpr Rule of_number{gad::Limits::number, mark("The number is not valid UTF-8."),
                         mark("The number holds a null character."),
                         mark("The number is too long: {0} characters of {1}.")};
constexpr Rule of_company{gad::Limits::company, mark("The company is not valid UTF-8."),
                          mark("The company holds a null character."),
                          mark("The company is too long: {0} characters of {1}.")};
constexpr Rule of_note{gad::Limits::note, mark("The note is not valid UTF-8."), mark("The note holds a null character."),
                       mark("The note is too long: {0} characters of {1}.")};
constexpr Rule of_group{gad::Limits::name, mark("The group's name is not valid UTF-8."),
                        mark("The group's name holds a null character."),
                        mark("The group's name is too long: {0} characters of {1}.")};

std::optional<std::string> broken(Rule const &rule, std::string_view text) {
  if (!is_utf8(text)) return tr(rule.not_utf8);
  if (text.find('\0') != std::string_view::npos) return tr(rule.holds_null);
  if (std::size_t const length = units(text); length > rule.limit) return tr(rule.too_long, length, rule.limit);
  return std::nullopt;
}

bool is_accepted(char32_t character) {
  for (auto const *range = kPhoneNumberAcceptableRange; range[0] != 0; range += 2)
    if (character >= range[0] && character <= range[1]) return true;
  return false;
}

}  // namespace

std::string called(Contact const &contact) {
  return trimmed(contact.name).empty() ? tr("A contact without a name") : in_quotes(contact.name);
}

std::optional<std::string> fault_of(Contact const &contact) {
  if (trimmed(contact.name).empty()) return tr("The name is empty.");
  if (trimmed(contact.number).empty()) return tr("The number is empty.");
  //: A fax number that is the word "Group", which stays as it is.
  if (contact.number == number_of_groups) return tr("The number \"Group\" is the mark of groups.");
  if (auto fault = broken(of_name, contact.name)) return fault;
  if (auto fault = broken(of_number, contact.number)) return fault;
  if (auto fault = broken(of_company, contact.company)) return fault;
  return broken(of_note, contact.note);
}

std::optional<std::string> fault_of_group(std::string_view name) {
  if (trimmed(name).empty()) return tr("The group's name is empty.");
  return broken(of_group, name);
}

std::string refused_characters(std::string_view number) {
  std::string refused;
  for (std::size_t position = 0; position < number.size();) {
    std::size_t const start = position;
    UChar32 character;
    U8_NEXT(number.data(), position, number.size(), character);
    std::string_view const bytes = number.substr(start, position - start);
    if (!(character >= 0 && is_accepted(char32_t(character))) && refused.find(bytes) == std::string::npos)
      refused += bytes;
  }
  return refused.empty() ? refused : in_quotes(refused);
}

}  // namespace fax::tool
