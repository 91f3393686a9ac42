// check: hazards of the whole card: its path, the numbers that are left, and what a renumbering would do.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::Of;
using clitest::OnCard;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// The message of the only finding of a code.
std::string MessageOf(const Json& json, const std::string& code) {
    const Words found = Of(json, code);
    EXPECT_EQ(1U, found.size()) << json;
    return found.empty() ? "" : found[0].substr(found[0].find(": ") + 2);
}

TEST(CardHazard, ARootThatTheListTakesForCamera) {
    CheckedCard card;
    const std::string root = card.Root() + "/Camera1";
    fs::create_directories(root + "/DCIM/100PHOTO");
    const clitest::Outcome outcome = OnCard(root, {"check", "--json"});
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(clitest::kFindings, outcome.exit);
    EXPECT_EQ((Words{"root-camera"}), clitest::Codes(json)) << json;
    EXPECT_FALSE(json["has_list"].get<bool>());
}

TEST(CardHazard, ARootWithPhotoInItsPath) {
    CheckedCard card;
    const std::string root = card.Root() + "/PHOTOS";
    fs::create_directories(root + "/DCIM");
    EXPECT_EQ((Words{"root-photo"}), clitest::Codes(Json::parse(OnCard(root, {"check", "--json"}).out)));
}

TEST(CardHazard, ADcimThatIsALink) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    CheckedCard other;
    fs::remove(other.Dcim());
    fs::create_symlink(card.Dcim(), other.Dcim());
    const Json json = other.Check();
    EXPECT_EQ((Words{"dcim-link"}), clitest::Codes(json));
    EXPECT_EQ("1 1 0 0", clitest::Figures(json));
}

TEST(CardHazard, NumbersThatAreNearlyUsedUp) {
    CheckedCard card;
    card.Put("999PHOTO", {"KVR_9990.JPG"}).Put("100PHOTO", {"KVR_0001.JPG"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"numbers-nearly-used-up"}), clitest::Codes(json));
    EXPECT_EQ(9, json["figures"]["numbers_left"]);
    EXPECT_EQ("the newest file has the number 999-9990 and 9 numbers are left; then no file can be added until the "
              "folders are renumbered, which would not end complete here",
              MessageOf(json, "numbers-nearly-used-up"));
}

TEST(CardHazard, NumbersThatAreUsedUp) {
    CheckedCard card;
    card.Put("999PHOTO", {"KVR_9999.JPG"}).Put("998PHOTO", {"KVR_0001.JPG"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"numbers-used-up"}), clitest::Codes(json));
    EXPECT_EQ(0, json["figures"]["numbers_left"]);
    EXPECT_EQ("the newest file has the number 999-9999 and 0 numbers are left; then no file can be added until the "
              "folders are renumbered, which would give 2 folders the numbers from 100 to 101",
              MessageOf(json, "numbers-used-up"));
}

TEST(CardHazard, ALastFolderOfAnotherKindTakesNoNewFiles) {
    CheckedCard card;
    card.Put("999_0501", {"KVR_0001.JPG"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"numbers-used-up"}), clitest::Codes(json));
    EXPECT_EQ(0, json["figures"]["numbers_left"]);
    EXPECT_EQ("the newest file has the number 999-0001 and 0 numbers are left, because '999_0501' is the last folder "
              "and not named as new ones are, such as '999PHOTO'; then no file can be added until the folders are "
              "renumbered, which would give 1 folder the number 100",
              MessageOf(json, "numbers-used-up"));
}

TEST(CardHazard, NumbersOfTheFolderBeforeTheLastRunOn) {
    CheckedCard card;
    card.Put("998PHOTO", {"KVR_9000.JPG"});
    const Json json = card.Check();
    EXPECT_EQ(999, json["figures"]["numbers_left"]);
    EXPECT_EQ(
        "the newest file has the number 998-9000 and 999 numbers are left; then numbers go on in the last folder, "
        "999, though a camera may count the card as full by then",
        MessageOf(json, "numbers-nearly-used-up"));
    CheckedCard enough;
    enough.Put("998PHOTO", {"KVR_8999.JPG"});
    EXPECT_EQ(Words{}, clitest::Codes(enough.Check()));
}

TEST(CardHazard, NumbersLeftAreThoseOfCapacity) {
    for (const char* folder : {"100PHOTO", "997PHOTO", "998PHOTO"}) {
        CheckedCard card;
        card.Put(folder, {"KVR_1234.JPG"});
        const Json capacity = Json::parse(OnCard(card.Root(), {"capacity", "--json"}).out);
        EXPECT_EQ(capacity["numbers_left"], card.Check()["figures"]["numbers_left"]) << folder;
    }
}

TEST(CardHazard, ANextFileThatCannotBeNamed) {
    CheckedCard card;
    card.Put("Camera", {"20240501_123456.JPG"}).PutIntoDcim("100PHOTO");
    const Json json = card.Check();
    EXPECT_NE(std::string::npos, MessageOf(json, "no-next-name").find("100PHOTO' is a file and no folder")) << json;
    CheckedCard good;
    good.Put("Camera", {"20240501_123456.JPG"});
    EXPECT_EQ(Words{}, Of(good.Check(), "no-next-name"));
}

TEST(CardHazard, ACardThatMayNotBeWrittenIsNoMatterOfItsNames) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "runs the tool as another user, which only root can";
    }
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    chmod(card.Root().c_str(), 0755); // and all of it is root's
    clitest::Options nobody;
    nobody.user = 65534;
    EXPECT_EQ(Words{}, clitest::Codes(card.Check({}, nobody)));
}

TEST(CardHazard, AnEmptyHighestFolder) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Make({"105PHOTO"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"empty-highest-folder"}), clitest::Codes(json));
    EXPECT_EQ("numbers go on from 105-0001, although the last folder with files is '100PHOTO'; the numbers between are "
              "not used",
              MessageOf(json, "empty-highest-folder"));
    CheckedCard lower;
    lower.Put("105PHOTO", {"KVR_0001.JPG"}).Make({"100PHOTO"});
    EXPECT_EQ(Words{}, clitest::Codes(lower.Check()));
}

TEST(CardHazard, EntriesThatARenumberingWouldRename) {
    CheckedCard card;
    card.Put("200PHOTO", {"KVR_0001.JPG"}).Make({"HOLIDAYS"}).PutIntoDcim("note.txt");
    const Json json = card.Check();
    EXPECT_EQ((Words{"HOLIDAYS: a renumbering would make it '101IDAYS': renamed, though it is not in the list",
                     "note.txt: a renumbering would make it '100e.txt': renamed, though it is not in the list"}),
              Of(json, "renumber-takes-along"));
}

TEST(CardHazard, ARenumberingThatWouldLoseSomething) {
    CheckedCard card;
    card.PutIntoDcim("HOLIDAYS").PutIntoDcim("100IDAYS");
    const Json json = card.Check();
    EXPECT_EQ((Words{"HOLIDAYS: a renumbering would make it '100IDAYS': would overwrite the file '100IDAYS'"}),
              Of(json, "renumber-harmful"))
        << json;
}

TEST(CardHazard, WhatARenumberingWouldDoIsThePlanOfRenumber) {
    CheckedCard card;
    card.Put("101PHOTO", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    const Json json = card.Check();
    const Json plan = Json::parse(OnCard(card.Root(), {"renumber", "--dry-run", "--json"}).out);
    EXPECT_EQ(plan["renames"], json["renumbering"]["renames"]);
    EXPECT_EQ(plan["complete"], json["renumbering"]["complete"]);
    EXPECT_EQ(3U, Of(json, "renumber-incomplete").size());
    EXPECT_EQ(Words{}, clitest::Codes(json));
}

} // namespace
