// Browsing through the file list: results, items, the cached position and the whole log of each operation.
#include "Scenario.h"

#include <functional>

namespace dcftest {
namespace {

/// A log line of the file list.
std::string Line(const std::string& function, const std::string& message) {
    return "CSFileList " + function + " " + message;
}

std::string Refreshed(int position) {
    return Line("GetCurIndex", "m_nCurGetAtIdx = " + std::to_string(position));
}

/// The line with which an operation shows the two paths of an item.
std::string Shown(const std::string& function, const std::string& path, const std::string& object = "") {
    return Line(function, function + " called m_strURI = " + path + " m_strObject = " + object);
}

class Browsing : public FileListTest {
protected:
    /// Positions 0 to 4: 102/3 with a raw companion, 102/1; 100/7; Camera 8 and 9. 101 is empty.
    Browsing() {
        card.AddFiles("102ABCDE", {DcfName(3), DcfName(3, "SRW"), DcfName(1)}).AddDir("101ABCDE");
        card.AddFile("100ABCDE", DcfName(7)).AddFiles("Camera", {CameraName(8), CameraName(9)});
        paths = {Path("102ABCDE", DcfName(3)), Path("102ABCDE", DcfName(1)), Path("100ABCDE", DcfName(7)),
                 Path("Camera", CameraName(8)), Path("Camera", CameraName(9))};
        object = Path("102ABCDE", DcfName(3, "SRW"));
        EXPECT_EQ(List(), 5);
    }

    int CachedPosition() const {
        return list->m_nCurGetAtIdx;
    }

    int TreePosition() const {
        return list->m_pDCF->GetCurIndex();
    }

    void StandOn(std::size_t position) {
        ASSERT_EQ(list->SetCur(paths[position].data()), 0);
        (void)TakeLog();
    }

    std::vector<std::string> paths;
    std::string object;
    CSFileListItem item;
};

TEST_F(Browsing, GetFirstMovesShowsAndRefreshes) {
    StandOn(2);
    EXPECT_EQ(list->GetFirst(&item), 0);
    EXPECT_EQ(TakeLog(), (Log{Line("GetFirst", "start"), Shown("GetFirst", paths[0], object) + "\n,", Refreshed(0)}));
    EXPECT_EQ(item.m_strURI, paths[0]);
    EXPECT_EQ(item.m_strObject, object);
    EXPECT_EQ(item.m_nFileNum, 3);
    EXPECT_EQ(CachedPosition(), 0);
    EXPECT_EQ(TreePosition(), 0);
}

TEST_F(Browsing, GetNextMovesShowsAndRefreshes) {
    for (const int position : {1, 2, 3, 4}) {
        EXPECT_EQ(list->GetNext(&item), 0);
        EXPECT_EQ(TakeLog(), (Log{Shown("GetNext", paths[static_cast<std::size_t>(position)]), Refreshed(position)}));
        EXPECT_EQ(item.m_strURI, paths[static_cast<std::size_t>(position)]);
        EXPECT_EQ(CachedPosition(), position);
        EXPECT_EQ(TreePosition(), position);
    }
}

TEST_F(Browsing, GetNextAtTheEndShowsTheItemAsItIsAndNothingMore) {
    ASSERT_EQ(list->GetLast(&item), 0);
    (void)TakeLog();
    CSFileListItem other;
    std::strcpy(other.m_strURI, "what the client had");
    std::strcpy(other.m_strObject, "before");
    const std::string before = Fields(other);
    EXPECT_EQ(list->GetNext(&other), -1);
    EXPECT_EQ(TakeLog(), Log{Shown("GetNext", "what the client had", "before")});
    EXPECT_EQ(Fields(other), before);
    EXPECT_EQ(CachedPosition(), 4);
    EXPECT_EQ(TreePosition(), 4);
}

TEST_F(Browsing, GetPrevMovesShowsAndRefreshes) {
    ASSERT_EQ(list->GetLast(&item), 0);
    (void)TakeLog();
    for (const int position : {3, 2, 1, 0}) {
        const std::string& path = paths[static_cast<std::size_t>(position)];
        EXPECT_EQ(list->GetPrev(&item), 0);
        EXPECT_EQ(TakeLog(), (Log{Shown("GetPrev", path, position == 0 ? object : ""), Refreshed(position)}));
        EXPECT_EQ(item.m_strURI, path);
        EXPECT_EQ(CachedPosition(), position);
    }
}

TEST_F(Browsing, GetPrevAtTheStartLogsItsEnd) {
    EXPECT_EQ(list->GetPrev(&item), -1);
    EXPECT_EQ(TakeLog(), (Log{Shown("GetPrev", ""), Line("GetPrev", "GetPrev end")}));
    EXPECT_STREQ(item.m_strURI, "");
    EXPECT_EQ(CachedPosition(), 0);
    EXPECT_EQ(TreePosition(), 0);
}

TEST_F(Browsing, GetLastMovesShowsAndRefreshes) {
    EXPECT_EQ(list->GetLast(&item), 0);
    EXPECT_EQ(TakeLog(), (Log{Shown("GetLast", paths[4]), Refreshed(4)}));
    EXPECT_EQ(item.m_strURI, paths[4]);
    EXPECT_EQ(CachedPosition(), 4);
    EXPECT_EQ(TreePosition(), 4);
}

TEST_F(Browsing, GetLastInATreeThatHasLostItsFilesLogsItsEnd) {
    list->m_pDCF->m_nDirCount = 0;
    EXPECT_EQ(list->GetLast(&item), -1);
    EXPECT_EQ(TakeLog(), (Log{Shown("GetLast", ""), Line("GetLast", "GetLast end")}));
    EXPECT_EQ(CachedPosition(), 0);
    list->m_pDCF->m_nDirCount = 4;
}

TEST_F(Browsing, GetCurrentShowsAndRefreshes) {
    StandOn(1);
    list->m_nCurGetAtIdx = 77;
    EXPECT_EQ(list->GetCurrent(&item), 0);
    EXPECT_EQ(TakeLog(), (Log{Shown("GetCurrent", paths[1]), Refreshed(1)}));
    EXPECT_EQ(item.m_strURI, paths[1]);
    EXPECT_EQ(CachedPosition(), 1);
}

TEST_F(Browsing, GetAtFillsAnItemAndMovesNothing) {
    StandOn(1);
    for (const std::size_t position : {std::size_t{0}, std::size_t{4}}) {
        EXPECT_EQ(list->GetAt(static_cast<int>(position), &item), 0);
        EXPECT_EQ(TakeLog(), Log{Line("GetAt", "++++++++++++++++++++ start index = " + std::to_string(position))});
        EXPECT_EQ(item.m_strURI, paths[position]);
        EXPECT_EQ(item.m_nDirNum, position == 0 ? 102 : 99);
        EXPECT_EQ(CachedPosition(), 1);
        EXPECT_EQ(TreePosition(), 1);
    }
}

TEST_F(Browsing, GetAtSimplyFillsThePathsAloneAndMovesNothing) {
    StandOn(1);
    EXPECT_EQ(list->GetAtSimply(0, &item), 0);
    EXPECT_EQ(TakeLog(), Log{Line("GetAtSimply", "++++++++++++++++++++ start index = 0")});
    EXPECT_EQ(item.m_strURI, paths[0]);
    EXPECT_EQ(item.m_strObject, object);
    EXPECT_EQ(item.m_nDirNum, 0);
    EXPECT_EQ(CachedPosition(), 1);
    EXPECT_EQ(TreePosition(), 1);
}

TEST_F(Browsing, IsLastComparesPathsAndLeavesTheTreesCursorOnTheLastFile) {
    StandOn(1);
    ASSERT_EQ(list->GetAt(2, &item), 0);
    (void)TakeLog();
    EXPECT_FALSE(list->IsLast(&item));
    EXPECT_EQ(TakeLog(), Log{Line("IsLast", "start")});
    EXPECT_EQ(item.m_strURI, paths[2]) << "the client's item is not touched";
    EXPECT_EQ(CachedPosition(), 1);
    EXPECT_EQ(TreePosition(), 4);
    EXPECT_EQ(list->GetNext(&item), -1) << "so browsing goes on from there";

    ASSERT_EQ(list->GetAtSimply(4, &item), 0);
    EXPECT_TRUE(list->IsLast(&item));
    item.m_strURI[std::strlen(item.m_strURI) - 1] = 'X';
    EXPECT_FALSE(list->IsLast(&item));
}

TEST_F(Browsing, AfterGetLastTheItemIsTheLast) {
    ASSERT_EQ(list->GetLast(&item), 0);
    EXPECT_TRUE(list->IsLast(&item));
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(list->GetCurIndex(), 4);
}

TEST_F(Browsing, SetCurMovesToAPathAndRefreshes) {
    EXPECT_EQ(list->SetCur(paths[3].data()), 0);
    EXPECT_EQ(TakeLog(), (Log{Line("SetCur", "start"), Refreshed(3)}));
    EXPECT_EQ(CachedPosition(), 3);
    EXPECT_EQ(TreePosition(), 3);
}

TEST_F(Browsing, SetCurIndexMovesToAPositionAndRefreshes) {
    for (const int position : {4, 0, 2, 3, 1}) {
        EXPECT_EQ(list->SetCurIndex(position), 0);
        EXPECT_EQ(TakeLog(), (Log{Line("SetCurIndex", "start"),
                                  Line("GetAtSimply", "++++++++++++++++++++ start index = " + std::to_string(position)),
                                  Line("SetCur", "start"), Refreshed(position)}));
        EXPECT_EQ(CachedPosition(), position);
        EXPECT_EQ(list->GetCurIndex(), position);
        EXPECT_EQ(TakeLog(), Log{Refreshed(position)});
    }
}

TEST_F(Browsing, GetCurIndexFollowsTheTree) {
    CSFileListItem last;
    ASSERT_EQ(list->m_pDCF->GetLast(&last), 0);
    EXPECT_EQ(CachedPosition(), 0);
    EXPECT_EQ(list->GetCurIndex(), 4);
    EXPECT_EQ(TakeLog(), Log{Refreshed(4)});
    EXPECT_EQ(CachedPosition(), 4);
    list->m_pDCF->m_dirGroup[0]->RemoveItem(0);
    EXPECT_EQ(list->GetCurIndex(), 3) << "counted anew, although the cursor has not moved since";
}

TEST_F(Browsing, GetFileListIndexFindsAPathWithoutMoving) {
    StandOn(1);
    for (std::size_t position = 0; position < paths.size(); ++position) {
        EXPECT_EQ(list->GetFileListIndex(paths[position].data()), static_cast<int>(position));
        EXPECT_EQ(TakeLog(), Log{Line("GetFileListIndex", "start")});
    }
    EXPECT_EQ(CachedPosition(), 1);
    EXPECT_EQ(TreePosition(), 1);
}

TEST_F(Browsing, GetFileListIndexGivesMinusOneWhereTheDirectoryIsNotListed) {
    for (const std::string& path : {Path("500ABCDE", DcfName(1)), Path("102OTHER", DcfName(1)),
                                    std::string("/x/100ABCDE/K.JPG"), std::string()}) {
        EXPECT_EQ(list->GetFileListIndex(std::string(path).data()), -1) << path;
    }
    EXPECT_EQ(list->GetFileListIndex(nullptr), -1);
}

TEST_F(Browsing, GetFileListIndexTakesADirectoryBySixCharactersOfItsName) {
    EXPECT_EQ(list->GetFileListIndex(Path("102ABCXX", DcfName(1)).data()), 1);
}

TEST_F(Browsing, GetInfoFillsAnItemWithoutMoving) {
    StandOn(1);
    EXPECT_EQ(list->GetInfo(paths[0].data(), &item), 0);
    EXPECT_EQ(TakeLog(), Log{Line("GetInfo", "start")});
    EXPECT_EQ(item.m_strURI, paths[0]);
    EXPECT_EQ(item.m_strObject, object);
    EXPECT_EQ(item.m_nDirNum, 102);
    EXPECT_EQ(CachedPosition(), 1);
    EXPECT_EQ(TreePosition(), 1);
    EXPECT_EQ(list->GetInfo(item.m_strURI, &item), 0) << "with the item's own path";
    EXPECT_EQ(item.m_strURI, paths[0]);
    std::string tooLong = paths[2] + std::string(99 - paths[2].size(), 'x');
    EXPECT_EQ(list->GetInfo(tooLong.data(), &item), -1);
    EXPECT_EQ(item.m_strURI, paths[2]) << "filled all the same";
}

TEST_F(Browsing, UpdateFirstIndexRecomputesIt) {
    list->m_pDCF->m_nFirstIndex = 5;
    EXPECT_EQ(list->UpdateFirstIndex(true), 10200003);
    EXPECT_EQ(TakeLog(), Log{Line("UpdateFirstIndex", "start")});
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 10200003);
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 10300000);
    EXPECT_EQ(list->UpdateFirstIndex(false), 10200003) << "the series value counts in series mode alone";
    list->m_pDCF->SetSeriesMode(true);
    EXPECT_EQ(list->UpdateFirstIndex(false), 10300000);
    EXPECT_EQ(list->UpdateFirstIndex(true), 10200003);
}

// ---- Who refreshes the cached position ----

struct RefreshRow {
    const char* operation;
    std::function<void(CSFileList&, CSFileListItem&, std::vector<std::string>&)> call;
    int cached; ///< Behind the operation, 77 where it was left alone.
};

TEST_F(Browsing, TheCachedPositionIsRefreshedByTheMovesAndByNothingElse) {
    PhotoInfo info = {};
    const std::vector<RefreshRow> rows = {
        {"GetFirst", [](auto& l, auto& i, auto&) { l.GetFirst(&i); }, 0},
        {"GetNext", [](auto& l, auto& i, auto&) { l.GetNext(&i); }, 2},
        {"GetPrev", [](auto& l, auto& i, auto&) { l.GetPrev(&i); }, 0},
        {"GetLast", [](auto& l, auto& i, auto&) { l.GetLast(&i); }, 4},
        {"GetCurrent", [](auto& l, auto& i, auto&) { l.GetCurrent(&i); }, 1},
        {"SetCur", [](auto& l, auto&, auto& p) { l.SetCur(p[3].data()); }, 3},
        {"SetCurIndex", [](auto& l, auto&, auto&) { l.SetCurIndex(2); }, 2},
        {"GetCurIndex", [](auto& l, auto&, auto&) { l.GetCurIndex(); }, 1},
        {"GetAt", [](auto& l, auto& i, auto&) { l.GetAt(3, &i); }, 77},
        {"GetAtSimply", [](auto& l, auto& i, auto&) { l.GetAtSimply(3, &i); }, 77},
        {"IsLast", [](auto& l, auto& i, auto&) { l.IsLast(&i); }, 77},
        {"GetFileListIndex", [](auto& l, auto&, auto& p) { l.GetFileListIndex(p[3].data()); }, 77},
        {"GetInfo", [](auto& l, auto& i, auto& p) { l.GetInfo(p[3].data(), &i); }, 77},
        {"GetCount", [](auto& l, auto&, auto&) { l.GetCount(); }, 77},
        {"GetFileCount", [](auto& l, auto&, auto&) { l.GetFileCount(FILE_TYPE_JPG); }, 77},
        {"UpdateFirstIndex", [](auto& l, auto&, auto&) { l.UpdateFirstIndex(false); }, 77},
        {"SetSeriesMode", [](auto& l, auto&, auto&) { l.SetSeriesMode(false); }, 77},
        {"AddPhotoMetadata", [&](auto& l, auto&, auto& p) { l.AddPhotoMetadata(p[0].c_str(), info); }, 77},
    };
    for (const RefreshRow& row : rows) {
        StandOn(1);
        list->m_nCurGetAtIdx = 77;
        row.call(*list, item, paths);
        EXPECT_EQ(CachedPosition(), row.cached) << row.operation;
    }
}

TEST_F(Browsing, AMoveThatIsRefusedLeavesTheCachedPosition) {
    StandOn(4);
    list->m_nCurGetAtIdx = 77;
    EXPECT_EQ(list->GetNext(&item), -1);
    EXPECT_EQ(CachedPosition(), 77);
    StandOn(0);
    list->m_nCurGetAtIdx = 77;
    EXPECT_EQ(list->GetPrev(&item), -1);
    EXPECT_EQ(CachedPosition(), 77);
}

} // namespace
} // namespace dcftest
