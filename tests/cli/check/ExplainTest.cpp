// explain: where one file or folder stands, or why it does not; also for a name that is not on the card.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "CheckedCard.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// "PATH PLACE POSITION NUMBER" of every entry that is explained, the path from "DCIM" on, and a "?" in front where it
/// is not on the card.
Words Entries(const CheckedCard& card, const Json& json) {
    Words entries;
    for (const Json& entry : json["entries"]) {
        entries.push_back((entry["on_card"].get<bool>() ? "" : "?") +
                          entry["path"].get<std::string>().substr(card.Dcim().size() + 1) + " " +
                          entry["place"].get<std::string>() + " " + entry["position"].dump() + " " +
                          entry["number"].dump());
    }
    return entries;
}

Words Codes(const Json& json) {
    Words codes;
    for (const Json& finding : json["entries"][0]["findings"]) {
        codes.push_back(finding["code"].get<std::string>());
    }
    return codes;
}

class ExplainCard : public CheckedCard {
public:
    ExplainCard() {
        Put("101PHOTO", {"KVR_0002.JPG", "KVR_0001.JPG", "KVR_0001.SRW"});
        Put("100PHOTO", {"KVR_0007.JPG", "KVR_0007.MP4", "KVR_001.JPG"});
        Put("Camera", {"20240501_123456.JPG"}).Put("MISC", {"KVR_0001.JPG"});
    }
};

TEST(Explain, GivesThePositionAndTheNumberOfAListedFile) {
    ExplainCard card;
    const Json json = card.Explain("101PHOTO/KVR_0001.JPG");
    EXPECT_EQ((Words{"101PHOTO/KVR_0001.JPG listed 1 1"}), Entries(card, json));
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0001.SRW"), json["entries"][0]["partner"]);
    EXPECT_EQ(Words{}, Codes(json));
    const Json show = Json::parse(OnCard(card.Root(), {"show", "1", "--json"}).out);
    EXPECT_EQ(show["file"]["path"], json["entries"][0]["path"]);
}

TEST(Explain, GivesTheFileOfACompanion) {
    ExplainCard card;
    const Json json = card.Explain("101PHOTO/KVR_0001.SRW");
    EXPECT_EQ((Words{"101PHOTO/KVR_0001.SRW companion 1 1"}), Entries(card, json));
    EXPECT_EQ(card.Path("101PHOTO", "KVR_0001.JPG"), json["entries"][0]["partner"]);
}

TEST(Explain, GivesTheReasonAndTheHazardsOfAFileThatIsLeftOut) {
    ExplainCard card;
    const Json json = card.Explain("100PHOTO/KVR_0007.MP4");
    EXPECT_EQ((Words{"100PHOTO/KVR_0007.MP4 left-out null null"}), Entries(card, json));
    EXPECT_EQ((Words{"second-of-number", "movie-and-photo"}), Codes(json));
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0007.JPG"), json["entries"][0]["findings"][0]["other"]);
    EXPECT_EQ("check-findings", json["warnings"][0]["cause"]);
}

TEST(Explain, TakesAPathInManyForms) {
    ExplainCard card;
    const Words expected = {"101PHOTO/KVR_0002.JPG listed 0 2"};
    for (const std::string& what :
         {card.Path("101PHOTO", "KVR_0002.JPG"), std::string("DCIM/101PHOTO/KVR_0002.JPG"),
          std::string("101PHOTO//KVR_0002.JPG"), std::string("./DCIM/101PHOTO/../101PHOTO/KVR_0002.JPG"),
          std::string("101PHOTO/kvr_0002.jpg"), std::string("KVR_0002.JPG"), std::string("kvr_0002.jpg")}) {
        EXPECT_EQ(expected, Entries(card, card.Explain(what))) << what;
    }
    clitest::Options inside;
    inside.folder = card.Path("101PHOTO");
    const Outcome outcome = OnCard(card.Root(), {"explain", "--json", "./KVR_0002.JPG"}, inside);
    EXPECT_EQ(expected, Entries(card, Json::parse(outcome.out))) << outcome.Describe();
}

TEST(Explain, FindsANameAloneInEveryFolder) {
    ExplainCard card;
    card.Put("102PHOTO", {"KVR_0002.JPG"});
    EXPECT_EQ((Words{"102PHOTO/KVR_0002.JPG listed 0 2", "101PHOTO/KVR_0002.JPG listed 1 2"}),
              Entries(card, card.Explain("KVR_0002.JPG")));
}

TEST(Explain, PrefersTheVerySpelling) {
    ExplainCard card;
    card.Make({"CAMERA"});
    EXPECT_EQ((Words{"Camera folder 3 99"}), Entries(card, card.Explain("Camera")));
    EXPECT_EQ((Words{"CAMERA left-out null null"}), Entries(card, card.Explain("CAMERA")));
}

TEST(Explain, TellsOfFolders) {
    ExplainCard card;
    const Json json = card.Explain("101PHOTO");
    EXPECT_EQ((Words{"101PHOTO folder 0 101"}), Entries(card, json));
    EXPECT_EQ(2, json["entries"][0]["files"]);
    EXPECT_EQ((Words{"100PHOTO folder 2 100"}), Entries(card, card.Explain("DCIM/100PHOTO/")));
    EXPECT_EQ((Words{"MISC left-out null null"}), Entries(card, card.Explain("MISC")));
    EXPECT_EQ((Words{"folder-name-length"}), Codes(card.Explain("MISC")));
}

TEST(Explain, GivesTheFolderForWhatLiesInOneThatIsLeftOut) {
    ExplainCard card;
    EXPECT_EQ((Words{"MISC left-out null null"}), Entries(card, card.Explain("DCIM/MISC/KVR_0001.JPG")));
}

TEST(Explain, TellsWhatWouldBecomeOfAFileThatIsNotThere) {
    ExplainCard card;
    EXPECT_EQ((Words{"?101PHOTO/KVR_0009.JPG listed 0 9"}), Entries(card, card.Explain("KVR_0009.JPG")));
    EXPECT_EQ((Words{"?100PHOTO/KVR_0003.JPG listed 3 3"}), Entries(card, card.Explain("100PHOTO/KVR_0003.JPG")));
    EXPECT_EQ((Words{"?101PHOTO/KVR_0002.SRW companion 0 2"}), Entries(card, card.Explain("101PHOTO/KVR_0002.SRW")));
    EXPECT_EQ((Words{"second-of-number"}), Codes(card.Explain("100PHOTO/ZZZZ0007.JPG")));
    EXPECT_EQ((Words{"name-length"}), Codes(card.Explain("KVR_00010.JPG")));
    EXPECT_EQ((Words{"?Camera/20240601_000000.JPG listed 4 0"}), Entries(card, card.Explain("20240601_000000.JPG")));
}

TEST(Explain, TellsWhatWouldBecomeOfAFolderThatIsNotThere) {
    ExplainCard card;
    EXPECT_EQ((Words{"?102PHOTO folder null 102"}), Entries(card, card.Explain("102PHOTO")));
    EXPECT_EQ((Words{"folder-number-taken"}), Codes(card.Explain("100ABCDE")));
    EXPECT_EQ((Words{"?100ZZZZZ folder null 100"}), Entries(card, card.Explain("100ZZZZZ")));
    EXPECT_EQ((Words{"shared-folder-number"}), Codes(card.Explain("100ZZZZZ")));
    EXPECT_EQ((Words{"folder-number-range"}), Codes(card.Explain("DCIM/099PHOTO")));
    EXPECT_FALSE(fs::exists(card.Path("102PHOTO")));
}

TEST(Explain, IsNotSureOfANameThatMayLieInAFolderThatCannotBeRead) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "runs the tool as another user, which only root can";
    }
    ExplainCard card;
    chmod(card.Path("100PHOTO").c_str(), 0700);
    chmod(card.Root().c_str(), 0755);
    clitest::Options nobody;
    nobody.user = 65534;
    const auto explained = [&](const char* what) { return OnCard(card.Root(), {"explain", what}, nobody); };
    const Outcome outcome = explained("KVR_0007.JPG");
    EXPECT_EQ(clitest::kPartial, outcome.exit);
    EXPECT_EQ(clitest::WarningLine("the folder '100PHOTO' cannot be read (Permission denied), its files are missing "
                                   "from the list; check its permissions and the card"),
              outcome.err);
    EXPECT_EQ(clitest::kSuccess, explained("KVR_0001.JPG").exit) << "that one is there";
    EXPECT_EQ(clitest::kSuccess, explained("101PHOTO/KVR_0007.JPG").exit) << "and that one is not";
    EXPECT_EQ(clitest::kPartial, explained("notes.txt").exit) << "although it would be left out elsewhere";
}

TEST(Explain, RefusesWhatHasNoPlaceOnTheCard) {
    ExplainCard card;
    for (const char* what : {"/etc/passwd", "555PHOTO/KVR_0001.JPG", "", "DCIM", "DCIM/", ".", "..", "100PHOTO/a/b"}) {
        const Json json = card.Explain(what);
        ASSERT_FALSE(json["error"].is_null()) << what << json;
        EXPECT_EQ("unknown-path", json["error"]["cause"]) << what;
    }
}

TEST(Explain, TellsOfTheCardWhereItCannotBeListed) {
    CheckedCard card;
    card.Put("100AAAAA", {"KVR_0001.JPG"}).Make({"100BBBBB"});
    const Json json = card.Explain("KVR_0001.JPG");
    EXPECT_EQ((Words{"100AAAAA/KVR_0001.JPG left-out null null"}), Entries(card, json));
    EXPECT_EQ((Words{"card-not-listed"}), Codes(json));
    CheckedCard longer(72);
    longer.Put("100AAAAA", {"KVR_0001.JPG"});
    EXPECT_EQ((Words{"path-cut", "root-too-long"}), Codes(longer.Explain("KVR_0001.JPG")));
}

TEST(Explain, KeepsToTheEntryWhereTheCardIsListed) {
    CheckedCard card; // the hazard is the card's
    const std::string dcim = card.Root() + "/PHOTOS/DCIM";
    fs::create_directories(dcim + "/100ABCDE");
    fs::copy_file(card.PutContent("100ABCDE", "KVR_0001.JPG", clitest::ContentFor(".JPG")).Path("100ABCDE") +
                      "/KVR_0001.JPG",
                  dcim + "/100ABCDE/KVR_0001.JPG");
    const Outcome outcome = OnCard(card.Root() + "/PHOTOS", {"explain", "KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit);
    EXPECT_EQ("DCIM/100ABCDE/KVR_0001.JPG\n  is in the list at position 0, with the number 1\n", outcome.out);
}

TEST(Explain, LeavesCameraOutWhenAsked) {
    ExplainCard card;
    const Json json = card.Explain("Camera", {"--no-camera"});
    EXPECT_EQ((Words{"camera-not-asked", "renumber-incomplete"}), Codes(json));
    EXPECT_EQ(Json::array(), json["warnings"]); // it was asked for
}

} // namespace
