#include <PrintCore/PrintCore.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

namespace {

class PrintCore : public testing::Test {
protected:
  PrintCore() {
    EXPECT_EQ(PMCreatePrintSettings(&settings_), kPMNoError);
    EXPECT_EQ(PMCreateSession(&session_), kPMNoError);
  }
  ~PrintCore() override {
    PMRelease(settings_);
    PMRelease(session_);
    [pool_ release];
  }

  OSStatus set(char const *key, CFTypeRef value, bool locked = false) {
    return PMPrintSettingsSetValue(settings_, string(key), value, locked);
  }

  static CFStringRef string(char const *text) {
    return reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:text]);
  }

  std::string get(char const *key) {
    CFTypeRef value = kCFBooleanTrue;
    OSStatus const status = PMPrintSettingsGetValue(settings_, string(key), &value);
    if (status == kPMKeyNotFound && value == nullptr) return "(absent)";
    EXPECT_EQ(status, kPMNoError);
    return [(NSString *)value UTF8String];
  }

  std::string keys() {
    CFArrayRef array = nullptr;
    EXPECT_EQ(PMPrintSettingsCopyKeys(settings_, &array), kPMNoError);
    std::string joined;
    for (CFIndex index = 0; index < CFArrayGetCount(array); ++index) {
      joined += [(NSString *)CFArrayGetValueAtIndex(array, index) UTF8String];
      joined += " ";
    }
    CFRelease(array);
    return joined;
  }

  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
  PMPrintSettings settings_ = nullptr;
  PMPrintSession session_ = nullptr;
};

TEST_F(PrintCore, KeysKeepTheOrderOfTheirFirstValue) {
  for (char const *key : {"z", "a", "m"}) EXPECT_EQ(set(key, CFSTR("1")), kPMNoError);
  EXPECT_EQ(set("a", CFSTR("2")), kPMNoError);
  EXPECT_EQ(keys(), "z a m ");
  EXPECT_EQ(get("a"), "2");
  EXPECT_EQ(set("z", nullptr), kPMNoError);
  EXPECT_EQ(get("z"), "(absent)");
  EXPECT_EQ(set("z", CFSTR("")), kPMNoError);  // an empty value is a value
  EXPECT_EQ(keys(), "a m z ");
  EXPECT_EQ(get("z"), "");
  EXPECT_EQ(set("never there", nullptr), kPMNoError);
}

TEST_F(PrintCore, KeysAndValuesAreCopies) {
  NSMutableString *key = [NSMutableString stringWithString:@"key"];
  NSMutableString *value = [NSMutableString stringWithString:@"old"];
  PMPrintSettingsSetValue(settings_, reinterpret_cast<CFStringRef>(key), value, false);
  [key setString:@"other"];
  [value setString:@"new"];
  EXPECT_EQ(get("key"), "old");
  EXPECT_EQ(get("other"), "(absent)");
}

TEST_F(PrintCore, LockedKeysStay) {
  EXPECT_EQ(set("a", CFSTR("1")), kPMNoError);
  EXPECT_EQ(set("a", CFSTR("2"), true), kPMNoError);
  EXPECT_EQ(set("a", CFSTR("3")), kPMLocked);
  EXPECT_EQ(set("a", CFSTR("3"), true), kPMLocked);
  EXPECT_EQ(set("a", nullptr), kPMLocked);
  EXPECT_EQ(get("a"), "2");
  EXPECT_EQ(set("b", CFSTR("1")), kPMNoError);
}

TEST_F(PrintCore, WrongArguments) {
  CFTypeRef value = kCFBooleanTrue;
  EXPECT_EQ(set("a", kCFBooleanTrue), kPMInvalidParameter);  // a setting is a string
  EXPECT_EQ(get("a"), "(absent)");
  EXPECT_EQ(PMPrintSettingsSetValue(settings_, nullptr, CFSTR("v"), false), kPMInvalidParameter);
  EXPECT_EQ(PMPrintSettingsSetValue(nullptr, CFSTR("k"), CFSTR("v"), false), kPMInvalidParameter);
  EXPECT_EQ(PMPrintSettingsGetValue(nullptr, CFSTR("k"), &value), kPMInvalidParameter);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(PMPrintSettingsGetValue(settings_, CFSTR("k"), nullptr), kPMInvalidParameter);
  // One kind of object in place of another.
  EXPECT_EQ(PMPrintSettingsGetValue(reinterpret_cast<PMPrintSettings>(session_), CFSTR("k"), &value),
            kPMInvalidParameter);
  EXPECT_EQ(PMRetain(nullptr), kPMInvalidParameter);
  EXPECT_EQ(PMRelease(nullptr), kPMInvalidParameter);
  EXPECT_EQ(PMCreateSession(nullptr), kPMInvalidParameter);
}

TEST_F(PrintCore, RetainedSettingsOutliveARelease) {
  set("a", CFSTR("1"));
  EXPECT_EQ(PMRetain(settings_), kPMNoError);
  EXPECT_EQ(PMRelease(settings_), kPMNoError);
  EXPECT_EQ(get("a"), "1");
}

TEST_F(PrintCore, Destination) {
  PMDestinationType type = kPMDestinationInvalid;
  CFURLRef location = reinterpret_cast<CFURLRef>(1);
  EXPECT_EQ(PMSessionGetDestinationType(session_, settings_, &type), kPMNoError);
  EXPECT_EQ(type, kPMDestinationPrinter);
  EXPECT_EQ(PMSessionCopyDestinationLocation(session_, settings_, &location), kPMNoError);
  EXPECT_EQ(location, nullptr);

  CFURLRef const file = CFURLCreateWithString(nullptr, CFSTR("file:///tmp/out.pdf"), nullptr);
  EXPECT_EQ(PMSessionSetDestination(session_, settings_, kPMDestinationFile, nullptr, file), kPMNoError);
  CFRelease(file);
  EXPECT_EQ(PMSessionSetDestination(session_, settings_, 6, nullptr, nullptr), kPMInvalidParameter);
  EXPECT_EQ(PMSessionSetDestination(session_, settings_, kPMDestinationInvalid, nullptr, nullptr), kPMInvalidParameter);
  EXPECT_EQ(PMSessionGetDestinationType(session_, settings_, &type), kPMNoError);
  EXPECT_EQ(type, kPMDestinationFile);
  ASSERT_EQ(PMSessionCopyDestinationLocation(session_, settings_, &location), kPMNoError);
  EXPECT_TRUE(CFEqual(CFURLGetString(location), CFSTR("file:///tmp/out.pdf")));
  CFRelease(location);

  EXPECT_EQ(PMSessionGetDestinationType(nullptr, settings_, &type), kPMInvalidParameter);
  EXPECT_EQ(PMSessionGetDestinationType(session_, nullptr, &type), kPMInvalidParameter);
}

TEST_F(PrintCore, NoPrinter) {
  CFURLRef uri = reinterpret_cast<CFURLRef>(1);
  EXPECT_EQ(PMPrinterCreateFromPrinterID(nullptr), nullptr);
  EXPECT_EQ(PMPrinterCreateFromPrinterID(CFSTR("")), nullptr);
  EXPECT_EQ(PMPrinterCreateFromPrinterID(CFSTR("queue/instance")), nullptr);
  EXPECT_EQ(PMPrinterGetID(nullptr), nullptr);
  EXPECT_EQ(PMPrinterGetName(nullptr), nullptr);
  EXPECT_EQ(PMPrinterCopyDeviceURI(nullptr, &uri), kPMInvalidParameter);
  EXPECT_EQ(uri, nullptr);
}

}  // namespace
