// Photo metadata: storing it field by field, the collectors, and metadata that a client pushes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "ChildProcess.h"
#include "Trees.h"

using dcftest::AppendDir;
using dcftest::AppendNumbers;
using dcftest::DiesByAssertion;
using dcftest::RunInChild;

namespace {

/// A record whose every field differs from the others.
PhotoInfo Sample(const char* date = "2024:12:24 18:30:00") {
    PhotoInfo info = {};
    info.attributeByte1 = 201;
    info.attributeByte2 = 202;
    info.attributeWord = 4000000003U;
    info.attributeFlag = 204;
    for (int i = 0; i < 4; ++i) {
        info.attributeWords[i] = -100 - i;
    }
    std::memcpy(info.date, date, std::min(std::strlen(date), sizeof info.date));
    for (int i = 0; i < 17; ++i) {
        info.trailingWords[i] = 1000 + i;
    }
    return info;
}

void ExpectSample(const PhotoInfo& photo) {
    EXPECT_EQ(photo.attributeByte1, 201);
    EXPECT_EQ(photo.attributeByte2, 202);
    EXPECT_EQ(photo.attributeWord, 4000000003U);
    EXPECT_EQ(photo.attributeFlag, 204);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(photo.attributeWords[i], -100 - i);
    }
    EXPECT_STREQ(photo.date, "2024:12:24 18:30:00");
    for (int i = 0; i < 17; ++i) {
        EXPECT_EQ(photo.trailingWords[i], 1000 + i);
    }
}

TEST(PhotoData, IsCopiedFieldByField) {
    DCFItem item;
    item.setPhotoData(Sample());
    EXPECT_TRUE(item.getMetadata());
    ExpectSample(item.m_photo);
}

TEST(PhotoData, ReplacesWhatWasStored) {
    DCFItem item;
    item.setPhotoData(Sample());
    item.setPhotoData(PhotoInfo{});
    EXPECT_TRUE(item.getMetadata());
    EXPECT_EQ(item.m_photo.attributeWord, 0U);
    EXPECT_STREQ(item.m_photo.date, "");
    for (const int word : item.m_photo.trailingWords) {
        EXPECT_EQ(word, 0) << "the -1 of a new item is gone";
    }
}

TEST(PhotoData, CarriesTheDateAsATextOfAtMostTwentyCharacters) {
    const struct {
        const char* date;
        const char* why;
    } rows[] = {
        {"", "empty"},
        {"2024", "short"},
        {"1234567890123456789", "19 characters and the terminator"},
        {"12345678901234567890", "20 characters, which fill the field"},
    };
    for (const auto& row : rows) {
        DCFItem item;
        item.setPhotoData(Sample("xxxxxxxxxxxxxxxxxxxx"));
        item.setPhotoData(Sample(row.date));
        EXPECT_EQ(std::string(item.m_photo.date, strnlen(item.m_photo.date, 20)), row.date) << row.why;
        EXPECT_EQ(item.m_photo.trailingWords[0], 1000) << row.why;
        EXPECT_EQ(item.m_photo.attributeWords[3], -103) << row.why;
    }
}

TEST(PhotoData, DateIsCopiedAsATextWithZerosBehindItsEnd) {
    PhotoInfo info = Sample("xxxxxxxxxxxxxxxxxxxx");
    info.date[4] = '\0';
    DCFItem item;
    item.setPhotoData(info);
    EXPECT_EQ(std::string(item.m_photo.date, 20), "xxxx" + std::string(16, '\0'));
}

TEST(PhotoData, LeavesTheRestOfTheItem) {
    DCFItem item;
    item.setDirNum(100);
    item.setFileName("KVR_0012.JPG");
    item.setFileNum(12);
    item.setWifi(true);
    item.setPhotoData(Sample());
    EXPECT_STREQ(item.m_fileName, "KVR_0012.JPG");
    EXPECT_EQ(item.m_nFileNum, 12);
    EXPECT_TRUE(item.m_bWifi);
    EXPECT_FALSE(item.m_bProtectKnown);
    EXPECT_EQ(item.m_eFileType, FILE_TYPE_JPG);
}

TEST(VideoData, IsKeptNowhere) {
    DCFItem item;
    const DCFItem before = item;
    VideoInfo info = {};
    info.imageWidth = 1920;
    info.totalTime = 60;
    item.setVideoData(info);
    EXPECT_FALSE(item.getMetadata());
    EXPECT_EQ(std::memcmp(&item.m_photo, &before.m_photo, sizeof item.m_photo), 0);
    item.setPhotoData(Sample());
    item.setVideoData(info);
    EXPECT_TRUE(item.getMetadata());
    ExpectSample(item.m_photo);
}

TEST(DirMetadata, IsStoredByPosition) {
    CSDCFDir dir(100, "100ABCDE");
    AppendNumbers(dir, {9, 5, 2});
    dir.setPhotoData(1, Sample());
    EXPECT_FALSE(dir.m_itemGroup[0].m_bMetadata);
    EXPECT_TRUE(dir.m_itemGroup[1].m_bMetadata);
    EXPECT_FALSE(dir.m_itemGroup[2].m_bMetadata);
    ExpectSample(dir.m_itemGroup[1].m_photo);
    dir.setVideoData(2, VideoInfo{});
    EXPECT_FALSE(dir.m_itemGroup[2].m_bMetadata);
}

template <typename Operation>
void ExpectRangeError(Operation operation) {
    try {
        operation();
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_EQ(std::string(error.what()).rfind("deque::_M_range_check", 0), 0U) << error.what();
    }
}

TEST(DirMetadata, AtAPositionOutsideTheFolderIsTheStandardsOwnError) {
    CSDCFDir dir(100, "100ABCDE");
    AppendNumbers(dir, {9, 5, 2});
    CSDCFDir empty(101, "101ABCDE");
    for (const int position : {3, 4, -1, 2147483647, -2147483647 - 1}) {
        ExpectRangeError([&] { dir.setPhotoData(position, Sample()); });
        ExpectRangeError([&] { dir.setVideoData(position, VideoInfo{}); });
    }
    ExpectRangeError([&] { empty.setPhotoData(0, Sample()); });
    ExpectRangeError([&] { empty.setVideoData(0, VideoInfo{}); });
    for (const DCFItem& item : dir.m_itemGroup) {
        EXPECT_FALSE(item.m_bMetadata);
    }
}

int FirstCollector(char*, PhotoInfo*) {
    return 0;
}

int SecondCollector(char*, PhotoInfo*) {
    return -1;
}

int MovieCollector(char*, VideoInfo*) {
    return 0;
}

TEST(Collectors, AreNullAtFirst) {
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, nullptr);
    EXPECT_EQ(CSDCFList::m_VideoInfoCollector, nullptr);
}

TEST(Collectors, OfPhotosAreReplacedAndUnregistered) {
    EXPECT_EQ(CSDCFList::RegisterPhotoMetadataCB(FirstCollector), 1);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, &FirstCollector);
    EXPECT_EQ(CSDCFList::RegisterPhotoMetadataCB(SecondCollector), 1);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, &SecondCollector);
    {
        CSDCFList list;
        EXPECT_EQ(list.RegisterPhotoMetadataCB(FirstCollector), 1);
    }
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, &FirstCollector) << "the process's, not a tree's";
    EXPECT_EQ(CSDCFList::RegisterPhotoMetadataCB(nullptr), 1);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, nullptr);
}

TEST(Collectors, OfMoviesAreNeverStored) {
    EXPECT_EQ(CSDCFList::RegisterVideoMetadataCB(MovieCollector), 1);
    EXPECT_EQ(CSDCFList::m_VideoInfoCollector, nullptr);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, nullptr);
    EXPECT_EQ(CSDCFList::RegisterVideoMetadataCB(nullptr), 1);
}

class PushedMetadataTest : public testing::Test {
protected:
    PushedMetadataTest() {
        EXPECT_EQ(m_list.SetBaseURI("/mnt/mmc"), 0);
        AppendDir(m_list, 101, "101ABCDE", {9, 5});
        AppendDir(m_list, 100, "100ABCDE", {9, 5, 2});
        dcftest::Append(AppendDir(m_list, 99, "Camera"), 99, 123456, "20240131_123456.JPG");
    }

    CSDCFList m_list;
    PhotoInfo m_info = Sample();
};

TEST_F(PushedMetadataTest, IsStoredForThePathsNumbers) {
    EXPECT_EQ(m_list.AddPhotoMetadata("/mnt/mmc/DCIM/100ABCDE/KVR_0005.JPG", m_info), 0);
    EXPECT_TRUE(m_list.m_dirGroup[1]->m_itemGroup[1].m_bMetadata);
    ExpectSample(m_list.m_dirGroup[1]->m_itemGroup[1].m_photo);
    EXPECT_FALSE(m_list.m_dirGroup[0]->m_itemGroup[1].m_bMetadata);
    EXPECT_FALSE(m_list.m_dirGroup[1]->m_itemGroup[0].m_bMetadata);
    EXPECT_EQ(m_list.AddPhotoMetadata("/mnt/mmc/DCIM/Camera/20240131_123456.JPG", m_info), 0);
    EXPECT_TRUE(m_list.m_dirGroup[2]->m_itemGroup[0].m_bMetadata);
    EXPECT_EQ(m_list.AddPhotoMetadata("/mnt/mmc/DCIM/101XXXXX/XXXX0009.AVI", m_info), 0) << "by numbers alone";
    EXPECT_TRUE(m_list.m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
    ExpectSample(m_info);
}

TEST_F(PushedMetadataTest, OfAFileThatIsNotListedIsFatal) {
    const auto file = RunInChild([&] { (void)m_list.AddPhotoMetadata("/mnt/mmc/DCIM/100ABCDE/KVR_0007.JPG", m_info); });
    EXPECT_TRUE(DiesByAssertion(
        file, {"it != m_itemGroup.end()", "cannot found fnum = 7", "CSDCFDir", "int CSDCFDir::GetFidx(int)"}));
    const auto dir = RunInChild([&] { (void)m_list.AddPhotoMetadata("/mnt/mmc/DCIM/102ABCDE/KVR_0005.JPG", m_info); });
    EXPECT_TRUE(
        DiesByAssertion(dir, {"0", "cannot find dir index = 102", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}));
    const auto none = RunInChild([&] { (void)m_list.AddPhotoMetadata(nullptr, m_info); });
    EXPECT_TRUE(
        DiesByAssertion(none, {"0", "cannot find dir index = 0", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}))
        << "both numbers start at 0";
}

} // namespace
