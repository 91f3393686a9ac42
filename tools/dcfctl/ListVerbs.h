// The verbs that read a card and change nothing: ls, count, show. They look at the card first, rehearse what could go
// wrong, and return values; the renderer shows them.
#ifndef DCFCTL_LIST_VERBS_H
#define DCFCTL_LIST_VERBS_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DcfExif.h"
#include "DcfNames.h"
#include "FileListTypes.h"
#include "Findings.h"

namespace dcfctl {

struct CardOptions {
    std::string root; ///< Normalised.
    bool camera = true;
};

struct Companion {
    eFileType type;
    std::string path;
};

/// One file of the list.
struct FileEntry {
    int position = 0;
    std::string path;
    eFileType type = FILE_TYPE_NONE;
    std::optional<Companion> companion;
    std::uint32_t time = 0; ///< Seconds since 1970, 0 when unknown.

    /// What the list tells only after looking the file up by its path.
    struct Details {
        bool protect;
        bool wifi;
        int directoryNumber;
        int fileNumber;
    };
    std::optional<Details> details;

    // What the list was given for the file by the EXIF collector, where that was asked for.
    std::optional<DcfExifInfo> metadata; ///< Nothing when the file tells nothing.
    bool metadataMissing = false;        ///< It is not known whether the file tells anything.
};

struct Counts {
    int files = 0;
    std::array<int, kFileTypes.size()> byType = {}; ///< As kFileTypes; a file counts for its companion's type too.
};

struct ListOptions {
    std::optional<eFileType> type;
    std::string directory; ///< Name or number; empty for all.
    std::optional<std::uint64_t> limit;
    bool metadata = false;  ///< What the pictures tell, too.
    bool pathsOnly = false; ///< Nothing is asked for that takes a look-up of each file.
};

struct ListResult {
    std::string root;
    std::vector<FileEntry> files;
    Counts counts; ///< Of the whole list.
    bool metadata = false;
};

struct CountResult {
    std::string root;
    Counts counts;
    std::optional<eFileType> type; ///< The one that was asked for.
};

struct ShowResult {
    std::string root;
    FileEntry file;
    bool metadata = false; ///< The EXIF collector is there and was asked.
};

[[nodiscard]] Report<ListResult> List(const CardOptions& card, const ListOptions& options);
[[nodiscard]] Report<CountResult> Count(const CardOptions& card, std::optional<eFileType> type);
/// @param what a list position or a path: full, or from the card's root or from its "DCIM" on; of a file or companion.
[[nodiscard]] Report<ShowResult> Show(const CardOptions& card, const std::string& what);

} // namespace dcfctl

#endif
