// Help pages as blocks of runs: what a viewer has to draw, read from HTML.
//
// All text is UTF-8. White space is folded as HTML folds it; headings, paragraphs, list items, table rows, rules,
// preformatted text, links, images and anchors are kept, everything else is shown as the text that it holds. Scripts,
// style sheets and forms are left out. Nothing is fetched.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::host {

// A stretch of text of one look, or an image (text is then its alternative text).
struct HelpRun {
  std::string text;
  std::string link;   // as written in the page, "" for none
  std::string image;  // the source as written in the page, "" for none
  bool bold = false;
  bool italic = false;
  bool code = false;
};

struct HelpBlock {
  enum class Kind { heading, paragraph, item, row, preformatted, rule };
  Kind kind = Kind::paragraph;
  int level = 0;       // heading: 1 to 6; item: depth of the list, from 1; otherwise the depth of the list around it
  std::string marker;  // item: "•" or "3."; "" for the second and later blocks of an item
  // One entry except in a row, which has one for each cell.
  std::vector<std::vector<HelpRun>> cells;
  std::vector<std::string> anchors;  // names that lead to this block
  bool header = false;               // row: its cells are headings of columns
};

struct HelpPage {
  std::string title;  // of <title>, else of the first heading
  std::vector<HelpBlock> blocks;
};

// html in the encoding that it declares, else UTF-8. Nothing when it holds no document at all; broken markup is read
// as browsers do.
std::optional<HelpPage> read_help_page(std::string_view html);

// Where a link of a page leads, or what else can be seen in the window.
struct HelpTarget {
  std::string path;    // absolute file path, "" when the link leads out of the help book
  std::string anchor;  // "" for none
  std::string search = {};                // what was searched for; with a path its places are marked on that page,
                                          // without one it is the list of what was found
  std::optional<std::size_t> block = {};  // of the page, instead of an anchor
  bool operator==(HelpTarget const &) const = default;
};

// page: absolute path of the page that holds the link. "#part" stays on the page, "Other.htm#part" is in its folder,
// %XX escapes are decoded; a link with a scheme other than file: leads out.
HelpTarget resolve_help_link(std::string_view page, std::string_view link);

// The image's file, absolute and without symbolic links; nothing when the source leads out of the help book or to no file.
// A book is the folder that holds the folders of its languages (NAME.lproj), for a page outside of these its own folder.
// page: absolute path of the page that shows it.
std::optional<std::string> find_help_image(std::string const &page, std::string_view source);

// The places seen, with the usual two buttons.
class HelpHistory {
 public:
  // Forgets what lay ahead. Visiting the place one is at changes nothing.
  void visit(HelpTarget const &place);
  // Takes the place of the current one, which is forgotten, and of what lay ahead. One place was visited before.
  void replace(HelpTarget const &place);
  // Goes back and forgets the place left. can_go_back is true.
  void leave();
  bool can_go_back() const { return at_ > 1; }
  bool can_go_forward() const { return at_ < places_.size(); }
  // The place moved to; only when the matching can_go answers true.
  HelpTarget const &back() { return places_[--at_ - 1]; }
  HelpTarget const &forward() { return places_[at_++]; }
  bool empty() const { return places_.empty(); }
  HelpTarget const &current() const { return places_[at_ - 1]; }

 private:
  std::vector<HelpTarget> places_;
  std::size_t at_ = 0;  // one past the current place
};

}  // namespace fax::host
