#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

// A string whose every read raises, as a proxy with a lost connection does.
@interface RaisingString : NSString
@end

@implementation RaisingString

- (NSUInteger)length {
  [NSException raise:NSGenericException format:@"no text"];
  return 0;
}

- (unichar)characterAtIndex:(NSUInteger)index {
  [NSException raise:NSGenericException format:@"no text"];
  return 0;
}

@end

namespace {

// Read when the program starts, before main: the library's own constructors have run by then.
CFBooleanRef const kAtStart[] = {kCFBooleanTrue, kCFBooleanFalse};

class CoreFoundation : public testing::Test {
protected:
  ~CoreFoundation() override { [pool_ release]; }

  // A string of our own that ends with the test.
  CFStringRef string(char const *utf8) {
    NSString *made = [NSString stringWithUTF8String:utf8];
    return reinterpret_cast<CFStringRef>(made);
  }

  static std::string text(CFStringRef string) {
    char buffer[512];
    if (string == nullptr) return "(null)";
    return CFStringGetCString(string, buffer, sizeof buffer, kCFStringEncodingUTF8) ? buffer : "(no UTF-8)";
  }

  static std::string taken(CFStringRef string) {
    std::string const own = text(string);
    CFRelease(string);
    return own;
  }

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

TEST_F(CoreFoundation, BooleansAreFoundationsOwn) {
  EXPECT_EQ(static_cast<void const *>(kAtStart[0]), [NSNumber numberWithBool:YES]);
  EXPECT_EQ(static_cast<void const *>(kAtStart[1]), [NSNumber numberWithBool:NO]);
  EXPECT_TRUE(CFEqual(kCFBooleanTrue, [NSNumber numberWithInt:1]));
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
}

TEST_F(CoreFoundation, TypesOfObjects) {
  EXPECT_EQ(CFGetTypeID([NSMutableString string]), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(CFSTR("x")), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID([NSArray array]), CFArrayGetTypeID());
  EXPECT_EQ(CFGetTypeID([NSMutableDictionary dictionary]), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanFalse), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID([NSURL URLWithString:@"a:b"]), CFURLGetTypeID());
  EXPECT_EQ(CFGetTypeID([NSNumber numberWithInt:1]), 0u);  // a number is no boolean
  EXPECT_EQ(CFGetTypeID(nullptr), 0u);
}

TEST_F(CoreFoundation, NullIsLetThrough) {
  CFRelease(nullptr);
  EXPECT_EQ(CFRetain(nullptr), nullptr);
  EXPECT_TRUE(CFEqual(nullptr, nullptr));
  EXPECT_FALSE(CFEqual(nullptr, CFSTR("a")));
  EXPECT_EQ(CFStringCreateCopy(nullptr, nullptr), nullptr);
  EXPECT_EQ(CFStringGetLength(nullptr), 0);
  EXPECT_EQ(CFArrayGetCount(nullptr), 0);
  EXPECT_EQ(CFURLCreateWithString(nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(CFURLCopyScheme(nullptr), nullptr);
  EXPECT_EQ(CFURLCopyHostName(nullptr), nullptr);
  EXPECT_EQ(CFBundleCopyBundleURL(nullptr), nullptr);
  EXPECT_EQ(CFBundleGetValueForInfoDictionaryKey(nullptr, CFSTR("k")), nullptr);
}

TEST_F(CoreFoundation, ConstantStringsAreOneForOneText) {
  char text[] = "caf\xC3\xA9";
  CFStringRef const first = __CFStringMakeConstantString(text);
  std::memcpy(text, "XXXX", 4);  // the literal's memory may go
  EXPECT_EQ(first, CFSTR("caf\xC3\xA9"));
  EXPECT_EQ(CFStringGetLength(first), 4);
}

TEST_F(CoreFoundation, RetainCountsAndCopies) {
  NSMutableString *changing = [NSMutableString stringWithString:@"one"];
  CFStringRef const copy = CFStringCreateCopy(nullptr, reinterpret_cast<CFStringRef>(changing));
  [changing appendString:@" two"];
  EXPECT_EQ(taken(copy), "one");
  NSObject *object = [[NSObject new] autorelease];
  EXPECT_EQ(CFRetain(object), object);
  EXPECT_EQ([object retainCount], 2u);
  CFRelease(object);
  EXPECT_EQ([object retainCount], 1u);
}

TEST_F(CoreFoundation, CreateFromBytes) {
  auto const made = [](char const *bytes, CFIndex length, CFStringEncoding encoding, bool external = false) {
    return CFStringCreateWithBytes(nullptr, reinterpret_cast<UInt8 const *>(bytes), length, encoding, external);
  };
  EXPECT_EQ(taken(made("\x82\xF5", 2, kCFStringEncodingShiftJIS_X0213)), "\xE3\x81\x8B\xE3\x82\x9A");
  EXPECT_EQ(taken(made("\x80", 1, kCFStringEncodingWindowsLatin1)), "\xE2\x82\xAC");
  EXPECT_EQ(taken(made(nullptr, 0, kCFStringEncodingASCII)), "");
  EXPECT_EQ(taken(made("\xEF\xBB\xBF" "a", 4, kCFStringEncodingUTF8, true)), "a");
  EXPECT_EQ(taken(made("\xFF\xFE" "a\0", 4, kCFStringEncodingUTF16LE, true)), "a");
  EXPECT_EQ(taken(made("\xEF\xBB\xBF" "a", 4, kCFStringEncodingUTF8)), "\xEF\xBB\xBF" "a");
  EXPECT_EQ(taken(made("\xEF\xBF\xBE" "a", 4, kCFStringEncodingUTF8)), "\xEF\xBF\xBE" "a");  // swapped mark
  EXPECT_EQ(made("\x80", 1, kCFStringEncodingASCII), nullptr);
  EXPECT_EQ(made("a", -1, kCFStringEncodingASCII), nullptr);
  EXPECT_EQ(made("a", 1, 0x0A01), nullptr);
  EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
  EXPECT_EQ(CFStringCreateWithCString(nullptr, "\xFF", kCFStringEncodingUTF8), nullptr);
  CFStringRef const nul_inside = made("a\0b", 3, kCFStringEncodingASCII);
  EXPECT_EQ(CFStringGetLength(nul_inside), 3);
  EXPECT_EQ(CFStringGetCharacterAtIndex(nul_inside, 2), 'b');
  EXPECT_EQ(CFStringGetCharacterAtIndex(nul_inside, 3), 0);
  CFRelease(nul_inside);
}

TEST_F(CoreFoundation, CStringFitsOrFails) {
  char buffer[8] = "zzzzzzz";
  CFStringRef const kana = string("\xE3\x81\x8Bx");
  EXPECT_FALSE(CFStringGetCString(kana, buffer, 4, kCFStringEncodingUTF8));  // 4 bytes and the NUL
  EXPECT_TRUE(CFStringGetCString(kana, buffer, 5, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer, "\xE3\x81\x8Bx");
  EXPECT_EQ(buffer[5], 'z');
  EXPECT_TRUE(CFStringGetCString(kana, buffer, 4, kCFStringEncodingShiftJIS_X0213));
  EXPECT_STREQ(buffer, "\x82\xA9x");
  EXPECT_FALSE(CFStringGetCString(kana, buffer, sizeof buffer, kCFStringEncodingISOLatin1));
  EXPECT_FALSE(CFStringGetCString(kana, nullptr, 8, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(string(""), buffer, 0, kCFStringEncodingUTF8));
  EXPECT_TRUE(CFStringGetCString(string(""), buffer, 1, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(nullptr, buffer, sizeof buffer, kCFStringEncodingUTF8));
}

struct BytesRow {
  CFIndex location, length;
  CFIndex room;  // -1: no buffer
  CFIndex units, used;
};

TEST_F(CoreFoundation, BytesOfARange) {
  CFStringRef const text = string("ab\xF0\x9F\x93\xA0" "c");  // a b (pair) c: 5 units
  for (BytesRow const row : {BytesRow{0, 5, 256, 5, 7}, {0, 5, 7, 5, 7}, {0, 5, 6, 4, 6}, {0, 5, 5, 2, 2},
                             {0, 3, 256, 2, 2},  // the range ends inside the pair
                             {3, 2, 256, 0, 0},  // and begins inside it
                             {4, 99, 256, 1, 1}, {5, 1, 256, 0, 0}, {6, 1, 256, 0, 0}, {-1, 2, 256, 0, 0},
                             {0, 5, 0, 0, 0}, {0, 5, -1, 5, 7}}) {
    SCOPED_TRACE(testing::Message() << row.location << "+" << row.length << " in " << row.room);
    UInt8 buffer[256];
    std::memset(buffer, 'z', sizeof buffer);
    CFIndex used = 99;
    EXPECT_EQ(CFStringGetBytes(text, CFRangeMake(row.location, row.length), kCFStringEncodingUTF8, 0, false,
                               row.room < 0 ? nullptr : buffer, row.room, &used),
              row.units);
    EXPECT_EQ(used, row.used);
    EXPECT_EQ(buffer[row.room < 0 ? 0 : row.used], 'z');  // not a byte more
  }
  UInt8 byte;
  EXPECT_EQ(CFStringGetBytes(text, CFRangeMake(0, 5), kCFStringEncodingASCII, 0, false, &byte, 1, nullptr), 1);
  EXPECT_EQ(byte, 'a');
  CFIndex used = 99;
  EXPECT_EQ(CFStringGetBytes(text, CFRangeMake(0, 5), 0x0A01, '?', false, nullptr, 0, &used), 0);
  EXPECT_EQ(used, 0);
}

TEST_F(CoreFoundation, FormatsObjectsAndUtf8) {
  EXPECT_EQ(taken(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%s/%@ %d"), "\xE3\x81\x8B", CFSTR("p.htm"), 3)),
            "\xE3\x81\x8B/p.htm 3");
  EXPECT_EQ(taken(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@"), [NSNumber numberWithInt:5])), "5");
  EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%s"), "\xFF"), nullptr);
  EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%n"), nullptr), nullptr);
  EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, nullptr), nullptr);
}

TEST_F(CoreFoundation, Comparison) {
  EXPECT_EQ(CFStringCompare(CFSTR("UTF-8"), CFSTR("UTF-8"), 0), kCFCompareEqualTo);
  EXPECT_NE(CFStringCompare(CFSTR("utf-8"), CFSTR("UTF-8"), 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompare(CFSTR("DNSSD"), CFSTR("dnssd"), kCFCompareCaseInsensitive), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompare(CFSTR("a"), CFSTR("b"), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(CFSTR("b"), CFSTR("a"), 0), kCFCompareGreaterThan);
  // Composed and decomposed are the same to a reader and not to this comparison.
  EXPECT_NE(CFStringCompare(CFSTR("\xC3\xA9"), CFSTR("e\xCC\x81"), 0), kCFCompareEqualTo);
  EXPECT_EQ(CFStringCompare(nullptr, CFSTR("a"), 0), kCFCompareLessThan);
  EXPECT_EQ(CFStringCompare(nullptr, nullptr, 0), kCFCompareEqualTo);
}

TEST_F(CoreFoundation, NoExceptionComesOut) {
  CFStringRef const raising = reinterpret_cast<CFStringRef>([[RaisingString new] autorelease]);
  char buffer[8];
  testing::internal::CaptureStderr();
  EXPECT_EQ(CFStringGetLength(raising), 0);
  EXPECT_FALSE(CFStringGetCString(raising, buffer, sizeof buffer, kCFStringEncodingUTF8));
  EXPECT_EQ(CFStringGetBytes(raising, CFRangeMake(0, 1), kCFStringEncodingUTF8, 0, false, nullptr, 0, nullptr), 0);
  EXPECT_EQ(CFStringCreateWithFormat(nullptr, nullptr, raising), nullptr);
  EXPECT_EQ(CFArrayGetCount(reinterpret_cast<CFArrayRef>([[NSObject new] autorelease])), 0);  // no such method
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("CFStringGetLength - NSGenericException"));
}

TEST_F(CoreFoundation, Containers) {
  CFArrayRef const array = reinterpret_cast<CFArrayRef>([NSArray arrayWithObjects:@"a", @"b", nil]);
  EXPECT_EQ(CFArrayGetCount(array), 2);
  EXPECT_EQ(text(static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, 1))), "b");
  EXPECT_EQ(CFArrayGetValueAtIndex(array, 2), nullptr);
  EXPECT_EQ(CFArrayGetValueAtIndex(array, -1), nullptr);
  CFDictionaryRef const dictionary =
      reinterpret_cast<CFDictionaryRef>([NSDictionary dictionaryWithObject:@"v" forKey:@"k"]);
  EXPECT_EQ(text(static_cast<CFStringRef>(CFDictionaryGetValue(dictionary, CFSTR("k")))), "v");
  EXPECT_EQ(CFDictionaryGetValue(dictionary, CFSTR("x")), nullptr);
  EXPECT_EQ(CFDictionaryGetValue(dictionary, nullptr), nullptr);
}

struct UrlRow {
  char const *url, *scheme, *host;
};

TEST_F(CoreFoundation, UrlParts) {
  for (UrlRow const row :
       {UrlRow{"DNSSD://Office%20MFP._ipp._tcp.local./", "dnssd", "Office%20MFP._ipp._tcp.local."},
        {"socket://192.168.1.20", "socket", "192.168.1.20"}, {"usb://Vendor/Model%20X?serial=1", "usb", "Vendor"},
        {"ipp://[fe80::1]:631/ipp", "ipp", "fe80::1"}, {"file:///etc/passwd", "file", "(null)"}}) {
    SCOPED_TRACE(row.url);
    CFURLRef const url = CFURLCreateWithString(nullptr, string(row.url), nullptr);
    ASSERT_NE(url, nullptr);
    EXPECT_EQ(text(CFURLGetString(url)), row.url);
    CFStringRef const scheme = CFURLCopyScheme(url);
    EXPECT_EQ(CFStringCompare(scheme, string(row.scheme), kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CFRelease(scheme);
    EXPECT_EQ(taken(CFURLCopyHostName(url)), row.host);
    CFRelease(url);
  }
  for (char const *bad : {"usb://Vendor/Model X", "socket://a b", "ipp://h/caf\xC3\xA9", "ipp://h/<x>"})
    EXPECT_EQ(CFURLCreateWithString(nullptr, string(bad), nullptr), nullptr) << bad;
}

TEST_F(CoreFoundation, FilePathOfAUrl) {
  auto const path = [&](char const *url, CFIndex size) {
    UInt8 buffer[64] = "";
    CFURLRef const own = CFURLCreateWithString(nullptr, string(url), nullptr);
    bool const done = CFURLGetFileSystemRepresentation(own, true, buffer, size);
    CFRelease(own);
    return done ? std::string(reinterpret_cast<char *>(buffer)) : "(no)";
  };
  EXPECT_EQ(path("file:///a/b%20%E3%81%8B", 64), "/a/b \xE3\x81\x8B");
  EXPECT_EQ(path("file:///abc", 5), "/abc");
  EXPECT_EQ(path("file:///abc", 4), "(no)");
  EXPECT_EQ(path("ipp://h/abc", 64), "(no)");
}

TEST_F(CoreFoundation, OpenedBundles) {
  std::string name = (fs::temp_directory_path() / "bundle-XXXXXX").string();
  ASSERT_NE(mkdtemp(name.data()), nullptr);
  fs::path const place = fs::path(name) / "A b.bundle";
  fs::create_directories(place / "Resources");
  std::ofstream(place / "Resources/Info-gnustep.plist")
      << "{ CFBundleIdentifier = \"org.example.platform-test\"; CFBundleHelpBookName = \"A Book\"; }";
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.example.platform-test")), nullptr);

  NSBundle *opened = [NSBundle bundleWithPath:[NSString stringWithUTF8String:place.c_str()]];
  ASSERT_NE(opened, nil);
  CFBundleRef const bundle = CFBundleGetBundleWithIdentifier(CFSTR("org.example.platform-test"));
  EXPECT_EQ(static_cast<void *>(bundle), static_cast<void *>(opened));
  EXPECT_EQ(text(CFBundleGetIdentifier(bundle)), "org.example.platform-test");
  EXPECT_EQ(text(static_cast<CFStringRef>(CFBundleGetValueForInfoDictionaryKey(bundle, CFSTR("CFBundleHelpBookName")))),
            "A Book");
  EXPECT_EQ(CFBundleGetValueForInfoDictionaryKey(bundle, CFSTR("absent")), nullptr);
  CFURLRef const url = CFBundleCopyBundleURL(bundle);
  UInt8 path[512] = "";
  EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, path, sizeof path));
  EXPECT_EQ(fs::path(reinterpret_cast<char *>(path)), place);
  CFRelease(url);
  fs::remove_all(name);
}

}  // namespace
