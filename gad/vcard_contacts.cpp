#include "gad/vcard_contacts.h"

#include "gad/failure.h"
#include "gad/names.h"
#include "gad/numbers.h"
#include "gad/text.h"
#include "gad/vcard_cards.h"
#include "texts/texts.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace fax::tool {
namespace {

constexpr std::size_t longest_line = 75;  // bytes, as both versions want it

// Without "urn:uuid:", which programs put before an identity or leave out as they like.
std::string identity(std::string_view uid) {
  uid = trimmed(uid);
  std::string key(uid);
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char c) { return c < 0x80 ? char(std::tolower(c)) : char(c); });
  return key.starts_with("urn:uuid:") ? key.substr(9) : key;
}

int hexadecimal(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// "tel:+1-555;ext=5" -> "+1-555"; any other spelling stays.
std::string number_in(std::string const &text) {
  if (!trimmed(text).starts_with("tel:")) return text;
  std::string_view uri = trimmed(text).substr(4);
  uri = uri.substr(0, uri.find(';'));
  std::string number;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    bool const coded =
        uri[i] == '%' && i + 2 < uri.size() && hexadecimal(uri[i + 1]) >= 0 && hexadecimal(uri[i + 2]) >= 0;
    number += coded ? char(hexadecimal(uri[i + 1]) * 16 + hexadecimal(uri[i + 2])) : uri[i];
    if (coded) i += 2;
  }
  return number;
}

Rank rank_of(Property const &number) {
  if (!number.has_type("FAX")) return number.has_type("WORK") ? Rank::voice : Rank::voice_other;
  if (number.preference != no_preference) return Rank::fax;
  return number.has_type("HOME") ? Rank::fax_other : Rank::fax_work;
}

std::string name_of(Property const &name) {
  std::vector<std::string> parts = name.values;
  parts.resize(5);  // family, given, further, before, after
  return joined_name({parts[3], parts[1], parts[2], parts[0], parts[4]});
}

// Quoted-printable texts have CR LF where others have LF.
std::string with_line_feeds(std::string text) {
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.erase(at, 1);
  return text;
}

struct Card {
  Contact contact;
  std::string uid, name_in_parts;
  Numbers numbers;
  std::vector<std::string> members;  // identities
  bool group = false;
};

void read_kind(Card &card, Property const &property) {
  std::string const kind = comparable(property.text());
  card.group = card.group || kind == "group";
}

void read_into(Card &card, Property const &property) {
  std::string const &name = property.name;
  if (property.values.empty()) return;
  if (name == "FN" && card.contact.name.empty()) card.contact.name = property.text();
  if (name == "N" && card.name_in_parts.empty()) card.name_in_parts = name_of(property);
  if (name == "ORG" && card.contact.company.empty()) card.contact.company = property.values.front();
  if (name == "NOTE" && card.contact.note.empty()) card.contact.note = with_line_feeds(property.text());
  if (name == "UID") card.uid = identity(property.text());
  if (name == "KIND" || name == "X-ADDRESSBOOKSERVER-KIND") read_kind(card, property);
  if (name == "MEMBER" || name == "X-ADDRESSBOOKSERVER-MEMBER") card.members.push_back(identity(property.text()));
  if (name == "TEL" && !property.has_type("PAGER"))
    card.numbers.add(number_in(property.text()), rank_of(property), property.preference);
  if (name == "CATEGORIES")
    for (std::string const &category : property.values)
      if (!trimmed(category).empty() && category != "myContacts" && category != "starred")
        card.contact.groups.push_back(category);
}

Card read_card(CardText const &text) {
  Card card;
  card.contact.line = text.line;
  for (Property const &property : parse_card(text)) read_into(card, property);
  Contact &contact = card.contact;
  if (trimmed(contact.name).empty()) contact.name = card.name_in_parts;
  if (trimmed(contact.name).empty()) contact.name = contact.company;
  return card;
}

class Importer {
public:
  explicit Importer(bool fax_only) : fax_only_(fax_only) {}

  void card(CardText const &text) {
    if (auto const fault = fault_of(text)) return contacts_.skip(text.line, *fault);
    Card card = read_card(text);
    if (card.group) {
      if (!card.uid.empty()) group_uids_.insert(card.uid);
      groups_.push_back(std::move(card));
      return;
    }
    std::size_t const before = contacts_.people.size();
    card.numbers.choose(card.contact, fax_only_, contacts_);
    if (!card.uid.empty() && contacts_.people.size() > before) people_.emplace(card.uid, before);
  }

  // Groups may stand before their members.
  Contacts finish() {
    for (Card const &group : groups_) join(group);
    return std::move(contacts_);
  }

private:
  void join(Card const &group) {
    std::string const &name = group.contact.name;
    if (trimmed(name).empty()) return contacts_.skip(group.contact.line, tr("A group has no name."));
    contacts_.groups.push_back(name);
    std::size_t missing = 0, nested = 0;
    for (std::string const &member : group.members) {
      auto const person = people_.find(member);
      if (person != people_.end())
        add_group(contacts_.people[person->second].groups, name);
      else
        ++(group_uids_.contains(member) ? nested : missing);
    }
    auto const say = [&](std::string const &what) {
      //: {0} is a name in quotation marks, {1} a sentence about it.
      contacts_.remark(group.contact.line, tr("Group {0}: {1}", in_quotes(name), what));
    };
    if (missing > 0)
      say(tr_n("{0} member is left out: there is no such card, or it was skipped.",
               "{0} members are left out: there are no such cards, or they were skipped.", missing, missing));
    if (nested > 0)
      say(tr_n("{0} member is left out: it is a group, which cannot be in a group.",
               "{0} members are left out: they are groups, which cannot be in a group.", nested, nested));
  }

  static void add_group(std::vector<std::string> &groups, std::string const &name) {
    if (std::find(groups.begin(), groups.end(), name) == groups.end()) groups.push_back(name);
  }

  bool fax_only_;
  Contacts contacts_;
  std::vector<Card> groups_;
  std::unordered_map<std::string, std::size_t> people_;  // by identity: index in contacts_.people
  std::unordered_set<std::string> group_uids_;
};

std::string escaped_value(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (c == '\n' || c == '\r') {
      result += "\\n";
    } else {
      if (c == '\\' || c == ',' || c == ';') result += '\\';
      result += c;
    }
  }
  return result;
}

// Folded between characters.
std::string line(std::string_view property, std::string_view value) {
  std::string const whole = std::string(property) + ':' + std::string(value);
  std::string result;
  std::size_t width = 0;
  for (std::size_t i = 0; i < whole.size();) {
    std::size_t end = i + 1;
    while (end < whole.size() && (whole[end] & 0xC0) == 0x80) ++end;
    if (width + (end - i) > longest_line) {
      result += "\r\n ";
      width = 1;
    }
    result.append(whole, i, end - i);
    width += end - i;
    i = end;
  }
  return result + "\r\n";
}

// A UUID of version 5 (a name's hash), without a name space.
std::string uid_of(std::string_view kind, std::string_view name, std::string_view number) {
  std::unique_ptr<GChecksum, decltype(&g_checksum_free)> const hash(g_checksum_new(G_CHECKSUM_SHA1), &g_checksum_free);
  for (std::string_view part : {kind, name, number}) {
    std::string const ended = std::string(part) + '\0';
    g_checksum_update(hash.get(), reinterpret_cast<guchar const *>(ended.data()), gssize(ended.size()));
  }
  std::string hex = std::string(g_checksum_get_string(hash.get())).substr(0, 32);
  hex[12] = '5';
  hex[16] = "89ab"[hexadecimal(hex[16]) & 3];
  for (std::size_t at : {20, 16, 12, 8}) hex.insert(at, 1, '-');
  return "urn:uuid:" + hex;
}

std::string card(VcardVersion version, std::string const &lines) {
  return std::string("BEGIN:VCARD\r\nVERSION:") + (version == VcardVersion::v4 ? "4.0" : "3.0") + "\r\n" + lines +
         "END:VCARD\r\n";
}

// Both versions want N beside FN; the book does not know its parts.
std::string name_lines(std::string_view name) {
  return line("FN", escaped_value(name)) + line("N", escaped_value(name) + ";;;;");
}

}  // namespace

bool is_vcard(std::string_view text) {
  constexpr std::string_view begin = "BEGIN:VCARD";
  std::string_view const start = trimmed(text.substr(0, 4096));
  return start.size() >= begin.size() && comparable(start.substr(0, begin.size())) == comparable(begin);
}

Contacts read_vcard_contacts(std::string_view text, bool fax_only, std::function<void(double)> const &progress) {
  Importer importer(fax_only);
  bool any = false;
  split_cards(text, [&](CardText const &card, std::size_t position) {
    importer.card(card);
    progress(double(position) / double(text.size()));
    any = true;
  });
  if (!any) throw Failure(tr("There is no vCard in it: no line BEGIN:VCARD."));
  return importer.finish();
}

std::string vcard_uid(Contact const &contact) { return uid_of("person", contact.name, contact.number); }

std::string vcard_contact(Contact const &contact, VcardVersion version) {
  std::string lines = line("UID", vcard_uid(contact)) + name_lines(contact.name);
  lines += line("TEL;TYPE=fax", escaped_value(contact.number));
  if (!contact.company.empty()) lines += line("ORG", escaped_value(contact.company));
  if (!contact.note.empty()) lines += line("NOTE", escaped_value(contact.note));
  return card(version, lines);
}

std::string vcard_group(std::string_view name, std::vector<std::string> const &members, VcardVersion version) {
  bool const v4 = version == VcardVersion::v4;
  std::string lines = line("UID", uid_of("group", name, "")) + line(v4 ? "KIND" : "X-ADDRESSBOOKSERVER-KIND", "group");
  lines += name_lines(name);
  for (std::string const &member : members) lines += line(v4 ? "MEMBER" : "X-ADDRESSBOOKSERVER-MEMBER", member);
  return card(version, lines);
}

}  // namespace fax::tool
