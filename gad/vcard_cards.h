// The cards of a text, one by one, and what stands in each.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::tool {

// One card's text, from BEGIN to END, without cards within it (AGENT).
struct CardText {
  std::string text;
  std::size_t line = 0;  // of BEGIN, from 1
};

// Calls visit with each card in turn. The position in text behind the card goes with it. Failure: the text ends within
// a card; a card is larger than 16 MiB.
void split_cards(std::string_view text, std::function<void(CardText const &, std::size_t position)> const &visit);

// One line of a card, decoded: "item1.TEL;TYPE=fax:030".
struct Property {
  std::string name;                 // upper case, without a group
  std::vector<std::string> types;   // upper case: the values of TYPE
  int preference;                   // PREF, 1 to 100; 1 for the type PREF; no_preference
  std::vector<std::string> values;  // UTF-8; the parts between unescaped semicolons, of CATEGORIES between commas

  // The parts as one text: what was no list was not meant to be parted.
  std::string text() const;
  bool has_type(std::string_view type) const;
};

// Why a card cannot be read, a sentence: null characters, more parts than any card has; none when it can.
std::optional<std::string> fault_of(CardText const &card);

// Of a card without fault; empty for a text that is none.
std::vector<Property> parse_card(CardText const &card);

}  // namespace fax::tool
