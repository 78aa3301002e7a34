#import "editor/NamePanel.h"

#import "editor/controls.h"
#import "toolkit/text.h"

using namespace fax::editor;
using namespace fax::toolkit;

struct NamePanelState {
  CheckText const &check;
};

@implementation NamePanel

- (id)initWithTitle:(NSString *)title
              label:(NSString *)label
             accept:(NSString *)accept
               hint:(NSString *)hint
             secret:(BOOL)secret
              check:(CheckText const &)check {
  if (!(self = [super initWithTitle:title accept:accept])) return nil;
  _state = new NamePanelState{check};
  _field = make_field(secret ? [NSSecureTextField class] : [NSTextField class]);
  [self addField:_field label:label];
  [self layOutWithWidth:440 tall:nil];
  [self showHint:hint];
  [self setFocusOrder:[NSArray arrayWithObject:_field]];
  return self;
}

- (void)dealloc {
  delete _state;
  [super dealloc];
}

- (BOOL)run {
  return [self runFrom:_field];
}

- (std::string)text {
  return utf8([_field stringValue]);
}

- (BOOL)accepts {
  std::string const problem = _state->check([self text]);
  if (problem.empty()) return YES;
  [self showError:ns(problem)];
  [_panel makeFirstResponder:_field];
  return NO;
}

@end
