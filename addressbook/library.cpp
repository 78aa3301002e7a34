#include "addressbook/library.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>

namespace fax {

namespace {

constexpr char kFramework[] = "QUOLTANIS.framework/Versions/A/QUOLTANIS";
constexpr char kInstalledFolder[] = "/Library/Printers/NORVALT/Frameworks/";
// Everything that the printer's book holds.
constexpr std::uint32_t kAllDeviceData = 23;

// Every argument is as wide as a register, so that it arrives whole whatever width the library reads.
using Context = void *;
using Word = std::uintptr_t;

// The folder that this code was loaded from.
std::filesystem::path own_folder() {
  Dl_info place{};
  if (dladdr(reinterpret_cast<void *>(&own_folder), &place) == 0 || place.dli_fname == nullptr) return {};
  return std::filesystem::path(place.dli_fname).parent_path();
}

// A bundle's program lies at its top or, on macOS, in Contents/MacOS, next to Contents/Frameworks.
std::vector<std::string> usual_places() {
  std::filesystem::path const own = own_folder();
  return {kInstalledFolder + std::string(kFramework), own / "Frameworks" / kFramework,
          own.parent_path() / "Frameworks" / kFramework};
}

}  // namespace

Library &Library::shared() {
  static Library library(usual_places());
  return library;
}

char const *const Library::kNames[] = {
    "Abif_Initialize",
    "AbifDevice_SetDestinationDevice",
    "AbifDevice_GetStatus",
    "AbifDevice_ReadData",
    "AbifGADFile_GetFileDirectory",
    "AbifGADFile_GetFileList",
    "AbifGADFile_Read",
    "AbifGADFile_Add",
    "ABIFData_Create",
    "ABIFData_Delete",
    "ABIFData_Add_MyFax",
    "ABIFData_GetCount_MyFax",
    "ABIFData_GetCount_MyFaxGroup",
    "ABIFData_GetCount_Contact",
    "ABIFData_GetCount_FaxGroup",
    "ABIFData_GetAt_MyFax",
    "ABIFData_GetAt_MyFaxGroup",
    "ABIFData_GetAt_Contact",
    "ABIFData_GetAt_FaxGroup",
};

// What the library itself needs is bound at once: a symbol that is missing would else end the process at its first call.
void Library::load() {
  for (auto place = places_.begin(); loaded_ == nullptr && place != places_.end(); ++place) {
    loaded_ = dlopen(place->c_str(), RTLD_NOW | RTLD_LOCAL);
    std::error_code unseen;
    if (loaded_ == nullptr && std::filesystem::exists(*place, unseen))
      std::fprintf(stderr, "QUOLTANIS : %s\n", dlerror());
  }
  if (loaded_ == nullptr) return;
  for (std::size_t operation = 0; operation < kOperations; ++operation)
    bound_[operation] = dlsym(loaded_, kNames[operation]);
}

template <typename Signature, typename Result, typename... Arguments>
Result Library::call(Operation operation, Result failed, Arguments... arguments) {
  if (loaded_ == nullptr) load();
  auto *const function = reinterpret_cast<Signature *>(bound_[operation]);
  if (function == nullptr) return failed;
  try {
    return function(arguments...);
  } catch (...) {
    std::fprintf(stderr, "%s : the address-book library threw an exception.\n", kNames[operation]);
    return failed;
  }
}

Status Library::initialize() { return call<Status(Context)>(kInitialize, kUnavailable, Context()); }

void Library::set_destination_device(CFStringRef address, std::uint32_t version) {
  Word const given = address != nullptr ? 1 : 0;
  call<Word(Context, Word, CFStringRef, Word)>(kSetDestinationDevice, Word(), Context(), given, address,
                                               Word(version));
}

Status Library::device_status() {
  return call<Status(Word, Word)>(kGetStatus, kUnavailable, Word(), Word());
}

Status Library::read_device(AddressData data, CFStringRef password) {
  return call<Status(Context, AddressData, Word, CFStringRef)>(kReadData, kUnavailable, Context(), data,
                                                               Word(kAllDeviceData), password);
}

CFStringRef Library::file_directory() {
  return call<CFStringRef()>(kGetFileDirectory, CFStringRef());
}

CFStringRef Library::file_list() { return call<CFStringRef()>(kGetFileList, CFStringRef()); }

Status Library::read_file(CFStringRef path, AddressData data) {
  return call<Status(CFStringRef, AddressData, Word)>(kRead, kUnavailable, path, data, Word());
}

Status Library::add_to_file(CFStringRef path, AddressData data) {
  return call<Status(CFStringRef, AddressData, Word)>(kAdd, kUnavailable, path, data, Word());
}

AddressData Library::create_data() { return call<AddressData()>(kCreate, AddressData()); }

void Library::delete_data(AddressData data) { call<Word(AddressData)>(kDelete, Word(), data); }

Status Library::add_my_fax(AddressData data, std::vector<MyFax> const &records) {
  return call<Status(AddressData, Word, MyFax const *)>(kAddMyFax, kUnavailable, data, Word(records.size()),
                                                        records.data());
}

// Records that cannot be fetched count as none.
std::int32_t Library::count(Operation operation, Operation reader, AddressData data) {
  return bound_[reader] != nullptr ? call<std::int32_t(AddressData)>(operation, std::int32_t(), data) : 0;
}

void Library::get(Operation operation, AddressData data, std::uint32_t index, RecordRoom &room) {
  // What was left of another record is not taken for this one's; members are read as far as this one's count says.
  std::memset(&room, 0, sizeof(MyFax));
  call<Word(AddressData, Word, RecordRoom *)>(operation, Word(), data, Word(index), &room);
}

std::int32_t Library::count_my_fax(AddressData data) {
  return count(kGetCountMyFax, kGetAtMyFax, data);
}

std::int32_t Library::count_my_fax_group(AddressData data) {
  return count(kGetCountMyFaxGroup, kGetAtMyFaxGroup, data);
}

std::int32_t Library::count_contact(AddressData data) {
  return count(kGetCountContact, kGetAtContact, data);
}

std::int32_t Library::count_fax_group(AddressData data) {
  return count(kGetCountFaxGroup, kGetAtFaxGroup, data);
}

void Library::get_my_fax(AddressData data, std::uint32_t index, RecordRoom &room) {
  get(kGetAtMyFax, data, index, room);
}

void Library::get_my_fax_group(AddressData data, std::uint32_t index, RecordRoom &room) {
  get(kGetAtMyFaxGroup, data, index, room);
}

void Library::get_contact(AddressData data, std::uint32_t index, RecordRoom &room) {
  get(kGetAtContact, data, index, room);
}

void Library::get_fax_group(AddressData data, std::uint32_t index, RecordRoom &room) {
  get(kGetAtFaxGroup, data, index, room);
}

}  // namespace fax
