// The nibs and string tables: everything connects, every visible text has a key.
#import "bundle_fixture.h"

#include "platform/languages.h"
#include "texts_in_sources.h"

#include <map>
#include <regex>
#include <set>

namespace {

using test::utf8;

using Table = std::map<std::string, std::string>;

Table table(std::string const &language, NSString *name) {
  NSString *const path = [NSString stringWithFormat:@"%@/%s.lproj/%@.strings", [test::bundle() resourcePath],
                                                    language == "en" ? "English" : language.c_str(), name];
  NSDictionary *texts = [[NSString stringWithContentsOfFile:path
                                                   encoding:NSUTF8StringEncoding
                                                      error:NULL] propertyListFromStringsFileFormat];
  Table read;
  NSEnumerator *keys = [texts keyEnumerator];
  while (NSString *key = [keys nextObject]) read[utf8(key)] = utf8([texts objectForKey:key]);
  return read;
}

std::set<std::string> keys_of(Table const &table) {
  std::set<std::string> keys;
  for (auto const &[key, text] : table) keys.insert(key);
  return keys;
}

// Numbers, and what a value is put in the place of.
std::vector<std::string> fixed_parts(std::string const &text) {
  std::regex const part("[0-9]+|%[0-9$]*[@a-z]");
  return {std::sregex_token_iterator(text.begin(), text.end(), part), {}};
}

TEST(Resources, EveryVisibleTextHasAKeyAndEveryKeyIsUsed) {
  std::set<std::string> used{"Custom PDE Title"};
  for (char const *xib : {"resources/MainPanel.xib", "resources/FaxSetting.xib"}) used.merge(test::texts_of_xib(xib));
  for (char const *folder : {"addressbook", "faxsetting", "plugin"}) used.merge(test::texts_of_alerts(folder));
  for (char const *view : {"addressbook/AddressBookView.mm", "faxsetting/FaxSettingView.mm", "plugin/DirectFaxPdeView.mm"})
    used.merge(test::hints_of(view));
  EXPECT_GT(used.size(), 80u);
  EXPECT_EQ(keys_of(table("en", @"Localizable")), used);
}

TEST(Resources, EveryLanguageSaysAllOfIt) {
  // Words that a language shares with English.
  std::map<std::string, std::set<std::string>> const shared = {
      {"de", {"Name", "OK"}}, {"fr", {"OK"}},                     {"it", {"OK", "Password"}}, {"nl", {"Help", "OK", "Printer"}},
      {"pt-BR", {"OK"}},      {"ja", {"OK"}},
  };
  for (NSString *name : {@"Localizable", @"Localizable1"}) {
    auto const keys = keys_of(table("en", name));
    ASSERT_FALSE(keys.empty());
    for (auto const &language : fax::known_languages()) {
      SCOPED_TRACE(language + " " + utf8(name));
      auto const texts = table(language, name);
      EXPECT_EQ(keys_of(texts), keys);
      auto const same = shared.find(language);
      for (auto const &[key, text] : texts) {
        EXPECT_NE(text, "") << key;
        for (auto const &part : fixed_parts(key)) EXPECT_NE(text.find(part), std::string::npos) << text;
        // A label can be translated twice: what it says then must be left as it is.
        auto const again = texts.find(text);
        EXPECT_EQ(again != texts.end() ? again->second : text, text);
        bool const may_be_same = language == "en" || (same != shared.end() && same->second.contains(key));
        EXPECT_TRUE(may_be_same || text != key) << key;
      }
    }
  }
}

class NibTest : public test::BundleTest {};

TEST_F(NibTest, EveryOutletConnects) {
  id panel = this->panel();
  in_modal_session([] {});
  [panel shouldPrint];
  id controller = [panel valueForKey:@"detailedFaxSettingContoller"];
  id dialog = [[controller valueForKey:@"faxSettingPanel"] contentView];
  struct {
    id object;
    char const *outlets;
  } const cases[] = {
      {panel, "directFaxView senderNameTextField addressBookButton detailedFaxSettingContoller"},
      {[panel panelView],
       "imageQualityTitle imageQualityPopup reportOptionTitle reportOptionPopup coverSettingGroup coverPageTitle "
       "coverPagePopup senderModeTitle senderModePopup senderNameTitle senderNameTextEdit addressBookButton "
       "defaultsButton hintLabel"},
      {controller,
       "faxSettingPanel addressArrayController addressFileList addressBookController addressNameTextField "
       "addressPhoneNumberTextField passwordTextField"},
      {[controller valueForKey:@"addressBookController"],
       "addressBookSettingPanel addressArrayController addressFileList pcAddressList pcAddressTableView "
       "deviceAddressList deviceAddressTableView userPropertyPanel groupPropertyPanel userPropertyDictionary "
       "groupPropertyDictionary groupMemberList"},
      {[[[controller valueForKey:@"addressBookController"] valueForKey:@"addressBookSettingPanel"] contentView],
       "addressSourceTabView pcTable deviceTable destinationTable addPCButton addDeviceButton removeButton hintLabel"},
      {dialog,
       "destNameLabel destPhoneNumberLabel recipientListLabel addAddressButton editAddressButton deleteAddressButton "
       "addToAddressBookButton addressBookFileLabel lookUpAddressBookButton lookUpDeviceDataButton "
       "authorizationGroupBox passwordLabel delayedSendGroupBox delayedSendCheckbox delayedTimeLabel startButton "
       "stopButton destinationTable hintLabel"},
  };
  for (auto const &row : cases) {
    NSEnumerator *names = [[test::ns(row.outlets) componentsSeparatedByString:@" "] objectEnumerator];
    while (NSString *name = [names nextObject]) EXPECT_NE([row.object valueForKey:name], nil) << utf8(name);
  }
  EXPECT_FALSE([[dialog valueForKey:@"destNameLabel"] isEditable]);
  [controller stopSending:nil];
}

TEST_F(NibTest, ThePrintersTableNamesThePasswordField) {
  test::Ppd ppd("*QXLocalizableFileIndex: \"1\"\n");
  host_->ppd = ppd.get();
  id panel = this->panel();
  in_modal_session([] {});
  [panel shouldPrint];
  id controller = [panel valueForKey:@"detailedFaxSettingContoller"];
  id dialog = [[controller valueForKey:@"faxSettingPanel"] contentView];
  EXPECT_EQ(utf8([[dialog valueForKey:@"passwordLabel"] stringValue]), "Access Code");
  EXPECT_EQ(utf8([[dialog valueForKey:@"startButton"] title]), "Start");
  [controller stopSending:nil];
}

TEST_F(NibTest, TheKeyboardWalksTheDialogInReadingOrder) {
  id panel = this->panel();
  in_modal_session([] {});
  [panel shouldPrint];
  id controller = [panel valueForKey:@"detailedFaxSettingContoller"];
  NSWindow *window = [controller valueForKey:@"faxSettingPanel"];
  EXPECT_EQ([window initialFirstResponder], [controller valueForKey:@"addressNameTextField"]);
  NSView *view = [controller valueForKey:@"addressNameTextField"];
  std::string classes;
  for (int i = 0; i < 16 && view != nil; i++, view = [view nextKeyView]) classes += utf8([view className]) + " ";
  EXPECT_EQ(classes,
            "NSTextField NSTextField NSButton NSTableView NSButton NSButton NSButton NSButton NSPopUpButton NSButton "
            "NSSecureTextField NSButton NSTextField NSButton NSButton NSButton ");
  EXPECT_EQ(view, [controller valueForKey:@"addressNameTextField"]) << "and round again";
  [controller stopSending:nil];
}

}  // namespace
