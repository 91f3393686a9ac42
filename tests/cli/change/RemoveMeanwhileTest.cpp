// The card changes behind the list's back while rm asks. What leaves the list then shifts the positions of what stays,
// and still no file may go that was not named.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "ChangeCard.h"
#include "Terminal.h"

using clitest::ChangeCard;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// Runs rm to its question, changes the card, and says yes. @return the exit code.
int RemoveMeanwhile(const ChangeCard& card, Words words, const std::function<void()>& change) {
    words.insert(words.begin(), {"--card", card.Root(), "rm"});
    clitest::Options options = WithShim(card.Environment(), "no-sync");
    options.environment.emplace("TERM", "dumb");
    clitest::Terminal terminal(words, options);
    EXPECT_TRUE(terminal.Shows("Delete? [y/N] ")) << terminal.Screen();
    change();
    terminal.Type("y\n");
    const int exit = terminal.End();
    EXPECT_EQ(std::string::npos, terminal.Screen().find("assert")) << terminal.Screen();
    return exit;
}

void Empty(const std::string& folder) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        fs::remove(entry.path());
    }
}

class RemovedMeanwhile : public testing::Test {
protected:
    RemovedMeanwhile() {
        m_card.Put("103PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
        m_card.Put("102PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG"});
        m_card.Put("101PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG", "KVR_0004.JPG", "KVR_0005.JPG"});
    }

    void Expect101Whole() const {
        for (const char* name : {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG", "KVR_0004.JPG", "KVR_0005.JPG"}) {
            EXPECT_TRUE(m_card.Holds("101PHOTO", name)) << name;
        }
    }

    ChangeCard m_card;
};

TEST_F(RemovedMeanwhile, AFolderInFrontThatHasLostItsFilesMisdirectsNothing) {
    // As a set of the library, 102's positions would be matched against 101.
    const int exit = RemoveMeanwhile(m_card, {"102PHOTO/KVR_0002.JPG", "102PHOTO/KVR_0001.JPG"},
                                     [this] { Empty(m_card.Path("103PHOTO")); });
    EXPECT_EQ(clitest::kSuccess, exit);
    EXPECT_EQ(Words{"KVR_0003.JPG"}, m_card.Names("102PHOTO"));
    EXPECT_TRUE(m_card.Holds("102PHOTO", "KVR_0003.JPG"));
    Expect101Whole();
}

TEST_F(RemovedMeanwhile, AFolderInFrontThatIsGoneMisdirectsNothing) {
    const int exit = RemoveMeanwhile(m_card, {"102PHOTO/KVR_0003.JPG", "101PHOTO/KVR_0005.JPG"},
                                     [this] { fs::rename(m_card.Path("103PHOTO"), m_card.Path("elsewhere")); });
    EXPECT_EQ(clitest::kSuccess, exit);
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG"}), m_card.Names("102PHOTO"));
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG", "KVR_0004.JPG"}), m_card.Names("101PHOTO"));
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG"}), m_card.Names("elsewhere"));
}

TEST_F(RemovedMeanwhile, TheFolderOfTheFilesItselfMisdirectsNothing) {
    // It leaves the list with the first file, and the positions of the others are then those of 101.
    const int exit =
        RemoveMeanwhile(m_card, {"102PHOTO/KVR_0003.JPG", "102PHOTO/KVR_0002.JPG", "102PHOTO/KVR_0001.JPG"},
                        [this] { Empty(m_card.Path("102PHOTO")); });
    EXPECT_EQ(clitest::kSuccess, exit);
    EXPECT_EQ((Words{"101PHOTO", "103PHOTO"}), m_card.DirNames());
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG"}), m_card.Names("103PHOTO"));
    Expect101Whole();
}

TEST_F(RemovedMeanwhile, TheLastFolderOfTheListItselfEndsNothing) {
    // It leaves the list with the first file, and then there are no positions of the others.
    const int exit =
        RemoveMeanwhile(m_card, {"103PHOTO/KVR_0001.JPG", "101PHOTO/KVR_0001.JPG", "101PHOTO/KVR_0005.JPG"},
                        [this] { Empty(m_card.Path("101PHOTO")); });
    EXPECT_EQ(clitest::kSuccess, exit);
    EXPECT_EQ((Words{"102PHOTO", "103PHOTO"}), m_card.DirNames());
    EXPECT_EQ(Words{"KVR_0002.JPG"}, m_card.Names("103PHOTO"));
}

TEST_F(RemovedMeanwhile, TheShellRefusesASetThatAFolderWithoutItsFilesWouldMisdirect) {
    // 103 would leave the list with both its positions, and the position meant for 102 be matched against 101.
    clitest::Options options = m_card.Environment();
    options.environment.emplace("TERM", "dumb");
    clitest::Terminal terminal({"--card", m_card.Root(), "shell"}, options);
    for (const char* line : {"Listup\n", "SetSel 0 true\n", "SetSel 2 true\n"}) {
        ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
        terminal.Type(line);
    }
    ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
    Empty(m_card.Path("103PHOTO"));
    terminal.Type("DeleteSel\n");
    EXPECT_TRUE(terminal.Shows("DeleteSel: the files of '" + m_card.Path("103PHOTO") +
                               "' are no longer on the card, so what is selected behind them would be taken for other "
                               "files; Create and Listup list anew"))
        << terminal.Screen();
    EXPECT_TRUE(terminal.ShowsPrompt()) << terminal.Screen(); // the end that comes between two lines may be lost
    terminal.Type(clitest::kEndOfInput);
    (void)terminal.End(); // ends with the input, whatever was said before
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG"}), m_card.Names("102PHOTO"));
    Expect101Whole();
}

TEST_F(RemovedMeanwhile, TheShellTellsWhenTheCursorWouldLoseItsFile) {
    // What is left of 102 on the card is in the set, so 102 leaves the list, and the cursor's position with it.
    clitest::Options options = m_card.Environment();
    options.environment.emplace("TERM", "dumb");
    clitest::Terminal terminal({"--card", m_card.Root(), "shell"}, options);
    for (const char* line : {"Listup\n", "SetSel 4 true\n"}) {
        ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
        terminal.Type(line);
    }
    ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
    fs::remove(m_card.Path("102PHOTO", "KVR_0003.JPG"));
    fs::remove(m_card.Path("102PHOTO", "KVR_0002.JPG"));
    terminal.Type("DeleteSel\n");
    EXPECT_TRUE(terminal.Shows("DeleteSel: the files of '" + m_card.Path("102PHOTO") +
                               "' are no longer all on the card, so the cursor would be lost; Create and Listup list "
                               "anew"))
        << terminal.Screen();
    EXPECT_TRUE(terminal.ShowsPrompt()) << terminal.Screen(); // the end that comes between two lines may be lost
    terminal.Type(clitest::kEndOfInput);
    (void)terminal.End(); // as above
    EXPECT_TRUE(m_card.Holds("102PHOTO", "KVR_0001.JPG"));
}

TEST_F(RemovedMeanwhile, AFileThatWasProtectedInTheMeantimeStays) {
    m_card.AddDir("100PHOTO"); // makes --all end with the operation that deletes protected files too
    const int exit = RemoveMeanwhile(m_card, {"--all"}, [this] { m_card.SetMode("102PHOTO", "KVR_0002.JPG", 0444); });
    EXPECT_EQ(clitest::kIncomplete, exit);
    EXPECT_TRUE(m_card.Holds("102PHOTO", "KVR_0002.JPG"));
    EXPECT_EQ((Words{"100PHOTO", "102PHOTO"}), m_card.DirNames());
}

TEST_F(RemovedMeanwhile, TheShellDeletesASetWhoseLastFolderAloneHasLostItsFiles) {
    clitest::Options options = m_card.Environment();
    options.environment.emplace("TERM", "dumb");
    clitest::Terminal terminal({"--card", m_card.Root(), "shell"}, options);
    for (const char* line : {"Listup\n", "SetSel 2 true\n", "SetSel 4 true\n"}) {
        ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
        terminal.Type(line);
    }
    ASSERT_TRUE(terminal.ShowsPrompt()) << terminal.Screen();
    Empty(m_card.Path("102PHOTO"));
    terminal.Type("DeleteSel\n");
    EXPECT_TRUE(terminal.Shows("DeleteSel = 0")) << terminal.Screen();
    EXPECT_TRUE(terminal.ShowsPrompt()) << terminal.Screen(); // the end that comes between two lines may be lost
    terminal.Type(clitest::kEndOfInput);
    EXPECT_EQ(clitest::kSuccess, terminal.End()) << terminal.Screen();
    EXPECT_EQ((Words{"101PHOTO", "103PHOTO"}), m_card.DirNames());
    Expect101Whole();
}

} // namespace
