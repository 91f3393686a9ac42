// A client's road: it registers the collector with the file list, and the items carry what the pictures tell.
#include "Collected.h"

#include <thread>
#include <type_traits>
#include <vector>

#include "CBIFileListManager.h"
#include "Card.h"
#include "Scenario.h"

namespace dcftest {
namespace {

using enum ExifDirectory;

/// The list of a card, made for each test.
class ExifClient : public testing::Test {
protected:
    ~ExifClient() override {
        if (m_list != nullptr) {
            (void)m_list->RegisterPhotoMetadataCB(nullptr);
            (void)CBIFileListManager::Destroy();
        }
    }

    void AddPicture(const std::string& name, std::uint32_t iso) {
        FileTraits traits;
        traits.content = JpegWithExif(OrdinaryExif(ByteOrder::kBig).Short(kExif, 0x8827, {iso}).Build());
        card.AddFile("100ABCDE", name, traits);
    }
    ISFileList& List() {
        (void)CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
        (void)CBIFileListManager::SetBaseURI(card.Root().c_str());
        m_list = CBIFileListManager::GetFileList();
        (void)m_list->Listup();
        return *m_list;
    }

    Card card;
    CSFileListItem item;
    DcfExifInfo info = {};

private:
    ISFileList* m_list = nullptr;
};

TEST_F(ExifClient, GetsWhatThePictureTellsWithTheSecondConversion) {
    AddPicture("KVR_0001.JPG", 800);
    ISFileList& list = List();
    EXPECT_EQ(list.RegisterPhotoMetadataCB(CollectExif), 1);
    ASSERT_EQ(list.GetFirst(&item), 0);
    EXPECT_FALSE(DcfExifRead(item, &info)) << "collected, and not handed out yet";
    ASSERT_EQ(list.GetFirst(&item), 0);
    ASSERT_TRUE(DcfExifRead(item, &info));
    EXPECT_EQ(info.iso, 800U);
    EXPECT_STREQ(info.date, "2024:05:01 10:20:30");
    EXPECT_EQ(info.width, 5472);
    EXPECT_EQ(info.exposureNumerator, 1);
    EXPECT_EQ(info.exposureDenominator, 125);
    EXPECT_EQ(info.longitude, 13405100);
    EXPECT_EQ(info.sharpness, 0);
}

TEST_F(ExifClient, FindsEveryWordOfTheRecordInTheItem) {
    AddPicture("KVR_0001.JPG", 800);
    ISFileList& list = List();
    // Each word of its own value shows that none is taken for another.
    PhotoInfo sent = DistinctPhotoInfo();
    sent.attributeByte1 = DCF_EXIF_PRESENT;
    ASSERT_EQ(list.AddPhotoMetadata(card.Path("100ABCDE", "KVR_0001.JPG").c_str(), sent), 0);
    ASSERT_EQ(list.GetFirst(&item), 0);
    const PhotoInfo got = DcfExifPhotoInfo(item);
    EXPECT_EQ(got.attributeByte1, sent.attributeByte1);
    EXPECT_EQ(got.attributeByte2, sent.attributeByte2);
    EXPECT_EQ(got.attributeWord, sent.attributeWord);
    EXPECT_EQ(got.attributeFlag, sent.attributeFlag);
    EXPECT_EQ(Bytes(got.date), Bytes(sent.date));
    for (std::size_t i = 0; i < std::size(sent.attributeWords); ++i) {
        EXPECT_EQ(got.attributeWords[i], sent.attributeWords[i]) << i;
    }
    for (std::size_t i = 0; i < std::size(sent.trailingWords); ++i) {
        EXPECT_EQ(got.trailingWords[i], sent.trailingWords[i]) << i;
    }
}

TEST_F(ExifClient, GetsNothingOfAFileThatTellsNothing) {
    card.AddFile("100ABCDE", "KVR_0001.JPG").AddFile("100ABCDE", "KVR_0002.AVI");
    ISFileList& list = List();
    (void)list.RegisterPhotoMetadataCB(CollectExif);
    for (int round = 0; round < 2; ++round) {
        for (int position = 0; position < 2; ++position) {
            ASSERT_EQ(list.GetAt(position, &item), 0);
            EXPECT_FALSE(DcfExifRead(item, &info));
            EXPECT_EQ(item.m_aMeta[18], -1) << "as in a new item";
        }
    }
}

TEST_F(ExifClient, FindsThatARecordOfAnotherCollectorIsNoneOfThese) {
    PhotoInfo other = DistinctPhotoInfo();
    other.attributeByte1 = 0x7f;
    info.iso = 5;
    EXPECT_FALSE(DcfExifRead(other, &info));
    EXPECT_EQ(info.iso, 5U) << "and nothing was written";
}

TEST(ExifConcurrency, OneCollectorServesSeveralThreads) {
    Card card;
    constexpr int kThreads = 4;
    for (int i = 0; i < kThreads; ++i) {
        FileTraits traits;
        traits.content = JpegWithExif(
            OrdinaryExif(ByteOrder::kLittle).Short(kExif, 0x8827, {static_cast<std::uint32_t>(100 + i)}).Build());
        card.AddFile("100ABCDE", DcfName(i), traits);
    }
    int wrong[kThreads] = {};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 50; ++round) {
                std::string path = card.Path("100ABCDE", DcfName(i));
                PhotoInfo info = {};
                const bool right = CollectExif(path.data(), &info) == DCF_EXIF_OK &&
                                   info.attributeWord == static_cast<std::uint32_t>(100 + i);
                wrong[i] += right ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const int count : wrong) {
        EXPECT_EQ(count, 0);
    }
}

} // namespace
} // namespace dcftest
