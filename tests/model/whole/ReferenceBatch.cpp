// The reference's selection, batches, naming and capacity, as the file list has them.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Reference.h"

namespace dcftest {

namespace {

std::string Two(int number) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%02d", number);
    return text.data();
}

} // namespace

// ---- Selection and batches ----

bool Reference::IsSel(int index) {
    Log("IsSel", "start");
    return std::count(selection.begin(), selection.end(), index) > 0;
}

void Reference::SetSel(int index, bool on) {
    Log("SetSel", "start");
    if (!on) {
        selection.erase(std::remove(selection.begin(), selection.end(), index), selection.end());
    } else if (std::count(selection.begin(), selection.end(), index) == 0) {
        selection.push_back(index);
    }
}

void Reference::SelectCancel() {
    Log("SelectCancel", "start");
    selection.clear();
}

int Reference::GetSelCount() {
    Log("GetSelCount", "start");
    return static_cast<int>(selection.size());
}

std::vector<int> Reference::GetSelectIndecies() {
    Log("GetSelectIndecies", "start");
    return selection;
}

int Reference::Delete(CSFileListItem* item) {
    Log("Delete", "start");
    NeedItem(item, "int CSFileList::Delete(CSFileListItem*)");
    if (item->m_bProtect) {
        Met("protected item refused");
        return -1;
    }
    NeedTree("int CSFileList::Delete(CSFileListItem*)");
    TreeDelete(item->m_strURI);
    selection.clear();
    listCount = Count();
    card.Sync();
    return 0;
}

int Reference::DeleteSel() {
    Log("DeleteSel", "start");
    NeedTree("int CSFileList::DeleteSel()");
    std::sort(selection.begin(), selection.end());
    TreeDeleteSet(selection);
    if (selection.empty()) {
        throw OutOfRange{"vector::_M_range_check"};
    }
    listCount = Count();
    if (listCount >= 1) {
        (void)SetCurIndex(selection.front() <= 0 ? 0 : selection.front() - 1);
    }
    selection.clear();
    card.Sync();
    return 0;
}

int Reference::DeleteAll() {
    Log("DeleteAll", "start");
    NeedTree("int CSFileList::DeleteAll()");
    TreeDeleteAll();
    card.Sync();
    selection.clear();
    ListAgain();
    (void)UpdateFirstIndex(false);
    Log("DeleteAll", "DeleteAll end");
    return 0;
}

void Reference::ListAgain() {
    tree.reset();
    (void)Listup();
}

int Reference::SetProtect(CSFileListItem* item, bool on) {
    Log("SetProtect", "start");
    NeedItem(item, "int CSFileList::SetProtect(CSFileListItem*, bool)");
    NeedTree("int CSFileList::SetProtect(CSFileListItem*, bool)");
    int dnum = 0;
    int fnum = 0;
    Numbers(item->m_strURI, dnum, fnum);
    const int didx = DirIndex(dnum);
    ProtectOne(didx, FileIndex(tree->dirs[static_cast<std::size_t>(didx)], fnum), on);
    return 0;
}

int Reference::SetProtectSel(bool on) {
    Log("SetProtectSel", "start");
    NeedTree("int CSFileList::SetProtectSel(bool)");
    std::sort(selection.begin(), selection.end());
    TreeProtect(selection, on);
    selection.clear();
    return 0;
}

int Reference::SetProtectSelToggle() {
    Log("SetProtectSelToggle", "start");
    NeedTree("int CSFileList::SetProtectSelToggle()");
    std::sort(selection.begin(), selection.end());
    TreeProtect(selection, std::nullopt);
    selection.clear();
    return 0;
}

int Reference::SetProtectAll(bool on) {
    Log("SetProtectAll", "start");
    NeedTree("int CSFileList::SetProtectAll(bool)");
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        for (int fidx = 0; fidx < tree->dirs[didx].Count(); ++fidx) {
            ProtectOne(static_cast<int>(didx), fidx, on);
        }
    }
    return 0;
}

int Reference::SetWifiFlag(CSFileListItem* item, bool on) {
    Log("SetWifiFlag", "start");
    NeedItem(item, "int CSFileList::SetWifiFlag(CSFileListItem*, bool)");
    NeedTree("int CSFileList::SetWifiFlag(CSFileListItem*, bool)");
    int dnum = 0;
    int fnum = 0;
    Numbers(item->m_strURI, dnum, fnum);
    RefDir& dir = tree->dirs[static_cast<std::size_t>(DirIndex(dnum))];
    dir.items[static_cast<std::size_t>(FileIndex(dir, fnum))].wifi = on;
    return 0;
}

bool Reference::IsWifiFlag(CSFileListItem* item) {
    Log("IsWifiFlag", "start");
    return item != nullptr && item->m_bWifi;
}

int Reference::SetCustomBitAll(int /*bit*/, bool on) {
    Log("SetCustomBitAll", "start");
    NeedTree("int CSFileList::SetCustomBitAll(int, bool)");
    for (RefDir& dir : tree->dirs) {
        for (RefItem& item : dir.items) {
            item.wifi = on;
        }
    }
    return 0;
}

// ---- Naming and capacity ----

void Reference::SetFileNameMake(int mode) {
    Log("SetFileNameMake", "start");
    fileNameMake = mode;
}

void Reference::SetFolderNameMake(int mode) {
    Log("SetFolderNameMake", "start");
    folderNameMake = mode;
}

void Reference::SetFileNameColor(int mode) {
    Log("SetFileNameColor", "start");
    colorMode = mode;
    (void)SetFilePrefix(mode == 0 ? "KVR_" : "_KVR");
}

void Reference::SetImageType(int type) {
    Log("SetImageType", "start");
    imageType = type;
}

int Reference::SetFilePrefix(const char* prefix) {
    Log("SetFilePrefix", "start");
    if (prefix == nullptr) {
        return -1;
    }
    if (std::strlen(prefix) > 8) {
        return -2;
    }
    filePrefix = prefix;
    return 0;
}

std::tm Reference::LocalDate() {
    card.Note("time");
    card.Note("localtime");
    (void)card.faults.Fails("time"); // what is asked for local time does not show
    std::tm date = clock.local;
    if (card.faults.Fails("localtime") || clock.broken) {
        date.tm_mon = 0;
        date.tm_mday = 1;
    }
    return date;
}

int Reference::GetNewFileName(NameBuffer& out, int type) {
    Log("GetNewFileName", "start");
    if (!tree) {
        return -1;
    }
    const std::map<int, std::string> extensions = {{0, "JPG"}, {1, "SRW"}, {2, "MPO"}, {3, "MP4"}, {5, "AVI"}};
    const bool stereo = type == 3 && imageType == 1;
    std::string prefix = filePrefix;
    if (fileNameMake != 0) {
        const std::tm date = LocalDate();
        const int month = date.tm_mon + 1;
        const bool letter = colorMode == 1 && !stereo;
        datePrefix = (letter ? std::string("_") + "123456789ABC"[month - 1] : Two(month)) + Two(date.tm_mday);
        prefix = datePrefix;
    } else if (stereo) {
        stereoPrefix = "S3D_";
    }
    std::string suffix = "PHOTO";
    if (folderNameMake != 0) {
        const std::tm date = LocalDate();
        dateFolder = "_" + Two(date.tm_mon + 1) + Two(date.tm_mday);
        suffix = dateFolder;
    }
    const auto extension = extensions.find(type);
    const int result = extension == extensions.end() ? -1 : TreeGetNewFileName(prefix, extension->second, out, suffix);
    Log("GetNewFileName", "filename = " + prefix + " foldername = " + suffix);
    Log("GetNewFileName", "new filename = " + std::string(out.data(), strnlen(out.data(), out.size())));
    listCount = Count();
    return result;
}

int Reference::GetLatestFileName(NameBuffer* out, int type) {
    Log("GetLatestFileName", "start");
    if (!tree || out == nullptr) {
        return -1;
    }
    if (type == -1) {
        return -200;
    }
    CSFileListItem item;
    (void)GetFirst(&item);
    int dnum = 0;
    int fnum = 0;
    Numbers(item.m_strURI, dnum, fnum);
    RefDir& dir = tree->dirs[static_cast<std::size_t>(DirIndex(dnum))];
    if (!dir.items.empty()) {
        dir.items.front().object = type;
    }
    std::string path = item.m_strURI;
    if (type == 1 || type == 2) {
        path = path.substr(0, path.size() - 3) + (type == 1 ? "SRW" : "MPO");
    }
    std::copy(path.begin(), path.end(), out->begin());
    return 0;
}

int Reference::GetAvailNumOfPhoto() {
    Log("GetAvailNumOfPhoto", "start");
    for (int wait = 0; listupDone != 1 && wait < 200; ++wait) {
        card.Note("usleep 100000");
        Log("GetAvailNumOfPhoto", "Listing... " + std::to_string(listupDone));
    }
    if (listupDone != 1) {
        throw Fatal{"listupDone == 1", "listup is not done", "CSFileList",
                    "virtual int CSFileList::GetAvailNumOfPhoto()"};
    }
    NeedTree("int CSFileList::GetAvailNumOfPhoto()");
    const int dnum = tree->firstIndex / 100000;
    const int fnum = tree->firstIndex % 100000;
    const int byCount = 100000 - listCount;
    if (listCount >= 1 && dnum == 999) {
        CSFileListItem item;
        (void)GetAtSimply(0, &item);
        const std::string path = item.m_strURI;
        const std::size_t at = tree->root.size() + 9;
        const std::string suffix = at < path.size() ? path.substr(at, 5) : "";
        if (folderNameMake != 0 ? suffix.substr(0, 1) != "_" : suffix != "PHOTO") {
            Met("last directory does not fit");
            Log("GetAvailNumOfPhoto", "return 0");
            return 0;
        }
    }
    const int byName = dnum > 997 ? 9999 - fnum : 20000;
    if (byName < byCount) {
        Log("GetAvailNumOfPhoto", "return nName = " + std::to_string(byName));
        return byName;
    }
    Log("GetAvailNumOfPhoto", "return nCount = " + std::to_string(byCount));
    return byCount;
}

int Reference::RenameDCFFullStorage() {
    Log("RenameDCFFullStorage", "start");
    NeedTree("int CSFileList::RenameDCFFullStorage()");
    ReorderDirNames();
    ListAgain();
    return 1;
}

} // namespace dcftest
