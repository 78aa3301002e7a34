// Documents of a job and the program that looks into them: what comes out is what goes to the printer.
#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <unistd.h>

#include "host/core/background.h"
#include "host/core/print_plan.h"
#include "small_pdf.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace fax::host {
namespace {

PageTool const kTool{FAXPAGES};
Server const kNobody{"/nowhere/cups.sock"};
Stop const kGoOn = [] { return false; };

Document pdf(std::vector<std::string> const &words, std::string const &title) {
  return Document::of_bytes(pdf_of(words), title);
}

std::string bytes_of(Document const &document) {
  std::string bytes(document.size(), '\0');
  EXPECT_EQ(document.read(0, bytes).value(), bytes.size());
  return bytes;
}

struct PlanCase {
  char const *name;
  std::vector<std::vector<std::string>> documents;  // words of their pages
  char const *range;
  std::vector<std::string> sent;
};

class Plan : public testing::TestWithParam<PlanCase> {};

TEST_P(Plan, SendsTheChosenPagesInTheirOrder) {
  std::vector<Document> documents;
  for (auto const &words : GetParam().documents) documents.push_back(pdf(words, "D"));
  PrintPlan plan(documents);
  plan.use_range(GetParam().range);
  auto const sent = plan.prepare(kTool, kNobody, kGoOn);
  ASSERT_TRUE(sent) << sent.failure().text();
  EXPECT_EQ(words_in(bytes_of(sent.value())), GetParam().sent);
  EXPECT_EQ(sent.value().format(), "application/pdf");
}

INSTANTIATE_TEST_SUITE_P(
    Table, Plan,
    testing::Values(PlanCase{"whole", {{"A", "B", "C"}}, "", {"A", "B", "C"}},
                    PlanCase{"cut", {{"A", "B", "C", "D", "E"}}, "1-2,5", {"A", "B", "E"}},
                    PlanCase{"joined", {{"A", "B"}, {"C"}, {"D"}}, "", {"A", "B", "C", "D"}},
                    PlanCase{"joined_and_cut", {{"A", "B"}, {"C"}, {"D", "E"}}, "2,4-", {"B", "D", "E"}},
                    PlanCase{"without_the_first", {{"A"}, {"B", "C"}}, "2-", {"B", "C"}}),
    [](auto const &info) { return std::string(info.param.name); });

TEST(PlanOfOne, WholePdfGoesOutUnread) {
  PrintPlan plan({Document::of_bytes("%PDF-1.4\nbroken", "B")});
  EXPECT_EQ(bytes_of(plan.prepare(PageTool{"/nowhere"}, kNobody, kGoOn).value()), "%PDF-1.4\nbroken");
}

struct TroubleCase {
  char const *name;
  std::string bytes;
  char const *says;
};

class Trouble : public testing::TestWithParam<TroubleCase> {};

// The document may still be printed whole and alone; its pages cannot be chosen, and it joins no other.
TEST_P(Trouble, IsSaidAndTheWholeDocumentGoesOutAsItIs) {
  auto const &[name, bytes, says] = GetParam();
  Document const bad = Document::of_bytes(bytes, "Bad");
  PrintPlan alone({bad});
  alone.take(0, read_pages(kTool, bad, kNobody, {}, kGoOn));
  ASSERT_TRUE(alone.problem());
  EXPECT_THAT(alone.problem()->what, HasSubstr(says));
  EXPECT_FALSE(alone.pages());
  EXPECT_EQ(bytes_of(alone.prepare(kTool, kNobody, kGoOn).value()), bytes);
  alone.use_range("1");
  EXPECT_THAT(alone.prepare(kTool, kNobody, kGoOn).failure().advice, HasSubstr("all pages"));
  PrintPlan two({pdf({"A"}, "A"), bad});
  EXPECT_THAT(two.prepare(kTool, kNobody, kGoOn).failure().advice, HasSubstr("by itself"));
}

INSTANTIATE_TEST_SUITE_P(Table, Trouble,
                         testing::Values(TroubleCase{"locked", locked_pdf_of({"A", "B"}), "locked by a password"},
                                         TroubleCase{"broken", "%PDF-1.4\nnonsense", "damaged"},
                                         TroubleCase{"unknown_kind", std::string("\0\1\2\3", 4), "kind is not known"}),
                         [](auto const &info) { return std::string(info.param.name); });

TEST(PlanPages, AreFoundOverAllDocuments) {
  PrintPlan plan({pdf({"A", "B"}, "One"), pdf({"C"}, "Two")});
  EXPECT_EQ(plan.unread(), 0u);
  EXPECT_FALSE(plan.chosen());
  plan.take(0, {pdf({"A", "B"}, "One"), 2, {}});
  EXPECT_EQ(plan.spot(2), (PageSpot{0, 2}));
  EXPECT_FALSE(plan.spot(3) || plan.spot(0));
  plan.take(1, {pdf({"C"}, "Two"), 1, {}});
  EXPECT_EQ(plan.pages(), 3);
  EXPECT_EQ(plan.spot(3), (PageSpot{1, 1}));
  EXPECT_EQ(plan.first_page_of(1), 3);
  EXPECT_EQ(plan.title(), "One, Two");
  plan.add(pdf({"D"}, "Three"));
  EXPECT_EQ(plan.title(), "One and 2 more");
  plan.remove(0);
  plan.remove(0);
  plan.remove(0);
  std::string const long_title(200, 'x');
  EXPECT_EQ(PrintPlan({pdf({"A"}, long_title), pdf({"B"}, long_title)}).title(), long_title);
  EXPECT_EQ(plan.title(), "Three");
}

TEST(Conversion, TextsAndPostScriptBecomePagesThatCanBeChosen) {
  Document const text = Document::of_bytes("first\fsecond\fthird\n", "Text");
  PrintPlan plan({text, Document::of_bytes("%!PS\n/Helvetica findfont 40 scalefont setfont 100 500 moveto (drawn) show "
                                           "showpage\n", "Drawing")});
  plan.use_range("2-4");
  auto const sent = plan.prepare(kTool, kNobody, kGoOn);
  ASSERT_TRUE(sent) << sent.failure().text();
  EXPECT_THAT(words_in(bytes_of(sent.value())), ElementsAre("second", "third", "drawn"));
  EXPECT_TRUE(plan.use_layout({"", {{"lpi", "3"}}}));
  EXPECT_EQ(plan.unread(), 0u);
}

TEST(Picture, FitsAndShowsThePageAskedFor) {
  Document const document = pdf({"", "MMMM"}, "P");
  auto const blank = kTool.picture(document, 1, 200, 200, kGoOn).value();
  auto const page = kTool.picture(document, 2, 200, 200, kGoOn).value();
  EXPECT_EQ(page.height, 200);
  EXPECT_NEAR(page.width, 141, 1);
  EXPECT_EQ(page.pixels.size(), static_cast<std::size_t>(page.width) * 200 * 3);
  EXPECT_EQ(blank.pixels.find_first_not_of('\xff'), std::string::npos);
  EXPECT_NE(page.pixels.find_first_not_of('\xff'), std::string::npos);
  EXPECT_FALSE(kTool.picture(document, 3, 200, 200, kGoOn));
  EXPECT_EQ(PageTool{"/nowhere"}.count(document, kGoOn).failure().advice, "Install the program again.");
}

TEST(ChildProgram, EndsAtItsLimitAtAStopAndWhenItSaysTooMuch) {
  auto const sleeper = [](std::chrono::seconds limit) { return Child{{"/bin/sleep", "60"}, {}, {}, -1, limit}; };
  EXPECT_EQ(run_child(sleeper(std::chrono::seconds{0}), kGoOn).how, ChildEnd::How::late);
  EXPECT_EQ(run_child(sleeper(std::chrono::seconds{50}), [] { return true; }).how, ChildEnd::How::stopped);
  Child talker{{"/bin/sh", "-c", "while :; do echo word; done"}};
  talker.most_said = 1000;
  EXPECT_EQ(run_child(talker, kGoOn).how, ChildEnd::How::crashed);
  EXPECT_EQ(run_child({{"/bin/sh", "-c", "kill -SEGV $$"}}, kGoOn).how, ChildEnd::How::crashed);
  EXPECT_EQ(run_child({{"/bin/sh", "-c", "printf \"$MINE\"; exit 3"}, {"MINE=yes"}}, kGoOn).code, 3);
  EXPECT_EQ(run_child({{"/bin/sh", "-c", "printf \"$MINE\""}, {"MINE=yes"}}, kGoOn).said, "yes");
}

TEST(BackgroundWork, TellsItsEndAndIsAskedToStop) {
  std::atomic<bool> asked{false};
  Descriptor ended;
  {
    Background work([&](Stop const &stop) {
      while (!stop()) std::this_thread::yield();
      asked = true;
    });
    ended = work.take_descriptor();
  }
  char byte = 0;
  EXPECT_EQ(read(ended.get(), &byte, 1), 0);
  EXPECT_TRUE(asked);
}

}  // namespace
}  // namespace fax::host
