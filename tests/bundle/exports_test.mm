#import "bundle_fixture.h"

#include <dlfcn.h>

namespace {

void *module() {
  test::bundle();
  return dlopen(BUNDLE_PATH "/DirectFax", RTLD_NOW | RTLD_NOLOAD);
}

TEST(Exports, EveryContractNameIsFoundAndNothingElseIs) {
  ASSERT_NE(module(), nullptr) << dlerror();
  for (char const *name :
       {"XspEncrypt", "XspBinToB64", "XspB64ToBin", "CreateEncryptedString", "CreateDecryptedString",
        "GetEncodingInfoFromPPD", "CopyEncodedString", "CopyDecodedString", "unicharLength", "ppdFindAttr_ALT",
        "CopyPPDAttribute", "CopyResolvedIPAddress", "getOSMinorVersion", "Gestalt_ALT", "RegisterHelpBook",
        "GotoHelpPage", "GotoHelpPage2_105", "GotoHelpPage2_106", "IsUserAdmin", "CheckUserGroups",
        "SUPPORTED_KEYWORDS"})
    EXPECT_NE(dlsym(module(), name), nullptr) << name;
  for (char const *name : {"xspkey", "_ZN3fax12settings_keyB5cxx11EPKcm", "directFaxPPDDict"})
    EXPECT_EQ(dlsym(module(), name), nullptr) << name;
}

TEST(Exports, TheKeywordListEndsWithNull) {
  auto *const list = static_cast<char const *const *>(dlsym(module(), "SUPPORTED_KEYWORDS"));
  ASSERT_NE(list, nullptr);
  EXPECT_STREQ(list[0], "FaxImageQuality");
  EXPECT_STREQ(list[1], "FaxTransmissionReport");
  EXPECT_STREQ(list[2], "FaxCoverPageMode");
  EXPECT_STREQ(list[3], "FaxSenderMode");
  EXPECT_EQ(list[4], nullptr);
}

TEST(Exports, ClassesBearTheirPrefixAndBases) {
  struct {
    char const *name, *base;
  } const cases[] = {
      {"DirectFaxPdePlugin", "NSObject"},      {"BasicPdeInterface", "NSObject"},
      {"PpdFeature", "NSObject"},              {"BasicPdeView", "NSView"},
      {"FaxSettingController", "NSObject"},    {"AddressInformation", "NSObject"},
      {"InputStringChecker", "NSFormatter"},   {"UtilityService", "NSObject"},
  };
  for (auto const &row : cases) {
    Class found = test::class_named(row.name);
    ASSERT_NE(found, Nil) << row.name;
    EXPECT_EQ(test::utf8(NSStringFromClass([found superclass])), row.base) << row.name;
  }
  EXPECT_EQ([test::class_named("DirectFaxPdeInterface") superclass], test::class_named("BasicPdeInterface"));
  EXPECT_EQ([test::class_named("DirectFaxPdeView") superclass], test::class_named("BasicPdeView"));
  EXPECT_EQ([test::class_named("FaxSettingView") superclass], test::class_named("BasicPdeView"));
}

}  // namespace
