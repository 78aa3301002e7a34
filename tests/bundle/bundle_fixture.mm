#import "bundle_fixture.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

std::vector<std::string> the_alerts;
std::vector<int> the_answers;
std::function<void()> the_script;
std::function<void()> the_modal_work;

// Bodies that stand in for the toolkit's while a test runs.
NSInteger (*own_run_modal_for_window)(NSApplication *, SEL, NSWindow *);

NSInteger run_alert(NSAlert *alert, SEL) {
  NSString *informative = [alert informativeText];
  std::string shown = test::utf8([alert messageText]) + "|" + (informative != nil ? test::utf8(informative) : "");
  NSEnumerator *buttons = [[alert buttons] objectEnumerator];
  while (NSButton *button = [buttons nextObject]) shown += "|" + test::utf8([button title]);
  the_alerts.push_back(shown);
  int button = 0;
  if (!the_answers.empty()) {
    button = the_answers.front();
    the_answers.erase(the_answers.begin());
  }
  return NSAlertFirstButtonReturn + button;
}

NSInteger run_window(NSApplication *application, SEL command, NSWindow *window) {
  if (the_script) {
    [window makeKeyAndOrderFront:nil];
    auto const script = the_script;  // it may set the next one
    script();
    return NSRunStoppedResponse;
  }
  return own_run_modal_for_window(application, command, window);
}

void stand_in() {
  static bool done = false;
  if (done) return;
  done = true;
  test::replace([NSAlert class], @selector(runModal), &run_alert);
  own_run_modal_for_window = test::replace([NSApplication class], @selector(runModalForWindow:), &run_window);
}

char const kPpdHead[] = R"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: UTF-8
*PCFileName: "TEST.PPD"
*Manufacturer: "Norvalt"
*Product: "(Test)"
*ModelName: "Norvalt Test"
*ShortNickName: "Norvalt Test"
*NickName: "Norvalt Test"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: False
*DefaultColorSpace: Gray
*FileSystem: False
*Throughput: "1"
*TTRasterizer: Type42
)ppd";

char const kPpdOptions[] = R"(*OpenUI *QXFaxImageQuality/Image Quality: PickOne
*DefaultQXFaxImageQuality: Standard
*QXFaxImageQuality Standard/Standard: ""
*QXFaxImageQuality Fine/Fine: ""
*CloseUI: *QXFaxImageQuality
*OpenUI *QXFaxTransmissionReport/Transmission Report: PickOne
*DefaultQXFaxTransmissionReport: Off
*QXFaxTransmissionReport Off/Off: ""
*QXFaxTransmissionReport On/On: ""
*CloseUI: *QXFaxTransmissionReport
*OpenUI *QXFaxCoverPageMode/Cover Page: PickOne
*DefaultQXFaxCoverPageMode: None
*QXFaxCoverPageMode None/No Cover Page: ""
*QXFaxCoverPageMode Standard/Standard Page: ""
*CloseUI: *QXFaxCoverPageMode
*OpenUI *QXFaxSenderMode/Sender: PickOne
*DefaultQXFaxSenderMode: Printer
*QXFaxSenderMode Printer/Name of the Printer: ""
*QXFaxSenderMode EnterName/Enter a Name: ""
*CloseUI: *QXFaxSenderMode
)";

}  // namespace

@interface ModalWaker : NSObject
@end

@implementation ModalWaker
+ (void)wake:(NSNotification *)note {
  char byte;
  if (read([[note object] fileDescriptor], &byte, 1) != 1) std::abort();
  auto const work = the_modal_work;
  the_modal_work = nullptr;
  if (work) work();
  // The loop looks at its state again only after an event.
  [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0]
           atStart:NO];
}
@end

@implementation TestHost

- (id)init {
  self = [super init];
  if (self == nil) return nil;
  PMCreatePrintSettings(&settings);
  PMCreateSession(&session);
  hasSettings = hasSession = accepts = YES;
  changes = [[NSMutableArray alloc] init];
  return self;
}

- (void)dealloc {
  PMRelease(settings);
  PMRelease(session);
  [changes release];
  [super dealloc];
}

- (PMPrintSession)printSession {
  return hasSession ? session : NULL;
}

- (PMPrintSettings)printSettings {
  return hasSettings ? settings : NULL;
}

- (PMPrinter)PMPrinter {
  return reinterpret_cast<PMPrinter>(self);  // never looked into: the device URI comes from the fakes
}

- (ppd_file_t *)ppdFile {
  return ppd;
}

- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  [changes addObject:[NSString stringWithFormat:@"%@=%@", keyword, choice]];
  if (accepts) ppdMarkOption(ppd, [keyword UTF8String], [choice UTF8String]);
  return accepts;
}

@end

namespace test {

std::string &bundle_path() {
  static std::string path = BUNDLE_PATH;
  return path;
}

NSBundle *bundle() {
  static NSBundle *the_bundle = nil;
  if (the_bundle == nil) {
    the_bundle = [[NSBundle bundleWithPath:ns(bundle_path())] retain];
    if (![the_bundle load]) std::abort();
  }
  return the_bundle;
}

Class class_named(char const *short_name) {
  bundle();
  return NSClassFromString(
      [NSString stringWithFormat:@"com_norvalt_tk_o_pde_vexolinddirectfax_%s", short_name]);
}

Ppd::Ppd(std::string const &more, std::string const &group_text) {
  FILE *const file = std::tmpfile();
  std::string text = kPpdHead + more;
  if (!group_text.empty()) text += "*OpenGroup: QXFaxSettings/" + group_text + "\n";
  text += kPpdOptions;
  if (!group_text.empty()) text += "*CloseGroup: QXFaxSettings\n";
  std::fwrite(text.data(), 1, text.size(), file);
  std::rewind(file);
  file_ = ppdOpen(file);
  std::fclose(file);
  if (file_ == nullptr) std::abort();
  ppdMarkDefaults(file_);
}

BundleTest::BundleTest() : pool_([NSAutoreleasePool new]) {
  stand_in();
  bundle();
  fakes() = {};
  the_alerts.clear();
  the_answers.clear();
  the_script = nullptr;
  host_ = [[TestHost alloc] init];
  host_->ppd = ppd_.get();
}

BundleTest::~BundleTest() {
  [host_ release];
  [pool_ release];
}

id BundleTest::panel() {
  id factory = [[[[bundle() principalClass] alloc] init] autorelease];
  [factory initWithBundle:bundle()];
  id panel = [[factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host_] objectAtIndex:0];
  [panel panelView];
  [panel restoreValuesAndReturnError:NULL];
  return panel;
}

std::vector<std::string> &BundleTest::alerts() { return the_alerts; }
void BundleTest::answer(std::vector<int> const &buttons) { the_answers = buttons; }
void BundleTest::in_modal_session(std::function<void()> const &script) { the_script = script; }

void when_modal(std::function<void()> const &work) {
  the_modal_work = work;
  static NSFileHandle *reader = nil;
  static int writer = -1;
  if (reader == nil) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    writer = ends[1];
    reader = [[NSFileHandle alloc] initWithFileDescriptor:ends[0] closeOnDealloc:NO];
    [[NSNotificationCenter defaultCenter] addObserver:[ModalWaker class]
                                             selector:@selector(wake:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:reader];
  }
  char byte = 0;
  if (write(writer, &byte, 1) != 1) std::abort();
  [reader waitForDataInBackgroundAndNotifyForModes:[NSArray arrayWithObjects:NSModalPanelRunLoopMode, nil]];
}

}  // namespace test
