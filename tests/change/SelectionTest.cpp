// The selection: list positions in the order in which a client selects them, kept by the file list alone.
#include "Change.h"

namespace dcftest {
namespace {

class Selection : public FileListTest {};

TEST_F(Selection, StartsEmpty) {
    EXPECT_EQ(list->GetSelCount(), 0);
    EXPECT_EQ(list->GetSelectIndecies(), Positions{});
    EXPECT_FALSE(list->IsSel(0));
}

TEST_F(Selection, HoldsEachPositionOnceInTheOrderOfSelection) {
    list->SetSel(3, true);
    list->SetSel(1, true);
    list->SetSel(3, true);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{3, 1}));
    EXPECT_EQ(list->GetSelCount(), 2);
    EXPECT_TRUE(list->IsSel(3));
    EXPECT_TRUE(list->IsSel(1));
    EXPECT_FALSE(list->IsSel(2));
}

TEST_F(Selection, CountsAPositionSelectedTwiceOnce) {
    list->SetSel(5, true);
    list->SetSel(5, true);
    EXPECT_EQ(list->GetSelCount(), 1);
}

TEST_F(Selection, LosesADeselectedPositionAndKeepsTheOrderOfTheRest) {
    for (const int position : {4, 9, 0, 7}) {
        list->SetSel(position, true);
    }
    list->SetSel(9, false);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{4, 0, 7}));
    list->SetSel(9, true);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{4, 0, 7, 9}));
}

TEST_F(Selection, IsLeftAloneByDeselectingWhatIsNotSelected) {
    list->SetSel(1, true);
    list->SetSel(2, false);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{1}));
}

TEST_F(Selection, TakesAnyNumberWithoutLookingAtTheList) {
    list->SetSel(-3, true);
    list->SetSel(1000000, true);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{-3, 1000000}));
    EXPECT_TRUE(list->IsSel(-3));
}

TEST_F(Selection, IsEmptiedByCancel) {
    list->SetSel(1, true);
    list->SetSel(2, true);
    list->SelectCancel();
    EXPECT_EQ(list->GetSelCount(), 0);
}

TEST_F(Selection, IsHandedOutAsACopy) {
    list->SetSel(1, true);
    Positions copy = list->GetSelectIndecies();
    copy.push_back(2);
    EXPECT_EQ(list->GetSelCount(), 1);
}

TEST_F(Selection, LogsEachOperationOnce) {
    list->SetSel(1, true);
    list->SetSel(1, false);
    (void)list->IsSel(1);
    (void)list->GetSelCount();
    (void)list->GetSelectIndecies();
    list->SelectCancel();
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetSel start", "CSFileList SetSel start", "CSFileList IsSel start",
                              "CSFileList GetSelCount start", "CSFileList GetSelectIndecies start",
                              "CSFileList SelectCancel start"}));
}

TEST_F(Selection, TouchesNeitherTheTreeNorTheCard) {
    card.AddFiles("100ABCDE", {DcfName(1)});
    ASSERT_EQ(List(), 1);
    const Texts before = EverythingIn(*list->m_pDCF);
    EXPECT_EQ(CallsOf(card,
                      [&] {
                          list->SetSel(0, true);
                          (void)list->IsSel(0);
                          (void)list->GetSelectIndecies();
                          list->SetSel(0, false);
                          list->SelectCancel();
                      }),
              Texts{});
    EXPECT_EQ(EverythingIn(*list->m_pDCF), before);
}

TEST_F(Selection, IsNotShiftedWhenTheListGrows) {
    card.AddFiles("100PHOTO", {DcfName(1)});
    ASSERT_EQ(List(), 1);
    list->SetSel(0, true);
    std::array<char, 396> out{};
    ASSERT_EQ(list->GetNewFileName(out.data(), FILE_TYPE_JPG), 0);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{0})) << "which is now the new file";
}

TEST_F(Selection, OutlivesEverythingButDeletionsAndBatches) {
    card.AddFiles("100PHOTO", {DcfName(2), DcfName(1)});
    ASSERT_EQ(List(), 2);
    list->SetSel(1, true);
    CSFileListItem item;
    std::array<char, 396> out{};
    ASSERT_EQ(list->GetFirst(&item), 0);
    ASSERT_EQ(list->SetProtect(&item, true), 0);
    ASSERT_EQ(list->SetProtectAll(false), 0);
    ASSERT_EQ(list->SetWifiFlag(&item, true), 0);
    ASSERT_EQ(list->SetCustomBitAll(0, true), 0);
    ASSERT_EQ(list->SetCurIndex(1), 0);
    ASSERT_EQ(list->GetNewFileName(out.data(), FILE_TYPE_JPG), 0);
    ASSERT_EQ(list->GetLatestFileName(out.data(), FILE_TYPE_SRW), 0);
    ASSERT_EQ(list->RenameDCFFullStorage(), 1);
    EXPECT_EQ(list->GetSelectIndecies(), (Positions{1}));
}

} // namespace
} // namespace dcftest
