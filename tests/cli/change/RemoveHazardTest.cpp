// Cards on which the file list would take another file than the one that was named. Each is made on purpose; rm must
// refuse, say why, and leave every file as it is.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Options;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// Runs rm, which must be refused with this text and change nothing.
void ExpectRefusal(const ChangeCard& card, const Words& targets, const std::string& expected) {
    Words words = {"rm", "--yes"};
    words.insert(words.end(), targets.begin(), targets.end());
    EXPECT_EQ(expected, clitest::RefusalOf(card, words));
}

TEST(RemoveHazard, TwoFoldersOfOneNumber) {
    ChangeCard card;
    card.Put("101ZZZZZ", {"KVR_0001.JPG"}).Put("101AAAAA", {"KVR_0001.JPG"});
    const std::string expected = "lies in one of two folders that share a number, by which the file list finds a "
                                 "folder, so it could mean the other one; rename one of the folders first";
    ExpectRefusal(card, {"101AAAAA/KVR_0001.JPG"}, "'101AAAAA/KVR_0001.JPG' " + expected);
    ExpectRefusal(card, {"--pos", "1"}, "'101AAAAA/KVR_0001.JPG' " + expected);
    ExpectRefusal(card, {"101ZZZZZ/KVR_0001.JPG"}, "'101ZZZZZ/KVR_0001.JPG' " + expected);
    EXPECT_TRUE(card.Holds("101ZZZZZ", "KVR_0001.JPG"));
    EXPECT_TRUE(card.Holds("101AAAAA", "KVR_0001.JPG"));
}

TEST(RemoveHazard, ASharedFolderNumberDoesNotHinderTheOtherFolders) {
    ChangeCard card;
    card.Put("101ZZZZZ", {"KVR_0001.JPG"}).Put("101AAAAA", {"KVR_0002.JPG"});
    card.Put("103PHOTO", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "100PHOTO/KVR_0002.JPG", "103PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ((Words{"100PHOTO", "101AAAAA", "101ZZZZZ"}), card.DirNames());
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("100PHOTO"));
    EXPECT_TRUE(card.Holds("101ZZZZZ", "KVR_0001.JPG"));
    EXPECT_TRUE(card.Holds("101AAAAA", "KVR_0002.JPG"));
}

TEST(RemoveHazard, TwoCameraFilesOfOneNumber) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240502_111111.JPG", "20240503_123456.JPG"});
    ExpectRefusal(card, {"Camera/20240503_123456.JPG"},
                  "'Camera/20240503_123456.JPG' and 'Camera/20240501_123456.JPG' have one number in \"Camera\", by "
                  "which the file list finds a file, so it could take the one for the other; rename one of them first");
    EXPECT_TRUE(card.Holds("Camera", "20240501_123456.JPG"));
    EXPECT_TRUE(card.Holds("Camera", "20240503_123456.JPG"));
    EXPECT_EQ(clitest::kSuccess, card.Run({"rm", "--yes", "Camera/20240502_111111.JPG"}).exit);
}

TEST(RemoveHazard, TwoCameraFilesOfOneNumberOfWhichTheListKnowsOne) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240503_123456.JPG"}); // one behind the other: the second is left out
    ExpectRefusal(card, {"--pos", "0"},
                  "'Camera/20240501_123456.JPG' and 'Camera/20240503_123456.JPG' have one number in \"Camera\", by "
                  "which the file list finds a file, so it could take the one for the other; rename one of them first");
}

TEST(RemoveHazard, ANameInLowerCaseThatTheFileSystemTellsApart) {
    ChangeCard card;
    card.Put("100PHOTO", {"kvr_0001.jpg"});
    ExpectRefusal(card, {"100PHOTO/kvr_0001.jpg"},
                  "'100PHOTO/kvr_0001.jpg' is in the list as 'KVR_0001.JPG', and this file system tells the two names "
                  "apart; give it a name in capitals first");
    EXPECT_TRUE(card.Holds("100PHOTO", "kvr_0001.jpg"));
}

TEST(RemoveHazard, TheSameNameInBothCases) {
    ChangeCard card;
    card.Put("100PHOTO", {"kvr_0001.jpg", "KVR_0001.JPG"});
    ExpectRefusal(card, {"100PHOTO/KVR_0001.JPG"},
                  "'100PHOTO/KVR_0001.JPG' is one of 2 files of one number, and the list knows nothing of "
                  "'100PHOTO/kvr_0001.jpg'; rename that one first");
    EXPECT_TRUE(card.Holds("100PHOTO", "kvr_0001.jpg"));
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(RemoveHazard, ACompanionInLowerCase) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.srw"});
    ExpectRefusal(card, {"100PHOTO/KVR_0001.JPG"},
                  "'100PHOTO/KVR_0001.srw' is in the list as 'KVR_0001.SRW', and this file system tells the two names "
                  "apart; give it a name in capitals first");
}

TEST(RemoveHazard, ACompanionWithAnotherPrefix) {
    ChangeCard card;
    card.Put("100PHOTO", {"ABCD0012.JPG", "EFGH0012.SRW"});
    ExpectRefusal(card, {"100PHOTO/ABCD0012.JPG"},
                  "the companion of '100PHOTO/ABCD0012.JPG' is called 'EFGH0012.SRW', but the file list would act on "
                  "'ABCD0012.SRW'; give both the same first eight characters first");
    EXPECT_TRUE(card.Holds("100PHOTO", "EFGH0012.SRW"));
}

TEST(RemoveHazard, ACompanionInCamera) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240501_123456.SRW"});
    ExpectRefusal(card, {"--pos", "0"},
                  "the list has a companion for 'Camera/20240501_123456.JPG', and in \"Camera\" the name that it makes "
                  "for a companion is never the real one; rename one of the files of that number first");
    EXPECT_TRUE(card.Holds("Camera", "20240501_123456.SRW"));
}

TEST(RemoveHazard, ThreeFilesOfOneNumberOfWhichTheListKnowsTwo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.MPO", "KVR_0001.SRW"});
    ExpectRefusal(card, {"--pos", "0"},
                  "'100PHOTO/KVR_0001.JPG' is one of 3 files of one number, and the list knows nothing of "
                  "'100PHOTO/KVR_0001.MPO'; rename that one first");
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.MPO"));
}

TEST(RemoveHazard, APictureAndAMovieOfOneNumber) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0007.JPG", "KVR_0007.MP4"});
    ExpectRefusal(card, {"--all"},
                  "'100PHOTO/KVR_0007.JPG' is one of 2 files of one number, and the list knows nothing of "
                  "'100PHOTO/KVR_0007.MP4'; rename that one first");
}

TEST(RemoveHazard, ALinkNamedLikeAPicture) {
    ChangeCard card;
    const std::string outside = card.Source("outside.jpg", "not on the card");
    card.Put("100PHOTO", {"KVR_0002.JPG"});
    fs::create_symlink(outside, card.Path("100PHOTO", "KVR_0001.JPG"));
    ExpectRefusal(card, {"--pos", "1"},
                  "'" + card.Path("100PHOTO", "KVR_0001.JPG") +
                      "' is a link and no picture or movie, so it is not touched; move it away first");
    EXPECT_EQ("not on the card", clitest::ReadFile(outside));
}

TEST(RemoveHazard, AFolderNamedLikeAPicture) {
    ChangeCard card;
    card.AddDir("100PHOTO/KVR_0001.JPG"); // an empty folder, which the library's removal would take
    ExpectRefusal(card, {"--all"},
                  "'" + card.Path("100PHOTO", "KVR_0001.JPG") +
                      "' is a folder and no picture or movie, so it is not touched; move it away first");
}

TEST(RemoveHazard, ADeviceNamedLikeAPicture) {
    ChangeCard card;
    card.AddDir("100PHOTO");
    ASSERT_EQ(0, mkfifo(card.Path("100PHOTO", "KVR_0001.JPG").c_str(), 0644));
    ExpectRefusal(card, {"--all"},
                  "'" + card.Path("100PHOTO", "KVR_0001.JPG") +
                      "' is a pipe or socket and no picture or movie, so it is not touched; move it away first");
}

TEST(RemoveHazard, ADcimThatIsALink) {
    ChangeCard card;
    ChangeCard other;
    other.Put("100PHOTO", {"KVR_0001.JPG"});
    fs::remove(card.Dcim());
    fs::create_directory_symlink(other.Dcim(), card.Dcim());
    ExpectRefusal(card, {"--all"},
                  "'" + card.Dcim() +
                      "' is a link and no folder of the card, and nothing outside the card is ever "
                      "changed; name the card on which the folder really is");
    EXPECT_TRUE(other.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(RemoveHazard, AFolderThatIsALink) {
    ChangeCard card;
    ChangeCard other;
    other.Put("100PHOTO", {"KVR_0001.JPG"});
    card.Put("101PHOTO", {"KVR_0001.JPG"});
    fs::create_directory_symlink(other.Path("100PHOTO"), card.Path("100PHOTO"));
    const std::string expected = "'" + card.Path("100PHOTO") +
                                 "' is a link and no folder, and nothing outside the "
                                 "card is ever changed; move it away first";
    ExpectRefusal(card, {"100PHOTO/KVR_0001.JPG"}, expected);
    ExpectRefusal(card, {"101PHOTO/KVR_0001.JPG"}, expected);
    ExpectRefusal(card, {"--all"}, expected);
    EXPECT_TRUE(other.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(RemoveHazard, OneAwkwardFileHoldsBackTheWholeSetAndIsCounted) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "kvr_0002.jpg", "kvr_0003.jpg", "kvr_0004.jpg"});
    ExpectRefusal(card, {"--all"},
                  "'100PHOTO/kvr_0004.jpg' is in the list as 'KVR_0004.JPG', and this file system tells the two names "
                  "apart; give it a name in capitals first (2 more of the files named have such a trouble)");
}

TEST(RemoveHazard, AFolderThatCannotBeReadStays) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("101PHOTO", {"KVR_0001.JPG"});
    for (const std::string& path : {card.Root(), card.Beside()}) {
        ASSERT_EQ(0, chmod(path.c_str(), 0777));
    }
    ASSERT_EQ(0, chmod(card.Dcim().c_str(), 0777));
    ASSERT_EQ(0, chmod(card.Path("100PHOTO").c_str(), 0777));
    ASSERT_EQ(0, chmod(card.Path("101PHOTO").c_str(), 0700));
    Options options;
    options.user = 65534;
    const Outcome outcome = card.Run({"rm", "--yes", "--all"}, options);
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(Words{"101PHOTO"}, card.DirNames());
    EXPECT_TRUE(card.Holds("101PHOTO", "KVR_0001.JPG"));
}

} // namespace
