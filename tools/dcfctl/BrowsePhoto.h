// What a picture's own metadata tells, in the few words that fit beside the list. Empty in a build without the EXIF
// collector. One thread.
#ifndef DCFCTL_BROWSE_PHOTO_H
#define DCFCTL_BROWSE_PHOTO_H

#include <string>
#include <utility>
#include <vector>

#include "CSFileListItem.h"

namespace dcfctl {

/// Names and what is to be said of them, escaped.
using BrowseFacts = std::vector<std::pair<std::string, std::string>>;

/// @param item from the file's second conversion on; the first carries no metadata.
[[nodiscard]] BrowseFacts PhotoFacts(const CSFileListItem& item);

} // namespace dcfctl

#endif
