#include "RandomCard.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <utility>

namespace dcftest {

namespace {

constexpr char kFree[] = "ABCXYZabcxyz0123456789_- ";

std::string Number(Random& random, int digits) {
    // Few different numbers, so that files share them, and the ends of the range.
    const std::vector<int> ends = {0, 1, 9998, 9999};
    const int number = random.Chance(15) ? random.Pick(ends) : random.Below(40);
    std::string text = std::to_string(number);
    return std::string(static_cast<std::size_t>(digits) - text.size(), '0') + text;
}

std::string Extension(Random& random) {
    const std::vector<std::string> known = {"JPG", "JPG", "JPG", "SRW", "SRW", "MPO", "MP4", "AVI", "jpg", "Srw"};
    const std::vector<std::string> unknown = {"MOV", "TXT", "JP2"};
    return random.Chance(90) ? random.Pick(known) : random.Pick(unknown);
}

std::string DcfFileName(Random& random) {
    const std::vector<std::string> odd = {"ABCDX012.JPG", "ABCD0012XJPG", "ABCD012.JPG", "ABCD00012.JPG", "README.TXT"};
    if (random.Chance(8)) {
        return random.Pick(odd);
    }
    const std::vector<std::string> prefixes = {"KVR_", "KVR_", "kvr_", "_KVR", "AB-D", "12AB", "JPG_", "MP4_", "MPO!"};
    return random.Pick(prefixes) + Number(random, 4) + "." + Extension(random);
}

std::string CameraFileName(Random& random) {
    if (random.Chance(8)) {
        return DcfFileName(random); // not listed there: another length
    }
    std::string number = Number(random, 6);
    if (random.Chance(15)) {
        const std::vector<std::string> odd = {"-00012", "+00012", "12AB34", "ABCDEF", " 00007", "123456"};
        number = random.Pick(odd);
    }
    return "2024013" + random.Letters(1, "0123456789") + "_" + number + "." + Extension(random);
}

std::string DirectoryName(Random& random) {
    // Refused or read as 99: all of them sort before "Camera".
    const std::vector<std::string> odd = {"099ABCDE", "1000ABCD", "10ABCDEF",  " 100ABCD", "0999ABCD", "+100ABCD",
                                          "CAMERA12", "100ABCD",  "100ABCDEF", "-100ABCD", "0100ABCD"};
    if (random.Chance(12)) {
        return random.Pick(odd);
    }
    const std::vector<std::string> numbers = {"100", "101", "102", "103", "104", "105", "500", "998", "999"};
    const std::vector<std::string> suffixes = {"ABCDE", "PHOTO", "KVR_0", "abcde", "_1224"};
    const std::string suffix = random.Chance(70) ? random.Pick(suffixes) : "_" + random.Letters(4, kFree);
    return random.Pick(numbers) + suffix;
}

std::vector<PlannedFile> MakeFiles(Random& random, bool camera) {
    std::vector<PlannedFile> files;
    std::set<std::string> names;
    std::set<std::pair<std::string, std::string>> places; // what the listing order of a DCF directory looks at
    const int count = random.Chance(15) ? 0 : random.Below(12);
    for (int i = 0; i < count; ++i) {
        std::string name = camera ? CameraFileName(random) : DcfFileName(random);
        const bool placed = name.size() != 12 || places.emplace(name.substr(4, 4), name.substr(9)).second;
        if (placed && names.insert(name).second) {
            const mode_t mode = random.Chance(25) ? 0444 : 0644;
            files.push_back({std::move(name), mode, static_cast<std::uint32_t>(1000000000 + random.Below(100000000))});
        }
    }
    return files;
}

} // namespace

std::string Random::Letters(int count, const std::string& from) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
    }
    return text;
}

CardPlan MakePlan(Random& random) {
    CardPlan plan;
    std::set<std::string> names;
    const int count = random.Below(8);
    for (int i = 0; i < count; ++i) {
        const std::string name = DirectoryName(random);
        if (names.insert(name).second) {
            const bool isFolder = !random.Chance(3);
            plan.push_back({name, isFolder, isFolder ? MakeFiles(random, false) : std::vector<PlannedFile>{}});
        }
    }
    if (random.Chance(60)) {
        plan.push_back({"Camera", true, MakeFiles(random, true)});
    }
    return plan;
}

void WriteCard(Card& card, const CardPlan& plan) {
    for (const PlannedDirectory& directory : plan) {
        if (!directory.isFolder) {
            card.AddDir(".");
            std::ofstream(card.Path(directory.name)) << "no folder";
            continue;
        }
        card.AddDir(directory.name);
        for (const PlannedFile& file : directory.files) {
            card.AddFile(directory.name, file.name, {"", file.mode, static_cast<std::time_t>(file.time)});
        }
    }
}

} // namespace dcftest
