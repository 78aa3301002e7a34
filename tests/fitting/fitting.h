// Whether everything that a window says can be read: measured with the fonts that draw it.
#pragma once
#import <AppKit/AppKit.h>

#include <string>
#include <vector>

namespace test {

// One line for each fault of the window, hidden views left out; every page of a tab view is looked at, and the one that
// was shown is shown again. A fault is
//   - a text wider than its place: labels, buttons, boxes, tabs, headings of columns, every item of a pop-up, titles of
//     windows; of labels that break lines, a text higher than its place;
//   - a text with a letter that no font has;
//   - a control that lies outside the view around it;
//   - two controls beside each other that overlap.
// What a user types or a list holds is not measured: it can be scrolled.
std::vector<std::string> fitting_report(NSWindow *window);

// The fault of one label if it showed this text, bold or not; "" when it fits.
std::string fitting_fault(NSTextField *label, NSString *text, bool bold);

}  // namespace test
