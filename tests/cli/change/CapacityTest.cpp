// capacity: the numbers left for new files, with the free space beside it.
#include <gtest/gtest.h>

#include <sys/statvfs.h>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Json;
using clitest::Outcome;
using clitest::Words;

namespace {

long NumbersLeft(const ChangeCard& card, Words options = {}) {
    options.insert(options.begin(), "capacity");
    return card.RunJson(options)["numbers_left"].get<long>();
}

TEST(Capacity, IsToldAsNumbersLeftBesideTheFreeSpace) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome = card.Run({"capacity"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    const Words lines = clitest::Lines(outcome.out);
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("numbers left  20000", lines[0]);
    EXPECT_EQ(0U, lines[1].find("free space    ")) << lines[1];
}

TEST(Capacity, FollowsTheNumbersOfTheCard) {
    ChangeCard card;
    EXPECT_EQ(20000, NumbersLeft(card));
    card.Put("998PHOTO", {"KVR_9990.JPG"});
    EXPECT_EQ(9, NumbersLeft(card));
    card.Put("999PHOTO", {"KVR_9000.JPG"});
    EXPECT_EQ(999, NumbersLeft(card));
}

TEST(Capacity, IsNothingWhereTheLastFolderHasAnotherKindOfName) {
    // Under this root the suffix stands at another place of the path than on a device; the library knows.
    ChangeCard card;
    card.Put("999PHOTO", {"KVR_9000.JPG"});
    EXPECT_EQ(0, NumbersLeft(card, {"--date-folders"}));
    ChangeCard dated;
    dated.Put("999_0101", {"KVR_9000.JPG"});
    EXPECT_EQ(0, NumbersLeft(dated));
    EXPECT_EQ(999, NumbersLeft(dated, {"--date-folders"}));
}

TEST(Capacity, TakesTheStoredValueInSeriesMode) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    card.SetSeries(99909000);
    EXPECT_EQ(20000, NumbersLeft(card));
    EXPECT_EQ(999, NumbersLeft(card, {"--series"}));
    EXPECT_TRUE(card.RunJson({"capacity", "--series"})["series_mode"].get<bool>());
}

TEST(Capacity, ChangesNothingNotEvenAnExhaustedSeries) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    card.SetSeries(99909999);
    const Words before = card.Before();
    EXPECT_EQ(20000, NumbersLeft(card, {"--series"}));
    EXPECT_EQ(before, card.Before());
    EXPECT_EQ(99909999, card.Series());
}

TEST(Capacity, TellsTheSpaceInBytes) {
    ChangeCard card;
    struct statvfs space = {};
    ASSERT_EQ(0, statvfs(card.Root().c_str(), &space));
    const Json json = card.RunJson({"capacity"});
    EXPECT_EQ("dcfctl.capacity", json["format"]);
    EXPECT_EQ(static_cast<std::uint64_t>(space.f_blocks) * space.f_frsize, json["total_bytes"].get<std::uint64_t>());
    EXPECT_LE(json["free_bytes"].get<std::uint64_t>(), json["total_bytes"].get<std::uint64_t>());
}

} // namespace
