// The DCF tree; see the header. Sections in the order of a client's road: directory registry, construction and listing,
// directories and counts, numbering, paths, the cursor, items by position and by path, conversion and metadata,
// deletion, protection and Wi-Fi marks, new files and renumbering.
#include "CSDCFList.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <limits>
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

/// A directory name is cut to this buffer when it is made: three digits, a suffix of five or six, the terminator.
constexpr std::size_t kNewDirNameSize = 10;

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

/// Those of some list positions that lie between two, counted from the first of the two on.
std::vector<int> PositionsBetween(const std::vector<int>& indices, bool ascending, int begin, int end) {
    auto first = indices.begin();
    auto last = indices.end();
    if (ascending) { // then the others need not be looked at
        first = std::lower_bound(first, last, begin);
        last = std::lower_bound(first, last, end);
    }
    std::vector<int> positions;
    std::for_each(first, last, [&](int index) {
        if (index >= begin && index < end) {
            positions.push_back(index - begin);
        }
    });
    return positions;
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
    return m_mapPath[dnum]; // Deliberate: an unknown number is entered, with an empty path.
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
    if (uri == nullptr || std::strlen(uri) > kelp::kMaxRootLength) {
        return kelp::kFailure;
    }
    kelp::CopyText(m_szBaseURI, uri);
    return kelp::kSuccess;
}

int CSDCFList::CreateBaseDirectory() {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Join(path, sizeof path, {m_szBaseURI, "/", kelp::kDcimName});
    (void)PCSDCFFSIO::MakeDirectory(path); // there already, or the listing that follows finds nothing
    return kelp::kSuccess;
}

int CSDCFList::Listup(bool includeCamera) {
    CreateBaseDirectory();
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Join(path, sizeof path, {m_szBaseURI, "/", kelp::kDcimName});
    PCSDCFFSIO listing(path, true);
    if (listing.m_nTotal < 0) {
        return kelp::kSuccess; // Deliberate: an empty list, no error; the registry keeps what it held.
    }
    DirPathMapper::getInstance()->clear();

    PCSDCFFSIO::PTFile entry;
    while (listing.Read(&entry) >= 0) {
        if (!CheckDirNameSyntax(entry.szName)) {
            continue;
        }
        const int dnum = GetDnum(entry.szName); // of three characters, so never beyond the last number
        if (dnum < kelp::kCameraDirNumber || (dnum == kelp::kCameraDirNumber && !includeCamera)) {
            continue;
        }
        char fullPath[KELP_DCF_MAX_FILE_NAME_LEN];
        ComposeDirPath(fullPath, entry.szName);
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
    // Deliberate: the standard conversion, which passes over blanks, a sign and zeros in front. GetDnum reads three
    // characters alone, so such a name has a number below 100 and is not listed, or passes for 99 ("0999ABCD").
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
    const int didx = Index().DirectoryOfName(m_dirGroup, path + second + 1, kDirNameMatch);
    return HasDirectory(didx) ? didx : kelp::kNotFound;
}

int CSDCFList::GetDirIndex(int dnum) {
    const int didx = Index().DirectoryOfNumber(m_dirGroup, dnum);
    if (!HasDirectory(didx)) {
        KELP_FAIL("cannot find dir index = %d", dnum);
    }
    return didx;
}

int CSDCFList::GetCount() {
    m_nTotalCount = Index().Files();
    return m_nTotalCount;
}

int CSDCFList::GetFileCount(eFileType type) {
    return Index().FilesOfType(m_dirGroup, type);
}

/// The index of the tree as it is now.
kelp::TreeIndex& CSDCFList::Index() {
    m_index.Refresh(m_dirGroup, m_nDirCount);
    return m_index;
}

CSDCFDir& CSDCFList::Dir(int didx) {
    return *m_dirGroup[static_cast<std::size_t>(didx)];
}

bool CSDCFList::HasDirectory(int didx) {
    return didx >= 0 && didx < m_nDirCount;
}

/// Where a path's file stands. Fatal for an unknown directory number or file number.
CSDCFList::Place CSDCFList::Find(const char* path) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    const int didx = GetDirIndex(dnum);
    return {didx, Dir(didx).GetFidx(fnum)};
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
        *fnum = kelp::ReadNumber<kelp::kCameraFileNumberLength>(kelp::From(path, root + kCameraFileNumberInPath));
    } else {
        *dnum = kelp::ReadNumber<kelp::kDirNumberLength>(kelp::From(path, root + kDirNumberOffset));
        *fnum = kelp::ReadNumber<kelp::kFileNumberLength>(kelp::From(path, root + kFileNumberInPath));
    }
}

int CSDCFList::GetListIndex(const char* path) {
    int dnum = 0;
    int fnum = 0;
    GetNum(path, &dnum, &fnum);
    const int didx = GetDidx(path); // Deliberate: the directory by its name, the file by its number.
    if (didx < 0) {
        return kelp::kNotFound;
    }
    return Index().FilesBefore(didx) + Dir(didx).GetFidx(fnum);
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
        // A damaged store may hold anything; a value beyond an int counts as exhausted, like any beyond 999-9999.
        m_nFirstIndex = static_cast<int>(std::clamp<long>(series, m_nFirstIndex, std::numeric_limits<int>::max()));
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
    kelp::Join(out, static_cast<std::size_t>(len),
               {m_szBaseURI, "/", kelp::kDcimName, "/", Dir(didx).m_strDirName, "/", item.getFileName()});
}

void CSDCFList::GetObjectFullPath(char* out, int len, int didx, DCFItem& item) {
    if (item.getObjectType() == FILE_TYPE_NONE) {
        return;
    }
    // Deliberate: nine characters are kept in "Camera" too, where that is never the name of a real file.
    char stem[kelp::kExtensionOffset + 1];
    kelp::CopyText(stem, item.getFileName());
    kelp::Join(out, static_cast<std::size_t>(len),
               {m_szBaseURI, "/", kelp::kDcimName, "/", Dir(didx).m_strDirName, "/", stem,
                fileTypeToString(item.getObjectType()).c_str()});
}

// ---- The cursor ----

int CSDCFList::GetCurIndex() {
    return Index().FilesBefore(m_nCurDidx) + m_CurFileIndex;
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
    // Deliberate: the cursor's numbers are the path's, not the item's.
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
    m_CurFileIndex = fidx;
    ConvertFileItem(item, pItem, didx);
    SetCurItem(Dir(didx).GetDnum(), item.getFileNum(), didx, item);
    return kelp::kSuccess;
}

// ---- Items by position and by path ----

int CSDCFList::GetAt(int index, CSFileListItem* pItem) {
    const vell::ScopedLock lock(&s_listMutex);
    const int didx = Index().DirectoryOfPosition(index);
    if (!HasDirectory(didx)) {
        KELP_FAIL("invalid");
    }
    DCFItem item = Dir(didx).GetItem(index - Index().FilesBefore(didx));
    ConvertFileItem(item, pItem, didx);
    return kelp::kSuccess;
}

int CSDCFList::GetAtSimply(int index, CSFileListItem* pItem) {
    const int didx = Index().DirectoryOfPosition(index);
    if (!HasDirectory(didx)) {
        KELP_FAIL("invalid");
    }
    DCFItem item = Dir(didx).GetItem(index - Index().FilesBefore(didx));
    ConvertFileItemSimply(item, pItem, didx);
    return kelp::kSuccess;
}

int CSDCFList::GetInfo(char* path, CSFileListItem* pItem) {
    const auto [didx, fidx] = Find(path);
    DCFItem item = Dir(didx).GetItem(fidx);
    ConvertFileItem(item, pItem, didx);
    if (std::strlen(path) >= KELP_DCF_MAX_FILE_NAME_LEN) {
        return kelp::kFailure; // Deliberate: behind the conversion, so the item is filled all the same.
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
        // Deliberate: the front item, whatever file the path names: it stands for the one just made.
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
    const auto [didx, fidx] = Find(path);
    CSDCFDir& dir = Dir(didx);
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
    const auto [didx, fidx] = Find(path);
    Dir(didx).setPhotoData(fidx, info);
    return kelp::kSuccess;
}

// ---- Deletion ----

void CSDCFList::Delete(char* path) {
    const auto [didx, fidx] = Find(path);
    DCFItem item = Dir(didx).GetItem(fidx);
    if (item.getProtect()) {
        return;
    }
    RemoveFromCard(item, didx);
    Dir(didx).RemoveItem(fidx);
    DropDirectoryIfEmpty(didx);
    // Deliberate: any other file leaves the first index alone, and no deletion moves the cursor.
    if (didx == 0 && fidx == 0) {
        UpdateFirstIndex(false);
    }
}

void CSDCFList::Delete(const std::vector<int>& indices) {
    const bool ascending = std::is_sorted(indices.begin(), indices.end());
    int base = 0;
    // Deliberate: the position advances over an erased directory too, so the one that moves up is passed over and the
    // indices meant for it meet the directory behind it.
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        CSDCFDir& dir = Dir(didx);
        const int count = dir.GetCount();
        if (count == 0) {
            continue; // Deliberate: an empty directory is never removed here.
        }
        std::vector<int> deleted;
        const std::vector<int> collected = PositionsBetween(indices, ascending, base, base + count);
        std::for_each(collected.rbegin(), collected.rend(), [&](int position) {
            DCFItem item = dir.GetItem(position);
            if (!item.getProtect()) {
                RemoveFromCard(item, didx);
                deleted.push_back(position);
            }
        });
        std::reverse(deleted.begin(), deleted.end());
        dir.RemoveItems(deleted);
        DropDirectoryIfEmpty(didx);
        base += count;
    }
    UpdateFirstIndex(false);
}

// Deliberate: the tree stays as it was; the file list discards it.
void CSDCFList::DeleteAll() {
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        for (int fidx = 0; fidx < Dir(didx).GetCount(); ++fidx) {
            DCFItem item = Dir(didx).GetItem(fidx);
            RemoveFromCard(item, didx); // Deliberate: protected files go too.
        }
        char path[KELP_DCF_MAX_FILE_NAME_LEN];
        ComposeDirPath(path, Dir(didx).m_strDirName);
        if (PCSDCFFSIO::IsDirEmpty(path)) {
            (void)PCSDCFFSIO::RemoveFile(path); // what stays is listed again
        }
    }
}

/// Removes a file and its companion file.
/// Deliberate: failures are ignored; the item leaves the tree all the same, and the next listing shows what stayed.
void CSDCFList::RemoveFromCard(DCFItem& item, int didx) {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    GetFullPath(path, sizeof path, didx, item);
    (void)PCSDCFFSIO::RemoveFile(path);
    if (item.getObjectType() != FILE_TYPE_NONE) {
        GetObjectFullPath(path, sizeof path, didx, item);
        (void)PCSDCFFSIO::RemoveFile(path);
    }
}

/// Takes a directory out of the tree and off the card when the card holds nothing more in it.
/// Deliberate: judged by the card, whatever the tree lists in it; one that cannot be opened counts as empty.
void CSDCFList::DropDirectoryIfEmpty(int didx) {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    ComposeDirPath(path, Dir(didx).m_strDirName);
    if (!PCSDCFFSIO::IsDirEmpty(path)) {
        return;
    }
    delete m_dirGroup.at(static_cast<std::size_t>(didx));
    m_dirGroup.erase(m_dirGroup.begin() + didx);
    --m_nDirCount;
    (void)PCSDCFFSIO::RemoveFile(path);
}

void CSDCFList::ComposeDirPath(char (&out)[KELP_DCF_MAX_FILE_NAME_LEN], const char* name) {
    kelp::Join(out, sizeof out, {m_szBaseURI, "/", kelp::kDcimName, "/", name});
}

// ---- Protection and Wi-Fi marks ----

/// Every item in list order.
template <typename Visit>
void CSDCFList::VisitAll(Visit visit) {
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        for (int fidx = 0; fidx < Dir(didx).GetCount(); ++fidx) {
            visit(didx, fidx);
        }
    }
}

/// The items at list positions in ascending order. A position below the present directory is consumed without effect,
/// one beyond the list ends the walk.
template <typename Visit>
void CSDCFList::VisitIndices(const std::vector<int>& indices, Visit visit) {
    auto next = indices.begin();
    int end = 0;
    for (int didx = 0; didx < m_nDirCount; ++didx) {
        const int begin = end;
        end += Dir(didx).GetCount();
        for (; next != indices.end() && *next < end; ++next) {
            if (*next >= begin) {
                visit(didx, *next - begin);
            }
        }
    }
}

/// Deliberate: memory first, then the card, whose failure leaves the mark in memory until the next listing.
void CSDCFList::ProtectOne(int didx, int fidx, bool on) {
    Dir(didx).SetProtect(fidx, on);
    DCFItem item = Dir(didx).GetItem(fidx);
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    GetFullPath(path, sizeof path, didx, item);
    (void)PCSDCFFSIO::SetProtect(path, on);
    if (item.getObjectType() != FILE_TYPE_NONE) {
        GetObjectFullPath(path, sizeof path, didx, item);
        (void)PCSDCFFSIO::SetProtect(path, on);
    }
}

bool CSDCFList::GetProtect(char* path) {
    const auto [didx, fidx] = Find(path);
    return Dir(didx).GetItem(fidx).getProtect();
}

void CSDCFList::SetProtect(char* path, bool on) {
    const auto [didx, fidx] = Find(path);
    ProtectOne(didx, fidx, on);
}

void CSDCFList::SetProtect(const std::vector<int>& indices, bool on) {
    VisitIndices(indices, [this, on](int didx, int fidx) { ProtectOne(didx, fidx, on); });
}

void CSDCFList::SetProtectToggle(const std::vector<int>& indices) {
    VisitIndices(indices,
                 [this](int didx, int fidx) { ProtectOne(didx, fidx, !Dir(didx).GetItem(fidx).getProtect()); });
}

void CSDCFList::SetProtectAll(bool on) {
    VisitAll([this, on](int didx, int fidx) { ProtectOne(didx, fidx, on); });
}

bool CSDCFList::GetWifi(char* path) {
    const auto [didx, fidx] = Find(path);
    return Dir(didx).GetItem(fidx).getWifi();
}

void CSDCFList::SetWifi(char* path, bool on) {
    const auto [didx, fidx] = Find(path);
    Dir(didx).SetWifi(fidx, on);
}

void CSDCFList::SetWifiAll(bool on) {
    VisitAll([this, on](int didx, int fidx) { Dir(didx).SetWifi(fidx, on); });
}

// ---- New files and renumbering ----

int CSDCFList::GetNewFileName(char* prefix, char* ext, char* out, int outLen, char* dirSuffix) {
    if (GetCount() > kelp::kMaxTotalFiles) {
        return kelp::kFailure;
    }
    UpdateFirstIndexWithSeriesValue();
    const int index = GetNewFileIndex(dirSuffix);
    if (index < 0) {
        return kelp::kFailure;
    }
    const int result = GetNewFileIndex_SetInfo(index, prefix, ext, out, outLen);
    if (result < 0) {
        return result;
    }
    // Deliberate: in either mode, so that a series switched on later goes on from here. A number that cannot be stored
    // is taken on this card all the same.
    (void)BackupSeriesValue(index);
    SetCurFile(out);
    return result;
}

int CSDCFList::GetNewFileIndex(const char* dirSuffix) {
    int dnum = 0;
    int fnum = 0;
    GetIndexToNum(m_nFirstIndex, &dnum, &fnum);
    dnum = std::max(dnum, kelp::kMinDirNumber);
    const bool directoryFull = fnum >= kelp::kMaxFileNumber;
    fnum = directoryFull ? kelp::kMinFileNumber : fnum + 1;
    dnum = directoryFull ? dnum + 1 : dnum;
    if (dnum > kelp::kMaxDirNumber) {
        return kelp::kNumbersUsedUp;
    }
    const bool otherSuffix = NumberTakenByOther(dnum, dirSuffix);
    if (otherSuffix) {
        fnum = kelp::kMinFileNumber;
        if (++dnum > kelp::kMaxDirNumber) {
            return kelp::kNumbersUsedUp;
        }
    }
    char name[kNewDirNameSize];
    kelp::Compose(name, sizeof name, "%d%s", dnum, dirSuffix);
    if (CheckDirectoryExist(name) != 0 && !directoryFull && !otherSuffix) {
        return TakeIndex(dnum, fnum); // Deliberate: used as it is, listed or not.
    }
    (void)CreateNewDirectory(name); // Deliberate: a failure is only printed; the directory is entered all the same.
    {
        // Deliberate: the directory registry is left alone, so the files in here read as unprotected until they are
        // protected through the list or the card is listed again.
        const vell::ScopedLock lock(&s_listMutex);
        auto dir = std::make_unique<CSDCFDir>(dnum, name);
        m_dirGroup.push_front(dir.get());
        (void)dir.release(); // m_dirGroup owns it
        ++m_nDirCount;
    }
    return TakeIndex(dnum, fnum);
}

/// Whether directories have the number, but none of them the suffix.
bool CSDCFList::NumberTakenByOther(int dnum, const char* dirSuffix) {
    const kelp::TreeIndex& tree = Index();
    const int first = tree.DirectoryOfNumber(m_dirGroup, dnum);
    for (int didx = first; HasDirectory(didx); didx = tree.DirectoryOfNumber(m_dirGroup, dnum, didx + 1)) {
        if (std::strcmp(kelp::From(Dir(didx).m_strDirName, kelp::kDirNumberLength), dirSuffix) == 0) {
            return false;
        }
    }
    return HasDirectory(first);
}

int CSDCFList::TakeIndex(int dnum, int fnum) {
    m_nFirstIndex = GetNumToIndex(dnum, fnum);
    return m_nFirstIndex;
}

int CSDCFList::GetNewFileIndex_SetInfo(int index, char* prefix, char* ext, char* out, int outLen) {
    if (m_dirGroup.empty()) {
        return kelp::kFailure;
    }
    int dnum = 0;
    int fnum = 0;
    GetIndexToNum(index, &dnum, &fnum);
    const auto size = static_cast<std::size_t>(outLen);
    kelp::Compose(out, size, "%s%04d.%s", prefix, fnum, ext);
    // Deliberate: always the front directory, also where the number was chosen for another one that is not listed.
    CSDCFDir& front = *m_dirGroup.front();
    kelp::TreeIndex& tree = Index();
    front.AddHead(dnum, fnum, out, static_cast<unsigned int>(std::time(nullptr)));
    tree.TakeUpFrontFile(front.m_itemGroup.front());
    kelp::Compose(out, size, "%s/%s/%s/%s%04d.%s", m_szBaseURI, kelp::kDcimName, front.m_strDirName, prefix, fnum, ext);
    ++m_nTotalCount;
    return kelp::kSuccess;
}

int CSDCFList::CreateNewDirectory(const char* name) {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    ComposeDirPath(path, name);
    const int result = PCSDCFFSIO::MakeDirectory(path);
    return result == 0 ? result : std::printf("make directory fail\n");
}

int CSDCFList::CheckDirectoryExist(const char* name) {
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    ComposeDirPath(path, name);
    return PCSDCFFSIO::IsDirExist(path) ? 1 : 0;
}

void CSDCFList::ReorderDirNames() {
    char dcim[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Join(dcim, sizeof dcim, {m_szBaseURI, "/", kelp::kDcimName});
    PCSDCFFSIO listing(dcim, true);
    // Deliberate: from the highest number down, so the order is reversed; every entry takes a number, "Camera", entries
    // that are not listed and failed renames included.
    int number = kelp::kMinDirNumber;
    PCSDCFFSIO::PTFile entry;
    while (listing.Read(&entry) >= 0) {
        char from[KELP_DCF_MAX_FILE_NAME_LEN];
        char to[KELP_DCF_MAX_FILE_NAME_LEN];
        kelp::Join(from, sizeof from, {dcim, "/", entry.szName});
        kelp::Compose(to, sizeof to, "%s/%03d%.*s", dcim, number, static_cast<int>(kelp::kDirSuffixLength),
                      kelp::From(entry.szName, kelp::kDirNumberLength));
        if (std::rename(from, to) == -1) {
            std::printf("rename fail\n");
        }
        ++number;
    }
    // Deliberate: also when nothing could be listed or renamed. A failed write is made good by the next new name.
    (void)pref_set_long(kSeriesGroup, kSeriesKey, 0);
    sync();
}
