#import "addressbook/AddressInformation.h"

namespace {

void keep(NSString **slot, NSString *text) {
  [text retain];
  [*slot release];
  *slot = text;
}

}  // namespace

@implementation AddressInformation

- (void)dealloc {
  [name release];
  [phoneNumber release];
  [company release];
  [note release];
  [super dealloc];
}

- (NSString *)name {
  return name;
}

- (void)setName:(NSString *)text {
  keep(&name, text);
}

- (NSString *)phoneNumber {
  return phoneNumber;
}

- (void)setPhoneNumber:(NSString *)text {
  keep(&phoneNumber, text);
}

- (NSString *)company {
  return company;
}

- (void)setCompany:(NSString *)text {
  keep(&company, text);
}

- (NSString *)note {
  return note;
}

- (void)setNote:(NSString *)text {
  keep(&note, text);
}

@end
