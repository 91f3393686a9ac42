// Thumbnails of pictures: which bytes come back, and that they are upright.
#include "Thumbnail.h"

#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "PictureFile.h"
#include "SheetCard.h"

using clitest::ExifSegment;
using clitest::Picture;
using dcfctl::CleanThumbnail;
using dcfctl::EmbeddedThumbnail;
using dcfctl::MadeThumbnail;
using dcftest::Card;

namespace {

/// Width and height of a JPEG stream.
std::pair<int, int> SizeOf(const std::string& jpeg) {
    const std::size_t frame = jpeg.find("\xff\xc0");
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(jpeg.at(frame + i)); };
    return {at(7) * 256 + at(8), at(5) * 256 + at(6)};
}

std::string FileOf(Card& card, const std::string& content, const std::string& name = "KVR_0001.JPG") {
    card.AddFile("100PHOTO", name, {content, 0644, {}});
    return card.Path("100PHOTO", name);
}

TEST(EmbeddedThumbnail, IsTheOneInTheMetadata) {
    if (!dcfctl::kCanReadThumbnails) {
        GTEST_SKIP() << "this build does not read thumbnails";
    }
    const std::string thumbnail = Picture(clitest::kRed);
    Card card;
    EXPECT_EQ(EmbeddedThumbnail(FileOf(card, Picture(clitest::kGreen, ExifSegment({.thumbnail = thumbnail})))),
              thumbnail);
    EXPECT_EQ(EmbeddedThumbnail(FileOf(card, Picture(clitest::kGreen), "KVR_0002.JPG")), "");
    EXPECT_EQ(EmbeddedThumbnail(card.Path("100PHOTO", "none")), "");
}

TEST(EmbeddedThumbnail, OfARawFileMayLieAnywhere) {
    if (!dcfctl::kCanReadThumbnails) {
        GTEST_SKIP() << "this build does not read thumbnails";
    }
    const std::string thumbnail = Picture(clitest::kRed);
    Card card;
    const std::string near = clitest::ExifTiff({.thumbnail = thumbnail});
    EXPECT_EQ(EmbeddedThumbnail(FileOf(card, near, "KVR_0001.SRW")), thumbnail);
    // The same directories, the picture behind 200,000 bytes: out of reach of what is read as a block.
    std::string far = near.substr(0, near.size() - thumbnail.size());
    const auto offset = static_cast<std::uint32_t>(far.size());
    const auto bytes = [](std::uint32_t value) {
        return std::string{static_cast<char>(value), static_cast<char>(value >> 8U), static_cast<char>(value >> 16U),
                           static_cast<char>(value >> 24U)};
    };
    far.replace(far.rfind(bytes(offset)), 4, bytes(200000));
    far.resize(200000);
    EXPECT_EQ(EmbeddedThumbnail(FileOf(card, far + thumbnail, "KVR_0002.SRW")), thumbnail);
}

TEST(EmbeddedThumbnail, CarriesTheOrientationOfItsPicture) {
    if (!dcfctl::kCanReadThumbnails) {
        GTEST_SKIP() << "this build does not read thumbnails";
    }
    const std::string thumbnail = Picture(clitest::kRed);
    for (const int orientation : {1, 3, 6, 8}) {
        Card card;
        const std::string shown = EmbeddedThumbnail(
            FileOf(card, Picture(clitest::kGreen, ExifSegment({.thumbnail = thumbnail, .orientation = orientation}))));
        EXPECT_EQ(shown, CleanThumbnail(thumbnail, orientation));
        EXPECT_EQ(shown == thumbnail, orientation == 1);
        if (dcfctl::kCanMakeThumbnails) { // a reader that turns pictures turns this one
            const auto turned = SizeOf(MadeThumbnail(FileOf(card, shown, "KVR_0002.JPG"), 100));
            EXPECT_EQ(turned, (orientation > 4 ? std::pair(24, 32) : std::pair(32, 24))) << orientation;
        }
    }
}

TEST(MadeThumbnail, IsScaledDownAndNeverUp) {
    if (!dcfctl::kCanMakeThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    Card card;
    const std::string large = FileOf(card, clitest::LargePicture());
    EXPECT_EQ(SizeOf(MadeThumbnail(large, 100)), (std::pair(100, 50)));
    EXPECT_EQ(SizeOf(MadeThumbnail(large, 7)), (std::pair(7, 3)));
    EXPECT_EQ(SizeOf(MadeThumbnail(large, 1)), (std::pair(1, 1)));
    EXPECT_EQ(SizeOf(MadeThumbnail(large, 1000)), (std::pair(320, 160)));
    EXPECT_EQ(MadeThumbnail(large, 0), "");
    EXPECT_EQ(MadeThumbnail(large, dcfctl::kMaxThumbnailSide + 1), "");
    EXPECT_EQ(MadeThumbnail(card.Path("100PHOTO", "none"), 100), "");
}

TEST(MadeThumbnail, IsUpright) {
    if (!dcfctl::kCanMakeThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    for (const int orientation : {1, 6}) {
        Card card;
        const std::string path = FileOf(card, Picture(clitest::kRed, ExifSegment({.orientation = orientation})));
        EXPECT_EQ(SizeOf(MadeThumbnail(path, 16)), (orientation == 1 ? std::pair(16, 12) : std::pair(12, 16)));
    }
}

TEST(CleanThumbnail, TakesWholeStreamsAlone) {
    const std::string good = Picture(clitest::kRed);
    EXPECT_EQ(CleanThumbnail(good, 1), good);
    EXPECT_EQ(CleanThumbnail(good + std::string(10, '\0'), 1), good) << "what stands behind the end goes";
    EXPECT_EQ(CleanThumbnail(good, 0), good) << "no orientation is upright";
    EXPECT_EQ(CleanThumbnail(good, 9), good) << "nor is one that there is not";
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_EQ(CleanThumbnail(std::string_view(good).substr(0, length), 1), "") << length;
    }
    EXPECT_EQ(CleanThumbnail(good + std::string(dcfctl::kMaxThumbnailBytes, '\0'), 1), "") << "too long";
}

} // namespace
