// The colours of the theme, light and dark. No toolkit in here: what can be read on what is a matter of numbers.
#pragma once
#include <cstdint>
#include <span>
#include <string_view>

namespace fax::theme {

enum class Scheme { light, dark };

// sRGB.
struct Colour {
  std::uint8_t red, green, blue;
  friend bool operator==(Colour, Colour) = default;
};

// 0xRRGGBB.
constexpr Colour hex(std::uint32_t rgb) {
  return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8), static_cast<std::uint8_t>(rgb)};
}

struct Palette {
  // Grounds.
  Colour window, panel, field, stripe, disabled_field;
  Colour button, pressed, disabled_button;
  Colour menu, tip;  // tip: of tooltips
  Colour selection;       // of a row or of text, where the keyboard goes
  Colour idle_selection;  // where it does not
  // What is written on them.
  Colour text, quiet_text, disabled_text, tip_text;
  // The one strong colour: default button, chosen menu item, what is switched on, focus.
  Colour accent, pressed_accent, on_accent, focus;
  // Lines and small parts.
  Colour border, separator, knob, glyph;
  // Kinds of alert.
  Colour note, warning, stop;
};

Palette const &palette(Scheme scheme);

// A colour that the toolkit and its programs ask for by name.
struct NamedColour {
  std::string_view name;
  Colour Palette::*colour;
};
std::span<NamedColour const> system_colours();

}  // namespace fax::theme
