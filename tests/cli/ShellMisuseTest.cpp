// What would be fatal in the interface costs the shell one clear line: it goes on, and nothing of the library's own
// complaint reaches the person.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::Joined;
using clitest::Outcome;
using clitest::Shell;
using clitest::Words;
using dcftest::Card;

namespace {

void FillSmall(Card& card) {
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG"});
}

/// One line on standard error for the last line of the script, and the shell still runs behind it.
void ExpectRefused(const Card& card, Words lines, const std::string& error) {
    const std::size_t number = lines.size();
    lines.emplace_back("GetSeriesMode");
    const Outcome run = Shell(card.Root(), lines);
    EXPECT_EQ(run.exit, clitest::kRefused) << run.Describe();
    EXPECT_EQ(run.err, ErrorLine("line " + std::to_string(number) + ": " + error));
    EXPECT_EQ(clitest::Lines(run.out).back(), "GetSeriesMode = false") << run.Describe();
    EXPECT_EQ(run.out.find("assert"), std::string::npos);
}

TEST(Misuse, BeforeListupIsTold) {
    Card card;
    FillSmall(card);
    for (const std::string& line : {std::string("GetCount"), std::string("GetCurIndex"),
                                    "AddPhotoMetadata " + card.Path("100ABCDE", "KVR_0001.JPG")}) {
        ExpectRefused(card, {line},
                      line.substr(0, line.find(' ')) + ": the card is not listed yet; Listup comes first");
    }
    for (const char* line :
         {"DeleteAll", "DeleteSel", "SetProtectAll true", "SetProtectSel true", "SetProtectSelToggle",
          "SetCustomBitAll 0 true", "GetAvailNumOfPhoto", "RenameDCFFullStorage"}) {
        const std::string name = std::string(line).substr(0, std::string(line).find(' '));
        ExpectRefused(card, {line}, name + ": the card is not listed yet; Listup comes first");
    }
}

TEST(Misuse, OfListupTwiceIsTold) {
    Card card;
    FillSmall(card);
    ExpectRefused(card, {"Listup", "Listup"},
                  "Listup: the card is listed already, once for each file list; Create makes a new one");
}

TEST(Misuse, OfADestroyedListIsTold) {
    Card card;
    FillSmall(card);
    const Outcome run =
        Shell(card.Root(), {"Listup", "Destroy", "GetCount", "Listup", "SetSel 1 true", "Create", "Listup"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.err, ErrorLine("line 3: GetCount: there is no file list; Create makes one") +
                           ErrorLine("line 4: Listup: there is no file list; Create makes one") +
                           ErrorLine("line 5: SetSel: there is no file list; Create makes one"));
    EXPECT_EQ(clitest::Lines(run.out).back(), "Listup = 2");
}

TEST(Misuse, OfPositionsIsTold) {
    Card card;
    FillSmall(card);
    for (const char* operation : {"GetAt", "GetAtSimply", "SetCurIndex"}) {
        for (const char* position : {"2", "-1", "2147483647", "-2147483648"}) {
            ExpectRefused(card, {"Listup", std::string(operation) + " " + position},
                          std::string(operation) + ": there is no position " + position + "; the list has 0 to 1");
        }
    }
}

TEST(Misuse, OfPathsIsTold) {
    Card card;
    FillSmall(card);
    for (const char* operation : {"SetCur", "GetInfo", "AddPhotoMetadata"}) {
        for (const std::string& path :
             {std::string("x"), std::string("''"), card.Path("100ABCDE", "KVR_0009.JPG"),
              card.Path("999ABCDE", "KVR_0001.JPG"), card.Path("Camera", "20240501_101010.JPG"), card.Root(),
              std::string(300, 'x')}) {
            ExpectRefused(card, {"Listup", std::string(operation) + " " + path},
                          std::string(operation) + ": the list has no file '" + (path == "''" ? "" : path) +
                              "'; GetAt shows paths as it has them");
        }
    }
    ExpectRefused(card, {"Listup", "GetFileListIndex " + card.Path("100ABCDE", "KVR_0009.JPG")},
                  "GetFileListIndex: the list has no file '" + card.Path("100ABCDE", "KVR_0009.JPG") +
                      "'; GetAt shows paths as it has them");
}

TEST(Misuse, OfNullIsTold) {
    Card card;
    FillSmall(card);
    for (const char* line :
         {"GetFirst null", "GetCurrent null", "GetAt 0 null", "SetCur null", "AddPhotoMetadata null"}) {
        const std::string name = std::string(line).substr(0, std::string(line).find(' '));
        ExpectRefused(card, {"Listup", line}, name + ": null is fatal here; leave it out or name something");
    }
    for (const char* line : {"Delete null", "SetProtect true null", "SetWifiFlag true null"}) {
        const std::string name = std::string(line).substr(0, std::string(line).find(' '));
        ExpectRefused(card, {"Listup", line}, name + ": a null item is fatal here; leave it out");
    }
}

TEST(Misuse, OfAnItemThatIsNotThereIsTold) {
    Card card;
    FillSmall(card);
    for (const char* line : {"Delete", "SetProtect true", "SetWifiFlag true", "IsWifiFlag", "IsLast"}) {
        const std::string name = std::string(line).substr(0, std::string(line).find(' '));
        ExpectRefused(card, {"Listup", line},
                      name + ": no item was filled yet; fetch one first, for example with GetFirst");
    }
}

TEST(Misuse, OfAnItemOfAnotherCardIsTold) {
    Card card;
    FillSmall(card);
    Card other;
    other.AddFile("200ABCDE", "KVR_0077.JPG");
    ExpectRefused(card,
                  {"SetBaseURI " + other.Root(), "Listup", "GetFirst", "Create", "SetBaseURI " + card.Root(), "Listup",
                   "SetWifiFlag true"},
                  "SetWifiFlag: the item's file '" + other.Path("200ABCDE", "KVR_0077.JPG") +
                      "' is not in the list; fetch an item anew");
}

TEST(Misuse, OfAnEmptyListIsTold) {
    Card card;
    card.AddDir("100ABCDE");
    ExpectRefused(card, {"Listup", "SetCurIndex 0"}, "SetCurIndex: there is no position 0; the list has none");
    ExpectRefused(card, {"Listup", "GetLatestFileName SRW"},
                  "GetLatestFileName: the list is empty, which is fatal here");
}

TEST(Misuse, OfTheSelectionIsTold) {
    Card card;
    FillSmall(card);
    ExpectRefused(card, {"Listup", "DeleteSel"}, "DeleteSel: nothing is selected; SetSel POSITION true selects");
    for (const char* position : {"2", "-1"}) {
        ExpectRefused(card, {"Listup", "SetSel 0 true", std::string("SetSel ") + position + " true", "DeleteSel"},
                      std::string("DeleteSel: position ") + position + " is selected and not in the list; deselect it");
    }
    EXPECT_EQ(card.Names("100ABCDE").size(), 2U) << "nothing was deleted";
}

TEST(Misuse, OfAPrefixOfTheWrongLengthIsTold) {
    Card card;
    FillSmall(card);
    for (const char* prefix : {"ABC", "ABCDE", "ABCDEFGH"}) {
        ExpectRefused(card, {"Listup", std::string("SetFilePrefix ") + prefix, "GetNewFileName JPG"},
                      std::string("GetNewFileName: the prefix '") + prefix +
                          "' does not have four characters; SetFilePrefix sets it");
    }
    EXPECT_EQ(card.DirNames(), (Words{"100ABCDE"})) << "no number was taken";
}

TEST(Misuse, OfWordsIsAMatterOfUsage) {
    Card card;
    FillSmall(card);
    const struct {
        const char* line;
        const char* error;
    } rows[] = {
        {"getnext", "there is no operation 'getnext'; did you mean GetNext?"},
        {"GetNex", "there is no operation 'GetNex'; did you mean GetNext?"},
        {"\"\"", "there is no operation ''; 'help' lists the operations"},
        {"x\\x1b[2J", "there is no operation 'x\\x1b[2J'; 'help' lists the operations"},
        {"help nothing", "there is no operation 'nothing'; 'help' lists the operations"},
        {"GetAt", "GetAt: an argument is missing; it is GetAt POSITION [null]"},
        {"GetAt x", "GetAt: 'x' is not a whole number from -2147483648 to 2147483647; it is GetAt POSITION [null]"},
        {"GetAt 2147483648", "GetAt: '2147483648' is not a whole number from -2147483648 to 2147483647; it is GetAt "
                             "POSITION [null]"},
        {"GetAt 0x1", "GetAt: '0x1' is not a whole number from -2147483648 to 2147483647; it is GetAt POSITION [null]"},
        {"GetAt 0 1", "GetAt: '1' is one word too many; only 'null' may stand here; it is GetAt POSITION [null]"},
        {"GetCount 1", "GetCount: '1' is one word too many; it is GetCount"},
        {"SetSel 1 maybe", "SetSel: 'maybe' is not one of true, false, on, off, 1, 0; it is SetSel NUMBER FLAG"},
        {"GetFileCount GIF", "GetFileCount: 'GIF' is not one of JPG, SRW, MPO, MP4, AVI, none, or a number; it is "
                             "GetFileCount TYPE"},
        {"RegisterPhotoMetadataCB 1", "RegisterPhotoMetadataCB: '1' is not one of demo, exif, fail, none; it is "
                                      "RegisterPhotoMetadataCB demo|exif|fail|none"},
        {"GetAt \"1", "a quote \" is not closed"},
        {"GetAt \\q", "the backslash in '\\\\q' begins no escape; write a backslash as \\\\"},
        {"GetInfo \\x00", "a word cannot hold a NUL byte"},
    };
    for (const auto& row : rows) {
        const Outcome run = Shell(card.Root(), {row.line, "Listup"});
        EXPECT_EQ(run.exit, clitest::kUsage) << row.line;
        EXPECT_EQ(run.err, ErrorLine(std::string("line 1: ") + row.error));
        EXPECT_EQ(run.out, "Listup = 2\n");
    }
}

TEST(Script, ThatCannotBeReadIsTold) {
    Card card;
    FillSmall(card);
    clitest::Options options;
    options.inFile = card.Root();
    const Outcome run = clitest::OnCard(card.Root(), {"shell"}, options);
    EXPECT_EQ(run.exit, clitest::kIncomplete);
    EXPECT_EQ(run.err,
              ErrorLine("the script cannot be read (Is a directory); give a file or a pipe on standard input"));
}

TEST(Script, ThatIsEmptyOrClosedDoesNothing) {
    Card card;
    FillSmall(card);
    clitest::Options closed;
    closed.closed = {0};
    for (const auto& options : {clitest::Options(), closed}) {
        const Outcome run = clitest::OnCard(card.Root(), {"shell"}, options);
        EXPECT_EQ(run.exit, clitest::kSuccess);
        EXPECT_EQ(run.out + run.err, "");
    }
}

} // namespace
