// A table that is bound to an array controller: the user's selection goes to the controller and the controller's to the
// table; a cell reads its own row (the toolkit copies the whole column for each cell that it draws, and keeps the copy
// for ever).
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"
#include "platform/gnustep/row_path.h"

#include <unordered_set>

// The toolkit's binding object; declared here because its header is not installed.
@interface NSObject (DirectFaxBindingObject)
- (id)transformValue:(id)value withOptions:(NSDictionary *)options;
- (id)reverseTransformValue:(id)value withOptions:(NSDictionary *)options;
+ (id)getBinding:(NSString *)binding forObject:(id)object;
@end

namespace {

// Tables that are taking their controller's selection: what they select now is not the user's.
std::unordered_set<id> &taking() {
  static std::unordered_set<id> tables;
  return tables;
}

class Taking {
 public:
  explicit Taking(id table) : table_(table), first_(taking().insert(table).second) {}
  ~Taking() {
    if (first_) taking().erase(table_);
  }
  Taking(Taking const &) = delete;
  Taking &operator=(Taking const &) = delete;

 private:
  id table_;
  bool first_;
};

void take_selection(NSTableView *table) {
  NSDictionary *info = [table infoForBinding:NSSelectionIndexesBinding];
  if (info == nil) return;
  NSIndexSet *indexes =
      [[info objectForKey:NSObservedObjectKey] valueForKeyPath:[info objectForKey:NSObservedKeyPathKey]];
  if (![indexes isKindOfClass:[NSIndexSet class]] || [indexes isEqual:[table selectedRowIndexes]]) return;
  Taking const guard(table);
  if ([indexes count] == 0) {
    [table deselectAll:nil];
  } else if ([indexes lastIndex] < static_cast<NSUInteger>([table numberOfRows])) {
    [table selectRowIndexes:indexes byExtendingSelection:NO];
  }
}

fax::Repair<void()> number_of_rows_changed{
    "NSTableView", "noteNumberOfRowsChanged", [](id self, SEL command) {
      {
        Taking const guard(self);
        number_of_rows_changed(self, command);
      }
      take_selection(self);
    }};

// Controller before delegate: a delegate that asks the controller learns of the new selection.
fax::Repair<void()> post_selection_did_change{
    "NSTableView", "_postSelectionDidChangeNotification", [](id self, SEL command) {
      NSTableView *table = self;
      NSDictionary *info = [table infoForBinding:NSSelectionIndexesBinding];
      if (info != nil && taking().count(self) == 0 && [table selectedColumn] == -1) {
        Taking const guard(self);
        [[info objectForKey:NSObservedObjectKey] setValue:[table selectedRowIndexes]
                                               forKeyPath:[info objectForKey:NSObservedKeyPathKey]];
      }
      post_selection_did_change(self, command);
    }};

fax::Repair<void(id, NSString *)> set_value{
    "NSTableView", "setValue:forKey:", [](id self, SEL command, id value, NSString *key) {
      if (![key isEqualToString:NSSelectionIndexesBinding] || ![value isKindOfClass:[NSIndexSet class]]) {
        set_value(self, command, value, key);
        return;
      }
      NSTableView *table = self;
      // The rows of a new arrangement may not have been counted yet; the selection is taken when they are.
      bool const counted =
          [value count] == 0 || [value lastIndex] < static_cast<NSUInteger>([table numberOfRows]);
      if (!counted || [value isEqual:[table selectedRowIndexes]]) return;
      Taking const guard(self);
      if ([value count] == 0) {
        [table deselectAll:nil];
      } else {
        set_value(self, command, value, key);
      }
    }};

fax::Repair<void(NSArray *)> sort_descriptors_changed{
    "NSTableView", "_didChangeSortDescriptors:", [](id self, SEL command, NSArray *before) {
      NSTableView *table = self;
      NSDictionary *info = [table infoForBinding:NSSortDescriptorsBinding];
      id controller = [info objectForKey:NSObservedObjectKey];
      NSString *path = [info objectForKey:NSObservedKeyPathKey];
      if (info != nil && ![[controller valueForKeyPath:path] isEqual:[table sortDescriptors]]) {
        [controller setValue:[table sortDescriptors] forKeyPath:path];
      }
      sort_descriptors_changed(self, command, before);
    }};

// The object that row shows, or nil where the binding is of another kind; sets out the binding's parts.
id bound_row(NSTableColumn *column, NSInteger row, NSDictionary **info, NSString **path) {
  *info = [column infoForBinding:NSValueBinding];
  *path = fax::path_in_row([*info objectForKey:NSObservedObjectKey], [*info objectForKey:NSObservedKeyPathKey]);
  if (*path == nil) return nil;
  NSArray *rows = [[*info objectForKey:NSObservedObjectKey] arrangedObjects];
  return row >= 0 && static_cast<NSUInteger>(row) < [rows count] ? [rows objectAtIndex:row] : nil;
}

id binding_object(NSTableColumn *column) {
  return [NSClassFromString(@"GSKeyValueBinding") getBinding:NSValueBinding forObject:column];
}

fax::Repair<id(NSTableColumn *, NSInteger)> object_value{
    "NSTableView", "_objectValueForTableColumn:row:",
    [](id self, SEL command, NSTableColumn *column, NSInteger row) -> id {
      NSDictionary *info = nil;
      NSString *path = nil;
      id object = bound_row(column, row, &info, &path);
      if (path == nil) return object_value(self, command, column, row);
      if (object == nil) return nil;
      return [binding_object(column) transformValue:[object valueForKeyPath:path]
                                        withOptions:[info objectForKey:NSOptionsKey]];
    }};

fax::Repair<void(id, NSTableColumn *, NSInteger)> set_object_value{
    "NSTableView", "_setObjectValue:forTableColumn:row:",
    [](id self, SEL command, id value, NSTableColumn *column, NSInteger row) {
      NSDictionary *info = nil;
      NSString *path = nil;
      id object = bound_row(column, row, &info, &path);
      if (object == nil) {
        set_object_value(self, command, value, column, row);
        return;
      }
      [object setValue:[binding_object(column) reverseTransformValue:value
                                                         withOptions:[info objectForKey:NSOptionsKey]]
            forKeyPath:path];
    }};

}  // namespace
