// The bundle's alerts: a message, buttons in order, run modally.
#pragma once
#import <AppKit/AppKit.h>

#include <initializer_list>

namespace fax {

// Texts are keys into the bundle's default string table. informative may be nil. The first button is the default one.
// True when the first button was chosen.
bool run_alert(NSBundle *bundle, NSString *message, NSString *informative, std::initializer_list<NSString *> buttons);

}  // namespace fax
