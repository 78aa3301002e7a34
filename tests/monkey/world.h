// What the dialogs reach: a folder of address books, and a printer that answers or misbehaves.
#pragma once

#include "random.h"

#include <filesystem>
#include <memory>
#include <string>

namespace monkey {

class World {
 public:
  // Takes DIRECTFAX_ADDRESSBOOKS and DIRECTFAX_PRINTER_BOOK of this process for itself.
  explicit World(Random &random);
  ~World();
  World(World const &) = delete;
  World &operator=(World const &) = delete;

  // One change, at a time of which the dialogs know nothing: a book comes, goes, breaks or changes; the printer gets
  // other entries or another fault. In words.
  std::string change();

 private:
  std::string change_book();
  std::string change_printer();
  void fill(std::string const &path);

  Random &random_;
  std::filesystem::path folder_;
  struct Printer;
  std::unique_ptr<Printer> printer_;
};

}  // namespace monkey
