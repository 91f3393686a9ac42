// What holds on every card, however awkward: the changing verbs touch what they announced and nothing else, or they
// refuse and touch nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

#include "AwkwardCards.h"
#include "ChangeCard.h"
#include "Seed.h"

using clitest::ChangeCard;
using clitest::FillAwkwardly;
using clitest::Json;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::PickOne;
using clitest::Words;
using dcftest::Seed;

namespace fs = std::filesystem;

namespace {

constexpr int kRounds = 40;

/// Every entry below "DCIM": a file's permissions and content, a folder's name alone.
std::map<std::string, std::string> Contents(const ChangeCard& card) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(card.Dcim())) {
        const std::string path = entry.path();
        const auto mode = static_cast<unsigned>(entry.status().permissions());
        contents[path] = entry.is_regular_file() ? std::to_string(mode) + clitest::ReadFile(path) : "folder";
    }
    return contents;
}

Words RandomTargets(const ChangeCard& card, Seed& seed) {
    const Json json = card.RunJson({"count"});
    const int count = json.contains("counts") ? json["counts"].value("files", 0) : 0;
    if (seed.Chance(0.3) || count == 0) {
        return {"--all"};
    }
    Words words = {"--pos"};
    for (int i = seed.Pick(1, 3); i > 0; --i) {
        words.push_back(std::to_string(seed.Pick(0, count - 1)));
    }
    return words;
}

Words With(const Words& first, const Words& rest) {
    Words all = first;
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

TEST(AwkwardCard, LosesByADeletionExactlyWhatWasAnnounced) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    int deleted = 0;
    int refused = 0;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        ChangeCard card;
        FillAwkwardly(card, seed);
        const Words targets = RandomTargets(card, seed);
        Words words = With({"rm"}, targets);
        if (targets[0] == "--all" && seed.Chance(0.5)) {
            words.emplace_back("--protected-too");
        }
        const auto before = Contents(card);
        const Json plan = card.RunJson(With(words, {"--dry-run"}));
        ASSERT_EQ(before, Contents(card));
        const Outcome outcome = card.Run(With(words, {"--yes"}));
        const auto after = Contents(card);
        if (outcome.exit != clitest::kSuccess) {
            EXPECT_TRUE(outcome.exit == clitest::kRefused) << outcome.Describe();
            EXPECT_FALSE(plan["error"].is_null()) << plan;
            EXPECT_EQ(before, after) << outcome.Describe();
            ++refused;
            continue;
        }
        auto expected = before;
        for (const Json& file : plan["files"]) {
            EXPECT_EQ(1U, expected.erase(file["path"].get<std::string>())) << plan;
            if (!file["companion"].is_null()) {
                EXPECT_EQ(1U, expected.erase(file["companion"]["path"].get<std::string>())) << plan;
            }
            ++deleted;
        }
        for (const std::string& folder : PathsIn(plan["folders"])) {
            EXPECT_EQ(1U, expected.erase(folder)) << plan;
        }
        EXPECT_EQ(expected, after) << plan << outcome.Describe();
    }
    EXPECT_GT(deleted, 0);
    EXPECT_GT(refused, 0);
}

TEST(AwkwardCard, ChangesByProtectionExactlyWhatIsReported) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    int changed = 0;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        ChangeCard card;
        FillAwkwardly(card, seed);
        const std::vector<std::string> verbs = {"protect", "unprotect", "toggle"};
        const Words words = With({PickOne(seed, verbs), "--json"}, RandomTargets(card, seed));
        const auto before = Contents(card);
        const Outcome outcome = card.Run(words);
        const auto after = Contents(card);
        const Json report = Json::parse(outcome.out);
        if (outcome.exit != clitest::kSuccess) {
            EXPECT_EQ(before, after) << outcome.Describe();
            continue;
        }
        auto expected = before;
        for (const Json& change : report["changed"]) {
            Words paths = {change["path"].get<std::string>()};
            if (!change["companion"].is_null()) {
                paths.push_back(change["companion"]["path"].get<std::string>());
            }
            const std::string mode = std::to_string(change["protect"].get<bool>() ? 0444 : 0644);
            for (const std::string& path : paths) {
                expected[path] = mode + clitest::ReadFile(path);
            }
            ++changed;
        }
        EXPECT_EQ(expected, after) << outcome.Describe();
    }
    EXPECT_GT(changed, 0);
}

TEST(AwkwardCard, TakesANewFileWithoutHarmToTheOthersOrRefusesIt) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    int added = 0;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        ChangeCard card;
        FillAwkwardly(card, seed);
        const auto before = Contents(card);
        Words words = {"add", "--json", card.Source("a.jpg", "picture"), card.Source("a.srw", "raw"),
                       card.Source("b.mp4", "movie")};
        if (seed.Chance(0.3)) {
            words.emplace_back("--date-folders");
        }
        const Outcome outcome = card.Run(words);
        auto after = Contents(card);
        if (outcome.exit != clitest::kSuccess) {
            EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
            EXPECT_EQ(before, after) << outcome.Describe();
            continue;
        }
        ++added;
        const Json report = Json::parse(outcome.out);
        const Json listed = Json::parse(card.Run({"ls", "--json"}).out);
        for (const Json& file : report["files"]) {
            const std::string path = file["path"];
            EXPECT_EQ(clitest::ReadFile(file["source"].get<std::string>()), clitest::ReadFile(path));
            EXPECT_EQ(1U, after.erase(path));
            EXPECT_NE(std::string::npos, listed.dump().find("\"" + path + "\"")) << path << listed;
        }
        for (const std::string& folder : PathsIn(report["made"])) {
            EXPECT_EQ(1U, after.erase(folder));
        }
        EXPECT_EQ(before, after) << outcome.Describe();
    }
    EXPECT_GT(added, 0);
}

} // namespace
