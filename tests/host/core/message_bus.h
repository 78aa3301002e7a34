// A message bus of the test's own, and a notification service on it that keeps what it is told.
#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

struct DBusConnection;

namespace fax::host {

// While it lives it is the process's bus (DBUS_SESSION_BUS_ADDRESS). Throws std::runtime_error when it does not start.
class MessageBus {
public:
  static bool is_installed();

  MessageBus();
  ~MessageBus();
  MessageBus(MessageBus const &) = delete;
  MessageBus &operator=(MessageBus const &) = delete;

  // A connection of the caller's own, who closes and releases it; nullptr when the bus does not answer yet.
  static DBusConnection *join();

private:
  std::filesystem::path folder_;
  pid_t pid_ = -1;
};

struct ReceivedNote {
  std::string title, text;
  int urgency = -1;
};

class NotificationService {
public:
  // answers: false for one that takes every call and says nothing.
  explicit NotificationService(bool answers);
  ~NotificationService();
  NotificationService(NotificationService const &) = delete;
  NotificationService &operator=(NotificationService const &) = delete;

  // The notes so far, at least one of them where one comes within limit.
  std::vector<ReceivedNote> notes(std::chrono::milliseconds limit = std::chrono::seconds(10));

private:
  void serve();

  bool const answers_;
  DBusConnection *const bus_;
  std::mutex mutex_;
  std::vector<ReceivedNote> notes_;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

}  // namespace fax::host
