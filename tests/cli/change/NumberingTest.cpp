// What next-name foretells is what it then does: on cards of every kind, in both modes of numbering, many names in a
// row.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ChangeCard.h"
#include "Seed.h"

using clitest::ChangeCard;
using clitest::Json;
using clitest::Outcome;
using clitest::Words;
using dcftest::DcfName;
using dcftest::DirName;
using dcftest::Seed;

namespace fs = std::filesystem;

namespace {

/// Takes a name for real after foretelling it, and compares all that was said. @return whether there was one.
bool TakeOne(const ChangeCard& card, const Words& options) {
    Words words = {"next-name", "--json"};
    words.insert(words.end(), options.begin(), options.end());
    Words dry = words;
    dry.emplace_back("--dry-run");
    const Words before = card.Before();
    const Outcome foretold = card.Run(dry);
    EXPECT_EQ(before, card.Before()) << foretold.Describe();
    const Outcome done = card.Run(words);
    EXPECT_EQ(foretold.exit, done.exit) << foretold.Describe() << done.Describe();
    EXPECT_EQ(foretold.err, done.err);
    Json first = Json::parse(foretold.out);
    const Json second = Json::parse(done.out);
    if (done.exit != clitest::kSuccess) {
        EXPECT_EQ(before, card.Before()) << done.Describe();
        return false;
    }
    first["dry_run"] = false;
    EXPECT_EQ(first, second);
    EXPECT_EQ(second["series_value"].get<long>(), card.Series());
    EXPECT_TRUE(fs::is_directory(second["folder"].get<std::string>()));
    EXPECT_FALSE(fs::exists(second["path"].get<std::string>()));
    return true;
}

std::string Suffix(Seed& seed) {
    const std::vector<std::string> suffixes = {"PHOTO", "PHOTO", "_0101", "ABCDE", "photo"};
    return suffixes[static_cast<std::size_t>(seed.Pick(0, static_cast<int>(suffixes.size()) - 1))];
}

void FillAtRandom(ChangeCard& card, Seed& seed) {
    const std::vector<int> numbers = {100, 101, 102, 500, 997, 998, 999};
    for (const int number : numbers) {
        if (!seed.Chance(0.4)) {
            continue;
        }
        const std::string folder = DirName(number, Suffix(seed));
        card.AddDir(folder);
        if (seed.Chance(0.7)) {
            const int last = seed.Chance(0.3) ? 9999 : seed.Pick(0, 9999);
            card.Put(folder, {DcfName(last, seed.Chance(0.5) ? "JPG" : "AVI")});
        }
        if (seed.Chance(0.2)) {
            card.Put(folder, {"ABCD0001.TXT", "notes"});
        }
    }
    if (seed.Chance(0.3)) {
        card.Put("Camera", {"20240501_123456.JPG"});
    }
}

Words RandomOptions(Seed& seed) {
    Words options;
    if (seed.Chance(0.4)) {
        options.emplace_back("--series");
    }
    if (seed.Chance(0.3)) {
        options.emplace_back("--date-folders");
    }
    if (seed.Chance(0.2)) {
        options.emplace_back("--date-names");
    }
    if (seed.Chance(0.3)) {
        options.insert(options.end(), {"--colour", "optional"});
    }
    if (seed.Chance(0.3)) {
        options.insert(options.end(), {"--type", "MP4"});
    }
    return options;
}

TEST(Numbering, ForetellsWhatHappensOnRandomCards) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    int taken = 0;
    for (int round = 0; round < 40; ++round) {
        ChangeCard card;
        FillAtRandom(card, seed);
        if (seed.Chance(0.5)) {
            const std::vector<long> values = {0, 10000050, 50000000, 99809999, 99909998, 99909999};
            card.SetSeries(values[static_cast<std::size_t>(seed.Pick(0, static_cast<int>(values.size()) - 1))]);
        }
        taken += TakeOne(card, RandomOptions(seed)) ? 1 : 0;
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(taken, 10); // else the cards were no test
}

TEST(Numbering, ForetellsTheEmptyFolders) {
    // Without a file in the list the numbers begin at 100-0001 whatever folders there are.
    ChangeCard card;
    card.AddDir("100PHOTO").AddDir("105PHOTO");
    EXPECT_TRUE(TakeOne(card, {}));
    ChangeCard other;
    other.AddDir("100ABCDE").AddDir("101PHOTO");
    EXPECT_TRUE(TakeOne(other, {}));
}

TEST(Numbering, GoesOnFromAFolderThatWasMadeButNeverFilled) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_9999.JPG"});
    EXPECT_TRUE(TakeOne(card, {}));
    EXPECT_TRUE(TakeOne(card, {}));
    EXPECT_EQ((Words{"100PHOTO", "101PHOTO"}), card.DirNames());
    EXPECT_EQ(10100001, card.Series());
}

// ---- Series numbering ----

TEST(Numbering, GoesOnFromTheStoredValueInSeriesMode) {
    ChangeCard card;
    card.Put("105PHOTO", {"KVR_0017.JPG"});
    card.SetSeries(12300045);
    EXPECT_EQ(card.Path("105PHOTO", "KVR_0018.JPG"), card.RunJson({"next-name", "--dry-run"})["path"]);
    const Json json = card.RunJson({"next-name", "--series"});
    EXPECT_EQ(card.Path("123PHOTO", "KVR_0046.JPG"), json["path"]);
    EXPECT_TRUE(json["series_mode"].get<bool>());
    EXPECT_EQ(12300046, card.Series());
}

TEST(Numbering, StoresTheValueInEitherModeSoAnotherCardCanLowerIt) {
    ChangeCard card;
    card.Put("105PHOTO", {"KVR_0017.JPG"});
    card.SetSeries(12300045);
    EXPECT_EQ(clitest::kSuccess, card.Run({"next-name"}).exit);
    EXPECT_EQ(10500018, card.Series());
}

TEST(Numbering, IsRaisedByACardFromElsewhereAndComesBackWithSeriesSet) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0010.JPG"});
    card.SetSeries(10000010);
    ChangeCard elsewhere;
    elsewhere.Put("800PHOTO", {"KVR_0001.JPG"});
    clitest::Options options = card.Environment();
    EXPECT_EQ(clitest::kSuccess, elsewhere.Run({"next-name", "--series"}, options).exit);
    EXPECT_EQ(80000002, card.Series());
    EXPECT_EQ(card.Path("800PHOTO", "KVR_0003.JPG"), card.RunJson({"next-name", "--series", "--dry-run"})["path"]);
    card.SetSeries(10000010);
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0011.JPG"), card.RunJson({"next-name", "--series", "--dry-run"})["path"]);
}

TEST(Numbering, StartsAnExhaustedSeriesFromTheCardsOwnNumbers) {
    ChangeCard card;
    card.Put("105PHOTO", {"KVR_0017.JPG"});
    card.SetSeries(99909999);
    EXPECT_TRUE(TakeOne(card, {"--series"}));
    EXPECT_EQ(10500018, card.Series());
}

} // namespace
