// What the driver's filter has to know of the printer: read from the queue's PPD.
#pragma once

#include "platform/text_encoding.h"

#include <string>
#include <vector>

namespace fax {

// One of the panel's PPD options.
struct FaxFeature {
  std::string keyword;               // "QXFaxImageQuality"
  std::vector<std::string> choices;  // choice keywords in the PPD's order
  std::string default_choice;
};

struct FaxPrinter {
  EncodingNumber password_encoding = 0;
  std::vector<FaxFeature> features;  // the panel's options that the PPD has, in the panel's order
};

// Throws std::runtime_error, with a text for the job's owner, when path is no readable PPD.
FaxPrinter read_fax_printer(std::string const &path);

}  // namespace fax
