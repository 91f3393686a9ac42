// Marks and deletion in the browser, with their effect on the card, and what is refused.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "Playback.h"

using clitest::kArrowDown;
using clitest::kEnd;
using clitest::Playback;
using clitest::Words;
using dcftest::Card;

namespace {

constexpr mode_t kWritable = 0200;

class Marking : public testing::Test {
protected:
    Marking() {
        m_card.AddFiles("100ABCDE", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG", "KVR_0003.JPG"});
        m_card.AddFile("101ABCDE", "KVR_0004.JPG");
    }

    [[nodiscard]] bool IsProtected(const std::string& name) const {
        return (m_card.Mode("100ABCDE", name) & kWritable) == 0;
    }

    Card m_card;
};

TEST_F(Marking, SpaceSelectsAndTakesBackAndCSelectsNothing) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.HasMarks(0, ">   "));
    playback.Type(" ");
    EXPECT_TRUE(playback.HasMarks(0, ">*  ")) << playback.Text();
    EXPECT_TRUE(playback.Shows("4 files, 1 selected"));
    playback.Type(" ");
    EXPECT_TRUE(playback.HasMarks(0, ">   "));
    playback.Type(std::string(" ") + kArrowDown + " ");
    EXPECT_TRUE(playback.Shows("4 files, 2 selected")) << playback.Text();
    playback.Type("c");
    EXPECT_TRUE(playback.Hides("selected ")) << playback.Text();
}

TEST_F(Marking, PProtectsTheFileWithItsCompanionAndTakesItOffAgain) {
    Playback playback(m_card.Root());
    playback.Type(kEnd);
    ASSERT_TRUE(playback.IsAt(3));
    ASSERT_TRUE(playback.Answers("p", "1 file protected")) << playback.Text();
    EXPECT_TRUE(playback.HasMarks(3, "> P "));
    EXPECT_TRUE(IsProtected("KVR_0001.JPG"));
    EXPECT_TRUE(IsProtected("KVR_0001.SRW"));
    EXPECT_FALSE(IsProtected("KVR_0002.JPG"));
    ASSERT_TRUE(playback.Answers("p", "1 file no longer protected")) << playback.Text();
    EXPECT_FALSE(IsProtected("KVR_0001.JPG"));
    EXPECT_FALSE(IsProtected("KVR_0001.SRW"));
}

TEST_F(Marking, PProtectsTheSelectedFilesThoseThatAreAlreadyAside) {
    m_card.SetMode("100ABCDE", "KVR_0003.JPG", 0444);
    Playback playback(m_card.Root());
    playback.Type("1\r 2\r ");
    ASSERT_TRUE(playback.Shows("2 selected")) << playback.Text();
    ASSERT_TRUE(playback.Answers("p", "1 file protected, 1 already")) << playback.Text();
    EXPECT_TRUE(IsProtected("KVR_0002.JPG"));
    EXPECT_TRUE(IsProtected("KVR_0003.JPG"));
    EXPECT_FALSE(IsProtected("KVR_0001.JPG"));
}

TEST_F(Marking, WMarksForTransferAndLeavesTheCardAlone) {
    const Words before = clitest::Snapshot(m_card.Root());
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.Answers("w", "1 file marked for transfer")) << playback.Text();
    EXPECT_TRUE(playback.HasMarks(0, ">  W"));
    EXPECT_TRUE(playback.Shows("Transfer   marked"));
    playback.Type(std::string(" ") + kArrowDown + " ");
    ASSERT_TRUE(playback.Answers("w", "2 files marked for transfer")) << playback.Text();
    EXPECT_TRUE(playback.HasMarks(1, ">* W"));
    ASSERT_TRUE(playback.Answers("w", "2 files no longer marked")) << playback.Text();
    EXPECT_TRUE(playback.HasMarks(0, " *  "));
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_EQ(before, clitest::Snapshot(m_card.Root()));
}

TEST_F(Marking, DAsksAndKeepsTheFileUnlessTheAnswerIsYes) {
    const Words before = clitest::Snapshot(m_card.Root());
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    for (const char* answer : {"n", "\r", "q", " ", "\x1b"}) {
        ASSERT_TRUE(playback.Answers("d", "Delete? [y/N]")) << playback.Text();
        ASSERT_TRUE(playback.Shows("'101ABCDE/KVR_0004.JPG'")) << playback.Text();
        ASSERT_TRUE(playback.Answers(answer, "Nothing was deleted.")) << playback.Text();
    }
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_EQ(before, clitest::Snapshot(m_card.Root()));
}

TEST_F(Marking, DDeletesTheFileItsCompanionAndTheFolderThatThisEmpties) {
    Playback playback(m_card.Root());
    playback.Type(kEnd);
    ASSERT_TRUE(playback.IsAt(3));
    ASSERT_TRUE(playback.Answers("d", "Delete 1 file with 1 companion")) << playback.Text();
    ASSERT_TRUE(playback.Answers("y", "Deleted 1 file with 1 companion")) << playback.Text();
    EXPECT_EQ((Words{"KVR_0002.JPG", "KVR_0003.JPG"}), m_card.Names("100ABCDE"));
    EXPECT_TRUE(playback.IsAt(2)) << "the last one now";
    playback.Type(clitest::kHome);
    ASSERT_TRUE(playback.Answers("d", "and 1 folder")) << playback.Text();
    ASSERT_TRUE(playback.Answers("Y", "Deleted 1 file")) << playback.Text();
    EXPECT_EQ(Words{"100ABCDE"}, m_card.DirNames());
    EXPECT_TRUE(playback.Shows("2 files"));
    EXPECT_TRUE(playback.Shows("Position   0 of 0 to 1")) << "the file that moved up";
}

TEST_F(Marking, DDeletesTheSelectedFilesAndGoesBeforeTheFirstOfThem) {
    Playback playback(m_card.Root());
    playback.Type("1\r 3\r ");
    ASSERT_TRUE(playback.Shows("2 selected")) << playback.Text();
    ASSERT_TRUE(playback.Answers("d", "Delete 2 files with 1 companion")) << playback.Text();
    ASSERT_TRUE(playback.Answers("y", "Deleted 2 files with 1 companion")) << playback.Text();
    EXPECT_EQ(Words{"KVR_0002.JPG"}, m_card.Names("100ABCDE"));
    EXPECT_TRUE(playback.Shows("Position   0 of 0 to 1")) << playback.Text();
    EXPECT_TRUE(playback.Hides("selected ")) << playback.Text();
}

TEST_F(Marking, DeletingEverythingLeavesAnEmptyList) {
    Playback playback(m_card.Root());
    playback.Type("0\r 1\r 2\r 3\r ");
    ASSERT_TRUE(playback.Shows("4 selected")) << playback.Text();
    ASSERT_TRUE(playback.Answers("d", "and 2 folders")) << playback.Text();
    ASSERT_TRUE(playback.Answers("y", "There is no picture or movie")) << playback.Text();
    EXPECT_EQ(Words{}, m_card.DirNames());
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
}

TEST_F(Marking, ProtectedFilesAreKept) {
    m_card.SetMode("100ABCDE", "KVR_0001.SRW", 0444); // a companion protects its file
    Playback playback(m_card.Root());
    playback.Type("3\r");
    ASSERT_TRUE(playback.IsAt(3));
    ASSERT_TRUE(playback.Answers("d", "nothing is deleted, since all that was named is protected")) << playback.Text();
    playback.Type(" 2\r ");
    ASSERT_TRUE(playback.Answers("d", "1 file protected and kept")) << playback.Text();
    ASSERT_TRUE(playback.Answers("y", "Deleted 1 file")) << playback.Text();
    EXPECT_TRUE(playback.Hides("selected ")) << "nor are they selected any more\n" << playback.Text();
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0003.JPG"}), m_card.Names("100ABCDE"));
}

TEST_F(Marking, NothingIsChangedWhenTheCardIsNotAsItWasListed) {
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    m_card.Remove("100ABCDE", "KVR_0002.JPG");
    const Words before = clitest::Snapshot(m_card.Root());
    for (const char* key : {"d", "p"}) {
        ASSERT_TRUE(playback.Answers(key, "the card is no longer as it was listed")) << playback.Text();
        ASSERT_TRUE(playback.Answers("c", "Position ")); // the message is gone
    }
    EXPECT_EQ(before, clitest::Snapshot(m_card.Root()));
    ASSERT_TRUE(playback.Answers("r", "3 files")) << playback.Text();
    EXPECT_TRUE(playback.Answers("p", "1 file protected")) << playback.Text();
}

TEST_F(Marking, NothingIsDeletedWhenTheCardChangesWhileTheQuestionStands) {
    Playback playback(m_card.Root());
    playback.Type(kEnd);
    ASSERT_TRUE(playback.IsAt(3));
    ASSERT_TRUE(playback.Answers("d", "Delete? [y/N]")) << playback.Text();
    m_card.SetMode("100ABCDE", "KVR_0001.JPG", 0444);
    ASSERT_TRUE(playback.Answers("y", "nothing is deleted")) << playback.Text();
    EXPECT_TRUE(m_card.Exists("100ABCDE", "KVR_0001.JPG"));
    EXPECT_TRUE(m_card.Exists("100ABCDE", "KVR_0001.SRW"));
}

TEST_F(Marking, NothingIsDeletedWhenAFileIsProtectedWhileTheQuestionStands) {
    Playback playback(m_card.Root());
    playback.Type("1\r 2\r ");
    ASSERT_TRUE(playback.Answers("d", "Delete 2 files")) << playback.Text();
    m_card.SetMode("100ABCDE", "KVR_0002.JPG", 0444);
    ASSERT_TRUE(playback.Answers("y", "the card has changed since the question")) << playback.Text();
    EXPECT_EQ(4U, m_card.Names("100ABCDE").size());
}

TEST_F(Marking, TellsWhatCouldNotBeDeletedAndChangesNothingMore) {
    clitest::Options broken = clitest::ColourTerminal();
    broken.environment["LD_PRELOAD"] = CLI_CHANGE_SHIM;
    broken.environment["CLI_CHANGE_SHIM"] = "keep-files,no-sync";
    Playback playback(m_card.Root(), broken);
    ASSERT_TRUE(playback.IsAt(0));
    ASSERT_TRUE(playback.Answers("d", "Delete 1 file")) << playback.Text();
    ASSERT_TRUE(playback.Answers("y", "of what was to be deleted, this is still on the card")) << playback.Text();
    EXPECT_TRUE(playback.Answers("p", "the card is no longer as it was listed")) << playback.Text();
    ASSERT_TRUE(playback.Answers("r", "The card was listed anew.")) << playback.Text();
    EXPECT_TRUE(playback.Answers("p", "1 file protected")) << playback.Text();
}

TEST_F(Marking, WaitsForAnotherRunThatChangesTheCard) {
    const int held = open(m_card.Root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(0, flock(held, LOCK_EX));
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.Answers("p", "another dcfctl is changing the card")) << playback.Text();
    ASSERT_TRUE(playback.Answers("d", "Delete? [y/N]")) << playback.Text();
    EXPECT_TRUE(playback.Answers("y", "another dcfctl is changing the card")) << playback.Text();
    close(held);
    EXPECT_TRUE(playback.Answers("p", "1 file protected")) << playback.Text();
}

TEST_F(Marking, AFileWithASecondNameElsewhereIsNotProtected) {
    ASSERT_EQ(0, link(m_card.Path("101ABCDE", "KVR_0004.JPG").c_str(), (m_card.Root() + "/other").c_str()));
    Playback playback(m_card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    EXPECT_TRUE(playback.Answers("p", "has a second name elsewhere")) << playback.Text();
    EXPECT_NE(0U, m_card.Mode("101ABCDE", "KVR_0004.JPG") & kWritable);
}

/// What a key is answered with on a card, whose files it must leave as they are.
void ExpectRefused(const Card& card, const std::string& keys, const std::string& text) {
    const Words before = clitest::Snapshot(card.Root());
    Playback playback(card.Root());
    ASSERT_TRUE(playback.Shows("dcfctl browse"));
    EXPECT_TRUE(playback.Answers(keys, text)) << playback.Text();
    EXPECT_EQ(playback.Quit(), clitest::kSuccess);
    EXPECT_EQ(before, clitest::Snapshot(card.Root()));
}

TEST(AwkwardCards, FilesOfFoldersThatShareANumberAreNotChanged) {
    Card card;
    card.AddFile("101ABCDE", "KVR_0009.JPG");
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    card.AddFile("100FGHIJ", "KVR_0001.JPG");
    EXPECT_TRUE(Playback(card.Root()).Shows("share the number 100"));
    for (const char* key : {"p", "d"}) {
        ExpectRefused(card, kArrowDown + std::string(key), "two folders that share a number");
    }
    ExpectRefused(card, "2\r", "cannot be placed on");
    ExpectRefused(card, std::string(kEnd) + "w", "find another file by these numbers");
}

TEST(AwkwardCards, CameraFilesThatShareANumberAreNotChanged) {
    Card card;
    card.AddFiles("Camera", {"20240501_123456.JPG", "20240502_123456.JPG"});
    for (const char* key : {"p", "d"}) {
        ExpectRefused(card, key, "have one number in \"Camera\"");
    }
}

TEST(AwkwardCards, ALinkIsNotFollowed) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    ASSERT_EQ(0, symlink("/etc/hostname", card.Path("100ABCDE", "KVR_0002.JPG").c_str()));
    for (const char* key : {"p", "d"}) {
        ExpectRefused(card, key, "no picture or movie, so it is not touched");
    }
}

TEST(AwkwardCards, AFileNumberOfZeroDoesNotStopTheCursor) {
    Card card;
    card.AddFiles("101ABCDE", {"KVR_0000.JPG", "KVR_0001.JPG"});
    card.AddFile("100ABCDE", "KVR_0002.JPG");
    Playback playback(card.Root());
    ASSERT_TRUE(playback.IsAt(0));
    for (const int position : {1, 2}) {
        playback.Type(kArrowDown);
        ASSERT_TRUE(playback.IsAt(position)) << playback.Text();
    }
    playback.Type(std::string(clitest::kArrowUp) + clitest::kArrowUp);
    EXPECT_TRUE(playback.IsAt(0)) << playback.Text();
}

} // namespace
