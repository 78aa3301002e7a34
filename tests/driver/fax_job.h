// A fax job as the print dialog leaves it, for the tests to spoil.
#pragma once

#include "driver/ticket.h"
#include "support/cipher.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace fax::test {

inline std::string key(std::string_view name) { return "com.norvalt.tk.o.print.printsettings." + std::string{name}; }

// The password as the dialog writes it; the bytes are those of the printer's encoding.
inline std::string enciphered(std::string_view bytes) {
  std::array<std::uint8_t, 256> scrambled, text;
  std::uint32_t scrambled_length = 0, length = 0;
  if (XspEncrypt(reinterpret_cast<std::uint8_t const *>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                 scrambled.data(), &scrambled_length, scrambled.size()) != kXspOk ||
      XspBinToB64(scrambled.data(), static_cast<std::int32_t>(scrambled_length), text.data(), &length, text.size()) !=
          kXspOk)
    throw std::invalid_argument{"no password"};
  return {reinterpret_cast<char const *>(text.data()), length};
}

inline JobOptions good_options() {
  return {
      {key("DFaxCoverSenderName"), "Henry Marsh"},
      {key("DFaxPassword"), enciphered("0427")},
      {key("DFaxDelayedPrint"), "1"},
      {key("DFaxDelayedTime"), "21:05"},
      {key("DFaxDestinationNumber"), "2"},
      {key("DFaxDestinationName1"), "山田太郎"},
      {key("DFaxDestinationPhoneNumber1"), "03-1234-5678"},
      {key("DFaxDestinationName2"), ""},
      {key("DFaxDestinationPhoneNumber2"), "#99*1:2=3"},
      {"QXFaxImageQuality", "Fine"},
      {"QXFaxCoverPageMode", "Business"},
      {"QXFaxSenderMode", "EnterName"},
  };
}

// A folder that goes away with everything in it.
class Folder {
 public:
  Folder() {
    std::string pattern = std::filesystem::temp_directory_path() / "driver-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error{"no temporary folder"};
    path_ = pattern;
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(Folder const &) = delete;
  Folder &operator=(Folder const &) = delete;

  std::filesystem::path const &path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::string contents(std::filesystem::path const &path) {
  std::ifstream file{path, std::ios::binary};
  if (!file) throw std::runtime_error{"cannot read " + path.string()};
  return {std::istreambuf_iterator<char>{file}, {}};
}

}  // namespace fax::test
