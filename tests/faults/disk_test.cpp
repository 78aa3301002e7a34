// Everything that writes a file, with each of its calls to the system failing once, and with a limit on the size of
// files: the failure is told, the file is the old one or the new one, and nothing else is left beside it.
#include "failing_io.h"

#include "../driver/fax_job.h"
#include "../quoltanis/books.h"
#include "editor/core/open_book.h"
#include "host/core/memory.h"
#include "host/output.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <iostream>

namespace fax {
namespace {

using host::Document;
using host::load_memory;
using testing::HasSubstr;

class Disk : public gad::BookTest {
protected:
  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (auto const &entry : std::filesystem::recursive_directory_iterator(folder))
      all.push_back(entry.path().string().substr(folder.size() + 1));
    std::ranges::sort(all);
    return all;
  }

  // attempt answers "" or what it says of its failure; holds tells whether the old (false) or the new state is there.
  void fail_each(std::function<void()> const &prepare, std::function<std::string()> const &attempt,
                 std::function<void(bool done)> const &expect_state) {
    int calls = 0;
    for (int const error : {EIO, ENOSPC}) {
      for (int call = 0;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call) + ", error " + std::to_string(error));
        prepare();
        auto const before = names();
        test::fail_io_call(call, error);
        std::string const said = attempt();
        bool const tried = test::io_has_failed(), failed = !said.empty();
        test::fail_io_call(-1, 0);
        expect_state(!failed);
        if (failed) {
          EXPECT_EQ(names(), before);
          ++calls;
        }
        if (!tried) {
          EXPECT_EQ(said, "");
          break;
        }
      }
    }
    std::cout << calls << " failures told\n";
    EXPECT_GE(calls, 4);
  }
};

TEST_F(Disk, WhatTheDialogRemembers) {
  host::Memory const old{"old", {}, {}}, fresh{"new", {{"fax", {{"Duplex", "None"}}}}, {}};
  std::filesystem::path const file = folder + "/directfax/faxprint.json";
  fail_each([&] { ASSERT_FALSE(save_memory(old, file)); },
            [&] {
              auto const failed = save_memory(fresh, file);
              return failed ? failed->text() : "";
            },
            [&](bool done) { EXPECT_EQ(load_memory(file).value(), done ? fresh : old); });
}

TEST_F(Disk, SaveAsFile) {
  std::string const target = folder + "/letter.pdf", fresh = "%PDF-1.4\n" + std::string(200'000, 'x');
  fail_each([&] { gad::put(target, "old"); },
            [&] {
              auto const failed = host::write_output(Document::of_bytes(fresh, "Letter"), target, {});
              EXPECT_TRUE(!failed || failed->text().find(target) != std::string::npos);
              return failed ? failed->text() : "";
            },
            [&](bool done) { EXPECT_TRUE(gad::contents(target) == (done ? fresh : "old")); });
}

TEST_F(Disk, AnEditOfABook) {
  make(5);
  std::string const before = gad::contents(path);
  std::unique_ptr<editor::OpenBook> book;
  int told_though_made = 0;
  fail_each(
      [&] {
        book.reset();
        gad::put(path, before);
        ASSERT_EQ(editor::OpenBook::open(path, book), Status::success);
      },
      [&]() -> std::string {
        auto const outcome = book->make(editor::add_person({.name = "Added", .number = "1"}));
        if (outcome.made()) return "";
        EXPECT_TRUE(outcome.status == Status::full || outcome.status == Status::file_error) << outcome.conflict;
        EXPECT_EQ(book->make(editor::add_person({.name = "Next", .number = "2"})).status, Status::success);
        return "failed";
      },
      [&](bool done) {
        gad::Book const read = gad::read_book(path);
        EXPECT_EQ(read.status, Status::success);
        EXPECT_EQ(read.people.back().name, done ? "Added" : "Next");
        if (read.people.size() != 6u) ++told_though_made;
      });
  // The very last call, by which the change outlives a power cut: that it failed is told, and the change is there.
  EXPECT_EQ(told_though_made, 2);
}

// Programs, each call of theirs failing, then with files of no more than a few bytes.
class DiskOfPrograms : public Disk {
protected:
  struct Ended {
    int code;
    std::string said;
  };

  Ended run(std::string const &command, std::string const &environment, rlim_t largest_file = RLIM_INFINITY) const {
    std::string const errors = std::filesystem::temp_directory_path() / "said";
    pid_t const child = fork();
    if (child == 0) {
      int const file = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      dup2(file, STDERR_FILENO);
      rlimit const limit{largest_file, largest_file};
      setrlimit(RLIMIT_FSIZE, &limit);
      execl("/bin/sh", "sh", "-c", ("exec env " + environment + " " + command).c_str(), nullptr);
      _exit(126);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), gad::contents(errors)};
  }

  // The states are told apart by is_new; prepare makes the old one. A preloaded library has to come behind the
  // sanitizer's own.
  void fail_each_call(std::string const &command, std::function<void()> const &prepare,
                      std::function<bool()> const &is_new) {
    for (int const error : {EIO, ENOSPC}) {
      for (int call = 0;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call) + ", error " + std::to_string(error));
        ASSERT_LT(call, 100);
        prepare();
        auto const before = names();
        auto const ended = run(command, "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0 LD_PRELOAD=" FAILING_IO
                                        " FAILING_IO_CALL=" + std::to_string(call) +
                                        " FAILING_IO_ERROR=" + std::to_string(error));
        if (ended.code == 0) {
          EXPECT_TRUE(is_new());
          EXPECT_GT(call, 2);
          break;
        }
        EXPECT_EQ(ended.code, 1) << ended.said;
        EXPECT_THAT(ended.said, testing::AnyOf(HasSubstr("I/O"), HasSubstr("Input/output"), HasSubstr("o space left"),
                                               HasSubstr("disk"), HasSubstr("could not")));
        EXPECT_FALSE(is_new());
        EXPECT_EQ(names(), before);
      }
    }
    prepare();
    auto const before = names();
    auto const ended = run(command, "", 1000);
    EXPECT_EQ(ended.code, 1) << "a limit ends no program";
    EXPECT_NE(ended.said, "");
    EXPECT_FALSE(is_new());
    EXPECT_EQ(names(), before);
  }
};

TEST_F(DiskOfPrograms, GadImports) {
  make(5);
  std::string const before = gad::contents(path), list = folder + "/list.csv";
  gad::put(list, "Name;Fax\nNew;12345\n");
  fail_each_call(GAD " import " + path + " " + list + " >/dev/null", [&] { gad::put(path, before); },
                 [&] {
                   gad::Book const book = gad::read_book(path);
                   EXPECT_EQ(book.status, Status::success);
                   return book.people.size() == 6;
                 });
}

TEST_F(DiskOfPrograms, GadExports) {
  make(100);
  std::string const target = folder + "/list.vcf";
  fail_each_call(GAD " export " + path + " " + target + " --force >/dev/null", [&] { gad::put(target, "old"); },
                 [&] { return gad::contents(target) != "old"; });
}

TEST_F(DiskOfPrograms, TheFilterLeavesItsTicket) {
  std::string const tickets = folder + "/tickets", quoted = folder + "/options";
  std::string options;
  for (auto const &[name, value] : test::good_options()) options += name + "='" + value + "' ";
  gad::put(quoted, options);
  fail_each_call("PPD=" PPD " DIRECTFAX_TICKETS=" + tickets + " " FILTER " 7 u t 1 \"$(cat " + quoted + ")\" " SAMPLE
                     " >/dev/null",
                 [&] {
                   std::filesystem::remove_all(tickets);
                   std::filesystem::create_directory(tickets);
                 },
                 [&] { return std::filesystem::exists(tickets + "/job-7.json"); });
}

}  // namespace
}  // namespace fax
