// What the parser of the command line says, in the user's language.
#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace fax::tool {

// Lays out --help, in columns as wide as they look.
std::shared_ptr<CLI::Formatter> help_format();

// The sentence that the parser has for a wrong command line (in English, without a full stop) as ours.
std::string complaint(std::string_view parser);

}  // namespace fax::tool
