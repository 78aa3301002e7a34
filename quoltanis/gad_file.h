// A PC address book: one SQLite file, made, read and changed. docs/address-books.md shows its tables.
//
// Texts are UTF-8. What is stored is checked: valid Unicode without U+0000, and short enough for the record fields
// (Limits). What is read may come from a stranger's hand and is not: it can be longer, hold U+0000, or be no UTF-8.
//
// Functions answer a status and change nothing when it is not success. Only std::bad_alloc is thrown. One File and its
// Change belong to one thread at a time; any number of programs may share the file itself.
#pragma once

#include "quoltanis/status.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace fax::gad {

// The longest texts, in UTF-16 units.
struct Limits {
  static constexpr std::size_t name = 64;
  static constexpr std::size_t index_key = 20;
  static constexpr std::size_t number = 50;
  static constexpr std::size_t company = 64;
  static constexpr std::size_t note = 254;
};

// Ids count up from 1 and an id is not given again, so it stays true for as long as its entry is there. When 65535 has
// been reached the free ones below are given again, lowest first; when there is none, ids go on above. An individual
// above 65535 is listed, found and removed like any other, has `Id` 0 in a record, and cannot be in a group.
inline constexpr std::uint32_t greatest_member_id = 65535;

struct Individual {
  std::uint32_t id = 0;  // given when it is added; what stands here then is not read
  std::string name{};    // not empty
  std::string number{};  // not empty
  std::string company{};
  std::string note{};
  std::int64_t registered = 0;  // seconds since 1970-01-01 UTC
  std::string index_key{};      // empty: made from the name when it is added
};

// The same as it stands in the file; lives as long as the visitor's call.
struct IndividualView {
  std::uint32_t id = 0;
  std::string_view name{}, number{}, company{}, note{}, index_key{};
  std::int64_t registered = 0;
};

// Members are ids of individuals, ascending; lives as long as the visitor's call.
struct GroupView {
  std::uint32_t id = 0;
  std::string_view name{};
  std::span<std::uint32_t const> members{};
};

// A visitor answers whether it wants the next one; an empty one is not called.
using VisitIndividual = std::function<bool(IndividualView const &)>;
using VisitGroup = std::function<bool(GroupView const &)>;

enum class Access { read, change };

class Change;

// An open address book; closed by its end.
class File {
public:
  File() = default;  // not open: every function answers Status::argument

  // Makes a new, empty address book that is there complete or not at all. file_exists when anything is at the path.
  static Status create(std::string const &path);

  // access read needs no right to write, and finishes (undoes) the change of a program that was killed where it may.
  // access change looks through the file for damage before it answers.
  static Status open(std::string const &path, Access access, File &file);

  // Individuals by id, then groups by id, all from one moment. Damage can come to light after some were visited.
  Status read(VisitIndividual const &individual, VisitGroup const &group) const;

  // Individuals whose name holds part, without regard to case.
  Status search(std::string_view part, VisitIndividual const &individual) const;

  // no_entry when there is none.
  Status find(std::string_view name, std::string_view number, std::uint32_t &id) const;
  Status find_group(std::string_view name, std::uint32_t &id) const;
  Status count(std::size_t &individuals, std::size_t &groups) const;

  // A number that is another one after somebody else (any other connection) has changed the file, and the same after
  // changes of this one. Says nothing across two openings.
  Status version(std::int64_t &version) const;

  // Waits for other programs no longer than five seconds, then busy. One Change at a time; the File outlives it.
  Status begin(Change &change);

private:
  friend class Change;
  struct Close {
    void operator()(sqlite3 *database) const;
  };
  std::unique_ptr<sqlite3, Close> database_;
};

// One change, all or nothing: nothing of it is in the file before commit answers success, and all of it afterwards,
// whatever happens to the program or its machine. Undone by its end.
//
// After present, text_unfit, empty_name, empty_number, no_entry and no_member the change goes on as if the call had not
// been made; after any other failure every later call answers that failure, commit included.
class Change {
public:
  Change();
  ~Change();
  Change(Change const &) = delete;
  Change &operator=(Change const &) = delete;

  // present when an individual of the same name and number is there; id may be null.
  Status add(Individual const &individual, std::uint32_t *id = nullptr);
  // Puts an individual that was removed back under its own id; present when that id is taken too.
  Status restore(Individual const &individual);
  // Replaces all of the individual with individual.id but the id.
  Status replace(Individual const &individual);
  // Takes it out of its groups too.
  Status remove(std::uint32_t individual);

  Status add_group(std::string_view name, std::uint32_t *id = nullptr);
  // As restore for individuals; its members are not there again.
  Status restore_group(std::uint32_t group, std::string_view name);
  Status rename_group(std::uint32_t group, std::string_view name);
  Status remove_group(std::uint32_t group);
  // A member that is there already is success.
  Status add_member(std::uint32_t group, std::uint32_t individual);
  // no_entry when it is not in the group.
  Status remove_member(std::uint32_t group, std::uint32_t individual);

  Status commit();

private:
  friend class File;
  struct State;
  std::unique_ptr<State> state_;
};

// Stores individuals, which is one change: all of them, or none and the first failure. Of two that are the same the
// second is present.
Status add(std::string const &path, std::span<Individual const> individuals);

// A name as search compares it: every letter in one case. For text that is no UTF-8, its ASCII letters only.
std::string fold(std::string_view name);

// The longest start of name that fits 20 bytes of UTF-8, whole characters only.
std::string index_key(std::string_view name);

// The folder of address books: $DIRECTFAX_ADDRESSBOOKS, else $XDG_DATA_HOME/directfax/addressbooks, else below
// ~/.local/share. A value that is no absolute path counts as not set. Empty when there is no such path; the folder
// itself may not be there.
std::string folder();

// The names of the address books in a folder: regular files (also through a link) that end in ".gad" and begin with no
// dot, sorted by their bytes. Empty when the folder cannot be read.
std::vector<std::string> files(std::string const &folder);

}  // namespace fax::gad
