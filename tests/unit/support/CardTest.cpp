// The card generator: what a test puts on the card is there, and nothing stays behind.
#include "Card.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

using dcftest::Card;

namespace {

TEST(Card, StartsEmptyWithoutDcim) {
    const Card card;
    EXPECT_TRUE(std::filesystem::is_directory(card.Root()));
    EXPECT_TRUE(std::filesystem::is_empty(card.Root()));
    EXPECT_TRUE(card.DirNames().empty());
    EXPECT_LE(card.Root().size(), 45U) << "paths are cut at 98 characters, so the root must leave room";
}

TEST(Card, HoldsWhatWasAddedWithContentModeAndTime) {
    Card card;
    card.AddDir("101EMPTY").AddFile("100ABCDE", "KVR_0001.JPG", {"bytes", 0444, 1000000000});
    card.AddFiles("100ABCDE", {"KVR_0003.SRW", "KVR_0002.MPO"});
    EXPECT_EQ(card.DirNames(), (std::vector<std::string>{"100ABCDE", "101EMPTY"}));
    EXPECT_EQ(card.Names("100ABCDE"), (std::vector<std::string>{"KVR_0001.JPG", "KVR_0002.MPO", "KVR_0003.SRW"}));
    EXPECT_EQ(card.Mode("100ABCDE", "KVR_0001.JPG"), 0444U);
    EXPECT_EQ(card.Mode("100ABCDE", "KVR_0002.MPO"), 0644U);
    struct stat status {};
    ASSERT_EQ(::stat(card.Path("100ABCDE", "KVR_0001.JPG").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtime, 1000000000);
    std::ifstream file(card.Path("100ABCDE", "KVR_0001.JPG"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "bytes");
}

TEST(Card, TellsWhatExistsAndChangesIt) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    EXPECT_TRUE(card.Exists("100ABCDE"));
    EXPECT_FALSE(card.Exists("101ABCDE"));
    card.SetMode("100ABCDE", "KVR_0001.JPG", 0400);
    EXPECT_EQ(card.Mode("100ABCDE", "KVR_0001.JPG"), 0400U);
    card.Remove("100ABCDE", "KVR_0001.JPG");
    EXPECT_FALSE(card.Exists("100ABCDE", "KVR_0001.JPG"));
    EXPECT_THROW((void)card.Mode("100ABCDE", "KVR_0001.JPG"), std::system_error);
    EXPECT_THROW(card.SetMode("100ABCDE", "KVR_0001.JPG", 0644), std::system_error);
}

TEST(Card, RefusesTheSameFileTwice) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    EXPECT_THROW(card.AddFile("100ABCDE", "KVR_0001.JPG"), std::system_error);
}

TEST(Card, LeavesNothingBehindEvenWithLockedFolders) {
    std::string root;
    {
        Card card;
        root = card.Root();
        card.AddFile("100ABCDE", "KVR_0001.JPG", {"", 0, {}});
        ASSERT_EQ(::chmod(card.Path("100ABCDE").c_str(), 0), 0);
        ASSERT_EQ(::chmod(card.Dcim().c_str(), 0500), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(root));
}

TEST(Card, MakesARootOfAGivenLength) {
    for (const std::size_t length : {40U, 41U, 42U, 43U, 61U, 62U, 63U, 64U, 97U, 98U}) {
        const Card card(length);
        EXPECT_EQ(card.Root().size(), length);
        EXPECT_TRUE(std::filesystem::is_directory(card.Root()));
    }
    EXPECT_THROW(Card(5), std::invalid_argument);
}

TEST(Card, FillsWholeCards) {
    Card card;
    card.Fill(3, 25);
    EXPECT_EQ(card.DirNames(), (std::vector<std::string>{"100ABCDE", "101ABCDE", "102ABCDE"}));
    for (const std::string& dir : card.DirNames()) {
        const std::vector<std::string> names = card.Names(dir);
        ASSERT_EQ(names.size(), 25U);
        EXPECT_EQ(names.front(), "KVR_0001.JPG");
        EXPECT_EQ(names.back(), "KVR_0025.JPG");
    }
}

TEST(Card, ComposesTheNamesOfTheField) {
    EXPECT_EQ(dcftest::DcfName(12), "KVR_0012.JPG");
    EXPECT_EQ(dcftest::DcfName(9999, "SRW", "_KVR"), "_KVR9999.SRW");
    EXPECT_EQ(dcftest::DirName(100), "100ABCDE");
    EXPECT_EQ(dcftest::DirName(999, "PHOTO"), "999PHOTO");
    const std::string camera = dcftest::CameraName(123456);
    EXPECT_EQ(camera.size(), 19U);
    EXPECT_EQ(camera.substr(9, 6), "123456");
    EXPECT_EQ(camera.substr(15), ".JPG");
}

} // namespace
