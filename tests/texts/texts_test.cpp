// The catalogue is made by msgfmt from try.po, in which one translation is broken on purpose.
#include "texts/texts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace {

using fax::mark;
using fax::tr;
using fax::tr_n;

struct Texts : testing::Test {
  static void SetUpTestSuite() {
    setenv("LC_ALL", "de_XX.UTF-8", 1);  // no system has it installed
    unsetenv("LANGUAGE");
    fax::speak({"/nowhere", TRY_CATALOGUES});
  }
};

TEST_F(Texts, ComeFromTheCatalogueThoughTheLocaleIsNotInstalled) {
  EXPECT_EQ(tr(mark("Print")), "Drücken");
  EXPECT_EQ(tr("Not in it"), "Not in it");
  EXPECT_EQ(tr("Page {0} of {1}", 3, "many"), "Von many Seiten die 3.");
  EXPECT_EQ(tr_n("{0} entry", "{0} entries", 1, 1), "1 Eintrag");
  EXPECT_EQ(tr_n("{0} entry", "{0} entries", 12, 12), "12 Einträge");
}

// Threads begin with the program's own locale, in which the C library may translate nothing.
TEST_F(Texts, ComeOnEveryThread) {
  std::string said;
  std::thread([&] { said = tr("Print"); }).join();
  EXPECT_EQ(said, "Drücken");
}

TEST_F(Texts, ABrokenTranslationIsPutAside) {
  EXPECT_EQ(tr("Broken {0}", "x"), "Broken x");
  EXPECT_EQ(tr("Too many {0}", "{1}"), "Too many {1}");
}

}  // namespace
