// See failing_io.cpp. Preloaded into a program: the environment's FAILING_IO_CALL and FAILING_IO_ERROR say the same.
#pragma once

namespace fax::test {

// The call after number others fails, once, with that errno; a negative number: none.
void fail_io_call(long number, int with);
bool io_has_failed();

}  // namespace fax::test
