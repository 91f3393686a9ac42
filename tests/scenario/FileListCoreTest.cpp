// The file list's counts and its metadata operations.
#include "Scenario.h"

namespace dcftest {
namespace {

class FileListCore : public FileListTest {
protected:
    /// 101: a picture with a raw companion, a movie with a multi-picture companion, a raw file; 100: two movies;
    /// Camera: a picture.
    void ListMixedCard() {
        card.AddFiles("101ABCDE",
                      {DcfName(3), DcfName(3, "SRW"), DcfName(2, "MP4"), DcfName(2, "MPO"), DcfName(1, "SRW")});
        card.AddFiles("100ABCDE", {DcfName(2, "AVI"), DcfName(1, "MP4")}).AddFile("Camera", CameraName(1));
        ASSERT_EQ(List(), 6);
    }
};

TEST_F(FileListCore, GetCountIsTheTreesAndLogsNothing) {
    ListMixedCard();
    EXPECT_EQ(list->GetCount(), 6);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(FileListCore, GetCountIsFatalWhenTheTreeHasChangedBehindTheFileList) {
    ListMixedCard();
    list->m_pDCF->m_dirGroup[0]->RemoveItem(0);
    const Ending ending = RunInChild([&] { list->GetCount(); });
    EXPECT_TRUE(DiesByAssertion(ending, {"m_pDCF->GetCount() == m_nList", "m_nList need to check", "CSFileList",
                                         "virtual int CSFileList::GetCount()"}));
    EXPECT_TRUE(MessagesBeforeAssertion(ending).empty());
    list->m_nList = 5;
    EXPECT_EQ(list->GetCount(), 5);
}

TEST_F(FileListCore, GetFileCountCountsFilesOfATypeAndFilesWithACompanionOfIt) {
    ListMixedCard();
    for (const auto& [type, count] : {std::pair(0, 2), std::pair(1, 2), std::pair(2, 1), std::pair(3, 2),
                                      std::pair(5, 1), std::pair(4, 0), std::pair(-1, 4), std::pair(77, 0)}) {
        EXPECT_EQ(list->GetFileCount(static_cast<eFileType>(type)), count) << type;
        EXPECT_EQ(TakeLog(), Log{"CSFileList GetFileCount start"});
    }
}

TEST_F(FileListCore, GetFileCountWithoutATreeGivesMinusOne) {
    EXPECT_EQ(list->GetFileCount(FILE_TYPE_JPG), -1);
    EXPECT_EQ(TakeLog(), Log{"CSFileList GetFileCount start"});
}

int CollectOne(char* /*path*/, PhotoInfo* info) {
    info->attributeByte1 = 9;
    return 0;
}

int CollectVideo(char* /*path*/, VideoInfo* /*info*/) {
    ADD_FAILURE() << "no video collector is ever called";
    return 0;
}

TEST_F(FileListCore, CollectorsAreRegisteredWithoutATreeAndWithoutALog) {
    EXPECT_EQ(list->RegisterPhotoMetadataCB(CollectOne), 1);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, &CollectOne);
    EXPECT_EQ(list->RegisterVideoMetadataCB(CollectVideo), 1);
    EXPECT_EQ(CSDCFList::m_VideoInfoCollector, nullptr);
    EXPECT_EQ(TakeLog(), Log{});
    card.AddFiles("100ABCDE", {DcfName(2), DcfName(1, "MP4")});
    ASSERT_EQ(List(), 2);
    CSFileListItem item;
    ASSERT_EQ(list->GetFirst(&item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 9) << "the listing itself asked for the first file";
    ASSERT_EQ(list->GetNext(&item), 0);
    ASSERT_EQ(list->GetCurrent(&item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0) << "a movie has none of its own accord";
    EXPECT_EQ(list->RegisterPhotoMetadataCB(nullptr), 1);
    EXPECT_EQ(CSDCFList::m_PhotoInfoCollector, nullptr);
}

TEST_F(FileListCore, AddPhotoMetadataStoresForAPathAndLogsNothing) {
    ListMixedCard();
    PhotoInfo info = DistinctPhotoInfo();
    EXPECT_EQ(list->AddPhotoMetadata(Path("100ABCDE", DcfName(1, "MP4")).c_str(), info), 0);
    EXPECT_EQ(list->AddPhotoMetadata(Path("Camera", CameraName(1)).c_str(), info), 0);
    EXPECT_EQ(TakeLog(), Log{});
    info.attributeByte1 = 0x77;
    CSFileListItem item;
    EXPECT_EQ(list->GetAt(4, &item), 0);
    EXPECT_EQ(item.m_strURI, Path("100ABCDE", DcfName(1, "MP4")));
    EXPECT_EQ(item.m_nMetaFlag, 0x11) << "a copy was stored";
    EXPECT_EQ(item.m_aMeta[18], 2017);
    EXPECT_EQ(list->GetAt(5, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0x11);
    EXPECT_EQ(list->GetAt(3, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0);
}

TEST_F(FileListCore, AddPhotoMetadataReplacesWhatIsStored) {
    ListMixedCard();
    PhotoInfo info = DistinctPhotoInfo();
    const std::string path = Path("101ABCDE", DcfName(3));
    EXPECT_EQ(list->AddPhotoMetadata(path.c_str(), info), 0);
    info = {};
    info.attributeByte2 = 5;
    EXPECT_EQ(list->AddPhotoMetadata(path.c_str(), info), 0);
    CSFileListItem item;
    EXPECT_EQ(list->GetAt(0, &item), 0);
    EXPECT_EQ(item.m_nMetaFlag, 0);
    EXPECT_EQ(item.m_nMetaFlag2, 5);
    EXPECT_EQ(item.m_szMetaText[0], '\0');
    EXPECT_EQ(item.m_aMeta[18], 0);
}

TEST_F(FileListCore, AddPhotoMetadataIsFatalForAFileThatIsNotListed) {
    ListMixedCard();
    PhotoInfo info = {};
    const auto add = [&](const std::string& path) {
        return RunInChild([&] { (void)list->AddPhotoMetadata(path.c_str(), info); });
    };
    EXPECT_TRUE(DiesByAssertion(add(Path("101ABCDE", DcfName(9))), {"it != m_itemGroup.end()", "cannot found fnum = 9",
                                                                    "CSDCFDir", "int CSDCFDir::GetFidx(int)"}));
    EXPECT_TRUE(DiesByAssertion(add(Path("500ABCDE", DcfName(9))),
                                {"0", "cannot find dir index = 500", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)list->AddPhotoMetadata(nullptr, info); }),
                                {"0", "cannot find dir index = 0", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}));
}

TEST_F(FileListCore, WhatNeedsATreeAndDoesNotTestForOneIsFatalWithoutIt) {
    const auto expected = [](const char* signature) {
        return ExpectedAssertion{"m_pDCF != NULL", "now m_pDCF is NULL", "CSFileList", signature};
    };
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetCount(); }), expected("virtual int CSFileList::GetCount()")));
    EXPECT_TRUE(
        DiesByAssertion(RunInChild([&] { list->GetCurIndex(); }), expected("virtual int CSFileList::GetCurIndex()")));
    PhotoInfo info = {};
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->AddPhotoMetadata("/x", info); }),
                                expected("virtual int CSFileList::AddPhotoMetadata(const char*, PhotoInfo&)")));
    list->m_nList = 1; // a list that says it holds files and has no tree
    CSFileListItem item;
    const Ending ending = RunInChild([&] { list->GetCurrent(&item); });
    EXPECT_TRUE(DiesByAssertion(ending, expected("virtual int CSFileList::GetCurrent(CSFileListItem*)")));
    EXPECT_TRUE(MessagesBeforeAssertion(ending).empty());
}

} // namespace
} // namespace dcftest
