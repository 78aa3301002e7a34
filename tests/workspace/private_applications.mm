#include "private_applications.h"

#import <AppKit/AppKit.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace test {

char const *const kEditor = "com.norvalt.tk.o.addressbookeditor";

namespace {

// The folder that script/headless made for the applications.
fs::path root() {
  NSString *local = [NSSearchPathForDirectoriesInDomains(NSApplicationDirectory, NSLocalDomainMask, YES) lastObject];
  fs::path const folder = fs::path([local fileSystemRepresentation]).parent_path();
  if (folder.filename() != "applications" || folder.parent_path() != fs::path(std::getenv("HOME")).parent_path())
    throw std::runtime_error("runs under script/headless only");
  return folder;
}

fs::path records() { return root() / "records"; }

std::string output_of(std::string const &command) {
  std::string output;
  if (std::FILE *pipe = popen(command.c_str(), "r")) {
    char buffer[256];
    while (std::size_t const got = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, got);
    pclose(pipe);
  }
  return output;
}

EditorRecord read_record(fs::path const &file) {
  EditorRecord record{pid_t(std::stoi(file.stem())), 0, {}};
  std::ifstream lines(file);
  std::string line;
  std::getline(lines, line);
  record.given_descriptors = std::stoi(line);
  while (std::getline(lines, line)) record.arguments.push_back(line);
  return record;
}

std::vector<EditorRecord> read_records() {
  std::vector<EditorRecord> found;
  for (auto const &entry : fs::directory_iterator(records()))
    if (entry.path().extension() == ".txt") found.push_back(read_record(entry.path()));
  return found;
}

void empty_folders() {
  for (char const *name : {"local", "system", "records"}) {
    fs::remove_all(root() / name);
    fs::create_directory(root() / name);
  }
}

}  // namespace

PrivateApplications::PrivateApplications() {
  empty_folders();
  setenv("DIRECTFAX_EDITOR_RECORDS", records().c_str(), 1);
  unsetenv("DIRECTFAX_EDITOR_MODE");
}

PrivateApplications::~PrivateApplications() {
  forget_editors();
  empty_folders();
}

fs::path PrivateApplications::local() { return root() / "local"; }
fs::path PrivateApplications::system() { return root() / "system"; }

fs::path PrivateApplications::install_editor() {
  fs::path const wrapper = local() / "AddressBookEditor.app";
  fs::copy(EDITOR_WRAPPER, wrapper, fs::copy_options::recursive);
  return wrapper;
}

fs::path PrivateApplications::install(fs::path const &wrapper, std::string const &information) {
  fs::create_directories(wrapper / "Resources");
  std::ofstream(wrapper / "Resources/Info-gnustep.plist", std::ios::binary) << information;
  return wrapper;
}

void PrivateApplications::set_editor_mode(std::string const &mode) {
  setenv("DIRECTFAX_EDITOR_MODE", mode.c_str(), 1);
}

std::vector<EditorRecord> PrivateApplications::editors(std::size_t at_least) {
  becomes([&] { return read_records().size() >= at_least; });
  return read_records();
}

void PrivateApplications::forget_editors() {
  for (auto const &each : read_records()) {
    end_process(each.process);
    fs::remove(records() / (std::to_string(each.process) + ".txt"));
  }
}

void end_process(pid_t process) {
  kill(process, SIGKILL);
  // Its adoptive parent may be slow to notice; until then it has no program any more.
  fs::path const program = "/proc/" + std::to_string(process) + "/exe";
  std::error_code error;
  for (int turn = 0; turn < 1000 && !fs::read_symlink(program, error).empty(); ++turn)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

std::string active_title() {
  std::string const title = output_of("xdotool getactivewindow getwindowname 2>/dev/null");
  return title.substr(0, title.find('\n'));
}

bool becomes_true(bool (*question)(void *), void *context) {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:10];
  while (!question(context)) {
    if ([end timeIntervalSinceNow] < 0) return false;
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.01]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) [NSApp sendEvent:event];
  }
  return true;
}

}  // namespace test
