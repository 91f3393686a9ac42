#include "ReferenceList.h"

#include <algorithm>
#include <utility>

namespace dcftest {

std::ostream& operator<<(std::ostream& out, const ReferenceState& state) {
    const ReferenceCursor& cursor = state.cursor;
    return out << "\n  cursor " << cursor.dirNumber << "-" << cursor.fileNumber << " at " << cursor.dirPosition << "/"
               << cursor.filePosition << ", list position " << cursor.listPosition << ", file \"" << state.cursorFile
               << "\", cached position " << state.cachedPosition << " of " << state.cachedCount << ", first index "
               << state.firstIndex << (state.series ? ", series" : "");
}

std::string DescribeCursorFile(const std::string& name, const std::optional<bool>& isProtected, bool metadata) {
    const std::string known = !isProtected ? "not asked" : *isProtected ? "protected" : "not protected";
    return name + ", " + known + (metadata ? ", with metadata" : "");
}

ReferenceList::ReferenceList(std::string root, const CardPlan& plan) : tree(std::move(root), plan) {}

// ---- The listing ----

int ReferenceList::Listup() {
    Log("Listup", "start");
    if (m_hasTree) {
        throw Fatal{"m_pDCF == NULL", "Now m_pDCF is not NULL", "CSFileList", "virtual int CSFileList::Listup()"};
    }
    m_hasTree = true;
    tree.Listup(includeCamera);
    m_count = tree.Count();
    m_firstIndex = tree.FirstIndex();
    RaiseToSeries();
    (void)UpdateFirstIndex(false);
    ReferenceItem first;
    (void)GetFirst(&first);
    Log("Listup", "end");
    return m_count;
}

void ReferenceList::DropTree() {
    m_hasTree = false;
    m_firstIndex = 0;
    tree.Forget();
}

void ReferenceList::Recount() {
    m_count = tree.Count();
}

void ReferenceList::RaiseToSeries() {
    if (!m_series) {
        return;
    }
    if (seriesValue != 99909999) {
        m_firstIndex = static_cast<int>(std::max<long>(m_firstIndex, seriesValue));
    } else if (m_firstIndex != 99909999) {
        seriesValue = m_firstIndex;
    }
}

void ReferenceList::NeedTree(const char* signature) const {
    if (!m_hasTree) {
        throw Fatal{"m_pDCF != NULL", "now m_pDCF is NULL", "CSFileList", signature};
    }
}

// ---- What the file list adds ----

void ReferenceList::Log(const std::string& function, const std::string& message) {
    log.push_back("CSFileList " + function + " " + message);
}

void ReferenceList::LogPaths(const std::string& function, const ReferenceItem& item, const std::string& end) {
    Log(function, function + " called m_strURI = " + item.path + " m_strObject = " + item.object + end);
}

void ReferenceList::Refresh() {
    (void)GetCurIndex();
}

bool ReferenceList::CannotMove() const {
    return m_count < 1 || !m_hasTree;
}

int ReferenceList::GetCount() const {
    NeedTree("virtual int CSFileList::GetCount()");
    return tree.Count();
}

int ReferenceList::GetFileCount(int type) {
    Log("GetFileCount", "start");
    const int count =
        tree.Count([type](const ReferenceFile& file) { return file.type == type || file.object == type; });
    return m_hasTree ? count : -1;
}

int ReferenceList::SetSeriesMode(bool on) {
    Log("SetSeriesMode", "start");
    if (!m_hasTree) {
        return -1;
    }
    m_series = on;
    return UpdateFirstIndex(!on);
}

int ReferenceList::GetSeriesMode() {
    Log("GetSeriesMode", "start");
    return m_series ? 1 : 0;
}

int ReferenceList::UpdateFirstIndex(bool ignoreSeries) {
    Log("UpdateFirstIndex", "start");
    if (!m_hasTree) {
        return -6;
    }
    m_firstIndex = tree.FirstIndex();
    if (!ignoreSeries) {
        RaiseToSeries();
    }
    return m_firstIndex;
}

int ReferenceList::AddPhotoMetadata(const std::string& path, const PhotoInfo& info) {
    NeedTree("virtual int CSFileList::AddPhotoMetadata(const char*, PhotoInfo&)");
    tree.AddPhotoMetadata(path, info);
    return 0;
}

int ReferenceList::GetFirst(ReferenceItem* item) {
    Log("GetFirst", "start");
    if (item == nullptr) {
        throw Fatal{"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList",
                    "virtual int CSFileList::GetFirst(CSFileListItem*)"};
    }
    if (CannotMove()) {
        return -1;
    }
    const int result = tree.GetFirst(item);
    LogPaths("GetFirst", *item, "\n,");
    Refresh();
    return result;
}

int ReferenceList::GetNext(ReferenceItem* item) {
    if (item == nullptr || CannotMove()) {
        return -1;
    }
    const int result = tree.GetNext(item);
    LogPaths("GetNext", *item);
    if (result == 0) {
        Refresh();
    }
    return result;
}

int ReferenceList::GetPrev(ReferenceItem* item) {
    if (item == nullptr || CannotMove()) {
        return -1;
    }
    const int result = tree.GetPrev(item);
    LogPaths("GetPrev", *item);
    if (result == 0) {
        Refresh();
    } else {
        Log("GetPrev", "GetPrev end");
    }
    return result;
}

int ReferenceList::GetLast(ReferenceItem* item) {
    if (item == nullptr || CannotMove()) {
        return -1;
    }
    const int result = tree.GetLast(item);
    LogPaths("GetLast", *item);
    Refresh();
    return result;
}

int ReferenceList::GetCurrent(ReferenceItem* item) {
    if (item == nullptr) {
        throw Fatal{"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList",
                    "virtual int CSFileList::GetCurrent(CSFileListItem*)"};
    }
    if (m_count < 1) {
        return -1;
    }
    NeedTree("virtual int CSFileList::GetCurrent(CSFileListItem*)");
    const int result = tree.GetCur(item);
    LogPaths("GetCurrent", *item);
    if (result < 0) {
        throw Fatal{"nRet >= 0", "GetCur must success", "CSFileList",
                    "virtual int CSFileList::GetCurrent(CSFileListItem*)"};
    }
    Refresh();
    return result;
}

int ReferenceList::CheckPosition(const std::string& function, int position, const ReferenceItem* item) {
    const std::string signature = "virtual int CSFileList::" + function + "(int, CSFileListItem*)";
    Log(function, "++++++++++++++++++++ start index = " + std::to_string(position));
    if (position < 0) {
        throw Fatal{"nIdx >= 0", "index cannot be negative", "CSFileList", signature};
    }
    if (CannotMove()) {
        return -1;
    }
    if (item == nullptr) {
        throw Fatal{"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList", signature};
    }
    return 0;
}

int ReferenceList::GetAt(int position, ReferenceItem* item) {
    if (CheckPosition("GetAt", position, item) < 0) {
        return -1;
    }
    tree.GetAt(position, item);
    return 0;
}

int ReferenceList::GetAtSimply(int position, ReferenceItem* item) {
    if (CheckPosition("GetAtSimply", position, item) < 0) {
        return -1;
    }
    tree.GetAtSimply(position, item);
    return 0;
}

int ReferenceList::IsLast(const ReferenceItem* item) {
    Log("IsLast", "start");
    if (item == nullptr || !m_hasTree) {
        return 0;
    }
    ReferenceItem last;
    (void)tree.GetLast(&last);
    return last.path == item->path ? 1 : 0;
}

int ReferenceList::SetCur(const std::string& path) {
    Log("SetCur", "start");
    if (!m_hasTree) {
        return -1;
    }
    tree.SetCur(path);
    Refresh();
    return 0;
}

int ReferenceList::SetCurIndex(int position) {
    Log("SetCurIndex", "start");
    ReferenceItem item;
    const int result = GetAtSimply(position, &item);
    (void)SetCur(item.path);
    return result;
}

int ReferenceList::GetCurIndex() {
    NeedTree("virtual int CSFileList::GetCurIndex()");
    m_position = tree.CountBefore(tree.cursor.dirPosition) + tree.cursor.filePosition;
    Log("GetCurIndex", "m_nCurGetAtIdx = " + std::to_string(m_position));
    return m_position;
}

int ReferenceList::GetFileListIndex(const std::string& path) {
    Log("GetFileListIndex", "start");
    return m_hasTree ? tree.GetListIndex(path) : -6;
}

int ReferenceList::GetInfo(const std::string& path, ReferenceItem* item) {
    Log("GetInfo", "start");
    if (item == nullptr) {
        return -3;
    }
    return m_hasTree ? tree.GetInfo(path, item) : -6;
}

ReferenceState ReferenceList::State() const {
    const ReferenceFile& file = tree.cursorFile;
    return {tree.cursor,  DescribeCursorFile(file.name, file.isProtected, file.metadata.has_value()),
            m_position,   m_count,
            m_firstIndex, m_series};
}

} // namespace dcftest
