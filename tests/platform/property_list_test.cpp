#include "platform/property_list.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace {

std::string big_endian(std::uint64_t number, int size) {
  std::string bytes;
  while (size-- > 0) bytes.push_back(char(number >> 8 * size));
  return bytes;
}

// A binary list of objects as they are stored; offsets and references take two bytes. The first one is the root.
struct Binary {
  std::vector<std::string> objects;
  std::uint64_t count = objects.size(), root = 0, table_moved = 0;
  int offset_size = 2, reference_size = 2;

  std::string bytes() const {
    std::string list = "bplist00", table;
    for (auto const &object : objects) {
      table += big_endian(list.size(), 2);
      list += object;
    }
    std::uint64_t const at = list.size() + table_moved;
    return list + table + std::string(6, '\0') + char(offset_size) + char(reference_size) + big_endian(count, 8) +
           big_endian(root, 8) + big_endian(at, 8);
  }
};

std::string reference(int index) { return big_endian(std::uint64_t(index), 2); }

// Each holds the next one, twice.
Binary chain(int length, bool twice) {
  Binary list;
  for (int i = 1; i < length; ++i)
    list.objects.push_back((twice ? "\xA2" : "\xA1") + reference(i) + (twice ? reference(i) : ""));
  list.objects.push_back("\x08");
  list.count = list.objects.size();
  return list;
}

std::string repeated(std::string const &text, int times) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

struct Row {
  char const *name;
  std::string data;
  bool safe;
};

class PropertyList : public testing::TestWithParam<Row> {};

TEST_P(PropertyList, IsSafe) { EXPECT_EQ(fax::is_safe_property_list(GetParam().data), GetParam().safe); }

std::string const kKey = "\x51k", kDate = "\x33" + big_endian(0x41B0000000000000, 8);

INSTANTIATE_TEST_SUITE_P(Binary, PropertyList, testing::Values(
    Row{"every_kind", Binary{{"\xA9" + reference(1) + reference(2) + reference(3) + reference(4) + reference(5) +
        reference(6) + reference(7) + reference(8) + reference(9), "\x09", "\x13" + big_endian(7, 8), kDate,
        "\x22" + big_endian(0, 4), "\x42xy", "\x5F\x10\x03xyz", "\x61" + "\0u"s, "\xD1" + reference(6) + reference(1),
        "\x80\x01"}}.bytes(), true},
    Row{"empty_list", Binary{{"\xA0"}}.bytes(), true},
    Row{"as_deep_as_may_be", chain(513, false).bytes(), true},
    Row{"too_deep", chain(514, false).bytes(), false},
    Row{"holds_itself", Binary{{"\xA1" + reference(0)}}.bytes(), false},
    Row{"holds_itself_as_a_value", Binary{{"\xD1" + reference(1) + reference(0), kKey}}.bytes(), false},
    Row{"grows_by_sharing", chain(30, true).bytes(), false},
    Row{"shares_a_little", chain(10, true).bytes(), true},
    Row{"reference_to_nothing", Binary{{"\xA1" + reference(1)}}.bytes(), false},
    Row{"references_cut_short", Binary{{"\xA2" + reference(0).substr(1)}}.bytes(), false},
    Row{"text_longer_than_the_list", Binary{{"\x5F\x12" + big_endian(0x7FFFFFFF, 4)}}.bytes(), false},
    Row{"text_of_all_numbers", Binary{{"\x6F\x12" + big_endian(0xFFFFFFFF, 4)}}.bytes(), false},
    Row{"count_of_eight_bytes", Binary{{"\x5F\x13" + big_endian(1, 8) + "x"}}.bytes(), false},
    Row{"count_that_is_a_text", Binary{{"\x5F\x51x"}}.bytes(), false},
    Row{"text_into_the_table", Binary{{"\x53xy"}}.bytes(), false},
    Row{"key_is_a_number", Binary{{"\xD1" + reference(1) + reference(1), "\x10\x01"}}.bytes(), false},
    Row{"key_is_a_list", Binary{{"\xD1" + reference(1) + reference(1), "\xA0"}}.bytes(), false},
    Row{"date_beyond_the_calendar", Binary{{"\x33" + big_endian(0x7FE0000000000000, 8)}}.bytes(), false},
    Row{"date_that_is_no_number", Binary{{"\x33" + big_endian(0x7FF8000000000000, 8)}}.bytes(), false},
    Row{"number_of_sixteen_bytes", Binary{{"\x14" + std::string(16, '\0')}}.bytes(), false},
    Row{"unknown_kind", Binary{{"\x70"}}.bytes(), false},
    Row{"root_is_not_there", Binary{.objects = {"\x08"}, .root = 1}.bytes(), false},
    Row{"no_objects", Binary{.objects = {}}.bytes(), false},
    Row{"more_objects_than_offsets", Binary{.objects = {"\x08"}, .count = 40}.bytes(), false},
    Row{"count_that_wraps", Binary{.objects = {"\x08"}, .count = 0x8000000000000001}.bytes(), false},
    Row{"table_outside", Binary{.objects = {"\x08"}, .table_moved = 99}.bytes(), false},
    Row{"table_that_wraps", Binary{.objects = {"\x08"}, .table_moved = ~std::uint64_t(0)}.bytes(), false},
    Row{"no_size_of_offsets", Binary{.objects = {"\x08"}, .offset_size = 0}.bytes(), false},
    Row{"large_references", Binary{.objects = {"\x08"}, .reference_size = 5}.bytes(), false},
    Row{"head_only", "bplist00", false}),
  [](auto const &info) { return std::string(info.param.name); });

std::string const kXml = "<?xml version=\"1.0\"?>";

INSTANTIATE_TEST_SUITE_P(Text, PropertyList, testing::Values(
    Row{"xml", kXml + "<!-- <a> --><plist><dict><key>k</key><array/></dict></plist>", true},
    Row{"xml_behind_spaces", "\n " + kXml + "<plist/>", true},
    Row{"xml_deep", kXml + repeated("<array>", 512) + repeated("</array>", 512), true},
    Row{"xml_too_deep", kXml + repeated("<array>", 513), false},
    Row{"xml_wide", kXml + repeated("<array></array><string/>", 9000), true},
    Row{"xml_ends_in_a_tag", kXml + "<plist><dict", false},
    Row{"xml_ends_in_a_comment", kXml + "<!-- ", false},
    Row{"xml_ends_with_a_bracket", kXml + "<", false},
    Row{"text", "{ a = (b, \"c\"); }", true},
    Row{"text_deep", repeated("{a=(", 256), true},
    Row{"text_too_deep", repeated("{a=(", 256) + "(", false},
    Row{"text_wide", repeated("()", 9000), true},
    Row{"brackets_in_quotes", "(\"\\\"" + repeated("(", 9000) + "\")", true},
    Row{"brackets_in_comments", "/*" + repeated("(", 9000) + "*/ x //" + repeated("(", 9000), true},
    Row{"quote_without_an_end", "\"((\\", true},
    Row{"nothing", "", true}),
  [](auto const &info) { return std::string(info.param.name); });

}  // namespace
