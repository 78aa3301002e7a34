// Work that takes its time, on a thread of its own, behind a modal window with a bar and a Cancel button.
#pragma once
#import <AppKit/AppKit.h>

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <thread>

namespace fax::host {

// Bytes done and in all; false asks the work to stop. To be called on the work's own thread.
using ProgressCall = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// Runs work and returns when it is over; until then the window says what is done. work sees no Objective-C object. What
// it throws is thrown here. Main thread only.
void run_with_progress(NSString *what, std::function<void(ProgressCall const &)> const &work);

}  // namespace fax::host
