// The EXIF collector as the tool has it: an optional component that may not be in this build. Pure
// functions.
#ifndef DCFCTL_METADATA_H
#define DCFCTL_METADATA_H

#include <optional>

#include "Findings.h"
#include "MetadataInfo.h"

namespace dcfctl {

using PhotoCollector = int (*)(char*, PhotoInfo*);

/// @return null when the component was not built.
[[nodiscard]] PhotoCollector ExifCollector();

/// Why no metadata can be had; nothing when the component is there.
[[nodiscard]] std::optional<Finding> MetadataRefusal();

} // namespace dcfctl

#endif
