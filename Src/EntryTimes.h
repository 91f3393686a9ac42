// Where the time of a directory entry comes from: the one place in which a workstation and a device differ
// (build option DCF_ENTRY_TIME). Called by PCSDCFFSIO for each listing of files.
#ifndef ENTRY_TIMES_H
#define ENTRY_TIMES_H

#include <dirent.h>

#include <cstdint>
#include <vector>

namespace kelp {

/// The times of a listing's entries in their order, 0 for one that cannot be had.
std::vector<std::uint32_t> ReadEntryTimes(const char* folder, dirent* const* entries, int count);

} // namespace kelp

#endif
