// What count and show tell, and what they answer to names and positions that are not there.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"

using clitest::ErrorLine;
using clitest::Joined;
using clitest::OnCard;
using clitest::Options;
using dcftest::Card;
using dcftest::FileTraits;

namespace {

void FillSmall(Card& card) {
    FileTraits traits;
    traits.mtime = 1714557600; // 2024-05-01T10:00:00Z
    card.AddFile("100ABCDE", "KVR_0001.JPG", traits);
    card.AddFile("100ABCDE", "KVR_0001.SRW", traits);
    card.AddFile("100ABCDE", "KVR_0002.MP4", traits);
    traits.mode = 0444;
    card.AddFile("101ABCDE", "KVR_0003.JPG", traits);
    card.AddFile("Camera", "20240501_101010.JPG", traits);
}

/// What show prints of 100ABCDE/KVR_0001.JPG in that card.
std::string FirstFile(const Card& card) {
    return Joined({card.Path("100ABCDE", "KVR_0001.JPG"), "  position   2", "  type       JPG",
                   "  companion  " + card.Path("100ABCDE", "KVR_0001.SRW"), "  folder     100", "  number     1",
                   "  protected  no", "  Wi-Fi mark no", "  time       " + clitest::ShownTime("2024-05-01T10:00:00Z"),
                   clitest::kNoMetadata});
}

TEST(Count, IsTheNumberOfFiles) {
    Card card;
    FillSmall(card);
    const auto run = OnCard(card.Root(), {"count"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, "4\n");
    EXPECT_EQ(run.err, "");
}

TEST(Count, IsTheNumberOfOneTypeWithCompanions) {
    Card card;
    FillSmall(card);
    for (const auto& [type, count] : {std::pair{"JPG", "3\n"}, {"srw", "1\n"}, {"MP4", "1\n"}, {"AVI", "0\n"}}) {
        EXPECT_EQ(OnCard(card.Root(), {"count", "--type", type}).out, count) << type;
    }
}

TEST(Count, LeavesCameraOut) {
    Card card;
    FillSmall(card);
    EXPECT_EQ(OnCard(card.Root(), {"count", "--no-camera"}).out, "3\n");
}

TEST(Show, TellsEverythingAboutAPosition) {
    Card card;
    FillSmall(card);
    const auto run = OnCard(card.Root(), {"show", "2"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.out, FirstFile(card));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(OnCard(card.Root(), {"show", "0"}).out,
              Joined({card.Path("101ABCDE", "KVR_0003.JPG"), "  position   0", "  type       JPG", "  companion  -",
                      "  folder     101", "  number     3", "  protected  yes", "  Wi-Fi mark no",
                      "  time       " + clitest::ShownTime("2024-05-01T10:00:00Z"), clitest::kNoMetadata}));
}

TEST(Show, FindsAFileByEveryFormOfItsPath) {
    Card card;
    FillSmall(card);
    const struct {
        std::string path;
        const char* why;
    } rows[] = {
        {card.Path("100ABCDE", "KVR_0001.JPG"), "as the list has it"},
        {card.Path("100ABCDE", "kvr_0001.jpg"), "the list has names in capitals, the card may not"},
        {card.Root() + "//DCIM/./100ABCDE/KVR_0001.JPG", "doubled slashes and dots"},
        {"DCIM/100ABCDE/KVR_0001.JPG", "from the card's folder on"},
        {"100ABCDE/KVR_0001.JPG", "from DCIM on"},
        {card.Path("100ABCDE", "KVR_0001.SRW"), "the companion"},
        {"100ABCDE/kvr_0001.srw", "the companion, from DCIM on"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OnCard(card.Root(), {"show", row.path}).out, FirstFile(card)) << row.why;
    }
}

TEST(Show, FindsAFileFromWithinTheCard) {
    Card card;
    FillSmall(card);
    Options options;
    options.folder = card.Root();
    const auto run = OnCard(".", {"show", "DCIM/100ABCDE/KVR_0002.MP4"}, options);
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')), "./DCIM/100ABCDE/KVR_0002.MP4") << run.Describe();
}

TEST(Show, RefusesAPathThatIsNotInTheList) {
    Card card;
    FillSmall(card);
    card.AddFile("100ABCDE", "NOTHING.TXT");
    for (const std::string& path :
         {std::string("KVR_0001.JPG"), card.Path("100ABCDE", "KVR_0009.JPG"), card.Path("100ABCDE"),
          card.Path("100ABCDE", "NOTHING.TXT"), card.Path("100abcde", "KVR_0001.JPG"), std::string("/"), std::string(),
          std::string(5000, 'x'), std::string("+1")}) {
        const auto run = OnCard(card.Root(), {"show", path});
        EXPECT_EQ(run.exit, clitest::kRefused) << path;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err,
                  ErrorLine("the list has no file '" + path + "'; 'dcfctl ls --paths' shows the paths there are"));
    }
}

TEST(Show, EscapesAPathThatItDoesNotFind) {
    Card card;
    FillSmall(card);
    EXPECT_EQ(OnCard(card.Root(), {"show", "\x1b[31m\n\xff"}).err,
              ErrorLine("the list has no file '\\x1b[31m\\n\\xff'; 'dcfctl ls --paths' shows the paths there are"));
}

TEST(Show, RefusesAPositionBeyondTheList) {
    Card card;
    FillSmall(card);
    for (const char* position : {"4", "-1", "2147483648", "4294967296", "99999999999999999999999999", "-0000000001"}) {
        const auto run = OnCard(card.Root(), {"show", position});
        EXPECT_EQ(run.exit, clitest::kRefused) << position;
        EXPECT_EQ(run.err,
                  ErrorLine(std::string("there is no position ") + position + "; the list has the positions 0 to 3"));
    }
}

TEST(Show, SaysThatAnEmptyListHasNoPosition) {
    Card card;
    card.AddDir("100ABCDE");
    EXPECT_EQ(OnCard(card.Root(), {"show", "0"}).err, ErrorLine("there is no position 0; the list is empty"));
}

} // namespace
