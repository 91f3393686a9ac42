// A client's road over a card at the default storage root, with nothing set: in a mount namespace of its own.
#include "Scenario.h"

#include <filesystem>

#include "CBIFileListManager.h"
#include "PrivateMount.h"

namespace dcftest {
namespace {

class DefaultRoot : public testing::Test {
protected:
    DefaultRoot() {
        StartAfresh();
    }

    Card card;
};

TEST_F(DefaultRoot, IsListedAndBrowsedWithoutAnySetting) {
    card.AddFiles("101PHOTO", {DcfName(1), DcfName(2), DcfName(2, "SRW")}).AddFile("Camera", CameraName(3));
    const Ending ending = RunWithDefaultRoot(card.Root(), [] {
        ASSERT_EQ(CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT), 0);
        ISFileList& list = *CBIFileListManager::GetFileList();
        EXPECT_EQ(list.Listup(), 3);
        CSFileListItem item;
        std::vector<std::string> paths;
        for (int result = list.GetFirst(&item); result == 0; result = list.GetNext(&item)) {
            paths.emplace_back(item.m_strURI);
        }
        EXPECT_EQ(paths, (std::vector<std::string>{"/mnt/mmc/DCIM/101PHOTO/KVR_0002.JPG",
                                                   "/mnt/mmc/DCIM/101PHOTO/KVR_0001.JPG",
                                                   "/mnt/mmc/DCIM/Camera/20240131_000003.JPG"}));
        std::string path = "/mnt/mmc/DCIM/101PHOTO/KVR_0001.JPG";
        EXPECT_EQ(list.GetFileListIndex(path.data()), 1);
        EXPECT_EQ(list.SetCur(path.data()), 0);
        EXPECT_EQ(list.GetCurIndex(), 1);
        EXPECT_EQ(list.GetFirst(&item), 0);
        EXPECT_STREQ(item.m_strObject, "/mnt/mmc/DCIM/101PHOTO/KVR_0002.SRW");
        EXPECT_EQ(CBIFileListManager::Destroy(), 0);
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST_F(DefaultRoot, GetsItsDcimWhereItIsMissing) {
    const Ending ending = RunWithDefaultRoot(card.Root(), [] {
        CSFileList list;
        EXPECT_EQ(list.Listup(), 0);
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(std::filesystem::is_directory(card.Dcim()));
}

TEST_F(DefaultRoot, IsLeftForAnotherRootByChoiceAlone) {
    Card other;
    other.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    card.AddFile("100ABCDE", DcfName(1));
    const Ending ending = RunWithDefaultRoot(card.Root(), [&] {
        CSFileList chosen;
        EXPECT_EQ(chosen.SetBaseURI(other.Root().c_str()), 0);
        EXPECT_EQ(chosen.Listup(), 2);
        CSFileList refused;
        EXPECT_EQ(refused.SetBaseURI(nullptr), -1);
        EXPECT_EQ(refused.Listup(), 1);
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

} // namespace
} // namespace dcftest
