// Thumbnails of pictures that anybody may have written. The libraries that decode them run in a child process with
// bounded time and memory, so that a picture on which one of them crashes or never ends costs no more than itself.
// Nothing is ever printed. One thread.
#ifndef DCFCTL_THUMBNAIL_H
#define DCFCTL_THUMBNAIL_H

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "PictureDecoder.h"

namespace dcfctl {

/// Whether this build can read the thumbnails in metadata, and make thumbnails.
#ifdef DCFCTL_HAVE_EXIF
inline constexpr bool kCanReadThumbnails = true;
#else
inline constexpr bool kCanReadThumbnails = false;
#endif
#ifdef DCFCTL_HAVE_THUMBNAILS
inline constexpr bool kCanMakeThumbnails = true;
#else
inline constexpr bool kCanMakeThumbnails = false;
#endif

/// Asks one child about many pictures, and another one when it has ended over a picture.
class ThumbnailReader {
public:
    /// @param patience how long a picture may take.
    explicit ThumbnailReader(std::chrono::milliseconds patience = std::chrono::seconds(5)) : m_patience(patience) {}
    ThumbnailReader(const ThumbnailReader&) = delete;
    ThumbnailReader& operator=(const ThumbnailReader&) = delete;
    ~ThumbnailReader();

    /// The thumbnail and the date in the metadata of a JPG, MPO or TIFF-based raw file; empty where there is none.
    [[nodiscard]] PictureHead Head(const std::string& path);
    /// A thumbnail made from the picture, upright, as a JPEG stream; empty when it cannot be made.
    /// @param side the most pixels on a side, 1 to kMaxThumbnailSide.
    [[nodiscard]] std::string Made(const std::string& path, int side);

private:
    using Answer = std::vector<std::string>;

    /// @param side 0 for the head.
    [[nodiscard]] std::optional<Answer> Ask(const std::string& path, int side);
    bool Start();
    void End();

    std::chrono::milliseconds m_patience;
    pid_t m_child = -1;
    int m_socket = -1;
};

/// The same for a single picture.
[[nodiscard]] std::string EmbeddedThumbnail(const std::string& path);
[[nodiscard]] std::string MadeThumbnail(const std::string& path, int side);

} // namespace dcfctl

#endif
