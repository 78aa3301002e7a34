// What a document written by Xcode becomes: fonts, labels, tabs, keys, bindings.
#import "fixture.h"

#include <gtest/gtest.h>

#include <string>

@interface NibOwner : NSObject {
 @public
  id window;
}
@end

@implementation NibOwner
- (void)setValue:(id)value forUndefinedKey:(NSString *)key {
}
@end

@interface CountedController : NSArrayController
@end

namespace {

int controllers = 0;

class DocumentTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(panel = open_panel(), nil); }
  void TearDown() override {
    [panel->window orderOut:nil];
    [pool release];
  }
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = nil;
};

TEST_F(DocumentTest, FontsHaveTheSizeOfTheirName) {
  EXPECT_EQ([[panel->label font] pointSize], [NSFont systemFontSize]);
  EXPECT_EQ([[panel->boldLabel font] pointSize], [NSFont systemFontSize]);
  EXPECT_EQ([[panel->smallLabel font] pointSize], [NSFont smallSystemFontSize]);
  EXPECT_EQ([[panel->nameField font] pointSize], [NSFont systemFontSize]);
  NSFontManager *fonts = [NSFontManager sharedFontManager];
  EXPECT_TRUE([fonts traitsOfFont:[panel->boldLabel font]] & NSBoldFontMask);
  EXPECT_FALSE([fonts traitsOfFont:[panel->label font]] & NSBoldFontMask);
}

TEST_F(DocumentTest, LabelsAreNotEdited) {
  EXPECT_FALSE([panel->label isEditable]);
  EXPECT_FALSE([panel->label isSelectable]);
  EXPECT_FALSE([panel->smallLabel isEditable]);
  EXPECT_TRUE([panel->smallLabel isSelectable]);
  EXPECT_TRUE([panel->nameField isEditable]);
}

TEST_F(DocumentTest, TheMarkedTabIsSelected) {
  EXPECT_EQ([panel->pages indexOfTabViewItem:[panel->pages selectedTabViewItem]], 1);
}

TEST_F(DocumentTest, OneOfTheTabsIsAlwaysSelected) {
  PanelOwner *plain = open_panel(@"PlainPanel", false);
  ASSERT_NE(plain, nil) << "in Base.lproj";
  EXPECT_EQ([plain->pages indexOfTabViewItem:[plain->pages selectedTabViewItem]], 0);
  [plain->window orderOut:nil];
}

TEST_F(DocumentTest, SelectingTheSelectedTabTellsNobody) {
  panel->selections = 0;
  [panel->pages selectTabViewItemAtIndex:1];
  EXPECT_EQ(panel->selections, 0);
  [panel->pages selectTabViewItemAtIndex:0];
  EXPECT_EQ(panel->selections, 1);
}

TEST_F(DocumentTest, TabKeyGoesAlongTheKeyLoop) {
  EXPECT_EQ([panel->window initialFirstResponder], panel->nameField);
  [panel->window makeFirstResponder:panel->nameField];
  press(panel->window, '\t');
  EXPECT_NE([panel->timeField currentEditor], nil);
  press(panel->window, '\t');
  EXPECT_NE([panel->nameField currentEditor], nil);
}

TEST_F(DocumentTest, ReturnAndEscapePressTheirButtons) {
  [panel setValue:@"Fax" forKey:@"title"];
  [panel setValue:[NSNumber numberWithBool:YES] forKey:@"header"];
  [panel->window makeFirstResponder:panel->window];
  press(panel->window, 0x1b);
  EXPECT_EQ(panel->refused, 1);
  press(panel->window, '\r');
  EXPECT_EQ(panel->accepted, 1);
  [panel setValue:[NSNumber numberWithBool:NO] forKey:@"header"];
  press(panel->window, '\r');
  EXPECT_EQ(panel->accepted, 1) << "a disabled button is not pressed";
}

TEST_F(DocumentTest, EscapePressesItsButtonFromAField) {
  [panel->window makeFirstResponder:panel->nameField];
  type(panel->window, "Fax");
  press(panel->window, 0x1b);
  EXPECT_EQ(panel->refused, 1);
}

// The keys come from the X server: this is what a user does in a dialog.
TEST_F(DocumentTest, KeysPressTheButtonsOfAModalWindow) {
  struct Keys {
    char const *keys;
    int accepted, refused;
  };
  [panel setValue:[NSNumber numberWithBool:YES] forKey:@"header"];
  // The windows of other tests may not have left the screen yet.
  [panel->window setTitle:@"Modal panel"];
  for (Keys const &test : {Keys{"Escape", 0, 1}, Keys{"F A X Return", 1, 1}, Keys{"Escape", 1, 2}}) {
    SCOPED_TRACE(test.keys);
    [panel->window makeFirstResponder:panel->nameField];
    send_keys(panel->window, test.keys);
    run_modal(panel->window);
    EXPECT_EQ(panel->accepted, test.accepted);
    EXPECT_EQ(panel->refused, test.refused);
  }
  EXPECT_EQ(std::string{[panel->title UTF8String]}, "FAX");
}

TEST_F(DocumentTest, EnabledNeedsAllItsConditions) {
  EXPECT_FALSE([panel->okButton isEnabled]);
  [panel setValue:[NSNumber numberWithBool:YES] forKey:@"header"];
  EXPECT_FALSE([panel->okButton isEnabled]);
  [panel setValue:@"Fax" forKey:@"title"];
  EXPECT_TRUE([panel->okButton isEnabled]);
  [panel setValue:[NSNumber numberWithBool:NO] forKey:@"header"];
  EXPECT_FALSE([panel->okButton isEnabled]);
}

TEST_F(DocumentTest, CheckBoxWritesItsNumber) {
  [panel->checkBox performClick:nil];
  EXPECT_TRUE([panel->header boolValue]);
  [panel setValue:[NSNumber numberWithBool:NO] forKey:@"header"];
  EXPECT_EQ([panel->checkBox state], NSOffState);
}

TEST_F(DocumentTest, PopUpShowsItsChoices) {
  EXPECT_EQ([panel->popUp numberOfItems], 2);
  [[panel->popUp menu] performActionForItemAtIndex:1];
  EXPECT_EQ(panel->choice, 1);
  [panel setValue:[NSNumber numberWithInt:0] forKey:@"choice"];
  EXPECT_EQ([panel->popUp indexOfSelectedItem], 0);
}

TEST_F(DocumentTest, NothingIsShownForNil) {
  [panel setValue:@"Fax" forKey:@"title"];
  EXPECT_EQ(std::string{[[panel->nameField stringValue] UTF8String]}, "Fax");
  [panel setValue:nil forKey:@"title"];
  EXPECT_EQ(std::string{[[panel->nameField stringValue] UTF8String]}, "");
}

TEST(BundleNib, ArrayKeepsTheObjects) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NibOwner *owner = [[[NibOwner alloc] init] autorelease];
  NSArray *objects = nil;
  {
    NSAutoreleasePool *inner = [NSAutoreleasePool new];
    ASSERT_TRUE([fixture_bundle() loadNibNamed:@"Counted" owner:owner topLevelObjects:&objects]);
    [objects retain];
    [inner release];
  }
  EXPECT_EQ([objects count], 1u);
  EXPECT_EQ(controllers, 1);
  EXPECT_EQ(owner->window, [objects lastObject]);
  [objects release];
  EXPECT_EQ(controllers, 0);
  [pool release];
}

// The menu of a pop-up from Xcode; its width is what the window on the screen gets.
TEST(MenuTitle, MenuWithoutATitleHasItsItemsWidth) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGFloat widths[2];
  for (int titled = 0; titled < 2; ++titled) {
    NSMenu *menu = [[[NSMenu alloc] initWithTitle:titled ? @"" : nil] autorelease];
    [menu addItemWithTitle:@"Standard" action:NULL keyEquivalent:@""];
    [[menu menuRepresentation] sizeToFit];
    widths[titled] = [[menu menuRepresentation] frame].size.width;
  }
  EXPECT_GT(widths[0], 10);
  EXPECT_EQ(widths[0], widths[1]);
  [pool release];
}

TEST(BundleNib, MissingNibIsNo) {
  NSArray *objects = nil;
  EXPECT_FALSE([fixture_bundle() loadNibNamed:@"Nowhere" owner:nil topLevelObjects:&objects]);
  EXPECT_FALSE([fixture_bundle() loadNibNamed:@"" owner:nil topLevelObjects:nullptr]);
  EXPECT_EQ(objects, nil);
}

}  // namespace

@implementation CountedController
- (id)initWithCoder:(NSCoder *)coder {
  ++controllers;
  return [super initWithCoder:coder];
}
- (void)dealloc {
  --controllers;
  [super dealloc];
}
@end
