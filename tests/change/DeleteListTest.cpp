// Deletion through the file list: one item, the selection, everything. What the list itself adds: refusals, its count,
// the selection, the cursor, the sync, the log.
#include <cerrno>
#include <climits>
#include <stdexcept>

#include "Change.h"

namespace dcftest {
namespace {

class ListDelete : public FileListTest {
protected:
    /// Ten files: positions 0 to 3 in 102 (14 to 11), 4 to 8 in 101 (9 to 5), 9 in 100 (file 1, with a companion).
    void ListTen() {
        card.AddFiles("102ABCDE", {DcfName(14), DcfName(13), DcfName(12), DcfName(11)});
        card.AddFiles("101ABCDE", {DcfName(9), DcfName(8), DcfName(7), DcfName(6), DcfName(5)});
        card.AddFiles("100ABCDE", {DcfName(1), DcfName(1, "SRW")});
        ASSERT_EQ(List(), 10);
    }

    CSFileListItem ItemOf(int position) {
        CSFileListItem item;
        EXPECT_EQ(list->GetAt(position, &item), 0);
        (void)TakeLog();
        return item;
    }

    void Select(const std::vector<int>& positions) {
        for (const int position : positions) {
            list->SetSel(position, true);
        }
        (void)TakeLog();
    }
};

TEST_F(ListDelete, OfAnItemRemovesItAndSyncsLast) {
    ListTen();
    CSFileListItem item = ItemOf(9);
    Select({2, 5});
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->Delete(&item), 0); }),
              (Texts{"stat 100ABCDE/KVR_0001.JPG", "unlink 100ABCDE/KVR_0001.JPG", "unlink 100ABCDE/KVR_0001.SRW",
                     "opendir 100ABCDE", "unlink 100ABCDE", "remove 100ABCDE", "sync"}));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList Delete start"}));
    EXPECT_EQ(list->m_nList, 9);
    EXPECT_EQ(list->GetCount(), 9);
    EXPECT_EQ(list->GetSelCount(), 0);
    EXPECT_FALSE(card.Exists("100ABCDE"));
}

TEST_F(ListDelete, OfAnItemHasCountAndSelectionRightWhenItSyncs) {
    ListTen();
    CSFileListItem item = ItemOf(4);
    Select({2});
    int count = -1;
    std::size_t selected = 99;
    (void)CallsOf(
        card, [&] { list->Delete(&item); },
        [&](PosixSeam& seam) {
            seam.Before("sync", 1, [&] {
                count = list->m_nList;
                selected = list->m_vecSel.size();
            });
        });
    EXPECT_EQ(count, 9);
    EXPECT_EQ(selected, 0U);
}

TEST_F(ListDelete, OfAnItemKeepsTheSelectionAndTheCountUntilTheTreeIsDone) {
    ListTen();
    CSFileListItem item = ItemOf(9);
    Select({2, 5});
    Positions selectedAtTheLastCall;
    int countAtTheLastCall = -1;
    (void)CallsOf(
        card, [&] { list->Delete(&item); },
        [&](PosixSeam& seam) {
            seam.Before("remove", 1, [&] { // the directory, the last that the tree touches
                selectedAtTheLastCall = list->m_vecSel;
                countAtTheLastCall = list->m_nList;
            });
        });
    EXPECT_EQ(selectedAtTheLastCall, (Positions{2, 5}));
    EXPECT_EQ(countAtTheLastCall, 10);
    EXPECT_EQ(list->GetSelCount(), 0);
}

TEST_F(ListDelete, OfAnItemThatIsMarkedProtectedIsRefusedAtOnce) {
    ListTen();
    CSFileListItem item = ItemOf(4);
    item.m_bProtect = true;
    Select({2, 5});
    const Texts before = EverythingIn(*list->m_pDCF);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->Delete(&item), -1); }), Texts{});
    EXPECT_EQ(TakeLog(), (Log{"CSFileList Delete start"}));
    EXPECT_EQ(EverythingIn(*list->m_pDCF), before);
    EXPECT_EQ(list->m_nList, 10);
    EXPECT_EQ(list->GetSelectIndecies(), (std::vector<int>{2, 5})) << "the selection is left";
    EXPECT_TRUE(card.Exists("101ABCDE", DcfName(9)));
}

TEST_F(ListDelete, OfAnItemGoesByTheItemsOwnMarkAndThenByTheTree) {
    ListTen();
    CSFileListItem item = ItemOf(4);
    list->m_pDCF->SetProtect(item.m_strURI, true);
    Select({2});
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->Delete(&item), 0); }), (Texts{"sync"})) << "the tree keeps it";
    EXPECT_TRUE(card.Exists("101ABCDE", DcfName(9)));
    EXPECT_EQ(list->GetCount(), 10);
    EXPECT_EQ(list->GetSelCount(), 0) << "the selection is emptied all the same";
}

TEST_F(ListDelete, OfAnItemMovesNoCursor) {
    ListTen();
    ASSERT_EQ(list->SetCurIndex(5), 0);
    const Cursor before = CursorOf(*list->m_pDCF);
    CSFileListItem item = ItemOf(0);
    ASSERT_EQ(list->Delete(&item), 0);
    EXPECT_EQ(list->m_nCurGetAtIdx, 5) << "nor its cached position";
    EXPECT_EQ(CursorOf(*list->m_pDCF), before);
    EXPECT_EQ(list->GetCurIndex(), 4) << "one file before it has gone";
}

TEST_F(ListDelete, OfANullItemIsFatal) {
    ListTen();
    const Ending ending = RunInChild([&] { list->Delete(nullptr); });
    EXPECT_TRUE(DiesByAssertion(ending, NoItem("virtual int CSFileList::Delete(CSFileListItem*)")));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Texts{"start"}));
}

TEST_F(ListDelete, OfAFileThatIsNotListedIsFatal) {
    ListTen();
    CSFileListItem item = ItemOf(4);
    ASSERT_EQ(list->Delete(&item), 0);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->Delete(&item); }), NoFile(9)));
}

TEST_F(ListDelete, OfTheSelectionPutsTheCursorBeforeTheFirstSelected) {
    ListTen();
    Select({7, 4});
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->DeleteSel(), 0); }),
              (Texts{"opendir 102ABCDE", "stat 101ABCDE/KVR_0006.JPG", "unlink 101ABCDE/KVR_0006.JPG",
                     "stat 101ABCDE/KVR_0009.JPG", "unlink 101ABCDE/KVR_0009.JPG", "opendir 101ABCDE",
                     "opendir 100ABCDE", "sync"}));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList DeleteSel start", "CSFileList SetCurIndex start",
                              "CSFileList GetAtSimply ++++++++++++++++++++ start index = 3", "CSFileList SetCur start",
                              "CSFileList GetCurIndex m_nCurGetAtIdx = 3"}));
    EXPECT_EQ(list->m_nList, 8);
    EXPECT_EQ(list->GetCount(), 8);
    EXPECT_EQ(list->m_nCurGetAtIdx, 3);
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{102, 11, 0, 3, 3}));
    EXPECT_EQ(list->GetSelCount(), 0);
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"102ABCDE: 14 13 12 11", "101ABCDE: 8 7 5", "100ABCDE: 1"}));
}

TEST_F(ListDelete, OfASelectionThatBeginsAtTheFirstFilePutsTheCursorThere) {
    ListTen();
    ASSERT_EQ(list->SetCurIndex(6), 0);
    Select({1, 0});
    EXPECT_EQ(list->DeleteSel(), 0);
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{102, 12, 0, 0, 0}));
    EXPECT_EQ(list->m_nCurGetAtIdx, 0);
}

TEST_F(ListDelete, OfASelectionWithANegativePositionPutsTheCursorOnTheFirstFile) {
    ListTen();
    for (const int negative : {-1, -5, INT_MIN}) {
        const Ending ending = RunInChild([&] {
            list->SetSel(9, true);
            list->SetSel(negative, true);
            EXPECT_EQ(list->DeleteSel(), 0);
            EXPECT_EQ(list->m_nCurGetAtIdx, 0);
            EXPECT_EQ(list->GetSelCount(), 0);
        });
        EXPECT_TRUE(ending.Completed()) << negative << ": " << ending.Describe();
        card.AddFiles("100ABCDE", {DcfName(1)}); // gone with the child's deletion
    }
}

TEST_F(ListDelete, OfTheSelectionSortsItAndEmptiesItBeforeTheSync) {
    ListTen();
    Select({8, 2, 5});
    std::vector<int> selectedWhileDeleting;
    std::size_t selectedAtSync = 99;
    (void)CallsOf(
        card, [&] { list->DeleteSel(); },
        [&](PosixSeam& seam) {
            seam.Before("unlink", 1, [&] { selectedWhileDeleting = list->m_vecSel; });
            seam.Before("sync", 1, [&] { selectedAtSync = list->m_vecSel.size(); });
        });
    EXPECT_EQ(selectedWhileDeleting, (std::vector<int>{2, 5, 8}));
    EXPECT_EQ(selectedAtSync, 0U);
}

TEST_F(ListDelete, OfTheSelectionKeepsProtectedFilesAndCountsFromTheFirstSelectedAllTheSame) {
    ListTen();
    card.SetMode("102ABCDE", DcfName(12), 0444);
    Select({2, 6});
    EXPECT_EQ(list->DeleteSel(), 0);
    EXPECT_EQ(list->m_nList, 9);
    EXPECT_EQ(list->m_nCurGetAtIdx, 1);
    EXPECT_TRUE(card.Exists("102ABCDE", DcfName(12)));
}

TEST_F(ListDelete, OfEveryFileBySelectionMovesNoCursor) {
    card.AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
    ASSERT_EQ(List(), 2);
    ASSERT_EQ(list->SetCurIndex(1), 0);
    Select({0, 1});
    const Cursor before = CursorOf(*list->m_pDCF);
    const Texts calls = CallsOf(card, [&] { EXPECT_EQ(list->DeleteSel(), 0); });
    EXPECT_EQ(calls.back(), "sync");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "sync"), 1);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList DeleteSel start"}));
    EXPECT_EQ(list->m_nList, 0);
    EXPECT_EQ(CursorOf(*list->m_pDCF), before);
    EXPECT_EQ(list->m_nCurGetAtIdx, 1);
    EXPECT_EQ(list->GetSelCount(), 0);
}

TEST_F(ListDelete, OfAnEmptySelectionThrowsBehindTheTreesOwnWork) {
    ListTen();
    card.Remove("101ABCDE", "");
    list->m_pDCF->m_nFirstIndex = kMarkedIndex;
    const Texts calls = CallsOf(card, [&] {
        try {
            list->DeleteSel();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(std::string(error.what()).find("vector::_M_range_check"), 0U) << error.what();
        }
    });
    EXPECT_EQ(calls, (Texts{"opendir 102ABCDE", "opendir 101ABCDE", "unlink 101ABCDE", "remove 101ABCDE"}))
        << "the tree was given no positions; no sync";
    EXPECT_EQ(TakeLog(), (Log{"CSFileList DeleteSel start"}));
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"102ABCDE: 14 13 12 11", "100ABCDE: 1"}));
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10200014);
    EXPECT_EQ(list->m_nList, 10) << "not refreshed";
}

// A folder in front that is gone from the card leaves the list during the walk, the selected directory is passed over,
// and the one behind it is met in its place.
TEST_F(ListDelete, OfASelectionBehindAFolderThatIsGoneFromTheCardMeetsTheDirectoryAfterIt) {
    card.AddFiles("102ABCDE", {DcfName(12), DcfName(11)}).AddFiles("101ABCDE", {DcfName(9), DcfName(8)});
    card.AddFiles("100ABCDE", {DcfName(3), DcfName(2), DcfName(1)});
    ASSERT_EQ(List(), 7);
    card.Remove("102ABCDE", "");
    Select({3});
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->DeleteSel(), 0); }),
              (Texts{"opendir 102ABCDE", "unlink 102ABCDE", "remove 102ABCDE", "stat 100ABCDE/KVR_0002.JPG",
                     "unlink 100ABCDE/KVR_0002.JPG", "opendir 100ABCDE", "sync"}));
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"101ABCDE: 9 8", "100ABCDE: 3 1"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG", "100ABCDE/KVR_0003.JPG", "101ABCDE/KVR_0008.JPG",
                                      "101ABCDE/KVR_0009.JPG"}));
    EXPECT_EQ(list->GetCount(), 4);
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{100, 3, 1, 0, 2})) << "one before the position selected";
    EXPECT_EQ(list->m_nCurGetAtIdx, 2);
}

TEST_F(ListDelete, OfASelectionBeyondTheListIsFatal) {
    ListTen();
    Select({50});
    const Ending ending = RunInChild([&] { list->DeleteSel(); });
    EXPECT_TRUE(
        DiesByAssertion(ending, {"0", "invalid", "CSDCFList", "int CSDCFList::GetAtSimply(int, CSFileListItem*)"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Texts{"start", "start", "++++++++++++++++++++ start index = 49"}));
}

TEST_F(ListDelete, OfEverythingListsAgain) {
    ListTen();
    card.SetMode("101ABCDE", DcfName(7), 0444);
    Select({3});
    FakePlatform::Get().Reset();
    ::umask(0022);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->DeleteAll(), 0); }), (Texts{"unlink 102ABCDE/KVR_0014.JPG",
                                                                              "unlink 102ABCDE/KVR_0013.JPG",
                                                                              "unlink 102ABCDE/KVR_0012.JPG",
                                                                              "unlink 102ABCDE/KVR_0011.JPG",
                                                                              "opendir 102ABCDE",
                                                                              "unlink 102ABCDE",
                                                                              "remove 102ABCDE",
                                                                              "unlink 101ABCDE/KVR_0009.JPG",
                                                                              "unlink 101ABCDE/KVR_0008.JPG",
                                                                              "unlink 101ABCDE/KVR_0007.JPG",
                                                                              "unlink 101ABCDE/KVR_0006.JPG",
                                                                              "unlink 101ABCDE/KVR_0005.JPG",
                                                                              "opendir 101ABCDE",
                                                                              "unlink 101ABCDE",
                                                                              "remove 101ABCDE",
                                                                              "unlink 100ABCDE/KVR_0001.JPG",
                                                                              "unlink 100ABCDE/KVR_0001.SRW",
                                                                              "opendir 100ABCDE",
                                                                              "unlink 100ABCDE",
                                                                              "remove 100ABCDE",
                                                                              "sync",
                                                                              "umask 0000",
                                                                              "mkdir DCIM 0775",
                                                                              "umask 0022",
                                                                              "scandir DCIM"}));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList DeleteAll start", "CSFileList Listup start",
                              "CSFileList UpdateFirstIndex start", "CSFileList GetFirst start", "CSFileList Listup end",
                              "CSFileList UpdateFirstIndex start", "CSFileList DeleteAll DeleteAll end"}));
    EXPECT_EQ(FakePlatform::Get().PropertyCalls().size(), 1U) << "a new tree";
    EXPECT_EQ(list->m_nList, 0);
    EXPECT_EQ(list->GetCount(), 0);
    EXPECT_EQ(list->GetSelCount(), 0);
    EXPECT_EQ(list->listupDone, 1);
    EXPECT_EQ(list->m_nCurGetAtIdx, 0) << "with no file there is no move to follow";
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 0);
    EXPECT_EQ(CardTexts(card), Texts{});
}

TEST_F(ListDelete, OfEverythingSyncsBeforeSelectionAndTreeGo) {
    ListTen();
    Select({3});
    CSDCFList* const tree = list->m_pDCF;
    Positions selectedAtSync;
    const CSDCFList* treeAtSync = nullptr;
    (void)CallsOf(
        card, [&] { EXPECT_EQ(list->DeleteAll(), 0); },
        [&](PosixSeam& seam) {
            seam.Before("sync", 1, [&] {
                selectedAtSync = list->m_vecSel;
                treeAtSync = list->m_pDCF;
            });
        });
    EXPECT_EQ(selectedAtSync, (Positions{3}));
    EXPECT_EQ(treeAtSync, tree);
    EXPECT_EQ(list->GetSelCount(), 0);
}

TEST_F(ListDelete, OfEverythingShowsWhatTheCardKept) {
    ListTen();
    card.AddFile("101ABCDE", "notes.txt");
    ASSERT_EQ(list->SetCurIndex(9), 0);
    const auto keepTheThird = [](PosixSeam& seam) {
        seam.Fail("unlink", EIO, 3);
        seam.Fail("remove", EIO, 1);
    };
    (void)CallsOf(
        card, [&] { EXPECT_EQ(list->DeleteAll(), 0); }, keepTheThird);
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"102ABCDE: 12", "101ABCDE:"}));
    EXPECT_EQ(list->m_nList, 1);
    EXPECT_EQ(list->GetCurIndex(), 0) << "the cursor is back on the first file";
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10200012);
}

TEST_F(ListDelete, OfEverythingAppliesTheSeriesValueAgain) {
    ListTen();
    StoreSeriesValue(10000333);
    ASSERT_EQ(list->SetSeriesMode(true), 10200014);
    ASSERT_EQ(list->DeleteAll(), 0);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10000333);
    EXPECT_TRUE(list->m_pDCF->m_bSeriesMode);
}

TEST_F(ListDelete, WithoutATreeIsFatal) {
    CSFileListItem item;
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->Delete(&item); }),
                                NoTree("virtual int CSFileList::Delete(CSFileListItem*)")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->DeleteSel(); }), NoTree("virtual int CSFileList::DeleteSel()")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->DeleteAll(); }), NoTree("virtual int CSFileList::DeleteAll()")));
}

} // namespace
} // namespace dcftest
