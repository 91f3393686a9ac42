// The index of the tree; see the header.
#include "TreeIndex.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "CSDCFDir.h"

namespace kelp {
namespace {

/// Atomic, since a list that ends on one thread must not disturb one that is asked on another.
std::atomic<unsigned> s_changes = 1;

/// The directories' items are open to everybody. In a tree of so few directories a change that nobody has told of costs
/// no more to notice than the question itself.
constexpr int kFewDirectories = 8;

std::size_t Size(int count) {
    return static_cast<std::size_t>(count);
}

bool StandsBefore(const CSDCFDir& a, const CSDCFDir& b) {
    return a.m_nDnum >= b.m_nDnum && std::strcmp(a.m_strDirName, b.m_strDirName) > 0;
}

/// The first of the directories that is not before what is looked for and meets it. Those in order are searched, the
/// others (as a rule "Camera" alone) are walked, so the first one wins as in a walk over all.
template <typename IsBefore, typename Meets>
int FindFirst(const TreeIndex::Directories& dirs, int from, int ordered, int count, IsBefore isBefore, Meets meets) {
    const auto begin = dirs.begin() + std::min(from, ordered);
    const auto middle = dirs.begin() + ordered;
    const auto end = dirs.begin() + count;
    auto found = std::partition_point(begin, middle, isBefore);
    if (found == middle || !meets(*found)) {
        found = std::find_if(dirs.begin() + std::max(from, ordered), end, meets);
    }
    return static_cast<int>(found - dirs.begin());
}

} // namespace

void TreeIndex::NoteChange() {
    s_changes.fetch_add(1, std::memory_order_relaxed);
}

void TreeIndex::Refresh(const Directories& dirs, int count) {
    const unsigned changes = s_changes.load(std::memory_order_relaxed);
    if (changes == m_changes && count == Count() && (count > kFewDirectories || HasSizesOf(dirs))) {
        return;
    }
    m_filesInLast.assign(1, 0);
    for (int didx = count - 1; didx >= 0; --didx) {
        m_filesInLast.push_back(m_filesInLast.back() + dirs[Size(didx)]->GetCount());
    }
    m_ordered = std::min(count, 1);
    while (m_ordered < count && StandsBefore(*dirs[Size(m_ordered - 1)], *dirs[Size(m_ordered)])) {
        ++m_ordered;
    }
    m_filesOfType.fill(std::nullopt);
    m_changes = changes;
}

void TreeIndex::TakeUpFrontFile(const DCFItem& item) {
    ++m_filesInLast.back();
    for (std::size_t i = 0; i < m_filesOfType.size(); ++i) {
        const int type = static_cast<int>(i) + FILE_TYPE_NONE;
        if (m_filesOfType[i].has_value() && (item.m_eFileType == type || item.m_eObjectType == type)) {
            ++*m_filesOfType[i];
        }
    }
    m_changes = s_changes.load(std::memory_order_relaxed);
}

bool TreeIndex::HasSizesOf(const Directories& dirs) const {
    int left = Files();
    for (int didx = 0; didx < Count(); ++didx) {
        left -= dirs[Size(didx)]->GetCount();
        if (left != m_filesInLast[Size(Count() - didx - 1)]) {
            return false;
        }
    }
    return true;
}

int TreeIndex::Count() const {
    return static_cast<int>(m_filesInLast.size()) - 1;
}

int TreeIndex::Files() const {
    return m_filesInLast.back();
}

int TreeIndex::FilesBefore(int didx) const {
    return Files() - m_filesInLast[Size(Count() - std::clamp(didx, 0, Count()))];
}

int TreeIndex::DirectoryOfPosition(int position) const {
    // A directory ends behind the position when fewer files follow it than follow the position.
    const int files = Files() - std::max(position, -1); // a position before the list is met by the first directory
    const auto behind = std::lower_bound(m_filesInLast.begin(), m_filesInLast.end() - 1, files);
    return Count() - static_cast<int>(behind - m_filesInLast.begin());
}

int TreeIndex::DirectoryOfNumber(const Directories& dirs, int dnum, int from) const {
    return FindFirst(
        dirs, from, m_ordered, Count(), [dnum](const CSDCFDir* dir) { return dir->m_nDnum > dnum; },
        [dnum](const CSDCFDir* dir) { return dir->m_nDnum == dnum; });
}

int TreeIndex::DirectoryOfName(const Directories& dirs, const char* name, std::size_t characters) const {
    const auto compare = [name, characters](const CSDCFDir* dir) {
        return std::strncmp(dir->m_strDirName, name, characters);
    };
    return FindFirst(
        dirs, 0, m_ordered, Count(), [compare](const CSDCFDir* dir) { return compare(dir) > 0; },
        [compare](const CSDCFDir* dir) { return compare(dir) == 0; });
}

int TreeIndex::FilesOfType(const Directories& dirs, eFileType type) {
    const auto count = [&] {
        int files = 0;
        std::for_each(dirs.begin(), dirs.begin() + Count(), [&](CSDCFDir* dir) { files += dir->GetCountByType(type); });
        return files;
    };
    if (type < FILE_TYPE_NONE || type > FILE_TYPE_AVI) {
        return count();
    }
    std::optional<int>& known = m_filesOfType[Size(type - FILE_TYPE_NONE)];
    if (!known.has_value()) {
        known = count();
    }
    return *known;
}

} // namespace kelp
