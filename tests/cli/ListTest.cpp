// What ls shows of a card, and how its options choose.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::Joined;
using clitest::Lines;
using clitest::OnCard;
using clitest::Words;
using dcftest::Card;
using dcftest::FileTraits;

namespace {

constexpr std::time_t kTime = 1714557600; // 2024-05-01T10:00:00Z

FileTraits At(std::time_t time, mode_t mode = 0644) {
    FileTraits traits;
    traits.mtime = time;
    traits.mode = mode;
    return traits;
}

/// Two folders and "Camera", a companion of each kind, a protected file, a movie of each kind.
void FillMixed(Card& card) {
    card.AddFile("100ABCDE", "KVR_0001.JPG", At(kTime));
    card.AddFile("100ABCDE", "KVR_0002.JPG", At(kTime + 60, 0444));
    card.AddFile("100ABCDE", "KVR_0002.SRW", At(kTime + 60));
    card.AddFile("100ABCDE", "KVR_0003.MP4", At(kTime + 120));
    card.AddFile("101ABCDE", "KVR_0009.JPG", At(kTime + 180));
    card.AddFile("101ABCDE", "KVR_0009.MPO", At(kTime + 180));
    card.AddFile("101ABCDE", "KVR_0010.AVI", At(kTime + 240));
    card.AddFile("Camera", "20240501_101010.JPG", At(kTime + 300));
}

std::string Row(const Card& card, const std::string& position, const std::string& columns, const std::string& time,
                const std::string& name) {
    std::string shown = clitest::ShownTime("2024-05-01T" + time + "Z");
    shown.resize(20, ' ');
    return std::string(3 - position.size(), ' ') + position + "  " + columns + "  " + shown + "  " + card.Dcim() + "/" +
           name;
}

constexpr char kHeader[] = "POS  TYPE  COMPANION  MARKS  TIME                  PATH";
constexpr char kMixedCounts[] = ": JPG 4, SRW 1, MPO 1, MP4 1, AVI 1 (a file with a companion counts under both kinds)";

TEST(List, ShowsEveryFileInTheOrderOfTheInterfaceAndCountsByKind) {
    Card card;
    FillMixed(card);
    const auto run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, Joined({kHeader, Row(card, "0", "AVI   -          --   ", "10:04:00", "101ABCDE/KVR_0010.AVI"),
                               Row(card, "1", "JPG   MPO        --   ", "10:03:00", "101ABCDE/KVR_0009.JPG"),
                               Row(card, "2", "MP4   -          --   ", "10:02:00", "100ABCDE/KVR_0003.MP4"),
                               Row(card, "3", "JPG   SRW        P-   ", "10:01:00", "100ABCDE/KVR_0002.JPG"),
                               Row(card, "4", "JPG   -          --   ", "10:00:00", "100ABCDE/KVR_0001.JPG"),
                               Row(card, "5", "JPG   -          --   ", "10:05:00", "Camera/20240501_101010.JPG"),
                               std::string("6 files in the list") + kMixedCounts}));
}

TEST(List, ShowsTheSameTimeInEveryTimeZone) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG", At(kTime));
    clitest::Options options;
    options.environment["TZ"] = "JST-9";
    EXPECT_NE(OnCard(card.Root(), {"ls"}, options).out.find(clitest::ShownTime("2024-05-01T10:00:00Z") + " "),
              std::string::npos);
}

TEST(List, SaysThatNothingIsInTheListOfAnEmptyCard) {
    Card card;
    card.AddDir("100ABCDE");
    const auto run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, "0 files in the list\n");
}

TEST(List, ShowsAnUnknownTimeAsADash) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG", At(0));
    const auto run = OnCard(card.Root(), {"ls"});
    EXPECT_EQ(Lines(run.out)[1],
              "  0  JPG   -          --     -                     " + card.Path("100ABCDE", "KVR_0001.JPG"));
}

TEST(List, WidensThePositionsOfALongList) {
    Card card;
    card.Fill(1, 1001);
    const Words lines = Lines(OnCard(card.Root(), {"ls"}).out);
    ASSERT_EQ(lines.size(), 1003U);
    EXPECT_EQ(lines[0].substr(0, 12), " POS  TYPE  ");
    EXPECT_EQ(lines[1].substr(0, 9), "   0  JPG");
    EXPECT_EQ(lines[1001].substr(0, 9), "1000  JPG");
}

TEST(List, KeepsToOneTypeOrCompanionType) {
    Card card;
    FillMixed(card);
    const struct {
        const char* type;
        Words files;
        const char* why;
    } rows[] = {
        {"SRW", {"100ABCDE/KVR_0002.JPG"}, "the companion's type counts, as in the interface's own count"},
        {"srw", {"100ABCDE/KVR_0002.JPG"}, "in any case"},
        {"AVI", {"101ABCDE/KVR_0010.AVI"}, "the file's own type"},
        {"MPO", {"101ABCDE/KVR_0009.JPG"}, "the companion's type"},
    };
    for (const auto& row : rows) {
        Words paths;
        for (const std::string& file : row.files) {
            paths.push_back(card.Dcim() + "/" + file);
        }
        EXPECT_EQ(OnCard(card.Root(), {"ls", "--paths", "--type", row.type}).out, Joined(paths)) << row.why;
    }
}

TEST(List, TellsHowManyOfTheFilesAreShown) {
    Card card;
    FillMixed(card);
    const auto run = OnCard(card.Root(), {"ls", "--type", "MP4"});
    EXPECT_EQ(run.out, Joined({kHeader, Row(card, "2", "MP4   -          --   ", "10:02:00", "100ABCDE/KVR_0003.MP4"),
                               std::string("6 files in the list, 1 shown") + kMixedCounts}));
}

TEST(List, KeepsToOneFolderByNameOrNumber) {
    Card card;
    FillMixed(card);
    const std::string inCamera = card.Path("Camera", "20240501_101010.JPG") + "\n";
    for (const char* folder : {"Camera", "99"}) {
        EXPECT_EQ(OnCard(card.Root(), {"ls", "--paths", "--dir", folder}).out, inCamera) << folder;
    }
    for (const char* folder : {"101ABCDE", "101"}) {
        EXPECT_EQ(Lines(OnCard(card.Root(), {"ls", "--paths", "--dir", folder}).out).size(), 2U) << folder;
    }
}

TEST(List, RefusesAFolderThatTheListDoesNotHave) {
    Card card;
    FillMixed(card);
    for (const char* folder : {"105", "100abcde", "DCIM", "-1", "0100"}) {
        const auto run = OnCard(card.Root(), {"ls", std::string("--dir=") + folder});
        EXPECT_EQ(run.exit, clitest::kRefused);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, ErrorLine(std::string("the list has no folder '") + folder +
                                     "'; name one of '101ABCDE', '100ABCDE', 'Camera', or its number"));
    }
}

TEST(List, StopsAfterTheLimit) {
    Card card;
    FillMixed(card);
    for (const auto& [limit, shown] : {std::pair{"0", 0U}, {"1", 1U}, {"5", 5U}, {"6", 6U}, {"9000000000", 6U}}) {
        const auto run = OnCard(card.Root(), {"ls", "--paths", "--limit", limit});
        EXPECT_EQ(run.exit, clitest::kSuccess);
        EXPECT_EQ(Lines(run.out).size(), shown) << limit;
    }
}

TEST(List, CountsTheLimitAfterTheOtherChoices) {
    Card card;
    FillMixed(card);
    EXPECT_EQ(OnCard(card.Root(), {"ls", "--paths", "--type", "JPG", "--dir", "100", "--limit", "1"}).out,
              card.Path("100ABCDE", "KVR_0002.JPG") + "\n");
}

TEST(List, LeavesCameraOut) {
    Card card;
    FillMixed(card);
    const auto run = OnCard(card.Root(), {"ls", "--no-camera"});
    EXPECT_EQ(run.out.find("Camera"), std::string::npos);
    EXPECT_NE(run.out.find("5 files in the list: JPG 3"), std::string::npos);
}

TEST(List, EndsPathsWithANulByteWhenAskedTo) {
    Card card;
    card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const std::string expected =
        card.Path("100ABCDE", "KVR_0002.JPG") + '\0' + card.Path("100ABCDE", "KVR_0001.JPG") + '\0';
    for (const Words& options : {Words{"-0"}, {"--null"}, {"--paths", "-0"}}) {
        Words arguments = {"ls"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(OnCard(card.Root(), arguments).out, expected);
    }
}

TEST(List, EscapesNamesInTheTableAndKeepsThemInBarePaths) {
    Card card;
    card.AddFile("100\x1b\xff\n\t\\", "A\nB\xc3"
                                      "0001.JPG");
    const std::string path = card.Path("100\x1b\xff\n\t\\", "A\nB\xc3"
                                                            "0001.JPG");
    const auto table = OnCard(card.Root(), {"ls"});
    ASSERT_EQ(Lines(table.out).size(), 3U) << table.Describe();
    EXPECT_NE(table.out.find(card.Dcim() + "/100\\x1b\\xff\\n\\t\\\\/A\\nB\\xc30001.JPG\n"), std::string::npos)
        << table.out;
    EXPECT_EQ(OnCard(card.Root(), {"ls", "--paths"}).out, path + "\n");
    EXPECT_EQ(OnCard(card.Root(), {"ls", "-0"}).out, path + '\0');
}

TEST(List, EscapesWhatHidesOrTurnsTextAround) {
    Card card;
    card.AddFile("100\xe2\x80\xae\xc2\x9b", "AB\xc3\xa4"
                                            "0001.JPG"); // right-to-left override, a one-byte escape in UTF-8
    const auto run = OnCard(card.Root(), {"ls"});
    EXPECT_NE(run.out.find("100\\u{202e}\\u{9b}/AB\xc3\xa4"
                           "0001.JPG"),
              std::string::npos)
        << run.out;
}

} // namespace
