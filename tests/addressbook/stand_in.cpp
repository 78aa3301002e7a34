#include "stand_in.h"

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>

namespace {

test::StandIn stand_in;

struct Handle {
  test::Book book;
};

std::string utf8(CFStringRef text) {
  if (text == nullptr) return "(null)";
  char buffer[1000];
  return CFStringGetCString(text, buffer, sizeof(buffer), kCFStringEncodingUTF8) ? buffer : "(no text)";
}

// Kept by the library for ever, as a caller that does not release it needs.
CFStringRef string(std::u16string const &text) {
  return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(text.data()),
                                 static_cast<CFIndex>(2 * text.size()), kCFStringEncodingUTF16LE, false);
}

void called(std::string const &call) {
  stand_in.calls.push_back(call);
  if (!stand_in.throwing.empty() && call.starts_with(stand_in.throwing)) stand_in.thrown();
}

template <std::size_t Units>
void put(char16_t (&field)[Units], std::u16string const &text) {
  std::copy_n(text.begin(), std::min(Units, text.size()), field);
  if (text.size() < Units) field[text.size()] = 0;
}

template <typename Record>
void put(Record *record, test::Crowd const &crowd) {
  put(record->name, crowd.name);
  record->member_count = static_cast<std::uint16_t>(crowd.members.size());
  std::copy(crowd.members.begin(), crowd.members.end(), record->members);
}

}  // namespace

DIRECTFAX_EXPORT test::StandIn *stand_in_library() { return &stand_in; }

DIRECTFAX_EXPORT std::uint32_t Abif_Initialize(void *context) {
  called("Initialize " + std::to_string(context != nullptr));
  return stand_in.initialize;
}

DIRECTFAX_EXPORT void AbifDevice_SetDestinationDevice(void *, std::uint32_t flag, CFStringRef address,
                                                      std::uint32_t version) {
  called("SetDestinationDevice " + std::to_string(flag) + " " + utf8(address) + " " + std::to_string(version));
}

#ifndef INCOMPLETE
DIRECTFAX_EXPORT std::uint32_t AbifDevice_GetStatus(std::uintptr_t one, std::uintptr_t other) {
  called("GetStatus " + std::to_string(one) + " " + std::to_string(other));
  return stand_in.device_status;
}
#endif

DIRECTFAX_EXPORT std::uint32_t AbifDevice_ReadData(void *, Handle *handle, std::uint32_t selector,
                                                   CFStringRef password) {
  called("ReadData " + std::to_string(selector) + " " + utf8(password));
  handle->book = stand_in.device;
  return stand_in.read_data;
}

DIRECTFAX_EXPORT CFStringRef AbifGADFile_GetFileDirectory() {
  called("GetFileDirectory");
  return stand_in.has_folder ? string(stand_in.folder) : nullptr;
}

DIRECTFAX_EXPORT CFStringRef AbifGADFile_GetFileList() {
  called("GetFileList");
  return stand_in.has_list ? string(stand_in.list) : nullptr;
}

DIRECTFAX_EXPORT std::uint32_t AbifGADFile_Read(CFStringRef path, Handle *handle, std::uintptr_t zero) {
  called("Read " + utf8(path) + " " + std::to_string(zero));
  auto const file = stand_in.files.find(utf8(path));
  if (file == stand_in.files.end()) return 5;
  handle->book = file->second;
  return 0;
}

DIRECTFAX_EXPORT Handle *ABIFData_Create() {
  called("Create");
  if (!stand_in.creates) return nullptr;
  ++stand_in.open_handles;
  return new Handle;
}

DIRECTFAX_EXPORT void ABIFData_Delete(Handle *handle) {
  called("Delete");
  --stand_in.open_handles;
  delete handle;
}

DIRECTFAX_EXPORT std::uint32_t ABIFData_Add_MyFax(Handle *, std::uint32_t count, fax::MyFax const *records) {
  called("Add_MyFax " + std::to_string(count));
  stand_in.added.assign(records, records + count);
  return stand_in.add_my_fax;
}

DIRECTFAX_EXPORT std::int32_t ABIFData_GetCount_MyFax(Handle *handle) {
  called("Count MyFax");
  return static_cast<std::int32_t>(handle->book.people.size());
}

DIRECTFAX_EXPORT std::int32_t ABIFData_GetCount_MyFaxGroup(Handle *handle) {
  called("Count MyFaxGroup");
  return static_cast<std::int32_t>(handle->book.crowds.size());
}

DIRECTFAX_EXPORT std::int32_t ABIFData_GetCount_Contact(Handle *handle) {
  called("Count Contact");
  return static_cast<std::int32_t>(handle->book.people.size());
}

DIRECTFAX_EXPORT std::int32_t ABIFData_GetCount_FaxGroup(Handle *handle) {
  called("Count FaxGroup");
  return static_cast<std::int32_t>(handle->book.crowds.size());
}

#ifndef INCOMPLETE
DIRECTFAX_EXPORT std::uint32_t AbifGADFile_Add(CFStringRef path, Handle *, std::uintptr_t zero) {
  called("Add " + utf8(path) + " " + std::to_string(zero));
  return stand_in.add;
}

DIRECTFAX_EXPORT void ABIFData_GetAt_MyFax(Handle *handle, std::uint32_t index, fax::MyFax *record) {
  called("At MyFax " + std::to_string(index));
  test::Person const &person = handle->book.people.at(index);
  record->id = person.id;
  put(record->name, person.name);
  put(record->phone_number, person.number);
  put(record->company, person.company);
  put(record->note, person.note);
}
#endif

DIRECTFAX_EXPORT void ABIFData_GetAt_MyFaxGroup(Handle *handle, std::uint32_t index, fax::MyFaxGroup *record) {
  called("At MyFaxGroup " + std::to_string(index));
  put(record, handle->book.crowds.at(index));
}

DIRECTFAX_EXPORT void ABIFData_GetAt_Contact(Handle *handle, std::uint32_t index, fax::Contact *record) {
  called("At Contact " + std::to_string(index));
  test::Person const &person = handle->book.people.at(index);
  record->id = person.id;
  put(record->name, person.name);
  put(record->phone_number, person.number);
}

DIRECTFAX_EXPORT void ABIFData_GetAt_FaxGroup(Handle *handle, std::uint32_t index, fax::FaxGroup *record) {
  called("At FaxGroup " + std::to_string(index));
  put(record, handle->book.crowds.at(index));
}
