// check on random cards, with names that lie near the rules: whatever is on a card, the figures close, and what is said
// to be left out is what the library's list leaves out.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "CheckedCard.h"
#include "Seed.h"

using clitest::CheckedCard;
using clitest::Json;
using clitest::OnCard;
using clitest::Words;
using dcftest::Seed;

namespace fs = std::filesystem;

namespace {

constexpr int kCards = 40;

template <typename Value>
const Value& PickOne(Seed& seed, const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(seed.Pick(0, static_cast<int>(values.size()) - 1))];
}

std::string FolderName(Seed& seed) {
    static const std::vector<std::string> numbers = {"100", "100", "101", "999", "099",
                                                     "000", "1",   "+10", " 99", "abc"};
    static const std::vector<std::string> rests = {"PHOTO", "ABCDE", "_0501", "0ABCD", "abcde", "era", "\xc3\xa4\n!"};
    return seed.Chance(0.25) ? PickOne(seed, std::vector<std::string>{"Camera", "Camera", "CAMERA", "0990ABCD", "MISC"})
                             : PickOne(seed, numbers) + PickOne(seed, rests);
}

std::string DcfFile(Seed& seed) {
    static const std::vector<std::string> prefixes = {"KVR_", "KVR_", "kvr_", "ABCD", "JPG_", "\xff-!\x1b", ""};
    static const std::vector<std::string> numbers = {"0001", "0001", "0002", "0002", "0000", "9999", "O001", "00001"};
    static const std::vector<std::string> rests = {".JPG", ".JPG", ".jpg", ".SRW", ".srw",  ".MPO", ".MPO",
                                                   ".MP4", ".AVI", "XJPG", ".MOV", ".JPEG", ""};
    return PickOne(seed, prefixes) + PickOne(seed, numbers) + PickOne(seed, rests);
}

std::string CameraFile(Seed& seed) {
    static const std::vector<std::string> days = {"20240501_", "20240502_", "img-20240", "IMG-20240"};
    static const std::vector<std::string> times = {"123456", "123456", "000000", "-00001",
                                                   "12AB56", "  7   ", "abcdef"};
    static const std::vector<std::string> rests = {".JPG", ".JPG", ".jpg", ".SRW", ".MPO", ".MP4", ".PNG"};
    return seed.Chance(0.15) ? PickOne(seed, days) + "SRW"
                             : PickOne(seed, days) + PickOne(seed, times) + PickOne(seed, rests);
}

void PutOne(CheckedCard& card, Seed& seed, const std::string& folder, const std::string& name) {
    const std::string path = card.Path(folder, name);
    if (name.empty() || fs::exists(fs::symlink_status(path))) {
        return;
    }
    const int kind = seed.Pick(0, 19);
    if (kind == 0) {
        fs::create_directory(path);
    } else if (kind == 1) {
        fs::create_symlink("KVR_0001.JPG", path);
    } else if (kind == 2) {
        ASSERT_EQ(0, mkfifo(path.c_str(), 0644));
    } else if (kind == 3) {
        card.PutContent(folder, name, "");
    } else {
        card.Put(folder, {name});
    }
}

void Fill(CheckedCard& card, Seed& seed) {
    for (int folders = seed.Pick(0, 4); folders > 0; --folders) {
        const std::string folder = FolderName(seed);
        if (seed.Chance(0.1)) {
            if (!card.Exists(folder)) {
                card.PutIntoDcim(folder);
            }
            continue;
        }
        if (card.Exists(folder) && !fs::is_directory(card.Path(folder))) {
            continue;
        }
        card.AddDir(folder);
        for (int files = seed.Pick(0, 9); files > 0; --files) {
            const bool camera = (folder == "Camera") != seed.Chance(0.1);
            PutOne(card, seed, folder, camera ? CameraFile(seed) : DcfFile(seed));
        }
    }
}

/// Bytes of a path in a document.
std::string PathIn(const Json& json, const std::string& key) {
    return json[key + "_bytes"].is_null() ? json[key].get<std::string>()
                                          : clitest::FromBase64(json[key + "_bytes"].get<std::string>());
}

/// Every entry of "DCIM" and below, one level deep.
std::set<std::string> Below(const std::string& folder) {
    std::set<std::string> paths;
    for (const auto& entry : fs::directory_iterator(folder)) {
        paths.insert(entry.path().string());
    }
    return paths;
}

void ExpectEveryEntryAccountedFor(const CheckedCard& card, const Json& json) {
    std::set<std::string> leftOut;
    std::size_t counted = 0;
    for (const Json& finding : json["findings"]) {
        if (finding["severity"] == "left-out") {
            EXPECT_TRUE(leftOut.insert(PathIn(finding, "path")).second) << finding; // one reason each
            ++counted;
        }
    }
    EXPECT_EQ(json["figures"]["left_out"].get<std::size_t>(), counted);
    std::size_t listed = 0;
    std::size_t folders = 0;
    for (const std::string& path : Below(card.Dcim())) {
        if (leftOut.count(path) > 0) {
            ++listed; // with all that it holds
            continue;
        }
        ++folders;
        ASSERT_TRUE(fs::is_directory(path)) << path << " is not accounted for";
        listed += Below(path).size();
    }
    EXPECT_EQ(json["figures"]["entries"].get<std::size_t>(), listed);
    EXPECT_EQ(json["figures"]["folders"].get<std::size_t>(), folders);
    if (json["has_list"].get<bool>()) {
        std::size_t lines = 0; // none of the list is said to be left out
        const std::string out = OnCard(card.Root(), {"ls", "-0"}).out;
        for (std::size_t begin = 0, end = 0; (end = out.find('\0', begin)) != std::string::npos; begin = end + 1) {
            EXPECT_EQ(0U, leftOut.count(out.substr(begin, end - begin))) << out.substr(begin, end - begin);
            ++lines;
        }
        EXPECT_EQ(json["figures"]["listed"].get<std::size_t>(), lines);
    }
}

TEST(RandomCard, AlwaysCloses) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int i = 0; i < kCards && !HasFailure(); ++i) {
        CheckedCard card;
        Fill(card, seed);
        ExpectEveryEntryAccountedFor(card, card.Check());
    }
}

} // namespace
