// PrivateMount: a child process that sees a folder as "/mnt/mmc" while the machine's own /mnt stays as it is.
#ifndef TESTS_SUPPORT_PRIVATE_MOUNT_H
#define TESTS_SUPPORT_PRIVATE_MOUNT_H

#include <functional>
#include <string>

#include "ChildProcess.h"

namespace dcftest {

/// The storage root that the library starts with.
inline constexpr char kDefaultRoot[] = "/mnt/mmc";

/// Runs the piece in a child with a mount namespace of its own, in which the folder lies at kDefaultRoot. The ending is
/// refused where the system allows no such namespace; a test is then skipped.
Ending RunWithDefaultRoot(const std::string& folder, const std::function<void()>& piece);

} // namespace dcftest

#endif
