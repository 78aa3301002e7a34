// The fax dialog's address books and the address-book dialog, with the real nib and a library that stands in.
#import "bundle_fixture.h"
#include "loaded_stand_in.h"

#include <filesystem>
#include <objc/runtime.h>
#include <set>
#include <utility>

@interface NSObject (AddressBookTest)
- (void)lookupAddressBook:(id)sender;
- (void)lookupDeviceData:(id)sender;
- (void)addToAddressBook:(id)sender;
- (void)selectAddressBook:(id)sender;
- (NSString *)getIndexKey:(NSString *)name;
- (void)createDialogWithTabSelection:(int)index;
- (void)setPassword:(NSString *)password;
- (void)awakeFromNib;
- (void)initPCAdressBookTab;
- (void)initDeviceAddressTab;
- (void)sortPCAddressData:(id)sender;
- (void)sortDeviceAddressData:(id)sender;
- (NSArray *)getAddressListFrom:(id)group ofAddressBook:(NSArrayController *)list;
- (void)showPCAddressProperty:(id)sender;
- (void)showDevicePCAddressProperty:(id)sender;
- (void)closeUserProperty:(id)sender;
- (void)closeGroupProperty:(id)sender;
- (void)addSelectedPCAddressData:(id)sender;
- (void)addSelectedDeviceAddressData:(id)sender;
- (BOOL)existAddressInDestination:(id)entry;
- (void)saveAddressSetting:(id)sender;
- (void)cancelAddressSetting:(id)sender;
@end

// A list of the host's own that is no controller and does no more than it must.
@interface BareList : NSObject {
 @public
  NSMutableArray *rows;
  NSArray *chosen;
}
@end

@implementation BareList
- (id)init {
  self = [super init];
  rows = [[NSMutableArray alloc] init];
  return self;
}
- (void)dealloc {
  [rows release];
  [super dealloc];
}
- (NSArray *)arrangedObjects {
  return rows;
}
- (NSArray *)selectedObjects {
  return chosen;
}
- (void)addObject:(id)object {
  [rows addObject:object];
}
- (void)addObjects:(NSArray *)objects {
  [rows addObjectsFromArray:objects];
}
- (void)removeObjects:(NSArray *)objects {
  [rows removeObjectsInArray:objects];
}
@end

namespace {

namespace fs = std::filesystem;
using test::utf8;
using namespace std::string_literals;

constexpr char kInstalled[] = "/Library/Printers/NORVALT/Frameworks/QUOLTANIS.framework/Versions/A/QUOLTANIS";

// A copy of the bundle whose own library is the stand-in, or that has none.
class Copy : public testing::Environment {
 public:
  void SetUp() override {
    char folder[] = "/tmp/directfax-books-XXXXXX";
    folder_ = mkdtemp(folder);
    fs::path const bundle = folder_ / "DirectFax.bundle";
    fs::copy(test::bundle_path(), bundle, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::remove_all(bundle / "Frameworks");
    library_ = bundle / "Frameworks/QUOLTANIS.framework/Versions/A/QUOLTANIS";
    fs::create_directories(library_.parent_path());
    test::bundle_path() = bundle;
  }
  void TearDown() override { fs::remove_all(folder_); }

  fs::path const &folder() const { return folder_; }

  void put_library() const {
    if (!fs::exists(library_)) fs::create_symlink(STAND_IN, library_);
  }

 private:
  fs::path folder_, library_;
};

Copy *const copy_of_bundle = static_cast<Copy *>(testing::AddGlobalTestEnvironment(new Copy));

// The text that a search field holds, as the sender of its action.
NSTextField *typed(NSString *text) {
  NSTextField *field = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 100, 20)] autorelease];
  [field setStringValue:text];
  return field;
}

class AddressDialogTest : public test::BundleTest {
 protected:
  void SetUp() override {
    if (fs::exists(kInstalled)) GTEST_SKIP() << "the library that is installed here comes first";
    test::stand_in() = {};
    test::stand_in().list = u"a.gad\0b.gad\0"s;
    if (with_library_) copy_of_bundle->put_library();
    in_modal_session([] {});
    panel_ = [panel() retain];
    [panel_ shouldPrint];
    fax_ = [panel_ valueForKey:@"detailedFaxSettingContoller"];
    book_ = [fax_ valueForKey:@"addressBookController"];
    destinations_ = [fax_ valueForKey:@"addressArrayController"];
    files_ = [fax_ valueForKey:@"addressFileList"];
    pc_ = [book_ valueForKey:@"pcAddressList"];
    device_ = [book_ valueForKey:@"deviceAddressList"];
    test::stand_in().calls.clear();
  }
  void TearDown() override {
    [fax_ stopSending:nil];
    [panel_ release];
  }

  // Six people, a group of three and one with a stranger.
  static test::Book some() {
    return {{{1, u"Anne", u"11", u"", u""},
             {2, u"bob", u"22", u"AN Ltd.", u"knock"},
             {3, u"Dana", u"33", u"", u""},
             {4, u"anne", u"44", u"", u""},
             {5, u"Zoe", u"55", u"", u""},
             {6, u"Bob", u"66", u"", u""}},
            {{u"Board", {5, 1, 3}}, {u"mixed", {2, 99, 2, 1}}}};
  }

  void open(int tab) { tab == 0 ? [fax_ lookupAddressBook:nil] : [fax_ lookupDeviceData:nil]; }
  void open_file(test::Book const &book) {
    test::stand_in().files["/books/a.gad"] = book;
    open(0);
  }
  void open_device(test::Book const &book) {
    test::stand_in().device = book;
    [fax_ setIPAddress:@"192.0.2.7"];
    open(1);
  }

  // The dialog on the file's tab, the printer's read as well.
  void open_both() {
    test::stand_in().device = some();
    [fax_ setIPAddress:@"192.0.2.7"];
    open_file(some());
    [book_ initDeviceAddressTab];
  }

  static std::string text_of(NSArray *entries) {
    std::string text;
    NSEnumerator *rows = [entries objectEnumerator];
    while (id row = [rows nextObject])
      text += (text.empty() ? "" : " ") + utf8([row valueForKey:@"name"]) + ":" + utf8([row valueForKey:@"phoneNumber"]);
    return text;
  }
  static std::string shown(NSArrayController *list) { return text_of([list arrangedObjects]); }

  static void select(NSArrayController *list, std::set<std::string> const &names) {
    NSMutableIndexSet *rows = [NSMutableIndexSet indexSet];
    for (NSUInteger row = 0; row < [[list arrangedObjects] count]; ++row)
      if (names.contains(utf8([[[list arrangedObjects] objectAtIndex:row] valueForKey:@"name"]))) [rows addIndex:row];
    [list setSelectionIndexes:rows];
  }

  void add(NSString *name, NSString *number) {
    [fax_ setValue:name forKey:@"addressName"];
    [fax_ setValue:number forKey:@"addressPhoneNumber"];
    [fax_ addAddressInfo:nil];
  }
  void fill_up_to(NSUInteger count) {
    for (NSUInteger i = [[destinations_ arrangedObjects] count]; i < count; ++i)
      add(@"", [NSString stringWithFormat:@"9%d", static_cast<int>(i)]);
  }
  // The alerts since the last time.
  std::vector<std::string> told() { return std::exchange(alerts(), {}); }

  std::string calls() {
    std::string const text = test::stand_in().order();
    test::stand_in().calls.clear();
    return text;
  }
  bool fax_button(NSString *name) {
    return [[[[fax_ valueForKey:@"faxSettingPanel"] contentView] valueForKey:name] isEnabled];
  }

  bool with_library_ = true;
  id panel_ = nil, fax_ = nil, book_ = nil;
  NSArrayController *destinations_ = nil, *files_ = nil, *pc_ = nil, *device_ = nil;
};

using Alerts = std::vector<std::string>;
std::string const kNoFile = "Address Book file is none||OK";
std::string const kDuplicate = "Duplicated Address Found|Add the same address to destinations?|OK|Cancel";
std::string const kFull = "No More Destination||OK";
std::string const kBadPassword = "Device Access Failure|Invalid Password|OK";
std::string const kNoData = "Device Access Failure|Failed to retrieve data|OK";

class NoLibraryTest : public AddressDialogTest {
 protected:
  NoLibraryTest() { with_library_ = false; }
};

TEST_F(NoLibraryTest, TheDialogsWorkAndALibraryThatComesLaterIsFound) {
  EXPECT_EQ(shown(files_), "");
  EXPECT_FALSE(fax_button(@"addToAddressBookButton"));
  add(@"Ann", @"1");
  EXPECT_FALSE(fax_button(@"addToAddressBookButton")) << "there is no file";
  [fax_ addToAddressBook:nil];
  EXPECT_EQ(told(), Alerts{"Cannot add to the file.||OK"});
  open(0);
  EXPECT_EQ(told(), Alerts{kNoFile});
  [fax_ setIPAddress:@"192.0.2.7"];
  open(1);
  EXPECT_EQ(told(), Alerts{kNoData});
  EXPECT_EQ(shown(pc_) + shown(device_), "");
  [book_ saveAddressSetting:nil];
  EXPECT_EQ(shown(destinations_), "Ann:1");

  copy_of_bundle->put_library();
  [panel_ shouldPrint];
  EXPECT_EQ(text_of([files_ valueForKey:@"arrangedObjects"]), "a.gad:(nil) b.gad:(nil)");
  EXPECT_TRUE(fax_button(@"addToAddressBookButton"));
}

TEST_F(AddressDialogTest, TheFilesAreListedAtEachOpening) {
  struct {
    bool folder, list;
    std::u16string names;
    char const *paths;
    bool available;  // kept from the opening before where the library has no answer
  } const cases[] = {
      {true, true, u"a.gad\0b.gad\0"s, "/books/a.gad /books/b.gad ", true},
      {true, false, u"", "", true},
      {false, true, u"a.gad\0"s, "", true},
      {true, true, u"", "", false},
      {true, false, u"", "", false},
      {true, true, u"\0\0x y.gad"s, "/books/x y.gad ", true},
  };
  add(@"Ann", @"1");
  for (auto const &row : cases) {
    test::stand_in().has_folder = row.folder;
    test::stand_in().has_list = row.list;
    test::stand_in().list = row.names;
    [panel_ shouldPrint];
    std::string paths;
    NSEnumerator *files = [[files_ arrangedObjects] objectEnumerator];
    while (id file = [files nextObject]) paths += utf8([file valueForKey:@"path"]) + " ";
    EXPECT_EQ(paths, row.paths);
    EXPECT_EQ([files_ selectionIndex], paths.empty() ? static_cast<NSUInteger>(NSNotFound) : 0u);
    EXPECT_EQ([[fax_ valueForKey:@"isAddressFileAvailable"] boolValue], row.available);
    EXPECT_EQ(fax_button(@"addToAddressBookButton"), row.available);
  }
}

TEST_F(AddressDialogTest, ThePopUpChoosesTheFileThatIsWrittenAndRead) {
  NSPopUpButton *popup = nil;
  NSEnumerator *views = [[[[fax_ valueForKey:@"faxSettingPanel"] contentView] subviews] objectEnumerator];
  while (id view = [views nextObject])
    if ([view isMemberOfClass:[NSPopUpButton class]]) popup = view;
  ASSERT_EQ(utf8([[popup itemTitles] componentsJoinedByString:@" "]), "a.gad b.gad");
  EXPECT_EQ([popup indexOfSelectedItem], 0);
  [popup selectItemAtIndex:1];
  [popup sendAction:[popup action] to:[popup target]];
  EXPECT_EQ([files_ selectionIndex], 1u);
  add(@"Ann", @"1");
  [fax_ addToAddressBook:nil];
  EXPECT_EQ(calls(), "Create, Add_MyFax 1, Add /books/b.gad 0, Delete");
  open(0);
  EXPECT_EQ(calls(), "Create, Read /books/b.gad 0, Delete");
}

TEST_F(AddressDialogTest, RecipientsAreSavedTogetherOrNotAtAll) {
  struct {
    std::vector<NSString *> names;
    std::uint32_t add_my_fax, add;
    bool creates;
    char const *calls, *alert;
  } const cases[] = {
      {{@"Ann", @"Bob"}, 0, 0, true, "Create, Add_MyFax 2, Add /books/a.gad 0, Delete", "Added to Address Book.||OK"},
      {{@"Ann"}, 0, 0x20000010, true, "Create, Add_MyFax 1, Add /books/a.gad 0, Delete", "Address already exists.||OK"},
      {{@"Ann"}, 0x20000010, 0, true, "Create, Add_MyFax 1, Delete", "Address already exists.||OK"},
      {{@"Ann"}, 7, 0, true, "Create, Add_MyFax 1, Delete", "Cannot add to the file.||OK"},
      {{@"Ann"}, 0, 0x20000008, true, "Create, Add_MyFax 1, Add /books/a.gad 0, Delete", "No name specified.||OK"},
      {{@"Ann", @"", @"Bob"}, 0, 0, true, "Create, Delete", "No name specified.||OK"},
      {{[@"" stringByPaddingToLength:65 withString:@"n" startingAtIndex:0]}, 0, 0, true, "Create, Delete",
       "Cannot add to the file.||OK"},
      {{@"Ann"}, 0, 0, false, "Create", "Cannot add to the file.||OK"},
  };
  for (auto const &row : cases) {
    for (NSString *name : row.names) add(name, @"1");
    [destinations_ setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, row.names.size())]];
    std::string const before = shown(destinations_);
    test::stand_in().add_my_fax = row.add_my_fax;
    test::stand_in().add = row.add;
    test::stand_in().creates = row.creates;
    calls();
    told();
    [fax_ addToAddressBook:nil];
    EXPECT_EQ(told(), Alerts{row.alert});
    EXPECT_EQ(calls(), row.calls);
    EXPECT_EQ(test::stand_in().open_handles, 0);
    EXPECT_EQ(shown(destinations_), before);
    EXPECT_EQ([[destinations_ selectedObjects] count], row.names.size());
    [fax_ stopSending:nil];
  }
}

TEST_F(AddressDialogTest, ARecordHoldsNameKeyNumberAndTime) {
  add(@"Jürgen", @"030-1");
  [fax_ addToAddressBook:nil];
  ASSERT_EQ(test::stand_in().added.size(), 1u);
  fax::MyFax const &record = test::stand_in().added[0];
  EXPECT_EQ(std::u16string(record.name), u"Jürgen");
  EXPECT_EQ(std::u16string(record.index_key), u"Jürgen");
  EXPECT_EQ(std::u16string(record.phone_number), u"030-1");
  EXPECT_NEAR(static_cast<double>(record.registered), [[NSDate date] timeIntervalSince1970], 5);
  EXPECT_EQ(utf8([fax_ getIndexKey:@"abcdefghijklmnopqrstuvwxy"]), "abcdefghijklmnopqrst");
  EXPECT_EQ([fax_ getIndexKey:@""], nil);
}

// A process in a sandbox, and a user at the open panel.
bool sandboxed = false;
std::vector<std::string> chosen;  // empty: Cancel
std::vector<std::string> panels;  // the folder that each panel began in

BOOL is_sandboxed(id, SEL) { return sandboxed; }
NSInteger run_panel(NSOpenPanel *panel, SEL) {
  EXPECT_TRUE([panel canChooseFiles] && ![panel canChooseDirectories] && [panel allowsMultipleSelection]);
  panels.push_back(utf8([[panel directoryURL] path]));
  return chosen.empty() ? NSCancelButton : NSOKButton;
}
NSArray *urls_of(NSOpenPanel *, SEL) {
  NSMutableArray *urls = [NSMutableArray array];
  for (auto const &path : chosen) [urls addObject:[NSURL fileURLWithPath:test::ns(path)]];
  return urls;
}

class SandboxTest : public AddressDialogTest {
 protected:
  SandboxTest() {
    Class const utilities = object_getClass(test::class_named("UtilityService"));
    replace(utilities, @selector(isSandboxed), &is_sandboxed);
    replace([NSOpenPanel class], @selector(runModal), &run_panel);
    replace([NSOpenPanel class], @selector(URLs), &urls_of);
    sandboxed = true;
    chosen.clear();
    panels.clear();
  }
  ~SandboxTest() override {
    for (auto const &[method, body] : replaced_) method_setImplementation(method, body);
  }

 private:
  template <typename Body>
  void replace(Class owner, SEL selector, Body *body) {
    using Untyped = void (*)();
    Method const method = class_getInstanceMethod(owner, selector);
    IMP const stand_in = reinterpret_cast<IMP>(reinterpret_cast<Untyped>(body));
    replaced_.emplace_back(method, method_setImplementation(method, stand_in));
  }
  std::vector<std::pair<Method, IMP>> replaced_;
};

TEST_F(SandboxTest, TheUserChoosesTheFiles) {
  EXPECT_EQ(shown(files_), "");
  EXPECT_TRUE([[fax_ valueForKey:@"isAddressFileAvailable"] boolValue]) << "until the user has chosen";

  open(0);
  EXPECT_TRUE(panels.empty()) << "the library's folder is none of a container";
  EXPECT_EQ(told(), Alerts{kNoFile});

  fs::path const home = copy_of_bundle->folder() / "home";
  fs::create_directories(home / "Library/Fax/Books");
  test::stand_in().folder = (home / "Containers/x/Data/Library/Fax/Books").u16string();
  calls();
  open(0);
  EXPECT_EQ(panels, std::vector<std::string>{home / "Library/Fax/Books"});
  EXPECT_EQ(calls(), "GetFileDirectory") << "cancelled";
  EXPECT_TRUE(told().empty());

  chosen = {"/home/ann/one.gad", "/home/ann/more/two.gad"};
  open(0);
  EXPECT_EQ(utf8([[files_ valueForKeyPath:@"arrangedObjects.name"] componentsJoinedByString:@" "]), "one.gad two.gad");
  EXPECT_EQ([files_ selectionIndex], 0u);
  EXPECT_EQ(calls(), "GetFileDirectory, Create, Read /home/ann/one.gad 0, Delete");
  open(0);
  EXPECT_EQ(panels.size(), 2u) << "there are files now";
}

TEST_F(AddressDialogTest, AFileIsShownFromZToAAndReadOnce) {
  open_file(some());
  EXPECT_EQ(calls(), "Create, Read /books/a.gad 0, Delete");
  EXPECT_EQ(shown(pc_), "Zoe:55 mixed:Group Dana:33 Bob:66 bob:22 Board:Group anne:44 Anne:11");
  EXPECT_EQ(text_of([book_ valueForKey:@"originalPCAddressList"]), shown(pc_));
  id bob = [[pc_ arrangedObjects] objectAtIndex:4];
  EXPECT_EQ([[bob valueForKey:@"Id"] intValue], 2);
  EXPECT_EQ(utf8([bob valueForKey:@"company"]) + utf8([bob valueForKey:@"note"]), "AN Ltd.knock");
  EXPECT_EQ(utf8([[[pc_ arrangedObjects] objectAtIndex:0] valueForKey:@"note"]), "");
  EXPECT_EQ(utf8([[[[pc_ arrangedObjects] objectAtIndex:1] valueForKey:@"userIDList"] componentsJoinedByString:@","]),
            "2,99,2,1");
  open(0);
  EXPECT_EQ(calls(), "Create, Read /books/a.gad 0, Delete") << "the tab that is shown already";
  open_device(some());
  EXPECT_EQ(calls(), "Initialize 0, SetDestinationDevice 1 192.0.2.7 2, GetStatus 0 0, Create, ReadData 23 , Delete");
  EXPECT_EQ(shown(device_), shown(pc_));
  EXPECT_EQ([[[device_ arrangedObjects] objectAtIndex:0] valueForKey:@"note"], nil);
  open(0);
  EXPECT_EQ(calls(), "Create, Read /books/a.gad 0, Delete");
  EXPECT_TRUE(told().empty());
}

TEST_F(AddressDialogTest, WithoutAReadableFileTheListIsEmpty) {
  open_file(some());
  test::stand_in().files.clear();
  open(0);
  EXPECT_EQ(shown(pc_), "");
  EXPECT_EQ(test::stand_in().open_handles, 0);
  test::stand_in().creates = false;
  open(0);
  [files_ setSelectionIndexes:[NSIndexSet indexSet]];
  calls();
  open(0);
  EXPECT_EQ(calls(), "") << "no file is selected";
  EXPECT_TRUE(told().empty());
  [files_ setContent:[NSMutableArray array]];
  open(0);
  EXPECT_EQ(told(), Alerts{kNoFile});
}

TEST_F(AddressDialogTest, ABadRecordEndsTheReadingAndKeepsWhatIsSearched) {
  open_file({{{1, u"Old", u"1", u"", u""}}, {}});
  test::stand_in().files["/books/a.gad"] = {{{2, u"New", u"2", u"", u""}, {3, u"", u"3", u"", u""}}, {{u"All", {2}}}};
  [book_ initPCAdressBookTab];
  EXPECT_EQ(shown(pc_), "New:2");
  EXPECT_EQ(text_of([book_ valueForKey:@"originalPCAddressList"]), "Old:1");
  EXPECT_EQ(test::stand_in().open_handles, 1) << "as it has always been";
  [book_ sortPCAddressData:typed(@"")];
  EXPECT_EQ(shown(pc_), "Old:1");
  EXPECT_TRUE(told().empty());
}

TEST_F(AddressDialogTest, ThePrintersAnswersHaveTheirMessages) {
  constexpr std::uint32_t ready = 0x21000001, wrong = 0x20000003;
  std::string const asked = "Initialize 0, SetDestinationDevice 1 h 2, GetStatus 0 0";
  std::string const usb = "Initialize 0, SetDestinationDevice 0 (null) 2, GetStatus 0 0";
  struct {
    NSString *address, *password;
    bool creates;
    std::uint32_t initialize, status, read;
    std::string calls;
    Alerts alerts;
    unsigned int shown;
  } const cases[] = {
      {@"h", @"1", true, 0, ready, 0, asked + ", Create, ReadData 23 1, Delete", {}, 8},
      {@"", @"1", true, 0, ready, 0, usb + ", Create, ReadData 23 1, Delete", {}, 8},
      {nil, @"1", true, 0, ready, 0, "Initialize 0", {kNoData}, 0},
      {nil, @"1", true, wrong, ready, 0, "Initialize 0", {kBadPassword}, 0},
      {@"h", @"1", true, 9, ready, 0, "Initialize 0", {kNoData}, 0},
      {@"h", @"1", true, 0, 0, 0, asked, {}, 0},
      {@"h", @"1", true, 0, wrong, 0, asked, {kBadPassword}, 0},
      {@"h", @"1", true, 0, 9, 0, asked, {kNoData}, 0},
      {@"h", @"1", false, 0, ready, 0, asked + ", Create", {kNoData}, 0},
      {@"h", nil, true, 0, ready, 0, asked + ", Create, Delete", {kBadPassword}, 0},
      {@"h", @"1", true, 0, ready, wrong, asked + ", Create, ReadData 23 1, Delete", {kBadPassword}, 0},
      {@"h", @"1", true, 0, ready, 9, asked + ", Create, ReadData 23 1, Delete", {kNoData}, 0},
  };
  for (auto const &row : cases) {
    test::stand_in() = {};
    test::stand_in().device = some();
    test::stand_in().creates = row.creates;
    test::stand_in().initialize = row.initialize;
    test::stand_in().device_status = row.status;
    test::stand_in().read_data = row.read;
    [book_ setIPAddress:row.address];
    [book_ setPassword:row.password];
    [book_ initDeviceAddressTab];
    EXPECT_EQ(calls(), row.calls);
    EXPECT_EQ(told(), row.alerts) << row.calls;
    EXPECT_EQ([[device_ arrangedObjects] count], row.shown);
    EXPECT_EQ(test::stand_in().open_handles, 0);
  }
}

TEST_F(AddressDialogTest, TheTypedPasswordAndThePpdsVersionGoToThePrinter) {
  test::Ppd ppd("*QXDeviceAddressBookIntfVersion: \"3\"\n");
  [fax_ setPPD:ppd.get()];
  [fax_ setValue:@"0427" forKey:@"password"];
  open_device(some());
  EXPECT_EQ(calls(), "Initialize 0, SetDestinationDevice 1 192.0.2.7 3, GetStatus 0 0, Create, ReadData 23 0427, Delete");
  [fax_ setPPD:NULL];
}

TEST_F(AddressDialogTest, AnExceptionInTheLibraryIsAFailure) {
  test::stand_in().throwing = "Read";
  test::stand_in().thrown = [] { [NSException raise:NSGenericException format:@"by the test"]; };
  open_file(some());
  EXPECT_EQ(shown(pc_), "");
  open_device(some());
  EXPECT_EQ(told(), Alerts{kNoData});
}

TEST_F(AddressDialogTest, SearchLooksAtNamesAlone) {
  open_both();
  struct {
    NSString *text;
    char const *names;
  } const cases[] = {{@"AN", "Dana:33 anne:44 Anne:11"}, {@"bo", "Bob:66 bob:22 Board:Group"}, {@"Ltd", ""},
                     {@"33", ""}, {@"e", "Zoe:55 mixed:Group anne:44 Anne:11"},
                     {@"", "Zoe:55 mixed:Group Dana:33 Bob:66 bob:22 Board:Group anne:44 Anne:11"}};
  for (auto const &row : cases) {
    [book_ sortPCAddressData:typed(row.text)];
    [book_ sortDeviceAddressData:typed(row.text)];
    EXPECT_EQ(shown(pc_), row.names);
    EXPECT_EQ(shown(device_), row.names);
  }
  [book_ setValue:@"an" forKey:@"pcAddressSearchField"];
  [book_ initPCAdressBookTab];
  EXPECT_EQ(utf8([book_ valueForKey:@"pcAddressSearchField"]), "");
}

TEST_F(AddressDialogTest, AGroupIsWhoeverOfItIsShown) {
  open_file(some());
  auto const members = [&](NSUInteger row) {
    return text_of([book_ getAddressListFrom:[[book_ valueForKey:@"originalPCAddressList"] objectAtIndex:row]
                                ofAddressBook:pc_]);
  };
  EXPECT_EQ(members(5), "Zoe:55 Dana:33 Anne:11");
  EXPECT_EQ(members(1), "bob:22 Anne:11");
  [book_ sortPCAddressData:typed(@"an")];
  EXPECT_EQ(members(5), "Dana:33 Anne:11");
}

TEST_F(AddressDialogTest, ThePropertySheetsShowTheSelectedEntry) {
  open_both();
  NSWindow *user = [book_ valueForKey:@"userPropertyPanel"], *group = [book_ valueForKey:@"groupPropertyPanel"];
  struct {
    bool device;
    char const *entry;
    NSWindow *sheet;
    char const *fields;
  } const cases[] = {
      {false, "bob", user, "bob 22 AN Ltd. knock "},
      {true, "bob", user, "bob 22   "},
      {false, "Board", group, "Board "},
      {true, "mixed", group, "mixed "},
  };
  for (auto const &row : cases) {
    NSArrayController *list = row.device ? device_ : pc_;
    std::string fields;
    in_modal_session([&] {
      EXPECT_TRUE([row.sheet isVisible]);
      NSEnumerator *views = [[[row.sheet contentView] subviews] objectEnumerator];
      while (NSTextField *field = [views nextObject])
        if ([field isKindOfClass:[NSTextField class]] && [field isSelectable]) fields += utf8([field stringValue]) + " ";
      row.sheet == user ? [book_ closeUserProperty:nil] : [book_ closeGroupProperty:nil];
    });
    select(list, {row.entry});
    row.device ? [book_ showDevicePCAddressProperty:nil] : [book_ showPCAddressProperty:nil];
    EXPECT_EQ(fields, row.fields);
    EXPECT_FALSE([row.sheet isVisible]);
    if (row.sheet == group) {
      EXPECT_EQ(shown([book_ valueForKey:@"groupMemberList"]),
                row.device ? "bob:22 Anne:11" : "Zoe:55 Dana:33 Anne:11");
    }
  }
}

TEST_F(AddressDialogTest, TheSelectionEnablesTheButtons) {
  open_both();
  struct {
    NSArrayController *list;
    NSString *add, *show;
  } const cases[] = {{pc_, @"canAddPCAddressData", @"canShowPCAddressProperty"},
                     {device_, @"canAddDeviceAddressData", @"canShowDeviceAddressProperty"}};
  for (auto const &row : cases)
    for (unsigned int const selected : {0u, 1u, 2u, 1u, 0u}) {
      [row.list setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, selected)]];
      EXPECT_EQ([[book_ valueForKey:row.add] boolValue], selected > 0);
      EXPECT_EQ([[book_ valueForKey:row.show] boolValue], selected == 1);
    }
  EXPECT_FALSE([[book_ valueForKey:@"canRemoveDestinationAddress"] boolValue]);
  add(@"Ann", @"1");
  EXPECT_TRUE([[book_ valueForKey:@"canRemoveDestinationAddress"] boolValue]);
  NSButton *remove = nil;
  NSEnumerator *views = [[[[book_ valueForKey:@"addressBookSettingPanel"] contentView] subviews] objectEnumerator];
  while (id view = [views nextObject])
    if ([view respondsToSelector:@selector(title)] && [[view title] isEqualToString:@"Delete"]) remove = view;
  EXPECT_TRUE([remove isEnabled]) << "bound button";
  [book_ deleteAddressInfo:nil];
  EXPECT_EQ(shown(destinations_), "");
  EXPECT_FALSE([remove isEnabled]);
}

TEST_F(AddressDialogTest, SelectedEntriesBecomeDestinationsWithOneQuestionAtMost) {
  struct {
    char const *what;
    std::vector<NSString *> there;  // names; the number is that of the book
    std::set<std::string> selected;
    int answer;
    Alerts alerts;
    char const *then;
  } const cases[] = {
      {"individuals", {}, {"Zoe", "bob"}, 0, {}, "Zoe:55 bob:22"},
      {"a group in the shown order", {}, {"Board"}, 0, {}, "Zoe:55 Dana:33 Anne:11"},
      {"two duplicates allowed", {@"Zoe:55", @"Anne:11"}, {"Board"}, 0, {kDuplicate},
       "Zoe:55 Zoe:55 Dana:33 Anne:11 Anne:11"},
      {"two duplicates refused", {@"Zoe:55", @"Anne:11"}, {"Board"}, 1, {kDuplicate}, "Zoe:55 Dana:33 Anne:11"},
      {"groups with a member in common, allowed", {}, {"Board", "mixed"}, 0, {kDuplicate},
       "Zoe:55 Dana:33 bob:22 Anne:11 Anne:11"},
      {"groups with a member in common, refused", {}, {"Board", "mixed"}, 1, {kDuplicate},
       "Zoe:55 Dana:33 bob:22 Anne:11"},
      {"another number, other letters", {@"Zoe:56", @"zoe:55"}, {"Zoe"}, 1, {}, "Zoe:56 zoe:55 Zoe:55"},
  };
  open_both();
  for (bool const from_device : {false, true})
    for (auto const &row : cases) {
      SCOPED_TRACE(row.what);
      for (NSString *there : row.there) {
        NSArray *parts = [there componentsSeparatedByString:@":"];
        add([parts objectAtIndex:0], [parts objectAtIndex:1]);
      }
      told();
      answer({row.answer, 1 - row.answer});
      select(from_device ? device_ : pc_, row.selected);
      from_device ? [book_ addSelectedDeviceAddressData:nil] : [book_ addSelectedPCAddressData:nil];
      EXPECT_EQ(told(), row.alerts);
      EXPECT_EQ(shown(destinations_), row.then);
      [fax_ stopSending:nil];
    }
}

TEST_F(AddressDialogTest, ADuplicateHasTheSameCharacters) {
  add(@"Ren\u00e9", @"7");
  struct {
    NSString *name, *number;
    bool there;
  } const cases[] = {{@"Ren\u00e9", @"7", true}, {@"Rene\u0301", @"7", false}, {@"ren\u00e9", @"7", false},
                     {@"Ren\u00e9", @"77", false}, {@"Ren", @"7", false}};
  for (auto const &row : cases) {
    NSDictionary *entry =
        [NSDictionary dictionaryWithObjectsAndKeys:row.name, @"name", row.number, @"phoneNumber", nil];
    EXPECT_EQ([book_ existAddressInDestination:entry], row.there) << utf8(row.name) << " " << utf8(row.number);
  }
}

TEST_F(AddressDialogTest, WhatDoesNotFitIsNotAddedAtAll) {
  open_file(some());
  fill_up_to(28);
  select(pc_, {"Board"});
  [book_ addSelectedPCAddressData:nil];
  EXPECT_EQ(told(), Alerts{kFull});
  EXPECT_EQ([[destinations_ arrangedObjects] count], 28u);
  select(pc_, {"Zoe", "bob"});
  [book_ addSelectedPCAddressData:nil];
  EXPECT_EQ(told(), Alerts{});
  EXPECT_EQ([[destinations_ arrangedObjects] count], 30u);
  select(pc_, {"Zoe"});
  [book_ addSelectedPCAddressData:nil];
  EXPECT_EQ(told(), Alerts{kFull}) << "the limit comes before the question";
}

TEST_F(AddressDialogTest, ADoubleClickAddsOnRowsAlone) {
  open_file(some());
  select(pc_, {"Zoe"});
  NSTableView *table = [book_ valueForKey:@"pcAddressTableView"];
  EXPECT_EQ([table target], book_);
  EXPECT_EQ(utf8(NSStringFromSelector([table doubleAction])), "addSelectedPCAddressData:");
  EXPECT_EQ(utf8(NSStringFromSelector([[book_ valueForKey:@"deviceAddressTableView"] doubleAction])),
            "addSelectedDeviceAddressData:");
  ASSERT_LT([table clickedRow], 0);
  [book_ addSelectedPCAddressData:table];
  EXPECT_EQ(shown(destinations_), "");
}

TEST_F(AddressDialogTest, CancelRestoresTheSameDestinationsOkKeepsTheNewOnes) {
  add(@"Ann", @"1");
  add(@"Ben", @"2");
  NSArray *before = [NSArray arrayWithArray:[destinations_ arrangedObjects]];
  NSWindow *window = [book_ valueForKey:@"addressBookSettingPanel"];
  auto const edit = [&] {
    open_file(some());
    EXPECT_TRUE([window isVisible]);
    select(destinations_, {"Ann"});
    [book_ deleteAddressInfo:nil];
    select(pc_, {"Zoe"});
    [book_ addSelectedPCAddressData:nil];
    EXPECT_EQ(shown(destinations_), "Zoe:55 Ben:2");
  };
  edit();
  [book_ cancelAddressSetting:nil];
  EXPECT_FALSE([window isVisible]);
  ASSERT_EQ([[destinations_ arrangedObjects] count], 2u);
  for (NSUInteger row = 0; row < 2; ++row)
    EXPECT_EQ([[destinations_ arrangedObjects] objectAtIndex:row], [before objectAtIndex:row]);
  edit();
  [book_ saveAddressSetting:nil];
  EXPECT_FALSE([window isVisible]);
  EXPECT_EQ(shown(destinations_), "Zoe:55 Ben:2");
  for (NSString *kept : {@"oldAddresses", @"originalPCAddressList", @"originalDeviceAddressList"})
    EXPECT_EQ([book_ valueForKey:kept], nil) << utf8(kept);
}

TEST_F(AddressDialogTest, TheKeyboardWalksBothTabsAndLeavesThem) {
  open_file(some());
  NSWindow *window = [book_ valueForKey:@"addressBookSettingPanel"];
  NSTabView *tabs = [[window contentView] valueForKey:@"addressSourceTabView"];
  for (int const tab : {1, 0, 1}) {
    [tabs selectTabViewItemAtIndex:tab];
    NSView *first = [[tabs selectedTabViewItem] initialFirstResponder];
    std::string classes;
    NSView *view = first;
    for (int i = 0; i < 10 && view != nil && (i == 0 || view != first); i++, view = [view nextKeyView])
      classes += utf8([view className]) + " ";
    EXPECT_EQ(classes, "NSSearchField NSTableView NSButton NSButton NSTableView NSButton NSButton NSButton NSButton "
                       "NSTabView ")
        << tab;
    EXPECT_EQ(view, first) << "and round again";
    EXPECT_TRUE([first isDescendantOf:[window contentView]]);
  }
}

TEST_F(AddressDialogTest, HelpOpensThePageAboutRecipients) {
  [book_ setBundle:test::bundle()];
  [book_ showHelpBook:nil];
  ASSERT_EQ(fakes().help_pages.size(), 1u);
  EXPECT_EQ(fakes().help_pages[0], "DirectFax Help|Recipients.htm|");
}

// A host that has its own nib, with plain list controllers in it.
TEST_F(AddressDialogTest, ListsOfTheToolkitsOwnClassWorkToo) {
  id own = [[test::class_named("AddressBookController") alloc] init];
  for (NSString *list : {@"addressArrayController", @"pcAddressList", @"deviceAddressList", @"groupMemberList"})
    [own setValue:[[[NSArrayController alloc] initWithContent:[NSMutableArray array]] autorelease] forKey:list];
  [own setValue:files_ forKey:@"addressFileList"];
  NSArrayController *list = [own valueForKey:@"pcAddressList"];
  test::stand_in().files["/books/a.gad"] = some();
  [own initPCAdressBookTab];
  EXPECT_EQ(shown(list), "Anne:11 bob:22 Dana:33 anne:44 Zoe:55 Bob:66 Board:Group mixed:Group") << "no order yet";
  EXPECT_EQ(text_of([own valueForKey:@"originalPCAddressList"]), shown(list));
  [own awakeFromNib];
  [own initPCAdressBookTab];
  EXPECT_EQ(shown(list), "Zoe:55 mixed:Group Dana:33 Bob:66 bob:22 Board:Group anne:44 Anne:11");
  [own sortPCAddressData:typed(@"bo")];
  EXPECT_EQ(shown(list), "Bob:66 bob:22 Board:Group");
  [own setValue:[NSArray arrayWithArray:[own valueForKey:@"originalPCAddressList"]] forKey:@"originalPCAddressList"];
  [own sortPCAddressData:typed(@"AN")];
  EXPECT_EQ(shown(list), "Dana:33 anne:44 Anne:11");
  [own sortPCAddressData:typed(@"")];
  select(list, {"Board"});
  EXPECT_TRUE([[own valueForKey:@"canShowPCAddressProperty"] boolValue]);
  [own addSelectedPCAddressData:nil];
  EXPECT_EQ(shown([own valueForKey:@"addressArrayController"]), "Zoe:55 Dana:33 Anne:11");
  [own release];
}

TEST_F(AddressDialogTest, ListsThatAreNoControllersWorkToo) {
  id own = [[test::class_named("AddressBookController") alloc] init];
  BareList *list = [[[BareList alloc] init] autorelease], *chosen = [[[BareList alloc] init] autorelease];
  [own setValue:list forKey:@"pcAddressList"];
  [own setValue:chosen forKey:@"addressArrayController"];
  [own setValue:files_ forKey:@"addressFileList"];
  test::stand_in().files["/books/a.gad"] = some();
  [own initPCAdressBookTab];
  [own initPCAdressBookTab];
  EXPECT_EQ(text_of(list->rows), "Anne:11 bob:22 Dana:33 anne:44 Zoe:55 Bob:66 Board:Group mixed:Group");
  [own sortPCAddressData:typed(@"bo")];
  EXPECT_EQ(text_of(list->rows), "bob:22 Bob:66 Board:Group");
  list->chosen = [NSArray arrayWithObject:[list->rows objectAtIndex:0]];
  EXPECT_TRUE([[own valueForKey:@"canShowPCAddressProperty"] boolValue]);
  [own addSelectedPCAddressData:nil];
  EXPECT_EQ(text_of(chosen->rows), "bob:22");
  [own cancelAddressSetting:nil];
  EXPECT_EQ(text_of(chosen->rows), "") << "as it was at an opening that never was";
  [own release];
}

TEST_F(AddressDialogTest, AControllerWithoutANibDoesNothing) {
  id bare = [[test::class_named("AddressBookController") alloc] init];
  [bare createDialogWithTabSelection:0];
  [bare showPCAddressProperty:nil];
  [bare addSelectedPCAddressData:nil];
  [bare cancelAddressSetting:nil];
  EXPECT_FALSE([[bare valueForKey:@"canAddPCAddressData"] boolValue]);
  [bare release];
}

}  // namespace
