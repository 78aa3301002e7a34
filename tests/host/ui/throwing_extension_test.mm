// An extension that fails wherever the host, the toolkit or a timer enters it: the dialog tells, stays, and prints.
#include <gmock/gmock.h>

#include "dialog_fixture.h"

#import "toolkit/text.h"

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

namespace fax::host {

using namespace toolkit;

namespace {

// How an exception is thrown, and what of it is told.
struct Kind {
  NSString *answer;
  char const *text;
};

struct Operation {
  NSString *name;    // as the extension notes it
  char const *said;  // the operation, or else the extension
};

class ThrowingExtension : public Dialog {
 protected:
  Kind const kinds_[3] = {{@"raise", "told to raise in"}, {@"throw", "told to throw in"}, {@"throw a number", ": i"}};

  // Everything that has the host ask the extension, and a click and a choice in its panel.
  void use_everything() {
    click_beside_the_controls();
    come_round();
    if (control(@"Image Quality")) choose(@"Image Quality", @"Fine");
    choose(@"Options", @"Summary");
    choose(@"Options", @"Printer Features");
    if (control(@"Two-Sided")) choose(@"Two-Sided", @"Long Edge");
    choose_first_panel();
    [dialog_ help:nil];
    auto const jobs = service_->jobs();
    if ([answers_ objectForKey:@"save"] || [answers_ objectForKey:@"shouldPrint"]) {
      [dialog_ print:nil];
      EXPECT_EQ(service_->jobs(), jobs) << "nobody agreed to this job";
    }
    come_round();
  }

  void choose_first_panel() {
    NSPopUpButton *const options = control(@"Options");
    [options selectItemAtIndex:0];
    [NSApp sendAction:[options action] to:[options target] from:options];
  }

  void click_beside_the_controls() {
    NSView *const view = [control(@"Image Quality") superview];
    if (!view) return;
    NSPoint const corner = [view convertPoint:NSMakePoint(2, 2) toView:nil];
    [NSApp sendEvent:[NSEvent mouseEventWithType:NSLeftMouseDown
                                        location:corner
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[[view window] windowNumber]
                                         context:nil
                                     eventNumber:1
                                      clickCount:1
                                        pressure:1]];
  }

  void expect_survival(Operation const &operation, Kind const &kind) {
    SCOPED_TRACE(utf8(operation.name) + ": " + utf8(kind.answer));
    NSAutoreleasePool *const pool = [NSAutoreleasePool new];
    [calls_ removeAllObjects];
    [answers_ setObject:kind.answer forKey:operation.name];
    open();
    use_everything();
    EXPECT_THAT(calls(), Contains(testing::StartsWith(utf8(operation.name)))) << "was never asked";
    EXPECT_THAT(told(), Contains(AllOf(HasSubstr(operation.said), HasSubstr(kind.text))));
    [answers_ removeObjectForKey:operation.name];
    auto const jobs = service_->jobs().size();
    [dialog_ print:nil];
    EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
    EXPECT_EQ(service_->jobs().size(), jobs + 1);
    [dialog_ release];
    dialog_ = nil;
    [alerts_->told removeAllObjects];
    [pool release];
  }
};

TEST_F(ThrowingExtension, IsToldOfByTheOperationAndTheDialogGoesOn) {
  for (Operation const &operation : {
           Operation{@"initWithBundle", "Recording.bundle"},
           Operation{@"PDEPanelsForType", "Recording.bundle"},
           Operation{@"supportedPPDOptionKeys", "supportedPPDOptionKeys"},
           Operation{@"panelName", "panelName"},
           Operation{@"panelView", "panelView"},
           Operation{@"restore", "restoreValuesAndReturnError:"},
           Operation{@"willShow", "willShow"},
           Operation{@"shouldHide", "shouldHide"},
           Operation{@"save", "saveValuesAndReturnError:"},
           Operation{@"summaryInfo", "summaryInfo"},
           Operation{@"PPDOptionKeyValueDidChange", "PPDOptionKeyValueDidChange:ppdChoice:"},
           Operation{@"shouldShowHelp", "shouldShowHelp"},
           Operation{@"shouldPrint", "shouldPrint"},
           Operation{@"chose", "extension failed in choose:"},
           Operation{@"mouseDown", "The dialog failed"},
       })
    for (Kind const &kind : kinds_) expect_survival(operation, kind);
}

// The toolkit itself keeps its own kind of exception from leaving a timer, and only logs it.
TEST_F(ThrowingExtension, ATimerThatThrowsEndsAndIsToldOf) {
  expect_survival({@"tick", "The dialog failed"}, kinds_[1]);
  expect_survival({@"tick", "The dialog failed"}, kinds_[2]);
}

TEST_F(ThrowingExtension, InItsLastMomentHarmsNobody) {
  for (Kind const &kind : kinds_) {
    [answers_ setObject:kind.answer forKey:@"dealloc"];
    NSAutoreleasePool *const opening = [NSAutoreleasePool new];
    open();
    [opening release];
    auto const asked = calls_of([&] {
      NSAutoreleasePool *const pool = [NSAutoreleasePool new];
      choose(@"Printer", @"Queue plain");
      [pool release];
    });
    EXPECT_THAT(asked, Contains("dealloc"));
    [answers_ removeObjectForKey:@"dealloc"];
    [dialog_ print:nil];
    EXPECT_EQ([dialog_ exitCode], ExitCode::ok);
    [dialog_ release];
    dialog_ = nil;
  }
}

}  // namespace
}  // namespace fax::host
