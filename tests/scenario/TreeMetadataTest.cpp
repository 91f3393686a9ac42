// Metadata on browsing: when a collector is asked, what it gets, where its answer goes and when a client sees it.
#include "Scenario.h"

#include <algorithm>
#include <cstdio>

namespace dcftest {
namespace {

struct CollectorCall {
    const char* address;
    std::string path;
    std::string record;
};

std::vector<CollectorCall> g_calls;
int g_result = 0;

int Collect(char* path, PhotoInfo* info) {
    g_calls.push_back({path, path, Bytes(*info)});
    *info = DistinctPhotoInfo();
    return g_result;
}

class TreeMetadata : public TreeTest {
protected:
    TreeMetadata() {
        g_calls.clear();
        g_result = 0;
        EXPECT_EQ(CSDCFList::RegisterPhotoMetadataCB(Collect), 1);
    }

    std::vector<std::string> AskedPaths() const {
        std::vector<std::string> paths;
        for (const CollectorCall& call : g_calls) {
            paths.push_back(call.path);
        }
        return paths;
    }

    CSFileListItem item;
};

TEST_F(TreeMetadata, TheCollectorGetsTheItemsOwnPathAndAZeroedRecord) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    EXPECT_EQ(tree->GetAt(0, &item), 0);
    ASSERT_EQ(g_calls.size(), 1U);
    EXPECT_EQ(g_calls[0].path, Path("100ABCDE", DcfName(7)));
    EXPECT_EQ(g_calls[0].address, item.m_strURI);
    EXPECT_EQ(g_calls[0].record, std::string(sizeof(PhotoInfo), '\0'));
}

TEST_F(TreeMetadata, ReachesTheClientWithTheNextConversion) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    EXPECT_EQ(tree->GetAt(0, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0);
    EXPECT_EQ(item.m_nMetaWord, 0U);
    EXPECT_EQ(item.m_aMeta[0], 0);
    EXPECT_EQ(item.m_aMeta[18], -1);
    EXPECT_EQ(tree->GetAt(0, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0x11);
    EXPECT_EQ(item.m_nMetaWord, 0x81000003U);
    EXPECT_EQ(item.m_aMeta[0], 1001);
    EXPECT_EQ(item.m_aMeta[18], 2017);
    EXPECT_EQ(g_calls.size(), 1U) << "what is stored is not asked for again";
}

TEST_F(TreeMetadata, EveryConvertingOperationAsksOnceForAFile) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(tree->GetCur(&item), 0);
    ASSERT_EQ(tree->GetLast(&item), 0);
    ASSERT_EQ(tree->GetAt(0, &item), 0);
    ASSERT_EQ(tree->GetInfo(Path("100ABCDE", DcfName(7)).data(), &item), 0);
    EXPECT_EQ(g_calls.size(), 1U);
}

TEST_F(TreeMetadata, MovesAskForTheFilesThatTheyReach) {
    card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFile("100ABCDE", DcfName(9));
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), -1);
    ASSERT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(AskedPaths(), (std::vector<std::string>{Path("101ABCDE", DcfName(2)), Path("101ABCDE", DcfName(1)),
                                                      Path("100ABCDE", DcfName(9))}));
    EXPECT_EQ(item.m_nMetaFlag, 0x11) << "the way back shows what the way there collected";
}

TEST_F(TreeMetadata, ACollectorThatFailsIsAskedAgainAndStoresNothing) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    for (const int result : {-1, 1, 2}) {
        g_result = result;
        EXPECT_EQ(tree->GetAt(0, &item), 0);
        EXPECT_EQ(item.m_nMetaFlag, 0);
    }
    EXPECT_EQ(g_calls.size(), 3U);
    EXPECT_EQ(g_calls[2].record, std::string(sizeof(PhotoInfo), '\0')) << "what a failed call left is gone";
    EXPECT_FALSE(tree->m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
}

TEST_F(TreeMetadata, StaysWhenTheCollectorGoes) {
    card.AddFiles("100ABCDE", {DcfName(7), DcfName(8)});
    List();
    ASSERT_EQ(tree->GetAt(1, &item), 0);
    EXPECT_EQ(CSDCFList::RegisterPhotoMetadataCB(nullptr), 1);
    ASSERT_EQ(tree->GetAt(1, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0x11);
    ASSERT_EQ(tree->GetAt(0, &item), 0);
    ASSERT_EQ(tree->GetAt(0, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0);
    EXPECT_EQ(g_calls.size(), 1U);
}

TEST_F(TreeMetadata, IsAskedForEveryKindButMp4) {
    card.AddFiles("101ABCDE", {"KVR_0005.JPG", "KVR_0004.SRW", "KVR_0003.MPO", "KVR_0002.MP4", "KVR_0001.AVI"});
    card.AddFile("Camera", CameraName(8));
    List();
    for (int index = 0; index < tree->GetCount(); ++index) {
        EXPECT_EQ(tree->GetAt(index, &item), 0);
    }
    EXPECT_EQ(AskedPaths(),
              (std::vector<std::string>{Path("101ABCDE", "KVR_0005.JPG"), Path("101ABCDE", "KVR_0004.SRW"),
                                        Path("101ABCDE", "KVR_0003.MPO"), Path("101ABCDE", "KVR_0001.AVI"),
                                        Path("Camera", CameraName(8))}));
}

TEST_F(TreeMetadata, GoesToTheFirstDirectoryOfANumberThatTwoShare) {
    card.AddFile("100ZZZZZ", DcfName(1)).AddFile("100PHOTO", DcfName(1));
    List();
    ASSERT_EQ(tree->m_nDirCount, 2);
    EXPECT_EQ(tree->GetAt(1, &item), 0);
    EXPECT_EQ(g_calls.at(0).path, Path("100PHOTO", DcfName(1)));
    EXPECT_TRUE(tree->m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
    EXPECT_FALSE(tree->m_dirGroup[1]->m_itemGroup[0].m_bMetadata);
    EXPECT_EQ(tree->GetAt(1, &item), 0);
    EXPECT_EQ(g_calls.size(), 2U) << "so the file itself is asked for for ever";
}

TEST_F(TreeMetadata, GoesToTheFirstCameraFileOfANumber) {
    // By name, so that equal numbers may stand apart: 5, 8, 5.
    card.AddFiles("Camera", {"20240101_000005.JPG", "20240102_000008.JPG", "20240103_000005.JPG"});
    List();
    ASSERT_EQ(tree->GetCount(), 3);
    EXPECT_EQ(tree->GetAt(2, &item), 0);
    EXPECT_EQ(g_calls.at(0).path, Path("Camera", "20240103_000005.JPG"));
    EXPECT_TRUE(tree->m_dirGroup[0]->m_itemGroup[0].m_bMetadata);
    EXPECT_FALSE(tree->m_dirGroup[0]->m_itemGroup[2].m_bMetadata);
}

TEST_F(TreeMetadata, AddedByTheClientIsThereAtOnceAndNotAskedFor) {
    card.AddFiles("100ABCDE", {DcfName(7), DcfName(8, "MP4")});
    List();
    PhotoInfo info = DistinctPhotoInfo();
    EXPECT_EQ(tree->AddPhotoMetadata(Path("100ABCDE", DcfName(7)).c_str(), info), 0);
    EXPECT_EQ(tree->AddPhotoMetadata(Path("100ABCDE", DcfName(8, "MP4")).c_str(), info), 0);
    for (const int index : {0, 1}) {
        EXPECT_EQ(tree->GetAt(index, &item), 0);
        EXPECT_EQ(item.m_nMetaFlag, 0x11);
        EXPECT_EQ(item.m_aMeta[12], 2008);
    }
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(TreeMetadata, IsSharedByAllTreesAsFarAsTheCollectorGoes) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    const auto other = ListTree(card);
    ASSERT_EQ(tree->GetAt(0, &item), 0);
    ASSERT_EQ(other->GetAt(0, &item), 0);
    EXPECT_EQ(g_calls.size(), 2U) << "each tree keeps its own metadata";
}

TEST_F(TreeMetadata, APathThatTheCollectorChangesIsTheItems) {
    card.AddFile("100ABCDE", DcfName(7));
    List();
    CSDCFList::RegisterPhotoMetadataCB([](char* path, PhotoInfo*) {
        path[0] = '#';
        return -1;
    });
    ASSERT_EQ(tree->GetAt(0, &item), 0);
    EXPECT_EQ(item.m_strURI, "#" + Path("100ABCDE", DcfName(7)).substr(1)) << "the collector works on the item's field";
}

} // namespace
} // namespace dcftest
