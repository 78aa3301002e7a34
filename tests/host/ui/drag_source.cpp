#include "drag_source.h"

#include <poll.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

namespace fax::host {
namespace {

class Source {
 public:
  Source(unsigned long window, std::string addresses)
      : window_(static_cast<xcb_window_t>(window)), addresses_(std::move(addresses)) {
    xcb_screen_t const *screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    own_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, own_, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    proxy_ = number(window_, "XdndProxy");
    if (proxy_ == 0 || number(proxy_, "XdndProxy") != proxy_ || number(proxy_, "XdndAware") != 5)
      throw std::runtime_error("nobody answers for the window");
    xcb_set_selection_owner(connection_, own_, atom("XdndSelection"), XCB_CURRENT_TIME);
  }
  ~Source() { xcb_disconnect(connection_); }
  Source(Source const &) = delete;
  Source &operator=(Source const &) = delete;

  DragResult drag(Offer offer) {
    std::vector<xcb_atom_t> types{atom("text/plain"), atom("UTF8_STRING")};
    if (offer == Offer::files_among_many) types.push_back(atom("STRING"));
    if (offer != Offer::text_only) types.push_back(atom("text/uri-list"));
    bool const listed = types.size() > 3;
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, own_, atom("XdndTypeList"), XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(types.size()), types.data());
    types.resize(3);
    send("XdndEnter", {5u << 24 | (listed ? 1u : 0u), listed ? 0 : types[0], listed ? 0 : types[1], listed ? 0 : types[2]});
    send("XdndPosition", {0, 300u << 16 | 300u, XCB_CURRENT_TIME, atom("XdndActionCopy")});
    DragResult result;
    result.accepted = (wait_for("XdndStatus") & 1) != 0;
    if (!result.accepted) {
      send("XdndLeave", {0, 0, 0, 0});
      return result;
    }
    send("XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
    result.finished = (wait_for("XdndFinished") & 1) != 0;
    return result;
  }

 private:
  xcb_atom_t atom(std::string const &name) {
    auto const asked = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> const reply(
        xcb_intern_atom_reply(connection_, asked, nullptr), &std::free);
    return reply ? reply->atom : 0;
  }

  std::uint32_t number(xcb_window_t window, std::string const &name) {
    auto const asked = xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> const reply(
        xcb_get_property_reply(connection_, asked, nullptr), &std::free);
    if (!reply || reply->format != 32 || reply->value_len != 1) return 0;
    return *static_cast<std::uint32_t const *>(xcb_get_property_value(reply.get()));
  }

  void send(std::string const &what, std::vector<std::uint32_t> const &rest) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window_;
    message.type = atom(what);
    message.data.data32[0] = own_;
    for (std::size_t at = 0; at < rest.size(); ++at) message.data.data32[at + 1] = rest[at];
    xcb_send_event(connection_, 0, proxy_, 0, reinterpret_cast<char const *>(&message));
    xcb_flush(connection_);
  }

  void hand_over(xcb_selection_request_event_t const &request) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request.requestor, request.property, request.target, 8,
                        static_cast<std::uint32_t>(addresses_.size()), addresses_.data());
    xcb_selection_notify_event_t note{};
    note.response_type = XCB_SELECTION_NOTIFY;
    note.requestor = request.requestor;
    note.selection = request.selection;
    note.target = request.target;
    note.property = request.property;
    xcb_send_event(connection_, 0, request.requestor, 0, reinterpret_cast<char const *>(&note));
    xcb_flush(connection_);
  }

  // The flags of the answer, 0 when none comes in time. Hands the addresses over meanwhile.
  std::uint32_t wait_for(std::string const &answer) {
    xcb_atom_t const wanted = atom(answer);
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (std::chrono::steady_clock::now() < end) {
      std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> const event(xcb_poll_for_event(connection_), &std::free);
      if (!event) {
        pollfd readable{xcb_get_file_descriptor(connection_), POLLIN, 0};
        poll(&readable, 1, 50);
        continue;
      }
      int const kind = event->response_type & 0x7f;
      if (kind == XCB_SELECTION_REQUEST) hand_over(*reinterpret_cast<xcb_selection_request_event_t *>(event.get()));
      if (kind != XCB_CLIENT_MESSAGE) continue;
      auto const &message = *reinterpret_cast<xcb_client_message_event_t *>(event.get());
      if (message.type == wanted && message.data.data32[0] == window_) return message.data.data32[1];
    }
    return 0;
  }

  xcb_connection_t *connection_ = xcb_connect(nullptr, nullptr);
  xcb_window_t window_, own_ = 0, proxy_ = 0;
  std::string addresses_;
};

}  // namespace

DragResult drag_onto(unsigned long window, std::string const &addresses, Offer offer) {
  return Source(window, addresses).drag(offer);
}

}  // namespace fax::host
