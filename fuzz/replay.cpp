// Gives every file of a folder to a fuzz target, in a program that needs no fuzzer.
//
//   TARGET FOLDER
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size);

int main(int count, char **arguments) {
  if (count != 2) return 2;
  int replayed = 0;
  for (auto const &entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::vector<char> const bytes{std::istreambuf_iterator<char>(file), {}};
    std::fprintf(stderr, "%s\n", entry.path().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size());
    replayed++;
  }
  std::printf("%d inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
