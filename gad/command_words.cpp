#include "gad/command_words.h"

#include "gad/text.h"
#include "texts/texts.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace fax::tool {
namespace {

constexpr std::size_t left_column = 30;

// What stands in a help text for something that a person is to type.
constexpr char const *placeholders[] = {
    //: In the help of a command: stands for something to be typed.
    mark("FILE"),
    //: In the help of a command: stands for something to be typed.
    mark("NAME"),
    //: In the help of a command: stands for something to be typed.
    mark("NUMBER"),
    //: In the help of a command: stands for something to be typed.
    mark("ENTRY"),
    //: In the help of a command: stands for something to be typed.
    mark("GROUP"),
    //: In the help of a command: stands for something to be typed, a file to read.
    mark("SOURCE"),
    //: In the help of a command: stands for something to be typed, a file to write.
    mark("TARGET"),
    //: In the help of a command: stands for something to be typed.
    mark("TEXT"),
    //: In the help of a command: stands for something to be typed, one of a few words.
    mark("FORMAT"),
    //: In the help of a command: stands for something to be typed.
    mark("CHARACTER"),
    //: In the help of a command: stands for something to be typed.
    mark("FIELD=COLUMN"),
};

std::string word(std::string const &text) {
  bool const known = std::find(std::begin(placeholders), std::end(placeholders), text) != std::end(placeholders);
  return known ? tr(text.c_str()) : text;
}

// "FORMAT:{csv,vcard}": what the value is called, and what it can be.
std::string type_of(CLI::Option const &option) {
  std::string const type = option.get_type_name();
  std::size_t const end = std::min(type.find(':'), type.size());
  return word(type.substr(0, end)) + type.substr(end);
}

std::string row(std::string const &left, std::string const &right) {
  std::string text = "  " + left;
  std::size_t const width = columns_of(text);
  text += width + 1 < left_column ? std::string(left_column - width, ' ') : '\n' + std::string(left_column, ' ');
  return text + right + '\n';
}

class Format : public CLI::Formatter {
public:
  std::string make_usage(CLI::App const *app, std::string name) const override {
    std::string line = tr("Usage:") + (name.empty() ? "" : " " + name) + " [" + tr("OPTIONS") + "]";
    for (CLI::Option const *option : app->get_options([](CLI::Option const *one) { return one->get_positional(); }))
      line += " " + make_option_usage(option);
    if (!app->get_subcommands([](CLI::App const *) { return true; }).empty()) line += " " + tr("COMMAND");
    return line + '\n';
  }
  std::string make_description(CLI::App const *app) const override { return app->get_description() + '\n'; }
  std::string make_positionals(CLI::App const *app) const override {
    auto const options = app->get_options([](CLI::Option const *one) { return one->get_positional(); });
    return options.empty() ? "" : make_group(tr("Arguments"), true, options);
  }
  std::string make_subcommand(CLI::App const *command) const override {
    return row(command->get_name(), command->get_description());
  }
  std::string make_option(CLI::Option const *option, bool positional) const override {
    return row(make_option_name(option, positional) + make_option_opts(option), option->get_description());
  }
  std::string make_option_name(CLI::Option const *option, bool positional) const override {
    return positional ? word(option->get_name(true)) : option->get_name(false, true);
  }
  std::string make_option_opts(CLI::Option const *option) const override {
    if (option->get_type_size() == 0) return {};
    std::string text = option->get_type_name().empty() ? "" : " " + type_of(*option);
    if (option->get_expected_max() >= CLI::detail::expected_max_vector_size) text += " ...";
    return text;
  }
};

// What the asterisks of a pattern stand for in a text; nothing when it does not fit.
std::optional<std::vector<std::string>> gaps(std::string_view text, std::string_view pattern) {
  std::vector<std::string> found;
  while (!pattern.empty()) {
    std::size_t const star = std::min(pattern.find('*'), pattern.size());
    if (!text.starts_with(pattern.substr(0, star))) return std::nullopt;
    text.remove_prefix(star);
    pattern.remove_prefix(star);
    if (pattern.empty()) break;
    pattern.remove_prefix(1);
    std::size_t const next = std::min(pattern.find('*'), pattern.size());
    std::size_t const end = next == 0 ? text.size() : text.find(pattern.substr(0, next));
    if (end == std::string_view::npos) return std::nullopt;
    found.push_back(word(std::string(text.substr(0, end))));
    text.remove_prefix(end);
  }
  return text.empty() ? std::optional(found) : std::nullopt;
}

struct Complaint {
  char const *pattern;  // the parser's
  char const *ours;
};

constexpr Complaint complaints[] = {
    {"A subcommand is required", mark("A command is required.")},
    {"* is required", mark("{0} is required.")},
    {"* requires *", mark("{0} requires {1}.")},
    {"* excludes *", mark("{0} and {1} exclude each other.")},
    {"The following argument was not expected: *", mark("The argument {0} is not expected.")},
    {"The following arguments were not expected: *", mark("The arguments {0} are not expected.")},
    //: {0} is an option, {1} what is to be typed behind it.
    {"*: 1 required * missing", mark("{0}: There is no {1}.")},
    //: {0} is an option, {1} what was typed behind it, {2} a list of words.
    {"*: * not in {*}", mark("{0}: {1} is none of {2}.")},
};

}  // namespace

std::shared_ptr<CLI::Formatter> help_format() { return std::make_shared<Format>(); }

std::string complaint(std::string_view parser) {
  for (Complaint const &known : complaints)
    if (auto const values = gaps(parser, known.pattern)) return texts::filled(known.ours, *values);
  return std::string(parser);
}

}  // namespace fax::tool
