#include "host/core/address_status.h"

#include <array>
#include <string_view>
#include <utility>

namespace fax::host {

namespace {

using Outcome = LookupAnswer::Outcome;

constexpr char kLooking[] = "Looking for the printer…";
constexpr char kSettings[] = "the system's printer settings, or with lpadmin -v";
constexpr char kStill[] = " Documents go to the queue all the same.";

std::string limit() { return std::to_string(kAddressLimit.count()) + " seconds"; }

std::string quoted(std::string const &text) { return "\"" + text + "\""; }

AddressStatus found_at(std::string const &address, std::string const &advice) {
  return {"Found at " + address + ".", advice};
}

AddressStatus unknown(std::string const &why, std::string const &advice) {
  return {"Address unknown: " + why + ".", advice + kStill};
}

AddressStatus name_status(std::string const &name, std::optional<LookupAnswer> const &answer) {
  if (!answer) return {kLooking, "The name service is asked for the address of " + quoted(name) + "."};
  switch (answer->outcome) {
    case Outcome::found:
      return found_at(answer->address->text, "This is the address of " + quoted(name) + ".");
    case Outcome::silent:
      return unknown("the name service does not answer",
                     "It gave no address for " + quoted(name) + ": " + answer->reason +
                         ". Check the network connection, or put a numeric address into the queue's device URI with " +
                         kSettings + "; then open the dialog again.");
    case Outcome::no_discovery:
    case Outcome::reached:
    case Outcome::failed: break;
  }
  return unknown(quoted(name) + " could not be looked up",
                 "The name service says: " + answer->reason +
                     ". Is the name right, and known in this network? The queue's device URI is changed with " +
                     kSettings + ".");
}

// "Office MFP._ipp._tcp.local" -> "Office MFP"
std::string printer_of(std::string const &service) {
  std::string const front = service.substr(0, service.find("._tcp"));
  return front.substr(0, front.rfind('.'));
}

AddressStatus service_status(std::string const &service, std::optional<LookupAnswer> const &answer) {
  std::string const printer = quoted(printer_of(service));
  if (!answer) return {kLooking, "The local network is asked for " + printer + "."};
  switch (answer->outcome) {
    case Outcome::found: return found_at(answer->address->text, "The local network knows " + printer + " there.");
    case Outcome::silent:
      return unknown("not found on the local network",
                     printer + " did not answer within " + limit() +
                         ". Is it switched on and in this network? Then open the dialog again.");
    case Outcome::no_discovery:
      return unknown("network discovery is not available",
                     "Avahi, which finds printers on the local network, cannot be reached: " + answer->reason +
                         ". Start it (systemctl restart avahi-daemon), then open the dialog again.");
    case Outcome::reached:
    case Outcome::failed: break;
  }
  return unknown("not found on the local network",
                 "Avahi says about " + printer + ": " + answer->reason + ". Is the printer switched on?");
}

AddressStatus other_status(std::string const &scheme) {
  static constexpr std::array<std::pair<std::string_view, char const *>, 4> kReasons{{
      {"ippusb", "The printer is connected by USB and speaks IPP over it, which has no address."},
      {"beh", "The backend error handler stands before the printer and hides its address."},
      {"implicitclass", "cups-browsed made this queue and chooses the printer anew for each job."},
      {"file", "This queue writes into a file."},
  }};
  std::string advice = "This way of reaching a printer tells no address.";
  for (auto const &[name, reason] : kReasons)
    if (scheme == name) advice = reason;
  return unknown("the queue's device is of the kind " + quoted(scheme),
                 advice + " For an address, add a queue with a device URI that begins with ipp, ipps, socket, lpd, "
                          "dnssd or usb.");
}

}  // namespace

AddressStatus address_status(DevicePlace const &place, std::optional<LookupAnswer> const &answer) {
  switch (place.route) {
    case Route::usb: return {"Connected by USB.", ""};
    case Route::address: return found_at(place.host, "The queue's device URI says so.");
    case Route::name: return name_status(place.host, answer);
    case Route::service: return service_status(place.host, answer);
    case Route::other: return other_status(place.scheme);
    case Route::unreadable:
      return unknown("the queue's device URI cannot be read", std::string("Set it again with ") + kSettings + ".");
    case Route::none: break;
  }
  return unknown("the queue has no device URI", std::string("Give it one with ") + kSettings + ".");
}

}  // namespace fax::host
