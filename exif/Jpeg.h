// Finds in a JPEG file, segment by segment, its EXIF and its size, and whether the picture has its end. Pure work on a
// file.
#ifndef DCFEXIF_JPEG_H
#define DCFEXIF_JPEG_H

#include <cstdint>
#include <optional>

#include "PictureFile.h"

namespace dcfexif {

struct JpegContent {
    std::uint64_t exifBegin = 0; ///< The TIFF structure of its EXIF.
    std::uint64_t exifSize = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// @return nothing for a file that is no JPEG, has no EXIF, or is not whole.
[[nodiscard]] std::optional<JpegContent> ReadJpeg(PictureFile& file);

} // namespace dcfexif

#endif
