// Other programs look these functions up by name.
#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

TEST(Exports, PlainFunctionsAreFoundByName) {
  for (char const *name :
       {"XspEncrypt", "XspBinToB64", "XspB64ToBin", "CreateEncryptedString", "CreateDecryptedString",
        "GetEncodingInfoFromPPD", "CopyEncodedString", "CopyDecodedString", "unicharLength", "ppdFindAttr_ALT",
        "CopyPPDAttribute", "getOSMinorVersion", "Gestalt_ALT", "RegisterHelpBook", "GotoHelpPage", "GotoHelpPage2_105",
        "GotoHelpPage2_106", "IsUserAdmin", "CheckUserGroups", "xspkey"})
    EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
}

TEST(Exports, NothingElseIs) {
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN3fax16printer_encodingESt17basic_string_viewIcSt11char_traitsIcEE"), nullptr);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN3fax11utf8_lengthESt17basic_string_viewIDsSt11char_traitsIDsEE"), nullptr);
}

}  // namespace
