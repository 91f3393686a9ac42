// Listing the card through the file list: what it leaves behind, what it logs, and what the settings change.
#include "Scenario.h"

#include <filesystem>

#include "PosixSeam.h"

namespace dcftest {
namespace {

class FileListListup : public FileListTest {
protected:
    /// Lists again, as the operations do that change the whole card.
    int ListAgain() {
        delete list->m_pDCF;
        list->m_pDCF = nullptr;
        return List();
    }
};

TEST_F(FileListListup, ListsTheCardAndStandsOnTheFirstFile) {
    card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFiles("100ABCDE", {DcfName(5), DcfName(5, "SRW")});
    EXPECT_EQ(list->Listup(), 3);
    EXPECT_EQ(TakeLog(),
              (Log{"CSFileList Listup start", "CSFileList UpdateFirstIndex start", "CSFileList GetFirst start",
                   "CSFileList GetFirst GetFirst called m_strURI = " + Path("101ABCDE", "KVR_0002.JPG") +
                       " m_strObject = \n,",
                   "CSFileList GetCurIndex m_nCurGetAtIdx = 0", "CSFileList Listup end"}));
    EXPECT_EQ(list->m_nList, 3);
    EXPECT_EQ(list->m_nCurGetAtIdx, 0);
    EXPECT_EQ(list->listupDone, 1);
    EXPECT_EQ(list->GetCount(), 3);
    ASSERT_NE(list->m_pDCF, nullptr);
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{101, 2, 0, 0, 0}));
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10100002);
    EXPECT_EQ(list->m_pDCF->m_szBaseURI, card.Root());
}

TEST_F(FileListListup, OfAnEmptyCardIsComplete) {
    card.AddDir("100ABCDE");
    EXPECT_EQ(list->Listup(), 0);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList Listup start", "CSFileList UpdateFirstIndex start",
                              "CSFileList GetFirst start", "CSFileList Listup end"}));
    EXPECT_EQ(list->m_nList, 0);
    EXPECT_EQ(list->m_nCurGetAtIdx, -1);
    EXPECT_EQ(list->listupDone, 1);
    EXPECT_EQ(list->GetCount(), 0);
    EXPECT_EQ(CursorOf(*list->m_pDCF), kUnsetCursor);
}

TEST_F(FileListListup, MakesAMissingDcim) {
    ASSERT_FALSE(std::filesystem::exists(card.Dcim()));
    EXPECT_EQ(list->Listup(), 0);
    EXPECT_TRUE(std::filesystem::is_directory(card.Dcim()));
    EXPECT_EQ(list->listupDone, 1);
}

TEST_F(FileListListup, OfARootThatIsNotThereIsAnEmptyList) {
    ASSERT_EQ(list->SetBaseURI((card.Root() + "/none").c_str()), 0);
    EXPECT_EQ(list->Listup(), 0);
    EXPECT_EQ(list->GetCount(), 0);
    EXPECT_EQ(list->listupDone, 1);
}

TEST_F(FileListListup, ASecondOneIsFatal) {
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(List(), 1);
    const Ending ending = RunInChild([&] { list->Listup(); });
    EXPECT_TRUE(DiesByAssertion(
        ending, {"m_pDCF == NULL", "Now m_pDCF is not NULL", "CSFileList", "virtual int CSFileList::Listup()"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending), Log{"start"});
}

TEST_F(FileListListup, IsFatalWhereItsFirstFileCannotBeLookedUpAgain) {
    // The first directory of the number is empty, so the first file of the list is not found in it.
    card.AddDir("100ZZZZZ").AddFile("100PHOTO", DcfName(5));
    const Ending ending = RunInChild([&] { list->Listup(); });
    EXPECT_TRUE(DiesByAssertion(
        ending, {"it != m_itemGroup.end()", "cannot found fnum = 5", "CSDCFDir", "int CSDCFDir::GetFidx(int)"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Log{"start", "start", "start"}));
}

TEST_F(FileListListup, AnnouncesEachTreeToTheDevice) {
    ASSERT_EQ(List(), 0);
    EXPECT_EQ(FakePlatform::Get().PropertyCalls(),
              (std::vector<FakePlatform::PropertyCall>{FakePlatform::PropertyCall{17, 8, 0, 0}}));
}

/// Looks at listupDone from inside the listing.
class WatchedList : public CSFileList {
public:
    int UpdateFirstIndex(bool ignoreSeries) override {
        seen.push_back(listupDone);
        return CSFileList::UpdateFirstIndex(ignoreSeries);
    }
    int GetFirst(CSFileListItem* pItem) override {
        seen.push_back(listupDone);
        items.push_back(Fields(*pItem));
        return CSFileList::GetFirst(pItem);
    }

    std::vector<int> seen;
    std::vector<std::string> items;
};

TEST_F(FileListListup, ShowsThatItIsUnderWay) {
    WatchedList watched;
    ASSERT_EQ(watched.SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(watched.listupDone, -1);
    int duringScan = 100;
    {
        PosixSeam seam;
        seam.Before("mkdir", 1, [&] { duringScan = watched.listupDone; });
        EXPECT_EQ(watched.Listup(), 0);
    }
    EXPECT_EQ(duringScan, 0);
    EXPECT_EQ(watched.seen, (std::vector<int>{0, 0}));
    EXPECT_EQ(watched.listupDone, 1);
}

TEST_F(FileListListup, GoesBackToUnderWayWithTheNextOne) {
    WatchedList watched;
    ASSERT_EQ(watched.SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(watched.Listup(), 0);
    delete watched.m_pDCF;
    watched.m_pDCF = nullptr;
    ASSERT_EQ(watched.listupDone, 1);
    ASSERT_EQ(watched.Listup(), 0);
    EXPECT_EQ(watched.seen, (std::vector<int>{0, 0, 0, 0}));
}

TEST_F(FileListListup, AsksForTheFirstFileWithAFreshItem) {
    card.AddFile("100ABCDE", DcfName(1));
    WatchedList watched;
    ASSERT_EQ(watched.SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(watched.Listup(), 1);
    EXPECT_EQ(watched.items, std::vector<std::string>{Fields(CSFileListItem())});
}

// ---- "Camera" ----

TEST_F(FileListListup, ListsCameraUnlessToldOtherwise) {
    card.AddFile("100ABCDE", DcfName(1)).AddFiles("Camera", {CameraName(1), CameraName(2)});
    EXPECT_EQ(List(), 3);
    list->IncludeNonDCF(false);
    EXPECT_FALSE(list->m_bIncludeNonDCF);
    EXPECT_EQ(TakeLog(), Log{}) << "it is not logged";
    EXPECT_EQ(list->GetCount(), 3) << "nothing changes until the next listing";
    EXPECT_EQ(ListAgain(), 1);
    list->IncludeNonDCF(true);
    EXPECT_EQ(ListAgain(), 3);
}

// ---- Series mode ----

constexpr PrefCall kRead = {false, kSeriesGroup, kSeriesKey, 12300045};

TEST_F(FileListListup, WithoutSeriesModeDoesNotReadTheSeriesValue) {
    card.AddFile("105ABCDE", DcfName(17));
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 12300045);
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10500017);
    EXPECT_FALSE(list->m_pDCF->m_bSeriesMode);
    EXPECT_TRUE(FakePlatform::Get().PrefCalls().empty());
}

TEST_F(FileListListup, InSeriesModeRaisesTheFirstIndexInTheScanAndOnceMore) {
    card.AddFile("105ABCDE", DcfName(17));
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 12300045);
    list->m_bSeriesMode = true;
    ASSERT_EQ(List(), 1);
    EXPECT_TRUE(list->m_pDCF->m_bSeriesMode);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 12300045);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), (std::vector<PrefCall>{kRead, kRead}));
}

TEST_F(FileListListup, SeriesModeCannotBeSetBefore) {
    EXPECT_EQ(list->SetSeriesMode(true), -1);
    EXPECT_EQ(TakeLog(), Log{"CSFileList SetSeriesMode start"});
    EXPECT_FALSE(list->m_bSeriesMode);
    ASSERT_EQ(List(), 0);
    EXPECT_FALSE(list->m_pDCF->m_bSeriesMode);
    EXPECT_TRUE(FakePlatform::Get().PrefCalls().empty());
}

TEST_F(FileListListup, SeriesModeOnAndOffRecomputesTheFirstIndex) {
    card.AddFile("105ABCDE", DcfName(17));
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 12300045);
    ASSERT_EQ(List(), 1);
    const Log expected = {"CSFileList SetSeriesMode start", "CSFileList UpdateFirstIndex start"};
    EXPECT_EQ(list->SetSeriesMode(true), 12300045);
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_TRUE(list->m_bSeriesMode);
    EXPECT_TRUE(list->m_pDCF->m_bSeriesMode);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 12300045);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), std::vector<PrefCall>{kRead});
    EXPECT_EQ(list->SetSeriesMode(false), 10500017);
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_FALSE(list->m_bSeriesMode);
    EXPECT_FALSE(list->m_pDCF->m_bSeriesMode);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10500017);
    EXPECT_EQ(FakePlatform::Get().PrefCalls(), std::vector<PrefCall>{kRead}) << "it is not asked for again";
}

TEST_F(FileListListup, SeriesModeOutlivesTheTree) {
    card.AddFile("105ABCDE", DcfName(17));
    ASSERT_EQ(List(), 1);
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 10500018);
    ASSERT_EQ(list->SetSeriesMode(true), 10500018);
    ASSERT_EQ(ListAgain(), 1);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10500018);
    EXPECT_TRUE(list->GetSeriesMode());
}

TEST_F(FileListListup, ASeriesThatReachedItsEndStartsAgainFromTheCard) {
    card.AddFile("105ABCDE", DcfName(17));
    ASSERT_EQ(List(), 1);
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 99909999);
    EXPECT_EQ(list->SetSeriesMode(true), 10500017);
    EXPECT_EQ(FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey), 10500017);
}

TEST_F(FileListListup, GetSeriesModeTellsTheFlagAndIsLogged) {
    EXPECT_FALSE(list->GetSeriesMode());
    list->m_bSeriesMode = true;
    EXPECT_TRUE(list->GetSeriesMode());
    EXPECT_EQ(TakeLog(), Log(2, "CSFileList GetSeriesMode start"));
}

} // namespace
} // namespace dcftest
