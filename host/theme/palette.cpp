#include "host/theme/palette.h"

namespace fax::theme {

namespace {

constexpr Palette kLight{
    .window = hex(0xF4F5F7),
    .panel = hex(0xFAFBFC),
    .field = hex(0xFFFFFF),
    .stripe = hex(0xF5F7FA),
    .disabled_field = hex(0xEFF0F2),
    .button = hex(0xFFFFFF),
    .pressed = hex(0xE1E4E9),
    .disabled_button = hex(0xF4F5F7),
    .menu = hex(0xFFFFFF),
    .tip = hex(0x2B2F36),
    .selection = hex(0xCFE1FC),
    .idle_selection = hex(0xE2E5EA),
    .text = hex(0x1C2026),
    .quiet_text = hex(0x555C66),
    .disabled_text = hex(0x878D96),
    .tip_text = hex(0xFFFFFF),
    .accent = hex(0x1F62D0),
    .pressed_accent = hex(0x174CA5),
    .on_accent = hex(0xFFFFFF),
    .focus = hex(0x2368D6),
    .border = hex(0xBCC2CB),
    .separator = hex(0xDDE0E5),
    .knob = hex(0xB3B9C3),
    .glyph = hex(0x555C66),
    .note = hex(0x1F62D0),
    .warning = hex(0xC26A00),
    .stop = hex(0xC62B2B),
};

constexpr Palette kDark{
    .window = hex(0x23262B),
    .panel = hex(0x282C32),
    .field = hex(0x1B1E22),
    .stripe = hex(0x21252A),
    .disabled_field = hex(0x272A2F),
    .button = hex(0x353A42),
    .pressed = hex(0x454B55),
    .disabled_button = hex(0x2A2D33),
    .menu = hex(0x2B2F36),
    .tip = hex(0x41474F),
    .selection = hex(0x244A82),
    .idle_selection = hex(0x3A3F47),
    .text = hex(0xE8EAED),
    .quiet_text = hex(0xB0B6BF),
    .disabled_text = hex(0x858B95),
    .tip_text = hex(0xFFFFFF),
    .accent = hex(0x2F6FDB),
    .pressed_accent = hex(0x255BB8),
    .on_accent = hex(0xFFFFFF),
    .focus = hex(0x6FA3F7),
    .border = hex(0x555C67),
    .separator = hex(0x3A3F47),
    .knob = hex(0x656C78),
    .glyph = hex(0xB0B6BF),
    .note = hex(0x5A96F5),
    .warning = hex(0xE89A2C),
    .stop = hex(0xEF6060),
};

constexpr NamedColour kSystem[] = {
    {"windowBackgroundColor", &Palette::window},
    {"windowFrameColor", &Palette::border},
    {"windowFrameTextColor", &Palette::text},
    {"controlColor", &Palette::field},
    {"controlBackgroundColor", &Palette::field},
    {"controlHighlightColor", &Palette::pressed},
    {"controlLightHighlightColor", &Palette::idle_selection},
    {"controlShadowColor", &Palette::border},
    {"controlDarkShadowColor", &Palette::border},
    {"controlTextColor", &Palette::text},
    {"disabledControlTextColor", &Palette::disabled_text},
    {"highlightColor", &Palette::field},
    {"shadowColor", &Palette::border},
    {"textColor", &Palette::text},
    {"textBackgroundColor", &Palette::field},
    {"selectedTextColor", &Palette::text},
    {"selectedTextBackgroundColor", &Palette::selection},
    {"selectedControlColor", &Palette::selection},
    {"selectedControlTextColor", &Palette::text},
    {"alternateSelectedControlColor", &Palette::selection},
    {"alternateSelectedControlTextColor", &Palette::text},
    {"secondarySelectedControlColor", &Palette::idle_selection},
    {"selectedInactiveColor", &Palette::idle_selection},
    {"selectedMenuItemColor", &Palette::accent},
    {"selectedMenuItemTextColor", &Palette::on_accent},
    {"keyboardFocusIndicatorColor", &Palette::focus},
    {"selectedKnobColor", &Palette::glyph},
    {"knobColor", &Palette::knob},
    {"scrollBarColor", &Palette::window},
    {"headerColor", &Palette::panel},
    {"headerTextColor", &Palette::quiet_text},
    {"gridColor", &Palette::separator},
    {"rowBackgroundColor", &Palette::field},
    {"alternateRowBackgroundColor", &Palette::stripe},
    {"toolTipColor", &Palette::tip},
    {"toolTipTextColor", &Palette::tip_text},
};

}  // namespace

Palette const &palette(Scheme scheme) { return scheme == Scheme::dark ? kDark : kLight; }

std::span<NamedColour const> system_colours() { return kSystem; }

}  // namespace fax::theme
