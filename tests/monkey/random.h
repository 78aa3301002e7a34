// What the monkey draws: everything it does follows from one seed, on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace monkey {

class Random {
 public:
  explicit Random(std::uint64_t seed) : bits_(seed) {}
  // From 0 to end - 1; end is above 0.
  std::size_t below(std::size_t end) { return static_cast<std::size_t>(bits_() % end); }
  bool one_in(std::size_t times) { return below(times) == 0; }
  template <typename Choices>
  auto const &pick(Choices const &choices) {
    return choices[below(std::size(choices))];
  }

 private:
  std::mt19937_64 bits_;  // the standard fixes its numbers; a distribution's are the library's own
};

// UTF-8. Few of them, so that the same one comes again: in other letter case, in other scripts, too long, not allowed.
std::string a_name(Random &random);
std::string a_number(Random &random);

}  // namespace monkey
