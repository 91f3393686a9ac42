// A cursor that is not set, a file that is not there, an item that the client forgot: how browsing the tree ends.
#include "Scenario.h"

#include <functional>
#include <utility>

namespace dcftest {
namespace {

constexpr char kGetCur[] = "int CSDCFList::GetCur(CSFileListItem*)";
constexpr char kGetNext[] = "int CSDCFList::GetNext(CSFileListItem*)";
constexpr char kGetPrev[] = "int CSDCFList::GetPrev(CSFileListItem*)";
constexpr char kGetDirIndex[] = "int CSDCFList::GetDirIndex(int)";
constexpr char kConvert[] = "void CSDCFList::ConvertFileItem(DCFItem&, CSFileListItem*, int)";
constexpr char kConvertSimply[] = "void CSDCFList::ConvertFileItemSimply(DCFItem&, CSFileListItem*, int)";

const ExpectedAssertion kNoCursorInGetCur = {"m_nCurDnum > 0 && m_nCurFnum > 0", "need to setting cur file",
                                             "CSDCFList", kGetCur};

ExpectedAssertion InvalidCursor(const char* signature) {
    return {"m_nCurDnum > 0 && m_nCurFnum > 0 && m_CurFileIndex >= 0", "invalid cursor", "CSDCFList", signature};
}

ExpectedAssertion NoDirectory(int dnum) {
    return {"0", "cannot find dir index = " + std::to_string(dnum), "CSDCFList", kGetDirIndex};
}

ExpectedAssertion NoFile(int fnum) {
    return {"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(fnum), "CSDCFDir",
            "int CSDCFDir::GetFidx(int)"};
}

ExpectedAssertion NoPosition(int index) {
    return {"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(index), "CSDCFDir",
            "DCFItem CSDCFDir::GetItem(int)"};
}

ExpectedAssertion NoItem(const char* signature) {
    return {"pItem != NULL", "now pItem == NULL(0) !!!", "CSDCFList", signature};
}

class TreeCursorAssertion : public TreeTest {
protected:
    TreeCursorAssertion() {
        card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFile("100ABCDE", DcfName(5));
    }

    Ending Get(int (CSDCFList::*operation)(CSFileListItem*)) {
        return RunInChild([&] { (tree.get()->*operation)(&item); });
    }

    CSFileListItem item;
};

TEST_F(TreeCursorAssertion, AnUnsetCursorIsFatal) {
    List();
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetCur), kNoCursorInGetCur));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetNext), InvalidCursor(kGetNext)));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetPrev), InvalidCursor(kGetPrev)));
}

TEST_F(TreeCursorAssertion, EachNumberOfTheCursorMustBeAboveZero) {
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    for (const auto& [dnum, fnum] : {std::pair(0, 2), std::pair(-1, 2), std::pair(101, 0), std::pair(101, -1)}) {
        tree->m_nCurDnum = dnum;
        tree->m_nCurFnum = fnum;
        EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetCur), kNoCursorInGetCur)) << dnum << " " << fnum;
        EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetNext), InvalidCursor(kGetNext))) << dnum << " " << fnum;
        EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetPrev), InvalidCursor(kGetPrev))) << dnum << " " << fnum;
    }
}

TEST_F(TreeCursorAssertion, ANegativeFileIndexIsFatal) {
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    tree->m_CurFileIndex = -1;
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetNext), InvalidCursor(kGetNext)));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetPrev), InvalidCursor(kGetPrev)));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetCur), NoPosition(-1))) << "GetCur looks at the numbers alone";
}

TEST_F(TreeCursorAssertion, AFileOfNumberZeroOutsideCameraCannotBeBrowsedFrom) {
    card.AddFile("100ABCDE", DcfName(0));
    List();
    ASSERT_EQ(tree->GetLast(&item), 0);
    ASSERT_EQ(CursorOf(*tree), (Cursor{100, 0, 1, 1, 3}));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetCur), kNoCursorInGetCur));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetNext), InvalidCursor(kGetNext)));
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetPrev), InvalidCursor(kGetPrev)));
}

TEST_F(TreeCursorAssertion, ACameraCursorIsNotCheckedBeforehand) {
    card.AddFiles("Camera", {CameraName(7), CameraName(8)});
    List();
    tree->m_nCurDnum = 99;
    tree->m_nCurFnum = 0;
    EXPECT_EQ(tree->GetCur(&item), -1) << "its directory was never set";
    EXPECT_EQ(tree->GetNext(&item), -1);
    tree->m_nCurDidx = 2;
    EXPECT_TRUE(DiesByAssertion(Get(&CSDCFList::GetCur), NoPosition(-1)));
    EXPECT_EQ(tree->GetNext(&item), 0) << "-1 is before the first file";
    EXPECT_EQ(CursorOf(*tree), (Cursor{99, 7, 2, 0, 3}));
    tree->m_CurFileIndex = -1;
    EXPECT_EQ(tree->GetPrev(&item), 0);
    EXPECT_EQ(CursorOf(*tree), (Cursor{100, 5, 1, 0, 2}));
}

TEST_F(TreeCursorAssertion, SetCurFileIsFatalForNull) {
    List();
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetCurFile(nullptr); }),
                                {"0", "cannot be null!", "CSDCFList", "int CSDCFList::SetCurFile(const char*)"}));
}

TEST_F(TreeCursorAssertion, APathIsFatalWhereItsDirectoryOrItsFileIsNotListed) {
    List();
    const std::string unknownDirectory = Path("555ABCDE", DcfName(1));
    const std::string unknownFile = Path("101ABCDE", DcfName(77));
    const std::string camera = Path("Camera", CameraName(7));
    for (const auto& operation : std::vector<std::function<void(const std::string&)>>{
             [&](const std::string& path) { tree->SetCurFile(path.c_str()); },
             [&](const std::string& path) { tree->GetInfo(std::string(path).data(), &item); }}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { operation(unknownDirectory); }), NoDirectory(555)));
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { operation(unknownFile); }), NoFile(77)));
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { operation(camera); }), NoDirectory(99)));
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { operation(""); }), NoDirectory(0))) << "too short for a number";
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { operation(card.Path("101ABCDE")); }), NoFile(0)));
    }
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetInfo(nullptr, &item); }), NoDirectory(0)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetObject(unknownDirectory.c_str(), FILE_TYPE_SRW); }),
                                NoDirectory(555)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->SetObject(nullptr, FILE_TYPE_SRW); }), NoDirectory(0)));
}

TEST_F(TreeCursorAssertion, SetCurFileThatIsFatalHasNotMovedTheCursor) {
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    const Ending ending = RunInChild([&] { tree->SetCurFile(Path("555ABCDE", DcfName(1)).c_str()); });
    EXPECT_TRUE(DiesByAssertion(ending, NoDirectory(555)));
    EXPECT_TRUE(MessagesBeforeAssertion(ending).empty());
}

TEST_F(TreeCursorAssertion, APositionBeyondTheListIsFatal) {
    List();
    ASSERT_EQ(tree->GetCount(), 3);
    for (const int index : {3, 4, 100000}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAt(index, &item); }),
                                    {"0", "invalid", "CSDCFList", "int CSDCFList::GetAt(int, CSFileListItem*)"}));
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAtSimply(index, &item); }),
                                    {"0", "invalid", "CSDCFList", "int CSDCFList::GetAtSimply(int, CSFileListItem*)"}));
    }
}

TEST_F(TreeCursorAssertion, ANegativePositionIsFatalInTheFirstDirectory) {
    List();
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAt(-1, &item); }), NoPosition(-1)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAtSimply(-3, &item); }), NoPosition(-3)));
}

TEST_F(TreeCursorAssertion, AnyPositionIsFatalInATreeWithoutDirectories) {
    CSDCFList empty;
    for (const int index : {-1, 0}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { empty.GetAt(index, &item); }),
                                    {"0", "invalid", "CSDCFList", "int CSDCFList::GetAt(int, CSFileListItem*)"}));
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { empty.GetAtSimply(index, &item); }),
                                    {"0", "invalid", "CSDCFList", "int CSDCFList::GetAtSimply(int, CSFileListItem*)"}));
    }
}

TEST_F(TreeCursorAssertion, ANullItemIsFatalWhereverAFileWouldBeConverted) {
    List();
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(tree->GetNext(&item), 0);
    for (const auto operation :
         {&CSDCFList::GetCur, &CSDCFList::GetFirst, &CSDCFList::GetLast, &CSDCFList::GetNext, &CSDCFList::GetPrev}) {
        EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (tree.get()->*operation)(nullptr); }), NoItem(kConvert)));
    }
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAt(0, nullptr); }), NoItem(kConvert)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetAtSimply(0, nullptr); }), NoItem(kConvertSimply)));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { tree->GetInfo(Path("101ABCDE", DcfName(1)).data(), nullptr); }),
                                NoItem(kConvert)));
}

} // namespace
} // namespace dcftest
