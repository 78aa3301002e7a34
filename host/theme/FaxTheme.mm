#import "host/theme/FaxTheme.h"

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"

using namespace fax::theme;

static Scheme decided = Scheme::light;

namespace {

// The toolkit draws anew what tells by itself that it has the focus; here fields and tables tell it by their frames.
fax::Repair<BOOL(NSResponder *)> make_first_responder{
    "NSWindow", "makeFirstResponder:", [](id self, SEL command, NSResponder *next) -> BOOL {
      NSWindow *window = self;
      id const before = [window firstResponder];
      if ([before isKindOfClass:[NSView class]]) refresh_focus(before);
      BOOL const made = make_first_responder(self, command, next);
      id const after = [window firstResponder];
      if ([after isKindOfClass:[NSView class]]) refresh_focus(after);
      return made;
    }};

// A field loses its editor before the focus moves on, so only here it is still known which field that was.
fax::Repair<void(NSText *)> end_editing{"NSCell", "endEditing:", [](id self, SEL command, NSText *editor) {
                                          id const field = [editor delegate];
                                          end_editing(self, command, editor);
                                          if ([field isKindOfClass:[NSView class]])
                                            [static_cast<NSView *>(field) setNeedsDisplay:YES];
                                        }};

}  // namespace

@implementation FaxTheme

// That of the theme in the user's defaults: at each change of any default the toolkit replaces a theme with another name.
- (NSString *)name {
  NSString *const chosen = [[NSUserDefaults standardUserDefaults] stringForKey:@"GSTheme"];
  return [chosen length] == 0 ? @"GNUstep" : [[chosen lastPathComponent] stringByDeletingPathExtension];
}

- (id)initWithBundle:(NSBundle *)bundle {
  if (!(self = [super initWithBundle:bundle])) return nil;
  for (NSString *change : {NSWindowDidBecomeKeyNotification, NSWindowDidResignKeyNotification}) {
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(keyWindowChanged:)
                                                 name:change
                                               object:nil];
  }
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [_systemColours release];
  [super dealloc];
}

// Focus is shown in the window that has the keyboard only.
- (void)keyWindowChanged:(NSNotification *)notification {
  id const first = [static_cast<NSWindow *>([notification object]) firstResponder];
  if ([first isKindOfClass:[NSView class]]) refresh_focus(first);
}

// Not the program's own: the toolkit would take defaults for every program from it.
- (NSDictionary *)infoDictionary {
  return [NSDictionary dictionary];
}

- (NSColorList *)colors {
  if (_systemColours) return _systemColours;
  _systemColours = [[NSColorList alloc] initWithName:@"System" fromFile:nil];
  for (NamedColour const &named : system_colours()) {
    [_systemColours setColor:ns(current_palette().*named.colour)
                      forKey:[NSString stringWithUTF8String:named.name.data()]];
  }
  return _systemColours;
}

// The drawing methods know the palette; nothing is looked for on the disk.
- (NSColor *)colorNamed:(NSString *)name state:(GSThemeControlState)state {
  return nil;
}

// There are no pictures to make borders of; the toolkit would look for each on the disk.
- (GSDrawTiles *)tilesNamed:(NSString *)name state:(GSThemeControlState)state {
  return nil;
}

@end

namespace fax::theme {

Palette const &current_palette() { return palette(decided); }

void start_application(Choice choice) {
  decided = scheme_for(choice, this_desktop());
  // Scrollers stand on the right, where everybody looks for them, and tips are as large as other text.
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObjectsAndKeys:@"NSMacintoshInterfaceStyle",
                                                                  @"NSScrollViewInterfaceStyle", @"11",
                                                                  @"NSToolTipsFontSize", nil]];
  FaxTheme *theme = [[FaxTheme alloc] initWithBundle:[NSBundle mainBundle]];
  [GSTheme setTheme:theme];
  [theme release];
  register_pictures(current_palette());
  [NSApplication sharedApplication];
}

}  // namespace fax::theme
