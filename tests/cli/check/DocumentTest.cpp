// What the documents promise of check and explain: the keys of their JSON documents in a fixed order, an entry for
// every code in docs/check.md and none without one, and the verbs and options in the man page.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "CheckedCard.h"
#include "JsonKeys.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::Keys;
using clitest::OnCard;
using clitest::ReadFile;
using clitest::Words;

namespace {

constexpr char kSourceRoot[] = DCFCTL_SOURCE_ROOT;

const Words kFindingKeys = {"code",  "severity",    "path",  "path_bytes", "message",
                            "other", "other_bytes", "title", "cure"};

TEST(CheckDocument, HasItsKeys) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "ABCD0001.SRW"});
    const Json json = card.Check();
    EXPECT_EQ((Words{"format", "version", "bytes_encoding", "error", "warnings", "card", "card_bytes", "figures",
                     "has_list", "refusal", "renumbering", "counts", "findings"}),
              Keys(json));
    EXPECT_EQ("dcfctl.check", json["format"]);
    EXPECT_EQ((Words{"entries", "folders", "listed", "companions", "left_out", "hazards", "notes", "numbers_left"}),
              Keys(json["figures"]));
    EXPECT_EQ((Words{"complete", "renames"}), Keys(json["renumbering"]));
    ASSERT_FALSE(json["findings"].empty());
    for (const Json& finding : json["findings"]) {
        EXPECT_EQ(kFindingKeys, Keys(finding));
    }
}

TEST(CheckDocument, IsOfOneTypeWhetherThereAreFindingsOrNot) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ(Json::array(), card.Check()["findings"]);
    EXPECT_TRUE(card.Check()["refusal"].is_null());
}

TEST(CheckDocument, HasNoResultBesideAnError) {
    const Json json = Json::parse(OnCard("/nowhere/at/all", {"check", "--json"}).out);
    EXPECT_EQ((Words{"format", "version", "bytes_encoding", "error", "warnings"}), Keys(json));
    EXPECT_EQ("card-missing", json["error"]["cause"]);
}

TEST(ExplainDocument, HasItsKeys) {
    CheckedCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "ABCD0001.SRW"});
    const Json json = card.Explain("ABCD0001.SRW");
    EXPECT_EQ((Words{"format", "version", "bytes_encoding", "error", "warnings", "card", "card_bytes", "what",
                     "what_bytes", "entries"}),
              Keys(json));
    EXPECT_EQ("dcfctl.explain", json["format"]);
    ASSERT_EQ(1U, json["entries"].size());
    EXPECT_EQ((Words{"path", "path_bytes", "on_card", "place", "position", "number", "files", "partner",
                     "partner_bytes", "findings"}),
              Keys(json["entries"][0]));
    EXPECT_EQ(kFindingKeys, Keys(json["entries"][0]["findings"][0]));
}

TEST(CheckDocument, GivesHostileNamesWhole) {
    CheckedCard card;
    const std::string name = "\xff\n\x1b[31m.JPG";
    card.Put("100PHOTO", {name});
    const Json json = card.Check();
    const Json& finding = json["findings"][0];
    EXPECT_EQ(card.Path("100PHOTO", name), clitest::FromBase64(finding["path_bytes"].get<std::string>()));
    EXPECT_EQ("name-length", finding["code"]);
}

/// The codes of the tool, from the table itself: every one has a count.
std::set<std::string> CodesOfTheTool() {
    CheckedCard card;
    const Words keys = Keys(card.Check()["counts"]);
    return {keys.begin(), keys.end()};
}

TEST(CheckDocument, HasAnEntryForEveryCodeAndNoOther) {
    const std::string page = ReadFile(std::string(kSourceRoot) + "/docs/check.md");
    std::set<std::string> entries;
    const std::regex heading("\n### `([a-z-]+)`\n");
    for (std::sregex_iterator it(page.begin(), page.end(), heading), end; it != end; ++it) {
        EXPECT_TRUE(entries.insert((*it)[1]).second) << "twice: " << (*it)[1];
        const std::size_t begin = static_cast<std::size_t>(it->position() + it->length());
        const std::string text = page.substr(begin, page.find("\n#", begin) - begin);
        EXPECT_NE(std::string::npos, text.find("Cause: ")) << (*it)[1];
        EXPECT_NE(std::string::npos, text.find("Cure: ")) << (*it)[1];
    }
    EXPECT_EQ(CodesOfTheTool(), entries);
    EXPECT_GT(entries.size(), 50U);
}

TEST(CheckDocument, FilesEachCodeUnderItsSeverity) {
    const std::string page = ReadFile(std::string(kSourceRoot) + "/docs/check.md");
    const std::size_t leftOut = page.find("\n## Left out");
    const std::size_t hazards = page.find("\n## Hazards");
    const std::size_t notes = page.find("\n## Notes");
    ASSERT_TRUE(leftOut < hazards && hazards < notes && notes != std::string::npos);
    const std::string table = ReadFile(std::string(kSourceRoot) + "/tools/dcfctl/CheckCodes.cpp");
    const std::regex row("\"([a-z-]+)\",\\s+k(LeftOut|Hazard|Note),");
    std::size_t rows = 0;
    for (std::sregex_iterator it(table.begin(), table.end(), row), end; it != end; ++it, ++rows) {
        const std::size_t at = page.find("\n### `" + (*it)[1].str() + "`\n");
        const std::string section = at < hazards ? "LeftOut" : at < notes ? "Hazard" : "Note";
        EXPECT_EQ((*it)[2].str(), section) << (*it)[1];
    }
    EXPECT_EQ(CodesOfTheTool().size(), rows);
}

TEST(CheckDocument, TheManPageNamesTheVerbsAndTheirOptions) {
    const std::string page = ReadFile(std::string(kSourceRoot) + "/docs/dcfctl.1");
    for (const char* verb : {"check", "explain"}) {
        EXPECT_NE(std::string::npos, page.find(std::string(".Ss ") + verb + "\n")) << verb;
        EXPECT_NE(std::string::npos, page.find(std::string(".Cm ") + verb + "\n")) << verb;
        const std::string help = clitest::Dcfctl({verb, "--help"}).out;
        const std::regex option("--([a-z0-9-]+)");
        for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it) {
            EXPECT_NE(std::string::npos, page.find("Fl -" + (*it)[1].str())) << verb << " --" << (*it)[1];
        }
    }
}

TEST(CheckDocument, ForProgramsNamesTheCausesOfTheVerbs) {
    const std::string pages = ReadFile(std::string(kSourceRoot) + "/docs/dcfctl.md");
    for (const char* cause : {"check-findings", "check-disagrees", "figures-do-not-close"}) {
        EXPECT_NE(std::string::npos, pages.find("`" + std::string(cause) + "`")) << cause;
    }
}

} // namespace
