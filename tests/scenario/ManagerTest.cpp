// The library's entry: making, handing out and destroying the one file list, and choosing its storage root.
#include "Scenario.h"

#include "CBIFileListManager.h"

namespace dcftest {
namespace {

/// What the construction of a list logs.
const Log kConstruction = {"CSFileList SetFileNameMake start", "CSFileList SetFolderNameMake start",
                           "CSFileList SetFileNameColor start", "CSFileList SetFilePrefix start",
                           "CSFileList SetImageType start"};

Log Joined(Log first, const Log& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

int g_destroyed = 0;

class CountedList : public CSFileList {
public:
    ~CountedList() override {
        ++g_destroyed;
    }
};

/// Its virtual table tells a list's class, with run-time type information and without.
const void* ClassOf(const ISFileList& list) {
    const void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&list), sizeof table);
    return table;
}

class Manager : public testing::Test {
protected:
    Manager() {
        StartAfresh();
        g_destroyed = 0;
    }

    ~Manager() override {
        (void)CBIFileListManager::Destroy();
    }
};

TEST_F(Manager, StartsWithoutAList) {
    EXPECT_EQ(CBIFileListManager::m_pFileList, nullptr);
    EXPECT_TRUE(DiesByAssertion(RunInChild([] { (void)CBIFileListManager::GetFileList(); }),
                                {"m_pFileList != NULL", "filelist is not created!!", "CBIFileListManager",
                                 "static ISFileList* CBIFileListManager::GetFileList()"}));
}

TEST_F(Manager, CreateMakesAListAndGetFileListHandsItOutSilently) {
    EXPECT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    EXPECT_EQ(TakeLog(), Joined({"CBIFileListManager Create  called"}, kConstruction));
    ISFileList* const list = CBIFileListManager::GetFileList();
    EXPECT_EQ(list, CBIFileListManager::m_pFileList);
    EXPECT_EQ(CBIFileListManager::GetFileList(), list);
    EXPECT_EQ(TakeLog(), Log{});
    EXPECT_EQ(ClassOf(*list), ClassOf(CSFileList()));
}

TEST_F(Manager, CreateTakesAnyNumberType) {
    for (const int type : {-1, 0, 1, 77}) {
        EXPECT_EQ(CBIFileListManager::Create(static_cast<eFileNumberType>(type)), 0);
        EXPECT_NE(CBIFileListManager::m_pFileList, nullptr);
    }
}

TEST_F(Manager, CreateDestroysTheListBeforeIt) {
    CBIFileListManager::m_pFileList = new CountedList;
    const void* const counted = ClassOf(*CBIFileListManager::m_pFileList);
    (void)TakeLog();
    EXPECT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    EXPECT_EQ(g_destroyed, 1);
    EXPECT_EQ(TakeLog(),
              Joined({"CBIFileListManager Create  called", "CBIFileListManager Destroy  called"}, kConstruction));
    ASSERT_NE(CBIFileListManager::m_pFileList, nullptr);
    EXPECT_NE(ClassOf(*CBIFileListManager::GetFileList()), counted) << "another list, wherever it lies";
}

TEST_F(Manager, CreateTwiceGivesAListWithoutATree) {
    const Card card;
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    ASSERT_EQ(CBIFileListManager::SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(CBIFileListManager::GetFileList()->Listup(), 0);
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    EXPECT_EQ(CBIFileListManager::GetFileList()->GetFileCount(FILE_TYPE_JPG), -1);
}

TEST_F(Manager, DestroyDeletesTheListThroughItsVirtualDestructor) {
    CBIFileListManager::m_pFileList = new CountedList;
    (void)TakeLog();
    EXPECT_EQ(CBIFileListManager::Destroy(), 0);
    EXPECT_EQ(g_destroyed, 1);
    EXPECT_EQ(CBIFileListManager::m_pFileList, nullptr);
    EXPECT_EQ(TakeLog(), Log{"CBIFileListManager Destroy  called"});
}

TEST_F(Manager, DestroyWithoutAListSucceedsAndIsLogged) {
    EXPECT_EQ(CBIFileListManager::Destroy(), 0);
    EXPECT_EQ(CBIFileListManager::Destroy(), 0);
    EXPECT_EQ(TakeLog(), Log(2, "CBIFileListManager Destroy  called"));
}

TEST_F(Manager, SetBaseURINeedsAList) {
    EXPECT_EQ(CBIFileListManager::SetBaseURI("/tmp"), -1);
    EXPECT_EQ(TakeLog(), Log{"CBIFileListManager SetBaseURI  called"});
}

TEST_F(Manager, SetBaseURIChoosesTheRootOfTheNextListing) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    (void)TakeLog();
    EXPECT_EQ(CBIFileListManager::SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(TakeLog(), (Log{"CBIFileListManager SetBaseURI  called", "CSFileList SetBaseURI start"}));
    EXPECT_EQ(CBIFileListManager::GetFileList()->Listup(), 1);
}

TEST_F(Manager, SetBaseURIRefusesNullAndMoreThanNinetySevenCharacters) {
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    const auto& list = static_cast<CSFileList&>(*CBIFileListManager::GetFileList());
    EXPECT_EQ(CBIFileListManager::SetBaseURI(nullptr), -1);
    EXPECT_EQ(CBIFileListManager::SetBaseURI(std::string(98, 'r').c_str()), -1);
    EXPECT_STREQ(list.m_szBaseURI, "/mnt/mmc") << "and nothing changes";
    EXPECT_EQ(CBIFileListManager::SetBaseURI(std::string(97, 'r').c_str()), 0);
    EXPECT_EQ(list.m_szBaseURI, std::string(97, 'r'));
    EXPECT_EQ(CBIFileListManager::SetBaseURI("/other"), 0);
    EXPECT_STREQ(list.m_szBaseURI, "/other");
}

TEST_F(Manager, SetBaseURIDoesNotTouchTheTreeThatIsListed) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    ASSERT_EQ(CBIFileListManager::SetBaseURI(card.Root().c_str()), 0);
    ISFileList& list = *CBIFileListManager::GetFileList();
    ASSERT_EQ(list.Listup(), 1);
    EXPECT_EQ(CBIFileListManager::SetBaseURI("/elsewhere"), 0);
    CSFileListItem item;
    EXPECT_EQ(list.GetFirst(&item), 0);
    EXPECT_EQ(item.m_strURI, card.Path("100ABCDE", DcfName(1)));
}

} // namespace
} // namespace dcftest
