#import "bundle_fixture.h"

#include <cstdio>
#include <dlfcn.h>
#include <memory>
#include <objc/runtime.h>
#include <set>

namespace {

void *module() {
  test::bundle();
  return dlopen(BUNDLE_PATH "/DirectFax", RTLD_NOW | RTLD_NOLOAD);
}

TEST(Exports, TheFileExportsTheContractNamesAndNothingElse) {
  std::set<std::string> exported;
  std::unique_ptr<FILE, int (*)(FILE *)> const list(popen("nm -D --defined-only '" BUNDLE_PATH "/DirectFax'", "r"), pclose);
  char name[1000];
  while (std::fscanf(list.get(), "%*s %*s %999s", name) == 1) exported.insert(name);
  EXPECT_EQ(exported,
            (std::set<std::string>{
                "XspEncrypt", "XspBinToB64", "XspB64ToBin", "CreateEncryptedString", "CreateDecryptedString",
                "GetEncodingInfoFromPPD", "CopyEncodedString", "CopyDecodedString", "unicharLength", "ppdFindAttr_ALT",
                "CopyPPDAttribute", "CopyResolvedIPAddress", "getOSMinorVersion", "Gestalt_ALT", "RegisterHelpBook",
                "GotoHelpPage", "GotoHelpPage2_105", "GotoHelpPage2_106", "IsUserAdmin", "CheckUserGroups",
                "SUPPORTED_KEYWORDS"}));
}

TEST(Exports, EveryClassOfTheFileBearsThePrefix) {
  test::bundle();
  int const count = objc_getClassList(nullptr, 0);
  auto const classes = std::make_unique<Class[]>(static_cast<std::size_t>(count));
  objc_getClassList(classes.get(), count);
  int own = 0;
  for (int at = 0; at < count; ++at) {
    Class const each = classes[static_cast<std::size_t>(at)];
    Dl_info place{};
    if (dladdr(reinterpret_cast<void const *>(each), &place) == 0 || !std::string(place.dli_fname).ends_with("/DirectFax"))
      continue;
    ++own;
    EXPECT_TRUE(std::string(class_getName(each)).starts_with("com_norvalt_tk_o_pde_vexolinddirectfax_"))
        << class_getName(each);
  }
  EXPECT_GE(own, 15);
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
