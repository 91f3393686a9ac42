// The public function; see exif/include/DcfExif.h.
#include <new>
#include <optional>
#include <string>

#include "DcfExif.h"
#include "ExifEntries.h"
#include "Jpeg.h"
#include "PhotoFields.h"
#include "PictureFile.h"
#include "Tiff.h"

namespace dcfexif {
namespace {

std::optional<PhotoInfo> ReadPicture(PictureFile& file) {
    std::string signature;
    if (!file.Read(0, 2, signature)) {
        return std::nullopt;
    }
    const bool jpeg = signature == "\xff\xd8";
    std::optional<JpegContent> found;
    if (jpeg) {
        found = ReadJpeg(file);
        if (!found.has_value()) {
            return std::nullopt;
        }
    }
    const auto tiff = jpeg ? ReadTiff({file, found->exifBegin, found->exifSize}, TiffScope::kDescription)
                           : ReadTiff({file, 0, file.Size()}, TiffScope::kWholeFile);
    if (!tiff.has_value()) {
        return std::nullopt;
    }
    return PhotoFields(ExifEntries(*tiff), jpeg ? found->width : tiff->width, jpeg ? found->height : tiff->height);
}

int Collect(const char* path, PhotoInfo& info) {
    PictureFile file(path);
    if (!file.IsOpen()) {
        return DCF_EXIF_UNREADABLE;
    }
    if (file.Size() > static_cast<std::uint64_t>(DCF_EXIF_MAX_FILE)) {
        return DCF_EXIF_NONE;
    }
    const auto read = ReadPicture(file);
    if (!read.has_value()) {
        return file.HasFailed() ? DCF_EXIF_UNREADABLE : DCF_EXIF_NONE;
    }
    info = *read;
    return DCF_EXIF_OK;
}

} // namespace
} // namespace dcfexif

int CollectExif(char* path, PhotoInfo* info) noexcept {
    if (path == nullptr || info == nullptr) {
        return DCF_EXIF_NULL_ARGUMENT;
    }
    try {
        return dcfexif::Collect(path, *info);
    } catch (...) { // memory is all that can be missing
        return DCF_EXIF_UNREADABLE;
    }
}
