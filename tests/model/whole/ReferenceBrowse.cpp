// The reference's cursor and its conversion of items for clients.
#include <cstdio>
#include <cstring>
#include <functional>

#include "Reference.h"

namespace dcftest {

namespace {

/// Writes a text as bounded formatting does: what stands behind its end stays.
template <std::size_t Size>
void Write(char (&out)[Size], const std::string& text) {
    (void)std::snprintf(out, Size, "%s", text.c_str());
}

constexpr const char* kBadCursor = "m_nCurDnum > 0 && m_nCurFnum > 0 && m_CurFileIndex >= 0";

} // namespace

bool Describe(const std::string& path, PhotoInfo& info) {
    // The place of the card is another one at each run.
    const std::size_t dcim = path.find("/DCIM/");
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string>{}(path.substr(dcim == path.npos ? 0 : dcim)));
    if (hash % 4 == 0) {
        return false;
    }
    info.attributeByte1 = static_cast<std::uint8_t>(hash);
    info.attributeByte2 = static_cast<std::uint8_t>(hash >> 8U);
    info.attributeWord = hash;
    info.attributeFlag = static_cast<std::uint8_t>(hash >> 16U);
    for (int i = 0; i < 4; ++i) {
        info.attributeWords[i] = static_cast<std::int32_t>(hash % 1000U) + i;
    }
    (void)std::snprintf(info.date, sizeof info.date, "%u", hash);
    for (int i = 0; i < 17; ++i) {
        info.trailingWords[i] = static_cast<std::int32_t>(hash % 2000U) * 100 + i;
    }
    return true;
}

// ---- The cursor ----

int Reference::CursorPosition() const {
    return (tree->curDidx < 1 ? 0 : CountBefore(tree->curDidx)) + tree->curFidx;
}

void Reference::SetCursor(int dnum, int fnum, int didx, const RefItem& item) {
    tree->curDnum = dnum;
    tree->curFnum = fnum;
    tree->curItem = item;
    tree->curDidx = didx;
    tree->curPosition = CursorPosition();
}

void Reference::MoveTo(int didx, int fidx, CSFileListItem* item) {
    RefItem copy = ItemOf(didx, fidx);
    Convert(copy, item, didx);
    tree->curFidx = fidx;
    SetCursor(tree->dirs[static_cast<std::size_t>(didx)].number, copy.number, didx, copy);
}

void Reference::SetCurFile(const char* path) {
    if (path == nullptr) {
        throw Fatal{"0", "cannot be null!", "CSDCFList", "int CSDCFList::SetCurFile(const char*)"};
    }
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    const int didx = DirIndex(dnum);
    tree->curFidx = FileIndex(tree->dirs[static_cast<std::size_t>(didx)], fnum);
    SetCursor(dnum, fnum, didx, ItemOf(didx, tree->curFidx));
}

int Reference::TreeGetFirst(CSFileListItem* item) {
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        if (tree->dirs[didx].Count() > 0) {
            MoveTo(static_cast<int>(didx), 0, item);
            return 0;
        }
    }
    return -1;
}

int Reference::TreeGetLast(CSFileListItem* item) {
    for (std::size_t behind = tree->dirs.size(); behind > 0; --behind) {
        const int count = tree->dirs[behind - 1].Count();
        if (count > 0) {
            MoveTo(static_cast<int>(behind) - 1, count - 1, item);
            return 0;
        }
    }
    return -1;
}

int Reference::TreeGetNext(CSFileListItem* item) {
    if (tree->curDnum != 99 && !(tree->curDnum > 0 && tree->curFnum > 0 && tree->curFidx >= 0)) {
        throw Fatal{kBadCursor, "invalid cursor", "CSDCFList", "int CSDCFList::GetNext(CSFileListItem*)"};
    }
    const int dirs = static_cast<int>(tree->dirs.size());
    if (tree->curDidx >= dirs) {
        Met("next without the cursor's directory");
        return -1;
    }
    if (tree->curFidx < tree->dirs[static_cast<std::size_t>(tree->curDidx)].Count() - 1) {
        MoveTo(tree->curDidx, tree->curFidx + 1, item);
        return 0;
    }
    for (int didx = tree->curDidx + 1; didx < dirs; ++didx) {
        if (tree->dirs[static_cast<std::size_t>(didx)].Count() > 0) {
            MoveTo(didx, 0, item);
            return 0;
        }
    }
    return -1;
}

int Reference::TreeGetPrev(CSFileListItem* item) {
    if (tree->curDnum != 99 && !(tree->curDnum > 0 && tree->curFnum > 0 && tree->curFidx >= 0)) {
        throw Fatal{kBadCursor, "invalid cursor", "CSDCFList", "int CSDCFList::GetPrev(CSFileListItem*)"};
    }
    const int dirs = static_cast<int>(tree->dirs.size());
    int from = tree->curDidx - 1;
    if (tree->curDidx >= dirs) {
        Met("previous without the cursor's directory");
        if (tree->curFidx > 0) {
            return -1;
        }
        from = dirs - 1;
    } else if (tree->curFidx > 0) {
        MoveTo(tree->curDidx, tree->curFidx - 1, item);
        return 0;
    }
    for (int didx = from; didx >= 0; --didx) {
        const int count = tree->dirs[static_cast<std::size_t>(didx)].Count();
        if (count > 0) {
            MoveTo(didx, count - 1, item);
            return 0;
        }
    }
    return -1;
}

int Reference::TreeGetCur(CSFileListItem* item) {
    if (tree->curDnum != 99 && !(tree->curDnum > 0 && tree->curFnum > 0)) {
        throw Fatal{"m_nCurDnum > 0 && m_nCurFnum > 0", "need to setting cur file", "CSDCFList",
                    "int CSDCFList::GetCur(CSFileListItem*)"};
    }
    if (tree->curFnum < 0 || tree->curDidx >= static_cast<int>(tree->dirs.size())) {
        return -1;
    }
    MoveTo(tree->curDidx, tree->curFidx, item);
    return 0;
}

void Reference::TreeGetAt(int index, CSFileListItem* item, bool simply) {
    int before = 0;
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        const int count = tree->dirs[didx].Count();
        if (before + count > index) {
            RefItem copy = ItemOf(static_cast<int>(didx), index - before);
            if (simply) {
                ComposePaths(copy, item, static_cast<int>(didx));
                item->m_nFileTime = copy.time;
            } else {
                Convert(copy, item, static_cast<int>(didx));
            }
            return;
        }
        before += count;
    }
    throw Fatal{"0", "invalid", "CSDCFList",
                simply ? "int CSDCFList::GetAtSimply(int, CSFileListItem*)"
                       : "int CSDCFList::GetAt(int, CSFileListItem*)"};
}

// ---- Conversion ----

void Reference::ComposePaths(const RefItem& src, CSFileListItem* item, int didx) const {
    std::memset(item->m_strObject, 0, sizeof item->m_strObject);
    Write(item->m_strURI, FilePath(didx, src));
    if (src.object != -1) {
        Write(item->m_strObject, ObjectPath(didx, src));
    }
}

void Reference::Convert(RefItem& src, CSFileListItem* item, int didx) {
    ComposePaths(src, item, didx);
    if (!src.described) {
        Collect(src, item->m_strURI);
    }
    item->m_eFileType = static_cast<eFileType>(src.type);
    item->m_eObjectType = static_cast<eFileType>(src.object);
    item->m_bProtect = ProtectOf(src);
    item->m_bWifi = src.wifi;
    item->m_nDirNum = src.dirNumber;
    item->m_nFileNum = src.number;
    item->m_nFileTime = src.time;
    const PhotoInfo& photo = src.photo;
    item->m_nMetaFlag = photo.attributeByte1;
    item->m_nMetaFlag2 = photo.attributeByte2;
    item->m_nMetaWord = photo.attributeWord;
    item->m_nMetaByte = photo.attributeFlag;
    item->m_nMetaQuad1 = photo.attributeWords[1];
    item->m_nMetaQuad2 = photo.attributeWords[2];
    std::memcpy(item->m_szMetaText, photo.date, sizeof item->m_szMetaText);
    item->m_aMeta[0] = photo.attributeWords[0];
    item->m_aMeta[1] = photo.attributeWords[3];
    const int order[] = {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 8, 12, 13, 14, 15, 16, 17};
    for (int i = 0; i < 17; ++i) {
        item->m_aMeta[2 + i] = photo.trailingWords[order[i] - 1];
    }
}

void Reference::Collect(const RefItem& src, const char* path) {
    int dnum = 0;
    int fnum = 0;
    Numbers(path, dnum, fnum);
    const int didx = DirIndex(dnum);
    const int fidx = FileIndex(tree->dirs[static_cast<std::size_t>(didx)], fnum);
    if (src.type == 3 || collector == Collector::None) {
        return;
    }
    effects.collected.emplace_back(path);
    PhotoInfo info{};
    if (collector == Collector::Describing && Describe(path, info)) {
        RefItem& target = tree->dirs[static_cast<std::size_t>(didx)].items[static_cast<std::size_t>(fidx)];
        target.described = true;
        target.photo = info;
    }
}

} // namespace dcftest
