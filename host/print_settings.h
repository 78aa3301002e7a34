// Print settings as keys and values in UTF-8, for the hand-over to the print service.
#pragma once
#include <PrintCore/PrintCore.h>

#include <vector>

#include "host/core/setting.h"

namespace fax::host {

// Every key in its order. Booleans become "true" and "false"; what is neither text nor a boolean is left out.
std::vector<Setting> read_settings(PMPrintSettings settings);

// Takes away every key that before lacks, and gives the others their value of then.
void restore_settings(PMPrintSettings settings, std::vector<Setting> const &before);

}  // namespace fax::host
