// The dialog over a print service and extensions of the tests' own; alerts are kept instead of shown.
#pragma once
#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../core/private_cups.h"
#include "host/ui_map.h"

#import "host/HostDialog.h"

@interface SilentAlerts : NSObject <HostAlerting> {
 @public
  NSMutableArray *told;
}
@end

@interface EndCounter : NSObject <HostDialogOwner> {
 @public
  int ends;
}
@end

namespace fax::host {

class Dialog : public testing::Test {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void SetUp() override;
  void TearDown() override;

  // Opens the dialog for a queue ("fax" or "plain") with one of the test extensions. change may alter what it starts
  // from.
  void open(std::string const &extension = "Recording", char const *queue = "fax", CommandLine line = {},
            void (*change)(DialogRequest &) = nullptr);

  // Lets what was put off to the next turn of the run loop happen.
  static void come_round();

  std::vector<std::string> calls() const;
  std::vector<std::string> told() const;
  std::vector<std::string> calls_of(auto const &work) {
    [calls_ removeAllObjects];
    work();
    return calls();
  }

  // A pop-up of the dialog or of a panel by its label.
  static id control(NSString *name);
  void choose(NSString *popUpName, NSString *title);
  std::string value(NSString *popUpName) const;

  // What the screen map says of the dialog, and of a control in it by its title or its identifier.
  MapWindow map() const;
  MapControl mapped(std::string const &title) const;

  static PrivateCups *service_;
  NSAutoreleasePool *pool_ = nil;
  NSMutableArray *calls_ = nil;
  NSMutableDictionary *answers_ = nil;
  SilentAlerts *alerts_ = nil;
  EndCounter *owner_ = nil;
  HostDialog *dialog_ = nil;
};

}  // namespace fax::host
