// Every status that the library's operations answer. The values above 0x200000FF are this library's own; callers that
// know only the others treat them as a failure without a message of its own.
#pragma once

#include <cstdint>

namespace fax {

enum class Status : std::uint32_t {
  success = 0,
  ready = 0x21000001,  // the printer is set and answers

  text_unfit = 0x20000001,  // a text is no Unicode, holds U+0000, or is longer than its field
  password = 0x20000003,    // wrong or missing password
  empty_name = 0x20000008,
  present = 0x20000010,  // the address (name and number), or the name of a group, is there already

  // Of the caller or of this process
  argument = 0x20000101,    // a null handle or buffer, an argument that is no string, an empty path
  memory = 0x20000102,      // no memory
  unexpected = 0x20000103,  // a fault of the library

  // Of a file
  no_file = 0x20000110,       // there is none at the path
  foreign_file = 0x20000111,  // a folder, a device, or a file that is no address book
  newer_file = 0x20000112,    // an address book of a version that this library does not know
  damaged = 0x20000113,       // an address book whose structure is broken
  no_permission = 0x20000114,
  read_only = 0x20000115,    // may be read; it or its folder may not be changed
  busy = 0x20000116,         // another program has held it for longer than the time-out
  full = 0x20000117,         // no room on the disk, or the file may not grow
  file_error = 0x20000118,   // the system could not read or write it
  file_exists = 0x20000119,  // a new file would replace one
  no_entry = 0x2000011A,     // no individual or group of that id
  no_member = 0x2000011B,    // an individual with an id above 65535 cannot be in a group
  empty_number = 0x2000011C,

  // Of the printer's book
  no_address = 0x20000120,     // no printer is set, or its address is none
  configuration = 0x20000121,  // the configuration file has a fault
  unreachable = 0x20000122,    // no connection, or it ended in mid-answer
  time_out = 0x20000123,       // connected, and no answer in time
  tls = 0x20000124,            // no encrypted connection: refused, or the certificate is not trusted
  refused = 0x20000125,        // the server refuses the search
  incomplete = 0x20000126,     // the server, or this library's own limit, cut the list short
  bad_answer = 0x20000127,     // what came is no LDAP
};

}  // namespace fax
