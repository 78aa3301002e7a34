#include "host/help_search.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

namespace fax::host {
namespace {

namespace fs = std::filesystem;

// How much of a text stands before and after the first word in an excerpt, in UTF-16 code units.
constexpr std::size_t kBefore = 50;
constexpr std::size_t kAfter = 130;

std::u16string utf16(std::string_view text) {
  icu::UnicodeString const made =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int>(text.size())));
  return {made.getBuffer(), static_cast<std::size_t>(made.length())};
}

std::string utf8(std::u16string_view text) {
  std::string made;
  icu::UnicodeString(false, text.data(), static_cast<int>(text.size())).toUTF8String(made);
  return made;
}

// Accents, not the marks of voiced sounds in Japanese.
bool is_accent(UChar32 c) {
  auto const kind = u_charType(c);
  return (kind == U_NON_SPACING_MARK || kind == U_ENCLOSING_MARK) && c != 0x3099 && c != 0x309A;
}

// A text as it is compared, and where each of its units comes from.
struct Folded {
  std::u16string text;
  std::vector<std::size_t> origin;  // of each unit, and of the end
};

Folded fold(std::u16string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  icu::Normalizer2 const *const normalizer = icu::Normalizer2::getInstance(nullptr, "nfkc_cf", UNORM2_DECOMPOSE, error);
  Folded folded;
  int const length = static_cast<int>(text.size());
  for (int at = 0, start = 0; at < length; start = at) {
    UChar32 letter;
    U16_NEXT(text.data(), at, length, letter);
    icu::UnicodeString parts(letter == 0x2019 ? UChar32{'\''} : letter);
    if (U_SUCCESS(error)) parts = normalizer->normalize(parts, error);
    for (int part = 0; part < parts.length(); part = parts.moveIndex32(part, 1)) {
      if (is_accent(parts.char32At(part))) continue;
      for (int unit = part; unit < parts.moveIndex32(part, 1); ++unit) {
        folded.text += parts.charAt(unit);
        folded.origin.push_back(static_cast<std::size_t>(start));
      }
    }
  }
  folded.origin.push_back(text.size());
  return folded;
}

// The text of a block as it is searched; empty where it only leads elsewhere.
std::u16string text_of(HelpBlock const &block) {
  std::string text;
  bool leads_elsewhere = true;
  for (auto const &cell : block.cells) {
    if (!text.empty()) text += " \u2013 ";
    for (HelpRun const &run : cell) {
      if (!run.image.empty()) continue;
      leads_elsewhere = leads_elsewhere && !run.link.empty();
      text += run.text;
    }
  }
  return leads_elsewhere ? std::u16string{} : utf16(text);
}

// The nearest place of a space, or of the start of a letter, from at on and before the end.
std::size_t word_start(std::u16string_view text, std::size_t at, std::size_t end) {
  std::size_t const space = text.find(u' ', at);
  if (space != text.npos && space + 1 < end && space < at + 20) return space + 1;
  return at < text.size() && U16_IS_TRAIL(text[at]) ? at + 1 : at;
}

std::size_t word_end(std::u16string_view text, std::size_t at) {
  if (at >= text.size()) return text.size();
  std::size_t const space = text.rfind(u' ', at);
  if (space != text.npos && space + 20 > at) return space;
  return U16_IS_TRAIL(text[at]) ? at - 1 : at;
}

std::vector<HelpRun> excerpt_of(std::u16string_view text, SearchWords const &words) {
  auto const places = words.places(text);
  std::size_t const first = places.empty() ? 0 : places.front().start;
  std::size_t at = first <= kBefore ? 0 : word_start(text, first - kBefore, first);
  std::size_t const end = std::max(word_end(text, first + kAfter), places.empty() ? 0 : first + places.front().length);
  std::vector<HelpRun> runs;
  auto put = [&](std::string piece, bool bold) {
    HelpRun run;
    run.text = std::move(piece);
    run.bold = bold;
    if (!run.text.empty()) runs.push_back(run);
  };
  if (at > 0) put("\u2026 ", false);
  for (TextRange const &place : places) {
    std::size_t const stop = place.start + place.length;
    if (place.start < at || stop > end) continue;
    put(utf8(text.substr(at, place.start - at)), false);
    put(utf8(text.substr(place.start, place.length)), true);
    at = stop;
  }
  put(utf8(text.substr(at, end - at)), false);
  if (end < text.size()) put(" \u2026", false);
  return runs;
}

// Blocks first to last - 1 of a page, the first a heading if the page has one there.
void search_section(HelpBookPage const &book, std::size_t first, std::size_t last, SearchWords const &words,
                    std::vector<HelpHit> &hits) {
  auto const &blocks = book.page.blocks;
  std::u16string all;
  std::vector<std::u16string> texts;
  for (std::size_t at = first; at < last; ++at) {
    texts.push_back(text_of(blocks[at]));
    all += texts.back() + u'\n';
  }
  if (!words.all_in(all)) return;
  HelpHit hit;
  hit.path = book.path;
  hit.page = book.page.title;
  bool const headed = blocks[first].kind == HelpBlock::Kind::heading;
  hit.section = headed ? utf8(texts.front()) : hit.page;
  hit.in_heading = headed && words.all_in(texts.front());
  auto const holds = [&](std::u16string const &text) { return !words.places(text).empty(); };
  auto const says = [](std::u16string const &text) { return !text.empty(); };
  auto const found = std::find_if(texts.begin(), texts.end(), holds);
  hit.block = first + static_cast<std::size_t>(found - texts.begin());
  auto const text = texts.begin() + (headed ? 1 : 0);
  auto shown = std::find_if(text, texts.end(), holds);
  if (shown == texts.end()) shown = std::find_if(text, texts.end(), says);
  if (shown != texts.end()) hit.excerpt = excerpt_of(*shown, words);
  hits.push_back(std::move(hit));
}

bool is_page(fs::path const &file) {
  std::error_code error;
  return (file.extension() == ".htm" || file.extension() == ".html") && fs::is_regular_file(file, error);
}

}  // namespace

SearchWords::SearchWords(std::string_view typed) {
  std::u16string const folded = fold(utf16(typed)).text;
  std::u16string word;
  for (char16_t unit : folded + u' ') {
    if (!u_isUWhiteSpace(unit)) {
      word += unit;
    } else if (!word.empty()) {
      words_.push_back(std::move(word));
      word.clear();
    }
  }
  auto const is_long = [](std::u16string const &each) { return each.size() > 1; };
  if (std::any_of(words_.begin(), words_.end(), is_long)) std::erase_if(words_, std::not_fn(is_long));
}

std::vector<TextRange> SearchWords::places(std::u16string_view text) const {
  Folded const folded = fold(text);
  std::vector<TextRange> found;
  for (auto const &word : words_) {
    for (std::size_t at = folded.text.find(word); at != std::u16string::npos; at = folded.text.find(word, at + 1)) {
      std::size_t const start = folded.origin[at], last = folded.origin[at + word.size() - 1];
      // To the end of the last letter, and of the accents that follow it.
      auto const next = std::upper_bound(folded.origin.begin(), folded.origin.end(), last);
      found.push_back({start, *next - start});
    }
  }
  std::sort(found.begin(), found.end(), [](auto const &one, auto const &other) { return one.start < other.start; });
  std::vector<TextRange> joined;
  for (TextRange const &place : found) {
    if (joined.empty() || place.start > joined.back().start + joined.back().length) {
      joined.push_back(place);
    } else {
      joined.back().length = std::max(joined.back().length, place.start + place.length - joined.back().start);
    }
  }
  return joined;
}

bool SearchWords::all_in(std::u16string_view text) const {
  std::u16string const folded = fold(text).text;
  return !empty() && std::all_of(words_.begin(), words_.end(),
                                 [&](auto const &word) { return folded.find(word) != std::u16string::npos; });
}

std::vector<HelpBookPage> read_help_book(std::string const &page) {
  fs::path const folder = fs::path{page}.parent_path();
  std::error_code error;
  std::vector<std::string> names;
  for (fs::directory_iterator at{folder, error}, end; !error && at != end; at.increment(error)) {
    if (is_page(at->path())) names.push_back(at->path().string());
  }
  auto const is_index = [](std::string const &name) { return fs::path{name}.stem() == "index"; };
  std::sort(names.begin(), names.end(), [&](auto const &one, auto const &other) {
    return std::pair(!is_index(one), one) < std::pair(!is_index(other), other);
  });
  std::vector<HelpBookPage> pages;
  std::set<std::string> known;
  auto take = [&](std::string const &path) {
    if (!known.insert(path).second) return;
    std::ifstream file{path, std::ios::binary};
    std::string const html{std::istreambuf_iterator<char>{file}, {}};
    if (auto read = read_help_page(html)) pages.push_back({path, std::move(*read)});
  };
  if (!names.empty() && is_index(names.front())) take(names.front());
  std::vector<HelpTarget> linked;
  for (auto const &index : pages) {
    for (auto const &block : index.page.blocks) {
      for (auto const &cell : block.cells) {
        for (HelpRun const &run : cell) {
          if (!run.link.empty()) linked.push_back(resolve_help_link(index.path, run.link));
        }
      }
    }
  }
  for (auto const &target : linked) {
    if (std::find(names.begin(), names.end(), target.path) != names.end()) take(target.path);
  }
  for (auto const &name : names) take(name);
  return pages;
}

std::vector<HelpBookPage> read_help_books(std::vector<std::string> const &pages) {
  std::vector<HelpBookPage> all;
  std::set<fs::path> folders;
  for (auto const &page : pages) {
    if (!folders.insert(fs::path{page}.parent_path()).second) continue;
    auto book = read_help_book(page);
    std::move(book.begin(), book.end(), std::back_inserter(all));
  }
  return all;
}

std::vector<HelpHit> search_help(std::vector<HelpBookPage> const &pages, SearchWords const &words) {
  std::vector<HelpHit> hits;
  for (HelpBookPage const &page : pages) {
    auto const &blocks = page.page.blocks;
    for (std::size_t first = 0, last = 0; first < blocks.size(); first = last) {
      for (last = first + 1; last < blocks.size() && blocks[last].kind != HelpBlock::Kind::heading;) ++last;
      search_section(page, first, last, words, hits);
    }
  }
  std::stable_partition(hits.begin(), hits.end(), [](HelpHit const &hit) { return hit.in_heading; });
  return hits;
}

HelpPage results_page(std::string const &title, std::vector<HelpHit> const &hits) {
  HelpPage page;
  page.title = title;
  auto put = [&](HelpBlock::Kind kind, int level, std::vector<HelpRun> runs) {
    HelpBlock block;
    block.kind = kind;
    block.level = level;
    block.cells.push_back(std::move(runs));
    page.blocks.push_back(std::move(block));
  };
  auto run = [](std::string text) {
    HelpRun made;
    made.text = std::move(text);
    return made;
  };
  put(HelpBlock::Kind::heading, 1, {run(title)});
  for (std::size_t number = 0; number < hits.size(); ++number) {
    HelpHit const &hit = hits[number];
    HelpRun link = run(hit.section);
    link.link = std::string{kHitLink} + std::to_string(number);
    std::string const page_name = hit.section == hit.page ? "" : " \u2013 " + hit.page;
    std::vector<HelpRun> runs{link, run(page_name + "\n")};
    runs.insert(runs.end(), hit.excerpt.begin(), hit.excerpt.end());
    put(HelpBlock::Kind::paragraph, 0, std::move(runs));
  }
  return page;
}

}  // namespace fax::host
