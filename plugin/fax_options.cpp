#include "plugin/fax_options.h"

char const *const SUPPORTED_KEYWORDS[] = {"FaxImageQuality", "FaxTransmissionReport", "FaxCoverPageMode",
                                          "FaxSenderMode", nullptr};

namespace fax {

SenderControls sender_controls(std::optional<std::string_view> cover_page,
                               std::optional<std::string_view> sender_mode) {
  if (cover_page == "None") return {false, false};
  return {true, sender_mode == "EnterName"};
}

std::vector<std::string> editor_arguments(std::string_view address) {
  if (address.empty()) return {"-DFAXConnectionType USB"};
  return {"-DFAXConnectionType NET", "-DFAXAddress " + std::string(address)};
}

}  // namespace fax
