// The time of a directory entry; see the header.
#include "EntryTimes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <numeric>

namespace kelp {
namespace {

#ifdef DCF_ENTRY_TIME_DIRENT

/// The device's driver puts the time behind the terminator of the name. A record that ends before that holds none.
std::uint32_t TimeInRecord(const dirent& entry) {
    const std::size_t offset = offsetof(dirent, d_name) + std::strlen(entry.d_name) + 1;
    std::uint32_t time = 0;
    if (offset + sizeof time <= entry.d_reclen) {
        std::memcpy(&time, reinterpret_cast<const char*>(&entry) + offset, sizeof time);
    }
    return time;
}

#else

/// The positions of the entries in the order in which the folder holds them. The kernel's exFAT looks a name up from
/// where the last search ended, so asking in this order costs nothing and in any other a walk through the folder per
/// file.
std::vector<int> FolderOrder(dirent* const* entries, int count) {
    std::vector<int> order(static_cast<std::size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [entries](int a, int b) { return entries[a]->d_off < entries[b]->d_off; });
    return order;
}

#endif

} // namespace

#ifdef DCF_ENTRY_TIME_DIRENT

std::vector<std::uint32_t> ReadEntryTimes(const char* /*folder*/, dirent* const* entries, int count) {
    std::vector<std::uint32_t> times(static_cast<std::size_t>(count));
    std::transform(entries, entries + count, times.begin(), [](const dirent* entry) { return TimeInRecord(*entry); });
    return times;
}

#else

std::vector<std::uint32_t> ReadEntryTimes(const char* folder, dirent* const* entries, int count) {
    std::vector<std::uint32_t> times(static_cast<std::size_t>(count));
    const std::vector<int> order = FolderOrder(entries, count);
    const int handle = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) {
        return times;
    }
    for (const int position : order) {
        struct stat status = {};
        if (fstatat(handle, entries[position]->d_name, &status, 0) == 0) {
            times[static_cast<std::size_t>(position)] = static_cast<std::uint32_t>(status.st_mtime);
        }
    }
    close(handle);
    return times;
}

#endif

} // namespace kelp
