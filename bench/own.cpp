// DirectFax's own code: the rows' store behind the dialog's lists, as the dialog fills it, and the base64 of passwords.
#include "bench/peers.h"

#include "addressbook/address_book.h"
#include "addressbook/address_reading.h"
#include "support/cipher.h"

#include <stdexcept>

namespace fax::bench {

namespace {

// The dialog asks the toolkit once for each letter, which costs nothing later: here Latin letters are enough.
CaseFold &latin_fold() {
  static CaseFold fold(
      [](char16_t unit) {
        bool const big = (unit >= u'A' && unit <= u'Z') || (unit >= 0xC0 && unit < 0xDF && unit != 0xD7);
        bool const pair = unit >= 0x100 && unit < 0x138 && unit % 2 == 0;
        char16_t const small = unit == 0x141 ? 0x142 : static_cast<char16_t>(unit + (big ? 32 : pair ? 1 : 0));
        return FoldedUnit{{small}, 1};
      },
      [](char16_t unit) { return unit >= 0x300 && unit < 0x370; });
  return fold;
}

Library &library() {
  static Library library({LIBRARY_PATH});
  return library;
}

class OwnModel final : public Model {
 public:
  void read(std::string const &path) override {
    CFStringRef const text = CFStringCreateWithCString(kCFAllocatorDefault, path.c_str(), kCFStringEncodingUTF8);
    AddressData const data = library().create_data();
    bool const good = data != nullptr && library().read_file(text, data) == kSuccess;
    CFRelease(text);
    AddressVisitor const visitor{
        [this](Individual const &one) { book_.add_individual(one.id, one.name, one.phone_number, one.company, one.note); },
        [this](Group const &group) { book_.add_group(group.name, group.members); }};
    bool const whole = good && read_file_entries(library(), data, visitor) == ReadEnd::complete;
    library().delete_data(data);
    if (!whole) throw std::runtime_error("the library does not read " + path);
  }
  void sort() override { book_.sort(latin_fold()); }
  std::size_t search(std::string const &text) override {
    rows_ = book_.rows_named(std::u16string(text.begin(), text.end()), latin_fold());
    for (std::size_t at = 0; at < rows_.size() && at < kShownRows; ++at) {
      AddressEntry const entry = book_.entry(rows_[at]);
      shown_[at] = {std::u16string(entry.name), std::u16string(entry.number)};
    }
    return rows_.size();
  }

 private:
  AddressBook book_;
  std::vector<RowNumber> rows_;
  std::pair<std::u16string, std::u16string> shown_[kShownRows];
};

Entered const model(ModelMaker{"DirectFax", [] { return std::make_unique<OwnModel>(); }});

template <auto Primitive>
std::size_t all(std::uint8_t const *in, std::size_t length, std::uint8_t *out) {
  std::uint32_t written = 0;
  if (Primitive(in, static_cast<std::int32_t>(length), out, &written, INT32_MAX) != kXspOk) {
    throw std::runtime_error("DirectFax: base64");
  }
  return written;
}

Entered const base64(Base64{"DirectFax", all<XspBinToB64>, all<XspB64ToBin>});

}  // namespace

}  // namespace fax::bench
