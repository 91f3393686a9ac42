// Files of the tree by their path: SetCurFile, GetInfo and SetObject.
#include "Scenario.h"

#include <cstdio>

#include "PosixSeam.h"

namespace dcftest {
namespace {

int g_calls = 0;

int CountingCollector(char* /*path*/, PhotoInfo* /*info*/) {
    ++g_calls;
    return -1;
}

class TreePath : public TreeTest {
protected:
    TreePath() {
        g_calls = 0;
    }

    /// 101: files 3 (with a raw companion), 2 and 1; 100: file 5; Camera: numbers 7, 8.
    void ListMixedCard() {
        card.AddFiles("101ABCDE", {DcfName(1), DcfName(2), DcfName(3), DcfName(3, "SRW")});
        card.AddFile("100ABCDE", DcfName(5)).AddFiles("Camera", {CameraName(7), CameraName(8)});
        List();
    }

    CSFileListItem item;
};

// ---- SetCurFile ----

TEST_F(TreePath, SetCurFileMovesTheCursorToAPath) {
    ListMixedCard();
    EXPECT_EQ(tree->SetCurFile(Path("101ABCDE", "KVR_0001.JPG").c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 1, 0, 2, 2}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0001.JPG");
    EXPECT_EQ(tree->SetCurFile(Path("100ABCDE", "KVR_0005.JPG").c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 1, 0, 3}));
    EXPECT_EQ(tree->SetCurFile(Path("Camera", CameraName(8)).c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 8, 2, 1, 5}));
    EXPECT_EQ(tree->m_CurItem.getFileName(), CameraName(8));
}

TEST_F(TreePath, SetCurFileReadsNumbersAloneSoACompanionsPathWillDo) {
    ListMixedCard();
    EXPECT_EQ(tree->SetCurFile(Path("101ABCDE", "KVR_0003.SRW").c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 3, 0, 0, 0}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0003.JPG");
    EXPECT_EQ(tree->SetCurFile(Path("101OTHER", "ABCD0002").c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 2, 0, 1, 1}));
}

TEST_F(TreePath, SetCurFileNeitherConvertsNorAsksTheCard) {
    ListMixedCard();
    CSDCFList::RegisterPhotoMetadataCB(CountingCollector);
    const PosixSeam seam;
    EXPECT_EQ(tree->SetCurFile(Path("101ABCDE", "KVR_0002.JPG").c_str()), 0);
    EXPECT_EQ(seam.Texts(), std::vector<std::string>{});
    EXPECT_EQ(g_calls, 0);
    EXPECT_FALSE(tree->m_CurItem.m_bProtectKnown);
}

TEST_F(TreePath, SetCurFileTakesTheFirstDirectoryOfANumber) {
    card.AddFiles("100ZZZZZ", {DcfName(1), DcfName(2)}).AddFiles("100PHOTO", {DcfName(1), DcfName(2)});
    List();
    ASSERT_EQ(tree->m_nDirCount, 2);
    EXPECT_EQ(tree->SetCurFile(Path("100PHOTO", DcfName(1)).c_str()), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 1, 0, 1, 1}));
}

// ---- GetInfo ----

TEST_F(TreePath, GetInfoFillsAnItemAndLeavesTheCursor) {
    ListMixedCard();
    ASSERT_EQ(tree->GetLast(&item), 0);
    const Cursor before = CursorOf(*tree);
    CSFileListItem found = UsedItem();
    EXPECT_EQ(tree->GetInfo(Path("101ABCDE", "KVR_0003.JPG").data(), &found), 0);
    CSFileListItem expected = UsedItem();
    DCFItem source = tree->m_dirGroup[0]->GetItem(0);
    tree->ConvertFileItem(source, &expected, 0);
    EXPECT_STREQ(found.m_strURI, expected.m_strURI);
    EXPECT_EQ(found.m_strObject, Path("101ABCDE", "KVR_0003.SRW"));
    EXPECT_EQ(found.m_nDirNum, 101);
    EXPECT_EQ(found.m_nFileNum, 3);
    EXPECT_EQ(found.m_eFileType, FILE_TYPE_JPG);
    EXPECT_EQ(found.m_eObjectType, FILE_TYPE_SRW);
    EXPECT_EQ(CursorOf(*tree), before);
    EXPECT_EQ(tree->m_CurItem.getFileName(), CameraName(8));
}

TEST_F(TreePath, GetInfoHandsThePathBackAsItWasGiven) {
    ListMixedCard();
    const std::string companion = Path("101ABCDE", "KVR_0003.SRW");
    EXPECT_EQ(tree->GetInfo(std::string(companion).data(), &item), 0);
    EXPECT_EQ(item.m_strURI, companion) << "instead of the composed path";
    EXPECT_EQ(item.m_strObject, companion);
    EXPECT_EQ(item.m_eFileType, FILE_TYPE_JPG);
}

TEST_F(TreePath, GetInfoTakesAnItemsOwnPath) {
    ListMixedCard();
    for (const auto& [dir, name] : {std::pair("101ABCDE", DcfName(2)), std::pair("Camera", CameraName(7))}) {
        CSFileListItem own;
        (void)std::snprintf(own.m_strURI, sizeof own.m_strURI, "%s", Path(dir, name).c_str());
        EXPECT_EQ(tree->GetInfo(own.m_strURI, &own), 0);
        EXPECT_EQ(own.m_strURI, Path(dir, name));
        EXPECT_EQ(own.m_nFileNum, tree->m_dirGroup[dir[0] == 'C' ? 2 : 0]->GetItem(dir[0] == 'C' ? 0 : 1).m_nFileNum);
    }
}

TEST_F(TreePath, GetInfoTakesAnItemsOwnCompanionPath) {
    ListMixedCard();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(tree->GetInfo(item.m_strObject, &item), 0);
    EXPECT_EQ(item.m_strURI, Path("101ABCDE", "KVR_0003.SRW"));
    EXPECT_EQ(item.m_strObject, Path("101ABCDE", "KVR_0003.SRW"));
}

TEST_F(TreePath, GetInfoAcceptsNinetyEightCharactersAndRefusesNinetyNineBehindAFilledItem) {
    ListMixedCard();
    const std::string path = Path("100ABCDE", "KVR_0005.JPG");
    std::string longest = path + std::string(98 - path.size(), 'x');
    EXPECT_EQ(tree->GetInfo(longest.data(), &item), 0);
    EXPECT_EQ(item.m_strURI, longest);

    for (const std::size_t length : {std::size_t{99}, std::size_t{100}, std::size_t{300}}) {
        CSFileListItem used = UsedItem();
        std::string tooLong = path + std::string(length - path.size(), 'x');
        EXPECT_EQ(tree->GetInfo(tooLong.data(), &used), -1);
        EXPECT_EQ(used.m_strURI, path) << "the conversion's own path stays";
        EXPECT_EQ(used.m_nDirNum, 100);
        EXPECT_EQ(used.m_nFileNum, 5);
        EXPECT_STREQ(used.m_strObject, "");
    }
}

TEST_F(TreePath, GetInfoCallsTheCollector) {
    ListMixedCard();
    CSDCFList::RegisterPhotoMetadataCB(CountingCollector);
    EXPECT_EQ(tree->GetInfo(Path("101ABCDE", "KVR_0003.JPG").data(), &item), 0);
    EXPECT_EQ(g_calls, 1);
}

// ---- SetObject ----

TEST_F(TreePath, SetObjectMarksTheNewestFileOfThePathsDirectory) {
    ListMixedCard();
    ASSERT_EQ(tree->GetLast(&item), 0);
    const Cursor before = CursorOf(*tree);
    EXPECT_EQ(tree->SetObject(Path("101ABCDE", "KVR_0001.JPG").c_str(), FILE_TYPE_MPO), 0);
    EXPECT_EQ(tree->m_dirGroup[0]->GetItem(0).m_eObjectType, FILE_TYPE_MPO) << "the file number is not used";
    EXPECT_EQ(tree->m_dirGroup[0]->GetItem(2).m_eObjectType, FILE_TYPE_NONE);
    EXPECT_EQ(tree->m_dirGroup[1]->GetItem(0).m_eObjectType, FILE_TYPE_NONE);
    EXPECT_EQ(tree->SetObject(Path("100ABCDE", "KVR_9999.JPG").c_str(), FILE_TYPE_SRW), 0) << "it need not exist";
    EXPECT_EQ(tree->m_dirGroup[1]->GetItem(0).m_eObjectType, FILE_TYPE_SRW);
    EXPECT_EQ(tree->SetObject(Path("Camera", CameraName(8)).c_str(), FILE_TYPE_SRW), 0);
    EXPECT_EQ(tree->m_dirGroup[2]->GetItem(0).m_eObjectType, FILE_TYPE_SRW);
    EXPECT_EQ(CursorOf(*tree), before);
}

TEST_F(TreePath, SetObjectInAnEmptyDirectoryHasNothingToMark) {
    card.AddDir("101ABCDE");
    List();
    EXPECT_EQ(tree->SetObject(Path("101ABCDE", "KVR_0001.JPG").c_str(), FILE_TYPE_SRW), 0);
    EXPECT_EQ(tree->m_dirGroup[0]->GetCount(), 0);
}

} // namespace
} // namespace dcftest
