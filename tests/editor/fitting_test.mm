// Every text of the editor's windows can be read in the language of the environment. One program speaks one language, so
// the test runs once for each.
#include "texts/texts.h"

#import "editor/EditorWindow.h"
#import "editor/EntryPanel.h"
#import "editor/GroupPanel.h"
#import "fitting.h"
#import "host/theme/FaxTheme.h"

#include <gtest/gtest.h>

#include <memory>

// Nobody presses anything.
@interface IdleOwner : NSObject
@end
@implementation IdleOwner
@end

namespace fax::editor {
namespace {

class EditorFitting : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    speak(catalogue_folders());
    theme::start_application(theme::Choice::light);
  }
  void SetUp() override { pool_ = [NSAutoreleasePool new]; }
  void TearDown() override { [pool_ release]; }

  static void expect_fits(NSWindow *window) {
    ASSERT_NE(window, nil);
    for (auto const &fault : test::fitting_report(window)) ADD_FAILURE() << fault;
    NSRect frame = [window frame];
    frame.size = [window minSize];
    if (frame.size.width < 50) return;
    [window setFrame:frame display:NO];
    SCOPED_TRACE("at its smallest");
    for (auto const &fault : test::fitting_report(window)) ADD_FAILURE() << fault;
  }
  static void expect_panel_fits(EditorPanel *panel) {
    expect_fits([panel valueForKey:@"_panel"]);
    [panel release];
  }

  NSAutoreleasePool *pool_ = nil;
};

TEST_F(EditorFitting, TheWindow) {
  IdleOwner *owner = [[[IdleOwner alloc] init] autorelease];
  EditorWindow *window = [[[EditorWindow alloc] initWithOwner:(id)owner] autorelease];
  [window setReleasedWhenClosed:NO];
  expect_fits(window);
}

TEST_F(EditorFitting, ItsPanels) {
  Person known;
  known.id = 1;
  known.name = "Ann";
  known.number = "1";
  for (Person const &person : {Person{}, known})
    expect_panel_fits([[EntryPanel alloc] initWithPerson:person groups:"Board" save:[](auto const &) { return ""; }]);
  Group const new_group, board{1, "Board", {1}};
  auto const contents = std::make_shared<Contents const>();
  for (Group const &group : {new_group, board}) {
    SaveGroup const save = [](auto const &, auto const &) { return ""; };
    expect_panel_fits([[GroupPanel alloc] initWithGroup:group contents:contents save:save]);
  }
}

}  // namespace
}  // namespace fax::editor
