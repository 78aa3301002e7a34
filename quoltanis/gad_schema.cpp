#include "quoltanis/gad_schema.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace fax::gad {

std::span<std::string_view const> schema_statements() {
  static constexpr std::array<std::string_view, 4> statements{
      "CREATE TABLE individuals (\n"
      "  id INTEGER PRIMARY KEY AUTOINCREMENT CHECK (id BETWEEN 1 AND 4294967295),\n"
      "  name TEXT NOT NULL CHECK (name <> ''),\n"
      "  number TEXT NOT NULL CHECK (length(number) BETWEEN 1 AND 50),\n"
      "  company TEXT NOT NULL DEFAULT '',\n"
      "  note TEXT NOT NULL DEFAULT '',\n"
      "  registered INTEGER NOT NULL DEFAULT 0,\n"
      "  index_key TEXT NOT NULL DEFAULT '',\n"
      "  folded TEXT,\n"
      "  UNIQUE (name, number)\n"
      ") STRICT",
      "CREATE TABLE groups (\n"
      "  id INTEGER PRIMARY KEY AUTOINCREMENT CHECK (id BETWEEN 1 AND 4294967295),\n"
      "  name TEXT NOT NULL UNIQUE CHECK (name <> '')\n"
      ") STRICT",
      "CREATE TABLE members (\n"
      "  group_id INTEGER NOT NULL REFERENCES groups (id) ON DELETE CASCADE,\n"
      "  individual_id INTEGER NOT NULL CHECK (individual_id BETWEEN 1 AND 65535)\n"
      "    REFERENCES individuals (id) ON DELETE CASCADE,\n"
      "  PRIMARY KEY (group_id, individual_id)\n"
      ") STRICT, WITHOUT ROWID",
      "CREATE INDEX members_of_individual ON members (individual_id)",
  };
  return statements;
}

std::string without_space(std::string_view sql) {
  std::string text;
  std::ranges::copy_if(sql, std::back_inserter(text),
                       [](char c) { return std::string_view(" \t\r\n").find(c) == std::string_view::npos; });
  return text;
}

Status check_header(std::span<unsigned char const, header_size> header) {
  constexpr char magic[] = "SQLite format 3";  // with its zero byte
  constexpr std::size_t write_format = 18, read_format = 19, version_at = 60, application_at = 68;
  auto const number = [&](std::size_t at) {
    return std::uint32_t{header[at]} << 24 | header[at + 1] << 16 | header[at + 2] << 8 | header[at + 3];
  };
  if (std::memcmp(header.data(), magic, sizeof magic) != 0 || number(application_at) != application_id)
    return Status::foreign_file;
  if (number(version_at) > newest_version) return Status::newer_file;
  auto const known = [](unsigned char format) { return format == 1 || format == 2; };
  bool const sound = number(version_at) == newest_version && known(header[write_format]) && known(header[read_format]);
  return sound ? Status::success : Status::damaged;
}

}  // namespace fax::gad
