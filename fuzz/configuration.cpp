// The files that programs keep for themselves and the desktop keeps for them: what the dialog remembers, the printer's
// book, the toolkit's theme. Input: the file.
#include "fuzz/check.h"
#include "fuzz/memory_file.h"
#include "host/core/memory.h"
#include "host/core/utf8.h"
#include "host/theme/preference.h"
#include "quoltanis/printer_settings.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// A file that is understood is written as one that says the same.
void check_memory(std::string_view text) {
  fuzz::MemoryFile const file(text);
  auto const memory = fax::host::load_memory(file.path());
  if (!memory) return;
  fs::path const place = fs::temp_directory_path() / ("fuzz-" + std::to_string(getpid()) + ".json");
  FUZZ_CHECK(!fax::host::save_memory(memory.value(), place));
  auto const again = fax::host::load_memory(place);
  fs::remove(place);
  FUZZ_CHECK(again.ok() && again.value() == memory.value());
}

// A fault names a line of the text; without one every line was taken, and taking it twice changes nothing.
void check_settings(std::string_view text) {
  fax::PrinterSettings settings;
  std::string const fault = fax::parse_settings(text, settings);
  if (fault.empty()) {
    auto const before = settings.name_attributes;
    FUZZ_CHECK(fax::parse_settings(text, settings).empty() && settings.name_attributes == before);
    FUZZ_CHECK(settings.time_out.count() >= 1 && settings.ca_file.find('\n') == std::string::npos);
  } else if (text.find('\0') == text.npos) {
    FUZZ_CHECK(fault.starts_with("line "));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  std::string_view const text(reinterpret_cast<char const *>(data), size);
  check_memory(text);
  check_settings(text);
  (void)fax::theme::scheme_of_gtk_settings(fax::theme::read_gtk_settings(text));
  return 0;
}
