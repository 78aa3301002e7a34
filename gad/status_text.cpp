#include "gad/status_text.h"

#include "texts/texts.h"

namespace fax::tool {
namespace {

char const *english(Status status) {
  switch (status) {
    case Status::success: return mark("Done.");
    case Status::ready: return mark("The printer is set and answers.");
    case Status::text_unfit: return mark("A text is not valid Unicode or too long.");
    case Status::password: return mark("The password is wrong or missing.");
    case Status::empty_name: return mark("The name is empty.");
    case Status::present: return mark("The entry is there already.");
    //: A program has called the address-book library in a wrong way.
    case Status::argument: return mark("The call is not valid.");
    case Status::memory: return mark("There is not enough memory.");
    case Status::unexpected: return mark("An unexpected fault occurred.");
    case Status::no_file: return mark("There is no such file.");
    case Status::foreign_file: return mark("The file is not an address book.");
    case Status::newer_file: return mark("The address book was made by a newer version.");
    case Status::damaged: return mark("The address book is damaged.");
    case Status::no_permission: return mark("You have no permission for this file.");
    case Status::read_only: return mark("The address book or its folder cannot be changed.");
    case Status::busy: return mark("Another program is using the address book.");
    case Status::full: return mark("There is no room on the disk.");
    case Status::file_error: return mark("The file could not be read or written.");
    case Status::file_exists: return mark("The file exists already.");
    case Status::no_entry: return mark("There is no such entry.");
    case Status::no_member: return mark("An entry with an id above 65535 cannot be in a group.");
    case Status::empty_number: return mark("The number is empty.");
    case Status::no_address: return mark("The printer has no network address.");
    case Status::configuration: return mark("The configuration of the printer's address book has a fault.");
    case Status::unreachable: return mark("The printer's address book cannot be reached.");
    case Status::time_out: return mark("The printer's address book does not answer.");
    case Status::tls: return mark("The connection to the printer's address book cannot be encrypted.");
    case Status::refused: return mark("The printer's address book refuses the request.");
    case Status::incomplete: return mark("The printer's address book is longer than what may be read.");
    case Status::bad_answer: return mark("The printer's address book gave an answer that is not valid.");
  }
  return mark("An unexpected fault occurred.");
}

}  // namespace

std::string sentence_about(Status status) { return tr(english(status)); }

}  // namespace fax::tool
