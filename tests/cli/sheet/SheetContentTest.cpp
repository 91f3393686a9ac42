// What a contact sheet shows: the list, in its order, with everything that a caption says.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "SheetCard.h"
#include "SheetPage.h"

using clitest::Dcfctl;
using clitest::OnCard;
using clitest::Outcome;
using clitest::SheetOf;
using clitest::SheetPage;
using clitest::Words;
using dcftest::Card;
using Json = nlohmann::json;

namespace {

/// The sample card and its list.
class SampleSheet : public testing::Test {
protected:
    void SetUp() override {
        const Outcome made = Dcfctl({"sample", m_card.Root()});
        ASSERT_EQ(made.exit, clitest::kSuccess) << made.Describe();
        m_list = Json::parse(OnCard(m_card.Root(), {"ls", "--json"}).out);
        ASSERT_GT(m_list["files"].size(), 10U);
    }

    Card m_card;
    Json m_list;
};

std::string NameOf(const Json& file) {
    const auto path = file["path"].get<std::string>();
    return path.substr(path.rfind('/') + 1);
}

TEST_F(SampleSheet, ShowsTheFilesInTheOrderOfTheList) {
    const SheetPage page = SheetOf(m_card.Root());
    Words expected;
    Words ids;
    for (const Json& file : m_list["files"]) {
        expected.push_back(NameOf(file));
        ids.push_back("file-" + file["position"].dump());
    }
    EXPECT_EQ(page.All("//h:ol/h:li//h:span[@class='name']"), expected);
    EXPECT_EQ(page.All("//h:ol/h:li/@id"), ids);
}

TEST_F(SampleSheet, ShowsTheFoldersInTheOrderOfTheListWithTheirNumbersOfFiles) {
    const SheetPage page = SheetOf(m_card.Root());
    EXPECT_EQ(page.All("//h:section[@class='folder']/h:h2"),
              (Words{"102_0501 2 files", "101PHOTO 5 files", "100PHOTO 6 files", "Camera 3 files"}));
    EXPECT_EQ(page.Count("//h:section[h:h2[starts-with(., '101PHOTO')]]//h:li"), 5U);
}

TEST_F(SampleSheet, GivesTheCountsOfTheList) {
    Words expected = {std::to_string(m_list["files"].size()) + " files", "4 folders"};
    for (const char* type : {"JPG", "SRW", "MPO", "MP4", "AVI"}) {
        expected.push_back(std::string(type) + " " + m_list["counts"][type].dump());
    }
    EXPECT_EQ(SheetOf(m_card.Root()).All("//h:ul[contains(@class,'counts')]/h:li"), expected);
}

TEST_F(SampleSheet, HasBadgesForTypeCompanionAndProtection) {
    const SheetPage page = SheetOf(m_card.Root());
    for (const Json& file : m_list["files"]) {
        Words badges = {file["type"].get<std::string>()};
        const bool movie = badges[0] == "MP4" || badges[0] == "AVI";
        if (movie) {
            badges[0] = " " + badges[0]; // behind a drawing
        }
        if (!file["companion"].is_null()) {
            badges.push_back("+ " + file["companion"]["type"].get<std::string>());
        }
        if (file["protected"].get<bool>()) {
            badges.emplace_back(" protected");
        }
        const std::string shown = SheetPage::File(file["position"].get<int>());
        EXPECT_EQ(page.All(shown + "//h:span[starts-with(@class,'badge')]"), badges) << file;
        EXPECT_EQ(page.Count(shown + "//h:span[contains(@class,'badge')]//*[@href='#movie']"), movie ? 1U : 0U);
    }
    EXPECT_EQ(page.Count("//h:span[contains(@class,'lock')]"), 2U);
    EXPECT_EQ(page.Count("//h:span[contains(@class,'companion')]"), 3U);
}

TEST_F(SampleSheet, GivesTheNumberAsFolderAndFile) {
    const SheetPage page = SheetOf(m_card.Root());
    for (const Json& file : m_list["files"]) {
        const int folder = file["directory_number"].get<int>();
        char text[32];
        std::snprintf(text, sizeof text, "%d-%04d", folder, file["file_number"].get<int>());
        const std::string expected = folder == 99 ? file["file_number"].dump() : text;
        EXPECT_EQ(page.One(SheetPage::File(file["position"].get<int>()) + "//h:span[@class='number']"), expected);
    }
}

TEST_F(SampleSheet, DescribesEachPictureInWords) {
    const SheetPage page = SheetOf(m_card.Root());
    EXPECT_EQ(page.Count("//h:img[not(@alt) or @alt='']"), 0U);
    EXPECT_EQ(page.Count("//h:li[starts-with(@id,'file-')][not(.//h:img) and not(.//*[@role='img']/@aria-label)]"), 0U);
    if (!clitest::kReadsThumbnails || !clitest::kMakesThumbnails) {
        GTEST_SKIP() << "this build has no thumbnails";
    }
    const auto at = [&](const char* name) {
        for (const Json& file : m_list["files"]) {
            const auto path = file["path"].get<std::string>();
            if (path.find(name) != std::string::npos) {
                return file["position"].get<int>();
            }
        }
        return -1;
    };
    EXPECT_EQ(page.Alternative(at("101PHOTO/KVR_0002.JPG")),
              "JPG picture 101-0002 with SRW companion, protected, 2024-05-01 11:41:00");
    EXPECT_EQ(page.Alternative(at("100PHOTO/KVR_0005.SRW")), "SRW raw picture 100-0005, 2024-05-01 10:44:00");
    EXPECT_EQ(page.Alternative(at("100PHOTO/KVR_0004.MP4")),
              clitest::kHasTimes ? "MP4 movie 100-0004, file of 2024-05-01 10:31:00 UTC, movie"
                                 : "MP4 movie 100-0004, no date, movie");
}

TEST_F(SampleSheet, HoldsAThumbnailOfEachPictureAndNoneOfMovies) {
    if (!clitest::kMakesThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    const SheetPage page = SheetOf(m_card.Root());
    for (const Json& file : m_list["files"]) {
        const std::string type = file["type"].get<std::string>();
        const std::string thumbnail = page.Thumbnail(file["position"].get<int>());
        const bool movie = type == "MP4" || type == "AVI";
        EXPECT_EQ(thumbnail.substr(0, 3), movie ? "" : "\xff\xd8\xff") << file;
        EXPECT_EQ(page.Count(SheetPage::File(file["position"].get<int>()) + "//*[@role='img']"), movie ? 1U : 0U);
    }
}

TEST_F(SampleSheet, GivesTheFiguresOfACheckWhichClose) {
    const SheetPage page = SheetOf(m_card.Root());
    const Json check = Json::parse(OnCard(m_card.Root(), {"check", "--json"}).out);
    const Json& figures = check["figures"];
    EXPECT_EQ(page.One("//h:section[@id='check']/h:p[@class='sum']"),
              figures["entries"].dump() + " entries = " + figures["listed"].dump() + " listed + " +
                  figures["companions"].dump() + " companions + " + figures["left_out"].dump() + " left out");
    EXPECT_EQ(figures["listed"], m_list["files"].size());
    EXPECT_EQ(page.All("//h:ul[contains(@class,'figures')]/h:li"),
              (Words{figures["left_out"].dump() + " left out", figures["hazards"].dump() + " hazards",
                     figures["notes"].dump() + " notes", figures["numbers_left"].dump() + " numbers left"}));
    EXPECT_EQ(page.Count("//h:li[@class='finding protected-file']/h:ul/h:li"), 3U);
}

TEST(Sheet, TellsWhatTheListLeavesOutAndWhy) {
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG");
    for (int i = 0; i < 14; ++i) {
        card.AddFile("100PHOTO", "note" + std::to_string(100 + i) + ".TXT");
    }
    const Outcome run = OnCard(card.Root(), {"sheet", "--out", "-"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << "findings are what a sheet is to show: " << run.Describe();
    const SheetPage page(run.out);
    EXPECT_EQ(page.One("//h:p[@class='sum']"), "15 entries = 1 listed + 0 companions + 14 left out");
    const std::string finding = "//h:li[@class='finding name-length']";
    EXPECT_EQ(page.Count(finding + "/h:h3[contains(., 'left-out, 14')]"), 1U) << run.out;
    const Words shown = page.All(finding + "/h:ul/h:li");
    ASSERT_EQ(shown.size(), 11U);
    EXPECT_EQ(shown[0].rfind("DCIM/100PHOTO/note1", 0), 0U) << shown[0];
    EXPECT_EQ(shown[10], "and 4 more, which dcfctl check --all shows");
}

TEST_F(SampleSheet, NeedsNoNetworkAndNoScript) {
    const std::string html = OnCard(m_card.Root(), {"sheet", "--out", "-"}).out;
    const SheetPage page(html);
    EXPECT_EQ(page.Count("//h:script|//h:link|//h:iframe|//h:object|//h:embed|//h:base|//h:form"), 0U);
    EXPECT_EQ(page.Count("//@*[starts-with(name(), 'on')]"), 0U);
    EXPECT_EQ(page.Count("//@style"), 0U);
    EXPECT_EQ(page.Count("//h:img/@src[not(starts-with(., 'data:image/jpeg;base64,'))]"), 0U);
    EXPECT_EQ(page.Count("//@href[not(starts-with(., '#'))]"), 0U);
    EXPECT_EQ(page.Count("//@srcset|//@action|//@data|//@poster"), 0U);
    EXPECT_NE(page.One("//h:meta[@http-equiv='Content-Security-Policy']/@content").find("default-src 'none'"),
              std::string::npos);
    for (const char* word : {"@import", "url("}) {
        EXPECT_EQ(html.find(word), std::string::npos) << word;
    }
}

TEST_F(SampleSheet, HasLandmarksHeadingsAndALanguage) {
    const SheetPage page = SheetOf(m_card.Root());
    EXPECT_EQ(page.One("/h:html/@lang"), "en");
    EXPECT_EQ(page.Count("//h:header|//h:nav[@aria-label]|//h:main|//h:footer"), 4U);
    EXPECT_EQ(page.Count("//h:h1"), 1U);
    for (const char* attribute : {"aria-labelledby", "href"}) { // each leads to something
        for (const std::string& target : page.All(std::string("//@") + attribute)) {
            const std::string id = target[0] == '#' ? target.substr(1) : target;
            EXPECT_EQ(page.Count("//@id[.='" + id + "']"), 1U) << attribute << " " << target;
        }
    }
    const Words ids = page.All("//@id");
    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size());
}

TEST_F(SampleSheet, IsTheSameEachTime) {
    const Words words = {"sheet", "--out", "-"};
    EXPECT_EQ(OnCard(m_card.Root(), words).out, OnCard(m_card.Root(), words).out);
}

TEST_F(SampleSheet, LeavesTheCardAsItIs) {
    const Words before = clitest::Snapshot(m_card.Root());
    (void)SheetOf(m_card.Root());
    EXPECT_EQ(clitest::Snapshot(m_card.Root()), before);
}

TEST_F(SampleSheet, LeavesCameraOutWhenAsked) {
    const SheetPage page = SheetOf(m_card.Root(), {"--no-camera"});
    EXPECT_EQ(page.Count("//h:section[@class='folder']"), 3U);
    EXPECT_EQ(page.Count("//h:ol/h:li"), 13U);
}

TEST_F(SampleSheet, HoldsNoMoreThumbnailsThanAreAskedFor) {
    const SheetPage page = SheetOf(m_card.Root(), {"--thumbnails", "3"});
    EXPECT_EQ(page.Count("//h:img"), clitest::kMakesThumbnails ? 3U : 0U);
    EXPECT_EQ(page.Count("//h:ol/h:li"), 16U);
    EXPECT_EQ(SheetOf(m_card.Root(), {"--thumbnails", "0"}).Count("//h:img"), 0U);
}

TEST(Sheet, PrefersTheThumbnailThatAPictureBrings) {
    if (!clitest::kReadsThumbnails) {
        GTEST_SKIP() << "this build does not read thumbnails";
    }
    const std::string thumbnail = clitest::Picture(clitest::kRed);
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG",
                 {clitest::Picture(clitest::kGreen,
                                   clitest::ExifSegment({.date = "2024:02:29 23:59:58", .thumbnail = thumbnail})),
                  0644,
                  {}});
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.Thumbnail(0), thumbnail);
    EXPECT_EQ(page.One("//h:span[@class='date']"), "2024-02-29 23:59:58");
    EXPECT_EQ(page.One("//h:time/@datetime"), "2024-02-29T23:59:58");
}

TEST(Sheet, GivesTheTimeOfTheFileWherePicturesTellNone) {
    Card card;
    card.AddFile("100PHOTO", "KVR_0001.JPG", {clitest::Picture(clitest::kRed), 0644, 1714557600});
    EXPECT_EQ(SheetOf(card.Root()).One("//h:span[@class='date']"),
              clitest::kHasTimes ? "file 2024-05-01 10:00:00 UTC" : "no date");
}

TEST(Sheet, FindsPicturesWhoseNamesAreInSmallLettersOnTheCard) {
    if (!clitest::kMakesThumbnails) {
        GTEST_SKIP() << "this build makes no thumbnails";
    }
    Card card;
    card.AddFile("100PHOTO", "kvr_0001.jpg", {clitest::Picture(clitest::kRed), 0644, {}});
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.One("//h:span[@class='name']"), "KVR_0001.JPG");
    EXPECT_FALSE(page.Thumbnail(0).empty());
}

TEST(Sheet, OfAnEmptyCardSaysSo) {
    Card card;
    card.AddDir("100PHOTO");
    const SheetPage page = SheetOf(card.Root());
    EXPECT_EQ(page.Count("//h:ol/h:li"), 0U);
    EXPECT_EQ(page.One("//h:main/h:p"), "There are no files in the list.");
    EXPECT_EQ(page.All("//h:section[@class='folder']/h:h2"), Words{"100PHOTO 0 files"});
}

TEST(Sheet, SaysWhatIsMissingFromTheListAndThatMarksAreUnknown) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG").AddFile("100ZZZZZ", "KVR_0002.JPG");
    const Outcome run = OnCard(card.Root(), {"sheet", "--out", "-"});
    EXPECT_EQ(run.exit, clitest::kPartial) << run.Describe();
    const SheetPage page(run.out);
    EXPECT_NE(page.One("//h:div[@class='warnings']//h:li").find("share the number 100"), std::string::npos);
    EXPECT_EQ(page.Count("//h:span[contains(@class,'unknown')]"), 2U);
    EXPECT_EQ(page.All("//h:span[@class='number']"), (Words{"100-0002", "100-0001"}));
}

} // namespace
