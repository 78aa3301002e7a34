#include "bench/generated_book.h"

#include <sqlite3.h>

#include <array>
#include <memory>
#include <random>
#include <stdexcept>

namespace fax::bench {

namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

constexpr std::array kGiven = {"Anna",  "Bernd", "Chloé", "Dieter", "Elke",   "François", "Günther", "Hans",
                               "Ingrid", "Jürgen", "Karin", "Łukasz", "Monika", "Olga",     "Søren",   "Åsa"};
constexpr std::array kParts = {"schmidt", "mül", "ler", "ber",  "ger", "hof", "mann", "stein", "feld", "bach",
                               "wald",    "ner", "kel", "wein", "dorf", "lin", "ross", "köh",  "krü",  "son"};
constexpr std::array kForms = {"GmbH", "AG", "Ltd", "SARL"};

[[noreturn]] void fail(sqlite3 *database) {
  throw std::runtime_error(database == nullptr ? "no memory" : sqlite3_errmsg(database));
}

Database open(std::string const &path, int flags) {
  sqlite3 *raw = nullptr;
  int const status = sqlite3_open_v2(path.c_str(), &raw, flags, nullptr);
  Database database(raw, sqlite3_close);
  if (status != SQLITE_OK) fail(raw);
  return database;
}

Statement prepare(sqlite3 *database, char const *text) {
  sqlite3_stmt *raw = nullptr;
  if (sqlite3_prepare_v2(database, text, -1, &raw, nullptr) != SQLITE_OK) fail(database);
  return Statement(raw, sqlite3_finalize);
}

void run(sqlite3 *database, char const *text) {
  if (sqlite3_exec(database, text, nullptr, nullptr, nullptr) != SQLITE_OK) fail(database);
}

}  // namespace

std::vector<Person> invented_people(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  auto const one_of = [&random](auto const &list) { return std::string(list[random() % list.size()]); };
  auto const word = [&](unsigned parts) {
    std::string text;
    while (parts-- > 0) text += one_of(kParts);
    if (static_cast<unsigned char>(text[0]) < 0x80) text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
  };
  std::vector<Person> people;
  people.reserve(count);
  for (std::size_t at = 0; at < count; ++at) {
    Person person;
    person.id = static_cast<std::uint32_t>(at + 1);
    person.name = word(2 + random() % 2) + ", " + one_of(kGiven);
    person.number = std::to_string(1 + random() % 99) + "-" + std::to_string(10000000 + at);
    person.company = word(2) + " " + one_of(kForms);
    for (unsigned words = random() % 6; words-- > 0;) person.note += word(1) + " ";
    people.push_back(std::move(person));
  }
  return people;
}

void write_book(std::string const &path, std::vector<Person> const &people) {
  Database const database = open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  run(database.get(), "create table individuals(id integer primary key, name text, number text, company text, note text)");
  run(database.get(), "begin");
  Statement const insert = prepare(database.get(), "insert into individuals values(?,?,?,?,?)");
  for (Person const &person : people) {
    sqlite3_bind_int64(insert.get(), 1, person.id);
    int at = 2;
    for (std::string const *text : {&person.name, &person.number, &person.company, &person.note}) {
      sqlite3_bind_text(insert.get(), at++, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
    }
    if (sqlite3_step(insert.get()) != SQLITE_DONE) fail(database.get());
    sqlite3_reset(insert.get());
  }
  run(database.get(), "commit");
}

std::size_t step_through(std::string const &path) {
  Database const database = open(path, SQLITE_OPEN_READONLY);
  Statement const rows = prepare(database.get(), "select id, name, number, company, note from individuals");
  std::size_t touched = 0;
  int status;
  while ((status = sqlite3_step(rows.get())) == SQLITE_ROW) {
    touched += static_cast<std::size_t>(sqlite3_column_int64(rows.get(), 0));
    for (int column = 1; column < 5; ++column) {
      touched += sqlite3_column_text(rows.get(), column)[0];
      touched += static_cast<std::size_t>(sqlite3_column_bytes(rows.get(), column));
    }
  }
  if (status != SQLITE_DONE) fail(database.get());
  return touched;
}

}  // namespace fax::bench
