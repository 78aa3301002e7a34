#include "editor/core/command_line.h"

#include "host/theme/preference.h"
#include "texts/texts.h"

#include <arpa/inet.h>

#include <array>
#include <cctype>
#include <filesystem>
#include <utility>

namespace fax::editor {
namespace {

// An interface ("fe80::1%eth0") is no part of the number.
bool is_address(std::string const &text) {
  std::array<unsigned char, sizeof(in6_addr)> number{};
  std::string const plain = text.substr(0, text.find('%'));
  return inet_pton(AF_INET, text.c_str(), number.data()) == 1 || inet_pton(AF_INET6, plain.c_str(), number.data()) == 1;
}

bool is_list(std::string const &path) {
  std::string ending = std::filesystem::path(path).extension().string();
  for (char &character : ending) character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  return ending == ".vcf" || ending == ".csv";
}

// Splits "-Key value"; an argument without a blank takes its value from the next one.
class Words {
public:
  Words(std::vector<std::string> const &all) : all_(all) {}
  bool next() {
    if (at_ == all_.size()) return false;
    word_ = all_[at_++];
    return true;
  }
  std::string const &word() const { return word_; }
  bool takes(std::string const &key, std::string &value) {
    if (word_ == key) {
      value = at_ < all_.size() ? all_[at_++] : "";
      return true;
    }
    if (!word_.starts_with(key + " ")) return false;
    value = word_.substr(key.size() + 1);
    return true;
  }

private:
  std::vector<std::string> const &all_;
  std::size_t at_ = 0;
  std::string word_;
};

}  // namespace

CommandLine parse_command_line(std::vector<std::string> const &arguments, std::string const &folder) {
  CommandLine line;
  Words words(arguments);
  std::string value;
  bool only_files = false;
  while (words.next()) {
    std::string const &word = words.word();
    if (only_files || !word.starts_with('-')) {
      if (word.empty()) continue;
      std::string const path = (std::filesystem::path(folder) / word).lexically_normal().string();
      (is_list(path) ? line.lists : line.books).push_back(path);
    } else if (word == "--") {
      only_files = true;
    } else if (word == "-h" || word == "--help") {
      line.help = true;
    } else if (word == "--version") {
      line.version = true;
    } else if (words.takes("--theme", value)) {
      if (theme::choice_named(value))
        line.theme = value;
      else
        line.fault = tr("{0} takes {1}, {2} or {3}, not \"{4}\".", "--theme", "auto", "light", "dark", value);
    } else if (words.takes("-DFAXConnectionType", value)) {
      if (value == "NET")
        line.connection = Connection::network;
      else if (value == "USB")
        line.connection = Connection::usb;
      else
        line.fault = tr("The connection type \"{0}\" is neither NET nor USB.", value);
    } else if (words.takes("-DFAXAddress", value)) {
      if (is_address(value))
        line.address = value;
      else
        line.fault = tr("The printer's address \"{0}\" is no IP address.", value);
    } else {
      line.fault = tr("The option \"{0}\" is not known.", word);
    }
  }
  if (line.connection != Connection::network) line.address.clear();
  return line;
}

std::string help_text() {
  std::pair<char const *, std::string> const options[] = {
      {"\"-DFAXConnectionType NET\" \"-DFAXAddress ADDRESS\"",
       tr("entries can be copied from the book of the printer at this address")},
      {"\"-DFAXConnectionType USB\"", tr("the printer has no address")},
      {"--theme auto|light|dark", tr("the look; auto, which holds without it, follows the desktop")},
      {"-h, --help", tr("show this help and end")},
      {"--version", tr("show the version and end")}};
  std::string text = tr("Usage:") + " AddressBookEditor [" + tr("OPTIONS") + "] [" + tr("FILE") + ".gad...] [" + tr("LIST") +
                     ".vcf|" + tr("LIST") + ".csv...]\n" +
                     tr("Shows and changes the address books of the fax dialog. A LIST is imported, after a look at what it "
                        "holds.") +
                     "\n\n";
  for (auto const &[option, meaning] : options) text += std::string("  ") + option + "\n      " + meaning + '\n';
  return text + '\n' +
         tr("Without FILE the book that was open last is shown, else the first of the address-book folder.") + '\n';
}

}  // namespace fax::editor
