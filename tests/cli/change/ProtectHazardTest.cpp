// Protection on cards where the file list would take another file than the one that was named, or reach outside the
// card: refused, and nothing changes.
#include <gtest/gtest.h>

#include <filesystem>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

void ExpectRefusal(const ChangeCard& card, const Words& targets, const std::string& beginning) {
    for (const char* verb : {"protect", "unprotect", "toggle"}) {
        Words words = {verb};
        words.insert(words.end(), targets.begin(), targets.end());
        const std::string error = clitest::RefusalOf(card, words);
        EXPECT_EQ(0U, error.find(beginning)) << error;
    }
}

TEST(ProtectHazard, TwoFoldersOfOneNumber) {
    ChangeCard card;
    // Asked through the list, the protection of the first folder's file is read from the second folder.
    card.PutProtected("100ZZZZZ", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG"});
    ExpectRefusal(card, {"--pos", "0"}, "'100ZZZZZ/KVR_0001.JPG' lies in one of two folders that share a number");
    ExpectRefusal(card, {"--all"}, "'100ZZZZZ/KVR_0001.JPG' lies in one of two folders that share a number");
}

TEST(ProtectHazard, TwoCameraFilesOfOneNumber) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240502_111111.JPG"}).PutProtected("Camera", {"20240503_123456.JPG"});
    ExpectRefusal(card, {"Camera/20240503_123456.JPG"},
                  "'Camera/20240503_123456.JPG' and 'Camera/20240501_123456.JPG'");
}

TEST(ProtectHazard, ACompanionInCamera) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240501_123456.MPO"});
    ExpectRefusal(card, {"--all"}, "the list has a companion for 'Camera/20240501_123456.JPG'");
}

TEST(ProtectHazard, LowerCaseAndForeignCompanions) {
    ChangeCard card;
    card.Put("100PHOTO", {"kvr_0001.jpg", "ABCD0002.JPG", "EFGH0002.SRW"});
    ExpectRefusal(card, {"100PHOTO/KVR_0001.JPG"}, "'100PHOTO/kvr_0001.jpg' is in the list as 'KVR_0001.JPG'");
    ExpectRefusal(card, {"100PHOTO/ABCD0002.JPG"}, "the companion of '100PHOTO/ABCD0002.JPG' is called 'EFGH0002.SRW'");
}

TEST(ProtectHazard, ThreeFilesOfOneNumber) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.MPO", "KVR_0001.SRW"});
    ExpectRefusal(card, {"--all"}, "'100PHOTO/KVR_0001.JPG' is one of 3 files of one number");
}

TEST(ProtectHazard, ALinkWouldReachOutsideTheCard) {
    ChangeCard card;
    const std::string outside = card.Source("outside.jpg", "not on the card");
    card.AddDir("100PHOTO");
    fs::create_symlink(outside, card.Path("100PHOTO", "KVR_0001.JPG"));
    ExpectRefusal(card, {"--all"}, "'" + card.Path("100PHOTO", "KVR_0001.JPG") + "' is a link and no picture or movie");
    EXPECT_EQ(fs::perms::owner_write, fs::status(outside).permissions() & fs::perms::owner_write);
}

TEST(ProtectHazard, ASecondNameOutsideTheCardWouldChangeToo) {
    for (const char* linked : {"KVR_0001.JPG", "KVR_0001.SRW"}) {
        ChangeCard card;
        card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"});
        fs::create_hard_link(card.Path("100PHOTO", linked), card.Root() + "/elsewhere");
        const Words before = card.Before();
        const Outcome outcome = card.Run({"protect", "--all"});
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ("'" + card.Path("100PHOTO", linked) +
                      "' has a second name elsewhere (a hard link), whose protection would change as well; put a copy "
                      "in its place first",
                  ErrorOf(outcome));
        EXPECT_EQ(before, card.Before());
    }
}

TEST(ProtectHazard, AFolderThatIsALink) {
    ChangeCard card;
    ChangeCard other;
    other.Put("100PHOTO", {"KVR_0001.JPG"});
    fs::create_directory_symlink(other.Path("100PHOTO"), card.Path("100PHOTO"));
    ExpectRefusal(card, {"--all"}, "'" + card.Path("100PHOTO") + "' is a link and no folder");
    EXPECT_EQ(0644U, other.Mode("100PHOTO", "KVR_0001.JPG"));
}

TEST(ProtectHazard, ACompanionAloneIsNotChanged) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"});
    ExpectRefusal(card, {"100PHOTO/KVR_0001.SRW"}, "'100PHOTO/KVR_0001.SRW' is the companion of 'KVR_0001.JPG'");
}

} // namespace
