// A cursor that a deletion has left behind: its directory or its file is not there any more. Directories and files are
// taken out of the tree by hand here.
#include "Scenario.h"

namespace dcftest {
namespace {

class TreeStaleCursor : public TreeTest {
protected:
    /// 103: files 3, 2 and 1; 102: none; 101: files 6 and 5; 100: files 9, 8 and 7.
    TreeStaleCursor() {
        card.AddFiles("103ABCDE", {DcfName(1), DcfName(2), DcfName(3)}).AddDir("102ABCDE");
        card.AddFiles("101ABCDE", {DcfName(5), DcfName(6)});
        card.AddFiles("100ABCDE", {DcfName(7), DcfName(8), DcfName(9)});
        List();
    }

    void TakeOutDirectory(int didx) {
        const auto place = tree->m_dirGroup.begin() + didx;
        delete *place;
        tree->m_dirGroup.erase(place);
        --tree->m_nDirCount;
    }

    void MoveTo(const std::string& dir, int fnum) {
        ASSERT_EQ(tree->SetCurFile(Path(dir, DcfName(fnum)).c_str()), 0);
    }

    /// Nothing that an operation may touch has changed behind a -1.
    void ExpectRefused(int (CSDCFList::*operation)(CSFileListItem*)) {
        const Cursor before = CursorOf(*tree);
        CSFileListItem used = UsedItem();
        const std::string fields = Fields(used);
        EXPECT_EQ((tree.get()->*operation)(&used), -1);
        EXPECT_EQ(CursorOf(*tree), before);
        EXPECT_EQ(Fields(used), fields);
    }

    CSFileListItem item;
};

ExpectedAssertion NoPosition(int index) {
    return {"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(index), "CSDCFDir",
            "DCFItem CSDCFDir::GetItem(int)"};
}

TEST_F(TreeStaleCursor, WithoutItsDirectoryGivesMinusOneFromGetCurAndGetNext) {
    MoveTo("100ABCDE", 9);
    TakeOutDirectory(3);
    ExpectRefused(&CSDCFList::GetCur);
    ExpectRefused(&CSDCFList::GetNext);
    TakeOutDirectory(2);
    ExpectRefused(&CSDCFList::GetCur);
    ExpectRefused(&CSDCFList::GetNext);
}

TEST_F(TreeStaleCursor, WithoutItsDirectoryWalksBackFromTheLastDirectory) {
    MoveTo("100ABCDE", 9);
    TakeOutDirectory(3);
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 5, 2, 1, 4}));
    EXPECT_EQ(item.m_strURI, Path("101ABCDE", "KVR_0005.JPG"));
}

TEST_F(TreeStaleCursor, FarBehindTheLastDirectoryWalksBackAllTheSame) {
    MoveTo("100ABCDE", 9);
    TakeOutDirectory(3);
    TakeOutDirectory(2);
    EXPECT_EQ(tree->GetPrev(&item), 0) << "over the empty 102";
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 1, 0, 2, 2}));
}

TEST_F(TreeStaleCursor, WithoutItsDirectoryAndBehindItsFirstFileDoesNotWalkBack) {
    MoveTo("100ABCDE", 7);
    ASSERT_EQ(tree->m_CurFileIndex, 2);
    TakeOutDirectory(3);
    ExpectRefused(&CSDCFList::GetPrev);
}

TEST_F(TreeStaleCursor, WithoutAnyDirectoryGivesMinusOne) {
    MoveTo("101ABCDE", 6);
    for (int didx = 3; didx >= 0; --didx) {
        TakeOutDirectory(didx);
    }
    ExpectRefused(&CSDCFList::GetCur);
    ExpectRefused(&CSDCFList::GetNext);
    ExpectRefused(&CSDCFList::GetPrev);
    EXPECT_EQ(tree->GetCurIndex(), 0);
}

TEST_F(TreeStaleCursor, SumsOverTheDirectoriesThatAreLeft) {
    MoveTo("100ABCDE", 8);
    ASSERT_EQ(tree->GetCurIndex(), 6);
    TakeOutDirectory(3);
    EXPECT_EQ(tree->GetCurIndex(), 5 + 1);
    TakeOutDirectory(0);
    EXPECT_EQ(tree->GetCurIndex(), 2 + 1);
}

TEST_F(TreeStaleCursor, OnTheDirectoryThatMovedUpReadsThatOne) {
    MoveTo("101ABCDE", 5);
    TakeOutDirectory(2);
    EXPECT_EQ(tree->GetCur(&item), 0) << "the position is what the cursor knows";
    EXPECT_EQ(item.m_strURI, Path("100ABCDE", "KVR_0008.JPG"));
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 8, 2, 1, 4}));
}

TEST_F(TreeStaleCursor, BehindTheFilesOfItsDirectoryIsFatalForGetCur) {
    MoveTo("100ABCDE", 7);
    tree->m_dirGroup[3]->RemoveItem(0);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetCur(&item); }), NoPosition(2)));
}

TEST_F(TreeStaleCursor, JustBehindTheFilesOfItsDirectoryStepsBackOntoTheLastOne) {
    MoveTo("100ABCDE", 7);
    tree->m_dirGroup[3]->RemoveItem(2);
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 8, 3, 1, 6}));
}

TEST_F(TreeStaleCursor, FarBehindTheFilesOfItsDirectoryIsFatalForGetPrev) {
    MoveTo("100ABCDE", 7);
    tree->m_dirGroup[3]->RemoveItems({1, 2});
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetPrev(&item); }), NoPosition(1)));
}

TEST_F(TreeStaleCursor, BehindTheFilesOfItsDirectoryMovesOnToTheNextDirectory) {
    MoveTo("101ABCDE", 5);
    tree->m_dirGroup[2]->RemoveItem(0);
    EXPECT_EQ(tree->GetNext(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 9, 3, 0, 4}));
}

TEST_F(TreeStaleCursor, InADirectoryThatHasBecomeEmptyMovesOnToTheNextOne) {
    MoveTo("103ABCDE", 3);
    tree->m_dirGroup[0]->m_itemGroup.clear();
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetCur(&item); }), NoPosition(0)));
    ExpectRefused(&CSDCFList::GetPrev);
    EXPECT_EQ(tree->GetNext(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 6, 2, 0, 0}));
}

TEST_F(TreeStaleCursor, InTheLastDirectoryThatHasBecomeEmptyIsAtTheEnd) {
    MoveTo("100ABCDE", 9);
    tree->m_dirGroup[3]->m_itemGroup.clear();
    ExpectRefused(&CSDCFList::GetNext);
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 5, 2, 1, 4}));
}

TEST_F(TreeStaleCursor, GetFirstAndGetLastSetItAgain) {
    MoveTo("100ABCDE", 7);
    TakeOutDirectory(3);
    EXPECT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 3, 0, 0, 0}));
    MoveTo("101ABCDE", 5);
    TakeOutDirectory(2);
    EXPECT_EQ(tree->GetLast(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{103, 1, 0, 2, 2}));
}

/// A camera cursor is checked no more than elsewhere: its number may be anything, its position must be there.
TEST_F(TreeStaleCursor, OnACameraThatIsGoneGivesMinusOne) {
    card.AddFiles("Camera", {CameraName(4), CameraName(5)});
    List();
    ASSERT_EQ(tree->GetLast(&item), 0);
    ASSERT_EQ(CursorOf(*tree), (Cursor{99, 5, 4, 1, 9}));
    TakeOutDirectory(4);
    ExpectRefused(&CSDCFList::GetCur);
    ExpectRefused(&CSDCFList::GetNext);
    ExpectRefused(&CSDCFList::GetPrev);
}

} // namespace
} // namespace dcftest
