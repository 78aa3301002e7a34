#include "editor/core/import_plan.h"

#include "gad/contact_rules.h"
#include "gad/csv_contacts.h"
#include "gad/files.h"
#include "gad/text.h"
#include "gad/text_encoding.h"
#include "gad/vcard_contacts.h"
#include "texts/texts.h"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_map>

namespace fax::editor {
namespace {

class Planning {
public:
  Planning(Contents const &contents, tool::Contacts contacts, std::int64_t now)
      : contents_(contents), contacts_(std::move(contacts)), now_(now) {
    for (Person const &person : contents.people()) people_.emplace(key(person.name, person.number), Reference{person.id});
    for (Group const &group : contents.groups()) groups_.emplace(group.name, Reference{group.id});
  }

  ImportPlan run() {
    for (std::string const &group : contacts_.groups) find_or_add(group, 0);
    for (tool::Contact const &contact : contacts_.people) add(contact);
    plan_.skipped = contacts_.skipped;
    if (untypable_ > 0)
      contacts_.remark(0, tr_n("{0} number holds characters that cannot be typed in the fax dialog. It is taken as it is.",
                               "{0} numbers hold characters that cannot be typed in the fax dialog. They are taken as "
                               "they are.",
                               untypable_, untypable_));
    take_remarks();
    return std::move(plan_);
  }

private:
  static std::string key(std::string const &name, std::string const &number) { return name + '\0' + number; }

  void add(tool::Contact const &contact) {
    std::string const who = tool::called(contact);
    if (auto const fault = tool::fault_of(contact)) return contacts_.skip(contact.line, who + ": " + *fault);
    auto const [known, is_new] =
        people_.try_emplace(key(contact.name, contact.number), Reference{0, plan_.step.changes.size()});
    if (is_new) {
      plan_.step.append(PersonChange{{},
                                                Person{.id = 0,
                                                       .name = contact.name,
                                                       .number = contact.number,
                                                       .company = contact.company,
                                                       .note = contact.note,
                                                       .registered = now_}});
      ++plan_.added;
      if (!tool::refused_characters(contact.number).empty()) ++untypable_;
    } else {
      ++plan_.present;
    }
    Reference const person = known->second;
    for (std::string const &name : contact.groups)
      if (Reference const *group = find_or_add(name, contact.line)) join(contact, *group, person);
  }

  void join(tool::Contact const &contact, Reference group, Reference person) {
    if (Group const *known = contents_.group(group.id); known != nullptr && known->has(person.id)) return;
    if (person.id > gad::greatest_member_id)
      return contacts_.remark(contact.line, tool::called(contact) + ": " + tr("Its id is too great for a group."));
    if (joined_.insert({group.id, group.made_by, person.id, person.made_by}).second)
      plan_.step.append(MemberChange{group, person, true});
  }

  // nullptr for a name that the book cannot hold, which is said once.
  Reference const *find_or_add(std::string const &name, std::size_t line) {
    if (auto const known = groups_.find(name); known != groups_.end()) return &known->second;
    if (auto const fault = tool::fault_of_group(name)) {
      if (unfit_.insert(name).second) contacts_.skip(line, tr("Group {0}: {1}", tool::in_quotes(name), *fault));
      return nullptr;
    }
    Reference const made{0, plan_.step.changes.size()};
    plan_.step.append(GroupChange{0, {}, name});
    ++plan_.groups;
    return &groups_.emplace(name, made).first->second;
  }

  void take_remarks() {
    std::stable_sort(contacts_.remarks.begin(), contacts_.remarks.end(),
                     [](tool::Remark const &one, tool::Remark const &other) {
                       if (one.weight != other.weight) return one.weight > other.weight;
                       return one.line < other.line;
                     });
    for (tool::Remark const &remark : contacts_.remarks) {
      if (remark.weight == tool::Weight::detail) continue;
      plan_.remarks.push_back({remark.weight == tool::Weight::skipped,
                               remark.line > 0 ? tr("Line {0}: {1}", remark.line, remark.text) : remark.text});
    }
  }

  Contents const &contents_;
  tool::Contacts contacts_;
  std::int64_t now_;
  std::size_t untypable_ = 0;
  ImportPlan plan_;
  std::unordered_map<std::string, Reference> people_, groups_;
  std::set<std::string> unfit_;
  std::set<std::array<std::size_t, 4>> joined_;
};

}  // namespace

std::string ImportPlan::summary() const {
  std::string text;
  auto const say = [&text](std::string const &sentence) { text += (text.empty() ? "" : " ") + sentence; };
  if (added + groups == 0) say(tr("Nothing is to be added."));
  if (added > 0) say(tr_n("{0} entry will be added.", "{0} entries will be added.", added, added));
  if (groups > 0) say(tr_n("{0} group will be added.", "{0} groups will be added.", groups, groups));
  //: Entries.
  if (present > 0) say(tr_n("{0} is in the book already.", "{0} are in the book already.", present, present));
  //: Entries.
  if (skipped > 0) say(tr_n("{0} is skipped.", "{0} are skipped.", skipped, skipped));
  return text;
}

ImportPlan plan_import(Contents const &contents, tool::Contacts contacts, std::int64_t now, std::string const &title) {
  ImportPlan plan = Planning(contents, std::move(contacts), now).run();
  plan.step.title = title;
  return plan;
}

tool::Contacts read_contacts(std::string const &path, std::function<void(double)> const &progress) {
  tool::DecodedText const decoded = tool::decode_text_file(tool::read_whole(path), "");
  tool::Contacts contacts = tool::is_vcard(decoded.text)
                                ? tool::read_vcard_contacts(decoded.text, false, progress)
                                : tool::read_csv_contacts(decoded.text, tool::CsvChoices{}, progress);
  if (decoded.guessed)
    contacts.remark(0, tool::note_of_guess(decoded));
  return contacts;
}

}  // namespace fax::editor
