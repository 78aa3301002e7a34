// The real program, by keys; what counts is what another program then finds in the file.
#include "../quoltanis/books.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <thread>

namespace fax {
namespace {

using testing::ElementsAre;

// Asks for up to twenty seconds: the machine may be busy.
template <typename Question>
bool becomes(Question question, int turns = 400) {
  for (int turn = 0; turn < turns; ++turn) {
    if (question()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

bool xdotool(std::string const &arguments) {
  return std::system(("xdotool " + arguments + " >/dev/null 2>&1").c_str()) == 0;
}

class EditorWindowTest : public gad::BookTest {
protected:
  void SetUp() override {
    ASSERT_EQ(gad::File::create(path), Status::success);
    setenv("DIRECTFAX_ADDRESSBOOKS", folder.c_str(), 1);
  }
  ~EditorWindowTest() override { end(); }

  // Returns when the window of this title has the keyboard.
  void start(std::vector<std::string> arguments, std::string const &title = "Address Book Editor") {
    arguments.insert(arguments.begin(), EDITOR);
    std::vector<char *> words;
    for (std::string &word : arguments) words.push_back(word.data());
    words.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
      for (int stream : {0, 1, 2}) dup2(open("/dev/null", O_RDWR), stream);
      execv(words[0], words.data());
      _exit(127);
    }
    // Of two windows that come at once the window manager may give either the keyboard.
    ASSERT_TRUE(becomes([&] {
      xdotool("search --onlyvisible --name '^" + title + "$' windowactivate");
      return has_window(title, 10);
    }, 40));
  }

  // The way of a power cut, as far as a test can go: nothing of the program runs any more.
  void end() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
  }

  // Of the program, which ends by itself; -1 when it does not, or not by itself.
  int exit_code() {
    int status = 0;
    bool const ended = becomes([&] { return waitpid(process_, &status, WNOHANG) == process_; });
    if (ended) process_ = 0;
    return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // Waits until the window has the keyboard.
  static bool has_window(std::string const &title, int turns = 400) {
    std::string const command = "[ \"$(xdotool getactivewindow getwindowname 2>/dev/null)\" = '" + title + "' ]";
    return becomes([&] { return std::system(command.c_str()) == 0; }, turns);
  }
  // Presses keys until this window has the keyboard: a window that was just mapped may miss the first ones.
  static bool opens(std::string const &names, std::string const &title) {
    for (int press = 0; press < 5; ++press) {
      keys(names);
      if (has_window(title, 60)) return true;
    }
    return false;
  }
  static void keys(std::string const &names) { EXPECT_TRUE(xdotool("key --delay 60 " + names)); }
  static void type(std::string const &text) { EXPECT_TRUE(xdotool("type --delay 60 '" + text + "'")); }

  std::vector<std::string> people() const {
    std::vector<std::string> lines;
    for (gad::Individual const &person : gad::read_book(path).people)
      lines.push_back(person.name + " " + person.number + " " + person.company);
    return lines;
  }
  bool stored(std::vector<std::string> const &lines) const {
    return becomes([&] { return people() == lines; });
  }

  // Through the window for a new entry; returns when it has closed.
  void add(std::string const &name, std::string const &number) {
    ASSERT_TRUE(opens("ctrl+n", "New Entry"));
    type(name);
    keys("Tab");
    type(number);
    keys("Return");
    ASSERT_TRUE(has_window("Address Book Editor"));
  }

  pid_t process_ = 0;
};

TEST_F(EditorWindowTest, EveryEditIsSavedAtOnceAndSurvivesAKill) {
  ASSERT_NO_FATAL_FAILURE(start({"-DFAXConnectionType NET", "-DFAXAddress 127.0.0.1"}));
  ASSERT_NO_FATAL_FAILURE(add("Anna", "123"));
  EXPECT_THAT(people(), ElementsAre("Anna 123 ")) << "the window closes when the entry is stored";

  ASSERT_TRUE(opens("Return", "Edit Entry")) << "the new entry is selected";
  type("Berta");
  keys("Tab Tab");
  type("Norvalt");
  keys("Return");
  EXPECT_TRUE(stored({"Berta 123 Norvalt"}));
  ASSERT_TRUE(has_window("Address Book Editor"));

  keys("Delete");
  EXPECT_TRUE(stored({}));
  keys("ctrl+z");
  EXPECT_TRUE(stored({"Berta 123 Norvalt"}));
  keys("ctrl+z");
  EXPECT_TRUE(stored({"Anna 123 "}));
  keys("ctrl+shift+z");
  EXPECT_TRUE(stored({"Berta 123 Norvalt"}));

  ASSERT_TRUE(opens("ctrl+n", "New Entry"));
  keys("Return");
  type("Cancelled");
  keys("Escape");
  ASSERT_TRUE(has_window("Address Book Editor"));
  EXPECT_THAT(people(), ElementsAre("Berta 123 Norvalt")) << "neither without a name nor when cancelled";

  ASSERT_NO_FATAL_FAILURE(add("Last", "9"));
  end();
  EXPECT_THAT(people(), ElementsAre("Berta 123 Norvalt", "Last 9 "));
  gad::File file;
  EXPECT_EQ(gad::File::open(path, gad::Access::change, file), Status::success) << "and the file is whole";
}

TEST_F(EditorWindowTest, ABookIsMadeWithoutAMouse) {
  ASSERT_NO_FATAL_FAILURE(start({path}));
  // Whoever counts keys needs a window that misses none.
  ASSERT_TRUE(opens("ctrl+n", "New Entry"));
  keys("Escape");
  ASSERT_TRUE(has_window("Address Book Editor"));
  keys("shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab");  // past New Group, the groups, the search, Open
  ASSERT_TRUE(opens("space", "New Address Book"));
  type("Office");
  keys("Return");
  EXPECT_TRUE(becomes([&] { return std::filesystem::exists(folder + "/Office.gad"); }));
}

TEST_F(EditorWindowTest, AGroupTakesTheSelectedEntry) {
  ASSERT_NO_FATAL_FAILURE(start({"-DFAXConnectionType USB", path}));
  ASSERT_NO_FATAL_FAILURE(add("Anna", "123"));
  ASSERT_TRUE(opens("ctrl+shift+n", "New Group"));
  type("Friends");
  keys("Return");
  EXPECT_TRUE(becomes([&] { return !gad::read_book(path).groups.empty(); }));
  EXPECT_THAT(gad::read_book(path).groups, ElementsAre(gad::Group{"Friends", {1}}));
  ASSERT_TRUE(has_window("Address Book Editor"));
  // An entry that is made while a group is shown belongs to it.
  ASSERT_NO_FATAL_FAILURE(add("Berta", "5"));
  EXPECT_THAT(gad::read_book(path).groups, ElementsAre(gad::Group{"Friends", {1, 2}}));
}

TEST_F(EditorWindowTest, AListIsShownBeforeItIsImportedAndUndoneAsAWhole) {
  gad::put(folder + "/list.csv", "Name,Fax\r\nAnna,1\r\nBerta,2\r\nNobody,\r\n");
  ASSERT_NO_FATAL_FAILURE(start({path, folder + "/list.csv"}, "Import"));
  EXPECT_THAT(people(), ElementsAre());
  ASSERT_TRUE(opens("Return", "Address Book Editor"));
  EXPECT_TRUE(stored({"Anna 1 ", "Berta 2 "}));
  keys("ctrl+z");
  EXPECT_TRUE(stored({}));
  keys("ctrl+shift+z");
  EXPECT_TRUE(stored({"Anna 1 ", "Berta 2 "}));
  keys("ctrl+a Delete");
  EXPECT_TRUE(stored({}));
  keys("ctrl+w");
  EXPECT_EQ(exit_code(), 0);
}

TEST_F(EditorWindowTest, AnEditDoesNotWriteOverThatOfAnotherProgram) {
  sql(path, "INSERT INTO individuals (name, number) VALUES ('Anna', '1')");
  ASSERT_NO_FATAL_FAILURE(start({path}));
  ASSERT_TRUE(opens("Return", "Edit Entry"));
  sql(path, "UPDATE individuals SET number = '77'");
  type("Own");
  keys("Return");
  std::this_thread::sleep_for(std::chrono::seconds(1));
  ASSERT_TRUE(has_window("Edit Entry")) << "what was typed is still there";
  EXPECT_THAT(people(), ElementsAre("Anna 77 "));
  keys("Return");  // now that the user knows
  EXPECT_TRUE(stored({"Own 1 "}));
}

}  // namespace
}  // namespace fax
