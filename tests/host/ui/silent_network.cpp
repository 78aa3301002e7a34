#include "silent_network.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace fax::host {

namespace {

constexpr char kPlace[] = "/mnt";  // where the files lie that stand in for the system's

bool write_file(std::string const &path, std::string const &text) {
  std::ofstream file(path);
  file << text;
  file.close();
  return !file.fail();
}

bool unshare_all() {
  if (geteuid() == 0) return unshare(CLONE_NEWNET | CLONE_NEWNS) == 0;
  std::string const user = std::to_string(geteuid()), group = std::to_string(getegid());
  return unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) == 0 && write_file("/proc/self/setgroups", "deny") &&
         write_file("/proc/self/uid_map", user + " " + user + " 1") &&
         write_file("/proc/self/gid_map", group + " " + group + " 1");
}

bool replace(char const *name, std::string const &text) {
  std::string const path = std::string(kPlace) + "/" + name;
  return write_file(path, text) &&
         mount(path.c_str(), (std::string("/etc/") + name).c_str(), nullptr, MS_BIND, nullptr) == 0;
}

// What is not there needs no hiding.
bool hide(char const *folder) { return mount("none", folder, "tmpfs", 0, nullptr) == 0 || errno == ENOENT; }

bool raise_loopback() {
  int const socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request = {};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP | IFF_RUNNING;
  bool const done = ioctl(socket, SIOCSIFFLAGS, &request) == 0;
  close(socket);
  return done;
}

// Denies what begins with a certain word and lets every other question lie.
void serve(int socket) {
  char packet[512];
  sockaddr_in asker = {};
  for (;;) {
    socklen_t size = sizeof asker;
    ssize_t const length = recvfrom(socket, packet, sizeof packet, 0, reinterpret_cast<sockaddr *>(&asker), &size);
    if (length < 20) continue;
    // The first label of the name stands behind the header of 12 bytes and its own length.
    std::string const name(packet + 13, static_cast<std::size_t>(length) - 13);
    bool const slow = name.starts_with("slow");
    if (!slow && !name.starts_with("unknown")) continue;
    // The two questions of a look-up, for either family, come one after the other.
    if (slow) std::this_thread::sleep_for(std::chrono::milliseconds(200));
    packet[2] = static_cast<char>(0x81);  // an answer
    packet[3] = static_cast<char>(0x83);  // there is no such name
    sendto(socket, packet, static_cast<std::size_t>(length), 0, reinterpret_cast<sockaddr *>(&asker), size);
  }
}

bool start_name_server() {
  int const socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(53);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) return false;
  std::thread(serve, socket).detach();
  return true;
}

}  // namespace

std::string enter_silent_network() {
  bool const done = unshare_all() && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    mount("none", kPlace, "tmpfs", 0, nullptr) == 0 &&
                    replace("resolv.conf", "nameserver 127.0.0.1\n") && replace("hosts", "192.0.2.20 office.example\n") && replace("nsswitch.conf", "hosts: files dns\n") &&
                    hide("/run/dbus") && hide("/run/avahi-daemon") && raise_loopback() && start_name_server();
  return done ? "" : std::strerror(errno);
}

}  // namespace fax::host
