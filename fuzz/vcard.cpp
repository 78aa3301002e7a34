// Foreign address lists as vCards. Input: the file.
#include "fuzz/check.h"
#include "fuzz/lists.h"
#include "gad/vcard_contacts.h"

using namespace fax::tool;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  try {
    DecodedText const list = decode_text_file({reinterpret_cast<char const *>(data), size}, "");
    FUZZ_CHECK(is_utf8(list.text));
    Contacts const contacts = read_vcard_contacts(list.text, false, fuzz::no_progress);
    fuzz::check_list(contacts);
    for (auto const &person : contacts.people) {
      if (fault_of(person)) continue;
      for (auto const version : {VcardVersion::v3, VcardVersion::v4})
        fuzz::check_same(person, read_vcard_contacts(vcard_contact(person, version), false, fuzz::no_progress));
    }
  } catch (Failure const &failure) {
    fuzz::check_message(failure.what());
  }
  return 0;
}
