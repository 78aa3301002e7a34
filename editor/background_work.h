// Work that takes long, on a thread of its own, while the windows are drawn.
#pragma once
#import <AppKit/AppKit.h>

#include <functional>

namespace fax::editor {

using Share = std::function<void(double)>;  // 0 to 1

enum class Ending { done, cancelled };
enum class Cancel { impossible, possible };

// Runs work and returns when it is over. After a moment a window says what goes on. What work throws is thrown here.
//
// Cancel::possible: the window has a Cancel button, and then this returns at once; the thread is left to itself until
// its next call of Share, which throws. So work must own all that it uses.
Ending run_aside(NSString *what, Cancel cancel, std::function<void(Share const &)> work);

}  // namespace fax::editor
