// Foreign address lists as vCards. Input: the file.
#include "fuzz/check.h"
#include "fuzz/lists.h"
#include "gad/vcard_contacts.h"

using namespace fax::tool;

// libebook-contacts forgets what it has of a broken line.
extern "C" int __lsan_is_turned_off() { return 1; }

namespace {

// vCards know one line break.
void break_lines(std::string &text) {
  for (std::size_t at = 0; (at = text.find('\r', at)) != std::string::npos;)
    if (text.compare(at, 2, "\r\n") == 0) text.erase(at, 1);
    else text[at] = '\n';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  try {
    DecodedText const list = decode_text_file({reinterpret_cast<char const *>(data), size}, "");
    FUZZ_CHECK(is_utf8(list.text));
    Contacts const contacts = read_vcard_contacts(list.text, false, fuzz::no_progress);
    fuzz::check_list(contacts);
    for (Contact person : contacts.people) {
      if (fault_of(person)) continue;
      for (auto *text : {&person.name, &person.number, &person.company, &person.note}) break_lines(*text);
      for (auto const version : {VcardVersion::v3, VcardVersion::v4})
        fuzz::check_same(person, read_vcard_contacts(vcard_contact(person, version), false, fuzz::no_progress));
    }
  } catch (Failure const &failure) {
    fuzz::check_message(failure.what());
  }
  return 0;
}
