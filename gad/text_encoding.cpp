#include "gad/text_encoding.h"

#include "gad/failure.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace fax::tool {
namespace {

constexpr char const *shift_jis = "windows-31j";
constexpr char const *western = "windows-1252";

struct CloseConverter {
  void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter open_converter(std::string const &encoding) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(encoding.c_str(), &error));
  if (U_FAILURE(error)) return nullptr;
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

struct Conversion {
  icu::UnicodeString text;  // up to the fault, when there is one
  bool complete = false;
};

// In pieces, as ICU counts in 32 bits.
Conversion convert(UConverter *converter, std::string_view bytes) {
  Conversion result;
  std::array<UChar, 16384> piece;
  char const *source = bytes.data(), *end = source + bytes.size();
  for (;;) {
    UErrorCode error = U_ZERO_ERROR;
    UChar *target = piece.data();
    ucnv_toUnicode(converter, &target, piece.data() + piece.size(), &source, end, nullptr, true, &error);
    result.text.append(piece.data(), int32_t(target - piece.data()));
    if (error == U_BUFFER_OVERFLOW_ERROR) continue;
    result.complete = U_SUCCESS(error);
    return result;
  }
}

std::string to_utf8(icu::UnicodeString const &text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

std::size_t lines(icu::UnicodeString const &text) {
  UChar const *units = text.getBuffer();
  return std::size_t(std::count(units, units + text.length(), u'\n')) + 1;
}

DecodedText decode_as(std::string_view bytes, std::string const &encoding, std::string const &label) {
  Converter const converter = open_converter(encoding);
  if (converter == nullptr)
    throw Failure(tr("The encoding {0} is not known. Try one of {1}.", in_quotes(label),
                     "utf-8, utf-16le, windows-1252, latin1, shift-jis"),
                  exit_usage);
  Conversion const conversion = convert(converter.get(), bytes);
  if (!conversion.complete)
    throw Failure(tr("Line {0} is not valid {1}. Name the file's encoding with 'gad import --encoding'.",
                     lines(conversion.text), label));
  std::string text = to_utf8(conversion.text);
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  return {std::move(text), label, false};
}

// What a byte of Shift JIS begins. Common: kana and the characters that names and words are mostly made of; rare: the
// others; katakana: those of half width, one byte each; foreign: characters that a user made.
enum class Kind { ascii, common, rare, katakana, foreign };

Kind kind_of(unsigned char byte) {
  if (byte < 0x80) return Kind::ascii;
  if (byte >= 0xA0 && byte <= 0xDF) return Kind::katakana;
  if (byte >= 0xF0 && byte <= 0xF9) return Kind::foreign;
  return byte <= 0x98 ? Kind::common : Kind::rare;
}

// Of valid Shift JIS. Western accents read as such turn into rare characters and short pieces of katakana, western
// quotation marks into single characters; Japanese text has words. (A detector by statistics, such as ICU's, needs more
// text than an address list has.)
bool reads_as_japanese(std::string_view bytes) {
  std::size_t in_words = 0, stray = 0;
  for (std::size_t i = 0; i < bytes.size();) {
    // Both loops look at the end before they read on.
    // cppcheck-suppress containerOutOfBounds
    Kind const kind = kind_of(static_cast<unsigned char>(bytes[i]));
    if (kind == Kind::foreign) return false;
    std::size_t const size = kind == Kind::common || kind == Kind::rare ? 2 : 1;
    std::size_t length = 0;
    for (; i < bytes.size() && kind_of(static_cast<unsigned char>(bytes[i])) == kind; i += size) ++length;
    bool const word = (kind == Kind::common && length >= 2) || (kind == Kind::katakana && length >= 3);
    if (kind != Kind::ascii) (word ? in_words : stray) += length;
  }
  return in_words > stray;
}

std::optional<std::string> marked_encoding(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return "UTF-8";
  if (bytes.starts_with(std::string_view("\xFF\xFE\0\0", 4))) return "UTF-32LE";
  if (bytes.starts_with(std::string_view("\0\0\xFE\xFF", 4))) return "UTF-32BE";
  if (bytes.starts_with("\xFF\xFE")) return "UTF-16LE";
  if (bytes.starts_with("\xFE\xFF")) return "UTF-16BE";
  return std::nullopt;
}

DecodedText guess(std::string_view bytes) {
  if (is_utf8(bytes)) return {std::string(bytes), "UTF-8", false};
  Conversion const japanese = convert(open_converter(shift_jis).get(), bytes);
  if (japanese.complete && reads_as_japanese(bytes)) return {to_utf8(japanese.text), "Shift JIS", true};
  DecodedText result = decode_as(bytes, western, "Windows-1252");
  result.guessed = true;
  return result;
}

// A text has hardly a U+0000; pictures, archives and databases are full of them.
void refuse_binary(std::string_view text) {
  std::string_view const start = text.substr(0, 65536);
  auto const nulls = std::size_t(std::count(start.begin(), start.end(), '\0'));
  if (nulls > 8 && nulls > start.size() / 1000)
    throw Failure(tr("This is no text file. If it is UTF-16 without a byte order mark, use 'gad import --encoding "
                     "utf-16le'."));
}

}  // namespace

DecodedText decode_text_file(std::string_view bytes, std::string_view encoding) {
  DecodedText result;
  if (!encoding.empty()) {
    result =
        decode_as(bytes, comparable(encoding) == "shiftjis" ? shift_jis : std::string(encoding), std::string(encoding));
  } else if (auto const marked = marked_encoding(bytes)) {
    result = decode_as(bytes, *marked, *marked);
  } else {
    refuse_binary(bytes);
    result = guess(bytes);
  }
  refuse_binary(result.text);
  return result;
}

std::string note_of_guess(DecodedText const &decoded) {
  return tr("The file was read as {0}, which is a guess. If letters look wrong, name the encoding with 'gad import "
            "--encoding'.",
            decoded.encoding);
}

}  // namespace fax::tool
