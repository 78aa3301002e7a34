// Every text of the windows has a key in the table of strings, and every key is used.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace {

std::string contents(std::filesystem::path const &path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> found(std::string const &text, char const *pattern) {
  std::set<std::string> all;
  std::regex const regex(pattern);
  for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at) all.insert(at->str(1));
  return all;
}

std::set<std::string> without(std::set<std::string> all, std::set<std::string> const &taken) {
  std::erase_if(all, [&](std::string const &each) { return taken.contains(each); });
  return all;
}

TEST(EditorTextsTest, TheTableHoldsExactlyTheTextsInUse) {
  std::string windows, everything;
  for (auto const &entry : std::filesystem::recursive_directory_iterator(EDITOR_SOURCES)) {
    std::string const ending = entry.path().extension();
    if (ending == ".mm") windows += contents(entry.path());
    if (ending == ".mm" || ending == ".cpp") everything += contents(entry.path());
  }
  auto const keys = found(contents(std::filesystem::path(EDITOR_SOURCES) / "resources/English.lproj/Localizable.strings"),
                          R"re(\n"((?:[^"\\]|\\.)*)" = )re");
  std::set<std::string> used = found(windows, R"re(Editor(?:Text|Format)\(@"((?:[^"\\]|\\.)*)")re");
  used.merge(found(windows, R"re(button\(@"([^"]*)")re"));
  used.merge(found(windows, R"re(button\(@"[^"]*", @selector\([A-Za-z]*:\), @"([^"]*)")re"));
  used.merge(found(everything, R"re((?:Step step\{|title:)"([^"]*)")re"));
  EXPECT_GT(keys.size(), 50u);
  used.insert("Delete Entry");  // chosen by how many
  EXPECT_THAT(without(used, keys), testing::IsEmpty()) << "not in the table";
  EXPECT_THAT(without(keys, used), testing::IsEmpty()) << "not in use";
}

}  // namespace
