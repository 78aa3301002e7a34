#include "addressbook/address_book.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <numeric>
#include <stdexcept>

namespace fax {

namespace {

constexpr std::size_t kMaximum = std::numeric_limits<std::uint32_t>::max();

// One entry's key while sorting: a folded text, of which head holds eight bytes.
struct SortKey {
  std::uint64_t head;
  std::uint32_t begin, length, row;
};

constexpr std::size_t kHead = sizeof(std::uint64_t);

// The bytes of the key from depth on, the first one weighing most; zeros behind its end.
std::uint64_t head_at(char const *text, SortKey const &key, std::size_t depth) {
  if (depth >= key.length) return 0;
  std::size_t const length = std::min<std::size_t>(key.length - depth, kHead);
  char const *const bytes = text + key.begin + depth;
  std::uint64_t head = 0;
  for (std::size_t at = 0; at < length; ++at) head = head << 8 | static_cast<unsigned char>(bytes[at]);
  return head << 8 * (kHead - length) % 64;
}

using Keys = std::span<SortKey>;

// Sorts by head, the greatest first, equal ones as they stood: digit by digit, the last one first.
void sort_many_by_head(Keys keys) {
  constexpr std::size_t kDigits = 256;
  std::array<std::array<std::uint32_t, kDigits>, kHead> counts{};
  auto const digit = [](SortKey const &key, std::size_t at) { return ~key.head >> 8 * at & (kDigits - 1); };
  for (SortKey const &key : keys) {
    for (std::size_t at = 0; at < kHead; ++at) ++counts[at][digit(key, at)];
  }
  std::vector<SortKey> other(keys.size());
  Keys from = keys, to = other;
  for (std::size_t at = 0; at < kHead; ++at) {
    std::array<std::uint32_t, kDigits> &places = counts[at];
    if (places[digit(keys[0], at)] == keys.size()) continue;
    std::exclusive_scan(places.begin(), places.end(), places.begin(), 0u);
    for (SortKey const &key : from) to[places[digit(key, at)]++] = key;
    std::swap(from, to);
  }
  if (from.data() != keys.data()) std::copy(from.begin(), from.end(), keys.begin());
}

void sort_by_head(Keys keys) {
  constexpr std::size_t kMany = 512;
  if (keys.size() >= kMany) return sort_many_by_head(keys);
  std::sort(keys.begin(), keys.end(), [](SortKey const &left, SortKey const &right) {
    return left.head != right.head ? left.head > right.head : left.row < right.row;
  });
}

// Sorts keys that stand by row, are alike up to depth and have their heads from there, the greatest first, equal ones by
// row: by head, then each run of one head by the next eight bytes.
void sort_keys(Keys keys, char const *text, std::size_t depth) {
  sort_by_head(keys);
  for (auto first = keys.begin(); first != keys.end();) {
    auto last = first + 1;
    while (last != keys.end() && last->head == first->head) ++last;
    Keys const run(first, last);
    first = last;
    bool const more = run.size() > 1 && std::any_of(run.begin(), run.end(), [depth](SortKey const &key) {
                        return key.length > depth + kHead;
                      });
    if (!more) continue;
    for (SortKey &key : run) key.head = head_at(text, key, depth + kHead);
    sort_keys(run, text, depth + kHead);
  }
}

// The first eight bytes of a text, or all of a shorter one.
class Head {
 public:
  explicit Head(std::string_view text) {
    std::size_t const length = std::min(text.size(), kHead);
    std::memcpy(&bytes_, text.data(), length);
    std::memset(&mask_, 0xFF, length);
  }
  // Eight bytes are read there.
  bool stands_at(char const *place) const {
    std::uint64_t there = 0;
    std::memcpy(&there, place, kHead);
    return ((there ^ bytes_) & mask_) == 0;
  }

 private:
  std::uint64_t bytes_ = 0, mask_ = 0;
};

// Tells found where in text wanted, which is not empty, stands: every place, in order. Each place of a block is looked at
// for the first and the last byte alike, which compilers make vector instructions of.
template <typename Found>
void each_occurrence(std::string_view text, std::string_view wanted, Found found) {
  constexpr std::size_t kBlock = 64;
  std::size_t const behind = wanted.size() - 1;
  char const first = wanted.front(), last = wanted.back();
  // Its first eight bytes are compared as a number: most texts have no more.
  Head const head(wanted);
  std::size_t at = 0;
  for (; at + kBlock + std::max(behind, kHead) <= text.size(); at += kBlock) {
    char const *const here = text.data() + at;
    std::array<std::uint8_t, kBlock> maybe;
    std::array<std::uint8_t, 16> any{};
    for (std::size_t part = 0; part < kBlock; part += any.size()) {
      for (std::size_t place = 0; place < any.size(); ++place) {
        char const *const letter = here + part + place;
        maybe[part + place] = static_cast<std::uint8_t>((letter[0] == first) & (letter[behind] == last));
        any[place] |= maybe[part + place];
      }
    }
    std::array<std::uint64_t, 2> halves;
    std::memcpy(halves.data(), any.data(), any.size());
    if ((halves[0] | halves[1]) == 0) continue;
    std::array<std::uint64_t, kBlock / 8> words;
    std::memcpy(words.data(), maybe.data(), kBlock);
    for (std::size_t word = 0; word < words.size(); ++word) {
      for (std::uint64_t left = words[word]; left != 0; left &= left - 1) {
        std::size_t const place = 8 * word + static_cast<std::size_t>(std::countr_zero(left)) / 8;
        if (!head.stands_at(here + place)) continue;
        if (behind <= kHead || std::memcmp(here + place, wanted.data(), behind) == 0) found(at + place);
      }
    }
  }
  for (at = text.find(wanted, at); at != text.npos; at = text.find(wanted, at + 1)) found(at);
}

std::u16string_view until_zero(std::u16string_view text) {
  return text.substr(0, text.find(u'\0'));
}

}  // namespace

std::u16string_view field_text(char16_t const *field, std::size_t limit) {
  return until_zero({field, limit});
}

void AddressBook::add(Record record, std::u16string_view name, std::u16string_view number, std::u16string_view company,
                      std::u16string_view note) {
  std::u16string_view const texts[] = {name, number, company, note};
  std::uint16_t *const lengths[] = {&record.name, &record.number, &record.company, &record.note};
  std::size_t total = 0;
  for (std::size_t at = 0; at < 4; ++at) {
    if (texts[at].size() > std::numeric_limits<std::uint16_t>::max()) throw std::length_error("address text");
    *lengths[at] = static_cast<std::uint16_t>(texts[at].size());
    total += texts[at].size();
  }
  if (blocks_.empty() || total > kBlock - used_) {
    if (blocks_.size() > kMaximum / kBlock) throw std::length_error("address book");
    blocks_.push_back(std::make_unique_for_overwrite<char16_t[]>(kBlock));
    used_ = 0;
  }
  record.text = static_cast<std::uint32_t>((blocks_.size() - 1) * kBlock) + used_;
  record.member = !record.group && number != kGroupNumber;
  char16_t *place = units_at(record.text);
  for (std::u16string_view const text : texts) place = std::copy(text.begin(), text.end(), place);
  std::size_t const rows = records_.size();
  try {
    records_.push_back(record);
    order_.push_back(static_cast<RowNumber>(rows));
    ids_.push_back(record.member ? record.id : kNoId);
  } catch (...) {
    records_.resize(rows);
    order_.resize(rows);
    throw;
  }
  used_ += static_cast<std::uint32_t>(total);
}

void AddressBook::add_individual(std::uint16_t id, std::u16string_view name, std::u16string_view number,
                                 std::u16string_view company, std::u16string_view note) {
  Record record;
  record.id = id;
  record.details = true;
  add(record, name, number, company, note);
}

void AddressBook::add_individual(std::uint16_t id, std::u16string_view name, std::u16string_view number) {
  Record record;
  record.id = id;
  add(record, name, number, {}, {});
}

void AddressBook::add_group(std::u16string_view name, std::span<std::uint16_t const> members) {
  std::size_t const begin = member_ids_.size();
  if (begin + members.size() > kMaximum) throw std::length_error("group members");
  groups_.push_back({static_cast<std::uint32_t>(records_.size()), static_cast<std::uint32_t>(begin),
                     static_cast<std::uint32_t>(members.size())});
  try {
    member_ids_.insert(member_ids_.end(), members.begin(), members.end());
    Record record;
    record.group = true;
    add(record, name, kGroupNumber, {}, {});
  } catch (...) {
    groups_.pop_back();
    member_ids_.resize(begin);
    throw;
  }
}

AddressEntry AddressBook::entry(RowNumber row) const {
  std::uint32_t const number = order_[row];
  Record const &record = records_[number];
  char16_t const *text = units_at(record.text);
  auto const next = [&text](std::uint16_t length) {
    std::u16string_view const field(text, length);
    text += length;
    return field;
  };
  AddressEntry entry;
  entry.group_record = record.group;
  entry.has_details = record.details;
  entry.id = record.id;
  entry.name = next(record.name);
  entry.number = next(record.number);
  entry.company = next(record.company);
  entry.note = next(record.note);
  if (!record.group) return entry;
  auto const found = std::lower_bound(groups_.begin(), groups_.end(), number,
                                      [](Members const &group, std::uint32_t wanted) { return group.record < wanted; });
  entry.members = {member_ids_.data() + found->begin, found->count};
  return entry;
}

std::u16string_view AddressBook::name(Record const &record) const {
  return {units_at(record.text), record.name};
}

std::u16string_view AddressBook::number(Record const &record) const {
  return {units_at(record.text) + record.name, record.number};
}

void AddressBook::sort(CaseFold &fold) {
  constexpr std::size_t kUsualKey = 24;
  std::string text;
  text.reserve(records_.size() * kUsualKey);
  std::vector<SortKey> keys(records_.size());
  auto const set_key = [&fold](SortKey &key, std::size_t row, std::string &folded, std::u16string_view units) {
    if (folded.size() > kMaximum / 2) throw std::length_error("address book");
    key.row = static_cast<std::uint32_t>(row);
    key.begin = static_cast<std::uint32_t>(folded.size());
    fold.append(folded, units);
    key.length = static_cast<std::uint32_t>(folded.size() - key.begin);
    key.head = head_at(folded.data(), key, 0);
    folded += '\0';
  };
  for (std::size_t row = 0; row < keys.size(); ++row) set_key(keys[row], row, text, name(records_[order_[row]]));
  sort_keys(keys, text.data(), 0);

  auto const same_text = [&text](SortKey const &left, SortKey const &right) {
    return left.length == right.length &&
           std::memcmp(text.data() + left.begin, text.data() + right.begin, left.length) == 0;
  };
  for (std::size_t first = 0; first < keys.size();) {
    std::size_t last = first + 1;
    while (last < keys.size() && same_text(keys[first], keys[last])) ++last;
    if (last - first > 1) {
      std::string numbers;
      std::vector<SortKey> same(last - first);
      for (std::size_t at = 0; at < same.size(); ++at) {
        std::uint32_t const row = keys[first + at].row;
        set_key(same[at], row, numbers, number(records_[order_[row]]));
      }
      sort_keys(same, numbers.data(), 0);
      for (std::size_t at = 0; at < same.size(); ++at) keys[first + at].row = same[at].row;
    }
    first = last;
  }

  std::size_t length = 0;
  for (SortKey const &key : keys) length += key.length + 1;
  std::string names;
  names.reserve(length);
  std::vector<std::uint32_t> starts;
  starts.reserve(keys.size() + 1);
  std::vector<RowNumber> order;
  order.reserve(keys.size());
  for (SortKey const &key : keys) {
    starts.push_back(static_cast<std::uint32_t>(names.size()));
    names.append(text, key.begin, key.length + 1);
    order.push_back(order_[key.row]);
  }
  starts.push_back(static_cast<std::uint32_t>(names.size()));
  std::vector<RowNumber> rows_at;
  rows_at.reserve(names.size() / kStride + 1);
  for (RowNumber row = 0; row < keys.size(); ++row) {
    while (rows_at.size() * kStride < starts[row + 1]) rows_at.push_back(row);
  }
  for (std::size_t row = 0; row < order.size(); ++row) {
    Record const &record = records_[order[row]];
    ids_[row] = record.member ? record.id : kNoId;
  }
  names_ = std::move(names);
  starts_ = std::move(starts);
  rows_at_ = std::move(rows_at);
  order_ = std::move(order);
}

std::vector<RowNumber> AddressBook::rows_named(std::u16string_view text, CaseFold &fold) const {
  std::vector<RowNumber> rows;
  std::string const wanted = fold(until_zero(text));
  if (wanted.empty()) {
    rows.resize(size());
    std::iota(rows.begin(), rows.end(), RowNumber{0});
    return rows;
  }
  RowNumber row = 0;
  each_occurrence(names_, wanted, [&](std::size_t place) {
    // In a row that was found already; or another letter, and behind every name stands a NUL to look at.
    if (place < starts_[row] || CaseFold::continues_letter(names_[place + wanted.size()])) return;
    row = std::max(row, rows_at_[place / kStride]);
    while (starts_[row + 1] <= place) ++row;
    rows.push_back(row++);
  });
  return rows;
}

template <typename RowAt>
GroupMembers AddressBook::members_of(std::span<std::uint16_t const> ids, std::size_t count, RowAt row_at) const {
  std::vector<std::uint32_t> pending(std::numeric_limits<std::uint16_t>::max() + 1u);
  for (std::uint16_t const id : ids) ++pending[id];
  GroupMembers found;
  found.rows.reserve(std::min(ids.size(), count));
  std::size_t left = ids.size();
  for (std::size_t at = 0; at < count && left > 0; ++at) {
    RowNumber const row = row_at(at);
    std::int32_t const id = ids_[row];
    if (id == kNoId || pending[static_cast<std::size_t>(id)] == 0) continue;
    --pending[static_cast<std::size_t>(id)];
    --left;
    found.rows.push_back(row);
  }
  found.complete = left == 0;
  return found;
}

GroupMembers AddressBook::members(std::span<std::uint16_t const> ids, std::span<RowNumber const> shown) const {
  return members_of(ids, shown.size(), [shown](std::size_t at) { return shown[at]; });
}

GroupMembers AddressBook::members(std::span<std::uint16_t const> ids) const {
  return members_of(ids, size(), [](std::size_t at) { return static_cast<RowNumber>(at); });
}

}  // namespace fax
