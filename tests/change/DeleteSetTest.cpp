// The deletion of a set of files by list position, in one walk over the directories, and the deletion of everything.
#include <cerrno>

#include "Change.h"

namespace dcftest {
namespace {

class TreeDeleteSet : public TreeTest {
protected:
    /// List positions 0 to 2 in 103, 3 and 4 in 102, 5 to 7 in 101, 8 in 100.
    void ListFour() {
        card.AddFiles("103ABCDE", {DcfName(3), DcfName(2), DcfName(1)}).AddFiles("102ABCDE", {DcfName(9), DcfName(8)});
        card.AddFiles("101ABCDE", {DcfName(7), DcfName(6), DcfName(5)}).AddFiles("100ABCDE", {DcfName(4)});
        List();
    }

    Texts DeleteCalls(const std::vector<int>& indices, const std::function<void(PosixSeam&)>& rules = {}) {
        return CallsOf(
            card, [&] { tree->Delete(indices); }, rules);
    }
};

TEST_F(TreeDeleteSet, RemovesTheFilesOfEachDirectoryFromTheLastToTheFirst) {
    card.AddFiles("101ABCDE", {DcfName(9), DcfName(5), DcfName(5, "SRW"), DcfName(2)});
    card.AddFiles("100ABCDE", {DcfName(8), DcfName(8, "MPO"), DcfName(7)});
    List();
    EXPECT_EQ(DeleteCalls({1, 2, 3}),
              (Texts{"stat 101ABCDE/KVR_0002.JPG", "unlink 101ABCDE/KVR_0002.JPG", "stat 101ABCDE/KVR_0005.JPG",
                     "unlink 101ABCDE/KVR_0005.JPG", "unlink 101ABCDE/KVR_0005.SRW", "opendir 101ABCDE",
                     "stat 100ABCDE/KVR_0008.JPG", "unlink 100ABCDE/KVR_0008.JPG", "unlink 100ABCDE/KVR_0008.MPO",
                     "opendir 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101ABCDE: 9", "100ABCDE: 7"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0007.JPG", "101ABCDE/KVR_0009.JPG"}));
}

TEST_F(TreeDeleteSet, TakesTheItemsOutBehindTheFilesOfTheirDirectory) {
    ListFour();
    Texts atTheLastFile;
    Texts atTheDirectory;
    (void)DeleteCalls({0, 2}, [&](PosixSeam& seam) {
        seam.Before("unlink", 2, [&] { atTheLastFile = TreeTexts(*tree); });
        seam.Before("opendir", 1, [&] { atTheDirectory = TreeTexts(*tree); });
    });
    EXPECT_EQ(atTheLastFile.front(), "103ABCDE: 3 2 1");
    EXPECT_EQ(atTheDirectory.front(), "103ABCDE: 2");
}

TEST_F(TreeDeleteSet, KeepsProtectedFilesAndTheirDirectory) {
    card.AddFiles("100ABCDE", {DcfName(4), DcfName(2)});
    card.AddFile("100ABCDE", DcfName(3), {"", 0444, {}}).AddFile("100ABCDE", DcfName(1), {"", 0444, {}});
    card.AddFile("100ABCDE", DcfName(1, "SRW"), {"", 0444, {}});
    List();
    EXPECT_EQ(DeleteCalls({0, 1, 2, 3}),
              (Texts{"stat 100ABCDE/KVR_0001.JPG", "stat 100ABCDE/KVR_0002.JPG", "unlink 100ABCDE/KVR_0002.JPG",
                     "stat 100ABCDE/KVR_0003.JPG", "stat 100ABCDE/KVR_0004.JPG", "unlink 100ABCDE/KVR_0004.JPG",
                     "opendir 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 3 1"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG", "100ABCDE/KVR_0001.SRW", "100ABCDE/KVR_0003.JPG"}));
}

TEST_F(TreeDeleteSet, OfProtectedFilesAloneRemovesNothing) {
    card.AddFile("100ABCDE", DcfName(2), {"", 0444, {}}).AddFile("100ABCDE", DcfName(1), {"", 0444, {}});
    List();
    tree->Delete(Positions{0, 1});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 2 1"}));
    EXPECT_EQ(CardFiles(card).size(), 2U);
}

TEST_F(TreeDeleteSet, OfAWholeDirectoryRemovesItFromListAndCard) {
    ListFour();
    EXPECT_EQ(DeleteCalls({8}),
              (Texts{"opendir 103ABCDE", "opendir 102ABCDE", "opendir 101ABCDE", "stat 100ABCDE/KVR_0004.JPG",
                     "unlink 100ABCDE/KVR_0004.JPG", "opendir 100ABCDE", "unlink 100ABCDE", "remove 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"103ABCDE: 3 2 1", "102ABCDE: 9 8", "101ABCDE: 7 6 5"}));
    EXPECT_EQ(tree->m_nDirCount, 3);
    EXPECT_FALSE(card.Exists("100ABCDE"));
}

TEST_F(TreeDeleteSet, DestroysTheDirectoriesThatItDrops) {
    ListFour();
    Texts destroyed;
    for (int didx = 0; didx < 4; ++didx) {
        const std::string name = tree->m_dirGroup[static_cast<std::size_t>(didx)]->m_strDirName;
        Watch(*tree, didx, [&destroyed, name] { destroyed.push_back(name); });
    }
    tree->Delete(Positions{3, 4, 8});
    EXPECT_EQ(destroyed, (Texts{"102ABCDE"})) << "101 is passed over, and 8 is no position of 100 any more";
    tree.reset(); // while what the watches note in is there
}

// The quirk that clients must know: the directory behind an emptied one is not visited, and what was meant for it meets
// the one after it, by position.
TEST_F(TreeDeleteSet, PassesOverTheDirectoryBehindAnEmptiedOneAndAppliesItsPositionsToTheNext) {
    ListFour();
    tree->Delete(Positions{0, 1, 2, 4});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"102ABCDE: 9 8", "101ABCDE: 7 5", "100ABCDE: 4"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0004.JPG", "101ABCDE/KVR_0005.JPG", "101ABCDE/KVR_0007.JPG",
                                      "102ABCDE/KVR_0008.JPG", "102ABCDE/KVR_0009.JPG"}));
    EXPECT_FALSE(card.Exists("103ABCDE"));
}

TEST_F(TreeDeleteSet, BehindAnEmptiedDirectoryCountsOnFromItsOwnSizeAlone) {
    ListFour();
    // 103 goes, 102 is passed over, positions 3 to 5 are now 101's, 6 is 100's.
    tree->Delete(Positions{0, 1, 2, 3, 6});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"102ABCDE: 9 8", "101ABCDE: 6 5"}));
}

TEST_F(TreeDeleteSet, LosesThePositionsOfAPassedOverLastDirectory) {
    card.AddFiles("101ABCDE", {DcfName(2)}).AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->Delete(Positions{0, 1});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 1"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG"}));
}

TEST_F(TreeDeleteSet, NeverExaminesADirectoryWithoutItems) {
    card.AddFiles("102ABCDE", {DcfName(2)}).AddDir("101ABCDE").AddFiles("100ABCDE", {DcfName(1), DcfName(3)});
    List();
    EXPECT_EQ(DeleteCalls({1}), (Texts{"opendir 102ABCDE", "stat 100ABCDE/KVR_0003.JPG", "unlink 100ABCDE/KVR_0003.JPG",
                                       "opendir 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"102ABCDE: 2", "101ABCDE:", "100ABCDE: 1"}));
    EXPECT_TRUE(card.Exists("101ABCDE"));
}

TEST_F(TreeDeleteSet, DropsADirectoryWhoseFilesAreGoneFromTheCardEvenUnasked) {
    ListFour();
    card.Remove("102ABCDE", DcfName(9));
    card.Remove("102ABCDE", DcfName(8));
    tree->Delete(Positions{});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"103ABCDE: 3 2 1", "101ABCDE: 7 6 5", "100ABCDE: 4"}));
    EXPECT_FALSE(card.Exists("102ABCDE"));
}

TEST_F(TreeDeleteSet, KeepsADirectoryWithAForeignFile) {
    ListFour();
    card.AddFile("100ABCDE", "index.db");
    tree->Delete(Positions{8});
    EXPECT_EQ(TreeTexts(*tree).back(), "100ABCDE:");
    EXPECT_EQ(card.Names("100ABCDE"), (Texts{"index.db"}));
}

TEST_F(TreeDeleteSet, WithoutPositionsLooksAtTheDirectoriesAlone) {
    ListFour();
    const Texts before = CardTexts(card);
    EXPECT_EQ(DeleteCalls({}), (Texts{"opendir 103ABCDE", "opendir 102ABCDE", "opendir 101ABCDE", "opendir 100ABCDE"}));
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(TreeTexts(*tree).size(), 4U);
}

TEST_F(TreeDeleteSet, IgnoresPositionsOutsideTheList) {
    ListFour();
    const Texts before = CardTexts(card);
    tree->Delete(Positions{-7, -1, 9, 1000});
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(tree->GetCount(), 9);
}

// Only ascending positions mean the same place throughout. Others keep their order, which the items then follow.
TEST_F(TreeDeleteSet, TakesItemsOutInTheGivenOrderWhenItIsNotAscending) {
    card.AddFiles("100ABCDE", {DcfName(4), DcfName(3), DcfName(2), DcfName(1)});
    List();
    tree->Delete(Positions{2, 0});
    EXPECT_EQ(card.Names("100ABCDE"), (Texts{"KVR_0001.JPG", "KVR_0003.JPG"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 3 2"})) << "4 at position 0, then 1, which is at position 2 by then";
}

TEST_F(TreeDeleteSet, GivesEachDirectoryItsPositionsInWhateverOrderTheyCome) {
    ListFour();
    tree->Delete({8, 3, 0});
    EXPECT_EQ(TreeTexts(*tree), (Texts{"103ABCDE: 2 1", "102ABCDE: 8", "101ABCDE: 7 6 5"}));
}

TEST_F(TreeDeleteSet, OfAPositionTwiceStaysWithinTheDirectory) {
    card.AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
    List();
    EXPECT_EQ(DeleteCalls({1, 1}),
              (Texts{"stat 100ABCDE/KVR_0001.JPG", "unlink 100ABCDE/KVR_0001.JPG", "stat 100ABCDE/KVR_0001.JPG",
                     "unlink 100ABCDE/KVR_0001.JPG", "remove 100ABCDE/KVR_0001.JPG", "opendir 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 2"}));
    tree->Delete(Positions{0, 0});
    EXPECT_EQ(TreeTexts(*tree), Texts{});
    EXPECT_EQ(tree->GetCount(), 0);
}

TEST_F(TreeDeleteSet, TakesItemsOutEvenWhenTheCardKeepsTheFiles) {
    ListFour();
    const Texts before = CardTexts(card);
    (void)DeleteCalls({0, 8}, [](PosixSeam& seam) {
        seam.FailFrom("unlink", EROFS);
        seam.FailFrom("remove", EROFS);
    });
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(TreeTexts(*tree), (Texts{"103ABCDE: 2 1", "102ABCDE: 9 8", "101ABCDE: 7 6 5", "100ABCDE:"}));
}

TEST_F(TreeDeleteSet, AlwaysComputesTheFirstIndexAnew) {
    ListFour();
    tree->m_nFirstIndex = kMarkedIndex;
    tree->Delete(Positions{8});
    EXPECT_EQ(tree->m_nFirstIndex, 10300003);
    tree->Delete(Positions{0});
    EXPECT_EQ(tree->m_nFirstIndex, 10300002);
    tree->SetSeriesMode(true);
    StoreSeriesValue(55500001);
    tree->Delete(Positions{});
    EXPECT_EQ(tree->m_nFirstIndex, 55500001);
}

TEST_F(TreeDeleteSet, InAnEmptyTreeComputesTheFirstIndexOnly) {
    List();
    tree->m_nFirstIndex = kMarkedIndex;
    EXPECT_EQ(DeleteCalls({0, 1}), Texts{});
    EXPECT_EQ(tree->m_nFirstIndex, 0);
    tree->SetSeriesMode(true);
    StoreSeriesValue(10000042);
    EXPECT_EQ(DeleteCalls({0}), Texts{});
    EXPECT_EQ(tree->m_nFirstIndex, 10000042);
}

TEST_F(TreeDeleteSet, LeavesTheCursorAsItIs) {
    ListFour();
    ASSERT_EQ(tree->SetCurFile(Path("100ABCDE", DcfName(4)).c_str()), 0);
    const Cursor before = CursorOf(*tree);
    tree->Delete(Positions{0, 3, 8});
    EXPECT_EQ(CursorOf(*tree), before);
}

class TreeDeleteAll : public TreeTest {};

TEST_F(TreeDeleteAll, RemovesEveryFileCompanionAndDirectoryInListOrder) {
    card.AddFiles("101ABCDE", {DcfName(2), DcfName(2, "SRW"), DcfName(1)}).AddDir("100ABCDE");
    card.AddFiles("Camera", {CameraName(3)});
    List();
    EXPECT_EQ(CallsOf(card, [&] { tree->DeleteAll(); }),
              (Texts{"unlink 101ABCDE/KVR_0002.JPG", "unlink 101ABCDE/KVR_0002.SRW", "unlink 101ABCDE/KVR_0001.JPG",
                     "opendir 101ABCDE", "unlink 101ABCDE", "remove 101ABCDE", "opendir 100ABCDE", "unlink 100ABCDE",
                     "remove 100ABCDE", "unlink Camera/20240131_000003.JPG", "opendir Camera", "unlink Camera",
                     "remove Camera"}));
    EXPECT_EQ(CardTexts(card), Texts{}) << "DCIM itself stays";
}

TEST_F(TreeDeleteAll, RemovesProtectedFilesTooWithoutAsking) {
    card.AddFile("100ABCDE", DcfName(2), {"", 0444, {}}).AddFile("100ABCDE", DcfName(1));
    List();
    ItemAt(*tree, 0, 1).setProtect(true);
    EXPECT_EQ(CallsOf(card, [&] { tree->DeleteAll(); }),
              (Texts{"unlink 100ABCDE/KVR_0002.JPG", "unlink 100ABCDE/KVR_0001.JPG", "opendir 100ABCDE",
                     "unlink 100ABCDE", "remove 100ABCDE"}));
    EXPECT_EQ(CardTexts(card), Texts{});
}

TEST_F(TreeDeleteAll, LeavesTheTreeAsItIs) {
    card.AddFiles("101ABCDE", {DcfName(2)}).AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->SetSeriesMode(true);
    StoreSeriesValue(30000001);
    tree->m_nFirstIndex = kMarkedIndex;
    const Texts before = EverythingIn(*tree);
    tree->DeleteAll();
    EXPECT_EQ(EverythingIn(*tree), before);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), std::vector<PrefCall>{});
}

TEST_F(TreeDeleteAll, KeepsDirectoriesWithForeignFiles) {
    card.AddFiles("100ABCDE", {DcfName(1), "notes.txt"});
    List();
    EXPECT_EQ(CallsOf(card, [&] { tree->DeleteAll(); }), (Texts{"unlink 100ABCDE/KVR_0001.JPG", "opendir 100ABCDE"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/notes.txt"}));
}

TEST_F(TreeDeleteAll, GoesOnBehindAFileThatTheCardKeeps) {
    card.AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
    List();
    (void)CallsOf(
        card, [&] { tree->DeleteAll(); },
        [](PosixSeam& seam) {
            seam.Fail("unlink", EIO);
            seam.Fail("remove", EIO);
        });
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0002.JPG"}));
}

TEST_F(TreeDeleteAll, OfAnEmptyTreeDoesNothing) {
    List();
    EXPECT_EQ(CallsOf(card, [&] { tree->DeleteAll(); }), Texts{});
}

} // namespace
} // namespace dcftest
