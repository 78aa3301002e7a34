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

std::size_t step_through(std::string const &path) {
  sqlite3 *raw = nullptr;
  int status = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> const database(raw, sqlite3_close);
  if (status != SQLITE_OK) fail(raw);
  sqlite3_stmt *statement = nullptr;
  char const *const query = "SELECT id, name, number, company, note, index_key, registered FROM individuals ORDER BY id";
  if (sqlite3_prepare_v2(raw, query, -1, &statement, nullptr) != SQLITE_OK) fail(raw);
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> const rows(statement, sqlite3_finalize);
  std::size_t touched = 0;
  while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
    for (int const column : {0, 6}) touched += static_cast<std::size_t>(sqlite3_column_int64(statement, column));
    for (int column = 1; column < 6; ++column) {
      touched += sqlite3_column_text(statement, column)[0];
      touched += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    }
  }
  if (status != SQLITE_DONE) fail(raw);
  return touched;
}

}  // namespace fax::bench
