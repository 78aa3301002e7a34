#include "quoltanis/printer_book.h"

#include "quoltanis/directory.h"
#include "quoltanis/printer_entries.h"

#include <algorithm>

namespace fax {
namespace {

Status find_base(Directory &directory, std::string &base) {
  constexpr auto usual = "defaultNamingContext", all = "namingContexts";
  Directory::Query const query{
      .base = "", .whole_tree = false, .filter = "(objectClass=*)", .attributes = {usual, all}};
  Status const status = directory.search(query, [&](DirectoryEntry const &root) {
    for (auto const *name : {usual, all}) {
      auto const found = root.attributes.find(name);
      if (base.empty() && found != root.attributes.end() && !found->second.empty()) base = found->second.front();
    }
    return Status::success;
  });
  if (status != Status::success) return status;
  return base.empty() ? Status::refused : Status::success;
}

// A bind DN of its own comes first, as a server may tell its bases only to those it knows.
Status enter(Directory &directory, PrinterSettings const &settings, std::string const &password, std::string &base) {
  base = settings.base_dn;
  if (!settings.bind_dn.empty())
    if (Status const status = directory.bind(settings.bind_dn, password); status != Status::success) return status;
  if (base.empty())
    if (Status const status = find_base(directory, base); status != Status::success) return status;
  return settings.bind_dn.empty() ? directory.bind("cn=addressbook," + base, password) : Status::success;
}

Directory::Query book_query(PrinterSettings const &settings, std::string const &base) {
  Directory::Query query{.base = base,
                         .whole_tree = true,
                         .filter = "(|(" + settings.number_attribute + "=*)(objectClass=" + settings.group_class + "))",
                         .attributes = {"objectClass", settings.number_attribute, settings.member_attribute}};
  for (auto const *more : {&settings.name_attributes, &settings.id_attributes})
    query.attributes.insert(query.attributes.end(), more->begin(), more->end());
  return query;
}

}  // namespace

Status PrinterBook::initialize() {
  address_.clear();
  return load_settings(settings_);
}

Status PrinterBook::status() const {
  if (address_.empty()) return Status::no_address;
  Directory directory(settings_, settings_.time_out);
  if (Status const status = directory.connect(address_); status != Status::success) return status;
  Status const status = directory.knock();
  return status == Status::success ? Status::ready : status;
}

Status PrinterBook::read(std::string_view password, AddressData &data) const {
  if (address_.empty()) return Status::no_address;
  if (password.empty()) return Status::password;
  Directory directory(settings_, 6 * settings_.time_out);
  if (Status const status = directory.connect(address_); status != Status::success) return status;
  std::string base;
  if (Status const status = enter(directory, settings_, std::string(password), base); status != Status::success)
    return status;
  PrinterEntries entries(settings_);
  Status const status =
      directory.search(book_query(settings_, base), [&](DirectoryEntry const &entry) { return entries.add(entry); });
  if (status != Status::success) return status;
  AddressData read;
  Status const finished = entries.finish(read);
  if (finished == Status::success) data.replace(Source::printer, std::move(read));
  return finished;
}

}  // namespace fax
