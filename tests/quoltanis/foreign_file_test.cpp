// Files from strangers, and places that refuse: a status each, and nothing altered.
#include "books.h"
#include "quoltanis/gad_schema.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <numeric>
#include <set>

namespace fax::gad {
namespace {

Individual const someone{.name = "Someone", .number = "1"};

Status add_someone(std::string const &path) { return add(path, {&someone, 1}); }

std::set<std::string> names_in(std::string const &folder) {
  std::set<std::string> names;
  for (auto const &entry : std::filesystem::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

class ForeignFileTest : public BookTest {
protected:
  // Reading and adding answer so, and leave the folder as it was.
  void expect_refused(std::string const &file, Status read, Status change, char const *what) {
    bool const regular = std::filesystem::is_regular_file(file);
    std::string const before = regular ? contents(file) : "";
    auto const names = names_in(folder);
    EXPECT_EQ(read_book(file).status, read) << what;
    EXPECT_EQ(add_someone(file), change) << what;
    EXPECT_EQ(regular ? contents(file) : before, before) << what;
    EXPECT_EQ(names_in(folder), names) << what;
  }
};

TEST_F(ForeignFileTest, FilesThatAreNoAddressBook) {
  make(20);
  std::string const good = contents(path), other = folder + "/other.gad";
  auto const made = [&](std::string const &statements) {
    put(other, good);
    sql(other, statements);
  };
  struct Case {
    char const *what;
    std::function<void()> make;
    Status status;
  };
  Case const cases[] = {
      {"empty", [&] { put(other, ""); }, Status::foreign_file},
      {"text", [&] { put(other, std::string(5000, 'x')); }, Status::foreign_file},
      {"only a header", [&] { put(other, good.substr(0, 100)); }, Status::damaged},
      {"another database", [&] { made("PRAGMA application_id = 7"); }, Status::foreign_file},
      {"a newer version", [&] { made("PRAGMA user_version = 2"); }, Status::newer_file},
      {"version 0", [&] { made("PRAGMA user_version = 0"); }, Status::damaged},
      {"a missing table", [&] { made("DROP TABLE members"); }, Status::foreign_file},
      {"a trigger", [&] { made("CREATE TRIGGER t AFTER INSERT ON individuals BEGIN DELETE FROM individuals; END"); },
       Status::foreign_file},
      {"a view", [&] { made("DROP TABLE members; CREATE VIEW members AS SELECT 1 AS group_id, 2 AS individual_id"); },
       Status::foreign_file},
      {"a rule fewer",
       [&] {
         made(
             "PRAGMA writable_schema = 1; UPDATE sqlite_schema SET sql = replace(sql, 'UNIQUE (name, number)', "
             "'CHECK (1)') WHERE name = 'individuals'");
       },
       Status::damaged},
      {"a folder", [&] { std::filesystem::create_directory(other); }, Status::foreign_file},
      {"a pipe", [&] { ASSERT_EQ(mkfifo(other.c_str(), 0600), 0); }, Status::foreign_file},
      {"a dangling link", [&] { std::filesystem::create_symlink("gone", other); }, Status::no_file},
      {"nothing", [] {}, Status::no_file},
  };
  for (auto const &row : cases) {
    row.make();
    expect_refused(other, row.status, row.status, row.what);
    std::filesystem::remove_all(other);
  }
  expect_refused(folder + "/own.gad/inside", Status::no_file, Status::no_file, "below a file");
  expect_refused("", Status::argument, Status::argument, "no path");
  expect_refused(std::string("/x\0y", 4), Status::argument, Status::argument, "a zero in the path");
  EXPECT_EQ(File::create(path), Status::file_exists);
  EXPECT_EQ(contents(path), good);
}

// SQLite would undo this journal, which says nothing, and delete the file that it names.
TEST_F(ForeignFileTest, AJournalThatNamesAnotherFile) {
  make(20);
  std::string const precious = folder + "/precious.txt", journal = path + "-journal", good = contents(path);
  auto const number = [](std::uint32_t value) {
    return std::string{char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
  };
  std::uint32_t const page = 4096, sum = std::accumulate(precious.begin(), precious.end(), 0u);
  std::string const mark = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
  std::string bytes =
      mark + number(0) + number(1) + number(static_cast<std::uint32_t>(good.size() / page)) + number(512) + number(page);
  bytes.resize(512);
  bytes += number(0x40000000 / page + 1) + precious + number(static_cast<std::uint32_t>(precious.size())) + number(sum) +
           mark;
  put(precious, "precious");
  put(journal, bytes);
  EXPECT_EQ(read_book(path).status, Status::damaged);
  EXPECT_EQ(add_someone(path), Status::damaged);
  EXPECT_EQ(contents(precious), "precious");
  EXPECT_EQ(contents(path), good);
  EXPECT_EQ(contents(journal), bytes);
  std::filesystem::remove(journal);
  EXPECT_EQ(read_book(path).people.size(), 20u);
}

TEST_F(ForeignFileTest, TruncatedAnywhere) {
  make(300);
  std::string const good = contents(path);
  for (std::size_t size = 0; size < good.size(); size += 512) {
    put(path, good.substr(0, size));
    Status const status = read_book(path).status;
    EXPECT_TRUE(status == Status::damaged || (size < 100 && status == Status::foreign_file))
        << size << ' ' << testing::PrintToString(status);
    Status const added = add_someone(path);
    EXPECT_EQ(added, status) << size;
    EXPECT_EQ(contents(path), good.substr(0, size)) << size;
  }
}

// Flips bits in every stretch of 16 bytes: nothing crashes or hangs, reading alters nothing, and a book that is read
// has all its rows. Adding to it keeps them, or is refused and alters nothing.
TEST_F(ForeignFileTest, FlippedAnywhere) {
  make(200);
  std::string const good = contents(path);
  int damaged = 0, told = 0;
  for (std::size_t at = 0; at < good.size(); at += 16) {
    std::string bad = good;
    bad[at + at / 16 % 16] ^= static_cast<char>(1 << at / 256 % 8);
    put(path, bad);
    Book const before = read_book(path);
    ASSERT_EQ(contents(path), bad) << at;
    ++damaged;
    if (before.status != Status::success) ++told;
    bool const whole =
        before.people.size() == 200 && before.groups.size() == 1 && before.groups[0].members.size() == 10;
    EXPECT_TRUE(whole || before.status != Status::success) << at;
    if (at % 256 != 0) continue;  // a change waits for the disk
    if (add_someone(path) == Status::success) {
      EXPECT_EQ(read_book(path).people.size(), 201u) << at;
    } else {
      EXPECT_EQ(contents(path), bad) << at;
    }
  }
  std::cout << told << " of " << damaged << " flipped files were refused\n";
  EXPECT_GT(told, 0);
}

TEST_F(ForeignFileTest, RowsThatNoRuleAllows) {
  make(3);
  sql(path,
      "PRAGMA ignore_check_constraints = 1;"
      "INSERT INTO individuals (id, name, number) VALUES (-4, 'Below', '1')");
  EXPECT_EQ(read_book(path).status, Status::damaged);
  sql(path, "DELETE FROM individuals WHERE id < 0; INSERT INTO members VALUES (1, 4000)");
  EXPECT_EQ(read_book(path).status, Status::success) << "a member who is gone";
}

TEST_F(ForeignFileTest, PlacesThatRefuse) {
  make(50);
  auto const as_nobody = [] {
    if (geteuid() == 0 && (setegid(65534) != 0 || seteuid(65534) != 0)) _exit(1);
  };
  auto const small_files = [] {
    signal(SIGXFSZ, SIG_IGN);
    rlimit const limit{16384, 16384};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(1);
  };
  std::string const good = contents(path), shut = folder + "/shut";
  auto const reading = [&] { return read_book(path).status; };
  auto const adding = [&] { return add_someone(path); };
  auto const adding_many = [&] {
    std::vector<Individual> many;
    for (int i = 0; i < 2000; ++i) many.push_back({.name = "N" + std::to_string(i), .number = "1"});
    return add(path, many);
  };
  auto const set_mode = [](std::string const &file, int mode) {
    std::filesystem::permissions(file, std::filesystem::perms(mode));
  };

  set_mode(path, 0444);
  EXPECT_EQ(status_in_child(as_nobody, reading), Status::success);
  EXPECT_EQ(status_in_child(as_nobody, adding), Status::read_only);
  set_mode(path, 0000);
  EXPECT_EQ(status_in_child(as_nobody, reading), Status::no_permission);
  EXPECT_EQ(status_in_child(as_nobody, adding), Status::no_permission);
  set_mode(path, 0666);
  EXPECT_EQ(status_in_child(as_nobody, adding), Status::read_only) << "a folder without room for a journal";
  EXPECT_EQ(status_in_child(as_nobody, [&] { return File::create(folder + "/new.gad"); }), Status::read_only);
  std::filesystem::create_directory(shut);
  std::filesystem::copy(path, shut + "/book.gad");
  set_mode(shut, 0000);
  EXPECT_EQ(status_in_child(as_nobody, [&] { return read_book(shut + "/book.gad").status; }), Status::no_permission);
  set_mode(shut, 0755);
  EXPECT_EQ(status_in_child(small_files, adding_many), Status::full);
  EXPECT_EQ(contents(path), good);
  EXPECT_EQ(read_book(path).people.size(), 50u);

  std::string const disk = folder + "/disk";
  std::filesystem::create_directory(disk);
  auto const mounts_small_disk = [&] {  // that only this child sees
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", disk.c_str(), "tmpfs", 0, "size=96k") == 0;
  };
  auto const mountable = [&] { return mounts_small_disk() ? Status::success : Status::no_permission; };
  if (status_in_child([] {}, mountable) != Status::success) {
    std::cout << "A full disk was not tried: this process may mount nothing.\n";
  } else {
    auto const small_disk = [&] {
      if (!mounts_small_disk()) _exit(1);
      path = disk + "/own.gad";
      put(path, good);
    };
    auto const filling = [&] {
      Status const status = adding_many();
      return contents(path) == good && names_in(disk).size() == 1 ? status : Status::unexpected;
    };
    EXPECT_EQ(status_in_child(small_disk, filling), Status::full);
  }

  File file;
  Change change;
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(status_in_child([] {}, adding), Status::busy);
  EXPECT_EQ(status_in_child([] {}, reading), Status::success) << "reading goes on beside a change";
}

// A program killed in the middle of a change leaves its journal: the next reader puts the book back.
TEST_F(ForeignFileTest, AKilledChangeIsUndone) {
  make(50);
  status_in_child(
      [] {},
      [&] {
        File file;
        Change change;
        sqlite3_soft_heap_limit64(1);  // what is written goes to the file at once
        if (File::open(path, Access::change, file) != Status::success || file.begin(change) != Status::success)
          return Status::unexpected;
        for (int i = 0; i < 5000; ++i) change.add({.name = "N" + std::to_string(i), .number = "1"});
        raise(SIGKILL);
        return Status::unexpected;
      });
  ASSERT_TRUE(std::filesystem::exists(path + "-journal"));
  Book const book = read_book(path);
  EXPECT_EQ(book.status, Status::success);
  EXPECT_EQ(book.people.size(), 50u);
  EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
}

}  // namespace
}  // namespace fax::gad
