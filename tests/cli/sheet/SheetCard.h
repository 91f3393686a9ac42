// Pictures for tests of contact sheets: small real ones, with the metadata that a test asks for.
#ifndef TESTS_CLI_SHEET_SHEET_CARD_H
#define TESTS_CLI_SHEET_SHEET_CARD_H

#include <string>

#include "Jpeg.h"

namespace clitest {

#ifdef DCFCTL_HAVE_EXIF
inline constexpr bool kReadsThumbnails = true;
#else
inline constexpr bool kReadsThumbnails = false;
#endif
#ifdef DCFCTL_HAVE_THUMBNAILS
inline constexpr bool kMakesThumbnails = true;
#else
inline constexpr bool kMakesThumbnails = false;
#endif

struct ExifTraits {
    std::string date{};
    std::string thumbnail{};
    int orientation = 1;
};

/// The TIFF structure of these traits, as it stands in an EXIF segment behind "Exif\0\0", and in a raw file.
[[nodiscard]] std::string ExifTiff(const ExifTraits& traits);

/// The segment of a JPEG file.
[[nodiscard]] std::string ExifSegment(const ExifTraits& traits);

/// A picture of one colour: 32 by 24 pixels, with these application segments.
[[nodiscard]] std::string Picture(dcfctl::Colour colour, const std::string& segments = "");

/// One that is 320 by 160 pixels large and carries no metadata.
[[nodiscard]] std::string LargePicture();

inline constexpr dcfctl::Colour kRed = {200, 30, 30};
inline constexpr dcfctl::Colour kGreen = {30, 180, 40};

} // namespace clitest

#endif
