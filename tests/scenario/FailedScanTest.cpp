// A scan with a negative result. The tree's own scan never gives one, so this program brings another in its place,
// which the library then calls.
#include "Scenario.h"

namespace {

int g_result = 0;
bool g_includeCamera = false;
std::string g_root;
bool g_seriesMode = false;

} // namespace

int CSDCFList::Listup(bool includeCamera) {
    g_includeCamera = includeCamera;
    g_root = m_szBaseURI;
    g_seriesMode = m_bSeriesMode;
    return g_result;
}

namespace dcftest {
namespace {

class FailedScan : public FileListTest {};

TEST_F(FailedScan, IsTheListsCountAndResult) {
    g_result = -7;
    EXPECT_EQ(list->Listup(), -7);
    EXPECT_EQ(list->m_nList, -7);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList Listup start", "CSFileList UpdateFirstIndex start",
                              "CSFileList GetFirst start", "CSFileList Listup end"}));
    EXPECT_EQ(list->listupDone, 1);
    EXPECT_EQ(list->m_nCurGetAtIdx, -1);
    ASSERT_NE(list->m_pDCF, nullptr);
    CSFileListItem item;
    EXPECT_EQ(list->GetFirst(&item), -1);
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetCurrent(&item), -1);
    EXPECT_EQ(list->GetAt(0, &item), -1);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetCount(); }),
                                {"m_pDCF->GetCount() == m_nList", "m_nList need to check", "CSFileList",
                                 "virtual int CSFileList::GetCount()"}));
}

TEST_F(FailedScan, AnyOtherResultGivesWayToTheCount) {
    for (const int result : {0, 12}) {
        g_result = result;
        CSFileList another;
        EXPECT_EQ(another.Listup(), 0);
        EXPECT_EQ(another.m_nList, 0);
    }
}

TEST_F(FailedScan, TheScanFindsRootAndSeriesModeSetAndGetsTheIncludeFlag) {
    g_result = 0;
    list->IncludeNonDCF(false);
    list->m_bSeriesMode = true;
    ASSERT_EQ(list->Listup(), 0);
    EXPECT_FALSE(g_includeCamera);
    EXPECT_TRUE(g_seriesMode);
    EXPECT_EQ(g_root, card.Root());
    CSFileList another;
    ASSERT_EQ(another.Listup(), 0);
    EXPECT_TRUE(g_includeCamera);
    EXPECT_FALSE(g_seriesMode);
    EXPECT_EQ(g_root, "/mnt/mmc");
}

} // namespace
} // namespace dcftest
