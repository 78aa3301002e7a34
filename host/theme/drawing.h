// What the parts of the theme share.
#pragma once
#import <AppKit/AppKit.h>

#include "host/theme/palette.h"

namespace fax::theme {

// The scheme that was decided for this process.
Palette const &current_palette();

// Autoreleased.
NSColor *ns(Colour colour);

void fill(NSRect area, Colour colour);
// Fills to the very edge, then draws a line of this width inside it. Without a line the fill alone.
void rounded(NSRect area, CGFloat radius, Colour ground);
void rounded(NSRect area, CGFloat radius, Colour ground, Colour line, CGFloat width = 1);
void outline(NSRect area, CGFloat radius, Colour line, CGFloat width = 1);

// An angle that points towards an edge of the coordinates in use.
void draw_chevron(NSPoint middle, CGFloat size, NSRectEdge towards, Colour colour);
// A ring of dots of which one leads; count: how often it has moved on.
void draw_spinner(NSRect area, int count, Colour colour);

// True when what is typed goes to this view, itself or by the field editor.
bool has_focus(NSView *view);

// Has drawn again what shows a view's focus: itself, the field that an editor works for, the scroll view around it.
void refresh_focus(NSView *view);

// Every picture under its name, so that the toolkit never searches for one.
void register_pictures(Palette const &palette);
// Autoreleased.
NSImage *alert_image(NSAlertStyle style);

inline constexpr CGFloat kRadius = 5;

}  // namespace fax::theme
