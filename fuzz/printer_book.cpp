// What a directory server may send, with what the configuration file says of it. Input: the configuration, an empty
// line, then entries with an empty line between them: the DN in the first line, "attribute:value" in the others.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "quoltanis/printer_entries.h"

#include <set>
#include <string>

namespace {

using fax::Status;

// A value that is taken is one that the connection can use.
void check_settings(fax::PrinterSettings const &settings) {
  for (auto const &name : {settings.number_attribute, settings.group_class, settings.member_attribute})
    FUZZ_CHECK(!name.empty() && name.find_first_of("()*\\ =") == name.npos);
  FUZZ_CHECK(!settings.name_attributes.empty() && !settings.id_attributes.empty());
  FUZZ_CHECK(settings.time_out.count() >= 1 && settings.time_out.count() <= 300);
  FUZZ_CHECK(!settings.port || *settings.port > 0);
}

template <std::size_t units>
std::u16string_view text_of(char16_t const (&field)[units]) {
  std::u16string_view const all(field, units);
  FUZZ_CHECK(all.find(u'\0') != all.npos);
  return all.substr(0, all.find(u'\0'));
}

std::set<std::uint16_t> check_contacts(fax::AddressData const &data) {
  std::set<std::uint16_t> ids;
  for (std::size_t i = 0; i < data.individuals(fax::Source::printer); ++i) {
    fax::ContactRecord record;
    data.write(i, record);
    FUZZ_CHECK(record.id != 0 && ids.insert(record.id).second);
    FUZZ_CHECK(!text_of(record.name).empty() && !text_of(record.number).empty());
  }
  return ids;
}

void check_groups(fax::AddressData const &data, std::set<std::uint16_t> const &ids) {
  for (std::size_t i = 0; i < data.groups(fax::Source::printer); ++i) {
    // Room for every member that there is, and not a byte more.
    std::vector<std::uint16_t> room(sizeof(fax::FaxGroupHead) / 2 + fax::greatest_member_count);
    auto *const head = reinterpret_cast<fax::FaxGroupHead *>(room.data());
    data.write_group(i, head);
    FUZZ_CHECK(!text_of(head->name).empty());
    for (std::size_t member = 0; member < head->members; ++member)
      FUZZ_CHECK(ids.contains(room[sizeof(fax::FaxGroupHead) / 2 + member]));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  std::string configuration;
  for (std::string_view line; !(line = input.until('\n')).empty();) configuration.append(line) += '\n';
  fax::PrinterSettings settings;
  if (!fax::parse_settings(configuration, settings).empty()) settings = {};
  check_settings(settings);

  fax::PrinterEntries entries(settings);
  while (!input.empty()) {
    fax::DirectoryEntry entry{.dn = std::string(input.until('\n'))};
    for (std::string_view line; !(line = input.until('\n')).empty();) {
      std::size_t const colon = std::min(line.find(':'), line.size());
      entry.attributes[std::string(line.substr(0, colon))].emplace_back(line.substr(std::min(colon + 1, line.size())));
    }
    std::string const dn = fax::normal_dn(entry.dn);
    FUZZ_CHECK(fax::normal_dn(dn) == dn);
    FUZZ_CHECK(entries.add(entry) == Status::success);
  }
  fax::AddressData book;
  FUZZ_CHECK(entries.finish(book) == Status::success);
  check_groups(book, check_contacts(book));
  return 0;
}
