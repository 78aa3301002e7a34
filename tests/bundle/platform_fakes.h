// Platform functions that this program puts in front of the platform's own, as any program that hosts the bundle can.
#pragma once

#include <Carbon/Carbon.h>
#include <PrintCore/PrintCore.h>

#include <string>
#include <vector>

struct PlatformFakes {
  // PMPrintSettingsSetValue: keys in the order of the calls; the call of this number (from 0) and the ones after it fail.
  std::vector<std::string> stored_keys;
  int first_failing_store = -1;
  int last_failing_store = -1;

  // PMSessionGetDestinationType answers this instead of the session's own, when not noErr.
  OSStatus destination_status = noErr;

  // AHGotoPage: "book|page|anchor".
  std::vector<std::string> help_pages;
  int registered_books = 0;

  // PMPrinterCopyDeviceURI: the printer's URI; empty for none.
  std::string device_uri;
};

PlatformFakes &fakes();
