// Lists that are unusual, broken or hostile: what is taken, what is reported, and that nothing else changes.

#include "tool.h"

#include <gmock/gmock.h>

namespace fax::tool::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string repeated(std::string const &text, std::size_t times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

std::string card(std::string const &lines, std::string const &version = "3.0") {
  return "BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "END:VCARD\r\n";
}

struct Row {
  char const *about;
  std::string list;
  std::vector<std::string> options;
  int code;
  std::string entries;  // gad list
  std::string report;   // part of standard error
};

TEST(Import, ReadsWhatProgramsAndPeopleWrite) {
  std::vector<Row> const rows = {
      {"line ends CR", "Name,Fax\rAnna,1\rBen,2\r", {}, 0, "1\tAnna\t1\t\t\t\n2\tBen\t2\t\t\t\n", ""},
      {"blank lines and spaces", "\n\n Name , Fax \n\n  Anna Berg  , 1 \n\n", {}, 0, "1\tAnna Berg\t1\t\t\t\n", ""},
      {"short and long rows",
       "Name,Company,Fax\nAnna\nBen,,2,3,4\n",
       {},
       3,
       "1\tBen\t2\t\t\t\n",
       "2: skipped: \"Anna\": No number."},
      {"line numbers after quoted line breaks",
       "Name,Fax,Notes\n\"A\n\n\nB\",1,\"\nx\"\nBen,,\n",
       {},
       3,
       "1\tA\\n\\n\\nB\t1\t\t\\nx\t\n",
       "list:7: skipped: \"Ben\""},
      {"a semicolon in quotes is no delimiter",
       "Name,Fax,Notes\n\"A;B\",1,\"x;y;z\"\n",
       {},
       0,
       "1\tA;B\t1\t\tx;y;z\t\n",
       ""},
      {"line for spreadsheets", "sep=|\nName|Fax\nA,B|1\n", {}, 0, "1\tA,B\t1\t\t\t\n", ""},
      {"delimiter by hand", "Name^Fax\nA,B^1\n", {"--delimiter", "^"}, 0, "1\tA,B\t1\t\t\t\n", ""},
      {"columns by hand",
       "Kunde,Durchwahl,Telefon\nAnna,1,2\n",
       {"--map", "name=kunde", "--map", "number=2"},
       0,
       "1\tAnna\t1\t\t\t\n",
       ""},
      {"no header",
       "Anna,1\nBen,2\n",
       {"--no-header", "--map", "name=1", "--map", "number=2"},
       0,
       "1\tAnna\t1\t\t\t\n2\tBen\t2\t\t\t\n",
       ""},
      {"no known column",
       "Kunde,Durchwahl\nAnna,1\n",
       {},
       1,
       "",
       "--map name=COLUMN'. The columns are \"Kunde\", \"Durchwahl\""},
      {"a column that is not there", "Name,Fax\nAnna,1\n", {"--map", "number=Faks"}, 2, "", "no column \"Faks\""},
      {"only fax numbers",
       "Name,Fax,Phone\nAnna,,1\nBen,2,3\n",
       {"--fax-only"},
       3,
       "1\tBen\t2\t\t\t\n",
       "\"Anna\": No fax number."},
      {"all into one group",
       "Name,Fax,Category\nAnna,1,\"B;A \"\n",
       {"--group", "A "},
       0,
       "1\tAnna\t1\t\t\tB;A \n",
       ""},
      {"the mark of groups as a number", "Name,Fax\nAnna,Group\n", {}, 3, "", "mark of groups"},
      {"too long for the record, not cut",
       "Name,Fax\n" + repeated("ä", 65) + ",1\n" + repeated("ä", 64) + ",2\nC," + repeated("1", 51) + "\n",
       {},
       3,
       "1\t" + repeated("ä", 64) + "\t2\t\t\t\n",
       "2: skipped: \"" + repeated("ä", 60) + "...\": The name is too long: 65 characters of 64."},
      {"too long in UTF-16", "Name,Fax\n" + repeated("😀", 33) + ",1\n", {}, 3, "", "66 characters of 64"},
      {"Latin-1 by name", "Name,Fax\nJ\xF6rg,1\n", {"--encoding", "latin1"}, 0, "1\tJörg\t1\t\t\t\n", ""},
      {"UTF-16 without a mark, by name",
       std::string("N\0a\0m\0e\0,\0F\0a\0x\0\n\0A\0,\0"
                   "1\0",
                   24),
       {"--encoding", "utf-16le"},
       0,
       "1\tA\t1\t\t\t\n",
       ""},
      {"half-width katakana", "Name,Fax\n\xC0\xB6\xCA\xBC,1\n", {}, 0, "1\tﾀｶﾊｼ\t1\t\t\t\n", "Shift JIS"},
      {"quotation marks that could be Shift JIS",
       "Name,Fax\nL\x92Or\xE9"
       "al \x96 \x93"
       "A\x94,1\n",
       {},
       0,
       "1\tL’Oréal – “A”\t1\t\t\t\n",
       "Windows-1252"},
      {"accents that could be Shift JIS",
       "Name,Fax\nRen\xE9"
       "e L\xE9v\xEAque,1\n",
       {},
       0,
       "1\tRenée Lévêque\t1\t\t\t\n",
       "Windows-1252"},
      {"control characters do not reach the terminal",
       "Name,Fax\n\x1B[31mred\xE2\x80\xAE,\n",
       {},
       3,
       "",
       "\"\\x1B[31mred\\xE2\\x80\\xAE\": No number."},
      {"vCard without FN", card("N:Berg;Anna;;Dr.;\r\nTEL;FAX:1\r\n"), {}, 0, "1\tDr. Anna Berg\t1\t\t\t\n", ""},
      {"preferred fax number",
       card("FN:A\r\nTEL;TYPE=FAX,WORK:1\r\nTEL;TYPE=FAX;TYPE=HOME;TYPE=pref:2\r\nTEL;TYPE=PREF:3\r\n"),
       {},
       0,
       "1\tA\t2\t\t\t\n",
       "\"2\" is taken, not \"1\""},
      {"a URI's escapes",
       card("FN:A\r\nTEL;VALUE=uri;TYPE=fax:tel:%2A31%2;x=1\r\n", "4.0"),
       {},
       0,
       "1\tA\t*31%2\t\t\t\n",
       ""},
      {"lower case and tabs",
       "begin:vcard\nversion:3.0\nfn:An\n\tna\ntel;type=fax:1\nend:vcard\n",
       {},
       0,
       "1\tAnna\t1\t\t\t\n",
       ""},
      {"a byte order mark", "\xEF\xBB\xBF" + card("FN:A\r\nTEL:1\r\n"), {}, 0, "1\tA\t1\t\t\t\n", ""},
      {"a null in a card",
       card(std::string("FN:A\0B\r\nTEL:1\r\n", 15)) + card("FN:C\r\nTEL:2\r\n"),
       {},
       3,
       "1\tC\t2\t\t\t\n",
       "list:1: skipped: A card holds null"},
      {"a card of a million parts",
       card("N:" + std::string(1 << 20, ';') + "\r\nTEL:1\r\n"),
       {},
       3,
       "",
       "more parts than any card"},
      {"quotes and equals signs that never end",
       card("FN;X=\"a:b\r\nTEL;=;;:\r\nTEL;TYPE=fax:1\r\nNOTE;ENCODING=QUOTED-PRINTABLE:a=\r\n"),
       {},
       3,
       "",
       "A contact without a name: The name is empty."},
  };
  for (Row const &row : rows) {
    SCOPED_TRACE(row.about);
    Folder const folder;
    std::string const book = folder.book();
    std::vector<std::string> command{"import", book, folder.file("list", row.list)};
    command.insert(command.end(), row.options.begin(), row.options.end());
    Outcome const outcome = gad(command);
    EXPECT_EQ(outcome.code, row.code) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(row.report));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("\x1B")));
    EXPECT_EQ(gad({"list", book}).output, row.entries);
  }
}

TEST(Import, OfWhatIsNoListChangesNothing) {
  struct BadList {
    std::string list, report;
    std::vector<std::string> options;
  };
  std::string const good = "Name,Fax\nAnna,1\n";
  std::vector<BadList> const lists = {
      {good + "\"Ben,2\nC,3\n", "Line 3: Quotes open and never close", {}},
      {card("FN:A\r\nTEL:1\r\n") + "BEGIN:VCARD\r\nFN:B\r\nTEL:2\r\n", "Line 6: This card has no END:VCARD", {}},
      {"", "the file is empty", {}},
      {"\n\n", "the file is empty", {}},
      {content_of(GAD), "no text file", {}},
      {std::string(100000, '\0'), "no text file", {}},
      {std::string(4 << 20, 'x'), "No column is known", {}},
      {good + std::string(4 << 20, ','), "Line 3: There are more than 10000 cells", {}},
      {card("FN:A\r\nNOTE:" + std::string(17 << 20, 'x') + "\r\nTEL:1\r\n"), "larger than 16 MiB", {}},
      {good + "J\xF6rg,2\n", "Line 3 is not valid utf-8", {"--encoding", "utf-8"}},
      {good, "encoding \"klingon\" is not known", {"--encoding", "klingon"}},
      {good, "no vCard in it", {"--from", "vcard"}},
  };
  Folder const folder;
  std::string const book = folder.book();
  ASSERT_EQ(gad({"add", book, "Old", "9"}).code, 0);
  std::string const before = content_of(book);
  for (BadList const &bad : lists) {
    SCOPED_TRACE(bad.report);
    std::vector<std::string> command{"import", book, folder.file("list", bad.list)};
    command.insert(command.end(), bad.options.begin(), bad.options.end());
    Outcome const outcome = gad(command);
    EXPECT_THAT(outcome.code, ::testing::AnyOf(1, 2));
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(bad.report), HasSubstr("Nothing was imported.")));
    EXPECT_EQ(content_of(book), before);
  }
}

TEST(Import, DryRunReportsTheSameAndKeepsNothing) {
  Folder const folder;
  std::string const book = folder.book(), list = folder.file("list", "Name,Fax,Group\nAnna,1,G\nAnna,1,H\nBen,,\n");
  std::string const before = content_of(book);
  Outcome const dry = gad({"import", "--dry-run", book, list});
  EXPECT_EQ(dry.output, "Would add 1, already there 1, skipped 1, new groups 2\n");
  EXPECT_EQ(content_of(book), before);
  Outcome const real = gad({"import", book, "-"}, content_of(list));
  EXPECT_EQ(real.output, "Added 1, already there 1, skipped 1, new groups 2\n");
  EXPECT_EQ(real.code, dry.code);
  EXPECT_EQ(gad({"list", book}).output, "1\tAnna\t1\t\t\tG;H\n");
  // Again: nothing is new, and that is no failure.
  EXPECT_EQ(gad({"import", book, folder.file("again", "Name,Fax\nAnna,1\n")}).code, 0);
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"again", "book.gad", "list"}));
}

TEST(Import, OfManyIsShortInItsReport) {
  Folder const folder;
  std::string list = "Name,Fax\n";
  for (int i = 0; i < 30000; ++i) list += "Name " + std::to_string(i) + ",+" + std::to_string(i) + "\n";
  std::string const book = folder.book();
  Outcome const outcome = gad({"import", book, folder.file("list", list)});
  EXPECT_EQ(outcome.output, "Added 30000, already there 0, skipped 0, new groups 0\n");
  EXPECT_THAT(outcome.errors, HasSubstr(": 29980 more notes. --verbose shows them.\n"));
  EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 21);
  EXPECT_THAT(gad({"import", "-q", book, folder / "list"}).errors, IsEmpty());
}

}  // namespace
}  // namespace fax::tool::testing
