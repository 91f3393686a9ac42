// Which folder names under "DCIM" count, and which directory number a name has.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CSDCFList.h"
#include "Seed.h"

using dcftest::Seed;

namespace {

TEST(DirNameRule, Accepts) {
    const struct {
        const char* name;
        const char* why;
    } rows[] = {
        {"Camera", "the one folder that is no DCF directory"},
        {"100ABCDE", "the lowest number"},
        {"999ABCDE", "the highest number"},
        {"100PHOTO", "free characters"},
        {"100_0001", "free characters"},
        {"100abcde", "any case"},
        {"100     ", "blanks"},
        {"100-+.,;", "no letters at all"},
        {"100\xc3\xa4\xc3\xb6\xff", "bytes beyond ASCII"},
        {"100.5000", "the number ends at the dot"},
        {" 100ABCD", "leading white space, as the standard conversion reads it"},
        {"\t100ABCD", "leading white space"},
        {"\n100ABCD", "leading white space"},
        {"  100ABC", "leading white space"},
        {"+100ABCD", "a plus sign"},
        {" +100ABC", "both"},
        {"0100ABCD", "a leading zero"},
        {"00000100", "leading zeros"},
        {"0999ABCD", "a leading zero"},
        {" 999ABCD", "a leading blank"},
    };
    CSDCFList list;
    for (const auto& row : rows) {
        EXPECT_TRUE(list.CheckDirNameSyntax(row.name)) << row.name << ": " << row.why;
    }
}

TEST(DirNameRule, Refuses) {
    const struct {
        std::string name;
        const char* why;
    } rows[] = {
        {"", "empty"},
        {"CAMERA", "the name is case-sensitive"},
        {"camera", "the name is case-sensitive"},
        {"Camera ", "seven characters"},
        {"Camera01", "eight characters without a number"},
        {"Camer", "too short"},
        {"100ABCD", "seven characters"},
        {"100ABCDEF", "nine characters"},
        {"100", "three characters"},
        {"099ABCDE", "below 100"},
        {"000ABCDE", "below 100"},
        {"1000ABCD", "the fourth character makes it 1000"},
        {"9990ABCD", "the fourth character makes it 9990"},
        {"10000000", "above 999"},
        {"99999999", "above 999"},
        {"10ABCDEF", "two digits"},
        {"1ABCDEFG", "one digit"},
        {"ABCDEFGH", "no number"},
        {"A100BCDE", "the number does not lead"},
        {"-100ABCD", "negative"},
        {"- 100ABC", "a sign must stand before a digit"},
        {"+-100ABC", "one sign only"},
        {"0x100ABC", "hexadecimal is not read"},
        {"        ", "blanks alone"},
        {std::string("100\0ABCD", 8) + "E", "nine bytes"},
    };
    CSDCFList list;
    for (const auto& row : rows) {
        EXPECT_FALSE(list.CheckDirNameSyntax(row.name)) << row.name << ": " << row.why;
    }
}

TEST(DirNameRule, NeverThrows) {
    CSDCFList list;
    EXPECT_NO_THROW(EXPECT_FALSE(list.CheckDirNameSyntax("99999999999999999999")));
    EXPECT_NO_THROW(EXPECT_FALSE(list.CheckDirNameSyntax(std::string(8, '\xff'))));
    EXPECT_NO_THROW(EXPECT_FALSE(list.CheckDirNameSyntax(std::string(8, '\0'))));
}

TEST(DirNumber, IsReadFromTheFirstThreeCharacters) {
    const struct {
        const char* name;
        int number;
        const char* why;
    } rows[] = {
        {"100ABCDE", 100, "the usual name"},
        {"999PHOTO", 999, "the highest"},
        {"Camera", 99, "the one folder that is no DCF directory"},
        {"CameraXY", 99, "the first six characters decide"},
        {"Camer", 0, "five of them do not"},
        {"camera", 0, "nor does another case"},
        {"099ABCDE", 99, "three digits below 100"},
        {"1000ABCD", 100, "three characters alone"},
        {"0100ABCD", 10, "the zero takes a place"},
        {" 100ABCD", 10, "the blank takes a place"},
        {"+100ABCD", 10, "the sign takes a place"},
        {"-10ABCDE", -10, "a sign counts"},
        {"0999ABCD", 99, "the zero takes a place"},
        {" 999ABCD", 99, "the blank takes a place"},
        {"10ABCDEF", 10, "conversion stops at the first other character"},
        {"ABCDEFGH", 0, "no number"},
        {"7", 7, "shorter than three characters"},
        {"", 0, "empty"},
        {"0x9ABCDE", 0, "decimal only"},
    };
    CSDCFList list;
    for (const auto& row : rows) {
        EXPECT_EQ(list.GetDnum(row.name), row.number) << row.name << ": " << row.why;
    }
}

// The rule once more, by hand: white space, one sign, digits.
bool Expected(const std::string& name) {
    if (name == "Camera") {
        return true;
    }
    if (name.size() != 8) {
        return false;
    }
    std::size_t at = name.find_first_not_of(" \t\n\v\f\r");
    if (at == std::string::npos) {
        return false;
    }
    if (name[at] == '-') {
        return false; // at best a negative number
    }
    at += name[at] == '+' ? 1U : 0U;
    int number = 0;
    for (; at < name.size() && name[at] >= '0' && name[at] <= '9'; ++at) {
        number = number * 10 + (name[at] - '0');
    }
    return number >= 100 && number <= 999;
}

TEST(DirNameRule, HoldsForRandomNames) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    CSDCFList list;
    static const std::string kInteresting = "0123456789 \t+-ABCxyz._\xa0\xff\x01";
    int accepted = 0;
    constexpr int kRounds = 50000;
    for (int round = 0; round < kRounds; ++round) {
        std::string name = seed.Chance(0.5) ? std::to_string(seed.Pick(90, 1010)) : "";
        const std::size_t length = seed.Chance(0.9) ? 8 : static_cast<std::size_t>(seed.Pick(0, 10));
        while (name.size() < length) {
            const bool front = seed.Chance(0.3);
            name.insert(front ? name.begin() : name.end(), seed.PickFrom(kInteresting));
        }
        ASSERT_EQ(list.CheckDirNameSyntax(name), Expected(name)) << name;
        accepted += Expected(name) ? 1 : 0;
    }
    EXPECT_GT(accepted, kRounds / 50) << "the generator must make names of both kinds";
    EXPECT_LT(accepted, kRounds * 9 / 10);
}

} // namespace
