// Adds entries to an address book through the library's boundary until it is killed.
//
//   add-endlessly BOOK TAG
//
// Batches of 1 to 5 entries "TAG BATCH ENTRY". Once AbifGADFile_Add has answered success for a batch, and not before,
// it writes the line "BATCH SIZE" to standard output. Ends with 1 when anything fails.

#include "quoltanis/QUOLTANIS.h"
#include "quoltanis/records.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// ASCII alone.
template <std::size_t size>
void fill(char16_t (&field)[size], std::string const &text) {
  std::copy_n(text.begin(), std::min(text.size(), size - 1), field);
}

fax::MyFaxRecord record(std::string const &name, std::string const &number) {
  fax::MyFaxRecord record{};
  fill(record.name, name);
  fill(record.index_key, name);
  fill(record.number, number);
  fill(record.note, std::string(200, 'n'));
  return record;
}

bool add(CFStringRef book, std::vector<fax::MyFaxRecord> const &records) {
  ABIFDataRef const data = ABIFData_Create();
  bool const added = data != nullptr && ABIFData_Add_MyFax(data, UInt32(records.size()), records.data()) == 0 &&
                     AbifGADFile_Add(book, data, 0) == 0;
  ABIFData_Delete(data);
  return added;
}

bool acknowledge(int batch, std::size_t size) {
  std::string const line = std::to_string(batch) + ' ' + std::to_string(size) + '\n';
  return write(STDOUT_FILENO, line.data(), line.size()) == ssize_t(line.size());
}

}  // namespace

int main(int count, char **arguments) {
  if (count != 3) {
    std::fputs("add-endlessly BOOK TAG\n", stderr);
    return 2;
  }
  CFStringRef const book = CFStringCreateWithCString(nullptr, arguments[1], kCFStringEncodingUTF8);
  for (int batch = 0;; ++batch) {
    std::vector<fax::MyFaxRecord> records;
    for (int entry = 0; entry <= batch % 5; ++entry)
      records.push_back(
          record(std::string(arguments[2]) + ' ' + std::to_string(batch) + ' ' + std::to_string(entry), "1"));
    if (!add(book, records) || !acknowledge(batch, records.size())) return 1;
  }
}
