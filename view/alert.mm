#import "view/alert.h"

namespace fax {

namespace {

NSString *text_in(NSBundle *bundle, NSString *key) {
  NSString *text = [bundle localizedStringForKey:key value:nil table:nil];
  return text != nil ? text : key;
}

}  // namespace

bool run_alert(NSBundle *bundle, NSString *message, NSString *informative, std::initializer_list<NSString *> buttons) {
  NSAlert *alert = [[NSAlert alloc] init];
  [alert setMessageText:text_in(bundle, message)];
  if (informative != nil) [alert setInformativeText:text_in(bundle, informative)];
  for (NSString *button : buttons) [alert addButtonWithTitle:text_in(bundle, button)];
  NSInteger const chosen = [alert runModal];
  [alert release];
  return chosen == NSAlertFirstButtonReturn;
}

}  // namespace fax
