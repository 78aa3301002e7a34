// The fence around what an extension's controls and timers do while no operation of it runs. An exception out of an
// action, an event or a timer would otherwise leave the application's loop, and the dialog with all that was typed.
#pragma once
#import <Foundation/Foundation.h>

// Posted on the main thread after such an exception; the object is an NSString, one sentence for the user. What of the
// event had not been done yet is left undone. That the display is gone is no such exception, and passes.
extern NSString *const HostEventDidFail;
