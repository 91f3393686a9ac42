// latest-name, capacity, next-name: the newest file, how many more the numbers allow, and the name of the next one. The
// first two change nothing. One thread.
#ifndef DCFCTL_NAME_VERBS_H
#define DCFCTL_NAME_VERBS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "FileListTypes.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "Naming.h"

namespace dcfctl {

struct LatestNameResult {
    std::string root;
    std::string path;
    eFileType type = FILE_TYPE_NONE;
    bool companion = false; ///< The path is the one that a companion of the newest file has, or would have.
    bool exists = false;
};

/// @param companion the type of a companion file, or nothing for the newest file itself.
[[nodiscard]] Report<LatestNameResult> LatestName(const CardOptions& card, std::optional<eFileType> companion);

struct CapacityResult {
    std::string root;
    int numbersLeft = 0;
    bool series = false;
    std::uint64_t freeBytes = 0; ///< For a user without special rights.
    std::uint64_t totalBytes = 0;
};

[[nodiscard]] Report<CapacityResult> Capacity(const CardOptions& card, const NamingOptions& options);

struct NextNameResult {
    std::string root;
    bool dryRun = false;
    bool series = false;
    std::string path;
    std::string folder;            ///< Path of the file's folder.
    std::vector<std::string> made; ///< Paths of the folders that were made, or would be.
    long stored = 0;               ///< The series value, now or then.
    std::optional<long> storedBefore;
};

[[nodiscard]] Report<NextNameResult> NextName(const CardOptions& card, const NamingOptions& options, eFileType type,
                                              bool dryRun);

} // namespace dcfctl

#endif
