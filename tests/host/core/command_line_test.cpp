#include "host/core/command_line.h"

#include <gmock/gmock.h>

namespace fax::host {
namespace {

using testing::HasSubstr;

CommandLine parsed(std::vector<std::string> const &arguments) {
  auto result = parse_command_line(arguments);
  EXPECT_TRUE(result.ok()) << result.failure().text();
  return result.ok() ? result.value() : CommandLine{};
}

TEST(CommandLine, EveryOptionReachesItsField) {
  CommandLine const line = parsed({"--printer", "fax", "-o", "A=1", "report.pdf", "--option=B=x=y z", "--copies", "3",
                                   "--title", "", "--extension", "/x.bundle", "--timing", "--no-status", "--ui-map", "map",
                                   "--output", "out.pdf", "--alert", "--theme", "dark", "--scale", "1.5", "--pages", "1-3", "-"});
  EXPECT_EQ(line.action, CommandLine::Action::print);
  EXPECT_EQ(line.printer, "fax");
  EXPECT_EQ(line.options, (std::vector<Setting>{{"A", "1"}, {"B", "x=y z"}}));
  EXPECT_EQ(line.copies, 3);
  EXPECT_EQ(line.title, "");
  EXPECT_EQ(line.extension, "/x.bundle");
  EXPECT_TRUE(line.timing);
  EXPECT_FALSE(line.status);
  EXPECT_EQ(line.ui_map, "map");
  EXPECT_EQ(line.output, "out.pdf");
  EXPECT_EQ(line.theme, "dark");
  EXPECT_EQ(line.scale, 1.5);
  EXPECT_TRUE(line.alert);
  EXPECT_EQ(line.destination, Destination::file);
  EXPECT_EQ(line.pages, "1-3");
  EXPECT_EQ(line.files, (std::vector<std::string>{"report.pdf", "-"}));
}

TEST(CommandLine, DefaultsAndTexts) {
  CommandLine const line = parsed({"--", "--odd-name"});
  EXPECT_EQ(line.files, (std::vector<std::string>{"--odd-name"}));
  EXPECT_EQ(line.copies, 1);
  EXPECT_EQ(line.theme, "auto");
  EXPECT_EQ(line.scale, 0);
  EXPECT_FALSE(line.alert);
  EXPECT_EQ(line.destination, Destination::printer);
  EXPECT_FALSE(line.printer || line.title || line.output);
  EXPECT_EQ(parsed({"--to", "preview", "a"}).destination, Destination::preview);
  EXPECT_EQ(parsed({"--list"}).action, CommandLine::Action::list);
  EXPECT_EQ(parsed({"a", "b", "--help", "--unknown"}).action, CommandLine::Action::help);
  EXPECT_EQ(parsed({"--version"}).action, CommandLine::Action::version);
}

struct WrongLine {
  std::vector<std::string> arguments;
  char const *says;
};

class WrongLines : public testing::TestWithParam<WrongLine> {};

TEST_P(WrongLines, AreRefusedByName) {
  auto const result = parse_command_line(GetParam().arguments);
  ASSERT_FALSE(result.ok());
  EXPECT_EQ(result.failure().code, ExitCode::usage);
  EXPECT_THAT(result.failure().what, HasSubstr(GetParam().says));
  EXPECT_THAT(result.failure().advice, HasSubstr("Try 'faxprint --help'"));
}

INSTANTIATE_TEST_SUITE_P(Table, WrongLines,
                         testing::Values(WrongLine{{}, "No FILE"},                                          //
                                         WrongLine{{""}, "empty"},                                          //
                                         WrongLine{{"a", "-", "-"}, "(-)"}, WrongLine{{"a", ""}, "empty"},   //
                                         WrongLine{{"--list", "a"}, "--list"},                              //
                                         WrongLine{{"--forget", "a"}, "--forget"},                          //
                                         WrongLine{{"--timing", "--colour", "a"}, "\"--colour\""},          //
                                         WrongLine{{"--timing", "-x", "a"}, "\"-x\""},                      //
                                         WrongLine{{"--t", "x"}, "\"--t\""},                                //
                                         WrongLine{{"--scale", "0.5", "a"}, "not \"0.5\""},              //
                                         WrongLine{{"--scale", "nan", "a"}, "from 1 to 4"},                //
                                         WrongLine{{"--theme", "blue", "a"}, "not \"blue\""},              //
                                         WrongLine{{"--timing=yes", "a"}, "--timing takes no value"},       //
                                         WrongLine{{"a", "--printer"}, "--printer needs a value"},          //
                                         WrongLine{{"-d", "", "a"}, "--printer needs a value"},             //
                                         WrongLine{{"--copies", "0", "a"}, "not \"0\""},                    //
                                         WrongLine{{"--copies", "10000", "a"}, "1 to 9999"},                //
                                         WrongLine{{"--copies", "2x", "a"}, "\"2x\""},                      //
                                         WrongLine{{"--copies", "99999999999999999999", "a"}, "1 to 9999"}, //
                                         WrongLine{{"-o", "landscape", "a"}, "KEY=VALUE"},                  //
                                         WrongLine{{"-o", "=1", "a"}, "no key"},                            //
                                         WrongLine{{"-o", "a b=1", "f"}, "\"a b\""},                        //
                                         WrongLine{{"-o", "copies=2", "f"}, "--copies"},                    //
                                         WrongLine{{"-o", "job-name=x", "f"}, "--title"},                   //
                                         WrongLine{{"-o", "page-ranges=1", "f"}, "--pages"},                //
                                         WrongLine{{"-o", "printer-uri=x", "f"}, "printer-uri"},            //
                                         WrongLine{{"-t", "\xff", "f"}, "UTF-8"},                           //
                                         WrongLine{{"--to", "screen", "f"}, "\"screen\""},                  //
                                         WrongLine{{"--to", "printer", "--output", "x", "f"}, "--output"}));

}  // namespace
}  // namespace fax::host
