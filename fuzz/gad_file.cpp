// Address-book files of strangers. Input: 0 and the file; 1 and changes to a sound book, each a position (two bytes) and
// the new byte; or 2 and a journal beside a sound book.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "quoltanis/gad_file.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using fax::Status;
using namespace fax::gad;

// In memory where there is such a folder: a change waits for the disk otherwise.
struct Folder {
  Folder() {
    fs::path const memory = "/dev/shm";
    std::string pattern = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) / "fuzz.XXXXXX";
    FUZZ_CHECK(mkdtemp(pattern.data()) != nullptr);
    path = pattern;
  }
  ~Folder() { fs::remove_all(path); }
  fs::path path;
};

fs::path const &book_path() {
  static Folder const folder;
  static fs::path const path = folder.path / "book.gad";
  return path;
}

std::string contents() {
  std::ifstream file(book_path(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void put(std::string_view bytes) {
  std::ofstream(book_path(), std::ios::binary | std::ios::trunc).write(bytes.data(), std::streamsize(bytes.size()));
}

std::string const &sound_book() {
  static std::string const bytes = [] {
    FUZZ_CHECK(File::create(book_path()) == Status::success);
    std::vector<Individual> people;
    for (int i = 1; i <= 12; ++i)
      people.push_back({.name = "Person " + std::to_string(i), .number = "+46 " + std::to_string(i),
                        .company = i % 3 == 0 ? "Company" : "", .note = std::string(std::size_t(i) * 20, 'n')});
    FUZZ_CHECK(add(book_path(), people) == Status::success);
    File file;
    Change change;
    std::uint32_t group = 0;
    FUZZ_CHECK(File::open(book_path(), Access::change, file) == Status::success);
    FUZZ_CHECK(file.begin(change) == Status::success && change.add_group("Group", &group) == Status::success);
    for (std::uint32_t id = 1; id <= 5; ++id) FUZZ_CHECK(change.add_member(group, id) == Status::success);
    FUZZ_CHECK(change.commit() == Status::success);
    return contents();
  }();
  return bytes;
}

struct Book {
  Status status;
  std::vector<std::pair<std::string, std::string>> people;
  std::size_t members = 0;
};

Book read_book() {
  Book book;
  File file;
  book.status = File::open(book_path(), Access::read, file);
  if (book.status != Status::success) return book;
  book.status = file.read(
      [&](IndividualView const &one) {
        book.people.emplace_back(one.name, one.number);
        return true;
      },
      [&](GroupView const &group) {
        book.members += group.members.size();
        return true;
      });
  return book;
}

// A change keeps every entry and adds one, or is refused and leaves the file as it was.
void check_change(Book const &before, std::string const &bytes) {
  Individual const someone{.name = "Someone", .number = "1"};
  Status const added = add(book_path(), {&someone, 1});
  if (added != Status::success) {
    FUZZ_CHECK(contents() == bytes);
    return;
  }
  FUZZ_CHECK(before.status == Status::success);
  Book const after = read_book();
  FUZZ_CHECK(after.status == Status::success && after.people.size() == before.people.size() + 1);
  FUZZ_CHECK(after.members == before.members);
  std::multiset<std::pair<std::string, std::string>> const all(after.people.begin(), after.people.end());
  for (auto const &one : before.people) FUZZ_CHECK(all.contains(one));
}

// What a journal undoes is what it says; the book is then read like any other, and nothing else is touched.
void check_journal(std::string_view bytes) {
  fs::path const journal = book_path().string() + "-journal";
  std::ofstream(journal, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
  (void)read_book();
  check_change(read_book(), contents());
  fs::remove(journal);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  std::string bytes = sound_book();
  unsigned const kind = input.byte();
  if (kind == 0) bytes = input.rest();
  while (kind == 1 && !input.empty()) {
    std::size_t const at = input.number() % bytes.size();
    bytes[at] = char(input.byte());
  }
  put(bytes);
  if (kind > 1) {
    check_journal(input.rest());
    return 0;
  }
  Book const book = read_book();
  FUZZ_CHECK(contents() == bytes);
  File file;
  if (File::open(book_path(), Access::read, file) == Status::success) {
    std::uint32_t id = 0;
    (void)file.find("Person 1", "+46 1", id);
    (void)file.search("person", [](IndividualView const &) { return true; });
    file = {};
  }
  check_change(book, bytes);
  for (auto const &entry : fs::directory_iterator(book_path().parent_path())) FUZZ_CHECK(entry.path() == book_path());
  return 0;
}
