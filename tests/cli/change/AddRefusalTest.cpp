// What add refuses before it has taken a number: nothing on the card and in the store may change.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Options;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

void ExpectRefusal(const ChangeCard& card, const Words& files, const std::string& expected) {
    Words words = {"add"};
    words.insert(words.end(), files.begin(), files.end());
    EXPECT_EQ(expected, clitest::RefusalOf(card, words));
}

TEST(AddRefusal, OfSourcesThatAreNone) {
    ChangeCard card;
    const std::string good = card.Source("good.jpg", "good");
    const std::string beside = card.Beside();
    const std::string text = card.Source("letter.txt", "text");
    const std::string bare = card.Source("picture", "no extension");
    ExpectRefusal(card, {good, beside + "/none.jpg"},
                  "'" + beside +
                      "/none.jpg' cannot be found (No such file or directory), and nothing was added; look "
                      "at the name");
    ExpectRefusal(card, {good, beside}, "'" + beside + "' is a folder, and nothing was added; name files");
    ExpectRefusal(card, {good, text},
                  "'" + text +
                      "' is of no type that the card takes, and nothing was added; a name must end in .JPG, "
                      ".SRW, .MPO, .MP4 or .AVI");
    ExpectRefusal(card, {good, bare},
                  "'" + bare +
                      "' is of no type that the card takes, and nothing was added; a name must end in .JPG, "
                      ".SRW, .MPO, .MP4 or .AVI");
    ExpectRefusal(card, {good, ""},
                  "'' cannot be found (No such file or directory), and nothing was added; look at the "
                  "name");
    ExpectRefusal(card, {good, beside + "/../" + fs::path(beside).filename().string() + "/good.jpg"},
                  "'" + beside + "/../" + fs::path(beside).filename().string() +
                      "/good.jpg' is given twice, and nothing was added; name it once");
}

TEST(AddRefusal, OfAPipeNamedLikeAPictureWithoutWaitingForIt) {
    ChangeCard card;
    const std::string pipe = card.Beside() + "/pipe.jpg";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    ExpectRefusal(card, {pipe}, "'" + pipe + "' is a pipe or socket, and nothing was added; name files");
}

TEST(AddRefusal, OfAFileThatMayNotBeRead) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    const std::string secret = card.Source("secret.jpg", "secret");
    ASSERT_EQ(0, chmod(secret.c_str(), 0600));
    for (const std::string& path : {card.Root(), card.Dcim(), card.Beside()}) {
        ASSERT_EQ(0, chmod(path.c_str(), 0777));
    }
    const Words before = card.Before();
    Options options;
    options.user = 65534;
    const Outcome outcome = card.Run({"add", secret}, options);
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("'" + secret + "' cannot be read (Permission denied), and nothing was added; check its permissions",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

TEST(AddRefusal, OfACardThatMayNotBeWritten) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const std::string source = card.Source("a.jpg", "a");
    ASSERT_EQ(0, chmod(card.Root().c_str(), 0755));
    ASSERT_EQ(0, chmod(card.Beside().c_str(), 0777));
    const Words before = card.Before();
    Options options;
    options.user = 65534;
    const Outcome outcome = card.Run({"add", source}, options);
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("nothing can be made in '" + card.Path("100PHOTO") +
                  "' (Permission denied); check the permissions of the folder, or run as the user who may",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());

    ChangeCard fresh;
    fs::remove(fresh.Dcim());
    ASSERT_EQ(0, chmod(fresh.Root().c_str(), 0755));
    const Outcome noDcim = fresh.Run({"add", source}, options);
    EXPECT_EQ(clitest::kRefused, noDcim.exit) << noDcim.Describe();
    EXPECT_FALSE(fs::exists(fresh.Dcim()));
}

TEST(AddRefusal, OfMoreThanTheNumbersAllow) {
    ChangeCard card;
    card.Put("999PHOTO", {"KVR_9998.JPG"});
    ExpectRefusal(card, {card.Source("a.jpg", "a"), card.Source("b.jpg", "b")},
                  "there is no number left for a new file, the newest one being 999-9999; 'dcfctl renumber' frees "
                  "numbers, or take another card");
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Source("a.jpg", "a")}).exit);
}

TEST(AddRefusal, OfMoreThanTheCardHasRoomFor) {
    ChangeCard card;
    const std::string big = card.Beside() + "/big.mp4";
    std::ofstream(big).flush();
    ASSERT_EQ(0, truncate(big.c_str(), off_t{1} << 43U)); // a hole, which takes no room here
    const Words before = card.Before();
    const Outcome outcome = card.Run({"add", big, card.Source("a.jpg", "a")});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ(0U, ErrorOf(outcome).find("the files need 8.7 TB and the card has ")) << ErrorOf(outcome);
    EXPECT_NE(std::string::npos, ErrorOf(outcome).find("so nothing was added; add fewer files, or make room with "
                                                       "'dcfctl rm'"));
    EXPECT_EQ(before, card.Before());
}

TEST(AddRefusal, OfACardWhoseFolderIsALink) {
    ChangeCard card;
    const std::string outside = card.Beside() + "/outside";
    fs::create_directory(outside);
    fs::create_directory_symlink(outside, card.Path("100PHOTO"));
    ExpectRefusal(card, {card.Source("a.jpg", "a")},
                  "'" + card.Path("100PHOTO") +
                      "' is a link and no folder, and nothing outside the card is ever changed; move it away first");
    EXPECT_TRUE(fs::is_empty(outside));
}

TEST(AddRefusal, OfACardThatIsNotThere) {
    ChangeCard card;
    const Outcome outcome =
        clitest::OnCard(card.Root() + "/none", {"add", card.Source("a.jpg", "a")}, card.Environment());
    EXPECT_EQ(clitest::kCardUnreadable, outcome.exit) << outcome.Describe();
    EXPECT_FALSE(fs::exists(card.Root() + "/none"));
}

} // namespace
