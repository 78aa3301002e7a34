#include "support/ppd_attributes.h"

#include "cf_text.h"
#include "ppd_of.h"

#include <gtest/gtest.h>

namespace {

TEST(FindAttribute, FirstStoredThatBeginsWithTheName) {
  TestPpd ppd{{"QXLocalizableFileIndexes", "long"}, {"QXLocalizableFileIndex", "12"}, {"QXLocal", "short"},
              {"Twice", "first"},                   {"Twice", "second"},              {"twice", "small"}};
  struct {
    char const *name, *value;
  } const cases[] = {{"QXLocalizableFileIndex", "long"},
                     {"QXLocalizableFileIndexes", "long"},
                     {"QXLocal", "long"},
                     {"Twice", "first"},
                     {"twice", "small"},
                     {"T", "first"},
                     {"Twice2", nullptr},
                     {"xLocal", nullptr}};
  for (auto const &c : cases) {
    ppd_attr_t const *found = ppdFindAttr_ALT(ppd.get(), c.name, nullptr);
    EXPECT_STREQ(found != nullptr ? found->value : nullptr, c.value) << c.name;
  }
}

TEST(FindAttribute, NothingToFind) {
  TestPpd ppd{{"QXFoo", "1"}}, without{};
  EXPECT_EQ(ppdFindAttr_ALT(nullptr, "QXFoo", nullptr), nullptr);
  EXPECT_EQ(ppdFindAttr_ALT(ppd.get(), nullptr, nullptr), nullptr);
  EXPECT_EQ(ppdFindAttr_ALT(ppd.get(), "", nullptr), nullptr);
  EXPECT_EQ(ppdFindAttr_ALT(without.get(), "QXFoo", nullptr), nullptr);
  ppd.get()->num_attrs = -1;
  EXPECT_EQ(ppdFindAttr_ALT(ppd.get(), "QXFoo", nullptr), nullptr);
}

TEST(CopyAttribute, ValueAsUtf8) {
  TestPpd ppd{{"Plain", "12"}, {"Text", "\xE3\x81\x82"}, {"Empty", ""}, {"Valueless", nullptr}, {"Broken", "a\xFF"}};
  auto const copy = [&](char const *name) { return text_of(OwnedString(CopyPPDAttribute(ppd.get(), name)).get()); };
  EXPECT_EQ(copy("Plain"), "12");
  EXPECT_EQ(copy("Text"), "\xE3\x81\x82");
  EXPECT_EQ(copy("Empty"), "");
  EXPECT_EQ(copy("Valueless"), std::nullopt);
  EXPECT_EQ(copy("Broken"), std::nullopt);
  EXPECT_EQ(copy("Absent"), std::nullopt);
  EXPECT_EQ(CopyPPDAttribute(nullptr, "Plain"), nullptr);
}

}  // namespace
