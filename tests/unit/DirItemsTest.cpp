// CSDCFDir in memory: its name, its counts, and the operations on items by position and number.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFDir.h"
#include "CSDCFList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "PosixSeam.h"
#include "Trees.h"

using dcftest::Append;
using dcftest::AppendNumbers;
using dcftest::Card;
using dcftest::DcfName;
using dcftest::DiesByAssertion;
using dcftest::Numbers;
using dcftest::PosixSeam;
using dcftest::PutInFront;
using dcftest::RunInChild;

namespace {

using Ints = std::vector<int>;

/// The folder of the examples: numbers 9, 5, 2.
class DirItemsTest : public testing::Test {
protected:
    DirItemsTest() {
        AppendNumbers(m_dir, {9, 5, 2});
    }

    CSDCFDir m_dir{100, "100ABCDE"};
};

TEST(DirName, IsKeptWithTheLow16BitsOfTheNumber) {
    const struct {
        int given;
        short kept;
    } rows[] = {{100, 100}, {999, 999}, {99, 99}, {65536 + 100, 100}, {-1, -1}, {32768, -32768}};
    for (const auto& row : rows) {
        CSDCFDir dir(row.given, "100ABCDE");
        EXPECT_EQ(dir.GetDnum(), row.kept) << row.given;
        EXPECT_EQ(dir.m_nDnum, row.kept) << row.given;
        EXPECT_STREQ(dir.m_strDirName, "100ABCDE");
        EXPECT_EQ(dir.GetCount(), 0);
    }
}

TEST(DirName, HasUpTo98CharactersAndClearsTheRest) {
    CSDCFDir dir(100, "100ABCDE");
    const std::string longest(98, 'n');
    dir.SetDirName(longest.c_str());
    EXPECT_EQ(dir.m_strDirName, longest);
    dir.SetDirName("Camera");
    EXPECT_STREQ(dir.m_strDirName, "Camera");
    for (std::size_t i = 6; i < sizeof dir.m_strDirName; ++i) {
        EXPECT_EQ(dir.m_strDirName[i], '\0') << i;
    }
    dir.SetDirName("");
    EXPECT_STREQ(dir.m_strDirName, "");
}

TEST(DirName, OfNullIsFatal) {
    const dcftest::ExpectedAssertion expected = {"pDirName != NULL", "cannot be null", "CSDCFDir",
                                                 "void CSDCFDir::SetDirName(const char*)"};
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { dir.SetDirName(nullptr); }), expected));
    EXPECT_TRUE(DiesByAssertion(RunInChild([] { const CSDCFDir made(100, nullptr); }), expected)) << "construction too";
}

TEST(DirName, Of99CharactersIsFatal) {
    const dcftest::ExpectedAssertion expected = {"strlen(pDirName) < KELP_DCF_MAX_FILE_NAME_LEN",
                                                 "too long dir name = d", "CSDCFDir",
                                                 "void CSDCFDir::SetDirName(const char*)"};
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { dir.SetDirName(std::string(99, 'n').c_str()); }), expected));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { dir.SetDirName(std::string(500, 'n').c_str()); }), expected));
    EXPECT_TRUE(DiesByAssertion(RunInChild([] { const CSDCFDir made(100, std::string(99, 'n').c_str()); }), expected));
}

TEST(AddFile, CountsAndAppendsTheItem) {
    CSDCFDir dir(100, "100ABCDE");
    int count = 40;
    char first[] = "KVR_0007.SRW";
    dir.AddFile(65536 + 321, 7, first, &count, 0xFFFFFFFEU);
    char second[] = "KVR_0003.AVI";
    dir.AddFile(321, 3, second, &count, 5);
    EXPECT_EQ(count, 42);
    ASSERT_EQ(dir.GetCount(), 2);
    DCFItem item = dir.m_itemGroup[0];
    EXPECT_EQ(item.m_nDirNum, 321) << "the low 16 bits";
    EXPECT_EQ(item.m_nFileNum, 7);
    EXPECT_EQ(item.m_nFileTime, 0xFFFFFFFEU);
    EXPECT_STREQ(item.m_fileName, "KVR_0007.SRW");
    EXPECT_EQ(item.m_eFileType, FILE_TYPE_SRW);
    EXPECT_EQ(item.m_eObjectType, FILE_TYPE_NONE);
    EXPECT_FALSE(item.m_bProtectKnown);
    EXPECT_EQ(dir.m_itemGroup[1].m_nFileNum, 3);
    EXPECT_STREQ(first, "KVR_0007.SRW");
}

TEST(AddFile, JudgesTheNameByTheNumberGivenNotByTheDirectorys) {
    CSDCFDir camera(99, "Camera");
    const auto dcf = RunInChild([&] { Append(camera, 100, 1, "20240131_000001.JPG"); });
    EXPECT_TRUE(DiesByAssertion(dcf, {"len == 12", "more than dcf filename length = 19", "CSDCFItemList",
                                      "void DCFItem::setFileName(const char*)"}));
    CSDCFDir dir(100, "100ABCDE");
    Append(dir, 99, 1, "20240131_000001.JPG");
    EXPECT_STREQ(dir.m_itemGroup[0].m_fileName, "20240131_000001.JPG");
}

TEST(AddFile, WithoutACounterIsFatal) {
    CSDCFDir dir(100, "100ABCDE");
    const auto ending = RunInChild([&] {
        char name[] = "KVR_0007.JPG";
        dir.AddFile(100, 7, name, nullptr, 0);
    });
    EXPECT_TRUE(DiesByAssertion(ending, {"pCount != NULL", "check!!", "CSDCFDir",
                                         "void CSDCFDir::AddFile(int, int, char*, int*, unsigned int)"}));
}

TEST_F(DirItemsTest, AddObjectSetsTheCompanionOfTheLastItemAndAddHeadObjectOfTheFirst) {
    m_dir.AddObject(FILE_TYPE_SRW);
    EXPECT_EQ(m_dir.m_itemGroup[0].m_eObjectType, FILE_TYPE_NONE);
    EXPECT_EQ(m_dir.m_itemGroup[1].m_eObjectType, FILE_TYPE_NONE);
    EXPECT_EQ(m_dir.m_itemGroup[2].m_eObjectType, FILE_TYPE_SRW);
    m_dir.AddHeadObject(FILE_TYPE_MPO);
    EXPECT_EQ(m_dir.m_itemGroup[0].m_eObjectType, FILE_TYPE_MPO);
    EXPECT_EQ(m_dir.m_itemGroup[1].m_eObjectType, FILE_TYPE_NONE);
    EXPECT_EQ(m_dir.m_itemGroup[2].m_eObjectType, FILE_TYPE_SRW);
    m_dir.AddObject(FILE_TYPE_NONE);
    EXPECT_EQ(m_dir.m_itemGroup[2].m_eObjectType, FILE_TYPE_NONE);
}

TEST(DirCount, CountsAnItemOnceForItsTypeOrItsCompanions) {
    CSDCFDir dir(100, "100ABCDE");
    Append(dir, 100, 6, DcfName(6, "JPG"));
    dir.AddObject(FILE_TYPE_SRW);
    Append(dir, 100, 5, DcfName(5, "JPG"));
    Append(dir, 100, 4, DcfName(4, "SRW"));
    dir.AddObject(FILE_TYPE_SRW); // of itself: still one file
    Append(dir, 100, 3, DcfName(3, "MP4"));
    dir.AddObject(FILE_TYPE_MPO);
    Append(dir, 100, 2, DcfName(2, "AVI"));
    Append(dir, 100, 1, DcfName(1, "XYZ"));
    EXPECT_EQ(dir.GetCount(), 6);
    const struct {
        int type;
        int count;
        const char* why;
    } rows[] = {
        {0, 2, "two pictures"},
        {1, 2, "one raw file, one companion"},
        {2, 1, "a companion only"},
        {3, 1, "a movie"},
        {5, 1, "a movie"},
        {4, 0, "never produced"},
        {-1, 3, "no companion; the one without a type too counts once"},
        {77, 0, "any other value"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(dir.GetCountByType(static_cast<eFileType>(row.type)), row.count) << row.type << ": " << row.why;
    }
    CSDCFDir empty(100, "100ABCDE");
    EXPECT_EQ(empty.GetCountByType(FILE_TYPE_JPG), 0);
}

TEST_F(DirItemsTest, AreFoundByNumber) {
    EXPECT_EQ(m_dir.GetFidx(9), 0);
    EXPECT_EQ(m_dir.GetFidx(5), 1);
    EXPECT_EQ(m_dir.GetFidx(2), 2);
}

TEST_F(DirItemsTest, ANumberThatIsNotThereIsFatal) {
    for (const int number : {7, 10, 1, 0, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)m_dir.GetFidx(number); }),
                                    {"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(number),
                                     "CSDCFDir", "int CSDCFDir::GetFidx(int)"}))
            << number;
    }
}

TEST_F(DirItemsTest, AreCopiedOutByPosition) {
    EXPECT_EQ(m_dir.GetItem(0).m_nFileNum, 9);
    EXPECT_EQ(m_dir.GetItem(1).m_nFileNum, 5);
    EXPECT_EQ(m_dir.GetItem(2).m_nFileNum, 2);
    EXPECT_EQ(m_dir.GetFirstItem().m_nFileNum, 9);
    EXPECT_EQ(m_dir.GetLastItem().m_nFileNum, 2);
    DCFItem copy = m_dir.GetItem(1);
    copy.setWifi(true);
    copy.setFileNum(77);
    EXPECT_FALSE(m_dir.m_itemGroup[1].m_bWifi);
    EXPECT_EQ(m_dir.m_itemGroup[1].m_nFileNum, 5);
    EXPECT_EQ(std::memcmp(&m_dir.m_itemGroup[0], m_dir.GetFirstItem().m_fileName, 30), 0);
}

TEST_F(DirItemsTest, APositionOutsideTheFolderIsFatal) {
    for (const int position : {3, 4, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_TRUE(
            DiesByAssertion(RunInChild([&] { (void)m_dir.GetItem(position); }),
                            {"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(position),
                             "CSDCFDir", "DCFItem CSDCFDir::GetItem(int)"}))
            << position;
    }
    CSDCFDir empty(100, "100ABCDE");
    EXPECT_TRUE(DiesByAssertion(
        RunInChild([&] { (void)empty.GetItem(0); }),
        {"m_itemGroup.size() > index", "vector index overflow = 0", "CSDCFDir", "DCFItem CSDCFDir::GetItem(int)"}));
}

TEST_F(DirItemsTest, MarksAreSetByPositionInMemoryOnly) {
    PosixSeam seam;
    m_dir.SetProtect(1, true);
    m_dir.SetWifi(2, true);
    EXPECT_TRUE(m_dir.m_itemGroup[1].m_bProtect);
    EXPECT_TRUE(m_dir.m_itemGroup[1].m_bProtectKnown);
    EXPECT_FALSE(m_dir.m_itemGroup[0].m_bProtectKnown);
    EXPECT_FALSE(m_dir.m_itemGroup[2].m_bProtectKnown);
    EXPECT_TRUE(m_dir.m_itemGroup[2].m_bWifi);
    EXPECT_FALSE(m_dir.m_itemGroup[1].m_bWifi);
    m_dir.SetProtect(1, false);
    m_dir.SetWifi(2, false);
    EXPECT_FALSE(m_dir.m_itemGroup[1].m_bProtect);
    EXPECT_TRUE(m_dir.m_itemGroup[1].m_bProtectKnown);
    EXPECT_FALSE(m_dir.m_itemGroup[2].m_bWifi);
    EXPECT_TRUE(seam.Calls().empty());
}

TEST_F(DirItemsTest, ANewFileComesInFront) {
    PutInFront(m_dir, 65536 + 100, 10, "KVR_0010.MP4", 123);
    EXPECT_EQ(Numbers(m_dir), (Ints{10, 9, 5, 2}));
    EXPECT_EQ(m_dir.GetFidx(10), 0);
    EXPECT_EQ(m_dir.GetFidx(9), 1);
    const DCFItem& item = m_dir.m_itemGroup[0];
    EXPECT_EQ(item.m_nDirNum, 100) << "the low 16 bits";
    EXPECT_EQ(item.m_nFileTime, 123U);
    EXPECT_STREQ(item.m_fileName, "KVR_0010.MP4");
    EXPECT_EQ(item.m_eFileType, FILE_TYPE_MP4);
    CSDCFDir empty(100, "100ABCDE");
    PutInFront(empty, 100, 1, DcfName(1));
    EXPECT_EQ(empty.GetFidx(1), 0);
}

TEST_F(DirItemsTest, ANewFileFollowsTheNameRule) {
    const auto ending = RunInChild([&] { PutInFront(m_dir, 100, 10, "KVR_0010.JPEG"); });
    EXPECT_TRUE(DiesByAssertion(ending, {"len == 12", "more than dcf filename length = 13", "CSDCFItemList",
                                         "void DCFItem::setFileName(const char*)"}));
}

TEST_F(DirItemsTest, RemovalMovesLaterItemsUp) {
    m_dir.RemoveItem(1);
    EXPECT_EQ(Numbers(m_dir), (Ints{9, 2}));
    EXPECT_EQ(m_dir.GetFidx(2), 1);
    m_dir.RemoveItem(0);
    EXPECT_EQ(Numbers(m_dir), Ints{2});
    m_dir.RemoveItem(0);
    EXPECT_EQ(m_dir.GetCount(), 0);
}

TEST(RemoveItems, TakesAscendingPositionsAsBeforeAnyRemoval) {
    const struct {
        Ints positions;
        Ints left;
    } rows[] = {
        {{}, {9, 5, 2}}, {{0}, {5, 2}}, {{1}, {9, 2}}, {{2}, {9, 5}},
        {{0, 2}, {5}},   {{0, 1}, {2}}, {{1, 2}, {9}}, {{0, 1, 2}, {}},
    };
    for (const auto& row : rows) {
        CSDCFDir dir(100, "100ABCDE");
        AppendNumbers(dir, {9, 5, 2});
        dir.RemoveItems(row.positions);
        EXPECT_EQ(Numbers(dir), row.left) << testing::PrintToString(row.positions);
    }
}

TEST(RemoveItems, GoesFromTheLastGivenToTheFirstEachAtOnce) {
    CSDCFDir dir(100, "100ABCDE");
    AppendNumbers(dir, {9, 7, 5, 3, 1});
    dir.RemoveItems({2, 0}); // position 0 goes first, so position 2 is the former 3
    EXPECT_EQ(Numbers(dir), (Ints{7, 5, 1}));
    CSDCFDir again(100, "100ABCDE");
    AppendNumbers(again, {9, 7, 5});
    again.RemoveItems({0, 0});
    EXPECT_EQ(Numbers(again), Ints{5}) << "the same position twice is two removals";
}

TEST(RemoveItems, IgnoresAPositionThatHoldsNoItemAnyMore) {
    const struct {
        Ints positions;
        Ints left;
    } rows[] = {
        {{2, 2}, {9, 5}}, {{2, 0}, {5, 2}},    {{0, 0, 0, 0}, {}},
        {{3, 1, 1}, {9}}, {{7, 3}, {9, 5, 2}}, {{0, -1}, {5, 2}},
    };
    for (const auto& row : rows) {
        CSDCFDir dir(100, "100ABCDE");
        AppendNumbers(dir, {9, 5, 2});
        dir.RemoveItems(row.positions);
        EXPECT_EQ(Numbers(dir), row.left) << testing::PrintToString(row.positions);
    }
}

class RemoveAllItemsTest : public testing::Test {
protected:
    RemoveAllItemsTest() {
        DirPathMapper::getInstance()->clear();
        DirPathMapper::getInstance()->add(100, m_card.Path("100ABCDE"));
        m_card.AddDir("100ABCDE");
        AppendNumbers(m_dir, {9, 7, 5, 2, 1});
    }

    Card m_card;
    CSDCFDir m_dir{100, "100ABCDE"};
};

TEST_F(RemoveAllItemsTest, KeepsTheProtectedInTheirOrder) {
    for (int i = 0; i < 5; ++i) {
        m_dir.SetProtect(i, i == 0 || i == 3);
    }
    PosixSeam seam;
    m_dir.RemoveAllItems();
    EXPECT_EQ(Numbers(m_dir), (Ints{9, 2}));
    EXPECT_TRUE(seam.Calls().empty()) << "every state was known";
    EXPECT_EQ(m_dir.GetFidx(2), 1);
}

TEST_F(RemoveAllItemsTest, AsksTheCardOnlyWhereTheStateIsUnknown) {
    m_card.AddFile("100ABCDE", DcfName(7), {"", 0444, {}});
    m_card.AddFile("100ABCDE", DcfName(5), {"", 0644, {}});
    m_dir.SetProtect(0, true);  // number 9, not on the card
    m_dir.SetProtect(4, false); // number 1
    PosixSeam seam;
    m_dir.RemoveAllItems();
    EXPECT_EQ(seam.Texts(), (std::vector<std::string>{"stat " + m_card.Path("100ABCDE", DcfName(7)),
                                                      "stat " + m_card.Path("100ABCDE", DcfName(5)),
                                                      "stat " + m_card.Path("100ABCDE", DcfName(2))}));
    EXPECT_EQ(Numbers(m_dir), (Ints{9, 7})) << "a file that is gone is not protected";
    EXPECT_TRUE(m_dir.m_itemGroup[1].m_bProtectKnown);
}

TEST_F(RemoveAllItemsTest, CarriesTheKeptItemsWhole) {
    PhotoInfo info = {};
    info.attributeWord = 4711;
    m_dir.SetProtect(0, false);
    for (int i = 1; i < 4; ++i) {
        m_dir.SetProtect(i, false);
    }
    m_dir.SetProtect(4, true);
    m_dir.SetWifi(4, true);
    m_dir.AddObject(FILE_TYPE_SRW);
    m_dir.setPhotoData(4, info);
    m_dir.RemoveAllItems();
    ASSERT_EQ(Numbers(m_dir), Ints{1});
    DCFItem item = m_dir.GetItem(0);
    EXPECT_STREQ(item.m_fileName, "KVR_0001.JPG");
    EXPECT_TRUE(item.m_bWifi);
    EXPECT_TRUE(item.m_bProtect);
    EXPECT_EQ(item.m_eObjectType, FILE_TYPE_SRW);
    EXPECT_TRUE(item.m_bMetadata);
    EXPECT_EQ(item.m_photo.attributeWord, 4711U);
}

TEST_F(RemoveAllItemsTest, LeavesNothingOfAFolderWithoutProtectedFiles) {
    m_dir.RemoveAllItems();
    EXPECT_EQ(m_dir.GetCount(), 0);
    m_dir.RemoveAllItems();
    EXPECT_EQ(m_dir.GetCount(), 0) << "an empty folder stays so";
}

TEST_F(RemoveAllItemsTest, LeavesAFolderOfProtectedFilesAsItIs) {
    for (int i = 0; i < 5; ++i) {
        m_dir.SetProtect(i, true);
    }
    m_dir.RemoveAllItems();
    EXPECT_EQ(Numbers(m_dir), (Ints{9, 7, 5, 2, 1}));
}

} // namespace
