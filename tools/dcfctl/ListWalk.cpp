// The walk; see the header. The rules are the library's, down to their oddities.
#include "ListWalk.h"

#include <algorithm>
#include <set>

namespace dcfctl {
namespace {

constexpr std::size_t kNumberAt = 4;
constexpr std::size_t kNumberLength = 4;
constexpr std::size_t kExtensionAt = 9;

bool IsCompanionType(eFileType type) {
    return type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
}

/// A name that the list takes.
struct Candidate {
    std::size_t entry;
    FileName read;
    int rank; ///< Among equals: 0 is surely the listed one, 1 may be, 2 is not.
};

std::vector<Candidate> Candidates(const CensusFolder& folder, const std::vector<ListedFile>& list) {
    std::set<std::string> listed;
    for (const ListedFile& file : list) {
        listed.insert(file.name);
    }
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < folder.entries.size(); ++i) {
        const std::string& name = folder.entries[i].name;
        const auto read = folder.camera ? CameraFileName(name) : DcfFileName(name);
        if (read.has_value()) {
            const int rank = listed.contains(name) ? 0 : listed.contains(UpperCased(name)) ? 1 : 2;
            candidates.push_back({i, *read, rank});
        }
    }
    return candidates;
}

void SortAsListed(std::vector<Candidate>& candidates, const CensusFolder& folder) {
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        const std::string& nameA = folder.entries[a.entry].name;
        const std::string& nameB = folder.entries[b.entry].name;
        if (folder.camera) {
            return nameA < nameB;
        }
        const int numbers = nameB.compare(kNumberAt, kNumberLength, nameA, kNumberAt, kNumberLength);
        const int extensions = nameA.substr(kExtensionAt).compare(nameB.substr(kExtensionAt));
        return numbers != 0 ? numbers < 0 : extensions != 0 ? extensions < 0 : a.rank < b.rank;
    });
}

/// The name that the list makes for a companion: nine characters of the file's first twelve, and the type's three.
std::string ComposedName(const std::string& listed, eFileType type) {
    return listed.substr(0, kExtensionAt) + TypeText(type);
}

void Scan(const std::vector<Candidate>& candidates, const CensusFolder& folder, std::size_t base, WalkedFolder& walk) {
    int previous = 0; // as the library begins, so that a number 0 that comes first is never listed
    bool full = false;
    for (const Candidate& candidate : candidates) {
        WalkedFolder::EntryFate& fate = walk.fates[candidate.entry];
        if (full) {
            fate.fate = Fate::kBeyond;
            continue;
        }
        if (candidate.read.number != previous) {
            previous = candidate.read.number;
            WalkedFile file;
            file.listed.name = UpperCased(folder.entries[candidate.entry].name);
            file.read = candidate.read;
            file.entry = candidate.entry;
            fate = {Fate::kListed, walk.files.size()};
            walk.files.push_back(std::move(file));
        } else if (walk.files.empty()) {
            fate.fate = Fate::kZero;
            continue;
        } else if (IsCompanionType(candidate.read.type)) {
            WalkedFile& file = walk.files.back();
            file.listed.companion = ComposedName(file.listed.name, candidate.read.type);
            file.followers.push_back(candidate.entry);
            fate = {Fate::kFollower, walk.files.size() - 1};
        } else {
            walk.files.back().rivals.push_back(candidate.entry);
            fate = {Fate::kSecond, walk.files.size() - 1};
            continue;
        }
        full = base + walk.files.size() >= static_cast<std::size_t>(kMaxFiles);
    }
}

void Remove(std::vector<std::size_t>& entries, std::size_t entry) {
    entries.erase(std::remove(entries.begin(), entries.end(), entry), entries.end());
}

/// In "Camera" the name of the list can be that of another entry, which was passed over before, where the two differ by
/// their case alone. The list's path leads to that one, so it is the one that is listed.
void SettleSpellings(const CensusFolder& folder, WalkedFolder& walk) {
    std::map<std::string, std::size_t> passedOver;
    for (std::size_t i = 0; i < folder.entries.size(); ++i) {
        if (walk.fates[i].fate == Fate::kFollower || walk.fates[i].fate == Fate::kSecond) {
            passedOver[folder.entries[i].name] = i;
        }
    }
    for (std::size_t index = 0; index < walk.files.size(); ++index) {
        WalkedFile& file = walk.files[index];
        const auto found = passedOver.find(file.listed.name);
        if (found == passedOver.end() || folder.entries[file.entry].name == file.listed.name) {
            continue;
        }
        WalkedFile& before = walk.files[walk.fates[found->second].file];
        Remove(before.followers, found->second);
        Remove(before.rivals, found->second);
        walk.fates[file.entry] = {Fate::kSecond, index};
        walk.fates[found->second] = {Fate::kListed, index};
        file.rivals.push_back(file.entry);
        file.entry = found->second;
        passedOver.erase(found);
    }
}

/// Finds the entries to which the companions' names lead. In "Camera" that can be one of any name.
void FindCompanions(const CensusFolder& folder, WalkedFolder& walk) {
    std::map<std::string, std::vector<std::size_t>> byName;
    for (const WalkedFile& file : walk.files) {
        if (!file.listed.companion.empty()) {
            byName[file.listed.companion];
        }
    }
    for (const WalkedFile& file : walk.files) {
        byName.erase(file.listed.name); // such a name leads to the file, not to a companion
    }
    for (std::size_t i = 0; !byName.empty() && i < folder.entries.size(); ++i) {
        const auto found = byName.find(UpperCased(folder.entries[i].name));
        if (found != byName.end() && walk.fates[i].fate != Fate::kListed) {
            const bool exact = folder.entries[i].name == found->first;
            found->second.insert(exact ? found->second.begin() : found->second.end(), i);
        }
    }
    for (std::size_t index = 0; index < walk.files.size(); ++index) {
        WalkedFile& file = walk.files[index];
        const auto found = byName.find(file.listed.companion);
        if (found != byName.end() && !found->second.empty()) {
            file.companionEntry = found->second.front();
            walk.fates[found->second.front()] = {Fate::kCompanion, index};
            byName.erase(found); // one entry is the companion of one file
        }
    }
}

} // namespace

WalkedFolder WalkFolder(const CensusFolder& folder, std::size_t base, const std::vector<ListedFile>& list) {
    std::vector<Candidate> candidates = Candidates(folder, list);
    SortAsListed(candidates, folder);
    WalkedFolder walk;
    walk.fates.resize(folder.entries.size());
    Scan(candidates, folder, base, walk);
    SettleSpellings(folder, walk);
    FindCompanions(folder, walk);
    return walk;
}

} // namespace dcfctl
