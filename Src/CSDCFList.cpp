// The DCF tree; see the header. Sections in the order of a client's road: listing, numbering, paths, cursor,
// conversion.
#include "CSDCFList.h"

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>

#include "BoundedText.h"
#include "DcfRules.h"
#include "PCSDCFFSIO.h"
#include "Results.h"

#include "device_property.h"
#include "pref.h"
#include "vell-util.h"

#define KELP_UNIT "CSDCFList"
#include "Diagnostics.h"

namespace {

/// Held by the locked cursor operations. Not recursive: a metadata collector must not call back into them.
pthread_mutex_t s_listMutex = PTHREAD_MUTEX_INITIALIZER;

constexpr int kNoNumber = -1;
constexpr int kNoPosition = -1;

constexpr std::size_t kMaxRootLength = 97;

// The device property that every new tree announces.
constexpr int kListProperty = 17;
constexpr int kListPropertyValue = 8;

// Where the series value lives in the preference service.
constexpr int kSeriesGroup = 3;
constexpr int kSeriesKey = 512;

// Where the numbers stand in a path, counted from the end of the storage root: "/DCIM/", the directory name, "/".
constexpr std::size_t kDirNumberOffset = 6;
constexpr std::size_t kFileNumberInPath = 19;
constexpr std::size_t kCameraFileNumberInPath = 22;

constexpr std::size_t kShortestFilePath = 24;
constexpr std::size_t kDirNameMatch = 6;

/// The trailing words of the metadata in the order in which clients receive them.
/// Deliberate: the eighth follows the eleventh; clients read them so.
constexpr int kTrailingOrder[] = {0, 1, 2, 3, 4, 5, 6, 8, 9, 10, 7, 11, 12, 13, 14, 15, 16};

void CopyMetadata(const PhotoInfo& photo, CSFileListItem& item) {
    item.m_nMetaFlag = photo.attributeByte1;
    item.m_nMetaFlag2 = photo.attributeByte2;
    item.m_nMetaWord = photo.attributeWord;
    item.m_nMetaByte = photo.attributeFlag;
    item.m_nMetaQuad1 = photo.attributeWords[1];
    item.m_nMetaQuad2 = photo.attributeWords[2];
    kelp::CopyField(item.m_szMetaText, photo.date);
    std::int32_t* words = item.m_aMeta;
    *words++ = photo.attributeWords[0];
    *words++ = photo.attributeWords[3];
    for (const int trailing : kTrailingOrder) {
        *words++ = photo.trailingWords[trailing];
    }
}

/// The rest of a text from an offset on, empty where the text is shorter.
const char* From(const char* text, std::size_t offset) {
    return text + std::min(offset, std::strlen(text));
}

} // namespace

// ---- Directory registry ----

DirPathMapper* DirPathMapper::m_pInstance = nullptr;

DirPathMapper* DirPathMapper::getInstance() {
    if (m_pInstance == nullptr) {
        m_pInstance = new DirPathMapper;
    }
    return m_pInstance;
}

void DirPathMapper::clear() {
    m_mapPath.clear();
}

bool DirPathMapper::isPossibleAddDirnum(int dnum, const std::string& /*path*/) {
    // Deliberate: a folder without "PHOTO" in its path gives way to a second one of its number, and both stay listed.
    const auto registered = m_mapPath.find(dnum);
    return registered == m_mapPath.end() || registered->second.find("PHOTO") == std::string::npos;
}

void DirPathMapper::add(int dnum, const std::string& path) {
    m_mapPath[dnum] = path;
}

std::string DirPathMapper::getPath(int dnum) {
    return m_mapPath[dnum];
}

// ---- Construction and listing ----

CSDCFList::PhotoInfoCollector CSDCFList::m_PhotoInfoCollector = nullptr;
CSDCFList::VideoInfoCollector CSDCFList::m_VideoInfoCollector = nullptr;

CSDCFList::CSDCFList()
    : m_nFirstIndex(0), m_nDirCount(0), m_szBaseURI(), m_nTotalCount(0), m_nCurDnum(kNoNumber), m_nCurFnum(kNoNumber),
      m_CurFileIndex(kNoPosition), m_nCurDidx(kNoPosition), m_bSeriesMode(false), m_nCurListIndex(kNoPosition) {
    (void)device_set_property(kListProperty, kListPropertyValue, 0, 0); // an announcement: nothing depends on it
}

CSDCFList::~CSDCFList() {
    for (const CSDCFDir* dir : m_dirGroup) {
        delete dir;
    }
}

int CSDCFList::SetBaseURI(const char* uri) {
    if (uri == nullptr || std::strlen(uri) > kMaxRootLength) {
        return kelp::kFailure;
    }
    kelp::CopyText(m_szBaseURI, uri);
    return kelp::kSuccess;
}

int CSDCFList::CreateBaseDirectory() {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Compose(path, sizeof path, "%s/%s", m_szBaseURI, kelp::kDcimName);
    (void)PCSDCFFSIO::MakeDirectory(path); // there already, or the listing that follows finds nothing
    return kelp::kSuccess;
}

int CSDCFList::Listup(bool includeCamera) {
    CreateBaseDirectory();
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Compose(path, sizeof path, "%s/%s", m_szBaseURI, kelp::kDcimName);
    PCSDCFFSIO listing(path, true);
    if (listing.m_nTotal < 0) {
        return kelp::kSuccess;
    }
    DirPathMapper::getInstance()->clear();

    PCSDCFFSIO::PTFile entry;
    while (listing.Read(&entry) >= 0) {
        if (!CheckDirNameSyntax(entry.szName)) {
            continue;
        }
        const int dnum = GetDnum(entry.szName);
        if (dnum < kelp::kCameraDirNumber || dnum > kelp::kMaxDirNumber ||
            (dnum == kelp::kCameraDirNumber && !includeCamera)) {
            continue;
        }
        char fullPath[KELP_DCF_MAX_FILE_NAME_LEN];
        kelp::Compose(fullPath, sizeof fullPath, "%s/%s/%s", m_szBaseURI, kelp::kDcimName, entry.szName);
        if (DirPathMapper::getInstance()->isPossibleAddDirnum(dnum, fullPath)) {
            AddDirectory(dnum, entry.szName, fullPath);
        }
    }
    m_nFirstIndex = GetFirstIndex();
    UpdateFirstIndexWithSeriesValue();
    return kelp::kSuccess;
}

void CSDCFList::AddDirectory(int dnum, const char* name, const char* fullPath) {
    auto dir = std::make_unique<CSDCFDir>(dnum, name);
    m_dirGroup.push_back(dir.get());
    CSDCFDir* added = dir.release();
    ++m_nDirCount;
    DirPathMapper::getInstance()->add(dnum, fullPath);
    m_nTotalCount += added->Listup(m_szBaseURI, dnum, m_nTotalCount);
}

bool CSDCFList::CheckDirNameSyntax(const std::string& name) {
    if (name == kelp::kCameraName) {
        return true;
    }
    if (name.length() != kelp::kDirNameLength) {
        return false;
    }
    try {
        const int number = std::stoi(name);
        return number >= kelp::kMinDirNumber && number <= kelp::kMaxDirNumber;
    } catch (const std::exception&) {
        return false; // no number, or none that fits
    }
}

int CSDCFList::GetDnum(const char* name) {
    if (kelp::StartsWith(name, kelp::kCameraName)) {
        return kelp::kCameraDirNumber;
    }
    return kelp::ReadNumber<kelp::kDirNumberLength>(name);
}

// ---- Directories and counts ----

int CSDCFList::GetDidx(const char* path) {
    if (path == nullptr || std::strlen(path) < kShortestFilePath) {
        return kelp::kNotFound;
    }
    const std::string text(path);
    const std::size_t last = text.rfind('/');
    const std::size_t second = last == std::string::npos || last == 0 ? std::string::npos : text.rfind('/', last - 1);
    if (second == std::string::npos) {
        return kelp::kNotFound;
    }
    // Deliberate: six characters are enough, so an earlier directory that shares them wins over an exact match later.
    const char* name = path + second + 1;
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        if (std::strncmp(Dir(didx).m_strDirName, name, kDirNameMatch) == 0) {
            return didx;
        }
    }
    return kelp::kNotFound;
}

int CSDCFList::GetDirIndex(int dnum) {
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        if (Dir(didx).GetDnum() == dnum) {
            return didx;
        }
    }
    KELP_FAIL("cannot find dir index = %d", dnum);
}

int CSDCFList::GetCount() {
    m_nTotalCount = CountBefore(m_nDirCount);
    return m_nTotalCount;
}

int CSDCFList::GetFileCount(eFileType type) {
    int count = 0;
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        count += Dir(didx).GetCountByType(type);
    }
    return count;
}

CSDCFDir& CSDCFList::Dir(int didx) {
    return *m_dirGroup[static_cast<std::size_t>(didx)];
}

bool CSDCFList::HasDirectory(int didx) {
    return didx >= 0 && didx < m_nDirCount;
}

/// Files in the directories before a position; directories that are gone count nothing.
int CSDCFList::CountBefore(int didx) {
    int count = 0;
    for (int before = 0; before < std::min(didx, m_nDirCount); ++before) {
        count += Dir(before).GetCount();
    }
    return count;
}

// ---- Numbering ----

void CSDCFList::GetIndexToNum(int index, int* dnum, int* fnum) {
    *dnum = index / kelp::kIndexPerDirectory;
    *fnum = index % kelp::kIndexPerDirectory;
}

int CSDCFList::GetNumToIndex(int dnum, int fnum) {
    return kelp::NumberIndex(dnum, fnum);
}

void CSDCFList::GetNum(const char* path, int* dnum, int* fnum) {
    if (path == nullptr || dnum == nullptr || fnum == nullptr) {
        return;
    }
    // Deliberate: by position, and "Camera" anywhere in the path decides, the storage root included.
    const std::size_t root = std::strlen(m_szBaseURI);
    if (std::strstr(path, kelp::kCameraName) != nullptr) {
        *dnum = kelp::kCameraDirNumber;
        *fnum = kelp::ReadNumber<kelp::kCameraFileNumberLength>(From(path, root + kCameraFileNumberInPath));
    } else {
        *dnum = kelp::ReadNumber<kelp::kDirNumberLength>(From(path, root + kDirNumberOffset));
        *fnum = kelp::ReadNumber<kelp::kFileNumberLength>(From(path, root + kFileNumberInPath));
    }
}

int CSDCFList::GetListIndex(const char* path) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    const int didx = GetDidx(path);
    if (didx < 0) {
        return kelp::kNotFound;
    }
    return CountBefore(didx) + Dir(didx).GetFidx(fnum);
}

int CSDCFList::GetFirstIndex() {
    if (GetCount() < 1) {
        return 0;
    }
    // Deliberate: the directory at the front decides alone, also when it is empty.
    CSDCFDir& dir = *m_dirGroup.front();
    if (dir.GetCount() == 0) {
        return GetNumToIndex(dir.GetDnum(), 0);
    }
    if (dir.GetDnum() == kelp::kCameraDirNumber) {
        return 0;
    }
    return GetNumToIndex(dir.GetDnum(), dir.GetFirstItem().getFileNum());
}

int CSDCFList::UpdateFirstIndex(bool ignoreSeries) {
    m_nFirstIndex = GetFirstIndex();
    if (!ignoreSeries) {
        UpdateFirstIndexWithSeriesValue();
    }
    return m_nFirstIndex;
}

void CSDCFList::UpdateFirstIndexWithSeriesValue() {
    if (!GetSeriesMode()) {
        return;
    }
    const long series = ReadSeriesValue();
    if (series != kelp::kLastIndex) {
        m_nFirstIndex = static_cast<int>(std::max<long>(m_nFirstIndex, series));
    } else if (m_nFirstIndex != kelp::kLastIndex) {
        // Deliberate: a series that has reached its end starts again from the card's own numbering.
        (void)BackupSeriesValue(m_nFirstIndex); // a failed write is met again at the next listing
    }
}

long CSDCFList::ReadSeriesValue() {
    return pref_get_long(kSeriesGroup, kSeriesKey);
}

int CSDCFList::BackupSeriesValue(int value) {
    // Deliberate: a value beyond the last index starts the series again, the last index itself is stored as it is.
    return pref_set_long(kSeriesGroup, kSeriesKey, value <= kelp::kLastIndex ? value : kelp::kFirstSeries);
}

int CSDCFList::SetSeriesMode(bool on) {
    m_bSeriesMode = on;
    return kelp::kSuccess;
}

bool CSDCFList::GetSeriesMode() {
    return m_bSeriesMode;
}

// ---- Paths ----

void CSDCFList::GetFullPath(char* out, int len, int didx, DCFItem& item) {
    KELP_ASSERT_AS(Dir(didx).m_strDirName[0] != '\0', "strlen(m_dirGroup[didx]->m_strDirName) > 0",
                   "strlen(m_dirGroup[didx]->m_strDirName) > 0", "need check didx");
    kelp::Compose(out, static_cast<std::size_t>(len), "%s/%s/%s/%s", m_szBaseURI, kelp::kDcimName,
                  Dir(didx).m_strDirName, item.getFileName());
}

void CSDCFList::GetObjectFullPath(char* out, int len, int didx, DCFItem& item) {
    if (item.getObjectType() == FILE_TYPE_NONE) {
        return;
    }
    // Deliberate: nine characters are kept in "Camera" too, where that is never the name of a real file.
    char name[kelp::kFileNameLength + 1];
    kelp::Compose(name, sizeof name, "%.*s%s", static_cast<int>(kelp::kExtensionOffset), item.getFileName(),
                  fileTypeToString(item.getObjectType()).c_str());
    kelp::Compose(out, static_cast<std::size_t>(len), "%s/%s/%s/%s", m_szBaseURI, kelp::kDcimName,
                  Dir(didx).m_strDirName, name);
}

// ---- The cursor ----

int CSDCFList::GetCurIndex() {
    return CountBefore(m_nCurDidx) + m_CurFileIndex;
}

int CSDCFList::SetCurItem(int dnum, int fnum, int didx, DCFItem item) {
    m_nCurDnum = dnum;
    m_nCurFnum = fnum;
    m_CurItem = item;
    m_nCurDidx = didx;
    m_nCurListIndex = GetCurIndex();
    return m_nCurListIndex;
}

int CSDCFList::SetCurFile(const char* path) {
    if (path == nullptr) {
        KELP_FAIL("cannot be null!");
    }
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    const int didx = GetDirIndex(dnum);
    m_CurFileIndex = Dir(didx).GetFidx(fnum);
    SetCurItem(dnum, fnum, didx, Dir(didx).GetItem(m_CurFileIndex));
    return kelp::kSuccess;
}

int CSDCFList::GetCur(CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    if (m_nCurDnum != kelp::kCameraDirNumber) {
        KELP_ASSERT(m_nCurDnum > 0 && m_nCurFnum > 0, "need to setting cur file");
    }
    if (m_nCurFnum < 0 || !HasDirectory(m_nCurDidx)) {
        return kelp::kFailure;
    }
    return MoveTo(m_nCurDidx, m_CurFileIndex, pItem);
}

int CSDCFList::GetFirst(CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    const int didx = FindFilledForward(0);
    return HasDirectory(didx) ? MoveTo(didx, 0, pItem) : kelp::kFailure;
}

int CSDCFList::GetLast(CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    const int didx = FindFilledBackward(m_nDirCount - 1);
    return HasDirectory(didx) ? MoveTo(didx, Dir(didx).GetCount() - 1, pItem) : kelp::kFailure;
}

int CSDCFList::GetNext(CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    if (m_nCurDnum != kelp::kCameraDirNumber) {
        KELP_ASSERT(m_nCurDnum > 0 && m_nCurFnum > 0 && m_CurFileIndex >= 0, "invalid cursor");
    }
    if (!HasDirectory(m_nCurDidx)) {
        return kelp::kFailure; // a deletion took the cursor's directory
    }
    if (m_CurFileIndex < Dir(m_nCurDidx).GetCount() - 1) {
        return MoveTo(m_nCurDidx, m_CurFileIndex + 1, pItem);
    }
    const int didx = FindFilledForward(m_nCurDidx + 1);
    return HasDirectory(didx) ? MoveTo(didx, 0, pItem) : kelp::kFailure;
}

int CSDCFList::GetPrev(CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    if (m_nCurDnum != kelp::kCameraDirNumber) {
        KELP_ASSERT(m_nCurDnum > 0 && m_nCurFnum > 0 && m_CurFileIndex >= 0, "invalid cursor");
    }
    if (m_CurFileIndex > 0) {
        return HasDirectory(m_nCurDidx) ? MoveTo(m_nCurDidx, m_CurFileIndex - 1, pItem) : kelp::kFailure;
    }
    const int didx = FindFilledBackward(std::min(m_nCurDidx, m_nDirCount) - 1);
    return HasDirectory(didx) ? MoveTo(didx, Dir(didx).GetCount() - 1, pItem) : kelp::kFailure;
}

/// The first directory at or behind a position that holds files; beyond the last one when there is none.
int CSDCFList::FindFilledForward(int didx) {
    while (didx < m_nDirCount && Dir(didx).GetCount() == 0) {
        ++didx;
    }
    return didx;
}

/// The last directory at or before a position that holds files; below 0 when there is none.
int CSDCFList::FindFilledBackward(int didx) {
    while (didx >= 0 && Dir(didx).GetCount() == 0) {
        --didx;
    }
    return didx;
}

/// Converts the item at a position and makes it the cursor. The cursor takes up the copy that was converted.
int CSDCFList::MoveTo(int didx, int fidx, CSFileListItem* pItem) {
    DCFItem item = Dir(didx).GetItem(fidx);
    ConvertFileItem(item, pItem, didx);
    m_CurFileIndex = fidx;
    SetCurItem(Dir(didx).GetDnum(), item.getFileNum(), didx, item);
    return kelp::kSuccess;
}

// ---- Items by position and by path ----

int CSDCFList::GetAt(int index, CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    int before = 0;
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        const int count = Dir(didx).GetCount();
        if (before + count > index) {
            DCFItem item = Dir(didx).GetItem(index - before);
            ConvertFileItem(item, pItem, didx);
            return kelp::kSuccess;
        }
        before += count;
    }
    KELP_FAIL("invalid");
}

int CSDCFList::GetAtSimply(int index, CSFileListItem* pItem) {
    int before = 0;
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        const int count = Dir(didx).GetCount();
        if (before + count > index) {
            DCFItem item = Dir(didx).GetItem(index - before);
            ConvertFileItemSimply(item, pItem, didx);
            return kelp::kSuccess;
        }
        before += count;
    }
    KELP_FAIL("invalid");
}

int CSDCFList::GetInfo(char* path, CSFileListItem* pItem) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    const int didx = GetDirIndex(dnum);
    DCFItem item = Dir(didx).GetItem(Dir(didx).GetFidx(fnum));
    ConvertFileItem(item, pItem, didx);
    if (std::strlen(path) >= KELP_DCF_MAX_FILE_NAME_LEN) {
        return kelp::kFailure;
    }
    kelp::CopyText(pItem->m_strURI, path);
    return kelp::kSuccess;
}

int CSDCFList::SetObject(const char* path, eFileType type) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    CSDCFDir& dir = Dir(GetDirIndex(dnum));
    if (dir.GetCount() > 0) {
        dir.AddHeadObject(type);
    }
    return kelp::kSuccess;
}

// ---- Conversion and metadata ----

void CSDCFList::ConvertFileItem(DCFItem& src, CSFileListItem* pItem, int didx) {
    KELP_ASSERT_ITEM(pItem);
    ComposePaths(src, pItem, didx);
    if (!src.getMetadata()) {
        CollectMetadata(src, pItem->m_strURI);
    }
    // Deliberate: from the copy, so what a collector has just told reaches the client with the next conversion.
    pItem->m_eFileType = src.getFileType();
    pItem->m_eObjectType = src.getObjectType();
    pItem->m_bProtect = src.getProtect();
    pItem->m_bWifi = src.getWifi();
    pItem->m_nDirNum = src.getDirNum();
    pItem->m_nFileNum = src.getFileNum();
    pItem->m_nFileTime = src.getFileTime();
    CopyMetadata(src.m_photo, *pItem);
}

void CSDCFList::ConvertFileItemSimply(DCFItem& src, CSFileListItem* pItem, int didx) {
    KELP_ASSERT_ITEM(pItem);
    ComposePaths(src, pItem, didx);
    pItem->m_nFileTime = src.getFileTime();
}

void CSDCFList::ComposePaths(DCFItem& src, CSFileListItem* pItem, int didx) {
    std::memset(pItem->m_strObject, 0, sizeof pItem->m_strObject);
    GetFullPath(pItem->m_strURI, sizeof pItem->m_strURI, didx, src);
    GetObjectFullPath(pItem->m_strObject, sizeof pItem->m_strObject, didx, src);
}

void CSDCFList::CollectMetadata(DCFItem& src, char* path) {
    // Deliberate: the file is looked up again by its path, with or without a collector. Where two directories share a
    // number this finds the first of them.
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    CSDCFDir& dir = Dir(GetDirIndex(dnum));
    const int fidx = dir.GetFidx(fnum);
    if (src.getFileType() == FILE_TYPE_MP4) {
        if (m_VideoInfoCollector != nullptr) {
            CollectVideo(dir, fidx, path);
        }
        return;
    }
    if (m_PhotoInfoCollector != nullptr) {
        PhotoInfo info = {};
        if (m_PhotoInfoCollector(path, &info) == 0) {
            dir.setPhotoData(fidx, info);
        }
    }
}

// Deliberate: dormant, since no video collector is ever stored.
void CSDCFList::CollectVideo(CSDCFDir& dir, int fidx, char* path) {
    std::printf("get video info\n");
    VideoInfo info = {};
    (void)m_VideoInfoCollector(path, &info); // whatever it says, the record is shown and stored
    std::printf("hasAudio = %d\n", info.hasAudio);
    std::printf("fps = %d\n", info.fps);
    std::printf("videoBitRate = %d\n", info.videoBitRate);
    std::printf("audioBitRate = %d\n", info.audioBitRate);
    std::printf("multiMotion = %d\n", info.multiMotion);
    std::printf("totalTime = %d\n", info.totalTime);
    std::printf("date = %.*s\n", static_cast<int>(sizeof info.date), info.date);
    std::printf("image width = %d\n", info.imageWidth);
    std::printf("image height = %d\n", info.imageHeight);
    std::printf("file size = %d\n", info.fileSize);
    dir.setVideoData(fidx, info);
    std::printf("get video end\n");
}

int CSDCFList::RegisterPhotoMetadataCB(PhotoInfoCollector collector) {
    m_PhotoInfoCollector = collector;
    return kelp::kRegistered;
}

int CSDCFList::RegisterVideoMetadataCB(VideoInfoCollector /*collector*/) {
    return kelp::kRegistered; // Deliberate: accepted and kept nowhere.
}

int CSDCFList::AddPhotoMetadata(const char* path, PhotoInfo& info) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    CSDCFDir& dir = Dir(GetDirIndex(dnum));
    dir.setPhotoData(dir.GetFidx(fnum), info);
    return kelp::kSuccess;
}
