#include "platform/text_encoding.h"

#include <array>
#include <bit>
#include <cerrno>
#include <iconv.h>
#include <type_traits>

namespace fax {

namespace {

constexpr EncodingNumber kShiftJis = 0x0628;
constexpr EncodingNumber kUtf16 = 0x14000100;

struct KnownEncoding {
  EncodingNumber number;
  char const *name;
};

constexpr std::array<KnownEncoding, 7> kKnown{{
    {0x08000100, "UTF-8"},
    {kShiftJis, "SHIFT_JISX0213"},
    {0x0201, "ISO-8859-1"},
    {0x0500, "WINDOWS-1252"},
    {0x0600, "US-ASCII"},
    {kUtf16, "UTF-16LE"},
    {0x0000, "MACINTOSH"},
}};

// Bytes given to iconv at a time, and the most that one of them becomes. Small, so that neither our buffer nor the one
// between iconv's two steps ever fills up: glibc's SHIFT_JISX0213 decoder repeats a character for ever when its output
// is full in the middle of a code that stands for two.
constexpr std::size_t kSlice = 512;
constexpr std::size_t kMostGrowth = 4;

constexpr char const *kUnits = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

class Converter {
public:
  Converter(char const *from, char const *to) : handle_(iconv_open(to, from)) {}
  ~Converter() {
    if (usable()) iconv_close(handle_);
  }
  Converter(Converter const &) = delete;
  Converter &operator=(Converter const &) = delete;

  // nullopt unless the whole input converts, without loss.
  std::optional<std::string> convert(std::string_view from) const {
    if (!usable()) return std::nullopt;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    std::string to;
    std::array<char, kSlice * kMostGrowth> piece;
    while (!from.empty()) {
      std::string_view const slice = from.substr(0, kSlice);
      char *in = const_cast<char *>(slice.data());
      std::size_t in_left = slice.size();
      char *out = piece.data();
      std::size_t out_left = piece.size();
      std::size_t const result = iconv(handle_, &in, &in_left, &out, &out_left);
      // A character may lie across the slice's end: the next slice begins with it.
      bool const cut = result == std::size_t(-1) && errno == EINVAL && slice.size() < from.size();
      std::size_t const taken = slice.size() - in_left;
      if ((result != 0 && !cut) || taken == 0) return std::nullopt;
      to.append(piece.data(), piece.size() - out_left);
      from.remove_prefix(taken);
    }
    // What a stateful encoding still holds back: SHIFT_JISX0213 waits for a combining character.
    char *out = piece.data();
    std::size_t out_left = piece.size();
    if (iconv(handle_, nullptr, nullptr, &out, &out_left) != 0) return std::nullopt;
    to.append(piece.data(), piece.size() - out_left);
    return to;
  }

  std::optional<std::string> convert(std::u16string_view from) const {
    return convert(std::string_view(reinterpret_cast<char const *>(from.data()), from.size() * sizeof(char16_t)));
  }

private:
  // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open's word for a failure is a number as a pointer
  bool usable() const { return handle_ != iconv_t(-1); }
  iconv_t handle_;
};

bool is_leading(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_trailing(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// The second halves of the codes in JIS X 0213 that stand for two Unicode characters.
bool may_join(char16_t unit) {
  return unit == 0x309A || unit == 0x0300 || unit == 0x0301 || unit == 0x02E5 || unit == 0x02E9;
}

// Text that is the same in every encoding of one byte to the letter: most keys and values, and no work for iconv.
template <typename Unit>
bool is_plain_ascii(std::basic_string_view<Unit> text, EncodingNumber encoding) {
  if (encoding == kUtf16) return false;
  for (Unit const unit : text)
    if (std::make_unsigned_t<std::conditional_t<sizeof(Unit) == 1, char, short>>(unit) >= 0x80) return false;
  return true;
}

}  // namespace

char const *iconv_name(EncodingNumber encoding) {
  for (auto const &known : kKnown)
    if (known.number == encoding) return known.name;
  return nullptr;
}

std::optional<std::string> encode_text(std::string_view utf8, EncodingNumber encoding) {
  char const *name = iconv_name(encoding);
  if (name == nullptr) return std::nullopt;
  return Converter("UTF-8", name).convert(utf8);
}

std::optional<std::string> decode_text(std::string_view bytes, EncodingNumber encoding) {
  auto const units = decode_units(bytes, encoding);
  if (!units) return std::nullopt;
  return Converter(kUnits, "UTF-8").convert(*units);
}

std::optional<std::string> encode_units(std::u16string_view text, EncodingNumber encoding) {
  char const *name = iconv_name(encoding);
  if (name == nullptr) return std::nullopt;
  if (is_plain_ascii(text, encoding)) return std::string(text.begin(), text.end());
  return Converter(kUnits, name).convert(text);
}

std::optional<std::u16string> decode_units(std::string_view bytes, EncodingNumber encoding) {
  char const *name = iconv_name(encoding);
  if (name == nullptr) return std::nullopt;
  if (is_plain_ascii(bytes, encoding)) return std::u16string(bytes.begin(), bytes.end());
  auto const decoded = Converter(name, kUnits).convert(bytes);
  if (!decoded) return std::nullopt;
  std::u16string units(decoded->size() / sizeof(char16_t), u'\0');
  decoded->copy(reinterpret_cast<char *>(units.data()), decoded->size());
  // iconv reads only the two bytes as these characters; the wide forms have other code points.
  if (encoding == kShiftJis)
    for (char16_t &unit : units) unit = unit == 0x00A5 ? u'\\' : unit == 0x203E ? u'~' : unit;
  return units;
}

EncodedPart encode_part(std::u16string_view text, EncodingNumber encoding, std::optional<unsigned char> loss,
                        std::size_t limit) {
  EncodedPart part;
  char const *name = iconv_name(encoding);
  if (name == nullptr) return part;
  if (is_plain_ascii(text, encoding) && text.size() <= limit) return {text.size(), {text.begin(), text.end()}};
  Converter const converter(kUnits, name);
  if (auto whole = converter.convert(text); whole && whole->size() <= limit) return {text.size(), std::move(*whole)};

  while (part.units < text.size()) {
    auto const rest = text.substr(part.units);
    std::size_t length = rest.size() > 1 && is_leading(rest[0]) && is_trailing(rest[1]) ? 2 : 1;
    auto code = converter.convert(rest.substr(0, length));
    if (code && encoding == kShiftJis && length < rest.size() && may_join(rest[length])) {
      auto joined = converter.convert(rest.substr(0, length + 1));
      if (joined && joined->size() == code->size()) {
        code = std::move(joined);
        ++length;
      }
    }
    if (!code) {
      if (!loss) break;
      code = std::string(1, char(*loss));
      if (encoding == kUtf16) code->push_back('\0');
    }
    if (code->size() > limit - part.bytes.size()) break;
    part.bytes += *code;
    part.units += length;
  }
  return part;
}

}  // namespace fax
