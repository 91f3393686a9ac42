// Number indices, the numbers in a path, and list positions.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "ChildProcess.h"
#include "Trees.h"

using dcftest::AppendDir;
using dcftest::DiesByAssertion;
using dcftest::RunInChild;
using dcftest::Writable;

namespace {

TEST(NumberIndex, JoinsDirectoryAndFileNumber) {
    const struct {
        int dnum;
        int fnum;
        int index;
        const char* why;
    } rows[] = {
        {100, 1, 10000001, "the first"},
        {999, 9999, 99909999, "the last"},
        {100, 0, 10000000, "file number 0"},
        {0, 0, 0, "nothing"},
        {99, 123456, 10023456, "six digits run into the directory part"},
        {100, -1, 9999999, "the sum as it comes"},
        {-1, 5, -99995, "the sum as it comes"},
    };
    CSDCFList list;
    for (const auto& row : rows) {
        EXPECT_EQ(list.GetNumToIndex(row.dnum, row.fnum), row.index) << row.why;
    }
}

TEST(NumberIndex, SplitsTowardsZero) {
    const struct {
        int index;
        int dnum;
        int fnum;
    } rows[] = {
        {10000001, 100, 1},    {99909999, 999, 9999},
        {10000000, 100, 0},    {0, 0, 0},
        {99999, 0, 99999},     {100000, 1, 0},
        {-1, 0, -1},           {-100000, -1, 0},
        {-250001, -2, -50001}, {2147483647, 21474, 83647},
    };
    CSDCFList list;
    for (const auto& row : rows) {
        int dnum = 7;
        int fnum = 7;
        list.GetIndexToNum(row.index, &dnum, &fnum);
        EXPECT_EQ(dnum, row.dnum) << row.index;
        EXPECT_EQ(fnum, row.fnum) << row.index;
    }
}

TEST(PathNumbers, AreReadByPlace) {
    const struct {
        const char* root;
        const char* path;
        int dnum;
        int fnum;
        const char* why;
    } rows[] = {
        {"/mnt/mmc", "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG", 100, 12, "the usual path"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/999PHOTO/_KVR9999.SRW", 999, 9999, "the last"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/1000PHOT/KVR_00123.JP", 100, 12, "each field ends where it ends"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/10XABCDE/KVR_1X34.JPG", 10, 1, "conversion stops at the first other character"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/ABCABCDE/KVR_ABCD.JPG", 0, 0, "no digits"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/-10ABCDE/KVR_-123.JPG", -10, -123, "the standard conversion takes a sign"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/ 10ABCDE/KVR_ +12.JPG", 10, 12, "and leading blanks"},
        {"/mnt/mmc", "/mnt/mmc/dcim/100ABCDE/KVR_0012.JPG", 100, 12, "the text before does not count"},
        {"/mnt/mmc", "/sd/DCIM/100ABCDE/KVR_0012.JPG", 0, 0, "a root of another length reads elsewhere"},
        {"/mnt/mm", "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG", 0, 0, "a root one shorter: \"/10\" and \"_001\""},
        {"", "/DCIM/100ABCDE/KVR_0012.JPG", 100, 12, "no root"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/Camera/20240131_123456.JPG", 99, 123456, "Camera"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/Camera/20240131_12X456.JPG", 99, 12, "conversion stops"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/Camera/20240131_1234567890", 99, 123456, "six characters"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/100ABCDE/KVR_0012.Camera", 99, 2,
         "Camera anywhere in the path, the place is fixed"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/100ABCDE/XXXXXXXXXCamera123456", 99, 0,
         "the place is fixed, wherever Camera stands"},
        {"/mnt/mmc", "/mnt/mmc/DCIM/camera__/20240131_1234.JPG", 0, 131, "case-sensitive"},
        {"/Camera", "/Camera/DCIM/100ABCDE/KVR_0012.JPG", 99, 2, "a root with Camera makes every path one"},
        {"/Camera", "/Camera/DCIM/Camera/20240131_123456.JPG", 99, 123456, "and the real one stays right"},
    };
    for (const auto& row : rows) {
        CSDCFList list;
        ASSERT_EQ(list.SetBaseURI(row.root), 0);
        int dnum = -7;
        int fnum = -7;
        list.GetNum(row.path, &dnum, &fnum);
        EXPECT_EQ(dnum, row.dnum) << row.path << ": " << row.why;
        EXPECT_EQ(fnum, row.fnum) << row.path << ": " << row.why;
    }
}

TEST(PathNumbers, OfAShortPathAreReadFromWhatIsThere) {
    CSDCFList list;
    ASSERT_EQ(list.SetBaseURI("/mnt/mmc"), 0);
    const std::string whole = "/mnt/mmc/DCIM/123ABCDE/KVR_4567.JPG";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        // A buffer of exactly this size: reading on would be seen by a checker of memory.
        const std::vector<char> path = Writable(whole.substr(0, length));
        int dnum = -7;
        int fnum = -7;
        list.GetNum(path.data(), &dnum, &fnum);
        const auto there = [&](std::size_t from, const std::string& digits) {
            const std::size_t count = length <= from ? 0 : std::min(length - from, digits.size());
            return count == 0 ? 0 : std::stoi(digits.substr(0, count));
        };
        EXPECT_EQ(dnum, there(14, "123")) << length;
        EXPECT_EQ(fnum, there(27, "4567")) << length;
    }
    const std::string camera = "/mnt/mmc/DCIM/Camera/20240131_765432.JPG";
    for (std::size_t length = 20; length <= camera.size(); ++length) {
        const std::vector<char> path = Writable(camera.substr(0, length));
        int dnum = -7;
        int fnum = -7;
        list.GetNum(path.data(), &dnum, &fnum);
        EXPECT_EQ(dnum, 99) << length;
        const std::size_t count = length <= 30 ? 0 : std::min<std::size_t>(length - 30, 6);
        EXPECT_EQ(fnum, count == 0 ? 0 : std::stoi(std::string("765432").substr(0, count))) << length;
    }
}

TEST(PathNumbers, AreLeftAloneWhenAnArgumentIsNull) {
    CSDCFList list;
    ASSERT_EQ(list.SetBaseURI("/mnt/mmc"), 0);
    const char* path = "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG";
    int dnum = -7;
    int fnum = -8;
    list.GetNum(nullptr, &dnum, &fnum);
    list.GetNum(path, nullptr, &fnum);
    list.GetNum(path, &dnum, nullptr);
    list.GetNum(nullptr, nullptr, nullptr);
    EXPECT_EQ(dnum, -7);
    EXPECT_EQ(fnum, -8);
}

class ListIndexTest : public testing::Test {
protected:
    ListIndexTest() {
        EXPECT_EQ(m_list.SetBaseURI("/mnt/mmc"), 0);
        AppendDir(m_list, 102, "102ABCDE", {9, 5});
        AppendDir(m_list, 101, "101ABCDE");
        AppendDir(m_list, 100, "100ABCDE", {7, 5, 1});
        CSDCFDir& camera = AppendDir(m_list, 99, "Camera");
        dcftest::Append(camera, 99, 20, dcftest::CameraName(20));
        dcftest::Append(camera, 99, 10, dcftest::CameraName(10));
    }

    CSDCFList m_list;
};

TEST_F(ListIndexTest, CountsTheFilesBefore) {
    const struct {
        const char* path;
        int index;
    } rows[] = {
        {"/mnt/mmc/DCIM/102ABCDE/KVR_0009.JPG", 0},      {"/mnt/mmc/DCIM/102ABCDE/KVR_0005.JPG", 1},
        {"/mnt/mmc/DCIM/100ABCDE/KVR_0007.JPG", 2},      {"/mnt/mmc/DCIM/100ABCDE/KVR_0005.JPG", 3},
        {"/mnt/mmc/DCIM/100ABCDE/KVR_0001.JPG", 4},      {"/mnt/mmc/DCIM/Camera/20240131_000020.JPG", 5},
        {"/mnt/mmc/DCIM/Camera/20240131_000010.JPG", 6},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(m_list.GetListIndex(row.path), row.index) << row.path;
    }
}

TEST_F(ListIndexTest, LooksAtNumberAndDirectoryNameAlone) {
    EXPECT_EQ(m_list.GetListIndex("/mnt/mmc/DCIM/100ABCDE/XXXX0005.AVI"), 3) << "prefix and extension do not count";
    EXPECT_EQ(m_list.GetListIndex("/mnt/mmc/DCIM/100ABCXX/KVR_0005.JPG"), 3) << "six characters of the directory";
    EXPECT_EQ(m_list.GetListIndex("/xxx/yyy/ZZZZ/100ABCDE/KVR_0005.JPG"), 3) << "a root of the same length";
}

TEST_F(ListIndexTest, IsMinusOneWhereTheDirectoryIsNotListed) {
    EXPECT_EQ(m_list.GetListIndex("/mnt/mmc/DCIM/103ABCDE/KVR_0005.JPG"), -1);
    EXPECT_EQ(m_list.GetListIndex("/mnt/mmc/DCIM/100PHOTO/KVR_0005.JPG"), -1) << "by name, not by number";
    EXPECT_EQ(m_list.GetListIndex("short"), -1);
    EXPECT_EQ(m_list.GetListIndex(""), -1);
    EXPECT_EQ(m_list.GetListIndex(nullptr), -1);
}

TEST_F(ListIndexTest, OfAFileThatTheDirectoryDoesNotHoldIsFatal) {
    const std::vector<std::pair<std::string, int>> rows = {{"/mnt/mmc/DCIM/100ABCDE/KVR_0002.JPG", 2},
                                                           {"/mnt/mmc/DCIM/101ABCDE/KVR_0005.JPG", 5},
                                                           {"/mnt/mmc/DCIM/Camera/20240131_000030.JPG", 30}};
    for (const auto& [path, number] : rows) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&, file = path] { (void)m_list.GetListIndex(file.c_str()); }),
                                    {"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(number),
                                     "CSDCFDir", "int CSDCFDir::GetFidx(int)"}))
            << path;
    }
}

TEST(ListIndex, OfDirectoriesThatAgreeInSixCharactersIsTheFirstOnes) {
    CSDCFList list;
    ASSERT_EQ(list.SetBaseURI("/mnt/mmc"), 0);
    AppendDir(list, 100, "100ABCXX", {5, 4});
    AppendDir(list, 100, "100ABCDE", {5});
    EXPECT_EQ(list.GetListIndex("/mnt/mmc/DCIM/100ABCDE/KVR_0005.JPG"), 0);
}

} // namespace
