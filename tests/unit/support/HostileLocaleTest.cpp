// The hostile run is hostile, and the ordinary one is not.
#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <locale>

namespace {

TEST(HostileLocale, HoldsForTheWholeProgramWhereItIsAskedFor) {
    const std::time_t epoch = 0;
    const std::tm* local = std::localtime(&epoch);
    ASSERT_NE(local, nullptr);
    if (std::getenv("DCF_TEST_LOCALE") == nullptr) {
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
        EXPECT_EQ(std::toupper('i'), 'I');
        return;
    }
    EXPECT_NE(std::toupper('i'), 'I');
    EXPECT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).decimal_point(), ',');
    EXPECT_EQ(local->tm_hour, 13);
    EXPECT_EQ(local->tm_min, 45);
}

} // namespace
