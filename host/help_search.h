// Searching the pages of help books. No toolkit in here.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/help_page.h"

namespace fax::host {

// A part of a text, in UTF-16 code units.
struct TextRange {
  std::size_t start = 0;
  std::size_t length = 0;
  bool operator==(TextRange const &) const = default;
};

// The words of what somebody typed. Letter case, accents, width and form of letters make no difference; the marks that
// make another letter in Japanese do. A word may begin and end inside another one.
class SearchWords {
 public:
  // UTF-8. Single letters count only where there is nothing longer.
  explicit SearchWords(std::string_view typed);
  bool empty() const { return words_.empty(); }
  // Where the words are, in order; places that touch are one.
  std::vector<TextRange> places(std::u16string_view text) const;
  bool all_in(std::u16string_view text) const;

 private:
  std::vector<std::u16string> words_;  // folded
};

struct HelpBookPage {
  std::string path;  // absolute
  HelpPage page;
};

// The pages (.htm, .html) in the folder that this page lies in: index.html or index.htm first, then those that it links
// to, in its order, then the others by name. What cannot be read is left out. page: absolute path.
std::vector<HelpBookPage> read_help_book(std::string const &page);
// The same for several books, one after the other; a folder that comes again adds nothing.
std::vector<HelpBookPage> read_help_books(std::vector<std::string> const &pages);

// A section that holds every word: a heading with what follows it, up to the next one. Paragraphs that are nothing but
// links lead to other sections and do not count.
struct HelpHit {
  std::string path;
  std::string page;                // its title
  std::string section;             // the heading; the page's title where it has none
  bool in_heading = false;         // every word is
  std::size_t block = 0;           // of the page, the first with one of the words
  std::vector<HelpRun> excerpt;    // of its text, the words bold; of a heading, the start of what follows it
};

// First those with every word in the heading, then the others; each in the order of the pages.
std::vector<HelpHit> search_help(std::vector<HelpBookPage> const &pages, SearchWords const &words);

inline constexpr std::string_view kHitLink = "hit:";

// What was found as a page of its own. Links say kHitLink and the number of the hit, from 0.
HelpPage results_page(std::string const &title, std::vector<HelpHit> const &hits);

}  // namespace fax::host
