// Every text of the print dialog's windows can be read in the language of the environment. One program speaks one
// language, so the test runs once for each.
#include "dialog_fixture.h"
#include "texts/texts.h"

#import "fitting.h"
#import "host/HostHelpWindow.h"
#import "host/HostStatusWindow.h"
#import "host/theme/FaxTheme.h"

namespace fax::host {
namespace {

class HostFitting : public Dialog {
 protected:
  static void SetUpTestSuite() {
    speak(catalogue_folders());
    theme::start_application(theme::Choice::light);
    Dialog::SetUpTestSuite();
    if (service_) service_->add_queue("sample", SAMPLE_PPD);
  }

  static void expect_fits(NSWindow *window) {
    come_round();
    for (auto const &fault : test::fitting_report(window)) ADD_FAILURE() << fault;
  }
  static void expect_fits_when_smallest(NSWindow *window) {
    NSRect frame = [window frame];
    frame.size = [window minSize];
    [window setFrame:frame display:YES];
    expect_fits(window);
  }
};

TEST_F(HostFitting, TheDialogWithEveryPanel) {
  open(FAX_EXTENSION, "sample");
  NSWindow *window = [dialog_ window];
  NSPopUpButton *panels = [[dialog_ valueForKey:@"_window"] valueForKey:@"panelPopUp"];
  ASSERT_GE([panels numberOfItems], 3);
  for (NSInteger at = 0; at < [panels numberOfItems]; ++at) {
    [panels selectItemAtIndex:at];
    [NSApp sendAction:[panels action] to:[panels target] from:panels];
    SCOPED_TRACE([[panels titleOfSelectedItem] UTF8String]);
    expect_fits(window);
    expect_fits_when_smallest(window);
  }
}

TEST_F(HostFitting, TheStatusOfAJob) {
  JobRequest const request{"sample", "Report", Document::of_bytes("%PDF-1.4\nfax", "Report"), 1,
                           {{"job-hold-until", "indefinite"}}, {}, {}, {}};
  auto const number = submit(service_->server(), request, {});
  ASSERT_TRUE(number) << number.failure().text();
  SubmittedJob const job{number.value(), request};
  HostStatusWindow *status = [[[HostStatusWindow alloc] initWithServer:service_->server() job:job owner:nil] autorelease];
  [status show];
  expect_fits([status window]);
}

TEST_F(HostFitting, TheHelp) {
  HostHelpWindow *help = [[[HostHelpWindow alloc] init] autorelease];
  ASSERT_TRUE([help showPage:@FAX_EXTENSION "/Resources/English.lproj/DirectFaxHelp/FaxSettings.htm" anchor:nil]);
  expect_fits([help panel]);
  [help close];
}

}  // namespace
}  // namespace fax::host
