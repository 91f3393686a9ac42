// dcfctl in front of a person: colours, escaped names, and the shell's prompt.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"
#include "Terminal.h"

using clitest::kEndOfInput;
using clitest::kInterrupt;
using clitest::kTab;
using clitest::kUp;
using clitest::Options;
using clitest::Terminal;
using clitest::Words;
using dcftest::Card;

namespace {

Options On(const std::string& terminal) {
    Options options;
    options.environment["TERM"] = terminal;
    return options;
}

/// Runs to the end. @return everything that appeared.
std::string Screen(const Words& arguments, const Options& options) {
    Terminal terminal(arguments, options);
    EXPECT_GE(terminal.End(), 0);
    return terminal.Screen();
}

TEST(Colours, AreForTerminalsThatHaveThem) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Words ls = {"--card", card.Root(), "ls"};
    const Words wrong = {"--card", card.Root() + "/no", "ls"};
    EXPECT_NE(Screen(ls, On("xterm"))
                  .find("\x1b[1m"
                        "POS"),
              std::string::npos);
    EXPECT_NE(Screen(wrong, On("xterm")).find("dcfctl: \x1b[1;31merror\x1b[0m: there"), std::string::npos);
    Options none = On("xterm");
    none.environment["NO_COLOR"] = "1";
    Options empty = On("xterm");
    empty.environment["NO_COLOR"] = "";
    EXPECT_NE(Screen(ls, empty).find('\x1b'), std::string::npos) << "an empty NO_COLOR says nothing";
    for (const Options& options : {none, On("dumb"), Options()}) {
        EXPECT_EQ(Screen(ls, options).find('\x1b'), std::string::npos);
        EXPECT_EQ(Screen(wrong, options).find('\x1b'), std::string::npos);
    }
}

TEST(NamesOnATerminal, AreEscapedInEveryFormButTheNulOne) {
    Card card;
    card.AddFile("100\x1b]0;x", "AB\xc3\xa4"
                                "0001.JPG");
    const std::string shown = card.Dcim() + "/100\\x1b]0;x/AB\xc3\xa4"
                                            "0001.JPG";
    for (const Words& verb : {Words{"ls"}, {"ls", "--paths"}, {"show", "0"}}) {
        Words arguments = {"--card", card.Root()};
        arguments.insert(arguments.end(), verb.begin(), verb.end());
        const std::string screen = Screen(arguments, On("dumb"));
        EXPECT_NE(screen.find(shown), std::string::npos) << screen;
        EXPECT_EQ(screen.find('\x1b'), std::string::npos);
    }
    const std::string bare = Screen({"--card", card.Root(), "ls", "-0"}, On("dumb"));
    EXPECT_NE(bare.find("100\x1b]0;x/AB\xc3\xa4"
                        "0001.JPG"),
              std::string::npos);
    const std::string json = Screen({"--card", card.Root(), "ls", "--json"}, On("xterm"));
    EXPECT_EQ(json.find('\x1b'), std::string::npos);
}

TEST(NamesOnATerminal, AreAsciiWhereTheLocaleIsNotUtf8) {
    Card card;
    card.AddFile("100ABCDE", "AB\xc3\xa4"
                             "0001.JPG");
    Options options = On("dumb");
    options.environment["LC_ALL"] = "C";
    for (const Words& verb : {Words{"ls"},
                              {"ls", "--paths"},
                              {"show", "0"},
                              {"show", "AB\xc3\xa4"
                                       "0009.JPG"}}) {
        Words arguments = {"--card", card.Root()};
        arguments.insert(arguments.end(), verb.begin(), verb.end());
        const std::string screen = Screen(arguments, options);
        EXPECT_NE(screen.find("AB\\xc3\\xa4"
                              "000"),
                  std::string::npos)
            << screen;
    }
}

/// A shell at a prompt, on a card with three files.
class Prompt : public testing::Test {
protected:
    Prompt() {
        m_card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0002.JPG"});
        m_card.AddFile("101ABCDE", "KVR_0003.MP4");
    }

    [[nodiscard]] Words Arguments() const {
        return {"--card", m_card.Root(), "shell"};
    }

    Card m_card;
};

TEST_F(Prompt, GreetsAnswersAndEndsWithQuit) {
    Terminal terminal(Arguments(), On("dumb"));
    ASSERT_TRUE(
        terminal.Shows("Card '" + m_card.Root() + "'. Listup lists it, help shows the operations, quit leaves."))
        << terminal.Screen();
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type("Listup\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3")) << terminal.Screen();
    terminal.Type("GetAt 9\n");
    ASSERT_TRUE(terminal.Shows("dcfctl: error: GetAt: there is no position 9; the list has 0 to 2"))
        << terminal.Screen();
    terminal.Type("quit\n");
    EXPECT_EQ(terminal.End(), clitest::kSuccess) << "what went wrong at a prompt was told there";
}

TEST_F(Prompt, EndsWithTheInput) {
    Terminal terminal(Arguments(), On("dumb"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type(kEndOfInput);
    EXPECT_EQ(terminal.End(), clitest::kSuccess);
}

TEST_F(Prompt, CompletesOperationsWordsAndPaths) {
    Terminal terminal(Arguments(), On("xterm"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type(std::string("lis") + kTab);
    ASSERT_TRUE(terminal.Shows("Listup")) << terminal.Screen();
    terminal.Type("\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3")) << terminal.Screen();
    terminal.Type(std::string("RegisterP") + kTab + "d" + kTab + "\n");
    ASSERT_TRUE(terminal.Shows("RegisterPhotoMetadataCB = 1")) << terminal.Screen();
    terminal.Type(std::string("GetFileL") + kTab + kTab + "1" + kTab + "\n");
    ASSERT_TRUE(terminal.Shows("GetFileListIndex = 0")) << terminal.Screen();
    terminal.Type(std::string("GetCur") + kTab);
    ASSERT_TRUE(terminal.Shows("GetCurIndex")) << terminal.Screen();
    ASSERT_TRUE(terminal.Shows("GetCurrent")) << terminal.Screen();
}

TEST_F(Prompt, KeepsAHistory) {
    Terminal terminal(Arguments(), On("xterm"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type("Listup\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3"));
    terminal.Type("GetCount\n");
    ASSERT_TRUE(terminal.Shows("GetCount = 3"));
    terminal.Type(std::string(kUp) + "\n");
    ASSERT_TRUE(terminal.Shows("GetCount = 3")) << terminal.Screen();
    terminal.Type(std::string(kUp) + kUp + "\n");
    ASSERT_TRUE(terminal.Shows("Listup: the card is listed already")) << terminal.Screen();
}

TEST_F(Prompt, GivesALineUpAtAnInterruptAndGoesOn) {
    Terminal terminal(Arguments(), On("xterm"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type("DeleteAll");
    ASSERT_TRUE(terminal.Shows("DeleteAll"));
    terminal.Type(kInterrupt);
    ASSERT_TRUE(terminal.Shows("^C")) << terminal.Screen();
    terminal.Type("Listup\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3")) << terminal.Screen();
}

TEST_F(Prompt, GivesTheTerminalBackAsItWas) {
    Terminal terminal(Arguments(), On("xterm"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    EXPECT_FALSE(terminal.IsAsAtTheStart()) << "the editor has it";
    terminal.Type("quit\n");
    EXPECT_EQ(terminal.End(), clitest::kSuccess);
    EXPECT_TRUE(terminal.IsAsAtTheStart());
}

TEST_F(Prompt, RefusesANameWhenAFolderHasComeSinceTheListing) {
    Terminal terminal(Arguments(), On("dumb"));
    ASSERT_TRUE(terminal.ShowsPrompt());
    terminal.Type("Listup\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3"));
    m_card.AddDir("102PHOTO");
    terminal.Type("GetNewFileName JPG\n");
    ASSERT_TRUE(
        terminal.Shows("GetNewFileName: the folder '102PHOTO' has come after the listing; Create and Listup list "
                       "anew"))
        << terminal.Screen();
    terminal.Type("Create\n");
    ASSERT_TRUE(terminal.Shows("Create = 0"));
    terminal.Type("Listup\n");
    ASSERT_TRUE(terminal.Shows("Listup = 3"));
    terminal.Type("GetNewFileName JPG\n");
    ASSERT_TRUE(terminal.Shows("  path       " + m_card.Path("102PHOTO", "KVR_0001.JPG"))) << terminal.Screen();
}

TEST_F(Prompt, IsNotThereWhenTheOutputGoesElsewhere) {
    Options options;
    options.input = "Listup\n";
    const auto run = clitest::OnCard(m_card.Root(), {"shell"}, options);
    EXPECT_EQ(run.out, "Listup = 3\n");
}

} // namespace
