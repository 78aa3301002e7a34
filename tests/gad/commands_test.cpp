// The commands as a shell sees them: exit codes, plain output, books that the sqlite3 shell reads and writes.

#include "gad/text.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <set>

namespace fax::tool::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Commands, EndAsPeopleExpect) {
  Folder const folder;
  std::string const book = folder.book(), missing = folder / "none.gad", text = folder.file("text", "no book");
  ASSERT_EQ(gad({"add", book, "Anna", "1"}).code, 0);
  ASSERT_EQ(gad({"add", book, "Anna", "2"}).code, 0);
  struct Row {
    std::vector<std::string> command;
    int code;
    char const *report;
  };
  std::vector<Row> const rows = {
      {{}, 2, "gad: A command is required. --help shows what can be said."},
      {{"--help"}, 0, ""},
      {{"--version"}, 0, ""},
      {{"lst", book}, 2, "lst"},
      {{"list"}, 2, "FILE is required."},
      {{"list", missing}, 1, "none.gad: There is no such file. Make one with 'gad create'."},
      {{"list", text}, 1, "not an address book. To take over another program's addresses use 'gad import'."},
      {{"list", folder / ""}, 1, "not an address book"},
      {{"list", book, "--format", "xml"}, 2, "--format: xml is none of json,table,tsv."},
      {{"list", book, "x"}, 2, "The argument x is not expected."},
      {{"list", book, "x", "--y"}, 2, "are not expected."},
      {{"list", book, "--group", "none"}, 1, "no group \"none\""},
      {{"create", book}, 1, "Choose another name"},
      {{"create", folder / "no" + "/x.gad"}, 1, "x.gad"},
      {{"add", book, "Anna", "1"}, 1, "\"Anna\" is there already with the number \"1\""},
      {{"add", book, "", "1"}, 2, "The name is empty."},
      {{"add", book, std::string(65, 'x'), "1"}, 2, "65 characters of 64"},
      {{"add", book, "J\xF6rg", "1"}, 2, "not valid UTF-8"},
      {{"add", book, "Ben", "Group"}, 2, "mark of groups"},
      {{"remove", book, "Ben"}, 1, "no entry \"Ben\""},
      {{"remove", book, "1", "Ben"}, 1, "no entry \"Ben\""},
      {{"remove", book, "Anna"}, 1, "several entries \"Anna\". Name one of the ids 1, 2."},
      {{"group", book, "none"}, 1, "no group"},
      {{"group", book, "--create"}, 2, "--create requires GROUP."},
      {{"group", book, "G", "--add"}, 2, "--add: There is no ENTRY."},
      {{"group", book, "G", "--create", "--delete"}, 2, "--create and --delete exclude each other."},
      {{"group", book, "G", "--create", "--add", "Zed"}, 1, "no entry \"Zed\""},
      {{"import", book, folder / "none"}, 1, "No such file"},
      {{"import", missing, text}, 1, "Make one with 'gad create'."},
      {{"import", book, text, "--delimiter", "ab"}, 2, "--delimiter: One ASCII character"},
      {{"export", book, folder / "list.txt"}, 2, "Say which with --to"},
      {{"export", book, text, "--to", "csv"}, 1, "--force replaces it"},
      {{"export", book, "/dev/full", "--to", "csv"}, 1, "No space left"},
  };
  std::string const before = content_of(book);
  for (Row const &row : rows) {
    Outcome const outcome = gad(row.command);
    EXPECT_EQ(outcome.code, row.code) << ::testing::PrintToString(row.command) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(row.report));
    EXPECT_EQ(outcome.output.empty(), row.code != 0) << outcome.output;
  }
  EXPECT_EQ(content_of(book), before);
  EXPECT_EQ(content_of(text), "no book");
  EXPECT_EQ(run({"sh", "-c", GAD " list '" + book + "' > /dev/full"}).code, 1);
}

TEST(Commands, HelpAndManualNameTheSameOptions) {
  std::string const manual = std::regex_replace(content_of(MANUAL), std::regex(R"(\\-)"), "-");
  for (char const *command : {"create", "list", "add", "remove", "group", "import", "export"}) {
    Outcome const help = gad({command, "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.output, AllOf(HasSubstr("Usage: gad " + std::string(command)), HasSubstr("the address book")));
    // The command's part of the manual.
    std::size_t const start = manual.find(".SS " + std::string(command) + ' ');
    ASSERT_NE(start, std::string::npos) << command;
    std::string const part = manual.substr(start, manual.find("\n.S", start + 1) - start);
    std::regex const option("--[a-z][a-z-]+");
    auto const options = [&](std::string const &text) {
      std::set<std::string> const names(std::sregex_token_iterator(text.begin(), text.end(), option), {});
      return names;
    };
    std::set<std::string> named = options(help.output);
    named.erase("--help");
    EXPECT_THAT(options(part), ::testing::IsSupersetOf(named)) << command;
    EXPECT_THAT(named, ::testing::IsSupersetOf(options(part))) << command;
  }
}

// What is left of a text when all that comes out of a catalogue whose texts stand in <> is gone, and what is the same in
// every language.
std::string untranslated(std::string const &text) {
  std::string left;
  int depth = 0;
  for (char c : text) {
    if (c == '<') ++depth;
    if (depth == 0) left += c;
    if (c == '>') --depth;
  }
  static std::regex const same(R"(--?[a-z][-a-z]*|\{[a-z0-9,]+\}|\b(gad|create|list|add|remove|group|import|export)\b|/\S+|"[^"]*"|[^a-zA-Z])");
  return std::regex_replace(left, same, "");
}

TEST(Commands, SpeakTheUsersLanguage) {
  Folder const folder;
  std::string const tool = folder / "gad", catalogues = folder / "locale/de/LC_MESSAGES";
  std::filesystem::copy_file(GAD, tool);
  std::filesystem::create_directories(catalogues);
  ASSERT_EQ(run({"sh", "-c", "sed 's/CHARSET/UTF-8/' '" POT "' | msgen - |"
                             " msgfilter --keep-header sed -e '1s/^/</' -e '$s/$/>/' | msgfmt -o '" +
                                 catalogues + "/directfax.mo' -"})
                .code,
            0);
  std::string const book = folder.book(), list = folder.file("list", "Name,Fax\nAnna,x\nBen,\n");
  std::vector<std::vector<std::string>> const commands = {
      {"--help"}, {"create", "--help"}, {"list", "--help"}, {"add", "--help"}, {"remove", "--help"},
      {"group", "--help"}, {"import", "--help"}, {"export", "--help"}, {}, {"list"}, {"list", folder / "none"},
      {"list", book, "--format", "/"}, {"list", book, "/"}, {"list", book, "/", "/"}, {"list", book, "--format", "table"},
      {"group", book, "--create"}, {"group", book, "/", "--add"}, {"group", book, "/", "--create", "--delete"},
      {"add", book, "", "1"}, {"import", "-v", book, list}, {"export", book, list}};
  for (auto words : commands) {
    words.insert(words.begin(), {"env", "LC_ALL=de_XX.UTF-8", tool});
    Outcome const outcome = run(words);
    std::string const said = outcome.output + outcome.errors;
    EXPECT_THAT(said, HasSubstr("<"));
    EXPECT_EQ(untranslated(said), "") << said;
  }
}

TEST(Commands, ChangeEntriesAndGroups) {
  Folder const folder;
  std::string const book = folder.book();
  EXPECT_EQ(
      gad({"add", book, "Åsa", "030-1", "--company", "C", "--note", "a\tb", "--group", "x;y", "--group", "G"}).output,
      "1\n");
  EXPECT_THAT(gad({"add", book, "Ben", "+1 (2)"}).errors, HasSubstr("holds \"+ ()\""));
  EXPECT_EQ(gad({"list", book}).output, "1\tÅsa\t030-1\tC\ta\\tb\tx\\;y;G\n2\tBen\t+1 (2)\t\t\t\n");
  EXPECT_EQ(gad({"list", book, "--search", "åS"}).output, "1\tÅsa\t030-1\tC\ta\\tb\tx\\;y;G\n");
  EXPECT_EQ(gad({"list", book, "--format", "table"}).output,
            "Id  Name  Fax number  Company  Note  Groups\n1   Åsa   030-1       C        a\\tb  x\\;y;G\n2   Ben   +1 (2)\n");
  EXPECT_THAT(gad({"list", book, "--format", "json"}).output, HasSubstr("\"groups\": [\n   \"x;y\",\n   \"G\"\n  ]"));
  EXPECT_EQ(gad({"group", book, "New", "--create", "--add", "Ben", "1"}).code, 0);
  EXPECT_EQ(gad({"group", book, "G", "--rename", "H", "--remove", "1", "--add", "2"}).code, 0);
  EXPECT_EQ(gad({"group", book, "x;y", "--delete"}).code, 0);
  EXPECT_EQ(gad({"group", book}).output, "H\t1\nNew\t2\n");
  EXPECT_EQ(gad({"group", book, "New"}).output, "1\tÅsa\t030-1\n2\tBen\t+1 (2)\n");
  EXPECT_EQ(gad({"remove", book, "Ben", "2"}).code, 0);
  EXPECT_EQ(gad({"list", book}).output, "1\tÅsa\t030-1\tC\ta\\tb\tNew\n");
}

TEST(Commands, ShareBooksWithTheSqliteShell) {
  Folder const folder;
  std::string const book = folder.book();
  ASSERT_EQ(gad({"add", book, "Åsa", "030-1", "--group", "G"}).code, 0);
  Outcome const shell = run({"sqlite3", "-batch", "-noheader", book,
                             "PRAGMA foreign_keys = ON; PRAGMA integrity_check;"
                             "SELECT i.name, i.number, g.name FROM individuals i JOIN members ON individual_id = i.id"
                             " JOIN groups g ON g.id = group_id;"
                             "INSERT INTO individuals (name, number, note) VALUES ('Ben', '2', 'by hand');"
                             "INSERT INTO groups (name) VALUES ('Shell');"
                             "INSERT INTO members VALUES (2, 2), (2, 1);"});
  EXPECT_EQ(shell.output, "ok\nÅsa|030-1|G\n") << shell.errors;
  EXPECT_EQ(gad({"list", book}).output, "1\tÅsa\t030-1\t\t\tG;Shell\n2\tBen\t2\t\tby hand\tShell\n");
  EXPECT_EQ(gad({"list", book, "--search", "BEN"}).output, "2\tBen\t2\t\tby hand\tShell\n");

  // A book that was made by hand from the documented tables.
  std::string const made = folder / "made.gad";
  ASSERT_EQ(run({"sh", "-c",
                 "{ echo 'PRAGMA application_id = 1195459654; PRAGMA user_version = 1;';"
                 " sqlite3 '" +
                     book + "' .schema | grep -v sqlite_sequence; } | sqlite3 '" + made + "'"})
                .code,
            0);
  EXPECT_EQ(gad({"add", made, "Cleo", "3"}).code, 0);
  EXPECT_EQ(gad({"list", made}).output, "1\tCleo\t3\t\t\t\n");
}

TEST(Commands, ExportIsCompleteOrNotThere) {
  Folder const folder;
  std::string const book = folder.book();
  ASSERT_EQ(gad({"add", book, "Åsa; Öberg", "1", "--note", "a\nb", "--group", "G"}).code, 0);
  ASSERT_EQ(gad({"group", book, "Empty", "--create"}).code, 0);
  Outcome const csv = gad({"export", book, "--to", "csv"});
  EXPECT_EQ(
      csv.output,
      "\"Name\",\"Fax Number\",\"Company\",\"Notes\",\"Categories\"\r\n\"Åsa; Öberg\",\"1\",\"\",\"a\nb\",\"G\"\r\n");
  EXPECT_THAT(csv.errors, HasSubstr("Group \"Empty\" has no members"));
  std::string const target = folder.file("list.vcf", "old");
  EXPECT_EQ(gad({"export", book, target, "--force"}).code, 0);
  EXPECT_EQ(content_of(target), gad({"export", book}).output);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"book.gad", "list.vcf"}));
}

// Our own reader forgives what other programs do not.
TEST(Commands, VcardsAreEscapedAndFoldedAsTheStandardWants) {
  Folder const folder;
  std::string const book = folder.book();
  std::string note = "a,b\nx";
  for (int i = 0; i < 120; ++i) note += "ä";
  ASSERT_EQ(gad({"add", book, "Åsa; Öberg\\", "1", "--note", note, "--group", "G"}).code, 0);
  std::string const cards = gad({"export", book}).output;
  EXPECT_THAT(cards,
              HasSubstr("\r\nFN:Åsa\\; Öberg\\\\\r\nN:Åsa\\; Öberg\\\\;;;;\r\nTEL;TYPE=fax:1\r\nNOTE:a\\,b\\nxä"));
  for (std::size_t start = 0; start < cards.size();) {
    std::size_t const end = cards.find("\r\n", start);
    ASSERT_NE(end, std::string::npos);
    EXPECT_LE(end - start, 75U);
    EXPECT_TRUE(is_utf8(cards.substr(start, end - start)));
    start = end + 2;
  }
}

}  // namespace
}  // namespace fax::tool::testing
