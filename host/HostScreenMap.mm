#import "host/HostScreenMap.h"

#import <GNUstepGUI/GSDisplayServer.h>
#import <objc/runtime.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <set>

#include "host/x_display.h"

#import "host/controls.h"
#import "host/fence.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

namespace fax::host {
namespace {

// The outlets of an object: for each view that an instance variable holds, the variable's name.
void add_outlets(id owner, std::map<void *, std::string> &names, std::set<void *> &seen) {
  if (!owner || !seen.insert(owner).second) return;
  for (Class at = object_getClass(owner); at; at = class_getSuperclass(at)) {
    char const *name = class_getName(at);
    if (name[0] == 'N' && name[1] == 'S') return;
    unsigned int count = 0;
    Ivar *variables = class_copyIvarList(at, &count);
    for (unsigned int index = 0; index < count; ++index) {
      char const *type = ivar_getTypeEncoding(variables[index]);
      if (!type || type[0] != '@') continue;
      if (void *held = object_getIvar(owner, variables[index])) names.emplace(held, ivar_getName(variables[index]));
    }
    std::free(variables);
  }
}

// Reads one window.
class WindowReader {
 public:
  explicit WindowReader(NSWindow *window) : window_(window), server_(GSServerForWindow(window)) {
    // With a window manager the X window is the content; without one it is the toolkit's whole window.
    area_ = [server_ handlesWindowDecorations] ? [window contentView] : [[window contentView] superview];
    if (!area_) area_ = [window contentView];
    auto const origin = window_origin([server_ serverDevice], window_device(window));
    if (!origin) return;
    origin_ = *origin;
    readable_ = true;
  }

  bool readable() const { return readable_; }

  MapWindow read() {
    MapWindow map;
    map.title = utf8([window_ title]);
    map.kind = utf8(NSStringFromClass([window_ class]));
    map.frame = frame([area_ bounds], area_);
    map.key = [window_ isKeyWindow];
    map.modal = [NSApp modalWindow] == window_;
    add_outlets([window_ delegate], names_, seen_);
    add_outlets([window_ windowController], names_, seen_);
    add(area_, map.controls);
    for (auto &entry : held_) {
      auto const name = names_.find(entry.second);
      if (name != names_.end()) map.controls[entry.first].identifier = name->second;
    }
    name_by_labels(map);
    place(map);
    return map;
  }

 private:
  // In points of the window.
  MapFrame frame(NSRect rect, NSView *view) const {
    NSRect const inside = [view convertRect:rect toView:area_];
    CGFloat const top =
        [area_ isFlipped] ? NSMinY(inside) : [area_ bounds].size.height - NSMaxY(inside);
    return {static_cast<int>(std::lround(NSMinX(inside))), static_cast<int>(std::lround(top)),
            static_cast<int>(std::lround(inside.size.width)), static_cast<int>(std::lround(inside.size.height))};
  }

  // From points of the window to pixels of the screen.
  void place(MapFrame &frame) const {
    CGFloat const scale = [window_ userSpaceScaleFactor];
    auto const pixels = [&](int points) { return static_cast<int>(std::lround(points * scale)); };
    frame = {origin_.first + pixels(frame.x), origin_.second + pixels(frame.y), pixels(frame.width),
             pixels(frame.height)};
  }

  void place(MapWindow &map) const {
    place(map.frame);
    for (MapControl &control : map.controls) {
      place(control.frame);
      for (MapRow &row : control.rows) {
        place(row.frame);
        for (MapFrame &cell : row.cell_frames) place(cell);
      }
    }
  }

  bool focused(NSView *view) const {
    id first = [window_ firstResponder];
    if (first == view) return true;
    // A field that is typed into has lent the focus to the window's field editor.
    return [first isKindOfClass:[NSText class]] && [first isFieldEditor] && [first delegate] == (id)view;
  }

  void add(NSView *view, std::vector<MapControl> &controls) {
    NSRect const seen = [view visibleRect];
    if ([view isHidden] || NSIsEmptyRect(seen)) return;
    char const *kind = object_getClassName(view);
    if (kind[0] != 'N' || kind[1] != 'S') add_outlets(view, names_, seen_);
    if ([view isKindOfClass:[NSMenuView class]]) return add_menu((NSMenuView *)view, controls);
    bool whole = false;
    if ([view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSTextView class]] ||
        [view isKindOfClass:[NSProgressIndicator class]] || [view isKindOfClass:[NSBox class]]) {
      bool const editor = [view isKindOfClass:[NSText class]] && [(NSText *)view isFieldEditor];
      if (!editor && ![view isKindOfClass:[NSScroller class]]) add_control(view, seen, controls);
      whole = [view isKindOfClass:[NSControl class]];
    }
    if ([view isKindOfClass:[NSTabView class]]) add_tabs((NSTabView *)view, controls);
    // A matrix, a form or a table is one control; what lies in it is said with it.
    if (whole) return;
    NSArray *inner = [view subviews];
    for (NSUInteger at = 0; at < [inner count]; ++at) add([inner objectAtIndex:at], controls);
  }

  void add_control(NSView *view, NSRect seen, std::vector<MapControl> &controls) {
    MapControl map;
    map.kind = utf8(NSStringFromClass([view class]));
    map.tooltip = utf8([view toolTip]);
    map.frame = frame(seen, view);
    map.focused = focused(view);
    if ([view isKindOfClass:[NSControl class]]) {
      map.enabled = [(NSControl *)view isEnabled];
      add_outlets([(NSControl *)view target], names_, seen_);
    }
    if ([view isKindOfClass:[NSPopUpButton class]]) {
      auto *popUp = (NSPopUpButton *)view;
      map.value = utf8([popUp titleOfSelectedItem]);
      for (NSInteger at = 0; at < [popUp numberOfItems]; ++at) map.items.push_back(utf8([popUp itemTitleAtIndex:at]));
    } else if ([view isKindOfClass:[NSButton class]]) {
      map.title = utf8([(NSButton *)view title]);
      map.value = std::to_string([(NSButton *)view state]);
    } else if ([view isKindOfClass:[NSSecureTextField class]]) {
      // What is secret on the screen is secret in the file; its length can be seen.
      map.value = std::string([[(NSTextField *)view stringValue] length], '*');
    } else if ([view isKindOfClass:[NSTableView class]]) {
      add_rows((NSTableView *)view, map);
    } else if ([view isKindOfClass:[NSBox class]]) {
      map.title = [(NSBox *)view titlePosition] == NSNoTitle ? "" : utf8([(NSBox *)view title]);
    } else if ([view isKindOfClass:[NSTextView class]]) {
      map.value = utf8([(NSTextView *)view string]);
    } else if ([view isKindOfClass:[NSProgressIndicator class]]) {
      map.value = std::to_string([(NSProgressIndicator *)view doubleValue]);
    } else {
      map.value = utf8([(NSControl *)view stringValue]);
    }
    if ([view isKindOfClass:[NSTextField class]]) {
      map.label = ![(NSTextField *)view isEditable] && ![(NSTextField *)view isBezeled];
    }
    held_.emplace_back(controls.size(), view);
    controls.push_back(std::move(map));
    if ([view isKindOfClass:[NSMatrix class]]) add_cells((NSMatrix *)view, controls);
  }

  void add_cells(NSMatrix *matrix, std::vector<MapControl> &controls) {
    for (NSInteger row = 0; row < [matrix numberOfRows]; ++row) {
      for (NSInteger column = 0; column < [matrix numberOfColumns]; ++column) {
        NSCell *cell = [matrix cellAtRow:row column:column];
        MapControl map;
        map.kind = utf8(NSStringFromClass([cell class]));
        map.title = utf8([cell title]);
        map.value = std::to_string([cell state]);
        map.enabled = [cell isEnabled];
        map.frame = frame([matrix cellFrameAtRow:row column:column], matrix);
        controls.push_back(std::move(map));
      }
    }
  }

  void add_tabs(NSTabView *tabs, std::vector<MapControl> &controls) {
    NSArray *items = [tabs tabViewItems];
    for (NSUInteger at = 0; at < [items count]; ++at) {
      NSTabViewItem *item = [items objectAtIndex:at];
      MapControl map;
      map.kind = "NSTabViewItem";
      map.title = utf8([item label]);
      map.value = [tabs selectedTabViewItem] == item ? "1" : "0";
      map.frame = tab_frame(tabs, item);
      controls.push_back(std::move(map));
    }
  }

  // The toolkit tells which tab lies at a point, but not where a tab is.
  MapFrame tab_frame(NSTabView *tabs, NSTabViewItem *item) const {
    NSRect const bounds = [tabs bounds];
    for (CGFloat y = 6; y < 30; y += 6) {
      CGFloat const line = [tabs isFlipped] ? y : bounds.size.height - y;
      CGFloat first = -1, last = -1;
      for (CGFloat x = 0; x < bounds.size.width; x += 2) {
        if ([tabs tabViewItemAtPoint:NSMakePoint(x, line)] != item) continue;
        if (first < 0) first = x;
        last = x;
      }
      if (first >= 0) return frame(NSMakeRect(first, line - 5, last - first + 1, 10), tabs);
    }
    return {};
  }

  void add_rows(NSTableView *table, MapControl &map) {
    NSRect const seen = [table visibleRect];
    NSRange const rows = [table rowsInRect:seen];
    NSArray *columns = [table tableColumns];
    for (NSUInteger at = 0; at < rows.length; ++at) {
      NSInteger const row = static_cast<NSInteger>(rows.location + at);
      // An empty table answers a range that begins before its first row.
      if (row < 0 || row >= [table numberOfRows]) continue;
      MapRow entry;
      entry.frame = frame(NSIntersectionRect([table rectOfRow:row], seen), table);
      entry.selected = [table isRowSelected:row];
      for (NSUInteger column = 0; column < [columns count]; ++column) {
        NSInteger const index = static_cast<NSInteger>(column);
        NSRect const cell = NSIntersectionRect([table frameOfCellAtColumn:index row:row], seen);
        entry.cells.push_back(cell_text(table, [columns objectAtIndex:column], row));
        entry.cell_frames.push_back(frame(cell, table));
      }
      map.rows.push_back(std::move(entry));
    }
  }

  static std::string cell_text(NSTableView *table, NSTableColumn *column, NSInteger row) {
    id value = nil;
    id source = [table dataSource];
    if ([source respondsToSelector:@selector(tableView:objectValueForTableColumn:row:)]) {
      value = [source tableView:table objectValueForTableColumn:column row:row];
    } else if (NSDictionary *bound = [column infoForBinding:NSValueBinding]) {
      value = row_value([bound objectForKey:NSObservedObjectKey], [bound objectForKey:NSObservedKeyPathKey], row);
    }
    return [value isKindOfClass:[NSNull class]] ? std::string{} : utf8(value);
  }

  // What a path such as "arrangedObjects.name" leads to for one row of the first array on it: key-value coding itself
  // would ask every row, and the list may be long.
  static id row_value(id object, NSString *path, NSInteger row) {
    NSArray *keys = [path componentsSeparatedByString:@"."];
    bool in_row = false;
    for (NSUInteger at = 0; at < [keys count]; ++at) {
      object = [object valueForKey:[keys objectAtIndex:at]];
      if (in_row || ![object isKindOfClass:[NSArray class]]) continue;
      if (row >= static_cast<NSInteger>([object count])) return nil;
      object = [object objectAtIndex:static_cast<NSUInteger>(row)];
      in_row = true;
    }
    return in_row ? object : nil;
  }

  void add_menu(NSMenuView *menu, std::vector<MapControl> &controls) {
    NSArray *items = [[menu menu] itemArray];
    for (NSUInteger at = 0; at < [items count]; ++at) {
      NSMenuItem *item = [items objectAtIndex:at];
      if ([item isSeparatorItem]) continue;
      MapControl map;
      map.kind = "NSMenuItem";
      map.title = utf8([item title]);
      map.value = std::to_string([item state]);
      map.enabled = [item isEnabled];
      map.focused = [menu highlightedItemIndex] == static_cast<NSInteger>(at);
      map.frame = frame([menu rectOfItemAtIndex:static_cast<NSInteger>(at)], menu);
      controls.push_back(std::move(map));
    }
  }

  NSWindow *window_;
  GSDisplayServer *server_;
  NSView *area_ = nil;
  std::pair<int, int> origin_{0, 0};
  bool readable_ = false;
  std::map<void *, std::string> names_;
  std::set<void *> seen_;
  std::vector<std::pair<std::size_t, void *>> held_;  // controls by their place in the list, with their view
};

void collect_fields(NSView *view, std::vector<MapControl> &controls, NSMutableArray *views, NSView *root) {
  if ([view isHidden]) return;
  if ([view isKindOfClass:[NSTextField class]]) {
    NSRect const inside = [view convertRect:[view bounds] toView:root];
    CGFloat const top = [root isFlipped] ? NSMinY(inside) : [root bounds].size.height - NSMaxY(inside);
    MapControl map;
    map.value = utf8([(NSTextField *)view stringValue]);
    map.label = ![(NSTextField *)view isEditable];
    map.frame = {static_cast<int>(NSMinX(inside)), static_cast<int>(top), static_cast<int>(inside.size.width),
                 static_cast<int>(inside.size.height)};
    controls.push_back(map);
    [views addObject:view];
  }
  NSArray *inner = [view subviews];
  for (NSUInteger at = 0; at < [inner count]; ++at) collect_fields([inner objectAtIndex:at], controls, views, root);
}

}  // namespace

std::vector<MapWindow> windows_on_screen() {
  std::vector<MapWindow> found;
  NSArray *windows = [NSApp windows];
  for (NSUInteger at = 0; at < [windows count]; ++at) {
    NSWindow *window = [windows objectAtIndex:at];
    if (![window isVisible] || [window windowNumber] <= 0) continue;
    WindowReader reader{window};
    if (reader.readable()) found.push_back(reader.read());
  }
  return found;
}

}  // namespace fax::host

using namespace fax::host;

NSArray *HostEditableFields(NSView *view) {
  NSMutableArray *fields = [NSMutableArray array];
  NSArray *all = focus_order(view);
  for (NSUInteger at = 0; at < [all count]; ++at) {
    id one = [all objectAtIndex:at];
    if ([one isKindOfClass:[NSTextField class]] && [one isEditable]) [fields addObject:one];
  }
  return fields;
}

NSString *HostLabelOf(NSView *control, NSView *view) {
  std::vector<MapControl> controls;
  NSMutableArray *views = [NSMutableArray array];
  collect_fields(view, controls, views, view);
  NSUInteger const at = [views indexOfObjectIdenticalTo:control];
  if (at == NSNotFound) return @"";
  int const label = nearest_label(controls[at].frame, controls);
  if (label < 0) return @"";
  NSString *text = ns(controls[static_cast<std::size_t>(label)].value);
  return [text stringByTrimmingCharactersInSet:[NSCharacterSet characterSetWithCharactersInString:@": "]];
}

@implementation HostScreenMap

- (id)initWithPath:(NSString *)path {
  if (!(self = [super init])) return nil;
  _file = new MapFile(utf8(path));
  return self;
}

- (void)dealloc {
  [self stop];
  delete _file;
  [super dealloc];
}

- (void)start {
  if (_timer) return;
  _timer = [[NSTimer timerWithTimeInterval:0.1 target:self selector:@selector(write:) userInfo:nil repeats:YES] retain];
  NSRunLoop *loop = [NSRunLoop currentRunLoop];
  [loop addTimer:_timer forMode:NSDefaultRunLoopMode];
  [loop addTimer:_timer forMode:NSModalPanelRunLoopMode];
  [loop addTimer:_timer forMode:NSEventTrackingRunLoopMode];
}

- (void)stop {
  [_timer invalidate];
  [_timer release];
  _timer = nil;
}

- (void)write:(NSTimer *)timer {
  MapFile *const file = _file;
  bool written = false;
  NSException *raised = fenced([&] { written = file->update(windows_on_screen()); });
  if (written || _complained) return;
  _complained = YES;
  NSLog(@"The map of the screen cannot be written: %@", raised ? [raised reason] : @"the file system refuses it");
}

@end
