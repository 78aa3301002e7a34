// The keys of a Linux desktop, on stock controls.
#import "fixture.h"

#include <gtest/gtest.h>

#include <string>

@interface UpdateCount : NSObject {
 @public
  int count;
}
- (void)windowDidUpdate:(NSNotification *)notification;
@end

@implementation UpdateCount
- (void)windowDidUpdate:(NSNotification *)notification {
  ++count;
}
@end

namespace {

std::string text(NSString *string) { return string != nil ? [string UTF8String] : "(nil)"; }

class KeysTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(panel = open_panel(), nil); }
  void TearDown() override {
    [panel->window orderOut:nil];
    [pool release];
  }
  // Real keys; Escape presses the panel's Cancel button, which ends the modal session.
  void work(std::string const &keys) {
    send_keys(panel->window, (keys + " Escape").c_str());
    run_modal(panel->window);
  }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = nil;
};

struct TextCase {
  char const *keys;   // as xdotool names them
  char const *after;  // in the field and in what it is bound to
};

class TextKeys : public KeysTest, public testing::WithParamInterface<TextCase> {};

TEST_P(TextKeys, DoAsTheyDoEverywhere) {
  TextCase const &test = GetParam();
  [panel->window makeFirstResponder:panel->nameField];
  work(test.keys);
  EXPECT_EQ(text([panel->nameField stringValue]), test.after);
  EXPECT_EQ(text(panel->title != nil ? panel->title : @""), test.after);
}

INSTANTIATE_TEST_SUITE_P(Cases, TextKeys,
                         testing::Values(TextCase{"F a x ctrl+a ctrl+x", ""},
                                         TextCase{"F a x ctrl+a ctrl+x ctrl+v ctrl+v", "FaxFax"},
                                         TextCase{"F a x ctrl+a ctrl+c ctrl+v ctrl+v", "FaxFax"},
                                         TextCase{"F a x ctrl+a ctrl+x ctrl+z", "Fax"},
                                         TextCase{"F a x ctrl+a ctrl+x ctrl+z ctrl+y", ""},
                                         TextCase{"F a x ctrl+z", ""}, TextCase{"F a x ctrl+z ctrl+z ctrl+shift+z", "Fax"},
                                         TextCase{"F a x ctrl+x", "Fax"}));

TEST_F(KeysTest, WhatIsSecretIsNotCopied) {
  NSPasteboard *board = [NSPasteboard generalPasteboard];
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:@"before" forType:NSStringPboardType];
  NSSecureTextField *field =
      [[[NSSecureTextField alloc] initWithFrame:NSMakeRect(0, 0, 90, 22)] autorelease];
  [[panel->window contentView] addSubview:field];
  [panel->window makeFirstResponder:field];
  type(panel->window, "0427");
  for (unichar letter : {'a', 'c', 'x'}) press(panel->window, letter, NSControlKeyMask);
  EXPECT_EQ(text([[field currentEditor] string]), "0427");
  EXPECT_EQ(text([board stringForType:NSStringPboardType]), "before");
  [field removeFromSuperview];
}

TEST_F(KeysTest, LettersAndReturnWorkAPopUp) {
  NSPopUpButton *popUp = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 120, 24) pullsDown:NO] autorelease];
  [popUp setAutoenablesItems:NO];
  [popUp addItemsWithTitles:[NSArray arrayWithObjects:@"None", @"Standard", @"Super", @"Never", nil]];
  [[popUp itemAtIndex:3] setEnabled:NO];
  [[panel->window contentView] addSubview:popUp];
  [panel->window makeFirstResponder:popUp];
  NSWindow *const menu = [[[popUp menu] menuRepresentation] window];
  type(panel->window, "su");
  EXPECT_EQ(text([popUp titleOfSelectedItem]), "Super");
  type(panel->window, "x");
  EXPECT_EQ(text([popUp titleOfSelectedItem]), "Super") << "nothing begins with it";
  press(panel->window, '\r');
  EXPECT_TRUE([menu isVisible]) << "and no button was pressed";
  EXPECT_EQ(panel->accepted, 0);
  press(panel->window, 'n');
  press(panel->window, NSEndFunctionKey);
  press(panel->window, NSUpArrowFunctionKey);
  press(panel->window, '\r');
  EXPECT_FALSE([menu isVisible]);
  EXPECT_EQ(text([popUp titleOfSelectedItem]), "Standard");
  press(panel->window, ' ');
  press(panel->window, 'n');
  press(panel->window, 0x1b);
  EXPECT_FALSE([menu isVisible]);
  EXPECT_EQ(text([popUp titleOfSelectedItem]), "Standard");
  EXPECT_EQ(panel->refused, 0);
  [popUp removeFromSuperview];
}

TEST_F(KeysTest, ReturnPressesTheButtonWithTheFocus) {
  [panel->window makeFirstResponder:panel->cancelButton];
  press(panel->window, '\r');
  EXPECT_EQ(panel->refused, 1);
  EXPECT_EQ(panel->accepted, 0);
}

TEST_F(KeysTest, ControlAndPageKeysGoThroughTheTabs) {
  [panel->pages selectTabViewItemAtIndex:0];
  work("ctrl+Next");
  EXPECT_EQ(text([[panel->pages selectedTabViewItem] label]), "Second");
  work("ctrl+Next");
  EXPECT_EQ(text([[panel->pages selectedTabViewItem] label]), "First") << "round again";
  work("ctrl+Prior");
  EXPECT_EQ(text([[panel->pages selectedTabViewItem] label]), "Second");
}

TEST_F(KeysTest, TheSecondButtonOfAnAlertHasEscape) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [alert addButtonWithTitle:@"OK"];
  EXPECT_EQ(text([[alert addButtonWithTitle:@"Abbrechen"] keyEquivalent]), "\033");
}

TEST_F(KeysTest, WindowsAreUpdatedAfterEachEvent) {
  UpdateCount *count = [[[UpdateCount alloc] init] autorelease];
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  [center addObserver:count selector:@selector(windowDidUpdate:) name:NSWindowDidUpdateNotification object:panel->window];
  work("a");
  [center removeObserver:count];
  EXPECT_GE(count->count, 2) << "the key down and up";
}

}  // namespace
