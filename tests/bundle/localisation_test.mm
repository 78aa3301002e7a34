// Translation of controls and their binding to PPD options.
#import "bundle_fixture.h"

#include <filesystem>
#include <fstream>
#include <stdlib.h>

// Subclasses are walked as general views.
@interface TestButton : NSButton
@end
@implementation TestButton
@end

namespace {

using test::utf8;

// A bundle folder of its own with string tables, removed at the end.
class TextBundle {
 public:
  TextBundle() {
    char folder[] = "/tmp/directfax-texts-XXXXXX";
    path_ = std::string(mkdtemp(folder)) + ".bundle";
    std::filesystem::rename(folder, path_);
    std::string const texts = path_ + "/Resources/English.lproj";
    std::filesystem::create_directories(texts);
    std::ofstream(texts + "/Localizable.strings")
        << "\"both\" = \"default both\"; \"only default\" = \"default only\"; \"same\" = \"default same\";\n";
    std::ofstream(texts + "/Localizable3.strings")
        << "\"both\" = \"model both\"; \"only model\" = \"model only\"; \"same\" = \"same\";\n";
    bundle_ = [[NSBundle bundleWithPath:test::ns(path_)] retain];
  }
  ~TextBundle() {
    [bundle_ release];
    std::filesystem::remove_all(path_);
  }
  NSBundle *get() const { return bundle_; }

 private:
  std::string path_;
  NSBundle *bundle_;
};

class LocalisationTest : public test::BundleTest {
 protected:
  LocalisationTest() : ppd_three_("*QXLocalizableFileIndex: \"3\"\n") {
    view_ = [[test::class_named("BasicPdeView") alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)];
    [view_ setBundle:texts_.get()];
    [view_ setPPD:ppd_three_.get()];
  }
  ~LocalisationTest() override { [view_ release]; }

  template <typename View> View *made() {
    return [[[View alloc] initWithFrame:NSMakeRect(0, 0, 100, 24)] autorelease];
  }
  NSTextField *label(NSString *text) {
    NSTextField *field = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 100, 24)] autorelease];
    [field setStringValue:text];
    [field setEditable:NO];
    return field;
  }

  TextBundle texts_;
  test::Ppd ppd_three_;
  id view_;
};

TEST_F(LocalisationTest, ThePrintersTableComesFirst) {
  struct {
    NSString *key;
    char const *with_table, *without;
  } const cases[] = {
      {@"both", "model both", "default both"},
      {@"only default", "default only", "default only"},
      {@"only model", "model only", "only model"},
      {@"same", "default same", "default same"},
      {@"neither", "neither", "neither"},
  };
  for (auto const &row : cases) {
    EXPECT_EQ(utf8([texts_.get() korlumLocalizedStringForKey:row.key value:nil table:@"Localizable3"]), row.with_table);
    EXPECT_EQ(utf8([texts_.get() korlumLocalizedStringForKey:row.key value:nil table:nil]), row.without);
    NSTextField *field = label(row.key);
    [view_ localizeControl:field];
    EXPECT_EQ(utf8([field stringValue]), row.with_table);
  }
}

TEST_F(LocalisationTest, APpdWithoutATableKeepsTheEarlierOne) {
  [view_ setPPD:ppd_.get()];
  EXPECT_EQ(utf8([view_ valueForKey:@"localizedFileName"]), "Localizable3");
  id fresh = [[[test::class_named("BasicPdeView") alloc] initWithFrame:NSZeroRect] autorelease];
  [fresh setPPD:ppd_.get()];
  EXPECT_EQ([fresh valueForKey:@"localizedFileName"], nil);
}

TEST_F(LocalisationTest, ControlsAreWalkedByTheirExactClass) {
  NSTextField *typed = label(@"both");
  [typed setEditable:YES];
  [view_ localizeControl:typed];
  EXPECT_EQ(utf8([typed stringValue]), "both");

  NSBox *box = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [box setTitle:@"both"];
  NSButton *inside = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 50, 20)] autorelease];
  [inside setTitle:@"only model"];
  [[box contentView] addSubview:inside];
  [view_ localizeControl:box];
  EXPECT_EQ(utf8([box title]), "model both");
  EXPECT_EQ(utf8([inside title]), "model only");

  TestButton *button = [[[TestButton alloc] initWithFrame:NSMakeRect(0, 0, 50, 20)] autorelease];
  [button setTitle:@"both"];
  NSTextField *within = label(@"only default");
  [button addSubview:within];
  [view_ localizeControl:button];
  EXPECT_EQ(utf8([button title]), "model both");
  EXPECT_EQ(utf8([within stringValue]), "default only");

  NSPopUpButton *popup = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 22) pullsDown:NO] autorelease];
  [popup addItemWithTitle:@"both"];
  [popup addItemWithTitle:@"neither"];
  [view_ localizeControl:popup];
  EXPECT_EQ(utf8([[popup itemTitles] componentsJoinedByString:@"|"]), "model both|neither");

  NSTabView *tabs = [[[NSTabView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  NSTabViewItem *item = [[[NSTabViewItem alloc] initWithIdentifier:@"x"] autorelease];
  [item setLabel:@"both"];
  NSView *page = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  NSTextField *on_page = label(@"only model");
  [page addSubview:on_page];
  [item setView:page];
  [tabs addTabViewItem:item];
  [view_ localizeControl:tabs];
  EXPECT_EQ(utf8([item label]), "model both");
  EXPECT_EQ(utf8([on_page stringValue]), "model only");

  NSTableView *table = [[[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  NSTableColumn *column = [[[NSTableColumn alloc] initWithIdentifier:@"x"] autorelease];
  [[column headerCell] setStringValue:@"both"];
  [table addTableColumn:column];
  NSScrollView *scroller = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [scroller setDocumentView:table];
  [view_ localizeControl:scroller];
  EXPECT_EQ(utf8([[column headerCell] stringValue]), "model both");
}

TEST_F(LocalisationTest, AllControlsIncludesTheWindowsTitle) {
  NSWindow *window = [[[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                  styleMask:NSTitledWindowMask
                                                    backing:NSBackingStoreBuffered
                                                      defer:YES] autorelease];
  [window setTitle:@"both"];
  [window setContentView:view_];
  NSTextField *inside = label(@"only default");
  [view_ addSubview:inside];
  [view_ localizeAllControls];
  EXPECT_EQ(utf8([window title]), "model both");
  EXPECT_EQ(utf8([inside stringValue]), "default only");
  [window setReleasedWhenClosed:NO];
}

TEST_F(LocalisationTest, APopUpIsFilledFromItsOption) {
  test::Ppd twice("*OpenUI *QXTwice/Twice: PickOne\n*DefaultQXTwice: A\n*QXTwice A/Same: \"\"\n*QXTwice B/Same: \"\"\n"
                  "*QXTwice C/Other: \"\"\n*CloseUI: *QXTwice\n");
  [view_ setPPD:twice.get()];
  NSPopUpButton *popup = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 22) pullsDown:NO] autorelease];
  [popup addItemWithTitle:@"left over"];
  [view_ localizePPDControl:popup withKeyword:"QXTwice"];
  ASSERT_EQ([popup numberOfItems], 3);
  std::string choices;
  for (int i = 0; i < 3; i++) choices += utf8([[popup itemAtIndex:i] representedObject]);
  EXPECT_EQ(choices, "ABC");
  EXPECT_EQ(utf8([view_ ppdKeywordForObject:popup]), "QXTwice");
  EXPECT_EQ([view_ ppdKeywordForObject:@"something else"], nil);

  [view_ setValue:@"Other" forPPDKeyword:@"QXTwice"];
  EXPECT_EQ([popup indexOfSelectedItem], 2);
  [view_ setEnabled:NO forPPDKeyword:@"QXTwice"];
  EXPECT_FALSE([popup isEnabled]);
  [view_ setEnabled:YES forPPDKeyword:@"QXNobody"];
}

TEST_F(LocalisationTest, ThePpdLacksTheOption) {
  NSPopUpButton *popup = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 22) pullsDown:NO] autorelease];
  [popup addItemWithTitle:@"stays"];
  [view_ localizePPDControl:popup withKeyword:"QXMissing"];
  EXPECT_EQ([popup numberOfItems], 1);
  EXPECT_EQ(utf8([view_ ppdKeywordForObject:popup]), "QXMissing") << "bound before the option is looked up";
  NSTextField *field = label(@"stays");
  [view_ localizePPDControl:field withKeyword:"QXMissing"];
  EXPECT_EQ(utf8([field stringValue]), "stays");
  [view_ localizePPDControl:field withKeyword:"QXFaxCoverPageMode"];
  EXPECT_EQ(utf8([field stringValue]), "Cover Page");
  [view_ setPPD:NULL];
  [view_ localizePPDPopup:popup withKeyword:"QXFaxCoverPageMode"];
  EXPECT_EQ([popup numberOfItems], 1);
}

}  // namespace
