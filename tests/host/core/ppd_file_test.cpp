#include "host/core/ppd_file.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>

#include "texts/texts.h"

namespace fax::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kPpd[] = TEST_DATA "/fax.ppd";

std::unique_ptr<PpdFile> fax_ppd() {
  auto result = PpdFile::open(kPpd, "fax");
  if (!result) throw std::runtime_error(result.failure().text());
  std::unique_ptr<PpdFile> ppd = std::move(result.value());
  EXPECT_FALSE(ppd->mark_initial({}, {}));
  return ppd;
}

TEST(PpdFile, FeaturesInGroupsWithoutTheTechnicalOnes) {
  auto const ppd = fax_ppd();
  std::string shown;
  for (auto const &group : ppd->features({"Fold"})) {
    shown += group.text + ":";
    for (auto const &feature : group.features) shown += " " + feature.text + "=" + feature.marked_choice;
    shown += "\n";
  }
  EXPECT_EQ(shown,
            "General: Page Size=A4 Paper=Plain Two-Sided=None\n"
            "Fax Settings: Image Quality=Standard Sender=Off\n");
  auto const duplex = ppd->features().at(0).features.at(2);
  EXPECT_EQ(duplex.keyword, "Duplex");
  ASSERT_EQ(duplex.choices.size(), 3u);
  EXPECT_EQ(duplex.choices[1].text, "Long Edge");
  EXPECT_EQ(duplex.default_choice, "None");
}

// Whatever the locale is, and whether or not it is installed.
TEST(PpdFile, SpeaksTheLanguageOfTheProgram) {
  setenv("LC_ALL", "en_US.UTF-8", 1);
  setenv("LANGUAGE", "de:fr", 1);
  speak({});
  auto const paper = fax_ppd()->features().at(0).features.at(1);
  for (auto const *const name : {"LC_ALL", "LANGUAGE", "LC_MESSAGES"}) unsetenv(name);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(paper.text, "Papierart");
  EXPECT_EQ(paper.choices.at(0).text, "Plain Paper") << "the file has no translation of it";
  EXPECT_EQ(paper.choices.at(1).text, "Folie");
}

TEST(PpdFile, ExtensionsAndFax) {
  auto const ppd = fax_ppd();
  EXPECT_THAT(ppd->extension_paths(), ElementsAre("/opt/first/First.bundle", "/opt/second/Second.bundle"));
  EXPECT_TRUE(ppd->can_fax()) << "by the group QXFaxSettings";
  EXPECT_EQ(ppd->attribute("NickName"), "Test Fax, 1.0");
  EXPECT_EQ(ppd->attribute("Nothing"), std::nullopt);
}

TEST(PpdFileMark, UnknownOptionAndChoiceAreRefused) {
  auto const ppd = fax_ppd();
  EXPECT_THAT(ppd->mark("Staple", "On").reason, HasSubstr("\"Staple\""));
  EXPECT_EQ(ppd->mark("Duplex", "Sideways").reason, "\"Two-Sided\" has no choice \"Sideways\".");
  EXPECT_FALSE(ppd->mark("Duplex", ""));
  EXPECT_EQ(ppd->marked_choice("Duplex"), "None");
  EXPECT_EQ(ppd->marked_choice("Staple"), std::nullopt);
}

TEST(PpdFileMark, ConflictNamesBothSidesAndChangesNothing) {
  auto const ppd = fax_ppd();
  ASSERT_TRUE(ppd->mark("Duplex", "DuplexTumble"));
  ASSERT_TRUE(ppd->mark("QXFaxImageQuality", "Fine"));
  auto const before = ppd->job_options();
  MarkResult const refused = ppd->mark("MediaType", "Film");
  EXPECT_FALSE(refused);
  EXPECT_EQ(refused.reason,
            "\"Paper\" cannot be \"Transparency\" while \"Two-Sided\" is \"Short Edge\" and \"Image Quality\" is "
            "\"Fine\".");
  EXPECT_EQ(ppd->job_options(), before);
  EXPECT_EQ(ppd->marked_choice("MediaType"), "Plain");
  ASSERT_TRUE(ppd->mark("Duplex", "None"));
  ASSERT_TRUE(ppd->mark("QXFaxImageQuality", "Standard"));
  EXPECT_TRUE(ppd->mark("MediaType", "Film"));
  EXPECT_FALSE(ppd->mark("duplex", "duplextumble")) << "the same conflict from the other side, in other case";
}

TEST(PpdFileMark, SeenThroughTheHandle) {
  auto const ppd = fax_ppd();
  ASSERT_TRUE(ppd->mark("QXFaxSenderMode", "EnterName"));
  ppd_choice_t const *const marked = ppdFindMarkedChoice(ppd->handle(), "QXFaxSenderMode");
  ASSERT_NE(marked, nullptr);
  EXPECT_STREQ(marked->choice, "EnterName");
}

TEST(PpdFileJobOptions, FaxOptionsAlwaysOthersWhenTheyDiffer) {
  auto const ppd = fax_ppd();
  EXPECT_THAT(ppd->job_options(),
              ElementsAre(Setting{"QXFaxImageQuality", "Standard"}, Setting{"QXFaxSenderMode", "Off"}));
  ASSERT_TRUE(ppd->mark("Duplex", "DuplexNoTumble"));
  ASSERT_TRUE(ppd->mark("OptionTray", "True"));
  ASSERT_TRUE(ppd->mark("Fold", "Custom.72"));
  EXPECT_THAT(ppd->job_options(),
              ElementsAre(Setting{"Duplex", "DuplexNoTumble"}, Setting{"Fold", "Custom.72"},
                          Setting{"QXFaxImageQuality", "Standard"}, Setting{"QXFaxSenderMode", "Off"}));
  ASSERT_TRUE(ppd->mark("Fold", "None"));
  EXPECT_EQ(ppd->job_options().size(), 3u);
}

TEST(PpdFileInitial, CommandLineOverQueueOverPpd) {
  auto const ppd = fax_ppd();
  auto const failure = ppd->mark_initial({{"Duplex", "DuplexTumble"}, {"QXFaxImageQuality", "Fine"}, {"Gone", "x"}},
                                         {{"Duplex", "None"}, {"media", "Letter"}, {"number-up", "2"}});
  EXPECT_FALSE(failure) << failure->text();
  // Duplex goes along although it is the PPD's default: the queue's would come back otherwise.
  EXPECT_THAT(ppd->job_options(),
              ElementsAre(Setting{"PageSize", "Letter"}, Setting{"Duplex", "None"},
                          Setting{"QXFaxImageQuality", "Fine"}, Setting{"QXFaxSenderMode", "Off"}));
}

TEST(PpdFileInitial, ChosenInAnyOrderButNotAgainstEachOther) {
  auto const ppd = fax_ppd();
  std::vector<Setting> const two_sided{{"Duplex", "DuplexTumble"}};
  EXPECT_FALSE(ppd->mark_initial(two_sided, {{"MediaType", "Film"}, {"Duplex", "None"}}));
  EXPECT_EQ(ppd->marked_choice("MediaType"), "Film");
  auto const conflict = ppd->mark_initial({}, {{"MediaType", "Film"}, {"Duplex", "DuplexTumble"}});
  ASSERT_TRUE(conflict);
  EXPECT_EQ(conflict->code, ExitCode::usage);
  EXPECT_THAT(conflict->what, HasSubstr("--option Duplex=DuplexTumble"));
  auto const unknown = ppd->mark_initial({}, {{"MediaType", "Silk"}});
  ASSERT_TRUE(unknown);
  EXPECT_THAT(unknown->what, HasSubstr("\"Silk\""));
}

class BrokenPpd : public testing::Test {
protected:
  BrokenPpd() {
    std::string name = (std::filesystem::temp_directory_path() / "ppd.XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~BrokenPpd() override { std::filesystem::remove_all(folder_); }

  std::string failure_of(std::string const &bytes) const {
    std::string const path = (folder_ / "broken.ppd").string();
    std::ofstream(path, std::ios::binary) << bytes;
    auto const result = PpdFile::open(path, "fax");
    if (result.ok()) return "";
    EXPECT_EQ(result.failure().code, ExitCode::queue);
    return result.failure().what;
  }

  std::filesystem::path folder_;
};

TEST_F(BrokenPpd, LineAndReason) {
  EXPECT_EQ(failure_of("*PPD-Adobe: \"4.3\"\n*OpenUI *A/A: PickOne\nnonsense here\n"),
            "The PPD file of \"fax\" is broken, line 3: Missing asterisk in column 1.");
  EXPECT_THAT(failure_of("*Title: \"no header\"\n"), HasSubstr("line 1: Missing PPD-Adobe-4.x header"));
  EXPECT_THAT(failure_of(""), HasSubstr("is broken"));
  auto const missing = PpdFile::open((folder_ / "none.ppd").string(), "fax");
  ASSERT_FALSE(missing.ok());
  EXPECT_THAT(missing.failure().what, HasSubstr("No such file"));
}

// A PPD file with one byte changed or cut short: read, or refused with a sentence; what is read can be shown and
// marked.
TEST_F(BrokenPpd, DamageNeverHarms) {
  std::ifstream file(kPpd, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  std::string const good = text.str();
  ASSERT_GT(good.size(), 2000u);
  std::string const path = (folder_ / "damaged.ppd").string();
  int read = 0, refused = 0;
  for (std::size_t at = 0; at < good.size(); at += 11) {
    std::string bad = good;
    if (at % 2 == 0)
      bad[at] = static_cast<char>(bad[at] ^ 0x13);
    else
      bad.resize(at);
    std::ofstream(path, std::ios::binary) << bad;
    auto const result = PpdFile::open(path, "fax");
    if (!result) {
      EXPECT_THAT(result.failure().what, HasSubstr("is broken"));
      ++refused;
      continue;
    }
    ++read;
    EXPECT_FALSE(result.value()->mark_initial({}, {}));
    for (auto const &group : result.value()->features())
      for (auto const &feature : group.features)
        for (auto const &choice : feature.choices) {
          auto const before = result.value()->marked_choice(feature.keyword);
          bool const accepted = result.value()->mark(feature.keyword, choice.keyword).accepted;
          EXPECT_EQ(result.value()->marked_choice(feature.keyword), accepted ? choice.keyword : before);
        }
    EXPECT_LE(result.value()->job_options().size(), 8u);
  }
  EXPECT_GT(read, 50);
  EXPECT_GT(refused, 10);
}

}  // namespace
}  // namespace fax::host
