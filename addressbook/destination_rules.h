// Rules of the destination list and of what feeds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace fax {

inline constexpr std::size_t kMaximumDestinations = 30;

// Is there room for more destinations beside those that there are? All of them or none.
constexpr bool has_room(std::size_t destinations, std::size_t more = 1) {
  return destinations + more <= kMaximumDestinations;
}

// What is to be done with duplicates among the destinations that are added at one time: asked when the first is met, and
// the same for all that follow.
class DuplicateDecision {
public:
  // ask answers whether they are to be added.
  template <typename Ask>
  bool allows(Ask ask) {
    if (!allowed_) allowed_ = ask();
    return *allowed_;
  }

private:
  std::optional<bool> allowed_;
};

// Limits of the entry fields, in UTF-16 code units and in UTF-8 bytes alike.
inline constexpr std::size_t kMaximumAddressName = 64;
inline constexpr std::size_t kMaximumPhoneNumber = 50;
inline constexpr std::size_t kMaximumPassword = 4;

// Range lists for InputStringChecker: inclusive pairs of UTF-16 code units, ended by a pair that begins with 0. The name
// list begins with 0 and so ends at once: names are limited in length alone, and drivers rely on whatever was typed
// arriving unchanged.
inline constexpr std::uint16_t kAddressNameUnAcceptableRange[] = {0x0000, 0x001F, 0, 0};
inline constexpr std::uint16_t kPhoneNumberAcceptableRange[] = {
    0x0030, 0x0039,  // 0 to 9
    0x0023, 0x0023,  // #
    0x002A, 0x002A,  // *
    0x002D, 0x002D,  // -
    0x003A, 0x003A,  // :
    0x003D, 0x003D,  // =
    0,      0};
inline constexpr std::uint16_t kPasswordAcceptableRange[] = {0x0030, 0x0039, 0, 0};

}  // namespace fax
