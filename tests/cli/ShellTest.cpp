// The shell run from a script: every operation by its own name, its result and its item as text and as JSON.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::Joined;
using clitest::Outcome;
using clitest::Shell;
using clitest::Words;
using dcftest::Card;
using dcftest::FileTraits;
using Json = nlohmann::ordered_json;

namespace {

constexpr char kTimeText[] = "2024-05-01T10:00:00Z";
constexpr char kNoMetadata[] = "  meta text  -\n  meta flags 0 0 0 0\n  meta quad  0 0\n"
                               "  meta words 0 0 0 0 0 0 0 0 0 0 0 0 0 -1 -1 -1 -1 -1 -1\n";

/// Three files: 101-0003, 100-0002 with a companion and protected, 100-0001.
void FillSmall(Card& card) {
    FileTraits traits;
    traits.mtime = 1714557600;
    card.AddFile("101ABCDE", "KVR_0003.MP4", traits);
    card.AddFile("100ABCDE", "KVR_0001.JPG", traits);
    card.AddFile("100ABCDE", "KVR_0002.SRW", traits);
    traits.mode = 0444;
    card.AddFile("100ABCDE", "KVR_0002.JPG", traits);
}

/// What an operation prints of 100-0001 in that card.
std::string LastItem(const Card& card) {
    return "  path       " + card.Path("100ABCDE", "KVR_0001.JPG") + "\n  companion  -\n  time       " +
           clitest::ShownTime(kTimeText) +
           "\n  type       JPG\n  folder     100\n"
           "  number     1\n  protected  no\n  Wi-Fi mark no\n" +
           kNoMetadata;
}

std::vector<Json> Replies(const Outcome& run) {
    std::vector<Json> replies;
    for (const std::string& line : clitest::Lines(run.out)) {
        replies.push_back(Json::parse(line));
    }
    return replies;
}

TEST(ShellScript, PrintsTheResultAndTheItemOfEachLine) {
    Card card;
    FillSmall(card);
    const Outcome run = Shell(card.Root(), {"Listup", "GetCount", "GetLast", "GetAtSimply 1", "IncludeNonDCF false"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "Listup = 3\nGetCount = 3\nGetLast = 0\n" + LastItem(card) + "GetAtSimply = 0\n  path       " +
                           card.Path("100ABCDE", "KVR_0002.JPG") + "\n  companion  " +
                           card.Path("100ABCDE", "KVR_0002.SRW") + "\n  time       " + clitest::ShownTime(kTimeText) +
                           "\nIncludeNonDCF done\n");
}

TEST(ShellScript, BrowsesFromEndToEnd) {
    Card card;
    FillSmall(card);
    const Outcome run = Shell(card.Root(),
                              {"Listup",
                               "GetCurIndex",
                               "GetNext",
                               "GetCurIndex",
                               "GetNext",
                               "GetNext",
                               "GetCurIndex",
                               "GetPrev",
                               "SetCurIndex 0",
                               "GetPrev",
                               "GetCurIndex",
                               "SetCur " + card.Path("100ABCDE", "KVR_0002.JPG"),
                               "GetCurIndex",
                               "IsLast",
                               "GetLast",
                               "IsLast",
                               "GetFileListIndex " + card.Path("100ABCDE", "KVR_0001.JPG"),
                               "GetFirst",
                               "GetCurrent",
                               "GetAt 2",
                               "GetInfo " + card.Path("101ABCDE", "KVR_0003.MP4")},
                              {"--json"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    Json results = Json::array();
    for (const Json& reply : Replies(run)) {
        results.push_back(reply["result"]);
    }
    EXPECT_EQ(results, Json({3, 0, 0, 1, 0, -1, 2, 0, 0, -1, 0, 0, 1, false, 0, true, 2, 0, 0, 0, 0}));
}

TEST(ShellScript, KeepsTheSelection) {
    Card card;
    FillSmall(card);
    const Outcome run =
        Shell(card.Root(), {"SetSel 2 true", "SetSel 0 on", "SetSel 2 1", "GetSelectIndecies", "GetSelCount", "IsSel 0",
                            "IsSel 1", "SetSel 2 off", "GetSelectIndecies", "SelectCancel", "GetSelectIndecies"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, Joined({"SetSel done", "SetSel done", "SetSel done", "GetSelectIndecies = [2, 0]",
                               "GetSelCount = 2", "IsSel = true", "IsSel = false", "SetSel done",
                               "GetSelectIndecies = [0]", "SelectCancel done", "GetSelectIndecies = []"}));
}

TEST(ShellScript, AttachesMetadataWithTheLagOfOneConversion) {
    Card card;
    FillSmall(card);
    const Outcome run = Shell(
        card.Root(),
        {"Listup", "RegisterPhotoMetadataCB demo", "GetAt 2", "GetAt 2", "RegisterPhotoMetadataCB fail", "GetAt 1",
         "GetAt 1", "RegisterPhotoMetadataCB none", "RegisterVideoMetadataCB demo", "GetAt 0", "GetAt 0",
         "AddPhotoMetadata " + card.Path("101ABCDE", "KVR_0003.MP4") + " \"2020:02:02 02:02:02\"", "GetAt 0"},
        {"--json"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    const auto replies = Replies(run);
    const auto text = [&](std::size_t reply) { return replies[reply]["item"]["metadata"]["text"]; };
    EXPECT_EQ(text(2), "") << "the first conversion";
    EXPECT_EQ(text(3), "2024:05:01 10:00:00");
    EXPECT_EQ(replies[3]["item"]["metadata"]["words"],
              Json({11, 14, 101, 102, 103, 104, 105, 106, 107, 109, 110, 111, 108, 112, 113, 114, 115, 116, 117}));
    EXPECT_EQ(replies[3]["item"]["metadata"]["quad1"], 12);
    EXPECT_EQ(text(6), "") << "the collector that fails";
    EXPECT_EQ(text(10), "") << "a movie";
    EXPECT_EQ(text(12), "2020:02:02 02:02:02") << "a movie whose metadata was added";
}

TEST(ShellScript, GivesOneDocumentALineInJson) {
    Card card;
    FillSmall(card);
    const Outcome run =
        Shell(card.Root(), {"Listup", "", "# nothing", "GetAt 2 # a comment", "GetAt 7", "help GetAt"}, {"--json"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    const auto replies = Replies(run);
    ASSERT_EQ(replies.size(), 4U);
    for (const Json& reply : replies) {
        EXPECT_EQ(reply["format"], "dcfctl.shell");
        EXPECT_EQ(reply["version"], 1);
    }
    EXPECT_EQ(replies[1]["line"], 4);
    EXPECT_EQ(replies[1]["operation"], "GetAt");
    EXPECT_EQ(replies[1]["arguments"], Json({"2"}));
    EXPECT_EQ(replies[1]["item"]["path"], card.Path("100ABCDE", "KVR_0001.JPG"));
    EXPECT_EQ(replies[1]["item"]["type"], "JPG");
    EXPECT_EQ(replies[1]["error"], nullptr);
    EXPECT_EQ(replies[2]["result"], nullptr);
    EXPECT_EQ(replies[2]["error"]["cause"], "position-out-of-range");
    EXPECT_NE(replies[3]["text"].get<std::string>().find("GetAt POSITION"), std::string::npos);
}

TEST(ShellScript, TakesNamesAsTheyAreShown) {
    Card card;
    card.AddFile("100 \xff#'Z", "A\\\"B0001.JPG");
    const std::string shown = card.Dcim() + "/100\\ \\xff#\\'Z/A\\\\\\\"B0001.JPG";
    const Outcome run =
        Shell(card.Root(), {"Listup", "GetFileListIndex " + shown, "GetFileListIndex \"" + shown + "\""});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.out, "Listup = 1\nGetFileListIndex = 0\nGetFileListIndex = 0\n");
}

TEST(ShellScript, EndsAtQuitAndTakesTheLinesOfOtherSystems) {
    Card card;
    FillSmall(card);
    for (const char* word : {"quit", "exit"}) {
        const Outcome run = Shell(card.Root(), {"Listup\r", word, "GetCount"});
        EXPECT_EQ(run.out, "Listup = 3\n");
        EXPECT_EQ(run.exit, clitest::kSuccess);
    }
}

TEST(ShellScript, RunsALastLineWithoutAnEnd) {
    Card card;
    FillSmall(card);
    clitest::Options options;
    options.input = "Listup\nGetCount";
    EXPECT_EQ(clitest::OnCard(card.Root(), {"shell"}, options).out, "Listup = 3\nGetCount = 3\n");
}

TEST(ShellScript, GoesOnAfterAFailureAndEndsWithTheFirstOne) {
    Card card;
    FillSmall(card);
    const Outcome run = Shell(card.Root(), {"Listup", "GetAt 99", "Getat 1", "GetCount"});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.out, "Listup = 3\nGetCount = 3\n");
    EXPECT_EQ(Shell(card.Root(), {"Getat 1", "Listup", "GetAt 99"}).exit, clitest::kUsage);
}

TEST(ShellScript, DoesNotCountARefusalOfTheInterfaceAsAFailure) {
    Card card;
    FillSmall(card);
    const Outcome run = Shell(card.Root(), {"GetFirst", "GetNext null", "GetInfo null", "GetFileListIndex x",
                                            "SetCur x", "GetAt 0", "SetSeriesMode true", "SetFilePrefix null"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.out, Joined({"GetFirst = -1", "GetNext = -1", "GetInfo = -2", "GetFileListIndex = -6", "SetCur = -1",
                               "GetAt = -1", "SetSeriesMode = -1", "SetFilePrefix = -1"}));
}

TEST(ShellScript, MakesANewListWithCreateAndListsAnotherCard) {
    Card card;
    FillSmall(card);
    Card other;
    other.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = Shell(card.Root(), {"Listup", "Create", "GetFirst", "SetBaseURI " + other.Root(), "Listup",
                                            "Destroy", "Destroy", "SetBaseURI x", "Create", "Listup"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.out, Joined({"Listup = 3", "Create = 0", "GetFirst = -1", "SetBaseURI = 0", "Listup = 1",
                               "Destroy = 0", "Destroy = 0", "SetBaseURI = -1", "Create = 0", "Listup = 1"}));
}

TEST(ShellScript, MakesAMissingDcimAndSaysSo) {
    Card card;
    const Outcome run = Shell(card.Root(), {"Listup", "GetCount", "GetFirst"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, "Listup = 0\nGetCount = 0\nGetFirst = -1\n");
    EXPECT_EQ(run.err, clitest::WarningLine("the card had no folder 'DCIM', and listing it has made one"));
    EXPECT_TRUE(std::filesystem::is_directory(card.Dcim()));
}

TEST(ShellHelp, NamesAll47OperationsOnce) {
    Card card;
    const Outcome run = Shell(card.Root(), {"help"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    std::multiset<std::string> names;
    for (const std::string& line : clitest::Lines(run.out)) {
        if (line.size() > 44 && line.substr(0, 2) == "  " && line[2] != ' ') {
            names.insert(line.substr(2, line.find(' ', 2) - 2));
        }
    }
    const std::multiset<std::string> expected = {
        "SetSeriesMode", "GetSeriesMode", "Listup", "IncludeNonDCF", "Delete", "DeleteSel", "DeleteAll", "GetCount",
        "GetAt", "GetFileListIndex", "GetCurIndex", "GetCurrent", "GetFirst", "GetNext", "GetPrev", "GetLast", "IsLast",
        "SetFileNameMake", "SetFolderNameMake", "SetFileNameColor", "SetImageType", "GetNewFileName",
        "GetLatestFileName", "UpdateFirstIndex", "GetSelectIndecies", "SetCur", "SetCurIndex", "IsSel", "SetSel",
        "SelectCancel", "GetSelCount", "SetWifiFlag", "IsWifiFlag", "SetProtect", "SetProtectSel", "SetProtectAll",
        "SetProtectSelToggle", "SetFilePrefix", "GetInfo", "GetAvailNumOfPhoto", "GetFileCount", "SetCustomBitAll",
        "RegisterPhotoMetadataCB", "RegisterVideoMetadataCB", "AddPhotoMetadata", "GetAtSimply", "RenameDCFFullStorage",
        // Beside the interface's own:
        "Create", "Destroy", "SetBaseURI", "help", "quit,"};
    EXPECT_EQ(names, expected);
}

TEST(ShellHelp, TakesEveryOperationByTheNameThatItShows) {
    Card card;
    card.AddDir("100ABCDE");
    Words lines;
    for (const std::string& line : clitest::Lines(Shell(card.Root(), {"help"}).out)) {
        if (line.size() > 44 && line.substr(0, 2) == "  " && line[2] != ' ' && line.substr(2, 4) != "quit") {
            lines.push_back("help " + line.substr(2, line.find(' ', 2) - 2));
        }
    }
    lines.erase(std::remove(lines.begin(), lines.end(), "help help"), lines.end());
    EXPECT_EQ(lines.size(), 50U);
    const Outcome run = Shell(card.Root(), lines);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(clitest::Lines(run.out).size(), 50U);
}

} // namespace
