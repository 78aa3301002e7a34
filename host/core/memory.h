// What the dialog remembers of its last use: printer, the printers' options, the window's size. Never what a job is
// about: no recipient, no password, no document.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/core/failure.h"
#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "host/core/setting.h"

namespace fax::host {

struct WindowSize {
  int width = 0;  // points
  int height = 0;

  bool operator==(WindowSize const &) const = default;
};

struct Memory {
  std::string printer;                                  // name of a queue; "" for none
  std::map<std::string, std::vector<Setting>> options;  // PPD options by queue
  std::optional<WindowSize> window;

  bool operator==(Memory const &) const = default;
};

// $XDG_CONFIG_HOME/directfax/faxprint.json, or the same below ~/.config; empty where there is no home.
std::filesystem::path memory_file();

// An empty memory where there is no file. Failure (ExitCode::file): it cannot be read, or is not of our making; the file
// stays as it is, and the next save_memory() replaces it.
Result<Memory> load_memory(std::filesystem::path const &file);

// Writes the file as a whole or not at all, for its owner only; makes its folder. Failure (ExitCode::file).
std::optional<Failure> save_memory(Memory const &memory, std::filesystem::path const &file);

// Removes the file; nullopt also where there was none. Failure (ExitCode::file).
std::optional<Failure> forget_memory(std::filesystem::path const &file);

// PpdFile::mark_initial() with the options remembered of the queue as well; given ones count more. Where the PPD has
// changed and the remembered ones no longer fit, or do not fit the given ones, they are left out.
std::optional<Failure> mark_remembered(PpdFile &ppd, Memory const &memory, Queue const &queue,
                                       std::vector<Setting> const &given);

// Of a printer's options those that may be remembered: no value that a person typed, since that may be a secret (the
// number of a locked print). Options of the job itself are for the caller to leave out.
std::vector<Setting> worth_remembering(std::vector<Setting> const &choices);

}  // namespace fax::host
