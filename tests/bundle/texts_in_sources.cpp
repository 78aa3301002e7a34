#include "texts_in_sources.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace test {
namespace {

std::set<std::string> found(std::string const &text, char const *expression) {
  std::regex const searched(expression);
  std::set<std::string> texts;
  for (std::sregex_iterator it(text.begin(), text.end(), searched), end; it != end; ++it) texts.insert((*it)[1]);
  return texts;
}

// The string literals in what an expression captures.
std::set<std::string> literals(std::string const &text, char const *expression) {
  std::set<std::string> texts;
  for (auto const &part : found(text, expression)) texts.merge(found(part, "@\"([^\"]+)\""));
  return texts;
}

}  // namespace

std::string contents_of(std::string const &path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> texts_of_xib(std::string const &xib) {
  auto texts = found(contents_of(SOURCE_PATH "/" + xib), " (?:title|label|toolTip|placeholderString)=\"([^\"]+)\"");
  texts.erase("Text Cell");
  return texts;
}

std::set<std::string> texts_of_alerts(std::string const &folder) {
  std::set<std::string> texts;
  for (auto const &file : std::filesystem::directory_iterator(SOURCE_PATH "/" + folder))
    if (file.path().extension() == ".mm") texts.merge(literals(contents_of(file.path()), "run_alert\\(([^;]*)\\)"));
  return texts;
}

std::set<std::string> hints_of(std::string const &source) {
  return literals(contents_of(SOURCE_PATH "/" + source), "return (@\"[^;]*\");");
}

}  // namespace test
