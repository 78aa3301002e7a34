// What is asked of the running system once a process: the kernel's release and the home folder.
#include "namespaces.h"

#include "support/UtilityService.h"
#include "support/system_utilities.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <sys/personality.h>
#include <sys/utsname.h>

namespace {

long leading_number() {
  utsname system;
  uname(&system);
  return std::strtol(system.release, nullptr, 10);
}

// The kernel calls itself 2.6 to a process that asks for it.
TEST(KernelRelease, IsTheKernelsAndKept) {
  EXPECT_EQ(test::in_child([] { return getOSMinorVersion() == leading_number() - 4 ? 0 : 1; }), 0);
  EXPECT_EQ(test::in_child([] {
              personality(UNAME26);
              UInt32 word = 0;
              return leading_number() == 2 && getOSMinorVersion() == -2 && Gestalt_ALT(0x73797376, &word) == 0 &&
                             word == 0x1FE6
                         ? 0
                         : 1;
            }),
            0);
  EXPECT_EQ(test::in_child([] {
              SInt32 const first = getOSMinorVersion();
              personality(UNAME26);
              return leading_number() == 2 && getOSMinorVersion() == first ? 0 : 1;
            }),
            0);
}

bool sandboxed() {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  bool const answer = [UtilityService isSandboxed];
  [pool release];
  return answer;
}

TEST(Sandbox, ByTheHomeInTheUserDatabase) {
  struct {
    char const *first, *later;
    bool sandboxed;
  } const cases[] = {{"/mnt/Library/Containers/y/Data", "/mnt/x", true},
                     {"/mnt/x", "/mnt/Library/Containers/y/Data", false},
                     {"/mnt/MyContainersOld", "/mnt/x", true},
                     {"/mnt/containers", "/mnt/x", false},
                     {"/mnt/Containers \xC3\xBC", "/mnt/x", true},
                     {"", "/mnt/Containers", false}};
  for (auto const &each : cases) {
    SCOPED_TRACE(each.first);
    auto const live_in = [](std::string const &home) {
      test::replace_accounts("root:x:0:0::" + home + ":/bin/sh\n", "");
    };
    EXPECT_EQ(test::in_child([&] {
                live_in(each.first);
                bool const first = sandboxed();
                live_in(each.later);
                return first == each.sandboxed && sandboxed() == each.sandboxed ? 0 : 1;
              }),
              0);
  }
}

}  // namespace
