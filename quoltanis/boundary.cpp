#include "quoltanis/QUOLTANIS.h"
#include "quoltanis/address_data.h"
#include "quoltanis/gad_file.h"
#include "quoltanis/printer_book.h"
#include "quoltanis/unicode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <vector>

struct ABIFData {
  fax::AddressData data;
};

namespace fax {
namespace {

// work()'s status, or that of the exception which came out of it.
template <typename Work>
UInt32 answered(Work work) noexcept {
  try {
    return static_cast<UInt32>(work());
  } catch (std::bad_alloc const &) {
    return static_cast<UInt32>(Status::memory);
  } catch (...) {
    return static_cast<UInt32>(Status::unexpected);
  }
}

// work()'s result, or nothing when an exception came out of it.
template <typename Work>
auto fenced(Work work) noexcept -> decltype(work()) {
  try {
    return work();
  } catch (...) {
    return {};
  }
}

// nullopt for NULL, another object, and half a surrogate pair.
std::optional<std::string> utf8_in(CFStringRef string) {
  if (string == nullptr || CFGetTypeID(string) != CFStringGetTypeID()) return std::nullopt;
  CFRange const all = CFRangeMake(0, CFStringGetLength(string));
  CFIndex bytes = 0;
  if (CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &bytes) != all.length)
    return std::nullopt;
  std::string text(static_cast<std::size_t>(bytes), '\0');
  CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, reinterpret_cast<UInt8 *>(text.data()), bytes, &bytes);
  return text;
}

// A string that nobody has to release, the same one for the same text.
CFStringRef kept_string(std::string const &text) {
  static std::map<std::string, CFStringRef> kept;
  auto const [place, is_new] = kept.try_emplace(text, nullptr);
  if (place->second == nullptr)
    place->second = CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(text.data()),
                                            static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false);
  return place->second;
}

PrinterBook &printer_book() {
  static PrinterBook book;
  return book;
}

Status read_file(std::string const &path, AddressData &data) {
  gad::File file;
  if (Status const status = gad::File::open(path, gad::Access::read, file); status != Status::success) return status;
  AddressData read;
  std::error_code unknown;
  if (auto const bytes = std::filesystem::file_size(path, unknown); !unknown) read.expect_file_of(bytes);
  Status fit = Status::success;
  auto const take = [&](auto const &view) { return (fit = read.append(Source::file, view)) == Status::success; };
  Status const status = file.read(take, take);
  if (status != Status::success) return status;
  if (fit == Status::success) data.replace(Source::file, std::move(read));
  return fit;
}

SInt32 count(std::size_t size) {
  return static_cast<SInt32>(std::min<std::size_t>(size, std::numeric_limits<SInt32>::max()));
}

// Writes one of size records when there is one of that index and a buffer for it.
template <typename Write>
UInt32 written(std::size_t size, UInt32 index, void const *buffer, Write write) noexcept {
  return answered([&] {
    if (buffer == nullptr || index >= size) return Status::argument;
    write();
    return Status::success;
  });
}

// A caller's buffer may begin anywhere.
template <typename Record>
void write_individual(AddressData const &data, UInt32 index, void *buffer) {
  if (reinterpret_cast<std::uintptr_t>(buffer) % alignof(Record) == 0)
    return data.write(index, *static_cast<Record *>(buffer));
  Record record;
  data.write(index, record);
  std::memcpy(buffer, &record, sizeof record);
}

std::size_t individuals(ABIFDataRef handle, Source source) {
  return handle == nullptr ? 0 : handle->data.individuals(source);
}

std::size_t groups(ABIFDataRef handle, Source source) { return handle == nullptr ? 0 : handle->data.groups(source); }

}  // namespace
}  // namespace fax

using namespace fax;

UInt32 Abif_Initialize(void *) {
  return answered([] { return printer_book().initialize(); });
}

void AbifDevice_SetDestinationDevice(void *, UInt32 with_address, CFStringRef address, UInt32) {
  answered([&] {
    // First none: where the new address cannot be kept, the old one would be that of another printer.
    printer_book().set_address("");
    if (with_address != 0) printer_book().set_address(utf8_in(address).value_or(""));
    return Status::success;
  });
}

UInt32 AbifDevice_GetStatus(void *, void *) {
  return answered([] { return printer_book().status(); });
}

UInt32 AbifDevice_ReadData(void *, ABIFDataRef data, UInt32, CFStringRef password) {
  return answered([&] {
    auto const text = utf8_in(password);
    if (data == nullptr || (password != nullptr && !text)) return Status::argument;
    return printer_book().read(text.value_or(""), data->data);
  });
}

CFStringRef AbifGADFile_GetFileDirectory() {
  return fenced([]() -> CFStringRef {
    std::string const folder = gad::folder();
    std::error_code error;
    return std::filesystem::is_directory(folder, error) ? kept_string(folder) : nullptr;
  });
}

CFStringRef AbifGADFile_GetFileList() {
  return fenced([]() -> CFStringRef {
    std::string list;
    for (auto const &name : gad::files(gad::folder()))
      if (units_in(name)) list.append(name).append(1, '\0');
    return list.empty() ? nullptr : kept_string(list);
  });
}

UInt32 AbifGADFile_Read(CFStringRef path, ABIFDataRef data, UInt32) {
  return answered([&] {
    auto const file_path = utf8_in(path);
    return file_path && data != nullptr ? read_file(*file_path, data->data) : Status::argument;
  });
}

UInt32 AbifGADFile_Add(CFStringRef path, ABIFDataRef data, UInt32) {
  return answered([&] {
    auto const file_path = utf8_in(path);
    return file_path && data != nullptr ? gad::add(*file_path, data->data.file_individuals()) : Status::argument;
  });
}

ABIFDataRef ABIFData_Create() { return new (std::nothrow) ABIFData; }

void ABIFData_Delete(ABIFDataRef data) { delete data; }

SInt32 ABIFData_GetCount_MyFax(ABIFDataRef data) { return count(individuals(data, Source::file)); }
SInt32 ABIFData_GetCount_MyFaxGroup(ABIFDataRef data) { return count(groups(data, Source::file)); }
SInt32 ABIFData_GetCount_Contact(ABIFDataRef data) { return count(individuals(data, Source::printer)); }
SInt32 ABIFData_GetCount_FaxGroup(ABIFDataRef data) { return count(groups(data, Source::printer)); }

UInt32 ABIFData_GetAt_MyFax(ABIFDataRef data, UInt32 index, void *record) {
  return written(individuals(data, Source::file), index, record,
                 [&] { write_individual<MyFaxRecord>(data->data, index, record); });
}

UInt32 ABIFData_GetAt_MyFaxGroup(ABIFDataRef data, UInt32 index, void *record) {
  return written(groups(data, Source::file), index, record,
                 [&] { data->data.write_group(index, static_cast<MyFaxGroupHead *>(record)); });
}

UInt32 ABIFData_GetAt_Contact(ABIFDataRef data, UInt32 index, void *record) {
  return written(individuals(data, Source::printer), index, record,
                 [&] { write_individual<ContactRecord>(data->data, index, record); });
}

UInt32 ABIFData_GetAt_FaxGroup(ABIFDataRef data, UInt32 index, void *record) {
  return written(groups(data, Source::printer), index, record,
                 [&] { data->data.write_group(index, static_cast<FaxGroupHead *>(record)); });
}

UInt32 ABIFData_Add_MyFax(ABIFDataRef data, UInt32 number, void const *records) {
  return answered([&] {
    if (data == nullptr || (records == nullptr && number != 0)) return Status::argument;
    std::vector<MyFaxRecord> aligned(number);
    if (number != 0) std::memcpy(aligned.data(), records, number * sizeof(MyFaxRecord));
    return data->data.add(aligned);
  });
}
