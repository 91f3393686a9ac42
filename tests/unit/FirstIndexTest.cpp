// The first index (the number index of the newest file) and the series value that carries it from card to card.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "CSDCFList.h"
#include "FakePlatform.h"
#include "Trees.h"

using dcftest::AppendDir;
using dcftest::FakePlatform;
using dcftest::kSeriesGroup;
using dcftest::kSeriesKey;
using dcftest::PrefCall;

namespace {

constexpr int kLast = 99909999;

TEST(FirstIndex, IsDecidedByTheDirectoryAtTheFront) {
    struct Dir {
        int dnum;
        const char* name;
        std::vector<int> numbers;
    };
    const struct {
        std::vector<Dir> dirs;
        int index;
        const char* why;
    } rows[] = {
        {{}, 0, "an empty card"},
        {{{101, "101ABCDE", {}}, {100, "100ABCDE", {}}}, 0, "directories without a file"},
        {{{105, "105ABCDE", {17, 9, 1}}}, 10500017, "the highest file of the highest directory"},
        {{{105, "105ABCDE", {17}}, {104, "104ABCDE", {9999}}}, 10500017, "lower directories do not count"},
        {{{101, "101ABCDE", {}}, {100, "100ABCDE", {42}}}, 10100000, "an empty highest directory counts with 0"},
        {{{102, "102ABCDE", {}}, {101, "101ABCDE", {}}, {100, "100ABCDE", {42}}}, 10200000, "two empty ones"},
        {{{99, "Camera", {5}}}, 0, "Camera alone"},
        {{{100, "100ABCDE", {3}}, {99, "Camera", {5}}}, 10000003, "Camera behind a directory"},
        {{{100, "100ABCDE", {}}, {99, "Camera", {5}}}, 10000000, "an empty directory before Camera"},
        {{{999, "999ABCDE", {9999}}}, kLast, "the last number of all"},
        {{{100, "100ABCDE", {2, 7}}}, 10000002, "the item at the front, whatever the order"},
    };
    for (const auto& row : rows) {
        CSDCFList list;
        list.m_nTotalCount = 777;
        list.m_nFirstIndex = 555;
        int files = 0;
        for (const Dir& dir : row.dirs) {
            AppendDir(list, dir.dnum, dir.name);
            for (const int number : dir.numbers) {
                dcftest::Append(*list.m_dirGroup.back(), dir.dnum, number, dcftest::DcfName(number));
                ++files;
            }
        }
        EXPECT_EQ(list.GetFirstIndex(), row.index) << row.why;
        EXPECT_EQ(list.m_nFirstIndex, 555) << "computed, not stored";
        EXPECT_EQ(list.m_nTotalCount, files) << "counted on the way";
    }
}

class SeriesTest : public testing::Test {
protected:
    SeriesTest() {
        m_platform.Reset();
        AppendDir(m_list, 105, "105ABCDE", {17, 9, 1});
    }

    void Store(long value) {
        m_platform.SetPreference(kSeriesGroup, kSeriesKey, value);
    }

    FakePlatform& m_platform = FakePlatform::Get();
    CSDCFList m_list;
};

TEST_F(SeriesTest, ModeIsOffAtFirstAndStored) {
    EXPECT_FALSE(m_list.GetSeriesMode());
    EXPECT_EQ(m_list.SetSeriesMode(true), 0);
    EXPECT_TRUE(m_list.GetSeriesMode());
    EXPECT_TRUE(m_list.m_bSeriesMode);
    EXPECT_EQ(m_list.SetSeriesMode(false), 0);
    EXPECT_FALSE(m_list.GetSeriesMode());
    EXPECT_TRUE(m_platform.PrefCalls().empty()) << "a switch alone asks for nothing";
}

TEST_F(SeriesTest, ValueIsReadFromItsPlace) {
    EXPECT_EQ(m_list.ReadSeriesValue(), 0);
    constexpr long kLargest = std::numeric_limits<long>::max();
    Store(kLargest);
    EXPECT_EQ(m_list.ReadSeriesValue(), kLargest);
    m_platform.ForcePrefGet(-1);
    EXPECT_EQ(m_list.ReadSeriesValue(), -1) << "whatever the service gives";
    const std::vector<PrefCall> expected = {{false, 3, 512, 0}, {false, 3, 512, kLargest}, {false, 3, 512, -1}};
    EXPECT_EQ(m_platform.PrefCalls(), expected);
}

TEST_F(SeriesTest, BackupKeepsToTheLastIndex) {
    const struct {
        int value;
        long stored;
        const char* why;
    } rows[] = {
        {10500017, 10500017, "the usual value"}, {0, 0, "nothing numbered yet"},
        {-5, -5, "negative ones too"},           {-2147483647 - 1, -2147483647L - 1, "negative ones too"},
        {kLast, kLast, "the last index itself"}, {kLast + 1, 10000000, "one beyond it"},
        {99910000, 10000000, "beyond it"},       {2147483647, 10000000, "far beyond it"},
    };
    for (const auto& row : rows) {
        m_platform.Reset();
        EXPECT_EQ(m_list.BackupSeriesValue(row.value), 0) << row.why;
        EXPECT_EQ(m_platform.PrefCalls(), (std::vector<PrefCall>{{true, 3, 512, row.stored}})) << row.why;
    }
}

TEST_F(SeriesTest, BackupGivesTheServicesResult) {
    for (const int result : {-1, 7, 0}) {
        m_platform.SetPrefSetResult(result);
        EXPECT_EQ(m_list.BackupSeriesValue(5), result);
        EXPECT_EQ(m_list.BackupSeriesValue(kLast + 1), result);
    }
}

TEST_F(SeriesTest, RaisesTheFirstIndexButNeverLowersIt) {
    // A damaged store can hold a value beyond an int only where a long can.
    constexpr bool kWideLong = sizeof(long) > sizeof(int);
    constexpr auto kDamaged = static_cast<long>(4307267341LL);
    const struct {
        int index;
        long stored;
        int expected;
        const char* why;
    } rows[] = {
        {10500017, 12300045, 12300045, "a higher series value"},
        {10500017, kDamaged, kWideLong ? 2147483647 : 12300045, "one beyond an int, whose low half would pass"},
        {10500017, 10000010, 10500017, "a lower series value"},
        {10500017, 10500017, 10500017, "the same"},
        {10500017, 0, 10500017, "never stored"},
        {10500017, -1, 10500017, "a failing service"},
        {0, -1, 0, "an empty card and a failing service"},
        {0, 10000001, 10000001, "an empty card"},
        {10500017, kLast - 1, kLast - 1, "one before the end of the series"},
        {10500017, kLast + 1, kLast + 1, "beyond the end it is a value like any other"},
        {kLast, kLast - 1, kLast, "a full card"},
        {10500017, std::numeric_limits<long>::max(), 2147483647, "a damaged store: no wrap-around"},
        {10500017, std::numeric_limits<long>::min(), 10500017, "a damaged store: no wrap-around"},
    };
    for (const auto& row : rows) {
        m_platform.Reset();
        Store(row.stored);
        m_list.SetSeriesMode(true);
        m_list.m_nFirstIndex = row.index;
        m_list.UpdateFirstIndexWithSeriesValue();
        EXPECT_EQ(m_list.m_nFirstIndex, row.expected) << row.why;
        EXPECT_EQ(m_platform.PrefCalls(), (std::vector<PrefCall>{{false, 3, 512, row.stored}})) << row.why;
    }
}

TEST_F(SeriesTest, AtItsEndStartsAgainFromTheCard) {
    Store(kLast);
    m_list.SetSeriesMode(true);
    m_list.m_nFirstIndex = 10500017;
    m_list.UpdateFirstIndexWithSeriesValue();
    EXPECT_EQ(m_list.m_nFirstIndex, 10500017);
    EXPECT_EQ(m_platform.PrefCalls(), (std::vector<PrefCall>{{false, 3, 512, kLast}, {true, 3, 512, 10500017}}));
    EXPECT_EQ(m_platform.Preference(3, 512), 10500017);
}

TEST_F(SeriesTest, AtItsEndTheCapOfTheBackupHolds) {
    Store(kLast);
    m_list.SetSeriesMode(true);
    m_list.m_nFirstIndex = kLast + 5;
    m_list.UpdateFirstIndexWithSeriesValue();
    EXPECT_EQ(m_list.m_nFirstIndex, kLast + 5) << "left as it is";
    EXPECT_EQ(m_platform.Preference(3, 512), 10000000);
}

TEST_F(SeriesTest, AtItsEndOnAFullCardNothingChanges) {
    Store(kLast);
    m_list.SetSeriesMode(true);
    m_list.m_nFirstIndex = kLast;
    m_list.UpdateFirstIndexWithSeriesValue();
    EXPECT_EQ(m_list.m_nFirstIndex, kLast);
    EXPECT_EQ(m_platform.PrefCalls(), (std::vector<PrefCall>{{false, 3, 512, kLast}}));
}

TEST_F(SeriesTest, AFailedWriteIsNotDetected) {
    Store(kLast);
    m_platform.SetPrefSetResult(-1);
    m_list.SetSeriesMode(true);
    m_list.m_nFirstIndex = 10500017;
    m_list.UpdateFirstIndexWithSeriesValue();
    EXPECT_EQ(m_list.m_nFirstIndex, 10500017);
    EXPECT_EQ(m_platform.Preference(3, 512), kLast);
    EXPECT_TRUE(m_platform.Lines().empty());
}

TEST_F(SeriesTest, IsNotAskedForOutsideSeriesMode) {
    Store(12300045);
    m_list.m_nFirstIndex = 77;
    m_list.UpdateFirstIndexWithSeriesValue();
    EXPECT_EQ(m_list.m_nFirstIndex, 77);
    EXPECT_TRUE(m_platform.PrefCalls().empty());
}

TEST_F(SeriesTest, UpdateComputesStoresAndGivesTheFirstIndex) {
    Store(12300045);
    const struct {
        bool series;
        bool ignore;
        int expected;
    } rows[] = {{false, false, 10500017}, {false, true, 10500017}, {true, true, 10500017}, {true, false, 12300045}};
    for (const auto& row : rows) {
        m_list.SetSeriesMode(row.series);
        m_list.m_nFirstIndex = 555;
        const std::size_t before = m_platform.PrefCalls().size();
        EXPECT_EQ(m_list.UpdateFirstIndex(row.ignore), row.expected);
        EXPECT_EQ(m_list.m_nFirstIndex, row.expected);
        EXPECT_EQ(m_platform.PrefCalls().size() - before, row.series && !row.ignore ? 1U : 0U);
    }
}

} // namespace
