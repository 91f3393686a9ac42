// Writes a baseline JPEG file from a mosaic of single-coloured blocks: small, and readable by every viewer. For sample
// pictures; it is no encoder for photos. Pure functions.
#ifndef DCFCTL_JPEG_H
#define DCFCTL_JPEG_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dcfctl {

struct Colour {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

/// Each cell becomes a block of 8 by 8 pixels.
struct Mosaic {
    int columns;
    int rows;
    std::vector<Colour> cells; ///< Row by row.
};

inline constexpr int kBlockSize = 8;

/// An application segment. @param marker 0xe1 for APP1 and so on.
[[nodiscard]] std::string JpegSegment(std::uint8_t marker, std::string_view content);

/// @param segments application segments, which follow the start of the file.
[[nodiscard]] std::string EncodeJpeg(const Mosaic& mosaic, std::string_view segments);

} // namespace dcfctl

#endif
