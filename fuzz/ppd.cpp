// Everything that reads a printer's PPD file: the bundle's look-ups, the dialog's options, the driver's. Input: the
// file.
#include "driver/fax_printer.h"
#include "fuzz/check.h"
#include "fuzz/memory_file.h"
#include "host/core/ppd_file.h"
#include "plugin/ppd_choices.h"
#include "support/cf_owned.h"
#include "support/ppd_attributes.h"
#include "support/printer_encoding.h"
#include "support/string_encoding.h"

#include <cstring>
#include <stdexcept>

namespace {

using fax::host::PpdFile;

void check_attributes(ppd_file_t *ppd) {
  for (char const *name : {"QXPrinterLanguageEncoding", "cupsFax", "Q", "", "APDialogExtension"}) {
    ppd_attr_t const *const found = ppdFindAttr_ALT(ppd, name, nullptr);
    int at = 0;
    while (at < ppd->num_attrs && !std::string_view(ppd->attrs[at]->name).starts_with(name)) ++at;
    FUZZ_CHECK(found == (at == ppd->num_attrs || *name == '\0' ? nullptr : ppd->attrs[at]));
    fax::CFOwned<CFStringRef> const value(CopyPPDAttribute(ppd, name));
  }
  FUZZ_CHECK(fax::iconv_name(GetEncodingInfoFromPPD(ppd)) != nullptr);
}

void check_choices(ppd_option_t &option) {
  auto const is_own = [&](ppd_choice_t const *choice) {
    return choice == nullptr || (choice >= option.choices && choice < option.choices + option.num_choices);
  };
  ppd_choice_t const *const initial = fax::initial_choice(option), *const by_default = fax::default_choice(option);
  FUZZ_CHECK(is_own(initial) && is_own(by_default));
  if (by_default != nullptr) FUZZ_CHECK(initial != nullptr && std::strcmp(by_default->choice, option.defchoice) == 0);
}

// What is shown can be chosen or is refused with a reason, and what goes into the job is what is marked.
void check_features(PpdFile &ppd) {
  (void)ppd.mark_initial({{"QXFaxImageQuality", "Fine"}, {"media", "A4"}}, {});
  for (auto const &group : ppd.features())
    for (auto const &feature : group.features) {
      FUZZ_CHECK(ppd.has_option(feature.keyword) && feature.choices.size() >= 2);
      auto const result = ppd.mark(feature.keyword, feature.choices.back().keyword);
      FUZZ_CHECK(result.accepted == result.reason.empty());
    }
  for (auto const &[key, value] : ppd.job_options()) {
    auto const marked = ppd.marked_choice(key);
    FUZZ_CHECK(marked.has_value() && (*marked == value || value.starts_with("Custom.")));
  }
  for (auto const &path : ppd.extension_paths()) FUZZ_CHECK(!path.empty());
  (void)ppd.can_fax();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::MemoryFile const file({reinterpret_cast<char const *>(data), size});
  auto const opened = PpdFile::open(file.path(), "fuzz");
  bool read_by_driver = true;
  try {
    for (auto const &feature : fax::read_fax_printer(file.path()).features) FUZZ_CHECK(!feature.keyword.empty());
  } catch (std::runtime_error const &) {
    read_by_driver = false;
  }
  FUZZ_CHECK(opened.ok() == read_by_driver);
  if (!opened) return 0;
  PpdFile &ppd = *opened.value();
  check_attributes(ppd.handle());
  if (ppd_group_t *const group = fax::find_group(ppd.handle(), "QXFaxSettings"))
    for (int at = 0; at < group->num_options; ++at) check_choices(group->options[at]);
  check_features(ppd);
  return 0;
}
