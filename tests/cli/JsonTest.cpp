// The JSON documents: valid whatever a card's names are, with the keys that docs/dcfctl.md promises.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "JsonKeys.h"

using clitest::Keys;
using clitest::OnCard;
using clitest::Words;
using dcftest::Card;
using dcftest::FileTraits;
using Json = nlohmann::ordered_json;

namespace {

const Words kFileKeys = {"position",         "path",        "path_bytes", "type",    "companion", "protected", "wifi",
                         "directory_number", "file_number", "time",       "time_utc"};

void FillSmall(Card& card) {
    FileTraits traits;
    traits.mtime = 1714557600;
    card.AddFile("100ABCDE", "KVR_0001.JPG", traits);
    card.AddFile("100ABCDE", "KVR_0001.SRW", traits);
    traits.mode = 0444;
    card.AddFile("101ABCDE", "KVR_0003.AVI", traits);
}

TEST(Json, OfAListHasItsKeysInAFixedOrder) {
    Card card;
    FillSmall(card);
    const auto run = OnCard(card.Root(), {"ls", "--json"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "");
    const Json json = Json::parse(run.out);
    EXPECT_EQ(Keys(json), (Words{"format", "version", "bytes_encoding", "error", "warnings", "card", "card_bytes",
                                 "counts", "shown", "files"}));
    EXPECT_EQ(json["format"], "dcfctl.ls");
    EXPECT_EQ(json["version"], 1);
    EXPECT_EQ(json["bytes_encoding"], "base64") << "how a path that is no text comes back";
    EXPECT_EQ(json["error"], nullptr);
    EXPECT_EQ(json["warnings"], Json::array());
    EXPECT_EQ(json["card"], card.Root());
    EXPECT_EQ(json["card_bytes"], nullptr);
    EXPECT_EQ(json["counts"], Json({{"files", 2}, {"JPG", 1}, {"SRW", 1}, {"MPO", 0}, {"MP4", 0}, {"AVI", 1}}));
    EXPECT_EQ(json["shown"], 2);
    ASSERT_EQ(json["files"].size(), 2U);
    for (const Json& file : json["files"]) {
        EXPECT_EQ(Keys(file), kFileKeys);
    }
}

TEST(Json, TellsEverythingAboutAFile) {
    Card card;
    FillSmall(card);
    const Json files = Json::parse(OnCard(card.Root(), {"ls", "--json"}).out)["files"];
    EXPECT_EQ(files[0], Json({{"position", 0},
                              {"path", card.Path("101ABCDE", "KVR_0003.AVI")},
                              {"path_bytes", nullptr},
                              {"type", "AVI"},
                              {"companion", nullptr},
                              {"protected", true},
                              {"wifi", false},
                              {"directory_number", 101},
                              {"file_number", 3},
                              {"time", clitest::kHasTimes ? Json(1714557600) : Json()},
                              {"time_utc", clitest::kHasTimes ? Json("2024-05-01T10:00:00Z") : Json()}}));
    EXPECT_EQ(files[1]["protected"], false);
    EXPECT_EQ(files[1]["companion"],
              Json({{"type", "SRW"}, {"path", card.Path("100ABCDE", "KVR_0001.SRW")}, {"path_bytes", nullptr}}));
    Json shown = Json::parse(OnCard(card.Root(), {"show", "--json", "0"}).out)["file"];
    EXPECT_EQ(shown.erase("metadata") == 1, clitest::kHasExif) << "what the picture tells has tests of its own";
    shown.erase("metadata_missing");
    EXPECT_EQ(shown, files[0]);
}

TEST(Json, PutsEachFileOfAListOnALineOfItsOwn) {
    Card card;
    FillSmall(card);
    const Words lines = clitest::Lines(OnCard(card.Root(), {"ls", "--json"}).out);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(Json::parse(lines[2])["position"], 1);
}

TEST(Json, OfAnEmptyListIsValid) {
    Card card;
    card.AddDir("100ABCDE");
    const Json json = Json::parse(OnCard(card.Root(), {"ls", "--json"}).out);
    EXPECT_EQ(json["files"], Json::array());
    EXPECT_EQ(json["shown"], 0);
}

TEST(Json, CountsAllTypesWhicheverWasAskedFor) {
    Card card;
    FillSmall(card);
    const Json json = Json::parse(OnCard(card.Root(), {"count", "--json", "--type", "AVI"}).out);
    EXPECT_EQ(Keys(json),
              (Words{"format", "version", "bytes_encoding", "error", "warnings", "card", "card_bytes", "counts"}));
    EXPECT_EQ(json["format"], "dcfctl.count");
    EXPECT_EQ(json["counts"]["files"], 2);
    EXPECT_EQ(json["counts"]["JPG"], 1);
}

TEST(Json, GivesAPathThatIsNoTextBackInBase64) {
    Card card;
    card.AddFile("100\xff\xc3(\x80Z", "AB\xed\xa0"
                                      "0001.JPG");
    card.AddFile("100\xff\xc3(\x80Z", "AB\xed\xa0"
                                      "0001.SRW");
    const auto run = OnCard(card.Root(), {"ls", "--json"});
    const Json file = Json::parse(run.out)["files"][0];
    const std::string bad = "\xef\xbf\xbd"; // U+FFFD
    EXPECT_EQ(file["path"], card.Dcim() + "/100" + bad + bad + "(" + bad + "Z/AB" + bad + bad + "0001.JPG");
    EXPECT_EQ(file["companion"]["path"],
              card.Dcim() + "/100" + bad + bad + "(" + bad + "Z/AB" + bad + bad + "0001.SRW");

    const std::string path = card.Path("100\xff\xc3(\x80Z", "AB\xed\xa0"
                                                            "0001.JPG");
    EXPECT_EQ(clitest::FromBase64(file["path_bytes"]), path);
    EXPECT_EQ(clitest::FromBase64(file["companion"]["path_bytes"]), path.substr(0, path.size() - 3) + "SRW");
}

TEST(Json, EscapesControlCharactersAndQuotes) {
    Card card;
    card.AddFile("100\x01\"\\\n\x1f", "AB\x7f\t0001.JPG");
    const Json file = Json::parse(OnCard(card.Root(), {"ls", "--json"}).out)["files"][0];
    EXPECT_EQ(file["path"], card.Path("100\x01\"\\\n\x1f", "AB\x7f\t0001.JPG"));
    EXPECT_EQ(file["path_bytes"], nullptr);
}

TEST(Json, HasNullForAnUnknownTime) {
    Card card;
    FileTraits traits;
    traits.mtime = 0;
    card.AddFile("100ABCDE", "KVR_0001.JPG", traits);
    const Json file = Json::parse(OnCard(card.Root(), {"ls", "--json"}).out)["files"][0];
    EXPECT_EQ(file["time"], nullptr);
    EXPECT_EQ(file["time_utc"], nullptr);
}

TEST(Json, SaysWhyThereIsNoResultAndSoDoesStandardError) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    for (const Words& arguments : {Words{"ls", "--json"}, {"count", "--json"}, {"show", "--json", "0"}}) {
        const auto run = OnCard(card.Root() + "/nothing", arguments);
        EXPECT_EQ(run.exit, clitest::kCardUnreadable);
        const Json json = Json::parse(run.out);
        EXPECT_EQ(Keys(json), (Words{"format", "version", "bytes_encoding", "error", "warnings"}));
        EXPECT_EQ(Keys(json["error"]), (Words{"cause", "exit_code", "exit_name", "message"}));
        EXPECT_EQ(json["error"]["cause"], "card-missing");
        EXPECT_EQ(json["error"]["exit_code"], 4);
        EXPECT_EQ(json["error"]["exit_name"], "card-unreadable");
        EXPECT_EQ(run.err, clitest::ErrorLine(json["error"]["message"]));
    }
}

TEST(Json, HoldsWarningsAndNullForWhatCannotBeHad) {
    Card card;
    card.AddFile("100AAAAA", "KVR_0001.JPG");
    card.AddFile("100BBBBB", "KVR_0002.JPG");
    const auto run = OnCard(card.Root(), {"ls", "--json"});
    EXPECT_EQ(run.exit, clitest::kPartial);
    const Json json = Json::parse(run.out);
    ASSERT_EQ(json["warnings"].size(), 1U);
    EXPECT_EQ(json["warnings"][0]["cause"], "shared-folder-number");
    EXPECT_EQ(json["warnings"][0]["exit_name"], "partial");
    EXPECT_EQ(run.err, clitest::WarningLine(json["warnings"][0]["message"]));
    for (const Json& file : json["files"]) {
        EXPECT_EQ(Keys(file), kFileKeys);
        EXPECT_EQ(file["type"], "JPG");
        for (const char* key : {"protected", "wifi", "directory_number", "file_number"}) {
            EXPECT_EQ(file[key], nullptr) << key;
        }
    }
}

} // namespace
