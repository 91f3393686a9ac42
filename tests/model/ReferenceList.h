// ReferenceList: the file list over a ReferenceTree: its checks, its cached values and every line of its log.
#ifndef TESTS_MODEL_REFERENCE_LIST_H
#define TESTS_MODEL_REFERENCE_LIST_H

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "ReferenceTree.h"

namespace dcftest {

/// The cursor and the cached values.
struct ReferenceState {
    ReferenceCursor cursor;
    std::string cursorFile; ///< See DescribeCursorFile().
    int cachedPosition;
    int cachedCount;
    int firstIndex;
    bool series;

    bool operator==(const ReferenceState&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ReferenceState& state);

/// The name of the cursor's file and what is known of it.
std::string DescribeCursorFile(const std::string& name, const std::optional<bool>& isProtected, bool metadata);

class ReferenceList {
public:
    ReferenceList(std::string root, const CardPlan& plan);

    int Listup();
    int GetCount() const;
    int GetFileCount(int type);
    int SetSeriesMode(bool on);
    int GetSeriesMode();
    int UpdateFirstIndex(bool ignoreSeries);
    int AddPhotoMetadata(const std::string& path, const PhotoInfo& info);
    int GetFirst(ReferenceItem* item);
    int GetNext(ReferenceItem* item);
    int GetPrev(ReferenceItem* item);
    int GetLast(ReferenceItem* item);
    int GetCurrent(ReferenceItem* item);
    int GetAt(int position, ReferenceItem* item);
    int GetAtSimply(int position, ReferenceItem* item);
    int IsLast(const ReferenceItem* item);
    int SetCur(const std::string& path);
    int SetCurIndex(int position);
    int GetCurIndex();
    int GetFileListIndex(const std::string& path);
    int GetInfo(const std::string& path, ReferenceItem* item);

    /// Takes the tree away, as the operations do that list the card again.
    void DropTree();
    /// Takes up a change that was made to the tree from outside.
    void Recount();
    bool HasTree() const {
        return m_hasTree;
    }
    ReferenceState State() const;

    ReferenceTree tree;
    bool includeCamera = true;
    long seriesValue = 0;
    std::vector<std::string> log;

private:
    void Log(const std::string& function, const std::string& message);
    void LogPaths(const std::string& function, const ReferenceItem& item, const std::string& end = "");
    void RaiseToSeries();
    void NeedTree(const char* signature) const;
    int CheckPosition(const std::string& function, int position, const ReferenceItem* item);
    bool CannotMove() const;
    void Refresh();

    bool m_hasTree = false;
    int m_count = -1;
    int m_position = -1;
    int m_firstIndex = 0;
    bool m_series = false;
};

} // namespace dcftest

#endif
