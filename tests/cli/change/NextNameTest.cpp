// next-name: the name of the next file, what is made for it, and what is stored.
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

std::string TwoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::tm Today() {
    const std::time_t now = std::time(nullptr);
    return *std::localtime(&now);
}

std::string Month() {
    return TwoDigits(Today().tm_mon + 1);
}

std::string Day() {
    return TwoDigits(Today().tm_mday);
}

TEST(NextName, FollowsTheNewestFile) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0041.JPG", "KVR_0042.JPG"});
    const Outcome outcome = card.Run({"next-name"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0043.JPG") + "\n  series value 100-0043 (before: none)\n", outcome.out);
    EXPECT_EQ(10000043, card.Series());
    EXPECT_FALSE(card.Exists("100PHOTO", "KVR_0043.JPG")); // the file is the caller's to write
}

TEST(NextName, SaysWhichFoldersItMade) {
    ChangeCard card;
    fs::remove(card.Dcim());
    const Outcome outcome = card.Run({"next-name"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0001.JPG") + "\n  made " + card.Dcim() + "\n  made " + card.Path("100PHOTO") +
                  "\n  series value 100-0001 (before: none)\n",
              outcome.out);
    EXPECT_EQ(Words{"100PHOTO"}, card.DirNames());
}

TEST(NextName, BeginsANewFolderBehindFile9999) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_9999.JPG"});
    const Json json = card.RunJson({"next-name"});
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0001.JPG"), json["path"]);
    EXPECT_EQ(card.Path("101PHOTO"), json["folder"]);
    EXPECT_EQ(Words{card.Path("101PHOTO")}, PathsIn(json["made"]));
    EXPECT_EQ(10100001, json["series_value"]);
    EXPECT_EQ(0, json["series_before"]);
    EXPECT_FALSE(json["series_mode"].get<bool>());
    EXPECT_FALSE(json["dry_run"].get<bool>());
    EXPECT_EQ("dcfctl.next-name", json["format"]);
}

TEST(NextName, BeginsANewFolderWhereTheNewestHasAnotherKindOfName) {
    ChangeCard card;
    card.Put("105_0101", {"01010042.JPG"});
    EXPECT_EQ(card.Path("106PHOTO", "KVR_0001.JPG"), card.RunJson({"next-name"})["path"]);
}

TEST(NextName, TakesTypePrefixAndColour) {
    const std::vector<std::pair<Words, std::string>> rows = {
        {{}, "KVR_0001.JPG"},
        {{"--type", "MP4"}, "KVR_0001.MP4"},
        {{"--type", "srw"}, "KVR_0001.SRW"},
        {{"--type", "AVI", "--prefix", "AB_9"}, "AB_90001.AVI"},
        {{"--colour", "optional"}, "_KVR0001.JPG"},
        {{"--color", "optional", "--prefix", "OWN1"}, "OWN10001.JPG"},
        {{"--date-names"}, Month() + Day() + "0001.JPG"},
        {{"--date-names", "--colour", "optional", "--3d", "--type", "MP4"}, Month() + Day() + "0001.MP4"},
    };
    for (const auto& [options, expected] : rows) {
        ChangeCard card;
        Words words = {"next-name"};
        words.insert(words.end(), options.begin(), options.end());
        EXPECT_EQ(card.Path("100PHOTO", expected), card.RunJson(words)["path"]);
    }
}

TEST(NextName, WritesTheMonthAsOneCharacterInTheOptionalColourMode) {
    ChangeCard card;
    const std::string month = Month();
    const std::string one = month[0] == '0' ? month.substr(1) : std::string(1, static_cast<char>('A' + month[1] - '0'));
    const Json json = card.RunJson({"next-name", "--date-names", "--colour", "optional"});
    EXPECT_EQ(card.Path("100PHOTO", "_" + one + Day() + "0001.JPG"), json["path"]);
}

TEST(NextName, NamesFoldersAfterTheDate) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Json json = card.RunJson({"next-name", "--date-folders"});
    EXPECT_EQ(card.Path("101_" + Month() + Day(), "KVR_0001.JPG"), json["path"]);
}

TEST(NextName, ForetellsWithDryRunAndChangesNothing) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_9999.JPG"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"next-name", "--dry-run"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0001.JPG") + "\n  would make " + card.Path("101PHOTO") +
                  "\n  series value would be 101-0001 (before: none)\n",
              outcome.out);
    EXPECT_EQ(before, card.Before());

    ChangeCard empty;
    fs::remove(empty.Dcim());
    const Words nothing = empty.Before();
    const Json json = empty.RunJson({"next-name", "--dry-run"});
    EXPECT_EQ(empty.Path("100PHOTO", "KVR_0001.JPG"), json["path"]);
    EXPECT_EQ((Words{empty.Dcim(), empty.Path("100PHOTO")}), PathsIn(json["made"]));
    EXPECT_EQ(nothing, empty.Before());
}

// ---- Refusals: no number is lost ----

void ExpectRefusal(const ChangeCard& card, const Words& options, const std::string& expected, int code) {
    for (const bool dryRun : {false, true}) {
        Words words = {"next-name"};
        words.insert(words.end(), options.begin(), options.end());
        if (dryRun) {
            words.emplace_back("--dry-run");
        }
        EXPECT_EQ(expected, clitest::RefusalOf(card, words, code));
    }
}

TEST(NextName, RefusesEveryPrefixThatIsNotFourCharactersOfTheSet) {
    ChangeCard card;
    for (const char* prefix : {"abc", "ABC", "ABCDE", "ABCDEFGH", "abcd", "AB-D", "AB/D", "A B_", "ÄB_", "../A"}) {
        ExpectRefusal(card, {"--prefix", prefix},
                      "--prefix: '" + std::string(prefix) +
                          "' is no prefix for file names; it is exactly four characters of A to Z (capitals), 0 to 9 "
                          "and _; see dcfctl --help",
                      clitest::kUsage);
    }
}

TEST(NextName, RefusesWhenTheNumbersAreUsedUp) {
    ChangeCard card;
    card.Put("999PHOTO", {"KVR_9999.JPG"});
    ExpectRefusal(card, {},
                  "there is no number left for a new file, the newest one being 999-9999; 'dcfctl renumber' frees "
                  "numbers, or take another card",
                  clitest::kRefused);
}

TEST(NextName, RefusesWhenTheLastFolderHasAnotherKindOfName) {
    ChangeCard card;
    card.Put("999_0101", {"01010001.JPG"});
    ExpectRefusal(card, {},
                  "the last folder, 999, is in use with another kind of name than '999PHOTO'; name folders as it is "
                  "named (with or without --date-folders), or 'dcfctl renumber'",
                  clitest::kRefused);
}

TEST(NextName, RefusesAFolderNameThatSomethingElseHas) {
    ChangeCard card;
    const std::string outside = card.Beside() + "/outside";
    fs::create_directory(outside);
    card.Put("100PHOTO", {"KVR_9999.JPG"});
    fs::create_directory_symlink(outside, card.Path("101PHOTO"));
    ExpectRefusal(card, {},
                  "'" + card.Path("101PHOTO") +
                      "' is a link and no folder, and nothing outside the card is ever changed; move it away first",
                  clitest::kRefused);
    EXPECT_TRUE(fs::is_empty(outside));
}

TEST(NextName, RefusesADcimThatIsALink) {
    ChangeCard card;
    const std::string outside = card.Beside() + "/outside";
    fs::create_directory(outside);
    fs::remove(card.Dcim());
    fs::create_directory_symlink(outside, card.Dcim());
    ExpectRefusal(card, {},
                  "'" + card.Dcim() +
                      "' is a link and no folder of the card, and nothing outside the card is ever "
                      "changed; name the card on which the folder really is",
                  clitest::kRefused);
    EXPECT_TRUE(fs::is_empty(outside));
}

TEST(NextName, MakesNoDcimWhereTheRightOneIsNear) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::string source = card.Source("a.jpg", "a");
    const auto expectRefusal = [&](const std::string& root, const std::string& cure) {
        const Words before = card.Before();
        for (const Words& words : {Words{"next-name"}, Words{"next-name", "--dry-run"}, Words{"add", source}}) {
            const Outcome outcome = clitest::OnCard(root, words, card.Environment());
            EXPECT_EQ(clitest::kCardUnreadable, outcome.exit) << outcome.Describe();
            EXPECT_EQ("there is no folder 'DCIM' on the card at '" + root + "'; " + cure, ErrorOf(outcome));
        }
        EXPECT_EQ(before, card.Before());
    };
    expectRefusal(card.Dcim(), "name the folder above it with --card");
    fs::rename(card.Dcim(), card.Root() + "/dcim");
    expectRefusal(card.Root(), "there is a 'dcim' in small letters: rename it to DCIM");
}

TEST(NextName, IsNeverInCameraWhateverStandsBesideIt) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG"});
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0001.JPG"), card.RunJson({"next-name", "--dry-run"})["path"]);
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    for (const char* other : {"Zebra001", "aaaaaaaa", "Camera00", "AAAAAAAA", "099PHOTO", "0990ABCD"}) {
        card.AddDir(other);
        EXPECT_EQ(card.Path("100PHOTO", "KVR_0002.JPG"), card.RunJson({"next-name", "--dry-run"})["path"]) << other;
    }
}

TEST(NextName, RefusesANewFolderThatWouldShareItsNumber) {
    ChangeCard card;
    card.AddDir("100ZZZZZ").AddDir("101ABCDE");
    ExpectRefusal(card, {},
                  "the new file would need the new folder '" + card.Dcim() +
                      "/101PHOTO', which would share its number with '101ABCDE'; give that one another number first",
                  clitest::kRefused);
    EXPECT_EQ((Words{"100ZZZZZ", "101ABCDE"}), card.DirNames());
}

TEST(NextName, RefusesANumberThatAFileOutsideTheListHas) {
    ChangeCard card;
    // Alone in its folder, a file with number 0 is left out of the list; its folder counts as empty. The series value
    // then leads into that folder, and to the name of a movie that was left out as well.
    card.Put("100PHOTO", {"KVR_0000.JPG"}).Put("101PHOTO", {"KVR_0001.JPG"});
    card.AddDir("101PHOTO/KVR_0002.txt");
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0002.JPG"), card.RunJson({"next-name", "--dry-run"})["path"]);
    fs::create_symlink("/nowhere", card.Path("101PHOTO", "KVR_0002.jpg"));
    const Json json = card.RunJson({"next-name", "--dry-run"});
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0003.JPG"), json["path"]); // the dangling link is in the list
}

TEST(NextName, RefusesAFolderThatSharesItsNumber) {
    ChangeCard card;
    card.Put("100ZZZZZ", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG"});
    ExpectRefusal(card, {},
                  "the new file would go into '" + card.Path("100ZZZZZ") +
                      "', which shares its number with another folder; rename one of them first",
                  clitest::kRefused);
}

TEST(NextName, TellsWhenTheFolderCouldNotBeMade) {
    ChangeCard card;
    const Outcome outcome = card.Run({"next-name"}, WithShim(card.Environment(), "no-folders"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("the folder '" + card.Path("100PHOTO") +
                  "' could not be made, and the number 100-0001 is used up; check that the card is not full or damaged",
              ErrorOf(outcome));
}

TEST(NextName, TellsWhenTheSeriesValueCouldNotBeStored) {
    ChangeCard card;
    fs::create_directory(card.Store()); // a folder where the store should be
    const Outcome outcome = card.Run({"next-name"});
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_NE(std::string::npos, ErrorOf(outcome).find("the series value could not be read")) << outcome.Describe();
    EXPECT_EQ(0U, outcome.out.find(card.Path("100PHOTO", "KVR_0001.JPG") + "\n")) << outcome.Describe();
}

} // namespace
