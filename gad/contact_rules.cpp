#include "gad/contact_rules.h"

#include "addressbook/destination_rules.h"
#include "gad/text.h"
#include "quoltanis/gad_file.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace fax::tool {
namespace {

// What the fax dialog shows as the number of a group, and knows a group by.
constexpr std::string_view number_of_groups = "Group";

std::optional<std::string> fault_of_text(std::string_view text, char const *what, std::size_t limit) {
  if (!is_utf8(text)) return std::string(what) + " is not valid UTF-8";
  if (text.find('\0') != std::string_view::npos) return std::string(what) + " holds a null character";
  if (std::size_t const length = units(text); length > limit)
    return std::string(what) + " is too long: " + std::to_string(length) + " characters of " + std::to_string(limit);
  return std::nullopt;
}

bool is_accepted(char32_t character) {
  for (auto const *range = kPhoneNumberAcceptableRange; range[0] != 0; range += 2)
    if (character >= range[0] && character <= range[1]) return true;
  return false;
}

}  // namespace

std::string called(Contact const &contact) {
  return trimmed(contact.name).empty() ? "a contact without a name" : in_quotes(contact.name);
}

std::optional<std::string> fault_of(Contact const &contact) {
  if (trimmed(contact.name).empty()) return "the name is empty";
  if (trimmed(contact.number).empty()) return "the number is empty";
  if (contact.number == number_of_groups) return "the number \"Group\" is the mark of groups";
  if (auto fault = fault_of_text(contact.name, "the name", gad::Limits::name)) return fault;
  if (auto fault = fault_of_text(contact.number, "the number", gad::Limits::number)) return fault;
  if (auto fault = fault_of_text(contact.company, "the company", gad::Limits::company)) return fault;
  return fault_of_text(contact.note, "the note", gad::Limits::note);
}

std::optional<std::string> fault_of_group(std::string_view name) {
  if (trimmed(name).empty()) return "the group's name is empty";
  return fault_of_text(name, "the group's name", gad::Limits::name);
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
