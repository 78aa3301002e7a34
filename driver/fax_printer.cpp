#include "driver/fax_printer.h"

#include "support/printer_encoding.h"

#include <cups/ppd.h>
#include <memory>
#include <stdexcept>

namespace fax {

namespace {

constexpr char const *kFeatureKeywords[] = {
    "QXFaxImageQuality",
    "QXFaxTransmissionReport",
    "QXFaxCoverPageMode",
    "QXFaxSenderMode",
};

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};

}  // namespace

FaxPrinter read_fax_printer(std::string const &path) {
  std::unique_ptr<ppd_file_t, ClosePpd> const ppd{ppdOpenFile(path.c_str())};
  if (!ppd) throw std::runtime_error{"The printer's PPD file \"" + path + "\" cannot be read"};

  FaxPrinter printer;
  ppd_attr_t const *encoding = ppdFindAttr(ppd.get(), kPrinterEncodingAttribute, nullptr);
  printer.password_encoding =
      encoding != nullptr && encoding->value != nullptr ? printer_encoding(encoding->value) : kDefaultPrinterEncoding;
  for (char const *keyword : kFeatureKeywords) {
    ppd_option_t const *option = ppdFindOption(ppd.get(), keyword);
    if (option == nullptr) continue;
    FaxFeature feature{keyword, {}, option->defchoice};
    for (int i = 0; i < option->num_choices; ++i) feature.choices.emplace_back(option->choices[i].choice);
    printer.features.push_back(feature);
  }
  return printer;
}

}  // namespace fax
