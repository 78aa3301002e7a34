// The fax dialog: its list, its fields, Start and Cancel.
#import "bundle_fixture.h"

namespace {

using test::utf8;

class FaxDialogTest : public test::BundleTest {
 protected:
  FaxDialogTest() {
    panel_ = [panel() retain];
    in_modal_session([] {});
    [panel_ shouldPrint];
    controller_ = [panel_ valueForKey:@"detailedFaxSettingContoller"];
    list_ = [controller_ valueForKey:@"addressArrayController"];
  }
  ~FaxDialogTest() override {
    [controller_ stopSending:nil];
    [panel_ release];
  }

  void reopen() { [panel_ shouldPrint]; }

  void add(NSString *name, NSString *number) {
    [controller_ setValue:name forKey:@"addressName"];
    [controller_ setValue:number forKey:@"addressPhoneNumber"];
    [controller_ addAddressInfo:nil];
  }

  // "name:number name:number" in the order of the list.
  std::string listed() {
    std::string text;
    NSEnumerator *rows = [[list_ arrangedObjects] objectEnumerator];
    while (id row = [rows nextObject])
      text += (text.empty() ? "" : " ") + utf8([row valueForKey:@"name"]) + ":" + utf8([row valueForKey:@"phoneNumber"]);
    return text;
  }

  NSUInteger count() { return [[list_ arrangedObjects] count]; }
  std::string field(NSString *key) { return utf8([controller_ valueForKey:key]); }

  id panel_;
  id controller_;
  NSArrayController *list_;
};

TEST_F(FaxDialogTest, TheListRunsFromZToAWithoutLetterCase) {
  add(@"ann", @"1");
  add(@"Zoe", @"1");
  add(@"Ann", @"3");
  add(@"bob", @"2");
  EXPECT_EQ(listed(), "Zoe:1 bob:2 Ann:3 ann:1");
  EXPECT_EQ(field(@"addressName"), "");
  EXPECT_EQ(field(@"addressPhoneNumber"), "");
}

TEST_F(FaxDialogTest, ADuplicateIsAskedAboutOnce) {
  add(@"Ann", @"123");
  add(@"ann", @"123");
  add(@"Ann", @"1234");
  add(@"Andr\u00e9", @"7");
  add(@"Andre\u0301", @"7");
  EXPECT_TRUE(alerts().empty()) << "letter case, number and accents count";
  answer({1});
  add(@"Ann", @"123");
  ASSERT_EQ(alerts().size(), 1u);
  EXPECT_EQ(alerts()[0], "Duplicated Address Found|Add the same address to destinations?|OK|Cancel");
  EXPECT_EQ(count(), 5u);
  EXPECT_EQ(field(@"addressName"), "Ann");
  EXPECT_EQ(field(@"addressPhoneNumber"), "123");
  answer({0});
  add(@"Ann", @"123");
  EXPECT_EQ(count(), 6u);
}

TEST_F(FaxDialogTest, ThirtyIsTheLimitEvenBeforeDuplicates) {
  for (int i = 0; i < 29; i++) add(@"", [NSString stringWithFormat:@"%d", i]);
  EXPECT_EQ(count(), 29u);
  add(@"", @"29");
  EXPECT_EQ(count(), 30u);
  EXPECT_TRUE(alerts().empty());
  add(@"", @"29");
  ASSERT_EQ(alerts().size(), 1u);
  EXPECT_EQ(alerts()[0], "No More Destination||OK");
  EXPECT_EQ(count(), 30u);
}

TEST_F(FaxDialogTest, EditTakesTheEntryBackIntoTheFields) {
  add(@"Ann", @"1");
  add(@"Bob", @"2");
  [list_ setSelectionIndex:0];
  [controller_ editAddressInfo:nil];
  EXPECT_EQ(listed(), "Ann:1");
  EXPECT_EQ(field(@"addressName"), "Bob");
  EXPECT_EQ(field(@"addressPhoneNumber"), "2");
  EXPECT_TRUE([controller_ canAddAddress]);
  [list_ setSelectionIndexes:[NSIndexSet indexSet]];
  [controller_ editAddressInfo:nil];
  EXPECT_EQ(listed(), "Ann:1");
}

TEST_F(FaxDialogTest, TheSelectionEnablesTheButtons) {
  id view = [[controller_ valueForKey:@"faxSettingPanel"] contentView];
  auto const enabled = [&](NSString *button) { return [[view valueForKey:button] isEnabled]; };
  for (int i = 1; i <= 3; i++) add(@"", [NSString stringWithFormat:@"%d", i]);
  struct {
    unsigned int selected;
    bool edit, remove;
  } const cases[] = {{0, false, false}, {1, true, true}, {2, false, true}, {3, false, true}, {1, true, true}};
  for (auto const &row : cases) {
    SCOPED_TRACE(row.selected);
    [list_ setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, row.selected)]];
    EXPECT_EQ([controller_ canEditAddress], row.edit);
    EXPECT_EQ([controller_ canDeleteAddress], row.remove);
    EXPECT_EQ([[controller_ valueForKey:@"canEditAddress"] boolValue], row.edit);
    EXPECT_EQ(enabled(@"editAddressButton"), row.edit) << "bound button";
    EXPECT_EQ(enabled(@"deleteAddressButton"), row.remove) << "bound button";
    EXPECT_FALSE([controller_ canAddToAddressFile]) << "there is no file";
  }
  [controller_ setValue:[NSNumber numberWithBool:YES] forKey:@"isAddressFileAvailable"];
  EXPECT_TRUE([controller_ canAddToAddressFile]);

  EXPECT_FALSE(enabled(@"addAddressButton"));
  [controller_ setValue:@"5" forKey:@"addressPhoneNumber"];
  EXPECT_TRUE(enabled(@"addAddressButton")) << "depends on the number";
}

TEST_F(FaxDialogTest, DeleteRemovesEverySelectedEntry) {
  for (int i = 1; i <= 4; i++) add(@"", [NSString stringWithFormat:@"%d", i]);
  [list_ setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(1, 2)]];
  [controller_ deleteAddressInfo:nil];
  EXPECT_EQ(listed(), ":4 :1");
  [list_ setSelectionIndexes:[NSIndexSet indexSet]];
  [controller_ deleteAddressInfo:nil];
  EXPECT_EQ(count(), 2u);
}

TEST_F(FaxDialogTest, TheFieldsRefuseWhatTheirFormattersRefuse) {
  struct {
    NSString *field, *text;
    bool accepted;
  } const cases[] = {
      {@"addressNameTextField", @"tab\there", true},
      {@"addressNameTextField", [@"" stringByPaddingToLength:64 withString:@"a" startingAtIndex:0], true},
      {@"addressNameTextField", [@"" stringByPaddingToLength:65 withString:@"a" startingAtIndex:0], false},
      {@"addressNameTextField", [@"" stringByPaddingToLength:21 withString:@"\u3042" startingAtIndex:0], true},
      {@"addressNameTextField", [@"" stringByPaddingToLength:22 withString:@"\u3042" startingAtIndex:0], false},
      {@"addressPhoneNumberTextField", @"0123456789#*-:=", true},
      {@"addressPhoneNumberTextField", @"+49", false},
      {@"addressPhoneNumberTextField", @"1 2", false},
      {@"addressPhoneNumberTextField", [@"" stringByPaddingToLength:51 withString:@"1" startingAtIndex:0], false},
      {@"passwordTextField", @"1234", true},
      {@"passwordTextField", @"12345", false},
      {@"passwordTextField", @"12a", false},
      {@"passwordTextField", @"", true},
  };
  for (auto const &row : cases) {
    NSFormatter *formatter = [[controller_ valueForKey:row.field] formatter];
    ASSERT_NE(formatter, nil);
    EXPECT_EQ([formatter isPartialStringValid:row.text newEditingString:NULL errorDescription:NULL], row.accepted)
        << utf8(row.field) << " " << utf8(row.text);
  }
}

TEST_F(FaxDialogTest, StartAsksForADestination) {
  auto const start = [&] {
    alerts().clear();
    [controller_ startSending:nil];
  };
  std::string const pending = "Characters added to Fax Number|Current number is automatically added|OK|Cancel";

  start();
  EXPECT_EQ(alerts(), std::vector<std::string>{"No Sender Specified||OK"});
  EXPECT_FALSE([controller_ isSending]);
  EXPECT_TRUE([[controller_ valueForKey:@"faxSettingPanel"] isVisible]);

  [controller_ setValue:@"0123" forKey:@"addressPhoneNumber"];
  answer({1});
  start();
  EXPECT_EQ(alerts(), (std::vector<std::string>{pending, "No Sender Specified||OK"}));
  EXPECT_FALSE([controller_ isSending]);

  start();
  EXPECT_EQ(alerts(), std::vector<std::string>{pending});
  EXPECT_TRUE([controller_ isSending]);
  EXPECT_EQ(listed(), ":0123");
  EXPECT_FALSE([[controller_ valueForKey:@"faxSettingPanel"] isVisible]);
  EXPECT_EQ(field(@"addressPhoneNumber"), "0123");
}

TEST_F(FaxDialogTest, ATypedNumberIsLeftAloneWhenTheListHasEntries) {
  add(@"Ann", @"1");
  add(@"Bob", @"2");
  [controller_ setValue:@"3" forKey:@"addressPhoneNumber"];
  [controller_ startSending:nil];
  EXPECT_TRUE(alerts().empty());
  EXPECT_TRUE([controller_ isSending]);
  EXPECT_EQ(listed(), "Bob:2 Ann:1");
}

TEST_F(FaxDialogTest, StartKeepsTheListStopEmptiesItOpeningResetsTheFields) {
  add(@"Ann", @"1");
  [controller_ setValue:@"77" forKey:@"password"];
  [controller_ setValue:[NSNumber numberWithInt:1] forKey:@"delayedPrint"];
  [controller_ setValue:[NSDate dateWithTimeIntervalSince1970:0] forKey:@"delayedTime"];
  EXPECT_TRUE([controller_ isDelayedTime]);
  [controller_ startSending:nil];
  reopen();
  EXPECT_TRUE([controller_ isSending]) << "only Start and Stop change it";
  EXPECT_EQ(listed(), "Ann:1");
  EXPECT_EQ(field(@"password"), "");
  EXPECT_FALSE([controller_ isDelayedTime]);
  EXPECT_LT(-[[controller_ valueForKey:@"delayedTime"] timeIntervalSinceNow], 5.0);

  [controller_ stopSending:nil];
  EXPECT_FALSE([controller_ isSending]);
  reopen();
  EXPECT_EQ(count(), 0u);
}

TEST_F(FaxDialogTest, TheTimeFieldFollowsTheCheckbox) {
  NSWindow *window = [controller_ valueForKey:@"faxSettingPanel"];
  NSButton *checkbox = [[window contentView] valueForKey:@"delayedSendCheckbox"];
  EXPECT_EQ([checkbox state], NSOffState);
  [checkbox performClick:nil];
  EXPECT_TRUE([controller_ isDelayedTime]);
  EXPECT_EQ(utf8([NSString stringWithFormat:@"%@", [controller_ valueForKey:@"delayedPrint"]]), "1");
}

TEST_F(FaxDialogTest, HelpOpensTheDialogsPageAndLeavesItOpen) {
  [controller_ showHelpBook:nil];
  ASSERT_EQ(fakes().help_pages.size(), 1u);
  EXPECT_EQ(fakes().help_pages[0], "DirectFax Help|FaxTransmission.htm|");
  EXPECT_TRUE([[controller_ valueForKey:@"faxSettingPanel"] isVisible]);
}

TEST_F(FaxDialogTest, WithoutAWindowTheDialogDoesNothing) {
  id bare = [[[test::class_named("FaxSettingController") alloc] init] autorelease];
  [bare createDialog];
  EXPECT_FALSE([bare isSending]);
}

}  // namespace
