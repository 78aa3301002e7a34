#include "editor/core/contents.h"

#include <algorithm>
#include <tuple>

namespace fax::editor {
namespace {

template <typename Item>
Item const *with_id(std::vector<Item> const &items, std::uint32_t id) {
  auto const found = std::lower_bound(items.begin(), items.end(), id,
                                      [](Item const &item, std::uint32_t wanted) { return item.id < wanted; });
  return found != items.end() && found->id == id ? &*found : nullptr;
}

auto all_of(Person const &person) {
  return std::tie(person.id, person.name, person.number, person.company, person.note, person.registered,
                  person.index_key);
}

Person owned(gad::IndividualView const &view) {
  return {.id = view.id,
          .name = std::string(view.name),
          .number = std::string(view.number),
          .company = std::string(view.company),
          .note = std::string(view.note),
          .registered = view.registered,
          .index_key = std::string(view.index_key)};
}

}  // namespace

bool same(Person const &one, Person const &other) { return all_of(one) == all_of(other); }

bool Group::has(std::uint32_t person) const { return std::binary_search(members.begin(), members.end(), person); }

Status Contents::read(gad::File const &file, Contents &contents) {
  Contents read;
  Status const status = file.read(
      [&](gad::IndividualView const &view) {
        read.people_.push_back(owned(view));
        std::string text = gad::fold(view.name);
        std::size_t const name_length = text.size();
        text.append("\n").append(view.number).append("\n").append(gad::fold(view.company));
        read.searched_.push_back({std::move(text), name_length});
        return true;
      },
      [&](gad::GroupView const &view) {
        read.groups_.push_back({view.id, std::string(view.name), {view.members.begin(), view.members.end()}});
        return true;
      });
  if (status == Status::success) contents = std::move(read);
  return status;
}

Person const *Contents::person(std::uint32_t id) const { return with_id(people_, id); }
Group const *Contents::group(std::uint32_t id) const { return with_id(groups_, id); }

std::vector<std::uint32_t> Contents::groups_of(std::uint32_t person) const {
  std::vector<std::uint32_t> found;
  for (Group const &group : groups_)
    if (group.has(person)) found.push_back(group.id);
  return found;
}

std::string_view Contents::searched_text(std::size_t place) const { return searched_[place].text; }

std::string_view Contents::folded_name(std::size_t place) const {
  return std::string_view(searched_[place].text).substr(0, searched_[place].name_length);
}

}  // namespace fax::editor
