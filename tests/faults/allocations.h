// A program that is linked with allocations.cpp can have the Nth allocation of its own thread fail: of operator new, in
// every library, and of SQLite.
#pragma once

#include <functional>

namespace fax::test {

// Has SQLite ask here for memory; before its first use.
void watch_sqlite();

// How many bytes SQLite holds.
long long sqlite_bytes();

// Runs work with the first allocation failing, then with the second, until none is left to fail, and answers how many
// there were. before and after run around each, without a fault; after is told whether an allocation failed.
int fail_each(std::function<void()> const &before, std::function<void()> const &work,
              std::function<void(bool failed)> const &after);

}  // namespace fax::test
