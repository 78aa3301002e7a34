#include "namespaces.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <set>
#include <stdexcept>
#include <linux/capability.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

bool tell(char const *file, std::string const &text) {
  int const out = open(file, O_WRONLY | O_CLOEXEC);
  bool const told = out >= 0 && write(out, text.data(), text.size()) == ssize_t(text.size());
  if (out >= 0) close(out);
  return told;
}

bool become_root_of_own_users() {
  std::string const user = std::to_string(geteuid()), group = std::to_string(getegid());
  return unshare(CLONE_NEWUSER) == 0 && tell("/proc/self/setgroups", "deny") &&
         tell("/proc/self/uid_map", "0 " + user + " 1") && tell("/proc/self/gid_map", "0 " + group + " 1");
}

}  // namespace

bool enter_namespaces() {
  if (unshare(CLONE_NEWNS | CLONE_NEWNET) != 0 &&
      (!become_root_of_own_users() || unshare(CLONE_NEWNS | CLONE_NEWNET) != 0))
    return false;
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("directfax-test", "/mnt", "tmpfs", 0, "mode=0755") == 0;
}

void renew_network() { ASSERT_EQ(unshare(CLONE_NEWNET), 0); }

void replace_system_file(std::string const &path, std::string const &content) {
  std::string copy = "/mnt" + path;
  for (auto &letter : copy) letter = letter == '/' ? '_' : letter;
  copy = "/mnt/" + copy;
  static std::set<std::string> replaced;
  std::ofstream(copy, std::ios::binary) << content;
  if (replaced.insert(path).second) {
    ASSERT_EQ(mount(copy.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0) << path;
  }
}

void replace_accounts(std::string const &passwd, std::string const &group) {
  replace_system_file("/etc/nsswitch.conf", "passwd: files\ngroup: files\n");
  replace_system_file("/etc/passwd", passwd);
  replace_system_file("/etc/group", group);
}

void run(std::string const &command) {
  ASSERT_EQ(std::system(("PATH=$PATH:/usr/sbin:/sbin; " + command).c_str()), 0) << command;
}

int in_child(std::function<int()> const &body) {
  pid_t const child = fork();
  if (child == 0) {
    try {
      _exit(body());
    } catch (...) {
      std::abort();  // not into the tests of the parent
    }
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  ADD_FAILURE() << "ended by signal " << WTERMSIG(status);
  return -1;
}

void drop_privileges() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct none[2] = {};
  if (syscall(SYS_capset, &header, none) != 0) throw std::runtime_error("cannot drop privileges");
}

}  // namespace test
