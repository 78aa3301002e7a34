// NSArrayController: one path for every change of content, arrangement and selection. The toolkit's own leaves stale
// selected rows, does not sort what is added, tells no observer of the selection, and raises NSRangeException. What
// changes the arrangement or the selection alone asks an array only for the rows that are or become selected, so that an
// array may make its objects when they are asked for.
#import <AppKit/AppKit.h>

#include "platform/gnustep/arranged_rows.h"
#include "platform/gnustep/followed_rows.h"
#include "platform/gnustep/repair.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace {

using fax::RowObject;
using Positions = std::vector<std::size_t>;
// Occurrences of objects, each object's counted from 0.
using Turns = std::unordered_map<RowObject, std::unordered_set<std::size_t>>;

std::vector<RowObject> rows_of(NSArray *array) {
  NSUInteger const count = [array count];
  std::vector<RowObject> rows(count);
  for (NSUInteger at = 0; at < count; ++at) rows[at] = [array objectAtIndex:at];
  return rows;
}

// The positions below limit.
Positions positions_of(NSIndexSet *indexes, NSUInteger limit) {
  Positions positions;
  if (indexes == nil) return positions;
  for (NSUInteger at = [indexes firstIndex]; at != NSNotFound && at < limit; at = [indexes indexGreaterThanIndex:at]) {
    positions.push_back(at);
  }
  return positions;
}

NSIndexSet *indexes_of(Positions const &positions) {
  NSMutableIndexSet *indexes = [NSMutableIndexSet indexSet];
  for (std::size_t first = 0; first < positions.size();) {
    std::size_t last = first + 1;
    while (last < positions.size() && positions[last] == positions[last - 1] + 1) ++last;
    [indexes addIndexesInRange:NSMakeRange(positions[first], last - first)];
    first = last;
  }
  return indexes;
}

bool same_objects(NSArray *before, Positions const &old, NSArray *after, Positions const &chosen) {
  if (old.size() != chosen.size()) return false;
  for (std::size_t at = 0; at < old.size(); ++at) {
    if ([before objectAtIndex:old[at]] != [after objectAtIndex:chosen[at]]) return false;
  }
  return true;
}

// So many chosen rows are looked for one by one; more, by walking both arrays.
constexpr std::size_t kFewRows = 8;

// The positions below limit where array has the object.
Positions occurrences(NSArray *array, id object, NSUInteger limit) {
  Positions found;
  for (NSUInteger from = 0; from < limit;) {
    NSUInteger const at = [array indexOfObjectIdenticalTo:object inRange:NSMakeRange(from, limit - from)];
    if (at == NSNotFound) break;
    found.push_back(at);
    from = at + 1;
  }
  return found;
}

// The rows of now that stand for those chosen in before (see followed_rows.h).
Positions follow(NSArray *before, Positions const &chosen, NSArray *now) {
  if (chosen.empty()) return {};
  if (chosen.size() > kFewRows) return fax::follow_rows(rows_of(before), chosen, rows_of(now));
  Positions rows;
  for (std::size_t const at : chosen) {
    id const object = [before objectAtIndex:at];
    Positions const places = occurrences(now, object, [now count]);
    if (places.empty()) continue;
    std::size_t const turn = places.size() == 1 ? 0 : occurrences(before, object, at).size();
    rows.push_back(places[std::min(turn, places.size() - 1)]);
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

NSArray *array_of(std::vector<RowObject> const &rows) {
  return [NSArray arrayWithObjects:reinterpret_cast<id const *>(rows.data()) count:rows.size()];
}

NSString *const kNotifiedHere[] = {@"content",         @"arrangedObjects", @"selectionIndexes",
                                   @"selectionIndex",  @"selectedObjects", @"selection",
                                   @"canRemove",       @"canSelectNext",   @"canSelectPrevious",
                                   @"sortDescriptors", @"filterPredicate"};

// Controllers that are writing their content back to the object it is bound to.
std::unordered_set<id> &writing_back() {
  static std::unordered_set<id> controllers;
  return controllers;
}

fax::Repair<id(id)> init_with_content{
    "NSArrayController", "initWithContent:", [](id self, SEL command, id content) -> id {
      NSArrayController *controller = self;
      [controller setAvoidsEmptySelection:YES];
      [controller setPreservesSelection:YES];
      [controller setClearsFilterPredicateOnInsertion:YES];
      controller = init_with_content(self, command, content);
      if (controller != nil && [controller content] == nil) [controller setContent:nil];
      return controller;
    }};

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSArrayController", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      NSArrayController *controller = self;
      if (fax::reads_xcode_document(coder)) {
        [controller setAvoidsEmptySelection:YES];
        [controller setPreservesSelection:YES];
        [controller setSelectsInsertedObjects:YES];
        [controller setClearsFilterPredicateOnInsertion:YES];
      }
      controller = init_with_coder(self, command, coder);
      if (controller == nil) return nil;
      if ([controller objectClass] == Nil) [controller setObjectClass:[NSMutableDictionary class]];
      if ([controller content] == nil) [controller setContent:nil];
      return controller;
    }};

}  // namespace

@interface NSArrayController (DirectFaxArrangement)
// The arranged objects as arrangeObjects: gave them, without the toolkit's wrapper.
- (NSArray *)directfaxArrangement;
- (BOOL)directfaxContent:(NSArray *)content
                   given:(BOOL)given
             arrangement:(NSArray *)arrangement
               selection:(Positions const &)chosen;
- (void)directfaxInsert:(NSArray *)objects atContentIndexes:(NSIndexSet *)indexes;
- (void)directfaxRemoveRows:(Positions const &)rows turns:(Turns const &)gone;
- (void)directfaxWriteBack;
- (Positions)directfaxSelection;
- (Positions)directfaxRowsOfObjects:(NSArray *)objects;
- (Positions)directfaxKept:(Positions const &)kept ofRows:(std::size_t)count instead:(std::size_t)other;
@end

@implementation NSArrayController (DirectFaxArrangement)

+ (BOOL)automaticallyNotifiesObserversForKey:(NSString *)key {
  for (NSString *name : kNotifiedHere) {
    if ([key isEqualToString:name]) return NO;
  }
  return [super automaticallyNotifiesObserversForKey:key];
}

+ (NSSet *)keyPathsForValuesAffectingCanAdd {
  return [NSSet setWithObject:@"editable"];
}

+ (NSSet *)keyPathsForValuesAffectingCanRemove {
  return [NSSet setWithObject:@"editable"];
}

- (NSArray *)directfaxArrangement {
  if (_arranged_objects == nil) {
    NSArray *arranged = [self arrangeObjects:[self content]];
    _arranged_objects = [[NSClassFromString(@"GSObservableArray") alloc] initWithArray:arranged];
  }
  return fax::arranged_rows(_arranged_objects);
}

- (Positions)directfaxSelection {
  return positions_of(_selection_indexes, [[self directfaxArrangement] count]);
}

// The rows to select where an empty selection is avoided.
- (Positions)directfaxKept:(Positions const &)kept ofRows:(std::size_t)count instead:(std::size_t)other {
  if (!kept.empty() || count == 0 || ![self avoidsEmptySelection]) return kept;
  return {std::min(other, count - 1)};
}

// The one change: new content (nil: as it is; given: the object itself, else its rows go into the content that is
// there), new arrangement (nil: as it is), new selection in the new arrangement. Every key that changes is told once,
// when all of them have their new values. Returns whether the selection changed.
- (BOOL)directfaxContent:(NSArray *)content
                   given:(BOOL)given
             arrangement:(NSArray *)arrangement
               selection:(Positions const &)chosen {
  NSArray *before = [self directfaxArrangement];
  NSArray *after = arrangement != nil ? arrangement : before;
  std::size_t const count_before = [before count];
  std::size_t const count_after = [after count];
  Positions const old = positions_of(_selection_indexes, count_before);
  bool const other_rows = old != chosen;
  bool const other_objects = !same_objects(before, old, after, chosen);
  bool const could_remove = [self isEditable] && !old.empty();
  bool const can_remove = [self isEditable] && !chosen.empty();
  auto const has_next = [](Positions const &at, std::size_t count) { return !at.empty() && at.front() + 1 < count; };
  auto const has_previous = [](Positions const &at) { return !at.empty() && at.front() > 0; };

  NSMutableArray *keys = [NSMutableArray array];
  if (content != nil) [keys addObject:@"content"];
  if (arrangement != nil) [keys addObject:@"arrangedObjects"];
  if (other_rows) [keys addObject:@"selectionIndexes"];
  bool const other_first = old.empty() || chosen.empty() || old.front() != chosen.front();
  if (other_rows && other_first) [keys addObject:@"selectionIndex"];
  if (other_objects) [keys addObject:@"selectedObjects"];
  if (other_objects) [keys addObject:@"selection"];
  if (could_remove != can_remove) [keys addObject:@"canRemove"];
  if (has_next(old, count_before) != has_next(chosen, count_after)) [keys addObject:@"canSelectNext"];
  if (has_previous(old) != has_previous(chosen)) [keys addObject:@"canSelectPrevious"];

  NSUInteger const count = [keys count];
  for (NSUInteger at = 0; at < count; ++at) [self willChangeValueForKey:[keys objectAtIndex:at]];
  if (given) {
    [super setContent:content];
  } else if (content != nil && [_content isKindOfClass:[NSMutableArray class]]) {
    [_content setArray:content];
  } else if (content != nil) {
    [super setContent:[NSMutableArray arrayWithArray:content]];
  }
  if (arrangement != nil) {
    [_arranged_objects autorelease];
    _arranged_objects = [[NSClassFromString(@"GSObservableArray") alloc] initWithArray:arrangement];
  }
  if (other_rows || _selection_indexes == nil) {
    NSIndexSet *indexes = [indexes_of(chosen) copy];
    [_selection_indexes release];
    _selection_indexes = indexes;
  }
  for (NSUInteger at = 0; at < count; ++at) [self didChangeValueForKey:[keys objectAtIndex:at]];
  if (content != nil && !given) [self directfaxWriteBack];
  return other_rows;
}

// Content that is bound to an object's array goes back to that object when the controller changed it.
- (void)directfaxWriteBack {
  NSDictionary *info = [self infoForBinding:NSContentArrayBinding];
  if (info == nil || writing_back().count(self) != 0) return;
  struct Writing {
    id controller;
    explicit Writing(id object) : controller(object) { writing_back().insert(controller); }
    ~Writing() { writing_back().erase(controller); }
  } const writing{self};
  [[info objectForKey:NSObservedObjectKey] setValue:_content forKeyPath:[info objectForKey:NSObservedKeyPathKey]];
}

- (void)setContent:(id)content {
  bool const returned = writing_back().count(self) != 0;
  if (returned && content == _content) return;
  NSArray *array = content;
  if (content == nil) {
    array = [NSMutableArray array];
  } else if (![content isKindOfClass:[NSArray class]]) {
    array = [NSMutableArray arrayWithObject:content];
  }
  NSArray *arrangement = [self arrangeObjects:array];
  Positions kept;
  if (_arranged_objects != nil && (returned || [self preservesSelection])) {
    kept = follow([self directfaxArrangement], [self directfaxSelection], arrangement);
  }
  [self directfaxContent:array
                   given:YES
             arrangement:arrangement
               selection:[self directfaxKept:kept ofRows:[arrangement count] instead:0]];
}

- (id)arrangedObjects {
  [self directfaxArrangement];
  return _arranged_objects;
}

- (void)rearrangeObjects {
  NSArray *before = [self directfaxArrangement];
  NSArray *arrangement = [self arrangeObjects:[self content]];
  Positions kept;
  if ([self preservesSelection]) {
    kept = follow(before, [self directfaxSelection], arrangement);
  }
  [self directfaxContent:nil
                   given:NO
             arrangement:arrangement
               selection:[self directfaxKept:kept ofRows:[arrangement count] instead:0]];
}

- (void)setSortDescriptors:(NSArray *)descriptors {
  [self willChangeValueForKey:@"sortDescriptors"];
  NSArray *copy = [descriptors copy];
  [_sort_descriptors release];
  _sort_descriptors = copy;
  [self didChangeValueForKey:@"sortDescriptors"];
  [self rearrangeObjects];
}

- (void)setFilterPredicate:(NSPredicate *)predicate {
  [self willChangeValueForKey:@"filterPredicate"];
  [predicate retain];
  [_filter_predicate release];
  _filter_predicate = predicate;
  [self didChangeValueForKey:@"filterPredicate"];
  [self rearrangeObjects];
}

- (void)addObject:(id)object {
  [self addObjects:[NSArray arrayWithObject:object]];
}

- (void)addObjects:(NSArray *)objects {
  NSRange const end = NSMakeRange([[self content] count], [objects count]);
  [self directfaxInsert:objects atContentIndexes:[NSIndexSet indexSetWithIndexesInRange:end]];
}

- (void)insertObject:(id)object atArrangedObjectIndex:(NSUInteger)index {
  [self insertObjects:[NSArray arrayWithObject:object] atArrangedObjectIndexes:[NSIndexSet indexSetWithIndex:index]];
}

- (void)insertObjects:(NSArray *)objects atArrangedObjectIndexes:(NSIndexSet *)indexes {
  bool const as_stored = _filter_predicate == nil && [_sort_descriptors count] == 0;
  if (as_stored && [indexes count] == [objects count]) {
    [self directfaxInsert:objects atContentIndexes:indexes];
  } else {
    [self addObjects:objects];
  }
}

- (void)directfaxInsert:(NSArray *)objects atContentIndexes:(NSIndexSet *)indexes {
  if ([objects count] == 0) return;
  std::vector<RowObject> const before = rows_of([self directfaxArrangement]);
  Positions const selected = [self directfaxSelection];
  if (_filter_predicate != nil && [self clearsFilterPredicateOnInsertion]) {
    [self willChangeValueForKey:@"filterPredicate"];
    [_filter_predicate release];
    _filter_predicate = nil;
    [self didChangeValueForKey:@"filterPredicate"];
  }
  NSMutableArray *content = [NSMutableArray arrayWithArray:[self content]];
  [content insertObjects:objects atIndexes:indexes];
  NSArray *arrangement = [self arrangeObjects:content];
  std::vector<RowObject> const now = rows_of(arrangement);
  Positions kept;
  if ([self selectsInsertedObjects]) kept = fax::rows_added(rows_of(objects), now);
  if (kept.empty()) kept = fax::follow_rows(before, selected, now);
  [self directfaxContent:content
                   given:NO
             arrangement:arrangement
               selection:[self directfaxKept:kept ofRows:now.size() instead:0]];
}

- (void)remove:(id)sender {
  if ([self canRemove]) [self removeObjectsAtArrangedObjectIndexes:[self selectionIndexes]];
}

- (void)removeObject:(id)object {
  [self removeObjects:[NSArray arrayWithObject:object]];
}

// The objects themselves; for one that is not in the content, those that are equal to it.
- (void)removeObjects:(NSArray *)objects {
  std::vector<RowObject> const content = rows_of([self content]);
  std::unordered_set<RowObject> const known(content.begin(), content.end());
  std::unordered_set<RowObject> unwanted;
  for (RowObject const object : rows_of(objects)) {
    if (known.count(object) != 0) {
      unwanted.insert(object);
      continue;
    }
    for (RowObject const candidate : content) {
      if ([static_cast<id>(candidate) isEqual:static_cast<id>(object)]) {
        unwanted.insert(candidate);
      }
    }
  }
  Turns gone;
  std::unordered_map<RowObject, std::size_t> turn;
  for (RowObject const object : content) {
    if (unwanted.count(object) != 0) gone[object].insert(turn[object]++);
  }
  std::vector<RowObject> const arranged = rows_of([self directfaxArrangement]);
  Positions rows;
  for (std::size_t at = 0; at < arranged.size(); ++at) {
    if (gone.count(arranged[at]) != 0) rows.push_back(at);
  }
  [self directfaxRemoveRows:rows turns:gone];
}

- (void)removeObjectAtArrangedObjectIndex:(NSUInteger)index {
  [self removeObjectsAtArrangedObjectIndexes:[NSIndexSet indexSetWithIndex:index]];
}

- (void)removeObjectsAtArrangedObjectIndexes:(NSIndexSet *)indexes {
  std::vector<RowObject> const arranged = rows_of([self directfaxArrangement]);
  Positions const rows = positions_of(indexes, arranged.size());
  std::unordered_set<std::size_t> const unwanted(rows.begin(), rows.end());
  Turns gone;
  std::unordered_map<RowObject, std::size_t> turn;
  for (std::size_t at = 0; at < arranged.size(); ++at) {
    std::size_t const mine = turn[arranged[at]]++;
    if (unwanted.count(at) != 0) gone[arranged[at]].insert(mine);
  }
  [self directfaxRemoveRows:rows turns:gone];
}

// Takes the arranged rows away, and their objects from the content.
- (void)directfaxRemoveRows:(Positions const &)rows turns:(Turns const &)gone {
  if (gone.empty()) return;
  std::vector<RowObject> content;
  std::unordered_map<RowObject, std::size_t> turn;
  for (RowObject const object : rows_of([self content])) {
    auto const found = gone.find(object);
    if (found == gone.end() || found->second.count(turn[object]++) == 0) content.push_back(object);
  }
  std::vector<RowObject> const before = rows_of([self directfaxArrangement]);
  std::vector<bool> selected(before.size());
  for (std::size_t const at : [self directfaxSelection]) selected[at] = true;
  std::vector<RowObject> staying;
  Positions still_selected;
  std::size_t instead = SIZE_MAX;
  for (std::size_t at = 0, next_gone = 0; at < before.size(); ++at) {
    if (next_gone < rows.size() && rows[next_gone] == at) {
      ++next_gone;
      if (selected[at]) instead = std::min(instead, staying.size());
      continue;
    }
    if (selected[at]) still_selected.push_back(staying.size());
    staying.push_back(before[at]);
  }
  NSArray *now = array_of(content);
  NSArray *arrangement = [self arrangeObjects:now];
  Positions const kept = fax::follow_rows(staying, still_selected, rows_of(arrangement));
  [self directfaxContent:now
                   given:NO
             arrangement:arrangement
               selection:[self directfaxKept:kept
                                      ofRows:[arrangement count]
                                     instead:instead == SIZE_MAX ? 0 : instead]];
}

- (BOOL)setSelectionIndexes:(NSIndexSet *)indexes {
  return [self directfaxContent:nil
                          given:NO
                    arrangement:nil
                      selection:positions_of(indexes, [[self directfaxArrangement] count])];
}

- (BOOL)setSelectionIndex:(NSUInteger)index {
  return [self setSelectionIndexes:index == NSNotFound ? [NSIndexSet indexSet] : [NSIndexSet indexSetWithIndex:index]];
}

- (BOOL)setSelectedObjects:(NSArray *)objects {
  return [self directfaxContent:nil given:NO arrangement:nil selection:[self directfaxRowsOfObjects:objects]];
}

// The arranged rows, ascending, that show one of the objects.
- (Positions)directfaxRowsOfObjects:(NSArray *)objects {
  NSArray *arrangement = [self directfaxArrangement];
  NSUInteger const count = [arrangement count];
  Positions chosen;
  if ([objects count] <= kFewRows) {
    std::set<std::size_t> rows;
    for (RowObject const object : rows_of(objects)) {
      for (std::size_t const at : occurrences(arrangement, static_cast<id>(object), count)) rows.insert(at);
    }
    chosen.assign(rows.begin(), rows.end());
    return chosen;
  }
  std::vector<RowObject> const list = rows_of(objects);
  std::unordered_set<RowObject> const wanted(list.begin(), list.end());
  for (NSUInteger at = 0; at < count; ++at) {
    if (wanted.count([arrangement objectAtIndex:at]) != 0) chosen.push_back(at);
  }
  return chosen;
}

- (BOOL)addSelectionIndexes:(NSIndexSet *)indexes {
  NSMutableIndexSet *both = [[[self selectionIndexes] mutableCopy] autorelease];
  if (indexes != nil) [both addIndexes:indexes];
  return [self setSelectionIndexes:both];
}

- (BOOL)removeSelectionIndexes:(NSIndexSet *)indexes {
  NSMutableIndexSet *rest = [[[self selectionIndexes] mutableCopy] autorelease];
  if (indexes != nil) [rest removeIndexes:indexes];
  return [self setSelectionIndexes:rest];
}

- (BOOL)addSelectedObjects:(NSArray *)objects {
  return [self setSelectedObjects:[[self selectedObjects] arrayByAddingObjectsFromArray:objects]];
}

- (BOOL)removeSelectedObjects:(NSArray *)objects {
  std::unordered_set<RowObject> unwanted;
  for (RowObject const object : rows_of(objects)) unwanted.insert(object);
  NSArray *arrangement = [self directfaxArrangement];
  Positions chosen;
  for (std::size_t const at : [self directfaxSelection]) {
    if (unwanted.count([arrangement objectAtIndex:at]) == 0) chosen.push_back(at);
  }
  return [self directfaxContent:nil given:NO arrangement:nil selection:chosen];
}

- (NSIndexSet *)selectionIndexes {
  return indexes_of([self directfaxSelection]);
}

- (NSUInteger)selectionIndex {
  Positions const chosen = [self directfaxSelection];
  return chosen.empty() ? static_cast<NSUInteger>(NSNotFound) : chosen.front();
}

- (NSArray *)selectedObjects {
  return [[self directfaxArrangement] objectsAtIndexes:[self selectionIndexes]];
}

- (BOOL)canSelectNext {
  NSUInteger const index = [self selectionIndex];
  return index != NSNotFound && index + 1 < [[self directfaxArrangement] count];
}

- (void)selectNext:(id)sender {
  if ([self canSelectNext]) [self setSelectionIndex:[self selectionIndex] + 1];
}

- (void)selectPrevious:(id)sender {
  if ([self canSelectPrevious]) [self setSelectionIndex:[self selectionIndex] - 1];
}

@end
