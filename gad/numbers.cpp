#include "gad/numbers.h"

#include "gad/contact_rules.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <algorithm>
#include <tuple>

namespace fax::tool {
namespace {

constexpr std::size_t others_shown = 5;

bool is_fax(Rank rank) { return rank <= Rank::fax_other; }

}  // namespace

void Numbers::add(std::string const &number, Rank rank, int preference) {
  if (trimmed(number).empty()) return;
  auto const same =
      std::find_if(numbers_.begin(), numbers_.end(), [&](Number const &one) { return one.text == number; });
  if (same == numbers_.end())
    numbers_.push_back({number, rank, preference});
  else if (std::tie(rank, preference) < std::tie(same->rank, same->preference))
    *same = {number, rank, preference};
}

void Numbers::choose(Contact &contact, bool fax_only, Contacts &contacts) {
  std::stable_sort(numbers_.begin(), numbers_.end(), [](Number const &a, Number const &b) {
    return std::tie(a.rank, a.preference) < std::tie(b.rank, b.preference);
  });
  std::string const who = called(contact);
  if (numbers_.empty()) return contacts.skip(contact.line, who + ": " + tr("No number."));
  Number const &taken = numbers_.front();
  if (!is_fax(taken.rank)) {
    if (fax_only) return contacts.skip(contact.line, who + ": " + tr("No fax number."));
    contacts.remark(contact.line, who + ": " + tr("No fax number. The telephone number {0} is taken.", in_quotes(taken.text)));
  }
  std::string others;
  for (std::size_t i = 1; i < numbers_.size() && is_fax(numbers_[i].rank); ++i) {
    if (i > others_shown) {
      others = tr("{0} and others", others);
      break;
    }
    others += (others.empty() ? "" : ", ") + in_quotes(numbers_[i].text);
  }
  if (!others.empty())
    contacts.remark(contact.line,
                    who + ": " + tr("The fax number {0} is taken, not {1}.", in_quotes(taken.text), others));
  contact.number = taken.text;
  contacts.people.push_back(std::move(contact));
}

}  // namespace fax::tool
