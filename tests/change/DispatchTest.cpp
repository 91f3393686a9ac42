// Which operations go through the file list's own virtual functions, so that a class derived from it takes part.
#include "Change.h"

namespace dcftest {
namespace {

/// Notes each call of an operation that another one may call, and goes on with it.
class NotingList : public CSFileList {
public:
    int Listup() override {
        Note("Listup");
        return CSFileList::Listup();
    }
    int UpdateFirstIndex(bool ignoreSeries) override {
        Note(ignoreSeries ? "UpdateFirstIndex true" : "UpdateFirstIndex false");
        return CSFileList::UpdateFirstIndex(ignoreSeries);
    }
    int GetFirst(CSFileListItem* pItem) override {
        Note("GetFirst");
        return CSFileList::GetFirst(pItem);
    }
    int GetCurIndex() override {
        Note("GetCurIndex");
        return CSFileList::GetCurIndex();
    }
    int SetCur(char* path) override {
        Note(std::string("SetCur ") + path);
        return CSFileList::SetCur(path);
    }
    int SetCurIndex(int nIdx) override {
        Note("SetCurIndex " + std::to_string(nIdx));
        return CSFileList::SetCurIndex(nIdx);
    }
    int GetAtSimply(int nIdx, CSFileListItem* pItem) override {
        Note("GetAtSimply " + std::to_string(nIdx));
        return CSFileList::GetAtSimply(nIdx, pItem);
    }
    int GetAt(int nIdx, CSFileListItem* pItem) override {
        Note("GetAt " + std::to_string(nIdx));
        return CSFileList::GetAt(nIdx, pItem);
    }
    int GetCount() override {
        Note("GetCount");
        return CSFileList::GetCount();
    }
    int SetFilePrefix(char* prefix) override {
        Note(std::string("SetFilePrefix ") + prefix);
        return CSFileList::SetFilePrefix(prefix);
    }
    void SelectCancel() override {
        Note("SelectCancel");
        CSFileList::SelectCancel();
    }

    Texts Take() {
        return std::exchange(m_calls, {});
    }
    std::function<void()> atSetCurIndex;
    std::function<void()> atListup;

private:
    void Note(const std::string& call) {
        if (call == "Listup" && atListup) {
            atListup();
        }
        if (call.find("SetCurIndex") == 0 && atSetCurIndex) {
            atSetCurIndex();
        }
        m_calls.push_back(call);
    }

    Texts m_calls;
};

class Dispatch : public testing::Test {
protected:
    Dispatch() {
        StartAfresh();
        EXPECT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
        card.AddFiles("999PHOTO", {DcfName(9000), DcfName(8000), DcfName(7000)}).AddFiles("100PHOTO", {DcfName(1)});
        EXPECT_EQ(list.Listup(), 4);
        m_listing = list.Take();
    }

    CSFileListItem ItemOf(int position) {
        CSFileListItem item;
        EXPECT_EQ(list.GetAt(position, &item), 0);
        (void)list.Take();
        return item;
    }

    Card card;
    NotingList list;
    Texts m_listing;
};

TEST_F(Dispatch, OfAListingUpdatesTheFirstIndexAndMovesToTheFirstFile) {
    EXPECT_EQ(m_listing, (Texts{"Listup", "UpdateFirstIndex false", "GetFirst", "GetCurIndex"}));
}

TEST_F(Dispatch, OfDeleteSelMovesThroughSetCurIndex) {
    list.SetSel(2, true);
    bool selectedThen = false;
    int countThen = -1;
    list.atSetCurIndex = [&] {
        selectedThen = !list.m_vecSel.empty();
        countThen = list.m_nList;
    };
    EXPECT_EQ(list.DeleteSel(), 0);
    EXPECT_EQ(list.Take(), (Texts{"SetCurIndex 1", "GetAtSimply 1", "SetCur " + card.Path("999PHOTO", DcfName(8000)),
                                  "GetCurIndex"}));
    EXPECT_TRUE(selectedThen) << "the selection is emptied behind the move";
    EXPECT_EQ(countThen, 3) << "the count is refreshed before it";
}

TEST_F(Dispatch, OfDeleteAllListsAgain) {
    list.SetSel(2, true);
    bool treeThen = true;
    bool selectedThen = true;
    list.atListup = [&] {
        treeThen = list.m_pDCF != nullptr;
        selectedThen = !list.m_vecSel.empty();
    };
    EXPECT_EQ(list.DeleteAll(), 0);
    EXPECT_EQ(list.Take(), (Texts{"Listup", "UpdateFirstIndex false", "GetFirst", "UpdateFirstIndex false"}));
    EXPECT_FALSE(treeThen) << "the old tree has gone by then";
    EXPECT_FALSE(selectedThen) << "so has the selection";
}

TEST_F(Dispatch, OfRenumberingListsAgain) {
    bool treeThen = true;
    list.atListup = [&] { treeThen = list.m_pDCF != nullptr; };
    EXPECT_EQ(Printed([&] { EXPECT_EQ(list.RenameDCFFullStorage(), 1); }), "rename fail\n") << "100PHOTO is in the way";
    EXPECT_EQ(list.Take(), (Texts{"Listup", "UpdateFirstIndex false", "GetFirst", "GetCurIndex"}));
    EXPECT_FALSE(treeThen);
}

TEST_F(Dispatch, OfDeleteGoesThroughNone) {
    CSFileListItem item = ItemOf(1);
    EXPECT_EQ(list.Delete(&item), 0);
    EXPECT_EQ(list.Take(), Texts{});
}

TEST_F(Dispatch, OfTheBatchesGoesThroughNone) {
    CSFileListItem item = ItemOf(1);
    list.SetSel(1, true);
    EXPECT_EQ(list.SetProtectSel(true), 0);
    list.SetSel(1, true);
    EXPECT_EQ(list.SetProtectSelToggle(), 0);
    EXPECT_EQ(list.SetProtectAll(false), 0);
    EXPECT_EQ(list.SetProtect(&item, false), 0);
    EXPECT_EQ(list.SetWifiFlag(&item, true), 0);
    EXPECT_EQ(list.SetCustomBitAll(0, true), 0);
    EXPECT_EQ(list.Take(), Texts{});
}

TEST_F(Dispatch, OfTheColourModeSetsThePrefix) {
    list.SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    list.SetFileNameColor(FILE_LIST_COLOR_MODE_STANDARD);
    EXPECT_EQ(list.Take(), (Texts{"SetFilePrefix _KVR", "SetFilePrefix KVR_"}));
}

TEST_F(Dispatch, OfTheSeriesModeUpdatesTheFirstIndex) {
    EXPECT_EQ(list.SetSeriesMode(true), 99909000);
    EXPECT_EQ(list.SetSeriesMode(false), 99909000);
    EXPECT_EQ(list.Take(), (Texts{"UpdateFirstIndex false", "UpdateFirstIndex true"}));
}

TEST_F(Dispatch, OfANewNameGoesThroughNone) {
    std::array<char, 396> out{};
    EXPECT_EQ(list.GetNewFileName(out.data(), FILE_TYPE_JPG), 0);
    EXPECT_EQ(list.Take(), Texts{});
}

TEST_F(Dispatch, OfTheLatestNameMovesThroughGetFirst) {
    std::array<char, 99> out{};
    EXPECT_EQ(list.GetLatestFileName(out.data(), FILE_TYPE_SRW), 0);
    EXPECT_EQ(list.Take(), (Texts{"GetFirst", "GetCurIndex"}));
}

TEST_F(Dispatch, OfTheCapacityReadsTheFirstFileSimply) {
    EXPECT_EQ(list.GetAvailNumOfPhoto(), 999);
    EXPECT_EQ(list.Take(), (Texts{"GetAtSimply 0"}));
}

} // namespace
} // namespace dcftest
