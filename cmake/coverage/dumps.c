#include "dumps.h"

#include <sys/syscall.h>
#include <unistd.h>

static void (*dumps[16])(void);
static unsigned count;

void directfax_add_dump(void (*dump)(void)) {
  for (unsigned at = 0; at < count; ++at)
    if (dumps[at] == dump) return;
  if (count < sizeof dumps / sizeof *dumps) dumps[count++] = dump;
}

/* Takes the place of the C library's. */
void _exit(int code) {
  for (unsigned at = 0; at < count; ++at) dumps[at]();
  for (;;) syscall(SYS_exit_group, code);
}
