#include "host/core/address_lookup.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/address.h>
#include <avahi-common/error.h>
#include <avahi-common/simple-watch.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "texts/texts.h"

namespace fax::host {

struct Lookup::Shared {
  ~Shared() {
    if (wake >= 0) close(wake);
  }

  void end(LookupAnswer given) {
    std::lock_guard const lock(mutex);
    answer = std::move(given);
    // The reader sees the end of the file: nothing is written that could meet a closed pipe.
    if (wake >= 0) close(wake);
    wake = -1;
  }

  std::mutex mutex;
  std::optional<LookupAnswer> answer;
  int wake = -1;
};

Lookup::Lookup(std::function<LookupAnswer()> work) : shared_(std::make_shared<Shared>()) {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0) {
    shared_->end({LookupAnswer::Outcome::failed, std::nullopt, std::strerror(errno)});
    return;
  }
  descriptor_ = ends[0];
  shared_->wake = ends[1];
  try {
    std::thread([shared = shared_, work = std::move(work)] { shared->end(work()); }).detach();
  } catch (std::system_error const &error) {
    shared_->end({LookupAnswer::Outcome::failed, std::nullopt, error.what()});
  }
}

Lookup::~Lookup() {
  if (descriptor_ >= 0) close(descriptor_);
}

int Lookup::take_descriptor() { return std::exchange(descriptor_, -1); }

bool Lookup::wait(std::chrono::milliseconds limit) const {
  pollfd end = {descriptor_, POLLIN, 0};
  return descriptor_ < 0 || poll(&end, 1, static_cast<int>(limit.count())) > 0;
}

std::optional<LookupAnswer> Lookup::answer() const {
  std::lock_guard const lock(shared_->mutex);
  return shared_->answer;
}

LookupAnswer look_up_name(std::string const &name) {
  addrinfo *list = nullptr;
  // Without hints, as a panel asks: of several addresses it is the same one that comes first.
  if (int const code = getaddrinfo(name.c_str(), nullptr, nullptr, &list); code != 0) {
    char const *reason = code == EAI_SYSTEM ? std::strerror(errno) : gai_strerror(code);
    auto const outcome = code == EAI_AGAIN ? LookupAnswer::Outcome::silent : LookupAnswer::Outcome::failed;
    return {outcome, std::nullopt, reason};
  }
  std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> const owner(list, &freeaddrinfo);
  for (addrinfo const *entry = list; entry != nullptr; entry = entry->ai_next)
    if (auto address = numeric_address(entry->ai_addr)) return {LookupAnswer::Outcome::found, std::move(address), ""};
  //: A reason, to stand inside a sentence.
  return {LookupAnswer::Outcome::failed, std::nullopt, tr("No address of a known kind")};
}

namespace {

// One service asked of Avahi, on a loop of its own.
class ServiceQuestion {
public:
  ServiceQuestion() : poll_(avahi_simple_poll_new(), &avahi_simple_poll_free) {}

  LookupAnswer reach() {
    int error = 0;
    auto const client = connect(&error);
    if (!client) return {LookupAnswer::Outcome::no_discovery, std::nullopt, avahi_strerror(error)};
    return {LookupAnswer::Outcome::reached, std::nullopt, ""};
  }

  LookupAnswer ask(std::string const &name, std::string const &type, std::chrono::milliseconds limit) {
    int error = 0;
    auto const client = connect(&error);
    if (!client) return {LookupAnswer::Outcome::no_discovery, std::nullopt, avahi_strerror(error)};
    // Owned by the client, and ended with it.
    if (avahi_service_resolver_new(client.get(), AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, name.c_str(), type.c_str(),
                                   "local", AVAHI_PROTO_UNSPEC, AvahiLookupFlags(0), &resolved, this) == nullptr)
      return failed(client.get());
    wait(limit);
    return answer_.value_or(
        LookupAnswer{LookupAnswer::Outcome::silent, std::nullopt, avahi_strerror(AVAHI_ERR_TIMEOUT)});
  }

private:
  using Client = std::unique_ptr<AvahiClient, decltype(&avahi_client_free)>;

  Client connect(int *error) {
    auto const *const poll = avahi_simple_poll_get(poll_.get());
    return Client(avahi_client_new(poll, AvahiClientFlags(0), &state_changed, this, error), &avahi_client_free);
  }

  void wait(std::chrono::milliseconds limit) {
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!answer_) {
      auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
      if (left.count() <= 0 || avahi_simple_poll_iterate(poll_.get(), static_cast<int>(left.count())) != 0) return;
    }
  }

  static LookupAnswer failed(AvahiClient *client) {
    int const code = avahi_client_errno(client);
    auto const outcome = code == AVAHI_ERR_TIMEOUT ? LookupAnswer::Outcome::silent
                         : avahi_client_get_state(client) == AVAHI_CLIENT_FAILURE ? LookupAnswer::Outcome::no_discovery
                                                                                  : LookupAnswer::Outcome::failed;
    return {outcome, std::nullopt, avahi_strerror(code)};
  }

  static void state_changed(AvahiClient *client, AvahiClientState state, void *self) {
    if (state == AVAHI_CLIENT_FAILURE) static_cast<ServiceQuestion *>(self)->answer_ = failed(client);
  }

  static void resolved(AvahiServiceResolver *resolver, AvahiIfIndex interface, AvahiProtocol, AvahiResolverEvent event,
                       char const *, char const *, char const *, char const *, AvahiAddress const *address, uint16_t,
                       AvahiStringList *, AvahiLookupResultFlags, void *self) {
    auto &answer = static_cast<ServiceQuestion *>(self)->answer_;
    if (answer) return;
    if (event == AVAHI_RESOLVER_FAILURE)
      answer = failed(avahi_service_resolver_get_client(resolver));
    else if (auto const numeric = numeric_of(*address, interface))
      answer = LookupAnswer{LookupAnswer::Outcome::found, numeric, ""};
  }

  static std::optional<NumericAddress> numeric_of(AvahiAddress const &address, AvahiIfIndex interface) {
    sockaddr_storage storage = {};
    if (address.proto == AVAHI_PROTO_INET) {
      auto &ipv4 = reinterpret_cast<sockaddr_in &>(storage);
      ipv4.sin_family = AF_INET;
      ipv4.sin_addr.s_addr = address.data.ipv4.address;
    } else {
      auto &ipv6 = reinterpret_cast<sockaddr_in6 &>(storage);
      ipv6.sin6_family = AF_INET6;
      std::memcpy(&ipv6.sin6_addr, address.data.ipv6.address, sizeof ipv6.sin6_addr);
      if (IN6_IS_ADDR_LINKLOCAL(&ipv6.sin6_addr)) ipv6.sin6_scope_id = static_cast<uint32_t>(interface);
    }
    return numeric_address(reinterpret_cast<sockaddr *>(&storage));
  }

  std::unique_ptr<AvahiSimplePoll, decltype(&avahi_simple_poll_free)> poll_;
  std::optional<LookupAnswer> answer_;
};

}  // namespace

LookupAnswer reach_discovery() { return ServiceQuestion().reach(); }

LookupAnswer look_up_service(std::string const &service, std::chrono::milliseconds limit) {
  std::string const front = service.substr(0, service.find("._tcp"));
  auto const dot = front.rfind('.');
  //: A reason, to stand inside a sentence.
  if (dot == std::string::npos) return {LookupAnswer::Outcome::failed, std::nullopt, tr("The service has no name")};
  return ServiceQuestion().ask(front.substr(0, dot), front.substr(dot + 1) + "._tcp", limit);
}

}  // namespace fax::host
