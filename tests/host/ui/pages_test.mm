// The preview beside the dialog's controls: what it shows, and that what it shows is what arrives at the printer.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <future>

#include "../core/small_pdf.h"
#include "dialog_fixture.h"
#include "drag_source.h"

#import "host/controls.h"
#import "toolkit/text.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace fax::host {

using namespace toolkit;

namespace {

class PagesDialog : public Dialog {
 protected:
  static void with_tool(DialogRequest &request) { request.application = FAXPRINT_WRAPPER; }
  static void with_report(DialogRequest &request) {
    with_tool(request);
    request.document = Document::of_bytes(pdf_of({"One", "Two", "Three"}), "Report");
  }
  static void with_three(DialogRequest &request) {
    with_report(request);
    request.further = {Document::of_bytes("typed\f\ntwice\n", "Notes"), Document::of_bytes(pdf_of({"Last"}), "Map")};
  }
  static void with_locked(DialogRequest &request) {
    with_tool(request);
    request.document = Document::of_bytes(locked_pdf_of({"Secret"}), "Locked");
  }

  // Lets the loop run until the control shows the text.
  bool shows(std::string const &name, std::string const &text) {
    for (int round = 0; round < 200 && mapped(name).value != text; ++round) come_round();
    return mapped(name).value == text;
  }

  // A control of the preview by the name of its outlet.
  id control_of_preview(NSString *outlet) { return [[dialog_ valueForKey:@"preview"] valueForKey:outlet]; }

  std::string text_in_place_of_page() { return utf8([control_of_preview(@"pageView") valueForKey:@"text"]); }

  void pick(NSString *outlet, NSInteger item) {
    NSPopUpButton *popUp = control_of_preview(outlet);
    [popUp selectItemAtIndex:item];
    [NSApp sendAction:[popUp action] to:[popUp target] from:popUp];
  }

  void choose_pages(NSString *range) {
    NSTextField *field = control_of_preview(@"rangeField");
    [field setStringValue:range];
    NSNotification *note = [NSNotification notificationWithName:@"typed" object:field];
    [(id)[field delegate] controlTextDidChange:note];
    [(id)[field delegate] controlTextDidEndEditing:note];
  }

  std::string summary_of(std::string const &label) {
    choose(@"Options", @"Summary");
    for (auto const &control : map().controls) {
      for (auto const &row : control.rows) {
        if (row.cells.at(0) == label) return row.cells.at(1);
      }
    }
    return "";
  }

  // The words of the document that the printer got.
  std::vector<std::string> printed() {
    auto const before = service_->jobs();
    [dialog_ print:nil];
    auto const after = service_->jobs();
    if (after.size() == before.size()) return {};
    auto const options = service_->options_of(after.back());
    EXPECT_TRUE(options);
    EXPECT_THAT(options.value_or("page-ranges"), testing::Not(HasSubstr("page-ranges")));
    return words_in(service_->document_of(after.back()));
  }
};

TEST_F(PagesDialog, TurnsPagesWithinTheDocuments) {
  open("Recording", "fax", {}, with_three);
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 6"));
  EXPECT_EQ(mapped("documentPopUp").items, (std::vector<std::string>{"1. Report", "2. Notes", "3. Map"}));
  EXPECT_FALSE(mapped("previousPageButton").enabled);
  [control_of_preview(@"nextPageButton") performClick:nil];
  EXPECT_TRUE(shows("pageLabel", "Page 2 of 6"));
  pick(@"documentPopUp", 2);
  EXPECT_TRUE(shows("pageLabel", "Page 6 of 6"));
  EXPECT_FALSE(mapped("nextPageButton").enabled);
  for (int round = 0; round < 100 && ![control_of_preview(@"pageView") showsPicture]; ++round) come_round();
  EXPECT_TRUE([control_of_preview(@"pageView") showsPicture]);
}

TEST_F(PagesDialog, WhatWasChosenIsSummedUpAndArrives) {
  CommandLine line;
  line.copies = 2;
  open("Recording", "fax", line, with_three);
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 6"));
  choose_pages(@"2-4,6");
  EXPECT_TRUE(shows("pageLabel", "Page 2 of 6"));
  EXPECT_FALSE([[control_of_preview(@"pageView") valueForKey:@"left"] boolValue]);
  [control_of_preview(@"previousPageButton") performClick:nil];
  EXPECT_TRUE([[control_of_preview(@"pageView") valueForKey:@"left"] boolValue]);
  EXPECT_EQ(summary_of("Pages"), "4 of 6 (2-4,6)");
  EXPECT_EQ(summary_of("Document"), "Report and 2 more");
  EXPECT_EQ(summary_of("Copies"), "2");
  EXPECT_THAT(printed(), ElementsAre("Two", "Three", "typed", "Last"));
}

TEST_F(PagesDialog, APageThatThereIsNotIsRefusedAndTheNextTryPrints) {
  CommandLine line;
  line.pages = "2-9";
  open("Recording", "fax", line, with_report);
  EXPECT_THAT(calls_of([&] { EXPECT_TRUE(printed().empty()); }), ElementsAre("save"));
  EXPECT_THAT(utf8([dialog_ status]), HasSubstr("no page 9. Choose from pages 1 to 3"));
  choose_pages(@"3");
  EXPECT_THAT(printed(), ElementsAre("Three"));
}

TEST_F(PagesDialog, ALockedDocumentIsSaidAndSentAsItIs) {
  open("Recording", "fax", {}, with_locked);
  std::string const said = "locked by a password";
  for (int round = 0; round < 100 && text_in_place_of_page().find(said) == std::string::npos; ++round) come_round();
  EXPECT_THAT(text_in_place_of_page(), HasSubstr(said));
  choose_pages(@"1");
  EXPECT_TRUE(printed().empty());
  EXPECT_THAT(told(), ElementsAre(HasSubstr("locked by a password")));
  pick(@"rangePopUp", 0);
  auto const before = service_->jobs().size();
  printed();
  EXPECT_EQ(service_->jobs().size(), before + 1);
}

TEST_F(PagesDialog, DocumentsAreAddedAndTakenOut) {
  open("Recording", "fax", {}, with_report);
  std::string const path = testing::TempDir() + "/added-to-the-job.pdf";
  std::ofstream(path) << pdf_of({"Added"});
  [[dialog_ valueForKey:@"preview"] addPaths:[NSArray arrayWithObjects:ns(path), @"/nowhere/a.pdf", nil]];
  std::filesystem::remove(path);
  EXPECT_THAT(told(), ElementsAre(HasSubstr("/nowhere/a.pdf")));
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 4"));
  EXPECT_EQ(utf8([[dialog_ window] title]), "Print \"Report, added-to-the-job\"");
  [control_of_preview(@"removeDocumentButton") performClick:nil];
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 1"));
  EXPECT_THAT(printed(), ElementsAre("Added"));
}

// By another program: here a thread with a connection of its own.
TEST_F(PagesDialog, TakesDroppedFiles) {
  open("Recording", "fax", {}, with_report);
  std::string const path = testing::TempDir() + "/dropped 100% on it.pdf";
  std::ofstream(path) << pdf_of({"Dropped"});
  std::string const address = "file://" + testing::TempDir() + "/dropped%20100%25%20on%20it.pdf\r\n";
  unsigned long const window = window_device([dialog_ window]);
  auto const drag = [&](std::string const &addresses, Offer offer) {
    auto result = std::async(std::launch::async, drag_onto, window, addresses, offer);
    while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) come_round();
    return result.get();
  };
  for (int round = 0; round < 10; ++round) come_round();
  DragResult const one = drag(address, Offer::files);
  EXPECT_TRUE(one.accepted && one.finished);
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 4"));
  EXPECT_TRUE(told().empty());
  EXPECT_TRUE(drag("# two\r\n" + address + "https://example.org/x.pdf\r\nfile:///nowhere/b.pdf\r\n",
                   Offer::files_among_many).finished);
  ASSERT_TRUE(shows("pageLabel", "Page 1 of 5"));
  EXPECT_THAT(told(), ElementsAre(HasSubstr("/nowhere/b.pdf"), HasSubstr("https://example.org/x.pdf")));
  EXPECT_FALSE(drag("text", Offer::text_only).accepted);
  std::filesystem::remove(path);
  EXPECT_THAT(printed(), ElementsAre("One", "Two", "Three", "Dropped", "Dropped"));
}

TEST_F(PagesDialog, RemembersPrinterOptionsAndSizeAndNothingOfTheJob) {
  open("Recording", "fax", {}, with_report);
  EXPECT_EQ([dialog_ memory].printer, "");
  choose(@"Options", @"Printer Features");
  choose(@"Two-Sided", @"Long Edge");
  printed();
  Memory const memory = [dialog_ memory];
  EXPECT_EQ(memory.printer, "fax");
  EXPECT_THAT(memory.options.at("fax"), testing::Contains(Setting{"Duplex", "DuplexNoTumble"}));
  for (auto const &[key, value] : memory.options.at("fax")) EXPECT_THAT(key, testing::Not(HasSubstr("norvalt"))) << key;
  ASSERT_TRUE(memory.window);
  EXPECT_EQ(memory.window->width, static_cast<int>([[[dialog_ window] contentView] bounds].size.width));
}

}  // namespace
}  // namespace fax::host
