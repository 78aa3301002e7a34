#include "platform/format.h"

#include "platform/text_encoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>
#include <variant>
#include <vector>

namespace fax {

namespace {

constexpr EncodingNumber kUtf8 = 0x08000100;
constexpr int kMost = 0xFFFF;      // widest field, longest precision
constexpr int kMostNumber = 0xFF;  // highest argument number

enum class Kind { None, Int, Long, LongLong, IntMax, Size, PtrDiff, Double, LongDouble, Pointer };
using Argument = std::variant<std::intmax_t, double, long double, void const *>;

// A number in the format: absent, written there, or taken from an argument.
struct Number {
  std::optional<int> value;
  int argument = -1;
};

struct Piece {
  std::u16string literal;  // comes before the conversion
  std::string flags;
  Number width, precision;
  std::string length;  // "hh" ... "L"
  char conversion = 0;  // 0: literal only
  int argument = -1;
};

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Reads the format; the arguments' kinds, in the order of the call, come in kinds().
class Parser {
public:
  explicit Parser(std::u16string_view format) : rest_(format) {}

  std::optional<std::vector<Piece>> pieces() {
    std::vector<Piece> all;
    while (!rest_.empty()) {
      Piece piece;
      while (!rest_.empty() && rest_[0] != u'%') piece.literal.push_back(take());
      if (!rest_.empty()) {
        take();
        if (next_is(u'%')) {
          piece.literal.push_back(take());
        } else if (!conversion(piece)) {
          return std::nullopt;
        }
      }
      all.push_back(std::move(piece));
    }
    // A gap leaves the size of an argument unknown.
    if (std::find(kinds_.begin(), kinds_.end(), Kind::None) != kinds_.end()) return std::nullopt;
    return all;
  }

  std::vector<Kind> const &kinds() const { return kinds_; }

private:
  char16_t take() {
    char16_t const unit = rest_[0];
    rest_.remove_prefix(1);
    return unit;
  }
  bool next_is(char16_t unit) const { return !rest_.empty() && rest_[0] == unit; }

  // Digits, if any; nullopt when the number is above most.
  std::optional<std::optional<int>> digits(int most) {
    std::optional<int> value;
    while (!rest_.empty() && is_digit(rest_[0])) {
      value = value.value_or(0) * 10 + (take() - u'0');
      if (*value > most) return std::nullopt;
    }
    return value;
  }

  // "n$" at the start of rest_, which is then behind it. Absent: 0.
  int argument_number() {
    auto const before = rest_;
    auto const number = digits(kMostNumber);
    if (number && *number && **number > 0 && next_is(u'$')) {
      take();
      return **number;
    }
    rest_ = before;
    return 0;
  }

  // The index of an argument of this kind: the numbered one or the next. -1 when numbered and unnumbered meet, or two
  // uses of one argument differ.
  int argument(int number, Kind kind) {
    bool const numbered = number > 0;
    if (!kinds_.empty() && numbered != numbered_) return -1;
    numbered_ = numbered;
    std::size_t const index = numbered ? std::size_t(number - 1) : kinds_.size();
    if (index >= kinds_.size()) kinds_.resize(index + 1, Kind::None);
    if (kinds_[index] != Kind::None && kinds_[index] != kind) return -1;
    kinds_[index] = kind;
    return int(index);
  }

  bool number(Number &into) {
    if (next_is(u'*')) {
      take();
      into.argument = argument(argument_number(), Kind::Int);
      return into.argument >= 0;
    }
    auto const value = digits(kMost);
    if (!value) return false;
    into.value = *value;
    return true;
  }

  bool conversion(Piece &piece) {
    int const own_number = argument_number();
    while (!rest_.empty() && rest_[0] < 0x80 && std::strchr("-+ #0'", rest_[0]) != nullptr && rest_[0] != 0)
      piece.flags.push_back(char(take()));
    if (!number(piece.width)) return false;
    if (next_is(u'.')) {
      take();
      if (!number(piece.precision)) return false;
      if (!piece.precision.value && piece.precision.argument < 0) piece.precision.value = 0;
    }
    while (!rest_.empty() && rest_[0] < 0x80 && rest_[0] != 0 && std::strchr("hlqjztL", rest_[0]) != nullptr)
      piece.length.push_back(char(take()));
    if (piece.length == "q") piece.length = "ll";
    if (rest_.empty() || rest_[0] >= 0x80) return false;
    piece.conversion = char(take());
    auto const kind = kind_of(piece);
    if (kind == Kind::None) return false;
    piece.argument = argument(own_number, kind);
    return piece.argument >= 0;
  }

  static Kind kind_of(Piece &piece) {
    static constexpr std::pair<char const *, Kind> kIntegers[] = {
        {"", Kind::Int},       {"hh", Kind::Int},    {"h", Kind::Int},  {"l", Kind::Long},
        {"ll", Kind::LongLong}, {"j", Kind::IntMax}, {"z", Kind::Size}, {"t", Kind::PtrDiff},
    };
    switch (piece.conversion) {
      case 'd': case 'i': case 'u': case 'o': case 'x': case 'X':
        for (auto const &[length, kind] : kIntegers)
          if (piece.length == length) return kind;
        return Kind::None;
      case 'a': case 'A': case 'e': case 'E': case 'f': case 'F': case 'g': case 'G':
        if (piece.length == "L") return Kind::LongDouble;
        return piece.length.empty() || piece.length == "l" ? Kind::Double : Kind::None;
      case 'c': case 'C':
        return piece.length.empty() ? Kind::Int : Kind::None;
      case '@': case 's': case 'S': case 'p':
        return piece.length.empty() ? Kind::Pointer : Kind::None;
      default:
        return Kind::None;
    }
  }

  std::u16string_view rest_;
  std::vector<Kind> kinds_;
  bool numbered_ = false;
};

template <typename Value>
std::string print(std::string const &format, int width, int precision, Value value) {
  int const size = std::snprintf(nullptr, 0, format.c_str(), width, precision, value);
  std::string text(std::size_t(std::max(size, 0)) + 1, '\0');
  std::snprintf(text.data(), text.size(), format.c_str(), width, precision, value);
  text.pop_back();
  return text;
}

std::intmax_t narrowed(std::string const &length, bool is_signed, std::intmax_t value) {
  if (length == "hh") return is_signed ? std::intmax_t(std::int8_t(value)) : std::uint8_t(value);
  if (length == "h") return is_signed ? std::intmax_t(std::int16_t(value)) : std::uint16_t(value);
  if (length.empty()) return is_signed ? std::intmax_t(std::int32_t(value)) : std::uint32_t(value);
  return value;
}

std::u16string widened(std::string const &ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string fitted(std::u16string text, bool left, int width, int precision) {
  if (precision >= 0 && text.size() > std::size_t(precision)) {
    bool const splits = precision > 0 && (text[std::size_t(precision)] & 0xFC00) == 0xDC00;
    text.resize(std::size_t(precision) - (splits ? 1 : 0));
  }
  std::size_t const wanted = std::size_t(std::max(width, 0));
  if (text.size() < wanted) text.insert(left ? text.size() : 0, wanted - text.size(), u' ');
  return text;
}

}  // namespace

std::optional<std::u16string> format_text(std::u16string_view format, std::va_list arguments,
                                          DescribeObject const &describe) {
  Parser parser(format);
  auto const pieces = parser.pieces();
  if (!pieces) return std::nullopt;

  std::vector<Argument> values;
  for (Kind kind : parser.kinds()) {
    switch (kind) {
      case Kind::None: return std::nullopt;
      case Kind::Int: values.emplace_back(std::intmax_t(va_arg(arguments, int))); break;
      case Kind::Long: values.emplace_back(std::intmax_t(va_arg(arguments, long))); break;
      case Kind::LongLong: values.emplace_back(std::intmax_t(va_arg(arguments, long long))); break;
      case Kind::IntMax: values.emplace_back(va_arg(arguments, std::intmax_t)); break;
      case Kind::Size: values.emplace_back(std::intmax_t(va_arg(arguments, std::size_t))); break;
      case Kind::PtrDiff: values.emplace_back(std::intmax_t(va_arg(arguments, std::ptrdiff_t))); break;
      case Kind::Double: values.emplace_back(va_arg(arguments, double)); break;
      case Kind::LongDouble: values.emplace_back(va_arg(arguments, long double)); break;
      case Kind::Pointer: values.emplace_back(static_cast<void const *>(va_arg(arguments, void *))); break;
    }
  }

  auto const resolved = [&](Number const &number, int absent) -> std::intmax_t {
    if (number.argument >= 0) return std::get<std::intmax_t>(values[std::size_t(number.argument)]);
    return number.value.value_or(absent);
  };
  std::u16string text;
  for (Piece const &piece : *pieces) {
    text += piece.literal;
    if (piece.conversion == 0) continue;
    std::intmax_t asked_width = resolved(piece.width, 0);
    bool left = piece.flags.find('-') != std::string::npos;
    std::string flags = piece.flags;
    if (asked_width < 0) {  // as in C: a negative width is the flag '-'
      asked_width = -asked_width;
      left = true;
      flags += '-';
    }
    std::intmax_t const asked_precision = resolved(piece.precision, -1);
    if (asked_width > kMost || asked_precision > kMost) return std::nullopt;
    int const width = int(asked_width), precision = int(std::max<std::intmax_t>(asked_precision, -1));
    Argument const &value = values[std::size_t(piece.argument)];
    std::string const start = "%" + flags + "*.*";

    switch (piece.conversion) {
      case '@': case 's': case 'S': {
        void const *pointer = std::get<void const *>(value);
        std::u16string own;
        if (pointer == nullptr) {
          own = u"(null)";
        } else if (piece.conversion == '@') {
          own = describe(pointer);
        } else if (piece.conversion == 'S') {
          own = static_cast<char16_t const *>(pointer);
        } else {
          auto decoded = decode_units(static_cast<char const *>(pointer), kUtf8);
          if (!decoded) return std::nullopt;
          own = std::move(*decoded);
        }
        text += fitted(std::move(own), left, width, precision);
        break;
      }
      case 'c': case 'C': {
        auto const unit = std::get<std::intmax_t>(value);
        text += fitted(std::u16string(1, piece.conversion == 'c' ? char16_t(unit & 0xFF) : char16_t(unit)), left, width,
                       -1);
        break;
      }
      case 'p':
        text += fitted(widened(print("%*.*jx", 0, 1, std::uintmax_t(reinterpret_cast<std::uintptr_t>(
                                                        std::get<void const *>(value)))))
                           .insert(0, u"0x"),
                       left, width, -1);
        break;
      case 'd': case 'i':
        text += widened(print(start + "j" + piece.conversion, width, precision,
                              narrowed(piece.length, true, std::get<std::intmax_t>(value))));
        break;
      case 'u': case 'o': case 'x': case 'X':
        text += widened(print(start + "j" + piece.conversion, width, precision,
                              std::uintmax_t(narrowed(piece.length, false, std::get<std::intmax_t>(value)))));
        break;
      default:
        text += widened(piece.length == "L"
                            ? print(start + "L" + piece.conversion, width, precision, std::get<long double>(value))
                            : print(start + piece.conversion, width, precision, std::get<double>(value)));
    }
  }
  return text;
}

}  // namespace fax
