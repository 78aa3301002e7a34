#include "driver/fax_printer.h"

#include "fax_job.h"

#include <gmock/gmock.h>

namespace fax {
namespace {

std::string feature_line(FaxFeature const &feature) {
  std::string line = feature.keyword + "=" + feature.default_choice + ":";
  for (auto const &choice : feature.choices) line += " " + choice;
  return line;
}

TEST(FaxPrinter, of_the_sample_queue) {
  auto const printer = read_fax_printer(PPD);
  EXPECT_EQ(printer.password_encoding, 0x08000100u);
  std::vector<std::string> lines;
  for (auto const &feature : printer.features) lines.push_back(feature_line(feature));
  EXPECT_THAT(lines, testing::ElementsAre("QXFaxImageQuality=Standard: Standard Fine SuperFine",
                                          "QXFaxTransmissionReport=OnError: Off On OnError",
                                          "QXFaxCoverPageMode=None: None Standard Business",
                                          "QXFaxSenderMode=PrinterDefault: PrinterDefault EnterName"));
}

TEST(FaxPrinter, without_encoding_and_fax_options_is_still_read) {
  test::Folder folder;
  auto const path = folder.path() / "plain.ppd";
  std::ofstream{path} << "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*LanguageEncoding: ISOLatin1\n"
                         "*ModelName: \"Plain\"\n*NickName: \"Plain\"\n";
  auto const printer = read_fax_printer(path);
  EXPECT_EQ(printer.password_encoding, 0x0628u);
  EXPECT_TRUE(printer.features.empty());
}

TEST(FaxPrinter, that_is_no_ppd_is_an_error_with_its_name) {
  test::Folder folder;
  auto const path = folder.path() / "not.ppd";
  std::ofstream{path} << "hello\n";
  for (std::string const &bad : {path.string(), std::string{"/nowhere/fax.ppd"}}) {
    try {
      read_fax_printer(bad);
      FAIL() << bad << " was read";
    } catch (std::runtime_error const &error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(bad));
    }
  }
}

}  // namespace
}  // namespace fax
