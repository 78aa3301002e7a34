/* For the coverage build: a program that ends by _exit() leaves its counts behind all the same. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Called by _exit() before the process ends. At most 16 modules of a process. */
void directfax_add_dump(void (*dump)(void));

#ifdef __cplusplus
}
#endif
