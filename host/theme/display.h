// Whether there is anything to draw on.
#pragma once

namespace fax::theme {

// Does the X server that DISPLAY names answer?
bool display_answers();

}  // namespace fax::theme
