// Which choice of a PPD option is the current one, and which group names the panel. Borrowed pointers into the PPD.
#pragma once

#include <cups/ppd.h>

namespace fax {

// The first marked choice; with none marked, the last choice whose keyword begins with the option's default keyword (a
// looser test than default_choice's: Fine also takes a FineText that stands behind it). nullptr when neither is there.
ppd_choice_t *initial_choice(ppd_option_t &option);

// The first choice whose keyword is the option's default keyword, or nullptr.
ppd_choice_t *default_choice(ppd_option_t &option);

// The first group of exactly this name among the top-level groups, or nullptr. ppd may be nullptr.
ppd_group_t *find_group(ppd_file_t *ppd, char const *name);

}  // namespace fax
