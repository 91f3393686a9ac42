// Moving through the card: the cursor by its keys, positions, paths, and what is shown beside the list.
#include <gtest/gtest.h>

#include "Playback.h"

using clitest::kArrowDown;
using clitest::kArrowLeft;
using clitest::kArrowRight;
using clitest::kArrowUp;
using clitest::kBackspace;
using clitest::kEnd;
using clitest::kEnter;
using clitest::kEscape;
using clitest::kHome;
using clitest::kPageDown;
using clitest::kPageUp;
using clitest::Playback;
using dcftest::Card;

namespace {

/// 101ABCDE with 0003 and 0002, 100ABCDE with 0001 and its raw picture, a movie in between, "Camera".
class Browsing : public testing::Test {
protected:
    Browsing() {
        m_card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0004.MP4"});
        m_card.AddFile("101ABCDE", "KVR_0002.JPG", {"", 0644, 1714566180});
        m_card.AddFile("101ABCDE", "KVR_0003.JPG", {"", 0444, std::nullopt});
        m_card.AddFile("Camera", "20240501_123456.JPG");
    }

    Card m_card;
};

TEST_F(Browsing, BeginsOnTheFirstFileAndShowsWhatIsKnownOfIt) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0)) << playback.Text();
    ASSERT_TRUE(playback.Shows("q leave")) << "drawn to the end\n" << playback.Text();
    EXPECT_NE(playback.Line(0).find(m_card.Root()), std::string::npos) << playback.Text();
    EXPECT_NE(playback.Line(0).find("5 files"), std::string::npos);
    EXPECT_TRUE(playback.Shows("\n> P    0 JPG     101ABCDE/KVR_0003.")) << playback.Text();
    EXPECT_TRUE(playback.Shows("\n       2 MP4     100ABCDE/KVR_0004.")) << playback.Text();
    EXPECT_TRUE(playback.Shows("\n       3 JPG+SRW 100ABCDE/KVR_0001.")) << playback.Text();
    EXPECT_TRUE(playback.Shows("Protected  yes"));
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_TRUE(playback.IsGivenBack());
}

TEST_F(Browsing, ShowsTypeNumberTimeAndCompanion) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers(kArrowDown, "File       KVR_0002.JPG")) << playback.Text();
    EXPECT_TRUE(playback.Shows("Folder     101ABCDE"));
    EXPECT_TRUE(playback.Shows("Number     101-0002"));
    EXPECT_TRUE(playback.Shows("Type       JPG"));
    EXPECT_TRUE(playback.Shows("Companion  none"));
    EXPECT_TRUE(playback.Shows("Protected  no"));
    EXPECT_TRUE(playback.Shows("Transfer   no"));
    EXPECT_TRUE(playback.Shows(clitest::kHasTimes ? "Time (UTC) 2024-05-01 12:23:00" : "Time (UTC) unknown"));
    ASSERT_TRUE(playback.Answers("3\r", "Companion  KVR_0001.SRW")) << playback.Text();
}

TEST_F(Browsing, ArrowsGoToTheNextAndThePreviousFileAcrossFolders) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    int position = 0;
    for (const char* key : {kArrowDown, kArrowRight, kArrowDown, kArrowRight}) {
        playback.Type(key);
        ASSERT_TRUE(playback.IsAt(++position)) << playback.Text();
    }
    EXPECT_TRUE(playback.Shows("Number     123456 (Camera)"));
    EXPECT_TRUE(playback.Answers(kArrowDown, "this is the last file")) << playback.Text();
    for (const char* key : {kArrowUp, kArrowLeft, kArrowUp, kArrowLeft}) {
        playback.Type(key);
        ASSERT_TRUE(playback.IsAt(--position)) << playback.Text();
    }
    EXPECT_TRUE(playback.Answers(kArrowUp, "this is the first file")) << playback.Text();
}

TEST_F(Browsing, HomeAndEndGoToTheEnds) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Type(kEnd);
    ASSERT_TRUE(playback.IsAt(4)) << playback.Text();
    playback.Type(kHome);
    ASSERT_TRUE(playback.IsAt(0)) << playback.Text();
}

TEST_F(Browsing, LeavesCameraOutWhenAsked) {
    Playback playback(m_card.Root(), clitest::ColourTerminal(), {24, 80}, {"--no-camera"});
    EXPECT_TRUE(playback.Shows("4 files")) << playback.Text();
}

TEST(BrowsingManyFiles, PagesAndScrolls) {
    Card card;
    card.Fill(2, 30);
    Playback playback(card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Type(kPageDown); // 24 lines, of which 20 are the list's
    ASSERT_TRUE(playback.IsAt(20)) << playback.Text();
    EXPECT_TRUE(playback.Comes([&] { return playback.Line(21).substr(0, 9) == ">     20 "; })) << playback.Text();
    playback.Type(std::string(kPageDown) + kPageDown);
    ASSERT_TRUE(playback.IsAt(59)) << playback.Text();
    playback.Type(kPageUp);
    ASSERT_TRUE(playback.IsAt(39)) << playback.Text();
    playback.Type(std::string(kPageUp) + kPageUp);
    ASSERT_TRUE(playback.IsAt(0)) << playback.Text();
    EXPECT_TRUE(playback.Comes([&] { return playback.Line(2).substr(0, 9) == ">      0 "; })) << playback.Text();
}

TEST_F(Browsing, ANumberGoesToThatPosition) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers("39", "Position: 39"));
    ASSERT_TRUE(playback.Answers(std::string(kBackspace) + "x", "Position: 3 ")) << playback.Text();
    playback.Type(kEnter);
    ASSERT_TRUE(playback.IsAt(3)) << playback.Text();
    ASSERT_TRUE(playback.Answers("5\r", "there is no position 5; the list has the positions 0 to 4"))
        << playback.Text();
    ASSERT_TRUE(playback.Answers("99999999999999999999\r", "there is no position 2147483647;")) << playback.Text();
    ASSERT_TRUE(playback.Answers("1", "Position: 1"));
    playback.Type(kEscape);
    ASSERT_TRUE(playback.Hides("Position: 1")) << playback.Text();
    EXPECT_TRUE(playback.IsAt(3)) << "the cursor has not moved";
}

TEST_F(Browsing, TheDigitsBesideTheLettersAreDigits) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers("\x1bOs", "Position: 3")) << playback.Text();
    playback.Type("\x1bOM");
    EXPECT_TRUE(playback.IsAt(3)) << playback.Text();
}

TEST_F(Browsing, AnUnknownKeyDoesNothing) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Type("\x1b[99;9d\x1b[d\x1b[9 p\x1bOR\x1b[w"); // "d" alone would ask, "p" would protect
    playback.Type(clitest::kArrowDown);
    ASSERT_TRUE(playback.IsAt(1)) << playback.Text();
    EXPECT_EQ(playback.Text().find("Delete?"), std::string::npos) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Browsing, APathIsTakenInEveryFormAndInPart) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    const std::vector<std::pair<std::string, int>> rows = {
        {m_card.Path("100ABCDE", "KVR_0004.MP4"), 2},
        {"101ABCDE/KVR_0002.JPG", 1},
        {"DCIM/Camera/20240501_123456.JPG", 4},
        {"100ABCDE/KVR_0001.SRW", 3}, // a companion: the file that it belongs to
        {"kvr_0003", 0},
        {"mp4", 2},
    };
    for (const auto& [path, position] : rows) {
        playback.Type("/" + path + kEnter);
        EXPECT_TRUE(playback.IsAt(position)) << path << "\n" << playback.Text();
    }
    EXPECT_TRUE(playback.Answers("/KVR_0009\r", "the list has no file 'KVR_0009'")) << playback.Text();
}

TEST_F(Browsing, TheNextOneWithAPartIsFoundBehindTheCursorAndAroundTheEnd) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.Answers("n", "nothing was searched for yet"));
    for (const auto& [keys, position] : {std::pair{"/101ABCDE/\r", 1}, {"n", 0}, {"n", 1}}) {
        playback.Type(keys);
        EXPECT_TRUE(playback.IsAt(position)) << playback.Text();
    }
}

TEST_F(Browsing, TheHelpNamesEveryKeyAndAnyKeyLeavesIt) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers("?", "any key goes back")) << playback.Text();
    for (const char* keys : {"Down, Right", "Up, Left", "PageDown, PageUp", "Home, End", "0 to 9", "/ ", "n ", "Space",
                             "c ", "p ", "w ", "d ", "i ", "r ", "? ", "q "}) {
        EXPECT_TRUE(playback.Shows(std::string("\n ") + keys)) << keys << "\n" << playback.Text();
    }
    playback.Type("q");
    EXPECT_TRUE(playback.IsAt(0)) << "q has only left the help";
}

TEST_F(Browsing, TellsThatNothingIsOddAboutACardOfThisKind) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.Answers("i", "Nothing is odd about this card.")) << playback.Text();
}

TEST_F(Browsing, TellsOfFilesOfCameraThatShareANumber) {
    m_card.AddFiles("Camera", {"20240502_120000.JPG", "20240503_123456.JPG"});
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.Answers("i", "any key goes back")) << playback.Text();
    EXPECT_TRUE(playback.Shows("'20240503_123456.JPG' in 'Camera' has the number of another file")) << playback.Text();
    playback.Type("i");
    EXPECT_TRUE(playback.IsAt(0));
    m_card.AddFile("Camera", "20240504_120000.JPG");
    ASSERT_TRUE(playback.Answers("r", "8 files")) << playback.Text();
    EXPECT_TRUE(playback.Answers("i", "2 files of 'Camera', '20240503_123456.JPG' the first, have the number"))
        << playback.Text();
}

TEST_F(Browsing, TheManPageHasEveryKeyOfTheHelp) {
    const std::string page = clitest::ReadFile(DCFCTL_SOURCE_ROOT "/docs/dcfctl.1");
    const std::string table = clitest::ReadFile(DCFCTL_SOURCE_ROOT "/tools/dcfctl/BrowseKeys.h");
    std::size_t found = 0;
    for (const std::string& line : clitest::Lines(table)) {
        const std::size_t begin = line.find("    {\"");
        if (begin == 0) {
            const std::string keys = line.substr(6, line.find('"', 6) - 6);
            EXPECT_NE(page.find(".It " + keys + "\n"), std::string::npos) << keys;
            ++found;
        }
    }
    EXPECT_GE(found, 16U);
}

TEST(AnEmptyCard, SaysSoAndStays) {
    Card card;
    card.AddDir("100ABCDE");
    Playback playback(card.Root());
    ASSERT_TRUE(playback.Shows("There is no picture or movie on this card.")) << playback.Text();
    for (const char* key : {kArrowDown, kEnd, "d", "p", "w", " "}) {
        EXPECT_TRUE(playback.Answers(key, "there is no picture or movie on this card; r looks again")) << key;
    }
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    playback.Type("r");
    EXPECT_TRUE(playback.IsAt(0)) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST(ACardThatCannotBeListed, IsRefusedBeforeTheScreenIsTaken) {
    const Card card;
    Playback playback(card.Root());
    EXPECT_EQ(playback.End(), clitest::kCardUnreadable);
    EXPECT_EQ(playback.Device().Screen().find("\x1b[?1049h"), std::string::npos);
}

} // namespace
