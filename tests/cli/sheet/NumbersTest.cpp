// The map of the numbers that are used and free.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Card.h"
#include "Cli.h"
#include "SheetPage.h"

using clitest::SheetOf;
using clitest::SheetPage;
using clitest::Words;
using dcftest::Card;
using dcftest::DcfName;

namespace {

TEST(Numbers, AreGivenAsRunsUsedAndFree) {
    struct Row {
        std::vector<int> numbers;
        const char* used;
        const char* open;
        const char* why;
    };
    const std::vector<Row> rows = {
        {{}, "used (0): none", "free (9999): 0001–9999", "nothing is used"},
        {{1}, "used (1): 0001", "free (9998): 0002–9999", "the first number"},
        {{9999}, "used (1): 9999", "free (9998): 0001–9998", "the last number"},
        {{1, 2, 3, 5}, "used (4): 0001–0003, 0005", "free (9995): 0004, 0006–9999", "a gap of one"},
        {{7, 12, 11}, "used (3): 0007, 0011–0012", "free (9996): 0001–0006, 0008–0010, 0013–9999", "any order"},
        {{0, 4}, "used (1): 0004", "free (9998): 0001–0003, 0005–9999", "0 is no number of a file"},
    };
    for (const Row& row : rows) {
        Card card;
        card.AddDir("100PHOTO");
        for (const int number : row.numbers) {
            card.AddFile("100PHOTO", DcfName(number));
        }
        const SheetPage page = SheetOf(card.Root());
        EXPECT_EQ(page.Runs("100PHOTO", "used"), row.used) << row.why;
        EXPECT_EQ(page.Runs("100PHOTO", "free"), row.open) << row.why;
    }
}

TEST(Numbers, OfFoldersAreGivenToo) {
    Card card;
    card.AddDir("100PHOTO").AddDir("101_0501").AddDir("999PHOTO").AddDir("Camera");
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.Runs("Folder numbers", "used"), "used (3): 100–101, 999");
    EXPECT_EQ(page.Runs("Folder numbers", "free"), "free (897): 102–998");
}

TEST(Numbers, AreThoseOfPairsOnceAndNoneOfCamera) {
    Card card;
    card.AddFiles("100PHOTO", {"KVR_0003.JPG", "KVR_0003.SRW"}).AddFiles("Camera", {"20240501_134500.JPG"});
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.Runs("100PHOTO", "used"), "used (1): 0003");
    EXPECT_EQ(page.All("//h:section[@id='numbers']/h:ul/h:li[h:h3='Camera']/h:p"),
              Words{"named after the time: 1 file, no numbers used"});
}

/// The rectangles of a drawing: first number and count.
std::map<int, int> Drawn(const std::string& path) {
    std::map<int, int> runs;
    std::istringstream stream(path);
    char letter = 0;
    int first = 0;
    int zero = 0;
    int count = 0;
    while (stream >> letter >> first >> zero >> letter >> count) {
        runs[first] = count;
        stream.ignore(1000, 'z');
    }
    return runs;
}

TEST(Numbers, AreDrawnAsOneRectangleForEachRun) {
    Card card;
    card.AddFiles("100PHOTO", {DcfName(2), DcfName(3), DcfName(4), DcfName(9000)});
    const SheetPage page = SheetOf(card.Root());
    const std::string map = "//h:section[@id='numbers']/h:ul/h:li[h:h3='100PHOTO']/*[local-name()='svg']";
    EXPECT_EQ(page.One(map + "/@viewBox"), "1 0 9999 10");
    EXPECT_EQ(Drawn(page.One(map + "/*/@d")), (std::map<int, int>{{2, 3}, {9000, 1}}));
}

TEST(Numbers, WithManyGapsStayShortInWordsAndAreDrawnAll) {
    Card card;
    std::vector<std::string> names;
    for (int number = 1; number < 1000; number += 2) {
        names.push_back(DcfName(number));
    }
    card.AddFiles("100PHOTO", names);
    const std::string html = clitest::OnCard(card.Root(), {"sheet", "--out", "-", "--thumbnails", "0"}).out;
    const SheetPage page(html);
    const std::string used = page.Runs("100PHOTO", "used");
    EXPECT_EQ(used.rfind("used (500): 0001, 0003, 0005,", 0), 0U) << used;
    EXPECT_NE(used.find(" and 488 more runs"), std::string::npos) << used;
    EXPECT_EQ(Drawn(page.One("//h:li[h:h3='100PHOTO']/*[local-name()='svg']/*/@d")).size(), 500U);
}

TEST(Numbers, OfManyFoldersStaySmall) {
    constexpr int kFolders = 100; // of 900: making them is what takes time
    Card card;
    for (int number = 0; number < kFolders; ++number) {
        card.AddDir(dcftest::DirName(900 + number));
    }
    const std::string html = clitest::OnCard(card.Root(), {"sheet", "--out", "-"}).out;
    const SheetPage page(html);
    EXPECT_EQ(page.Runs("Folder numbers", "used"), "used (100): 900–999");
    EXPECT_EQ(page.Runs("Folder numbers", "free"), "free (800): 100–899");
    EXPECT_LT(html.size(), 10000U + kFolders * 600U);
    EXPECT_EQ(page.Count("//h:nav/h:details"), 1U) << "so many folders are folded away";
}

} // namespace
