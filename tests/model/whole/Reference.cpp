// The reference's core and browsing operations: what the file list itself adds to the tree.
#include "Reference.h"

#include <cstdio>
#include <cstring>

namespace dcftest {

void Reference::Log(const std::string& function, const std::string& message) {
    std::string text = message.substr(0, 248);
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    effects.log.push_back("CSFileList " + function + " " + text);
}

void Reference::LogPaths(const std::string& function, const CSFileListItem& item, const std::string& end) {
    Log(function, function + " called m_strURI = " + item.m_strURI + " m_strObject = " + item.m_strObject + end);
}

void Reference::NeedItem(const CSFileListItem* item, const std::string& signature) const {
    if (item == nullptr) {
        throw Fatal{"pItem != NULL", "now pItem == NULL(0) !!!", "CSFileList", "virtual " + signature};
    }
}

void Reference::NeedTree(const std::string& signature) const {
    if (!tree) {
        throw Fatal{"m_pDCF != NULL", "now m_pDCF is NULL", "CSFileList", "virtual " + signature};
    }
}

// ---- Core ----

int Reference::SetSeriesMode(bool on) {
    Log("SetSeriesMode", "start");
    if (!tree) {
        return -1;
    }
    seriesMode = on;
    tree->series = on;
    return UpdateFirstIndex(!on);
}

bool Reference::GetSeriesMode() {
    Log("GetSeriesMode", "start");
    return seriesMode;
}

int Reference::Listup() {
    listupDone = 0;
    Log("Listup", "start");
    if (tree) {
        throw Fatal{"m_pDCF == NULL", "Now m_pDCF is not NULL", "CSFileList", "virtual int CSFileList::Listup()"};
    }
    tree.emplace();
    ++effects.trees;
    tree->series = seriesMode;
    tree->root = baseURI;
    ListTree(includeNonDCF);
    listCount = Count();
    (void)UpdateFirstIndex(false);
    CSFileListItem item;
    (void)GetFirst(&item);
    listupDone = 1;
    Log("Listup", "end");
    return listCount;
}

void Reference::IncludeNonDCF(bool on) {
    includeNonDCF = on;
}

int Reference::GetCount() {
    NeedTree("int CSFileList::GetCount()");
    const int count = Count();
    if (count != listCount) {
        throw Fatal{"m_pDCF->GetCount() == m_nList", "m_nList need to check", "CSFileList",
                    "virtual int CSFileList::GetCount()"};
    }
    return count;
}

int Reference::GetFileCount(int type) {
    Log("GetFileCount", "start");
    if (!tree) {
        return -1;
    }
    int count = 0;
    for (const RefDir& dir : tree->dirs) {
        for (const RefItem& item : dir.items) {
            count += item.type == type || item.object == type ? 1 : 0;
        }
    }
    return count;
}

int Reference::RegisterPhotoMetadataCB(Collector kind) {
    collector = kind;
    return 1;
}

int Reference::RegisterVideoMetadataCB() {
    return 1;
}

int Reference::AddPhotoMetadata(const char* path, const PhotoInfo& info) {
    NeedTree("int CSFileList::AddPhotoMetadata(const char*, PhotoInfo&)");
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    RefDir& dir = tree->dirs[static_cast<std::size_t>(DirIndex(dnum))];
    RefItem& item = dir.items[static_cast<std::size_t>(FileIndex(dir, fnum))];
    item.described = true;
    item.photo = info;
    return 0;
}

// ---- Browsing ----

int Reference::GetFirst(CSFileListItem* item) {
    Log("GetFirst", "start");
    NeedItem(item, "int CSFileList::GetFirst(CSFileListItem*)");
    if (listCount < 1 || !tree) {
        return -1;
    }
    const int result = TreeGetFirst(item);
    LogPaths("GetFirst", *item, "\n,");
    if (result < 0) {
        throw Fatal{"nRet >= 0", "GetFirst must success", "CSFileList",
                    "virtual int CSFileList::GetFirst(CSFileListItem*)"};
    }
    (void)GetCurIndex();
    return result;
}

int Reference::GetNext(CSFileListItem* item) {
    if (item == nullptr || listCount < 1 || !tree) {
        return -1;
    }
    const int result = TreeGetNext(item);
    LogPaths("GetNext", *item, "");
    if (result < 0) {
        return -1;
    }
    (void)GetCurIndex();
    return result;
}

int Reference::GetPrev(CSFileListItem* item) {
    if (item == nullptr || listCount < 1 || !tree) {
        return -1;
    }
    const int result = TreeGetPrev(item);
    LogPaths("GetPrev", *item, "");
    if (result < 0) {
        Log("GetPrev", "GetPrev end");
        return -1;
    }
    (void)GetCurIndex();
    return result;
}

int Reference::GetLast(CSFileListItem* item) {
    if (item == nullptr || listCount < 1 || !tree) {
        return -1;
    }
    const int result = TreeGetLast(item);
    LogPaths("GetLast", *item, "");
    if (result < 0) {
        Log("GetLast", "GetLast end");
        return -1;
    }
    (void)GetCurIndex();
    return result;
}

int Reference::GetCurrent(CSFileListItem* item) {
    NeedItem(item, "int CSFileList::GetCurrent(CSFileListItem*)");
    if (listCount < 1) {
        return -1;
    }
    const int result = TreeGetCur(item);
    LogPaths("GetCurrent", *item, "");
    if (result < 0) {
        throw Fatal{"nRet >= 0", "GetCur must success", "CSFileList",
                    "virtual int CSFileList::GetCurrent(CSFileListItem*)"};
    }
    (void)GetCurIndex();
    return result;
}

int Reference::GetAt(int index, CSFileListItem* item) {
    Log("GetAt", "++++++++++++++++++++ start index = " + std::to_string(index));
    if (index < 0) {
        throw Fatal{"nIdx >= 0", "index cannot be negative", "CSFileList",
                    "virtual int CSFileList::GetAt(int, CSFileListItem*)"};
    }
    if (listCount < 1 || !tree) {
        return -1;
    }
    NeedItem(item, "int CSFileList::GetAt(int, CSFileListItem*)");
    TreeGetAt(index, item, false);
    return 0;
}

int Reference::GetAtSimply(int index, CSFileListItem* item) {
    Log("GetAtSimply", "++++++++++++++++++++ start index = " + std::to_string(index));
    if (index < 0) {
        throw Fatal{"nIdx >= 0", "index cannot be negative", "CSFileList",
                    "virtual int CSFileList::GetAtSimply(int, CSFileListItem*)"};
    }
    if (listCount < 1 || !tree) {
        return -1;
    }
    NeedItem(item, "int CSFileList::GetAtSimply(int, CSFileListItem*)");
    TreeGetAt(index, item, true);
    return 0;
}

bool Reference::IsLast(CSFileListItem* item) {
    Log("IsLast", "start");
    if (item == nullptr || !tree) {
        return false;
    }
    CSFileListItem last;
    (void)TreeGetLast(&last);
    return std::strcmp(last.m_strURI, item->m_strURI) == 0;
}

int Reference::SetCur(const char* path) {
    Log("SetCur", "start");
    if (!tree) {
        return -1;
    }
    SetCurFile(path);
    (void)GetCurIndex();
    return 0;
}

int Reference::SetCurIndex(int index) {
    Log("SetCurIndex", "start");
    CSFileListItem item;
    const int result = GetAtSimply(index, &item);
    (void)SetCur(item.m_strURI);
    return result;
}

int Reference::GetCurIndex() {
    NeedTree("int CSFileList::GetCurIndex()");
    curGetAtIdx = CursorPosition();
    Log("GetCurIndex", "m_nCurGetAtIdx = " + std::to_string(curGetAtIdx));
    return curGetAtIdx;
}

int Reference::GetFileListIndex(const char* path) {
    Log("GetFileListIndex", "start");
    if (!tree) {
        return -6;
    }
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    const int didx = path == nullptr ? -1 : DirIndexByName(path);
    if (didx < 0) {
        return -1;
    }
    return CountBefore(didx) + FileIndex(tree->dirs[static_cast<std::size_t>(didx)], fnum);
}

int Reference::GetInfo(const char* path, CSFileListItem* item) {
    Log("GetInfo", "start");
    if (path == nullptr) {
        return -2;
    }
    if (item == nullptr) {
        return -3;
    }
    if (!tree) {
        return -6;
    }
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    const int didx = DirIndex(dnum);
    RefItem copy = ItemOf(didx, FileIndex(tree->dirs[static_cast<std::size_t>(didx)], fnum));
    Convert(copy, item, didx);
    if (std::strlen(path) >= 99) {
        return -1;
    }
    (void)std::snprintf(item->m_strURI, sizeof item->m_strURI, "%s", path);
    return 0;
}

int Reference::UpdateFirstIndex(bool ignoreSeries) {
    Log("UpdateFirstIndex", "start");
    return tree ? TreeUpdateFirstIndex(ignoreSeries) : -6;
}

} // namespace dcftest
