// What a client receives of a file: every field of the item, and the paths at the limit of their buffers.
#include "Scenario.h"

#include <sys/stat.h>

#include "PosixSeam.h"

namespace dcftest {
namespace {

class TreeConversion : public TreeTest {
protected:
    /// Converts the file at a position of a directory of the tree.
    CSFileListItem Convert(int didx, int fidx, CSFileListItem into = UsedItem()) {
        DCFItem source = tree->m_dirGroup[static_cast<std::size_t>(didx)]->GetItem(fidx);
        tree->ConvertFileItem(source, &into, didx);
        return into;
    }

    /// What a file of the tree at position 0 of directory 0 becomes before any collector ran.
    static CSFileListItem WithoutMetadata(CSFileListItem item) {
        item.m_nMetaFlag = 0;
        item.m_nMetaQuad1 = 0;
        item.m_nMetaQuad2 = 0;
        std::memset(item.m_szMetaText, 0, sizeof item.m_szMetaText);
        item.m_nMetaFlag2 = 0;
        item.m_nMetaWord = 0;
        item.m_nMetaByte = 0;
        for (int i = 0; i < 19; ++i) {
            item.m_aMeta[i] = i < 13 ? 0 : -1;
        }
        return item;
    }
};

struct KindRow {
    const char* why;
    const char* dir;
    std::vector<std::string> files;
    eFileType type;
    eFileType object;
    const char* companion;
    int dnum;
    int fnum;
};

TEST_F(TreeConversion, GivesNumbersKindsAndPathsOfEveryKindOfFile) {
    const std::vector<KindRow> rows = {
        {"a picture", "103AAAAA", {"KVR_0012.JPG"}, FILE_TYPE_JPG, FILE_TYPE_NONE, "", 103, 12},
        {"with its raw file",
         "104AAAAA",
         {"KVR_0012.JPG", "KVR_0012.SRW"},
         FILE_TYPE_JPG,
         FILE_TYPE_SRW,
         "KVR_0012.SRW",
         104,
         12},
        {"a raw file alone", "105AAAAA", {"KVR_9999.SRW"}, FILE_TYPE_SRW, FILE_TYPE_NONE, "", 105, 9999},
        {"a movie with a multi-picture companion",
         "106AAAAA",
         {"KVR_0001.MP4", "KVR_0001.MPO"},
         FILE_TYPE_MP4,
         FILE_TYPE_MPO,
         "KVR_0001.MPO",
         106,
         1},
        {"another movie", "107AAAAA", {"KVR_0001.AVI"}, FILE_TYPE_AVI, FILE_TYPE_NONE, "", 107, 1},
        {"a multi-picture file with a raw companion",
         "999AAAAA",
         {"KVR_0300.MPO", "KVR_0300.SRW"},
         FILE_TYPE_MPO,
         FILE_TYPE_SRW,
         "KVR_0300.SRW",
         999,
         300},
    };
    for (const KindRow& row : rows) {
        card.AddFiles(row.dir, row.files);
    }
    List();
    for (const KindRow& row : rows) {
        SCOPED_TRACE(row.why);
        const CSFileListItem item = Convert(tree->GetDirIndex(row.dnum), 0);
        EXPECT_EQ(item.m_strURI, Path(row.dir, row.files[0]));
        EXPECT_EQ(item.m_strObject, *row.companion == '\0' ? "" : Path(row.dir, row.companion));
        EXPECT_EQ(item.m_eFileType, row.type);
        EXPECT_EQ(item.m_eObjectType, row.object);
        EXPECT_EQ(item.m_nDirNum, row.dnum);
        EXPECT_EQ(item.m_nFileNum, row.fnum);
        EXPECT_FALSE(item.m_bProtect);
        EXPECT_FALSE(item.m_bWifi);
    }
}

TEST_F(TreeConversion, GivesACameraFileItsSixDigitNumberAndAShortenedCompanionName) {
    card.AddFiles("Camera", {"20240131_123456.JPG", "20240131_123456.MPO"});
    List();
    const CSFileListItem item = Convert(0, 0);
    EXPECT_EQ(item.m_strURI, Path("Camera", "20240131_123456.JPG"));
    EXPECT_EQ(item.m_strObject, Path("Camera", "20240131_MPO")) << "nine characters are kept, as in a DCF name";
    EXPECT_EQ(item.m_nDirNum, 99);
    EXPECT_EQ(item.m_nFileNum, 123456);
}

TEST_F(TreeConversion, WritesEveryFieldButTheReservedOnes) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    tree->m_dirGroup[0]->m_itemGroup[0].setFileTime(0x98765432U);
    CSFileListItem expected = WithoutMetadata(UsedItem());
    tree->GetFullPath(expected.m_strURI, sizeof expected.m_strURI, 0, tree->m_dirGroup[0]->m_itemGroup[0]);
    std::memset(expected.m_strObject, 0, sizeof expected.m_strObject);
    expected.m_eFileType = FILE_TYPE_JPG;
    expected.m_eObjectType = FILE_TYPE_NONE;
    expected.m_bProtect = false;
    expected.m_bWifi = false;
    expected.m_nDirNum = 100;
    expected.m_nFileNum = 7;
    expected.m_nFileTime = 0x98765432U;
    EXPECT_EQ(Fields(Convert(0, 0)), Fields(expected));

    const CSFileListItem fresh = Convert(0, 0, CSFileListItem());
    EXPECT_EQ(Bytes(fresh.m_aReserved1), std::string(36, '\0'));
    EXPECT_EQ(Bytes(fresh.m_aReserved2), std::string(24, '\0'));
}

TEST_F(TreeConversion, MetadataIsZeroBeforeACollectorRanButForTheLastSixWords) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    const CSFileListItem item = Convert(0, 0);
    EXPECT_EQ(Fields(item), Fields(WithoutMetadata(item)));
    EXPECT_EQ(item.m_aMeta[12], 0);
    EXPECT_EQ(item.m_aMeta[13], -1);
}

TEST_F(TreeConversion, HandsTheMetadataOnWithTheEighthTrailingWordBehindTheEleventh) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    tree->m_dirGroup[0]->setPhotoData(0, DistinctPhotoInfo());
    const CSFileListItem item = Convert(0, 0);
    EXPECT_EQ(item.m_nMetaFlag, 0x11);
    EXPECT_EQ(item.m_nMetaFlag2, 0x22);
    EXPECT_EQ(item.m_nMetaWord, 0x81000003U);
    EXPECT_EQ(item.m_nMetaByte, 0x44);
    EXPECT_EQ(item.m_nMetaQuad1, 1002);
    EXPECT_EQ(item.m_nMetaQuad2, 1003);
    EXPECT_EQ(std::string(item.m_szMetaText, sizeof item.m_szMetaText), "2024:02:29 23:59:58Z");
    const std::vector<int> expected = {1001, 1004, 2001, 2002, 2003, 2004, 2005, 2006, 2007, 2009,
                                       2010, 2011, 2008, 2012, 2013, 2014, 2015, 2016, 2017};
    EXPECT_EQ(std::vector<int>(std::begin(item.m_aMeta), std::end(item.m_aMeta)), expected);
}

TEST_F(TreeConversion, AShortDateTextReplacesALongOneWhole) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    PhotoInfo info = {};
    std::memcpy(info.date, "2024", 5);
    tree->m_dirGroup[0]->setPhotoData(0, info);
    EXPECT_STREQ(Convert(0, 0).m_szMetaText, "2024");
}

TEST_F(TreeConversion, GivesTheMarksOfTheTree) {
    card.AddFiles("100ABCDE", {DcfName(7), DcfName(8)});
    List();
    tree->m_dirGroup[0]->SetWifi(1, true);
    tree->m_dirGroup[0]->SetProtect(1, true);
    EXPECT_TRUE(Convert(0, 1).m_bWifi);
    EXPECT_TRUE(Convert(0, 1).m_bProtect);
    EXPECT_FALSE(Convert(0, 0).m_bWifi);
    EXPECT_FALSE(Convert(0, 0).m_bProtect);
}

TEST_F(TreeConversion, AsksTheCardForAnUnknownProtectionAndTheCopyRemembersIt) {
    card.AddFile("100ABCDE", DcfName(7), {"", 0555, {}});
    List();
    DCFItem source = tree->m_dirGroup[0]->GetItem(0);
    CSFileListItem item;
    tree->ConvertFileItem(source, &item, 0);
    EXPECT_TRUE(item.m_bProtect);
    EXPECT_TRUE(source.m_bProtectKnown);
    card.SetMode("100ABCDE", DcfName(7), 0644);
    tree->ConvertFileItem(source, &item, 0);
    EXPECT_TRUE(item.m_bProtect) << "a state once known is not asked for again";
    EXPECT_FALSE(Convert(0, 0).m_bProtect) << "a fresh copy knows nothing";
}

TEST_F(TreeConversion, TakesProtectionThroughTheDirectoryRegisteredForTheNumber) {
    card.AddFile("100ZZZZZ", DcfName(1)).AddFile("100PHOTO", DcfName(1), {"", 0444, {}});
    List();
    ASSERT_EQ(tree->m_nDirCount, 2);
    EXPECT_TRUE(Convert(0, 0).m_bProtect) << "100PHOTO is the registered one, although the file lies in 100ZZZZZ";
}

TEST_F(TreeConversion, LeavesNothingOfAnEarlierCompanionPath) {
    card.AddFiles("100ABCDE", {DcfName(7), DcfName(8), DcfName(8, "SRW")});
    List();
    CSFileListItem item = Convert(0, 0);
    ASSERT_EQ(item.m_strObject, Path("100ABCDE", DcfName(8, "SRW")));
    item = Convert(0, 1, item);
    EXPECT_EQ(Bytes(item.m_strObject), std::string(99, '\0'));
}

// ---- Limits of the paths: "/DCIM/100ABCDE/KVR_0001.JPG" has 27 characters ----

TEST(TreeConversionLimit, APathOfNinetyEightCharactersIsWhole) {
    StartAfresh();
    Card card(71);
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(1, "SRW")});
    const auto tree = ListTree(card);
    CSFileListItem item = UsedItem();
    EXPECT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(std::strlen(item.m_strURI), 98U);
    EXPECT_EQ(item.m_strURI, card.Path("100ABCDE", "KVR_0001.JPG"));
    EXPECT_EQ(item.m_strObject, card.Path("100ABCDE", "KVR_0001.SRW"));
    EXPECT_EQ(tree->GetInfo(item.m_strURI, &item), 0);
}

TEST(TreeConversionLimit, APathOfNinetyNineCharactersIsCut) {
    StartAfresh();
    for (const std::size_t length : {std::size_t{72}, std::size_t{75}}) {
        Card card(length);
        card.AddFile("100ABCDE", DcfName(1), {"", 0444, {}}).AddFile("100ABCDE", DcfName(1, "SRW"));
        const auto tree = ListTree(card);
        CSFileListItem item = UsedItem();
        EXPECT_EQ(tree->GetFirst(&item), 0);
        EXPECT_EQ(item.m_strURI, card.Path("100ABCDE", "KVR_0001.JPG").substr(0, 98));
        EXPECT_EQ(item.m_strObject, card.Path("100ABCDE", "KVR_0001.SRW").substr(0, 98));
        EXPECT_EQ(CursorOf(*tree), (Cursor{100, 1, 0, 0, 0}));
        EXPECT_FALSE(item.m_bProtect) << "there is no file of the cut name";
        EXPECT_EQ(tree->GetInfo(item.m_strURI, &item), 0) << "the numbers are still in it";
    }
}

TEST(TreeConversionLimit, APathCutWithinItsFileNumberIsFatal) {
    StartAfresh();
    Card card(76);
    card.AddFile("100ABCDE", DcfName(1234));
    const auto tree = ListTree(card);
    CSFileListItem item;
    EXPECT_TRUE(DiesByAssertion(
        RunInChild([&] { tree->GetFirst(&item); }),
        {"it != m_itemGroup.end()", "cannot found fnum = 123", "CSDCFDir", "int CSDCFDir::GetFidx(int)"}));
    EXPECT_EQ(tree->GetAtSimply(0, &item), 0) << "which looks nothing up";
    EXPECT_EQ(item.m_strURI, card.Path("100ABCDE", "KVR_1234.JPG").substr(0, 98));
}

// ---- The file is looked up again ----

const ExpectedAssertion kNoFileFive = {"it != m_itemGroup.end()", "cannot found fnum = 5", "CSDCFDir",
                                       "int CSDCFDir::GetFidx(int)"};

TEST_F(TreeConversion, WithoutMetadataLooksTheFileUpAgainWhetherOrNotThereIsACollector) {
    card.AddFile("100ZZZZZ", DcfName(1)).AddFiles("100PHOTO", {DcfName(1), DcfName(5), DcfName(5, "SRW")});
    card.AddFile("100PHOTO", DcfName(6, "MP4"));
    List();
    ASSERT_EQ(tree->m_nDirCount, 2);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { Convert(1, 1); }), kNoFileFive));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { Convert(1, 0); }), {"it != m_itemGroup.end()", "cannot found fnum = 6",
                                                                     "CSDCFDir", "int CSDCFDir::GetFidx(int)"}))
        << "movies too";
    EXPECT_EQ(Convert(1, 2).m_strURI, Path("100PHOTO", DcfName(1))) << "a number that the first directory holds too";
}

TEST_F(TreeConversion, WithMetadataLooksNothingUp) {
    card.AddFile("100ZZZZZ", DcfName(1)).AddFile("100PHOTO", DcfName(5));
    List();
    tree->m_dirGroup[1]->setPhotoData(0, DistinctPhotoInfo());
    EXPECT_EQ(Convert(1, 0).m_nMetaFlag, 0x11);
}

TEST_F(TreeConversion, ADirectoryTakenForCameraIsLookedUpUnderItsNumber) {
    // Its name passes the syntax as 999, its first three characters read 99.
    card.AddFile("0999ABCD", DcfName(5)).AddFile("Camera", CameraName(7));
    List();
    ASSERT_EQ(tree->m_nDirCount, 2);
    EXPECT_EQ(Convert(0, 0).m_nDirNum, 99);
    EXPECT_EQ(Convert(0, 0).m_nFileNum, 5);
    CSFileListItem item;
    EXPECT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 5, 0, 0, 0}));
    EXPECT_TRUE(
        DiesByAssertion(RunInChild([&] { tree->GetNext(&item); }),
                        {"it != m_itemGroup.end()", "cannot found fnum = 7", "CSDCFDir", "int CSDCFDir::GetFidx(int)"}))
        << "the real \"Camera\" is the second directory of that number";
}

TEST_F(TreeConversion, ADirectoryTakenForCameraIsLeftOutWithIt) {
    card.AddFile("0999ABCD", DcfName(5)).AddFile("Camera", CameraName(7));
    List(false);
    EXPECT_EQ(tree->m_nDirCount, 0);
}

} // namespace
} // namespace dcftest
