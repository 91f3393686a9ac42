// series: the stored value by itself.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Dcfctl;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

TEST(Series, IsNoneBeforeAnythingWasStored) {
    const ChangeCard card;
    for (const Words& words : {Words{"series"}, Words{"series", "show"}}) {
        const Outcome outcome = Dcfctl(words, card.Environment()); // needs no card
        EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
        EXPECT_EQ("none (0)\n", outcome.out);
    }
    EXPECT_FALSE(fs::exists(card.Store())); // reading makes no store
}

TEST(Series, IsSetAndResetAndSaysWhatItWas) {
    const ChangeCard card;
    const std::vector<std::pair<Words, std::string>> road = {
        {{"set", "123-0045"}, "The series value is now 123-0045 (12300045); before: none (0).\n"},
        {{"set", "10000000"}, "The series value is now 100-0000 (10000000); before: 123-0045 (12300045).\n"},
        {{"set", "999-9999"}, "The series value is now 999-9999 (99909999); before: 100-0000 (10000000).\n"},
        {{"reset"}, "The series value is now none (0); before: 999-9999 (99909999).\n"},
        {{"set", "0"}, "The series value is now none (0); before: none (0).\n"},
    };
    for (const auto& [action, expected] : road) {
        Words words = {"series"};
        words.insert(words.end(), action.begin(), action.end());
        const Outcome outcome = Dcfctl(words, card.Environment());
        EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
        EXPECT_EQ(expected, outcome.out);
    }
}

TEST(Series, TellsAProgramInNumbers) {
    const ChangeCard card;
    card.SetSeries(12300045);
    const Json shown = card.RunJson({"series"});
    EXPECT_EQ("dcfctl.series", shown["format"]);
    EXPECT_EQ(12300045, shown["value"]);
    EXPECT_EQ("123-0045", shown["number"]);
    EXPECT_FALSE(shown["set"].get<bool>());
    const Json reset = card.RunJson({"series", "reset"});
    EXPECT_EQ(0, reset["value"]);
    EXPECT_TRUE(reset["number"].is_null());
    EXPECT_EQ(12300045, reset["before"]);
    EXPECT_TRUE(reset["set"].get<bool>());
}

TEST(Series, RefusesWhatIsNoNumberIndex) {
    const ChangeCard card;
    card.SetSeries(10000005);
    for (const char* value : {"5", "99910000", "9990000", "100-", "100-10000", "1000-0001", "099-0001", "10000.5",
                              "abc", "", " 10000001", "10010000", "99999999999999999999"}) {
        const Outcome outcome = Dcfctl({"series", "set", value}, card.Environment());
        EXPECT_EQ(clitest::kUsage, outcome.exit) << value << outcome.Describe();
        EXPECT_EQ("'" + std::string(value) +
                      "' is no series value; it is a folder and a file number such as 100-0012 (10000012), up to "
                      "999-9999, or 0 for none",
                  ErrorOf(outcome));
    }
    EXPECT_EQ(10000005, card.Series());
}

TEST(Series, RefusesAStoreThatIsNone) {
    const ChangeCard card;
    std::ofstream(card.Store()) << "this is somebody's letter, and no store at all\n";
    const std::string letter = clitest::ReadFile(card.Store());
    for (const Words& words : {Words{"series"}, Words{"series", "reset"}, Words{"series", "set", "100-0001"}}) {
        const Outcome outcome = Dcfctl(words, card.Environment());
        EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
        EXPECT_EQ("", outcome.out);
        EXPECT_EQ(1U, clitest::Lines(outcome.err).size()) << outcome.Describe();
        EXPECT_NE(std::string::npos, ErrorOf(outcome).find("it is not a preference store")) << outcome.Describe();
    }
    EXPECT_EQ(letter, clitest::ReadFile(card.Store()));
}

TEST(Series, IsNeededOnlyInSeriesMode) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    std::ofstream(card.Store()) << "this is somebody's letter, and no store at all\n";
    const Words before = card.Before();
    const Outcome series = card.Run({"next-name", "--series"});
    EXPECT_EQ(clitest::kRefused, series.exit) << series.Describe();
    EXPECT_EQ(before, card.Before());
    const Outcome capacity = card.Run({"capacity", "--series"});
    EXPECT_EQ(clitest::kIncomplete, capacity.exit) << capacity.Describe();
    EXPECT_EQ(clitest::kSuccess, card.Run({"capacity"}).exit);
    const Outcome plain = card.Run({"next-name", "--dry-run"});
    EXPECT_EQ(clitest::kSuccess, plain.exit) << plain.Describe();
    EXPECT_EQ(before, card.Before());
}

} // namespace
