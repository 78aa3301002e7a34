// The window of one alert, filled from the toolkit's object. -[NSAlert runModal] shows it wherever the theme is linked.
#pragma once
#import <AppKit/AppKit.h>

@interface FaxAlertPanel : NSPanel {
  NSArray *_buttons;
}
// Takes over the alert's buttons; one titled "OK" is added where there is none. A text that is too long scrolls.
- (id)initWithAlert:(NSAlert *)alert;
- (NSInteger)run;  // the tag of the button that was pressed
@end
