// Browsing without a list, with an empty one, without arguments, or where the tree has lost what it should hold: the
// result codes in the order of the checks, and the ends that are fatal.
#include "Scenario.h"

#include <functional>

namespace dcftest {
namespace {

std::string Line(const std::string& function, const std::string& message) {
    return "CSFileList " + function + " " + message;
}

std::string StartAt(const std::string& function, int index) {
    return Line(function, "++++++++++++++++++++ start index = " + std::to_string(index));
}

class BrowsingRefusal : public FileListTest {
protected:
    CSFileListItem item;
};

TEST_F(BrowsingRefusal, WithoutATreeTheOperationsGiveTheirCodes) {
    std::string path = Path("100ABCDE", DcfName(1));
    EXPECT_EQ(list->GetFirst(&item), -1);
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetPrev(&item), -1);
    EXPECT_EQ(list->GetLast(&item), -1);
    EXPECT_EQ(list->GetCurrent(&item), -1);
    EXPECT_EQ(list->GetAt(0, &item), -1);
    EXPECT_EQ(list->GetAtSimply(0, &item), -1);
    EXPECT_FALSE(list->IsLast(&item));
    EXPECT_EQ(list->SetCur(path.data()), -1);
    EXPECT_EQ(list->SetCur(nullptr), -1);
    EXPECT_EQ(list->SetCurIndex(0), -1);
    EXPECT_EQ(list->GetFileListIndex(path.data()), -6);
    EXPECT_EQ(list->GetFileListIndex(nullptr), -6);
    EXPECT_EQ(list->GetInfo(path.data(), &item), -6);
    EXPECT_EQ(list->UpdateFirstIndex(true), -6);
    EXPECT_EQ(list->UpdateFirstIndex(false), -6);
    EXPECT_EQ(
        TakeLog(),
        (Log{Line("GetFirst", "start"), StartAt("GetAt", 0), StartAt("GetAtSimply", 0), Line("IsLast", "start"),
             Line("SetCur", "start"), Line("SetCur", "start"), Line("SetCurIndex", "start"), StartAt("GetAtSimply", 0),
             Line("SetCur", "start"), Line("GetFileListIndex", "start"), Line("GetFileListIndex", "start"),
             Line("GetInfo", "start"), Line("UpdateFirstIndex", "start"), Line("UpdateFirstIndex", "start")}));
    EXPECT_EQ(Fields(item), Fields(CSFileListItem()));
    EXPECT_EQ(list->m_nCurGetAtIdx, -1);
}

TEST_F(BrowsingRefusal, ACountWithoutATreeIsNoTree) {
    list->m_nList = 5;
    EXPECT_EQ(list->GetFirst(&item), -1);
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetPrev(&item), -1);
    EXPECT_EQ(list->GetLast(&item), -1);
    EXPECT_EQ(list->GetAt(0, &item), -1);
    EXPECT_EQ(list->GetAtSimply(0, &item), -1);
    EXPECT_EQ(TakeLog(), (Log{Line("GetFirst", "start"), StartAt("GetAt", 0), StartAt("GetAtSimply", 0)}));
}

TEST_F(BrowsingRefusal, AnEmptyListRefusesEveryMove) {
    ASSERT_EQ(List(), 0);
    EXPECT_EQ(list->GetFirst(&item), -1);
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetPrev(&item), -1);
    EXPECT_EQ(list->GetLast(&item), -1);
    EXPECT_EQ(list->GetCurrent(&item), -1);
    EXPECT_EQ(list->GetAt(0, &item), -1);
    EXPECT_EQ(list->GetAtSimply(0, &item), -1);
    EXPECT_EQ(TakeLog(), (Log{Line("GetFirst", "start"), StartAt("GetAt", 0), StartAt("GetAtSimply", 0)}));
    EXPECT_EQ(list->m_nCurGetAtIdx, -1);
    EXPECT_EQ(list->GetCurIndex(), -1);
    EXPECT_EQ(TakeLog(), Log{Line("GetCurIndex", "m_nCurGetAtIdx = -1")});
    EXPECT_EQ(list->GetFileListIndex(Path("100ABCDE", DcfName(1)).data()), -1);
    EXPECT_EQ(list->UpdateFirstIndex(false), 0);
}

TEST_F(BrowsingRefusal, AFailedScansResultRefusesEveryMove) {
    ASSERT_EQ(List(), 0);
    for (const int result : {-1, -9999}) {
        list->m_nList = result;
        EXPECT_EQ(list->GetFirst(&item), -1);
        EXPECT_EQ(list->GetNext(&item), -1);
        EXPECT_EQ(list->GetPrev(&item), -1);
        EXPECT_EQ(list->GetLast(&item), -1);
        EXPECT_EQ(list->GetCurrent(&item), -1);
        EXPECT_EQ(list->GetAt(0, &item), -1);
        EXPECT_EQ(list->GetAtSimply(0, &item), -1);
    }
}

TEST_F(BrowsingRefusal, InAnEmptyListAnItemWithoutAPathIsTheLast) {
    ASSERT_EQ(List(), 0);
    EXPECT_TRUE(list->IsLast(&item)) << "the two paths are the same, there is none";
    std::strcpy(item.m_strURI, "/x");
    EXPECT_FALSE(list->IsLast(&item));
}

TEST_F(BrowsingRefusal, InAnEmptyListSetCurIndexIsFatal) {
    ASSERT_EQ(List(), 0);
    const Ending ending = RunInChild([&] { list->SetCurIndex(0); });
    EXPECT_TRUE(
        DiesByAssertion(ending, {"0", "cannot find dir index = 0", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Log{"start", "++++++++++++++++++++ start index = 0", "start"}));
}

TEST_F(BrowsingRefusal, ANullItemIsRefusedByTheMovesButTheFirstAndTheCurrent) {
    card.AddFile("100ABCDE", DcfName(1));
    for (const bool listed : {false, true}) {
        if (listed) {
            ASSERT_EQ(List(), 1);
        }
        EXPECT_EQ(list->GetNext(nullptr), -1);
        EXPECT_EQ(list->GetPrev(nullptr), -1);
        EXPECT_EQ(list->GetLast(nullptr), -1);
        EXPECT_EQ(TakeLog(), Log{});
        EXPECT_FALSE(list->IsLast(nullptr));
        EXPECT_EQ(TakeLog(), Log{Line("IsLast", "start")});
    }
}

TEST_F(BrowsingRefusal, ANullItemIsFatalForGetFirstAndGetCurrentBeforeAnythingElseIsLookedAt) {
    const auto nullItem = [](const char* signature) {
        return ExpectedAssertion{"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList", signature};
    };
    card.AddFile("100ABCDE", DcfName(1));
    for (const bool listed : {false, true}) {
        if (listed) {
            ASSERT_EQ(List(), 1);
        }
        const Ending first = RunInChild([&] { list->GetFirst(nullptr); });
        EXPECT_TRUE(DiesByAssertion(first, nullItem("virtual int CSFileList::GetFirst(CSFileListItem*)")));
        EXPECT_EQ(MessagesBeforeAssertion(first), Log{"start"});
        const Ending current = RunInChild([&] { list->GetCurrent(nullptr); });
        EXPECT_TRUE(DiesByAssertion(current, nullItem("virtual int CSFileList::GetCurrent(CSFileListItem*)")));
        EXPECT_EQ(MessagesBeforeAssertion(current), Log{});
    }
}

TEST_F(BrowsingRefusal, ANullItemIsFatalForThePositionsOfAListThatHoldsFiles) {
    EXPECT_EQ(list->GetAt(0, nullptr), -1);
    EXPECT_EQ(list->GetAtSimply(0, nullptr), -1);
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(List(), 1);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetAt(0, nullptr); }),
                                {"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList",
                                 "virtual int CSFileList::GetAt(int, CSFileListItem*)"}));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetAtSimply(0, nullptr); }),
                                {"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList",
                                 "virtual int CSFileList::GetAtSimply(int, CSFileListItem*)"}));
}

TEST_F(BrowsingRefusal, ANegativePositionIsFatalBeforeAnythingElseIsLookedAt) {
    card.AddFile("100ABCDE", DcfName(1));
    for (const bool listed : {false, true}) {
        if (listed) {
            ASSERT_EQ(List(), 1);
        }
        const Ending at = RunInChild([&] { list->GetAt(-1, nullptr); });
        EXPECT_TRUE(DiesByAssertion(at, {"nIdx >= 0", "index cannot be negative", "CSFileList",
                                         "virtual int CSFileList::GetAt(int, CSFileListItem*)"}));
        EXPECT_EQ(MessagesBeforeAssertion(at), Log{"++++++++++++++++++++ start index = -1"});
        const Ending simply = RunInChild([&] { list->GetAtSimply(-7, &item); });
        EXPECT_TRUE(DiesByAssertion(simply, {"nIdx >= 0", "index cannot be negative", "CSFileList",
                                             "virtual int CSFileList::GetAtSimply(int, CSFileListItem*)"}));
        EXPECT_EQ(MessagesBeforeAssertion(simply), Log{"++++++++++++++++++++ start index = -7"});
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCurIndex(-1); }),
                                    {"nIdx >= 0", "index cannot be negative", "CSFileList",
                                     "virtual int CSFileList::GetAtSimply(int, CSFileListItem*)"}));
    }
}

TEST_F(BrowsingRefusal, APositionBeyondTheListIsFatal) {
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    ASSERT_EQ(List(), 2);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetAt(2, &item); }),
                                {"0", "invalid", "CSDCFList", "int CSDCFList::GetAt(int, CSFileListItem*)"}));
    const ExpectedAssertion simply = {"0", "invalid", "CSDCFList", "int CSDCFList::GetAtSimply(int, CSFileListItem*)"};
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetAtSimply(2, &item); }), simply));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCurIndex(2); }), simply));
}

TEST_F(BrowsingRefusal, ATreeThatLostItsFilesIsFatalForGetFirst) {
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(List(), 1);
    list->m_pDCF->m_dirGroup[0]->RemoveItem(0);
    const Ending ending = RunInChild([&] { list->GetFirst(&item); });
    EXPECT_TRUE(DiesByAssertion(ending, {"nRet >= 0", "GetFirst must success", "CSFileList",
                                         "virtual int CSFileList::GetFirst(CSFileListItem*)"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Log{"start", "GetFirst called m_strURI =  m_strObject = \n,"}));
}

TEST_F(BrowsingRefusal, ACursorWhoseDirectoryIsGoneIsFatalForGetCurrent) {
    card.AddFile("101ABCDE", DcfName(1)).AddFile("100ABCDE", DcfName(2));
    ASSERT_EQ(List(), 2);
    ASSERT_EQ(list->GetLast(&item), 0);
    delete list->m_pDCF->m_dirGroup.back();
    list->m_pDCF->m_dirGroup.pop_back();
    list->m_pDCF->m_nDirCount = 1;
    const Ending ending = RunInChild([&] { list->GetCurrent(&item); });
    EXPECT_TRUE(DiesByAssertion(ending, {"nRet >= 0", "GetCur must success", "CSFileList",
                                         "virtual int CSFileList::GetCurrent(CSFileListItem*)"}));
    EXPECT_EQ(MessagesBeforeAssertion(ending),
              Log{"GetCurrent called m_strURI = " + Path("100ABCDE", DcfName(2)) + " m_strObject = "});
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetPrev(&item), 0);
    EXPECT_EQ(list->m_nCurGetAtIdx, 0);
}

TEST_F(BrowsingRefusal, ACursorOnANegativeCameraNumberIsFatalForGetCurrent) {
    card.AddFile("Camera", "20240101_-00012.JPG");
    ASSERT_EQ(List(), 1);
    EXPECT_TRUE(DiesByAssertion(
        RunInChild([&] { list->GetCurrent(&item); }),
        {"nRet >= 0", "GetCur must success", "CSFileList", "virtual int CSFileList::GetCurrent(CSFileListItem*)"}));
}

TEST_F(BrowsingRefusal, PathsThatTheListDoesNotHoldAreFatal) {
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(List(), 1);
    std::string noFile = Path("100ABCDE", DcfName(2));
    std::string noDirectory = Path("200ABCDE", DcfName(1));
    const ExpectedAssertion fileMissing = {"it != m_itemGroup.end()", "cannot found fnum = 2", "CSDCFDir",
                                           "int CSDCFDir::GetFidx(int)"};
    const ExpectedAssertion directoryMissing = {"0", "cannot find dir index = 200", "CSDCFList",
                                                "int CSDCFList::GetDirIndex(int)"};
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCur(noFile.data()); }), fileMissing));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetInfo(noFile.data(), &item); }), fileMissing));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetFileListIndex(noFile.data()); }), fileMissing));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCur(noDirectory.data()); }), directoryMissing));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->GetInfo(noDirectory.data(), &item); }), directoryMissing));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCur(nullptr); }),
                                {"0", "cannot be null!", "CSDCFList", "int CSDCFList::SetCurFile(const char*)"}));
}

TEST_F(BrowsingRefusal, AnItemWhoseTextsDoNotEndIsReadNoFurtherThanItsFields) {
    card.AddFile("100ABCDE", DcfName(1));
    ASSERT_EQ(List(), 1);
    CSFileListItem used = UsedItem();
    std::memset(used.m_strURI, 'u', sizeof used.m_strURI);
    std::memset(used.m_strObject, 'o', sizeof used.m_strObject);
    EXPECT_EQ(list->GetNext(&used), -1);
    EXPECT_EQ(TakeLog(), Log{Line("GetNext", "GetNext called m_strURI = " + std::string(99, 'u') +
                                                 " m_strObject = " + std::string(99, 'o'))});
    EXPECT_FALSE(list->IsLast(&used));
}

TEST_F(BrowsingRefusal, GetInfoLooksAtThePathThenAtTheItemThenForATree) {
    std::string path = Path("100ABCDE", DcfName(1));
    for (const bool listed : {false, true}) {
        if (listed) {
            card.AddFile("100ABCDE", DcfName(1));
            ASSERT_EQ(List(), 1);
        }
        EXPECT_EQ(list->GetInfo(nullptr, nullptr), -2);
        EXPECT_EQ(list->GetInfo(nullptr, &item), -2);
        EXPECT_EQ(list->GetInfo(path.data(), nullptr), -3);
        EXPECT_EQ(list->GetInfo(path.data(), &item), listed ? 0 : -6);
        EXPECT_EQ(TakeLog(), Log(4, Line("GetInfo", "start")));
    }
}

} // namespace
} // namespace dcftest
