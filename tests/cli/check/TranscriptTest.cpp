// check and explain as people see them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Words;

namespace {

TEST(CheckText, OfASampleCardHasNotesAlone) {
    dcftest::Card card;
    ASSERT_EQ(clitest::kSuccess, clitest::Dcfctl({"sample", card.Root()}).exit);
    const Outcome outcome = OnCard(card.Root(), {"check"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit);
    EXPECT_EQ("", outcome.err);
    EXPECT_EQ("19 entries in 4 folders = 16 listed + 3 companions + 0 left out\n"
              "Numbers left for new files: 20000 or more\n"
              "A renumbering would rename 3 of 4 entries; the plan is not complete ('dcfctl renumber --dry-run' shows "
              "it).\n"
              "\n"
              "Notes: 4\n"
              "  renumber-incomplete: A renumbering would not end complete\n"
              "    DCIM/Camera: a renumbering would make it '103era': renamed, and no longer in the list: it is "
              "\"Camera\"\n"
              "    To do: nothing needs to be done as long as there are numbers left.\n"
              "  protected-file: The file is protected\n"
              "    DCIM/101PHOTO/KVR_0002.JPG: it is protected\n"
              "    DCIM/101PHOTO/KVR_0002.SRW: it is protected\n"
              "    DCIM/100PHOTO/KVR_0003.JPG: it is protected\n"
              "    To do: 'dcfctl unprotect' takes the protection off.\n",
              outcome.out);
}

TEST(CheckText, TellsCauseAndCure) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0007.JPG", "KVR_0007.MP4"});
    const Outcome outcome = OnCard(card.Root(), {"check"});
    EXPECT_EQ(clitest::kFindings, outcome.exit);
    EXPECT_EQ(
        clitest::WarningLine("the list leaves out 1 entry, and 1 hazard was found; what to do stands beside each"),
        outcome.err);
    EXPECT_EQ("2 entries in 1 folder = 1 listed + 0 companions + 1 left out\n"
              "Numbers left for new files: 20000 or more\n"
              "A renumbering would rename 0 of 1 entry; the plan is complete ('dcfctl renumber --dry-run' shows it).\n"
              "\n"
              "Left out: 1\n"
              "  second-of-number: Another file of its number is listed instead\n"
              "    DCIM/100PHOTO/KVR_0007.MP4: 'KVR_0007.JPG' has the number 0007 too and is listed instead\n"
              "    To do: give it a number that no other file of the folder has.\n"
              "\n"
              "Hazards: 1\n"
              "  movie-and-photo: A movie and a photo have one number\n"
              "    DCIM/100PHOTO/KVR_0007.JPG: 'KVR_0007.MP4' has the same number, and is a movie\n"
              "    To do: give one of them a number that no other file of the folder has.\n"
              "\n"
              "Notes: 1\n"
              "  foreign-files: The folder stays when its pictures are deleted\n"
              "    DCIM/100PHOTO: 1 entry that is not in the list would keep the folder from being removed with its "
              "last picture\n"
              "    To do: take those entries out, or let the folder stay.\n",
              outcome.out);
}

TEST(CheckText, OfAnEmptyCardIsWhole) {
    CheckedCard card;
    EXPECT_EQ("0 entries in 0 folders = 0 listed + 0 companions + 0 left out\n"
              "Numbers left for new files: 20000 or more\n"
              "A renumbering would find nothing to rename.\n",
              OnCard(card.Root(), {"check"}).out);
}

TEST(CheckText, TellsNumbersThatAreCountedAsTheyAre) {
    CheckedCard card;
    card.Put("998PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ("Numbers left for new files: 9998", clitest::Lines(OnCard(card.Root(), {"check"}).out).at(1));
}

TEST(CheckText, QuotesACommandThatEndsWithADot) {
    CheckedCard card; // or it would be read as the folder above
    const std::string root = card.Root() + "/PHOTOS";
    std::filesystem::create_directories(root + "/DCIM");
    const std::string out = OnCard(root, {"check"}).out;
    EXPECT_NE(std::string::npos, out.find("go there and use '--card .'.\n")) << out;
}

TEST(CheckText, TellsFilesOfAFolderByTheirNames) {
    CheckedCard card;
    for (const char* name : {"d.txt", "b.txt", "e.txt", "a.txt", "c.txt"}) {
        card.Put("101PHOTO", {name}).Put("100PHOTO", {name});
    }
    Words shown;
    for (const std::string& line : clitest::Lines(OnCard(card.Root(), {"check"}).out)) {
        if (line.find(".txt: ") != std::string::npos) {
            shown.push_back(line.substr(9, line.find(": ") - 9));
        }
    }
    EXPECT_EQ((Words{"101PHOTO/a.txt", "101PHOTO/b.txt", "101PHOTO/c.txt", "101PHOTO/d.txt", "101PHOTO/e.txt",
                     "100PHOTO/a.txt", "100PHOTO/b.txt", "100PHOTO/c.txt", "100PHOTO/d.txt", "100PHOTO/e.txt"}),
              shown);
}

TEST(CheckText, ShowsTheFirstOfManyAndAllWhenAsked) {
    CheckedCard card;
    for (int i = 10; i < 32; ++i) {
        card.Put("100PHOTO", {"note" + std::to_string(i) + ".txt"});
    }
    const auto shown = [&](const Words& words) {
        const Words lines = clitest::Lines(OnCard(card.Root(), words).out);
        return std::count_if(lines.begin(), lines.end(),
                             [](const std::string& line) { return line.find("DCIM/100PHOTO/note") == 4; });
    };
    EXPECT_EQ(10, shown({"check"}));
    EXPECT_NE(std::string::npos, OnCard(card.Root(), {"check"}).out.find("    and 12 more, which --all shows\n"));
    EXPECT_EQ(22, shown({"check", "--all"}));
    EXPECT_EQ(std::string::npos, OnCard(card.Root(), {"check", "--all"}).out.find("--all shows"));
}

TEST(CheckText, LetsNoNameReachTheTerminal) {
    CheckedCard card;
    card.Put("100PHOTO", {"\x1b[31m\n.JPG", "KVR_0001.\x1b[m", "\xff\x1b[H0001.JPG"}).Make({"10\n\x1b[2J"});
    for (const Words& words : {Words{"check"}, {"explain", "\x1b[31m\n.JPG"}, {"explain", "\x1b[5m.txt"}}) {
        const Outcome outcome = OnCard(card.Root(), words);
        EXPECT_EQ(clitest::kFindings, outcome.exit) << outcome.Describe();
        for (const std::string& text : {outcome.out, outcome.err}) {
            EXPECT_EQ(std::string::npos, text.find('\x1b')) << text;
            EXPECT_EQ(std::string::npos, text.find('\xff')) << text;
        }
    }
    EXPECT_NE(std::string::npos, OnCard(card.Root(), {"check"}).out.find("DCIM/100PHOTO/\\x1b[31m\\n.JPG: the name"));
}

TEST(ExplainText, TellsOfEachPlace) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_001.JPG"});
    const struct {
        const char* what;
        const char* out;
    } rows[] = {
        {"KVR_0001.JPG", "DCIM/100PHOTO/KVR_0001.JPG\n  is in the list at position 0, with the number 1 and the "
                         "companion DCIM/100PHOTO/KVR_0001.SRW\n"},
        {"KVR_0001.SRW", "DCIM/100PHOTO/KVR_0001.SRW\n  is the companion of DCIM/100PHOTO/KVR_0001.JPG, which is in "
                         "the list at position 0\n"},
        {"100PHOTO", "DCIM/100PHOTO\n  is a folder of the list with the number 100 and 1 file, the first at position "
                     "0\n  note foreign-files: 1 entry that is not in the list would keep the folder from being "
                     "removed with its last picture\n    To do: take those entries out, or let the folder stay.\n"},
        {"KVR_001.JPG", "DCIM/100PHOTO/KVR_001.JPG\n  is left out of the list\n  left-out name-length: the name has 11 "
                        "characters, and 12 are needed\n    To do: name it like KVR_0012.JPG: four characters, four "
                        "digits, a dot, and JPG, SRW, MPO, MP4 or AVI.\n"},
        {"KVR_0002.JPG", "DCIM/100PHOTO/KVR_0002.JPG\n  is not on the card, and would be in the list at position 0, "
                         "with the number 2\n"},
        {"101PHOTO", "DCIM/101PHOTO\n  is not on the card, and would be a folder of the list with the number 101\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.out, OnCard(card.Root(), {"explain", row.what}).out);
    }
}

} // namespace
