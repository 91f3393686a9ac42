// DCFItem: its initial values, its accessors, its name and type, and the protect state that it reads once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFItemList.h"
#include "CSDCFList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "FakePlatform.h"
#include "PosixSeam.h"

using dcftest::Card;
using dcftest::DcfName;
using dcftest::DiesByAssertion;
using dcftest::PosixSeam;
using dcftest::RunInChild;

namespace {

using Texts = std::vector<std::string>;

DCFItem Named(short dirNum, const std::string& name) {
    DCFItem item;
    item.setDirNum(dirNum);
    item.setFileName(name.c_str());
    return item;
}

TEST(Item, StartsUnknown) {
    alignas(DCFItem) unsigned char memory[sizeof(DCFItem)];
    std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0xA5));
    const auto* item = new (memory) DCFItem;
    EXPECT_TRUE(std::all_of(std::begin(item->m_fileName), std::end(item->m_fileName), [](char c) { return c == 0; }));
    EXPECT_FALSE(item->m_bProtectKnown);
    EXPECT_FALSE(item->m_bProtect);
    EXPECT_FALSE(item->m_bWifi);
    EXPECT_EQ(item->m_nFileTime, 0U);
    EXPECT_EQ(item->m_nFileNum, 0);
    EXPECT_EQ(item->m_nDirNum, 0);
    EXPECT_EQ(item->m_eFileType, FILE_TYPE_NONE);
    EXPECT_EQ(item->m_eObjectType, FILE_TYPE_NONE);
    EXPECT_FALSE(item->m_bMetadata);
}

TEST(Item, StartsWithZeroMetadataButForTheLastSixWords) {
    const DCFItem item;
    EXPECT_EQ(item.m_photo.attributeByte1, 0);
    EXPECT_EQ(item.m_photo.attributeByte2, 0);
    EXPECT_EQ(item.m_photo.attributeWord, 0U);
    EXPECT_EQ(item.m_photo.attributeFlag, 0);
    for (const int word : item.m_photo.attributeWords) {
        EXPECT_EQ(word, 0);
    }
    for (const char c : item.m_photo.date) {
        EXPECT_EQ(c, 0);
    }
    for (int i = 0; i < 17; ++i) {
        EXPECT_EQ(item.m_photo.trailingWords[i], i < 11 ? 0 : -1) << i;
    }
}

TEST(Item, EachAccessorReadsAndWritesItsField) {
    DCFItem item;
    item.setFileNum(-2147483647);
    EXPECT_EQ(item.getFileNum(), -2147483647);
    EXPECT_EQ(item.m_nFileNum, -2147483647);
    item.setDirNum(-5);
    EXPECT_EQ(item.getDirNum(), -5);
    EXPECT_EQ(item.m_nDirNum, -5);
    item.setFileTime(0xFFFFFFFFU);
    EXPECT_EQ(item.getFileTime(), 0xFFFFFFFFU);
    EXPECT_EQ(item.m_nFileTime, 0xFFFFFFFFU);
    item.setObjectType(FILE_TYPE_MPO);
    EXPECT_EQ(item.getObjectType(), FILE_TYPE_MPO);
    EXPECT_EQ(item.m_eObjectType, FILE_TYPE_MPO);
    EXPECT_EQ(item.getFileType(), FILE_TYPE_NONE) << "the companion type is no type of the file";
    item.setObjectType(FILE_TYPE_NONE);
    EXPECT_EQ(item.getObjectType(), FILE_TYPE_NONE);
    item.m_eFileType = FILE_TYPE_AVI;
    EXPECT_EQ(item.getFileType(), FILE_TYPE_AVI);
    item.setWifi(true);
    EXPECT_TRUE(item.getWifi());
    EXPECT_TRUE(item.m_bWifi);
    item.setWifi(false);
    EXPECT_FALSE(item.getWifi());
    EXPECT_FALSE(item.getMetadata());
    item.m_bMetadata = true;
    EXPECT_TRUE(item.getMetadata());
    EXPECT_FALSE(item.m_bProtectKnown) << "nothing of this asks for the protect state";
}

TEST(Item, HandsOutItsOwnName) {
    DCFItem item = Named(100, "KVR_0012.JPG");
    EXPECT_STREQ(item.getFileName(), "KVR_0012.JPG");
    EXPECT_EQ(item.getFileName(), item.m_fileName);
}

TEST(ItemName, DecidesTheTypeByTheFirstExtensionTextFoundAnywhere) {
    const struct {
        short dirNum;
        const char* name;
        int type;
        const char* why;
    } rows[] = {
        {100, "KVR_0012.JPG", 0, "by extension"},
        {100, "KVR_0012.MPO", 2, "by extension"},
        {100, "KVR_0012.SRW", 1, "by extension"},
        {100, "KVR_0012.MP4", 3, "by extension"},
        {100, "KVR_0012.AVI", 5, "by extension"},
        {100, "_JPG0012.SRW", 0, "JPG is looked for first, anywhere"},
        {100, "JPG_0012.MPO", 0, "JPG before MPO"},
        {100, "JPG_0012.AVI", 0, "JPG before AVI"},
        {100, "MPO_0012.SRW", 2, "MPO before SRW"},
        {100, "MPO_0012.MP4", 2, "MPO before MP4"},
        {100, "SRW_0012.MP4", 1, "SRW before MP4"},
        {100, "SRW_0012.AVI", 1, "SRW before AVI"},
        {100, "MP4_0012.AVI", 3, "MP4 before AVI"},
        {100, "AVI_0012.MP4", 3, "MP4 before AVI, wherever they stand"},
        {100, "KVR_0012.MOV", -1, "none of them"},
        {100, "KVR_0012.jpg", -1, "upper case only"},
        {99, "20240131_123456.SRW", 1, "Camera"},
        {99, "", -1, "Camera takes any length below 30"},
        {99, "JPG", 0, "Camera takes any length below 30"},
        {99, "AAAAAAAAAAAAAAAAAAAAAAAAA.AVI", 5, "Camera: 29 characters, the most"},
    };
    for (const auto& row : rows) {
        DCFItem item = Named(row.dirNum, row.name);
        EXPECT_EQ(item.getFileType(), row.type) << row.name << ": " << row.why;
        EXPECT_STREQ(item.m_fileName, row.name);
    }
}

TEST(ItemName, KeepsTheTypeWhenNoExtensionTextOccurs) {
    DCFItem item = Named(100, "KVR_0012.MP4");
    item.setFileName("KVR_0012.XYZ");
    EXPECT_EQ(item.getFileType(), FILE_TYPE_MP4);
    EXPECT_STREQ(item.m_fileName, "KVR_0012.XYZ");
}

TEST(ItemName, ReplacesALongerOneWhole) {
    DCFItem item = Named(99, "20240131_1234567890123456.JPG");
    ASSERT_EQ(std::strlen(item.m_fileName), 29U);
    item.setFileName("20240131_123456.SRW");
    EXPECT_STREQ(item.m_fileName, "20240131_123456.SRW");
    EXPECT_EQ(item.getFileType(), FILE_TYPE_SRW);
}

TEST(ItemName, OfAnotherLengthThanTwelveIsFatalInADcfDirectory) {
    const struct {
        short dirNum;
        std::string name;
    } rows[] = {
        {100, "KVR_0012.JP"}, {100, "KVR_0012.JPEG"}, {100, ""}, {999, "20240131_123456.JPG"}, {0, "KVR_0012.JP"},
    };
    for (const auto& row : rows) {
        const auto ending = RunInChild([&] { (void)Named(row.dirNum, row.name); });
        EXPECT_TRUE(
            DiesByAssertion(ending, {"len == 12", "more than dcf filename length = " + std::to_string(row.name.size()),
                                     "CSDCFItemList", "void DCFItem::setFileName(const char*)"}))
            << row.name;
    }
}

TEST(ItemName, OfThirtyCharactersIsFatalInCamera) {
    EXPECT_EQ(Named(99, std::string(29, 'A')).getFileType(), FILE_TYPE_NONE);
    for (const std::size_t length : {30U, 31U, 200U}) {
        const auto ending = RunInChild([&] { (void)Named(99, std::string(length, 'A')); });
        EXPECT_TRUE(DiesByAssertion(ending, {"len < MAX_FILE_SIZE",
                                             "more than non dcf filename length = " + std::to_string(length),
                                             "CSDCFItemList", "void DCFItem::setFileName(const char*)", "len < 30"}));
    }
}

class ItemProtectTest : public testing::Test {
protected:
    ItemProtectTest() {
        m_card.AddFile("100ABCDE", DcfName(1), {"", 0444, {}}).AddFile("100ABCDE", DcfName(2));
        DirPathMapper::getInstance()->clear();
        DirPathMapper::getInstance()->add(100, m_card.Path("100ABCDE"));
        m_item = Named(100, DcfName(1));
    }

    Card m_card;
    DCFItem m_item;
    const std::string m_path = m_card.Path("100ABCDE", DcfName(1));
};

TEST_F(ItemProtectTest, IsAskedOnceThroughTheRegisteredPath) {
    PosixSeam seam;
    EXPECT_TRUE(m_item.getProtect());
    EXPECT_TRUE(m_item.m_bProtectKnown);
    EXPECT_TRUE(m_item.getProtect());
    EXPECT_EQ(seam.Texts(), Texts{"stat " + m_path});
    DCFItem other = Named(100, DcfName(2));
    EXPECT_FALSE(other.getProtect());
    EXPECT_TRUE(other.m_bProtectKnown) << "not protected is known too";
    EXPECT_FALSE(other.getProtect());
    EXPECT_EQ(seam.Count("stat"), 2);
}

TEST_F(ItemProtectTest, StaysAsItWasFirstRead) {
    EXPECT_TRUE(m_item.getProtect());
    m_card.SetMode("100ABCDE", DcfName(1), 0644);
    EXPECT_TRUE(m_item.getProtect());
}

TEST_F(ItemProtectTest, SetInMemoryNeedsNoCard) {
    PosixSeam seam;
    m_item.setProtect(false);
    EXPECT_TRUE(m_item.m_bProtectKnown);
    EXPECT_FALSE(m_item.getProtect()) << "although the card says otherwise";
    m_item.setProtect(true);
    EXPECT_TRUE(m_item.getProtect());
    EXPECT_TRUE(m_item.m_bProtect);
    EXPECT_TRUE(seam.Calls().empty());
    EXPECT_EQ(m_card.Mode("100ABCDE", DcfName(1)), 0444U);
}

TEST_F(ItemProtectTest, OfAnUnreadableFileIsKnownToBeOff) {
    PosixSeam seam;
    seam.Fail("stat", EIO);
    EXPECT_FALSE(m_item.getProtect());
    EXPECT_TRUE(m_item.m_bProtectKnown);
    EXPECT_FALSE(m_item.getProtect()) << "not asked again";
    EXPECT_EQ(seam.Count("stat"), 1);
}

TEST_F(ItemProtectTest, StaysWithTheCopyThatWasAsked) {
    DCFItem copy = m_item;
    EXPECT_TRUE(copy.getProtect());
    EXPECT_FALSE(m_item.m_bProtectKnown);
}

TEST_F(ItemProtectTest, OfAnUnregisteredDirectoryAsksBelowTheRootOfTheSystem) {
    DCFItem stranger = Named(555, DcfName(1));
    PosixSeam seam;
    EXPECT_FALSE(stranger.getProtect());
    EXPECT_EQ(seam.Texts(), Texts{"stat /KVR_0001.JPG"});
    EXPECT_EQ(DirPathMapper::getInstance()->m_mapPath.count(555), 1U) << "the question enters the number";
}

TEST_F(ItemProtectTest, AsksForAPathOfAtMost98Characters) {
    const struct {
        std::size_t folder;
        std::size_t asked;
        const char* why;
    } rows[] = {
        {85, 98, "just fits"},
        {86, 98, "one character is cut"},
        {97, 98, "only the slash is left"},
        {98, 98, "only the folder is left"},
        {300, 98, "the folder is cut"},
    };
    for (const auto& row : rows) {
        const std::string folder = "/" + std::string(row.folder - 1, 'x');
        DirPathMapper::getInstance()->add(200, folder);
        DCFItem item = Named(200, DcfName(1));
        PosixSeam seam;
        EXPECT_FALSE(item.getProtect());
        EXPECT_EQ(seam.Texts(), Texts{"stat " + (folder + "/" + DcfName(1)).substr(0, row.asked)}) << row.why;
    }
}

} // namespace
