// The changing verbs before a person: the question, its answers, progress, and the interruption.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include "ChangeCard.h"
#include "Terminal.h"

using clitest::ChangeCard;
using clitest::kEndOfInput;
using clitest::kInterrupt;
using clitest::Options;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

constexpr const char* kQuestion = "Delete? [y/N] ";

struct Session {
    int exit = -1;
    std::string screen; ///< Line ends as "\n".
};

/// Runs dcfctl over a card at a terminal. Once a text has appeared, keys are typed; then its end is waited for.
Session OnTerminal(const ChangeCard& card, Words words, Options options, const std::string& text = "",
                   const std::string& keys = "") {
    words.insert(words.begin(), {"--card", card.Root()});
    options.environment.emplace("TERM", "dumb");
    clitest::Terminal terminal(words, options);
    if (!text.empty()) {
        EXPECT_TRUE(terminal.Shows(text)) << terminal.Screen();
        terminal.Type(keys);
    }
    Session session;
    session.exit = terminal.End();
    session.screen = terminal.Screen();
    session.screen.erase(std::remove(session.screen.begin(), session.screen.end(), '\r'), session.screen.end());
    return session;
}

TEST(Terminal, ShowsWhatWillGoAndAsks) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"});
    const Session session = OnTerminal(card, {"rm", "--pos", "0"}, card.Environment(), kQuestion, "y\n");
    EXPECT_EQ(clitest::kSuccess, session.exit) << session.screen;
    EXPECT_EQ("To be deleted: 1 file with 1 companion (66 bytes) and 1 folder\n"
              "  " +
                  card.Path("100PHOTO", "KVR_0001.JPG") +
                  "\n"
                  "  " +
                  card.Path("100PHOTO", "KVR_0001.SRW") +
                  " (its companion)\n"
                  "  " +
                  card.Path("100PHOTO") +
                  " (a folder with nothing left in it)\n"
                  "Delete? [y/N] y\n"
                  "Deleted 1 file with 1 companion (66 bytes) and 1 folder.\n",
              session.screen);
    EXPECT_EQ(Words{}, card.DirNames());
}

TEST(Terminal, TakesEveryAnswerButYesForNo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Words before = card.Before();
    for (const char* answer : {"n\n", "\n", "yesterday\n", "no\n", kEndOfInput}) {
        const Session session = OnTerminal(card, {"rm", "--all"}, card.Environment(), kQuestion, answer);
        EXPECT_EQ(clitest::kRefused, session.exit) << answer << session.screen;
        EXPECT_NE(std::string::npos,
                  session.screen.find("dcfctl: error: nothing was deleted, since the answer was not y\n"))
            << session.screen;
        EXPECT_EQ(before, card.Before());
    }
    const Session yes = OnTerminal(card, {"rm", "--all"}, card.Environment(), kQuestion, "YES\n");
    EXPECT_EQ(clitest::kSuccess, yes.exit) << yes.screen;
}

TEST(Terminal, InterruptedAtTheQuestionChangesNothing) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Words before = card.Before();
    const Session session = OnTerminal(card, {"rm", "--all"}, card.Environment(), kQuestion, kInterrupt);
    EXPECT_EQ(-1, session.exit) << session.screen;
    EXPECT_EQ(before, card.Before());
}

TEST(Terminal, IsNotAskedWithYes) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Session session = OnTerminal(card, {"rm", "--all", "--yes"}, card.Environment());
    EXPECT_EQ(clitest::kSuccess, session.exit) << session.screen;
    EXPECT_EQ(std::string::npos, session.screen.find("[y/N]")) << session.screen;
}

TEST(Terminal, ShowsTheFirstFilesOfManyAndHowManyMore) {
    ChangeCard card;
    for (int file = 1; file <= 25; ++file) {
        card.Put("100PHOTO", {dcftest::DcfName(file)});
    }
    const Session session = OnTerminal(card, {"rm", "--all"}, card.Environment(), kQuestion, "n\n");
    EXPECT_NE(std::string::npos, session.screen.find("  and 5 files more, which --dry-run shows\n")) << session.screen;
    EXPECT_NE(std::string::npos, session.screen.find("KVR_0006.JPG")) << session.screen;
    EXPECT_EQ(std::string::npos, session.screen.find("KVR_0005.JPG")) << session.screen;
}

TEST(Terminal, IsAskedBesideAJsonDocumentToo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Session session = OnTerminal(card, {"rm", "--all", "--json"}, card.Environment(), kQuestion, "y\n");
    EXPECT_EQ(clitest::kSuccess, session.exit) << session.screen;
    EXPECT_EQ(0U, session.screen.find("To be deleted: 1 file")) << session.screen;
    EXPECT_NE(std::string::npos, session.screen.find("\n{\"format\":\"dcfctl.rm\"")) << session.screen;
}

// ---- Long work ----

TEST(Terminal, ShowsHowFarACopyIs) {
    ChangeCard card;
    const std::string source = card.Source("big.mp4", std::string(4U << 20U, 'x'));
    const Session session = OnTerminal(card, {"add", source}, WithShim(card.Environment(), "slow"));
    EXPECT_EQ(clitest::kSuccess, session.exit) << session.screen;
    EXPECT_NE(std::string::npos, session.screen.find("Copying: 2.0 MB of 4.1 MB")) << session.screen;
}

TEST(Terminal, ShowsHowFarAChangeOfProtectionIsAndSaysNothingOfAQuickOne) {
    ChangeCard card;
    for (int file = 1; file <= 40; ++file) {
        card.Put("100PHOTO", {dcftest::DcfName(file)});
    }
    const Session quick = OnTerminal(card, {"protect", "--pos", "0"}, card.Environment());
    EXPECT_EQ("Protected 1 file.\n", quick.screen);
    const Session slow = OnTerminal(card, {"protect", "--pos", "1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",
                                           "9",       "10",    "11", "12", "13", "14", "15", "16", "17", "18"},
                                    WithShim(card.Environment(), "slow-sync,no-sync"));
    EXPECT_NE(std::string::npos, slow.screen.find("Changing the protection: 16 of 18")) << slow.screen;
    EXPECT_NE(std::string::npos, slow.screen.find("Protected 18 files.\n")) << slow.screen;
}

TEST(Terminal, StopsACopyWhenInterruptedAndCleansUp) {
    ChangeCard card;
    const std::string source = card.Source("big.mp4", std::string(8U << 20U, 'x'));
    const Session session =
        OnTerminal(card, {"add", source}, WithShim(card.Environment(), "slow"), "Copying: ", kInterrupt);
    EXPECT_EQ(clitest::kIncomplete, session.exit) << session.screen;
    EXPECT_NE(std::string::npos,
              session.screen.find("the work was interrupted; nothing of it was left on the card, the "
                                  "number 100-0001 is used up"))
        << session.screen;
    EXPECT_EQ(Words{}, card.DirNames());
}

TEST(Terminal, StopsADeletionBetweenTwoFilesWhenInterrupted) {
    ChangeCard card;
    for (int folder = 100; folder < 108; ++folder) {
        card.Put(dcftest::DirName(folder), {"KVR_0001.JPG"});
    }
    const Session session = OnTerminal(card, {"rm", "--all", "--yes"}, WithShim(card.Environment(), "slow,no-sync"),
                                       "Deleting: ", kInterrupt);
    EXPECT_EQ(clitest::kIncomplete, session.exit) << session.screen;
    EXPECT_NE(std::string::npos, session.screen.find("the work was interrupted, and of what was to be deleted, this is "
                                                     "still on the card: "))
        << session.screen;
    const std::size_t left = card.DirNames().size();
    EXPECT_GT(left, 0U);
    EXPECT_LT(left, 8U);
    for (const std::string& folder : card.DirNames()) {
        EXPECT_TRUE(card.Holds(folder, "KVR_0001.JPG")) << folder;
    }
}

TEST(Terminal, LeavesNothingOfASampleThatIsInterrupted) {
    for (const bool there : {true, false}) {
        const ChangeCard card;
        const std::string place = there ? card.Beside() : card.Beside() + "/new";
        clitest::Terminal terminal({"sample", place}, WithShim(card.Environment(), "slow-fsync"));
        std::error_code none; // the folder is not there at first
        for (int wait = 0; wait < 500 && fs::directory_iterator(place, none) == fs::directory_iterator(); ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        terminal.Type(kInterrupt);
        EXPECT_EQ(clitest::kIncomplete, terminal.End()) << terminal.Screen();
        EXPECT_NE(std::string::npos,
                  terminal.Screen().find("dcfctl: error: the work was interrupted, and nothing of it "
                                         "was left; run it again"))
            << terminal.Screen();
        EXPECT_EQ(there, fs::exists(place));
        EXPECT_TRUE(fs::is_empty(card.Beside())) << "not even a hidden folder";
    }
}

} // namespace
