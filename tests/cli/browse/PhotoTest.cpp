// What a picture tells of itself beside the list, and its thumbnail in the place of a preview.
#include <gtest/gtest.h>

#include "ExifBuilder.h"
#include "Playback.h"
#include "SheetCard.h"

using clitest::kArrowDown;
using clitest::kGreen;
using clitest::kRed;
using clitest::Playback;
using dcftest::ByteOrder;
using dcftest::Card;
using dcftest::ExifBuilder;
using dcftest::ExifDirectory;

namespace {

void Add(Card& card, const std::string& folder, const std::string& name, const std::string& content) {
    card.AddFile(folder, name, {content, 0644, std::nullopt});
}

void AddExif(Card& card, const std::string& folder, const std::string& name, const ExifBuilder& exif) {
    Add(card, folder, name, dcftest::JpegWithExif(exif.Build()));
}

// ---- Beside the list

TEST(APhoto, TellsOfItselfBesideTheList) {
    if (!clitest::kHasExif) {
        GTEST_SKIP() << "this build has no EXIF collector";
    }
    Card card;
    AddExif(card, "100ABCDE", "KVR_0002.JPG", dcftest::OrdinaryExif(ByteOrder::kBig));
    Add(card, "100ABCDE", "KVR_0001.JPG", "");
    Playback playback(card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    for (const char* line :
         {"Taken      2024:05:01 10:20:30", "Picture    5472x3648", "Upright    turn right", "Exposure   1/125 s f/2.8",
          "ISO        400", "Lens       18.5 mm, flash", "Place      known"}) {
        EXPECT_TRUE(playback.Shows(line)) << line << "\n" << playback.Text();
    }
    playback.Type(kArrowDown);
    ASSERT_TRUE(playback.IsAt(1));
    EXPECT_TRUE(playback.Hides("Taken ")) << "the empty file has none\n" << playback.Text();
    EXPECT_TRUE(playback.Hides("Lens ")) << playback.Text();
    playback.Type(clitest::kHome);
    EXPECT_TRUE(playback.Shows("Taken      2024:05:01 10:20:30")) << playback.Text();
}

TEST(APhoto, LeavesOutWhatIsUnknown) {
    if (!clitest::kHasExif) {
        GTEST_SKIP() << "this build has no EXIF collector";
    }
    Card card;
    AddExif(card, "100ABCDE", "KVR_0001.JPG",
            ExifBuilder(ByteOrder::kLittle).Short(ExifDirectory::kExif, 0x8827, {400}));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Shows("ISO        400")) << playback.Text();
    for (const char* label : {"Taken ", "Upright ", "Exposure ", "Lens ", "Place "}) {
        EXPECT_EQ(playback.Text().find(label), std::string::npos) << playback.Text();
    }
}

TEST(APhoto, TellsNothingThatWouldChangeTheScreen) {
    if (!clitest::kHasExif) {
        GTEST_SKIP() << "this build has no EXIF collector";
    }
    Card card;
    ExifBuilder exif = dcftest::OrdinaryExif(ByteOrder::kBig);
    exif.Text(ExifDirectory::kExif, 0x9003, std::string("\x1b[2J:05:01 10:20:30\0", 20));
    AddExif(card, "100ABCDE", "KVR_0001.JPG", exif);
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Shows("ISO        400")) << playback.Text();
    EXPECT_TRUE(playback.Shows("q leave")) << "nothing was wiped away\n" << playback.Text();
    EXPECT_EQ(playback.Device().Screen().find("\x1b[2J:05"), std::string::npos);
}

/// The list keeps metadata by the number, so that of the second file would be shown as the first one's ever after.
TEST(APhoto, OfANumberThatTheListFindsElsewhereTellsNothing) {
    if (!clitest::kHasExif) {
        GTEST_SKIP() << "this build has no EXIF collector";
    }
    Card card;
    const auto iso = [](std::uint32_t value) {
        return ExifBuilder(ByteOrder::kBig).Short(ExifDirectory::kExif, 0x8827, {value});
    };
    AddExif(card, "Camera", "20240501_101010.JPG", iso(111));
    AddExif(card, "Camera", "20240502_111111.JPG", iso(222));
    AddExif(card, "Camera", "20240503_101010.JPG", iso(333));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Shows("ISO        111")) << playback.Text();
    EXPECT_TRUE(playback.Answers("1\r", "ISO        222")) << playback.Text();
    EXPECT_TRUE(playback.Answers("2\r", "the cursor cannot be placed on 'Camera/20240503_101010.JPG'"))
        << playback.Text();
    playback.Type("c"); // draws all rows anew
    EXPECT_TRUE(playback.Answers("0\r", "ISO        111")) << playback.Text();
}

TEST(APhoto, TellsNothingInABuildWithoutTheCollector) {
    if (clitest::kHasExif) {
        GTEST_SKIP() << "this build has the EXIF collector";
    }
    Card card;
    AddExif(card, "100ABCDE", "KVR_0001.JPG", dcftest::OrdinaryExif(ByteOrder::kBig));
    Playback playback(card.Root());
    ASSERT_TRUE(playback.Shows("Time (UTC)"));
    EXPECT_EQ(playback.Text().find("Taken "), std::string::npos) << playback.Text();
}

// ---- Thumbnails

#if defined(DCFCTL_HAVE_PREVIEW) && defined(DCFCTL_HAVE_EXIF)
const std::string& RedThumbnail() {
    static const std::string thumbnail = clitest::Picture(kRed);
    return thumbnail;
}

TEST(APreview, IsTheThumbnailThatThePictureBrings) {
    Card card;
    const std::string with = clitest::Picture(kGreen, clitest::ExifSegment({.thumbnail = RedThumbnail()}));
    Add(card, "100ABCDE", "KVR_0001.JPG", clitest::Picture(kGreen));
    Add(card, "100ABCDE", "KVR_0002.JPG", with);
    Add(card, "100ABCDE", "KVR_0003.MPO", with);
    Playback playback(card.Root());
    for (const int position : {0, 1}) {
        ASSERT_TRUE(playback.IsAt(position));
        EXPECT_TRUE(playback.Comes([&] { return playback.HasTint(kRed); })) << position << playback.Text();
        EXPECT_FALSE(playback.HasTint(kGreen)) << position << playback.Text();
        playback.Type(kArrowDown);
    }
    ASSERT_TRUE(playback.IsAt(2));
    EXPECT_TRUE(playback.Comes([&] { return playback.HasTint(kGreen); })) << "brings none\n" << playback.Text();
    EXPECT_FALSE(playback.HasTint(kRed)) << playback.Text();
}

TEST(APreview, OfARawFileIsItsThumbnail) {
    Card card;
    Add(card, "100ABCDE", "KVR_0001.SRW", clitest::ExifTiff({.thumbnail = RedThumbnail()}));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Comes([&] { return playback.HasTint(kRed); })) << playback.Text();
}

#ifdef DCFCTL_HAVE_THUMBNAILS
TEST(APreview, OfARawFileWithoutAThumbnailIsThePictureThatItBrings) {
    Card card;
    std::string comments; // a thumbnail is never that long
    for (int i = 0; i < 3; ++i) {
        comments += dcftest::JpegSegment(0xfe, std::string(60000, ' '));
    }
    Add(card, "100ABCDE", "KVR_0001.SRW", clitest::ExifTiff({.thumbnail = clitest::Picture(kRed, comments)}));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Comes([&] { return playback.HasTint(kRed); })) << playback.Text();
}
#endif

TEST(APreview, StandsUpright) {
    constexpr int kWide = 18; // a lying picture has more columns than that, a standing one fewer
    Card card;
    Add(card, "100ABCDE", "KVR_0002.JPG", clitest::Picture(kRed, clitest::ExifSegment({.orientation = 1})));
    Add(card, "100ABCDE", "KVR_0001.JPG", clitest::Picture(kRed, clitest::ExifSegment({.orientation = 6})));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Comes([&] { return playback.TintWidth(kRed) > kWide; })) << playback.Text();
    playback.Type(kArrowDown);
    ASSERT_TRUE(playback.IsAt(1));
    const auto standing = [&] { return playback.TintWidth(kRed) > kWide / 2 && playback.TintWidth(kRed) < kWide; };
    EXPECT_TRUE(playback.Comes(standing)) << playback.TintWidth(kRed) << playback.Text();
}

TEST(APreview, OfAThumbnailThatIsNoneIsThePictureItself) {
    Card card;
    Add(card, "100ABCDE", "KVR_0001.JPG", clitest::Picture(kGreen, clitest::ExifSegment({.thumbnail = "no picture"})));
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Comes([&] { return playback.HasTint(kGreen); })) << playback.Text();
}
#endif

} // namespace
