// The maker's address-book library, QUOLTANIS, bound when it is first needed.
//
// Main thread only, one call at a time. Nothing leaves a function but its result: an operation that the library lacks,
// and one that throws (a line on standard error says so), answers as a library would that has nothing: no text, no
// handle, no records, kUnavailable. Texts are string objects, borrowed both ways.
#pragma once

#include "addressbook/records.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace fax {

// What an operation of the library, or a step on the way to it, came to.
using Status = std::uint32_t;
inline constexpr Status kSuccess = 0;
inline constexpr Status kDeviceReady = 0x21000001;
inline constexpr Status kTextUnfit = 0x20000001;
inline constexpr Status kWrongPassword = 0x20000003;
inline constexpr Status kNoName = 0x20000008;
inline constexpr Status kAlreadyPresent = 0x20000010;
inline constexpr Status kUnavailable = 0xFFFFFFFF;

// Address data inside the library: made by create_data, ended by delete_data.
using AddressData = void *;

class Library {
public:
  // Places to look for the library at, in order.
  explicit Library(std::vector<std::string> places) : places_(std::move(places)) {}
  Library(Library const &) = delete;
  Library &operator=(Library const &) = delete;

  // The library of this process: the installed one, else the one in the bundle's own folder of frameworks.
  static Library &shared();

  // Each of these looks for the library first, as long as none was found: one that is put in place later is found then.
  // Once loaded it stays until the process ends.
  Status initialize();
  // address null: none is given.
  void set_destination_device(CFStringRef address, std::uint32_t version);
  Status device_status();
  // Contacts and groups go into data.
  Status read_device(AddressData data, CFStringRef password);

  // Null when there is no folder.
  CFStringRef file_directory();
  // File names, each ended by U+0000; null when there are none.
  CFStringRef file_list();
  Status read_file(CFStringRef path, AddressData data);
  Status add_to_file(CFStringRef path, AddressData data);

  // Null for failure.
  AddressData create_data();
  void delete_data(AddressData data);
  Status add_my_fax(AddressData data, std::vector<MyFax> const &records);

  // Number of records in data; 0 or less for none.
  std::int32_t count_my_fax(AddressData data);
  std::int32_t count_my_fax_group(AddressData data);
  std::int32_t count_contact(AddressData data);
  std::int32_t count_fax_group(AddressData data);
  // One record, from index 0. The room begins with zeros where the library writes nothing.
  void get_my_fax(AddressData data, std::uint32_t index, RecordRoom &room);
  void get_my_fax_group(AddressData data, std::uint32_t index, RecordRoom &room);
  void get_contact(AddressData data, std::uint32_t index, RecordRoom &room);
  void get_fax_group(AddressData data, std::uint32_t index, RecordRoom &room);

private:
  enum Operation : std::size_t {
    kInitialize,
    kSetDestinationDevice,
    kGetStatus,
    kReadData,
    kGetFileDirectory,
    kGetFileList,
    kRead,
    kAdd,
    kCreate,
    kDelete,
    kAddMyFax,
    kGetCountMyFax,
    kGetCountMyFaxGroup,
    kGetCountContact,
    kGetCountFaxGroup,
    kGetAtMyFax,
    kGetAtMyFaxGroup,
    kGetAtContact,
    kGetAtFaxGroup,
    kOperations
  };
  static char const *const kNames[kOperations];

  template <typename Signature, typename Result, typename... Arguments>
  Result call(Operation operation, Result failed, Arguments... arguments);
  std::int32_t count(Operation operation, Operation reader, AddressData data);
  void get(Operation operation, AddressData data, std::uint32_t index, RecordRoom &room);
  void load();

  std::vector<std::string> places_;
  void *loaded_ = nullptr;                // by dlopen
  std::array<void *, kOperations> bound_{};  // null for what the library lacks
};

}  // namespace fax
