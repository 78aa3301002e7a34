// The dialog's objects on a real display, with a print service and extensions of the tests' own.
#import <AppKit/AppKit.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "../core/private_cups.h"

#import "host/HostDialog.h"
#import "host/HostScreenMap.h"
#import "host/text.h"

using namespace fax::host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::Contains;

@interface SilentAlerts : NSObject <HostAlerting> {
 @public
  NSMutableArray *told;
}
@end

@implementation SilentAlerts
- (id)init {
  if ((self = [super init])) told = [NSMutableArray new];
  return self;
}
- (void)dealloc {
  [told release];
  [super dealloc];
}
- (void)tell:(NSString *)what advice:(NSString *)advice {
  [told addObject:what];
}
- (NSString *)askPathFor:(NSString *)name {
  return nil;
}
@end

@interface EndCounter : NSObject <HostDialogOwner> {
 @public
  int ends;
}
@end

@implementation EndCounter
- (void)dialogDidFinish:(HostDialog *)dialog {
  ++ends;
}
@end

namespace {

class Dialog : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!PrivateCups::is_installed()) return;
    service_ = new PrivateCups;
    service_->add_queue("fax", TEST_DATA "/../core/fax.ppd");
    service_->add_queue("plain", "");
    setenv("CUPS_SERVER", service_->server().address.c_str(), 1);
    cupsSetServer(service_->server().address.c_str());
  }

  static void TearDownTestSuite() { delete service_; }

  void SetUp() override {
    if (!service_) GTEST_SKIP() << "cupsd is not installed";
    pool_ = [NSAutoreleasePool new];
    NSMutableDictionary *shared = [[NSThread mainThread] threadDictionary];
    calls_ = [NSMutableArray array];
    answers_ = [NSMutableDictionary dictionary];
    [shared setObject:calls_ forKey:@"calls"];
    [shared setObject:answers_ forKey:@"answers"];
    alerts_ = [SilentAlerts new];
    owner_ = [EndCounter new];
  }

  void TearDown() override {
    if (!service_) return;
    [dialog_ release];
    [alerts_ release];
    [owner_ release];
    [pool_ release];
  }

  // Opens the dialog for a queue with one of the test extensions.
  void open(char const *extension = "Recording", char const *queue = "fax", CommandLine line = {}) {
    auto queues = list_queues(service_->server());
    ASSERT_TRUE(queues);
    auto chosen = choose_queue(queues.value(), queue);
    ASSERT_TRUE(chosen);
    auto ppd = PpdFile::of_queue(service_->server(), queue);
    ASSERT_TRUE(ppd);
    if (ppd.value()) {
      ASSERT_FALSE(ppd.value()->mark_initial({}, line.options));
    }
    line.extension = std::string{TEST_EXTENSIONS "/"} + extension + ".bundle";
    DialogRequest const request{service_->server(), queues.value(), chosen.value(), std::move(ppd.value()),
                                Document::of_bytes("%PDF-1.4\nfax", "Report"), line, "/nowhere/faxprint.app"};
    dialog_ = [[HostDialog alloc] initWithRequest:request owner:owner_ alerts:alerts_];
    [dialog_ show];
    come_round();
  }

  // Lets what was put off to the next turn of the run loop happen.
  static void come_round() {
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
  }

  std::vector<std::string> calls() const {
    std::vector<std::string> list;
    for (NSUInteger at = 0; at < [calls_ count]; ++at) list.push_back(utf8([calls_ objectAtIndex:at]));
    return list;
  }

  std::vector<std::string> told() const {
    std::vector<std::string> list;
    for (NSUInteger at = 0; at < [alerts_->told count]; ++at) list.push_back(utf8([alerts_->told objectAtIndex:at]));
    return list;
  }

  std::vector<std::string> calls_of(auto const &work) {
    [calls_ removeAllObjects];
    work();
    return calls();
  }

  // A control of the dialog by its outlet, or a pop-up of a panel by its label.
  static id control(NSString *name) {
    id found = nil;
    find([NSApp windows], name, found);
    return found;
  }

  void choose(NSString *popUpName, NSString *title) {
    NSPopUpButton *popUp = control(popUpName);
    ASSERT_TRUE(popUp) << utf8(popUpName);
    ASSERT_GE([popUp indexOfItemWithTitle:title], 0) << utf8(title);
    [popUp selectItemWithTitle:title];
    [NSApp sendAction:[popUp action] to:[popUp target] from:popUp];
  }

  std::string value(NSString *popUpName) const { return utf8([control(popUpName) titleOfSelectedItem]); }

  // What the screen map says of the dialog.
  MapWindow map() const {
    for (auto const &window : windows_on_screen()) {
      if (window.title == utf8([[dialog_ window] title])) return window;
    }
    return {};
  }

  MapControl mapped(std::string const &title) const {
    for (auto const &control : map().controls) {
      if (!control.label && (control.title == title || control.identifier == title)) return control;
    }
    return {};
  }

  static PrivateCups *service_;
  NSAutoreleasePool *pool_ = nil;
  NSMutableArray *calls_ = nil;
  NSMutableDictionary *answers_ = nil;
  SilentAlerts *alerts_ = nil;
  EndCounter *owner_ = nil;
  HostDialog *dialog_ = nil;

 private:
  static void find(NSArray *windows, NSString *name, id &found) {
    for (NSUInteger at = 0; at < [windows count] && !found; ++at) {
      NSWindow *window = [windows objectAtIndex:at];
      if ([window isVisible]) find_in([window contentView], name, found);
    }
  }
  static void find_in(NSView *view, NSString *name, id &found) {
    if (found) return;
    if ([view isKindOfClass:[NSPopUpButton class]] && [name isEqual:HostLabelOf(view, [[view window] contentView])]) {
      found = view;
      return;
    }
    if ([view isKindOfClass:[NSPopUpButton class]] && [name isEqual:label_of_pop_up(view)]) found = view;
    NSArray *inner = [view subviews];
    for (NSUInteger at = 0; at < [inner count]; ++at) find_in([inner objectAtIndex:at], name, found);
  }
  static NSString *label_of_pop_up(NSView *view) {
    for (auto const &window : windows_on_screen()) {
      for (auto const &control : window.controls) {
        if (control.kind == "NSPopUpButton" && control.value == utf8([(id)view titleOfSelectedItem]) &&
            control.items.size() == static_cast<std::size_t>([(id)view numberOfItems]) &&
            control.items.front() == utf8([(id)view itemTitleAtIndex:0])) {
          return ns(control.title);
        }
      }
    }
    return @"";
  }
};

PrivateCups *Dialog::service_ = nullptr;

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
  std::vector<std::string> labels;

  for (auto const &control : map().controls) {
    for (auto const &row : control.rows) labels.push_back(row.cells.at(0));
  }
  EXPECT_THAT(labels, IsSupersetOf({"Printer", "Copies", "Document", "Recording", "Image Quality", "Sender Name"}));
  EXPECT_THAT(calls_of([&] { choose(@"Options", @"Recording"); }), ElementsAre("restore", "willShow"));
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
  NSTextField *sender = [HostEditableFields([[dialog_ window] contentView]) lastObject];
  [sender setStringValue:@"Anna Berg"];
  auto const asked = calls_of([&] { [dialog_ print:nil]; });
  EXPECT_THAT(asked, ElementsAre("save", "shouldPrint 1"));
  EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
  EXPECT_EQ(owner_->ends, 1);
  ASSERT_EQ(told().size(), 1u);
  int const job = service_->jobs().back();
  EXPECT_EQ(told().front(), "Job " + std::to_string(job) + " was handed to the queue fax.");
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
  NSTextField *sender = [HostEditableFields([[dialog_ window] contentView]) lastObject];
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
  for (char const *extension : {"Empty", "Raising", "NoLibrary", "Absent"}) {
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
