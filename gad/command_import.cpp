#include "gad/book.h"
#include "gad/book_import.h"
#include "gad/commands.h"
#include "gad/failure.h"
#include "gad/files.h"
#include "gad/progress.h"
#include "gad/text.h"
#include "gad/text_encoding.h"
#include "gad/vcard_contacts.h"
#include "texts/texts.h"

#include <algorithm>
#include <iostream>

namespace fax::tool {
namespace {

constexpr std::size_t remarks_shown = 20;

std::string label(ImportChoices const &choices) { return choices.source == "-" ? tr("standard input") : choices.source; }

Contacts read_list(ImportChoices const &choices) {
  DecodedText const decoded = decode_text_file(read_whole(choices.source), choices.encoding);
  bool const vcard =
      choices.format == ImportFormat::automatic ? is_vcard(decoded.text) : choices.format == ImportFormat::vcard;
  Progress progress(tr("Reading"), choices.quiet);
  auto const show = [&](double share) { progress.show(share); };
  Contacts contacts = vcard ? read_vcard_contacts(decoded.text, choices.csv.fax_only, show)
                            : read_csv_contacts(decoded.text, choices.csv, show);
  if (decoded.guessed)
    contacts.remark(0, note_of_guess(decoded));
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
    std::string const place = label(choices) + (remark.line > 0 ? ":" + std::to_string(remark.line) : "");
    //: {0} is a sentence about an entry of a list.
    std::cerr << place << ": " << (skipped ? tr("skipped: {0}", remark.text) : tr("note: {0}", remark.text)) << '\n';
  }
  if (kept_back == 0) return;
  std::cerr << label(choices) << ": "
            << tr_n("{0} more note. --verbose shows it.", "{0} more notes. --verbose shows them.", kept_back, kept_back)
            << '\n';
}

void print_summary(ImportResult const &result, Contacts const &contacts, bool dry_run) {
  //: Numbers of entries.
  char const *const sums = dry_run ? mark("Would add {0}, already there {1}, skipped {2}, new groups {3}")
                                   //: Numbers of entries.
                                   : mark("Added {0}, already there {1}, skipped {2}, new groups {3}");
  std::cout << tr(sums, result.added, result.present, contacts.skipped, result.groups) << '\n';
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
    throw Failure(prefix + failure.what() + " " + tr("Nothing was imported."), failure.code);
  }
  if (!choices.group.empty())
    for (Contact &contact : contacts.people)
      if (std::find(contact.groups.begin(), contact.groups.end(), choices.group) == contact.groups.end())
        contact.groups.push_back(choices.group);
  ImportResult result;
  {
    Progress progress(tr("Importing"), choices.quiet);
    result = import_into(choices.book, contacts, choices.dry_run, [&](double share) { progress.show(share); });
  }
  if (!choices.quiet) {
    print_remarks(contacts, choices);
    print_summary(result, contacts, choices.dry_run);
  }
  return contacts.skipped > 0 ? exit_skipped : exit_success;
}

}  // namespace fax::tool
