#include "quoltanis/status.h"

namespace fax {

std::string_view describe(Status status) {
  switch (status) {
    case Status::success: return "Done";
    case Status::ready: return "The printer is set and answers";
    case Status::text_unfit: return "A text is not valid Unicode or too long";
    case Status::password: return "The password is wrong or missing";
    case Status::empty_name: return "The name is empty";
    case Status::present: return "The entry is there already";
    case Status::argument: return "The call is not valid";
    case Status::memory: return "There is not enough memory";
    case Status::unexpected: return "An unexpected fault";
    case Status::no_file: return "There is no such file";
    case Status::foreign_file: return "The file is not an address book";
    case Status::newer_file: return "The address book was made by a newer version";
    case Status::damaged: return "The address book is damaged";
    case Status::no_permission: return "Permission denied";
    case Status::read_only: return "The address book or its folder cannot be changed";
    case Status::busy: return "Another program is using the address book";
    case Status::full: return "There is no room on the disk";
    case Status::file_error: return "The file could not be read or written";
    case Status::file_exists: return "The file exists already";
    case Status::no_entry: return "There is no such entry";
    case Status::no_member: return "An entry with an id above 65535 cannot be in a group";
    case Status::empty_number: return "The number is empty";
    case Status::no_address: return "The printer has no network address";
    case Status::configuration: return "The configuration of the printer's address book has a fault";
    case Status::unreachable: return "The printer's address book cannot be reached";
    case Status::time_out: return "The printer's address book does not answer";
    case Status::tls: return "The connection to the printer's address book cannot be encrypted";
    case Status::refused: return "The printer's address book refuses the request";
    case Status::incomplete: return "The printer's address book is longer than what may be read";
    case Status::bad_answer: return "The printer's address book gave an answer that is not valid";
  }
  return "An unknown status";
}

}  // namespace fax
