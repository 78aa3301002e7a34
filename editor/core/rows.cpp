#include "editor/core/rows.h"

#include <algorithm>
#include <unordered_set>

namespace fax::editor {
namespace {

std::string const &text_of(Person const &person, Column column) {
  switch (column) {
    case Column::number: return person.number;
    case Column::company: return person.company;
    case Column::note: return person.note;
    case Column::name: break;
  }
  return person.name;
}

// Numbers are found whichever way they are grouped: "0812" in "+46 (08) 12-3".
std::string digits_of(std::string_view text) {
  std::string digits;
  for (char character : text)
    if (character >= '0' && character <= '9') digits += character;
  return digits;
}

class Search {
public:
  explicit Search(std::string const &text) : text_(gad::fold(text)) {
    bool const is_number = !text.empty() && text.find_first_not_of("0123456789 +-().,/") == std::string::npos;
    if (is_number) digits_ = digits_of(text);
  }
  bool finds(Contents const &contents, std::size_t place) const {
    if (text_.empty() || contents.searched_text(place).find(text_) != std::string_view::npos) return true;
    return !digits_.empty() && digits_of(contents.people()[place].number).find(digits_) != std::string::npos;
  }

private:
  std::string text_, digits_;
};

}  // namespace

Rows::Rows(std::shared_ptr<Contents const> contents, Wish const &wish) : contents_(std::move(contents)) {
  auto const &people = contents_->people();
  Search const search(wish.search);
  Group const *group = wish.group != 0 ? contents_->group(wish.group) : nullptr;
  for (std::uint32_t place = 0; place < people.size(); ++place) {
    bool const belongs = wish.group == 0 || (group != nullptr && group->has(people[place].id));
    if (belongs && search.finds(*contents_, place)) places_.push_back(place);
  }
  std::vector<std::string> folded;
  if (wish.order == Column::company || wish.order == Column::note) {
    folded.resize(people.size());
    for (std::uint32_t place : places_) folded[place] = gad::fold(text_of(people[place], wish.order));
  }
  auto const key = [&](std::uint32_t place) -> std::string_view {
    if (!folded.empty()) return folded[place];
    return wish.order == Column::number ? std::string_view(people[place].number) : contents_->folded_name(place);
  };
  std::stable_sort(places_.begin(), places_.end(), [&](std::uint32_t one, std::uint32_t other) {
    return wish.descending ? key(other) < key(one) : key(one) < key(other);
  });
}

std::string const &Rows::text(std::size_t row, Column column) const { return text_of(person(row), column); }

std::vector<std::size_t> Rows::rows_of(std::vector<std::uint32_t> const &ids) const {
  std::unordered_set<std::uint32_t> const wanted(ids.begin(), ids.end());
  std::vector<std::size_t> found;
  for (std::size_t row = 0; row < count() && found.size() < wanted.size(); ++row)
    if (wanted.contains(person(row).id)) found.push_back(row);
  return found;
}

std::vector<std::uint32_t> groups_by_name(Contents const &contents) {
  std::vector<std::pair<std::string, std::uint32_t>> named;
  for (Group const &group : contents.groups()) named.emplace_back(gad::fold(group.name), group.id);
  std::sort(named.begin(), named.end());
  std::vector<std::uint32_t> ids;
  ids.reserve(named.size());
  for (auto const &[name, id] : named) ids.push_back(id);
  return ids;
}

}  // namespace fax::editor
