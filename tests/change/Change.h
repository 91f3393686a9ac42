// What the tests of changes share beyond the scenarios: the card and the tree as texts that are compared whole, and the
// calls that one operation makes. Paths in the texts are relative to "DCIM".
#ifndef TESTS_CHANGE_CHANGE_H
#define TESTS_CHANGE_CHANGE_H

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "PosixSeam.h"
#include "Scenario.h"

namespace dcftest {

using Texts = std::vector<std::string>;
using Positions = std::vector<int>; ///< Spelt out where {0} would be a null path.

/// The calls that are compared: all but the ones that read an open folder.
inline const Texts kComparedCalls = {"scandir", "opendir", "stat", "chmod", "unlink", "remove",   "rename",
                                     "mkdir",   "umask",   "sync", "time",  "usleep", "localtime"};

inline std::string Octal(mode_t mode) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%04o", mode & 07777U);
    return text.data();
}

/// "100ABCDE/KVR_0001.JPG" for a path below "DCIM", "DCIM" for the folder itself, wherever they stand in a text.
inline std::string Relative(const Card& card, std::string text) {
    for (const auto& [long_, short_] :
         {std::pair(card.Dcim() + "/", std::string()), std::pair(card.Dcim(), std::string("DCIM"))}) {
        for (std::size_t at = text.find(long_); at != std::string::npos; at = text.find(long_, at)) {
            text.replace(at, long_.size(), short_);
        }
    }
    return text;
}

/// The calls of an operation in order; the rules are set before it runs.
inline Texts CallsOf(const Card& card, const std::function<void()>& operation,
                     const std::function<void(PosixSeam&)>& rules = {}) {
    PosixSeam seam;
    if (rules) {
        rules(seam);
    }
    operation();
    Texts texts = seam.Texts(kComparedCalls);
    std::transform(texts.begin(), texts.end(), texts.begin(),
                   [&card](const std::string& text) { return Relative(card, text); });
    return texts;
}

/// Everything below "DCIM": "100ABCDE/ 0755", "100ABCDE/KVR_0001.JPG 0644", sorted.
inline Texts CardTexts(const Card& card) {
    namespace fs = std::filesystem;
    Texts texts;
    if (!fs::exists(card.Dcim())) {
        return {"no DCIM"};
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(card.Dcim())) {
        struct stat status {};
        EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
        texts.push_back(Relative(card, entry.path().string()) + (S_ISDIR(status.st_mode) ? "/ " : " ") +
                        Octal(status.st_mode));
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

/// The names of the files on the card, sorted: "100ABCDE/KVR_0001.JPG".
inline Texts CardFiles(const Card& card) {
    Texts files;
    for (const std::string& text : CardTexts(card)) {
        const std::size_t space = text.rfind(' ');
        if (text[space - 1] != '/') {
            files.push_back(text.substr(0, space));
        }
    }
    return files;
}

/// One text per directory of a tree: "100ABCDE: 9 5 2", the numbers of its files in order.
inline Texts TreeTexts(const CSDCFList& tree) {
    EXPECT_EQ(tree.m_dirGroup.size(), static_cast<std::size_t>(tree.m_nDirCount));
    Texts texts;
    for (const CSDCFDir* dir : tree.m_dirGroup) {
        std::string text = std::string(dir->m_strDirName) + ":";
        for (const DCFItem& item : dir->m_itemGroup) {
            text += " " + std::to_string(item.m_nFileNum);
        }
        texts.push_back(text);
    }
    return texts;
}

/// Every field of an item but the metadata.
inline std::string ItemText(const DCFItem& item) {
    std::string text = item.m_fileName;
    for (const auto value :
         {static_cast<long>(item.m_bProtectKnown), static_cast<long>(item.m_bProtect), static_cast<long>(item.m_bWifi),
          static_cast<long>(item.m_nFileTime), static_cast<long>(item.m_nFileNum), static_cast<long>(item.m_nDirNum),
          static_cast<long>(item.m_eFileType), static_cast<long>(item.m_eObjectType),
          static_cast<long>(item.m_bMetadata)}) {
        text += " " + std::to_string(value);
    }
    return text;
}

/// The whole state of a tree, for "nothing changed".
inline Texts EverythingIn(const CSDCFList& tree) {
    Texts texts = TreeTexts(tree);
    for (const CSDCFDir* dir : tree.m_dirGroup) {
        for (const DCFItem& item : dir->m_itemGroup) {
            texts.push_back(ItemText(item));
        }
    }
    for (const long value : {static_cast<long>(tree.m_nFirstIndex), static_cast<long>(tree.m_nTotalCount),
                             static_cast<long>(tree.m_nCurDnum), static_cast<long>(tree.m_nCurFnum),
                             static_cast<long>(tree.m_CurFileIndex), static_cast<long>(tree.m_nCurDidx),
                             static_cast<long>(tree.m_nCurListIndex), static_cast<long>(tree.m_bSeriesMode)}) {
        texts.push_back(std::to_string(value));
    }
    texts.push_back(ItemText(tree.m_CurItem));
    return texts;
}

/// The item at a place of a tree.
inline DCFItem& ItemAt(CSDCFList& tree, int didx, int fidx) {
    return tree.m_dirGroup.at(static_cast<std::size_t>(didx))->m_itemGroup.at(static_cast<std::size_t>(fidx));
}

/// A directory that tells when it is destroyed.
class WatchedDir : public CSDCFDir {
public:
    WatchedDir(int dnum, const char* name, std::function<void()> destroyed)
        : CSDCFDir(dnum, name), m_destroyed(std::move(destroyed)) {}
    ~WatchedDir() override {
        m_destroyed();
    }

private:
    std::function<void()> m_destroyed;
};

/// Puts a watched directory with the same files into the place of a tree's own.
inline void Watch(CSDCFList& tree, int didx, std::function<void()> destroyed) {
    CSDCFDir*& dir = tree.m_dirGroup.at(static_cast<std::size_t>(didx));
    auto watched = std::make_unique<WatchedDir>(dir->m_nDnum, dir->m_strDirName, std::move(destroyed));
    int count = 0;
    for (DCFItem& item : dir->m_itemGroup) {
        watched->AddFile(item.m_nDirNum, item.m_nFileNum, item.getFileName(), &count, item.m_nFileTime);
        watched->AddObject(item.m_eObjectType);
    }
    delete std::exchange(dir, watched.release());
}

/// A text that the library takes as char*.
class Text {
public:
    explicit Text(const std::string& text) : m_text(text) {}
    operator char*() { // NOLINT(google-explicit-constructor): stands for the argument
        return m_text.data();
    }

private:
    std::string m_text;
};

/// What an operation prints to standard output.
inline std::string Printed(const std::function<void()>& operation) {
    testing::internal::CaptureStdout();
    operation();
    return testing::internal::GetCapturedStdout();
}

/// A value that no listing gives, to see whether the first index was computed anew.
inline constexpr int kMarkedIndex = 12345678;

inline void StoreSeriesValue(long value) {
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, value);
}

inline std::optional<long> SeriesValue() {
    return FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey);
}

inline ExpectedAssertion NoDirectory(int dnum) {
    return {"0", "cannot find dir index = " + std::to_string(dnum), "CSDCFList", "int CSDCFList::GetDirIndex(int)"};
}

inline ExpectedAssertion NoFile(int fnum) {
    return {"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(fnum), "CSDCFDir",
            "int CSDCFDir::GetFidx(int)"};
}

inline ExpectedAssertion NoItem(const std::string& signature) {
    return {"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList", signature};
}

inline ExpectedAssertion NoTree(const std::string& signature) {
    return {"m_pDCF != NULL", "now m_pDCF is NULL", "CSFileList", signature};
}

} // namespace dcftest

#endif
