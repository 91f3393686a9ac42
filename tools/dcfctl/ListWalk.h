// Walks the names of a folder as a listing does and keeps for each what became of it and why. What it finds is held
// against the library's own list (see CardCheck), which alone decides. Pure functions.
#ifndef DCFCTL_LIST_WALK_H
#define DCFCTL_LIST_WALK_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CardCensus.h"
#include "DcfNames.h"

namespace dcfctl {

/// A file of the list: its name and its companion's, in capitals as the list has them.
struct ListedFile {
    std::string name;
    std::string companion; ///< Empty without one.

    [[nodiscard]] bool operator==(const ListedFile& other) const {
        return name == other.name && companion == other.companion;
    }
};

/// A file of the list with the entries of the folder that belong to it.
struct WalkedFile {
    ListedFile listed;
    FileName read;
    std::size_t entry = 0;
    std::vector<std::size_t> followers;        ///< Raw and multi-picture files of its number, in the order of the list.
    std::vector<std::size_t> rivals;           ///< Other files of its number, which are not listed.
    std::optional<std::size_t> companionEntry; ///< The one that the companion's name leads to.
};

enum class Fate {
    kNameRefused, ///< No name of a listed file.
    kListed,
    kCompanion,
    kSecond,   ///< Another file of its number came first.
    kZero,     ///< No file came first, but its number is 0.
    kBeyond,   ///< The list was full.
    kFollower, ///< Read as a companion, whose name leads elsewhere.
};

struct WalkedFolder {
    struct EntryFate {
        Fate fate = Fate::kNameRefused;
        std::size_t file = 0; ///< Which of the files it is, or belongs to; not for names refused, zero and beyond.
    };
    std::vector<WalkedFile> files; ///< In list order.
    std::vector<EntryFate> fates;  ///< Of every entry.
};

/// @param base how many files the folders before it have. @param list what the library lists in this folder: it settles
///        which of several names comes first that the order of the list holds for equal.
[[nodiscard]] WalkedFolder WalkFolder(const CensusFolder& folder, std::size_t base,
                                      const std::vector<ListedFile>& list);

} // namespace dcfctl

#endif
