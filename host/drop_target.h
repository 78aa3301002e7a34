// Files that are dragged onto a window from other programs (XDND, version 5). The toolkit tells its programs of such a drag
// but never of what is dragged; here a window of our own, on a connection of its own, answers in the name of the visible
// one (XdndProxy).
#pragma once
#include <memory>
#include <optional>
#include <string>

namespace fax::host {

class DropTarget {
 public:
  // window: number of an X window, which may end before the target does. Nothing when no display answers.
  static std::unique_ptr<DropTarget> on_window(unsigned long window);
  ~DropTarget();
  DropTarget(DropTarget const &) = delete;
  DropTarget &operator=(DropTarget const &) = delete;

  // Becomes readable when there is something to deal with. Belongs to the target.
  int descriptor() const;

  // Deals with everything that has come in, without waiting. The list of addresses (text/uri-list) that was dropped, if one
  // was. While accepts is false every drag is refused.
  std::optional<std::string> take(bool accepts);

 private:
  struct Parts;
  explicit DropTarget(std::unique_ptr<Parts> parts);
  std::unique_ptr<Parts> parts_;
};

}  // namespace fax::host
