// A card with as many files in one folder as there are numbers, on which nothing is remembered of an earlier mount.
#include "FullFolder.h"

#include "MountedCard.h"
#include "PCSDCFFSIO.h"

namespace dcftest {
namespace {

class FullFolder : public testing::Test {
protected:
    void SetUp() override {
        if (CardFileSystem().empty()) {
            GTEST_SKIP() << "this runs in the machine of scripts/card-tests";
        }
        StartAfresh();
        MountCard(kCardDevice, "");
        ASSERT_EQ(list.SetBaseURI(kLargeRoot), 0);
        ASSERT_EQ(list.Listup(), kLargeCount);
    }

    void TearDown() override {
        if (!CardFileSystem().empty()) {
            UnmountCard();
        }
    }

    static std::string PathOf(int number) {
        return std::string(kLargeRoot) + "/DCIM/" + kFullFolder + "/" + DcfName(number);
    }

    CSFileList list;
};

// One test for all: on FAT the listing alone takes the kernel a minute.
TEST_F(FullFolder, IsListedWholeInOrderWithItsTimesAndCanBeChanged) {
    for (int position = 0; position < kLargeCount; ++position) {
        CSFileListItem item;
        ASSERT_EQ(list.GetAtSimply(position, &item), 0);
        const int number = kLargeCount - position;
        ASSERT_EQ(item.m_strURI, PathOf(number));
        ASSERT_EQ(item.m_nFileTime, TimeOf(number)) << item.m_strURI;
    }

    CSFileListItem item;
    ASSERT_EQ(list.GetAt(kLargeCount - 1, &item), 0);
    EXPECT_EQ(list.SetProtect(&item, true), 0);
    for (const int position : {1, 5000, 9997, 9998}) {
        list.SetSel(position, true);
    }
    EXPECT_EQ(list.DeleteSel(), 0);
    EXPECT_EQ(list.GetCount(), kLargeCount - 3) << "the last one is protected";

    std::array<char, 396> name{};
    EXPECT_EQ(list.GetNewFileName(name.data(), FILE_TYPE_JPG), 0);
    EXPECT_STREQ(name.data(), (std::string(kLargeRoot) + "/DCIM/101PHOTO/KVR_0001.JPG").c_str());

    MountCard(kCardDevice, "");
    for (const int number : {9998, 4999, 2}) {
        EXPECT_FALSE(std::filesystem::exists(PathOf(number))) << number;
    }
    for (const int number : {9999, 9997, 5000, 4998, 3, 1}) {
        EXPECT_TRUE(std::filesystem::exists(PathOf(number))) << number;
    }
    EXPECT_TRUE(std::filesystem::is_directory(std::string(kLargeRoot) + "/DCIM/101PHOTO"));
    EXPECT_TRUE(PCSDCFFSIO::IsProtect(PathOf(1).c_str()));
}

} // namespace
} // namespace dcftest
