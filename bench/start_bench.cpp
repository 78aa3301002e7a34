// How long programs take from the start of their process until their first window is drawn, and how much memory is
// resident then. They start in turn, each alone, and are ended by their process groups.
#include "bench/report.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using namespace fax::bench;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kMarks = 40;  // pixels of another colour than the first: something is drawn
constexpr int kLeastWidth = 250, kLeastHeight = 150;

struct Program {
  std::string name;
  std::vector<std::string> command;
  std::vector<double> drawn, resident;
};

struct Place {
  int x, y, width, height;
};

class Onlooker {
 public:
  Onlooker() : display_(XOpenDisplay(nullptr), XCloseDisplay) {
    if (display_ == nullptr) throw std::runtime_error("no display");
    // Windows may go at any time.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    XSelectInput(display_.get(), root(), SubstructureNotifyMask);
  }
  void forget_events() {
    XSync(display_.get(), True);
    window_ = {};
  }
  // Whether a window of some size has come, and its middle holds more than one colour. Waits a little for events.
  bool shows_window() {
    pollfd descriptor{ConnectionNumber(display_.get()), POLLIN, 0};
    if (XPending(display_.get()) == 0) poll(&descriptor, 1, 1);
    while (XPending(display_.get()) > 0) take_event();
    return window_.width > 0 && is_drawn(window_);
  }

 private:
  Window root() const { return DefaultRootWindow(display_.get()); }

  void take_event() {
    XEvent event;
    XNextEvent(display_.get(), &event);
    XWindowAttributes found{};
    if (event.type == MapNotify && XGetWindowAttributes(display_.get(), event.xmap.window, &found) != 0) {
      remember({found.x, found.y, found.width, found.height});
    } else if (event.type == ConfigureNotify && window_.width > 0) {
      XConfigureEvent const &now = event.xconfigure;
      remember({now.x, now.y, now.width, now.height});
    }
  }
  void remember(Place const &place) {
    if (place.width >= kLeastWidth && place.height >= kLeastHeight) window_ = place;
  }
  // The frame of the window manager lies around the middle.
  bool is_drawn(Place const &place) {
    Place const middle{place.x + place.width / 5, place.y + place.height / 5, place.width * 3 / 5, place.height * 3 / 5};
    bool const inside = middle.x >= 0 && middle.y >= 0 && middle.x + middle.width <= DisplayWidth(display_.get(), 0) &&
                        middle.y + middle.height <= DisplayHeight(display_.get(), 0);
    if (!inside) return false;
    XImage *const image = XGetImage(display_.get(), root(), middle.x, middle.y, static_cast<unsigned>(middle.width),
                                    static_cast<unsigned>(middle.height), AllPlanes, ZPixmap);
    if (image == nullptr) return false;
    unsigned long const first = XGetPixel(image, 0, 0);
    int marks = 0;
    for (int y = 0; y < middle.height; ++y) {
      for (int x = 0; x < middle.width; ++x) marks += XGetPixel(image, x, y) != first ? 1 : 0;
    }
    XDestroyImage(image);
    return marks > kMarks;
  }

  std::unique_ptr<Display, int (*)(Display *)> display_;
  Place window_{};  // no width: none yet
};

// A program that runs until this object ends, in a process group of its own.
class Running {
 public:
  explicit Running(std::vector<std::string> const &command) {
    std::vector<char *> arguments;
    for (std::string const &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("cannot start a process");
    if (pid_ > 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    int const nowhere = open("/dev/null", O_RDWR);
    for (int stream = 0; stream < 3; ++stream) dup2(nowhere, stream);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  ~Running() {
    kill(-pid_, SIGKILL);
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  Running(Running const &) = delete;
  Running &operator=(Running const &) = delete;

  double resident_mebibytes() const {
    std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmRSS:")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
    }
    throw std::runtime_error("a program has ended");
  }

 private:
  pid_t pid_;
};

void measure(Onlooker &onlooker, Program &program, bool counts) {
  onlooker.forget_events();
  auto const start = Clock::now();
  Running const running(program.command);
  while (!onlooker.shows_window()) {
    if (Clock::now() - start > 20s) throw std::runtime_error(program.name + " shows no window");
  }
  double const took = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  std::this_thread::sleep_for(200ms);
  double const resident = running.resident_mebibytes();
  if (!counts) return;
  program.drawn.push_back(took);
  program.resident.push_back(resident);
}

// "NAME=WORD WORD..."
Program program_of(std::string const &text) {
  std::size_t const equals = text.find('=');
  if (equals == std::string::npos) throw std::runtime_error("no program: " + text);
  Program program{text.substr(0, equals), {}, {}, {}};
  std::istringstream words(text.substr(equals + 1));
  for (std::string word; words >> word;) program.command.push_back(word);
  return program;
}

// The first program is ours, the second an empty window of the same toolkit.
void report_on(std::vector<Program> const &programs, Report &report) {
  for (Program const &program : programs) {
    report.add({.name = "Start to drawn window", .value = median(program.drawn), .unit = "ms", .who = program.name});
    report.add({.name = "Resident then", .value = median(program.resident), .unit = "MiB", .who = program.name});
  }
  Program const &own = programs.at(0), &empty = programs.at(1);
  report.add({.name = "Start, times the empty window", .value = median(own.drawn) / median(empty.drawn), .unit = "x",
              .at_most = 1.35});
  report.add({.name = "Resident above the empty window", .value = median(own.resident) - median(empty.resident),
              .unit = "MiB", .at_most = 12});
}

}  // namespace

int main(int count, char **arguments) {
  if (count < 5) {
    std::fprintf(stderr, "usage: start_bench ROUNDS FILE OURS=COMMAND EMPTY=COMMAND [NAME=COMMAND...]\n");
    return 2;
  }
  try {
    int const rounds = std::atoi(arguments[1]);
    std::vector<Program> programs;
    for (int at = 3; at < count; ++at) programs.push_back(program_of(arguments[at]));
    Onlooker onlooker;
    // The first round reads the programs from the disk.
    for (int round = 0; round <= rounds; ++round) {
      for (Program &program : programs) measure(onlooker, program, round > 0);
    }
    Report report;
    report_on(programs, report);
    report.write(arguments[2]);
  } catch (std::exception const &failure) {
    std::fprintf(stderr, "start_bench: %s\n", failure.what());
    return 1;
  }
  return 0;
}
