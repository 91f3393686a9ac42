// The tree's cursor: moving it to the first, last, next and previous file and to a path, and reading it back.
#include "Scenario.h"

namespace dcftest {
namespace {

class TreeCursor : public TreeTest {
protected:
    /// 102: files 2 and 1; 101: none; 100: file 5. Three files in all.
    void ListThreeDirectories() {
        card.AddFiles("102ABCDE", {DcfName(1), DcfName(2)}).AddDir("101ABCDE").AddFile("100ABCDE", DcfName(5));
        List();
    }

    /// 999 and 100 hold nothing; 103: files 9 and 4; Camera: numbers 7 and 0.
    void ListWithCameraBehindEmptyDirectories() {
        card.AddDir("999ABCDE").AddFiles("103ABCDE", {DcfName(9), DcfName(4)}).AddDir("100ABCDE");
        card.AddFiles("Camera", {"20240101_000007.JPG", "20240102_000000.JPG"});
        List();
    }

    /// Names the files that an operation reaches, one call after the other, until it gives -1.
    std::vector<std::string> Walk(int (CSDCFList::*move)(CSFileListItem*)) {
        std::vector<std::string> names;
        CSFileListItem reached;
        while ((tree.get()->*move)(&reached) == 0) {
            const std::string path = reached.m_strURI;
            names.push_back(path.substr(card.Dcim().size() + 1));
        }
        return names;
    }

    CSFileListItem item;
};

TEST_F(TreeCursor, IsUnsetInANewTree) {
    CSDCFList fresh;
    EXPECT_EQ(CursorOf(fresh), kUnsetCursor);
    EXPECT_STREQ(fresh.m_CurItem.getFileName(), "");
    EXPECT_EQ(fresh.GetCurIndex(), -1);
}

TEST_F(TreeCursor, IsStillUnsetWhenTheTreeHasListedItsCard) {
    ListThreeDirectories();
    EXPECT_EQ(CursorOf(*tree), kUnsetCursor);
    EXPECT_EQ(tree->GetCurIndex(), -1);
}

TEST_F(TreeCursor, GetFirstTakesTheHighestFileOfTheHighestDirectory) {
    ListThreeDirectories();
    EXPECT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 2, 0, 0, 0}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0002.JPG");
    EXPECT_EQ(item.m_strURI, Path("102ABCDE", "KVR_0002.JPG"));
}

TEST_F(TreeCursor, GetFirstPassesOverEmptyDirectoriesInFront) {
    ListWithCameraBehindEmptyDirectories();
    EXPECT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 9, 1, 0, 0}));
    EXPECT_EQ(item.m_strURI, Path("103ABCDE", "KVR_0009.JPG"));
}

TEST_F(TreeCursor, GetLastTakesTheLowestFileOfTheLastDirectory) {
    card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFiles("100ABCDE", {DcfName(8), DcfName(6), DcfName(3)});
    List();
    EXPECT_EQ(tree->GetLast(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 3, 1, 2, 4}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0003.JPG");
    EXPECT_EQ(item.m_strURI, Path("100ABCDE", "KVR_0003.JPG"));
}

TEST_F(TreeCursor, GetLastPassesOverEmptyDirectoriesAtTheEnd) {
    card.AddFiles("103ABCDE", {DcfName(9), DcfName(4)}).AddDir("101ABCDE").AddDir("Camera");
    List();
    ASSERT_EQ(tree->m_nDirCount, 3);
    EXPECT_EQ(tree->GetLast(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 4, 0, 1, 1}));
}

TEST_F(TreeCursor, GetFirstAndGetLastGiveMinusOneWithoutAFileAndLeaveEverythingAlone) {
    card.AddDir("101ABCDE").AddDir("Camera");
    List();
    const std::string before = Fields(item);
    EXPECT_EQ(tree->GetFirst(&item), -1);
    EXPECT_EQ(tree->GetLast(&item), -1);
    EXPECT_EQ(CursorOf(*tree), kUnsetCursor);
    EXPECT_EQ(Fields(item), before);
    EXPECT_EQ(tree->GetFirst(nullptr), -1);
    EXPECT_EQ(tree->GetLast(nullptr), -1);
}

TEST_F(TreeCursor, GetNextStepsThroughADirectoryAndOverAnEmptyOne) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(tree->GetNext(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 1, 0, 1, 1}));
    EXPECT_EQ(item.m_strURI, Path("102ABCDE", "KVR_0001.JPG"));
    EXPECT_EQ(tree->GetNext(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 2, 0, 2}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0005.JPG");
    EXPECT_EQ(item.m_strURI, Path("100ABCDE", "KVR_0005.JPG"));
}

TEST_F(TreeCursor, GetNextAtTheEndGivesMinusOneAndLeavesCursorAndItemAlone) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetLast(&item), 0);
    CSFileListItem used = UsedItem();
    const std::string before = Fields(used);
    EXPECT_EQ(tree->GetNext(&used), -1);
    EXPECT_EQ(tree->GetNext(nullptr), -1);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 2, 0, 2}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0005.JPG");
    EXPECT_EQ(Fields(used), before);
}

TEST_F(TreeCursor, GetNextPassesOverEmptyDirectoriesUpToTheEnd) {
    card.AddFile("103ABCDE", DcfName(1)).AddDir("102ABCDE").AddDir("101ABCDE");
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(tree->GetNext(&item), -1);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 1, 0, 0, 0}));
}

TEST_F(TreeCursor, GetPrevStepsBackThroughADirectoryAndOverAnEmptyOne) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetLast(&item), 0);
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 1, 0, 1, 1}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0001.JPG");
    EXPECT_EQ(item.m_strURI, Path("102ABCDE", "KVR_0001.JPG"));
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 2, 0, 0, 0}));
    EXPECT_EQ(item.m_strURI, Path("102ABCDE", "KVR_0002.JPG"));
}

TEST_F(TreeCursor, GetPrevAtTheStartGivesMinusOneAndLeavesCursorAndItemAlone) {
    ListWithCameraBehindEmptyDirectories();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    CSFileListItem used = UsedItem();
    const std::string before = Fields(used);
    EXPECT_EQ(tree->GetPrev(&used), -1);
    EXPECT_EQ(tree->GetPrev(nullptr), -1);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 9, 1, 0, 0}));
    EXPECT_EQ(Fields(used), before);
}

TEST_F(TreeCursor, WalksTheWholeListInOrderAndBack) {
    ListWithCameraBehindEmptyDirectories();
    const std::vector<std::string> order = {"103ABCDE/KVR_0009.JPG", "103ABCDE/KVR_0004.JPG",
                                            "Camera/20240101_000007.JPG", "Camera/20240102_000000.JPG"};
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(Walk(&CSDCFList::GetNext), (std::vector<std::string>{order[1], order[2], order[3]}));
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 0, 3, 1, 3}));
    EXPECT_EQ(Walk(&CSDCFList::GetPrev), (std::vector<std::string>{order[2], order[1], order[0]}));
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 9, 1, 0, 0}));
}

TEST_F(TreeCursor, OnACameraFileOfNumberZeroPassesTheChecks) {
    ListWithCameraBehindEmptyDirectories();
    ASSERT_EQ(tree->GetLast(&item), 0);
    ASSERT_EQ(CursorOf(*tree), (Cursor{99, 0, 3, 1, 3}));
    EXPECT_EQ(tree->GetCur(&item), 0);
    EXPECT_EQ(item.m_strURI, Path("Camera", "20240102_000000.JPG"));
    EXPECT_EQ(tree->GetNext(&item), -1);
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 0, 3, 1, 3}));
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 7, 3, 0, 2}));
}

TEST_F(TreeCursor, GetCurReadsTheFileAtTheCursorAfreshFromTheTree) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), 0);
    tree->m_dirGroup[0]->SetWifi(1, true);
    tree->m_dirGroup[0]->SetProtect(1, true);
    CSFileListItem current;
    EXPECT_EQ(tree->GetCur(&current), 0);
    EXPECT_EQ(current.m_strURI, Path("102ABCDE", "KVR_0001.JPG"));
    EXPECT_TRUE(current.m_bWifi);
    EXPECT_TRUE(current.m_bProtect);
    EXPECT_TRUE(tree->m_CurItem.m_bWifi);
    EXPECT_TRUE(tree->m_CurItem.m_bProtect);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 1, 0, 1, 1}));
}

TEST_F(TreeCursor, GetCurRefreshesTheNumbersAndTheListPosition) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetLast(&item), 0);
    tree->m_dirGroup[0]->RemoveItem(0);
    tree->m_nCurDnum = 555;
    tree->m_nCurFnum = 777;
    EXPECT_EQ(tree->GetCur(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 2, 0, 1}));
}

TEST_F(TreeCursor, GetCurGivesMinusOneForANegativeFileNumber) {
    // Six characters of a "Camera" name may read as a negative number.
    card.AddFile("Camera", "20240101_-00012.JPG");
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(CursorOf(*tree), (Cursor{99, -12, 0, 0, 0}));
    CSFileListItem used = UsedItem();
    const std::string before = Fields(used);
    EXPECT_EQ(tree->GetCur(&used), -1);
    EXPECT_EQ(Fields(used), before);
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, -12, 0, 0, 0}));
}

TEST_F(TreeCursor, TakesUpTheCopyThatTheConversionWorkedOn) {
    card.AddFile("100ABCDE", DcfName(1), {"", 0444, {}});
    List();
    CSDCFList::RegisterPhotoMetadataCB([](char*, PhotoInfo* info) {
        info->attributeWord = 7;
        return 0;
    });
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_TRUE(tree->m_CurItem.m_bProtectKnown);
    EXPECT_TRUE(tree->m_CurItem.m_bProtect);
    EXPECT_FALSE(tree->m_CurItem.m_bMetadata) << "what was just collected stands in the tree alone";
    EXPECT_FALSE(tree->m_dirGroup[0]->m_itemGroup[0].m_bProtectKnown) << "items are copied out by value";
    EXPECT_TRUE(tree->m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
    ASSERT_EQ(tree->GetCur(&item), 0);
    EXPECT_TRUE(tree->m_CurItem.m_bMetadata);
    EXPECT_EQ(tree->m_CurItem.m_photo.attributeWord, 7U);
}

TEST_F(TreeCursor, SetCurItemStoresWhatItIsGivenButTheFileIndex) {
    ListThreeDirectories();
    DCFItem given;
    given.setFileNum(123);
    given.setDirNum(100);
    given.setFileName("ABCD0123.JPG");
    tree->m_CurFileIndex = 40;
    EXPECT_EQ(tree->SetCurItem(500, 600, 2, given), 2 + 40);
    EXPECT_EQ(CursorOf(*tree), (Cursor{500, 600, 2, 40, 42}));
    EXPECT_STREQ(tree->m_CurItem.getFileName(), "ABCD0123.JPG");
}

TEST_F(TreeCursor, GetCurIndexSumsTheDirectoriesBeforeTheCursor) {
    card.AddFiles("103ABCDE", {DcfName(1), DcfName(2), DcfName(3)}).AddDir("102ABCDE");
    card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFile("100ABCDE", DcfName(1));
    List();
    tree->m_CurFileIndex = 1;
    const std::vector<int> expected = {1, 4, 4, 6};
    for (int didx = 0; didx < 4; ++didx) {
        tree->m_nCurDidx = didx;
        EXPECT_EQ(tree->GetCurIndex(), expected[static_cast<std::size_t>(didx)]) << didx;
    }
    tree->m_nCurDidx = -1;
    EXPECT_EQ(tree->GetCurIndex(), 1) << "without a directory it is the file's position alone";
    EXPECT_EQ(tree->m_nCurListIndex, -1) << "asking stores nothing";
}

TEST_F(TreeCursor, AFailedMoveIsNoEndOfBrowsing) {
    ListThreeDirectories();
    ASSERT_EQ(tree->GetLast(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), -1);
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{102, 1, 0, 1, 1}));
    EXPECT_EQ(tree->GetNext(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 2, 0, 2}));
}

TEST_F(TreeCursor, LogsNothing) {
    ListThreeDirectories();
    (void)tree->GetFirst(&item);
    (void)tree->GetNext(&item);
    (void)tree->GetPrev(&item);
    (void)tree->GetLast(&item);
    (void)tree->GetCur(&item);
    (void)tree->SetCurFile(Path("102ABCDE", "KVR_0001.JPG").c_str());
    (void)tree->GetCurIndex();
    (void)tree->GetAt(0, &item);
    (void)tree->GetAtSimply(0, &item);
    EXPECT_EQ(TakeLog(), Log{});
}

} // namespace
} // namespace dcftest
