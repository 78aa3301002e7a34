// A program that drags a list of addresses onto a window of another one, by the protocol XDND, on a connection of its own.
#pragma once
#include <string>

namespace fax::host {

struct DragResult {
  bool accepted = false;  // the target said that it would take it
  bool finished = false;  // it said so after the drop
};

// What the source offers: a list of three types in its messages, or a longer one in a property.
enum class Offer { files, files_among_many, text_only };

// Finds who answers for the window, drags over it, and drops when it is accepted. Blocks for five seconds at most; the
// window's program has to answer meanwhile. std::runtime_error when nobody answers for the window.
DragResult drag_onto(unsigned long window, std::string const &addresses, Offer offer);

}  // namespace fax::host
