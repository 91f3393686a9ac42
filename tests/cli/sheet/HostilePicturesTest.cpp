// Files that are named like pictures and are none, or bad ones: each gets a drawing in the place of its picture, and
// the sheet goes on.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "SheetCard.h"
#include "SheetPage.h"
#include "Tiff.h"

using clitest::OnCard;
using clitest::SheetOf;
using clitest::SheetPage;
using dcftest::Card;
namespace fs = std::filesystem;

namespace {

constexpr char kNoPicture[] = "no picture can be made out";

/// The words in the place of the picture at a position.
std::string Missing(const SheetPage& page, int position) {
    return page.One(SheetPage::File(position) + "//h:div[contains(@class,'none')]/h:span");
}

/// The frame of a JPEG file, which tells its size.
std::string WithSize(std::string jpeg, std::uint32_t height, std::uint32_t width) {
    const std::size_t frame = jpeg.find("\xff\xc0");
    return jpeg.replace(frame + 5, 4, dcfctl::BigEndian16(height) + dcfctl::BigEndian16(width));
}

TEST(HostilePictures, GetADrawingAndTheSheetGoesOn) {
    if (!clitest::kMakesThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    const std::string good = clitest::Picture(clitest::kRed);
    const std::string tiff = dcfctl::TiffHeader();
    struct Row {
        std::string content;
        const char* missing;
        const char* why;
    };
    const Row rows[] = {
        {"", "empty file", "no byte"},
        {"not a picture", kNoPicture, "text"},
        {"\xff\xd8\xff", kNoPicture, "the signature alone"},
        {"\xff\xd8\xff" + std::string(70000, '\x41'), kNoPicture, "a signature and garbage"},
        {good.substr(0, good.find("\xff\xda") + 4), kNoPicture, "cut off before the picture"},
        {WithSize(good, 65500, 65500), kNoPicture, "billions of pixels"},
        {WithSize(good, 0, 0), kNoPicture, "no pixels"},
        {"II*" + std::string(1, '\0') + std::string(4, '\xff'), kNoPicture, "TIFF, its directory out of the file"},
        {tiff + std::string("\1\0\x4a\x01\4\0\1\0\0\0\x08\0\0\0\x08\0\0\0", 18), kNoPicture,
         "TIFF, a directory that follows itself"},
        {tiff + std::string(2, '\xff') + std::string(100, '\xff'), kNoPicture, "TIFF, 65535 entries"},
    };
    Card card;
    int number = 0;
    for (const Row& row : rows) {
        card.AddFile("100PHOTO", dcftest::DcfName(++number), {row.content, 0644, {}});
        card.AddFile("101PHOTO", dcftest::DcfName(number, "SRW"), {row.content, 0644, {}});
    }
    card.AddFile("102PHOTO", "KVR_0001.JPG", {good, 0644, {}});
    const SheetPage page = SheetOf(card.Root());
    EXPECT_FALSE(page.Thumbnail(0).empty()) << "the good one";
    EXPECT_EQ(page.Count("//h:img"), 1U);
    for (int i = 0; i < number; ++i) { // the highest number stands first
        const Row& row = rows[number - 1 - i];
        EXPECT_EQ(Missing(page, 1 + i), row.missing) << row.why;
        EXPECT_EQ(Missing(page, 1 + number + i), row.missing) << row.why;
    }
}

TEST(HostilePictures, ThatAreNoPlainFilesAreNotOpened) {
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG", {clitest::Picture(clitest::kRed), 0644, {}});
    ASSERT_EQ(mkfifo(card.Path("100PHOTO", "KVR_0002.JPG").c_str(), 0644), 0);
    fs::create_symlink("KVR_0001.JPG", card.Path("100PHOTO", "KVR_0003.JPG"));
    fs::create_directory(card.Path("100PHOTO", "KVR_0004.JPG"));
    fs::create_symlink("nowhere", card.Path("100PHOTO", "KVR_0005.JPG"));
    const SheetPage page = SheetOf(card.Root());
    for (int position = 0; position < 4; ++position) {
        EXPECT_EQ(Missing(page, position), "cannot be read") << position;
    }
}

TEST(HostilePictures, ThatNobodyMayReadAreShownAsSuch) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can run as another user";
    }
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG", {clitest::Picture(clitest::kRed), 0600, {}});
    ASSERT_EQ(chmod(card.Root().c_str(), 0755), 0);
    clitest::Options options;
    options.user = 65534;
    const SheetPage page(OnCard(card.Root(), {"sheet", "--out", "-"}, options).out);
    EXPECT_EQ(Missing(page, 0), "cannot be read");
}

TEST(HostilePictures, OfAnySizeTakeNoTime) {
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG", {"\xff\xd8\xff", 0644, {}});
    card.AddFile("100PHOTO", "KVR_0002.SRW", {dcfctl::TiffHeader(), 0644, {}});
    card.AddFile("100PHOTO", "KVR_0003.JPG", {"", 0644, {}});
    for (const char* name : {"KVR_0001.JPG", "KVR_0002.SRW", "KVR_0003.JPG"}) {
        fs::resize_file(card.Path("100PHOTO", name), 1ULL << 40U); // a hole: takes no room
    }
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.Count("//h:img"), 0U);
    EXPECT_EQ(page.Count("//h:div[contains(@class,'none')]"), 3U);
}

TEST(HostilePictures, WithALyingThumbnailAreShownThemselves) {
    if (!clitest::kMakesThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    const std::string good = clitest::Picture(clitest::kRed);
    struct Row {
        std::string thumbnail;
        const char* why;
    };
    const Row rows[] = {
        {"<svg onload=alert(1)>", "no JPEG"},
        {good.substr(0, 60), "cut off"},
        {WithSize(good, 65500, 65500), "billions of pixels"},
        {"\xff\xd8\xff\xe0\xff\xff\xff\xd9", "a segment out of its bounds"},
    };
    for (const Row& row : rows) {
        Card card;
        card.AddFile("100PHOTO", "KVR_0001.JPG",
                     {clitest::Picture(clitest::kGreen, clitest::ExifSegment({.thumbnail = row.thumbnail})), 0644, {}});
        const std::string shown = SheetOf(card.Root()).Thumbnail(0);
        EXPECT_NE(shown, row.thumbnail) << row.why;
        EXPECT_EQ(shown.substr(0, 3), "\xff\xd8\xff") << row.why;
    }
}

} // namespace
