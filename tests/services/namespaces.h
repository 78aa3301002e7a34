// Namespaces of the test's own: what it mounts, and the network that it builds, nobody else sees, and all of it is gone
// when the test ends.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace test {

// Before any thread and any look-up: own mounts, an own network, and /mnt as an empty folder in memory. As a user
// without privileges also an own user namespace, in which the process is root. False when the kernel refuses.
bool enter_namespaces();

// Another network, with nothing but a loopback that is down.
void renew_network();

// Puts a file of that content in the place of one of the system's; again to change it.
void replace_system_file(std::string const &path, std::string const &content);

// The users and groups of the system from here on, in the form of /etc/passwd and /etc/group; nobody else is known.
void replace_accounts(std::string const &passwd, std::string const &group);

// One shell command, with the programs of an administrator in its path. Fails the test when it fails.
void run(std::string const &command);

// The exit code of body in a process of its own; -1 and a failed test when a signal ended it.
int in_child(std::function<int()> const &body);

// Gives up every privilege, so that root too is bound by permission bits. For good.
void drop_privileges();

}  // namespace test
