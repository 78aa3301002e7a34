// The pictures of the theme: those that the toolkit's controls ask for by name, the program's and the alerts'.
#pragma once
#include <span>
#include <string_view>

#include "host/theme/picture.h"

namespace fax::theme {

// What a control shows, under the name that the toolkit knows it by. The sizes, in points, are part of its layout.
struct ControlPicture {
  std::string_view name;
  double width, height;
  void (*draw)(Picture &, Palette const &);
};
std::span<ControlPicture const> control_pictures();
bool looks_like(ControlPicture const &one, ControlPicture const &other);

enum class AlertKind { note, warning, stop };

// 48 points square.
Picture alert_picture(AlertKind kind, Palette const &palette, double scale);

// A sheet in a fax machine, the same in every scheme; square.
Picture program_picture(double side);

}  // namespace fax::theme
