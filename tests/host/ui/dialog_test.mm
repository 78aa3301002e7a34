// The dialog's objects on a real display, with a print service and extensions of the tests' own.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dialog_fixture.h"

#import "host/HostScreenMap.h"
#import "toolkit/text.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::Contains;

namespace fax::host {

using namespace toolkit;

namespace {

TEST_F(Dialog, AsksTheExtensionInOrderAndShowsItsPanelFirst) {
  open();
  EXPECT_THAT(calls(), ElementsAre("initWithBundle", "PDEPanelsForType", "supportedPPDOptionKeys", "panelName",
                                   "panelView", "restore", "willShow"));
  EXPECT_EQ(value(@"Options"), "Recording");
  EXPECT_EQ(mapped("Sender Name").kind, "NSTextField");
  EXPECT_TRUE(told().empty());
}

TEST_F(Dialog, LeavingAPanelSavesItAndSummaryAsksForItsRows) {
  open();
  auto const asked = calls_of([&] { choose(@"Options", @"Summary"); });
  EXPECT_THAT(asked, ElementsAre("shouldHide", "save", "save", "summaryInfo"));
  MapFrame const before = map().frame;
  std::vector<std::string> labels;
  for (auto const &control : map().controls) {
    for (auto const &row : control.rows) labels.push_back(row.cells.at(0));
  }
  EXPECT_THAT(labels, IsSupersetOf({"Printer", "Copies", "Document", "Recording", "Image Quality", "Sender Name"}));
  EXPECT_THAT(calls_of([&] { choose(@"Options", @"Recording"); }), ElementsAre("restore", "willShow"));
  EXPECT_EQ(std::pair(map().frame.width, map().frame.height), std::pair(before.width, before.height));
}

TEST_F(Dialog, APanelThatMustNotBeHiddenStays) {
  open();
  [answers_ setObject:@"0" forKey:@"shouldHide"];
  choose(@"Options", @"Printer Features");
  EXPECT_EQ(value(@"Options"), "Recording");
  EXPECT_THAT(utf8([dialog_ status]), HasSubstr("Recording"));
}

TEST_F(Dialog, FeaturesLeaveOutThePanelsOptionsAndTellPanelsOfChanges) {
  open();
  choose(@"Options", @"Printer Features");
  EXPECT_EQ(control(@"Image Quality"), nil);
  auto const asked = calls_of([&] { choose(@"Two-Sided", @"Long Edge"); });
  EXPECT_THAT(asked, ElementsAre("PPDOptionKeyValueDidChange Duplex DuplexNoTumble"));
}

TEST_F(Dialog, AConflictIsRefusedToldAndThePanelRestored) {
  open();
  choose(@"Options", @"Printer Features");
  choose(@"Paper", @"Transparency");
  choose(@"Options", @"Recording");
  EXPECT_THAT(calls_of([&] { choose(@"Image Quality", @"Fine"); }), ElementsAre("chose Fine 0"));
  EXPECT_THAT(calls_of([&] { come_round(); }), ElementsAre("save", "restore"));
  EXPECT_EQ(value(@"Image Quality"), "Standard");
  ASSERT_EQ(told().size(), 1u);
  EXPECT_THAT(told().front(), HasSubstr("Paper"));
  EXPECT_THAT(told().front(), HasSubstr("Image Quality"));
}

TEST_F(Dialog, AConflictOfAFeatureShowsTheOldChoiceAgain) {
  open();
  choose(@"Image Quality", @"Fine");
  choose(@"Options", @"Printer Features");
  auto const asked = calls_of([&] { choose(@"Paper", @"Transparency"); });
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(value(@"Paper"), "Plain Paper");
  come_round();
  EXPECT_EQ(told().size(), 1u);
}

TEST_F(Dialog, PrintHandsOneJobOverWithEverything) {
  CommandLine line;
  line.copies = 3;
  line.title = "Offer";
  line.options = {{"x-extra", "1"}};
  open("Recording", "fax", line);
  choose(@"Image Quality", @"Fine");
  NSTextField *sender = [HostEditableFields([control(@"Image Quality") superview]) lastObject];
  [sender setStringValue:@"Anna Berg"];
  auto const asked = calls_of([&] { [dialog_ print:nil]; });
  EXPECT_THAT(asked, ElementsAre("save", "shouldPrint 1"));
  EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
  EXPECT_EQ(owner_->ends, 1);
  EXPECT_TRUE(told().empty());
  int const job = service_->jobs().back();
  EXPECT_EQ(utf8([dialog_ status]), "Job " + std::to_string(job) + " was handed to the queue fax.");
  ASSERT_TRUE([dialog_ submittedJob]);
  EXPECT_EQ([dialog_ submittedJob]->number, job);
  auto options = parsed_options(service_->options_of(job).value_or(""));
  EXPECT_EQ(options["com.norvalt.tk.o.print.printsettings.DFaxCoverSenderName"], "Anna Berg");
  EXPECT_EQ(options["QXFaxImageQuality"], "Fine");
  EXPECT_EQ(options["x-extra"], "1");
  EXPECT_EQ(service_->document_of(job), "%PDF-1.4\nfax");
}

struct RefusalCase {
  char const *operation;
  char const *answer;
  std::vector<std::string> asked;
  std::size_t alerts;
};

TEST_F(Dialog, ARefusalKeepsTheDialogAndSubmitsNothing) {
  for (auto const &[operation, answer, asked, alerts] :
       {RefusalCase{"save", "0", {"save"}, 0}, RefusalCase{"save", "raise", {"save"}, 1},
        RefusalCase{"shouldPrint", "0", {"save", "shouldPrint 1"}, 0},
        RefusalCase{"shouldPrint", "raise", {"save", "shouldPrint 1"}, 1}}) {
    SCOPED_TRACE(std::string{operation} + " " + answer);
    open();
    auto const jobs = service_->jobs();
    [answers_ setObject:ns(answer) forKey:ns(operation)];
    EXPECT_EQ(calls_of([&] { [dialog_ print:nil]; }), asked);
    [answers_ removeAllObjects];
    come_round();
    EXPECT_EQ(told().size(), alerts);
    EXPECT_EQ(service_->jobs(), jobs);
    EXPECT_EQ(owner_->ends, 0);
    EXPECT_TRUE([[dialog_ window] isVisible]);
    [alerts_->told removeAllObjects];
    [dialog_ release];
    dialog_ = nil;
  }
}

TEST_F(Dialog, ASavedFieldThatWasSetBackIsNamed) {
  open();
  NSTextField *sender = [HostEditableFields([control(@"Image Quality") superview]) lastObject];
  [sender setStringValue:@"\u00fc"];
  [answers_ setObject:@"0" forKey:@"save"];
  [dialog_ print:nil];
  EXPECT_THAT(utf8([dialog_ status]), HasSubstr("Sender Name"));
}

TEST_F(Dialog, CopiesThatAreNoNumberStopThePrint) {
  open();
  for (char const *bad : {"", "0", "-1", "10000", "2x", "1.5"}) {
    SCOPED_TRACE(bad);
    NSTextField *copies = [HostEditableFields([[dialog_ window] contentView]) objectAtIndex:0];
    [copies setStringValue:ns(bad)];
    EXPECT_TRUE(calls_of([&] { [dialog_ print:nil]; }).empty());
    EXPECT_THAT(utf8([dialog_ status]), HasSubstr("Copies"));
  }
}

TEST_F(Dialog, AFileIsWrittenWithoutAJob) {
  CommandLine line;
  line.destination = Destination::file;
  line.output = testing::TempDir() + "/dialog-output.pdf";
  open("Recording", "fax", line);
  auto const jobs = service_->jobs();
  EXPECT_THAT(calls_of([&] { [dialog_ print:nil]; }), ElementsAre("save", "shouldPrint 2"));
  std::ifstream file{*line.output};
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(), "%PDF-1.4\nfax");
  EXPECT_EQ(service_->jobs(), jobs);
  EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
}

TEST_F(Dialog, AnotherPrinterGetsItsOwnPanels) {
  NSAutoreleasePool *opening = [NSAutoreleasePool new];
  open();
  [opening release];
  auto const asked = calls_of([&] {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    choose(@"Printer", @"Queue plain");
    [pool release];
  });
  EXPECT_THAT(asked, IsSupersetOf({"shouldHide", "save", "dealloc", "PDEPanelsForType"}));
  EXPECT_THAT(asked, Not(Contains("initWithBundle")));
  EXPECT_EQ(value(@"Options"), "Printer Features");
}

TEST_F(Dialog, AnExtensionThatFailsLeavesAWorkingDialog) {
  // One that others may change.
  auto const loose = std::filesystem::canonical(std::filesystem::temp_directory_path()) / "Loose.bundle";
  std::filesystem::create_directory(loose);
  std::filesystem::permissions(loose, std::filesystem::perms{0777});
  for (std::string const extension : {"Empty", "Raising", "NoLibrary", "Absent", loose.c_str()}) {
    SCOPED_TRACE(extension);
    open(extension);
    EXPECT_EQ(value(@"Options"), "Printer Features");
    EXPECT_EQ(mapped("Options").items, (std::vector<std::string>{"Printer Features", "Summary"}));
    ASSERT_EQ(told().size(), 1u);
    EXPECT_THAT(told().front(), HasSubstr(extension));
    [alerts_->told removeAllObjects];
    [dialog_ print:nil];
    EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
    [alerts_->told removeAllObjects];
    [dialog_ release];
    dialog_ = nil;
  }
}

TEST_F(Dialog, CancelEndsWithItsExitCode) {
  open();
  auto const jobs = service_->jobs();
  [dialog_ cancel:nil];
  EXPECT_EQ([dialog_ exitCode], ExitCode::cancelled);
  EXPECT_EQ(owner_->ends, 1);
  EXPECT_EQ(service_->jobs(), jobs);
}

TEST_F(Dialog, PanelsOwnHelpKeepsTheDialogsAway) {
  open();
  [answers_ setObject:@"0" forKey:@"shouldShowHelp"];
  EXPECT_THAT(calls_of([&] { [dialog_ help:nil]; }), ElementsAre("shouldShowHelp"));
  EXPECT_TRUE(told().empty());
}

}  // namespace
}  // namespace fax::host
