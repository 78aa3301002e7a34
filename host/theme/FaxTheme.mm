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

namespace {

double number_of_default(NSString *key) {
  return [[NSUserDefaults standardUserDefaults] doubleForKey:key];
}

// Before any other default of the user, for this process only.
void overrule_defaults(NSDictionary *values) {
  NSUserDefaults *const defaults = [NSUserDefaults standardUserDefaults];
  NSMutableDictionary *all = [NSMutableDictionary dictionary];
  if (NSDictionary *own = [defaults volatileDomainForName:NSArgumentDomain]) [all addEntriesFromDictionary:own];
  [all addEntriesFromDictionary:values];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:all forName:NSArgumentDomain];
}

// Large text is a large scale: windows grow with their text, so that everything keeps its place in them.
void use_scale(double asked, Desktop const &desktop) {
  Sizes sizes = screen_sizes();
  sizes.asked = asked;
  sizes.toolkit_scale = number_of_default(@"GSScaleFactor");
  sizes.toolkit_points = number_of_default(@"NSFontSize");
  sizes.font_points = font_wish(desktop.font).points;
  double const scale = scale_for(sizes);
  NSMutableDictionary *values = [NSMutableDictionary dictionary];
  [values setObject:[NSString stringWithFormat:@"%g", scale] forKey:@"GSScaleFactor"];
  if (sizes.toolkit_points > 0) [values setObject:@"12" forKey:@"NSFontSize"];
  // Letters stand where the font has them, not at whole points, which are more than pixels.
  if (scale > 1) [values setObject:@"17" forKey:@"GSFontHinting"];
  overrule_defaults(values);
}

// A family that the toolkit does not know, such as GTK's "Sans", leaves its own choice.
NSString *font_of_family(NSString *family, NSFontTraitMask traits) {
  NSFont *const font = [[NSFontManager sharedFontManager] fontWithFamily:family traits:traits weight:5 size:12];
  return [[font familyName] isEqualToString:family] ? [font fontName] : nil;
}

void use_font(Desktop const &desktop) {
  if ([[NSUserDefaults standardUserDefaults] stringForKey:@"NSFont"]) return;
  NSString *const family = [NSString stringWithUTF8String:font_wish(desktop.font).family.c_str()];
  if ([family length] == 0 || ![[[NSFontManager sharedFontManager] availableFontFamilies] containsObject:family]) return;
  NSString *const plain = font_of_family(family, 0);
  NSString *const bold = font_of_family(family, NSBoldFontMask);
  if (!plain || !bold) return;
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObjectsAndKeys:plain, @"NSFont", bold, @"NSBoldFont", nil]];
}

}  // namespace

void start_application(Choice choice, double scale) {
  Desktop const desktop = this_desktop();
  decided = scheme_for(choice, desktop);
  use_scale(scale, desktop);
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
  use_font(desktop);
}

}  // namespace fax::theme
