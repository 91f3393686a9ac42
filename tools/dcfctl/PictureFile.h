// A picture as bytes that anybody may have written: opened so that nothing but a plain file is read, read in bounded
// pieces, and walked for the places where cameras put their small pictures. Decodes nothing. One thread.
#ifndef DCFCTL_PICTURE_FILE_H
#define DCFCTL_PICTURE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dcfctl {

class PictureFile {
public:
    /// Opens a regular file; a link, a folder or a device is none.
    explicit PictureFile(const std::string& path);
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;
    ~PictureFile();

    [[nodiscard]] bool IsOpen() const {
        return m_fd >= 0;
    }
    [[nodiscard]] std::uint64_t Size() const {
        return m_size;
    }
    /// @return what there is of the bytes that were asked for.
    [[nodiscard]] std::string Read(std::uint64_t offset, std::size_t length) const;

private:
    int m_fd = -1;
    std::uint64_t m_size = 0;
};

enum class Container { kUnknown, kJpeg, kTiff };
[[nodiscard]] Container ContainerOf(const PictureFile& file);

/// "Exif\0\0" and the TIFF structure behind it: the first such segment of a JPEG file, or the head of a TIFF file.
/// Empty when there is none.
[[nodiscard]] std::string ExifBlock(const PictureFile& file);

struct Span {
    std::uint64_t offset;
    std::uint64_t length;
};

/// Where the directories of a TIFF file say that JPEG pictures lie, the shortest first.
[[nodiscard]] std::vector<Span> TiffPreviews(const PictureFile& file);

/// A thumbnail as it may be handed on: a whole JPEG stream without the metadata it may carry itself, with the
/// orientation (1 to 8, as EXIF counts; 1 is upright) that its picture has. Empty for bytes that are no such stream or
/// have more than kMaxThumbnailSide pixels on a side.
[[nodiscard]] std::string CleanThumbnail(std::string_view jpeg, int orientation);

inline constexpr int kMaxThumbnailSide = 1024;
/// The most that a segment of a JPEG file, and therefore a thumbnail in one, can have.
inline constexpr std::size_t kMaxThumbnailBytes = 65535;

} // namespace dcfctl

#endif
