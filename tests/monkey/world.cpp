#include "world.h"

#include "../quoltanis/fake_server.h"
#include "quoltanis/gad_file.h"

#include <cstdlib>
#include <fstream>
#include <mutex>
#include <stdexcept>

namespace monkey {

namespace fs = std::filesystem;
using namespace fax;

namespace {

std::string entry_of(std::string const &name, std::string const &attributes) {
  return ber(0x64, ber(0x04, name).append(ber(0x30, attributes)));
}

}  // namespace

struct World::Printer {
  std::mutex guard;
  std::string fault;                 // empty: none
  std::vector<std::string> entries;  // answers to a search, without the message around them

  // On the server's thread.
  void serve(FakeServer::Line const &line) {
    std::unique_lock const lock(guard);
    if (fault == "gone") return;
    while (int const id = line.request()) {
      bool const bind = line.operation() == 0x60;
      if (bind) {
        line.send(result(id, 0x61, fault == "password" ? 49 : fault == "refused" ? 53 : 0));
        continue;
      }
      if (line.operation() != 0x63) return;
      if (fault == "no LDAP") line.send("HTTP/1.0 400 Bad Request\r\n\r\n");
      if (fault == "silent") return line.idle();
      if (fault == "garbage") line.send(message(id, ber(0x64, "\x04\x7Fzzz")));
      for (auto const &one : entries) {
        if (fault == "cut" && &one == &entries.back()) return;
        line.send(message(id, one));
      }
      line.send(result(id, 0x65, fault == "limit" ? 4 : 0));
    }
  }

  // The last to come and the first to go, for its thread needs the others.
  FakeServer server{[this](FakeServer::Line const &line) { serve(line); }};
};

World::World(Random &random) : random_(random) {
  std::string pattern = (fs::temp_directory_path() / "monkey.XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  folder_ = pattern;
  printer_ = std::make_unique<Printer>();
  std::ofstream(folder_ / "printer.conf") << "tls = none\ntime-out = 1\nbase-dn = o=x\nbind-dn = cn=x\nport = "
                                          << printer_->server.port() << "\n";
  fs::create_directory(folder_ / "books");
  setenv("DIRECTFAX_PRINTER_BOOK", (folder_ / "printer.conf").c_str(), 1);
  setenv("DIRECTFAX_ADDRESSBOOKS", (folder_ / "books").c_str(), 1);
  for (char const *name : {"a.gad", "b.gad"}) fill(folder_ / "books" / name);
  change_printer();
}

World::~World() {
  printer_.reset();
  fs::remove_all(folder_);
}

std::string World::change() { return random_.one_in(3) ? change_printer() : change_book(); }

std::string World::change_book() {
  static char const *const names[] = {"a.gad", "b.gad", "c.gad"};
  fs::path const book = folder_ / "books" / random_.pick(names);
  std::string const name = book.filename().string();
  switch (random_.below(12)) {
    case 0:
      fs::remove(book);
      return name + " is gone";
    case 1:
      std::ofstream(book, std::ios::binary | std::ios::trunc) << "no book";
      return name + " is no book";
    case 2:
      if (fs::exists(book)) fs::resize_file(book, fs::file_size(book) / 2);
      return name + " is cut in half";
    case 3: {
      std::fstream bytes(book, std::ios::binary | std::ios::in | std::ios::out);
      bytes.seekp(static_cast<std::streamoff>(random_.below(8000)));
      bytes << "\xFF\xFE";
      return name + " has two other bytes";
    }
    case 4:
    case 5:
      fill(book);
      return name + " has more entries";
    default:
      fs::remove(book);
      fill(book);
      return name + " is a new book";
  }
}

// What a book refuses (an empty or too long name, one that is there) is left out.
void World::fill(std::string const &path) {
  gad::File file;
  gad::Change change;
  gad::File::create(path);
  if (gad::File::open(path, gad::Access::change, file) != Status::success) return;
  if (file.begin(change) != Status::success) return;
  std::vector<std::uint32_t> ids;
  for (std::size_t left = random_.below(40); left > 0; --left) {
    std::uint32_t id = 0;
    if (change.add({.name = a_name(random_), .number = a_number(random_), .company = a_name(random_)}, &id) ==
        Status::success)
      ids.push_back(id);
  }
  for (std::size_t left = random_.below(5); left > 0 && !ids.empty(); --left) {
    std::uint32_t group = 0;
    if (change.add_group(a_name(random_), &group) != Status::success) continue;
    for (std::size_t member = random_.below(35); member > 0; --member) change.add_member(group, random_.pick(ids));
  }
  change.commit();
}

std::string World::change_printer() {
  static char const *const faults[] = {"",        "",     "",        "password", "refused",
                                       "no LDAP", "gone", "garbage", "cut",      "limit"};
  std::lock_guard const lock(printer_->guard);
  // A silent printer costs the second that its time-out takes.
  printer_->fault = random_.one_in(100) ? "silent" : random_.pick(faults);
  printer_->entries.clear();
  std::vector<std::string> members;
  for (std::size_t left = random_.below(40); left > 0; --left) {
    std::string const name = "cn=" + std::to_string(left) + ",o=x";
    printer_->entries.push_back(entry_of(name, attribute("cn", {a_name(random_)}) +
                                          attribute("facsimileTelephoneNumber", {a_number(random_)})));
    members.push_back(name);
    if (random_.one_in(12))
      printer_->entries.push_back(entry_of("cn=g" + std::to_string(left), attribute("objectClass", {"groupOfNames"}) +
                                                                     attribute("cn", {a_name(random_)}) +
                                                                     attribute("member", members)));
  }
  return "the printer: " + (printer_->fault.empty() ? std::to_string(printer_->entries.size()) + " entries" : printer_->fault);
}

}  // namespace monkey
