// An alert without an informative text shows none (the toolkit writes "No information" there), and Escape presses the
// second of two buttons in every language (the toolkit gives it to the English "Cancel").
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id()> init{"NSAlert", "init", [](id self, SEL command) -> id {
                         NSAlert *alert = init(self, command);
                         [alert setInformativeText:@""];
                         return alert;
                       }};

fax::Repair<NSButton *(NSString *)> add_button{
    "NSAlert", "addButtonWithTitle:", [](id self, SEL command, NSString *title) -> NSButton * {
      NSButton *const button = add_button(self, command, title);
      if ([[self buttons] count] == 2 && [[button keyEquivalent] length] == 0) [button setKeyEquivalent:@"\033"];
      return button;
    }};

}  // namespace
