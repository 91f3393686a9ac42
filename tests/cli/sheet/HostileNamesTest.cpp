// Names and metadata that want to be markup, and bytes that no document may hold.
#include <gtest/gtest.h>

#include <string>

#include "Card.h"
#include "Cli.h"
#include "SheetCard.h"
#include "SheetPage.h"

using clitest::OnCard;
using clitest::SheetPage;
using clitest::Words;
using dcftest::Card;

namespace {

/// The sheet as text, after a look that it has no element or attribute that could do harm.
std::string HarmlessSheet(const std::string& root) {
    std::string html = OnCard(root, {"sheet", "--out", "-"}).out;
    const SheetPage page(html);
    EXPECT_EQ(page.Count("//h:script|//h:b|//h:i|//h:iframe"), 0U);
    EXPECT_EQ(page.Count("//@*[starts-with(name(), 'on')]"), 0U);
    EXPECT_EQ(page.Count("//h:img/@src[not(starts-with(., 'data:image/jpeg;base64,'))]"), 0U);
    EXPECT_EQ(page.Count("//@href[not(starts-with(., '#'))]"), 0U);
    return html;
}

TEST(HostileNames, OfFilesAreText) {
    struct Row {
        const char* name;
        const char* shown;
        const char* why;
    };
    const Row rows[] = {
        {"<B>X0001.JPG", "<B>X0001.JPG", "begins an element"},
        {"\"'>&0002.JPG", "\"'>&0002.JPG", "ends an attribute"},
        {"&lt;0003.JPG", "&LT;0003.JPG", "is a reference"},
        {"]]>\n0004.JPG", "]]>\\n0004.JPG", "ends a section, and a line"},
        {"\x01\x1b\x7f\t0005.JPG", "\\x01\\x1b\\x7f\\t0005.JPG", "control characters"},
        {"\xff\xfe\xc0\x80"
         "0006.JPG",
         "\\xff\\xfe\\xc0\\x80"
         "0006.JPG",
         "no UTF-8"},
        {"\xef\xbf\xbf_0007.JPG", "\xef\xbf\xbd_0007.JPG", "U+FFFF, which no document may hold"},
        {"\xe2\x80\xae"
         "a0008.JPG",
         "\\u{202e}A0008.JPG", "turns the direction"},
        {"javas0009.JPG", "", "one character too long: not listed"},
    };
    for (const Row& row : rows) {
        Card card;
        card.AddFile("100PHOTO", row.name);
        const SheetPage page(HarmlessSheet(card.Root()));
        EXPECT_EQ(page.All("//h:span[@class='name']"), *row.shown == '\0' ? Words{} : Words{row.shown}) << row.why;
    }
}

TEST(HostileNames, OfFoldersAreTextInHeadingsLinksAndTheMap) {
    for (const char* name : {"100<i>\"'", "100&amp;", "101\x02\xff<!x"}) {
        Card card;
        card.AddFile(name, "KVR_0001.JPG");
        const std::string html = HarmlessSheet(card.Root());
        const SheetPage page(html);
        const std::string shown = std::string(name) == "101\x02\xff<!x" ? "101\\x02\\xff<!x" : name;
        EXPECT_EQ(page.One("//h:section[@class='folder']/h:h2"), shown + " 1 file");
        EXPECT_EQ(page.All("//h:nav//h:a")[0], shown);
        EXPECT_EQ(page.All("//h:section[@id='numbers']//h:h3")[1], shown);
    }
}

TEST(HostileNames, OfTheCardAreTextInTheTitle) {
    const Card place;
    const std::string root = place.Root() + "/<script>x&\"\xff";
    ASSERT_EQ(clitest::Dcfctl({"sample", root}).exit, clitest::kSuccess);
    const SheetPage page(HarmlessSheet(root));
    EXPECT_EQ(page.One("//h:title"), "Contact sheet of <script>x&\"\\xff");
    EXPECT_EQ(page.One("//h:h1"), page.One("//h:title"));
}

TEST(HostileNames, OfWhatIsNotListedAreText) {
    Card card;
    card.AddFile("100PHOTO", "<script>\"'&\xff\n").AddFile("100PHOTO", "KVR_0001.JPG");
    const SheetPage page(HarmlessSheet(card.Root()));
    const std::string shown = page.One("//h:li[@class='finding name-length']/h:ul/h:li");
    EXPECT_EQ(shown.rfind("DCIM/100PHOTO/<script>\"'&\\xff\\n: ", 0), 0U) << shown;
}

TEST(HostileMetadata, IsText) {
    if (!clitest::kReadsThumbnails) {
        GTEST_SKIP() << "this build reads no metadata";
    }
    struct Row {
        const char* date;
        const char* shown;
    };
    const Row rows[] = {
        {"<script>alert(1)</script>", "<script>alert(1)</script>"},
        {"\"><img src=x onerror=y>", "\"><img src=x onerror=y>"},
        {"2024:05:01 10:00:0\"", "2024:05:01 10:00:0\""},
        {"20<4:05:01 10:00:00", "20<4:05:01 10:00:00"},
        {"\x01\x1b[31m\xff\xc3", "\\x01\\x1b[31m\\xff\\xc3"},
    };
    for (const Row& row : rows) {
        Card card;
        card.AddFile("100PHOTO", "KVR_0001.JPG",
                     {clitest::Picture(clitest::kRed, clitest::ExifSegment({.date = row.date})), 0644, {}});
        const SheetPage page(HarmlessSheet(card.Root()));
        EXPECT_EQ(page.One("//h:span[@class='date']"), row.shown);
        EXPECT_NE(page.Alternative(0).find(row.shown), std::string::npos);
        EXPECT_EQ(page.Count("//h:time"), 0U) << "no time is made of it";
    }
}

TEST(HostileMetadata, DoesNotTravelInsideOfThumbnails) {
    if (!clitest::kReadsThumbnails) {
        GTEST_SKIP() << "this build reads no metadata";
    }
    const std::string comment = dcfctl::JpegSegment(0xfe, "<script>secret</script>");
    const std::string thumbnail = clitest::Picture(clitest::kRed, comment + clitest::ExifSegment({.date = "secret"}) +
                                                                      dcfctl::JpegSegment(0xe2, "secret"));
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG",
                 {clitest::Picture(clitest::kGreen, clitest::ExifSegment({.thumbnail = thumbnail})), 0644, {}});
    const std::string shown = SheetPage(HarmlessSheet(card.Root())).Thumbnail(0);
    EXPECT_EQ(shown, clitest::Picture(clitest::kRed));
}

} // namespace
