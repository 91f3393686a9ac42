// add when the card fails on the way: nothing half-written stays, a folder made for nothing goes again, and the message
// names the number that is used up.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "ChangeCard.h"
#include "PrivateMount.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::ReadFile;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

TEST(AddFailure, LeavesNothingWhenAFileCannotBeBroughtToTheCard) {
    ChangeCard card;
    fs::remove(card.Dcim());
    const std::string source = card.Source("a.jpg", "a");
    const Outcome outcome = card.Run({"add", source}, WithShim(card.Environment(), "fail-fsync"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("'" + source + "' was not added as '" + card.Path("100PHOTO", "KVR_0001.JPG") +
                  "': it cannot be brought to the card (Input/output error); nothing of it was left on the card, the "
                  "number 100-0001 is used up, and it can be added again under the next one",
              ErrorOf(outcome));
    EXPECT_TRUE(fs::is_empty(card.Root())) << "the folders that were made for it";
    EXPECT_EQ("  series value 100-0001 (before: none)\nAdded 0 files (0 bytes).\nNot added:\n  " + source + "\n",
              outcome.out);
}

TEST(AddFailure, TakesTheFirstOfAPairBackWhenTheSecondFails) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::string picture = card.Source("a.jpg", "a");
    const std::string raw = card.Source("a.srw", "b");
    const Outcome outcome = card.Run({"add", picture, raw}, WithShim(card.Environment(), "fail-companion"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("'" + raw + "' was not added as '" + card.Path("100PHOTO", "KVR_0002.JPG") +
                  "': it cannot be given its name (Input/output error); nothing of it was left on the card, the number "
                  "100-0002 is used up, and it can be added again under the next one (2 files not added in all)",
              ErrorOf(outcome));
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("100PHOTO"));
}

TEST(AddFailure, RemovesItsPlaceholderWhereTheLastStepFails) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome =
        card.Run({"add", card.Source("a.jpg", "a")}, WithShim(card.Environment(), "no-flags,no-links,fail-rename"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("100PHOTO"));
}

TEST(AddFailure, KeepsWhatWasAddedBeforeAndNamesTheRest) {
    ChangeCard card;
    const std::string first = card.Source("a.jpg", "a");
    const std::string second = card.Source("b.jpg", "b");
    const std::string pairRaw = card.Source("c.srw", "c");
    const std::string pair = card.Source("c.jpg", "cc");
    const std::string last = card.Source("d.jpg", "d");
    Options options = WithShim(card.Environment(), "fail-companion");
    const Outcome outcome = card.Run({"add", "--json", first, second, pair, pairRaw, last}, options);
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_0001.JPG"), card.Path("100PHOTO", "KVR_0002.JPG")}),
              PathsIn(json["files"]));
    EXPECT_EQ((Words{pair, pairRaw, last}), PathsIn(json["not_added"]));
    EXPECT_EQ(10000003, json["series_value"]);
    EXPECT_EQ(clitest::kIncomplete, json["error"]["exit_code"]);
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG"}), card.Names("100PHOTO"));
    // What failed can be added again.
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", pair, pairRaw, last}).exit);
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG", "KVR_0003.SRW", "KVR_0004.JPG"}),
              card.Names("100PHOTO"));
}

/// The names on the card that are no pictures.
Words Leftovers(const ChangeCard& card, const std::string& folder) {
    Words names;
    for (const std::string& name : card.Names(folder)) {
        if (name.find(".part") != std::string::npos) {
            names.push_back(name);
        }
    }
    return names;
}

/// Starts a slow copy, sends a signal once its temporary file is there, and waits. @return the wait status.
int CopyAndSignal(const ChangeCard& card, const std::string& source, int signal) {
    const Options options = WithShim(card.Environment(), "slow");
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
        if (dup2(nowhere, STDOUT_FILENO) >= 0 && dup2(nowhere, STDERR_FILENO) >= 0) {
            clitest::RunAsIs({"--card", card.Root(), "add", source}, options);
        }
        _exit(125);
    }
    for (int wait = 0; wait < 1000 && Leftovers(card, "100PHOTO").empty(); ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(1U, Leftovers(card, "100PHOTO").size());
    EXPECT_EQ(0, kill(child, signal));
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    return status;
}

TEST(AddFailure, CleansUpWhenItIsInterrupted) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ChangeCard card;
        const std::string source = card.Source("big.mp4", std::string(5U << 20U, 'x'));
        const int status = CopyAndSignal(card, source, signal);
        EXPECT_TRUE(WIFEXITED(status)) << status;
        EXPECT_EQ(clitest::kIncomplete, WEXITSTATUS(status));
        EXPECT_EQ(Words{}, card.DirNames()) << "the folder that was made for it";
        EXPECT_EQ(10000001, card.Series()) << "the number is used up";
    }
}

TEST(AddFailure, LeavesNoPictureWhenItIsKilledAndTheNextRunCleansUp) {
    ChangeCard card;
    const std::string source = card.Source("big.mp4", std::string(5U << 20U, 'x'));
    const int status = CopyAndSignal(card, source, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(1U, Leftovers(card, "100PHOTO").size());
    EXPECT_EQ(1U, card.Names("100PHOTO").size());
    EXPECT_EQ(0, card.RunJson({"count"})["counts"]["files"]);
    const std::string small = card.Source("small.jpg", "small");
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", small}).exit);
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("100PHOTO"));
}

TEST(AddFailure, DoesNotTakeTheFileOfARunThatIsAtWorkForALeftover) {
    ChangeCard card;
    card.AddFile("100PHOTO", ".dcfctl-0123abcd.part");
    const int fd = open(card.Path("100PHOTO", ".dcfctl-0123abcd.part").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(0, flock(fd, LOCK_EX)); // as that run does, which may know the card by another path
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Source("a.jpg", "a")}).exit);
    EXPECT_EQ((Words{".dcfctl-0123abcd.part", "KVR_0001.JPG"}), card.Names("100PHOTO"));
    close(fd);
}

TEST(AddFailure, KeepsAnotherRunFromChangingTheCardAtTheSameTime) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const int fd = open(card.Root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(0, flock(fd, LOCK_EX));
    const Words before = card.Before();
    for (const Words& words : {Words{"add", card.Source("a.jpg", "a")}, Words{"next-name"},
                               Words{"rm", "--yes", "--all"}, Words{"protect", "--all"}, Words{"renumber"}}) {
        const Outcome outcome = card.Run(words);
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ("another dcfctl is changing the card at '" + card.Root() +
                      "', so nothing was changed; try again when it is done",
                  ErrorOf(outcome));
        EXPECT_EQ(before, card.Before());
    }
    EXPECT_EQ(clitest::kSuccess, card.Run({"capacity"}).exit);
    close(fd);
}

TEST(AddFailure, NeverOverwritesAFileThatCameInTheMeantime) {
    for (const char* what : {"slow", "slow,no-flags", "slow,no-flags,no-links"}) {
        ChangeCard card;
        card.AddDir("100PHOTO");
        const std::string source = card.Source("mine.jpg", std::string(2U << 20U, 'x'));
        std::thread other([&] {
            for (int wait = 0; wait < 1000 && Leftovers(card, "100PHOTO").empty(); ++wait) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            card.Put("100PHOTO", {"KVR_0001.JPG"});
        });
        const Outcome outcome = card.Run({"add", source}, WithShim(card.Environment(), what));
        other.join();
        EXPECT_EQ(clitest::kIncomplete, outcome.exit) << what << outcome.Describe();
        EXPECT_NE(std::string::npos, ErrorOf(outcome).find("it cannot be given its name (File exists)"))
            << outcome.Describe();
        EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("100PHOTO")) << what;
        EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG")) << what;
    }
}

TEST(AddFailure, OnAFullCardLeavesNothingHalfWritten) {
    const ChangeCard card;
    const std::string source = card.Source("big.mp4", std::string(3U << 20U, 'x'));
    const std::string small = card.Source("small.jpg", "small");
    const dcftest::Ending ending = dcftest::RunWithDefaultRoot(card.Root(), [&] {
        const std::string root = dcftest::kDefaultRoot;
        if (mount("tmpfs", root.c_str(), "tmpfs", 0, "size=4m") != 0) {
            dcftest::RefuseInChild("a small card");
        }
        // The room goes only after it was looked for.
        fs::create_directories(root + "/DCIM/100PHOTO");
        Options options = WithShim(card.Environment(), "fill-card");
        options.environment["CLI_CHANGE_FILLER"] = root + "/filler";
        const Outcome outcome = clitest::OnCard(root, {"add", small, source}, options);
        EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
        EXPECT_NE(std::string::npos,
                  ErrorOf(outcome).find("it cannot be written to the card (No space left on device)"))
            << outcome.Describe();
        EXPECT_NE(std::string::npos, ErrorOf(outcome).find("the number 100-0002 is used up")) << outcome.Describe();
        Words names;
        for (const auto& entry : fs::directory_iterator(root + "/DCIM/100PHOTO")) {
            names.push_back(entry.path().filename());
        }
        EXPECT_EQ(Words{"KVR_0001.JPG"}, names);
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(AddFailure, OnACardThatIsTooSmallIsRefusedBeforehand) {
    const ChangeCard card;
    const std::string source = card.Source("big.mp4", std::string(3U << 20U, 'x'));
    const dcftest::Ending ending = dcftest::RunWithDefaultRoot(card.Root(), [&] {
        const std::string root = dcftest::kDefaultRoot;
        if (mount("tmpfs", root.c_str(), "tmpfs", 0, "size=2m") != 0) {
            dcftest::RefuseInChild("a small card");
        }
        const Outcome outcome = clitest::OnCard(root, {"add", source}, card.Environment());
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ("the files need 3.1 MB and the card has 2.0 MB free, so nothing was added; add fewer files, or make "
                  "room with 'dcfctl rm'",
                  ErrorOf(outcome));
        EXPECT_TRUE(fs::is_empty(root));
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(AddFailure, OnACardThatIsMountedReadOnlyIsRefusedBeforehand) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::string source = card.Source("a.jpg", "a");
    const dcftest::Ending ending = dcftest::RunWithDefaultRoot(card.Root(), [&] {
        const std::string root = dcftest::kDefaultRoot;
        if (mount(nullptr, root.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) != 0) {
            dcftest::RefuseInChild("a read-only card");
        }
        const std::string cure = " (Read-only file system); the card is mounted read-only, or its lock switch is on: "
                                 "unlock it, and mount it for writing";
        const std::vector<std::pair<Words, std::string>> rows = {
            {{"add", source}, "nothing can be made in '" + root + "/DCIM/100PHOTO'" + cure},
            {{"next-name"}, "nothing can be made in '" + root + "/DCIM/100PHOTO'" + cure},
            {{"rm", "--yes", "--all"}, "nothing can be deleted in '" + root + "/DCIM'" + cure},
            {{"renumber"}, "nothing can be renamed in '" + root + "/DCIM'" + cure},
            {{"protect", "--all"},
             "the change of protection had no effect for 1 file ('" + root +
                 "/DCIM/100PHOTO/KVR_0001.JPG'): the card is mounted read-only; mount '" + root +
                 "' with the option rw"},
        };
        for (const auto& [words, expected] : rows) {
            const Outcome outcome = clitest::OnCard(root, words, card.Environment());
            EXPECT_EQ(words[0] == "protect" ? clitest::kIncomplete : clitest::kRefused, outcome.exit)
                << outcome.Describe();
            EXPECT_EQ(expected, ErrorOf(outcome));
        }
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
    EXPECT_FALSE(fs::exists(card.Store())); // no number was taken
}

} // namespace
