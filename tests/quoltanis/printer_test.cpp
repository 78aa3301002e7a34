// The printer's book as far as no server is needed: the configuration file, and what becomes of entries.
#include "books.h"
#include "quoltanis/printer_entries.h"
#include "quoltanis/printer_settings.h"

#include <gmock/gmock.h>

#include <random>

namespace fax {
namespace {

using testing::ElementsAre;

TEST(PrinterSettings, TakesEveryKeyAndNamesEveryFault) {
  PrinterSettings settings;
  EXPECT_EQ(parse_settings("# comment\n\n tls = none\r\nport=1389\nca-file = /etc/ca file.pem\nserver-name = p.local\n"
                           "base-dn = ou=fax,dc=a\nbind-dn=cn=x\nname-attributes = cn  sn\nnumber-attribute = fax\n"
                           "id-attributes = uid\ngroup-class = list\nmember-attribute = who\ntime-out = 3",
                           settings),
            "");
  EXPECT_EQ(settings.tls, PrinterSettings::Tls::none);
  EXPECT_EQ(settings.port, 1389);
  EXPECT_EQ(settings.ca_file, "/etc/ca file.pem");
  EXPECT_EQ(settings.base_dn, "ou=fax,dc=a");
  EXPECT_THAT(settings.name_attributes, ElementsAre("cn", "sn"));
  EXPECT_EQ(settings.time_out, std::chrono::seconds(3));
  for (char const *fault : {"tls", "tls = yes", "port = 0", "port = 65536", "port = 38x", "port =", "ca-file = ca.pem",
                            "base-dn =", "name-attributes =", "number-attribute = a)(b", "time-out = 0",
                            "time-out = 301", "Port = 1", "colour = red", "= 1"})
    EXPECT_THAT(parse_settings(std::string("# first\n") + fault + "\n", settings), testing::StartsWith("line 2: "))
        << fault;
  EXPECT_NE(parse_settings(std::string("tls = none\n\0", 12), settings), "");
}

using PrinterSettingsFile = gad::BookTest;

TEST_F(PrinterSettingsFile, IsLookedForInItsPlaces) {
  std::string const user = folder + "/user", system = folder + "/system";
  for (auto const &place : {user, system}) std::filesystem::create_directories(place + "/directfax");
  setenv("XDG_CONFIG_HOME", user.c_str(), 1);
  setenv("XDG_CONFIG_DIRS", ("/nowhere:" + system).c_str(), 1);
  PrinterSettings settings;
  auto const port = [&] {
    EXPECT_EQ(load_settings(settings), Status::success);
    return settings.port.value_or(0);
  };
  EXPECT_EQ(port(), 0) << "no file";
  gad::put(system + "/directfax/printer-book.conf", "port = 2\n");
  EXPECT_EQ(port(), 2);
  gad::put(user + "/directfax/printer-book.conf", "port = 1\n");
  EXPECT_EQ(port(), 1);
  setenv("DIRECTFAX_PRINTER_BOOK", (folder + "/own").c_str(), 1);
  EXPECT_EQ(load_settings(settings), Status::configuration) << "named but not there";
  gad::put(folder + "/own", "port = 3\n");
  EXPECT_EQ(port(), 3);
  gad::put(folder + "/own", "port = x\n");
  EXPECT_EQ(load_settings(settings), Status::configuration);
  gad::put(folder + "/own", std::string(70'000, '#'));
  EXPECT_EQ(load_settings(settings), Status::configuration);
  setenv("DIRECTFAX_PRINTER_BOOK", folder.c_str(), 1);
  EXPECT_EQ(load_settings(settings), Status::configuration) << "a folder";
  for (char const *name : {"DIRECTFAX_PRINTER_BOOK", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) unsetenv(name);
}

struct Contact {
  unsigned id;
  std::u16string name, number;
  bool operator==(Contact const &) const = default;
};

std::vector<Contact> contacts(AddressData const &data) {
  std::vector<Contact> all;
  for (std::size_t i = 0; i < data.individuals(Source::printer); ++i) {
    ContactRecord record;
    data.write(i, record);
    all.push_back({record.id, record.name, record.number});
  }
  return all;
}

TEST(PrinterEntries, MakeContactsAndGroups) {
  PrinterSettings const settings;
  PrinterEntries entries(settings);
  std::string const fax = "facsimileTelephoneNumber";
  for (auto const &entry : std::vector<DirectoryEntry>{
           {"cn=Ann,o=x", {{"cn", {"Ann"}}, {"FACSIMILETELEPHONENUMBER", {"1", "2"}}, {"employeeNumber", {"3"}}}},
           {"cn=Bo,o=x", {{"cn", {"Bo"}}, {"displayName", {"", "Bosse"}}, {fax, {"4"}}, {"uidNumber", {"3"}}}},
           {"cn=none,o=x", {{"cn", {"NoFax"}}, {fax, {}}}},
           {"uid=7,o=x", {{fax, {"5"}}, {"employeeNumber", {"65536", "x", "-1", "65535"}}}},
           {"cn=bad,o=x", {{"cn", {"Bad"}}, {fax, {std::string(51, '1'), std::string("1\0", 2), "\xFF", ""}}}},
           {"cn=G,o=x",
            {{"cn", {"G"}},
             {"objectclass", {"top", "GROUPOFNAMES"}},
             {"member", {"CN = Bo , O=x", "cn=none,o=x", "uid=7,o=x", "no DN", "", "cn=ann,o=x"}}}},
           {"cn=H,o=x", {{"objectClass", {"groupOfNames"}}}},
       })
    ASSERT_EQ(entries.add(entry), Status::success) << entry.dn;
  AddressData data;
  ASSERT_EQ(entries.finish(data), Status::success);
  EXPECT_THAT(contacts(data), ElementsAre(Contact{3, u"Ann", u"1"}, Contact{1, u"Ann", u"2"},
                                          Contact{2, u"Bosse", u"4"}, Contact{65535, u"5", u"5"}));
  ASSERT_EQ(data.groups(Source::printer), 1u);
  struct {
    FaxGroupHead head;
    std::uint16_t members[3];
  } group;
  data.write_group(0, &group.head);
  ASSERT_EQ(group.head.members, 3);
  EXPECT_THAT(group.members, ElementsAre(2, 65535, 3));
}

TEST(PrinterEntries, MoreThanAPrinterHoldsIsIncomplete) {
  PrinterSettings const settings;
  auto const added = [&](DirectoryEntry const &entry, int times) {
    PrinterEntries entries(settings);
    for (int i = 1; i < times; ++i)
      if (entries.add(entry) != Status::success) return -i;
    return entries.add(entry) == Status::success ? times : -times;
  };
  DirectoryEntry const person{"o=x", {{"facsimileTelephoneNumber", {"1"}}}};
  DirectoryEntry const group{"o=x", {{"objectClass", {"groupOfNames"}}, {"cn", {"g"}}}};
  DirectoryEntry const large{"o=x", {{"cn", {std::string(1 << 20, 'x')}}}};
  EXPECT_EQ(added(person, 100'000), 100'000);
  EXPECT_EQ(added(person, 100'001), -100'001);
  EXPECT_EQ(added(group, 10'001), -10'001);
  EXPECT_EQ(added(large, 64), -64);
}

// Entries of random bytes: whatever they hold, contacts come out that a record can carry.
TEST(PrinterEntries, RandomEntries) {
  std::mt19937 random(2);
  PrinterSettings const settings;
  auto const text = [&] {
    std::string bytes(random() % 60, '\0');
    for (char &byte : bytes) byte = static_cast<char>(random() % 3 == 0 ? random() : "=,+;\\#1a "[random() % 9]);
    return bytes;
  };
  for (int round = 0; round < 300; ++round) {
    PrinterEntries entries(settings);
    for (int i = 0; i < 20; ++i)
      ASSERT_EQ(entries.add({text(),
                             {{"cn", {text(), text()}},
                              {"facsimileTelephoneNumber", {text(), "1"}},
                              {"employeeNumber", {text()}},
                              {"member", {text(), text()}},
                              {"objectClass", {random() % 4 == 0 ? "groupOfNames" : text()}}}}),
                Status::success);
    AddressData data;
    ASSERT_EQ(entries.finish(data), Status::success);
    for (auto const &contact : contacts(data)) ASSERT_FALSE(contact.name.empty() || contact.number.empty());
  }
}

}  // namespace
}  // namespace fax
