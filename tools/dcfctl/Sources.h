// The files that are to be added to a card: what they are, and which of them belong together. One thread.
#ifndef DCFCTL_SOURCES_H
#define DCFCTL_SOURCES_H

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "FileListTypes.h"
#include "Findings.h"

namespace dcfctl {

struct Source {
    std::string path; ///< As it was given.
    eFileType type = FILE_TYPE_NONE;
    struct stat state = {};

    [[nodiscard]] std::uint64_t Size() const {
        return static_cast<std::uint64_t>(state.st_size);
    }
};

/// What gets one number: a file, and a companion if a JPG was given together with an SRW or MPO of the same name.
struct Shot {
    Source file;
    std::optional<Source> companion;
};

/// In the order given; a pair where its first file stands. @return why a file cannot be added.
[[nodiscard]] std::variant<std::vector<Shot>, Finding> ReadSources(const std::vector<std::string>& paths);

} // namespace dcfctl

#endif
