// What makes an SQLite file an address book.
#pragma once

#include "quoltanis/status.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace fax::gad {

inline constexpr std::uint32_t application_id = 0x47414446;  // "GADF"
inline constexpr std::uint32_t newest_version = 1;

// The statements that make the tables, each as it then stands in sqlite_schema.
std::span<std::string_view const> schema_statements();

// SQL without white space, so that statements can be compared however they were laid out.
std::string without_space(std::string_view sql);

inline constexpr std::size_t header_size = 100;

// Of the first bytes of a file, before anything of it is trusted: success, foreign_file, newer_file or damaged.
Status check_header(std::span<unsigned char const, header_size> header);

}  // namespace fax::gad
