// The fax panel: its options, its sender's name, what it keeps and what it tells.
#import "bundle_fixture.h"

#include <cstdlib>

namespace {

using test::utf8;

NSString *const kSenderKey = @"com.norvalt.tk.o.print.printsettings.DFaxCoverSenderName";

class PanelTest : public test::BundleTest {
 protected:
  id control(id panel, NSString *name) { return [[panel valueForKey:@"directFaxView"] valueForKey:name]; }

  // As a person who picks an item from a pop-up.
  void choose(id panel, NSString *popup_name, NSString *title) {
    NSPopUpButton *popup = control(panel, popup_name);
    [popup selectItemWithTitle:title];
    [panel uiValueDidChange:popup];
  }

  void store(NSString *value) {
    PMPrintSettingsSetValue(host_->settings, (CFStringRef)kSenderKey, (CFTypeRef)value, false);
  }

  std::string stored() {
    CFTypeRef value = NULL;
    PMPrintSettingsGetValue(host_->settings, (CFStringRef)kSenderKey, &value);
    return utf8((NSString *)value);
  }
};

TEST_F(PanelTest, TheFactoryServesOnePanelTypeToTheLetter) {
  id factory = [[[test::class_named("DirectFaxPdePlugin") alloc] init] autorelease];
  EXPECT_TRUE([factory initWithBundle:test::bundle()]);
  EXPECT_TRUE([factory initWithBundle:[NSBundle mainBundle]]);
  EXPECT_EQ([factory valueForKey:@"theBundle"], test::bundle()) << "the first bundle stays";
  EXPECT_EQ([[factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host_] count], 1u);
  NSArray *other = [factory PDEPanelsForType:@"bdb091f4-e57f-11d3-b5cc-0050e4603277" withHostInfo:host_];
  ASSERT_NE(other, nil);
  EXPECT_EQ([other count], 0u);
}

TEST_F(PanelTest, TheBasePanelHasAnAnswerToEveryQuestion) {
  test::Ppd ppd("*QXLocalizableFileIndex: \"12\"\n");
  host_->ppd = ppd.get();
  id base = [[[test::class_named("BasicPdeInterface") alloc] initWithCallback:host_
                                                                    andBundle:test::bundle()] autorelease];
  EXPECT_EQ(utf8([base valueForKey:@"localizedFileName"]), "Localizable12");
  EXPECT_EQ(utf8([base panelName]), "Fax Settings");
  EXPECT_EQ([base panelName], [base panelName]);
  EXPECT_EQ(utf8([base panelKind]), "com.norvalt.tk.o.pde.vexolinddirectfax");
  EXPECT_EQ([base panelView], nil);
  EXPECT_EQ([base supportedPPDOptionKeys], nil);
  EXPECT_EQ([base summaryInfo], nil);
  EXPECT_TRUE([base shouldHide]);
  EXPECT_TRUE([base shouldPrint]);
  EXPECT_TRUE([base shouldShowHelp]);
  NSError *error = (NSError *)0x1;
  EXPECT_TRUE([base saveValuesAndReturnError:&error]);
  EXPECT_TRUE([base restoreValuesAndReturnError:&error]);
  EXPECT_EQ(error, (NSError *)0x1);
}

TEST_F(PanelTest, ThePanelIsNamedByThePpdsGroup) {
  EXPECT_EQ(utf8([panel() panelName]), "Fax Options");
  test::Ppd without_group("", "");
  host_->ppd = without_group.get();
  EXPECT_EQ(utf8([panel() panelName]), "Fax Settings");
  host_->ppd = NULL;
  EXPECT_EQ(utf8([panel() panelName]), "Fax Settings");
}

TEST_F(PanelTest, TheSupportedKeysAreTheBundlesListInOrder) {
  EXPECT_EQ(utf8([[panel() supportedPPDOptionKeys] componentsJoinedByString:@" "]),
            "QXFaxImageQuality QXFaxTransmissionReport QXFaxCoverPageMode QXFaxSenderMode");
}

TEST_F(PanelTest, TheViewShowsThePpdsTextsAndIsMadeOnce) {
  id panel = this->panel();
  EXPECT_EQ([panel panelView], [panel panelView]);
  EXPECT_EQ(utf8([control(panel, @"coverPageTitle") stringValue]), "Cover Page");
  NSPopUpButton *popup = control(panel, @"coverPagePopup");
  EXPECT_EQ([popup numberOfItems], 2);
  EXPECT_EQ(utf8([popup titleOfSelectedItem]), "No Cover Page");
  EXPECT_EQ(utf8([[popup selectedItem] representedObject]), "None");
}

TEST_F(PanelTest, CoverPageAndSenderModeEnableTheSenderControls) {
  struct {
    NSString *cover, *mode;
    bool mode_enabled, name_enabled;
  } const cases[] = {
      {@"No Cover Page", @"Enter a Name", false, false},
      {@"Standard Page", @"Enter a Name", true, true},
      {@"Standard Page", @"Name of the Printer", true, false},
      {@"No Cover Page", @"Name of the Printer", false, false},
  };
  id panel = this->panel();
  for (auto const &row : cases) {
    SCOPED_TRACE(utf8(row.cover) + ", " + utf8(row.mode));
    choose(panel, @"coverPagePopup", row.cover);
    choose(panel, @"senderModePopup", row.mode);
    EXPECT_EQ([control(panel, @"senderModePopup") isEnabled], row.mode_enabled);
    EXPECT_EQ([[panel valueForKey:@"senderNameTextField"] isEnabled], row.name_enabled);
  }
}

TEST_F(PanelTest, AChangeIsAskedOfTheHostAndKeptOnlyIfAccepted) {
  id panel = this->panel();
  id feature = [[panel valueForKey:@"ppdFeatures"] objectAtIndex:2];
  choose(panel, @"coverPagePopup", @"Standard Page");
  EXPECT_EQ(utf8([host_->changes lastObject]), "QXFaxCoverPageMode=Standard");
  EXPECT_EQ(utf8([feature curChoice]), "Standard");

  [panel setSenderName:@"before"];
  [[panel valueForKey:@"senderNameTextField"] setStringValue:@"after"];
  host_->accepts = NO;
  choose(panel, @"coverPagePopup", @"No Cover Page");
  EXPECT_EQ(utf8([feature curChoice]), "Standard");
  EXPECT_EQ(utf8([panel senderName]), "before");
  EXPECT_EQ(utf8([[panel valueForKey:@"senderNameTextField"] stringValue]), "after");
}

TEST_F(PanelTest, TheSenderNameIsStoredBySavingOrByAPopUp) {
  id panel = this->panel();
  NSTextField *field = [panel valueForKey:@"senderNameTextField"];
  [field setStringValue:@"Anna"];
  [panel uiValueDidChange:field];
  EXPECT_EQ(utf8([panel senderName]), "") << "typing alone does not store";
  EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
  EXPECT_EQ(utf8([panel senderName]), "Anna");
  EXPECT_EQ(stored(), "Anna");

  [field setStringValue:@"Berta"];
  choose(panel, @"coverPagePopup", @"Standard Page");
  EXPECT_EQ(utf8([panel senderName]), "Berta");
  EXPECT_EQ(stored(), "Anna");

  host_->hasSettings = NO;
  [field setStringValue:@"Cora"];
  EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
  EXPECT_EQ(utf8([panel senderName]), "Cora");
  EXPECT_EQ(stored(), "Anna");
}

TEST_F(PanelTest, ARefusedSenderNameGoesBackToTheLastOne) {
  id panel = this->panel();
  NSTextField *field = [panel valueForKey:@"senderNameTextField"];
  [panel setSenderName:@"Anna"];
  for (NSString *bad : {@"J\u00fcrgen", @"a\tb", @"1234567890123456789012345678901"}) {
    SCOPED_TRACE(utf8(bad));
    [field setStringValue:bad];
    NSError *error = nil;
    EXPECT_FALSE([panel saveValuesAndReturnError:&error]);
    EXPECT_EQ(error, nil);
    EXPECT_EQ(utf8([field stringValue]), "Anna");
    [field setStringValue:bad];
    [panel uiValueDidChange:field];
    EXPECT_EQ(utf8([field stringValue]), "Anna");
    [field setStringValue:bad];
    EXPECT_FALSE([panel shouldPrint]);
    EXPECT_EQ(utf8([field stringValue]), "Anna");
  }
  [field setStringValue:@"123456789012345678901234567890"];
  EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
}

TEST_F(PanelTest, RestoringTakesMarkedChoicesAndTheStoredName) {
  id panel = this->panel();
  ppdMarkOption(ppd_.get(), "QXFaxImageQuality", "Fine");
  store(@"Stored");
  EXPECT_TRUE([panel restoreValuesAndReturnError:NULL]);
  EXPECT_EQ(utf8([control(panel, @"imageQualityPopup") titleOfSelectedItem]), "Fine");
  EXPECT_EQ(utf8([panel senderName]), "Stored");
  EXPECT_EQ(utf8([[panel valueForKey:@"senderNameTextField"] stringValue]), "Stored");
  store(@"");
  [panel restoreValuesAndReturnError:NULL];
  EXPECT_EQ(utf8([panel senderName]), "");
  [panel setSenderName:@"kept"];
  host_->hasSettings = NO;
  [panel restoreValuesAndReturnError:NULL];
  EXPECT_EQ(utf8([panel senderName]), "kept");
}

TEST_F(PanelTest, TheSummaryListsTheOptionsThenTheSender) {
  id panel = this->panel();
  [panel setSenderName:@"Anna"];
  NSDictionary *summary = [panel summaryInfo];
  EXPECT_EQ(utf8([[summary objectForKey:@"Summary Display Order"] componentsJoinedByString:@"|"]),
            "Image Quality|Transmission Report|Cover Page|Sender|Sender Name");
  EXPECT_EQ(utf8([summary objectForKey:@"Cover Page"]), "No Cover Page");
  EXPECT_EQ(utf8([summary objectForKey:@"Sender Name"]), "Anna");
  EXPECT_EQ([summary count], 6u);
  [panel setSenderName:nil];
  EXPECT_EQ(utf8([[panel summaryInfo] objectForKey:@"Sender Name"]), "");
}

TEST_F(PanelTest, DefaultsGoToTheHostAndToTheView) {
  id panel = this->panel();
  choose(panel, @"imageQualityPopup", @"Fine");
  [panel setSenderName:@"Anna"];
  [host_->changes removeAllObjects];
  [panel setDefaults:nil];
  EXPECT_EQ(utf8([host_->changes componentsJoinedByString:@" "]),
            "QXFaxImageQuality=Standard QXFaxTransmissionReport=Off QXFaxCoverPageMode=None "
            "QXFaxSenderMode=Printer");
  EXPECT_EQ(utf8([control(panel, @"imageQualityPopup") titleOfSelectedItem]), "Standard");
  EXPECT_EQ(utf8([panel senderName]), "");
}

TEST_F(PanelTest, APrinterWithoutPpdOrOptionsHasAPanelAllTheSame) {
  host_->ppd = NULL;
  id panel = this->panel();
  EXPECT_NE([panel panelView], nil);
  EXPECT_EQ(utf8([[[panel summaryInfo] objectForKey:@"Summary Display Order"] componentsJoinedByString:@"|"]),
            "Sender Name");
  [panel setDefaults:nil];
  EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
}

TEST_F(PanelTest, HelpOpensThePanelsPage) {
  id panel = this->panel();
  EXPECT_EQ(fakes().registered_books, 1);
  EXPECT_FALSE([panel shouldShowHelp]);
  ASSERT_EQ(fakes().help_pages.size(), 1u);
  EXPECT_EQ(fakes().help_pages[0], "DirectFax Help|FaxSettings.htm|");
}

TEST_F(PanelTest, TheDeviceUriGivesThePrintersAddress) {
  struct {
    char const *uri, *address;
  } const cases[] = {
      {"", "(nil)"},
      {"usb://Vendor/Model?serial=1", ""},
      {"socket://192.168.1.20", "192.168.1.20"},
      {"ipp://[2001:db8::7]:631/ipp/print", "2001:db8::7"},
      {"ipps://192.168.1.20", "(nil)"},
      {"dnssd://nodot/", "(nil)"},
  };
  for (auto const &row : cases) {
    fakes().device_uri = row.uri;
    EXPECT_EQ(utf8([panel() valueForKey:@"printerAddress"]), row.address) << row.uri;
  }
}

TEST_F(PanelTest, AnEditorThatIsNotInstalledIsTold) {
  id panel = this->panel();
  EXPECT_FALSE([[panel valueForKey:@"addressBookButton"] isHidden]) << "version 5 of the fake system";
  [panel launchAddressBook:nil];
  ASSERT_EQ(alerts().size(), 1u);
  EXPECT_EQ(alerts()[0], "Address Book Editor not found.||OK");
}

class NewerSystem : public PanelTest {};

TEST_F(PanelTest, AControlThatOutlivesThePanelCallsNobody) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  id panel = this->panel();
  NSArray *kept = [[NSArray alloc] initWithObjects:control(panel, @"imageQualityPopup"), control(panel, @"senderModePopup"),
                                                   control(panel, @"defaultsButton"), nil];
  EXPECT_EQ([[kept objectAtIndex:0] target], panel);
  [pool release];
  for (NSUInteger at = 0; at < [kept count]; ++at) EXPECT_EQ([[kept objectAtIndex:at] target], nil);
  [kept release];
}

TEST_F(NewerSystem, HidesTheAddressBookButton) {
  if (std::getenv("DIRECTFAX_TEST_KERNEL") == nullptr)
    GTEST_SKIP() << "runs as a program of its own, with a newer system";
  EXPECT_TRUE([[panel() valueForKey:@"addressBookButton"] isHidden]);
}

TEST_F(PanelTest, AFeatureKeepsItsOwnChoice) {
  Class feature_class = test::class_named("PpdFeature");
  id feature = [[[feature_class alloc] initWithPPD:ppd_.get() andKeyowrd:@"QXFaxImageQuality"] autorelease];
  ppd_option_t *option = ppdFindOption(ppd_.get(), "QXFaxImageQuality");
  [feature setCurChoice:&option->choices[1]];
  EXPECT_EQ(utf8([feature curValue]), "Fine");
  [feature setDefault];
  EXPECT_EQ(utf8([feature curChoice]), "Standard");
  [feature setCurChoice:NULL];
  EXPECT_EQ([feature curChoice], nil);

  id missing = [[[feature_class alloc] initWithPPD:ppd_.get() andKeyowrd:@"NoSuchOption"] autorelease];
  EXPECT_EQ(utf8([missing valueForKey:@"keyword"]), "NoSuchOption");
  NSMutableDictionary *summary = [NSMutableDictionary dictionary];
  NSMutableArray *order = [NSMutableArray array];
  [feature setDefault];
  [feature setSummaryInfo:summary andOrder:order];
  [missing setSummaryInfo:summary andOrder:order];
  [missing setDefault];
  EXPECT_EQ(utf8([order componentsJoinedByString:@"|"]), "Image Quality");
  EXPECT_EQ([summary count], 1u);
}

}  // namespace
