// Which entries of a folder a listing keeps and in which order they come: the filters and comparators alone, and what
// a listing makes of them.
#include <dirent.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Card.h"
#include "PCSDCFFSIO.h"
#include "Seed.h"

using dcftest::Card;
using dcftest::Seed;

namespace {

dirent Entry(const std::string& name) {
    dirent entry = {};
    name.copy(entry.d_name, sizeof entry.d_name - 1);
    return entry;
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

int CompareDirs(const std::string& a, const std::string& b) {
    const dirent left = Entry(a);
    const dirent right = Entry(b);
    const dirent* pLeft = &left;
    const dirent* pRight = &right;
    return Sign(PCSDCFFSIO::CompareDirEntries(&pLeft, &pRight));
}

int CompareFiles(const std::string& a, const std::string& b) {
    const dirent left = Entry(a);
    const dirent right = Entry(b);
    const dirent* pLeft = &left;
    const dirent* pRight = &right;
    return Sign(PCSDCFFSIO::CompareFileEntries(&pLeft, &pRight));
}

TEST(EntryFilter, LooksAtTheLengthOfAName) {
    for (std::size_t length = 1; length <= 255; ++length) {
        const dirent entry = Entry(std::string(length, 'x'));
        EXPECT_EQ(PCSDCFFSIO::FilterDirEntry(&entry) != 0, length == 8) << length;
        EXPECT_EQ(PCSDCFFSIO::FilterCameraFileEntry(&entry) != 0, length == 19) << length;
        EXPECT_EQ(PCSDCFFSIO::FilterDcfFileEntry(&entry) != 0, length == 12) << length;
    }
}

TEST(EntryFilter, KeepsOneFolderForItsName) {
    const struct {
        const char* name;
        bool kept;
        const char* why;
    } rows[] = {
        {"Camera", true, "the folder that is no DCF directory"},
        {"camera", false, "case-sensitive"},
        {"CAMERA", false, "case-sensitive"},
        {"Camera1", false, "seven characters"},
        {"Camera12", true, "eight characters"},
        {"........", true, "the rule comes later"},
        {".", false, "a dot entry"},
        {"..", false, "a dot entry"},
    };
    for (const auto& row : rows) {
        const dirent entry = Entry(row.name);
        EXPECT_EQ(PCSDCFFSIO::FilterDirEntry(&entry) != 0, row.kept) << row.name << ": " << row.why;
    }
    const dirent camera = Entry("Camera");
    EXPECT_EQ(PCSDCFFSIO::FilterDcfFileEntry(&camera), 0);
    EXPECT_EQ(PCSDCFFSIO::FilterCameraFileEntry(&camera), 0);
}

TEST(EntryFilter, DoesNotLookAtTheKindOfEntry) {
    for (const int kind : {DT_REG, DT_DIR, DT_LNK, DT_FIFO, DT_UNKNOWN}) {
        dirent folder = Entry("100ABCDE");
        dirent file = Entry("KVR_0001.JPG");
        dirent camera = Entry("20240131_123456.JPG");
        folder.d_type = file.d_type = camera.d_type = static_cast<unsigned char>(kind);
        EXPECT_NE(PCSDCFFSIO::FilterDirEntry(&folder), 0);
        EXPECT_NE(PCSDCFFSIO::FilterDcfFileEntry(&file), 0);
        EXPECT_NE(PCSDCFFSIO::FilterCameraFileEntry(&camera), 0);
    }
}

TEST(DirOrder, DescendsAmongEightCharacterNamesAndAscendsElse) {
    const struct {
        const char* first;
        const char* second;
        const char* why;
    } rows[] = {
        {"101ABCDE", "100ABCDE", "the higher number first"},
        {"999ABCDE", "100ABCDE", "the higher number first"},
        {"100ZZZZZ", "100PHOTO", "of one number the later text first"},
        {"100PHOTO", "100ABCDE", "of one number the later text first"},
        {"100abcde", "100ABCDE", "lower case is the later text"},
        {"100\xc3\xa4\xc3\xb6_", "100zzzzz", "bytes are compared unsigned"},
        {"100ABCDE", "Camera", "the folder without a number last"},
        {"999ABCDE", "Camera", "the folder without a number last"},
        {"Camera", "camera01", "an eight-character name that sorts behind it"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CompareDirs(row.first, row.second), -1) << row.first << ", " << row.second << ": " << row.why;
        EXPECT_EQ(CompareDirs(row.second, row.first), 1) << row.first << ", " << row.second << ": " << row.why;
    }
    EXPECT_EQ(CompareDirs("100ABCDE", "100ABCDE"), 0);
    EXPECT_EQ(CompareDirs("Camera", "Camera"), 0);
}

TEST(FileOrder, DescendsByNumberThenAscendsByExtension) {
    const struct {
        const char* first;
        const char* second;
        const char* why;
    } rows[] = {
        {"KVR_0005.JPG", "KVR_0003.JPG", "the higher number first"},
        {"KVR_1000.JPG", "KVR_0999.JPG", "the higher number first"},
        {"AAAA0002.SRW", "ZZZZ0001.AVI", "the number decides, not prefix or extension"},
        {"ZZZZ0002.SRW", "AAAA0001.AVI", "the number decides, not prefix or extension"},
        {"KVR_0007.AVI", "KVR_0007.JPG", "one number: AVI before JPG"},
        {"KVR_0007.JPG", "KVR_0007.MP4", "one number: JPG before MP4"},
        {"KVR_0007.MP4", "KVR_0007.MPO", "one number: MP4 before MPO"},
        {"KVR_0007.MPO", "KVR_0007.SRW", "one number: MPO before SRW"},
        {"ZZZZ0007.JPG", "AAAA0007.SRW", "one number: the prefix does not count"},
        {"KVR_0007XJPG", "KVR_0007.SRW", "the ninth character does not count"},
        {"KVR_0007.SRW", "KVR_0007.jpg", "case counts: lower case sorts behind"},
        {"KVR_000a.JPG", "KVR_0009.JPG", "digits or not, four characters are compared"},
        {"KVR_0007.JPG", "KVR_0007.JP\xff", "bytes are compared unsigned"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CompareFiles(row.first, row.second), -1) << row.first << ", " << row.second << ": " << row.why;
        EXPECT_EQ(CompareFiles(row.second, row.first), 1) << row.first << ", " << row.second << ": " << row.why;
    }
    EXPECT_EQ(CompareFiles("AAAA0007.JPG", "ZZZZ0007.JPG"), 0) << "number and extension agree";
    EXPECT_EQ(CompareFiles("AAAA0007.JPG", "AAAA0007XJPG"), 0) << "number and extension agree";
}

TEST(FileOrder, AscendsByNameWhereOneNameIsNotTwelveCharacters) {
    const struct {
        const char* first;
        const char* second;
        const char* why;
    } rows[] = {
        {"20240131_000001.JPG", "20240131_000002.JPG", "Camera: by name"},
        {"20230131_999999.JPG", "20240131_000001.JPG", "Camera: by name, the whole of it"},
        {"20240131_000001.JPG", "20240131_000001.SRW", "Camera: extension at the end of the name"},
        {"20240131_000001.JPG", "20240131_000001.jpg", "case counts"},
        {"20240131_000001.JPG", "KVR_0001.JPG", "one of twelve characters, one not"},
        {"KVR_0001.JPG", "KVR_0002.JPEG", "one of twelve characters, one not"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CompareFiles(row.first, row.second), -1) << row.first << ", " << row.second << ": " << row.why;
        EXPECT_EQ(CompareFiles(row.second, row.first), 1) << row.first << ", " << row.second << ": " << row.why;
    }
    EXPECT_EQ(CompareFiles("20240131_000001.JPG", "20240131_000001.JPG"), 0);
}

// The listings themselves.

std::vector<std::string> Listed(const std::string& path, bool dirMode) {
    PCSDCFFSIO listing(path.c_str(), dirMode);
    std::vector<std::string> names;
    PCSDCFFSIO::PTFile file;
    while (listing.Read(&file) == 0) {
        names.emplace_back(file.szName);
    }
    return names;
}

TEST(Listing, OfDcimHoldsNumberedFoldersDownwardAndCameraLast) {
    Card card;
    for (const char* name : {"100ABCDE", "Camera", "999PHOTO", "101ABCDE", "MISC", "100PHOTO", "CAMERA", "12345678"}) {
        card.AddDir(name);
    }
    EXPECT_EQ(Listed(card.Dcim(), true),
              (std::vector<std::string>{"999PHOTO", "12345678", "101ABCDE", "100PHOTO", "100ABCDE", "Camera"}));
}

TEST(Listing, OfADirectoryHoldsTwelveCharacterNamesByNumberDownward) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0005.SRW", "KVR_0003.JPG", "KVR_0005.JPG", "20240131_123456.JPG",
                               "README.TXT", "notafile.xyz", "KVR_0004.JPEG"});
    card.AddDir("100ABCDE/KVR_0004.DIR");
    EXPECT_EQ(Listed(card.Path("100ABCDE"), false),
              (std::vector<std::string>{"notafile.xyz", "KVR_0005.JPG", "KVR_0005.SRW", "KVR_0004.DIR", "KVR_0003.JPG",
                                        "KVR_0001.JPG"}));
}

TEST(Listing, OfAPathWithCameraInItHoldsNineteenCharacterNamesUpward) {
    Card card;
    const std::vector<std::string> names = {"20240131_000002.JPG", "20240131_000001.SRW", "20240131_000001.JPG",
                                            "KVR_0001.JPG", "20240131_000003.MP4"};
    const std::vector<std::string> expected = {"20240131_000001.JPG", "20240131_000001.SRW", "20240131_000002.JPG",
                                               "20240131_000003.MP4"};
    for (const char* dir : {"Camera", "100ABCDE/Camera", "xxCamerax", "Camera/100ABCDE"}) {
        card.AddFiles(dir, names);
        EXPECT_EQ(Listed(card.Path(dir), false), expected) << dir;
    }
    card.AddFiles("CAMERA__", names);
    EXPECT_EQ(Listed(card.Path("CAMERA__"), false), std::vector<std::string>{"KVR_0001.JPG"}) << "case-sensitive";
}

TEST(Listing, InFolderModeTakesNoNoticeOfCameraInThePath) {
    Card card;
    card.AddDir("Camera/100ABCDE").AddDir("Camera/101ABCDE").AddFile("Camera", "20240131_000002.JPG");
    EXPECT_EQ(Listed(card.Path("Camera"), true), (std::vector<std::string>{"101ABCDE", "100ABCDE"}));
}

TEST(Listing, OfRandomDirectoriesFollowsTheRule) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    const std::vector<std::string> extensions = {"AVI", "JPG", "MP4", "MPO", "SRW"};
    for (int round = 0; round < 20; ++round) {
        Card card;
        std::vector<std::string> names;
        for (int i = 0; i < 60; ++i) {
            const std::string& extension = extensions[static_cast<std::size_t>(seed.Pick(0, 4))];
            names.push_back(dcftest::DcfName(seed.Pick(0, 40) * seed.Pick(1, 240), extension));
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        std::shuffle(names.begin(), names.end(), seed.Engine());
        card.AddFiles("100ABCDE", names);
        // One prefix, so number and extension tell any two names apart.
        std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
            const int left = std::stoi(a.substr(4, 4));
            const int right = std::stoi(b.substr(4, 4));
            return left != right ? left > right : a.substr(9) < b.substr(9);
        });
        ASSERT_EQ(Listed(card.Path("100ABCDE"), false), names);
    }
}

} // namespace
