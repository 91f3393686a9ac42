// What the documents promise of the changing verbs: the keys of their JSON documents, in a fixed order and also after
// an error, and the verbs, options and causes in the man page and in docs/dcfctl-changing.md.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>

#include "ChangeCard.h"
#include "JsonKeys.h"

using clitest::ChangeCard;
using clitest::Keys;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::Words;
using Json = nlohmann::ordered_json;

namespace fs = std::filesystem;

namespace {

constexpr char kSourceRoot[] = DCFCTL_SOURCE_ROOT;

/// What every document begins with, and what this one has behind it.
Words Behind(const Json& json) {
    const Words keys = Keys(json);
    const Words all = {"format", "version", "bytes_encoding", "error", "warnings"};
    EXPECT_EQ(all, Words(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), keys.size()))))
        << json;
    return {keys.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), keys.size())), keys.end()};
}

Json DocumentOf(const ChangeCard& card, Words words) {
    words.emplace_back("--json");
    return Json::parse(card.Run(words).out);
}

TEST(Document, OfEachChangingVerbHasItsKeys) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"});
    const std::vector<std::pair<Words, Words>> rows = {
        {{"rm", "--dry-run", "--pos", "1"},
         {"card", "card_bytes", "dry_run", "planned", "deleted", "files", "folders", "kept", "left_behind"}},
        {{"toggle", "--pos", "1"}, {"card", "card_bytes", "wanted", "changed", "failed", "already"}},
        {{"latest-name"}, {"card", "card_bytes", "path", "path_bytes", "type", "companion", "exists"}},
        {{"capacity"}, {"card", "card_bytes", "numbers_left", "series_mode", "free_bytes", "total_bytes"}},
        {{"next-name"},
         {"card", "card_bytes", "dry_run", "series_mode", "path", "path_bytes", "folder", "folder_bytes", "made",
          "series_value", "series_before"}},
        {{"add", card.Source("a.jpg", "a")},
         {"card", "card_bytes", "dry_run", "series_mode", "files", "not_added", "made", "bytes", "series_value",
          "series_before"}},
        {{"renumber", "--dry-run"},
         {"card", "card_bytes", "dry_run", "complete", "renames", "left_behind", "series_value", "series_before"}},
        {{"series"}, {"value", "number", "before", "set"}},
    };
    for (const auto& [words, keys] : rows) {
        const Json json = DocumentOf(card, words);
        EXPECT_EQ(keys, Behind(json)) << json;
        EXPECT_EQ("dcfctl." + (words[0] == "toggle" ? "protect" : words[0]), json["format"]);
        EXPECT_EQ(1, json["version"]);
    }
}

TEST(Document, OfAFailedVerbHasTheErrorAndNoResult) {
    ChangeCard card;
    card.Put("999PHOTO", {"KVR_9999.JPG"});
    const std::vector<std::pair<Words, std::string>> rows = {
        {{"rm", "--pos", "1"}, "position-out-of-range"},
        {{"rm", "--pos", "0"}, "not-asked"},
        {{"protect", "x"}, "unknown-path"},
        {{"next-name"}, "numbers-used-up"},
        {{"add", card.Beside() + "/none.jpg"}, "source-missing"},
        {{"series", "set", "1"}, "bad-series-value"},
    };
    for (const auto& [words, cause] : rows) {
        const Json json = DocumentOf(card, words);
        EXPECT_EQ(Words{}, Behind(json)) << json;
        EXPECT_EQ(cause, json["error"]["cause"]);
        EXPECT_EQ((Words{"cause", "exit_code", "exit_name", "message"}), Keys(json["error"]));
    }
}

TEST(Document, GivesAPathThatIsNoTextInBase64) {
    ChangeCard card;
    card.Put("100PHOTO", {"K\xff\xfe_0001.JPG", "KVR_0002.JPG"});
    const Json json = DocumentOf(card, {"rm", "--dry-run", "--pos", "1"});
    EXPECT_EQ(card.Path("100PHOTO", "K\xff\xfe_0001.JPG"),
              clitest::FromBase64(json["files"][0]["path_bytes"].get<std::string>()));
}

TEST(Document, TheManPageNamesEveryVerbAndOption) {
    const std::string page = ReadFile(std::string(kSourceRoot) + "/docs/dcfctl.1");
    for (const char* verb : {"rm", "protect", "unprotect", "toggle", "latest-name", "capacity", "next-name", "add",
                             "renumber", "series"}) {
        EXPECT_NE(std::string::npos, page.find(std::string(".Ss ") + verb + "\n")) << verb;
        const std::string help = clitest::Dcfctl({verb, "--help"}).out;
        const std::regex option("--([a-z0-9-]+)");
        for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it) {
            if ((*it)[1] != "color" && (*it)[1] != "help") { // the other spelling, and what all have
                EXPECT_NE(std::string::npos, page.find("Fl -" + (*it)[1].str())) << verb << " --" << (*it)[1];
            }
        }
    }
}

/// The names of the causes in the sources: short words in quotes in front of a comma, where a finding is made.
std::set<std::string> CausesIn(const std::string& text) {
    std::set<std::string> causes;
    const std::regex made(
        "(?:Refused|Incomplete|Refusal|Finding|Failed<[A-Za-z]+>)[({]+(?:operation, )?\"([a-z]+(?:-[a-z0-9]+)+)\"");
    for (std::sregex_iterator it(text.begin(), text.end(), made), end; it != end; ++it) {
        causes.insert((*it)[1]);
    }
    return causes;
}

TEST(Document, ForProgramsNamesEveryCause) {
    const std::string docs = std::string(kSourceRoot) + "/docs/";
    const std::string pages = ReadFile(docs + "dcfctl.md") + ReadFile(docs + "dcfctl-changing.md");
    std::size_t found = 0;
    for (const auto& entry : fs::directory_iterator(std::string(kSourceRoot) + "/tools/dcfctl")) {
        if (entry.path().extension() == ".cpp") {
            for (const std::string& cause : CausesIn(ReadFile(entry.path()))) {
                EXPECT_NE(std::string::npos, pages.find("`" + cause + "`")) << cause << " in " << entry.path();
                ++found;
            }
        }
    }
    EXPECT_GT(found, 40U); // else they are written in another way now
}

} // namespace
