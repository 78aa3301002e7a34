// The bundle with a nib that is missing, broken, or has one outlet left out, and with string tables that are none: every
// operation of the host and every action of the user that is left works or does nothing, and nothing is thrown.
#import "bundle_fixture.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using test::ns;
using test::utf8;

std::string contents(fs::path const &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class DamagedTest : public test::BundleTest {
 protected:
  DamagedTest() {
    std::string pattern = (fs::temp_directory_path() / "damaged.XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~DamagedTest() override { fs::remove_all(folder_); }

  // A bundle of the real one's resources, each time at another place and with an identifier of its own: by both the toolkit
  // knows bundles again. The code stays that of the real bundle.
  fs::path copied() {
    fs::path const copy = folder_ / std::to_string(++copies_) / "DirectFax.bundle";
    fs::create_directories(copy / "Resources");
    for (auto const &entry : fs::directory_iterator(fs::path(test::bundle_path()) / "Resources"))
      if (entry.path().filename() != "DirectFaxHelp")
        fs::copy(entry.path(), copy / "Resources" / entry.path().filename(), fs::copy_options::recursive);
    fs::path const about = copy / "Resources/Info-gnustep.plist";
    std::string text = contents(about);
    std::string const identifier = utf8([test::bundle() bundleIdentifier]);
    for (std::size_t at = 0; (at = text.find(identifier, at)) != std::string::npos; at += identifier.size())
      text.insert(at + identifier.size(), std::to_string(copies_));
    write(about, text);
    return copy;
  }

  id panel_of(fs::path const &bundle) {
    id const factory = [[[[test::bundle() principalClass] alloc] init] autorelease];
    [factory initWithBundle:[NSBundle bundleWithPath:ns(bundle.string())]];
    id const panel = [[factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host_] objectAtIndex:0];
    EXPECT_EQ(utf8([[panel valueForKey:@"pluginBundle"] bundlePath]), bundle.string());
    return panel;
  }

  static void write(fs::path const &path, std::string const &text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }

  // Everything that a host asks and a user presses, through whatever is there.
  void use(id panel) {
    [panel panelName];
    [panel supportedPPDOptionKeys];
    [panel panelView];
    EXPECT_TRUE([panel restoreValuesAndReturnError:NULL]);
    [panel willShow];
    [panel setDefaults:nil];
    for (char const *outlet : {"imageQualityPopup", "coverPagePopup"})
      if ([panel panelView]) [panel uiValueDidChange:[[panel panelView] valueForKey:ns(outlet)]];
    EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
    EXPECT_NE([[panel summaryInfo] objectForKey:@"Summary Display Order"], nil);
    use_dialog(panel);
    [panel shouldHide];
  }

  void use_dialog(id panel) {
    in_modal_session([=, this] {
      id const controller = [panel valueForKey:@"detailedFaxSettingContoller"];
      [controller setValue:@"Anna" forKey:@"addressName"];
      [controller setValue:@"123" forKey:@"addressPhoneNumber"];
      for (char const *action : {"addAddressInfo:", "editAddressInfo:", "addAddressInfo:", "deleteAddressInfo:"})
        [controller performSelector:NSSelectorFromString(ns(action)) withObject:nil];
      [controller performSelector:NSSelectorFromString(@"addToAddressBook:") withObject:nil];
      if (open_books_) use_books(controller);
      open_books_ = false;
      [controller setValue:@"123" forKey:@"addressPhoneNumber"];
      [controller startSending:nil];
    });
    [panel shouldPrint];
  }

  // The address-book dialog is a modal session inside that of the dialog.
  void use_books(id controller) {
    id const books = [controller valueForKey:@"addressBookController"];
    in_modal_session([=, this] {
      in_modal_session([] {});  // of the property panels
      for (char const *action :
           {"sortPCAddressData:", "sortDeviceAddressData:", "showPCAddressProperty:", "showDevicePCAddressProperty:",
            "closeUserProperty:", "closeGroupProperty:", "addSelectedPCAddressData:", "addSelectedDeviceAddressData:",
            "deleteAddressInfo:", "saveAddressSetting:"})
        [books performSelector:NSSelectorFromString(ns(action)) withObject:nil];
    });
    [controller performSelector:NSSelectorFromString(@"lookupAddressBook:") withObject:nil];
  }

  // What came out of an exception, or "".
  std::string thrown_by(std::function<void()> const &work) {
    try {
      work();
    } catch (std::exception const &error) {
      return error.what();
    } catch (...) {
      return "an exception";
    }
    return "";
  }

  fs::path folder_;
  int copies_ = 0;
  bool open_books_ = false;
};

TEST_F(DamagedTest, WithoutItsNibs) {
  for (char const *nib : {"MainPanel.xib", "FaxSetting.xib"}) {
    std::string const whole = contents(fs::path(test::bundle_path()) / "Resources" / nib);
    ASSERT_FALSE(whole.empty());
    for (std::string const &damage :
         {std::string("missing"), std::string(), std::string("no nib at all\n"), whole.substr(0, whole.size() / 2),
          std::string("<?xml version=\"1.0\"?><document></document>"), whole.substr(0, 60) + std::string(5000, '\0')}) {
      SCOPED_TRACE(std::string(nib) + ": " + damage.substr(0, 40));
      fs::path const bundle = copied();
      fs::remove(bundle / "Resources" / nib);
      if (damage != "missing") write(bundle / "Resources" / nib, damage);
      id const panel = panel_of(bundle);
      EXPECT_EQ(thrown_by([&] { use(panel); }), "");
      bool const has_view = nib != std::string("MainPanel.xib");
      EXPECT_EQ([panel panelView] != nil, has_view);
      EXPECT_TRUE(!has_view || ![panel shouldPrint]) << "nobody was asked for a recipient";
    }
  }
}

TEST_F(DamagedTest, WithAnOutletLeftOut) {
  int left_out = 0;
  for (char const *nib : {"MainPanel.xib", "FaxSetting.xib"}) {
    std::string const whole = contents(fs::path(test::bundle_path()) / "Resources" / nib);
    std::set<std::string> seen{"nextKeyView"};
    for (std::size_t at = 0; (at = whole.find("<outlet property=\"", at)) != std::string::npos; ++at) {
      std::size_t const end = whole.find("/>", at) + 2;
      std::string const outlet = whole.substr(at, end - at);
      std::string const name = outlet.substr(18, outlet.find('"', 18) - 18);
      if (!seen.insert(name).second) continue;
      SCOPED_TRACE(std::string(nib) + " without " + name);
      fs::path const bundle = copied();
      std::string damaged = whole;
      write(bundle / "Resources" / nib, damaged.erase(at, end - at));
      open_books_ = true;
      EXPECT_EQ(thrown_by([&] { use(panel_of(bundle)); }), "");
      ++left_out;
    }
  }
  EXPECT_GT(left_out, 60);
}

TEST_F(DamagedTest, WithBrokenStringTables) {
  std::string const whole = contents(fs::path(test::bundle_path()) / "Resources/English.lproj/Localizable.strings");
  for (std::string const &damage : {std::string("missing"), std::string(), std::string("\"Sender Name\" = "),
                                    std::string("\xff\xfe\x00\xd8garbage", 12), whole.substr(0, whole.size() / 2) + "\"",
                                    std::string("bplist00\x00\xff", 10)}) {
    SCOPED_TRACE(damage.substr(0, 20));
    fs::path const bundle = copied();
    for (auto const &language : fs::directory_iterator(bundle / "Resources")) {
      if (language.path().extension() != ".lproj") continue;
      for (char const *table : {"Localizable.strings", "Localizable1.strings"}) {
        fs::remove(language.path() / table);
        if (damage != "missing") write(language.path() / table, damage);
      }
    }
    id const panel = panel_of(bundle);
    EXPECT_EQ(thrown_by([&] { use(panel); }), "");
    EXPECT_EQ(utf8([[[panel panelView] valueForKey:@"defaultsButton"] title]), "Restore Defaults") << "the key itself";
    alerts().clear();
    [[panel valueForKey:@"detailedFaxSettingContoller"] stopSending:nil];
    in_modal_session([panel] { [[panel valueForKey:@"detailedFaxSettingContoller"] startSending:nil]; });
    [panel shouldPrint];
    ASSERT_FALSE(alerts().empty());
    EXPECT_EQ(alerts().front(), "No Sender Specified||OK");
  }
}

}  // namespace
