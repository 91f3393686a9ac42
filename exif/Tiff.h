// Finds, in the TIFF structure that EXIF and raw files share, the fields that the collector wants, and checks that the
// structure is whole. What the fields mean is not known here. Pure work on a part of a file.
#ifndef DCFEXIF_TIFF_H
#define DCFEXIF_TIFF_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PictureFile.h"

namespace dcfexif {

/// A number as the file's byte order has it. @param size 2 or 4.
[[nodiscard]] std::uint32_t Number(const std::string& bytes, std::size_t at, std::size_t size, bool bigEndian);

/// A field with its value as it stands in the file.
struct TiffField {
    std::uint32_t tag;
    std::uint32_t type;
    std::uint32_t count;
    std::string value;
};
using TiffFields = std::vector<TiffField>;

struct TiffContent {
    bool bigEndian = false;
    TiffFields image; ///< Of the first directory.
    TiffFields exif;
    TiffFields gps;
    // The largest picture that the directories describe; 0 when none does.
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

enum class TiffScope {
    kDescription, ///< EXIF within another file: the first directory and what it names.
    kWholeFile,   ///< All directories, and whether the pictures that they describe are in the file.
};

/// @return nothing for what is no TIFF structure, or not a whole one: offsets that lead out of the part, directories
///         that lead into each other, counts beyond all measure.
[[nodiscard]] std::optional<TiffContent> ReadTiff(const FilePart& part, TiffScope scope);

/// Whether the pictures of a multi-picture file are all there. @param index the structure that tells where they are.
[[nodiscard]] bool HoldsItsPictures(const FilePart& index);

} // namespace dcfexif

#endif
