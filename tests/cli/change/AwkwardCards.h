// Random cards of the awkward kind: folders that share numbers, names in lower case, numbers that several files have,
// companions of every sort, protected files, things that are no pictures. For tests of what holds on every card.
#ifndef TESTS_CLI_CHANGE_AWKWARD_CARDS_H
#define TESTS_CLI_CHANGE_AWKWARD_CARDS_H

#include <string>
#include <vector>

#include "ChangeCard.h"
#include "Seed.h"

namespace clitest {

inline const std::vector<std::string>& AwkwardFolders() {
    static const std::vector<std::string> names = {"100PHOTO", "100ZZZZZ", "101PHOTO", "101abcde",
                                                   "102_0101", "999PHOTO", "998PHOTO", "Camera",
                                                   "Zebra123", "0990ABCD", "HOLIDAYS", "099PHOTO"};
    return names;
}

template <typename Value>
const Value& PickOne(dcftest::Seed& seed, const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(seed.Pick(0, static_cast<int>(values.size()) - 1))];
}

inline void FillAwkwardly(ChangeCard& card, dcftest::Seed& seed) {
    const std::vector<std::string> files = {
        "KVR_0000.JPG", "KVR_0001.JPG", "KVR_0001.SRW", "kvr_0002.jpg", "KVR_0002.SRW", "ABCD0002.MPO", "KVR_0003.MP4",
        "KVR_0003.JPG", "KVR_0004.AVI", "KVR_0005.JPG", "KVR_0006.JPG", "KVR_9999.JPG", "notes.txt"};
    const std::vector<std::string> camera = {"20240501_123456.JPG", "20240501_123456.SRW", "20240502_123456.JPG",
                                             "20240503_000000.JPG", "IMG-20240501-01.JPG", "20240504_-00001.JPG"};
    for (int i = seed.Pick(0, 4); i > 0; --i) {
        const std::string& folder = PickOne(seed, AwkwardFolders());
        card.AddDir(folder);
        for (int j = seed.Pick(0, 5); j > 0; --j) {
            const std::string& name = PickOne(seed, folder == "Camera" ? camera : files);
            if (!card.Exists(folder, name)) {
                seed.Chance(0.2) ? card.PutProtected(folder, {name}) : card.Put(folder, {name});
            }
        }
    }
}

} // namespace clitest

#endif
