// Pictures; see the header.
#include "SheetCard.h"

#include <cstddef>
#include <cstdint>

#include "Tiff.h"

using namespace dcfctl;

namespace clitest {
namespace {

std::string Mosaic(Colour colour, int columns, int rows, const std::string& segments) {
    const auto cells = static_cast<std::size_t>(columns * rows);
    return EncodeJpeg({columns, rows, std::vector<Colour>(cells, colour)}, segments);
}

/// Puts the offset of a further directory behind the entries of one.
std::string Chained(std::string directory, std::size_t entries, std::uint32_t next) {
    return directory.replace(2 + entries * 12, 4, LittleEndian32(next));
}

} // namespace

std::string ExifTiff(const ExifTraits& traits) {
    const auto main = [&](std::uint32_t exifOffset) {
        TiffDirectory directory;
        directory.Short(0x0112, static_cast<std::uint32_t>(traits.orientation));
        directory.Long(0x8769, exifOffset);
        return directory;
    };
    TiffDirectory exif;
    exif.Text(0x9003, traits.date);
    const auto second = [&](std::uint32_t offset) {
        TiffDirectory directory;
        directory.Long(0x0201, offset);
        directory.Long(0x0202, static_cast<std::uint32_t>(traits.thumbnail.size()));
        return directory;
    };
    const std::uint32_t exifOffset = kTiffHeaderSize + main(0).Size();
    const std::uint32_t secondOffset = exifOffset + exif.Size();
    const std::uint32_t thumbnailOffset = secondOffset + second(0).Size();
    const bool thumbnail = !traits.thumbnail.empty();
    return TiffHeader() + Chained(main(exifOffset).Bytes(kTiffHeaderSize), 2, thumbnail ? secondOffset : 0) +
           exif.Bytes(exifOffset) +
           (thumbnail ? second(thumbnailOffset).Bytes(secondOffset) + traits.thumbnail : std::string());
}

std::string ExifSegment(const ExifTraits& traits) {
    return JpegSegment(0xe1, std::string("Exif\0\0", 6) + ExifTiff(traits));
}

std::string Picture(Colour colour, const std::string& segments) {
    return Mosaic(colour, 4, 3, segments);
}

std::string LargePicture() {
    return Mosaic(kGreen, 40, 20, "");
}

} // namespace clitest
