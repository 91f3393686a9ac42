// A new file in the tree: its item, its path, its count, the stored series value and the cursor.
#include <cerrno>

#include "Change.h"

namespace dcftest {
namespace {

using Path396 = std::array<char, 396>;

Path396 Used() {
    Path396 out{};
    out.fill('x');
    out.back() = '\0';
    return out;
}

class NewFile : public TreeTest {
protected:
    NewFile() {
        ::umask(0022);
    }

    int SetInfo(int index, char* buffer, int outLen, const std::string& prefix = "KVR_",
                const std::string& ext = "JPG") {
        return tree->GetNewFileIndex_SetInfo(index, Text(prefix), Text(ext), buffer, outLen);
    }

    int NewName(const std::string& suffix = "PHOTO", const std::string& ext = "JPG") {
        out = Used();
        return tree->GetNewFileName(Text("KVR_"), Text(ext), out.data(), static_cast<int>(out.size()), Text(suffix));
    }

    /// Fills the tree with files of one directory, in memory alone.
    void FillInMemory(int count) {
        CSDCFDir* dir = tree->m_dirGroup.front();
        std::array<char, 13> name{};
        std::copy_n("KVR_0001.JPG", 12, name.begin());
        for (int i = dir->GetCount(); i < count; ++i) {
            int counted = 0;
            dir->AddFile(100, 1, name.data(), &counted, 0);
        }
    }

    Path396 out{};
};

TEST_F(NewFile, IsEnteredAtTheHeadOfTheFrontDirectory) {
    card.AddFiles("101ABCDE", {DcfName(7)}).AddFiles("100ABCDE", {DcfName(1)});
    List();
    tree->m_nTotalCount = 40;
    out = Used();
    const Texts calls = CallsOf(
        card, [&] { EXPECT_EQ(SetInfo(10100008, out.data(), 396, "ABCD", "SRW"), 0); },
        [](PosixSeam& seam) { seam.FixTime(1719792000); });
    EXPECT_EQ(calls, (Texts{"time"}));
    EXPECT_EQ(std::string(out.data()), Path("101ABCDE", "ABCD0008.SRW"));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101ABCDE: 8 7", "100ABCDE: 1"}));
    DCFItem expected;
    std::copy_n("ABCD0008.SRW", 12, expected.m_fileName);
    expected.m_nFileNum = 8;
    expected.m_nDirNum = 101;
    expected.m_nFileTime = 1719792000;
    expected.m_eFileType = FILE_TYPE_SRW;
    EXPECT_EQ(ItemText(ItemAt(*tree, 0, 0)), ItemText(expected));
    EXPECT_EQ(tree->m_nTotalCount, 41) << "raised by one, not counted";
    EXPECT_FALSE(card.Exists("101ABCDE", "ABCD0008.SRW")) << "the client writes it";
}

TEST_F(NewFile, KeepsALateTimeInItsThirtyTwoBits) {
    card.AddDir("100ABCDE");
    List();
    (void)CallsOf(
        card, [&] { (void)SetInfo(10000001, out.data(), 396); }, [](PosixSeam& seam) { seam.FixTime(0x80000001LL); });
    EXPECT_EQ(ItemAt(*tree, 0, 0).m_nFileTime, 0x80000001U);
}

TEST_F(NewFile, TakesItsNumberFromTheIndexAndItsPathFromTheFrontDirectory) {
    card.AddFiles("150ABCDE", {DcfName(7)});
    List();
    EXPECT_EQ(SetInfo(10000003, out.data(), 396), 0);
    EXPECT_EQ(std::string(out.data()), Path("150ABCDE", "KVR_0003.JPG"));
    EXPECT_EQ(ItemAt(*tree, 0, 0).m_nDirNum, 100);
    EXPECT_EQ(ItemAt(*tree, 0, 0).m_nFileNum, 3);
}

TEST_F(NewFile, CutsItsPathToTheBuffer) {
    card.AddDir("100ABCDE");
    List();
    out = Used();
    EXPECT_EQ(SetInfo(10000001, out.data(), 20), 0);
    EXPECT_EQ(std::string(out.data()), Path("100ABCDE", "KVR_0001.JPG").substr(0, 19));
    EXPECT_EQ(out[20], 'x');
    EXPECT_STREQ(ItemAt(*tree, 0, 0).m_fileName, "KVR_0001.JPG");
}

TEST_F(NewFile, HasALongPathWhole) {
    Card longCard(97);
    CSDCFList longTree;
    ASSERT_EQ(longTree.SetBaseURI(longCard.Root().c_str()), 0);
    longTree.m_dirGroup.push_back(new CSDCFDir(100, "100ABCDE"));
    longTree.m_nDirCount = 1;
    ASSERT_EQ(longTree.GetNewFileIndex_SetInfo(10000001, Text("KVR_"), Text("JPG"), out.data(), 396), 0);
    EXPECT_EQ(std::string(out.data()), longCard.Path("100ABCDE", "KVR_0001.JPG")) << "124 characters, not cut at 98";
}

TEST_F(NewFile, WithoutADirectoryIsRefusedAndNothingChanges) {
    List();
    out = Used();
    const Texts before = EverythingIn(*tree);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(SetInfo(10000001, out.data(), 396), -1); }), Texts{});
    EXPECT_EQ(EverythingIn(*tree), before);
    EXPECT_EQ(out, Used());
}

TEST_F(NewFile, WithAPrefixOfAnotherLengthIsFatal) {
    card.AddDir("100ABCDE");
    List();
    for (const auto& [prefix, length] : {std::pair("KVR", 11), std::pair("KVR_1", 13), std::pair("", 8)}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&, name = prefix] { (void)SetInfo(10000001, out.data(), 396, name); }),
                                    {"len == 12", "more than dcf filename length = " + std::to_string(length),
                                     "CSDCFItemList", "void DCFItem::setFileName(const char*)"}));
    }
}

TEST_F(NewFile, OnAnEmptyCardIsTheFirstOfDirectory100) {
    List();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName(), 0); }),
              (Texts{"opendir 100PHOTO", "umask 0000", "mkdir 100PHOTO 0775", "umask 0022", "sync", "time"}));
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100PHOTO: 1"}));
    EXPECT_EQ(CardTexts(card), (Texts{"100PHOTO/ 0775"}));
    EXPECT_EQ(tree->m_nFirstIndex, 10000001);
    EXPECT_EQ(tree->m_nTotalCount, 1);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 1, 0, 0, 0}));
    EXPECT_STREQ(tree->m_CurItem.m_fileName, "KVR_0001.JPG");
}

TEST_F(NewFile, InADirectoryThatIsThereMakesNoOtherCall) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName("PHOTO", "MP4"), 0); }), (Texts{"opendir 100PHOTO", "time"}));
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0006.MP4"));
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0007.JPG")) << "counted on without the file on the card";
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100PHOTO: 7 6 5"}));
    EXPECT_EQ(tree->m_nTotalCount, 3);
}

TEST_F(NewFile, MovesTheCursorOntoItself) {
    card.AddFiles("101PHOTO", {DcfName(5), DcfName(4)}).AddFiles("100PHOTO", {DcfName(1)});
    List();
    ASSERT_EQ(tree->SetCurFile(Path("100PHOTO", DcfName(1)).c_str()), 0);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{101, 6, 0, 0, 0}));
}

TEST_F(NewFile, StoresItsNumberAsTheSeriesValueInEitherMode) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    StoreSeriesValue(20000041);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), (std::vector<PrefCall>{{true, 3, 512, 10000006}}))
        << "without the mode the value is not asked for";
    tree->SetSeriesMode(true);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(),
              (std::vector<PrefCall>{{true, 3, 512, 10000006}, {false, 3, 512, 10000006}, {true, 3, 512, 10000007}}));
}

TEST_F(NewFile, StoresItsNumberBehindItsEntryAndBeforeTheCursorMoves) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    ASSERT_EQ(tree->SetCurFile(Path("100PHOTO", DcfName(5)).c_str()), 0);
    Texts treeThen;
    std::string pathThen;
    Cursor cursorThen = kUnsetCursor;
    FakePlatform::Get().AtPrefSet([&] {
        treeThen = TreeTexts(*tree);
        pathThen = out.data();
        cursorThen = CursorOf(*tree);
    });
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(treeThen, (Texts{"100PHOTO: 6 5"}));
    EXPECT_EQ(pathThen, Path("100PHOTO", DcfName(6)));
    EXPECT_EQ(cursorThen, (Cursor{100, 5, 0, 0, 0})) << "still on the file before";
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 6, 0, 0, 0}));
}

TEST_F(NewFile, ContinuesTheSeriesOfAnotherCard) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    tree->SetSeriesMode(true);
    StoreSeriesValue(20000041);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("200PHOTO", "KVR_0042.JPG"));
    EXPECT_EQ(SeriesValue(), 20000042);
    EXPECT_EQ(TreeTexts(*tree), (Texts{"200PHOTO: 42", "100PHOTO: 5"}));
}

TEST_F(NewFile, StartsAnExhaustedSeriesAgainFromTheCard) {
    card.AddFiles("105PHOTO", {DcfName(17)});
    List();
    tree->SetSeriesMode(true);
    StoreSeriesValue(99909999);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("105PHOTO", "KVR_0018.JPG"));
    EXPECT_EQ(FakePlatform::Get().PrefCalls(),
              (std::vector<PrefCall>{{false, 3, 512, 99909999}, {true, 3, 512, 10500017}, {true, 3, 512, 10500018}}));
}

TEST_F(NewFile, TakesTheLastNumberAndStoresIt) {
    card.AddFiles("999PHOTO", {DcfName(9998)});
    List();
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("999PHOTO", "KVR_9999.JPG"));
    EXPECT_EQ(SeriesValue(), 99909999);
}

TEST_F(NewFile, IsNamedAllTheSameWhenTheSeriesValueCannotBeStored) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    FakePlatform::Get().SetPrefSetResult(-1);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(CursorOf(*tree).fnum, 6);
}

TEST_F(NewFile, IsNamedAllTheSameWhenItsDirectoryCannotBeMade) {
    List();
    EXPECT_EQ(Printed([&] {
                  (void)CallsOf(
                      card, [&] { EXPECT_EQ(NewName(), 0); }, [](PosixSeam& seam) { seam.Fail("mkdir", ENOSPC); });
              }),
              "make directory fail\n");
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0001.JPG"));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100PHOTO: 1"}));
    EXPECT_EQ(CardTexts(card), Texts{});
}

TEST_F(NewFile, IsRefusedWithoutANumberLeftAndNothingChanges) {
    card.AddFiles("999PHOTO", {DcfName(9999)});
    List();
    const Texts before = EverythingIn(*tree);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName(), -1); }), Texts{});
    EXPECT_EQ(EverythingIn(*tree), before);
    EXPECT_EQ(out, Used());
    EXPECT_EQ(SeriesValue(), std::nullopt);
    EXPECT_EQ(card.DirNames(), (Texts{"999PHOTO"}));
}

TEST_F(NewFile, IsRefusedBehindAHundredThousandFiles) {
    card.AddDir("100PHOTO");
    List();
    FillInMemory(100000);
    tree->SetSeriesMode(true);
    StoreSeriesValue(20000041);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName(), -1); }), Texts{});
    EXPECT_EQ(tree->m_nTotalCount, 100000) << "counted afresh";
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), std::vector<PrefCall>{}) << "before the series value is looked at";
    EXPECT_EQ(tree->m_nFirstIndex, 0);
}

TEST_F(NewFile, IsTakenBehindOneFileLess) {
    card.AddDir("100PHOTO");
    List();
    FillInMemory(99999);
    tree->m_nFirstIndex = 10000001;
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0002.JPG"));
    EXPECT_EQ(tree->GetCount(), 100000);
    EXPECT_EQ(NewName(), -1);
}

// A directory on the card that the list does not hold is used as it is: the number comes from it, the path from the
// front directory.
TEST_F(NewFile, ForAnUnlistedDirectoryLandsInTheFrontDirectory) {
    card.AddFiles("100PHOTO", {DcfName(5)});
    List();
    card.AddDir("200PHOTO");
    tree->SetSeriesMode(true);
    StoreSeriesValue(20000041);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0042.JPG"));
    EXPECT_EQ(ItemAt(*tree, 0, 0).m_nDirNum, 200);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 42, 0, 0, 0})) << "by the path";
    EXPECT_EQ(tree->m_nFirstIndex, 20000042);
}

TEST_F(NewFile, ForAnUnlistedDirectoryInAnEmptyTreeIsRefused) {
    List();
    card.AddDir("100PHOTO");
    const Cursor before = CursorOf(*tree);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName(), -1); }), (Texts{"opendir 100PHOTO"}));
    EXPECT_EQ(out, Used());
    EXPECT_EQ(SeriesValue(), std::nullopt);
    EXPECT_EQ(CursorOf(*tree), before);
    EXPECT_EQ(tree->m_nFirstIndex, 10000001) << "the number was chosen before";
    EXPECT_EQ(tree->m_nDirCount, 0);
}

TEST_F(NewFile, ForASuffixOfTheSecondDirectoryOfANumberLandsInTheFirst) {
    card.AddFiles("100ZZZZZ", {DcfName(5)}).AddDir("100PHOTO");
    List();
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("100ZZZZZ", "KVR_0006.JPG"));
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100ZZZZZ: 6 5", "100PHOTO:"}));
}

// A card with Camera alone: the file lands in that folder's item group, and no number stands where Camera's files have
// theirs.
TEST_F(NewFile, ForAnUnlistedDirectoryBehindCameraIsFatal) {
    card.AddFiles("Camera", {CameraName(7)});
    List();
    card.AddDir("100PHOTO");
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)NewName(); }), NoFile(0)));
}

// A directory made for a new file is not in the registry, so what is known of its files' protection is nothing.
TEST_F(NewFile, InANewDirectoryReadsAsUnprotectedUntilTheNextListing) {
    List();
    ASSERT_EQ(NewName(), 0);
    card.AddFile("100PHOTO", "KVR_0001.JPG", {"", 0444, {}});
    const std::string path = out.data();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_FALSE(tree->GetProtect(Text(path))); }), (Texts{"stat /KVR_0001.JPG"}));
    List();
    EXPECT_TRUE(tree->GetProtect(Text(path)));
}

TEST_F(NewFile, InANewDirectoryIsProtectedThroughTheListAsAnyOther) {
    List();
    ASSERT_EQ(NewName(), 0);
    card.AddFile("100PHOTO", "KVR_0001.JPG");
    tree->SetProtect(Text(out.data()), true);
    EXPECT_TRUE(tree->GetProtect(Text(out.data())));
    EXPECT_EQ(card.Mode("100PHOTO", "KVR_0001.JPG"), 0444U);
}

} // namespace
} // namespace dcftest
