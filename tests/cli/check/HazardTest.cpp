// check: what can cost a picture although it is listed, in folders and files. Each hazard is made on purpose on a card
// of its own and found by its code.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::Of;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// Findings of one code, and no other but the ones beside it and notes.
void ExpectHazard(const CheckedCard& card, const std::string& code, const Words& findings, Words beside = {}) {
    const Json json = card.Check();
    EXPECT_EQ(findings, Of(json, code)) << json;
    beside.push_back(code);
    std::sort(beside.begin(), beside.end());
    EXPECT_EQ(beside, clitest::Codes(json));
}

TEST(Hazard, TwoFoldersOfOneNumber) {
    CheckedCard card;
    card.Put("100BBBBB", {"KVR_0001.JPG"}).Put("100AAAAA", {"KVR_0002.JPG"});
    ExpectHazard(card, "shared-folder-number",
                 {"100AAAAA: it shares the number 100 with '100BBBBB'; a file is looked up by that number, so details, "
                  "protection and deletion can hit the other folder's file"});
}

TEST(Hazard, TwoFoldersOfOneNumberThatEndTheListing) {
    CheckedCard card;
    card.Put("100AAAAA", {"KVR_0001.JPG"}).Make({"100BBBBB"});
    const Json json = card.Check();
    EXPECT_FALSE(json["has_list"].get<bool>());
    EXPECT_NE(std::string::npos, json["refusal"].get<std::string>().find("'100BBBBB', which holds no listed file"));
    EXPECT_EQ((Words{"card-not-listed", "shared-folder-number"}), clitest::Codes(json));
    EXPECT_EQ("1 0 0 1", clitest::Figures(json));
    EXPECT_TRUE(json["figures"]["numbers_left"].is_null());
}

TEST(Hazard, AFolderWithTheNumberOfCamera) {
    CheckedCard card;
    card.Put("0990ABCD", {"KVR_0001.JPG"});
    ExpectHazard(card, "odd-folder-number",
                 {"0990ABCD: its first three characters read as 99, the number of 'Camera'"});
}

TEST(Hazard, AFolderThatIsALink) {
    CheckedCard card;
    CheckedCard elsewhere;
    elsewhere.Put("100PHOTO", {"KVR_0001.JPG"});
    fs::create_symlink(elsewhere.Path("100PHOTO"), card.Path("101PHOTO"));
    ExpectHazard(card, "folder-link", {"101PHOTO: it is a link, so its files may not be on this card at all"});
}

TEST(Hazard, FoldersAndDevicesNamedLikePictures) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    fs::create_directories(card.Path("100PHOTO", "KVR_0002.JPG"));
    ASSERT_EQ(0, mkfifo(card.Path("100PHOTO", "KVR_0003.JPG").c_str(), 0644));
    fs::create_symlink("KVR_0001.JPG", card.Path("100PHOTO", "KVR_0004.JPG"));
    ExpectHazard(card, "not-a-file",
                 {"100PHOTO/KVR_0002.JPG: it is a folder", "100PHOTO/KVR_0003.JPG: it is a pipe or socket",
                  "100PHOTO/KVR_0004.JPG: it is a link"});
    EXPECT_EQ("4 4 0 0", clitest::Figures(card.Check()));
}

TEST(Hazard, NamesInSmallLetters) {
    CheckedCard card;
    card.Put("100PHOTO", {"kvr_0001.jpg", "KVR_0002.JPG", "KVR_0002.srw"});
    ExpectHazard(card, "lower-case-name",
                 {"100PHOTO/KVR_0002.srw: the list has it as 'KVR_0002.SRW', which on this file system is no file, so "
                  "it is not shown, protected or deleted",
                  "100PHOTO/kvr_0001.jpg: the list has it as 'KVR_0001.JPG', which on this file system is no file, so "
                  "it is not shown, protected or deleted"});
    EXPECT_EQ("3 2 1 0", clitest::Figures(card.Check()));
}

TEST(Hazard, TwoSpellingsOfOneNameInCamera) {
    CheckedCard card;
    card.Put("Camera", {"IMG-20240123456.JPG", "IMG-20240123457.JPG", "img-20240123456.jpg"});
    const Json json = card.Check();
    EXPECT_EQ("3 3 0 0", clitest::Figures(json));
    EXPECT_EQ((Words{"Camera/img-20240123456.jpg: the list has it as 'IMG-20240123456.JPG', which on this file "
                     "system is another file, so it is not shown, protected or deleted"}),
              Of(json, "lower-case-name"));
}

TEST(Hazard, ADeletionThatLeavesACompanionBehind) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "ABCD0001.SRW"});
    ExpectHazard(card, "deletion-leaves-companion",
                 {"100PHOTO/KVR_0001.JPG: 'ABCD0001.SRW' belongs to it by its number and would stay"},
                 {"companion-prefix"});
}

TEST(Hazard, ADeletionInCameraIsNotCuredByAName) {
    CheckedCard card; // the two have the same one up to the extension
    card.Put("Camera", {"20240501_123456.JPG", "20240501_123456.SRW"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"Camera/20240501_123456.JPG: '20240501_123456.SRW' belongs to it by its number and would stay"}),
              Of(json, "deletion-leaves-companion"));
    for (const Json& finding : json["findings"]) {
        const bool told = finding["cure"].get<std::string>().find("move both") != std::string::npos;
        EXPECT_TRUE(told || finding["severity"] == "note") << finding;
    }
}

TEST(Hazard, AMovieAndAPhotoOfOneNumber) {
    CheckedCard card;
    card.Put("100PHOTO",
             {"KVR_0001.JPG", "KVR_0001.MP4", "KVR_0002.AVI", "KVR_0002.JPG", "KVR_0003.MP4", "KVR_0003.SRW"});
    ExpectHazard(card, "movie-and-photo",
                 {"100PHOTO/KVR_0001.JPG: 'KVR_0001.MP4' has the same number, and is a movie",
                  "100PHOTO/KVR_0002.AVI: 'KVR_0002.JPG' has the same number, and is a photo",
                  "100PHOTO/KVR_0003.MP4: 'KVR_0003.SRW' has the same number, and is a photo, and is deleted and "
                  "protected with the movie"},
                 {"second-of-number"});
}

TEST(Hazard, CameraFilesOfOneNumberThatAreBothListed) {
    CheckedCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240502_000001.JPG", "20240503_123456.JPG"});
    ExpectHazard(card, "camera-number-shared",
                 {"Camera/20240503_123456.JPG: '20240501_123456.JPG' has the same characters 10 to 15, by which a file "
                  "is looked up, and would be taken for it"});
}

TEST(Hazard, CameraNumbersThatAreNotMadeOfDigits) {
    CheckedCard card;
    card.Put("Camera", {"20240501_12AB56.JPG"});
    ExpectHazard(card, "camera-number-odd",
                 {"Camera/20240501_12AB56.JPG: characters 10 to 15 of the name are its number, and '12AB56' reads as "
                  "12"});
}

TEST(Hazard, TheNumberZeroBehindOthers) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0000.JPG", "KVR_0001.JPG"});
    ExpectHazard(
        card, "browsing-stops",
        {"100PHOTO/KVR_0000.JPG: its number is 0000, and from there a camera cannot go on to the next picture"});
    CheckedCard likeCamera;
    likeCamera.Put("0990ABCD", {"KVR_0000.JPG", "KVR_0001.JPG"});
    EXPECT_EQ(Words{}, Of(likeCamera.Check(), "browsing-stops"));
}

TEST(Hazard, ANameWithTheLettersOfAnotherKind) {
    CheckedCard card;
    card.Put("100PHOTO", {"JPG_0001.MP4", "MP4_0002.JPG"});
    ExpectHazard(card, "type-misread",
                 {"100PHOTO/JPG_0001.MP4: the letters JPG in the name make the list take it for that kind"});
}

TEST(Hazard, EmptyFiles) {
    CheckedCard card;
    card.PutContent("100PHOTO", "KVR_0001.JPG", "").Put("100PHOTO", {"KVR_0001.SRW"});
    ExpectHazard(card, "empty-file", {"100PHOTO/KVR_0001.JPG: it has no content"});
}

TEST(Hazard, ContentThatIsNotWhatTheExtensionSays) {
    const struct {
        const char* name;
        std::string content;
        const char* text;
    } rows[] = {
        {"KVR_0001.JPG", clitest::ContentFor("x.SRW"), "the name says JPG, and it holds a TIFF or raw picture"},
        {"KVR_0002.SRW", clitest::ContentFor("x.JPG"), "the name says SRW, and it holds a JPEG picture"},
        {"KVR_0003.MP4", clitest::ContentFor("x.AVI"), "the name says MP4, and it holds an AVI movie"},
        {"KVR_0004.AVI", clitest::ContentFor("x.MP4"), "the name says AVI, and it holds an MP4 movie"},
        {"KVR_0005.MPO", "\x89PNG\r\n\x1a\n", "the name says MPO, and it holds a PNG picture"},
        {"KVR_0006.MP4",
         std::string("\0\0\0\x18"
                     "ftypheic",
                     12),
         "the name says MP4, and it holds an HEIF picture"},
        {"KVR_0007.JPG", std::string(20, '\0'), "the name says JPG, and it holds only zeros in the beginning"},
        {"KVR_0008.JPG", "\xff", "the name says JPG, and it holds nothing that is known here"},
    };
    CheckedCard card;
    Words expected;
    for (const auto& row : rows) {
        card.PutContent("100PHOTO", row.name, row.content);
        expected.push_back(std::string("100PHOTO/") + row.name + ": " + row.text);
    }
    card.PutContent("100PHOTO", "KVR_0009.SRW", std::string("MM\0*", 4)); // the other order of bytes
    ExpectHazard(card, "content-mismatch", expected);
}

TEST(Hazard, AContentIsToldByItsFirstBytes) {
    using namespace std::string_literals;
    const struct {
        std::string content;
        const char* text; ///< What it holds; null where an MP4 movie may begin so.
    } rows[] = {
        {"\0\0\0\x18"s + "ftypisom", nullptr},
        {"\0\0\0\x08"s + "moov", nullptr},
        {"\0\0\0\x08"s + "mdat", nullptr},
        {"\0\0\0\x08"s + "wide", nullptr},
        {"\0\0\0\x08"s + "free", nullptr},
        {"\0\0\0\x08"s + "skip", nullptr},
        {"\xff\xd8\xff\xe0", "a JPEG picture"},
        {"II*\0"s, "a TIFF or raw picture"},
        {"MM\0*"s, "a TIFF or raw picture"},
        {"\0\0\0\x18"s + "ftypheix", "an HEIF picture"},
        {"\0\0\0\x18"s + "ftypmif1", "an HEIF picture"},
        {"\0\0\0\x18"s + "ftypavif", "an AVIF picture"},
        {"RIFF\1\0\0\0AVI LIST"s, "an AVI movie"},
        {"RIFF\1\0\0\0WAVEfmt "s, "a sound"},
        {"RIFF\1\0\0\0WEBPVP8 "s, "a WebP picture"},
        {"GIF89a", "a GIF picture"},
        {"BM1234", "a BMP picture"},
        {"%PDF-1.4", "a PDF document"},
        {"PK\x03\x04", "a ZIP archive"},
    };
    CheckedCard card;
    Words expected;
    int number = 1000;
    for (const auto& row : rows) {
        const std::string name = "KVR_" + std::to_string(++number) + ".MP4";
        card.PutContent("100PHOTO", name, row.content);
        if (row.text != nullptr) {
            expected.push_back("100PHOTO/" + name + ": the name says MP4, and it holds " + row.text);
        }
    }
    ExpectHazard(card, "content-mismatch", expected);
}

TEST(Hazard, FilesThatCannotBeRead) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "runs the tool as another user, which only root can";
    }
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("101PHOTO", {"KVR_0002.JPG"}).Put("100PHOTO", {"KVR_0003.JPG"});
    card.SetMode("100PHOTO", "KVR_0001.JPG", 0600);
    chmod(card.Path("101PHOTO").c_str(), 0744); // may be listed and not looked into
    chmod(card.Root().c_str(), 0755);
    clitest::Options options;
    options.user = 65534;
    EXPECT_EQ((Words{"100PHOTO/KVR_0001.JPG: it cannot be read (Permission denied)",
                     "101PHOTO/KVR_0002.JPG: it cannot be looked at (Permission denied)"}),
              Of(card.Check({}, options), "file-unreadable"));
}

TEST(Note, ProtectedFilesAndLooseNamesAreNoReasonToAct) {
    CheckedCard card;
    card.Put("100abcde", {"AB-D0001.JPG", "KVR_0002XJPG", "KVR_0003.JPG"});
    card.SetMode("100abcde", "KVR_0003.JPG", 0444);
    const Json json = card.Check();
    EXPECT_EQ(Words{}, clitest::Codes(json));
    EXPECT_EQ((Words{"100abcde/KVR_0003.JPG: it is protected"}), Of(json, "protected-file"));
    EXPECT_EQ((Words{"100abcde/AB-D0001.JPG: in front of its number the name has more than A to Z, 0 to 9 and _",
                     "100abcde/KVR_0002XJPG: there is no dot in front of the extension",
                     "100abcde: behind its number the name has more than A to Z, 0 to 9 and _"}),
              Of(json, "loose-name"));
    EXPECT_EQ(4, json["figures"]["notes"]);
}

TEST(Note, ForeignFilesKeepAFolder) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "notes.txt", "more.txt"}).Put("101PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ((Words{"100PHOTO: 2 entries that are not in the list would keep the folder from being removed with its "
                     "last picture"}),
              Of(card.Check(), "foreign-files"));
}

} // namespace
