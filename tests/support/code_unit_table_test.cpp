#include "support/code_unit_table.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Table = std::vector<std::uint8_t>;
using Ranges = std::vector<char16_t>;
constexpr std::size_t kNoLimit = std::size_t(-1);

Table table_of(Ranges const &ranges) {
  Table table(fax::kCodeUnitTableSize, 0x55);
  fax::mark_code_units(table.data(), ranges.data());
  return table;
}

// The marked units as ranges again.
Ranges marked(Table const &table) {
  Ranges ranges;
  for (std::size_t unit = 0; unit < table.size(); ++unit) {
    EXPECT_LE(table[unit], 1);
    bool const before = unit > 0 && table[unit - 1] == 1;
    bool const after = unit + 1 < table.size() && table[unit + 1] == 1;
    if (table[unit] == 1 && !before) ranges.push_back(static_cast<char16_t>(unit));
    if (table[unit] == 1 && !after) ranges.push_back(static_cast<char16_t>(unit));
  }
  return ranges;
}

struct MarkCase {
  char const *name;
  Ranges list, expected;
};

TEST(CodeUnitTable, Marks) {
  MarkCase const cases[] = {
      {"one range", {0x30, 0x39, 0}, {0x30, 0x39}},
      {"one unit", {0x23, 0x23, 0}, {0x23, 0x23}},
      {"several", {0x30, 0x39, 0x23, 0x23, 0x3042, 0x3044, 0}, {0x23, 0x23, 0x30, 0x39, 0x3042, 0x3044}},
      {"backwards", {0x39, 0x30, 0x41, 0x41, 0}, {0x41, 0x41}},
      {"begins at 0", {0x0000, 0x001F, 0x30, 0x39, 0}, {}},
      {"empty", {0}, {}},
      {"to the last unit", {0xFFF0, 0xFFFF, 0}, {0xFFF0, 0xFFFF}},
      {"everything", {0x0001, 0xFFFF, 0}, {0x0001, 0xFFFF}},
  };
  for (auto const &c : cases) EXPECT_EQ(marked(table_of(c.list)), c.expected) << c.name;
}

TEST(CodeUnitTable, IsMadeOnceAndReplaced) {
  std::uint8_t *table = nullptr;
  fax::set_code_unit_table(&table, u"09");
  std::unique_ptr<std::uint8_t, void (*)(void *)> owner(table, std::free);
  ASSERT_NE(table, nullptr);
  std::uint8_t *const made = table;
  fax::set_code_unit_table(&table, u"az");
  EXPECT_EQ(table, made);
  EXPECT_EQ(marked(Table(table, table + fax::kCodeUnitTableSize)), (Ranges{'a', 'z'}));
  fax::set_code_unit_table(&table, nullptr);
  EXPECT_EQ(marked(Table(table, table + fax::kCodeUnitTableSize)), Ranges{});
}

TEST(Utf8Length, CountsBytes) {
  struct {
    std::u16string text;
    std::size_t length;
  } const cases[] = {{u"", 0},        {u"\x7F", 1},       {u"\u0080", 2},       {u"\u07FF", 2},
                     {u"\u0800", 3},  {u"\uFFFF", 3},     {u"\U0001F600", 4},   {u"a\U0010FFFFb", 6},
                     {u"\xD83D", 3},  {u"\xDE00\xD83D", 6}, {u"\xD83Dz", 4}};
  for (auto const &c : cases) EXPECT_EQ(fax::utf8_length(c.text), c.length);
}

struct RuleCase {
  char const *name;
  std::size_t max_length;
  Ranges acceptable, unacceptable;  // empty: no table
  std::u16string text;
  bool accepted;
};

class Rule : public testing::TestWithParam<RuleCase> {};

TEST_P(Rule, Accepts) {
  auto const &c = GetParam();
  Table const acceptable = c.acceptable.empty() ? Table() : table_of(c.acceptable);
  Table const unacceptable = c.unacceptable.empty() ? Table() : table_of(c.unacceptable);
  fax::TextRule const rule{c.max_length, acceptable.empty() ? nullptr : acceptable.data(),
                           unacceptable.empty() ? nullptr : unacceptable.data()};
  EXPECT_EQ(rule.accepts(c.text), c.accepted);
}

Ranges const kDigits{0x30, 0x39, 0}, kControls{0x01, 0x1F, 0};
RuleCase const kRuleCases[] = {
    {"anything_without_rules", kNoLimit, {}, {}, std::u16string(5000, u'\u3042'), true},
    {"at_the_limit", 4, {}, {}, u"1234", true},
    {"beyond_the_limit", 4, {}, {}, u"12345", false},
    {"limit_binds_bytes", 4, {}, {}, u"\u3042\u3044", false},
    {"six_of_three_bytes", 20, {}, {}, u"\u3042\u3042\u3042\u3042\u3042\u3042", true},
    {"seven_of_three_bytes", 20, {}, {}, u"\u3042\u3042\u3042\u3042\u3042\u3042\u3042", false},
    {"empty_with_limit_0", 0, {}, {}, u"", true},
    {"acceptable", kNoLimit, kDigits, {}, u"0159", true},
    {"not_acceptable_last", kNoLimit, kDigits, {}, u"01a", false},
    {"not_acceptable_first", kNoLimit, kDigits, {}, u"a01", false},
    {"empty_is_acceptable", kNoLimit, kDigits, {}, u"", true},
    {"nothing_acceptable", kNoLimit, {0}, {}, u"1", false},
    {"unacceptable", kNoLimit, {}, kControls, u"a\tb", false},
    {"not_unacceptable", kNoLimit, {}, kControls, u"ab", true},
    {"unacceptable_decides_alone", kNoLimit, kDigits, kControls, u"abc", true},
    {"unacceptable_decides_alone_refusing", kNoLimit, {0x01, 0x1F, 0}, kControls, u"\t", false},
    {"list_from_0_refuses_nothing", kNoLimit, {}, {0x00, 0x1F, 0}, u"\t", true},
    {"surrogates_are_two_units", kNoLimit, {0xD83D, 0xD83D, 0}, {}, u"\U0001F600", false},
    {"both_surrogates_allowed", kNoLimit, {0xD800, 0xDFFF, 0}, {}, u"\U0001F600", true},
    {"length_before_tables", 3, {}, kControls, u"abcd", false},
};
INSTANTIATE_TEST_SUITE_P(Table, Rule, testing::ValuesIn(kRuleCases),
                         [](auto const &i) { return std::string(i.param.name); });

}  // namespace
