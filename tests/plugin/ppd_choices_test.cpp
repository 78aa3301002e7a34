#include "plugin/ppd_choices.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// An option with these choices; a choice that begins with '*' is marked.
struct Option {
  Option(char const *default_choice, std::vector<std::string> const &names) : choices(names.size()) {
    std::strcpy(option.defchoice, default_choice);
    for (std::size_t i = 0; i < names.size(); i++) {
      bool const marked = names[i].starts_with('*');
      std::strcpy(choices[i].choice, names[i].c_str() + (marked ? 1 : 0));
      choices[i].marked = marked;
    }
    option.choices = choices.data();
    option.num_choices = int(choices.size());
  }
  ppd_option_t option{};
  std::vector<ppd_choice_t> choices;
};

std::string name_of(ppd_choice_t const *choice) { return choice != nullptr ? choice->choice : "(none)"; }

TEST(PpdChoices, InitialAndDefaultChoiceUseDifferentTests) {
  struct {
    char const *default_choice;
    std::vector<std::string> names;
    char const *initial, *by_default;
  } const cases[] = {
      {"C", {"A", "*B", "C"}, "B", "C"},
      {"C", {"A", "B", "C"}, "C", "C"},
      {"Fine", {"Std", "Fine", "FineText"}, "FineText", "Fine"},
      {"Fine", {"FineText", "Fine"}, "Fine", "Fine"},
      {"Fine", {"*Std", "Fine", "FineText"}, "Std", "Fine"},
      {"Fine", {"Fine", "FineText", "*Std"}, "Std", "Fine"},
      {"", {"A", "B"}, "B", "(none)"},
      {"", {"*A", "B"}, "A", "(none)"},
      {"X", {"A", "B"}, "(none)", "(none)"},
      {"X", {}, "(none)", "(none)"},
  };
  for (auto const &row : cases) {
    Option option(row.default_choice, row.names);
    EXPECT_EQ(name_of(fax::initial_choice(option.option)), row.initial) << row.default_choice;
    EXPECT_EQ(name_of(fax::default_choice(option.option)), row.by_default) << row.default_choice;
  }
}

TEST(PpdChoices, AGroupIsFoundByItsExactName) {
  ppd_group_t groups[2]{};
  std::strcpy(groups[0].name, "QXFaxSettingsMore");
  std::strcpy(groups[1].name, "QXFaxSettings");
  ppd_file_t ppd{};
  ppd.num_groups = 2;
  ppd.groups = groups;
  EXPECT_EQ(fax::find_group(&ppd, "QXFaxSettings"), &groups[1]);
  EXPECT_EQ(fax::find_group(&ppd, "General"), nullptr);
  EXPECT_EQ(fax::find_group(nullptr, "General"), nullptr);
}

}  // namespace
