#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>

#include "host/theme/icons.h"
#include "host/theme/palette.h"

using namespace fax::theme;

namespace {

// Relative luminance and contrast ratio as WCAG 2 defines them.
double linear(std::uint8_t part) {
  double const value = part / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double luminance(Colour c) { return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue); }
double contrast(Colour a, Colour b) {
  double const one = luminance(a) + 0.05, other = luminance(b) + 0.05;
  return one > other ? one / other : other / one;
}

using Member = Colour Palette::*;
struct Pair {
  char const *what;
  Member over, ground;
  double least;
};

constexpr double kText = 4.5;      // level AA, text of any size
constexpr double kPart = 3.0;      // parts of controls that carry meaning, and focus
constexpr double kDisabled = 2.5;  // exempt in WCAG; ours are to be readable all the same

constexpr Pair kPairs[] = {
    {"labels", &Palette::text, &Palette::window, kText},
    {"headings of boxes and tips in panels", &Palette::text, &Palette::panel, kText},
    {"typed text", &Palette::text, &Palette::field, kText},
    {"text in a stripe", &Palette::text, &Palette::stripe, kText},
    {"text in a selected row", &Palette::text, &Palette::selection, kText},
    {"text in an idle selected row", &Palette::text, &Palette::idle_selection, kText},
    {"a button's title", &Palette::text, &Palette::button, kText},
    {"a pressed button's title", &Palette::text, &Palette::pressed, kText},
    {"a menu's items", &Palette::text, &Palette::menu, kText},
    {"text that cannot be edited", &Palette::text, &Palette::disabled_field, kText},
    {"column titles", &Palette::quiet_text, &Palette::panel, kText},
    {"quiet text", &Palette::quiet_text, &Palette::window, kText},
    {"the default button's title", &Palette::on_accent, &Palette::accent, kText},
    {"the same, pressed", &Palette::on_accent, &Palette::pressed_accent, kText},
    {"links", &Palette::focus, &Palette::field, kText},
    {"tooltips", &Palette::tip_text, &Palette::tip, kText},
    {"the focus around fields", &Palette::focus, &Palette::window, kPart},
    {"the focus around buttons", &Palette::focus, &Palette::button, kPart},
    {"arrows", &Palette::glyph, &Palette::button, kPart},
    {"edges of check boxes", &Palette::glyph, &Palette::window, kPart},
    {"checked boxes", &Palette::accent, &Palette::window, kPart},
    {"note", &Palette::note, &Palette::window, kPart},
    {"warning", &Palette::warning, &Palette::window, kPart},
    {"stop", &Palette::stop, &Palette::window, kPart},
    {"disabled labels", &Palette::disabled_text, &Palette::window, kDisabled},
    {"disabled fields", &Palette::disabled_text, &Palette::disabled_field, kDisabled},
    {"disabled buttons", &Palette::disabled_text, &Palette::disabled_button, kDisabled},
    {"disabled menu items", &Palette::disabled_text, &Palette::menu, kDisabled},
};

TEST(Contrast, IsTheStandardsRatio) {
  EXPECT_NEAR(contrast(hex(0x000000), hex(0xFFFFFF)), 21, 0.01);
  EXPECT_NEAR(contrast(hex(0x777777), hex(0xFFFFFF)), 4.48, 0.01);
}

TEST(Contrast, SufficesForEverythingThatIsRead) {
  for (Scheme scheme : {Scheme::light, Scheme::dark}) {
    Palette const &colours = palette(scheme);
    for (Pair const &pair : kPairs)
      EXPECT_GE(contrast(colours.*pair.over, colours.*pair.ground), pair.least)
          << pair.what << (scheme == Scheme::dark ? ", dark" : ", light");
  }
}

// Whatever the toolkit writes, it writes one of these text colours over one of these grounds.
TEST(Contrast, SufficesBetweenTheToolkitsOwnNames) {
  std::map<std::string, Member> named;
  for (NamedColour const &entry : system_colours()) EXPECT_TRUE(named.emplace(entry.name, entry.colour).second);
  std::pair<char const *, char const *> const pairs[] = {
      {"controlTextColor", "windowBackgroundColor"},
      {"controlTextColor", "controlBackgroundColor"},
      {"controlTextColor", "controlColor"},
      {"controlTextColor", "controlLightHighlightColor"},
      {"textColor", "textBackgroundColor"},
      {"textColor", "rowBackgroundColor"},
      {"textColor", "alternateRowBackgroundColor"},
      {"selectedTextColor", "selectedTextBackgroundColor"},
      {"selectedControlTextColor", "selectedControlColor"},
      {"alternateSelectedControlTextColor", "alternateSelectedControlColor"},
      {"alternateSelectedControlTextColor", "secondarySelectedControlColor"},
      {"selectedMenuItemTextColor", "selectedMenuItemColor"},
      {"headerTextColor", "headerColor"},
      {"windowFrameTextColor", "windowBackgroundColor"},
      {"toolTipTextColor", "toolTipColor"},
  };
  for (Scheme scheme : {Scheme::light, Scheme::dark}) {
    for (auto const &[over, ground] : pairs) {
      ASSERT_TRUE(named.contains(over) && named.contains(ground)) << over << " on " << ground;
      EXPECT_GE(contrast(palette(scheme).*named[over], palette(scheme).*named[ground]), kText)
          << over << " on " << ground;
    }
  }
}

TEST(Picture, CoversItsShapesAndNothingElse) {
  struct Case {
    char const *what;
    void (*draw)(Picture &);
    double area;  // square points
  };
  Case const cases[] = {
      {"circle", [](Picture &p) { p.circle({10, 10}, 6, hex(0xFF0000)); }, M_PI * 36},
      {"rounded", [](Picture &p) { p.rounded({2, 4}, 14, 10, 3, hex(0xFF0000)); }, 140 - (4 - M_PI) * 9},
      {"stroke", [](Picture &p) { p.stroke({{5, 10}, {15, 10}}, 4, hex(0xFF0000)); }, 40 + M_PI * 4},
      {"convex", [](Picture &p) { p.convex({{2, 2}, {18, 2}, {2, 18}}, hex(0xFF0000)); }, 128},
      {"turned the other way", [](Picture &p) { p.convex({{2, 2}, {2, 18}, {18, 2}}, hex(0xFF0000)); }, 128},
  };
  for (double scale : {1.0, 1.5, 2.0}) {
    for (Case const &one : cases) {
      Picture picture(20, 20, scale);
      one.draw(picture);
      ASSERT_EQ(picture.columns(), 20 * scale);
      double covered = 0;
      for (std::size_t at = 0; at < picture.pixels().size(); at += 4) {
        EXPECT_EQ(picture.pixels()[at], picture.pixels()[at + 3]) << "red is multiplied by alpha";
        EXPECT_EQ(picture.pixels()[at + 1], 0);
        covered += picture.pixels()[at + 3] / 255.0;
      }
      EXPECT_NEAR(covered / (scale * scale), one.area, one.area * 0.03) << one.what << " at " << scale;
    }
  }
}

// A picture that reaches over its edge would be cut, an empty one would be a control that cannot be seen.
TEST(Icons, AreDrawnInEveryScheme) {
  for (Scheme scheme : {Scheme::light, Scheme::dark}) {
    for (ControlPicture const &control : control_pictures()) {
      Picture picture(control.width, control.height);
      control.draw(picture, palette(scheme));
      auto const &pixels = picture.pixels();
      bool const blank = std::all_of(pixels.begin(), pixels.end(), [](auto byte) { return byte == 0; });
      EXPECT_EQ(blank, control.name.starts_with("common_ret")) << control.name;
    }
    std::set<std::vector<std::uint8_t>> different;
    for (AlertKind kind : {AlertKind::note, AlertKind::warning, AlertKind::stop})
      different.insert(alert_picture(kind, palette(scheme), 1).pixels());
    EXPECT_EQ(different.size(), 3u);
  }
}

}  // namespace
