// A column that is bound to a key of an array controller's rows: the table is drawn anew when a row's value changes. The
// toolkit's own observer collects the whole column at each change of the arrangement, twice, and keeps it for ever.
#import <AppKit/AppKit.h>

#include "platform/gnustep/arranged_rows.h"
#include "platform/gnustep/repair.h"
#include "platform/gnustep/row_path.h"

#include <unordered_map>

// The toolkit's binding object; declared here because its header is not installed.
@interface NSObject (DirectFaxBindingOfColumn)
+ (id)getBinding:(NSString *)binding forObject:(id)object;
@end

// Observes the arrangement, and in every row the column's key.
@interface DirectFaxColumnWatch : NSObject {
  NSTableColumn *column;  // not retained: it ends its watch
  NSArrayController *controller;
  NSString *path;
  NSArray *rows;
}
- (id)initWithColumn:(NSTableColumn *)watched controller:(NSArrayController *)owner path:(NSString *)key;
- (void)end;
- (void)watch:(NSArray *)now;
- (NSIndexSet *)allOf:(NSArray *)array;
@end

@implementation DirectFaxColumnWatch

- (id)initWithColumn:(NSTableColumn *)watched controller:(NSArrayController *)owner path:(NSString *)key {
  self = [super init];
  if (self == nil) return nil;
  column = watched;
  controller = [owner retain];
  path = [key copy];
  [controller addObserver:self forKeyPath:@"arrangedObjects" options:0 context:nullptr];
  [self watch:fax::arranged_rows([controller arrangedObjects])];
  return self;
}

- (void)end {
  [controller removeObserver:self forKeyPath:@"arrangedObjects"];
  [self watch:nil];
}

- (void)dealloc {
  [controller release];
  [path release];
  [super dealloc];
}

- (void)watch:(NSArray *)now {
  NSArray *before = rows;
  rows = [now retain];
  [before removeObserver:self fromObjectsAtIndexes:[self allOf:before] forKeyPath:path];
  [now addObserver:self toObjectsAtIndexes:[self allOf:now] forKeyPath:path options:0 context:nullptr];
  [before release];
}

- (NSIndexSet *)allOf:(NSArray *)array {
  return [NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, [array count])];
}

- (void)observeValueForKeyPath:(NSString *)changed
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  NSTableView *table = [column tableView];
  bool const arrangement = object == controller;
  if (arrangement) [self watch:fax::arranged_rows([controller arrangedObjects])];
  // A table whose content is bound too has seen the arrangement.
  if (!arrangement || [table infoForBinding:NSContentBinding] == nil) [table reloadData];
}

@end

namespace {

std::unordered_map<id, DirectFaxColumnWatch *> &watches() {
  static std::unordered_map<id, DirectFaxColumnWatch *> all;
  return all;
}

void end_watch(id column) {
  auto const found = watches().find(column);
  if (found == watches().end()) return;
  [found->second end];
  [found->second release];
  watches().erase(found);
}

void bind_table(NSTableView *table, id controller) {
  if (table == nil || [table infoForBinding:NSContentBinding] != nil) return;
  [table bind:NSContentBinding toObject:controller withKeyPath:@"arrangedObjects" options:nil];
  [table bind:NSSelectionIndexesBinding toObject:controller withKeyPath:NSSelectionIndexesBinding options:nil];
  [table bind:NSSortDescriptorsBinding toObject:controller withKeyPath:NSSortDescriptorsBinding options:nil];
}

fax::Repair<void(NSString *, id, NSString *, NSDictionary *)> bind_column{
    "NSTableColumn", "bind:toObject:withKeyPath:options:",
    [](id self, SEL command, NSString *binding, id object, NSString *path, NSDictionary *options) {
      NSString *key = [binding isEqualToString:NSValueBinding] ? fax::path_in_row(object, path) : nil;
      if (key == nil) {
        bind_column(self, command, binding, object, path, options);
        return;
      }
      {
        fax::UnwalkedRows const unwalked;
        bind_column(self, command, binding, object, path, options);
        [object removeObserver:[NSClassFromString(@"GSKeyValueBinding") getBinding:binding forObject:self]
                    forKeyPath:path];
      }
      watches()[self] = [[DirectFaxColumnWatch alloc] initWithColumn:self controller:object path:key];
      bind_table([static_cast<NSTableColumn *>(self) tableView], object);
    }};

fax::Repair<void(NSString *)> unbind_column{
    "NSTableColumn", "unbind:", [](id self, SEL command, NSString *binding) {
      if ([binding isEqualToString:NSValueBinding]) end_watch(self);
      unbind_column(self, command, binding);
    }};

}  // namespace
