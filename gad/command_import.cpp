#include "gad/book.h"
#include "gad/book_import.h"
#include "gad/commands.h"
#include "gad/failure.h"
#include "gad/files.h"
#include "gad/progress.h"
#include "gad/text.h"
#include "gad/text_encoding.h"
#include "gad/vcard_contacts.h"

#include <algorithm>
#include <iostream>

namespace fax::tool {
namespace {

constexpr std::size_t remarks_shown = 20;

std::string label(ImportChoices const &choices) { return choices.source == "-" ? "standard input" : choices.source; }

Contacts read_list(ImportChoices const &choices) {
  DecodedText const decoded = decode_text_file(read_whole(choices.source), choices.encoding);
  bool const vcard =
      choices.format == ImportFormat::automatic ? is_vcard(decoded.text) : choices.format == ImportFormat::vcard;
  Progress progress("Reading  ", choices.quiet);
  auto const show = [&](double share) { progress.show(share); };
  Contacts contacts = vcard ? read_vcard_contacts(decoded.text, choices.csv.fax_only, show)
                            : read_csv_contacts(decoded.text, choices.csv, show);
  if (decoded.guessed)
    contacts.remark(0, "read as " + decoded.encoding + ", which is a guess; if letters look wrong say --encoding");
  return contacts;
}

// What was left out is always shown; of what is only worth knowing, the first few.
void print_remarks(Contacts &contacts, ImportChoices const &choices) {
  std::stable_sort(contacts.remarks.begin(), contacts.remarks.end(),
                   [](Remark const &a, Remark const &b) { return a.line < b.line; });
  std::size_t notes = 0, kept_back = 0;
  for (Remark const &remark : contacts.remarks) {
    bool const skipped = remark.weight == Weight::skipped;
    if (!skipped && !choices.verbose) {
      if (remark.weight == Weight::detail) continue;
      if (++notes > remarks_shown) {
        ++kept_back;
        continue;
      }
    }
    std::cerr << label(choices);
    if (remark.line > 0) std::cerr << ':' << remark.line;
    std::cerr << (skipped ? ": skipped: " : ": note: ") << remark.text << '\n';
  }
  if (kept_back > 0) std::cerr << label(choices) << ": " << kept_back << " more notes; --verbose shows them\n";
}

void print_summary(ImportResult const &result, Contacts const &contacts, bool dry_run) {
  std::cout << (dry_run ? "Would add " : "Added ") << result.added << ", already there " << result.present
            << ", skipped " << contacts.skipped << ", new groups " << result.groups << '\n';
  finish_output();
}

}  // namespace

int import_list(ImportChoices const &choices) {
  open_book(choices.book, gad::Access::read);  // a wrong book is said before a long list is read
  Contacts contacts;
  try {
    contacts = read_list(choices);
  } catch (Failure const &failure) {
    std::string const prefix =
        std::string(failure.what()).starts_with(choices.source + ":") ? "" : label(choices) + ": ";
    throw Failure(prefix + failure.what() + "; nothing was imported", failure.code);
  }
  if (!choices.group.empty())
    for (Contact &contact : contacts.people)
      if (std::find(contact.groups.begin(), contact.groups.end(), choices.group) == contact.groups.end())
        contact.groups.push_back(choices.group);
  ImportResult result;
  {
    Progress progress("Importing", choices.quiet);
    result = import_into(choices.book, contacts, choices.dry_run, [&](double share) { progress.show(share); });
  }
  if (!choices.quiet) {
    print_remarks(contacts, choices);
    print_summary(result, contacts, choices.dry_run);
  }
  return contacts.skipped > 0 ? exit_skipped : exit_success;
}

}  // namespace fax::tool
