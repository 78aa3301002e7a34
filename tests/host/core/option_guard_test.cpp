#include "host/core/option_guard.h"

#include <cups/cups.h>
#include <gmock/gmock.h>
#include <map>
#include <random>

namespace fax::host {
namespace {

// The filter's option argument as the print service forms it from text attributes.
std::string option_argument(std::vector<Setting> const &settings) {
  std::string argument;
  for (auto const &[key, value] : settings) {
    if (!argument.empty()) argument += ' ';
    argument += key + '=';
    for (char const c : value) {
      if (std::string_view(" \t\n\\'\"").find(c) != std::string_view::npos) argument += '\\';
      argument += c;
    }
  }
  return argument;
}

// What a filter reads out of it.
std::map<std::string, std::string> read_by_filter(std::string const &argument) {
  cups_option_t *options = nullptr;
  int const count = cupsParseOptions(argument.c_str(), 0, &options);
  std::map<std::string, std::string> read;
  for (int at = 0; at < count; ++at) read[options[at].name] = options[at].value;
  cupsFreeOptions(count, options);
  return read;
}

struct GuardCase {
  char const *value;
  char const *guarded;
};

TEST(GuardedValue, Table) {
  constexpr GuardCase kCases[] = {
      {"", ""},
      {"Anna Berg", "Anna Berg"},
      {"x\rDFaxDestinationNumber=666", "x DFaxDestinationNumber=666"},
      {"a\vb\fc\r\n", "a b c \n"},
      {"{x", " {x"},
      {"{}", " {}"},
      {",,{x", " ,,{x"},
      {",", ","},
      {",a{", ",a{"},
      {"a{b}", "a{b}"},
      {" {x", " {x"},
      {"\r{x", " {x"},
      {"\"quoted\" 'and' \\ = , # é 😀", "\"quoted\" 'and' \\ = , # é 😀"},
  };
  for (auto const &[value, guarded] : kCases) {
    EXPECT_EQ(guarded_value(value), guarded);
    EXPECT_EQ(guarded_value(guarded), guarded) << "guarding twice";
  }
}

// The faults that the guard is there for: should CUPS ever mend them, this fails and the guard can go.
TEST(GuardedValue, UnguardedValuesGoWrong) {
  EXPECT_EQ(read_by_filter(option_argument({{"number", "1"}, {"name", "x\rnumber=666"}}))["number"], "666");
  EXPECT_FALSE(read_by_filter(option_argument({{"name", "{x"}, {"number", "1"}})).contains("number"));
}

TEST(GuardedValue, ArrivesUnchangedAtTheFilter) {
  std::mt19937 random(20260101);
  constexpr std::string_view kNasty[] = {" ",  "\t", "\n", "\r", "\v", "\f", "{", "}",  ",",  "=",  "\\", "\"",   "'",
                                         "a",  "B",  "7",  "no", "é",  "日", "😀", "[", "]",  "<",  ">",  "true", "\x01",
                                         "\x7f", "#", "/", "%"};
  for (int round = 0; round < 4000; ++round) {
    std::vector<Setting> settings;
    for (int at = 0; at < 3; ++at) {
      std::string value;
      for (unsigned length = random() % 12; length > 0; --length) value += kNasty[random() % std::size(kNasty)];
      settings.push_back({"com.norvalt.tk.o.print.printsettings.K" + std::to_string(at), guarded_value(value)});
    }
    settings.push_back({"last", "1"});
    std::string const argument = option_argument(settings);
    auto const read = read_by_filter(argument);
    ASSERT_EQ(read.size(), settings.size()) << argument;
    for (auto const &[key, value] : settings) ASSERT_EQ(read.at(key), value) << argument;
    // One more byte than the argument: the space that stands before every option but the first.
    ASSERT_EQ(total_option_bytes(settings) - total_option_bytes({}), argument.size() + 1);
  }
}

TEST(SafeKey, Table) {
  for (char const *key : {"A", "_x", "media", "com.norvalt.tk.o.print.printsettings.DFaxPassword", "job-billing"})
    EXPECT_TRUE(is_safe_key(key)) << key;
  EXPECT_TRUE(is_safe_key(std::string(255, 'k')));
  for (char const *key : {"", "1a", "-a", ".a", "a b", "a=b", "é", "a{", "a,b", "a/b", "printer-uri", "copies"})
    EXPECT_FALSE(is_safe_key(key)) << key;
  EXPECT_FALSE(is_safe_key(std::string(256, 'k')));
}

}  // namespace
}  // namespace fax::host
