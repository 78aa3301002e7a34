// The few things that only the X server can tell. Pointers and numbers are those of Xlib, without its names.
#pragma once

#include <optional>
#include <utility>

namespace fax::host {

// The pixel of the root window at which a window's own area (without the window manager's border) begins. display is a
// Display *, window an X window's number. Nothing when the server does not know the window.
std::optional<std::pair<int, int>> window_origin(void *display, unsigned long window);

// Tells the window manager to keep a window above its parent.
void keep_above(void *display, unsigned long window, unsigned long parent);

// Returns when the server has done everything that it was told.
void finish_drawing(void *display);

}  // namespace fax::host
