// Who does the same work in one run: DirectFax's own code and, where they are built in, that of other libraries.
//
// Each source file of one enters itself into the lists below, so that a library that is not installed is only a file that
// is not built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fax::bench {

// The rows that a list on the screen shows at a time.
inline constexpr std::size_t kShownRows = 20;

// A sorted list with a search. Failures are std::runtime_error.
class Model {
 public:
  virtual ~Model() = default;
  // Takes in every field of all people of an address-book file.
  virtual void read(std::string const &path) = 0;
  // Puts them into order for the first time: by name, then by number, without case, from Z to A.
  virtual void sort() = 0;
  // What a key in the search field costs: finds the people whose name contains text, without case, in order, and reads
  // name and number of the first kShownRows. How many were found. After sort() only.
  virtual std::size_t search(std::string const &text) = 0;
};

struct ModelMaker {
  std::string who;
  std::function<std::unique_ptr<Model>()> make;
};

// Base64 without line breaks of whole buffers, out with room for all; answers the bytes written.
struct Base64 {
  std::string who;
  std::function<std::size_t(std::uint8_t const *in, std::size_t length, std::uint8_t *out)> encode, decode;
};

// In the order of their names.
std::vector<ModelMaker> const &models();
std::vector<Base64> const &base64s();

// One object of static lifetime for each that takes part.
struct Entered {
  explicit Entered(ModelMaker model);
  explicit Entered(Base64 base64);
};

}  // namespace fax::bench
