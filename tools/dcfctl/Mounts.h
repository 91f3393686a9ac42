// What a file system makes of protection: FAT and exFAT accept a change of it and ignore it, unless the card is mounted
// so that a file's owner alone may write. Reads the system's own table of mounts. Any thread.
#ifndef DCFCTL_MOUNTS_H
#define DCFCTL_MOUNTS_H

#include <optional>
#include <string>

namespace dcfctl {

struct Mount {
    std::string point;
    std::string type;    ///< "vfat", "exfat", "ext4" and so on.
    std::string options; ///< All of them, separated by commas.
};

/// @param table the text of /proc/self/mountinfo. @param path a real path. @return the mount that it lies on.
[[nodiscard]] std::optional<Mount> FindMount(const std::string& table, const std::string& path);

/// The mount of an existing path.
[[nodiscard]] std::optional<Mount> MountOf(const std::string& path);

/// Whether the mount is of a kind that ignores a change of the owner's write permission: FAT, exFAT, with these
/// options.
[[nodiscard]] bool IgnoresProtection(const Mount& mount);

/// Why a change of protection had no effect at a path, and what to do about it: a cause, a semicolon, a cure.
[[nodiscard]] std::string WhyProtectionFailed(const std::string& path);

} // namespace dcfctl

#endif
