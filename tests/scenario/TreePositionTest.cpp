// Files of the tree by their list position: GetAt, and GetAtSimply, the cheap way.
#include "Scenario.h"

#include "PosixSeam.h"

namespace dcftest {
namespace {

int g_calls = 0;

class TreePosition : public TreeTest {
protected:
    /// 104: none; 103: files 3, 2 and 1; 102: none; 101: file 6 with a raw companion; Camera: number 4.
    TreePosition() {
        g_calls = 0;
        card.AddDir("104ABCDE").AddFiles("103ABCDE", {DcfName(1), DcfName(2), DcfName(3)}).AddDir("102ABCDE");
        card.AddFile("101ABCDE", DcfName(6), {"", 0444, 1000000000}).AddFile("101ABCDE", DcfName(6, "SRW"));
        card.AddFile("Camera", CameraName(4));
        List();
    }

    std::vector<std::string> OrderedPaths() const {
        return {Path("103ABCDE", DcfName(3)), Path("103ABCDE", DcfName(2)), Path("103ABCDE", DcfName(1)),
                Path("101ABCDE", DcfName(6)), Path("Camera", CameraName(4))};
    }

    std::vector<std::string> PathsBy(int (CSDCFList::*get)(int, CSFileListItem*)) {
        std::vector<std::string> paths;
        for (int index = 0; index < tree->GetCount(); ++index) {
            CSFileListItem found;
            EXPECT_EQ((tree.get()->*get)(index, &found), 0);
            paths.emplace_back(found.m_strURI);
        }
        return paths;
    }

    CSFileListItem item;
};

TEST_F(TreePosition, GetAtNumbersAllFilesInListOrder) {
    EXPECT_EQ(PathsBy(&CSDCFList::GetAt), OrderedPaths());
}

TEST_F(TreePosition, GetAtSimplyNumbersAllFilesInListOrder) {
    EXPECT_EQ(PathsBy(&CSDCFList::GetAtSimply), OrderedPaths());
}

TEST_F(TreePosition, LeavesTheCursorWhereItIs) {
    for (const int position : {0, 4}) {
        EXPECT_EQ(tree->GetAt(position, &item), 0);
        EXPECT_EQ(tree->GetAtSimply(position, &item), 0);
        EXPECT_EQ(CursorOf(*tree), kUnsetCursor);
    }
    ASSERT_EQ(tree->SetCurFile(Path("103ABCDE", DcfName(2)).c_str()), 0);
    const Cursor before = CursorOf(*tree);
    for (const int position : {0, 1, 4}) {
        EXPECT_EQ(tree->GetAt(position, &item), 0);
        EXPECT_EQ(tree->GetAtSimply(position, &item), 0);
        EXPECT_EQ(CursorOf(*tree), before);
        EXPECT_STREQ(tree->m_CurItem.getFileName(), "KVR_0002.JPG");
        EXPECT_FALSE(tree->m_CurItem.m_bProtectKnown);
    }
}

TEST_F(TreePosition, GetAtFillsTheWholeItem) {
    CSFileListItem found = UsedItem();
    EXPECT_EQ(tree->GetAt(3, &found), 0);
    EXPECT_EQ(found.m_strURI, Path("101ABCDE", "KVR_0006.JPG"));
    EXPECT_EQ(found.m_strObject, Path("101ABCDE", "KVR_0006.SRW"));
    EXPECT_EQ(found.m_eFileType, FILE_TYPE_JPG);
    EXPECT_EQ(found.m_eObjectType, FILE_TYPE_SRW);
    EXPECT_TRUE(found.m_bProtect);
    EXPECT_FALSE(found.m_bWifi);
    EXPECT_EQ(found.m_nDirNum, 101);
    EXPECT_EQ(found.m_nFileNum, 6);
    EXPECT_EQ(found.m_nFileTime, tree->m_dirGroup[3]->GetItem(0).m_nFileTime);
}

TEST_F(TreePosition, GetAtSimplyWritesThePathsAndTheTimeAlone) {
    tree->m_dirGroup[3]->m_itemGroup[0].setFileTime(0xFEDCBA98U);
    CSFileListItem found = UsedItem();
    EXPECT_EQ(tree->GetAtSimply(3, &found), 0);
    CSFileListItem expected = UsedItem();
    tree->GetFullPath(expected.m_strURI, sizeof expected.m_strURI, 3, tree->m_dirGroup[3]->m_itemGroup[0]);
    std::memset(expected.m_strObject, 0, sizeof expected.m_strObject);
    tree->GetObjectFullPath(expected.m_strObject, sizeof expected.m_strObject, 3, tree->m_dirGroup[3]->m_itemGroup[0]);
    expected.m_nFileTime = 0xFEDCBA98U;
    ASSERT_EQ(expected.m_strURI, Path("101ABCDE", "KVR_0006.JPG"));
    ASSERT_EQ(expected.m_strObject, Path("101ABCDE", "KVR_0006.SRW"));
    EXPECT_EQ(Fields(found), Fields(expected));
}

TEST_F(TreePosition, GetAtSimplyClearsTheCompanionsPathOfAFileWithoutOne) {
    CSFileListItem found = UsedItem();
    EXPECT_EQ(tree->GetAtSimply(0, &found), 0);
    EXPECT_EQ(std::string(found.m_strObject, sizeof found.m_strObject), std::string(99, '\0'));
}

TEST_F(TreePosition, GetAtSimplyAsksNeitherTheCardNorACollector) {
    CSDCFList::RegisterPhotoMetadataCB([](char*, PhotoInfo*) { return ++g_calls; });
    {
        const PosixSeam seam;
        EXPECT_EQ(tree->GetAtSimply(3, &item), 0);
        EXPECT_EQ(seam.Texts(), std::vector<std::string>{});
    }
    EXPECT_EQ(g_calls, 0);
    EXPECT_EQ(tree->GetAt(3, &item), 0);
    EXPECT_EQ(g_calls, 1);
}

TEST_F(TreePosition, GetAtAsksTheCardForTheProtectionOfEachCopyAnew) {
    const PosixSeam seam;
    EXPECT_EQ(tree->GetAt(3, &item), 0);
    EXPECT_EQ(tree->GetAt(3, &item), 0);
    const std::string question = "stat " + Path("101ABCDE", "KVR_0006.JPG");
    EXPECT_EQ(seam.Texts(), (std::vector<std::string>{question, question}));
    EXPECT_FALSE(tree->m_dirGroup[3]->m_itemGroup[0].m_bProtectKnown);
}

TEST_F(TreePosition, GetAtTakesAKnownProtectionFromTheTree) {
    tree->m_dirGroup[3]->SetProtect(0, false);
    const PosixSeam seam;
    EXPECT_EQ(tree->GetAt(3, &item), 0);
    EXPECT_EQ(seam.Texts(), std::vector<std::string>{});
    EXPECT_FALSE(item.m_bProtect) << "the card says otherwise, but the tree knows";
}

TEST_F(TreePosition, FollowsTheTreeAsItChanges) {
    tree->m_dirGroup[1]->RemoveItem(1);
    EXPECT_EQ(tree->GetAt(1, &item), 0);
    EXPECT_EQ(item.m_strURI, Path("103ABCDE", DcfName(1)));
    EXPECT_EQ(tree->GetAtSimply(2, &item), 0);
    EXPECT_EQ(item.m_strURI, Path("101ABCDE", DcfName(6)));
}

} // namespace
} // namespace dcftest
