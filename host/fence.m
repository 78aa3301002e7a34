#import "host/fence.h"

NSException *HostFence(void (*work)(void *), void *context) {
  @try {
    work(context);
  } @catch (NSException *exception) {
    return [[exception retain] autorelease];
  }
  return nil;
}
