#include "gad/book.h"
#include "gad/commands.h"
#include "gad/failure.h"
#include "gad/files.h"
#include "gad/listing.h"
#include "gad/progress.h"
#include "gad/text.h"
#include "gad/vcard_contacts.h"
#include "texts/texts.h"

#include <iostream>

namespace fax::tool {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

ExportFormat format_of(ExportChoices const &choices) {
  if (choices.format != ExportFormat::automatic) return choices.format;
  std::string const &target = choices.target;
  if (target.ends_with(".csv") || target.ends_with(".CSV")) return ExportFormat::csv;
  if (target == "-" || target.ends_with(".vcf") || target.ends_with(".VCF")) return ExportFormat::vcard4;
  throw Failure(target + ": " + tr("This is neither .vcf nor .csv. Say which with --to."), exit_usage);
}

void note(ExportChoices const &choices, std::string const &text) {
  if (!choices.quiet) print_note(text);
}

std::string csv_of(BookContents const &book, ExportChoices const &choices, Progress &progress) {
  std::string text(choices.byte_order_mark ? byte_order_mark : "");
  text += csv_header(choices.delimiter);
  for (BookEntry const &entry : book.entries) {
    text += csv_contact(entry.contact, choices.delimiter);
    progress.show(double(&entry - book.entries.data()) / double(book.entries.size()));
  }
  for (BookGroup const &group : book.groups)
    if (group.members.empty()) note(choices, tr("Group {0} has no members, and so no place in CSV.", in_quotes(group.name)));
  return text;
}

bool has_lone_return(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')) return true;
  return false;
}

std::string vcards_of(BookContents const &book, VcardVersion version, ExportChoices const &choices,
                      Progress &progress) {
  std::string text;
  for (BookEntry const &entry : book.entries) {
    text += vcard_contact(entry.contact, version);
    progress.show(double(&entry - book.entries.data()) / double(book.entries.size()));
    if (has_lone_return(entry.contact.name + entry.contact.note))
      note(choices,
           in_quotes(entry.contact.name) + ": " +
               tr("A carriage return becomes a line break, as vCards know no other."));
  }
  for (BookGroup const &group : book.groups) {
    std::vector<std::string> members;
    for (std::size_t member : group.members) members.push_back(vcard_uid(book.entries[member].contact));
    text += vcard_group(group.name, members, version);
  }
  return text;
}

}  // namespace

int export_book(ExportChoices const &choices) {
  ExportFormat const format = format_of(choices);
  BookContents const book = read_book(choices.book);
  std::string text;
  {
    Progress progress(tr("Exporting"), choices.quiet);
    text =
        format == ExportFormat::csv
            ? csv_of(book, choices, progress)
            : vcards_of(book, format == ExportFormat::vcard3 ? VcardVersion::v3 : VcardVersion::v4, choices, progress);
  }
  write_whole(choices.target, text, choices.replace);
  return exit_success;
}

}  // namespace fax::tool
