#include "host/x_display.h"

#include <X11/Xlib.h>

namespace fax::host {

std::optional<std::pair<int, int>> window_origin(void *display, unsigned long window) {
  auto *server = static_cast<Display *>(display);
  if (!server || !window) return std::nullopt;
  int x = 0, y = 0;
  Window child = 0;
  if (!XTranslateCoordinates(server, window, DefaultRootWindow(server), 0, 0, &x, &y, &child)) return std::nullopt;
  return std::pair{x, y};
}

void keep_above(void *display, unsigned long window, unsigned long parent) {
  if (display && window && parent) XSetTransientForHint(static_cast<Display *>(display), window, parent);
}

void finish_drawing(void *display) {
  if (display) XSync(static_cast<Display *>(display), False);
}

}  // namespace fax::host
