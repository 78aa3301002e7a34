// The tool as a person runs it, and folders to run it in.
#pragma once

#include <string>
#include <vector>

namespace fax::tool::testing {

struct Outcome {
  int code = -1;  // below 0: ended by a signal
  std::string output, errors;
};

// program is found as a shell finds it. Standard input is the text.
Outcome run(std::vector<std::string> const &command, std::string const &input = "");

// run with gad in front.
Outcome gad(std::vector<std::string> arguments, std::string const &input = "");

// A new folder, gone with all that is in it at the end.
class Folder {
public:
  Folder();
  ~Folder();
  Folder(Folder const &) = delete;
  Folder &operator=(Folder const &) = delete;

  std::string operator/(std::string const &name) const { return path_ + '/' + name; }
  // Writes a file and answers its path.
  std::string file(std::string const &name, std::string const &content) const;
  // Makes an empty address book and answers its path.
  std::string book(std::string const &name = "book.gad") const;
  std::vector<std::string> names() const;

private:
  std::string path_;
};

std::string content_of(std::string const &path);

}  // namespace fax::tool::testing
