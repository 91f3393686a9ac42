// A picture's metadata for people and programs: in words and units, in columns, and as JSON with names. What the fields
// are is DcfExif.h's to say. Pure functions.
#ifndef DCFCTL_METADATA_TEXT_H
#define DCFCTL_METADATA_TEXT_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DcfExif.h"
#include "JsonParts.h"
#include "ListVerbs.h"

namespace dcfctl {

/// The heads of the columns, and the columns of a file: as long as each other but for values that need more.
[[nodiscard]] std::string MetadataHead();
[[nodiscard]] std::string MetadataColumns(const FileEntry& file);

/// Every field by its name, "-" where it is unknown.
using NamedTexts = std::vector<std::pair<const char*, std::string>>;
[[nodiscard]] NamedTexts MetadataTexts(const DcfExifInfo& info);

/// Every field by its name, null where it is unknown; null for no metadata.
[[nodiscard]] Json ExifJson(const std::optional<DcfExifInfo>& metadata);

} // namespace dcfctl

#endif
