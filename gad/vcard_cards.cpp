#include "gad/vcard_cards.h"

#include "gad/failure.h"
#include "gad/numbers.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <libebook-contacts/libebook-contacts.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <strings.h>

namespace fax::tool {
namespace {

constexpr std::size_t largest_card = 16 << 20;
constexpr std::ptrdiff_t most_separators = 20000;

std::string upper(char const *text) {
  std::string result = text != nullptr ? text : "";
  std::transform(result.begin(), result.end(), result.begin(), [](char c) { return g_ascii_toupper(c); });
  return result;
}

bool is_line(std::string_view line, std::string_view word) {
  std::string_view const text = trimmed(line);
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0 && line.front() != ' ' &&
         line.front() != '\t';
}

// Lists are short: their data pointers, in order.
template <typename Data, typename Visit>
void for_each(GList *list, Visit visit) {
  for (; list != nullptr; list = list->next) visit(static_cast<Data *>(list->data));
}

void read_parameter(EVCardAttributeParam *parameter, Property &property) {
  std::string const name = upper(e_vcard_attribute_param_get_name(parameter));
  for_each<char const>(e_vcard_attribute_param_get_values(parameter), [&](char const *value) {
    std::string_view const text = value;
    if (name == "PREF") {
      int preference = 0;
      std::from_chars(text.data(), text.data() + text.size(), preference);
      if (preference >= 1 && preference <= 100) property.preference = std::min(property.preference, preference);
    }
    if (name != "TYPE") return;
    // TYPE="work,fax" is one value to the parser.
    std::string types = upper(value);
    for (std::size_t start = 0; start <= types.size();) {
      std::size_t const end = std::min(types.find(',', start), types.size());
      property.types.push_back(types.substr(start, end - start));
      start = end + 1;
    }
  });
}

Property read_property(EVCardAttribute *attribute) {
  Property property{upper(e_vcard_attribute_get_name(attribute)), {}, no_preference, {}};
  for_each<EVCardAttributeParam>(e_vcard_attribute_get_params(attribute),
                                 [&](EVCardAttributeParam *parameter) { read_parameter(parameter, property); });
  if (property.has_type("PREF")) property.preference = std::min(property.preference, 1);
  for_each<GString>(e_vcard_attribute_get_values_decoded(attribute),
                    [&](GString *value) { property.values.emplace_back(value->str, value->len); });
  return property;
}

}  // namespace

std::string Property::text() const {
  std::string result;
  for (std::size_t i = 0; i < values.size(); ++i) result += (i == 0 ? "" : ";") + values[i];
  return result;
}

bool Property::has_type(std::string_view type) const {
  return std::find(types.begin(), types.end(), type) != types.end();
}

void split_cards(std::string_view text, std::function<void(CardText const &, std::size_t)> const &visit) {
  CardText card;
  std::size_t depth = 0, line = 0;
  for (std::size_t start = 0; start < text.size();) {
    ++line;
    std::size_t const end = std::min(text.find('\n', start), text.size() - 1) + 1;
    std::string_view const one = text.substr(start, end - start);
    start = end;
    bool const begins = is_line(one, "BEGIN:VCARD"), ends = is_line(one, "END:VCARD");
    if (begins && ++depth == 1) card = {"", line};
    if (depth == 1) card.text += one;
    if (card.text.size() > largest_card)
      throw Failure(tr("Line {0}: This card is larger than {1} MiB.", card.line, largest_card >> 20));
    if (ends && depth > 0 && --depth == 0) visit(card, end);
  }
  if (depth > 0)
    throw Failure(tr("Line {0}: This card has no END:VCARD. Is the file cut off?", card.line));
}

std::optional<std::string> fault_of(CardText const &card) {
  // The parser works on C strings, and its time grows with the square of the parts that separators make.
  if (card.text.find('\0') != std::string::npos) return tr("A card holds null characters.");
  auto const separators =
      std::count_if(card.text.begin(), card.text.end(), [](char c) { return c == ';' || c == ','; });
  if (separators > most_separators) return tr("A card has more parts than any card.");
  return std::nullopt;
}

std::vector<Property> parse_card(CardText const &card) {
  std::vector<Property> properties;
  std::unique_ptr<EVCard, decltype(&g_object_unref)> const parsed(e_vcard_new_from_string(card.text.c_str()),
                                                                  &g_object_unref);
  for_each<EVCardAttribute>(e_vcard_get_attributes(parsed.get()),
                            [&](EVCardAttribute *attribute) { properties.push_back(read_property(attribute)); });
  return properties;
}

}  // namespace fax::tool
