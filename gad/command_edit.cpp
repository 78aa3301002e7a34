#include "gad/book.h"
#include "gad/commands.h"
#include "gad/contact_rules.h"
#include "gad/failure.h"
#include "gad/listing.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <ctime>
#include <filesystem>
#include <functional>
#include <iostream>

namespace fax::tool {
namespace {

void complain_about(Contact const &contact) {
  if (auto const fault = fault_of(contact)) throw Failure(*fault, exit_usage);
  for (std::string const &group : contact.groups)
    if (auto const fault = fault_of_group(group)) throw Failure(*fault, exit_usage);
}

// One change of the book, kept when work has not thrown.
void change_book(std::string const &path, std::function<void(gad::File &, gad::Change &)> const &work) {
  gad::File file = open_book(path, gad::Access::change);
  gad::Change change;
  require(file.begin(change), path);
  work(file, change);
  require(change.commit(), path);
}

std::uint32_t group_id(gad::File const &file, gad::Change &change, std::string const &name, std::string const &path) {
  std::uint32_t id = 0;
  Status const status = file.find_group(name, id);
  require(status == Status::no_entry ? change.add_group(name, &id) : status, path);
  return id;
}

void list_groups(BookContents const &book, ListFormat format) {
  Listing listing({{"name", mark("Name")}, {"members", mark("Members")}}, format);
  for (BookGroup const &group : book.groups) listing.add({group.name, std::uint32_t(group.members.size())});
  listing.print();
}

void list_members(BookContents const &book, GroupChoices const &choices) {
  Listing listing({{"id", mark("Id")}, {"name", mark("Name")}, {"number", mark("Fax number")}}, choices.format);
  for (std::size_t member : group_named(book, choices.name).members) {
    BookEntry const &entry = book.entries[member];
    listing.add({entry.id, entry.contact.name, entry.contact.number});
  }
  listing.print();
}

bool changes_something(GroupChoices const &choices) {
  return choices.create || choices.erase || !choices.new_name.empty() || !choices.add.empty() ||
         !choices.remove.empty();
}

void change_group(GroupChoices const &choices, BookContents const &book, gad::Change &change) {
  std::uint32_t group = 0;
  if (choices.create) {
    if (auto const fault = fault_of_group(choices.name)) throw Failure(*fault, exit_usage);
    Status const status = change.add_group(choices.name, &group);
    if (status == Status::present) throw Failure(tr("The group {0} is there already.", in_quotes(choices.name)));
    require(status, choices.book);
  } else {
    group = group_named(book, choices.name).id;
  }
  for (std::string const &word : choices.add)
    require(change.add_member(group, entry_named(book, word).id), choices.book);
  for (std::string const &word : choices.remove) {
    Status const status = change.remove_member(group, entry_named(book, word).id);
    if (status == Status::no_entry) throw Failure(tr("{0} is not in the group {1}.", in_quotes(word), in_quotes(choices.name)));
    require(status, choices.book);
  }
  if (choices.erase) require(change.remove_group(group), choices.book);
  if (choices.new_name.empty()) return;
  if (auto const fault = fault_of_group(choices.new_name)) throw Failure(*fault, exit_usage);
  Status const status = change.rename_group(group, choices.new_name);
  if (status == Status::present) throw Failure(tr("The group {0} is there already.", in_quotes(choices.new_name)));
  require(status, choices.book);
}

}  // namespace

int create_book(std::string const &book) {
  require(gad::File::create(std::filesystem::absolute(book).string()), book);
  if (!book.ends_with(".gad"))
    print_note(tr("The fax dialog shows only address books whose names end in .gad."));
  return exit_success;
}

int add_entry(std::string const &book, Contact const &contact) {
  complain_about(contact);
  std::uint32_t id = 0;
  change_book(book, [&](gad::File &file, gad::Change &change) {
    Status const status = change.add(
        {0, contact.name, contact.number, contact.company, contact.note, std::time(nullptr), std::string()}, &id);
    if (status == Status::present)
      throw Failure(book + ": " + tr("{0} is there already with the number {1}.", in_quotes(contact.name),
                                     in_quotes(contact.number)));
    require(status, book);
    for (std::string const &group : contact.groups)
      require(change.add_member(group_id(file, change, group, book), id), book);
  });
  if (std::string const refused = refused_characters(contact.number); !refused.empty())
    print_note(tr("The number holds {0}, which cannot be typed in the fax dialog.", refused));
  std::cout << id << '\n';
  return exit_success;
}

int remove_entries(std::string const &book, std::vector<std::string> const &entries) {
  change_book(book, [&](gad::File &, gad::Change &change) {
    BookContents const contents = read_book(book);
    for (std::string const &word : entries) {
      Status const status = change.remove(entry_named(contents, word).id);
      if (status != Status::no_entry) require(status, book);  // named twice
    }
  });
  return exit_success;
}

int work_on_group(GroupChoices const &choices) {
  if (!changes_something(choices)) {
    BookContents const book = read_book(choices.book);
    if (choices.name.empty())
      list_groups(book, choices.format);
    else
      list_members(book, choices);
    return exit_success;
  }
  change_book(choices.book,
              [&](gad::File &, gad::Change &change) { change_group(choices, read_book(choices.book), change); });
  return exit_success;
}

}  // namespace fax::tool
