// A help page as text with attributes.
#pragma once
#import <AppKit/AppKit.h>

#include <map>
#include <string>
#include <vector>

#include "host/help_page.h"

namespace fax::host {

struct HelpText {
  NSAttributedString *text;                   // autoreleased
  std::map<std::string, NSUInteger> anchors;  // where they are in it
  std::vector<NSUInteger> blocks;             // where each block of the page begins in it
};

// path: of the page, for its images; those that lie outside of its book are shown as their alternative text. width: of the column in points, for tables and images. Links carry their text as
// written in the page (NSLinkAttributeName).
HelpText render_help(HelpPage const &page, std::string const &path, CGFloat width);

}  // namespace fax::host
