// The fake platform: the library under test reaches it, and it keeps what it was told.
#include "FakePlatform.h"

#include <device_property.h>
#include <dlog.h>
#include <gtest/gtest.h>
#include <pref.h>
#include <vell-util.h>

#include <optional>
#include <thread>
#include <vector>

#include "CSDCFList.h"

using dcftest::FakePlatform;
using dcftest::PrefCall;

namespace {

class FakePlatformTest : public testing::Test {
protected:
    FakePlatformTest() {
        m_platform.Reset();
    }

    FakePlatform& m_platform = FakePlatform::Get();
};

TEST_F(FakePlatformTest, KeepsTheRawArgumentsOfALogLine) {
    (void)__dlog_print(3, 4, "TAG", "%s: %s(%d) > %s", "Unit", "Function", 42, "\033[mstart\033[m\n");
    ASSERT_EQ(m_platform.Lines().size(), 1U);
    const dcftest::LogLine line = m_platform.Lines().front();
    EXPECT_EQ(line.logId, 3);
    EXPECT_EQ(line.priority, 4);
    EXPECT_EQ(line.tag, "TAG");
    EXPECT_EQ(line.format, "%s: %s(%d) > %s");
    EXPECT_EQ(line.file, "Unit");
    EXPECT_EQ(line.function, "Function");
    EXPECT_EQ(line.line, 42);
    EXPECT_EQ(line.buffer, "\033[mstart\033[m\n");
    EXPECT_EQ(line.Message(), "start");
    EXPECT_EQ(line.Text(), "Unit Function start");
    EXPECT_EQ(m_platform.Messages(), std::vector<std::string>{"start"});
    EXPECT_EQ(m_platform.Texts(), std::vector<std::string>{"Unit Function start"});
}

TEST_F(FakePlatformTest, KeepsALineOfAnotherFormatAsItReads) {
    (void)__dlog_print(0, 6, "X", "%d apples, %s", 3, "no pears");
    ASSERT_EQ(m_platform.Lines().size(), 1U);
    EXPECT_EQ(m_platform.Lines().front().buffer, "3 apples, no pears");
    EXPECT_EQ(m_platform.Lines().front().Message(), "3 apples, no pears");
    EXPECT_TRUE(m_platform.Lines().front().file.empty());
    m_platform.ForgetLines();
    EXPECT_TRUE(m_platform.Lines().empty());
}

TEST_F(FakePlatformTest, StoresPreferencesAndRecordsTheCalls) {
    EXPECT_EQ(pref_get_long(3, 512), 0) << "never stored";
    EXPECT_EQ(pref_set_long(3, 512, -5), 0);
    EXPECT_EQ(pref_get_long(3, 512), -5);
    EXPECT_EQ(pref_get_long(3, 513), 0);
    m_platform.SetPreference(4, 1, 99);
    EXPECT_EQ(pref_get_long(4, 1), 99);
    const std::vector<PrefCall> expected = {
        {false, 3, 512, 0}, {true, 3, 512, -5}, {false, 3, 512, -5}, {false, 3, 513, 0}, {false, 4, 1, 99}};
    EXPECT_EQ(m_platform.PrefCalls(), expected);
    EXPECT_EQ(m_platform.Preference(3, 512), -5);
    EXPECT_EQ(m_platform.Preference(9, 9), std::nullopt);
}

TEST_F(FakePlatformTest, GivesTheResultsItWasTold) {
    m_platform.SetPreference(3, 512, 7);
    m_platform.ForcePrefGet(-1);
    EXPECT_EQ(pref_get_long(3, 512), -1);
    m_platform.ForcePrefGet(std::nullopt);
    EXPECT_EQ(pref_get_long(3, 512), 7);
    m_platform.SetPrefSetResult(-3);
    EXPECT_EQ(pref_set_long(3, 512, 8), -3);
    EXPECT_EQ(m_platform.Preference(3, 512), 7) << "a failed set stores nothing";
    m_platform.SetPropertyResult(-9);
    EXPECT_EQ(device_set_property(1, 2, 3, 4), -9);
    EXPECT_EQ(m_platform.PropertyCalls(), (std::vector<FakePlatform::PropertyCall>{{1, 2, 3, 4}}));
}

TEST_F(FakePlatformTest, RunsAnActionBeforeEachStore) {
    std::vector<std::optional<long>> before;
    m_platform.AtPrefSet([&] { before.push_back(m_platform.Preference(3, 512)); });
    (void)pref_set_long(3, 512, 1);
    (void)pref_get_long(3, 512);
    (void)pref_set_long(3, 512, 2);
    m_platform.AtPrefSet(nullptr);
    (void)pref_set_long(3, 512, 3);
    EXPECT_EQ(before, (std::vector<std::optional<long>>{std::nullopt, 1}));
    EXPECT_EQ(m_platform.Preference(3, 512), 3);
}

TEST_F(FakePlatformTest, RunsAnActionBehindEachStoreThatSucceeded) {
    std::vector<long> stored;
    m_platform.AfterPrefSet([&](long value) { stored.push_back(value); });
    EXPECT_EQ(0, pref_set_long(3, 512, 5));
    m_platform.SetPrefSetResult(-1);
    EXPECT_EQ(-1, pref_set_long(3, 512, 6));
    EXPECT_EQ(std::vector<long>{5}, stored);
}

TEST_F(FakePlatformTest, HandsOutWhatItIsAnsweredForAsLongAsItIs) {
    m_platform.SetPreference(3, 512, 5);
    int asked = 0;
    m_platform.AtPrefGet([&] { return ++asked == 1 ? std::optional<long>(-1) : std::nullopt; });
    EXPECT_EQ(-1, pref_get_long(3, 512));
    EXPECT_EQ(5, pref_get_long(3, 512));
    EXPECT_EQ(2, asked);
}

TEST_F(FakePlatformTest, CountsBacktraces) {
    vell_print_backtrace();
    vell_print_backtrace();
    EXPECT_EQ(m_platform.Backtraces(), 2);
}

TEST_F(FakePlatformTest, IsWhatTheSharedLibraryCalls) {
    CSDCFList list;
    EXPECT_EQ(m_platform.PropertyCalls().size(), 1U);
    m_platform.SetPreference(dcftest::kSeriesGroup, dcftest::kSeriesKey, 12345);
    EXPECT_EQ(list.ReadSeriesValue(), 12345);
    EXPECT_EQ(m_platform.PrefCalls().size(), 1U);
}

TEST_F(FakePlatformTest, TakesLinesFromManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < kLines; ++i) {
                (void)__dlog_print(3, 4, "TAG", "%s: %s(%d) > %s", "Unit", "Function", i, "x");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(m_platform.Lines().size(), static_cast<std::size_t>(kThreads * kLines));
}

TEST_F(FakePlatformTest, StartsAgainAfterAReset) {
    (void)pref_set_long(1, 1, 1);
    vell_print_backtrace();
    m_platform.SetPrefSetResult(-1);
    m_platform.ForcePrefGet(8);
    m_platform.AtPrefSet([] { ADD_FAILURE() << "outlived the reset"; });
    m_platform.AfterPrefSet([](long /*value*/) { ADD_FAILURE() << "outlived the reset"; });
    m_platform.AtPrefGet([] { return std::optional<long>(9); });
    m_platform.Reset();
    EXPECT_EQ(m_platform.Backtraces(), 0);
    EXPECT_TRUE(m_platform.PrefCalls().empty());
    EXPECT_EQ(pref_get_long(1, 1), 0);
    EXPECT_EQ(pref_set_long(1, 1, 2), 0);
}

} // namespace
