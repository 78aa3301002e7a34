// The address-book library with each of its allocations failing once: every operation answers a status, nothing leaves
// it as an exception, no file is changed by half, and nothing stays open.
#include "allocations.h"

#include "../quoltanis/books.h"
#include "../quoltanis/operations.h"
#include "quoltanis/records.h"

#include <algorithm>
#include <iostream>

namespace fax {
namespace {

constexpr UInt32 kSuccess = 0, kMemory = 0x20000102, kArgument = 0x20000101, kNoAddress = 0x20000120, kUnreachable = 0x20000122;

CFStringRef string(std::string const &text) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8);
}

std::size_t open_files() {
  auto const all = std::filesystem::directory_iterator("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// A failure that says what it is. The platform's strings cannot say it: what they have no memory for is unreadable.
bool no_memory(UInt32 status) { return status == kMemory || status == kArgument; }

class BoundaryAllocation : public gad::BookTest, protected Operations {
protected:
  static void SetUpTestSuite() { test::watch_sqlite(); }

  BoundaryAllocation() {
    setenv("DIRECTFAX_ADDRESSBOOKS", folder.c_str(), 1);
    gad::put(folder + "/book.conf", "tls = none\nport = 1\ntime-out = 1\nbind-dn = cn=a-name-that-is-not-short,dc=b\n");
    setenv("DIRECTFAX_PRINTER_BOOK", (folder + "/book.conf").c_str(), 1);
  }
  ~BoundaryAllocation() override {
    CFRelease(file_);
    unsetenv("DIRECTFAX_ADDRESSBOOKS");
    unsetenv("DIRECTFAX_PRINTER_BOOK");
  }

  void SetUp() override {
    ASSERT_NE(AbifGADFile_Read, nullptr) << dlerror();
    make(12);
    before_ = gad::contents(path);
    ABIFData_Delete(with_records(1));  // what is made once and kept
  }

  ABIFDataRef with_records(UInt32 count) const {
    std::vector<MyFaxRecord> records(count);
    for (UInt32 i = 0; i < count; ++i) {
      std::ranges::copy(u"A name that does not fit into a short string", records[i].name);
      records[i].name[0] = static_cast<char16_t>(u'A' + i);
      std::ranges::copy(u"+46 8 000 000 000 000 000", records[i].number);
    }
    ABIFDataRef const data = ABIFData_Create();
    EXPECT_EQ(ABIFData_Add_MyFax(data, count, records.data()), kSuccess);
    return data;
  }

  // Has each allocation of operation fail once, and looks at what it leaves open.
  int fail_each(std::function<void()> const &before, std::function<void()> const &operation,
                std::function<void(bool)> const &after) {
    std::size_t files = 0;
    long long bytes = 0;
    int const count = test::fail_each(
        [&] {
          before();
          files = open_files();
          bytes = test::sqlite_bytes();
        },
        operation,
        [&](bool failed) {
          EXPECT_EQ(open_files(), files);
          EXPECT_EQ(test::sqlite_bytes(), bytes);
          after(failed);
        });
    std::cout << count << " allocations failed\n";
    return count;
  }

  CFStringRef const file_ = string(path);
  std::string before_;  // the book's bytes
};

TEST_F(BoundaryAllocation, TheFolderAndItsList) {
  for (auto const &[operation, least] : {std::pair{AbifGADFile_GetFileDirectory, 2},
                                        std::pair{AbifGADFile_GetFileList, 4}}) {
    CFStringRef answer = nullptr;
    EXPECT_GE(fail_each([] {}, [&] { answer = operation(); },
                        [&](bool failed) { EXPECT_TRUE(failed ? true : answer != nullptr); }),
              least);
    EXPECT_EQ(operation(), answer) << "what failed has left no string that is another one";
  }
}

TEST_F(BoundaryAllocation, Handles) {
  ABIFDataRef data = nullptr;
  EXPECT_GE(fail_each([] {}, [&] { data = ABIFData_Create(); },
                      [&](bool failed) {
                        EXPECT_EQ(data == nullptr, failed);
                        ABIFData_Delete(data);
                      }),
            1);
}

TEST_F(BoundaryAllocation, RecordsAreAddedAllOrNone) {
  ABIFDataRef data = nullptr;
  std::vector<MyFaxRecord> more(3);
  for (std::size_t i = 0; i < more.size(); ++i) {
    std::ranges::copy(u"Another name that is longer than a short string", more[i].name);
    more[i].number[0] = static_cast<char16_t>(u'1' + i);
  }
  UInt32 status = 0;
  EXPECT_GE(fail_each([&] { data = with_records(4); }, [&] { status = ABIFData_Add_MyFax(data, 3, more.data()); },
                      [&](bool failed) {
                        EXPECT_EQ(status, failed ? kMemory : kSuccess);
                        EXPECT_EQ(ABIFData_GetCount_MyFax(data), failed ? 4 : 7);
                        ABIFData_Delete(data);
                      }),
            3);
}

TEST_F(BoundaryAllocation, AFileIsReadWholeOrNotAtAll) {
  ABIFDataRef data = nullptr;
  UInt32 status = 0;
  int spared = 0;  // SQLite does without some
  int const count = fail_each([&] { data = with_records(4); }, [&] { status = AbifGADFile_Read(file_, data, 0); },
                              [&](bool failed) {
                                EXPECT_TRUE(status == kSuccess || (failed && no_memory(status))) << std::hex << status;
                                spared += failed && status == kSuccess;
                                EXPECT_EQ(ABIFData_GetCount_MyFax(data), status == kSuccess ? 12 : 4);
                                EXPECT_EQ(ABIFData_GetCount_MyFaxGroup(data), status == kSuccess ? 1 : 0);
                                ABIFData_Delete(data);
                              });
  EXPECT_GT(count, 100);
  EXPECT_LT(spared, count / 2);
  EXPECT_EQ(gad::contents(path), before_);
}

TEST_F(BoundaryAllocation, AFileIsAddedToByAllOrNothing) {
  ABIFDataRef const data = with_records(4);
  UInt32 status = 0;
  int const count =
      fail_each([&] { gad::put(path, before_); }, [&] { status = AbifGADFile_Add(file_, data, 0); },
                [&](bool failed) {
                  EXPECT_TRUE(status == kSuccess || (failed && no_memory(status))) << std::hex << status;
                  gad::Book const book = gad::read_book(path);
                  EXPECT_EQ(book.status, Status::success);
                  EXPECT_EQ(book.people.size(), status == kSuccess ? 16u : 12u);
                  EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
                });
  EXPECT_GT(count, 100);
  ABIFData_Delete(data);
}

TEST_F(BoundaryAllocation, RecordsAreCountedAndTakenOut) {
  ABIFDataRef const data = ABIFData_Create();
  ASSERT_EQ(AbifGADFile_Read(file_, data, 0), kSuccess);
  std::vector<std::byte> buffer(4000);
  UInt32 status = 0;
  for (auto const get : {ABIFData_GetAt_MyFax, ABIFData_GetAt_MyFaxGroup}) {
    fail_each([] {}, [&] { status = get(data, 0, buffer.data()); },
              [&](bool failed) { EXPECT_EQ(status, failed ? kMemory : kSuccess); });
  }
  for (auto const get : {ABIFData_GetAt_Contact, ABIFData_GetAt_FaxGroup})
    fail_each([] {}, [&] { status = get(data, 0, buffer.data()); }, [&](bool) { EXPECT_NE(status, kSuccess); });
  SInt32 sum = 0;
  for (auto const count : {ABIFData_GetCount_MyFax, ABIFData_GetCount_MyFaxGroup, ABIFData_GetCount_Contact,
                           ABIFData_GetCount_FaxGroup})
    fail_each([] {}, [&] { sum += count(data); }, [](bool) {});
  EXPECT_EQ(sum, 13);
  ABIFData_Delete(data);
}

TEST_F(BoundaryAllocation, ThePrinterIsNeverAnotherThanTheOneThatWasSet) {
  CFStringRef const here = string("127.0.0.1"), there = string("0000:0000:0000:0000:0000:0000:0000:0001"),
                    password = string("a password that is not short");
  ABIFDataRef const data = ABIFData_Create();
  UInt32 status = 0;
  auto const set_here = [&] {
    ASSERT_EQ(Abif_Initialize(nullptr), kSuccess);
    AbifDevice_SetDestinationDevice(nullptr, 1, here, 2);
  };
  EXPECT_GT(fail_each([] {}, [&] { status = Abif_Initialize(nullptr); },
                      [&](bool failed) { EXPECT_EQ(status, failed ? kMemory : kSuccess); }),
            10);
  EXPECT_GE(fail_each(set_here, [&] { AbifDevice_SetDestinationDevice(nullptr, 1, there, 2); },
                      [&](bool failed) {
                        EXPECT_EQ(AbifDevice_GetStatus(nullptr, nullptr), failed ? kNoAddress : kUnreachable);
                      }),
            1);
  set_here();
  auto const answer = [&](bool failed) {
    EXPECT_TRUE(status == kUnreachable || (failed && no_memory(status))) << status;
  };
  fail_each([] {}, [&] { status = AbifDevice_GetStatus(nullptr, nullptr); }, answer);
  EXPECT_GT(fail_each([] {}, [&] { status = AbifDevice_ReadData(nullptr, data, 23, password); }, answer), 1);
  EXPECT_EQ(ABIFData_GetCount_Contact(data), 0);
  for (CFStringRef const text : {here, there, password}) CFRelease(text);
  ABIFData_Delete(data);
}

}  // namespace
}  // namespace fax
