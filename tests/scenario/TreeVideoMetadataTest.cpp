// The video collector: accepted and stored nowhere, so its branch sleeps. The branch is kept all the same; here it is
// woken by hand.
#include "Scenario.h"

#include <cstdio>

namespace dcftest {
namespace {

std::vector<std::string> g_paths;
const CSFileListItem* g_item = nullptr;
int g_photoCalls = 0;

int FillVideo(char* path, VideoInfo* info) {
    EXPECT_EQ(Bytes(*info), std::string(sizeof(VideoInfo), '\0'));
    EXPECT_EQ(path, g_item->m_strURI);
    std::printf("collecting %s\n", std::string(path).substr(std::string(path).rfind('/') + 1).c_str());
    *info = {1920, 1080, 1, 30, 17000, 128, -7, 101, 65, 102, 2147483647, 103, "2024:02:29 23:5", 104};
    return -1;
}

int CountPhotos(char* /*path*/, PhotoInfo* /*info*/) {
    return ++g_photoCalls;
}

class TreeVideoMetadata : public TreeTest {
protected:
    TreeVideoMetadata() {
        card.AddFiles("100ABCDE", {DcfName(2, "MP4"), DcfName(1, "AVI")});
        List();
        g_item = &item;
        g_photoCalls = 0;
    }

    CSFileListItem item;
};

constexpr char kFilled[] = "get video info\n"
                           "collecting KVR_0002.MP4\n"
                           "hasAudio = 1\n"
                           "fps = 30\n"
                           "videoBitRate = 17000\n"
                           "audioBitRate = 128\n"
                           "multiMotion = -7\n"
                           "totalTime = 65\n"
                           "date = 2024:02:29 23:5\n"
                           "image width = 1920\n"
                           "image height = 1080\n"
                           "file size = 2147483647\n"
                           "get video end\n";

TEST_F(TreeVideoMetadata, RegistrationAcceptsACollectorAndStoresNothing) {
    EXPECT_EQ(CSDCFList::RegisterVideoMetadataCB(FillVideo), 1);
    EXPECT_EQ(CSDCFList::m_VideoInfoCollector, nullptr);
    const Ending ending = RunInChild([&] { EXPECT_EQ(tree->GetAt(0, &item), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(CSDCFList::RegisterVideoMetadataCB(nullptr), 1);
}

TEST_F(TreeVideoMetadata, RegistrationLeavesAStoredCollectorAlone) {
    CSDCFList::m_VideoInfoCollector = FillVideo;
    EXPECT_EQ(CSDCFList::RegisterVideoMetadataCB(nullptr), 1);
    EXPECT_EQ(CSDCFList::m_VideoInfoCollector, &FillVideo);
}

TEST_F(TreeVideoMetadata, PrintsTheRecordWhateverTheCollectorReturns) {
    CSDCFList::m_VideoInfoCollector = FillVideo;
    CSDCFList::RegisterPhotoMetadataCB(CountPhotos);
    const Ending ending = RunInChild([&] {
        EXPECT_EQ(tree->GetAt(0, &item), 0);
        EXPECT_EQ(g_photoCalls, 0);
        EXPECT_EQ(TakeLog(), Log{});
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, kFilled);
}

TEST_F(TreeVideoMetadata, KeepsNothingSoEveryConversionAsksAgain) {
    CSDCFList::m_VideoInfoCollector = FillVideo;
    const Ending ending = RunInChild([&] {
        EXPECT_EQ(tree->GetFirst(&item), 0);
        EXPECT_EQ(tree->GetCur(&item), 0);
        EXPECT_EQ(item.m_nMetaFlag, 0);
        EXPECT_EQ(item.m_aMeta[0], 0);
        EXPECT_FALSE(tree->m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, std::string(kFilled) + kFilled);
}

TEST_F(TreeVideoMetadata, PrintsZerosForACollectorThatFillsNothing) {
    CSDCFList::m_VideoInfoCollector = [](char*, VideoInfo*) { return 0; };
    const Ending ending = RunInChild([&] { EXPECT_EQ(tree->GetAt(0, &item), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "get video info\nhasAudio = 0\nfps = 0\nvideoBitRate = 0\naudioBitRate = 0\nmultiMotion = 0\n"
                          "totalTime = 0\ndate = \nimage width = 0\nimage height = 0\nfile size = 0\nget video end\n");
}

TEST_F(TreeVideoMetadata, PrintsADateThatFillsItsFieldNoFurtherThanTheField) {
    CSDCFList::m_VideoInfoCollector = [](char*, VideoInfo* info) {
        std::memset(info->date, 'd', sizeof info->date);
        info->reserved4 = 0x65656565;
        return 0;
    };
    const Ending ending = RunInChild([&] { EXPECT_EQ(tree->GetAt(0, &item), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_NE(ending.out.find("date = dddddddddddddddd\n"), std::string::npos) << ending.out;
}

TEST_F(TreeVideoMetadata, TheOtherMovieTypeGoesToThePhotoCollector) {
    CSDCFList::m_VideoInfoCollector = FillVideo;
    CSDCFList::RegisterPhotoMetadataCB(CountPhotos);
    const Ending ending = RunInChild([&] {
        EXPECT_EQ(tree->GetAt(1, &item), 0);
        EXPECT_EQ(g_photoCalls, 1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
}

TEST_F(TreeVideoMetadata, AMovieWithMetadataOfItsOwnIsNotAskedFor) {
    CSDCFList::m_VideoInfoCollector = FillVideo;
    PhotoInfo info = DistinctPhotoInfo();
    ASSERT_EQ(tree->AddPhotoMetadata(Path("100ABCDE", DcfName(2, "MP4")).c_str(), info), 0);
    const Ending ending = RunInChild([&] {
        EXPECT_EQ(tree->GetAt(0, &item), 0);
        EXPECT_EQ(item.m_nMetaFlag, 0x11);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
}

} // namespace
} // namespace dcftest
