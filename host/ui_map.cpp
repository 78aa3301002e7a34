#include "host/ui_map.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <system_error>

#include <unistd.h>

namespace fax::host {
namespace {

using Json = nlohmann::ordered_json;

Json to_json(MapFrame const &frame) { return Json::array({frame.x, frame.y, frame.width, frame.height}); }

Json to_json(MapRow const &row) {
  Json cells = Json::array();
  Json frames = Json::array();
  for (auto const &cell : row.cells) cells.push_back(cell);
  for (auto const &frame : row.cell_frames) frames.push_back(to_json(frame));
  return {{"cells", cells}, {"cell_frames", frames}, {"frame", to_json(row.frame)}, {"selected", row.selected}};
}

Json to_json(MapControl const &control) {
  Json json{{"class", control.kind},
            {"title", control.title},
            {"value", control.value},
            {"identifier", control.identifier},
            {"tooltip", control.tooltip},
            {"enabled", control.enabled},
            {"focused", control.focused},
            {"frame", to_json(control.frame)}};
  if (!control.items.empty()) json["items"] = control.items;
  if (!control.rows.empty()) {
    Json rows = Json::array();
    for (auto const &row : control.rows) rows.push_back(to_json(row));
    json["rows"] = rows;
  }
  return json;
}

Json to_json(MapWindow const &window) {
  Json controls = Json::array();
  for (auto const &control : window.controls) controls.push_back(to_json(control));
  return {{"title", window.title}, {"class", window.kind},   {"frame", to_json(window.frame)},
          {"key", window.key},     {"modal", window.modal}, {"controls", controls}};
}

std::string without_colon(std::string text) {
  while (!text.empty() && (text.back() == ':' || text.back() == ' ')) text.pop_back();
  return text;
}

}  // namespace

int nearest_label(MapFrame const &control, std::vector<MapControl> const &all) {
  constexpr int kFarLeft = 60;
  constexpr int kFarAbove = 16;
  int best = -1;
  int best_gap = kFarLeft + 1;
  for (std::size_t at = 0; at < all.size(); ++at) {
    MapFrame const &label = all[at].frame;
    if (!all[at].label || all[at].value.empty()) continue;
    int const gap = control.x - (label.x + label.width);
    int const middle = label.y + label.height / 2;
    bool const same_line = middle >= control.y && middle <= control.y + std::min(control.height, 40);
    if (same_line && gap >= -2 && gap < best_gap) {
      best = static_cast<int>(at);
      best_gap = gap;
    }
  }
  if (best >= 0) return best;
  best_gap = kFarAbove + 1;
  for (std::size_t at = 0; at < all.size(); ++at) {
    MapFrame const &label = all[at].frame;
    if (!all[at].label || all[at].value.empty()) continue;
    int const gap = control.y - (label.y + label.height);
    bool const above = label.x < control.x + control.width && label.x + label.width > control.x;
    if (above && gap >= -2 && gap < best_gap) {
      best = static_cast<int>(at);
      best_gap = gap;
    }
  }
  return best;
}

void name_by_labels(MapWindow &window) {
  std::vector<MapControl> const all = window.controls;
  for (MapControl &control : window.controls) {
    if (control.label || !control.title.empty() || control.kind == "NSMenuItem" || control.kind == "NSBox") continue;
    int const label = nearest_label(control.frame, all);
    if (label >= 0) control.title = without_colon(all[static_cast<std::size_t>(label)].value);
  }
}

bool MapFile::update(std::vector<MapWindow> const &windows) {
  Json list = Json::array();
  for (auto const &window : windows) list.push_back(to_json(window));
  // Text that is no valid UTF-8 is written with replacement characters, not refused.
  std::string text = list.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text == written_) return true;
  std::filesystem::path const fresh = path_.string() + ".new-" + std::to_string(getpid());
  {
    std::ofstream out{fresh, std::ios::binary | std::ios::trunc};
    out << "{\"sequence\":" << sequence_ + 1 << ",\n\"windows\":" << text << "}\n";
    out.close();
    if (!out) return false;
  }
  std::error_code failed;
  std::filesystem::rename(fresh, path_, failed);
  if (failed) return false;
  ++sequence_;
  written_ = std::move(text);
  return true;
}

}  // namespace fax::host
