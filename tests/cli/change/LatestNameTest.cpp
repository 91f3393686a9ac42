// latest-name: the path of the newest file, and of a companion for it.
#include <gtest/gtest.h>

#include <filesystem>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Outcome;
using clitest::Words;

namespace {

TEST(LatestName, IsTheFirstFileOfTheList) {
    ChangeCard card;
    card.Put("101PHOTO", {"KVR_0007.JPG", "KVR_0008.MP4"}).Put("100PHOTO", {"KVR_0009.JPG"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"latest-name"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0008.MP4") + "\n", outcome.out);
    EXPECT_EQ(before, card.Before());
}

TEST(LatestName, CanBeThatOfACompanion) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0007.JPG", "KVR_0007.SRW"});
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0007.SRW") + "\n", card.Run({"latest-name", "--type", "SRW"}).out);
    const Json there = card.RunJson({"latest-name", "--type", "SRW"});
    EXPECT_EQ("dcfctl.latest-name", there["format"]);
    EXPECT_EQ("SRW", there["type"]);
    EXPECT_TRUE(there["companion"].get<bool>());
    EXPECT_TRUE(there["exists"].get<bool>());
    const Json missing = card.RunJson({"latest-name", "--type", "mpo"});
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0007.MPO"), missing["path"]);
    EXPECT_FALSE(missing["exists"].get<bool>());
}

TEST(LatestName, NeedsAFile) {
    ChangeCard card;
    card.AddDir("100PHOTO");
    for (const Words& words : {Words{"latest-name"}, Words{"latest-name", "--type", "SRW"}}) {
        const Outcome outcome = card.Run(words);
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ("the card has no file yet, so there is no newest one; 'dcfctl next-name' names the first",
                  ErrorOf(outcome));
    }
}

TEST(LatestName, MakesNothingOnACardWithoutDcim) {
    ChangeCard card;
    std::filesystem::remove(card.Dcim());
    const Words before = card.Before();
    for (const char* verb : {"latest-name", "capacity", "rm", "protect", "renumber"}) {
        Words words = {verb};
        if (std::string(verb) == "rm" || std::string(verb) == "protect") {
            words.emplace_back("--all");
        }
        const Outcome outcome = card.Run(words);
        EXPECT_EQ(clitest::kCardUnreadable, outcome.exit) << outcome.Describe();
        EXPECT_EQ(before, card.Before());
    }
}

TEST(LatestName, TakesTheTypesOfCompanionsAlone) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0007.JPG"});
    const Outcome outcome = card.Run({"latest-name", "--type", "MP4"});
    EXPECT_EQ(clitest::kUsage, outcome.exit);
    EXPECT_EQ("--type: 'MP4' is no type of a companion; use SRW or MPO; see dcfctl --help", ErrorOf(outcome));
}

} // namespace
