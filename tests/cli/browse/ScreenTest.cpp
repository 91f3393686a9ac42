// The terminal in the browser's hands: sizes, colours, strange names, pictures, a card that is pulled out, and the
// terminal given back whatever happens.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

#include "Playback.h"

using clitest::kArrowDown;
using clitest::Options;
using clitest::Playback;
using dcftest::Card;

namespace {

class Screen : public testing::Test {
protected:
    Screen() {
        m_card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.MP4"});
    }

    Card m_card;
};

Options On(const std::string& terminal) {
    Options options = clitest::ColourTerminal();
    options.environment["TERM"] = terminal;
    return options;
}

// ---- Sizes and colours

TEST_F(Screen, FollowsTheSizeOfTheTerminal) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Resize({30, 120});
    const auto full = [&] { return playback.Line(0).find("3 files ") == 120 - 8; };
    EXPECT_TRUE(playback.Comes(full)) << playback.Text();
    EXPECT_TRUE(playback.Comes([&] { return playback.Line(29).substr(0, 7) == "q leave"; })) << playback.Text();
    playback.Resize({10, 60});
    EXPECT_TRUE(playback.Hides("Position ")) << "no room for the details\n" << playback.Text();
    playback.Type(kArrowDown);
    EXPECT_TRUE(playback.HasMarks(1, ">   ")) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Screen, SaysThatItIsTooSmallAndComesBack) {
    Playback playback(m_card.Root(), clitest::ColourTerminal(), {5, 30});
    ASSERT_TRUE(playback.Shows("too small: 40x6 is needed")) << playback.Text();
    playback.Type(std::string(kArrowDown) + "?x/abc\x1b");
    playback.Resize({2, 3});
    playback.Resize({1, 1});
    playback.Type(kArrowDown);
    playback.Resize({24, 80});
    EXPECT_TRUE(playback.IsAt(2)) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Screen, HasColoursWhereTheTerminalHasThem) {
    m_card.AddFile("100FGHIJ", "KVR_0001.JPG"); // a warning, which is red
    Options none = On("screen-256color");
    none.environment["NO_COLOR"] = "1";
    Playback colour(m_card.Root());
    EXPECT_TRUE(colour.Shows("share the number")) << colour.Text();
    EXPECT_TRUE(colour.HasColour());
    for (const Options& options : {none, On("vt100")}) {
        Playback plain(m_card.Root(), options);
        EXPECT_TRUE(plain.Shows("share the number")) << plain.Text();
        EXPECT_FALSE(plain.HasColour());
    }
}

TEST_F(Screen, WorksOnATerminalWithoutColours) {
    Playback playback(m_card.Root(), On("vt100"));
    ASSERT_TRUE(playback.IsAt(0)) << playback.Text();
    playback.Type(kArrowDown);
    ASSERT_TRUE(playback.IsAt(1)) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Screen, NeedsATerminal) {
    for (const char* terminal : {"dumb", "", "no-such-terminal"}) {
        Playback playback(m_card.Root(), On(terminal));
        EXPECT_EQ(playback.End(), clitest::kRefused);
        EXPECT_NE(playback.Device().Screen().find("browse needs a terminal that can place its cursor"),
                  std::string::npos)
            << playback.Device().Screen();
    }
    const auto run = clitest::OnCard(m_card.Root(), {"browse"}, On("xterm"));
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, clitest::ErrorLine("browse needs a terminal for its keys and its picture; 'dcfctl ls' lists the "
                                          "card and 'dcfctl shell' takes a script"));
}

TEST_F(Screen, ChangesNothingWhereNobodyCanSeeIt) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.Answers("d", "Delete? [y/N]"));
    playback.Resize({5, 30});
    ASSERT_TRUE(playback.Shows("too small")) << playback.Text();
    playback.Type("yy dyp");
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_EQ(3U, m_card.Names("100ABCDE").size());
    for (const std::string& name : m_card.Names("100ABCDE")) {
        EXPECT_NE(0U, m_card.Mode("100ABCDE", name) & 0200U) << name << " was protected";
    }
}

// ---- Names

TEST_F(Screen, ShowsStrangeNamesEscaped) {
    m_card.AddFile("200\x1b[2Jx", "A\n\xff\x07"
                                  "0001.JPG");
    Playback playback(m_card.Root(), clitest::ColourTerminal(), {24, 110});
    EXPECT_TRUE(playback.Shows("200\\x1b[2Jx/A\\n\\xff\\x070001.JPG")) << playback.Text();
    EXPECT_TRUE(playback.Shows("q leave")) << "nothing was wiped away";
}

TEST_F(Screen, MeasuresWideCharacters) {
    m_card.AddFile("200\xe5\x86\x99"
                   "AB",
                   "\xc3\xa9\xc3\xa8"
                   "0001.JPG"); // eight and twelve bytes
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.Shows("200\xe5\x86\x99"
                               "AB/\xc3\xa9\xc3\xa8"
                               "0001.JPG")) // the list has ASCII letters alone in capitals
        << playback.Text();
    for (const int row : {2, 3, 4}) { // the line between list and details stands straight
        EXPECT_TRUE(playback.Comes([&] { return playback.Line(row).find(" \xe2\x94\x82 ") != std::string::npos; }))
            << playback.Text();
    }
}

// ---- The card

/// Moved away with all that is on it, as if it were pulled out.
class PulledOut {
public:
    explicit PulledOut(std::string root) : m_root(std::move(root)) {
        EXPECT_EQ(0, std::rename((m_root + "/DCIM").c_str(), (m_root + "/away").c_str()));
    }
    PulledOut(const PulledOut&) = delete;
    PulledOut& operator=(const PulledOut&) = delete;
    ~PulledOut() {
        EXPECT_EQ(0, std::rename((m_root + "/away").c_str(), (m_root + "/DCIM").c_str()));
    }

private:
    std::string m_root;
};

TEST_F(Screen, TellsOfACardThatIsPulledOutAndGoesOnWhenItIsBack) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    {
        const PulledOut away(m_card.Root());
        for (const char* keys : {kArrowDown, clitest::kEnd, "1\r", "/KVR\r", "p", "w", "d", " "}) {
            EXPECT_TRUE(playback.Answers(keys, "the card is gone: there is no")) << keys << playback.Text();
            playback.Type("c");
        }
        EXPECT_TRUE(playback.Answers("r", "there is no folder")) << playback.Text();
        EXPECT_TRUE(playback.Shows("100ABCDE/KVR_0002.JPG")) << "what was read stays to be seen";
    }
    EXPECT_TRUE(playback.Answers("r", "The card was listed anew.")) << playback.Text();
    EXPECT_TRUE(playback.Answers(kArrowDown, "Position   1 of")) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Screen, TellsOfACardThatIsPulledOutWithoutBeingAsked) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    const PulledOut away(m_card.Root());
    EXPECT_TRUE(playback.Shows("the card is gone")) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Screen, DeletesNothingWhenTheCardIsPulledOutAtTheQuestion) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers("d", "Delete? [y/N]"));
    {
        const PulledOut away(m_card.Root());
        EXPECT_TRUE(playback.Answers("y", "the card is gone")) << playback.Text();
    }
    EXPECT_EQ(3U, m_card.Names("100ABCDE").size());
}

TEST_F(Screen, TellsOfAnotherCardInItsPlace) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_EQ(0, std::rename((m_card.Root() + "/DCIM").c_str(), (m_card.Root() + "/before").c_str()));
    m_card.AddFile("150ABCDE", "KVR_0007.JPG");
    ASSERT_TRUE(playback.Answers(kArrowDown, "this is not the card that was listed")) << playback.Text();
    ASSERT_TRUE(playback.Answers("r", "150ABCDE/KVR_0007.JPG")) << playback.Text();
}

TEST_F(Screen, SurvivesFoldersThatVanishOneByOne) {
    m_card.AddFile("101ABCDE", "KVR_0009.JPG");
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_EQ(0, std::rename(m_card.Path("100ABCDE").c_str(), (m_card.Root() + "/away").c_str()));
    for (const int position : {1, 2, 3}) {
        playback.Type(kArrowDown);
        ASSERT_TRUE(playback.IsAt(position)) << playback.Text();
    }
    EXPECT_TRUE(playback.Answers("d", "the card is no longer as it was listed")) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

// ---- Giving the terminal back

TEST_F(Screen, IsTakenAndGivenBack) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.IsOnOtherScreen());
    EXPECT_FALSE(playback.Device().IsAsAtTheStart());
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_TRUE(playback.IsGivenBack());
}

TEST_F(Screen, IsGivenBackAtASignal) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGSEGV, SIGBUS}) {
        Playback playback(m_card.Root());
        ASSERT_TRUE(playback.IsAt(0));
        playback.Device().Send(signal);
        EXPECT_EQ(-1, playback.End());
        EXPECT_EQ(signal, playback.Device().EndedBy());
        EXPECT_TRUE(playback.IsGivenBack()) << signal;
    }
}

TEST_F(Screen, IsGivenBackAtAnAssertion) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Device().Send(SIGABRT); // what an assertion of the list ends in
    EXPECT_EQ(clitest::kIncomplete, playback.End());
    EXPECT_TRUE(playback.IsGivenBack());
    EXPECT_NE(playback.Device().Screen().find("the file list has ended on a broken condition"), std::string::npos);
}

TEST_F(Screen, IsGivenBackAtControlC) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    playback.Type(clitest::kInterrupt);
    EXPECT_EQ(-1, playback.End());
    EXPECT_EQ(SIGINT, playback.Device().EndedBy());
    EXPECT_TRUE(playback.IsGivenBack());
}

TEST_F(Screen, IsGivenBackWhenADeletionIsInterruptedAndSaysWhatIsLeft) {
    for (int number = 4; number < 12; ++number) {
        m_card.AddFile("100ABCDE", "KVR_00" + std::to_string(number + 10) + ".JPG");
    }
    Options slow = clitest::ColourTerminal();
    slow.environment["LD_PRELOAD"] = CLI_CHANGE_SHIM;
    slow.environment["CLI_CHANGE_SHIM"] = "slow-sync,no-sync";
    Playback playback(m_card.Root(), slow);
    for (int position = 0; position < 11; ++position) {
        ASSERT_TRUE(playback.IsAt(position)) << playback.Text();
        playback.Type(std::string(" ") + kArrowDown);
    }
    ASSERT_TRUE(playback.Answers("d", "Delete 11 files")) << playback.Text();
    playback.Type("y");
    ASSERT_TRUE(playback.Comes([&] { return m_card.Names("100ABCDE").size() < 11; }));
    playback.Device().Send(SIGTERM);
    EXPECT_EQ(-1, playback.End());
    EXPECT_EQ(SIGTERM, playback.Device().EndedBy());
    EXPECT_TRUE(playback.IsGivenBack());
    EXPECT_GT(m_card.Names("100ABCDE").size(), 0U);
    EXPECT_NE(playback.Device().Screen().find("the work was interrupted, and of what was to be deleted"),
              std::string::npos)
        << playback.Device().Screen();
}

// ---- Pictures

#ifdef DCFCTL_HAVE_PREVIEW
/// A card with pictures in which something is to be seen.
std::string SampleCard(const Card& card) {
    const std::string root = card.Root() + "/s";
    EXPECT_EQ(clitest::kSuccess, clitest::Dcfctl({"sample", root}).exit);
    return root;
}

TEST(APicture, IsDrawnInCharacters) {
    const Card card;
    Playback playback(SampleCard(card));
    EXPECT_TRUE(playback.Shows("\xe2\x96\x80\xe2\x96\x80")) << playback.Text(); // upper half blocks
    EXPECT_TRUE(playback.HasColour());
}

TEST(APicture, IsDrawnInAsciiWhereThatIsAllThereIs) {
    const Card card;
    Options options = On("vt100");
    options.environment["LC_ALL"] = "C";
    Playback playback(SampleCard(card), options);
    ASSERT_TRUE(playback.IsAt(0));
    const auto drawn = [&] { return playback.Line(19).find_first_not_of(' ', 50) != std::string::npos; };
    EXPECT_TRUE(playback.Comes(drawn)) << playback.Text();
    EXPECT_EQ(playback.Text().find("\xe2\x96"), std::string::npos) << "no blocks\n" << playback.Text();
}

TEST_F(Screen, SaysWhereThereIsNoPicture) {
    Playback playback(m_card.Root());
    EXPECT_TRUE(playback.Shows("(no preview)")) << "a movie\n" << playback.Text();
    playback.Type(kArrowDown);
    EXPECT_TRUE(playback.Shows("Position   1 of"));
    EXPECT_TRUE(playback.Shows("(no preview)")) << "an empty file\n" << playback.Text();
}

TEST(APicture, MayBeAnythingAndCostsItsPreviewOnly) {
    Card card;
    const std::string head = "\xff\xd8\xff\xe0";
    // Claims 65,500 points each way, and has none of them.
    const std::string huge =
        head + std::string("\x00\x10JFIF\x00\x01\x01\x00\x00\x01\x00\x01\x00\x00", 16) +
        std::string("\xff\xc0\x00\x11\x08\xff\xdc\xff\xdc\x03\x01\x22\x00\x02\x11\x01\x03\x11\x01", 19) +
        std::string("\xff\xda\x00\x0c\x03\x01\x00\x02\x11\x03\x11\x00\x3f\x00", 14);
    card.AddFile("100ABCDE", "KVR_0001.JPG", {huge, 0644, std::nullopt});
    card.AddFile("100ABCDE", "KVR_0002.JPG", {head + std::string(100000, '\xff'), 0644, std::nullopt});
    Playback playback(card.Root());
    EXPECT_TRUE(playback.Shows("(no preview)")) << playback.Text();
    playback.Type(kArrowDown);
    ASSERT_TRUE(playback.IsAt(1));
    EXPECT_TRUE(playback.Shows("(no preview)")) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}
#else
TEST_F(Screen, LeavesThePictureOutWhereItWasNotBuilt) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.Shows("Time (UTC)"));
    EXPECT_EQ(playback.Text().find("preview"), std::string::npos) << playback.Text();
}
#endif

} // namespace
