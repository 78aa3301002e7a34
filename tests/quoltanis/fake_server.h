// A server on loopback that misbehaves as it is told, and the few LDAP messages that it needs.
#pragma once

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace fax {

// One element of BER: tag, length, contents.
inline std::string ber(unsigned char tag, std::string_view contents) {
  std::string text(1, static_cast<char>(tag));
  std::size_t const size = contents.size();
  if (size < 0x80) {
    text += static_cast<char>(size);
  } else {
    text += '\x83';
    for (int shift = 16; shift >= 0; shift -= 8) text += static_cast<char>(size >> shift);
  }
  return text.append(contents);
}

inline std::string message(int id, std::string_view operation) {
  char const bytes[] = {static_cast<char>(id >> 16 & 0x7F), static_cast<char>(id >> 8), static_cast<char>(id)};
  return ber(0x30, ber(0x02, {bytes, sizeof bytes}).append(operation));
}

// tag: 0x61 bind, 0x65 end of a search, 0x78 extended.
inline std::string result(int id, unsigned char tag, char code, std::string_view more = "") {
  return message(id, ber(tag, ber(0x0A, {&code, 1}).append(ber(0x04, "")).append(ber(0x04, "")).append(more)));
}

inline std::string attribute(std::string_view name, std::vector<std::string> const &values) {
  std::string all;
  for (auto const &value : values) all += ber(0x04, value);
  return ber(0x30, ber(0x04, name).append(ber(0x31, all)));
}

inline std::string entry(int id, std::string_view dn, std::string_view attributes) {
  return message(id, ber(0x64, ber(0x04, dn).append(ber(0x30, attributes))));
}

class FakeServer {
public:
  // One connection of a client.
  class Line {
  public:
    Line(int socket, std::atomic<bool> const &over) : socket_(socket), over_(over) {}
    // Waits for a request and answers its id; 0 when none comes any more.
    int request() const {
      unsigned char bytes[4096];
      if (!wait(POLLIN)) return 0;
      auto const size = recv(socket_, bytes, sizeof bytes, 0);
      if (size < 16) return 0;
      int at = bytes[1] < 0x80 ? 3 : 3 + (bytes[1] & 0x7F);  // the length of the id
      int const end = at + 1 + bytes[at];
      int id = 0;
      while (++at < end && at < size) id = id << 8 | bytes[at];
      operation_ = end < size ? bytes[end] : 0;
      return id;
    }
    // Of the last request: 0x60 bind, 0x63 search.
    int operation() const { return operation_; }
    // Whether all of it went out.
    bool send(std::string_view bytes) const {
      while (!bytes.empty()) {
        if (!wait(POLLOUT)) return false;
        auto const size = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (size <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(size));
      }
      return true;
    }
    // Until the client has gone or the test is over.
    void idle() const {
      char byte;
      while (wait(POLLIN) && recv(socket_, &byte, 1, 0) > 0) continue;
    }
    void pause() const { std::this_thread::sleep_for(std::chrono::milliseconds(50)); }

  private:
    bool wait(short events) const {
      pollfd waiting{socket_, events, 0};
      while (!over_) {
        int const ready = poll(&waiting, 1, 20);
        if (ready != 0) return ready > 0;
      }
      return false;
    }
    int socket_;
    mutable int operation_ = 0;
    std::atomic<bool> const &over_;
  };

  explicit FakeServer(std::function<void(Line const &)> script) : script_(std::move(script)) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const plain = reinterpret_cast<sockaddr *>(&address);
    if (bind(listener_, plain, size) != 0 || listen(listener_, 8) != 0 || getsockname(listener_, plain, &size) != 0)
      throw std::runtime_error("no port on loopback");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  ~FakeServer() {
    over_ = true;
    thread_.join();
    close(listener_);
  }
  FakeServer(FakeServer const &) = delete;
  FakeServer &operator=(FakeServer const &) = delete;
  int port() const { return port_; }

private:
  void serve() {
    pollfd waiting{listener_, POLLIN, 0};
    while (!over_) {
      if (poll(&waiting, 1, 20) <= 0) continue;
      int const client = accept(listener_, nullptr, nullptr);
      if (client < 0) continue;
      script_(Line(client, over_));
      close(client);
    }
  }

  std::function<void(Line const &)> script_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

}  // namespace fax
