// Mounts; see the header.
#include "Mounts.h"

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>
#include <vector>

#include "CardFiles.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr unsigned kAllWriters = 0222;
constexpr unsigned kOwnerWrites = 0200;

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The table writes blanks and the like as "\040".
std::string Plain(const std::string& text) {
    const auto octal = [&](std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '7'; };
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && octal(i + 1) && octal(i + 2) && octal(i + 3)) {
            plain += static_cast<char>(std::strtol(text.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/// A line is: number, parent, device, root, mount point, options, fields of its own, "-", type, source, more options.
std::optional<Mount> ReadLine(const std::string& line) {
    constexpr std::size_t kPoint = 4;
    constexpr std::size_t kOptions = 5;
    const std::vector<std::string> words = Words(line);
    std::size_t dash = kOptions + 1;
    while (dash < words.size() && words[dash] != "-") {
        ++dash;
    }
    if (dash + 3 >= words.size()) {
        return std::nullopt;
    }
    return Mount{Plain(words[kPoint]), words[dash + 1], words[kOptions] + "," + words[dash + 3]};
}

bool LiesIn(const std::string& path, const std::string& folder) {
    const std::string inside = folder == "/" ? folder : folder + "/";
    return path == folder || path.compare(0, inside.size(), inside) == 0;
}

std::optional<std::string> Option(const Mount& mount, const std::string& name) {
    std::istringstream stream(mount.options);
    std::string option;
    while (std::getline(stream, option, ',')) {
        if (option.compare(0, name.size() + 1, name + "=") == 0) {
            return option.substr(name.size() + 1);
        }
    }
    return std::nullopt;
}

bool HasOption(const Mount& mount, const std::string& name) {
    return ("," + mount.options + ",").find("," + name + ",") != std::string::npos;
}

bool IsFat(const Mount& mount) {
    return mount.type == "vfat" || mount.type == "msdos" || mount.type == "exfat";
}

} // namespace

std::optional<Mount> FindMount(const std::string& table, const std::string& path) {
    std::optional<Mount> best;
    std::istringstream lines(table);
    std::string line;
    while (std::getline(lines, line)) {
        auto mount = ReadLine(line);
        // A later mount of the same point lies over the earlier one.
        if (mount.has_value() && LiesIn(path, mount->point) &&
            (!best.has_value() || mount->point.size() >= best->point.size())) {
            best = std::move(mount);
        }
    }
    return best;
}

std::optional<Mount> MountOf(const std::string& path) {
    std::error_code error;
    const std::string real = std::filesystem::canonical(path, error).string();
    std::ifstream file("/proc/self/mountinfo");
    if (error || !file) {
        return std::nullopt;
    }
    return FindMount({std::istreambuf_iterator<char>(file), {}}, real);
}

bool IgnoresProtection(const Mount& mount) {
    if (!IsFat(mount)) {
        return false;
    }
    const auto mask = Option(mount, "fmask");
    const unsigned long hidden = mask.has_value() ? std::strtoul(mask->c_str(), nullptr, 8) : 0;
    // A change is taken only when it concerns all the write permissions that the mask leaves.
    return (kAllWriters & ~hidden) != kOwnerWrites;
}

std::string WhyProtectionFailed(const std::string& path) {
    const auto mount = MountOf(path);
    const auto state = LookAt(path);
    if (mount.has_value() && HasOption(*mount, "ro")) {
        return "the card is mounted read-only; mount " + Quoted(mount->point) + " with the option rw";
    }
    if (mount.has_value() && IgnoresProtection(*mount)) {
        return "the card is mounted as " + Escaped(mount->type) +
               " with fmask=" + Escaped(Option(*mount, "fmask").value_or("0000")) +
               ", with which the system takes a change of " + "protection and ignores it; unmount " +
               Quoted(mount->point) + " and mount it with the option fmask=0022";
    }
    if (state.has_value() && geteuid() != 0 && state->owner != geteuid()) {
        return "the file belongs to another user; run as that user, or mount the card with the option uid=" +
               std::to_string(geteuid());
    }
    if (mount.has_value() && mount->type.compare(0, 4, "fuse") == 0) {
        return "the card is mounted by a program (" + Escaped(mount->type) + ") that keeps no protection; mount " +
               Quoted(mount->point) + " with the system's own driver and the option fmask=0022";
    }
    return "the file system" + (mount.has_value() ? " (" + Escaped(mount->type) + ")" : std::string()) +
           " did not take it; look at the card, and at the mount option fmask, which must be 0022 on FAT and exFAT";
}

} // namespace dcfctl
