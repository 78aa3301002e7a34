// Address lists in the shape that common programs give them.

#include "tool.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>

namespace fax::tool::testing {
namespace {

using ::testing::HasSubstr;

struct Sample {
  char const *file;
  char const *entries;  // gad list
  int code;
  std::vector<char const *> report;
};

class Samples : public ::testing::TestWithParam<Sample> {};

TEST_P(Samples, AreRead) {
  Folder const folder;
  std::string const book = folder.book();
  Outcome const imported = gad({"import", book, SAMPLES "/" + std::string(GetParam().file)});
  EXPECT_EQ(imported.code, GetParam().code);
  for (char const *line : GetParam().report) EXPECT_THAT(imported.errors, HasSubstr(line));
  EXPECT_EQ(gad({"list", book}).output, GetParam().entries);
}

INSTANTIATE_TEST_SUITE_P(
    Programs, Samples,
    ::testing::Values(
        Sample{"thunderbird.csv",
               "1\tÅsa Öberg\t08-100 201\tÖberg & Söner\tFax only\\nbefore noon\t\n"
               "2\tBen Carter\t555-0100\t\t\t\n",
               3,
               {"csv:4: note: \"Ben Carter\": No fax number.", "csv:5: skipped: \"Nobody\": No number."}},
        Sample{"outlook.csv",
               "1\tZoë M. Núñez\t(555) 010-2000\tNúñez, Ltd.\tsays \"call first\"\tCustomers;Red \"A\" list\n"
               "2\tFront Desk GmbH\t555-3000\tFront Desk GmbH\t\tSuppliers\n",
               3,
               {"read as Windows-1252", "2002\".\n", "holds \"() \"", "skipped: \"Pager Only\": No number."}},
        Sample{"outlook-german.csv",
               "1\tJürgen Groß\t030-555\tBäckerei Groß\t\tLieferanten\n2\tÄnne Weiß\t030-558\t\tgrüßt\t\n",
               0,
               {}},
        Sample{"outlook-japanese.csv",
               "1\t高橋 一郎\t03-1234-5678\t株式会社山田\t①番窓口\t取引先\n2\t髙木 花子\t06-1111-2222\t\t\t\n",
               0,
               {"read as Shift JIS"}},
        Sample{"google.csv",
               "1\t李 小龙\t+1 555-0143\tDragon\t\tPartners;VIP\n2\tDana Fox\t555-0150\t\t\t\n",
               3,
               {"\"555-0150\" is taken, not \"555-0151\"", "skipped: \"Erin Gray\""}},
        Sample{"printer.csv", "1\tHead Office\t#123*45\t\t\tOffices\n2\tWarehouse\t0-5551000\t\t\tOffices\n", 0, {}},
        Sample{"apple.vcf",
               "1\tDr. Per Hansen\t+47 555 00 101\tFjord AS\tFirst line\\nsecond, with comma\tNorthern\n"
               "2\tBlå Butikk\t555-0200\tBlå Butikk\t\tNorthern;Shops\n",
               0,
               {"\"Northern\": 1 member is left out"}},
        Sample{"android.vcf",
               "1\tОльга Иванова\t+7 555 010 02\tООО\tone\\ntwo\t\n2\t高橋 一郎\t03-5555-0104\t\t\t\n"
               "3\tOnly Voice\t555-0105\t\t\t\n",
               0,
               {"vcf:26: note: \"Only Voice\": No fax number."}},
        Sample{
            "nextcloud.vcf",
            "1\tÉmilie de la Très-Longue-Rue-Qui-Ne-Finit-Jamais-Ici-Même\t+33-555-0101\tSociété Générale des Faxes\t\t"
            "Board\\; Oslo;Amis;Très, très\n",
            0,
            {"\"Board; Oslo\": 1 member is left out: it is a group"}}),
    [](auto const &info) {
      std::string name = info.param.file;
      std::replace_if(
          name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
      return name;
    });

}  // namespace
}  // namespace fax::tool::testing
