// The shell on awkward cards: listing, browsing and changing stop where they would be fatal, with the cause.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::Joined;
using clitest::Outcome;
using clitest::Shell;
using clitest::WarningLine;
using clitest::Words;
using dcftest::Card;

namespace {

std::string Shared(const char* end) {
    return std::string("the folders '100BBBBB' and '100AAAAA' share the number 100, so the marks and details of their "
                       "files cannot be had; give one of them a free number, for example by renaming it") +
           end;
}

/// Two folders of one number with a file each.
void FillShared(Card& card) {
    card.AddFile("100BBBBB", "KVR_0001.JPG").AddFile("100AAAAA", "KVR_0002.JPG");
}

TEST(ShellOnSharedNumbers, WarnsAndRefusesOnlyWhatWouldBeFatal) {
    Card card;
    FillShared(card);
    const Outcome run = Shell(card.Root(), {"Listup", "GetAt 0", "GetAtSimply 1", "GetAt 1", "GetNext", "SetCurIndex 1",
                                            "GetLast", "GetCount"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.err, WarningLine(Shared("")) + ErrorLine("line 4: GetAt: " + Shared("")) +
                           ErrorLine("line 5: GetNext: " + Shared("")) +
                           ErrorLine("line 6: SetCurIndex: " + Shared("")) +
                           ErrorLine("line 7: GetLast: " + Shared("")));
    EXPECT_EQ(clitest::Lines(run.out).back(), "GetCount = 2");
}

TEST(ShellOnSharedNumbers, ChangesNoFileThatTheListCouldConfuse) {
    Card card;
    card.AddFile("100BBBBB", "KVR_0001.JPG").AddFile("100AAAAA", "KVR_0001.JPG"); // the look-up finds the first one
    const auto before = clitest::Snapshot(card.Root());
    for (const char* line : {"Delete", "SetProtect true", "DeleteAll"}) {
        const Outcome run = Shell(card.Root(), {"Listup", "GetAt 1", line, "GetCount"});
        EXPECT_EQ(run.exit, clitest::kRefused) << line;
        EXPECT_NE(run.err.find(std::string("line 3: ") + std::string(line).substr(0, std::string(line).find(' ')) +
                               ": the folders '100BBBBB' and '100AAAAA' share the number 100"),
                  std::string::npos)
            << run.err;
        EXPECT_EQ(clitest::Lines(run.out).back(), "GetCount = 2");
    }
    const Outcome selected = Shell(card.Root(), {"Listup", "SetSel 0 true", "DeleteSel"});
    EXPECT_EQ(selected.exit, clitest::kRefused);
    EXPECT_EQ(clitest::Snapshot(card.Root()), before);
}

TEST(ShellOnSharedNumbers, RefusesAListingThatWouldBeFatalAndGoesOn) {
    Card card;
    card.AddDir("100BBBBB");
    card.AddFile("100AAAAA", "KVR_0002.JPG");
    const Outcome run = Shell(card.Root(), {"Listup", "GetFirst", "GetSelCount"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.err, ErrorLine("line 1: Listup: the card cannot be listed: '100BBBBB', which holds no listed file, "
                                 "and '100AAAAA' share the number 100; rename or remove the empty one"));
    EXPECT_EQ(run.out, "GetFirst = -1\nGetSelCount = 0\n");
}

TEST(ShellOnFileNumberZero, TellsWhereTheCursorIsStuckAndHowToMoveOn) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0000.JPG", "KVR_0001.JPG"});
    const std::string stuck = "the cursor stands on '" + card.Path("100ABCDE", "KVR_0000.JPG") +
                              "', whose file number is 0; move it away with GetFirst, GetLast or SetCurIndex";
    const Outcome run =
        Shell(card.Root(), {"Listup", "GetLast", "GetNext", "GetPrev", "GetCurrent", "GetFirst", "GetCurIndex"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(clitest::Lines(run.err).size(), 4U) << run.err;
    for (const char* error : {"line 3: GetNext: ", "line 4: GetPrev: ", "line 5: GetCurrent: "}) {
        EXPECT_NE(run.err.find(ErrorLine(error + stuck)), std::string::npos) << run.err;
    }
    EXPECT_EQ(clitest::Lines(run.out).back(), "GetCurIndex = 0");
}

TEST(ShellOnCamera, TellsThatANegativeNumberHoldsTheCursor) {
    Card card;
    card.AddFile("Camera", "20240501_-00123.JPG");
    const Outcome run = Shell(card.Root(), {"Listup", "GetCurrent", "GetCount"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_NE(run.err.find(ErrorLine("line 2: GetCurrent: the cursor stands on '" +
                                     card.Path("Camera", "20240501_-00123.JPG") +
                                     "', whose file number is -123; move it away with GetFirst, GetLast or "
                                     "SetCurIndex")),
              std::string::npos)
        << run.err;
    EXPECT_EQ(clitest::Lines(run.out).back(), "GetCount = 1");
}

TEST(ShellListup, RefusesARootThatItCannotUse) {
    Card good;
    good.AddFile("100ABCDE", "KVR_0001.JPG");
    Card file;
    std::ofstream(file.Dcim()).flush();
    Card cut(80);
    cut.AddFile("100ABCDE", "KVR_0001.JPG");
    Card longCamera(70);
    longCamera.AddFile("Camera", "20240501_101010.JPG");
    const std::string camera = good.Root() + "/Camera";
    const struct {
        std::string root;
        std::string error;
    } rows[] = {
        {good.Root() + "/no",
         "there is no card at '" + good.Root() + "/no'; mount it there, or name its folder with --card DIR"},
        {file.Root(), "'" + file.Dcim() + "' is not a folder; move it away, or name the right card with --card DIR"},
        {cut.Root(),
         "the path of the card has 80 characters, and with more than 71 the paths of its files would be cut "
         "at 98; go there with cd '" +
             cut.Root() + "' and use --card ."},
        {longCamera.Root(), "the path of the card has 70 characters, and with more than 66 the paths of the files in "
                            "'Camera' would be cut at 98; leave 'Camera' out, or go there with cd '" +
                                longCamera.Root() + "' and use --card ."},
    };
    for (const auto& row : rows) {
        const Outcome run =
            Shell(good.Root(), {"SetBaseURI " + row.root, "Listup", "SetBaseURI " + good.Root(), "Listup"});
        EXPECT_EQ(run.err, ErrorLine("line 2: Listup: " + row.error));
        EXPECT_EQ(run.out, Joined({"SetBaseURI = 0", "SetBaseURI = 0", "Listup = 1"}));
    }
    const Outcome without = Shell(longCamera.Root(), {"IncludeNonDCF false", "Listup"});
    EXPECT_EQ(without.exit, clitest::kSuccess) << without.Describe();
}

TEST(ShellGetNewFileName, TakesNumbersInFoldersThatItMadeItself) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = Shell(card.Root(), {"Listup", "GetNewFileName JPG", "GetNewFileName JPG", "GetCount"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.out,
              Joined({"Listup = 1", "GetNewFileName = 0", "  path       " + card.Path("101PHOTO", "KVR_0001.JPG"),
                      "GetNewFileName = 0", "  path       " + card.Path("101PHOTO", "KVR_0002.JPG"), "GetCount = 3"}));
}

TEST(ShellChanges, WorkOnTheItemThatWasFilledLast) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG"});
    const Outcome run = Shell(card.Root(), {"Listup", "GetAt 1", "SetProtect true", "Delete", "GetAt 1", "Delete",
                                            "GetAt 2", "Delete", "GetCount"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(card.Mode("100ABCDE", "KVR_0002.JPG"), 0444U) << "protected before the first Delete, whose item is older";
    EXPECT_EQ(card.Names("100ABCDE"), (Words{"KVR_0002.JPG", "KVR_0003.JPG"}));
}

} // namespace
