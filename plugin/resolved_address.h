// A host name as a numeric address.
#pragma once

#include "support/export.h"

#include <cstddef>

// Writes host's numeric address into out, NUL-terminated and cut to size bytes. A numeric host is copied as it stands.
// Else the first address of the name's look-up that converts: IPv4 and IPv6 alike, a link-local IPv6 one with "%" and its
// interface name where both fit size.
// 0: done; out is unchanged when the look-up had no address that converts. 1: the look-up failed (a line on standard
// error says so). Blocks for the look-up. host and out are NUL-terminated and not NULL.
DIRECTFAX_EXPORT int CopyResolvedIPAddress(char const *host, char *out, std::size_t size);
