// The help viewer's preferences as real files of every kind, on disks that are full and in folders that are closed.
#include "namespaces.h"

#include "support/UtilityService.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

NSString *const kBook = @"com.norvalt.fax";

class HelpCacheFile : public testing::Test {
protected:
  HelpCacheFile() {
    test::replace_accounts("root:x:0:0::/mnt/h\xC3\xB6me:/bin/sh\n", "");
    fs::create_directories(folder_);
    EXPECT_STREQ([[@"~" stringByExpandingTildeInPath] UTF8String], "/mnt/h\xC3\xB6me");
  }
  ~HelpCacheFile() override {
    umount2(folder_.c_str(), MNT_DETACH);
    fs::permissions(folder_, fs::perms::owner_all);
    fs::remove_all("/mnt/h\xC3\xB6me");
    [pool_ release];
  }

  static void remove() { [UtilityService removeHelpCacheForBundleID:kBook]; }

  void write(std::string const &bytes) { std::ofstream(file_, std::ios::binary) << bytes; }

  std::string read() const {
    std::ifstream file(file_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (auto const &entry : fs::directory_iterator(folder_)) all.push_back(entry.path().filename());
    return all;
  }

  static NSMutableDictionary *preferences() {
    NSArray *stale = [NSArray arrayWithObject:[NSDictionary dictionaryWithObject:@"file:///x/en.lproj/Help"
                                                                         forKey:@"url"]];
    NSArray *other = [NSArray arrayWithObject:[NSDictionary dictionaryWithObject:@"file:///y/en.lproj" forKey:@"url"]];
    return [NSMutableDictionary
        dictionaryWithObjectsAndKeys:[NSDictionary dictionaryWithObjectsAndKeys:stale, kBook, other, @"com.other", nil],
                                     @"RegisteredBooks", [NSArray arrayWithObjects:@"com.other", kBook, nil],
                                     @"RegistrationOrder", [NSDate dateWithTimeIntervalSinceReferenceDate:86400], @"Date",
                                     [NSData dataWithBytes:"\0\377" length:2], @"Data",
                                     [NSString stringWithUTF8String:"H\xC3\xB6lp <&> \xE8\xAA\xAC"], @"Text",
                                     [NSNumber numberWithDouble:1.5], @"Real", [NSNumber numberWithBool:YES], @"Yes", nil];
  }

  static std::string bytes_of(NSDictionary *list, NSPropertyListFormat format = NSPropertyListXMLFormat_v1_0) {
    NSData *data = [NSPropertyListSerialization dataFromPropertyList:list format:format errorDescription:NULL];
    return {static_cast<char const *>([data bytes]), [data length]};
  }

  // The removal was done: what was stale is gone, everything else is there.
  static testing::AssertionResult is_cleaned(std::string const &bytes) {
    NSMutableDictionary *expected = preferences();
    NSMutableDictionary *books = [[[expected objectForKey:@"RegisteredBooks"] mutableCopy] autorelease];
    [books removeObjectForKey:kBook];
    [expected setObject:books forKey:@"RegisteredBooks"];
    [expected setObject:[NSArray arrayWithObject:@"com.other"] forKey:@"RegistrationOrder"];
    NSDictionary *left = [NSPropertyListSerialization
        propertyListFromData:[NSData dataWithBytes:bytes.data() length:bytes.size()]
            mutabilityOption:NSPropertyListImmutable
                      format:NULL
            errorDescription:NULL];
    if (!bytes.starts_with("<?xml")) return testing::AssertionFailure() << "no XML";
    if (![left isEqual:expected]) return testing::AssertionFailure() << bytes;
    return testing::AssertionSuccess();
  }

  static struct stat status(fs::path const &path) {
    struct stat status{};
    stat(path.c_str(), &status);
    return status;
  }

  fs::path const folder_ = "/mnt/h\xC3\xB6me/Library/Preferences", file_ = folder_ / "com.apple.help.plist";

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

TEST_F(HelpCacheFile, OfEveryFormat) {
  for (auto const format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0, NSPropertyListGNUstepFormat}) {
    write(bytes_of(preferences(), format));
    remove();
    EXPECT_TRUE(is_cleaned(read())) << format;
    EXPECT_THAT(names(), ElementsAre("com.apple.help.plist"));
  }
}

TEST_F(HelpCacheFile, BinaryFileOfWhichAnyByteIsWrong) {
  std::string const good = bytes_of(preferences(), NSPropertyListBinaryFormat_v1_0);
  EXPECT_EQ(test::in_child([&] {
              int unharmed = 0;
              for (std::size_t at = 0; at < good.size(); ++at) {
                NSAutoreleasePool *pool = [NSAutoreleasePool new];
                for (char const wrong : {'\0', '\x7F', '\xFF'}) {
                  std::string bad = good;
                  bad[at] = wrong;
                  write(bad);
                  remove();
                  std::string const left = read();
                  unharmed += left == bad || left.starts_with("<?xml");
                }
                write(good.substr(0, at));
                remove();
                unharmed += read() == good.substr(0, at);
                [pool release];
              }
              return unharmed == int(4 * good.size()) ? 0 : 1;
            }),
            0);
}

TEST_F(HelpCacheFile, ThatWouldEndTheToolkitsReader) {
  std::string const deep(300'000, '('), xml = "<?xml version=\"1.0\"?><plist>";
  std::string tags = xml;
  for (int i = 0; i < 100'000; ++i) tags += "<array>";
  for (auto const &file : {deep, tags, xml + "<dict", std::string("\0\3\0\0\0", 5), std::string("\1\2\x7F\0\0\0", 6)}) {
    write(file);
    EXPECT_EQ(test::in_child([] { return remove(), 0; }), 0) << file.substr(0, 40);
    EXPECT_EQ(read(), file);
  }
}

// Text lists may have keys that XML cannot hold.
TEST_F(HelpCacheFile, ThatCannotBeWritten) {
  std::string const file = "{ (a) = b; \"x\" = y; RegisteredBooks = { \"com.norvalt.fax\" = ( { url = \"a.lproj\"; } ); }; }";
  write(file);
  remove();
  EXPECT_EQ(read(), file);
  EXPECT_THAT(names(), ElementsAre("com.apple.help.plist"));
}

TEST_F(HelpCacheFile, KeepsItsPermissionsAndOwner) {
  for (mode_t const bits : {0600, 0640, 0644, 0666, 0400}) {
    fs::remove(file_);
    write(bytes_of(preferences()));
    chmod(file_.c_str(), bits);
    remove();
    EXPECT_TRUE(is_cleaned(read()));
    EXPECT_EQ(status(file_).st_mode & 07777, bits);
  }
  if (chown(file_.c_str(), 1234, 5678) != 0) return;  // one user is all that there is here
  write(bytes_of(preferences()));
  remove();
  EXPECT_TRUE(is_cleaned(read()));
  EXPECT_EQ(status(file_).st_uid, 1234u);
  EXPECT_EQ(status(file_).st_gid, 5678u);
}

TEST_F(HelpCacheFile, BehindALink) {
  fs::path const real = folder_ / "real.plist";
  write(bytes_of(preferences()));
  fs::rename(file_, real);
  fs::create_symlink("real.plist", file_);
  remove();
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_TRUE(is_cleaned(read()));
  fs::remove(real);
  remove();
  EXPECT_THAT(names(), ElementsAre("com.apple.help.plist"));
  fs::remove(file_);
  fs::create_directory_symlink(".", file_);
  remove();
  EXPECT_TRUE(fs::is_symlink(file_));
}

TEST_F(HelpCacheFile, NotThereOrAFolder) {
  remove();
  EXPECT_THAT(names(), ElementsAre());
  fs::create_directory(file_);
  remove();
  EXPECT_TRUE(fs::is_directory(file_));
  fs::remove_all("/mnt/h\xC3\xB6me/Library");
  remove();
  EXPECT_FALSE(fs::exists("/mnt/h\xC3\xB6me/Library"));
  fs::create_directories(folder_);
}

// As a user who is bound by permissions.
TEST_F(HelpCacheFile, ThatTheUserMayNotChange) {
  std::string const file = bytes_of(preferences());
  write(file);
  auto const try_it = [] {
    return test::in_child([] {
      test::drop_privileges();
      remove();
      return 0;
    });
  };
  chmod(folder_.c_str(), 0555);
  EXPECT_EQ(try_it(), 0);
  EXPECT_EQ(read(), file);
  chmod(folder_.c_str(), 0755);
  chmod(file_.c_str(), 0);
  EXPECT_EQ(try_it(), 0);
  EXPECT_EQ(read(), file);
  EXPECT_THAT(names(), ElementsAre("com.apple.help.plist"));
}

TEST_F(HelpCacheFile, OnADiskThatIsFullOrReadOnly) {
  ASSERT_EQ(mount("directfax-test", folder_.c_str(), "tmpfs", 0, "size=64k,mode=0755"), 0);
  std::string const file = bytes_of(preferences());
  write(file);
  {
    std::ofstream rest(folder_ / "rest");
    for (int i = 0; i < 64; ++i) rest << std::string(1024, 'x') << std::flush;
  }
  remove();
  EXPECT_EQ(read(), file);
  EXPECT_THAT(names(), testing::UnorderedElementsAre("com.apple.help.plist", "rest"));
  fs::remove(folder_ / "rest");
  ASSERT_EQ(mount(nullptr, folder_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  remove();
  EXPECT_EQ(read(), file);
  ASSERT_EQ(mount(nullptr, folder_.c_str(), nullptr, MS_REMOUNT, "size=64k"), 0);
  remove();
  EXPECT_TRUE(is_cleaned(read()));
}

}  // namespace
