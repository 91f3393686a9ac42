// TreeIndex: answers without a walk where a list position, a directory number or a directory name stands in the tree.
// Derived from the directories and owned by CSDCFList, which refreshes it before each question; same thread rules.
#ifndef TREE_INDEX_H
#define TREE_INDEX_H

#include <array>
#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "FileListTypes.h"

class CSDCFDir;
class DCFItem;

namespace kelp {

class TreeIndex {
public:
    using Directories = std::deque<CSDCFDir*>;

    /// Tells every index of this process that the files of some directory have changed. CSDCFDir does so.
    static void NoteChange();

    /// Builds the index anew if anything has changed since; the only place that does.
    /// @param count how many of the directories are in the tree.
    void Refresh(const Directories& dirs, int count);
    /// Takes up one more file at the front of the front directory, the one change that is too frequent for building
    /// anew. Call right behind it, and only when the index was fresh before.
    void TakeUpFrontFile(const DCFItem& item);

    int Files() const;
    /// Files in the directories before a position; positions behind the last one count every file.
    int FilesBefore(int didx) const;
    /// The first directory that ends behind a list position; the number of directories when none does.
    int DirectoryOfPosition(int position) const;
    /// The first directory with a number, looked for from a position on; the number of directories when none has it.
    int DirectoryOfNumber(const Directories& dirs, int dnum, int from = 0) const;
    /// The first directory whose name shares its first characters; the number of directories when none does.
    int DirectoryOfName(const Directories& dirs, const char* name, std::size_t characters) const;
    /// Files whose type, or failing that whose companion type, is the given one. Counts once between two changes.
    int FilesOfType(const Directories& dirs, eFileType type);

private:
    bool HasSizesOf(const Directories& dirs) const;
    int Count() const;

    unsigned m_changes = 0; ///< The state of the process's counter of changes that this index shows.
    /// Files in the last n directories, for every n: in this order a new file at the front is one step at the end.
    std::vector<int> m_filesInLast = {0};
    int m_ordered = 0; ///< So many directories from the front on are in the order of a listing, by name and number.

    /// Files of each type from FILE_TYPE_NONE on, as far as they were asked for.
    std::array<std::optional<int>, FILE_TYPE_AVI - FILE_TYPE_NONE + 1> m_filesOfType;
};

} // namespace kelp

#endif
