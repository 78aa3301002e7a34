#include "faxsetting/job_settings.h"

#include "support/cf_owned.h"
#include "support/password_cipher.h"

namespace fax {

namespace {

OSStatus store(PMPrintSettings settings, std::string const &key, CFStringRef value) {
  CFOwned<CFStringRef> const name{CFStringCreateWithCString(kCFAllocatorDefault, key.c_str(), kCFStringEncodingUTF8)};
  return PMPrintSettingsSetValue(settings, name.get(), value != nullptr ? value : CFSTR(""), false);
}

OSStatus store_password(PMPrintSettings settings, FaxJob const &job) {
  CFOwned<CFStringRef> const scrambled{
      job.password != nullptr ? CreateEncryptedString(job.password, job.encoding) : nullptr};
  return store(settings, settings_key("DFaxPassword"), scrambled.get());
}

}  // namespace

std::string settings_key(char const *base, std::size_t number) {
  std::string key = kSettingsPrefix;
  key += base;
  if (number > 0) key += std::to_string(number);
  return key;
}

void write_job_settings(PMPrintSettings settings, FaxJob const &job) {
  if (store_password(settings, job) != noErr) return;
  if (store(settings, settings_key("DFaxDelayedPrint"), job.delayed_print) != noErr) return;
  if (store(settings, settings_key("DFaxDelayedTime"), job.delayed_time) != noErr) return;
  if (job.destinations.empty()) return;

  CFOwned<CFStringRef> const count{CFStringCreateWithCString(
      kCFAllocatorDefault, std::to_string(job.destinations.size()).c_str(), kCFStringEncodingUTF8)};
  store(settings, settings_key("DFaxDestinationNumber"), count.get());
  for (std::size_t i = 0; i < job.destinations.size(); i++) {
    store(settings, settings_key("DFaxDestinationName", i + 1), job.destinations[i].name);
    store(settings, settings_key("DFaxDestinationPhoneNumber", i + 1), job.destinations[i].phone_number);
  }
}

}  // namespace fax
