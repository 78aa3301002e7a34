#include "host/help_page.h"

#include "host/core/utf8.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <memory>

namespace fax::host {
namespace {

struct FreeDocument {
  void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};

std::string lower(std::string_view text) {
  std::string result{text};
  std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) { return std::tolower(c); });
  return result;
}

std::string attribute(xmlNode *node, char const *name) {
  xmlChar *value = xmlGetProp(node, reinterpret_cast<xmlChar const *>(name));
  if (!value) return {};
  std::string result{reinterpret_cast<char const *>(value)};
  xmlFree(value);
  return result;
}

template <std::size_t Count>
bool one_of(std::string_view name, std::array<std::string_view, Count> const &names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr std::array<std::string_view, 9> kUnseen{"head",   "script", "style",  "form",  "object",
                                                  "iframe", "select", "button", "noscript"};
constexpr std::array<std::string_view, 16> kBlocks{"p",       "div",    "section", "article",    "header", "footer",
                                                   "main",    "nav",    "aside",   "blockquote", "dl",     "address",
                                                   "caption", "figure", "center",  "details"};

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

class Reader {
 public:
  explicit Reader(HelpPage &page) : page_(page) {}

  void read(xmlNode *node) {
    for (; node; node = node->next) {
      if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
        add_text(reinterpret_cast<char const *>(node->content));
      } else if (node->type == XML_ENTITY_REF_NODE) {
        read(node->children);
      } else if (node->type == XML_ELEMENT_NODE) {
        element(node, lower(reinterpret_cast<char const *>(node->name)));
      }
    }
  }

  void finish() { close(); }

 private:
  // Restores the look when an element ends.
  struct Look {
    explicit Look(HelpRun &style) : style(style), saved(style) {}
    ~Look() { style = saved; }
    HelpRun &style;
    HelpRun saved;
  };

  void element(xmlNode *node, std::string const &name) {
    if (name == "title" || one_of(name, kUnseen)) return;
    Look look{style_};
    if (auto id = attribute(node, "id"); !id.empty()) anchors_.push_back(id);
    if (name == "a") {
      if (auto anchor = attribute(node, "name"); !anchor.empty()) anchors_.push_back(anchor);
      if (auto link = attribute(node, "href"); !link.empty()) style_.link = link;
      read(node->children);
    } else if (name == "b" || name == "strong" || name == "dt") {
      if (name == "dt") close();
      style_.bold = true;
      read(node->children);
      if (name == "dt") close();
    } else if (name == "i" || name == "em" || name == "cite" || name == "var") {
      style_.italic = true;
      read(node->children);
    } else if (name == "code" || name == "kbd" || name == "tt" || name == "samp") {
      style_.code = true;
      read(node->children);
    } else if (name == "br") {
      block().cells.back().push_back(piece("\n"));
    } else if (name == "img") {
      HelpRun run = piece(attribute(node, "alt"));
      run.image = attribute(node, "src");
      block().cells.back().push_back(run);
    } else if (name == "hr") {
      close();
      start(HelpBlock::Kind::rule);
      close();
    } else if (name.size() == 2 && name[0] == 'h' && name[1] >= '1' && name[1] <= '6') {
      close();
      start(HelpBlock::Kind::heading).level = name[1] - '0';
      read(node->children);
      close();
    } else if (name == "pre") {
      close();
      start(HelpBlock::Kind::preformatted);
      style_.code = true;
      read(node->children);
      close();
    } else if (name == "ul" || name == "ol") {
      list(node, name == "ol");
    } else if (name == "dd") {
      close();
      ++depth_;
      read(node->children);
      close();
      --depth_;
    } else if (name == "li") {
      item(node, "\u2022");
    } else if (name == "tr") {
      row(node);
    } else if (one_of(name, kBlocks)) {
      close();
      read(node->children);
      close();
    } else {
      read(node->children);
    }
  }

  void list(xmlNode *node, bool numbered) {
    close();
    ++depth_;
    long long number = 1;
    if (auto start = attribute(node, "start"); numbered && !start.empty()) number = std::atoi(start.c_str());
    for (xmlNode *child = node->children; child; child = child->next) {
      if (child->type != XML_ELEMENT_NODE) continue;
      if (lower(reinterpret_cast<char const *>(child->name)) == "li") {
        if (auto id = attribute(child, "id"); !id.empty()) anchors_.push_back(id);
        item(child, numbered ? std::to_string(number++) + "." : "\u2022");
      } else {
        element(child, lower(reinterpret_cast<char const *>(child->name)));
      }
    }
    close();
    --depth_;
  }

  void item(xmlNode *node, std::string const &marker) {
    close();
    marker_ = marker;
    read(node->children);
    close();
    marker_.clear();
  }

  void row(xmlNode *node) {
    close();
    HelpBlock &row = start(HelpBlock::Kind::row);
    row.cells.clear();
    row.header = true;
    std::size_t const at = page_.blocks.size() - 1;
    for (xmlNode *child = node->children; child; child = child->next) {
      if (child->type != XML_ELEMENT_NODE) continue;
      std::string const name = lower(reinterpret_cast<char const *>(child->name));
      if (name != "td" && name != "th") continue;
      if (auto id = attribute(child, "id"); !id.empty()) page_.blocks[at].anchors.push_back(id);
      page_.blocks[at].header = page_.blocks[at].header && name == "th";
      page_.blocks[at].cells.push_back(cell(child, name == "th"));
    }
    open_ = false;
    if (page_.blocks[at].cells.empty()) page_.blocks.erase(page_.blocks.begin() + static_cast<long>(at));
  }

  // A cell's blocks, joined by line breaks.
  std::vector<HelpRun> cell(xmlNode *node, bool bold) {
    HelpPage inner;
    Reader reader{inner};
    reader.style_ = style_;
    reader.style_.bold = bold;
    reader.read(node->children);
    reader.finish();
    std::vector<HelpRun> runs;
    for (HelpBlock const &part : inner.blocks) {
      if (!runs.empty()) runs.push_back(piece("\n"));
      if (!part.marker.empty()) runs.push_back(piece(part.marker + " "));
      for (auto const &content : part.cells) runs.insert(runs.end(), content.begin(), content.end());
      anchors_.insert(anchors_.end(), part.anchors.begin(), part.anchors.end());
    }
    return runs;
  }

  // The parser passes on what it takes for the name of a broken tag as it stands.
  HelpRun piece(std::string_view text) const {
    HelpRun run = style_;
    run.text = valid_utf8(text);
    return run;
  }

  HelpBlock &start(HelpBlock::Kind kind) {
    HelpBlock made;
    made.kind = kind;
    made.level = depth_;
    made.cells.emplace_back();
    made.anchors.swap(anchors_);
    page_.blocks.push_back(std::move(made));
    open_ = true;
    return page_.blocks.back();
  }

  // The block that text goes into; a paragraph or list item is opened when none is open.
  HelpBlock &block() {
    if (open_) return page_.blocks.back();
    HelpBlock &made = start(marker_.empty() ? HelpBlock::Kind::paragraph : HelpBlock::Kind::item);
    if (!marker_.empty()) {
      made.marker.swap(marker_);
      marker_.clear();
    }
    return made;
  }

  // A space at the end of a block is not seen.
  static void trim(std::vector<HelpRun> &runs) {
    if (runs.empty() || !runs.back().image.empty() || !runs.back().text.ends_with(' ')) return;
    runs.back().text.pop_back();
    if (runs.back().text.empty()) runs.pop_back();
  }

  void close() {
    if (!open_) return;
    open_ = false;
    HelpBlock &last = page_.blocks.back();
    if (last.kind == HelpBlock::Kind::rule) return;
    if (last.kind != HelpBlock::Kind::preformatted) trim(last.cells.back());
    bool const said = std::any_of(last.cells.begin(), last.cells.end(), [](auto const &runs) {
      return std::any_of(runs.begin(), runs.end(), [](HelpRun const &run) {
        return !run.image.empty() || !std::all_of(run.text.begin(), run.text.end(), is_space);
      });
    });
    if (said) return;
    // An empty block is not shown; what leads to it leads to the next one.
    anchors_.insert(anchors_.begin(), last.anchors.begin(), last.anchors.end());
    page_.blocks.pop_back();
  }

  void add_text(std::string_view text) {
    if (open_ && page_.blocks.back().kind == HelpBlock::Kind::preformatted) {
      page_.blocks.back().cells.back().push_back(piece(text));
      return;
    }
    std::string folded;
    bool space = false;
    for (char c : text) {
      if (is_space(c)) {
        space = true;
        continue;
      }
      if (space && (!folded.empty() || takes_space())) folded += ' ';
      space = false;
      folded += c;
    }
    if (space && (!folded.empty() || takes_space())) folded += ' ';
    if (!folded.empty()) block().cells.back().push_back(piece(folded));
  }

  // Is there something on the line that a space could follow?
  bool takes_space() const {
    if (!open_) return false;
    auto const &runs = page_.blocks.back().cells.back();
    if (runs.empty()) return false;
    return !runs.back().image.empty() || !(runs.back().text.ends_with(' ') || runs.back().text.ends_with('\n'));
  }

  HelpPage &page_;
  HelpRun style_;
  std::vector<std::string> anchors_;
  std::string marker_;
  int depth_ = 0;
  bool open_ = false;
};

xmlNode *find(xmlNode *node, std::string_view name) {
  for (; node; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    if (lower(reinterpret_cast<char const *>(node->name)) == name) return node;
    if (xmlNode *inner = find(node->children, name)) return inner;
  }
  return nullptr;
}

std::string folded_content(xmlNode *node) {
  xmlChar *content = xmlNodeGetContent(node);
  if (!content) return {};
  std::string result;
  for (char const *c = reinterpret_cast<char const *>(content); *c; ++c) {
    if (!is_space(*c)) {
      result += *c;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  xmlFree(content);
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

bool declares_encoding(std::string_view html) {
  std::string_view const head = html.substr(0, std::min<std::size_t>(html.size(), 1024));
  if (head.size() >= 2 && ((head[0] == '\xFE' && head[1] == '\xFF') || (head[0] == '\xFF' && head[1] == '\xFE'))) {
    return true;
  }
  std::string const text = lower(head);
  return text.find("charset") != std::string::npos || text.find("encoding=") != std::string::npos;
}

// "%41" -> "A". "%00" stays as it is: it would end the path for whoever opens it.
std::string decoded(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%' && at + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[at + 1])) &&
        std::isxdigit(static_cast<unsigned char>(text[at + 2])) && text.substr(at + 1, 2) != "00") {
      result += static_cast<char>(std::stoi(std::string{text.substr(at + 1, 2)}, nullptr, 16));
      at += 2;
    } else {
      result += text[at];
    }
  }
  return result;
}

}  // namespace

std::optional<HelpPage> read_help_page(std::string_view html) {
  if (html.empty()) return std::nullopt;
  std::unique_ptr<xmlDoc, FreeDocument> document{
      htmlReadMemory(html.data(), static_cast<int>(html.size()), nullptr, declares_encoding(html) ? nullptr : "UTF-8",
                     HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET)};
  xmlNode *root = document ? xmlDocGetRootElement(document.get()) : nullptr;
  if (!root) return std::nullopt;
  HelpPage page;
  Reader reader{page};
  xmlNode *body = find(root, "body");
  reader.read(body ? body->children : root);
  reader.finish();
  if (xmlNode *title = find(root, "title")) page.title = valid_utf8(folded_content(title));
  for (HelpBlock const &block : page.blocks) {
    if (!page.title.empty()) break;
    if (block.kind != HelpBlock::Kind::heading) continue;
    for (HelpRun const &run : block.cells.front()) page.title += run.text;
  }
  return page;
}

HelpTarget resolve_help_link(std::string_view page, std::string_view link) {
  std::size_t const hash = link.find('#');
  std::string const anchor = hash == std::string_view::npos ? "" : decoded(link.substr(hash + 1));
  std::string_view name = link.substr(0, hash);
  if (name.starts_with("file://")) {
    name.remove_prefix(7);
  } else if (std::size_t const colon = name.find(':');
             colon != std::string_view::npos && name.find('/') >= colon) {
    return {};
  }
  name = name.substr(0, name.find('?'));
  if (name.empty()) return {std::string{page}, anchor};
  std::filesystem::path const folder = std::filesystem::path{page}.parent_path();
  return {(folder / decoded(name)).lexically_normal().string(), anchor};
}

std::optional<std::string> find_help_image(std::string const &page, std::string_view source) {
  namespace fs = std::filesystem;
  HelpTarget const target = resolve_help_link(page, source);
  std::error_code error;
  fs::path const image = fs::canonical(target.path, error);
  if (target.path.empty() || error || !fs::is_regular_file(image, error)) return std::nullopt;
  fs::path const folder = fs::canonical(page, error).parent_path();
  fs::path book = folder;
  for (fs::path part = folder; part != part.root_path(); part = part.parent_path()) {
    if (part.extension() == ".lproj") book = part.parent_path();
  }
  bool const inside = std::mismatch(book.begin(), book.end(), image.begin(), image.end()).first == book.end();
  return inside ? std::optional{image.string()} : std::nullopt;
}

void HelpHistory::visit(HelpTarget const &place) {
  if (!places_.empty() && current() == place) return;
  places_.resize(at_);
  places_.push_back(place);
  ++at_;
}

void HelpHistory::replace(HelpTarget const &place) {
  places_.resize(at_);
  places_.back() = place;
}

void HelpHistory::leave() {
  places_.resize(--at_);
}

}  // namespace fax::host
