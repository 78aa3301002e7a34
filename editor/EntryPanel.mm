#import "editor/EntryPanel.h"

#import "editor/controls.h"
#import "toolkit/controls.h"
#import "toolkit/text.h"

#include "editor/core/entry_rules.h"

using namespace fax::editor;
using namespace fax::toolkit;

struct EntryPanelState {
  Person person;
  SavePerson const &save;
};

@implementation EntryPanel

- (NSScrollView *)makeNote {
  CGFloat const height = 4 * text_height() + 12;
  NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 300, height)] autorelease];
  [scroll setBorderType:NSBezelBorder];
  [scroll setHasVerticalScroller:YES];
  [scroll setHasHorizontalScroller:NO];
  [scroll setAutohidesScrollers:YES];
  _note = [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, [scroll contentSize].width, text_height())] autorelease];
  [_note setRichText:NO];
  [_note setFont:[NSFont systemFontOfSize:0]];
  [_note setHorizontallyResizable:NO];
  [_note setVerticallyResizable:YES];
  [_note setAutoresizingMask:NSViewWidthSizable];
  [[_note textContainer] setWidthTracksTextView:YES];
  [_note setDelegate:(id)self];
  [scroll setDocumentView:_note];
  return scroll;
}

- (id)initWithPerson:(Person const &)person groups:(std::string const &)groups save:(SavePerson const &)save {
  NSString *title = person.id == 0 ? ns(tr("New Entry")) : ns(tr("Edit Entry"));
  if (!(self = [super initWithTitle:title accept:ns(tr("Save"))])) return nil;
  _state = new EntryPanelState{person, save};
  _name = make_field([NSTextField class]);
  _number = make_field([NSTextField class]);
  _company = make_field([NSTextField class]);
  NSScrollView *note = [self makeNote];
  [self addField:_name label:ns(tr("Name:"))];
  [self addField:_number label:ns(tr("Fax number:"))];
  [self addField:_company label:ns(tr("Company:"))];
  [self addField:note label:ns(tr("Note:"))];
  NSTextField *groupNames = make_label(ns(groups.empty() ? "\u2013" : groups));
  [[groupNames cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  [self addField:groupNames label:ns(tr("Groups:"))];
  [self layOutWithWidth:480 tall:note];
  [_name setStringValue:ns(person.name)];
  [_number setStringValue:ns(person.number)];
  [_company setStringValue:ns(person.company)];
  [_note setString:ns(person.note)];
  [_number setDelegate:(id)self];
  [self setFocusOrder:[NSArray arrayWithObjects:_name, _number, _company, _note, nil]];
  return self;
}

- (void)dealloc {
  [_number setDelegate:nil];
  [_note setDelegate:nil];
  delete _state;
  [super dealloc];
}

- (BOOL)run {
  return [self runFrom:_name];
}

- (void)controlTextDidChange:(NSNotification *)notification {
  [self showHint:ns(hint_about(utf8([_number stringValue])))];
}

// Tab leaves the note; the other keys are the text's.
- (BOOL)textView:(NSTextView *)view doCommandBySelector:(SEL)command {
  if (sel_isEqual(command, @selector(insertTab:))) {
    [_panel selectKeyViewFollowingView:view];
    return YES;
  }
  if (sel_isEqual(command, @selector(insertBacktab:))) {
    [_panel selectKeyViewPrecedingView:view];
    return YES;
  }
  return NO;
}

// A text that was not touched stays as it is, whatever it holds.
static std::string Typed(NSString *text, std::string const &before) {
  std::string const now = utf8(text);
  return now == before ? before : one_line(now);
}

- (NSView *)viewOf:(EntryField)field {
  switch (field) {
    case EntryField::number: return _number;
    case EntryField::company: return _company;
    case EntryField::note: return _note;
    case EntryField::name: break;
  }
  return _name;
}

- (BOOL)accepts {
  Person person = _state->person;
  person.name = Typed([_name stringValue], person.name);
  person.number = Typed([_number stringValue], person.number);
  person.company = Typed([_company stringValue], person.company);
  person.note = utf8([_note string]);
  if (person.name != _state->person.name) person.index_key.clear();
  if (auto const fault = fault_of(person)) {
    [self showError:ns(fault->text)];
    [_panel makeFirstResponder:[self viewOf:fault->field]];
    return NO;
  }
  std::string const problem = _state->save(person);
  if (problem.empty()) return YES;
  [self showError:ns(problem)];
  [_panel makeFirstResponder:_name];
  return NO;
}

@end
