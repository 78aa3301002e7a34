#include "host/core/address_status.h"

#include <array>
#include <string_view>
#include <utility>

#include "texts/texts.h"

namespace fax::host {

namespace {

using Outcome = LookupAnswer::Outcome;

AddressStatus looking(std::string const &advice) { return {tr("Looking for the printer…"), advice}; }

AddressStatus found_at(std::string const &address, std::string const &advice) {
  return {tr("Found at {0}.", address), advice};
}

AddressStatus unknown(std::string const &line, std::string const &advice) {
  return {line, advice + " " + tr("Documents go to the queue all the same.")};
}

AddressStatus name_status(std::string const &name, std::optional<LookupAnswer> const &answer) {
  if (!answer) return looking(tr("The name service is asked for the address of \"{0}\".", name));
  switch (answer->outcome) {
    case Outcome::found:
      return found_at(answer->address->text, tr("This is the address of \"{0}\".", name));
    case Outcome::silent:
      return unknown(tr("Address unknown: the name service does not answer."),
                     tr("It gave no address for \"{0}\": {1}. Check the network connection, or put a numeric address "
                        "into the queue's device URI with the system's printer settings, or with lpadmin -v; then open "
                        "the dialog again.",
                        name, answer->reason));
    case Outcome::no_discovery:
    case Outcome::reached:
    case Outcome::failed: break;
  }
  return unknown(tr("Address unknown: \"{0}\" could not be looked up.", name),
                 tr("The name service says: {0}. Is the name right, and known in this network? The queue's device URI "
                    "is changed with the system's printer settings, or with lpadmin -v.",
                    answer->reason));
}

// "Office MFP._ipp._tcp.local" -> "Office MFP"
std::string printer_of(std::string const &service) {
  std::string const front = service.substr(0, service.find("._tcp"));
  return front.substr(0, front.rfind('.'));
}

AddressStatus service_status(std::string const &service, std::optional<LookupAnswer> const &answer) {
  std::string const printer = printer_of(service);
  char const *const not_found = mark("Address unknown: not found on the local network.");
  if (!answer) return looking(tr("The local network is asked for \"{0}\".", printer));
  switch (answer->outcome) {
    case Outcome::found: 
      return found_at(answer->address->text, tr("The local network knows \"{0}\" there.", printer));
    case Outcome::silent:
      return unknown(tr(not_found), tr("\"{0}\" did not answer within {1} seconds. Is it switched on and in this "
                                       "network? Then open the dialog again.",
                                       printer, kAddressLimit.count()));
    case Outcome::no_discovery:
      return unknown(tr("Address unknown: network discovery is not available."),
                     tr("Avahi, which finds printers on the local network, cannot be reached: {0}. Start it ({1}), then "
                        "open the dialog again.",
                        answer->reason, "systemctl restart avahi-daemon"));
    case Outcome::reached:
    case Outcome::failed: break;
  }
  return unknown(tr(not_found), tr("Avahi says about \"{0}\": {1}. Is the printer switched on?", printer,
                                   answer->reason));
}

AddressStatus other_status(std::string const &scheme) {
  static constexpr std::array<std::pair<std::string_view, char const *>, 4> kReasons{{
      {"ippusb", mark("The printer is connected by USB and speaks IPP over it, which has no address.")},
      {"beh", mark("The backend error handler stands before the printer and hides its address.")},
      {"implicitclass", mark("cups-browsed made this queue and chooses the printer anew for each job.")},
      {"file", mark("This queue writes into a file.")},
  }};
  char const *why = mark("This way of reaching a printer tells no address.");
  for (auto const &[name, reason] : kReasons)
    if (scheme == name) why = reason;
  return unknown(tr("Address unknown: the queue's device is of the kind \"{0}\".", scheme),
                 tr(why) + " " + tr("For an address, add a queue with a device URI that begins with {0}, {1}, {2}, {3}, "
                                    "{4} or {5}.",
                                    "ipp", "ipps", "socket", "lpd", "dnssd", "usb"));
}

}  // namespace

AddressStatus address_status(DevicePlace const &place, std::optional<LookupAnswer> const &answer) {
  switch (place.route) {
    case Route::usb: return {tr("Connected by USB."), ""};
    case Route::address: return found_at(place.host, tr("The queue's device URI says so."));
    case Route::name: return name_status(place.host, answer);
    case Route::service: return service_status(place.host, answer);
    case Route::other: return other_status(place.scheme);
    case Route::unreadable:
      return unknown(tr("Address unknown: the queue's device URI cannot be read."),
                     tr("Set it again with the system's printer settings, or with lpadmin -v."));
    case Route::none: break;
  }
  return unknown(tr("Address unknown: the queue has no device URI."),
                 tr("Give it one with the system's printer settings, or with lpadmin -v."));
}

}  // namespace fax::host
