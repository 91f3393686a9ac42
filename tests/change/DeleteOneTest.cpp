// The deletion of one file by its path: the file and its companion, then the item, then the directory if the card
// holds nothing more in it.
#include <cerrno>

#include "Change.h"

namespace dcftest {
namespace {

class TreeDelete : public TreeTest {
protected:
    /// 102: files 9, 5 (with a raw companion) and 2; 101: file 4; 100: files 8 and 7.
    void ListThree() {
        card.AddFiles("102ABCDE", {"KVR_0009.JPG", "KVR_0005.JPG", "KVR_0005.SRW", "KVR_0002.JPG"});
        card.AddFiles("101ABCDE", {"KVR_0004.JPG"}).AddFiles("100ABCDE", {"KVR_0008.JPG", "KVR_0007.MP4"});
        List();
    }

    void Delete(const std::string& dir, const std::string& name) {
        tree->Delete(Text(Path(dir, name)));
    }

    Texts DeleteCalls(const std::string& dir, const std::string& name,
                      const std::function<void(PosixSeam&)>& rules = {}) {
        return CallsOf(
            card, [&] { Delete(dir, name); }, rules);
    }
};

TEST_F(TreeDelete, RemovesTheFileThenItsCompanionThenLooksAtTheDirectory) {
    ListThree();
    EXPECT_EQ(DeleteCalls("102ABCDE", "KVR_0005.JPG"),
              (Texts{"stat 102ABCDE/KVR_0005.JPG", "unlink 102ABCDE/KVR_0005.JPG", "unlink 102ABCDE/KVR_0005.SRW",
                     "opendir 102ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"102ABCDE: 9 2", "101ABCDE: 4", "100ABCDE: 8 7"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0007.MP4", "100ABCDE/KVR_0008.JPG", "101ABCDE/KVR_0004.JPG",
                                      "102ABCDE/KVR_0002.JPG", "102ABCDE/KVR_0009.JPG"}));
}

TEST_F(TreeDelete, LeavesACompanionThatTheListDoesNotKnow) {
    ListThree();
    card.AddFile("102ABCDE", "KVR_0002.SRW");
    EXPECT_EQ(DeleteCalls("102ABCDE", "KVR_0002.JPG"),
              (Texts{"stat 102ABCDE/KVR_0002.JPG", "unlink 102ABCDE/KVR_0002.JPG", "opendir 102ABCDE"}));
    EXPECT_TRUE(card.Exists("102ABCDE", "KVR_0002.SRW"));
}

TEST_F(TreeDelete, OfAFileThatIsProtectedOnTheCardChangesNothing) {
    card.AddFile("100ABCDE", "KVR_0001.JPG", {"", 0444, {}});
    List();
    const Texts before = CardTexts(card);
    const Texts state = EverythingIn(*tree);
    EXPECT_EQ(DeleteCalls("100ABCDE", "KVR_0001.JPG"), (Texts{"stat 100ABCDE/KVR_0001.JPG"}));
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(EverythingIn(*tree), state);
}

TEST_F(TreeDelete, GoesByTheProtectStateInMemoryOnceThatIsKnown) {
    card.AddFiles("100ABCDE", {"KVR_0001.JPG"}).AddFile("100ABCDE", "KVR_0002.JPG", {"", 0444, {}});
    List();
    ItemAt(*tree, 0, 0).setProtect(false);
    ItemAt(*tree, 0, 1).setProtect(true);
    EXPECT_EQ(DeleteCalls("100ABCDE", "KVR_0001.JPG"), Texts{});
    EXPECT_EQ(DeleteCalls("100ABCDE", "KVR_0002.JPG"), (Texts{"unlink 100ABCDE/KVR_0002.JPG", "opendir 100ABCDE"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 1"}));
}

TEST_F(TreeDelete, OfTheOnlyFileTakesTheDirectoryOutOfTheListAndOffTheCard) {
    card.AddFiles("101ABCDE", {"KVR_0004.JPG", "KVR_0004.MPO"}).AddFiles("100ABCDE", {"KVR_0001.JPG"});
    List();
    EXPECT_EQ(DeleteCalls("101ABCDE", "KVR_0004.JPG"),
              (Texts{"stat 101ABCDE/KVR_0004.JPG", "unlink 101ABCDE/KVR_0004.JPG", "unlink 101ABCDE/KVR_0004.MPO",
                     "opendir 101ABCDE", "unlink 101ABCDE", "remove 101ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE: 1"}));
    EXPECT_EQ(tree->m_nDirCount, 1);
    EXPECT_EQ(CardTexts(card), (Texts{"100ABCDE/ 0755", "100ABCDE/KVR_0001.JPG 0644"}));
}

TEST_F(TreeDelete, TakesTheDirectoryOutOfTheListBeforeItGoesFromTheCard) {
    ListThree();
    int countWhenRemoved = -1;
    Texts treeWhenRemoved;
    (void)DeleteCalls("101ABCDE", "KVR_0004.JPG", [&](PosixSeam& seam) {
        seam.Before("unlink", 2, [&] {
            countWhenRemoved = tree->m_nDirCount;
            treeWhenRemoved = TreeTexts(*tree);
        });
    });
    EXPECT_EQ(countWhenRemoved, 2);
    EXPECT_EQ(treeWhenRemoved, (Texts{"102ABCDE: 9 5 2", "100ABCDE: 8 7"}));
}

TEST_F(TreeDelete, DestroysTheDirectoryBeforeItGoesFromTheCardAndNoOther) {
    ListThree();
    int destroyed = 0;
    bool onTheCardThen = false;
    int countThen = -1;
    int others = 0;
    Watch(*tree, 0, [&] { ++others; });
    Watch(*tree, 1, [&] {
        ++destroyed;
        onTheCardThen = card.Exists("101ABCDE");
        countThen = tree->m_nDirCount;
    });
    Delete("102ABCDE", "KVR_0009.JPG");
    Delete("101ABCDE", "KVR_0004.JPG");
    EXPECT_EQ(destroyed, 1);
    EXPECT_TRUE(onTheCardThen);
    EXPECT_EQ(countThen, 3) << "before it leaves the list";
    EXPECT_EQ(others, 0);
    tree.reset(); // while what the watches count in is there
}

TEST_F(TreeDelete, TakesTheItemOutBehindTheFile) {
    ListThree();
    Texts treeWhenRemoved;
    Texts treeWhenLookedAt;
    (void)DeleteCalls("102ABCDE", "KVR_0005.JPG", [&](PosixSeam& seam) {
        seam.Before("unlink", 2, [&] { treeWhenRemoved = TreeTexts(*tree); });
        seam.Before("opendir", 1, [&] { treeWhenLookedAt = TreeTexts(*tree); });
    });
    EXPECT_EQ(treeWhenRemoved.front(), "102ABCDE: 9 5 2");
    EXPECT_EQ(treeWhenLookedAt.front(), "102ABCDE: 9 2");
}

TEST_F(TreeDelete, KeepsADirectoryThatStillHoldsAForeignFile) {
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "notes.txt"});
    List();
    Delete("100ABCDE", "KVR_0001.JPG");
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE:"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/notes.txt"}));
}

TEST_F(TreeDelete, JudgesTheDirectoryByTheCardAndNotByItsItems) {
    ListThree();
    card.Remove("102ABCDE", "KVR_0009.JPG");
    card.Remove("102ABCDE", "KVR_0005.JPG");
    card.Remove("102ABCDE", "KVR_0005.SRW");
    Delete("102ABCDE", "KVR_0002.JPG");
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101ABCDE: 4", "100ABCDE: 8 7"})) << "the two items left go with it";
    EXPECT_EQ(card.DirNames(), (Texts{"100ABCDE", "101ABCDE"}));
}

TEST_F(TreeDelete, TakesADirectoryThatCannotBeOpenedForAnEmptyOne) {
    ListThree();
    EXPECT_EQ(DeleteCalls("102ABCDE", "KVR_0009.JPG", [](PosixSeam& seam) { seam.Fail("opendir", EMFILE); }),
              (Texts{"stat 102ABCDE/KVR_0009.JPG", "unlink 102ABCDE/KVR_0009.JPG", "opendir 102ABCDE",
                     "unlink 102ABCDE", "remove 102ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101ABCDE: 4", "100ABCDE: 8 7"}));
    EXPECT_EQ(card.Names("102ABCDE"), (Texts{"KVR_0002.JPG", "KVR_0005.JPG", "KVR_0005.SRW"})) << "the card refuses";
}

TEST_F(TreeDelete, TakesTheItemOutOfTheListEvenWhenTheCardKeepsTheFile) {
    ListThree();
    const Texts before = CardTexts(card);
    const auto refuse = [](PosixSeam& seam) {
        seam.FailFrom("unlink", EROFS);
        seam.FailFrom("remove", EROFS);
    };
    EXPECT_EQ(DeleteCalls("102ABCDE", "KVR_0005.JPG", refuse),
              (Texts{"stat 102ABCDE/KVR_0005.JPG", "unlink 102ABCDE/KVR_0005.JPG", "remove 102ABCDE/KVR_0005.JPG",
                     "unlink 102ABCDE/KVR_0005.SRW", "remove 102ABCDE/KVR_0005.SRW", "opendir 102ABCDE"}));
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(TreeTexts(*tree), (Texts{"102ABCDE: 9 2", "101ABCDE: 4", "100ABCDE: 8 7"}));
    EXPECT_EQ(FakePlatform::Get().Lines().size(), 0U) << "and says nothing";
}

TEST_F(TreeDelete, RemovesBySecondAttemptWhatCannotBeUnlinked) {
    ListThree();
    EXPECT_EQ(DeleteCalls("102ABCDE", "KVR_0002.JPG", [](PosixSeam& seam) { seam.Fail("unlink", EPERM); }),
              (Texts{"stat 102ABCDE/KVR_0002.JPG", "unlink 102ABCDE/KVR_0002.JPG", "remove 102ABCDE/KVR_0002.JPG",
                     "opendir 102ABCDE"}));
    EXPECT_FALSE(card.Exists("102ABCDE", "KVR_0002.JPG"));
}

TEST_F(TreeDelete, IgnoresAnAbsentCompanion) {
    ListThree();
    card.Remove("102ABCDE", "KVR_0005.SRW");
    Delete("102ABCDE", "KVR_0005.JPG");
    EXPECT_EQ(TreeTexts(*tree).front(), "102ABCDE: 9 2");
    EXPECT_FALSE(card.Exists("102ABCDE", "KVR_0005.JPG"));
}

TEST_F(TreeDelete, OfTheVeryFirstFileComputesTheFirstIndexAnew) {
    ListThree();
    tree->m_nFirstIndex = kMarkedIndex;
    Delete("102ABCDE", "KVR_0009.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, 10200005);
}

TEST_F(TreeDelete, OfTheVeryFirstFileWithItsDirectoryTakesTheFirstIndexFromTheNextOne) {
    card.AddFiles("101ABCDE", {"KVR_0004.JPG"}).AddFiles("100ABCDE", {"KVR_0008.JPG"});
    List();
    Delete("101ABCDE", "KVR_0004.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, 10000008);
}

TEST_F(TreeDelete, OfTheVeryFirstFileRaisesTheFirstIndexToTheSeriesValueInSeriesMode) {
    ListThree();
    tree->SetSeriesMode(true);
    StoreSeriesValue(30000007);
    Delete("102ABCDE", "KVR_0009.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, 30000007);
}

TEST_F(TreeDelete, OfAnyOtherFileLeavesTheFirstIndexAlone) {
    ListThree();
    tree->m_nFirstIndex = kMarkedIndex;
    Delete("102ABCDE", "KVR_0002.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, kMarkedIndex);
    Delete("100ABCDE", "KVR_0008.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, kMarkedIndex) << "the first of the last directory";
    Delete("101ABCDE", "KVR_0004.JPG");
    EXPECT_EQ(tree->m_nFirstIndex, kMarkedIndex) << "the first of the second directory, which goes with it";
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), std::vector<PrefCall>{});
}

TEST_F(TreeDelete, LeavesTheCursorAsItIs) {
    ListThree();
    ASSERT_EQ(tree->SetCurFile(Path("100ABCDE", "KVR_0007.MP4").c_str()), 0);
    const Cursor before = CursorOf(*tree);
    const std::string item = ItemText(tree->m_CurItem);
    Delete("102ABCDE", "KVR_0009.JPG");
    Delete("101ABCDE", "KVR_0004.JPG");
    Delete("100ABCDE", "KVR_0007.MP4");
    EXPECT_EQ(CursorOf(*tree), before);
    EXPECT_EQ(ItemText(tree->m_CurItem), item);
}

TEST_F(TreeDelete, ByNumbersMeansTheFirstDirectoryThatHasTheNumber) {
    card.AddFiles("100ZZZZZ", {"KVR_0003.JPG", "KVR_0001.JPG"}).AddFiles("100PHOTO", {"KVR_0003.JPG"});
    tree = std::make_unique<CSDCFList>();
    ASSERT_EQ(tree->SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(tree->Listup(true), 0);
    Delete("100PHOTO", "KVR_0003.JPG");
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ZZZZZ: 1", "100PHOTO: 3"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100PHOTO/KVR_0003.JPG", "100ZZZZZ/KVR_0001.JPG"}));
}

TEST_F(TreeDelete, InCameraAsksForACompanionNameThatIsNeverARealOne) {
    card.AddFiles("Camera", {CameraName(1), CameraName(1, "SRW"), CameraName(2)});
    List();
    EXPECT_EQ(DeleteCalls("Camera", CameraName(1)),
              (Texts{"stat Camera/20240131_000001.JPG", "unlink Camera/20240131_000001.JPG",
                     "unlink Camera/20240131_SRW", "remove Camera/20240131_SRW", "opendir Camera"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"Camera: 2"}));
    EXPECT_EQ(CardFiles(card), (Texts{"Camera/20240131_000001.SRW", "Camera/20240131_000002.JPG"}));
}

TEST(TreeDeleteOnALongRoot, CutsThePathAndMissesTheFile) {
    StartAfresh();
    Card card(73); // the path of a file has 100 characters
    card.AddFiles("100ABCDE", {"KVR_0001.JPG"});
    const auto tree = ListTree(card);
    const Texts calls = CallsOf(card, [&] { tree->Delete(Text(card.Path("100ABCDE", "KVR_0001.J"))); });
    EXPECT_EQ(calls, (Texts{"stat 100ABCDE/KVR_0001.J", "unlink 100ABCDE/KVR_0001.J", "remove 100ABCDE/KVR_0001.J",
                            "opendir 100ABCDE"}));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ABCDE:"}));
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG"}));
}

TEST_F(TreeDelete, OfAnUnknownDirectoryOrFileIsFatal) {
    ListThree();
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { Delete("105ABCDE", "KVR_0001.JPG"); }), NoDirectory(105)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { Delete("101ABCDE", "KVR_0007.JPG"); }), NoFile(7)));
}

} // namespace
} // namespace dcftest
