// ReferenceTree: the card's list as it should behave, written for plainness: every position is found by counting. It
// knows the card from its plan and never looks at the library. Operations throw Fatal where the library must end the
// process.
#ifndef TESTS_MODEL_REFERENCE_TREE_H
#define TESTS_MODEL_REFERENCE_TREE_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "MetadataInfo.h"
#include "RandomCard.h"

namespace dcftest {

/// The programming error that an operation ends in.
struct Fatal {
    std::string condition;
    std::string info;
    std::string file;
    std::string signature;
};

/// What a client sees of a file. As long as nothing is filled in, everything is zero.
struct ReferenceItem {
    std::string path;
    std::string object;
    int type = 0;
    int objectType = 0;
    bool isProtected = false;
    bool wifi = false;
    int dirNumber = 0;
    int fileNumber = 0;
    std::uint32_t time = 0;
    int metaFlag = 0;
    int metaFlag2 = 0;
    std::uint32_t metaWord = 0;
    int metaByte = 0;
    int quad1 = 0;
    int quad2 = 0;
    std::string text;
    std::vector<int> words = std::vector<int>(19, 0);

    bool operator==(const ReferenceItem&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ReferenceItem& item);

struct ReferenceFile {
    std::string name;
    int number = 0;
    int dirNumber = 0;
    int type = -1;
    int object = -1;
    std::uint32_t time = 0;
    bool wifi = false;
    std::optional<bool> isProtected; ///< Empty until somebody asked.
    std::optional<PhotoInfo> metadata;
};

struct ReferenceDirectory {
    int number;
    std::string name;
    std::vector<ReferenceFile> files;
};

struct ReferenceCursor {
    int dirNumber = -1;
    int fileNumber = -1;
    int dirPosition = -1;
    int filePosition = -1;
    int listPosition = -1;

    bool operator==(const ReferenceCursor&) const = default;
};

class ReferenceTree {
public:
    /// A collector's answer for a path; nullopt when it fails.
    using Collector = std::function<std::optional<PhotoInfo>(const std::string&)>;

    ReferenceTree(std::string root, const CardPlan& plan);

    void Listup(bool includeCamera);
    /// Back to before the listing; the card stays.
    void Forget();
    int Count(const std::function<bool(const ReferenceFile&)>& counts = [](const ReferenceFile&) {
        return true;
    }) const;
    int CountBefore(int directory) const;
    int FirstIndex() const;
    int GetFirst(ReferenceItem* item);
    int GetNext(ReferenceItem* item);
    int GetPrev(ReferenceItem* item);
    int GetLast(ReferenceItem* item);
    int GetCur(ReferenceItem* item);
    void GetAt(int position, ReferenceItem* item);
    void GetAtSimply(int position, ReferenceItem* item) const;
    void SetCur(const std::string& path);
    int GetListIndex(const std::string& path) const;
    int GetInfo(const std::string& path, ReferenceItem* item);
    void AddPhotoMetadata(const std::string& path, const PhotoInfo& info);

    /// The paths of all files in list order.
    std::vector<std::string> Paths() const;
    /// The files on the card, listed or not, with their permission bits.
    std::map<std::string, mode_t> modes;

    std::vector<ReferenceDirectory> directories;
    ReferenceCursor cursor;
    ReferenceFile cursorFile;
    Collector collector;
    std::vector<std::string> collected; ///< Paths that the collector was asked for.

private:
    struct Place {
        int directory;
        int file;
    };

    void AddDirectory(const PlannedDirectory& directory, int number);
    std::vector<Place> Places() const;
    int FindDirectory(int number) const;
    int FindFile(int directory, int number) const;
    std::pair<int, int> Numbers(const std::string& path) const;
    Place Find(const std::string& path) const;
    Place At(int position, const char* signature) const;
    const ReferenceFile& FileAt(int directory, int file) const;

    std::string PathOf(int directory, const ReferenceFile& file) const;
    std::string ObjectPathOf(int directory, const ReferenceFile& file) const;
    bool IsProtectedOnCard(const ReferenceFile& file) const;
    ReferenceFile Convert(int directory, int file, ReferenceItem* item);
    int MoveTo(int directory, int file, ReferenceItem* item);
    void CheckCursor(const char* signature) const;
    bool IsDirectoryGone() const;

    std::string m_root;
    CardPlan m_plan;
    std::map<int, std::string> m_registered; ///< Directory paths by number.
};

} // namespace dcftest

#endif
