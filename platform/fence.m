#include "platform/fence.h"

#import <Foundation/Foundation.h>

int fax_platform_fence(const char *function, void (*work)(void *), void *context) {
  @try {
    work(context);
    return 1;
  } @catch (NSException *exception) {
    NSLog(@"%s - %@: %@", function, [exception name], [exception reason]);
    return 0;
  }
}
