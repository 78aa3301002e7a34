// The library as programs meet it: opened by its path, its operations found by name, its strings and records raw.
#include "books.h"
#include "operations.h"
#include "quoltanis/records.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <signal.h>
#include <time.h>

#include <cstring>
#include <iostream>
#include <memory>
#include <random>

namespace fax {
namespace {

using testing::ElementsAre;

struct Release {
  void operator()(void const *string) const { CFRelease(string); }
};
using String = std::unique_ptr<struct __CFString const, Release>;

String string(std::string const &utf8) {
  return String(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(utf8.data()),
                                        static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

std::u16string units(CFStringRef text) {
  std::u16string all;
  for (CFIndex i = 0; i < CFStringGetLength(text); ++i) all += CFStringGetCharacterAtIndex(text, i);
  return all;
}

class BoundaryTest : public gad::BookTest {
protected:
  BoundaryTest() { setenv("DIRECTFAX_ADDRESSBOOKS", folder.c_str(), 1); }
  ~BoundaryTest() override { unsetenv("DIRECTFAX_ADDRESSBOOKS"); }
  void SetUp() override { ASSERT_NE(library(), nullptr) << dlerror(); }
  Operations const q;
};

TEST_F(BoundaryTest, ListsTheFolder) {
  EXPECT_EQ(q.AbifGADFile_GetFileList(), nullptr);
  for (char const *name : {"/Ö.gad", "/a.gad", "/\xFF.gad"}) gad::put(folder + name, "");
  CFStringRef const place = q.AbifGADFile_GetFileDirectory(), list = q.AbifGADFile_GetFileList();
  ASSERT_NE(place, nullptr);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(units(list), std::u16string(u"a.gad\0Ö.gad\0", 12)) << "each name ended, none that is no Unicode";
  gad::put(folder + "/b.gad", "");
  EXPECT_EQ(units(q.AbifGADFile_GetFileList()).size(), 18u);
  EXPECT_EQ(units(list).size(), 12u) << "lives on";
  EXPECT_EQ(q.AbifGADFile_GetFileDirectory(), place) << "no new object for the same text";
  setenv("DIRECTFAX_ADDRESSBOOKS", "/nowhere", 1);
  EXPECT_EQ(q.AbifGADFile_GetFileDirectory(), nullptr);
  EXPECT_EQ(q.AbifGADFile_GetFileList(), nullptr);
}

TEST_F(BoundaryTest, AddsAndReadsAFile) {
  make(12);
  String const file = string(path);
  alignas(8) std::byte buffer[1 + 2 * sizeof(MyFaxRecord)] = {};  // at an odd address
  MyFaxRecord one{};
  std::copy_n(u"Åsa", 3, one.name);
  std::copy_n(u"1", 1, one.number);
  one.registered = 1'700'000'000;
  std::memcpy(buffer + 1, &one, sizeof one);
  one.name[0] = u'B';
  std::memcpy(buffer + 1 + sizeof one, &one, sizeof one);

  ABIFDataRef const fresh = q.ABIFData_Create();
  EXPECT_EQ(q.ABIFData_Add_MyFax(fresh, 2, buffer + 1), 0u);
  EXPECT_EQ(q.ABIFData_GetCount_MyFax(fresh), 2);
  EXPECT_EQ(q.AbifGADFile_Add(file.get(), fresh, 0), 0u);
  EXPECT_EQ(q.AbifGADFile_Add(file.get(), fresh, 0), 0x20000010u);
  EXPECT_EQ(q.ABIFData_Add_MyFax(fresh, 1, buffer + 1), 0x20000010u);
  q.ABIFData_Delete(fresh);

  ABIFDataRef const read = q.ABIFData_Create();
  EXPECT_EQ(q.AbifGADFile_Read(string("/none.gad").get(), read, 0), 0x20000110u);
  ASSERT_EQ(q.AbifGADFile_Read(file.get(), read, 0), 0u);
  ASSERT_EQ(q.AbifGADFile_Read(file.get(), read, 0), 0u) << "replaces, does not add";
  ASSERT_EQ(q.ABIFData_GetCount_MyFax(read), 14);
  ASSERT_EQ(q.ABIFData_GetCount_MyFaxGroup(read), 1);
  EXPECT_EQ(q.ABIFData_GetCount_Contact(read), 0);
  q.ABIFData_GetAt_MyFax(read, 12, buffer + 1);
  std::memcpy(&one, buffer + 1, sizeof one);
  EXPECT_EQ(one.id, 13);
  EXPECT_EQ(std::u16string(one.name), u"Åsa");
  EXPECT_EQ(std::u16string(one.index_key), u"Åsa");
  EXPECT_EQ(one.registered, 1'700'000'000);
  std::vector<std::uint16_t> group((sizeof(MyFaxGroupHead) + 20) / 2, 0xEEEE);
  q.ABIFData_GetAt_MyFaxGroup(read, 0, group.data());
  EXPECT_EQ(std::u16string(reinterpret_cast<char16_t *>(group.data() + 1)), u"First");
  EXPECT_EQ(group[92], 10);
  EXPECT_EQ(group[93], 1);
  EXPECT_EQ(group.back(), 10);
  q.ABIFData_Delete(read);
}

// Whatever moment a program is killed at, what it was told to be in the file is there, and the file is whole.
TEST_F(BoundaryTest, KeepsWhatItAcknowledgedThroughKills) {
  ASSERT_EQ(gad::File::create(path), Status::success);
  std::mt19937 random(3);
  int acknowledged = 0, torn = 0;
  for (int round = 0; round < 50; ++round) {
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    pid_t const child = fork();
    if (child == 0) {
      for (int number = acknowledged;; ++number) {
        MyFaxRecord record{};
        std::ranges::copy(std::to_string(round * 1'000'000 + number), record.name);
        record.number[0] = u'1';
        ABIFDataRef const data = q.ABIFData_Create();
        bool const added = q.ABIFData_Add_MyFax(data, 1, &record) == 0 &&
                           q.AbifGADFile_Add(string(path).get(), data, 0) == 0 && write(channel[1], "+", 1) == 1;
        q.ABIFData_Delete(data);
        if (!added) _exit(1);
      }
    }
    close(channel[1]);
    usleep(2'000 + random() % 30'000);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    char byte;
    while (read(channel[0], &byte, 1) == 1) ++acknowledged;
    close(channel[0]);
    if (std::filesystem::exists(path + "-journal")) ++torn;
    gad::Book const book = gad::read_book(path);
    ASSERT_EQ(book.status, Status::success);
    int const there = static_cast<int>(book.people.size());
    ASSERT_TRUE(there == acknowledged || there == acknowledged + 1) << there << " for " << acknowledged;
    acknowledged = there;  // one may have been in the file before it could be told
  }
  gad::File whole;
  EXPECT_EQ(gad::File::open(path, gad::Access::change, whole), Status::success) << "looks through the whole file";
  std::cout << "50 kills, " << acknowledged << " individuals, " << torn << " changes undone\n";
  EXPECT_GT(acknowledged, 0);
}

TEST_F(BoundaryTest, TakesNothingForAnything) {
  make(1);
  ABIFDataRef const data = q.ABIFData_Create();
  String const file = string(path),
               half(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>("\x3D\xD8"), 2,
                                            kCFStringEncodingUTF16LE, false));
  ASSERT_EQ(q.AbifGADFile_Read(file.get(), data, 0), 0u);
  std::vector<std::byte> buffer(2000, std::byte{7}), untouched = buffer;
  for (auto const get :
       {q.ABIFData_GetAt_MyFax, q.ABIFData_GetAt_MyFaxGroup, q.ABIFData_GetAt_Contact, q.ABIFData_GetAt_FaxGroup}) {
    EXPECT_NE(get(data, 1, buffer.data()), 0u);
    EXPECT_NE(get(data, 0xFFFFFFFF, buffer.data()), 0u);
    EXPECT_NE(get(nullptr, 0, buffer.data()), 0u);
    EXPECT_NE(get(data, 0, nullptr), 0u);
  }
  EXPECT_EQ(buffer, untouched);
  for (auto const count : {q.ABIFData_GetCount_MyFax, q.ABIFData_GetCount_MyFaxGroup, q.ABIFData_GetCount_Contact,
                           q.ABIFData_GetCount_FaxGroup})
    EXPECT_EQ(count(nullptr), 0);
  EXPECT_NE(q.ABIFData_Add_MyFax(nullptr, 1, buffer.data()), 0u);
  EXPECT_NE(q.ABIFData_Add_MyFax(data, 1, nullptr), 0u);
  EXPECT_EQ(q.ABIFData_Add_MyFax(data, 0, nullptr), 0u);
  for (auto const operation : {q.AbifGADFile_Read, q.AbifGADFile_Add}) {
    EXPECT_NE(operation(nullptr, data, 0), 0u);
    EXPECT_NE(operation(file.get(), nullptr, 0), 0u);
    EXPECT_NE(operation(string("").get(), data, 0), 0u);
    EXPECT_NE(operation(reinterpret_cast<CFStringRef>(kCFBooleanTrue), data, 0), 0u);
    EXPECT_NE(operation(half.get(), data, 0), 0u);
  }
  EXPECT_EQ(q.ABIFData_GetCount_MyFax(data), 1);
  q.ABIFData_Delete(data);
  q.ABIFData_Delete(nullptr);
}

TEST_F(BoundaryTest, ThePrinter) {
  ABIFDataRef const data = q.ABIFData_Create();
  String const somewhere = string("127.0.0.1"), password = string("1234");
  setenv("DIRECTFAX_PRINTER_BOOK", (folder + "/conf").c_str(), 1);
  gad::put(folder + "/conf", "nonsense");
  EXPECT_EQ(q.Abif_Initialize(nullptr), 0x20000121u);
  gad::put(folder + "/conf", "port = 1\n");
  EXPECT_EQ(q.Abif_Initialize(nullptr), 0u);
  EXPECT_EQ(q.AbifDevice_GetStatus(nullptr, nullptr), 0x20000120u) << "none set";
  q.AbifDevice_SetDestinationDevice(nullptr, 1, somewhere.get(), 2);
  EXPECT_EQ(q.AbifDevice_GetStatus(nullptr, nullptr), 0x20000122u) << "nobody there";
  EXPECT_EQ(q.AbifDevice_ReadData(nullptr, data, 23, password.get()), 0x20000122u);
  EXPECT_EQ(q.AbifDevice_ReadData(nullptr, data, 23, nullptr), 0x20000003u);
  EXPECT_EQ(q.AbifDevice_ReadData(nullptr, nullptr, 23, password.get()), 0x20000101u);
  q.AbifDevice_SetDestinationDevice(nullptr, 0, somewhere.get(), 2);
  EXPECT_EQ(q.AbifDevice_GetStatus(nullptr, nullptr), 0x20000120u) << "on USB";
  q.AbifDevice_SetDestinationDevice(nullptr, 1, somewhere.get(), 2);
  EXPECT_EQ(q.Abif_Initialize(nullptr), 0u);
  EXPECT_EQ(q.AbifDevice_GetStatus(nullptr, nullptr), 0x20000120u) << "forgotten";
  unsetenv("DIRECTFAX_PRINTER_BOOK");
  q.ABIFData_Delete(data);
}

// Reading into a handle and taking every record out again, against a bare loop over the same columns.
TEST_F(BoundaryTest, ReadsNearlyAsFastAsTheFileCanBeRead) {
  // Of the processor: the tests beside this one take time too.
  auto const milliseconds = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  for (int const size : {10'000, 100'000}) {
    std::filesystem::remove(path);
    std::vector<gad::Individual> people;
    for (int i = 0; i < size; ++i)
      people.push_back({.name = "Näme " + std::to_string(i) + ", Åsa", .number = "+46 8 " + std::to_string(i)});
    ASSERT_EQ(gad::File::create(path), Status::success);
    ASSERT_EQ(gad::add(path, people), Status::success);
    String const file = string(path);
    std::vector<double> bare_times, own_times;
    for (int round = 0; round < 5; ++round) {
      double start = milliseconds();
      sqlite3 *database = nullptr;
      sqlite3_stmt *rows = nullptr;
      ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
      sqlite3_prepare_v2(database, "SELECT id, name, number, company, note FROM individuals", -1, &rows, nullptr);
      std::size_t touched = 0;
      while (sqlite3_step(rows) == SQLITE_ROW)
        for (int column = 0; column < 5; ++column) touched += sqlite3_column_text(rows, column)[0];
      sqlite3_finalize(rows);
      sqlite3_close(database);
      bare_times.push_back(milliseconds() - start);
      EXPECT_GT(touched, 0u);

      start = milliseconds();
      ABIFDataRef const data = q.ABIFData_Create();
      EXPECT_EQ(q.AbifGADFile_Read(file.get(), data, 0), 0u);
      MyFaxRecord record;
      int read = 0;
      while (read < q.ABIFData_GetCount_MyFax(data)) q.ABIFData_GetAt_MyFax(data, static_cast<UInt32>(read++), &record);
      q.ABIFData_Delete(data);
      own_times.push_back(milliseconds() - start);
      EXPECT_EQ(read, size);
    }
    auto const median = [](std::vector<double> &times) {
      std::ranges::sort(times);
      return times[times.size() / 2];
    };
    double const bare = median(bare_times), own = median(own_times);
    std::cout << size << " individuals: bare loop " << bare << " ms, library " << own << " ms, " << own / bare
              << " times\n";
    EXPECT_LT(own, bare * 2.5 * TIME_FACTOR);
  }
}

}  // namespace
}  // namespace fax
