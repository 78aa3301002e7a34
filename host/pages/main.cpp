// faxpages: looks into documents for the print dialog. Descriptors 3 and on are the documents; the answer goes to
// standard output. See work.h.
//
//   faxpages count
//   faxpages picture PAGE WIDTH HEIGHT
//   faxpages join RANGE...
#include <sys/resource.h>

#include <charconv>
#include <exception>
#include <string_view>

#include "work.h"

namespace {

constexpr int kMostPixels = 4096;  // a side

// A number from 1 to most, or 0.
int number(std::string_view text, int most) {
  int value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && value >= 1 && value <= most ? value : 0;
}

int run(std::vector<std::string> const &words) {
  using namespace fax::pages;
  if (words == std::vector<std::string>{"count"}) return count();
  if (words.size() == 4 && words[0] == "picture") {
    int const page = number(words[1], 1 << 30);
    int const width = number(words[2], kMostPixels);
    int const height = number(words[3], kMostPixels);
    return page && width && height ? picture(page, width, height) : kUsage;
  }
  if (words.size() > 1 && words[0] == "join") return join({words.begin() + 1, words.end()});
  return kUsage;
}

}  // namespace

int main(int argc, char **argv) {
  if (MEMORY_LIMIT_MIB > 0) {
    rlim_t const bytes = static_cast<rlim_t>(MEMORY_LIMIT_MIB) << 20;
    rlimit const limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
  }
  rlimit const no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  try {
    return run({argv + 1, argv + argc});
  } catch (std::exception const &) {
    return fax::pages::kBroken;
  }
}
