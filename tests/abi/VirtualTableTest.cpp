// The virtual tables of the built library, slot by slot: clients call through them by position.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <string>
#include <vector>

#include "CBIFileListManager.h"

namespace {

/// The operations of ISFileList in their order, each as the mangled name behind its class.
const std::vector<std::string> kOperations = {
    "13SetSeriesModeEb",
    "13GetSeriesModeEv",
    "6ListupEv",
    "13IncludeNonDCFEb",
    "6DeleteEP14CSFileListItem",
    "9DeleteSelEv",
    "9DeleteAllEv",
    "8GetCountEv",
    "5GetAtEiP14CSFileListItem",
    "16GetFileListIndexEPc",
    "11GetCurIndexEv",
    "10GetCurrentEP14CSFileListItem",
    "8GetFirstEP14CSFileListItem",
    "7GetNextEP14CSFileListItem",
    "7GetPrevEP14CSFileListItem",
    "7GetLastEP14CSFileListItem",
    "6IsLastEP14CSFileListItem",
    "15SetFileNameMakeE15eFILE_NAME_MAKE",
    "17SetFolderNameMakeE15eFILE_NAME_MAKE",
    "16SetFileNameColorE18eFileListColorMode",
    "12SetImageTypeE18eFileListImageType",
    "14GetNewFileNameEPci",
    "17GetLatestFileNameEPc9eFileType",
    "16UpdateFirstIndexEb",
    "17GetSelectIndeciesEv",
    "6SetCurEPc",
    "11SetCurIndexEi",
    "5IsSelEi",
    "6SetSelEib",
    "12SelectCancelEv",
    "11GetSelCountEv",
    "11SetWifiFlagEP14CSFileListItemb",
    "10IsWifiFlagEP14CSFileListItem",
    "10SetProtectEP14CSFileListItemb",
    "13SetProtectSelEb",
    "13SetProtectAllEb",
    "19SetProtectSelToggleEv",
    "13SetFilePrefixEPc",
    "7GetInfoEPcP14CSFileListItem",
    "18GetAvailNumOfPhotoEv",
    "12GetFileCountE9eFileType",
    "15SetCustomBitAllEib",
    "23RegisterPhotoMetadataCBEPFiPcP9PhotoInfoE",
    "23RegisterVideoMetadataCBEPFiPcP9VideoInfoE",
    "16AddPhotoMetadataEPKcR9PhotoInfo",
    "11GetAtSimplyEiP14CSFileListItem",
    "20RenameDCFFullStorageEv",
};

/// Behind the offset to the top and the type information come the complete and the deleting destructor.
constexpr std::size_t kFirstSlot = 2;
constexpr std::size_t kFirstOperation = 4;

void* Symbol(const std::string& name) {
    return dlsym(RTLD_DEFAULT, name.c_str());
}

/// The slots of a class's virtual table as the built library holds it.
void* const* VirtualTable(const std::string& mangledClass) {
    return static_cast<void* const*>(Symbol("_ZTV" + mangledClass));
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kPadded = true;
#elif defined(__has_feature)
constexpr bool kPadded = __has_feature(address_sanitizer);
#else
constexpr bool kPadded = false;
#endif

/// Whether a table has exactly so many slots. AddressSanitizer pads the tables, so that there only the least number can
/// be told.
bool HasSlots(const void* table, std::size_t count) {
    Dl_info info = {};
    ElfW(Sym)* symbol = nullptr;
    if (dladdr1(table, &info, reinterpret_cast<void**>(&symbol), RTLD_DL_SYMENT) == 0 || symbol == nullptr) {
        return false;
    }
    const std::size_t slots = symbol->st_size / sizeof(void*);
    return kPadded ? slots >= count : slots == count;
}

TEST(VirtualTable, FileListHasItsDestructorsAnd47OperationsInOrder) {
    ASSERT_EQ(kOperations.size(), 47U);
    const std::string kClass = "10CSFileList";
    void* const* table = VirtualTable(kClass);
    ASSERT_NE(table, nullptr);
    ASSERT_TRUE(HasSlots(table, kFirstOperation + kOperations.size()));

    EXPECT_EQ(table[kFirstSlot], Symbol("_ZN" + kClass + "D1Ev"));
    EXPECT_EQ(table[kFirstSlot + 1], Symbol("_ZN" + kClass + "D0Ev"));
    for (std::size_t i = 0; i < kOperations.size(); ++i) {
        void* const operation = Symbol("_ZN" + kClass + kOperations[i]);
        ASSERT_NE(operation, nullptr) << kOperations[i];
        EXPECT_EQ(table[kFirstOperation + i], operation) << "slot " << i << " should be " << kOperations[i];
    }
}

TEST(VirtualTable, FileListThatTheManagerMakesUsesThatTable) {
    ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
    ISFileList* list = CBIFileListManager::GetFileList();
    ASSERT_NE(VirtualTable("10CSFileList"), nullptr);
    EXPECT_EQ(*reinterpret_cast<void* const**>(list), VirtualTable("10CSFileList") + kFirstSlot);
    CBIFileListManager::Destroy();
}

TEST(VirtualTable, InterfaceHasAsManySlotsAllOfThemPure) {
    void* const* table = VirtualTable("10ISFileList");
    ASSERT_NE(table, nullptr);
    ASSERT_TRUE(HasSlots(table, kFirstOperation + kOperations.size()));
    void* const pure = Symbol("__cxa_pure_virtual");
    ASSERT_NE(pure, nullptr);
    for (std::size_t i = 0; i < kOperations.size(); ++i) {
        EXPECT_EQ(table[kFirstOperation + i], pure) << kOperations[i];
    }
}

class DestructorsAlone : public testing::TestWithParam<const char*> {};

TEST_P(DestructorsAlone, AreTheOnlyVirtualFunctions) {
    const std::string mangledClass = GetParam();
    void* const* table = VirtualTable(mangledClass);
    ASSERT_NE(table, nullptr);
    ASSERT_TRUE(HasSlots(table, kFirstOperation));
    ASSERT_NE(table[kFirstSlot], nullptr);
    EXPECT_EQ(table[kFirstSlot], Symbol("_ZN" + mangledClass + "D1Ev"));
    EXPECT_EQ(table[kFirstSlot + 1], Symbol("_ZN" + mangledClass + "D0Ev"));
}

INSTANTIATE_TEST_SUITE_P(VirtualTable, DestructorsAlone, testing::Values("9CSDCFList", "8CSDCFDir", "10PCSDCFFSIO"));

class NoVirtualTable : public testing::TestWithParam<const char*> {};

TEST_P(NoVirtualTable, BelongsToAPlainRecord) {
    EXPECT_EQ(VirtualTable(GetParam()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(VirtualTable, NoVirtualTable,
                         testing::Values("14CSFileListItem", "7DCFItem", "13DirPathMapper", "18CBIFileListManager"));

} // namespace
