#include "plugin/fax_options.h"

#include <gtest/gtest.h>

namespace {

TEST(SenderControls, FollowCoverPageAndSenderMode) {
  struct {
    std::optional<std::string_view> cover, mode;
    bool mode_enabled, name_enabled;
  } const cases[] = {
      {"None", "EnterName", false, false},
      {"None", std::nullopt, false, false},
      {"Standard", "EnterName", true, true},
      {"Standard", "PrinterName", true, false},
      {"Standard", std::nullopt, true, false},
      {std::nullopt, "EnterName", true, true},
      {std::nullopt, std::nullopt, true, false},
      {"none", "EnterName", true, true},
      {"", "entername", true, false},
  };
  for (auto const &row : cases) {
    SCOPED_TRACE(std::string(row.cover.value_or("-")) + " " + std::string(row.mode.value_or("-")));
    fax::SenderControls const controls = fax::sender_controls(row.cover, row.mode);
    EXPECT_EQ(controls.mode_enabled, row.mode_enabled);
    EXPECT_EQ(controls.name_enabled, row.name_enabled);
  }
}

TEST(EditorArguments, OneArgumentHoldsKeyAndValue) {
  using Arguments = std::vector<std::string>;
  EXPECT_EQ(fax::editor_arguments(""), Arguments{"-DFAXConnectionType USB"});
  EXPECT_EQ(fax::editor_arguments("192.168.1.20"),
            (Arguments{"-DFAXConnectionType NET", "-DFAXAddress 192.168.1.20"}));
  EXPECT_EQ(fax::editor_arguments("fe80::1%en0"), (Arguments{"-DFAXConnectionType NET", "-DFAXAddress fe80::1%en0"}));
}

}  // namespace
