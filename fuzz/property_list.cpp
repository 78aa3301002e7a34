// Property lists such as the user's help preferences: the toolkit comes through every list that is called safe. Input:
// the file.
#include "fuzz/check.h"
#include "platform/property_list.h"

#include <cstdint>

// In toolkit_reader.mm.
bool toolkit_reads(std::string_view list);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  std::string_view const list(reinterpret_cast<char const *>(data), size);
  bool const safe = fax::is_safe_property_list(list);
  // The toolkit's class answers nothing for what is not safe.
  bool const read = toolkit_reads(list);
  FUZZ_CHECK(safe || !read);
  return 0;
}
