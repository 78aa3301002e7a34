// What the desktop portal knows about colours (org.freedesktop.portal.Settings on the session bus).
#pragma once
#include <optional>

#include "host/theme/palette.h"

namespace fax::theme {

// org.freedesktop.appearance, color-scheme: nothing when there is no bus, no portal, no preference, or no answer
// within a third of a second. Starts neither a bus nor a portal.
std::optional<Scheme> scheme_of_portal();

}  // namespace fax::theme
