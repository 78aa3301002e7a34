/* In every program, library and bundle: each has counts of its own. */
#include "dumps.h"

void __gcov_dump(void);
void __gcov_reset(void);

static struct counts const own = {__gcov_dump, __gcov_reset};

__attribute__((constructor)) static void begin(void) { directfax_add_counts(own); }
__attribute__((destructor)) static void end(void) { directfax_drop_counts(own); }
