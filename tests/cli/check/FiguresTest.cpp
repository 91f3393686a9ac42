// check: the figures close, on awkward cards too, and nothing on the card changes.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

TEST(Figures, OfAnEmptyCardAreZero) {
    CheckedCard card;
    const Json json = card.Check();
    EXPECT_EQ("0 0 0 0", clitest::Figures(json));
    EXPECT_EQ(0, json["figures"]["folders"]);
    EXPECT_EQ(20000, json["figures"]["numbers_left"]);
}

TEST(Figures, CountAFolderThatIsNotListedAsOneEntry) {
    CheckedCard card;
    card.Put("MISC", {"a.txt", "b.txt", "c.txt"}).Put("100PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ("2 1 0 1", clitest::Figures(card.Check()));
    EXPECT_EQ(1, card.Check()["figures"]["folders"]);
}

TEST(Figures, CloseWhereACompanionIsItsOwnFile) {
    CheckedCard card; // the name that the list makes for the companion is the file's own
    card.Put("100PHOTO", {"ABCD0001.MPO", "EFGH0001.MPO"});
    EXPECT_EQ("2 1 0 1", clitest::Figures(card.Check()));
}

TEST(Figures, CloseWhereACompanionsNameInCapitalsIsThatOfItsFile) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.MPO", "kvr_0001.MPO"});
    EXPECT_EQ("2 1 0 1", clitest::Figures(card.Check()));
}

TEST(Figures, CountTheEntryToWhichTheListsPathLeads) {
    CheckedCard card; // the one in small letters is read last, and gets the name of the one that was passed over
    card.Put("Camera", {"IMG-20240123456.JPG", "IMG-20240123456.SRW", "IMG-20240123457.JPG", "img-20240123456.srw"});
    const Json json = card.Check();
    EXPECT_EQ("4 3 0 1", clitest::Figures(json));
    EXPECT_EQ((Words{"Camera/img-20240123456.srw: the list has names in capitals, and in capitals this is "
                     "'IMG-20240123456.SRW', which is listed instead"}),
              clitest::Of(json, "second-of-number"));
    EXPECT_EQ(Words{}, clitest::Of(json, "camera-companion"));
}

TEST(Figures, CloseWhereACompanionsNameLeadsToAnotherKindOfName) {
    CheckedCard card; // in "Camera" the name made for a companion can be one that the list does not take
    card.Put("Camera", {"20240501_123456.JPG", "20240501_123456.SRW", "20240501_SRW"});
    const Json json = card.Check();
    EXPECT_EQ("3 1 1 1", clitest::Figures(json));
}

TEST(Figures, CloseWhereNamesDifferByTheirCaseAlone) {
    CheckedCard card;
    card.Put("100PHOTO", {"ABCD0001.JPG", "abcd0001.JPG", "abcd0001.jpg", "ABCD0001.SRW", "abcd0001.SRW"});
    const Json json = card.Check();
    EXPECT_EQ("5 1 1 3", clitest::Figures(json));
    EXPECT_EQ(Words{}, clitest::Of(json, "lower-case-name"));
}

TEST(Figures, StandInTheFirstLineOfTheText) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG", "notes.txt"});
    EXPECT_EQ("4 entries in 1 folder = 2 listed + 1 companion + 1 left out",
              clitest::Lines(OnCard(card.Root(), {"check"}).out).at(0));
}

TEST(Check, TellsOfACardThatIsNotThereAsEveryVerbDoes) {
    CheckedCard card;
    fs::remove(card.Dcim());
    for (const Words& words : {Words{"check"}, {"explain", "x"}}) {
        const Outcome missing = OnCard(card.Root() + "/none", words);
        EXPECT_EQ(clitest::kCardUnreadable, missing.exit) << missing.Describe();
        EXPECT_EQ("", missing.out);
        const Outcome empty = OnCard(card.Root(), words);
        EXPECT_EQ(clitest::kCardUnreadable, empty.exit) << empty.Describe();
        EXPECT_NE(std::string::npos, empty.err.find("there is no folder 'DCIM'")) << empty.err;
    }
    EXPECT_FALSE(fs::exists(card.Dcim())); // it is not made
}

/// Runs a verb on a card that changes between the list and the look at its entries.
Outcome WhileItChanges(const CheckedCard& card, const std::string& change, const Words& words) {
    clitest::Options options;
    options.environment["LD_PRELOAD"] = CLI_CHECK_SHIM;
    options.environment["CLI_CHECK_SHIM_CHANGE"] = change;
    const char* sanitizer = std::getenv("ASAN_OPTIONS");
    options.environment["ASAN_OPTIONS"] =
        (sanitizer != nullptr ? std::string(sanitizer) + ":" : std::string()) + "verify_asan_link_order=0";
    return OnCard(card.Root(), words, options);
}

TEST(Check, IsAnErrorWhereTheEntriesAreNotThoseOfTheList) {
    for (const char* change : {"add", "remove"}) {
        for (const Words& words : {Words{"check", "--json"}, {"explain", "--json", "KVR_0001.JPG"}}) {
            CheckedCard card;
            card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG"});
            const Outcome outcome = WhileItChanges(card, change, words);
            EXPECT_EQ(clitest::kIncomplete, outcome.exit) << change << outcome.Describe();
            EXPECT_EQ("check-disagrees", Json::parse(outcome.out)["error"]["cause"]) << change;
        }
    }
}

TEST(Check, IsAnErrorWhereTheCardIsPulledOut) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome = WhileItChanges(card, "exchange", {"check"});
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_NE(std::string::npos, outcome.err.find("is no longer what it was")) << outcome.err;
}

timespec AccessTime(const std::string& path) {
    struct stat info = {};
    EXPECT_EQ(0, lstat(path.c_str(), &info)) << path;
    return info.st_atim;
}

TEST(Check, ChangesNothingNotEvenTheTimeOfAccess) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "kvr_0002.jpg", "notes.txt"}).Put("Camera", {"20240501_123456.JPG"});
    const std::string file = card.Path("100PHOTO", "KVR_0001.JPG");
    const timespec old[2] = {{1000000000, 0}, {1714557600, 0}}; // so old that a look would be noted
    ASSERT_EQ(0, utimensat(AT_FDCWD, file.c_str(), old, 0));
    const Words before = clitest::Snapshot(card.Root());
    for (const Words& words : {Words{"check"}, {"check", "--json"}, {"explain", "KVR_0001.JPG"}, {"explain", "new"}}) {
        EXPECT_EQ(0, OnCard(card.Root(), words).signal);
        EXPECT_EQ(before, clitest::Snapshot(card.Root())) << words[0];
    }
    EXPECT_EQ(1000000000, AccessTime(file).tv_sec);
}

} // namespace
