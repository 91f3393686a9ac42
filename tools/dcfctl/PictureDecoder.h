// What the picture libraries make of a file: the date and the thumbnail of its metadata (libexif), and a thumbnail that
// is made from the picture (gdk-pixbuf). Both are optional parts of a build; without them the answers are empty. The
// libraries read bytes that anybody may have written, so this is called in the child process of Thumbnail.h alone.
#ifndef DCFCTL_PICTURE_DECODER_H
#define DCFCTL_PICTURE_DECODER_H

#include <string>

namespace dcfctl {

/// What the metadata of a picture tells.
struct PictureHead {
    std::string thumbnail; ///< A JPEG stream, see CleanThumbnail; empty without one.
    std::string date; ///< When it was taken, "YYYY:MM:DD HH:MM:SS" in a good file, any bytes in a bad one; or empty.
};

[[nodiscard]] PictureHead DecodeHead(const std::string& path);

/// A JPEG stream, upright, with no more than side pixels on a side; empty when it cannot be made.
[[nodiscard]] std::string DecodeScaled(const std::string& path, int side);

} // namespace dcfctl

#endif
