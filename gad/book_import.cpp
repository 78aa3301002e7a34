#include "gad/book_import.h"

#include "gad/book.h"
#include "gad/contact_rules.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <ctime>
#include <unordered_map>

namespace fax::tool {
namespace {

class Import {
public:
  Import(std::string const &path, Contacts &contacts)
      : path_(path), contacts_(contacts), book_(open_book(path, gad::Access::change)) {
    require(book_.begin(change_), path_);
  }

  ImportResult run(bool dry_run, std::function<void(double)> const &progress) {
    for (std::string const &group : contacts_.groups) group_id(group, 0);
    std::size_t done = 0;
    for (Contact const &contact : contacts_.people) {
      add(contact);
      progress(double(++done) / double(contacts_.people.size()));
    }
    if (!dry_run) require(change_.commit(), path_);
    return result_;
  }

private:
  void add(Contact const &contact) {
    std::string const who = called(contact);
    if (auto const fault = fault_of(contact)) return contacts_.skip(contact.line, who + ": " + *fault);
    std::uint32_t id = 0;
    Status const status =
        change_.add({0, contact.name, contact.number, contact.company, contact.note, registered_, std::string()}, &id);
    if (status == Status::present) {
      ++result_.present;
      contacts_.remark(contact.line, who + ": " + tr("The book has this name with this number already."), Weight::detail);
      require(book_.find(contact.name, contact.number, id), path_);
    } else {
      require(status, path_);
      ++result_.added;
      if (std::string const refused = refused_characters(contact.number); !refused.empty())
        contacts_.remark(contact.line,
                         who + ": " + tr("The number {0} is kept as it is, but holds {1}, which cannot be typed in the "
                                         "fax dialog.",
                                         in_quotes(contact.number), refused));
    }
    for (std::string const &group : contact.groups) join(contact, id, group);
  }

  void join(Contact const &contact, std::uint32_t individual, std::string const &group) {
    std::uint32_t const id = group_id(group, contact.line);
    if (id == 0) return;
    Status const status = change_.add_member(id, individual);
    if (status == Status::no_member)
      return contacts_.remark(contact.line,
                              called(contact) + ": " + tr("It is not put into group {0}, as its id is above {1}.",
                                                          in_quotes(group), gad::greatest_member_id));
    require(status, path_);
  }

  // Makes the group when there is none; 0 for a name that the book cannot hold, which is said once.
  std::uint32_t group_id(std::string const &name, std::size_t line) {
    auto const known = group_ids_.find(name);
    if (known != group_ids_.end()) return known->second;
    std::uint32_t id = 0;
    if (auto const fault = fault_of_group(name)) {
      contacts_.skip(line, tr("Group {0}: {1}", in_quotes(name), *fault));
    } else if (Status const status = book_.find_group(name, id); status == Status::no_entry) {
      require(change_.add_group(name, &id), path_);
      ++result_.groups;
    } else {
      require(status, path_);
    }
    group_ids_.emplace(name, id);
    return id;
  }

  std::string const &path_;
  Contacts &contacts_;
  gad::File book_;
  gad::Change change_;
  ImportResult result_;
  std::int64_t registered_ = std::time(nullptr);
  std::unordered_map<std::string, std::uint32_t> group_ids_;
};

}  // namespace

ImportResult import_into(std::string const &path, Contacts &contacts, bool dry_run,
                         std::function<void(double)> const &progress) {
  return Import(path, contacts).run(dry_run, progress);
}

}  // namespace fax::tool
