// What is dragged from one program to another: a list of addresses (text/uri-list, RFC 2483).
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace fax::host {

struct DroppedFiles {
  std::vector<std::string> paths;   // of files of this computer, any bytes, in the order of the list
  std::vector<std::string> others;  // addresses of anything else, as they are written
};

// Lines end in CR LF or LF alone; lines that begin with "#" are remarks. host_name: this computer's, which may stand in a
// file's address as "localhost" may.
DroppedFiles read_uri_list(std::string_view text, std::string_view host_name);

}  // namespace fax::host
