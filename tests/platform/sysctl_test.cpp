#include <sys/sysctl.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <sys/utsname.h>

namespace {

int release[] = {CTL_KERN, KERN_OSRELEASE};

std::string numbers() {
  utsname system;
  uname(&system);
  return std::string(system.release, std::strspn(system.release, "0123456789."));
}

TEST(Sysctl, ReleaseFitsTheBufferOfACaller) {
  char text[16];
  std::memset(text, 'x', sizeof text);
  size_t length = sizeof text;
  ASSERT_EQ(sysctl(release, 2, text, &length, nullptr, 0), 0);
  EXPECT_EQ(std::string(text), numbers());
  EXPECT_EQ(length, numbers().size() + 1);
}

TEST(Sysctl, LengthAloneAndNoRoom) {
  size_t length = 0;
  ASSERT_EQ(sysctl(release, 2, nullptr, &length, nullptr, 0), 0);
  EXPECT_EQ(length, numbers().size() + 1);

  char text[4] = {'x', 'x', 'x', 'x'};
  length = 2;
  EXPECT_EQ(sysctl(release, 2, text, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, ENOMEM);
  EXPECT_EQ(length, 2u);
  EXPECT_EQ(std::string(text, 4), numbers().substr(0, 2) + "xx");
}

TEST(Sysctl, Refusals) {
  char text[64];
  size_t length = sizeof text;
  int other[] = {CTL_KERN, 99};
  EXPECT_EQ(sysctl(other, 2, text, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(sysctl(release, 1, text, &length, nullptr, 0), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(sysctl(release, 2, text, &length, text, 1), -1);
  EXPECT_EQ(errno, EPERM);
  EXPECT_EQ(sysctl(release, 2, text, nullptr, nullptr, 0), -1);
  EXPECT_EQ(errno, EFAULT);
}

}  // namespace
