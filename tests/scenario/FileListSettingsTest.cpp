// A new file list and a new item, and the settings that the construction calls: naming modes, colour mode, image type,
// file prefix.
#include "Scenario.h"

#include <new>

namespace dcftest {
namespace {

class FileListSettings : public testing::Test {
protected:
    FileListSettings() {
        StartAfresh();
    }
};

TEST_F(FileListSettings, ANewListHasItsInitialValues) {
    // Over used memory, so that a value that is not written shows.
    alignas(CSFileList) unsigned char memory[sizeof(CSFileList)];
    std::memset(memory, 0x5A, sizeof memory);
    auto* const list = new (memory) CSFileList;
    EXPECT_EQ(Bytes(list->m_szBaseURI), "/mnt/mmc" + std::string(92, '\0'));
    EXPECT_EQ(list->m_eFileNameMake, 0);
    EXPECT_EQ(list->m_eFolderNameMake, 0);
    EXPECT_EQ(list->m_eColorMode, 0);
    EXPECT_EQ(list->m_eImageType, 0);
    EXPECT_TRUE(list->m_bIncludeNonDCF);
    EXPECT_EQ(list->m_nCurGetAtIdx, -1);
    EXPECT_EQ(list->m_nList, -1);
    EXPECT_STREQ(list->m_szDefaultPath, "/mnt/mmc");
    EXPECT_STREQ(list->m_szDefaultFolder, "PHOTO");
    EXPECT_STREQ(list->m_szDefaultPrefix, "KVR_");
    EXPECT_FALSE(list->m_bSeriesMode);
    EXPECT_STREQ(list->m_szFilePrefix, "KVR_");
    EXPECT_EQ(list->m_pDCF, nullptr);
    EXPECT_EQ(list->listupDone, -1);
    EXPECT_TRUE(list->m_vecSel.empty());
    list->~CSFileList();
}

TEST_F(FileListSettings, ConstructionCallsTheSettingsInOrderAndNoPlatform) {
    const CSFileList list;
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetFileNameMake start", "CSFileList SetFolderNameMake start",
                              "CSFileList SetFileNameColor start", "CSFileList SetFilePrefix start",
                              "CSFileList SetImageType start"}));
    EXPECT_TRUE(FakePlatform::Get().PropertyCalls().empty());
    EXPECT_TRUE(FakePlatform::Get().PrefCalls().empty());
}

TEST_F(FileListSettings, DestructionDeletesTheTreeThroughItsVirtualDestructor) {
    static int destroyed = 0;
    class CountedTree : public CSDCFList {
    public:
        ~CountedTree() override {
            ++destroyed;
        }
    };
    { const CSFileList withoutTree; }
    EXPECT_EQ(destroyed, 0);
    {
        CSFileList list;
        list.m_pDCF = new CountedTree;
        (void)TakeLog();
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(FileListSettings, ANewItemIsZeroInEveryField) {
    alignas(CSFileListItem) unsigned char memory[sizeof(CSFileListItem)];
    std::memset(memory, 0xFF, sizeof memory);
    auto* const item = new (memory) CSFileListItem;
    const std::string fields = Fields(*item);
    std::string expected;
    for (const std::size_t size : {99U, 99U, 4U, 4U, 1U, 1U, 1U, 4U, 4U, 4U, 4U, 36U, 20U, 1U, 4U, 1U, 76U, 24U, 4U}) {
        expected += std::string(size, '\0') + "|";
    }
    EXPECT_EQ(fields, expected);
    item->~CSFileListItem();
}

TEST_F(FileListSettings, ItsDestructorLeavesAnItemAsItIs) {
    alignas(CSFileListItem) unsigned char memory[sizeof(CSFileListItem)];
    auto* const item = new (memory) CSFileListItem(UsedItem());
    item->~CSFileListItem();
    EXPECT_EQ(std::string(reinterpret_cast<char*>(memory), sizeof memory), std::string(sizeof memory, '\1'));
}

// ---- The settings ----

TEST_F(FileListSettings, NamingModesAndImageTypeAreStoredWhateverTheyAre) {
    CSFileList list;
    (void)TakeLog();
    for (const int value : {1, 0, 7, -3}) {
        list.SetFileNameMake(static_cast<eFILE_NAME_MAKE>(value));
        EXPECT_EQ(list.m_eFileNameMake, value);
        EXPECT_EQ(TakeLog(), Log{"CSFileList SetFileNameMake start"});
        list.SetFolderNameMake(static_cast<eFILE_NAME_MAKE>(value + 1));
        EXPECT_EQ(list.m_eFolderNameMake, value + 1);
        EXPECT_EQ(list.m_eFileNameMake, value);
        EXPECT_EQ(TakeLog(), Log{"CSFileList SetFolderNameMake start"});
        list.SetImageType(static_cast<eFileListImageType>(value + 2));
        EXPECT_EQ(list.m_eImageType, value + 2);
        EXPECT_EQ(TakeLog(), Log{"CSFileList SetImageType start"});
    }
}

TEST_F(FileListSettings, TheColourModeReplacesThePrefix) {
    CSFileList list;
    (void)TakeLog();
    const Log expected = {"CSFileList SetFileNameColor start", "CSFileList SetFilePrefix start"};
    for (const auto& [mode, prefix] :
         {std::pair(1, "_KVR"), std::pair(0, "KVR_"), std::pair(2, "_KVR"), std::pair(-1, "_KVR")}) {
        list.SetFileNameColor(static_cast<eFileListColorMode>(mode));
        EXPECT_EQ(list.m_eColorMode, mode);
        EXPECT_STREQ(list.m_szFilePrefix, prefix) << mode;
        EXPECT_EQ(TakeLog(), expected);
    }
}

TEST_F(FileListSettings, ACustomPrefixLastsUntilTheNextColourMode) {
    CSFileList list;
    std::string custom = "ABCD";
    EXPECT_EQ(list.SetFilePrefix(custom.data()), 0);
    EXPECT_STREQ(list.m_szFilePrefix, "ABCD");
    list.SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    EXPECT_STREQ(list.m_szFilePrefix, "_KVR");
    EXPECT_EQ(custom, "ABCD");
}

TEST_F(FileListSettings, APrefixHasAtMostEightCharacters) {
    CSFileList list;
    (void)TakeLog();
    const auto set = [&list](std::string prefix) { return list.SetFilePrefix(prefix.data()); };
    EXPECT_EQ(set("ABCDEFGH"), 0);
    EXPECT_STREQ(list.m_szFilePrefix, "ABCDEFGH");
    EXPECT_EQ(set("ABCDEFGHI"), -2);
    EXPECT_EQ(set(std::string(500, 'x')), -2);
    EXPECT_EQ(list.SetFilePrefix(nullptr), -1);
    EXPECT_STREQ(list.m_szFilePrefix, "ABCDEFGH") << "the old prefix stays";
    EXPECT_EQ(set("AB"), 0);
    EXPECT_STREQ(list.m_szFilePrefix, "AB") << "nothing of the longer one is left";
    EXPECT_EQ(set(""), 0);
    EXPECT_STREQ(list.m_szFilePrefix, "");
    EXPECT_EQ(TakeLog(), Log(6, "CSFileList SetFilePrefix start"));
}

} // namespace
} // namespace dcftest
