// Is the data of a property list such that the toolkit's readers come through it? They trust what they read: lists that
// lie deep in one another end the process for want of stack, and a binary list is followed beyond its end.
#pragma once

#include <string_view>

namespace fax {

// True for an XML or text list whose containers (in XML: elements) lie at most 512 deep and whose tags are closed, and
// for a binary list ("bplist00") whose every object lies inside it, refers to objects that it has, no deeper than that,
// has strings for keys, and does not grow by shared parts to more than a million objects beyond those it stores. That
// the data means anything otherwise is not checked.
bool is_safe_property_list(std::string_view data);

}  // namespace fax
