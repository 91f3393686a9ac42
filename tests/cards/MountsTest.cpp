// What else a mount decides: the case in which names are listed, the times, whether anything can be changed at all, and
// what is left of the card's room.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "MountedCard.h"

namespace dcftest {
namespace {

class LowerCase : public MountedCardTest {};

TEST_F(LowerCase, OnTheCardItselfIsListedAsWrittenAndWorkedWith) {
    card->AddFiles("100photo", {"kvr_0001.jpg"});
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(Relative(*card, ItemOf(0).m_strURI), "100photo/KVR_0001.JPG");
    EXPECT_EQ(NextName(), "101PHOTO/KVR_0001.JPG") << "\"photo\" is another suffix";
    Mount("");
    EXPECT_EQ(card->DirNames(), (Texts{"100photo", "101PHOTO"}));
}

class ShortNames : public MountedCardTest {
protected:
    /// Names of the card as a mount with that option lists them; on exFAT, which has no such option, nothing.
    Texts ListedWith(const std::string& option) {
        Mount("shortname=" + option);
        Texts names = card->Names("100PHOTO");
        const Texts dirs = card->DirNames();
        names.insert(names.begin(), dirs.begin(), dirs.end());
        return names;
    }
};

TEST_F(ShortNames, KeepTheirCaseUnlessTheMountMakesThemSmall) {
    card->AddFiles("100PHOTO", {DcfName(1)});
    if (!IsFat()) {
        EXPECT_THROW(Mount("shortname=lower"), std::system_error);
        return;
    }
    const Texts asWritten = {"100PHOTO", "KVR_0001.JPG"};
    EXPECT_EQ(ListedWith("mixed"), asWritten);
    EXPECT_EQ(ListedWith("winnt"), asWritten);
    EXPECT_EQ(ListedWith("win95"), asWritten);
    EXPECT_EQ(ListedWith("lower"), (Texts{"100photo", "kvr_0001.jpg"}));
}

TEST_F(ShortNames, InSmallLettersAreListedProtectedAndDeletedAllTheSame) {
    if (!IsFat()) {
        EXPECT_THROW(Mount("shortname=lower"), std::system_error);
        return;
    }
    card->AddFiles("100PHOTO", {DcfName(3), DcfName(2), DcfName(2, "SRW"), DcfName(1)});
    Mount("shortname=lower");
    ASSERT_EQ(List(), 3);
    EXPECT_EQ(Relative(*card, ItemOf(1).m_strURI), "100photo/KVR_0002.JPG");
    EXPECT_EQ(Relative(*card, ItemOf(1).m_strObject), "100photo/KVR_0002.SRW");
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    item = ItemOf(1);
    EXPECT_EQ(list->Delete(&item), 0);
    Mount("");
    EXPECT_EQ(CardTexts(*card), (Texts{"100PHOTO/ 0755", "100PHOTO/KVR_0001.JPG 0755", "100PHOTO/KVR_0003.JPG 0555"}));
}

TEST_F(ShortNames, InSmallLettersMakeEveryListingRecordInAFurtherDirectory) {
    if (!IsFat()) {
        EXPECT_THROW(Mount("shortname=lower"), std::system_error);
        return;
    }
    card->AddFiles("100PHOTO", {DcfName(7)});
    for (const char* expected : {"101PHOTO/KVR_0001.JPG", "102PHOTO/KVR_0001.JPG"}) {
        Mount("shortname=lower");
        ASSERT_GT(List(), 0);
        const std::string path = NextName();
        EXPECT_EQ(path, expected);
        EXPECT_EQ(Write(path), 0);
    }
    Mount("shortname=mixed");
    ASSERT_EQ(List(), 3);
    EXPECT_EQ(NextName(), "102PHOTO/KVR_0002.JPG") << "as it is to be";
}

TEST_F(ShortNames, AreFoundByAMountThatTellsCasesApartUnlessItMakesThemSmall) {
    if (!IsFat()) {
        EXPECT_THROW(Mount("check=s"), std::system_error);
        return;
    }
    card->AddFiles("100PHOTO", {DcfName(3), "kvr_0002.jpg", "kvr_0001.jpg"});
    Mount("check=s");
    ASSERT_EQ(List(), 3);
    EXPECT_EQ(list->SetProtectAll(true), 0);
    CSFileListItem item = ItemOf(2);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    item = ItemOf(2);
    EXPECT_EQ(list->Delete(&item), 0);
    Mount("");
    const Texts left = {"100PHOTO/ 0755", "100PHOTO/KVR_0003.JPG 0555", "100PHOTO/kvr_0002.jpg 0555"};
    EXPECT_EQ(CardTexts(*card), left) << "a small name has a short form in capitals";

    Mount("shortname=lower,check=s");
    EXPECT_EQ(List(), 0) << "even \"DCIM\" is not found";
    Mount("");
    EXPECT_EQ(CardTexts(*card), left) << "nor made a second time";
}

class CardTimes : public MountedCardTest {
protected:
    /// The listed time of a file that was given that time.
    std::time_t Listed(std::time_t time) {
        if (card->Exists("100ABCDE", DcfName(1))) {
            card->Remove("100ABCDE", DcfName(1));
        }
        card->AddFile("100ABCDE", DcfName(1), {"", 0644, time});
        Mount("");
        EXPECT_EQ(List(), 1);
        return ItemOf(0).m_nFileTime;
    }
};

TEST_F(CardTimes, AreEvenSecondsOnFatAndWholeOnesOnExfat) {
    constexpr std::time_t kOdd = 1700000001;
    EXPECT_EQ(Listed(kOdd), IsFat() ? kOdd - 1 : kOdd);
    EXPECT_EQ(Listed(kOdd + 1), kOdd + 1);
}

TEST_F(CardTimes, BeginWithTheYear1980) {
    constexpr std::time_t kStartOf1980 = 315532800;
    EXPECT_EQ(Listed(1), kStartOf1980);
    EXPECT_EQ(Listed(kStartOf1980 + 2), kStartOf1980 + 2);
}

TEST_F(CardTimes, GoBeyondTheLastSecondOf31Bits) {
    constexpr std::time_t kIn2040 = 2208988800;
    EXPECT_EQ(static_cast<std::uint32_t>(Listed(kIn2040)), static_cast<std::uint32_t>(kIn2040));
}

class ReadOnlyMount : public MountedCardTest {
protected:
    void SetUp() override {
        MountedCardTest::SetUp();
        if (!card) {
            return;
        }
        card->AddFiles("101PHOTO", {DcfName(9999)}).AddFiles("100PHOTO", {DcfName(2), DcfName(1)});
        card->SetMode("100PHOTO", DcfName(2), 0555);
        Mount("ro");
        before = CardTexts(*card);
        ASSERT_EQ(List(), 3);
    }

    Texts before;
};

TEST_F(ReadOnlyMount, IsListedWithItsProtection) {
    EXPECT_FALSE(Protected(0));
    EXPECT_TRUE(Protected(1));
    EXPECT_FALSE(Protected(2));
    EXPECT_EQ(Relative(*card, ItemOf(1).m_strURI), "100PHOTO/KVR_0002.JPG");
}

TEST_F(ReadOnlyMount, RefusesDeletionAndTheListShowsItAgainLater) {
    CSFileListItem item = ItemOf(2);
    EXPECT_EQ(list->Delete(&item), 0);
    EXPECT_EQ(list->GetCount(), 2) << "the list believes it";
    list->SetSel(0, true);
    EXPECT_EQ(list->DeleteSel(), 0);
    EXPECT_EQ(CardTexts(*card), before);
    EXPECT_EQ(List(), 3);
    EXPECT_EQ(list->DeleteAll(), 0);
    EXPECT_EQ(list->GetCount(), 3);
    EXPECT_EQ(CardTexts(*card), before);
}

TEST_F(ReadOnlyMount, RefusesProtectionAndTheListShowsItLater) {
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    EXPECT_TRUE(Protected(0)) << "the list believes it";
    EXPECT_EQ(CardTexts(*card), before);
    ASSERT_EQ(List(), 3);
    EXPECT_FALSE(Protected(0));
}

TEST_F(ReadOnlyMount, NamesAFileInADirectoryThatCannotBeMade) {
    std::string path;
    EXPECT_NE(Printed([&] { path = NextName(); }).find("make directory fail"), std::string::npos);
    EXPECT_EQ(path, "102PHOTO/KVR_0001.JPG");
    EXPECT_EQ(Write(path), ENOENT);
    EXPECT_EQ(CardTexts(*card), before);
}

TEST_F(ReadOnlyMount, RefusesRenumbering) {
    EXPECT_EQ(Printed([&] { EXPECT_EQ(list->RenameDCFFullStorage(), 1); }), "rename fail\nrename fail\n");
    EXPECT_EQ(CardTexts(*card), before);
    EXPECT_EQ(list->GetCount(), 3);
}

TEST_F(ReadOnlyMount, WithoutDcimIsEmpty) {
    Mount("");
    std::filesystem::remove_all(card->Dcim());
    Mount("ro");
    EXPECT_EQ(List(), 0);
    EXPECT_FALSE(std::filesystem::exists(card->Dcim()));
}

class FullCard : public MountedCardTest {
protected:
    FullCard() : MountedCardTest(kSmallCardDevice) {}

    /// Nothing more fits: not a byte, not a folder.
    void FillUp() {
        const int fd = ::open((card->Root() + "/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_GE(fd, 0);
        for (std::size_t size = 1U << 20U; size >= 512; size /= 2) {
            const std::string piece(size, 'x');
            while (::write(fd, piece.data(), piece.size()) == static_cast<ssize_t>(piece.size())) {
            }
        }
        ASSERT_EQ(errno, ENOSPC);
        ASSERT_EQ(::close(fd), 0);
    }
};

TEST_F(FullCard, GivesANameAndTheClientMeetsTheLackOfRoom) {
    card->AddFiles("100PHOTO", {DcfName(1)});
    FillUp();
    ASSERT_EQ(List(), 1);
    const std::string path = NextName();
    EXPECT_EQ(path, "100PHOTO/KVR_0002.JPG");
    EXPECT_EQ(Write(path), ENOSPC);
    // What a client does then.
    CSFileListItem item;
    ASSERT_EQ(list->GetCurrent(&item), 0);
    EXPECT_EQ(Relative(*card, item.m_strURI), path);
    EXPECT_EQ(list->Delete(&item), 0);
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{"100PHOTO/KVR_0001.JPG"}));
}

TEST_F(FullCard, HasNoRoomForADirectoryAndSaysSo) {
    card->AddFiles("100PHOTO", {DcfName(9999)});
    FillUp();
    ASSERT_EQ(List(), 1);
    std::string path;
    EXPECT_NE(Printed([&] { path = NextName(); }).find("make directory fail"), std::string::npos);
    EXPECT_EQ(path, "101PHOTO/KVR_0001.JPG");
    EXPECT_EQ(Write(path), ENOENT);
    EXPECT_EQ(card->DirNames(), (Texts{"100PHOTO"}));
}

TEST_F(FullCard, TakesAPictureAgainAfterADeletion) {
    card->AddFile("100PHOTO", DcfName(1), {std::string(100000, 'p'), 0644, {}});
    FillUp();
    ASSERT_EQ(List(), 1);
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->Delete(&item), 0);
    const std::string path = NextName();
    EXPECT_EQ(Write(path, 50000), 0) << path;
    Mount("");
    EXPECT_EQ(CardFiles(*card), (Texts{path}));
}

TEST_F(FullCard, IsProtectedAndRenumbered) {
    card->AddFiles("300PHOTO", {DcfName(1)}).AddFiles("200PHOTO", {DcfName(1)});
    FillUp();
    ASSERT_EQ(List(), 2);
    EXPECT_EQ(list->SetProtectAll(true), 0);
    EXPECT_EQ(Printed([&] { EXPECT_EQ(list->RenameDCFFullStorage(), 1); }), "");
    Mount("");
    EXPECT_EQ(CardTexts(*card),
              (Texts{"100PHOTO/ 0755", "100PHOTO/KVR_0001.JPG 0555", "101PHOTO/ 0755", "101PHOTO/KVR_0001.JPG 0555"}));
}

} // namespace
} // namespace dcftest
