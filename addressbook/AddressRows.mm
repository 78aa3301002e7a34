#import "addressbook/AddressRows.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

// The object of one row.
@interface AddressRow : NSDictionary {
@public
  struct AddressRowPlace *place;
}
@end

namespace {

using fax::RowNumber;

// Halves of surrogate pairs and the ideographs, which have neither case nor parts.
bool is_plain(char16_t unit) {
  return (unit >= 0xD800 && unit < 0xE000) || (unit >= 0x4E00 && unit < 0xA000);
}

NSString *string_of(std::u16string_view text) {
  return [NSString stringWithCharacters:reinterpret_cast<unichar const *>(text.data()) length:text.size()];
}

std::u16string units_of(NSString *text) {
  std::u16string units([text length], u'\0');
  if (!units.empty()) {
    [text getCharacters:reinterpret_cast<unichar *>(units.data()) range:NSMakeRange(0, units.size())];
  }
  return units;
}

// The parts into which the toolkit takes a letter apart when it compares: Unicode's; or with another accent, where its
// tables are older; or the letter itself, where they do not know it.
std::u16string parts_of(char16_t unit) {
  NSString *letter = string_of({&unit, 1});
  std::u16string parts = units_of([letter decomposedStringWithCanonicalMapping]);
  auto const equal = [&] { return [letter compare:string_of(parts)] == NSOrderedSame; };
  if (parts.size() == 1 || equal()) return parts;
  if (parts.back() >= 0x0300 && parts.back() < 0x0370) {
    for (parts.back() = 0x0300; parts.back() < 0x0370; ++parts.back()) {
      if (equal()) return parts;
    }
  }
  return std::u16string(1, unit);
}

fax::FoldedUnit fold_unit(char16_t unit) {
  fax::FoldedUnit folded;
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  for (char16_t const part : is_plain(unit) ? std::u16string(1, unit) : parts_of(unit)) {
    std::u16string const small = units_of([string_of({&part, 1}) lowercaseString]);
    if (folded.count < folded.units.size()) folded.units[folded.count++] = small.size() == 1 ? small[0] : part;
  }
  [pool release];
  return folded;
}

bool continues_letter(char16_t unit) {
  return (unit >= 0xDC00 && unit < 0xE000) || [[NSCharacterSet nonBaseCharacterSet] characterIsMember:unit];
}

fax::CaseFold &toolkit_fold() {
  static fax::CaseFold fold(fold_unit, continues_letter);
  return fold;
}

NSArray *numbers_of(std::span<std::uint16_t const> ids) {
  NSMutableArray *numbers = [NSMutableArray arrayWithCapacity:ids.size()];
  for (std::uint16_t const id : ids) [numbers addObject:[NSNumber numberWithUnsignedShort:id]];
  return numbers;
}

// The ids of a group; one that is no unsigned 16-bit number matches no entry of a book and is counted in strange.
struct Ids {
  std::vector<std::uint16_t> known;
  std::size_t strange = 0;
};

Ids ids_of(NSArray *numbers) {
  Ids ids;
  for (NSUInteger at = 0; at < [numbers count]; ++at) {
    long long const number = [[numbers objectAtIndex:at] longLongValue];
    if (number >= 0 && number <= std::numeric_limits<std::uint16_t>::max()) {
      ids.known.push_back(static_cast<std::uint16_t>(number));
    } else {
      ++ids.strange;
    }
  }
  return ids;
}

// A book and the objects of its rows that are in use.
struct SharedBook {
  fax::AddressBook book;
  std::unordered_map<RowNumber, AddressRow *> live;
};

}  // namespace

struct AddressRowPlace {
  std::shared_ptr<SharedBook> shared;
  RowNumber row;
  fax::AddressEntry entry() const { return shared->book.entry(row); }
};

struct AddressRowsStorage {
  std::shared_ptr<SharedBook> shared;
  // Ascending; none where the list is the whole book.
  std::optional<std::vector<RowNumber>> rows;

  std::size_t count() const { return rows ? rows->size() : shared->book.size(); }
  RowNumber at(std::size_t index) const { return rows ? (*rows)[index] : static_cast<RowNumber>(index); }
  std::optional<std::size_t> index_of(RowNumber row) const {
    if (!rows) return row;
    auto const found = std::lower_bound(rows->begin(), rows->end(), row);
    if (found == rows->end() || *found != row) return std::nullopt;
    return static_cast<std::size_t>(found - rows->begin());
  }
};

@implementation AddressRow

- (void)dealloc {
  if (place != nullptr) place->shared->live.erase(place->row);
  delete place;
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  (void)zone;
  return [self retain];
}

- (NSArray *)keys {
  fax::AddressEntry const entry = place->entry();
  if (entry.group_record) return [NSArray arrayWithObjects:@"name", @"phoneNumber", @"userIDList", nil];
  if (!entry.has_details) return [NSArray arrayWithObjects:@"Id", @"name", @"phoneNumber", nil];
  return [NSArray arrayWithObjects:@"Id", @"name", @"phoneNumber", @"company", @"note", nil];
}

- (NSUInteger)count {
  fax::AddressEntry const entry = place->entry();
  return !entry.group_record && entry.has_details ? 5 : 3;
}

- (NSEnumerator *)keyEnumerator {
  return [[self keys] objectEnumerator];
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id *)objects
                                    count:(NSUInteger)room {
  return [[self keys] countByEnumeratingWithState:state objects:objects count:room];
}

- (NSEnumerator *)objectEnumerator {
  return [[self objectsForKeys:[self keys] notFoundMarker:[NSNull null]] objectEnumerator];
}

- (id)objectForKey:(id)key {
  if (![key isKindOfClass:[NSString class]]) return nil;
  fax::AddressEntry const entry = place->entry();
  if ([key isEqualToString:@"name"]) return string_of(entry.name);
  if ([key isEqualToString:@"phoneNumber"]) return string_of(entry.number);
  if (entry.group_record) return [key isEqualToString:@"userIDList"] ? numbers_of(entry.members) : nil;
  if ([key isEqualToString:@"Id"]) return [NSNumber numberWithUnsignedShort:entry.id];
  if (!entry.has_details) return nil;
  if ([key isEqualToString:@"company"]) return string_of(entry.company);
  return [key isEqualToString:@"note"] ? string_of(entry.note) : nil;
}

@end

namespace {

// The row's object: the one that is in use, or a new one. Autoreleased.
AddressRow *object_of(std::shared_ptr<SharedBook> const &shared, RowNumber row) {
  auto const [found, fresh] = shared->live.try_emplace(row, nil);
  if (!fresh) return [[found->second retain] autorelease];
  AddressRow *object = [[AddressRow alloc] init];
  object->place = new AddressRowPlace{shared, row};
  found->second = object;
  return [object autorelease];
}

AddressRows *new_rows(std::shared_ptr<SharedBook> shared, std::optional<std::vector<RowNumber>> rows);

// nil where work ran out of memory or came to a book too large.
template <typename Work>
AddressRows *made(Work work) noexcept {
  try {
    return work();
  } catch (std::exception const &failure) {
    NSLog(@"An address list could not be made: %s", failure.what());
    return nil;
  }
}

}  // namespace

@interface AddressRows ()
- (id)initWithStorage:(AddressRowsStorage *)given;
@end

namespace {

AddressRows *new_rows(std::shared_ptr<SharedBook> shared, std::optional<std::vector<RowNumber>> rows) {
  auto storage = std::make_unique<AddressRowsStorage>(AddressRowsStorage{std::move(shared), std::move(rows)});
  return [[[AddressRows alloc] initWithStorage:storage.release()] autorelease];
}

}  // namespace

@implementation AddressRows

+ (NSArray *)sortDescriptors {
  NSMutableArray *descriptors = [NSMutableArray array];
  for (NSString *key : {@"name", @"phoneNumber"}) {
    [descriptors addObject:[[[NSSortDescriptor alloc] initWithKey:key
                                                        ascending:NO
                                                         selector:@selector(caseInsensitiveCompare:)] autorelease]];
  }
  return descriptors;
}

+ (AddressRows *)rowsOfBook:(fax::AddressBook &&)book {
  return made([&book] {
    auto shared = std::make_shared<SharedBook>();
    shared->book = std::move(book);
    shared->book.sort(toolkit_fold());
    return new_rows(std::move(shared), std::nullopt);
  });
}

+ (NSArray *)entriesOfBook:(fax::AddressBook &&)book {
  AddressRows *rows = made([&book] {
    auto shared = std::make_shared<SharedBook>();
    shared->book = std::move(book);
    return new_rows(std::move(shared), std::nullopt);
  });
  return [NSArray arrayWithArray:rows];
}

+ (AddressRows *)noRows {
  return [self rowsOfBook:fax::AddressBook()];
}

- (id)initWithStorage:(AddressRowsStorage *)given {
  self = [super init];
  if (self == nil) {
    delete given;
    return nil;
  }
  storage = given;
  return self;
}

- (id)init {
  return [self initWithStorage:new AddressRowsStorage{std::make_shared<SharedBook>(), std::nullopt}];
}

- (void)dealloc {
  delete storage;
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  (void)zone;
  return [self retain];
}

- (NSUInteger)count {
  return storage->count();
}

- (id)objectAtIndex:(NSUInteger)index {
  if (index >= storage->count()) {
    [NSException raise:NSRangeException
                format:@"row %lu of %lu", static_cast<unsigned long>(index),
                       static_cast<unsigned long>(storage->count())];
  }
  return object_of(storage->shared, storage->at(index));
}

- (NSArray *)objectsAtIndexes:(NSIndexSet *)indexes {
  if ([indexes count] > 0 && [indexes lastIndex] >= storage->count()) return [super objectsAtIndexes:indexes];
  std::vector<RowNumber> rows;
  rows.reserve([indexes count]);
  for (NSUInteger at = [indexes firstIndex]; at != NSNotFound; at = [indexes indexGreaterThanIndex:at]) {
    rows.push_back(storage->at(at));
  }
  return new_rows(storage->shared, std::move(rows));
}

- (NSUInteger)indexOfObjectIdenticalTo:(id)object {
  return [self indexOfObjectIdenticalTo:object inRange:NSMakeRange(0, [self count])];
}

- (NSUInteger)indexOfObjectIdenticalTo:(id)object inRange:(NSRange)range {
  if (![object isKindOfClass:[AddressRow class]]) return NSNotFound;
  AddressRowPlace const &place = *static_cast<AddressRow *>(object)->place;
  if (place.shared != storage->shared) return NSNotFound;
  auto const index = storage->index_of(place.row);
  return index && NSLocationInRange(*index, range) ? *index : static_cast<NSUInteger>(NSNotFound);
}

// An entry never changes, so there is nothing to observe in it: the bindings of a table's columns would otherwise make
// every object of the list.
- (void)addObserver:(NSObject *)observer
    toObjectsAtIndexes:(NSIndexSet *)indexes
            forKeyPath:(NSString *)path
               options:(NSKeyValueObservingOptions)options
               context:(void *)context {
}

- (void)removeObserver:(NSObject *)observer
    fromObjectsAtIndexes:(NSIndexSet *)indexes
              forKeyPath:(NSString *)path {
}

- (AddressRows *)rowsNamed:(NSString *)text {
  AddressRowsStorage const &own = *storage;
  return made([&] {
    if ([text length] == 0) return new_rows(own.shared, std::nullopt);
    return new_rows(own.shared, own.shared->book.rows_named(units_of(text), toolkit_fold()));
  });
}

- (AddressRows *)membersOfGroup:(NSDictionary *)group complete:(BOOL *)complete {
  AddressRowsStorage const &own = *storage;
  return made([&] {
    std::span<std::uint16_t const> listed;
    Ids ids;
    if ([group isKindOfClass:[AddressRow class]]) {
      listed = static_cast<AddressRow *>(group)->place->entry().members;
    } else {
      ids = ids_of([group objectForKey:@"userIDList"]);
      listed = ids.known;
    }
    fax::AddressBook const &book = own.shared->book;
    fax::GroupMembers found = own.rows ? book.members(listed, *own.rows) : book.members(listed);
    if (complete != nullptr) *complete = found.complete && ids.strange == 0;
    return new_rows(own.shared, std::move(found.rows));
  });
}

@end
