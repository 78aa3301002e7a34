#include "quoltanis/printer_settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>

namespace fax {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
  auto const first = text.find_first_not_of(blanks);
  return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Letters, digits and hyphens, as LDAP has it: such a name cannot break out of a search filter.
bool is_attribute(std::string_view name) {
  constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-";
  return !name.empty() && name.size() <= 100 && name.find_first_not_of(allowed) == std::string_view::npos;
}

bool take_attribute(std::string_view value, std::string &attribute) {
  attribute = value;
  return is_attribute(value);
}

bool take_attributes(std::string_view value, std::vector<std::string> &attributes) {
  attributes.clear();
  while (!value.empty()) {
    auto const end = std::min(value.find_first_of(blanks), value.size());
    attributes.emplace_back(value.substr(0, end));
    value = trimmed(value.substr(end));
  }
  return !attributes.empty() && std::ranges::all_of(attributes, is_attribute);
}

bool take_text(std::string_view value, std::string &text) {
  text = value;
  return !value.empty();
}

bool take_path(std::string_view value, std::string &path) {
  path = value;
  return value.starts_with('/');
}

std::optional<unsigned> number_in(std::string_view value, unsigned least, unsigned greatest) {
  unsigned number = 0;
  auto const [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  bool const whole = error == std::errc() && end == value.data() + value.size();
  return whole && number >= least && number <= greatest ? std::optional(number) : std::nullopt;
}

bool take_port(std::string_view value, std::optional<std::uint16_t> &port) {
  auto const number = number_in(value, 1, 65535);
  if (number) port = static_cast<std::uint16_t>(*number);
  return number.has_value();
}

bool take_seconds(std::string_view value, std::chrono::seconds &seconds) {
  auto const number = number_in(value, 1, 300);
  if (number) seconds = std::chrono::seconds(*number);
  return number.has_value();
}

bool take_tls(std::string_view value, PrinterSettings::Tls &tls) {
  using enum PrinterSettings::Tls;
  constexpr std::array<std::pair<std::string_view, PrinterSettings::Tls>, 3> words{
      {{"starttls", start}, {"ldaps", whole}, {"none", none}}};
  auto const found = std::ranges::find(words, value, &std::pair<std::string_view, PrinterSettings::Tls>::first);
  if (found != words.end()) tls = found->second;
  return found != words.end();
}

struct Key {
  std::string_view name;
  bool (*take)(std::string_view value, PrinterSettings &settings);
};

constexpr Key keys[] = {
    {"tls", [](auto value, auto &settings) { return take_tls(value, settings.tls); }},
    {"port", [](auto value, auto &settings) { return take_port(value, settings.port); }},
    {"ca-file", [](auto value, auto &settings) { return take_path(value, settings.ca_file); }},
    {"server-name", [](auto value, auto &settings) { return take_text(value, settings.server_name); }},
    {"base-dn", [](auto value, auto &settings) { return take_text(value, settings.base_dn); }},
    {"bind-dn", [](auto value, auto &settings) { return take_text(value, settings.bind_dn); }},
    {"name-attributes", [](auto value, auto &settings) { return take_attributes(value, settings.name_attributes); }},
    {"number-attribute", [](auto value, auto &settings) { return take_attribute(value, settings.number_attribute); }},
    {"id-attributes", [](auto value, auto &settings) { return take_attributes(value, settings.id_attributes); }},
    {"group-class", [](auto value, auto &settings) { return take_attribute(value, settings.group_class); }},
    {"member-attribute", [](auto value, auto &settings) { return take_attribute(value, settings.member_attribute); }},
    {"time-out", [](auto value, auto &settings) { return take_seconds(value, settings.time_out); }},
};

std::string parse_line(std::string_view line, PrinterSettings &settings) {
  if (line.empty() || line.front() == '#') return "";
  auto const equals = line.find('=');
  if (equals == std::string_view::npos) return "no \"=\" in \"" + std::string(line) + "\"";
  std::string_view const name = trimmed(line.substr(0, equals)), value = trimmed(line.substr(equals + 1));
  auto const key = std::ranges::find(keys, name, &Key::name);
  if (key == std::end(keys)) return "unknown key \"" + std::string(name) + "\"";
  return key->take(value, settings) ? "" : "\"" + std::string(value) + "\" is no value for " + std::string(name);
}

std::string variable(char const *name) {
  char const *value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::string parse_settings(std::string_view text, PrinterSettings &settings) {
  if (text.find('\0') != std::string_view::npos) return "the file is no text";
  for (int number = 1; !text.empty(); ++number) {
    auto const end = std::min(text.find('\n'), text.size());
    std::string const fault = parse_line(trimmed(text.substr(0, end)), settings);
    if (!fault.empty()) return "line " + std::to_string(number) + ": " + fault;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return "";
}

std::vector<std::string> settings_places() {
  if (std::string own = variable("DIRECTFAX_PRINTER_BOOK"); !own.empty()) return {own};
  std::vector<std::string> folders;
  std::string const home = variable("HOME"), user = variable("XDG_CONFIG_HOME");
  if (user.starts_with('/')) {
    folders.push_back(user);
  } else if (home.starts_with('/')) {
    folders.push_back(home + "/.config");
  }
  std::string system = variable("XDG_CONFIG_DIRS");
  if (system.empty()) system = "/etc/xdg";
  for (std::size_t at = 0; at <= system.size();) {
    auto const end = std::min(system.find(':', at), system.size());
    if (system[at] == '/') folders.push_back(system.substr(at, end - at));
    at = end + 1;
  }
  for (auto &folder : folders) folder += "/directfax/printer-book.conf";
  return folders;
}

Status load_settings(PrinterSettings &settings) {
  settings = {};
  constexpr std::uintmax_t longest = 65536;
  bool const required = !variable("DIRECTFAX_PRINTER_BOOK").empty();
  for (auto const &place : settings_places()) {
    std::error_code error;
    if (!required && !std::filesystem::exists(place, error) && !error) continue;
    bool const sound =
        std::filesystem::is_regular_file(place, error) && std::filesystem::file_size(place, error) <= longest;
    std::ifstream file;
    if (sound && !error) file.open(place, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    std::string const fault = file.is_open() && !file.bad() ? parse_settings(text, settings) : "cannot be read";
    if (fault.empty()) return Status::success;
    std::fprintf(stderr, "QUOLTANIS: %s: %s\n", place.c_str(), fault.c_str());
    return Status::configuration;
  }
  return Status::success;
}

}  // namespace fax
