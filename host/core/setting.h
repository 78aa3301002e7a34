// One option of a job: a key and its value.
#pragma once

#include <string>

namespace fax::host {

struct Setting {
  std::string key;
  std::string value;

  bool operator==(Setting const &) const = default;
};

}  // namespace fax::host
