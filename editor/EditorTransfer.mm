#import "editor/EditorController.h"

#include <ctime>
#include <filesystem>
#include <memory>
#include <vector>

#import "editor/NamePanel.h"
#import "editor/PlanPanel.h"
#import "editor/background_work.h"
#import "toolkit/gnustep_texts.h"
#import "toolkit/text.h"

#include "editor/core/import_plan.h"
#include "editor/core/messages.h"
#include "editor/core/printer_contacts.h"
#include "gad/commands.h"
#include "gad/failure.h"

using namespace fax::editor;
using namespace fax::toolkit;
using fax::tool::Contacts;

@interface EditorController (TransferParts)
- (void)importFile:(std::string const &)path;
- (void)offer:(Contacts const &)contacts from:(std::string const &)source title:(std::string const &)title;
@end

@implementation EditorController (Transfer)

// Shows what would be added, and adds it when the user agrees.
- (void)offer:(Contacts const &)contacts from:(std::string const &)source title:(std::string const &)title {
  auto plan = std::make_shared<ImportPlan>();
  auto const now = [self book]->contents();
  auto const compare = [&](Share const &) { *plan = plan_import(*now, contacts, std::time(nullptr), title); };
  run_aside(ns(tr("Comparing with the address book…")), Cancel::impossible, compare);
  PlanPanel *panel = [[[PlanPanel alloc] initWithPlan:*plan source:source] autorelease];
  if ([panel run]) [self makeStep:plan->step doing:ns(tr("Saving…"))];
}

- (void)importList:(id)sender {
  NSOpenPanel *panel = [NSOpenPanel openPanel];
  [panel setTitle:ns(tr("Import"))];
  [panel setAllowsMultipleSelection:NO];
  fit_buttons(panel);
  if ([panel runModalForTypes:nil] == NSOKButton) [self importFile:utf8([panel filename])];
}

- (void)importGivenLists {
  std::vector<std::string> const lists = [self commandLine].lists;
  for (std::string const &list : lists)
    if ([self book] != nullptr && [self book]->can_change()) [self importFile:list];
}

- (void)importFile:(std::string const &)path {
  auto contacts = std::make_shared<Contacts>();
  std::string const name = std::filesystem::path(path).filename().string();
  try {
    auto const read = [=](Share const &share) { *contacts = read_contacts(path, share); };
    Ending const ending = run_aside(ns(tr("Reading {0}…", name)), Cancel::possible, read);
    if (ending == Ending::cancelled) return;
  } catch (fax::tool::Failure const &failure) {
    tell(ns(std::string(failure.what()) + " " + tr("Nothing was imported.")));
    return;
  }
  [self offer:*contacts from:name title:tr("Import")];
}

- (void)exportBook:(id)sender {
  NSSavePanel *panel = [NSSavePanel savePanel];
  [panel setTitle:ns(tr("Export"))];
  fit_buttons(panel);
  std::string const path = [self book]->path();
  std::string const proposed = std::filesystem::path(path).stem().string() + ".vcf";
  if ([panel runModalForDirectory:NSHomeDirectory() file:ns(proposed)] != NSOKButton) return;
  fax::tool::ExportChoices choices;
  choices.book = path;
  choices.target = utf8([panel filename]);
  choices.replace = true;  // the panel has asked
  choices.quiet = true;
  if (std::filesystem::path(choices.target).extension().empty()) choices.target += ".vcf";
  try {
    run_aside(ns(tr("Exporting…")), Cancel::impossible, [&](Share const &) { fax::tool::export_book(choices); });
    [self say:tr("Exported to {0}", choices.target)];
  } catch (fax::tool::Failure const &failure) {
    tell(ns(failure.what()));
  }
}

- (void)copyFromPrinter:(id)sender {
  std::string const address = [self commandLine].address;
  CheckText const check = [](std::string const &password) {
    return password.empty() ? tr("The password is empty.") : std::string();
  };
  NamePanel *panel = [[[NamePanel alloc] initWithTitle:ns(tr("Copy from Printer"))
                                                 label:ns(tr("Password:"))
                                                accept:ns(tr("Continue"))
                                                  hint:ns(tr("Of the address book of the printer at {0}", address))
                                                secret:YES
                                                 check:check] autorelease];
  if (![panel run]) return;
  struct Answer {
    fax::Status status = fax::Status::unexpected;
    Contacts contacts;
  };
  auto answer = std::make_shared<Answer>();
  std::string const password = [panel text];
  auto const read = [=](Share const &) {
    answer->status = read_printer(address, password, answer->contacts);
  };
  Ending const ending = run_aside(ns(tr("Reading the address book of the printer at {0}…", address)), Cancel::possible, read);
  if (ending == Ending::cancelled) return;
  if (answer->status != fax::Status::success) {
    tell(ns(sentence_about(answer->status)));
    return;
  }
  [self offer:answer->contacts from:tr("the printer at {0}", address) title:tr("Copy from Printer")];
}

@end
