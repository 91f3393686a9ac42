// protect, unprotect and toggle: what they change on the card and what they say.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::Words;

namespace {

constexpr mode_t kOpen = 0644;
constexpr mode_t kLocked = 0444;

TEST(Protect, TakesTheOwnersWritePermissionOfAFileAndItsCompanion) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"protect", "100PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("Protected 1 file.\n", outcome.out);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ(kLocked, card.Mode("100PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(kLocked, card.Mode("100PHOTO", "KVR_0001.SRW"));
    EXPECT_EQ(kOpen, card.Mode("100PHOTO", "KVR_0002.JPG"));
}

TEST(Protect, GivesItBack) {
    ChangeCard card;
    card.PutProtected("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"unprotect", "--pos", "1"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("Unprotected 1 file.\n", outcome.out);
    EXPECT_EQ(kOpen, card.Mode("100PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(kOpen, card.Mode("100PHOTO", "KVR_0001.SRW"));
    EXPECT_EQ(kLocked, card.Mode("100PHOTO", "KVR_0002.JPG"));
}

TEST(Protect, TogglesEveryFileForItself) {
    ChangeCard card;
    card.Put("101PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"}).PutProtected("100PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome = card.Run({"toggle", "--all"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("Protected 2 files.\nUnprotected 1 file.\n", outcome.out);
    EXPECT_EQ(kLocked, card.Mode("101PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(kLocked, card.Mode("101PHOTO", "KVR_0002.JPG"));
    EXPECT_EQ(kOpen, card.Mode("100PHOTO", "KVR_0001.JPG"));
}

TEST(Protect, TogglesAPairByItsFile) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).PutProtected("100PHOTO", {"KVR_0001.SRW"});
    EXPECT_EQ(clitest::kSuccess, card.Run({"toggle", "--all"}).exit);
    EXPECT_EQ(kLocked, card.Mode("100PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(kLocked, card.Mode("100PHOTO", "KVR_0001.SRW"));
}

TEST(Protect, CountsWhatWasSoAlready) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).PutProtected("100PHOTO", {"KVR_0002.JPG", "KVR_0003.JPG"});
    const Outcome outcome = card.Run({"protect", "--all"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit);
    EXPECT_EQ("Protected 1 file.\n2 files were so already.\n", outcome.out);
    EXPECT_EQ("There is no file to change.\n", ChangeCard().Run({"protect", "--all"}).out);
}

TEST(Protect, WorksThroughMoreFilesThanAreHandedOverAtOnce) {
    ChangeCard card;
    for (int file = 1; file <= 60; ++file) {
        card.Put(dcftest::DirName(100 + file % 3), {dcftest::DcfName(file)});
    }
    const Outcome outcome = card.Run({"protect", "--all"}, WithShim(card.Environment(), "no-sync"));
    EXPECT_EQ("Protected 60 files.\n", outcome.out) << outcome.Describe();
    for (int file = 1; file <= 60; ++file) {
        EXPECT_EQ(kLocked, card.Mode(dcftest::DirName(100 + file % 3), dcftest::DcfName(file))) << file;
    }
}

TEST(Protect, TellsAProgramWhatItDid) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"}).PutProtected("100PHOTO", {"KVR_0002.JPG"});
    const Json json = card.RunJson({"toggle", "--all"});
    EXPECT_EQ("dcfctl.protect", json["format"]);
    EXPECT_EQ(1, json["version"]);
    EXPECT_EQ("toggle", json["wanted"]);
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_0002.JPG"), card.Path("100PHOTO", "KVR_0001.JPG")}),
              PathsIn(json["changed"]));
    EXPECT_FALSE(json["changed"][0]["protect"].get<bool>());
    EXPECT_TRUE(json["changed"][0]["companion"].is_null());
    EXPECT_TRUE(json["changed"][1]["protect"].get<bool>());
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0001.SRW"), json["changed"][1]["companion"]["path"]);
    EXPECT_TRUE(json["failed"].empty());
    EXPECT_EQ(0, json["already"]);
}

// ---- A card that keeps no protection ----

TEST(Protect, IsNotBelievedUntilTheCardShowsIt) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"protect", "--all"}, WithShim(card.Environment(), "ignore-chmod"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    const std::string error = ErrorOf(outcome);
    EXPECT_EQ(0U, error.find("the change of protection had no effect for 2 files ('" +
                             card.Path("100PHOTO", "KVR_0002.JPG") + "', '" + card.Path("100PHOTO", "KVR_0001.JPG") +
                             "'): the file system ("))
        << error;
    EXPECT_NE(std::string::npos, error.find("mount option fmask, which must be 0022 on FAT and exFAT")) << error;
    EXPECT_EQ("Not protected: " + card.Path("100PHOTO", "KVR_0002.JPG") + "\n" +
                  "Not protected: " + card.Path("100PHOTO", "KVR_0001.JPG") + "\n",
              outcome.out);
}

TEST(Protect, SaysTheSameOfTakingItOffAndOfTheToggle) {
    ChangeCard card;
    card.PutProtected("100PHOTO", {"KVR_0001.JPG"});
    for (const char* verb : {"unprotect", "toggle"}) {
        const Outcome outcome = card.Run({verb, "--all"}, WithShim(card.Environment(), "ignore-chmod"));
        EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
        EXPECT_EQ("Not unprotected: " + card.Path("100PHOTO", "KVR_0001.JPG") + "\n", outcome.out);
    }
}

TEST(Protect, NamesTheOwnerOfAFileThatIsAnotherUsers) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    for (const std::string& path : {card.Root(), card.Dcim(), card.Path("100PHOTO"), card.Beside()}) {
        ASSERT_EQ(0, chmod(path.c_str(), 0777));
    }
    Options options;
    options.user = 65534;
    const Outcome outcome = card.Run({"protect", "--all"}, options);
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("the change of protection had no effect for 1 file ('" + card.Path("100PHOTO", "KVR_0001.JPG") +
                  "'): the file belongs to another user; run as that user, or mount the card with the option uid=65534",
              ErrorOf(outcome));
    EXPECT_EQ(kOpen, card.Mode("100PHOTO", "KVR_0001.JPG"));
}

} // namespace
