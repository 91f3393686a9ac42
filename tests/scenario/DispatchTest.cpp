// Which of its own operations the file list calls through its virtual table: a derived list notes them all.
#include "Scenario.h"

#include <optional>
#include <utility>

namespace dcftest {
namespace {

/// Notes each call of an operation that another one may make, then does what the file list does.
class NotingList : public CSFileList {
public:
    int Listup() override {
        return Note("Listup"), CSFileList::Listup();
    }
    int SetSeriesMode(bool on) override {
        return Note("SetSeriesMode"), CSFileList::SetSeriesMode(on);
    }
    bool GetSeriesMode() override {
        return Note("GetSeriesMode"), CSFileList::GetSeriesMode();
    }
    int GetCount() override {
        return Note("GetCount"), CSFileList::GetCount();
    }
    int GetAt(int nIdx, CSFileListItem* pItem) override {
        return Note("GetAt"), CSFileList::GetAt(nIdx, pItem);
    }
    int GetAtSimply(int nIdx, CSFileListItem* pItem) override {
        return Note("GetAtSimply " + std::to_string(nIdx)), CSFileList::GetAtSimply(nIdx, pItem);
    }
    int GetFileListIndex(char* path) override {
        return Note("GetFileListIndex"), CSFileList::GetFileListIndex(path);
    }
    int GetCurIndex() override {
        return Note("GetCurIndex"), curIndex ? *curIndex : CSFileList::GetCurIndex();
    }
    int GetCurrent(CSFileListItem* pItem) override {
        return Note("GetCurrent"), CSFileList::GetCurrent(pItem);
    }
    int GetFirst(CSFileListItem* pItem) override {
        return Note("GetFirst"), CSFileList::GetFirst(pItem);
    }
    int GetNext(CSFileListItem* pItem) override {
        return Note("GetNext"), CSFileList::GetNext(pItem);
    }
    int GetPrev(CSFileListItem* pItem) override {
        return Note("GetPrev"), CSFileList::GetPrev(pItem);
    }
    int GetLast(CSFileListItem* pItem) override {
        return Note("GetLast"), CSFileList::GetLast(pItem);
    }
    bool IsLast(CSFileListItem* pItem) override {
        return Note("IsLast"), CSFileList::IsLast(pItem);
    }
    void SetFileNameColor(eFileListColorMode mode) override {
        Note("SetFileNameColor"), CSFileList::SetFileNameColor(mode);
    }
    int SetFilePrefix(char* prefix) override {
        return Note("SetFilePrefix " + std::string(prefix)), CSFileList::SetFilePrefix(prefix);
    }
    int UpdateFirstIndex(bool ignoreSeries) override {
        return Note(ignoreSeries ? "UpdateFirstIndex true" : "UpdateFirstIndex false"),
               updated ? *updated : CSFileList::UpdateFirstIndex(ignoreSeries);
    }
    int SetCur(char* path) override {
        return Note("SetCur " + std::string(path)), setCur ? *setCur : CSFileList::SetCur(path);
    }
    int SetCurIndex(int nIdx) override {
        return Note("SetCurIndex"), CSFileList::SetCurIndex(nIdx);
    }
    int GetInfo(char* path, CSFileListItem* pItem) override {
        return Note("GetInfo"), CSFileList::GetInfo(path, pItem);
    }
    int GetFileCount(eFileType type) override {
        return Note("GetFileCount"), CSFileList::GetFileCount(type);
    }

    /// The notes since the last time.
    std::vector<std::string> Take() {
        return std::exchange(notes, {});
    }

    // What an operation answers instead of doing anything.
    std::optional<int> curIndex;
    std::optional<int> updated;
    std::optional<int> setCur;

private:
    void Note(const std::string& call) {
        notes.push_back(call);
    }

    std::vector<std::string> notes;
};

using Calls = std::vector<std::string>;

class Dispatch : public TreeTest {
protected:
    Dispatch() {
        card.AddFiles("100ABCDE", {DcfName(1), DcfName(2), DcfName(3)});
        EXPECT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    }

    void ListCard() {
        ASSERT_EQ(list.Listup(), 3);
        (void)list.Take();
    }

    NotingList list;
    CSFileListItem item;
};

TEST_F(Dispatch, ListupUpdatesTheFirstIndexThenGoesToTheFirstFile) {
    EXPECT_EQ(list.Listup(), 3);
    EXPECT_EQ(list.Take(), (Calls{"Listup", "UpdateFirstIndex false", "GetFirst", "GetCurIndex"}));
}

TEST_F(Dispatch, ListupOfAnEmptyCardStillAsksForTheFirstFile) {
    const Card empty;
    ASSERT_EQ(list.SetBaseURI(empty.Root().c_str()), 0);
    EXPECT_EQ(list.Listup(), 0);
    EXPECT_EQ(list.Take(), (Calls{"Listup", "UpdateFirstIndex false", "GetFirst"}));
}

TEST_F(Dispatch, MovesRefreshThroughGetCurIndex) {
    ListCard();
    list.SetCur(Path("100ABCDE", DcfName(2)).data());
    EXPECT_EQ(list.Take(), (Calls{"SetCur " + Path("100ABCDE", DcfName(2)), "GetCurIndex"}));
    list.GetCurrent(&item);
    EXPECT_EQ(list.Take(), (Calls{"GetCurrent", "GetCurIndex"}));
    list.GetNext(&item);
    EXPECT_EQ(list.Take(), (Calls{"GetNext", "GetCurIndex"}));
    list.GetNext(&item);
    EXPECT_EQ(list.Take(), Calls{"GetNext"}) << "the end";
    list.GetPrev(&item);
    EXPECT_EQ(list.Take(), (Calls{"GetPrev", "GetCurIndex"}));
    list.GetFirst(&item);
    EXPECT_EQ(list.Take(), (Calls{"GetFirst", "GetCurIndex"}));
    list.GetPrev(&item);
    EXPECT_EQ(list.Take(), Calls{"GetPrev"}) << "the start";
    list.GetLast(&item);
    EXPECT_EQ(list.Take(), (Calls{"GetLast", "GetCurIndex"}));
}

TEST_F(Dispatch, AMoveAnswersWithTheTreesResultWhateverGetCurIndexSays) {
    ListCard();
    list.curIndex = -5;
    EXPECT_EQ(list.GetFirst(&item), 0);
    EXPECT_EQ(list.GetNext(&item), 0);
    EXPECT_EQ(list.GetPrev(&item), 0);
    EXPECT_EQ(list.GetLast(&item), 0);
    EXPECT_EQ(list.GetCurrent(&item), 0);
    EXPECT_EQ(list.SetCur(Path("100ABCDE", DcfName(2)).data()), 0);
    EXPECT_EQ(list.m_nCurGetAtIdx, 0) << "it is GetCurIndex that stores the position";
}

TEST_F(Dispatch, SetCurIndexReadsSimplyThenSetsThePath) {
    ListCard();
    EXPECT_EQ(list.SetCurIndex(1), 0);
    EXPECT_EQ(list.Take(),
              (Calls{"SetCurIndex", "GetAtSimply 1", "SetCur " + Path("100ABCDE", DcfName(2)), "GetCurIndex"}));
}

TEST_F(Dispatch, SetCurIndexAnswersWithTheReadNotWithTheMove) {
    ListCard();
    list.setCur = -5;
    EXPECT_EQ(list.SetCurIndex(1), 0);
    list.setCur = 0;
    delete std::exchange(list.m_pDCF, nullptr);
    (void)list.Take();
    EXPECT_EQ(list.SetCurIndex(1), -1);
    EXPECT_EQ(list.Take(), (Calls{"SetCurIndex", "GetAtSimply 1", "SetCur "}));
}

TEST_F(Dispatch, SetSeriesModeUpdatesTheFirstIndexAndAnswersWithIt) {
    ListCard();
    list.updated = 4711;
    EXPECT_EQ(list.SetSeriesMode(true), 4711);
    EXPECT_EQ(list.Take(), (Calls{"SetSeriesMode", "UpdateFirstIndex false"}));
    EXPECT_EQ(list.SetSeriesMode(false), 4711);
    EXPECT_EQ(list.Take(), (Calls{"SetSeriesMode", "UpdateFirstIndex true"}));
}

TEST_F(Dispatch, SetFileNameColorSetsThePrefix) {
    list.SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    list.SetFileNameColor(FILE_LIST_COLOR_MODE_STANDARD);
    EXPECT_EQ(list.Take(), (Calls{"SetFileNameColor", "SetFilePrefix _KVR", "SetFileNameColor", "SetFilePrefix KVR_"}));
}

TEST_F(Dispatch, TheOtherOperationsGoToTheTreeAlone) {
    ListCard();
    std::string path = Path("100ABCDE", DcfName(2));
    list.GetAt(0, &item);
    list.GetAtSimply(0, &item);
    list.IsLast(&item);
    list.GetFileListIndex(path.data());
    list.GetInfo(path.data(), &item);
    list.GetFileCount(FILE_TYPE_JPG);
    list.GetCount();
    list.GetSeriesMode();
    list.UpdateFirstIndex(true);
    EXPECT_EQ(list.Take(), (Calls{"GetAt", "GetAtSimply 0", "IsLast", "GetFileListIndex", "GetInfo", "GetFileCount",
                                  "GetCount", "GetSeriesMode", "UpdateFirstIndex true"}));
}

} // namespace
} // namespace dcftest
