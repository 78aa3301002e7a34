#include "quoltanis/directory.h"

#include <fcntl.h>
#include <ldap.h>
#include <netdb.h>
#include <openldap.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace fax {
namespace {

constexpr ber_int_t page_size = 1000;
constexpr ber_len_t longest_message = 16 << 20;

// A descriptor that closes itself unless it was given away.
class Socket {
public:
  explicit Socket(int number) : number_(number) {}
  ~Socket() {
    if (number_ >= 0) close(number_);
  }
  Socket(Socket const &) = delete;
  Socket &operator=(Socket const &) = delete;
  int number() const { return number_; }
  int release() { return std::exchange(number_, -1); }

private:
  int number_;
};

struct FreeAddresses {
  void operator()(addrinfo *list) const { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

std::string without_brackets(std::string const &address) {
  bool const bracketed = address.starts_with('[') && address.ends_with(']');
  return bracketed ? address.substr(1, address.size() - 2) : address;
}

// Only an address, never a name: looking one up could wait for as long as it likes.
Addresses addresses_of(std::string const &address, unsigned port) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo *list = nullptr;
  bool const plain = !address.empty() && address.find('\0') == std::string::npos;
  if (!plain || getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) return nullptr;
  return Addresses(list);
}

int milliseconds_until(Watchdog::Clock::time_point end) {
  auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Watchdog::Clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

Status finish_connecting(int socket, Watchdog::Clock::time_point end) {
  pollfd waiting{socket, POLLOUT, 0};
  int ready;
  do ready = poll(&waiting, 1, milliseconds_until(end));
  while (ready < 0 && errno == EINTR);
  if (ready == 0) return Status::time_out;
  int error = 0;
  socklen_t size = sizeof error;
  bool const known = ready > 0 && getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0;
  return known && error == 0 ? Status::success : Status::unreachable;
}

std::string url_of(PrinterSettings const &settings, std::string const &address) {
  std::string host = settings.server_name.empty() ? address : settings.server_name;
  host.erase(std::min(host.find('%'), host.size()));
  if (host.find(':') != std::string::npos) host = "[" + host + "]";
  return "ldap://" + host + "/";
}

timeval time_until(Watchdog::Clock::time_point end) {
  long const left = std::max(milliseconds_until(end), 1);
  return {left / 1000, left % 1000 * 1000};
}

struct FreeControl {
  void operator()(LDAPControl *control) const { ldap_control_free(control); }
};

}  // namespace

void Directory::Close::operator()(LDAP *ldap) const { ldap_unbind_ext(ldap, nullptr, nullptr); }
void Directory::Free::operator()(LDAPMessage *message) const { ldap_msgfree(message); }

Directory::Directory(PrinterSettings const &settings, std::chrono::milliseconds overall)
    : settings_(settings), end_(Watchdog::Clock::now() + overall) {}

// The farewell is a write that could hang too, so the watchdog goes last.
Directory::~Directory() {
  if (watchdog_) watchdog_->set(step_end());
  ldap_.reset();
}

Watchdog::Clock::time_point Directory::step_end() {
  return std::min(end_, Watchdog::Clock::now() + settings_.time_out);
}

Status Directory::connect(std::string const &given) {
  std::string const address = without_brackets(given);
  unsigned const usual = settings_.tls == PrinterSettings::Tls::whole ? 636 : 389;
  Addresses const found = addresses_of(address, settings_.port.value_or(usual));
  if (found == nullptr) return Status::no_address;
  Socket socket(::socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (socket.number() < 0) return Status::unreachable;
  if (::connect(socket.number(), found->ai_addr, found->ai_addrlen) != 0) {
    if (errno != EINPROGRESS) return Status::unreachable;
    if (Status const status = finish_connecting(socket.number(), step_end()); status != Status::success) return status;
  }
  int const flags = fcntl(socket.number(), F_GETFL);
  if (fcntl(socket.number(), F_SETFL, flags & ~O_NONBLOCK) != 0) return Status::unreachable;
  if (Status const status = open(socket.number(), address); status != Status::success) return status;
  watchdog_.emplace(socket.release());
  return settings_.tls == PrinterSettings::Tls::none ? Status::success : encrypt();
}

Status Directory::open(int socket, std::string const &address) {
  LDAP *opened = nullptr;
  if (ldap_init_fd(socket, LDAP_PROTO_TCP, url_of(settings_, address).c_str(), &opened) != LDAP_SUCCESS)
    return Status::unexpected;
  ldap_.reset(opened);
  int const version = LDAP_VERSION3, unlimited = LDAP_NO_LIMIT, dereference = LDAP_DEREF_NEVER;
  timeval const step = time_until(step_end());
  ldap_set_option(opened, LDAP_OPT_PROTOCOL_VERSION, &version);
  ldap_set_option(opened, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
  ldap_set_option(opened, LDAP_OPT_DEREF, &dereference);
  ldap_set_option(opened, LDAP_OPT_SIZELIMIT, &unlimited);
  ldap_set_option(opened, LDAP_OPT_TIMELIMIT, &unlimited);
  ldap_set_option(opened, LDAP_OPT_RESTART, LDAP_OPT_ON);
  ldap_set_option(opened, LDAP_OPT_NETWORK_TIMEOUT, &step);
  Sockbuf *buffer = nullptr;
  ber_len_t longest = longest_message;
  if (ldap_get_option(opened, LDAP_OPT_SOCKBUF, &buffer) == LDAP_SUCCESS && buffer != nullptr)
    ber_sockbuf_ctrl(buffer, LBER_SB_OPT_SET_MAX_INCOMING, &longest);
  return Status::success;
}

Status Directory::encrypt() {
  int const demand = LDAP_OPT_X_TLS_DEMAND, least = LDAP_OPT_X_TLS_PROTOCOL_TLS1_2, client = 0;
  std::string const authorities = settings_.ca_file.empty() ? "/etc/ssl/certs/ca-certificates.crt" : settings_.ca_file;
  LDAP *const ldap = ldap_.get();
  bool const prepared = ldap_set_option(ldap, LDAP_OPT_X_TLS_REQUIRE_CERT, &demand) == LDAP_SUCCESS &&
                        ldap_set_option(ldap, LDAP_OPT_X_TLS_PROTOCOL_MIN, &least) == LDAP_SUCCESS &&
                        ldap_set_option(ldap, LDAP_OPT_X_TLS_CACERTFILE, authorities.c_str()) == LDAP_SUCCESS &&
                        ldap_set_option(ldap, LDAP_OPT_X_TLS_NEWCTX, &client) == LDAP_SUCCESS;
  if (!prepared) return Status::tls;
  if (settings_.tls == PrinterSettings::Tls::start)
    if (Status const status = start_tls(); status != Status::success) return status;
  watchdog_->set(step_end());
  if (ldap_install_tls(ldap) == LDAP_SUCCESS) return Status::success;
  return watchdog_->has_struck() ? Status::time_out : Status::tls;
}

Status Directory::start_tls() {
  int id = 0;
  watchdog_->set(step_end());
  if (int const code = ldap_start_tls(ldap_.get(), nullptr, nullptr, &id); code != LDAP_SUCCESS) return failure(code);
  Message message;
  int code = 0;
  if (Status const status = wait(id, message); status != Status::success) return status;
  if (Status const status = result_of(message, code); status != Status::success) return status;
  return code == LDAP_SUCCESS ? Status::success : Status::tls;
}

Status Directory::bind(std::string const &dn, std::string const &password) {
  if (password.empty()) return Status::password;
  berval credentials{password.size(), const_cast<char *>(password.data())};
  int id = 0, code = 0;
  watchdog_->set(step_end());
  code = ldap_sasl_bind(ldap_.get(), dn.c_str(), LDAP_SASL_SIMPLE, &credentials, nullptr, nullptr, &id);
  if (code != LDAP_SUCCESS) return failure(code);
  Message message;
  if (Status const status = wait(id, message); status != Status::success) return status;
  if (Status const status = result_of(message, code); status != Status::success) return status;
  if (code == LDAP_INVALID_CREDENTIALS) return Status::password;
  return code == LDAP_SUCCESS ? Status::success : Status::refused;
}

// Waits for the next message that belongs to a request.
Status Directory::wait(int id, Message &message) {
  watchdog_->set(step_end());
  timeval patience = time_until(step_end());
  LDAPMessage *received = nullptr;
  int const kind = ldap_result(ldap_.get(), id, LDAP_MSG_ONE, &patience, &received);
  message.reset(received);
  if (kind > 0) return Status::success;
  if (kind == 0) return Status::time_out;
  int code = LDAP_SERVER_DOWN;
  ldap_get_option(ldap_.get(), LDAP_OPT_RESULT_CODE, &code);
  return failure(code);
}

Status Directory::result_of(Message const &message, int &code) {
  int const parsed = ldap_parse_result(ldap_.get(), message.get(), &code, nullptr, nullptr, nullptr, nullptr, 0);
  return parsed == LDAP_SUCCESS ? Status::success : Status::bad_answer;
}

// Of a code of the library's own, not one that the server sent.
Status Directory::failure(int code) {
  if (watchdog_ && watchdog_->has_struck()) return Status::time_out;
  switch (code) {
    case LDAP_NO_MEMORY: return Status::memory;
    case LDAP_TIMEOUT: return Status::time_out;
    case LDAP_DECODING_ERROR: return Status::bad_answer;
    case LDAP_FILTER_ERROR:
    case LDAP_PARAM_ERROR:
    case LDAP_ENCODING_ERROR: return Status::configuration;
    default: return Status::unreachable;
  }
}

struct Directory::Page {
  ~Page() { ber_memfree(cookie.bv_val); }
  berval cookie{0, nullptr};
  int code = LDAP_SUCCESS;
};

Status Directory::search(Query const &query, std::function<Status(DirectoryEntry const &)> const &take) {
  Page progress;
  do {
    if (Status const status = page(query, progress, take); status != Status::success) return status;
  } while (progress.code == LDAP_SUCCESS && progress.cookie.bv_len != 0);
  switch (progress.code) {
    case LDAP_SUCCESS: return Status::success;
    case LDAP_SIZELIMIT_EXCEEDED:
    case LDAP_TIMELIMIT_EXCEEDED:
    case LDAP_ADMINLIMIT_EXCEEDED: return Status::incomplete;
    default: return Status::refused;
  }
}

Status Directory::page(Query const &query, Page &progress, std::function<Status(DirectoryEntry const &)> const &take) {
  std::vector<char *> attributes;
  for (auto const &attribute : query.attributes) attributes.push_back(const_cast<char *>(attribute.c_str()));
  attributes.push_back(nullptr);
  LDAPControl *made = nullptr;
  berval *const cookie = progress.cookie.bv_val == nullptr ? nullptr : &progress.cookie;
  if (ldap_create_page_control(ldap_.get(), page_size, cookie, 0, &made) != LDAP_SUCCESS) return Status::memory;
  std::unique_ptr<LDAPControl, FreeControl> const control(made);
  LDAPControl *controls[] = {query.whole_tree ? control.get() : nullptr, nullptr};
  int id = 0;
  watchdog_->set(step_end());
  int const scope = query.whole_tree ? LDAP_SCOPE_SUBTREE : LDAP_SCOPE_BASE;
  int const code = ldap_search_ext(ldap_.get(), query.base.c_str(), scope, query.filter.c_str(), attributes.data(), 0,
                                   controls, nullptr, nullptr, LDAP_NO_LIMIT, &id);
  if (code != LDAP_SUCCESS) return failure(code);
  for (;;) {
    Message message;
    if (Status const status = wait(id, message); status != Status::success) return status;
    int const kind = ldap_msgtype(message.get());
    if (kind == LDAP_RES_SEARCH_RESULT) return next_cookie(message, progress);
    if (kind != LDAP_RES_SEARCH_ENTRY) continue;
    DirectoryEntry entry;
    Status status = decode(message.get(), entry);
    if (status == Status::success) status = take(entry);
    if (status == Status::success) continue;
    ldap_abandon_ext(ldap_.get(), id, nullptr, nullptr);
    return status;
  }
}

Status Directory::next_cookie(Message const &message, Page &progress) {
  LDAPControl **controls = nullptr;
  int const parsed =
      ldap_parse_result(ldap_.get(), message.get(), &progress.code, nullptr, nullptr, nullptr, &controls, 0);
  ber_memfree(std::exchange(progress.cookie.bv_val, nullptr));
  progress.cookie.bv_len = 0;
  if (parsed != LDAP_SUCCESS) return Status::bad_answer;
  ber_int_t estimate = 0;
  LDAPControl *const control = ldap_control_find(LDAP_CONTROL_PAGEDRESULTS, controls, nullptr);
  bool const sound = control == nullptr ||
                     ldap_parse_pageresponse_control(ldap_.get(), control, &estimate, &progress.cookie) == LDAP_SUCCESS;
  ldap_controls_free(controls);
  return sound ? Status::success : Status::bad_answer;
}

Status Directory::decode(LDAPMessage *message, DirectoryEntry &entry) {
  BerElement *position = nullptr;
  berval dn{0, nullptr};
  int code = ldap_get_dn_ber(ldap_.get(), message, &position, &dn);
  if (code == LDAP_SUCCESS && dn.bv_val != nullptr) entry.dn.assign(dn.bv_val, dn.bv_len);
  while (code == LDAP_SUCCESS) {
    berval name{0, nullptr};
    BerVarray values = nullptr;
    code = ldap_get_attribute_ber(ldap_.get(), message, position, &name, &values);
    if (code != LDAP_SUCCESS || name.bv_val == nullptr) break;
    auto &own = entry.attributes[std::string(name.bv_val, name.bv_len)];
    for (berval *value = values; value != nullptr && value->bv_val != nullptr; ++value)
      own.emplace_back(value->bv_val, value->bv_len);
    ber_memfree(values);
  }
  ber_free(position, 0);
  return code == LDAP_SUCCESS ? Status::success : Status::bad_answer;
}

Status Directory::knock() {
  Query const query{.base = "", .whole_tree = false, .filter = "(objectClass=*)", .attributes = {"namingContexts"}};
  Status const status = search(query, [](DirectoryEntry const &) { return Status::success; });
  bool const answered = status == Status::success || status == Status::refused || status == Status::incomplete;
  return answered ? Status::success : status;
}

}  // namespace fax
