// Texts as a stranger would put them into an address book to change somebody's fax job. Bytes: not always UTF-8.
#pragma once

#include "fax_job.h"

#include <random>
#include <string>
#include <vector>

namespace fax::test {

class HostileTexts {
 public:
  explicit HostileTexts(unsigned seed) : engine_(seed) {}

  std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine_); }

  // A name of up to a few pieces, now and then a very long one. May hold U+0000.
  std::string name() {
    std::string text;
    for (std::size_t count = below(50) == 0 ? 400 : below(6); count > 0; --count) text += piece();
    return text;
  }

  // What can be dialled, made of everything that the driver lets through.
  std::string number() {
    static constexpr std::string_view characters = "0123456789#*-:=+()./ ";
    std::string text(1, static_cast<char>('0' + below(10)));
    for (std::size_t count = below(49); count > 0; --count) text.insert(below(text.size() + 1), 1, any_of(characters));
    return text;
  }

 private:
  char any_of(std::string_view characters) { return characters[below(characters.size())]; }

  std::string piece() {
    using namespace std::string_literals;
    static std::vector<std::string> const syntax = {
        "\"", "'", "\\", "{", "}", ",", "=", " ", "\t", "\n", "\r", "\v", "\f", "\0"s, "\x01", "\x1b[2J", "\x7f", "`",
        "$(id)", ";", "|", "&", "%s%n", "<", ">", "#", "*", "-o ", "no", "true", "{}", "{a=b}", ",{", "\\\"", "\\'",
        "a", "7", "ü", "山田", "か゚", "😀", "\xC2\xA0", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xEF\xBB\xBF", "\xFF", "\xC3",
        "\xED\xA0\x80", "\xF8\x88", "../", "x media=A4", "page-ranges=1", "noDFaxPassword"};
    static std::vector<std::string> const ends = {" ", "\n", "\r", "\v", "\f", "\t", "' ", "\" ", "} ", "\\ ", ""};
    switch (below(4)) {
      case 0: {  // as if the value ended here
        static std::vector<std::string> const keys = {"DFaxDestinationPhoneNumber1", "DFaxDestinationNumber",
                                                      "DFaxPassword", "DFaxDelayedTime", "Injected"};
        return ends[below(ends.size())] + key(keys[below(keys.size())]) + "=666" + ends[below(ends.size())];
      }
      case 1: return std::string(1, static_cast<char>(below(256)));
      default: return syntax[below(syntax.size())];
    }
  }

  std::mt19937 engine_;
};

}  // namespace fax::test
