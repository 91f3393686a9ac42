// The shell's operations that change a card or name files: each does what it says on a real card, and a use that would
// be fatal costs one clear line, before anything has changed.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "AwkwardCards.h"
#include "ChangeCard.h"
#include "ChildProcess.h"
#include "Seed.h"

using clitest::ChangeCard;
using clitest::ErrorLine;
using clitest::FillAwkwardly;
using clitest::Joined;
using clitest::Options;
using clitest::Outcome;
using clitest::PickOne;
using clitest::Words;
using dcftest::Seed;

namespace fs = std::filesystem;

namespace {

Outcome RunShell(const ChangeCard& card, const Words& lines) {
    Options options = card.Environment();
    options.input = Joined(lines);
    return card.Run({"shell"}, options);
}

TEST(ShellChange, RunsAllOperationsOfTheInterfaceOnASampleCard) {
    const ChangeCard card;
    fs::remove(card.Dcim());
    ASSERT_EQ(clitest::kSuccess, clitest::Dcfctl({"sample", card.Root()}, card.Environment()).exit);
    const std::string path = card.Path("101PHOTO", "KVR_0005.JPG");
    const Words lines = {"IncludeNonDCF true",
                         "RegisterPhotoMetadataCB demo",
                         "RegisterVideoMetadataCB demo",
                         "Listup",
                         "GetCount",
                         "GetSeriesMode",
                         "SetSeriesMode true",
                         "SetSeriesMode false",
                         "UpdateFirstIndex true",
                         "GetFileCount JPG",
                         "GetFirst",
                         "GetNext",
                         "GetPrev",
                         "GetLast",
                         "IsLast",
                         "GetCurrent",
                         "GetCurIndex",
                         "GetAt 2",
                         "GetAtSimply 3",
                         "SetCurIndex 2",
                         "SetCur " + path,
                         "GetFileListIndex " + path,
                         "GetInfo " + path,
                         "AddPhotoMetadata " + path,
                         "SetWifiFlag true",
                         "IsWifiFlag",
                         "SetCustomBitAll 0 true",
                         "SetProtect true",
                         "SetProtect false",
                         "SetSel 4 true",
                         "SetSel 5 true",
                         "IsSel 4",
                         "GetSelCount",
                         "GetSelectIndecies",
                         "SetProtectSel true",
                         "SetSel 4 true",
                         "SetSel 5 true",
                         "SetProtectSelToggle",
                         "SetProtectAll false",
                         "SetSel 3 true",
                         "SelectCancel",
                         "SetSel 3 true",
                         "DeleteSel",
                         "GetFirst",
                         "Delete",
                         "SetFileNameMake fixed",
                         "SetFolderNameMake fixed",
                         "SetFileNameColor standard",
                         "SetImageType ordinary",
                         "SetFilePrefix OWN_",
                         "GetNewFileName JPG",
                         "GetLatestFileName SRW",
                         "GetAvailNumOfPhoto",
                         "RenameDCFFullStorage",
                         "DeleteAll",
                         "GetCount"};
    const Outcome outcome = RunShell(card, lines);
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("", outcome.err);
    EXPECT_NE(std::string::npos, outcome.out.find("DeleteSel = 0\n")) << outcome.out;
    EXPECT_NE(std::string::npos,
              outcome.out.find("GetNewFileName = 0\n  path       " + card.Path("103PHOTO", "OWN_0001.JPG") + "\n"))
        << outcome.out;
    EXPECT_NE(std::string::npos, outcome.out.find("RenameDCFFullStorage = 1\n")) << outcome.out;
    EXPECT_EQ("GetCount = 0", clitest::Lines(outcome.out).back());
}

// ---- Misuse ----

/// The last of the lines is refused with this text; the shell goes on, and nothing has changed by it.
void ExpectRefusal(const ChangeCard& card, Words lines, const std::string& error) {
    const Words before = card.Before();
    const std::size_t number = lines.size();
    lines.emplace_back("GetSeriesMode");
    const Outcome outcome = RunShell(card, lines);
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ(ErrorLine("line " + std::to_string(number) + ": " + error), outcome.err);
    EXPECT_EQ("GetSeriesMode = false", clitest::Lines(outcome.out).back());
    EXPECT_EQ(before, card.Before());
}

TEST(ShellChange, TellsOfAPrefixThatMakesNoName) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    for (const char* prefix : {"ABC", "ABCDE", "ABCDEFGH", "''"}) {
        const std::string shown = std::string(prefix) == "''" ? "" : prefix;
        ExpectRefusal(card, {"Listup", std::string("SetFilePrefix ") + prefix, "GetNewFileName JPG"},
                      "GetNewFileName: the prefix '" + shown +
                          "' does not have four characters; SetFilePrefix sets it");
    }
}

TEST(ShellChange, TellsOfCameraAtTheHeadOfTheList) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG"}).Put("100PHOTO", {"KVR_0001.JPG"});
    // The emptied folder leaves the list and cannot leave the card.
    ASSERT_EQ(0, chmod(card.Root().c_str(), 0755));
    ASSERT_EQ(0, chmod(card.Beside().c_str(), 0777));
    ASSERT_EQ(0, chmod(card.Path("100PHOTO").c_str(), 0777));
    Options options = card.Environment();
    options.user = 65534;
    options.input = Joined({"Listup", "GetFirst", "Delete", "GetNewFileName JPG", "GetCount"});
    const Outcome outcome = card.Run({"shell"}, options);
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ(
        ErrorLine("line 4: GetNewFileName: 'Camera' is the first folder of this list, and a new file's name is none "
                  "for it; move away what is no folder of pictures in '" +
                  card.Dcim() + "', then Create and Listup"),
        outcome.err);
    EXPECT_EQ("GetCount = 1", clitest::Lines(outcome.out).back());
    EXPECT_EQ((Words{"100PHOTO", "Camera"}), card.DirNames());
}

TEST(ShellChange, TellsOfAFolderThatHasLostItsFilesBeforeTheSelectedOnes) {
    ChangeCard card;
    card.Put("101PHOTO", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    // While the shell waits for the next line, somebody else empties the newest folder.
    const std::string script = card.Beside() + "/script";
    ASSERT_EQ(0, mkfifo(script.c_str(), 0600));
    std::thread person([&] {
        std::ofstream lines(script);
        lines << "Listup\nSetSel 2 true\n" << std::flush;
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        fs::remove(card.Path("101PHOTO", "KVR_0001.JPG"));
        lines << "DeleteSel\nGetCount\nquit\n";
    });
    const int in = open(script.c_str(), O_RDONLY | O_CLOEXEC);
    const dcftest::Ending ending = dcftest::RunInChild([&] {
        if (dup2(in, STDIN_FILENO) == STDIN_FILENO) {
            clitest::RunAsIs({"--card", card.Root(), "shell"}, card.Environment());
        }
    });
    close(in);
    person.join();
    EXPECT_EQ(clitest::kRefused, ending.status) << ending.Describe();
    EXPECT_EQ(ErrorLine("line 3: DeleteSel: the files of '" + card.Path("101PHOTO") +
                        "' are no longer on the card, so what is selected behind them would be taken for other files; "
                        "Create and Listup list anew"),
              ending.err);
    EXPECT_EQ("GetCount = 3", clitest::Lines(ending.out).back());
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(ShellChange, NamesTheFirstFileBesideCamera) {
    ChangeCard card;
    card.Put("Camera", {"20240501_123456.JPG"});
    const Outcome outcome = RunShell(card, {"Listup", "GetNewFileName JPG", "GetNewFileName JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_NE(std::string::npos, outcome.out.find(card.Path("100PHOTO", "KVR_0002.JPG"))) << outcome.out;
}

TEST(ShellChange, TellsOfAnotherCardThatCannotBeListedAgain) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::string root = card.Beside() + "/Camera";
    fs::create_directories(root + "/DCIM/100PHOTO");
    for (const char* operation : {"DeleteAll", "RenameDCFFullStorage"}) {
        ExpectRefusal(
            card, {"Listup", "SetBaseURI " + root, operation},
            std::string(operation) + ": it would list again, and the path of the card, '" + root +
                "', contains \"Camera\", which would make every folder a \"Camera\" folder; go there with cd '" + root +
                "' and use --card .");
    }
}

TEST(ShellChange, TellsOfFoldersThatWouldShareANumberAfterRenumbering) {
    ChangeCard card;
    // 102ZZZZZ cannot become 100ZZZZZ, which is there, and 101!AAAA becomes 102!AAAA.
    card.Put("102ZZZZZ", {"foreign.txt"}).Put("1010AAAA", {"foreign.txt"}).Put("101!AAAA", {"KVR_0001.JPG"});
    card.Put("100ZZZZZ", {"foreign.txt"});
    const Outcome outcome = RunShell(card, {"Listup", "RenameDCFFullStorage", "GetCount"});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ(ErrorLine("line 2: RenameDCFFullStorage: afterwards '102!AAAA', '102ZZZZZ' would share a number, with "
                        "which the card might not be listed again; rename one of them before"),
              outcome.err);
    EXPECT_EQ((Words{"100ZZZZZ", "101!AAAA", "1010AAAA", "102ZZZZZ"}), card.DirNames());
}

// ---- Anything at all ----

std::string RandomLine(const ChangeCard& card, Seed& seed) {
    const std::string position = std::to_string(seed.Pick(-1, 6));
    const std::string flag = seed.Chance(0.5) ? " true" : " false";
    const std::string path =
        card.Path(PickOne(seed, clitest::AwkwardFolders()), seed.Chance(0.5) ? "KVR_0001.JPG" : "KVR_0002.JPG");
    const std::vector<std::string> lines = {"Listup",
                                            "Create",
                                            "DeleteAll",
                                            "DeleteSel",
                                            "Delete",
                                            "RenameDCFFullStorage",
                                            "SetSel " + position + flag,
                                            "SetSel " + position + " true",
                                            "SetSel 0 true",
                                            "SelectCancel",
                                            "SetProtectSel" + flag,
                                            "SetProtectSelToggle",
                                            "SetProtectAll" + flag,
                                            "SetProtect" + flag,
                                            "SetWifiFlag" + flag,
                                            "SetCustomBitAll 1" + flag,
                                            "IsWifiFlag",
                                            "GetNewFileName JPG",
                                            "GetNewFileName MP4",
                                            "GetNewFileName none",
                                            "GetNewFileName 4",
                                            "GetLatestFileName SRW",
                                            "GetLatestFileName none",
                                            "GetLatestFileName JPG",
                                            "GetAvailNumOfPhoto",
                                            "SetFilePrefix ABCD",
                                            "SetFilePrefix AB",
                                            "SetFileNameMake date",
                                            "SetFileNameMake fixed",
                                            "SetFolderNameMake date",
                                            "SetFileNameColor optional",
                                            "SetSeriesMode" + flag,
                                            "UpdateFirstIndex" + flag,
                                            "IncludeNonDCF" + flag,
                                            "GetFirst",
                                            "GetLast",
                                            "GetNext",
                                            "GetPrev",
                                            "GetCurrent",
                                            "GetAt " + position,
                                            "GetAtSimply " + position,
                                            "SetCurIndex " + position,
                                            "SetCur " + path,
                                            "GetInfo " + path,
                                            "GetFileListIndex " + path,
                                            "AddPhotoMetadata " + path,
                                            "IsLast",
                                            "GetCount",
                                            "GetCurIndex",
                                            "SetBaseURI " + card.Root(),
                                            "SetBaseURI " + card.Beside(),
                                            "RegisterPhotoMetadataCB demo",
                                            "GetFileCount SRW"};
    return PickOne(seed, lines);
}

TEST(ShellChange, EndsOnNoConditionOfTheLibraryWhateverIsTyped) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        ChangeCard card;
        FillAwkwardly(card, seed);
        if (seed.Chance(0.3)) {
            fs::create_directories(card.Beside() + "/DCIM/100PHOTO");
            std::ofstream(card.Beside() + "/DCIM/100PHOTO/KVR_0001.JPG").flush();
        }
        Words lines = {"Listup"};
        for (int i = 0; i < 25; ++i) {
            lines.push_back(RandomLine(card, seed));
        }
        const Outcome outcome = RunShell(card, lines);
        EXPECT_EQ(0, outcome.signal) << Joined(lines) << outcome.Describe();
        EXPECT_NE(clitest::kIncomplete, outcome.exit) << Joined(lines) << outcome.Describe();
        EXPECT_EQ(std::string::npos, outcome.err.find("broken condition")) << Joined(lines) << outcome.Describe();
    }
}

} // namespace
