// The paths of an item and of its companion file.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "ChildProcess.h"
#include "Trees.h"

using dcftest::AppendDir;
using dcftest::DiesByAssertion;
using dcftest::RunInChild;

namespace {

DCFItem Item(short dnum, const std::string& name, int object = -1) {
    DCFItem item;
    item.setDirNum(dnum);
    item.setFileName(name.c_str());
    item.setObjectType(static_cast<eFileType>(object));
    return item;
}

/// A buffer as a caller has it: dirty, and with a guard behind it.
struct Buffer {
    char text[99];
    char guard[8];

    Buffer() {
        std::memset(text, '#', sizeof text);
        std::memset(guard, '!', sizeof guard);
    }
    bool Untouched() const {
        return std::string(text, sizeof text) == std::string(sizeof text, '#') && GuardStands();
    }
    bool GuardStands() const {
        return std::string(guard, sizeof guard) == std::string(sizeof guard, '!');
    }
};

class ItemPathTest : public testing::Test {
protected:
    ItemPathTest() {
        EXPECT_EQ(m_list.SetBaseURI("/mnt/mmc"), 0);
        AppendDir(m_list, 101, "101PHOTO");
        AppendDir(m_list, 100, "100ABCDE");
        AppendDir(m_list, 99, "Camera");
    }

    CSDCFList m_list;
};

TEST_F(ItemPathTest, IsRootDcimDirectoryAndName) {
    const struct {
        int didx;
        DCFItem item;
        const char* path;
    } rows[] = {
        {1, Item(100, "KVR_0012.JPG"), "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG"},
        {0, Item(101, "KVR_0012.JPG"), "/mnt/mmc/DCIM/101PHOTO/KVR_0012.JPG"},
        {2, Item(99, "20240131_123456.JPG"), "/mnt/mmc/DCIM/Camera/20240131_123456.JPG"},
        {0, Item(100, "KVR_0012.JPG"), "/mnt/mmc/DCIM/101PHOTO/KVR_0012.JPG"}, // the position decides, not the item
    };
    for (const auto& row : rows) {
        Buffer buffer;
        DCFItem item = row.item;
        m_list.GetFullPath(buffer.text, sizeof buffer.text, row.didx, item);
        EXPECT_STREQ(buffer.text, row.path);
        EXPECT_TRUE(buffer.GuardStands());
    }
}

TEST_F(ItemPathTest, OfADirectoryNeedsOneCharacterOfAName) {
    m_list.m_dirGroup[0]->SetDirName("1");
    Buffer buffer;
    DCFItem item = Item(100, "KVR_0012.JPG");
    m_list.GetFullPath(buffer.text, sizeof buffer.text, 0, item);
    EXPECT_STREQ(buffer.text, "/mnt/mmc/DCIM/1/KVR_0012.JPG");
}

TEST_F(ItemPathTest, OfADirectoryWithoutANameIsFatal) {
    m_list.m_dirGroup[1]->SetDirName("");
    const auto ending = RunInChild([&] {
        char path[99];
        DCFItem item = Item(100, "KVR_0012.JPG");
        m_list.GetFullPath(path, sizeof path, 1, item);
    });
    EXPECT_TRUE(DiesByAssertion(ending, {"strlen(m_dirGroup[didx]->m_strDirName) > 0", "need check didx", "CSDCFList",
                                         "void CSDCFList::GetFullPath(char*, int, int, DCFItem&)"}));
}

TEST_F(ItemPathTest, OfACompanionHasItsExtension) {
    const struct {
        const char* name;
        int object;
        const char* path;
        const char* why;
    } rows[] = {
        {"KVR_0012.JPG", 1, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.SRW", "raw"},
        {"KVR_0012.JPG", 2, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.MPO", "multi-picture"},
        {"KVR_0012.SRW", 0, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG", "a picture"},
        {"KVR_0012.JPG", 3, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.MP4", "a movie"},
        {"KVR_0012.JPG", 5, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.AVI", "a movie"},
        {"KVR_0012.JPG", 4, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.", "a type without a text ends at the dot"},
        {"KVR_0012.JPG", -2, "/mnt/mmc/DCIM/100ABCDE/KVR_0012.", "any type but the one that says none"},
        {"KVR_0012XJPG", 1, "/mnt/mmc/DCIM/100ABCDE/KVR_0012XSRW", "nine characters are kept as they are"},
    };
    for (const auto& row : rows) {
        Buffer buffer;
        DCFItem item = Item(100, row.name, row.object);
        m_list.GetObjectFullPath(buffer.text, sizeof buffer.text, 1, item);
        EXPECT_STREQ(buffer.text, row.path) << row.why;
        EXPECT_STREQ(item.m_fileName, row.name) << "the item keeps its name";
        EXPECT_TRUE(buffer.GuardStands());
    }
}

TEST_F(ItemPathTest, OfACompanionInCameraKeepsNineCharactersOfTheName) {
    Buffer buffer;
    DCFItem item = Item(99, "20240131_123456.JPG", FILE_TYPE_SRW);
    m_list.GetObjectFullPath(buffer.text, sizeof buffer.text, 2, item);
    EXPECT_STREQ(buffer.text, "/mnt/mmc/DCIM/Camera/20240131_SRW");
}

TEST_F(ItemPathTest, WithoutACompanionIsNotWritten) {
    Buffer buffer;
    DCFItem item = Item(100, "KVR_0012.JPG");
    m_list.GetObjectFullPath(buffer.text, sizeof buffer.text, 1, item);
    EXPECT_TRUE(buffer.Untouched());
}

TEST_F(ItemPathTest, OfACompanionNeedsNoDirectoryName) {
    m_list.m_dirGroup[1]->SetDirName("");
    Buffer buffer;
    DCFItem item = Item(100, "KVR_0012.JPG", FILE_TYPE_SRW);
    m_list.GetObjectFullPath(buffer.text, sizeof buffer.text, 1, item);
    EXPECT_STREQ(buffer.text, "/mnt/mmc/DCIM//KVR_0012.SRW");
}

TEST_F(ItemPathTest, IsCutToTheBuffer) {
    const std::string file = "/mnt/mmc/DCIM/100ABCDE/KVR_0012.JPG";
    const std::string object = "/mnt/mmc/DCIM/100ABCDE/KVR_0012.SRW";
    DCFItem item = Item(100, "KVR_0012.JPG", FILE_TYPE_SRW);
    for (int len = 1; len <= 40; ++len) {
        Buffer buffer;
        m_list.GetFullPath(buffer.text, len, 1, item);
        EXPECT_EQ(std::string(buffer.text), file.substr(0, static_cast<std::size_t>(len) - 1)) << len;
        EXPECT_EQ(buffer.text[len], '#') << "nothing behind the terminator";
        Buffer second;
        m_list.GetObjectFullPath(second.text, len, 1, item);
        EXPECT_EQ(std::string(second.text), object.substr(0, static_cast<std::size_t>(len) - 1)) << len;
        EXPECT_EQ(second.text[len], '#');
    }
}

TEST_F(ItemPathTest, IsNotWrittenWhereThereIsNoRoom) {
    DCFItem item = Item(100, "KVR_0012.JPG", FILE_TYPE_SRW);
    Buffer buffer;
    m_list.GetFullPath(buffer.text, 0, 1, item);
    m_list.GetObjectFullPath(buffer.text, 0, 1, item);
    EXPECT_TRUE(buffer.Untouched());
}

TEST_F(ItemPathTest, OfALongRootIsCutAt98Characters) {
    for (const std::size_t length : {71U, 72U, 73U, 97U}) {
        const std::string root = "/" + std::string(length - 1, 'r');
        ASSERT_EQ(m_list.SetBaseURI(root.c_str()), 0);
        DCFItem item = Item(100, "KVR_0012.JPG", FILE_TYPE_SRW);
        Buffer buffer;
        m_list.GetFullPath(buffer.text, sizeof buffer.text, 1, item);
        EXPECT_EQ(std::string(buffer.text), (root + "/DCIM/100ABCDE/KVR_0012.JPG").substr(0, 98)) << length;
        Buffer second;
        m_list.GetObjectFullPath(second.text, sizeof second.text, 1, item);
        EXPECT_EQ(std::string(second.text), (root + "/DCIM/100ABCDE/KVR_0012.SRW").substr(0, 98)) << length;
        EXPECT_TRUE(buffer.GuardStands() && second.GuardStands());
    }
}

} // namespace
