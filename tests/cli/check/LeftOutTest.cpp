// check: why an entry is not in the list. Each rule is made on purpose on a card of its own and found by its code.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::Of;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// A finding and its code, nothing else but notes, and the figures.
void ExpectOnly(const CheckedCard& card, const std::string& code, const Words& findings, const std::string& figures,
                const Words& beside = {}) {
    const Json json = card.Check();
    EXPECT_EQ(findings, Of(json, code)) << json;
    Words codes = beside;
    codes.push_back(code);
    std::sort(codes.begin(), codes.end());
    EXPECT_EQ(codes, clitest::Codes(json));
    EXPECT_EQ(figures, clitest::Figures(json));
    EXPECT_EQ(findings.size(), json["counts"][code].get<std::size_t>());
}

TEST(LeftOut, NothingOnAGoodCard) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.MP4", "KVR_0003.AVI", "KVR_0004.MPO"});
    card.Put("Camera", {"20240501_123456.JPG", "20240501_123457.SRW"});
    const Json json = card.Check();
    EXPECT_EQ(Words{}, clitest::Codes(json));
    EXPECT_EQ("7 6 1 0", clitest::Figures(json));
}

TEST(LeftOut, AFileInDcim) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).PutIntoDcim("KVR_0002.JPG");
    ExpectOnly(card, "file-in-dcim",
               {"KVR_0002.JPG: it is a file directly in 'DCIM', where only folders are looked at"}, "2 1 0 1");
}

TEST(LeftOut, AFileNamedLikeAFolder) {
    CheckedCard card;
    card.Put("101PHOTO", {"KVR_0001.JPG"}).PutIntoDcim("100PHOTO");
    ExpectOnly(card, "not-a-folder", {"100PHOTO: it has the name of a folder, and is a file"}, "2 1 0 1");
    fs::create_symlink("nowhere", card.Path("102PHOTO"));
    EXPECT_EQ("102PHOTO: it has the name of a folder, and is a link that leads nowhere",
              Of(card.Check(), "not-a-folder").at(1));
}

TEST(LeftOut, AFolderWithANameThatHasNotEightCharacters) {
    CheckedCard card;
    card.Put("100ABCD", {"KVR_0001.JPG", "notes.txt"}).Make({"M\xc3\xa4RZ"});
    ExpectOnly(card, "folder-name-length",
               {"100ABCD: a folder's name has 7 characters, and 8 are needed; with it 2 entries are left out, 1 of "
                "which looks like a picture or movie",
                "M\xc3\xa4RZ: a folder's name has 5 characters (a letter such as \xc3\xa4 counts as two or more), and "
                "8 are needed; it is empty"},
               "2 0 0 2");
}

TEST(LeftOut, AFolderWithoutAGoodNumber) {
    CheckedCard card;
    card.Make({"HOLIDAYS", "10ABCDEF", "1000ABCD", "0100ABCD", "099ABCDE"});
    const Words beside = {"folder-fourth-digit", "folder-number-range", "renumber-takes-along"};
    ExpectOnly(card, "folder-no-number",
               {"10ABCDEF: the name must begin with three digits, and begins with 2; it is empty",
                "HOLIDAYS: the name must begin with three digits, and begins with none; it is empty"},
               "5 0 0 5", beside);
    const Json json = card.Check();
    EXPECT_EQ(2U, Of(json, "folder-fourth-digit").size());
    EXPECT_EQ((Words{"099ABCDE: folders are numbered from 100 to 999, and this is 099; it is empty"}),
              Of(json, "folder-number-range"));
}

TEST(LeftOut, AFolderWhoseNumberIsTaken) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("100ABCDE", {"KVR_0002.JPG"});
    ExpectOnly(card, "folder-number-taken",
               {"100ABCDE: '100PHOTO' has the number 100 too and is listed instead of '100ABCDE', because its name "
                "contains \"PHOTO\"; with it 1 entry is left out, which looks like a picture or movie"},
               "2 1 0 1", {"renumber-takes-along"});
}

TEST(LeftOut, AFolderWhoseNumberIsTakenBecauseOfTheCardsPath) {
    CheckedCard card;
    const std::string root = card.Root() + "/PHOTO";
    fs::create_directories(root + "/DCIM/100BBBBB");
    fs::create_directories(root + "/DCIM/100AAAAA");
    const Json json = Json::parse(clitest::OnCard(root, {"check", "--json"}).out);
    ASSERT_EQ(1U, Of(json, "folder-number-taken").size()) << json;
    EXPECT_NE(std::string::npos, Of(json, "folder-number-taken")[0].find("because the card's path contains \"PHOTO\""));
    EXPECT_EQ(1U, Of(json, "root-photo").size());
}

TEST(LeftOut, AFolderThatCannotBeRead) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "runs the tool as another user, which only root can";
    }
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("101PHOTO", {"KVR_0001.JPG"});
    chmod(card.Path("101PHOTO").c_str(), 0700);
    chmod(card.Root().c_str(), 0755);
    clitest::Options options;
    options.user = 65534;
    const Json json = card.Check({}, options);
    EXPECT_EQ((Words{"101PHOTO: the folder cannot be read (Permission denied)"}), Of(json, "folder-unreadable"));
    EXPECT_EQ("2 1 0 1", clitest::Figures(json));
}

TEST(LeftOut, CameraInAnotherSpelling) {
    CheckedCard card;
    card.Make({"CAMERA"});
    ExpectOnly(card, "camera-spelling",
               {"CAMERA: the list knows the folder 'Camera' in this spelling alone; it is empty"}, "1 0 0 1");
}

TEST(LeftOut, HiddenFoldersAreNotToBeNamedLikeFoldersOfPictures) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Make({"100PHOTO/.trash"}).Put(".thumbnails", {"1.jpg"}).Make({".Trashes"});
    ExpectOnly(
        card, "hidden-file",
        {".Trashes: it is a hidden folder, as computers and phones leave them behind; it is empty",
         ".thumbnails: it is a hidden folder, as computers and phones leave them behind; with it 1 entry is left "
         "out, which looks like a picture or movie",
         "100PHOTO/.trash: it is a hidden folder, as computers and phones leave them behind"},
        "4 1 0 3", {"renumber-takes-along"});
}

TEST(LeftOut, CameraAsAskedIsANoteAndCountsAsOneEntry) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    const Json json = card.Check({"--no-camera"});
    EXPECT_EQ(1U, Of(json, "camera-not-asked").size());
    EXPECT_EQ(Words{}, clitest::Codes(json));
    EXPECT_EQ("2 1 0 1", clitest::Figures(json));
}

TEST(LeftOut, HiddenFilesAndFoldersInFolders) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "._KVR_0001.JPG"}).PutIntoDcim(".index");
    fs::create_directories(card.Path("100PHOTO") + "/more");
    ExpectOnly(card, "hidden-file",
               {".index: it is a file directly in 'DCIM', where only folders are looked at",
                "100PHOTO/._KVR_0001.JPG: it is a hidden file, as computers leave them behind"},
               "4 1 0 3", {"folder-in-folder"});
    EXPECT_EQ((Words{"100PHOTO/more: it is a folder inside a folder, and is not looked into"}),
              Of(card.Check(), "folder-in-folder"));
}

TEST(LeftOut, NamesThatHaveNotTwelveCharacters) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_001.JPG", "KVR_0001.JPEG"});
    ExpectOnly(card, "name-length",
               {"100PHOTO/KVR_0001.JPEG: the name has 13 characters, and 12 are needed, with three letters behind "
                "the dot",
                "100PHOTO/KVR_001.JPG: the name has 11 characters, and 12 are needed"},
               "2 0 0 2");
}

TEST(LeftOut, ALetterWhereADigitBelongs) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_O001.JPG"});
    ExpectOnly(card, "number-not-digits",
               {"100PHOTO/KVR_O001.JPG: the characters five to eight are the file's number, and 'O001' is none"},
               "1 0 0 1");
}

TEST(LeftOut, AnUnknownExtension) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.MOV"}).Put("Camera", {"20240501_123456.PNG"});
    ExpectOnly(card, "extension-unknown",
               {"100PHOTO/KVR_0001.MOV: 'MOV' at the end of the name is none of JPG, SRW, MPO, MP4 and AVI",
                "Camera/20240501_123456.PNG: 'PNG' at the end of the name is none of JPG, SRW and MPO"},
               "2 0 0 2");
}

TEST(LeftOut, TheSecondFileOfANumberWithTheOneThatIsListed) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0007.JPG", "ABCD0007.JPG"});
    const Json json = card.Check();
    const std::string listed = clitest::Lines(clitest::OnCard(card.Root(), {"ls", "--paths"}).out).at(0);
    const Words found = Of(json, "second-of-number");
    ASSERT_EQ(1U, found.size()) << json;
    const std::string name = listed.substr(listed.rfind('/') + 1);
    const std::string other = name == "KVR_0007.JPG" ? "ABCD0007.JPG" : "KVR_0007.JPG";
    EXPECT_EQ("100PHOTO/" + other + ": '" + name + "' has the number 0007 too and is listed instead", found[0]);
    for (const Json& finding : json["findings"]) {
        if (finding["code"] == "second-of-number") {
            EXPECT_EQ(listed, finding["other"]);
        }
    }
}

TEST(LeftOut, TheSecondOfTwoNeighboursInCamera) {
    CheckedCard card;
    card.Put("Camera", {"20240501_123456.JPG", "20240502_123456.JPG"});
    ExpectOnly(card, "second-of-number",
               {"Camera/20240502_123456.JPG: characters 10 to 15 of the name are its number, and "
                "'20240501_123456.JPG', which comes just before, has the same one and is listed instead"},
               "2 1 0 1");
}

TEST(LeftOut, TheNumberZero) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0000.JPG"}).Put("Camera", {"20240501_000000.JPG"});
    ExpectOnly(card, "number-zero",
               {"100PHOTO/KVR_0000.JPG: the number is 0000, and file numbers begin with 0001",
                "Camera/20240501_000000.JPG: 000000 as characters 10 to 15 of the name is the number 0, which is not "
                "listed where no other number comes before"},
               "2 0 0 2");
}

TEST(LeftOut, CompanionsThatAreNotAdopted) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.MPO", "KVR_0001.SRW"});
    ExpectOnly(card, "companion-replaced",
               {"100PHOTO/KVR_0001.MPO: it would be a companion of 'KVR_0001.JPG', which can have one, and has "
                "'KVR_0001.SRW'"},
               "3 1 1 1", {"deletion-leaves-companion"});
    CheckedCard prefix;
    prefix.Put("100PHOTO", {"KVR_0001.JPG", "ABCD0001.SRW"});
    ExpectOnly(prefix, "companion-prefix",
               {"100PHOTO/ABCD0001.SRW: the companion of 'KVR_0001.JPG' is looked for as 'KVR_0001.SRW', so that "
                "'ABCD0001.SRW' is not found"},
               "2 1 0 1", {"deletion-leaves-companion"});
    CheckedCard camera;
    camera.Put("Camera", {"20240501_123456.JPG", "20240501_123456.SRW"});
    ExpectOnly(camera, "camera-companion",
               {"Camera/20240501_123456.SRW: the companion of '20240501_123456.JPG' is looked for as '20240501_SRW', "
                "so that '20240501_123456.SRW' is not found"},
               "2 1 0 1", {"deletion-leaves-companion"});
}

TEST(LeftOut, ACameraNameWhoseCharactersReadAsTheNumberBefore) {
    CheckedCard card;
    card.Put("Camera", {"20240501_12AB56.JPG", "20240501_12CD56.JPG"});
    ExpectOnly(card, "camera-digits",
               {"Camera/20240501_12CD56.JPG: characters 10 to 15 of the name are its number, and "
                "'20240501_12AB56.JPG', which comes just before, has the same one and is listed instead"},
               "2 1 0 1", {"camera-number-odd"});
}

TEST(LeftOut, NamesThatCameraDoesNotTake) {
    CheckedCard card;
    card.Put("Camera", {"20240501_123456.MP4", "KVR_0001.JPG", "20240501-ABCDEF.JPG"});
    ExpectOnly(card, "camera-movie", {"Camera/20240501_123456.MP4: movies are not listed in 'Camera'"}, "3 0 0 3",
               {"camera-digits", "camera-name-length"});
    EXPECT_EQ((Words{"Camera/KVR_0001.JPG: in 'Camera' the name has 12 characters, and 19 are needed"}),
              Of(card.Check(), "camera-name-length"));
    EXPECT_EQ((Words{"Camera/20240501-ABCDEF.JPG: characters 10 to 15 of the name are its number, and 'ABCDEF' reads "
                     "as 0, which is not listed where no other number comes before"}),
              Of(card.Check(), "camera-digits"));
}

TEST(LeftOut, PathsThatWouldBeCut) {
    CheckedCard card(72);
    card.Put("100PHOTO", {"KVR_0001.JPG", "notes.txt"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"100PHOTO/KVR_0001.JPG: the path has 99 characters and would be cut at 98"}),
              Of(json, "path-cut"));
    EXPECT_EQ("2 0 0 2", clitest::Figures(json));
    EXPECT_FALSE(json["has_list"].get<bool>());
    EXPECT_EQ((Words{"name-length", "path-cut", "root-too-long"}), clitest::Codes(json));
    CheckedCard fits(71);
    fits.Put("100PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ(Words{}, clitest::Codes(fits.Check()));
}

TEST(LeftOut, PathsThatWouldBeCutInCameraAlone) {
    CheckedCard card(67);
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"Camera/20240501_123456.JPG: the path has 99 characters and would be cut at 98"}),
              Of(json, "path-cut"));
    EXPECT_EQ((Words{"100PHOTO/KVR_0001.JPG: its name is good, and no list can be made of this card"}),
              Of(json, "card-not-listed"));
    EXPECT_EQ(Words{}, clitest::Codes(card.Check({"--no-camera"})));
    CheckedCard longer(71); // now the paths of the other folders are just not cut
    longer.Put("100PHOTO", {"KVR_0001.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    EXPECT_EQ(1U, Of(longer.Check(), "card-not-listed").size());
    EXPECT_EQ(1U, Of(longer.Check(), "path-cut").size());
}

TEST(LeftOut, ARootThatIsLongerThanTheListTakes) {
    CheckedCard card(98);
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Json json = card.Check();
    EXPECT_EQ(1U, Of(json, "path-cut").size());
    EXPECT_EQ(1U, Of(json, "root-too-long").size());
}

} // namespace
