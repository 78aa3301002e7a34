// How the dialog speaks to the user in the middle of something.
#pragma once
#import <AppKit/AppKit.h>

@protocol HostAlerting
// Returns when the user has read it. advice may be "" or nil.
- (void)tell:(NSString *)what advice:(NSString *)advice;
// The path that the user gave for a file, or nil.
- (NSString *)askPathFor:(NSString *)proposedName;
@end

// With the toolkit's alert and save panels.
@interface HostAlerts : NSObject <HostAlerting>
@end
