#include "editor/core/entry_rules.h"

#include "gad/contact_rules.h"
#include "gad/text.h"

namespace fax::editor {
namespace {

std::string sentence(std::string text) {
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return text + ".";
}

// A field is at fault when the entry has a fault with it, and with everything else beyond doubt.
std::optional<EntryFault> fault_in(EntryField field, Person const &person) {
  tool::Contact contact{.name = "a", .number = "1", .company = "", .note = "", .groups = {}, .line = 0};
  switch (field) {
    case EntryField::name: contact.name = person.name; break;
    case EntryField::number: contact.number = person.number; break;
    case EntryField::company: contact.company = person.company; break;
    case EntryField::note: contact.note = person.note; break;
  }
  auto fault = tool::fault_of(contact);
  if (!fault) return std::nullopt;
  return EntryFault{field, sentence(std::move(*fault))};
}

}  // namespace

std::optional<EntryFault> fault_of(Person const &person) {
  for (EntryField field : {EntryField::name, EntryField::number, EntryField::company, EntryField::note})
    if (auto fault = fault_in(field, person)) return fault;
  return std::nullopt;
}

std::optional<std::string> fault_of_group_name(std::string const &name) {
  auto fault = tool::fault_of_group(name);
  if (!fault) return std::nullopt;
  return sentence(std::move(*fault));
}

std::string hint_about(std::string const &number) {
  std::string const refused = tool::refused_characters(number);
  return refused.empty() ? "" : "The number holds " + refused + ", which cannot be typed in the fax dialog; it is kept as it is.";
}

std::string one_line(std::string_view text) {
  std::string line(tool::trimmed(text));
  for (char &character : line)
    if (character == '\n' || character == '\r' || character == '\t') character = ' ';
  return line;
}

}  // namespace fax::editor
