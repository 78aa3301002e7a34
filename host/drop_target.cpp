#include "host/drop_target.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace fax::host {

namespace {

constexpr std::uint32_t kVersion = 5;
constexpr std::uint32_t kMostBytes = 1 << 20;  // of a list of addresses

enum Atom : std::size_t {
  kAware, kProxy, kEnter, kPosition, kStatus, kLeave, kDrop, kFinished, kSelection, kTypeList, kActionCopy, kUriList, kGot,
  kAtoms
};
constexpr std::array<std::string_view, kAtoms> kNames{
    "XdndAware", "XdndProxy",    "XdndEnter",    "XdndPosition",   "XdndStatus",    "XdndLeave", "XdndDrop",
    "XdndFinished", "XdndSelection", "XdndTypeList", "XdndActionCopy", "text/uri-list", "DirectFaxDropped"};

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

}  // namespace

struct DropTarget::Parts {
  // What is being dragged just now.
  struct Drag {
    xcb_window_t source = XCB_NONE;
    xcb_window_t target = XCB_NONE;  // as the source calls it: the visible window
    bool has_files = false;
    bool dropped = false;
  };

  xcb_connection_t *connection = xcb_connect(nullptr, &screen_number);
  int screen_number = 0;
  xcb_window_t own = XCB_NONE;
  std::array<xcb_atom_t, kAtoms> atoms{};
  Drag drag;

  Parts() = default;
  Parts(Parts const &) = delete;
  Parts &operator=(Parts const &) = delete;
  ~Parts() { xcb_disconnect(connection); }

  bool answers() const { return xcb_connection_has_error(connection) == 0; }

  void learn_atoms() {
    std::array<xcb_intern_atom_cookie_t, kAtoms> asked{};
    for (std::size_t at = 0; at < kAtoms; ++at)
      asked[at] = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(kNames[at].size()), kNames[at].data());
    for (std::size_t at = 0; at < kAtoms; ++at) {
      Owned<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(connection, asked[at], nullptr), &std::free);
      if (reply) atoms[at] = reply->atom;
    }
  }

  xcb_window_t root() const {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int at = 0; at < screen_number && screens.rem > 1; ++at) xcb_screen_next(&screens);
    return screens.data->root;
  }

  void set_property(xcb_window_t window, Atom name, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atoms[name], type, 32, 1, &value);
  }

  void stand_in_for(xcb_window_t window) {
    own = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, own, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    set_property(own, kAware, XCB_ATOM_ATOM, kVersion);
    set_property(own, kProxy, XCB_ATOM_WINDOW, own);
    set_property(window, kAware, XCB_ATOM_ATOM, kVersion);
    set_property(window, kProxy, XCB_ATOM_WINDOW, own);
    xcb_flush(connection);
  }

  bool in_type_list(xcb_window_t source, xcb_atom_t type) {
    auto const asked = xcb_get_property(connection, 0, source, atoms[kTypeList], XCB_ATOM_ATOM, 0, 1024);
    Owned<xcb_get_property_reply_t> const reply(xcb_get_property_reply(connection, asked, nullptr), &std::free);
    if (!reply || reply->format != 32) return false;
    auto const *first = static_cast<xcb_atom_t const *>(xcb_get_property_value(reply.get()));
    return std::find(first, first + reply->value_len, type) != first + reply->value_len;
  }

  void tell_source(Atom what, std::array<std::uint32_t, 4> const &rest) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = drag.source;
    message.type = atoms[what];
    message.data.data32[0] = drag.target;
    std::copy(rest.begin(), rest.end(), message.data.data32 + 1);
    xcb_send_event(connection, 0, drag.source, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<char const *>(&message));
  }

  void finish(bool taken) {
    if (drag.source != XCB_NONE) tell_source(kFinished, {taken ? 1u : 0u, taken ? atoms[kActionCopy] : 0u, 0, 0});
    drag = {};
  }

  void begin(xcb_client_message_event_t const &message) {
    auto const *data = message.data.data32;
    drag = {data[0], message.window, false, false};
    bool const listed = (data[1] & 1) != 0;
    drag.has_files = listed ? in_type_list(drag.source, atoms[kUriList])
                            : std::find(data + 2, data + 5, atoms[kUriList]) != data + 5;
  }

  void hear(xcb_client_message_event_t const &message, bool accepts) {
    auto const *data = message.data.data32;
    if (message.format != 32) return;
    if (message.type == atoms[kEnter]) return begin(message);
    if (drag.source == XCB_NONE || data[0] != drag.source) return;
    if (message.type == atoms[kLeave]) {
      drag = {};
    } else if (message.type == atoms[kPosition]) {
      bool const wanted = accepts && drag.has_files;
      tell_source(kStatus, {wanted ? 1u : 0u, 0, 0, wanted ? atoms[kActionCopy] : 0u});
    } else if (message.type == atoms[kDrop]) {
      if (!accepts || !drag.has_files) return finish(false);
      drag.dropped = true;
      xcb_convert_selection(connection, own, atoms[kSelection], atoms[kUriList], atoms[kGot], data[2]);
    }
  }

  // Nothing when the source has none for us, or far too much.
  std::optional<std::string> read(xcb_selection_notify_event_t const &event) {
    if (event.property == XCB_NONE) return std::nullopt;
    auto const asked = xcb_get_property(connection, 1, own, atoms[kGot], XCB_GET_PROPERTY_TYPE_ANY, 0, kMostBytes / 4);
    Owned<xcb_get_property_reply_t> const reply(xcb_get_property_reply(connection, asked, nullptr), &std::free);
    if (!reply || reply->format != 8 || reply->bytes_after > 0) return std::nullopt;
    return std::string(static_cast<char const *>(xcb_get_property_value(reply.get())),
                       static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
  }

  std::optional<std::string> take_selection(xcb_selection_notify_event_t const &event) {
    if (!drag.dropped || event.requestor != own) return std::nullopt;
    auto list = read(event);
    finish(list.has_value());
    return list;
  }
};

DropTarget::DropTarget(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
DropTarget::~DropTarget() = default;

std::unique_ptr<DropTarget> DropTarget::on_window(unsigned long window) {
  auto parts = std::make_unique<Parts>();
  if (!parts->answers() || window == 0) return nullptr;
  parts->learn_atoms();
  parts->stand_in_for(static_cast<xcb_window_t>(window));
  if (!parts->answers()) return nullptr;
  return std::unique_ptr<DropTarget>(new DropTarget(std::move(parts)));
}

int DropTarget::descriptor() const { return xcb_get_file_descriptor(parts_->connection); }

std::optional<std::string> DropTarget::take(bool accepts) {
  std::optional<std::string> dropped;
  while (auto *const next = xcb_poll_for_event(parts_->connection)) {
    Owned<xcb_generic_event_t> const event(next, &std::free);
    int const kind = event->response_type & 0x7f;
    if (kind == XCB_CLIENT_MESSAGE)
      parts_->hear(*reinterpret_cast<xcb_client_message_event_t const *>(next), accepts);
    else if (kind == XCB_SELECTION_NOTIFY) {
      if (auto list = parts_->take_selection(*reinterpret_cast<xcb_selection_notify_event_t const *>(next)))
        dropped = dropped.value_or("") + *list;
    }
  }
  xcb_flush(parts_->connection);
  return dropped;
}

}  // namespace fax::host
