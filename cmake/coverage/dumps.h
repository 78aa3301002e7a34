/* The counts of every module of a process, written when it ends by _exit, and each second where
   DIRECTFAX_COUNTS_WHILE_RUNNING is in the environment: for programs that are killed. */
#pragma once

struct counts {
  void (*dump)(void);
  void (*reset)(void);
};

/* Of at most 16 modules. */
void directfax_add_counts(struct counts own);
/* Before a module goes. */
void directfax_drop_counts(struct counts own);
