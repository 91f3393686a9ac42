// Deletion, new names and renumbering on a real card. What is compared was read after the card was mounted again.
#include "MountedCard.h"

namespace dcftest {
namespace {

class CardDeletion : public MountedCardTest {};

TEST_F(CardDeletion, TakesFileCompanionAndTheEmptiedDirectory) {
    card->AddFiles("101ABCDE", {DcfName(7), DcfName(7, "SRW")}).AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
    ASSERT_EQ(List(), 3);
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->Delete(&item), 0);
    EXPECT_EQ(list->GetCount(), 2);
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100ABCDE/KVR_0001.JPG", "100ABCDE/KVR_0002.JPG"}));
    EXPECT_EQ(card->DirNames(), (Texts{"100ABCDE"}));
    EXPECT_EQ(List(), 2);
}

TEST_F(CardDeletion, KeepsADirectoryWithForeignFiles) {
    card->AddFiles("100ABCDE", {DcfName(1), "notes.txt"}).AddFiles("101ABCDE", {DcfName(1), ".hidden"});
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(list->DeleteAll(), 0);
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100ABCDE/notes.txt", "101ABCDE/.hidden"}));
}

TEST_F(CardDeletion, OfASelectionTakesExactlyThat) {
    card->Fill(1, 20);
    ASSERT_EQ(List(), 20);
    Texts left;
    for (int position = 0; position < 20; ++position) {
        list->SetSel(position, position % 3 != 0);
    }
    for (int number = 1; number <= 20; ++number) {
        if ((20 - number) % 3 == 0) {
            left.push_back("100ABCDE/" + DcfName(number));
        }
    }
    EXPECT_EQ(list->DeleteSel(), 0);
    Mount("");
    EXPECT_EQ(CardFiles(*card), left);
    EXPECT_EQ(List(), 7);
}

TEST_F(CardDeletion, OfEverythingLeavesAnEmptyDcim) {
    card->Fill(3, 4).AddFiles("Camera", {CameraName(1)}).AddDir("500EMPTY");
    ASSERT_EQ(List(), 13);
    EXPECT_EQ(list->DeleteAll(), 0);
    Mount("");
    EXPECT_EQ(card->DirNames(), Texts{});
    EXPECT_EQ(List(), 0);
}

TEST_F(CardDeletion, FindsAFileInAnyCase) {
    card->AddFiles("100ABCDE", {"kvr_0002.jpg", "Kvr_0001.Jpg"});
    ASSERT_EQ(List(), 2);
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(Relative(*card, item.m_strURI), "100ABCDE/KVR_0002.JPG") << "the list has it in capitals";
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    Mount("");
    EXPECT_EQ(card->Mode("100ABCDE", "kvr_0002.jpg"), 0555U);
    ASSERT_EQ(List(), 2);
    item = ItemOf(1);
    EXPECT_EQ(list->Delete(&item), 0);
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100ABCDE/kvr_0002.jpg"}));
}

class CardNames : public MountedCardTest {
protected:
    /// Takes a name and writes the picture.
    std::string Record() {
        const std::string path = NextName();
        EXPECT_EQ(Write(path), 0) << path;
        return path;
    }
};

TEST_F(CardNames, StartOnAnEmptyCardAndGoOnAfterwards) {
    ASSERT_EQ(List(), 0);
    EXPECT_EQ(Record(), "100PHOTO/KVR_0001.JPG");
    EXPECT_EQ(Record(), "100PHOTO/KVR_0002.JPG");
    Mount("");
    EXPECT_EQ(CardTexts(*card), (Texts{"100PHOTO/ 0755", "100PHOTO/KVR_0001.JPG 0755", "100PHOTO/KVR_0002.JPG 0755"}));
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(Record(), "100PHOTO/KVR_0003.JPG");
}

TEST_F(CardNames, GoOnInANewDirectoryBehindTheLastNumber) {
    card->AddFiles("100PHOTO", {DcfName(9999)});
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(Record(), "101PHOTO/KVR_0001.JPG");
    Mount("");
    EXPECT_EQ(card->DirNames(), (Texts{"100PHOTO", "101PHOTO"}));
    EXPECT_EQ(List(), 2);
}

TEST_F(CardNames, OfBothColoursShareTheNumbers) {
    ASSERT_EQ(List(), 0);
    EXPECT_EQ(Record(), "100PHOTO/KVR_0001.JPG");
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    EXPECT_EQ(Record(), "100PHOTO/_KVR0002.JPG");
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100PHOTO/KVR_0001.JPG", "100PHOTO/_KVR0002.JPG"}));
    EXPECT_EQ(List(), 2);
}

TEST_F(CardNames, MadeFromTheDateAreListedAgain) {
    ASSERT_EQ(List(), 0);
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    const std::string path = Record();
    EXPECT_EQ(path.substr(0, 4), "100_");
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{path}));
    EXPECT_EQ(List(), 1);
    EXPECT_EQ(Relative(*card, ItemOf(0).m_strURI), path);
}

class CardRenumbering : public MountedCardTest {
protected:
    /// Renumbers. @return what was printed.
    std::string Renumber() {
        return Printed([&] { EXPECT_EQ(list->RenameDCFFullStorage(), 1); });
    }
};

TEST_F(CardRenumbering, OntoFreeNumbersKeepsEveryFile) {
    card->AddFiles("999CCCCC", {DcfName(3)}).AddFiles("500BBBBB", {DcfName(2)}).AddFiles("200AAAAA", {DcfName(1)});
    ASSERT_EQ(List(), 3);
    EXPECT_EQ(Renumber(), "");
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100CCCCC/KVR_0003.JPG", "101BBBBB/KVR_0002.JPG", "102AAAAA/KVR_0001.JPG"}));
}

TEST_F(CardRenumbering, OntoAnEmptyDirectoryReplacesIt) {
    card->AddFiles("101ABCDE", {DcfName(2)}).AddDir("100ABCDE");
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(Renumber(), "");
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"101ABCDE/KVR_0002.JPG"})) << "there and back";
    EXPECT_EQ(card->DirNames(), (Texts{"101ABCDE"}));
}

TEST_F(CardRenumbering, OntoAFullDirectoryLeavesBoth) {
    card->AddFiles("101ABCDE", {DcfName(2)}).AddFiles("100ABCDE", {DcfName(1)});
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(Renumber(), "rename fail\nrename fail\n");
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100ABCDE/KVR_0001.JPG", "101ABCDE/KVR_0002.JPG"}));
}

TEST_F(CardRenumbering, OntoADirectoryThatDiffersInCaseAloneLeavesBoth) {
    card->AddFiles("300abcde", {DcfName(2)}).AddFiles("100ABCDE", {DcfName(1)});
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(Renumber(), "rename fail\n") << "100abcde is 100ABCDE here";
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"101ABCDE/KVR_0001.JPG", "300abcde/KVR_0002.JPG"}));
}

TEST_F(CardRenumbering, MakesRoomForFurtherNames) {
    card->AddFiles("999PHOTO", {DcfName(9999)}).AddFiles("998PHOTO", {DcfName(5)});
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(NextName(), "-1");
    EXPECT_EQ(Renumber(), "");
    EXPECT_EQ(NextName(), "101PHOTO/KVR_0006.JPG");
    Mount("");
    EXPECT_EQ(card->DirNames(), (Texts{"100PHOTO", "101PHOTO"}));
}

} // namespace
} // namespace dcftest
