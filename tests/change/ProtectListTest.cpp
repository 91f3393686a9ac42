// Protection and Wi-Fi marks through the file list.
#include "Change.h"

namespace dcftest {
namespace {

class ListProtect : public FileListTest {
protected:
    /// Positions 0 and 1 in 101 (9 with a companion, 5), 2 in 100.
    void ListTwo() {
        card.AddFiles("101ABCDE", {DcfName(9), DcfName(9, "SRW"), DcfName(5)}).AddFiles("100ABCDE", {DcfName(1)});
        ASSERT_EQ(List(), 3);
    }

    CSFileListItem ItemOf(int position) {
        CSFileListItem item;
        EXPECT_EQ(list->GetAt(position, &item), 0);
        (void)TakeLog();
        return item;
    }

    DCFItem& InTree(int didx, int fidx) {
        return ItemAt(*list->m_pDCF, didx, fidx);
    }
};

TEST_F(ListProtect, OfAnItemSetsFileAndCompanion) {
    ListTwo();
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->SetProtect(&item, true), 0); }),
              (Texts{"stat 101ABCDE/KVR_0009.JPG", "chmod 101ABCDE/KVR_0009.JPG 0444", "sync",
                     "stat 101ABCDE/KVR_0009.SRW", "chmod 101ABCDE/KVR_0009.SRW 0444", "sync"}))
        << "no sync of the list's own";
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetProtect start"}));
    EXPECT_FALSE(item.m_bProtect) << "as it was fetched";
    EXPECT_TRUE(ItemOf(0).m_bProtect);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    EXPECT_FALSE(ItemOf(0).m_bProtect);
}

TEST_F(ListProtect, OfAnItemGivesZeroWhateverTheCardSays) {
    ListTwo();
    CSFileListItem item = ItemOf(2);
    card.Remove("100ABCDE", DcfName(1));
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    EXPECT_TRUE(ItemOf(2).m_bProtect);
}

TEST_F(ListProtect, OfTheSelectionSortsAppliesAndEmptiesIt) {
    ListTwo();
    list->SetSel(2, true);
    list->SetSel(0, true);
    (void)TakeLog();
    std::vector<int> selected;
    EXPECT_EQ(CallsOf(
                  card, [&] { EXPECT_EQ(list->SetProtectSel(true), 0); },
                  [&](PosixSeam& seam) { seam.Before("stat", 1, [&] { selected = list->m_vecSel; }); }),
              (Texts{"stat 101ABCDE/KVR_0009.JPG", "chmod 101ABCDE/KVR_0009.JPG 0444", "sync",
                     "stat 101ABCDE/KVR_0009.SRW", "chmod 101ABCDE/KVR_0009.SRW 0444", "sync",
                     "stat 100ABCDE/KVR_0001.JPG", "chmod 100ABCDE/KVR_0001.JPG 0444", "sync"}));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetProtectSel start"}));
    EXPECT_EQ(selected, (std::vector<int>{0, 2}));
    EXPECT_EQ(list->GetSelCount(), 0);
    EXPECT_TRUE(InTree(0, 0).m_bProtect);
    EXPECT_FALSE(InTree(0, 1).m_bProtect);
    EXPECT_TRUE(InTree(1, 0).m_bProtect);
    list->SetSel(0, true);
    EXPECT_EQ(list->SetProtectSel(false), 0);
    EXPECT_FALSE(InTree(0, 0).m_bProtect);
    EXPECT_TRUE(InTree(1, 0).m_bProtect);
}

TEST_F(ListProtect, OfAnEmptySelectionChangesNothing) {
    ListTwo();
    const Texts before = EverythingIn(*list->m_pDCF);
    EXPECT_EQ(CallsOf(card,
                      [&] {
                          EXPECT_EQ(list->SetProtectSel(true), 0);
                          EXPECT_EQ(list->SetProtectSelToggle(), 0);
                      }),
              Texts{});
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetProtectSel start", "CSFileList SetProtectSelToggle start"}));
    EXPECT_EQ(EverythingIn(*list->m_pDCF), before);
}

TEST_F(ListProtect, OfTheSelectionIsToggledFileByFile) {
    ListTwo();
    card.SetMode("101ABCDE", DcfName(5), 0444);
    for (const int position : {2, 1, 0}) {
        list->SetSel(position, true);
    }
    (void)TakeLog();
    EXPECT_EQ(list->SetProtectSelToggle(), 0);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetProtectSelToggle start"}));
    EXPECT_TRUE(InTree(0, 0).m_bProtect);
    EXPECT_FALSE(InTree(0, 1).m_bProtect);
    EXPECT_TRUE(InTree(1, 0).m_bProtect);
    EXPECT_EQ(card.Mode("101ABCDE", DcfName(5)), 0644U);
    EXPECT_EQ(list->GetSelCount(), 0);
}

TEST_F(ListProtect, OfTheSelectionSortsItBeforeToggling) {
    ListTwo();
    for (const int position : {2, 0}) {
        list->SetSel(position, true);
    }
    ASSERT_EQ(list->SetProtectSelToggle(), 0);
    EXPECT_TRUE(InTree(0, 0).m_bProtect) << "unsorted, position 0 would come too late";
    EXPECT_TRUE(InTree(1, 0).m_bProtect);
}

TEST_F(ListProtect, OfEveryFileLeavesTheSelection) {
    ListTwo();
    list->SetSel(1, true);
    (void)TakeLog();
    EXPECT_EQ(list->SetProtectAll(true), 0);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetProtectAll start"}));
    EXPECT_TRUE(InTree(0, 0).m_bProtect && InTree(0, 1).m_bProtect && InTree(1, 0).m_bProtect);
    EXPECT_EQ(list->GetSelCount(), 1);
    EXPECT_EQ(list->SetProtectAll(false), 0);
    EXPECT_FALSE(InTree(0, 0).m_bProtect || InTree(0, 1).m_bProtect || InTree(1, 0).m_bProtect);
}

TEST_F(ListProtect, DoesNotKeepDeleteAllFromDeletingEverything) {
    ListTwo();
    ASSERT_EQ(list->SetProtectAll(true), 0);
    ASSERT_EQ(list->DeleteAll(), 0);
    EXPECT_EQ(CardTexts(card), Texts{});
}

TEST_F(ListProtect, OutlivesANewListing) {
    ListTwo();
    ASSERT_EQ(list->SetProtectAll(true), 0);
    CSFileList other;
    ASSERT_EQ(other.SetBaseURI(card.Root().c_str()), 0);
    ASSERT_EQ(other.Listup(), 3);
    CSFileListItem item;
    ASSERT_EQ(other.GetAt(1, &item), 0);
    EXPECT_TRUE(item.m_bProtect);
}

TEST_F(ListProtect, WithoutATreeOrAnItemIsFatal) {
    CSFileListItem item;
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetProtect(&item, true); }),
                                NoTree("virtual int CSFileList::SetProtect(CSFileListItem*, bool)")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetProtectSel(true); }),
                                NoTree("virtual int CSFileList::SetProtectSel(bool)")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetProtectSelToggle(); }),
                                NoTree("virtual int CSFileList::SetProtectSelToggle()")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetProtectAll(true); }),
                                NoTree("virtual int CSFileList::SetProtectAll(bool)")));
    ListTwo();
    const Ending ending = RunInChild([&] { list->SetProtect(nullptr, true); });
    EXPECT_TRUE(DiesByAssertion(ending, NoItem("virtual int CSFileList::SetProtect(CSFileListItem*, bool)")));
    EXPECT_EQ(MessagesBeforeAssertion(ending), (Texts{"start"}));
}

class ListWifi : public ListProtect {};

TEST_F(ListWifi, IsReadFromTheItemAsItWasFetched) {
    ListTwo();
    CSFileListItem item = ItemOf(1);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->SetWifiFlag(&item, true), 0); }), Texts{});
    EXPECT_FALSE(list->IsWifiFlag(&item));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetWifiFlag start", "CSFileList IsWifiFlag start"}));
    CSFileListItem again = ItemOf(1);
    EXPECT_TRUE(list->IsWifiFlag(&again));
    CSFileListItem other = ItemOf(0);
    EXPECT_FALSE(list->IsWifiFlag(&other));
    EXPECT_EQ(list->SetWifiFlag(&again, false), 0);
    EXPECT_TRUE(list->IsWifiFlag(&again));
    again = ItemOf(1);
    EXPECT_FALSE(list->IsWifiFlag(&again));
}

TEST_F(ListWifi, OfANullItemIsNotSet) {
    EXPECT_FALSE(list->IsWifiFlag(nullptr));
    EXPECT_EQ(TakeLog(), (Log{"CSFileList IsWifiFlag start"})) << "and no tree is needed";
}

TEST_F(ListWifi, IsTheOnlyCustomBitWhateverItsNumber) {
    ListTwo();
    for (const int bit : {7, 0, -1}) {
        EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->SetCustomBitAll(bit, true), 0); }), Texts{});
        EXPECT_TRUE(InTree(0, 0).m_bWifi && InTree(0, 1).m_bWifi && InTree(1, 0).m_bWifi);
        EXPECT_EQ(list->SetCustomBitAll(bit, false), 0);
        EXPECT_FALSE(InTree(0, 0).m_bWifi || InTree(0, 1).m_bWifi || InTree(1, 0).m_bWifi);
    }
    EXPECT_EQ(TakeLog().front(), "CSFileList SetCustomBitAll start");
}

TEST_F(ListWifi, WithoutATreeOrAnItemIsFatal) {
    CSFileListItem item;
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetWifiFlag(&item, true); }),
                                NoTree("virtual int CSFileList::SetWifiFlag(CSFileListItem*, bool)")));
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetCustomBitAll(0, true); }),
                                NoTree("virtual int CSFileList::SetCustomBitAll(int, bool)")));
    ListTwo();
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { list->SetWifiFlag(nullptr, true); }),
                                NoItem("virtual int CSFileList::SetWifiFlag(CSFileListItem*, bool)")));
}

} // namespace
} // namespace dcftest
