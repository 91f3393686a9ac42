// PrivateMount: a child process with mounts of its own, above all one that sees a folder as "/mnt/mmc" while the
// machine's own /mnt stays as it is.
#ifndef TESTS_SUPPORT_PRIVATE_MOUNT_H
#define TESTS_SUPPORT_PRIVATE_MOUNT_H

#include <functional>
#include <string>

#include "ChildProcess.h"

namespace dcftest {

/// The storage root that the library starts with.
inline constexpr char kDefaultRoot[] = "/mnt/mmc";

/// In a child: nothing that it or its children mount from here on is seen by anybody else. Ends it as refused where the
/// system allows no such namespace.
void EnterPrivateMounts();

/// Runs the piece in a child with a mount namespace of its own, in which the folder lies at kDefaultRoot. The ending is
/// refused where the system allows no such namespace; a test is then skipped.
Ending RunWithDefaultRoot(const std::string& folder, const std::function<void()>& piece);

} // namespace dcftest

#endif
