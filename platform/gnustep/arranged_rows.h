// The wrapper that an array controller puts around its arranged objects.
#pragma once
#import <Foundation/Foundation.h>

namespace fax {

// The array inside, as arrangeObjects: gave it; array itself when it is no such wrapper. Not retained.
NSArray *arranged_rows(NSArray *array);

// While one lives, wrappers answer nil for a key and take no observer: a binding to a key of their objects can be made
// and be kept from walking them. Main thread only.
class UnwalkedRows {
 public:
  UnwalkedRows();
  ~UnwalkedRows();
  UnwalkedRows(UnwalkedRows const &) = delete;
  UnwalkedRows &operator=(UnwalkedRows const &) = delete;
};

}  // namespace fax
