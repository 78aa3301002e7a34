// printf for text of UTF-16 units that may hold objects: what CFStringCreateWithFormat understands.
#pragma once

#include <cstdarg>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fax {

// An object's text; never called with nullptr, which reads "(null)".
using DescribeObject = std::function<std::u16string(void const *object)>;

// format: C's conversions without %n, in order ("%d") or numbered ("%2$d", then all of them), and %@ object, %s UTF-8
// text, %S UTF-16 text ended by 0, %C UTF-16 unit. Width and precision of a text count UTF-16 units; precision never
// cuts a surrogate pair. nullopt for a format that is malformed or too wide (above 65,535), and for a %s that is not
// UTF-8.
std::optional<std::u16string> format_text(std::u16string_view format, std::va_list arguments,
                                          DescribeObject const &describe);

}  // namespace fax
