#include "private_cups.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <pwd.h>
#include <sstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fax::host {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr char kScheduler[] = "/usr/sbin/cupsd";
constexpr char kHelper[] = "/usr/lib/cups/daemon/cups-exec";

// Keeps the whole argument and the whole document; the options appear under their name only when both are complete. A
// title can make it fail with a message, or have it hang after its second page until it is let go.
constexpr char kRecorder[] = R"(#!/bin/sh
case $3 in
  fail:*) echo "ERROR: ${3#fail:}" >&2; sleep 0.3; exit 1 ;;
  hang*) echo "INFO: Dialling" >&2; echo "PAGE: 1 1" >&2; echo "PAGE: 2 1" >&2
    while [ ! -e "$FAX_RECORDS/go" ]; do sleep 0.05; done ;;
esac
if [ -n "$6" ]; then cat "$6"; else cat; fi >"$FAX_RECORDS/$1.document"
printf %s "$5" >"$FAX_RECORDS/$1.part"
mv "$FAX_RECORDS/$1.part" "$FAX_RECORDS/$1.options"
)";

void write_file(fs::path const &path, std::string const &text, mode_t mode) {
  std::ofstream(path, std::ios::binary) << text;
  chmod(path.c_str(), mode);
}

std::string read_file(fs::path const &path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

template <typename Condition>
bool wait_for(std::chrono::milliseconds limit, Condition const &condition) {
  for (auto const end = std::chrono::steady_clock::now() + limit; std::chrono::steady_clock::now() < end;
       std::this_thread::sleep_for(10ms))
    if (condition()) return true;
  return condition();
}

}  // namespace

bool PrivateCups::is_installed() { return access(kScheduler, X_OK) == 0 && access(kHelper, X_OK) == 0; }

PrivateCups::PrivateCups(std::string const &extra) {
  // Not below TMPDIR: started by root, the filter runs as the user lp, who must get at every folder above.
  std::string name = "/tmp/fax-cups.XXXXXX";
  folder_ = mkdtemp(name.data());
  chmod(folder_.c_str(), 0755);
  for (char const *below : {"etc", "cache", "state", "log", "bin", "bin/daemon", "bin/filter", "bin/backend", "spool"})
    fs::create_directories(folder_ / below);
  for (char const *below : {"records", "spool/tmp"}) {
    fs::create_directories(folder_ / below);
    chmod((folder_ / below).c_str(), 01777);
  }
  fs::copy_file(kHelper, folder_ / "bin/daemon/cups-exec");
  write_file(folder_ / "bin/filter/recorder", kRecorder, 0755);

  bool const root = geteuid() == 0;
  std::string const user = root ? "lp" : getpwuid(geteuid())->pw_name;
  std::string const group = root ? "lp" : getgrgid(getegid())->gr_name;
  std::string const at = folder_.string();
  write_file(folder_ / "etc/cups-files.conf",
             "ServerRoot " + at + "/etc\nServerBin " + at + "/bin\nDataDir /usr/share/cups\nCacheDir " + at +
                 "/cache\nStateDir " + at + "/state\nRequestRoot " + at + "/spool\nTempDir " + at +
                 "/spool/tmp\nAccessLog " + at + "/log/access_log\nErrorLog " + at + "/log/error_log\nPageLog " + at +
                 "/log/page_log\nUser " + user + "\nGroup " + group +
                 "\nSystemGroup root\nFileDevice Yes\nSandboxing relaxed\nSyncOnClose No\nSetEnv FAX_RECORDS " + at +
                 "/records\n",
             0644);
  write_file(folder_ / "etc/cupsd.conf",
             "LogLevel debug\nMaxLogSize 0\nListen " + at +
                 "/cups.sock\nBrowsing No\nWebInterface No\nDefaultAuthType None\nPreserveJobHistory Yes\n" + extra +
                 "\n<Location />\nOrder allow,deny\nAllow all\n</Location>\n"
                 "<Policy default>\nJobPrivateAccess all\nJobPrivateValues none\n"
                 "<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\n",
             0644);

  start();
}

void PrivateCups::start() {
  std::string const at = folder_.string();
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    int const log = open((at + "/log/output").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    execl(kScheduler, kScheduler, "-f", "-c", (at + "/etc/cupsd.conf").c_str(), "-s",
          (at + "/etc/cups-files.conf").c_str(), nullptr);
    _exit(127);
  }
  Server quick = server();
  quick.timeout_seconds = 1;
  if (!wait_for(20s, [&] { return connect(quick).ok(); })) {
    std::string const why = error_log() + read_file(folder_ / "log/output");
    kill_now();
    fs::remove_all(folder_);
    throw std::runtime_error("cupsd does not start:\n" + why);
  }
}

PrivateCups::~PrivateCups() {
  if (pid_ > 0) {
    resume();
    signal(SIGTERM);
    bool const ended = wait_for(5s, [&] { return waitpid(pid_, nullptr, WNOHANG) == pid_; });
    if (ended)
      pid_ = -1;
    else
      kill_now();
  }
  fs::remove_all(folder_);
}

Server PrivateCups::server() const {
  Server server;
  server.address = (folder_ / "cups.sock").string();
  server.timeout_seconds = 30;
  return server;
}

void PrivateCups::add_queue(std::string const &name, std::string const &ppd, bool accepting) {
  auto connection = connect(server());
  if (!connection) throw std::runtime_error(connection.failure().text());
  ipp_t *request = ippNewRequest(IPP_OP_CUPS_ADD_MODIFY_PRINTER);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
               ("ipp://localhost/printers/" + name).c_str());
  ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_URI, "device-uri", nullptr, "file:///dev/null");
  ippAddBoolean(request, IPP_TAG_PRINTER, "printer-is-accepting-jobs", accepting);
  ippAddInteger(request, IPP_TAG_PRINTER, IPP_TAG_ENUM, "printer-state", IPP_PSTATE_IDLE);
  ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_TEXT, "printer-info", nullptr, ("Queue " + name).c_str());
  ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_TEXT, "printer-location", nullptr, "Hall");
  ippDelete(cupsDoFileRequest(connection.value().get(), request, "/admin/", ppd.empty() ? nullptr : ppd.c_str()));
  if (cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE)
    throw std::runtime_error(std::string("queue ") + name + ": " + cupsLastErrorString());
}

void PrivateCups::signal(int number) {
  if (pid_ > 0) kill(pid_, number);
}

void PrivateCups::let_go() { write_file(folder_ / "records/go", "", 0644); }

void PrivateCups::pause() { signal(SIGSTOP); }
void PrivateCups::resume() { signal(SIGCONT); }

void PrivateCups::kill_now() {
  signal(SIGKILL);
  if (pid_ > 0) waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

std::vector<int> PrivateCups::jobs() const {
  auto connection = connect(server());
  if (!connection) throw std::runtime_error(connection.failure().text());
  cups_job_t *list = nullptr;
  int const count = cupsGetJobs2(connection.value().get(), &list, nullptr, 0, CUPS_WHICHJOBS_ALL);
  if (count < 0) throw std::runtime_error(cupsLastErrorString());
  std::vector<int> numbers;
  for (int at = 0; at < count; ++at) numbers.push_back(list[at].id);
  cupsFreeJobs(count, list);
  return numbers;
}

std::optional<std::string> PrivateCups::options_of(int job) const {
  fs::path const path = folder_ / "records" / (std::to_string(job) + ".options");
  if (!wait_for(20s, [&] { return fs::exists(path); })) return std::nullopt;
  return read_file(path);
}

std::string PrivateCups::document_of(int job) const {
  return read_file(folder_ / "records" / (std::to_string(job) + ".document"));
}

std::string PrivateCups::error_log() const { return read_file(folder_ / "log/error_log"); }

std::map<std::string, std::string> parsed_options(std::string const &argument) {
  cups_option_t *options = nullptr;
  int const count = cupsParseOptions(argument.c_str(), 0, &options);
  std::map<std::string, std::string> read;
  for (int at = 0; at < count; ++at) read[options[at].name] = options[at].value;
  cupsFreeOptions(count, options);
  return read;
}

}  // namespace fax::host
