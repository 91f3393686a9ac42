// The walk over the names of a folder, where a card would have to be too big for a test: at the list's limit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ListWalk.h"

using dcfctl::CensusFolder;
using dcfctl::Fate;
using dcfctl::WalkedFolder;

namespace {

CensusFolder FolderOf(const std::vector<std::string>& names) {
    CensusFolder folder;
    folder.self.name = "100PHOTO";
    folder.number = 100;
    for (const std::string& name : names) {
        folder.entries.push_back({name, std::nullopt, 0});
    }
    return folder;
}

std::vector<Fate> FatesOf(const WalkedFolder& walk) {
    std::vector<Fate> fates;
    for (const WalkedFolder::EntryFate& fate : walk.fates) {
        fates.push_back(fate.fate);
    }
    return fates;
}

const std::vector<std::string> kNames = {"KVR_0003.JPG", "KVR_0002.JPG", "KVR_0002.SRW", "KVR_0001.JPG", "notes.txt"};

TEST(ListWalk, TakesAllBelowTheLimit) {
    EXPECT_EQ((std::vector<Fate>{Fate::kListed, Fate::kListed, Fate::kCompanion, Fate::kListed, Fate::kNameRefused}),
              FatesOf(WalkFolder(FolderOf(kNames), 99997, {})));
}

TEST(ListWalk, StopsWithTheFileThatFillsTheListAndLeavesItsCompanionBehind) {
    EXPECT_EQ((std::vector<Fate>{Fate::kListed, Fate::kListed, Fate::kBeyond, Fate::kBeyond, Fate::kNameRefused}),
              FatesOf(WalkFolder(FolderOf(kNames), 99998, {})));
}

TEST(ListWalk, TakesOneFileOfEachFolderBehindAFullList) {
    EXPECT_EQ((std::vector<Fate>{Fate::kListed, Fate::kBeyond, Fate::kBeyond, Fate::kBeyond, Fate::kNameRefused}),
              FatesOf(WalkFolder(FolderOf(kNames), 100000, {})));
}

TEST(ListWalk, LetsTheListDecideAmongNamesThatItsOrderHoldsForEqual) {
    const CensusFolder folder = FolderOf({"ABCD0001.JPG", "EFGH0001.JPG"});
    EXPECT_EQ((std::vector<Fate>{Fate::kListed, Fate::kSecond}),
              FatesOf(WalkFolder(folder, 0, {{"ABCD0001.JPG", ""}})));
    EXPECT_EQ((std::vector<Fate>{Fate::kSecond, Fate::kListed}),
              FatesOf(WalkFolder(folder, 0, {{"EFGH0001.JPG", ""}})));
}

} // namespace
