// A printer's device URI of any bytes: URI splitting, percent escapes, Bonjour names, and what the dialog gives a panel.
#include "fuzz/check.h"
#include "host/core/device_place.h"
#include "platform/url_text.h"
#include "plugin/device_uri.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

namespace {

// UTF-8 as Unicode defines it, read another way than the code under test does.
bool is_utf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    auto const first = static_cast<unsigned char>(text[i++]);
    int const more = first < 0x80 ? 0 : first >= 0xC2 && first < 0xE0 ? 1 : (first & 0xF0) == 0xE0 ? 2
                     : first >= 0xF0 && first < 0xF5 ? 3 : -1;
    if (more < 0 || text.size() - i < std::size_t(more)) return false;
    std::uint32_t code = more == 0 ? first : first & (0x3Fu >> more);
    for (int left = more; left > 0; left--) {
      auto const next = static_cast<unsigned char>(text[i++]);
      if ((next & 0xC0) != 0x80) return false;
      code = code << 6 | (next & 0x3F);
    }
    if ((more == 2 && code < 0x800) || (more == 3 && code < 0x10000)) return false;
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return false;
  }
  return true;
}

std::string escaped(std::string_view text) {
  std::string all;
  for (unsigned char const byte : text)
    (all += '%').append({"0123456789abcdef"[byte >> 4], "0123456789ABCDEF"[byte & 15]});
  return all;
}

void check_service_name(std::string_view host) {
  auto const service = fax::split_service_name(host);
  std::string_view const front = host.substr(0, host.find("._tcp"));
  FUZZ_CHECK(service.has_value() == (front.find('.') != front.npos));
  if (!service) return;
  FUZZ_CHECK(service->type.ends_with("._tcp."));
  std::string const type = service->type.substr(0, service->type.size() - 6);
  FUZZ_CHECK(type.find('.') == type.npos);
  FUZZ_CHECK(service->name + "." + type == front);
}

void check_escapes(std::string_view text) {
  auto const plain = fax::without_percent_escapes(text);
  if (!plain) {
    FUZZ_CHECK(text.find('%') != text.npos || text.find('\0') != text.npos || !is_utf8(text));
    return;
  }
  FUZZ_CHECK(plain->size() <= text.size());
  FUZZ_CHECK(plain->find('\0') == plain->npos);
  FUZZ_CHECK(is_utf8(*plain));
  if (text.find('%') == text.npos) FUZZ_CHECK(*plain == text);
  FUZZ_CHECK(fax::without_percent_escapes(escaped(*plain)) == plain);
  check_service_name(*plain);
}

void check_scheme(std::string_view scheme) {
  std::string upper(scheme);
  std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return char(std::toupper(c)); });
  FUZZ_CHECK(fax::connection_of(scheme) == fax::connection_of(upper));
}

// What a panel is given never makes it look a name up, and names the place that the dialog shows.
void check_place(std::string const &uri) {
  using fax::host::Route;
  auto const place = fax::host::place_of(uri);
  FUZZ_CHECK((place.route == Route::none) == uri.empty());
  if (place.route == Route::name) {
    FUZZ_CHECK(!place.panel_uri && !place.host.empty());
    auto const address = fax::host::numeric_address(std::string_view("2001:db8::1"));
    FUZZ_CHECK(fax::url_host(fax::host::with_address(uri, *address)) == "2001:db8::1");
  }
  if (place.route == Route::address) {
    FUZZ_CHECK(place.panel_uri.has_value());
    auto const host = fax::url_host(*place.panel_uri);
    FUZZ_CHECK(host && fax::host::numeric_address(*host).has_value());
  }
  if (place.route == Route::service) {
    FUZZ_CHECK(is_utf8(place.host) && fax::split_service_name(place.host).has_value());
    auto const panel = fax::split_device_uri(*place.panel_uri);
    FUZZ_CHECK(panel && fax::without_percent_escapes(panel->host) == place.host);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  std::string_view const input(reinterpret_cast<char const *>(data), size);
  auto const uri = fax::split_device_uri(input);
  FUZZ_CHECK(uri.has_value() == (input.find(':') != input.npos && input.find(':') != 0));
  if (uri) {
    FUZZ_CHECK(input.starts_with(uri->scheme + ":"));
    FUZZ_CHECK(uri->host.find_first_of("/?#@") == uri->host.npos);
    FUZZ_CHECK(input.substr(uri->scheme.size()).find(uri->host) != input.npos);
    check_scheme(uri->scheme);
    check_escapes(uri->host);
  } else {
    check_escapes(input);
  }
  check_service_name(input);
  check_place(std::string(input));
  return 0;
}
