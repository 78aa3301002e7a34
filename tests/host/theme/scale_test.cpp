#include <gmock/gmock.h>

#include "host/theme/scale.h"

using namespace fax::theme;

namespace {

TEST(Scale, FollowsWhatIsNearest) {
  struct Case {
    Sizes sizes;
    double expected;
  };
  Case const cases[] = {
      {{}, 1},
      {{.gdk_scale = "2"}, 2},
      {{.gdk_scale = "nonsense", .dots_per_inch = 144}, 1.5},
      {{.gdk_scale = "2", .dots_per_inch = 192}, 2},
      {{.dots_per_inch = 72}, 1},
      {{.font_points = 10}, 1},
      {{.font_points = 18}, 1.625},
      {{.toolkit_points = 18, .font_points = 11}, 1.5},
      {{.toolkit_points = 18, .dots_per_inch = 120}, 1.875},
      {{.toolkit_scale = 1.5, .gdk_scale = "3"}, 1.5},
      {{.own = "1.25", .toolkit_scale = 3}, 1.25},
      {{.own = "large", .toolkit_scale = 2}, 2},
      {{.asked = 1.75, .own = "1.25"}, 1.75},
      {{.asked = 1.3}, 1.25},
      {{.toolkit_scale = 90}, kLargestScale},
      {{.asked = 3, .screen_width = 1280, .screen_height = 1024}, 1.5},
      {{.asked = 2, .screen_width = 640, .screen_height = 480}, 1},
  };
  for (std::size_t at = 0; at < std::size(cases); ++at)
    EXPECT_EQ(scale_for(cases[at].sizes), cases[at].expected) << "case " << at;
}

TEST(Scale, TakesAWordForANumber) {
  for (char const *word : {"", "0.5", "5", "1,5", "1.5x", "nan", "inf", "-2"}) EXPECT_EQ(scale_named(word), 0) << word;
  EXPECT_EQ(scale_named("1.5"), 1.5);
}

TEST(Scale, FindsFamilyAndSizeOfAFont) {
  struct Case {
    char const *name;
    char const *family;
    double points;
  };
  Case const cases[] = {
      {"Cantarell 11", "Cantarell", 11},     {"DejaVu Sans Bold Italic 10.5", "DejaVu Sans", 10.5},
      {"Noto Sans, Medium 12", "Noto Sans", 12}, {"Sans", "Sans", 0},
      {"Source Code Pro Semi-Bold", "Source Code Pro", 0}, {"", "", 0}, {"18", "", 18}, {" , ", "", 0},
  };
  for (Case const &one : cases) {
    FontWish const wish = font_wish(one.name);
    EXPECT_EQ(wish.family, one.family) << one.name;
    EXPECT_EQ(wish.points, one.points) << one.name;
  }
}

}  // namespace
