// What a contact sheet shows, gathered by the verb and written by SheetHtml. Plain data.
#ifndef DCFCTL_SHEET_CONTENT_H
#define DCFCTL_SHEET_CONTENT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "CheckVerb.h"
#include "Findings.h"
#include "ListVerbs.h"

namespace dcfctl {

/// A folder of the list, and its files: a stretch of the list, for the list goes folder by folder.
struct SheetFolder {
    std::string name;
    int number = 0;
    std::size_t first = 0;
    std::size_t count = 0;

    [[nodiscard]] bool IsCamera() const {
        return name == kCamera;
    }
};

struct SheetContent {
    std::string root;
    std::string name; ///< Of the card's folder.
    Counts counts;
    std::vector<FileEntry> files; ///< In list order.
    std::vector<SheetFolder> folders;
    std::vector<Finding> warnings;
    CheckResult check;
};

/// What there is to show of a file.
struct Illustration {
    std::string thumbnail;    ///< A JPEG stream, or empty.
    std::string date;         ///< From the metadata, any bytes; or empty.
    const char* missing = ""; ///< Why there is no thumbnail, in a few words.
};

using Illustrate = std::function<Illustration(const FileEntry& file)>;

} // namespace dcfctl

#endif
