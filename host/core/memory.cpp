#include "host/core/memory.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <strings.h>
#include <unistd.h>

#include "host/core/child.h"
#include "texts/texts.h"

namespace fax::host {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int kVersion = 1;
constexpr std::uintmax_t kLargestFile = 1 << 20;
constexpr int kLargestSide = 32767;  // of a window, at an X server

Failure not_understood(fs::path const &file) {
  return {ExitCode::file, tr("What was remembered of the last use cannot be read: \"{0}\" is broken.", file.string()),
          tr("It is left out; {0} removes it.", "faxprint --forget")};
}

Failure not_written(fs::path const &file, int error) {
  return {ExitCode::file,
          tr("Nothing is remembered for the next use: \"{0}\" cannot be written: {1}.", file.string(),
             std::strerror(error)),
          ""};
}

// Throws Json::exception where the text is none of ours.
Memory memory_in(Json const &json) {
  if (json.at("version").get<int>() != kVersion) throw Json::other_error::create(501, "version", &json);
  Memory memory;
  memory.printer = json.value("printer", "");
  Json const all = json.value("options", Json::object());
  for (auto const &[queue, options] : all.items())
    for (auto const &[key, value] : options.items())
      memory.options[queue].push_back({key, value.get<std::string>()});
  if (auto const window = json.find("window"); window != json.end()) {
    WindowSize const size{window->at("width").get<int>(), window->at("height").get<int>()};
    if (size.width > 0 && size.height > 0 && size.width <= kLargestSide && size.height <= kLargestSide)
      memory.window = size;
  }
  return memory;
}

std::string text_of(Memory const &memory) {
  Json json{{"version", kVersion}, {"printer", memory.printer}, {"options", Json::object()}};
  for (auto const &[queue, options] : memory.options) {
    Json &known = json["options"][queue] = Json::object();
    for (auto const &[key, value] : options) known[key] = value;
  }
  if (memory.window) json["window"] = {{"width", memory.window->width}, {"height", memory.window->height}};
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

bool names(std::vector<Setting> const &settings, std::string const &key) {
  return std::any_of(settings.begin(), settings.end(),
                     [&](Setting const &one) { return strcasecmp(one.key.c_str(), key.c_str()) == 0; });
}

// 0, or the error.
int write_new(std::string &pattern, std::string const &text) {
  Descriptor const file(mkstemp(pattern.data()));
  if (!file) return errno;
  for (std::string_view left = text; !left.empty();) {
    ssize_t const written = write(file.get(), left.data(), left.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    left.remove_prefix(static_cast<std::size_t>(written));
  }
  return fsync(file.get()) == 0 ? 0 : errno;
}

}  // namespace

fs::path memory_file() {
  char const *const config = std::getenv("XDG_CONFIG_HOME");
  char const *const home = std::getenv("HOME");
  fs::path const base = config && *config == '/' ? fs::path(config) : home && *home ? fs::path(home) / ".config" : "";
  return base.empty() ? base : base / "directfax" / "faxprint.json";
}

Result<Memory> load_memory(fs::path const &file) {
  std::error_code failed;
  if (file.empty() || !fs::exists(file, failed)) return Memory{};
  if (!fs::is_regular_file(file, failed) || fs::file_size(file, failed) > kLargestFile) return not_understood(file);
  std::ifstream stream(file);
  std::stringstream text;
  text << stream.rdbuf();
  try {
    return memory_in(Json::parse(text.str()));
  } catch (Json::exception const &) {
    return not_understood(file);
  }
}

std::optional<Failure> save_memory(Memory const &memory, fs::path const &file) {
  if (file.empty()) return std::nullopt;
  std::error_code failed;
  fs::create_directories(file.parent_path(), failed);
  if (failed) return not_written(file, failed.value());
  std::string fresh = file.string() + ".XXXXXX";
  int error = write_new(fresh, text_of(memory));
  if (error == 0 && std::rename(fresh.c_str(), file.c_str()) != 0) error = errno;
  if (error == 0) return std::nullopt;
  unlink(fresh.c_str());
  return not_written(file, error);
}

std::optional<Failure> forget_memory(fs::path const &file) {
  std::error_code failed;
  fs::remove(file, failed);
  if (!failed) return std::nullopt;
  return Failure{ExitCode::file, tr("\"{0}\" cannot be removed: {1}.", file.string(), failed.message()), ""};
}

std::optional<Failure> mark_remembered(PpdFile &ppd, Memory const &memory, Queue const &queue,
                                       std::vector<Setting> const &given) {
  auto const known = memory.options.find(queue.name);
  if (known != memory.options.end()) {
    std::vector<Setting> all;
    for (auto const &option : known->second)
      if (ppd.has_option(option.key) && !names(given, option.key)) all.push_back(option);
    all.insert(all.end(), given.begin(), given.end());
    if (!ppd.mark_initial(queue.defaults, all)) return std::nullopt;
  }
  return ppd.mark_initial(queue.defaults, given);
}

std::vector<Setting> worth_remembering(std::vector<Setting> const &choices) {
  std::vector<Setting> some;
  std::copy_if(choices.begin(), choices.end(), std::back_inserter(some), [](Setting const &choice) {
    return strncasecmp(choice.value.c_str(), "Custom.", 7) != 0 && !choice.value.starts_with('{');
  });
  return some;
}

}  // namespace fax::host
