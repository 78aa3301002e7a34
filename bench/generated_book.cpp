#include "bench/generated_book.h"

#include "quoltanis/gad_file.h"

#include <sqlite3.h>

#include <array>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace fax::bench {

namespace {

constexpr std::array kGiven = {"Anna",  "Bernd", "Chloé", "Dieter", "Elke",   "François", "Günther", "Hans",
                               "Ingrid", "Jürgen", "Karin", "Łukasz", "Monika", "Olga",     "Søren",   "Åsa"};
constexpr std::array kParts = {"schmidt", "mül", "ler", "ber",  "ger", "hof", "mann", "stein", "feld", "bach",
                               "wald",    "ner", "kel", "wein", "dorf", "lin", "ross", "köh",  "krü",  "son"};
constexpr std::array kForms = {"GmbH", "AG", "Ltd", "SARL"};

[[noreturn]] void fail(sqlite3 *database) {
  throw std::runtime_error(database == nullptr ? "no memory" : sqlite3_errmsg(database));
}

// Opens the file, gives each row of the query to take, closes it.
template <typename Take>
void step(std::string const &path, int flags, char const *query, Take take) {
  sqlite3 *raw = nullptr;
  int status = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY | flags, nullptr);
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> const database(raw, sqlite3_close);
  if (status != SQLITE_OK) fail(raw);
  sqlite3_stmt *statement = nullptr;
  if (sqlite3_prepare_v2(raw, query, -1, &statement, nullptr) != SQLITE_OK) fail(raw);
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> const rows(statement, sqlite3_finalize);
  while ((status = sqlite3_step(statement)) == SQLITE_ROW) take(statement);
  if (status != SQLITE_DONE) fail(raw);
}

std::size_t touch_all(std::string const &path, int flags) {
  std::size_t touched = 0;
  char const *const query = "SELECT id, name, number, company, note, index_key, registered FROM individuals ORDER BY id";
  step(path, flags, query, [&touched](sqlite3_stmt *row) {
    for (int const column : {0, 6}) touched += static_cast<std::size_t>(sqlite3_column_int64(row, column));
    for (int column = 1; column < 6; ++column) {
      touched += sqlite3_column_text(row, column)[0];
      touched += static_cast<std::size_t>(sqlite3_column_bytes(row, column));
    }
  });
  return touched;
}

}  // namespace

void write_book(std::string const &path, std::size_t people, unsigned seed) {
  std::mt19937 random(seed);
  auto const one_of = [&random](auto const &list) { return std::string(list[random() % list.size()]); };
  auto const word = [&](unsigned parts) {
    std::string text;
    while (parts-- > 0) text += one_of(kParts);
    if (static_cast<unsigned char>(text[0]) < 0x80) text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
  };
  std::vector<gad::Individual> list(people);
  for (std::size_t at = 0; at < people; ++at) {
    gad::Individual &person = list[at];
    person.name = word(2 + random() % 2) + ", " + one_of(kGiven);
    person.number = std::to_string(1 + random() % 99) + "-" + std::to_string(10000000 + at);
    person.company = word(2) + " " + one_of(kForms);
    for (unsigned words = random() % 6; words-- > 0;) person.note += word(1) + " ";
  }
  if (gad::File::create(path) != Status::success || gad::add(path, list) != Status::success) {
    throw std::runtime_error("cannot make " + path);
  }
}

std::size_t step_through(std::string const &path) { return touch_all(path, 0); }
std::size_t step_through_alone(std::string const &path) { return touch_all(path, SQLITE_OPEN_NOMUTEX); }

void for_each_person(std::string const &path, std::function<void(PersonView const &)> const &take) {
  step(path, 0, "SELECT name, number, company, note FROM individuals ORDER BY id", [&take](sqlite3_stmt *row) {
    PersonView person;
    for (int column = 0; column < 4; ++column) {
      auto const *const text = reinterpret_cast<char const *>(sqlite3_column_text(row, column));
      person[static_cast<std::size_t>(column)] = {text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
    }
    take(person);
  });
}

}  // namespace fax::bench
