// run_end.h: a plot whose end is not that of the program, for runs that go on with
// the next input.
#pragma once

// Calls `plot`. Where it would end the program, by ZYR_exit, it is left instead, with
// the code of the end. Returns that, else what `plot` returns. What it leaves open is
// the caller's matter. A lack of memory still ends the program.
int ZYR_catch_exit(int (*plot)());
