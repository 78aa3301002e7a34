// The monkey's hand: events as a person's mouse and keyboard make them, put into the application's queue.
#pragma once
#import <AppKit/AppKit.h>

#include "random.h"

#include <string>

namespace monkey {

// At a place of the window's own coordinates. Two clicks are a double click.
void click(NSWindow *window, NSPoint place, int clicks = 1, unsigned modifiers = 0);
// A key by what it types, or by its function-key character.
void press(NSWindow *window, unichar key, unsigned modifiers = 0);
void type(NSWindow *window, std::string const &utf8);

// One thing that a person could do in this window. In words.
std::string act(Random &random, NSWindow *window);
// The menu of a pop-up is open and follows the mouse: chooses an item or lets go beside it. False when there is none.
bool choose_in_menu(Random &random);

}  // namespace monkey
