// The nibs and string tables: everything connects, every visible text has a key.
#import "bundle_fixture.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace {

using test::utf8;

std::string contents(std::string const &path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

NSDictionary *table(NSString *name) {
  return [NSDictionary dictionaryWithContentsOfFile:[test::bundle() pathForResource:name ofType:@"strings"]];
}

// Texts of a xib that a person sees.
std::set<std::string> texts_of(std::string const &xib) {
  std::set<std::string> texts;
  std::string const source = contents(xib);
  std::regex const title(" (?:title|label|toolTip)=\"([^\"]*)\"");
  for (std::sregex_iterator it(source.begin(), source.end(), title), end; it != end; ++it)
    if ((*it)[1] != "Text Cell" && (*it)[1] != "") texts.insert((*it)[1]);
  return texts;
}

// Texts that the sources look up: those of alerts, and what views return as hints.
std::set<std::string> texts_in(std::string const &folder) {
  std::set<std::string> texts;
  std::regex const alert("run_alert\\(([^;]*)\\)");
  std::regex const hint("return (@\"[^;]*\");");
  std::regex const literal("@\"([^\"]+)\"");
  for (auto const &file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".mm") continue;
    std::string const source = contents(file.path());
    bool const view = file.path().stem().string().ends_with("View");
    for (std::regex const *lookup : {&alert, view ? &hint : &alert}) {
      for (std::sregex_iterator it(source.begin(), source.end(), *lookup), end; it != end; ++it) {
        std::string const call = (*it)[1];
        for (std::sregex_iterator text(call.begin(), call.end(), literal); text != end; ++text) texts.insert((*text)[1]);
      }
    }
  }
  return texts;
}

TEST(Resources, EveryVisibleTextHasAKeyAndEveryKeyIsUsed) {
  std::string const source = SOURCE_PATH;
  std::set<std::string> used{"Custom PDE Title"};
  for (auto const &texts :
       {texts_of(source + "/resources/MainPanel.xib"), texts_of(source + "/resources/FaxSetting.xib"),
        texts_in(source + "/addressbook"), texts_in(source + "/faxsetting"), texts_in(source + "/plugin")})
    used.insert(texts.begin(), texts.end());
  std::set<std::string> keys;
  NSEnumerator *names = [table(@"Localizable") keyEnumerator];
  while (NSString *key = [names nextObject]) keys.insert(utf8(key));
  EXPECT_GT(keys.size(), 20u);
  EXPECT_EQ(keys, used);

  names = [table(@"Localizable1") keyEnumerator];
  while (NSString *key = [names nextObject]) EXPECT_TRUE(keys.contains(utf8(key))) << utf8(key);
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

TEST(Resources, EveryLinkOfTheHelpBookLeadsToAFile) {
  NSString *folder = [[test::bundle() infoDictionary] objectForKey:@"CFBundleHelpBookFolder"];
  std::filesystem::path const book =
      std::filesystem::path(utf8([test::bundle() resourcePath])) / "English.lproj" / utf8(folder);
  std::set<std::string> pages{"index.htm", "FaxSettings.htm", "FaxTransmission.htm", "Recipients.htm"};
  std::regex const link("(?:href|src)=\"([^\"#:]+)[^\"]*\"");
  for (auto const &page : pages) {
    std::string const source = contents(book / page);
    EXPECT_NE(source, "") << page;
    for (std::sregex_iterator it(source.begin(), source.end(), link), end; it != end; ++it)
      EXPECT_TRUE(std::filesystem::exists(book / std::string((*it)[1]))) << page << ": " << (*it)[1];
  }
}

}  // namespace
