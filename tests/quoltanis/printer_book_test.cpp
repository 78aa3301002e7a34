// The printer's book from a real directory server, and from servers that misbehave.
#include "books.h"
#include "fake_server.h"
#include "quoltanis/directory.h"
#include "quoltanis/printer_book.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <linux/ipv6.h>
#include <net/if.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>

#include <chrono>
#include <cstring>
#include <filesystem>

namespace fax {
namespace {

using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

std::string const base = "base-dn = ou=addressbook,dc=printer,dc=local\nbind-dn = cn=addressbook,dc=printer,dc=local\n";
std::string const plain = "tls = none\ntime-out = 1\n";

// A port of loopback that nobody listens on, for both families.
int free_port() {
  int const probe = socket(AF_INET6, SOCK_STREAM, 0);
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  socklen_t size = sizeof address;
  int port = 0;
  if (bind(probe, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
      getsockname(probe, reinterpret_cast<sockaddr *>(&address), &size) == 0)
    port = ntohs(address.sin6_port);
  close(probe);
  return port;
}

std::size_t open_files() {
  auto const all = std::filesystem::directory_iterator("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

class PrinterBookTest : public gad::BookTest {
protected:
  // The statuses of looking for the printer and of reading it, by a configuration file.
  struct Answer {
    Status status, read;
    std::size_t contacts, groups;
    std::chrono::milliseconds time;
  };
  Answer ask(std::string const &configuration, std::string const &address = "127.0.0.1",
             std::string const &password = "1234") {
    PrinterBook const book = configured(configuration, address);
    Answer answer{book.status(), Status::success, 0, 0, {}};
    auto const start = Clock::now();
    answer.read = book.read(password, data);
    answer.time = std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - start);
    answer.contacts = data.individuals(Source::printer);
    answer.groups = data.groups(Source::printer);
    return answer;
  }

  PrinterBook configured(std::string const &configuration, std::string const &address = "127.0.0.1") {
    gad::put(folder + "/book.conf", configuration);
    setenv("DIRECTFAX_PRINTER_BOOK", (folder + "/book.conf").c_str(), 1);
    PrinterBook book;
    EXPECT_EQ(book.initialize(), Status::success);
    unsetenv("DIRECTFAX_PRINTER_BOOK");
    book.set_address(address);
    return book;
  }

  AddressData data;
};

// One server for all tests of this kind: it takes a while to fill.
class RealServer : public PrinterBookTest {
protected:
  static void SetUpTestSuite() {
    std::string pattern = (std::filesystem::temp_directory_path() / "slapd.XXXXXX").string();
    place = mkdtemp(pattern.data());
    for (int tries = 0; tries < 3; ++tries) {
      port = free_port();
      tls_port = free_port();
      std::string const command = std::string(PRIVATE_SLAPD) + " " + place + " " + std::to_string(port) + " " +
                                  std::to_string(tls_port) + " 10000 " + std::to_string(getpid());
      if (std::system(command.c_str()) == 0) return;
      std::filesystem::remove_all(place + "/db");
    }
    FAIL() << "slapd did not start";
  }
  static void TearDownTestSuite() {
    std::string const pid = gad::contents(place + "/pid");
    if (!pid.empty()) kill(std::stoi(pid), SIGTERM);
    for (int i = 0; i < 100 && !pid.empty() && kill(std::stoi(pid), 0) == 0; ++i) usleep(20'000);
    std::filesystem::remove_all(place);
  }
  std::string ca(std::string const &name = "ca") { return "ca-file = " + place + "/" + name + ".pem\n"; }
  std::string at_port() { return "port = " + std::to_string(port) + "\n"; }
  std::string at_tls_port() { return "tls = ldaps\nport = " + std::to_string(tls_port) + "\n"; }

  static inline std::string place;
  static inline int port = 0, tls_port = 0;
};

TEST_F(RealServer, TenThousandContactsOverStartTls) {
  Answer const answer = ask(base + at_port() + ca());
  EXPECT_EQ(answer.status, Status::ready);
  EXPECT_EQ(answer.read, Status::success);
  EXPECT_EQ(answer.contacts, 10'000u);
  EXPECT_EQ(answer.groups, 99u);
  std::cout << "10,000 contacts and 99 groups over StartTLS: " << answer.time.count() << " ms\n";
  EXPECT_LT(answer.time, std::chrono::seconds(1) * TIME_FACTOR);
  struct {
    FaxGroupHead head;
    std::uint16_t members[30];
  } group;
  data.write_group(0, &group.head);
  ASSERT_EQ(group.head.members, 30);
  EXPECT_EQ(group.members[0], 52);
  ContactRecord contact;
  data.write(41, contact);
  EXPECT_EQ(contact.id, 42);
  EXPECT_EQ(std::u16string(contact.number), u"+46 8 000042");
}

TEST_F(RealServer, WhatTheServerKnowsAndWhatNot) {
  std::string const unencrypted = "tls = none\n", few = "bind-dn = cn=few,dc=printer,dc=local\n";
  std::string const main = "base-dn = ou=addressbook,dc=printer,dc=local\n";
  struct Case {
    char const *what;
    std::string configuration, address, password;
    Status status, read;
  };
  using enum Status;
  for (auto const &row : {
           Case{"wrong password", base + at_port() + ca(), "127.0.0.1", "1235", ready, password},
           Case{"longer password", base + at_port() + ca(), "127.0.0.1", std::string("1234\0", 5), ready, password},
           Case{"no password", base + at_port() + ca(), "127.0.0.1", "", ready, password},
           Case{"unknown user", "bind-dn = cn=x\n" + main + at_port() + ca(), "127.0.0.1", "1234", ready, password},
           Case{"base and user from the server", at_port() + ca(), "127.0.0.1", "1234", ready, success},
           Case{"unknown base", "base-dn = o=x\nbind-dn = cn=addressbook,dc=printer,dc=local\n" + at_port() + ca(),
                "127.0.0.1", "1234", ready, refused},
           Case{"base that is no DN", "base-dn = x\n" + few + at_port() + ca(), "127.0.0.1", "1234", ready, refused},
           Case{"size limit", main + few + at_port() + ca(), "127.0.0.1", "1234", ready, incomplete},
           Case{"unencrypted", base + at_port() + unencrypted, "127.0.0.1", "1234", ready, success},
           Case{"ldaps", base + at_tls_port() + ca(), "127.0.0.1", "1234", ready, success},
           Case{"IPv6", base + at_port() + ca(), "::1", "1234", ready, success},
           Case{"IPv6 in brackets", base + at_port() + ca(), "[::1]", "1234", ready, success},
           Case{"certificate of another name", base + at_port() + ca() + "server-name = other.local\n", "127.0.0.1",
                "1234", tls, tls},
           Case{"certificate of that name", base + at_port() + ca() + "server-name = printer.local\n", "127.0.0.1",
                "1234", ready, success},
           Case{"certificate of a stranger", base + at_port() + ca("other"), "127.0.0.1", "1234", tls, tls},
           Case{"the same with ldaps", base + at_tls_port() + ca("other"), "127.0.0.1", "1234", tls, tls},
           Case{"the system's certificates", base + at_port(), "127.0.0.1", "1234", tls, tls},
           Case{"no certificates", base + at_port() + "ca-file = /none\n", "127.0.0.1", "1234", tls, tls},
           Case{"ldaps without encryption", base + unencrypted + "port = " + std::to_string(tls_port) + "\n",
                "127.0.0.1", "1234", unreachable, unreachable},
           Case{"a name", base + at_port() + ca(), "localhost", "1234", no_address, no_address},
           Case{"no address", base + at_port() + ca(), "", "1234", no_address, no_address},
           Case{"nobody there", base + "port = 1\n", "127.0.0.1", "1234", unreachable, unreachable},
       }) {
    data = {};
    std::size_t const files = open_files();
    Answer const answer = ask(row.configuration, row.address, row.password);
    EXPECT_EQ(answer.status, row.status) << row.what;
    EXPECT_EQ(answer.read, row.read) << row.what;
    EXPECT_EQ(answer.contacts > 0, row.read == success) << row.what << answer.contacts;
    EXPECT_EQ(open_files(), files) << row.what;
  }
}

TEST_F(RealServer, OddEntries) {
  Answer const answer =
      ask("base-dn = ou=odd,dc=printer,dc=local\nbind-dn = cn=addressbook,dc=printer,dc=local\n" + at_port() + ca());
  ASSERT_EQ(answer.read, Status::success);
  std::vector<std::u16string> people;
  unsigned two = 0;
  for (std::size_t i = 0; i < answer.contacts; ++i) {
    ContactRecord contact;
    data.write(i, contact);
    people.push_back(std::u16string(contact.name) + u" " + contact.number);
    if (people.back() == u"Two 1") two = contact.id;
  }
  EXPECT_THAT(people, testing::UnorderedElementsAre(u"Two 1", u"Two 2", u"Taken 3", u"Åsa 4"));
  ASSERT_EQ(answer.groups, 1u);
  struct {
    FaxGroupHead head;
    std::uint16_t member;
  } group;
  data.write_group(0, &group.head);
  EXPECT_EQ(group.head.members, 1);
  EXPECT_EQ(group.member, two);
}

using Line = FakeServer::Line;

std::string const ann = attribute("cn", {"Ann"}) + attribute("facsimileTelephoneNumber", {"1"});

// Lets the client in; its search has the id that comes back.
int let_in(Line const &line) {
  int const bind = line.request();
  line.send(result(bind, bind == 1 ? 0x61 : 0x65, 0));
  return line.request();
}

TEST_F(PrinterBookTest, ServersThatMisbehave) {
  struct Case {
    char const *what;
    std::function<void(Line const &)> script;
    Status read;
    int longest_ms;  // on an idle machine
    char const *configuration = "";
  };
  using enum Status;
  auto const start_tls_then = [](std::string const &answer) {
    return [answer](Line const &line) {
      int const id = line.request();
      line.send(answer.empty() ? result(id, 0x78, 0) : answer);
      line.idle();
    };
  };
  std::string const page_again = ber(
      0xA0, ber(0x30, ber(0x04, "1.2.840.113556.1.4.319") + ber(0x04, ber(0x30, ber(0x02, "\1") + ber(0x04, "x")))));
  auto const paged = [page_again](int id) {
    char const code = 0;
    return message(id, ber(0x65, ber(0x0A, {&code, 1}) + ber(0x04, "") + ber(0x04, "")) + page_again);
  };
  Case const cases[] = {
      {"never answers", [](Line const &line) { line.idle(); }, time_out, 2500},
      {"ends at once", [](Line const &) {}, unreachable, 500},
      {"ends after the bind", [](Line const &line) { let_in(line); }, unreachable, 500},
      {"is silent after the bind",
       [](Line const &line) {
         let_in(line);
         line.idle();
       },
       time_out, 2500},
      {"ends between two entries", [](Line const &line) { line.send(entry(let_in(line), "cn=a", ann)); }, unreachable,
       500},
      {"ends in mid-entry", [](Line const &line) { line.send(entry(let_in(line), "cn=a", ann).substr(0, 20)); },
       unreachable, 500},
      {"stops in mid-entry",
       [](Line const &line) {
         line.send(entry(let_in(line), "cn=a", ann).substr(0, 20));
         line.idle();
       },
       time_out, 2500},
      {"sends a byte now and then",
       [](Line const &line) {
         for (char const byte : entry(let_in(line), "cn=a", ann)) {
           if (!line.send({&byte, 1})) return;
           line.pause();
           line.pause();
         }
         line.idle();
       },
       time_out, 3500},
      {"says no LDAP",
       [](Line const &line) {
         line.send("HTTP/1.0 400 Bad Request\r\n\r\n");
         line.idle();
       },
       time_out, 2500},
      {"claims a message of 2 GB",
       [](Line const &line) {
         let_in(line);
         line.send(std::string_view("\x30\x84\x7F\xFF\xFF\xFF\x02\x01\x02", 9));
         line.idle();
       },
       unreachable, 500},
      {"sends broken entries",
       [](Line const &line) {
         int const id = let_in(line);
         line.send(message(id, ber(0x64,
                                   "\x04\x7F"
                                   "abc")) +
                   message(id, ber(0x64, "")) + result(id, 0x65, 0));
         line.idle();
       },
       bad_answer, 2500},
      {"sends entries for ever",
       [](Line const &line) {
         std::string const one = entry(let_in(line), "cn=a", ann);
         std::string many;
         for (int i = 0; i < 500; ++i) many += one;
         while (line.send(many)) continue;
       },
       incomplete, 6500, "time-out = 10\n"},  // of entries there may be too many, of time not too little
      {"sends empty pages for ever",
       [paged](Line const &line) {
         for (int id = let_in(line); id != 0; id = line.request())
           if (!line.send(paged(id))) return;
       },
       time_out, 7500},
      {"refuses the search",
       [](Line const &line) {
         line.send(result(let_in(line), 0x65, 50));
         line.idle();
       },
       refused, 500},
      {"is busy with itself",
       [](Line const &line) {
         line.send(result(let_in(line), 0x65, 11));
         line.idle();
       },
       incomplete, 500},
      {"refuses StartTLS", start_tls_then(result(1, 0x78, 2)), tls, 500, "tls = starttls\n"},
      {"is silent after StartTLS", start_tls_then(""), time_out, 2500, "tls = starttls\n"},
      {"speaks plain where TLS is due", start_tls_then(result(1, 0x78, 0) + std::string(200, 'x')), tls, 2500,
       "tls = starttls\n"},
      {"is silent where TLS is due", [](Line const &line) { line.idle(); }, time_out, 2500, "tls = ldaps\n"},
  };
  for (auto const &row : cases) {
    FakeServer const server(row.script);
    PrinterBook const book =
        configured(base + plain + row.configuration + "port = " + std::to_string(server.port()) + "\n");
    auto const start = Clock::now();
    Status const status = book.read("1234", data);
    auto const time = std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - start);
    EXPECT_EQ(status, row.read) << row.what;
    EXPECT_LT(time.count(), row.longest_ms * 3 * TIME_FACTOR) << row.what;
    EXPECT_EQ(data.individuals(Source::printer), 0u) << row.what;
  }
}

// One whole conversation, cut off before each of its messages: what was read before stays.
TEST_F(PrinterBookTest, AConversationCutAnywhereKeepsWhatWasRead) {
  constexpr int whole = 5;
  std::atomic<int> left = whole;
  FakeServer const server([&](Line const &line) {
    int budget = left, bind = 0, search = 0;
    auto const say = [&](std::string const &text) { return budget-- > 0 && line.send(text); };
    bind = line.request();
    if (!say(result(bind, 0x61, 0))) return;
    search = line.request();
    for (char const *name : {"cn=a", "cn=b", "cn=c"})
      if (!say(entry(search, name, ann))) return;
    if (say(result(search, 0x65, 0))) line.idle();
  });
  PrinterBook const book = configured(base + plain + "port = " + std::to_string(server.port()) + "\n");
  ASSERT_EQ(book.read("1234", data), Status::success);
  std::size_t const contacts = data.individuals(Source::printer);
  EXPECT_GT(contacts, 0u);
  for (left = 0; left < whole; ++left) {
    EXPECT_EQ(book.read("1234", data), Status::unreachable) << left;
    EXPECT_EQ(data.individuals(Source::printer), contacts) << left;
  }
  EXPECT_EQ(book.read("1234", data), Status::success);
}

TEST_F(PrinterBookTest, AnEmptyPasswordIsNeverSent) {
  std::atomic<int> connections = 0;
  FakeServer const server([&](Line const &) { ++connections; });
  PrinterSettings settings;
  settings.tls = PrinterSettings::Tls::none;
  settings.port = static_cast<std::uint16_t>(server.port());
  Directory directory(settings, std::chrono::seconds(1));
  ASSERT_EQ(directory.connect("127.0.0.1"), Status::success);
  EXPECT_EQ(directory.bind("cn=x", ""), Status::password);
  EXPECT_EQ(configured(base + plain + "port = " + std::to_string(server.port()) + "\n").read("", data),
            Status::password);
  usleep(100'000);
  EXPECT_LE(connections, 1);
}

// In a network of the child's own, whose loopback has a link-local address too.
bool make_network() {
  if (unshare(CLONE_NEWNET) != 0) return false;
  int const control = socket(AF_INET6, SOCK_DGRAM, 0);
  ifreq up{};
  std::strcpy(up.ifr_name, "lo");
  up.ifr_flags = IFF_UP | IFF_LOOPBACK | IFF_RUNNING;
  in6_ifreq local{};
  inet_pton(AF_INET6, "fe80::1", &local.ifr6_addr);
  local.ifr6_prefixlen = 64;
  local.ifr6_ifindex = static_cast<int>(if_nametoindex("lo"));
  return ioctl(control, SIOCSIFFLAGS, &up) == 0 && ioctl(control, SIOCSIFADDR, &local) == 0;
}

TEST_F(PrinterBookTest, LinkLocalAddressesWithTheirScope) {
  enum { no_network = 77 };
  pid_t const child = fork();
  if (child == 0) {
    if (!make_network()) _exit(no_network);
    int const listener = socket(AF_INET6, SOCK_STREAM, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(389);
    if (bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(listener, 64) != 0)
      _exit(1);
    PrinterSettings settings;
    settings.tls = PrinterSettings::Tls::none;
    for (int tries = 0; tries < 50; ++tries) {  // the address is not there at once
      if (Directory(settings, std::chrono::milliseconds(200)).connect("fe80::1%lo") == Status::success) break;
    }
    for (char const *text : {"fe80::1%lo", "[fe80::1%lo]", "fe80::1%1"})
      if (Directory(settings, std::chrono::seconds(5)).connect(text) != Status::success) _exit(2);
    if (Directory(settings, std::chrono::seconds(1)).connect("fe80::1%none") != Status::no_address) _exit(3);
    _exit(0);
  }
  int ended = 0;
  waitpid(child, &ended, 0);
  if (WIFEXITED(ended) && WEXITSTATUS(ended) == no_network) GTEST_SKIP() << "needs root to make a network of its own";
  EXPECT_EQ(ended, 0);
}

}  // namespace
}  // namespace fax
