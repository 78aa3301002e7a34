// Programs that work for us: with a time limit, open to a stop at any moment, and gone when the call returns.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace fax::host {

// Owns an open file's descriptor.
class Descriptor {
public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor &&other) noexcept : number_(other.release()) {}
  Descriptor &operator=(Descriptor &&other) noexcept;
  ~Descriptor();

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  int release();

private:
  int number_;
};

// A new file without a name, of this process alone, in the folder for temporary files. Empty on failure, with errno.
Descriptor unnamed_file();

// True asks the work to stop. Called often, on the thread that works.
using Stop = std::function<bool()>;

struct Child {
  std::vector<std::string> words;                // words[0] is the program's path
  std::vector<std::string> environment{};        // "NAME=value", before the names of our own environment
  std::vector<int> handed{};                     // the program has them as descriptors 3, 4, ...; borrowed
  int output = -1;                               // where its standard output goes; -1: into ChildEnd::said
  std::chrono::seconds limit{60};
  std::size_t most_said = 16 * 1024 * 1024;      // bytes; a program that says more is ended
};

struct ChildEnd {
  enum class How { exited, crashed, late, stopped, not_started };
  How how = How::not_started;
  int code = 0;      // of exit, when exited
  std::string said;  // standard output, when it was not handed elsewhere

  bool well() const { return how == How::exited && code == 0; }
};

// Runs the program and returns when it has ended, by itself or by us; what it started has ended with it. Its standard
// input and its standard error are /dev/null. Any thread.
ChildEnd run_child(Child const &child, Stop const &stop);

}  // namespace fax::host
