// Small trees and folders made by hand, without a card, and what tests ask of them.
#ifndef TESTS_UNIT_TREES_H
#define TESTS_UNIT_TREES_H

#include <string>
#include <vector>

#include "CSDCFDir.h"
#include "CSDCFList.h"
#include "Card.h"

namespace dcftest {

/// Appends a file as a scan does.
inline void Append(CSDCFDir& dir, int dnum, int fnum, std::string name, unsigned int time = 0) {
    int count = 0;
    dir.AddFile(dnum, fnum, name.data(), &count, time);
}

/// Appends one JPG per number, in the given order.
inline void AppendNumbers(CSDCFDir& dir, const std::vector<int>& numbers) {
    for (const int number : numbers) {
        Append(dir, dir.m_nDnum, number, DcfName(number));
    }
}

inline void PutInFront(CSDCFDir& dir, int dnum, int fnum, std::string name, unsigned int time = 0) {
    dir.AddHead(dnum, fnum, name.data(), time);
}

inline std::vector<int> Numbers(const CSDCFDir& dir) {
    std::vector<int> numbers;
    for (const DCFItem& item : dir.m_itemGroup) {
        numbers.push_back(item.m_nFileNum);
    }
    return numbers;
}

/// Appends a directory to a tree, which owns it.
inline CSDCFDir& AppendDir(CSDCFList& list, int dnum, const std::string& name, const std::vector<int>& numbers = {}) {
    auto* dir = new CSDCFDir(dnum, name.c_str());
    list.m_dirGroup.push_back(dir);
    ++list.m_nDirCount;
    AppendNumbers(*dir, numbers);
    return *dir;
}

inline std::vector<std::string> DirectoryNames(const CSDCFList& list) {
    std::vector<std::string> names;
    for (const CSDCFDir* dir : list.m_dirGroup) {
        names.emplace_back(dir->m_strDirName);
    }
    return names;
}

/// A name written as a C string that the library may change.
inline std::vector<char> Writable(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    return buffer;
}

} // namespace dcftest

#endif
