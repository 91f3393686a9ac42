// Renumbering: every entry of "DCIM" from the highest down takes the next number from 100 on and keeps its suffix.
#include <cerrno>

#include "Change.h"

namespace dcftest {
namespace {

class TreeRenumber : public TreeTest {
protected:
    /// Renumbers, keeping what was printed and the calls.
    void Renumber(const std::function<void(PosixSeam&)>& rules = {}) {
        printed = Printed([&] {
            calls = CallsOf(
                card, [&] { tree->ReorderDirNames(); }, rules);
        });
    }

    std::string printed;
    Texts calls;
};

TEST_F(TreeRenumber, ReversesTheOrderAndKeepsTheSuffixes) {
    card.AddFiles("100AAAAA", {DcfName(1)}).AddFiles("105BBBBB", {DcfName(2)}).AddFiles("230CCCCC", {DcfName(3)});
    List();
    StoreSeriesValue(23000003);
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "rename 230CCCCC 100CCCCC", "rename 105BBBBB 101BBBBB",
                            "rename 100AAAAA 102AAAAA", "sync"}));
    EXPECT_EQ(printed, "");
    EXPECT_EQ(CardFiles(card), (Texts{"100CCCCC/KVR_0003.JPG", "101BBBBB/KVR_0002.JPG", "102AAAAA/KVR_0001.JPG"}));
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), (std::vector<PrefCall>{{true, 3, 512, 0}}));
}

TEST_F(TreeRenumber, ResetsTheSeriesValueBehindTheRenamesAndBeforeTheSync) {
    card.AddFiles("105BBBBB", {DcfName(2)});
    List();
    StoreSeriesValue(23000003);
    std::optional<long> atRename;
    std::optional<long> atSync;
    Renumber([&](PosixSeam& seam) {
        seam.Before("rename", 1, [&] { atRename = SeriesValue(); });
        seam.Before("sync", 1, [&] { atSync = SeriesValue(); });
    });
    EXPECT_EQ(atRename, 23000003);
    EXPECT_EQ(atSync, 0);
}

TEST_F(TreeRenumber, LeavesTheTreeAsItIs) {
    card.AddFiles("105BBBBB", {DcfName(2)}).AddFiles("230CCCCC", {DcfName(3)});
    List();
    const Texts before = EverythingIn(*tree);
    Renumber();
    EXPECT_EQ(EverythingIn(*tree), before);
}

TEST_F(TreeRenumber, PrintsEachRenameWhoseTargetIsInTheWay) {
    card.AddFiles("101ABCDE", {DcfName(2)}).AddFiles("100ABCDE", {DcfName(1)});
    List();
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "rename 101ABCDE 100ABCDE", "rename 100ABCDE 101ABCDE", "sync"}));
    EXPECT_EQ(printed, "rename fail\nrename fail\n");
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG", "101ABCDE/KVR_0002.JPG"}));
    EXPECT_EQ(SeriesValue(), 0);
}

TEST_F(TreeRenumber, GivesAFailedRenameItsNumberAllTheSame) {
    card.AddFiles("300AAAAA", {DcfName(3)}).AddFiles("200BBBBB", {DcfName(2)}).AddFiles("150CCCCC", {DcfName(1)});
    List();
    Renumber([](PosixSeam& seam) { seam.Fail("rename", EIO, 2); });
    EXPECT_EQ(printed, "rename fail\n");
    EXPECT_EQ(card.DirNames(), (Texts{"100AAAAA", "102CCCCC", "200BBBBB"}));
}

TEST_F(TreeRenumber, KeepsADirectoryThatHasItsNumberAlready) {
    card.AddFiles("100ABCDE", {DcfName(1)});
    List();
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "rename 100ABCDE 100ABCDE", "sync"}));
    EXPECT_EQ(printed, "");
    EXPECT_EQ(card.DirNames(), (Texts{"100ABCDE"}));
}

TEST_F(TreeRenumber, RenamesCameraLikeTheOthers) {
    card.AddFiles("105BBBBB", {DcfName(2)}).AddFiles("Camera", {CameraName(1)});
    List(false);
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "rename 105BBBBB 100BBBBB", "rename Camera 101era", "sync"}))
        << "also when it is not listed";
    EXPECT_EQ(card.DirNames(), (Texts{"100BBBBB", "101era"}));
}

TEST_F(TreeRenumber, RenamesEveryEntryOfEightCharacters) {
    card.AddDir("105BBBBB").AddDir("ABCDEFGH").AddDir("099AAAAA").AddDir("1000AAAA").AddDir("103").AddDir("104ABCDEF");
    card.AddFile("", "120FILES");
    List();
    Renumber();
    EXPECT_EQ(calls,
              (Texts{"scandir DCIM", "rename ABCDEFGH 100DEFGH", "rename 120FILES 101FILES", "rename 105BBBBB 102BBBBB",
                     "rename 1000AAAA 1030AAAA", "rename 099AAAAA 104AAAAA", "sync"}));
    EXPECT_EQ(card.DirNames(), (Texts{"100DEFGH", "101FILES", "102BBBBB", "103", "1030AAAA", "104AAAAA", "104ABCDEF"}));
}

TEST_F(TreeRenumber, ReplacesAnEmptyDirectoryInTheWay) {
    card.AddFiles("101ABCDE", {DcfName(2)}).AddDir("100ABCDE");
    List();
    Renumber();
    EXPECT_EQ(printed, "");
    EXPECT_EQ(CardFiles(card), (Texts{"101ABCDE/KVR_0002.JPG"})) << "there and back";
    EXPECT_EQ(card.DirNames(), (Texts{"101ABCDE"}));
}

TEST_F(TreeRenumber, OfACardThatCannotBeListedStillResetsTheSeriesValueAndSyncs) {
    StoreSeriesValue(23000003);
    tree = std::make_unique<CSDCFList>();
    ASSERT_EQ(tree->SetBaseURI(card.Root().c_str()), 0);
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "sync"}));
    EXPECT_EQ(SeriesValue(), 0);
    EXPECT_EQ(printed, "");
}

TEST_F(TreeRenumber, OfAnEmptyCardStillResetsTheSeriesValueAndSyncs) {
    List();
    StoreSeriesValue(23000003);
    Renumber();
    EXPECT_EQ(calls, (Texts{"scandir DCIM", "sync"}));
    EXPECT_EQ(SeriesValue(), 0);
}

TEST(TreeRenumberOnALongRoot, CutsTheNames) {
    StartAfresh();
    Card card(90); // "/DCIM/" and two characters of a name fill the buffer
    card.AddDir("105BBBBB");
    CSDCFList tree;
    ASSERT_EQ(tree.SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(
        Printed([&] {
            EXPECT_EQ(CallsOf(card, [&] { tree.ReorderDirNames(); }), (Texts{"scandir DCIM", "rename 10 10", "sync"}));
        }),
        "rename fail\n");
    EXPECT_EQ(card.DirNames(), (Texts{"105BBBBB"}));
}

class ListRenumber : public FileListTest {};

TEST_F(ListRenumber, ListsTheCardAgain) {
    card.AddFiles("105BBBBB", {DcfName(2)}).AddFiles("230CCCCC", {DcfName(3), DcfName(4)});
    ASSERT_EQ(List(), 3);
    ASSERT_EQ(list->SetCurIndex(2), 0);
    list->SetSel(2, true);
    (void)TakeLog();
    FakePlatform::Get().Reset();
    ::umask(0022);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->RenameDCFFullStorage(), 1); }),
              (Texts{"scandir DCIM", "rename 230CCCCC 100CCCCC", "rename 105BBBBB 101BBBBB", "sync", "umask 0000",
                     "mkdir DCIM 0775", "umask 0022", "scandir DCIM", "scandir 101BBBBB", "scandir 100CCCCC",
                     "stat 101BBBBB/KVR_0002.JPG"}));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList RenameDCFFullStorage start", "CSFileList Listup start",
                              "CSFileList UpdateFirstIndex start", "CSFileList GetFirst start",
                              "CSFileList GetFirst GetFirst called m_strURI = " + Path("101BBBBB", DcfName(2)) +
                                  " m_strObject = \n,",
                              "CSFileList GetCurIndex m_nCurGetAtIdx = 0", "CSFileList Listup end"}));
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"101BBBBB: 2", "100CCCCC: 4 3"}));
    EXPECT_EQ(list->m_nList, 3);
    EXPECT_EQ(list->m_nCurGetAtIdx, 0);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10100002);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{2})) << "the selection stays";
    EXPECT_EQ(FakePlatform::Get().PropertyCalls().size(), 1U) << "a new tree";
}

TEST_F(ListRenumber, DestroysTheOldTreeBehindTheRenames) {
    card.AddFiles("105BBBBB", {DcfName(2)});
    ASSERT_EQ(List(), 1);
    int destroyed = 0;
    bool renamedThen = false;
    Watch(*list->m_pDCF, 0, [&] {
        ++destroyed;
        renamedThen = card.Exists("100BBBBB");
    });
    EXPECT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(destroyed, 1);
    EXPECT_TRUE(renamedThen);
}

TEST_F(ListRenumber, KeepsTheSettings) {
    card.AddFiles("105BBBBB", {DcfName(2)});
    ASSERT_EQ(List(), 1);
    ASSERT_EQ(list->SetSeriesMode(true), 10500002);
    list->IncludeNonDCF(false);
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    ASSERT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_TRUE(list->m_pDCF->m_bSeriesMode);
    EXPECT_FALSE(list->m_bIncludeNonDCF);
    EXPECT_STREQ(list->m_szFilePrefix, "_KVR");
}

TEST_F(ListRenumber, WithoutATreeIsFatal) {
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->RenameDCFFullStorage(); }),
                                NoTree("virtual int CSFileList::RenameDCFFullStorage()")));
}

} // namespace
} // namespace dcftest
