// Starting another program that goes its own way.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace fax {

// Starts arguments[0], looked up in PATH unless it holds a slash, in a session of its own with no terminal, no
// descriptor of ours and nobody to wait for. 0 once the program runs, else the errno value that kept it from running
// (ENOENT: there is no such program). process, unless it is null, gets the number of the process that runs.
int launch(std::vector<std::string> const &arguments, pid_t *process = nullptr);

}  // namespace fax
