// Every text of every window of the bundle can be read in every language, with the fonts and the look of the print
// dialog, at the windows' first and smallest sizes.
#import "bundle_fixture.h"

#import "fitting.h"
#import "host/theme/AlertPanel.h"
#import "host/theme/FaxTheme.h"
#include "platform/languages.h"
#include "texts_in_sources.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <thread>

@interface NSObject (FittingTest)
- (void)lookupAddressBook:(id)sender;
- (void)showPCAddressProperty:(id)sender;
@end

namespace {

using test::utf8;

// The sample queue's PPD as print services hand it out in a language.
ppd_file_t *ppd_in(std::string const &language) {
  std::string const territory = language == "pt-BR" ? "pt_BR" : language == "zh-Hans" ? "zh_CN" : language;
  setenv("LC_ALL", (territory + ".UTF-8").c_str(), 1);
  // The print service's library asks for the language once a thread, and for the variable only in the locale "C". It
  // reads no other language from the file.
  std::string const locale = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "C");
  ppd_file_t *ppd = nullptr;
  std::thread([&] {
    ppd = ppdOpenFile(SAMPLE_PPD);
    ppdLocalize(ppd);
  }).join();
  std::setlocale(LC_ALL, locale.c_str());
  setenv("LC_ALL", "C.UTF-8", 1);
  ppdMarkDefaults(ppd);
  return ppd;
}

NSWindow *window_around(NSView *view) {
  NSWindow *window = [[[NSWindow alloc] initWithContentRect:[view frame]
                                                  styleMask:NSTitledWindowMask
                                                    backing:NSBackingStoreBuffered
                                                      defer:YES] autorelease];
  [window setReleasedWhenClosed:NO];
  [[window contentView] addSubview:view];
  return window;
}

class Fitting : public test::BundleTest, public testing::WithParamInterface<std::string> {
 protected:
  static void SetUpTestSuite() { fax::theme::start_application(fax::theme::Choice::light); }
  Fitting() : localised_(ppd_in(GetParam())) {
    setenv("DIRECTFAX_ADDRESSBOOKS", std::filesystem::temp_directory_path().c_str(), 1);
    [NSUserDefaults setUserLanguages:[NSArray arrayWithObject:test::ns(GetParam())]];
    host_->ppd = localised_;
    in_modal_session([] {});
  }
  ~Fitting() override { ppdClose(localised_); }

  NSString *text(std::string const &key) {
    return [test::bundle() korlumLocalizedStringForKey:test::ns(key) value:nil table:@"Localizable1"];
  }

  void expect_fits(NSWindow *window) {
    for (auto const &fault : test::fitting_report(window)) ADD_FAILURE() << fault;
  }
  void expect_fits_at_all_sizes(NSWindow *window) {
    expect_fits(window);
    NSRect const first = [window frame];
    [window setFrame:NSMakeRect(first.origin.x, first.origin.y, [window minSize].width, [window minSize].height)
             display:NO];
    SCOPED_TRACE("at its smallest");
    expect_fits(window);
    [window setFrame:first display:NO];
  }

  // The line below the fields: what the view may say there, and, bold, what a field takes.
  void expect_hints_fit(id view, char const *source) {
    NSTextField *label = [view valueForKey:@"hintLabel"];
    for (auto const &key : test::hints_of(source)) EXPECT_EQ(test::fitting_fault(label, text(key), false), "");
    expect_tips_fit(view, label);
  }
  void expect_tips_fit(NSView *view, NSTextField *label) {
    if ([view isKindOfClass:[NSTextField class]] && [(NSTextField *)view isEditable]) {
      EXPECT_EQ(test::fitting_fault(label, [view toolTip], true), "");
    }
    NSMutableArray *inner = [NSMutableArray arrayWithArray:[view subviews]];
    if ([view isKindOfClass:[NSTabView class]])
      [inner addObjectsFromArray:[[(NSTabView *)view tabViewItems] valueForKey:@"view"]];
    for (NSUInteger at = 0; at < [inner count]; ++at) expect_tips_fit([inner objectAtIndex:at], label);
  }

  ppd_file_t *localised_;
};

TEST_P(Fitting, Panel) {
  id panel = this->panel();
  NSView *view = [panel panelView];
  std::string const title = utf8([[view valueForKey:@"imageQualityTitle"] stringValue]);
  EXPECT_EQ(title == "Image Quality", GetParam() == "en") << "the queue's own texts are translated too";
  expect_fits(window_around(view));
  expect_hints_fit(view, "plugin/DirectFaxPdeView.mm");
}

TEST_P(Fitting, Dialogs) {
  id panel = this->panel();
  [panel shouldPrint];
  id fax = [panel valueForKey:@"detailedFaxSettingContoller"];
  id book = [fax valueForKey:@"addressBookController"];
  NSWindow *dialog = [fax valueForKey:@"faxSettingPanel"];
  expect_fits_at_all_sizes(dialog);
  expect_hints_fit([dialog contentView], "faxsetting/FaxSettingView.mm");

  NSArrayController *list = [book valueForKey:@"pcAddressList"];
  for (NSString *number : {@"1", @"Group"}) {
    [fax lookupAddressBook:nil];
    [list addObject:[NSMutableDictionary dictionaryWithObjectsAndKeys:@"Ann", @"name", number, @"phoneNumber", nil]];
    [list setSelectionIndex:0];
    [book showPCAddressProperty:nil];
  }
  NSWindow *books = [book valueForKey:@"addressBookSettingPanel"];
  expect_fits_at_all_sizes(books);
  expect_hints_fit([books contentView], "addressbook/AddressBookView.mm");
  NSTableView *table = [[books contentView] valueForKey:@"pcTable"];
  NSCell *number = [[[[table tableColumns] objectAtIndex:1] dataCell] copy];
  [number setObjectValue:@"Group"];
  EXPECT_EQ(utf8([number stringValue]), utf8(text("Group")));
  [number release];
  for (NSString *properties : {@"userPropertyPanel", @"groupPropertyPanel"})
    expect_fits_at_all_sizes([book valueForKey:properties]);
  [fax stopSending:nil];
}

TEST_P(Fitting, Alerts) {
  for (std::string folder : {"addressbook", "faxsetting", "plugin"}) {
    for (auto const &key : test::texts_of_alerts(folder)) {
      NSAlert *alert = [[[NSAlert alloc] init] autorelease];
      [alert setMessageText:text(key)];
      [alert setInformativeText:text(key)];
      for (char const *button : {"OK", "Cancel"}) [alert addButtonWithTitle:text(button)];
      FaxAlertPanel *panel = [[[FaxAlertPanel alloc] initWithAlert:alert] autorelease];
      expect_fits(panel);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, Fitting, testing::ValuesIn(fax::known_languages()), [](auto const &info) {
  std::string name;
  for (char letter : info.param)
    if (letter != '-') name += letter;
  return name;
});

}  // namespace
