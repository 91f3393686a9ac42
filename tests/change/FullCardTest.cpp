// A card whose numbers run out: the last ones are taken, the next is refused, the directories are renumbered, and
// recording goes on.
#include <fstream>

#include "Change.h"

namespace dcftest {
namespace {

class FullCard : public FileListTest {
protected:
    /// Takes the next name and writes the file; the name below "DCIM", or the result.
    std::string Record() {
        std::array<char, 396> out{};
        const int result = list->GetNewFileName(out.data(), FILE_TYPE_JPG);
        if (result != 0) {
            return std::to_string(result);
        }
        std::ofstream(out.data()) << "a picture";
        return Relative(card, out.data());
    }
};

TEST_F(FullCard, TakesTheLastNumbersRefusesAndRecordsAgainOnceRenumbered) {
    card.AddFiles("998PHOTO", {DcfName(1)}).AddFiles("999PHOTO", {DcfName(9996), DcfName(9997)});
    ASSERT_EQ(List(), 3);
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 2);
    EXPECT_EQ(Record(), "999PHOTO/KVR_9998.JPG");
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 1);
    EXPECT_EQ(Record(), "999PHOTO/KVR_9999.JPG");
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 0);
    EXPECT_EQ(SeriesValue(), 99909999);

    EXPECT_EQ(list->m_pDCF->GetNewFileIndex("PHOTO"), -9999);
    EXPECT_EQ(Record(), "-1");
    EXPECT_EQ(list->GetCount(), 5);
    EXPECT_EQ(card.DirNames(), (Texts{"998PHOTO", "999PHOTO"}));

    EXPECT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(SeriesValue(), 0);
    EXPECT_EQ(TreeTexts(*list->m_pDCF), (Texts{"101PHOTO: 1", "100PHOTO: 9999 9998 9997 9996"}));
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 20000);
    EXPECT_EQ(Record(), "101PHOTO/KVR_0002.JPG");
    EXPECT_EQ(SeriesValue(), 10100002);
    EXPECT_EQ(list->GetCount(), 6);
}

TEST_F(FullCard, GoesOnBehindItsFullDirectoryWhenThatIsTheNewestAfterwards) {
    card.AddFiles("999PHOTO", {DcfName(9999)});
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(Record(), "-1");
    EXPECT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(Record(), "101PHOTO/KVR_0001.JPG");
    EXPECT_EQ(card.DirNames(), (Texts{"100PHOTO", "101PHOTO"}));
}

TEST_F(FullCard, InSeriesModeDoesNotBringTheExhaustedSeriesBack) {
    card.AddFiles("999PHOTO", {DcfName(9998)});
    ASSERT_EQ(List(), 1);
    ASSERT_EQ(list->SetSeriesMode(true), 99909998);
    EXPECT_EQ(Record(), "999PHOTO/KVR_9999.JPG");
    EXPECT_EQ(Record(), "-1");
    EXPECT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10009999);
    EXPECT_EQ(Record(), "101PHOTO/KVR_0001.JPG");
}

TEST_F(FullCard, ByAnotherCardsSeriesRestartsFromItsOwnNumbers) {
    card.AddFiles("105PHOTO", {DcfName(17)});
    ASSERT_EQ(List(), 1);
    StoreSeriesValue(99909999);
    ASSERT_EQ(list->SetSeriesMode(true), 10500017);
    EXPECT_EQ(SeriesValue(), 10500017);
    EXPECT_EQ(Record(), "105PHOTO/KVR_0018.JPG");
}

TEST_F(FullCard, WithAnotherSuffixInTheLastDirectoryHasNoNumberLeft) {
    card.AddFiles("999ABCDE", {DcfName(1)});
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 0);
    EXPECT_EQ(Record(), "-1");
    EXPECT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(Record(), "101PHOTO/KVR_0001.JPG");
    EXPECT_EQ(CardFiles(card), (Texts{"100ABCDE/KVR_0001.JPG", "101PHOTO/KVR_0001.JPG"}));
}

} // namespace
} // namespace dcftest
