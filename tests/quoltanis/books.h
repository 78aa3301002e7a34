// Address books in a folder of the test's own.
#pragma once

#include "quoltanis/gad_file.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

namespace fax {

inline void PrintTo(Status status, std::ostream *out) { *out << std::hex << std::uint32_t(status) << std::dec; }

namespace gad {

inline std::string contents(std::string const &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void put(std::string const &path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

struct Group {
  std::string name;
  std::vector<std::uint32_t> members;
  bool operator==(Group const &) const = default;
};

struct Book {
  Status status = Status::unexpected;
  std::vector<Individual> people;
  std::vector<Group> groups;
};

inline Individual owned(IndividualView const &view) {
  return {.id = view.id,
          .name = std::string(view.name),
          .number = std::string(view.number),
          .company = std::string(view.company),
          .note = std::string(view.note),
          .registered = view.registered,
          .index_key = std::string(view.index_key)};
}

inline Book read_book(std::string const &path) {
  Book book;
  File file;
  book.status = File::open(path, Access::read, file);
  if (book.status != Status::success) return book;
  book.status = file.read(
      [&](IndividualView const &view) {
        book.people.push_back(owned(view));
        return true;
      },
      [&](GroupView const &view) {
        book.groups.push_back({std::string(view.name), {view.members.begin(), view.members.end()}});
        return true;
      });
  return book;
}

class BookTest : public testing::Test {
protected:
  BookTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "books.XXXXXX").string();
    folder = mkdtemp(pattern.data());
    std::filesystem::permissions(folder, std::filesystem::perms(0755));
    path = folder + "/own.gad";
  }
  ~BookTest() override { std::filesystem::remove_all(folder); }

  // A book of count people ("Person 1", "+46 1", ...), and a group of the first ten.
  void make(int count) {
    ASSERT_EQ(File::create(path), Status::success);
    File file;
    Change change;
    ASSERT_EQ(File::open(path, Access::change, file), Status::success);
    ASSERT_EQ(file.begin(change), Status::success);
    for (int i = 1; i <= count; ++i)
      ASSERT_EQ(change.add({.name = "Person " + std::to_string(i), .number = "+46 " + std::to_string(i)}),
                Status::success);
    std::uint32_t group = 0;
    ASSERT_EQ(change.add_group("First", &group), Status::success);
    for (int i = 1; i <= std::min(count, 10); ++i)
      ASSERT_EQ(change.add_member(group, static_cast<std::uint32_t>(i)), Status::success);
    ASSERT_EQ(change.commit(), Status::success);
  }

  // Bare SQL, as another program would run it.
  void sql(std::string const &file, std::string const &statements) {
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    char *error = nullptr;
    EXPECT_EQ(sqlite3_exec(database, statements.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_free(error);
    sqlite3_close(database);
  }

  std::string folder, path;
};

// work's status from a process of its own, which prepare may rob of rights.
inline Status status_in_child(std::function<void()> const &prepare, std::function<Status()> const &work) {
  int channel[2];
  if (pipe(channel) != 0) return Status::unexpected;
  pid_t const child = fork();
  if (child == 0) {
    prepare();
    Status const status = work();
    _exit(write(channel[1], &status, sizeof status) == sizeof status ? 0 : 1);
  }
  close(channel[1]);
  Status status = Status::unexpected;
  if (read(channel[0], &status, sizeof status) != sizeof status) status = Status::unexpected;
  close(channel[0]);
  waitpid(child, nullptr, 0);
  return status;
}

}  // namespace gad
}  // namespace fax
