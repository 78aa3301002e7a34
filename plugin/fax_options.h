// The panel's PPD options and the rules that join its controls.
#pragma once

#include "support/export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The panel's options without their prefix, ended by a null entry; for other plug-ins of the same driver.
DIRECTFAX_EXPORT char const *const SUPPORTED_KEYWORDS[];

namespace fax {

inline constexpr char kCoverPageKeyword[] = "QXFaxCoverPageMode";
inline constexpr char kSenderModeKeyword[] = "QXFaxSenderMode";
inline constexpr char kSettingsGroup[] = "QXFaxSettings";
inline constexpr char kSenderNameKey[] = "DFaxCoverSenderName";

// In UTF-16 code units and UTF-8 bytes alike.
inline constexpr std::size_t kMaximumSenderName = 30;

// Printable ASCII; a range list as InputStringChecker takes it.
inline constexpr std::uint16_t kSenderNameAcceptableRange[] = {0x0020, 0x007E, 0, 0};

struct SenderControls {
  bool mode_enabled;
  bool name_enabled;
};

// What the choices of the cover page and sender mode options, nullopt where absent, allow.
SenderControls sender_controls(std::optional<std::string_view> cover_page, std::optional<std::string_view> sender_mode);

// Arguments of the address book editor; each is one argument with a space inside. address is numeric, "" for USB.
std::vector<std::string> editor_arguments(std::string_view address);

}  // namespace fax
