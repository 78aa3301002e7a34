#import "faxsetting/address_files.h"

#import <AppKit/AppKit.h>

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "faxsetting/address_record.h"

namespace fax {

namespace {

std::u16string units_of(NSString *text) {
  std::u16string units([text length], u'\0');
  if (!units.empty())
    [text getCharacters:reinterpret_cast<unichar *>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

Status fill_record_from(MyFax &record, id destination) {
  NSString *number = [destination valueForKey:@"phoneNumber"];
  std::u16string const number_units = units_of(number);
  std::optional<std::u16string_view> const phone_number =
      number != nil ? std::optional<std::u16string_view>(number_units) : std::nullopt;
  return fax::fill_record(record, units_of([destination valueForKey:@"name"]), phone_number, std::time(nullptr));
}

// Puts one record for each destination into data, or none.
Status add_records(Library &library, AddressData data, NSArray *destinations) {
  std::vector<MyFax> records([destinations count]);
  for (std::size_t at = 0; at < records.size(); ++at) {
    Status const status = fill_record_from(records[at], [destinations objectAtIndex:at]);
    if (status != kSuccess) return status;
  }
  return library.add_my_fax(data, records);
}

NSMutableDictionary *file_entry(NSString *name, NSString *path) {
  return [NSMutableDictionary dictionaryWithObjectsAndKeys:name, @"name", path, @"path", nil];
}

}  // namespace

NSArray *address_files(NSString *directory, NSString *names) {
  unichar const end = 0;
  NSMutableArray *files = [NSMutableArray array];
  NSEnumerator *pieces =
      [[names componentsSeparatedByString:[NSString stringWithCharacters:&end length:1]] objectEnumerator];
  while (NSString *name = [pieces nextObject])
    if ([name length] > 0)
      [files addObject:file_entry(name, [NSString stringWithFormat:@"%@/%@", directory, name])];
  return files;
}

NSString *folder_outside_container(NSString *directory) {
  NSUInteger const first = 4, last = 3;
  NSArray *parts = [directory pathComponents];
  NSUInteger const count = [parts count];
  if (count < first + last) return nil;
  NSArray *start = [parts subarrayWithRange:NSMakeRange(0, first)];
  NSArray *end = [parts subarrayWithRange:NSMakeRange(count - last, last)];
  return [NSString pathWithComponents:[start arrayByAddingObjectsFromArray:end]];
}

NSArray *choose_address_files(NSString *folder) {
  NSOpenPanel *panel = [NSOpenPanel openPanel];
  [panel setCanChooseFiles:YES];
  [panel setCanChooseDirectories:NO];
  [panel setAllowsMultipleSelection:YES];
  if ([panel respondsToSelector:@selector(setDirectoryURL:)])
    [panel setDirectoryURL:[NSURL fileURLWithPath:folder]];
  else
    [panel setDirectory:folder];
  if ([panel runModal] != NSOKButton) return nil;
  NSMutableArray *files = [NSMutableArray array];
  NSEnumerator *urls = [[panel URLs] objectEnumerator];
  while (NSURL *url = [urls nextObject]) [files addObject:file_entry([[url path] lastPathComponent], [url path])];
  return files;
}

Status add_to_address_file(NSString *path, NSArray *destinations) {
  Library &library = Library::shared();
  AddressData const data = library.create_data();
  if (data == nullptr) return kUnavailable;
  Status status = add_records(library, data, destinations);
  if (status == kSuccess) status = library.add_to_file((CFStringRef)path, data);
  library.delete_data(data);
  return status;
}

std::size_t index_key_length(NSString *name) { return index_key(units_of(name)).size(); }

}  // namespace fax
