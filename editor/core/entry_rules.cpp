#include "editor/core/entry_rules.h"

#include "gad/contact_rules.h"
#include "gad/text.h"
#include "texts/texts.h"

namespace fax::editor {
namespace {

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
  return EntryFault{field, std::move(*fault)};
}

}  // namespace

std::optional<EntryFault> fault_of(Person const &person) {
  for (EntryField field : {EntryField::name, EntryField::number, EntryField::company, EntryField::note})
    if (auto fault = fault_in(field, person)) return fault;
  return std::nullopt;
}

std::string hint_about(std::string const &number) {
  std::string const refused = tool::refused_characters(number);
  if (refused.empty()) return "";
  return tr("The number holds {0}, which cannot be typed in the fax dialog. It is kept as it is.", refused);
}

std::string one_line(std::string_view text) {
  std::string line(tool::trimmed(text));
  for (char &character : line)
    if (character == '\n' || character == '\r' || character == '\t') character = ' ';
  return line;
}

}  // namespace fax::editor
