// The local date: what it reads out of the clock, and what it gives when the clock cannot be converted.
#include "LocalDate.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>

#include "ChildProcess.h"
#include "PosixSeam.h"

using dcftest::Ending;
using dcftest::PosixSeam;
using dcftest::RunInChild;

namespace {

using Parts = std::array<int, 6>;

Parts Read() {
    const kelp::LocalDate date = kelp::ReadLocalDate();
    return {date.year, date.month, date.day, date.hour, date.minute, date.second};
}

TEST(LocalDate, HasEveryPartOfTheClock) {
    std::tm clock{};
    clock.tm_year = 124;
    clock.tm_mon = 11;
    clock.tm_mday = 24;
    clock.tm_hour = 18;
    clock.tm_min = 30;
    clock.tm_sec = 59;
    PosixSeam seam;
    seam.FixLocalTime(clock);
    EXPECT_EQ(Read(), (Parts{2024, 12, 24, 18, 30, 59}));
    EXPECT_EQ(seam.Texts(), (std::vector<std::string>{"time", "localtime"}));
}

TEST(LocalDate, CountsMonthsFromOneAndYearsFromTheBeginningOfOurEra) {
    PosixSeam seam;
    seam.FixLocalTime(std::tm{});
    EXPECT_EQ(Read(), (Parts{1900, 1, 0, 0, 0, 0}));
}

TEST(LocalDate, IsTheOneOfTheLocalTimeZone) {
    const Ending ending = RunInChild([] {
        ASSERT_EQ(::setenv("TZ", "AAA-5:30", 1), 0);
        PosixSeam seam;
        seam.FixTime(1704067199); // 2023-12-31 23:59:59 UTC
        EXPECT_EQ(Read(), (Parts{2024, 1, 1, 5, 29, 59}));
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(LocalDate, GoesOnBeyondTheYear2038) {
    const Ending ending = RunInChild([] {
        ASSERT_EQ(::setenv("TZ", "AAA-5:30", 1), 0);
        PosixSeam seam;
        seam.FixTime(4102444799); // 2099-12-31 23:59:59 UTC
        EXPECT_EQ(Read(), (Parts{2100, 1, 1, 5, 29, 59}));
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(LocalDate, IsTheFirstOf1900WhenTheClockCannotBeConverted) {
    PosixSeam seam;
    seam.Fail("localtime", EOVERFLOW);
    EXPECT_EQ(Read(), (Parts{1900, 1, 1, 1, 1, 1}));
}

} // namespace
