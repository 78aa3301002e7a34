// One destination. The dialogs fill name and phoneNumber alone, by key-value coding.
#pragma once
#import <Foundation/Foundation.h>

#import "support/ClassNames.h"

@interface AddressInformation : NSObject {
  NSString *name;
  NSString *phoneNumber;
  NSString *company;
  NSString *note;
}

- (NSString *)name;
- (void)setName:(NSString *)text;
- (NSString *)phoneNumber;
- (void)setPhoneNumber:(NSString *)text;
- (NSString *)company;
- (void)setCompany:(NSString *)text;
- (NSString *)note;
- (void)setNote:(NSString *)text;
@end
