// The path for a companion of the newest file.
#include "Change.h"

namespace dcftest {
namespace {

class LatestName : public FileListTest {
protected:
    LatestName() {
        out.fill('.');
    }

    int Latest(int type) {
        return list->GetLatestFileName(out.data(), static_cast<eFileType>(type));
    }

    /// What was written: everything before the untouched rest.
    std::string Written() const {
        const std::string all(out.data(), out.size());
        const std::size_t last = all.find_last_not_of('.');
        return last == std::string::npos ? "" : all.substr(0, last + 1);
    }

    void ListTwo() {
        card.AddFiles("101PHOTO", {DcfName(9), DcfName(5)}).AddFiles("100PHOTO", {DcfName(1)});
        ASSERT_EQ(List(), 3);
    }

    std::array<char, 120> out{};
};

TEST_F(LatestName, ReplacesTheExtensionAndMarksTheCompanion) {
    for (const auto& [type, extension] : {std::pair(FILE_TYPE_SRW, "SRW"), std::pair(FILE_TYPE_MPO, "MPO")}) {
        StartAfresh();
        list = std::make_unique<CSFileList>();
        ASSERT_EQ(list->SetBaseURI(card.Root().c_str()), 0);
        out.fill('.');
        ListTwo();
        EXPECT_EQ(Latest(type), 0);
        EXPECT_EQ(Written(), Path("101PHOTO", DcfName(9, extension))) << "without a terminator";
        EXPECT_EQ(ItemAt(*list->m_pDCF, 0, 0).m_eObjectType, type);
        EXPECT_EQ(ItemAt(*list->m_pDCF, 0, 1).m_eObjectType, FILE_TYPE_NONE);
        CSFileListItem item;
        ASSERT_EQ(list->GetFirst(&item), 0);
        EXPECT_EQ(std::string(item.m_strObject), Path("101PHOTO", DcfName(9, extension)));
        card.Remove("101PHOTO", "");
        card.Remove("100PHOTO", "");
    }
}

TEST_F(LatestName, MovesTheCursorToTheFirstFile) {
    ListTwo();
    ASSERT_EQ(list->SetCurIndex(2), 0);
    (void)TakeLog();
    EXPECT_EQ(Latest(FILE_TYPE_SRW), 0);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList GetLatestFileName start", "CSFileList GetFirst start",
                              "CSFileList GetFirst GetFirst called m_strURI = " + Path("101PHOTO", DcfName(9)) +
                                  " m_strObject = \n,",
                              "CSFileList GetCurIndex m_nCurGetAtIdx = 0"}));
    EXPECT_EQ(list->m_nCurGetAtIdx, 0);
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{101, 9, 0, 0, 0}));
}

TEST_F(LatestName, ChangesNothingOnTheCardNorInTheCounts) {
    ListTwo();
    const Texts before = CardTexts(card);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(Latest(FILE_TYPE_SRW), 0); }), (Texts{"stat 101PHOTO/KVR_0009.JPG"}));
    EXPECT_EQ(CardTexts(card), before);
    EXPECT_EQ(list->GetCount(), 3);
}

TEST_F(LatestName, OfATypeWithoutACompanionExtensionCopiesThePathUnchanged) {
    for (const int type : {0, 3, 4, 5, 99, -2}) {
        SCOPED_TRACE(type);
        StartAfresh();
        list = std::make_unique<CSFileList>();
        ASSERT_EQ(list->SetBaseURI(card.Root().c_str()), 0);
        out.fill('.');
        card.Remove("101PHOTO", "");
        card.Remove("100PHOTO", "");
        ListTwo();
        EXPECT_EQ(Latest(type), 0);
        EXPECT_EQ(Written(), Path("101PHOTO", DcfName(9)));
        EXPECT_EQ(ItemAt(*list->m_pDCF, 0, 0).m_eObjectType, type) << "marked all the same";
    }
}

TEST_F(LatestName, OfNoTypeIsRefusedAtOnce) {
    ListTwo();
    ASSERT_EQ(list->SetCurIndex(2), 0);
    (void)TakeLog();
    const Texts before = EverythingIn(*list->m_pDCF);
    EXPECT_EQ(Latest(FILE_TYPE_NONE), -200);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList GetLatestFileName start"}));
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(EverythingIn(*list->m_pDCF), before);
}

TEST_F(LatestName, WithoutATreeOrABufferIsRefused) {
    EXPECT_EQ(Latest(FILE_TYPE_SRW), -1);
    EXPECT_EQ(Latest(FILE_TYPE_NONE), -1) << "before the type is looked at";
    EXPECT_EQ(Written(), "");
    ListTwo();
    EXPECT_EQ(list->GetLatestFileName(nullptr, FILE_TYPE_SRW), -1);
    EXPECT_EQ(list->GetLatestFileName(nullptr, FILE_TYPE_NONE), -1);
    EXPECT_EQ(TakeLog(), Log(2, "CSFileList GetLatestFileName start"));
    EXPECT_EQ(ItemAt(*list->m_pDCF, 0, 0).m_eObjectType, FILE_TYPE_NONE);
}

TEST_F(LatestName, OfAnEmptyListIsFatal) {
    ASSERT_EQ(List(), 0);
    const Ending ending = RunInChild([&] { (void)Latest(FILE_TYPE_SRW); });
    EXPECT_TRUE(DiesByAssertion(ending, NoDirectory(0)));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Texts{"start", "start"}));
}

// Nobody lists such a directory; a client that puts one into the tree must not end in an exception.
TEST_F(LatestName, OfAnEmptyListWithADirectoryOfTheNumberZeroIsEmpty) {
    ASSERT_EQ(List(), 0);
    list->m_pDCF->m_dirGroup.push_back(std::make_unique<CSDCFDir>(0, "000ABCDE").release());
    ++list->m_pDCF->m_nDirCount;
    EXPECT_EQ(Latest(FILE_TYPE_SRW), 0);
    EXPECT_EQ(Written(), "");
}

// The mark goes to the front file of the first directory of that number, whatever the path says.
TEST_F(LatestName, MarksTheFrontFileOfTheFirstDirectoryOfTheNumber) {
    card.AddFiles("101ABCDE", {DcfName(9)});
    ASSERT_EQ(List(), 1);
    list->m_pDCF->m_dirGroup.push_front(new CSDCFDir(101, "101PHOTO"));
    ++list->m_pDCF->m_nDirCount;
    EXPECT_EQ(list->m_pDCF->SetObject(Path("101ABCDE", DcfName(9)).c_str(), FILE_TYPE_SRW), 0);
    EXPECT_EQ(ItemAt(*list->m_pDCF, 1, 0).m_eObjectType, FILE_TYPE_NONE) << "that directory has no file to mark";
}

TEST_F(LatestName, OfACameraFileReplacesItsExtensionToo) {
    card.AddFiles("Camera", {CameraName(4), CameraName(5)});
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(Latest(FILE_TYPE_MPO), 0);
    EXPECT_EQ(Written(), Path("Camera", CameraName(4, "MPO")));
}

TEST(LatestNameOnALongRoot, ReplacesTheLastThreeCharactersOfTheCutPath) {
    StartAfresh();
    Card card(73);
    card.AddFiles("100PHOTO", {DcfName(1)});
    CSFileList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(list.Listup(), 1);
    std::array<char, 120> out{};
    EXPECT_EQ(list.GetLatestFileName(out.data(), FILE_TYPE_SRW), 0);
    const std::string cut = card.Path("100PHOTO", DcfName(1)).substr(0, 98);
    EXPECT_EQ(std::string(out.data()), cut.substr(0, 95) + "SRW");
}

TEST_F(LatestName, IsTheCompanionOfTheFileJustNamed) {
    ListTwo();
    std::array<char, 396> name{};
    ASSERT_EQ(list->GetNewFileName(name.data(), FILE_TYPE_JPG), 0);
    EXPECT_EQ(Latest(FILE_TYPE_SRW), 0);
    EXPECT_EQ(Written(), Path("101PHOTO", DcfName(10, "SRW")));
    card.AddFiles("101PHOTO", {DcfName(10), DcfName(10, "SRW")});
    CSFileListItem item;
    ASSERT_EQ(list->GetFirst(&item), 0);
    ASSERT_EQ(list->Delete(&item), 0);
    EXPECT_FALSE(card.Exists("101PHOTO", DcfName(10, "SRW"))) << "deleted with it";
}

} // namespace
} // namespace dcftest
