// What the desktop portal knows about looks (org.freedesktop.portal.Settings on the session bus).
#pragma once
#include <optional>
#include <string>

#include "host/theme/palette.h"

namespace fax::theme {

struct PortalLooks {
  std::optional<Scheme> scheme;  // org.freedesktop.appearance, color-scheme; nothing without a preference
  std::string font;              // org.gnome.desktop.interface, font-name, such as "Cantarell 11"; may be empty
};

// Empty when there is no bus, no portal, or no answer within a third of a second. Starts neither a bus nor a portal.
PortalLooks looks_of_portal();

}  // namespace fax::theme
