#include "quoltanis/printer_entries.h"

#include "quoltanis/unicode.h"

#include <ldap.h>

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace fax {
namespace {

constexpr std::size_t most_numbers = 100'000, most_groups = 10'000, most_bytes = std::size_t{64} << 20;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool same(std::string_view one, std::string_view other) { return std::ranges::equal(one, other, {}, lower, lower); }

std::vector<std::string> const &values(DirectoryEntry const &entry, std::string const &attribute) {
  static std::vector<std::string> const none;
  auto const found = entry.attributes.find(attribute);
  return found == entry.attributes.end() ? none : found->second;
}

// A text that a record can show: the first value with something before a U+0000.
std::string first_text(DirectoryEntry const &entry, std::vector<std::string> const &attributes) {
  for (auto const &attribute : attributes)
    for (auto const &value : values(entry, attribute))
      if (!value.empty() && value.front() != '\0') return value;
  return "";
}

bool carried(std::string_view number) {
  auto const units = units_in(number);
  return units && *units > 0 && *units <= gad::Limits::number && number.find('\0') == std::string_view::npos;
}

std::uint32_t id_in(std::string_view text) {
  std::uint32_t id = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
  bool const whole = error == std::errc() && end == text.data() + text.size();
  return whole && id <= gad::greatest_member_id ? id : 0;
}

std::uint32_t wanted_id(DirectoryEntry const &entry, std::vector<std::string> const &attributes) {
  for (auto const &attribute : attributes)
    for (auto const &value : values(entry, attribute))
      if (std::uint32_t const id = id_in(value); id != 0) return id;
  return 0;
}

}  // namespace

bool CaseFree::operator()(std::string_view one, std::string_view other) const {
  return std::ranges::lexicographical_compare(one, other, {}, lower, lower);
}

std::string normal_dn(std::string const &dn) {
  char *normal = nullptr;
  bool const valid =
      ldap_dn_normalize(dn.c_str(), LDAP_DN_FORMAT_LDAPV3, &normal, LDAP_DN_FORMAT_LDAPV3) == LDAP_SUCCESS;
  std::string text = valid && normal != nullptr ? normal : dn;
  ldap_memfree(normal);
  std::ranges::transform(text, text.begin(), lower);
  return text;
}

Status PrinterEntries::add(DirectoryEntry const &entry) {
  bytes_ += entry.dn.size();
  for (auto const &[name, all] : entry.attributes)
    for (auto const &value : all) bytes_ += value.size() + sizeof(std::string);
  if (bytes_ > most_bytes) return Status::incomplete;
  bool const group = std::ranges::any_of(values(entry, "objectClass"),
                                         [&](auto const &one) { return same(one, settings_.group_class); });
  return group ? add_group(entry) : add_person(entry);
}

Status PrinterEntries::add_person(DirectoryEntry const &entry) {
  std::string const name = first_text(entry, settings_.name_attributes);
  bool first = true;
  for (auto const &number : values(entry, settings_.number_attribute)) {
    if (!carried(number)) continue;
    if (people_.size() == most_numbers) return Status::incomplete;
    std::uint32_t const id = first ? wanted_id(entry, settings_.id_attributes) : 0;
    people_.push_back({first ? normal_dn(entry.dn) : "", name.empty() ? number : name, number, id, first});
    first = false;
  }
  return Status::success;
}

Status PrinterEntries::add_group(DirectoryEntry const &entry) {
  if (groups_.size() == most_groups) return Status::incomplete;
  std::string name = first_text(entry, settings_.name_attributes);
  if (name.empty()) return Status::success;
  Group group{std::move(name), {}};
  for (auto const &member : values(entry, settings_.member_attribute)) group.members.push_back(normal_dn(member));
  groups_.push_back(std::move(group));
  return Status::success;
}

std::vector<std::uint32_t> PrinterEntries::ids() const {
  std::vector<std::uint32_t> given(people_.size());
  std::vector<bool> used(gad::greatest_member_id + 1);
  for (std::size_t i = 0; i < people_.size(); ++i) {
    std::uint32_t const wanted = people_[i].wanted_id;
    if (wanted == 0 || used[wanted]) continue;
    used[wanted] = true;
    given[i] = wanted;
  }
  std::uint32_t free = 1;
  for (auto &id : given) {
    if (id != 0) continue;
    while (free <= gad::greatest_member_id && used[free]) ++free;
    if (free > gad::greatest_member_id) break;
    id = free++;
  }
  return given;
}

Status PrinterEntries::finish(AddressData &data) const {
  std::vector<std::uint32_t> const given = ids();
  std::unordered_map<std::string_view, std::uint32_t> id_of;
  for (std::size_t i = 0; i < people_.size(); ++i) {
    auto const &person = people_[i];
    Status const status =
        data.append(Source::printer, gad::IndividualView{.id = given[i], .name = person.name, .number = person.number});
    if (status != Status::success) return status;
    if (person.first) id_of.emplace(person.dn, given[i]);
  }
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    std::vector<std::uint32_t> members;
    for (auto const &member : groups_[i].members)
      if (auto const found = id_of.find(member); found != id_of.end()) members.push_back(found->second);
    gad::GroupView const view{.id = static_cast<std::uint32_t>(i + 1), .name = groups_[i].name, .members = members};
    if (Status const status = data.append(Source::printer, view); status != Status::success) return status;
  }
  return Status::success;
}

}  // namespace fax
