/* In every program, library and bundle: each has counts of its own. */
#include "dumps.h"

void __gcov_dump(void);

__attribute__((constructor)) static void add_dump(void) { directfax_add_dump(__gcov_dump); }
