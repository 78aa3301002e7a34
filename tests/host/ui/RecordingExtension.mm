// A print dialog extension for tests: one panel that notes every call and answers as it is told.
//
// Both go through the main thread's dictionary, so that the test program needs no name of this bundle: "calls" is an
// NSMutableArray of texts such as "shouldHide", "answers" maps an operation to NO ("0"), to an exception ("raise",
// "throw", "throw a number"), or to "dialog" for a modal window with a Help and a Start button. Under "deviceURI" stands
// there what the panel was given, "none" for none. An answer for "tick" has the panel start a timer.
#include <PrintCore/PDEPluginInterface.h>

#include <stdexcept>
#include <string>

@interface RecordingPanel : NSObject <PDEPanel> {
  id<PDEPluginCallback> _host;
  NSView *_view;
  NSTextField *senderNameField;
  NSPopUpButton *qualityPopUp;
  NSString *_sender;
  NSPanel *_dialog;
}
- (id)initWithHost:(id<PDEPluginCallback>)host;
@end

@interface RecordingPanel ()
- (BOOL)runDialog;
@end

@interface RecordingFactory : NSObject <PDEPlugIn>
@end

static NSString *const kOption = @"QXFaxImageQuality";
static NSString *const kKey = @"com.norvalt.tk.o.print.printsettings.DFaxCoverSenderName";

// Notes the call; NO when the test wants that answer.
static BOOL Note(NSString *call) {
  NSDictionary *shared = [[NSThread mainThread] threadDictionary];
  [[shared objectForKey:@"calls"] addObject:call];
  NSString *operation = [[call componentsSeparatedByString:@" "] objectAtIndex:0];
  NSString *answer = [[shared objectForKey:@"answers"] objectForKey:operation];
  if ([answer isEqual:@"raise"]) [NSException raise:@"RecordingException" format:@"told to raise in %@", operation];
  if ([answer isEqual:@"throw"]) throw std::runtime_error(std::string("told to throw in ") + [operation UTF8String]);
  if ([answer isEqual:@"throw a number"]) throw 42;
  return ![answer isEqual:@"0"];
}

// Notes a click beside its controls.
@interface RecordingView : NSView
@end

@implementation RecordingView
- (BOOL)acceptsFirstMouse:(NSEvent *)event {
  return YES;
}
- (void)mouseDown:(NSEvent *)event {
  Note(@"mouseDown");
}
@end

static void NoteDeviceURI(PMPrinter printer) {
  CFURLRef uri = NULL;
  PMPrinterCopyDeviceURI(printer, &uri);
  NSString *text = uri ? (NSString *)CFURLGetString(uri) : @"none";
  [[[[NSThread mainThread] threadDictionary] objectForKey:@"answers"] setObject:text forKey:@"deviceURI"];
  if (uri) CFRelease(uri);
}

@implementation RecordingFactory

- (BOOL)initWithBundle:(NSBundle *)bundle {
  return Note(@"initWithBundle");
}

- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host {
  Note(@"PDEPanelsForType");
  if (![type isEqual:@"BDB091F4-E57F-11D3-B5CC-0050E4603277"]) return [NSArray array];
  NoteDeviceURI([host PMPrinter]);
  return [NSArray arrayWithObject:[[[RecordingPanel alloc] initWithHost:host] autorelease]];
}

@end

@implementation RecordingPanel

- (id)initWithHost:(id<PDEPluginCallback>)host {
  if (!(self = [super init])) return nil;
  _host = [(id)host retain];
  _sender = @"";
  return self;
}

- (void)dealloc {
  Note(@"dealloc");
  [qualityPopUp setTarget:nil];
  [_view release];
  [_dialog release];
  [_sender release];
  [(id)_host release];
  [super dealloc];
}

- (NSTextField *)label:(NSString *)text at:(CGFloat)y {
  NSTextField *label = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, y, 140, 18)] autorelease];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBezeled:NO];
  [label setDrawsBackground:NO];
  [label setAlignment:NSRightTextAlignment];
  [label setStringValue:text];
  return label;
}

- (NSView *)panelView {
  Note(@"panelView");
  if (_view) return _view;
  if ([[[[NSThread mainThread] threadDictionary] objectForKey:@"answers"] objectForKey:@"tick"]) {
    [NSTimer scheduledTimerWithTimeInterval:0 target:self selector:@selector(tick:) userInfo:nil repeats:NO];
  }
  // Larger than the dialog has room for at first, and it would grow with what it lies in.
  _view = [[RecordingView alloc] initWithFrame:NSMakeRect(0, 0, 620, 280)];
  [_view setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [_view addSubview:[self label:@"Image Quality:" at:47]];
  qualityPopUp = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(150, 44, 260, 24) pullsDown:NO] autorelease];
  [qualityPopUp setTarget:self];
  [qualityPopUp setAction:@selector(choose:)];
  ppd_option_t *option = [_host ppdFile] ? ppdFindOption([_host ppdFile], [kOption UTF8String]) : NULL;
  for (int at = 0; option && at < option->num_choices; ++at) {
    [qualityPopUp addItemWithTitle:[NSString stringWithUTF8String:option->choices[at].text]];
    [[qualityPopUp lastItem] setRepresentedObject:[NSString stringWithUTF8String:option->choices[at].choice]];
  }
  senderNameField = [[[NSTextField alloc] initWithFrame:NSMakeRect(150, 10, 260, 22)] autorelease];
  [_view addSubview:qualityPopUp];
  [_view addSubview:[self label:@"Sender Name:" at:13]];
  [_view addSubview:senderNameField];
  return _view;
}

- (NSString *)panelName {
  return Note(@"panelName") ? @"Recording" : nil;
}

- (NSString *)panelKind {
  return @"com.norvalt.tk.o.test.recording";
}

- (NSArray *)supportedPPDOptionKeys {
  Note(@"supportedPPDOptionKeys");
  return [NSArray arrayWithObject:kOption];
}

- (void)PPDOptionKeyValueDidChange:(NSString *)keyword ppdChoice:(NSString *)choice {
  Note([NSString stringWithFormat:@"PPDOptionKeyValueDidChange %@ %@", keyword, choice]);
}

- (void)willShow {
  Note(@"willShow");
}

- (BOOL)shouldHide {
  return Note(@"shouldHide");
}

- (BOOL)saveValuesAndReturnError:(NSError **)error {
  if (!Note(@"save")) {
    [senderNameField setStringValue:_sender];
    return NO;
  }
  if (!senderNameField) return YES;
  [_sender autorelease];
  _sender = [[senderNameField stringValue] copy];
  if ([_host printSettings]) {
    PMPrintSettingsSetValue([_host printSettings], (CFStringRef)kKey, (CFTypeRef)_sender, false);
  }
  return YES;
}

- (BOOL)restoreValuesAndReturnError:(NSError **)error {
  Note(@"restore");
  ppd_choice_t *marked = [_host ppdFile] ? ppdFindMarkedChoice([_host ppdFile], [kOption UTF8String]) : NULL;
  if (marked) {
    NSString *keyword = [NSString stringWithUTF8String:marked->choice];
    [qualityPopUp selectItemAtIndex:[qualityPopUp indexOfItemWithRepresentedObject:keyword]];
  }
  CFTypeRef value = NULL;
  if ([_host printSettings]) PMPrintSettingsGetValue([_host printSettings], (CFStringRef)kKey, &value);
  [senderNameField setStringValue:value ? (NSString *)value : @""];
  return YES;
}

- (NSDictionary *)summaryInfo {
  Note(@"summaryInfo");
  NSString *quality = [qualityPopUp titleOfSelectedItem];
  return [NSDictionary dictionaryWithObjectsAndKeys:_sender, @"Sender Name", quality ? quality : @"", @"Image Quality",
                                                    [NSArray arrayWithObjects:@"Image Quality", @"Sender Name", nil],
                                                    @"Summary Display Order", nil];
}

- (BOOL)shouldShowHelp {
  return Note(@"shouldShowHelp");
}

- (BOOL)shouldPrint {
  PMDestinationType destination = kPMDestinationInvalid;
  PMSessionGetDestinationType([_host printSession], [_host printSettings], &destination);
  if (!Note([NSString stringWithFormat:@"shouldPrint %d", destination])) return NO;
  NSDictionary *answers = [[[NSThread mainThread] threadDictionary] objectForKey:@"answers"];
  if (![[answers objectForKey:@"shouldPrint"] isEqual:@"dialog"]) return YES;
  return [self runDialog];
}

- (BOOL)runDialog {
  if (!_dialog) {
    _dialog = [[NSPanel alloc] initWithContentRect:NSMakeRect(300, 300, 320, 100)
                                         styleMask:NSTitledWindowMask
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    [_dialog setTitle:@"Recording Dialog"];
    [_dialog setReleasedWhenClosed:NO];
    NSButton *start = [[[NSButton alloc] initWithFrame:NSMakeRect(210, 16, 90, 24)] autorelease];
    [start setTitle:@"Start"];
    [start setTarget:self];
    [start setAction:@selector(start:)];
    [[_dialog contentView] addSubview:start];
  }
  NSInteger const code = [NSApp runModalForWindow:_dialog];
  [_dialog orderOut:nil];
  return code == 1;
}

- (void)start:(id)sender {
  [NSApp stopModalWithCode:1];
}

- (void)tick:(NSTimer *)timer {
  Note(@"tick");
}

- (void)choose:(id)sender {
  NSString *choice = [[sender selectedItem] representedObject];
  BOOL const accepted = [_host willChangePPDOptionKeyValue:kOption ppdChoice:choice];
  Note([NSString stringWithFormat:@"chose %@ %d", choice, accepted]);
}

@end
