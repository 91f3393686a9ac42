// Cards that lead the library astray: each is made on purpose, and the tool names the cause and the cure in one line
// instead of ending in an assertion.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Outcome;
using clitest::WarningLine;
using clitest::Words;
using dcftest::Card;

namespace {

constexpr char kRenameFolder[] = "give one of them a free number, for example by renaming it";

/// The paths that ls shows, without the root.
Words Shown(const Card& card) {
    Words names;
    for (const std::string& path : clitest::Lines(OnCard(card.Root(), {"ls", "--paths"}).out)) {
        names.push_back(path.substr(card.Dcim().size() + 1));
    }
    return names;
}

std::string SharedLine(const std::string& first, const std::string& second, const std::string& number) {
    return WarningLine("the folders '" + first + "' and '" + second + "' share the number " + number +
                       ", so the marks and details of their files cannot be had; " + kRenameFolder);
}

TEST(SharedNumber, ListsTheFilesWithoutDetailsAndTheOthersWithThem) {
    Card card;
    card.AddFiles("100BBBBB", {"KVR_0001.JPG", "KVR_0001.SRW"});
    card.AddFiles("100AAAAA", {"KVR_0002.MP4"});
    card.AddFiles("101ABCDE", {"KVR_0003.JPG"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.err, SharedLine("100BBBBB", "100AAAAA", "100"));
    const Words lines = clitest::Lines(run.out);
    ASSERT_EQ(lines.size(), 5U) << run.Describe();
    EXPECT_EQ(lines[1].substr(0, 29), "  0  JPG   -          --     ");
    EXPECT_EQ(lines[2].substr(0, 29), "  1  JPG   SRW        ??     ");
    EXPECT_EQ(lines[3].substr(0, 29), "  2  MP4   -          ??     ");
    EXPECT_EQ(lines[4], "3 files in the list: JPG 2, SRW 1, MP4 1 (a file with a companion counts under both kinds)");
}

TEST(SharedNumber, TakesNothingFromTheCount) {
    Card card;
    card.AddFile("100AAAAA", "KVR_0001.JPG").AddFile("100BBBBB", "KVR_0002.JPG");
    const Outcome run = OnCard(card.Root(), {"count"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, "2\n");
    EXPECT_EQ(run.err, "");
}

TEST(SharedNumber, ShowsAFileElsewhereWithoutAWordAboutIt) {
    Card card;
    card.AddFile("100AAAAA", "KVR_0001.JPG").AddFile("100BBBBB", "KVR_0002.JPG").AddFile("101ABCDE", "KVR_0003.JPG");
    const Outcome whole = OnCard(card.Root(), {"show", "0"});
    EXPECT_EQ(whole.exit, clitest::kSuccess);
    EXPECT_EQ(whole.err, "");
    const Outcome part = OnCard(card.Root(), {"show", "1"});
    EXPECT_EQ(part.exit, clitest::kPartial);
    EXPECT_EQ(part.err, SharedLine("100BBBBB", "100AAAAA", "100"));
    EXPECT_NE(part.out.find("  details    not to be had\n"), std::string::npos);
}

TEST(SharedNumber, TakesNothingFromTheBarePathsWhichNeedNoLookUp) {
    Card card;
    card.AddFile("100AAAAA", "KVR_0001.JPG").AddFile("100BBBBB", "KVR_0002.JPG");
    EXPECT_EQ(OnCard(card.Root(), {"ls"}).exit, clitest::kPartial);
    for (const char* bare : {"--paths", "--null"}) {
        const Outcome run = OnCard(card.Root(), {"ls", bare});
        EXPECT_EQ(run.exit, clitest::kSuccess) << bare;
        EXPECT_EQ(run.err, "") << bare;
    }
}

TEST(SharedNumber, CountsTheOtherNumbersThatAreShared) {
    Card card;
    for (const char* number : {"100", "101", "102"}) {
        card.AddFile(number + std::string("AAAAA"), "KVR_0001.JPG")
            .AddFile(number + std::string("BBBBB"), "KVR_0001.JPG");
    }
    EXPECT_NE(OnCard(card.Root(), {"ls"}).err.find("share the number 100 (and 2 more shared numbers), so"),
              std::string::npos);
}

TEST(SharedNumber, RefusesACardOnWhichTheListingItselfWouldBeFatal) {
    Card card;
    card.AddDir("100BBBBB");
    card.AddFile("100AAAAA", "KVR_0001.JPG");
    for (const Words& verb : {Words{"ls"}, {"count"}, {"show", "0"}}) {
        const Outcome run = OnCard(card.Root(), verb);
        EXPECT_EQ(run.exit, clitest::kRefused);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, ErrorLine("the card cannot be listed: '100BBBBB', which holds no listed file, and "
                                     "'100AAAAA' share the number 100; rename or remove the empty one"));
    }
    card.AddFile("101ABCDE", "KVR_0001.JPG"); // now another folder holds the first file
    EXPECT_EQ(OnCard(card.Root(), {"ls"}).exit, clitest::kPartial);
}

TEST(SharedNumber, CanBeTheOneOfCamera) {
    Card card;
    card.AddFile("0990ABCD", "KVR_0001.JPG").AddFile("Camera", "20240501_101010.JPG");
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.err, SharedLine("0990ABCD", "Camera", "99, the one of 'Camera'"));
    const Outcome without = OnCard(card.Root(), {"ls", "--no-camera"});
    EXPECT_EQ(without.exit, clitest::kSuccess);
    EXPECT_EQ(without.err, "");
}

TEST(SharedNumber, IsSeenInTheLibrarysOwnOrderOfFolders) {
    Card card; // a name behind "Camera" makes the order of the folders no strict one
    card.AddFile("Camera", "20240501_101010.JPG").AddFile("0990ABCD", "KVR_0001.JPG");
    card.AddDir("ZZZZZZZZ");
    card.AddDir("DDDDDDDD");
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial) << run.Describe();
    EXPECT_EQ(clitest::Lines(run.err).size(), 1U);
}

TEST(FolderLeftOut, IsNamedWithTheFolderThatKeepsItOut) {
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG").AddFile("100ABCDE", "KVR_0002.JPG");
    for (const char* verb : {"ls", "count"}) {
        const Outcome run = OnCard(card.Root(), {verb});
        EXPECT_EQ(run.exit, clitest::kPartial);
        EXPECT_EQ(run.err, WarningLine(std::string("the folder '100ABCDE' is not listed: '100PHOTO' has the number "
                                                   "100 too; ") +
                                       kRenameFolder));
    }
    EXPECT_EQ(Shown(card), (Words{"100PHOTO/KVR_0001.JPG"}));
}

TEST(FileNumberZero, IsNamedWhereItIsNotListed) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0000.JPG", "KVR_0000.SRW", "ABC_0000.MP4"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.out, "0 files in the list\n");
    EXPECT_EQ(run.err, WarningLine("file numbers begin with 1, and 0 is the number of '100ABCDE/KVR_0000.JPG' (and 2 "
                                   "more files), 3 not listed; rename with a number of 1 or more"));
}

TEST(FileNumberZero, IsNamedWhereBrowsingStopsAtIt) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0000.JPG", "KVR_0001.JPG"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, WarningLine("file numbers begin with 1, and 0 is the number of '100ABCDE/KVR_0000.JPG', where "
                                   "browsing stops; rename with a number of 1 or more"));
    EXPECT_EQ(Shown(card), (Words{"100ABCDE/KVR_0001.JPG", "100ABCDE/KVR_0000.JPG"}));
}

TEST(FileNumberZero, InCameraIsMidnightAndHarmlessWhereItIsListed) {
    Card card;
    card.AddFiles("Camera", {"20240501_101010.JPG", "20240502_000000.JPG"});
    EXPECT_EQ(OnCard(card.Root(), {"ls"}).err, "");
    Card first;
    first.AddFiles("Camera", {"20240501_000000.JPG", "20240502_101010.JPG"});
    const Outcome run = OnCard(first.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.err, WarningLine("file numbers begin with 1, and 0 is the number of 'Camera/20240501_000000.JPG', 1 "
                                   "not listed; rename with a number of 1 or more"));
    EXPECT_EQ(Shown(first), (Words{"Camera/20240502_101010.JPG"}));
}

TEST(FileNumberZero, DoesNoHarmInAFolderWithTheNumberOfCameraWhereItIsListed) {
    Card card;
    card.AddFiles("0990ABCD", {"KVR_0000.JPG", "KVR_0001.JPG"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(Shown(card), (Words{"0990ABCD/KVR_0001.JPG", "0990ABCD/KVR_0000.JPG"}));
    Card alone;
    alone.AddFile("0990ABCD", "KVR_0000.JPG");
    EXPECT_EQ(OnCard(alone.Root(), {"ls"}).exit, clitest::kPartial) << "not listed";
}

TEST(CameraDigits, AreMissedInNamesThatCannotBeNumbered) {
    Card card;
    card.AddFiles("Camera",
                  {"IMG_2024-ABCDEF.JPG", "IMG_2024-ABCDEG.JPG", "20240501_-00123.JPG", "20240501_101010.JPG"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.err, WarningLine("characters 10 to 15 of a name in 'Camera' are its number and are not six digits in "
                                   "'Camera/IMG_2024-ABCDEG.JPG' (and 2 more files), 1 not listed; rename like "
                                   "20240501_123456.JPG"));
    EXPECT_EQ(Shown(card),
              (Words{"Camera/20240501_-00123.JPG", "Camera/20240501_101010.JPG", "Camera/IMG_2024-ABCDEF.JPG"}));
    EXPECT_EQ(OnCard(card.Root(), {"ls", "--no-camera"}).err, "");
}

TEST(CameraDigits, AreOnlyRemarkedWhereEveryFileIsListed) {
    Card card;
    card.AddFiles("Camera", {"20240501_12345A.JPG"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(clitest::Lines(run.err).size(), 1U);
    EXPECT_EQ(Shown(card), (Words{"Camera/20240501_12345A.JPG"}));
}

TEST(FullList, IsToldApartFromAWholeCard) {
    setenv("TMPDIR", "/dev/shm", 1); // in memory where there is room: making so many files takes long on a disk
    Card card;
    card.Fill(11, 9100);
    const Outcome run = OnCard(card.Root(), {"count"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    EXPECT_EQ(run.out, "100000\n");
    EXPECT_EQ(run.err, WarningLine("there are 100100 files to list, and the list stops at 100000; move some of them to "
                                   "another card"));
}

TEST(HarmlessCard, GivesNoWarning) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "kvr_0002.jpg", "NOTES.TXT", "KVR_0003.JPEG", "AB-D0004.AVI"});
    card.AddFile("099ABCDE", "KVR_0001.JPG").AddFile("1000ABCD", "KVR_0001.JPG").AddFile("notes", "KVR_0001.JPG");
    card.AddFile("CAMERA", "20240501_ABCDEF.JPG");
    card.AddFiles("Camera", {"20240501_101010.JPG", "20240501_101011.SRW", "KVR_0001.JPG", "20240501_ABCDEF.MP4"});
    const Outcome run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(Shown(card), (Words{"100ABCDE/AB-D0004.AVI", "100ABCDE/KVR_0002.JPG", "100ABCDE/KVR_0001.JPG",
                                  "Camera/20240501_101010.JPG", "Camera/20240501_101011.SRW"}));
}

} // namespace
