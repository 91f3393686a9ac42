// rm over several folders: only what was named is ever deleted, also where that empties folders on the way.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ChangeCard.h"
#include "Seed.h"

using clitest::ChangeCard;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::Words;
using dcftest::DcfName;
using dcftest::DirName;
using dcftest::Seed;

namespace {

/// Without the many calls of sync(), which write what the whole machine has to write.
Options Quickly(const ChangeCard& card) {
    return WithShim(card.Environment(), "no-sync");
}

TEST(RemoveSet, EmptyingOneFolderDoesNotReachIntoTheNext) {
    // As one set of the library, the positions meant for 102 would be matched against 101.
    ChangeCard card;
    card.Put("103PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    card.Put("102PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    card.Put("101PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const Outcome outcome =
        card.Run({"rm", "--yes", "103PHOTO/KVR_0001.JPG", "103PHOTO/KVR_0002.JPG", "102PHOTO/KVR_0002.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ((Words{"101PHOTO", "102PHOTO"}), card.DirNames());
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("102PHOTO"));
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0002.JPG"}), card.Names("101PHOTO"));
}

TEST(RemoveSet, DeletesEveryFileOfManyFoldersButOne) {
    ChangeCard card;
    Words words = {"rm", "--yes"};
    for (int folder = 100; folder < 120; ++folder) {
        for (int file = 1; file <= 5; ++file) {
            card.Put(DirName(folder), {DcfName(file)});
            if (folder != 110 || file != 3) {
                words.push_back(DirName(folder) + "/" + DcfName(file));
            }
        }
    }
    const Outcome outcome = card.Run(words, Quickly(card));
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(Words{DirName(110)}, card.DirNames());
    EXPECT_EQ(Words{DcfName(3)}, card.Names(DirName(110)));
    EXPECT_TRUE(card.Holds(DirName(110), DcfName(3)));
}

TEST(RemoveSet, DeletesEveryFileOfAFolderButEachSeventh) {
    ChangeCard card;
    constexpr int kFiles = 140;
    Words words = {"rm", "--yes"};
    for (int file = 1; file <= kFiles; ++file) {
        card.Put("100PHOTO", {DcfName(file)});
        if (file % 7 != 0) {
            words.push_back("100PHOTO/" + DcfName(file));
        }
    }
    words.emplace_back("--json");
    const Outcome outcome = card.Run(words, Quickly(card));
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.err;
    EXPECT_EQ(kFiles - kFiles / 7, json["deleted"]["files"]);
    const Words left = card.Names("100PHOTO");
    ASSERT_EQ(static_cast<std::size_t>(kFiles / 7), left.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        EXPECT_EQ(DcfName(static_cast<int>(i + 1) * 7), left[i]);
    }
}

/// A random card, and which of its files are to be named.
struct RandomCard {
    Words named;
    Words expected; ///< "folder/name" of every entry that must stay.
};

RandomCard FillAtRandom(ChangeCard& card, Seed& seed) {
    RandomCard random;
    for (int folder = 100; folder < 106; ++folder) {
        const std::string name = DirName(folder);
        card.AddDir(name);
        const double share = seed.Chance(0.4) ? 1.0 : 0.5; // often a whole folder
        for (int file = 1; file <= seed.Pick(0, 6); ++file) {
            const bool pair = seed.Chance(0.3);
            const bool locked = seed.Chance(0.15);
            const bool chosen = seed.Chance(share);
            const std::vector<std::string> names = pair ? std::vector<std::string>{DcfName(file), DcfName(file, "SRW")}
                                                        : std::vector<std::string>{DcfName(file)};
            locked ? card.PutProtected(name, names) : card.Put(name, names);
            if (chosen) {
                random.named.push_back(name + "/" + DcfName(file));
            }
            if (!chosen || locked) {
                for (const std::string& kept : names) {
                    random.expected.push_back(name + "/" + kept);
                }
            }
        }
        if (seed.Chance(0.2)) {
            card.Put(name, {"foreign.txt"});
            random.expected.push_back(name + "/foreign.txt");
        }
    }
    std::sort(random.expected.begin(), random.expected.end());
    return random;
}

TEST(RemoveSet, LeavesExactlyWhatWasNotNamedOnRandomCards) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int round = 0; round < 25; ++round) {
        ChangeCard card;
        const RandomCard random = FillAtRandom(card, seed);
        if (random.named.empty()) {
            continue;
        }
        Words words = {"rm", "--yes"};
        words.insert(words.end(), random.named.begin(), random.named.end());
        const Outcome outcome = card.Run(words, Quickly(card));
        EXPECT_TRUE(outcome.exit == clitest::kSuccess || outcome.exit == clitest::kRefused) << outcome.Describe();
        Words found;
        for (const std::string& folder : card.DirNames()) {
            for (const std::string& name : card.Names(folder)) {
                EXPECT_TRUE(card.Holds(folder, name)) << folder << "/" << name;
                found.push_back(folder + "/" + name);
            }
        }
        ASSERT_EQ(random.expected, found) << outcome.Describe();
    }
}

} // namespace
