#include "quoltanis/address_data.h"

#include "quoltanis/unicode.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_set>

namespace fax {
namespace {

template <std::size_t units>
void put(char16_t (&field)[units], std::u16string_view text) {
  std::copy(text.begin(), text.end(), field);
}

// A field's text, or nullopt when it does not end inside the field.
template <std::size_t units>
std::optional<std::u16string_view> ended(char16_t const (&field)[units]) {
  auto const end = std::find(field, field + units, u'\0');
  if (end == field + units) return std::nullopt;
  return std::u16string_view(field, static_cast<std::size_t>(end - field));
}

template <std::size_t units>
bool take(char16_t const (&field)[units], std::string &text) {
  auto const taken = ended(field);
  auto utf8 = taken ? utf8_of(*taken) : std::nullopt;
  if (!utf8) return false;
  text = *std::move(utf8);
  return true;
}

Status unpack(MyFaxRecord const &record, gad::Individual &individual) {
  bool const fit = take(record.name, individual.name) && take(record.index_key, individual.index_key) &&
                   take(record.number, individual.number) && take(record.company, individual.company) &&
                   take(record.note, individual.note);
  individual.registered = record.registered;
  if (!fit) return Status::text_unfit;
  if (individual.name.empty()) return Status::empty_name;
  return individual.number.empty() ? Status::empty_number : Status::success;
}

gad::IndividualView view_of(gad::Individual const &individual, std::uint32_t id) {
  return {.id = id,
          .name = individual.name,
          .number = individual.number,
          .company = individual.company,
          .note = individual.note,
          .index_key = individual.index_key,
          .registered = individual.registered};
}

constexpr std::uint16_t short_id(std::uint32_t id) {
  return id <= gad::greatest_member_id ? static_cast<std::uint16_t>(id) : 0;
}

}  // namespace

void AddressData::expect_file_of(std::size_t bytes) {
  constexpr std::size_t most = 64 << 20, bytes_of_a_row = 64;
  Part &part = of(Source::file);
  part.units.reserve(std::min(bytes, most) / 2);
  part.individuals.reserve(std::min(bytes, most) / bytes_of_a_row);
}

Status AddressData::append(Source source, gad::IndividualView const &view) {
  using Limits = gad::Limits;
  constexpr std::array<std::size_t, texts> limits{Limits::name, Limits::index_key, Limits::number, Limits::company,
                                                  Limits::note};
  std::array<std::string_view, texts> const utf8{view.name, view.index_key, view.number, view.company, view.note};
  std::array<char16_t, 512> buffer;
  static_assert(Limits::name + Limits::index_key + Limits::number + Limits::company + Limits::note + texts <= 512);
  Part &part = of(source);
  Individual individual{part.units.size(), view.registered, short_id(view.id), {}};
  std::size_t used = 0;
  for (std::size_t which = 0; which < texts; ++which) {
    auto const [units, whole] = fill_field(std::span(buffer).subspan(used, limits[which] + 1), utf8[which]);
    if (which == number && !whole) return Status::text_unfit;
    individual.length[which] = static_cast<std::uint8_t>(units);
    used += units;
  }
  if (individual.length[name] == 0 || individual.length[number] == 0) return Status::text_unfit;
  part.units.insert(part.units.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(used));
  part.individuals.push_back(individual);
  return Status::success;
}

Status AddressData::append(Source source, gad::GroupView const &view) {
  std::array<char16_t, gad::Limits::name + 1> buffer;
  auto const length = fill_field(buffer, view.name).units;
  if (length == 0) return Status::text_unfit;
  Part &part = of(source);
  Group group{part.units.size(), part.members.size(), 0, short_id(view.id), static_cast<std::uint8_t>(length)};
  for (std::uint32_t const member : view.members)
    if (short_id(member) != 0 && part.members.size() - group.first_member < greatest_member_count)
      part.members.push_back(short_id(member));
  group.member_count = static_cast<std::uint16_t>(part.members.size() - group.first_member);
  part.units.insert(part.units.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
  part.groups.push_back(group);
  return Status::success;
}

Status AddressData::add(std::span<MyFaxRecord const> records) {
  Part &part = of(Source::file);
  auto const key_of = [](std::u16string_view name_text, std::u16string_view number_text) {
    return std::u16string(name_text).append(1, u'\0').append(number_text);
  };
  std::unordered_set<std::u16string> here;
  for (auto const &one : part.individuals) here.insert(key_of(text(part, one, name), text(part, one, number)));
  std::vector<gad::Individual> unpacked(records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (Status const status = unpack(records[i], unpacked[i]); status != Status::success) return status;
    if (!here.insert(key_of(*ended(records[i].name), *ended(records[i].number))).second) return Status::present;
  }
  std::size_t const before = part.individuals.size(), units_before = part.units.size();
  for (auto const &individual : unpacked) {
    Status const status = append(Source::file, view_of(individual, 0));
    if (status == Status::success) continue;
    part.individuals.resize(before);
    part.units.resize(units_before);
    return status;
  }
  return Status::success;
}

std::u16string_view AddressData::text(Part const &part, Individual const &individual, Text which) {
  std::size_t start = individual.start;
  for (std::size_t earlier = 0; earlier < which; ++earlier) start += individual.length[earlier];
  return {part.units.data() + start, individual.length[which]};
}

void AddressData::write(std::size_t index, MyFaxRecord &record) const {
  Part const &part = of(Source::file);
  Individual const &individual = part.individuals[index];
  record = {};
  record.id = individual.id;
  record.registered = individual.registered;
  put(record.name, text(part, individual, name));
  put(record.index_key, text(part, individual, index_key));
  put(record.number, text(part, individual, number));
  put(record.company, text(part, individual, company));
  put(record.note, text(part, individual, note));
}

void AddressData::write(std::size_t index, ContactRecord &record) const {
  Part const &part = of(Source::printer);
  Individual const &individual = part.individuals[index];
  record = {};
  record.id = individual.id;
  put(record.name, text(part, individual, name));
  put(record.number, text(part, individual, number));
}

template <typename Head>
void AddressData::write_group(Part const &part, Group const &group, Head *record) {
  Head head{};
  head.id = group.id;
  head.members = group.member_count;
  put(head.name, {part.units.data() + group.start, group.name_length});
  auto *const bytes = reinterpret_cast<std::byte *>(record);
  std::memcpy(bytes, &head, sizeof head);
  if (group.member_count != 0)
    std::memcpy(bytes + sizeof head, part.members.data() + group.first_member,
                group.member_count * sizeof(std::uint16_t));
}

void AddressData::write_group(std::size_t index, MyFaxGroupHead *record) const {
  Part const &part = of(Source::file);
  write_group(part, part.groups[index], record);
}

void AddressData::write_group(std::size_t index, FaxGroupHead *record) const {
  Part const &part = of(Source::printer);
  write_group(part, part.groups[index], record);
}

std::vector<gad::Individual> AddressData::file_individuals() const {
  Part const &part = of(Source::file);
  std::vector<gad::Individual> individuals;
  individuals.reserve(part.individuals.size());
  for (auto const &one : part.individuals) {
    auto const utf8 = [&](Text which) { return utf8_of(text(part, one, which)).value_or(""); };
    individuals.push_back({.name = utf8(name),
                           .number = utf8(number),
                           .company = utf8(company),
                           .note = utf8(note),
                           .registered = one.registered,
                           .index_key = utf8(index_key)});
  }
  return individuals;
}

}  // namespace fax
