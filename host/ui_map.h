// The map of what is on the screen, for programs that drive the dialog by real X events: every visible window with its
// controls, as JSON in one file.
//
// Frames are [x, y, width, height] in pixels of the X root window, origin at its top left. All text is UTF-8.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace fax::host {

struct MapFrame {
  int x = 0, y = 0, width = 0, height = 0;
};

struct MapRow {
  std::vector<std::string> cells;
  std::vector<MapFrame> cell_frames;  // one for each cell
  MapFrame frame;                     // the part of the row that can be seen
  bool selected = false;
};

struct MapControl {
  std::string kind;        // class name: "NSButton", "NSTextField", "NSMenuItem"
  std::string title;       // text on the control; of a text field without one, the text of the label that names it
  std::string value;       // text of a field, chosen item of a pop-up, "0"/"1"/"-1" of a switch
  std::string identifier;  // name of the outlet that holds it, else ""
  std::string tooltip;
  bool enabled = true;
  bool focused = false;
  bool label = false;  // text that cannot be edited
  MapFrame frame;
  std::vector<std::string> items;  // pop-up: titles of its items
  std::vector<MapRow> rows;        // table: rows that can be seen
};

struct MapWindow {
  std::string title;
  std::string kind;
  MapFrame frame;  // the content, without the window manager's border
  bool key = false;
  bool modal = false;
  std::vector<MapControl> controls;
};

// The label that names a control: the nearest one to the left on the same line, else the nearest right above it.
// Nothing when none is near: index -1.
int nearest_label(MapFrame const &control, std::vector<MapControl> const &all);

// Gives every text field, pop-up, table and stepper without a title the text of its label, less a colon at the end.
void name_by_labels(MapWindow &window);

// The file. It is replaced as a whole (a new file is renamed over it), so a reader never sees half of one.
class MapFile {
 public:
  explicit MapFile(std::filesystem::path path) : path_(std::move(path)) {}
  // Writes when the windows differ from those written last; "sequence" counts the writings from 1. False when the file
  // could not be written; the next call tries again.
  bool update(std::vector<MapWindow> const &windows);

 private:
  std::filesystem::path path_;
  std::string written_;
  std::uint64_t sequence_ = 0;
};

}  // namespace fax::host
