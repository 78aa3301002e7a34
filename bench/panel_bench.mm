#import "bench/panel_bench.h"

#include <PrintCore/PrintCore.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 201;
constexpr int kDestinations = 30;
std::string the_uri;

}  // namespace

// Stands in front of the platform's own: there is no printer.
OSStatus PMPrinterCopyDeviceURI(PMPrinter, CFURLRef *uri) {
  CFStringRef const text = CFStringCreateWithCString(kCFAllocatorDefault, the_uri.c_str(), kCFStringEncodingUTF8);
  *uri = CFURLCreateWithString(kCFAllocatorDefault, text, nullptr);
  CFRelease(text);
  return noErr;
}

// What is sent to the bundle's objects.
@interface NSObject (PanelBench)
- (BOOL)initWithBundle:(NSBundle *)bundle;
- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host;
- (void)resolveTargetDevice;
- (void)setPrintSettings:(PMPrintSettings)settings;
@end

// A host that has nothing but the printer.
@interface PanelBenchHost : NSObject
@end

@implementation PanelBenchHost
- (void *)ppdFile {
  return NULL;
}
- (void *)printSettings {
  return NULL;
}
- (void *)printSession {
  return NULL;
}
- (void *)PMPrinter {
  return NULL;
}
- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  (void)keyword, (void)choice;
  return NO;
}
@end

namespace fax::bench {

namespace {

double median_of_rounds(std::function<void()> const &work) {
  std::vector<double> times;
  for (int round = 0; round < kRounds; ++round) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    times.push_back(milliseconds(work));
    [pool release];
  }
  return median(times);
}

NSString *setting(PMPrintSettings settings, NSString *name) {
  CFTypeRef value = NULL;
  NSString *key = [@"com.norvalt.tk.o.print.printsettings." stringByAppendingString:name];
  PMPrintSettingsGetValue(settings, (CFStringRef)key, &value);
  return (NSString *)value;
}

double resolve(id panel, NSString *expected) {
  double const took = median_of_rounds([panel] {
    [panel setValue:nil forKey:@"printerAddress"];
    [panel resolveTargetDevice];
  });
  if (![[panel valueForKey:@"printerAddress"] isEqual:expected]) throw std::runtime_error("a wrong address: " + the_uri);
  return took;
}

}  // namespace

void measure_job(BookDialog const &dialog, Report &report) {
  id list = [dialog.fax_controller valueForKey:@"addressArrayController"];
  Class const entry_class = NSClassFromString(@"com_norvalt_tk_o_pde_vexolinddirectfax_AddressInformation");
  for (int at = 1; at <= kDestinations; ++at) {
    id entry = [[[entry_class alloc] init] autorelease];
    [entry setValue:[NSString stringWithFormat:@"Recipient %02d of the list", at] forKey:@"name"];
    [entry setValue:[NSString stringWithFormat:@"030-1234%02d", at] forKey:@"phoneNumber"];
    [list addObject:entry];
  }
  [dialog.fax_controller setValue:@"1234" forKey:@"password"];
  PMPrintSettings settings = NULL;
  PMCreatePrintSettings(&settings);
  double const took = median_of_rounds([&] { [dialog.fax_controller setPrintSettings:settings]; });
  bool const there = [setting(settings, @"DFaxDestinationNumber") intValue] == kDestinations &&
                     [setting(settings, @"DFaxDestinationPhoneNumber30") length] > 0;
  PMRelease(settings);
  if (!there) throw std::runtime_error("the settings lack destinations");
  report.add({"30 destinations into the settings of a job", 0, took, "ms", 1.0});
}

void measure_addresses(Report &report) {
  struct {
    char const *name, *uri;
    NSString *address;
  } const rows[] = {{"Address of a printer at USB", "usb://Vendor/Model?serial=1", @""},
                    {"Address of a printer, numeric in its URI", "ipp://[2001:db8::7]:631/ipp/print", @"2001:db8::7"}};
  NSBundle *bundle = loaded_bundle();
  id factory = [[[bundle principalClass] alloc] init];
  [factory initWithBundle:bundle];
  id host = [[[PanelBenchHost alloc] init] autorelease];
  for (auto const &row : rows) {
    the_uri = row.uri;
    NSArray *panels = [factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host];
    report.add({row.name, 0, resolve([panels objectAtIndex:0], row.address), "ms", 1.0});
  }
  [factory release];
}

}  // namespace fax::bench
