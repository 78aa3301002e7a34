#import "addressbook/AddressListController.h"
