// add when the power goes: behind every single change that it makes on the card and in the preference store. Whatever
// stands there under a picture's name then is whole, what was there before is untouched, and the next run takes a
// number that nobody has and clears away what is left. The number of cuts is printed, and none is a failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <map>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::Words;

namespace {

const std::map<std::string, std::string> kSources = {{"b.jpg", std::string(5000, 'b')},
                                                     {"b.srw", std::string(7000, 'c')}};

bool IsLeftover(const std::string& name) {
    return name.find(".part") != std::string::npos;
}

/// Where the power is cut and how awkward the card is.
struct Road {
    std::string awkward;      ///< For the shim of the other tests.
    bool store = false;       ///< Also behind changes of the preference store.
    bool placeholder = false; ///< An empty file may hold a picture's place.
};

/// A power cut in dcfctl behind a change below the card's root, or also below the store's folder.
Options CutBehind(const ChangeCard& card, int change, const Road& road) {
    Options options = WithShim(card.Environment(), road.awkward);
    options.environment["LD_PRELOAD"] = std::string(CLI_POWER_CUT_SHIM) + ":" + CLI_CHANGE_SHIM;
    options.environment["CLI_POWER_CUT"] = std::to_string(change);
    options.environment["CLI_POWER_CUT_IN"] = card.Root() + ":" + (road.store ? card.Beside() : card.Root());
    return options;
}

Words Add(const ChangeCard& card) {
    Words words = {"add"};
    for (const auto& [name, content] : kSources) {
        words.push_back(card.Source(name, content));
    }
    return words;
}

/// The number of the newest file on the card. Every file is whole.
int ExpectWholeFiles(const ChangeCard& card, const Road& road, const std::string& what) {
    int newest = 0;
    for (const std::string& name : card.Names("100PHOTO")) {
        if (IsLeftover(name)) {
            continue;
        }
        const std::string content = ReadFile(card.Path("100PHOTO", name));
        const bool whole =
            std::any_of(kSources.begin(), kSources.end(), [&](const auto& source) { return source.second == content; });
        const bool placeholder = road.placeholder && content.empty();
        EXPECT_TRUE(whole || placeholder || card.Holds("100PHOTO", name))
            << what << ": " << name << " of " << content.size();
        newest = std::max(newest, std::stoi(name.substr(4, 4)));
    }
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG")) << what;
    return newest;
}

/// The next run does its work, with a number of its own, and nothing is left over.
void ExpectGoesOn(const ChangeCard& card, int newest, const std::string& what) {
    const Words before = card.Names("100PHOTO");
    const Json json = card.RunJson({"add", card.Source("next.jpg", kSources.at("b.jpg"))});
    ASSERT_TRUE(json.contains("files") && json["files"].size() == 1) << what << ": " << json;
    const std::string path = json["files"][0]["path"];
    const std::string name = path.substr(path.rfind('/') + 1);
    EXPECT_GT(std::stoi(name.substr(4, 4)), newest) << what;
    const Words after = card.Names("100PHOTO");
    EXPECT_EQ(after.end(), std::find_if(after.begin(), after.end(), IsLeftover)) << what;
    for (const std::string& kept : before) {
        EXPECT_TRUE(IsLeftover(kept) || std::count(after.begin(), after.end(), kept) == 1) << what << ": " << kept;
    }
}

/// Cuts behind every change there is. @return how many.
int CutEverywhere(const Road& road) {
    for (int change = 1;; ++change) {
        ChangeCard card;
        card.Put("100PHOTO", {"KVR_0001.JPG"});
        const Words words = Add(card);
        const Outcome outcome = card.Run(words, CutBehind(card, change, road));
        const std::string what = "cut behind change " + std::to_string(change);
        if (outcome.signal != SIGKILL) {
            EXPECT_EQ(clitest::kSuccess, outcome.exit) << what << outcome.Describe();
            EXPECT_EQ(3U, card.Names("100PHOTO").size()) << what;
            return change - 1;
        }
        ExpectGoesOn(card, ExpectWholeFiles(card, road, what), what);
        if (testing::Test::HasFailure()) {
            return change;
        }
    }
}

void ExpectCuts(int cuts) {
    std::cout << "power cuts in dcfctl add: " << cuts << "\n";
    EXPECT_GT(cuts, 0);
}

TEST(PowerCut, NeverLeavesAHalfWrittenPictureUnderItsName) {
    ExpectCuts(CutEverywhere({"no-sync", true, false}));
}

TEST(PowerCut, NeverLeavesOneWhereNamesAreGivenByLinksEither) {
    ExpectCuts(CutEverywhere({"no-sync,no-flags", false, false}));
}

// There a name can only be given without danger to other files by taking it first.
TEST(PowerCut, LeavesNoMoreThanAnEmptyPlaceholderWhereThereAreNoLinks) {
    ExpectCuts(CutEverywhere({"no-sync,no-flags,no-links", false, true}));
}

} // namespace
