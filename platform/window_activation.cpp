#include "platform/window_activation.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/res.h>
#include <xcb/xcb.h>

namespace fax {

namespace {

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

// One connection for one question. A window may go at any time: an error is an empty answer.
class Display {
public:
  Display() : connection_(xcb_connect(nullptr, &screen_number_)) {}
  ~Display() { xcb_disconnect(connection_); }
  Display(Display const &) = delete;
  Display &operator=(Display const &) = delete;

  bool answers() const { return xcb_connection_has_error(connection_) == 0; }

  xcb_window_t root() const {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int at = 0; at < screen_number_ && screens.rem > 1; ++at) xcb_screen_next(&screens);
    return screens.data->root;
  }

  // 0 when the server does not know the name, and so no window has such a property.
  xcb_atom_t atom(std::string_view name) const {
    auto const asked = xcb_intern_atom(connection_, 1, std::uint16_t(name.size()), name.data());
    Owned<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(connection_, asked, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
  }

  std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property) const {
    auto const reply = read(window, property);
    if (!reply || reply->format != 32) return {};
    auto const *first = static_cast<std::uint32_t const *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
  }

  // The process on the server's own computer that made a window or any other resource, as the server itself knows it:
  // few programs of the toolkit say it in a property. 0 when the server cannot tell.
  pid_t maker(std::uint32_t resource) const {
    if (auto const *extension = xcb_get_extension_data(connection_, &xcb_res_id); !extension || !extension->present)
      return 0;
    xcb_res_client_id_spec_t const wanted{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    auto const asked = xcb_res_query_client_ids(connection_, 1, &wanted);
    Owned<xcb_res_query_client_ids_reply_t> const reply(
        xcb_res_query_client_ids_reply(connection_, asked, nullptr), &std::free);
    if (!reply || reply->num_ids != 1) return 0;
    auto const *value = xcb_res_query_client_ids_ids_iterator(reply.get()).data;
    return xcb_res_client_id_value_value_length(value) == 1 ? pid_t(*xcb_res_client_id_value_value(value)) : 0;
  }

  std::uint32_t own_resource() const { return xcb_get_setup(connection_)->resource_id_base; }

  void activate(xcb_window_t window) const {
    constexpr std::uint32_t kAskedByAPerson = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = kAskedByAPerson;
    xcb_send_event(connection_, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<char const *>(&message));
    xcb_flush(connection_);
  }

private:
  Owned<xcb_get_property_reply_t> read(xcb_window_t window, std::string_view property) const {
    constexpr std::uint32_t kMostWords = 4096;
    auto const asked =
        xcb_get_property(connection_, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, kMostWords);
    return {xcb_get_property_reply(connection_, asked, nullptr), &std::free};
  }

  int screen_number_ = 0;
  xcb_connection_t *connection_;
};

bool contains(std::vector<std::uint32_t> const &numbers, std::uint32_t one) {
  return std::find(numbers.begin(), numbers.end(), one) != numbers.end();
}

// Not one of the small ones that stand for a whole program, which pagers and task bars leave out.
bool is_ordinary(Display const &display, xcb_window_t window) {
  if (contains(display.numbers(window, "_NET_WM_STATE"), display.atom("_NET_WM_STATE_SKIP_TASKBAR"))) return false;
  auto const types = display.numbers(window, "_NET_WM_WINDOW_TYPE");
  return types.empty() || contains(types, display.atom("_NET_WM_WINDOW_TYPE_NORMAL")) ||
         contains(types, display.atom("_NET_WM_WINDOW_TYPE_DIALOG"));
}

bool becomes_active(Display const &display, xcb_window_t window) {
  for (int turn = 0; turn < 20; ++turn) {
    if (contains(display.numbers(display.root(), "_NET_ACTIVE_WINDOW"), window)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace

bool bring_forward(pid_t process) {
  Display const display;
  // Process numbers of another computer, or another name space, say nothing here.
  if (!display.answers() || display.maker(display.own_resource()) != getpid()) return false;
  xcb_window_t const root = display.root();
  xcb_atom_t const request = display.atom("_NET_ACTIVE_WINDOW");
  if (request == XCB_ATOM_NONE || !contains(display.numbers(root, "_NET_SUPPORTED"), request)) return false;
  auto windows = display.numbers(root, "_NET_CLIENT_LIST_STACKING");
  if (windows.empty()) windows = display.numbers(root, "_NET_CLIENT_LIST");
  auto const wanted = std::find_if(windows.rbegin(), windows.rend(), [&](xcb_window_t window) {
    return display.maker(window) == process && is_ordinary(display, window);
  });
  if (wanted == windows.rend()) return false;
  // The toolkit's windows leave the first invitation to take the focus unanswered after they came on the screen.
  for (int turn = 0; turn < 3; ++turn) {
    display.activate(*wanted);
    if (becomes_active(display, *wanted)) return true;
  }
  return false;
}

}  // namespace fax
