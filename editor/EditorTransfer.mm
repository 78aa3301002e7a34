#import "editor/EditorController.h"

#include <ctime>
#include <filesystem>
#include <memory>
#include <vector>

#import "editor/NamePanel.h"
#import "editor/PlanPanel.h"
#import "editor/background_work.h"
#import "editor/text.h"

#include "editor/core/import_plan.h"
#include "editor/core/messages.h"
#include "editor/core/printer_contacts.h"
#include "gad/commands.h"
#include "gad/failure.h"

using namespace fax::editor;
using fax::tool::Contacts;

@interface EditorController (TransferParts)
- (void)importFile:(std::string const &)path;
- (void)offer:(Contacts const &)contacts from:(NSString *)source title:(char const *)title;
@end

@implementation EditorController (Transfer)

// Shows what would be added, and adds it when the user agrees.
- (void)offer:(Contacts const &)contacts from:(NSString *)source title:(char const *)title {
  auto plan = std::make_shared<ImportPlan>();
  auto const now = [self book]->contents();
  auto const compare = [&](Share const &) { *plan = plan_import(*now, contacts, std::time(nullptr), title); };
  run_aside(EditorText(@"Comparing with the address book…"), Cancel::impossible, compare);
  PlanPanel *panel = [[[PlanPanel alloc] initWithPlan:*plan source:source] autorelease];
  if ([panel run]) [self makeStep:plan->step doing:EditorText(@"Saving…")];
}

- (void)importList:(id)sender {
  NSOpenPanel *panel = [NSOpenPanel openPanel];
  [panel setTitle:EditorText(@"Import")];
  [panel setAllowsMultipleSelection:NO];
  if ([panel runModalForTypes:nil] == NSOKButton) [self importFile:utf8([panel filename])];
}

- (void)importGivenLists {
  std::vector<std::string> const lists = [self commandLine].lists;
  for (std::string const &list : lists)
    if ([self book] != nullptr && [self book]->can_change()) [self importFile:list];
}

- (void)importFile:(std::string const &)path {
  auto contacts = std::make_shared<Contacts>();
  NSString *name = ns(std::filesystem::path(path).filename().string());
  try {
    auto const read = [=](Share const &share) { *contacts = read_contacts(path, share); };
    Ending const ending = run_aside(EditorFormat(@"Reading %@…", name), Cancel::possible, read);
    if (ending == Ending::cancelled) return;
  } catch (fax::tool::Failure const &failure) {
    tell(ns(std::string(failure.what()) + ". " + utf8(EditorText(@"Nothing was imported."))));
    return;
  }
  [self offer:*contacts from:name title:"Import"];
}

- (void)exportBook:(id)sender {
  NSSavePanel *panel = [NSSavePanel savePanel];
  [panel setTitle:EditorText(@"Export")];
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
    run_aside(EditorText(@"Exporting…"), Cancel::impossible, [&](Share const &) { fax::tool::export_book(choices); });
    [self say:utf8(EditorFormat(@"Exported to %@", ns(choices.target)))];
  } catch (fax::tool::Failure const &failure) {
    tell(ns(std::string(failure.what()) + "."));
  }
}

- (void)copyFromPrinter:(id)sender {
  std::string const address = [self commandLine].address;
  CheckText const check = [](std::string const &password) {
    return password.empty() ? utf8(EditorText(@"The password is empty.")) : std::string();
  };
  NSString *printer = EditorFormat(@"the printer at %@", ns(address));
  NamePanel *panel = [[[NamePanel alloc] initWithTitle:EditorText(@"Copy from Printer")
                                                 label:EditorText(@"Password:")
                                                accept:EditorText(@"Continue")
                                                  hint:EditorFormat(@"Of the address book of %@", printer)
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
  Ending const ending = run_aside(EditorFormat(@"Reading the book of %@…", printer), Cancel::possible, read);
  if (ending == Ending::cancelled) return;
  if (answer->status != fax::Status::success) {
    tell(ns(sentence_about(answer->status)));
    return;
  }
  [self offer:answer->contacts from:printer title:"Copy from Printer"];
}

@end
