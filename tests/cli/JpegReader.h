// Reads the baseline JPEG files of the sample card, so that a test can tell that they are real. No decoder for others.
#ifndef TESTS_CLI_JPEG_READER_H
#define TESTS_CLI_JPEG_READER_H

#include <string>
#include <vector>

namespace clitest {

struct Picture {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<int> blocks; ///< Mean luminance of each block of 8 by 8 pixels, around 0.
    std::string rest;        ///< What stands behind the end of the image.
};

/// Throws std::runtime_error for anything that is not a whole picture.
[[nodiscard]] Picture DecodeJpeg(const std::string& bytes);

/// The content of the EXIF segment.
[[nodiscard]] std::string ExifOf(const std::string& bytes);

} // namespace clitest

#endif
