// From the entries of EXIF to the fields of PhotoInfo, as exif/include/DcfExif.h gives them. Pure functions.
#ifndef DCFEXIF_PHOTO_FIELDS_H
#define DCFEXIF_PHOTO_FIELDS_H

#include <optional>

#include "ExifEntries.h"
#include "MetadataInfo.h"

namespace dcfexif {

/// @param width, height of the picture where EXIF does not tell; 0 unknown.
/// @return nothing when EXIF tells nothing that a field can hold.
[[nodiscard]] std::optional<PhotoInfo> PhotoFields(const ExifEntries& entries, std::uint32_t width,
                                                   std::uint32_t height);

} // namespace dcfexif

#endif
