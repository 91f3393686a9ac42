// The façade; see the header. Sections: life, core, browsing, selection and batches, naming and capacity.
#include "CSFileList.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <string>

#include "BoundedText.h"
#include "CSDCFList.h"
#include "DcfRules.h"
#include "LocalDate.h"
#include "Results.h"

#define KELP_UNIT "CSFileList"
#include "Diagnostics.h"

namespace {

constexpr const char* kDefaultRoot = "/mnt/mmc";
constexpr char kFixedFolderSuffix[] = "PHOTO";
constexpr const char* kStandardPrefix = "KVR_";
constexpr const char* kOptionalPrefix = "_KVR";
constexpr std::size_t kMaxPrefixLength = 8;
constexpr int kUnknown = -1;
constexpr int kRenumbered = 1;
constexpr int kNewNameSize = 396; // of the buffer that a client hands in for a new path

// Capacity. Deliberate: clients know these figures; they are not to be computed from anything, and where a list or a
// series value is beyond the last number what is left falls below 0.
constexpr int kMaxListed = 100000;
constexpr int kLastPlentyDirNumber = 997;
constexpr int kPlenty = 20000;
constexpr std::size_t kSuffixInPath = 9; // behind the storage root: "/DCIM/" and the directory number

// Waiting for a listing on another thread.
constexpr int kMaxWaits = 200;
constexpr unsigned kWaitMicroseconds = 100000;

// Values of listupDone.
constexpr std::int32_t kNeverListed = -1;
constexpr std::int32_t kListing = 0;
constexpr std::int32_t kListed = 1;

/// listupDone is a plain field that another thread may poll while a listing runs.
void Publish(std::int32_t& listupDone, std::int32_t state) {
    std::atomic_ref<std::int32_t>(listupDone).store(state, std::memory_order_release);
}

std::int32_t Peek(std::int32_t& listupDone) {
    return std::atomic_ref<std::int32_t>(listupDone).load(std::memory_order_acquire);
}

} // namespace

/// The missing test for a tree must not become a wild access.
#define KELP_ASSERT_TREE() KELP_ASSERT(m_pDCF != NULL, "now m_pDCF is NULL")

/// Logs the two paths of an item, which is the client's own where the tree left it alone.
#define KELP_LOG_PATHS(operation, pItem, end)                                                                          \
    KELP_LOG("%s called m_strURI = %.99s m_strObject = %.99s" end, operation, (pItem)->m_strURI, (pItem)->m_strObject)

// ---- Life ----

CSFileList::CSFileList()
    : m_szBaseURI(), m_eFileNameMake(), m_eFolderNameMake(), m_eColorMode(), m_eImageType(), m_bIncludeNonDCF(true),
      m_nCurGetAtIdx(kUnknown), m_nList(kUnknown), m_szDefaultPath(), m_szDefaultFolder(), m_szDefaultPrefix(),
      m_bSeriesMode(false), m_szFilePrefix(), m_szDatePrefix(), m_szDateFolder(), m_sz3DPrefix(), m_pDCF(nullptr),
      listupDone(kNeverListed) {
    kelp::CopyText(m_szBaseURI, kDefaultRoot);
    kelp::CopyText(m_szDefaultPath, kDefaultRoot);
    kelp::CopyText(m_szDefaultFolder, kFixedFolderSuffix);
    kelp::CopyText(m_szDefaultPrefix, kStandardPrefix);
    CSFileList::SetFileNameMake(FILE_NAME_MAKE_FIXED);
    CSFileList::SetFolderNameMake(FILE_NAME_MAKE_FIXED);
    CSFileList::SetFileNameColor(FILE_LIST_COLOR_MODE_STANDARD);
    CSFileList::SetImageType(FILE_LIST_IMAGE_TYPE_ORDINARY);
}

CSFileList::~CSFileList() {
    delete m_pDCF;
}

// ---- Core ----

int CSFileList::SetBaseURI(const char* uri) {
    KELP_LOG("start");
    if (uri == nullptr || std::strlen(uri) > kelp::kMaxRootLength) {
        return kelp::kFailure;
    }
    kelp::CopyText(m_szBaseURI, uri);
    return kelp::kSuccess;
}

int CSFileList::Listup() {
    Publish(listupDone, kListing);
    KELP_LOG("start");
    KELP_ASSERT(m_pDCF == NULL, "Now m_pDCF is not NULL");
    m_pDCF = new CSDCFList;
    m_pDCF->SetSeriesMode(m_bSeriesMode);
    m_pDCF->SetBaseURI(m_szBaseURI);
    const int scanned = m_pDCF->Listup(m_bIncludeNonDCF);
    m_nList = scanned < 0 ? scanned : m_pDCF->GetCount();
    UpdateFirstIndex(false);
    CSFileListItem first;
    GetFirst(&first);
    Publish(listupDone, kListed);
    KELP_LOG("end");
    return m_nList;
}

int CSFileList::GetCount() {
    KELP_ASSERT_TREE();
    const int count = m_pDCF->GetCount();
    KELP_ASSERT_AS(count == m_nList, "m_pDCF->GetCount() == m_nList", "m_pDCF->GetCount() == m_nList",
                   "m_nList need to check");
    return count;
}

int CSFileList::GetFileCount(eFileType type) {
    KELP_LOG("start");
    return m_pDCF == nullptr ? kelp::kFailure : m_pDCF->GetFileCount(type);
}

void CSFileList::IncludeNonDCF(bool on) {
    m_bIncludeNonDCF = on;
}

int CSFileList::SetSeriesMode(bool on) {
    KELP_LOG("start");
    if (m_pDCF == nullptr) {
        return kelp::kFailure; // Deliberate: the mode is not stored, so the first listing goes without it.
    }
    m_bSeriesMode = on;
    m_pDCF->SetSeriesMode(on);
    return UpdateFirstIndex(!on);
}

bool CSFileList::GetSeriesMode() {
    KELP_LOG("start");
    return m_bSeriesMode;
}

int CSFileList::RegisterPhotoMetadataCB(int (*collector)(char*, PhotoInfo*)) {
    return CSDCFList::RegisterPhotoMetadataCB(collector);
}

int CSFileList::RegisterVideoMetadataCB(int (*collector)(char*, VideoInfo*)) {
    return CSDCFList::RegisterVideoMetadataCB(collector);
}

int CSFileList::AddPhotoMetadata(const char* path, PhotoInfo& info) {
    KELP_ASSERT_TREE();
    return m_pDCF->AddPhotoMetadata(path, info);
}

// ---- Browsing ----
//
// Deliberate: the guards and the log lines are uneven, as clients and their logs know them. A null item is fatal for
// GetFirst and GetCurrent and gives -1 from the other moves; of the moves GetFirst alone logs a "start", and at the end
// of the list GetPrev and GetLast log an "end" where GetNext does not; a missing tree gives -1 here and -6 there.
//
// Deliberate: the cached position follows the moves, SetCur and GetCurIndex alone. IsLast and GetNewFileName move the
// tree's cursor and leave it, Delete and GetAt leave both.

int CSFileList::GetFirst(CSFileListItem* pItem) {
    KELP_LOG("start");
    KELP_ASSERT_ITEM(pItem);
    if (m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    const int nRet = m_pDCF->GetFirst(pItem);
    // Deliberate: the newline does not end this line, so it and the comma reach the log.
    KELP_LOG_PATHS("GetFirst", pItem, "\n,");
    KELP_ASSERT(nRet >= 0, "GetFirst must success");
    GetCurIndex();
    return nRet;
}

int CSFileList::GetNext(CSFileListItem* pItem) {
    if (pItem == nullptr || m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    const int nRet = m_pDCF->GetNext(pItem);
    KELP_LOG_PATHS("GetNext", pItem, "");
    if (nRet < 0) {
        return kelp::kFailure;
    }
    GetCurIndex();
    return nRet;
}

int CSFileList::GetPrev(CSFileListItem* pItem) {
    if (pItem == nullptr || m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    const int nRet = m_pDCF->GetPrev(pItem);
    KELP_LOG_PATHS("GetPrev", pItem, "");
    if (nRet < 0) {
        KELP_LOG("%s end", "GetPrev");
        return kelp::kFailure;
    }
    GetCurIndex();
    return nRet;
}

int CSFileList::GetLast(CSFileListItem* pItem) {
    if (pItem == nullptr || m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    const int nRet = m_pDCF->GetLast(pItem);
    KELP_LOG_PATHS("GetLast", pItem, "");
    if (nRet < 0) {
        KELP_LOG("%s end", "GetLast");
        return kelp::kFailure;
    }
    GetCurIndex();
    return nRet;
}

int CSFileList::GetCurrent(CSFileListItem* pItem) {
    KELP_ASSERT_ITEM(pItem);
    if (m_nList < 1) {
        return kelp::kFailure;
    }
    KELP_ASSERT_TREE();
    const int nRet = m_pDCF->GetCur(pItem);
    KELP_LOG_PATHS("GetCurrent", pItem, "");
    KELP_ASSERT(nRet >= 0, "GetCur must success");
    GetCurIndex();
    return nRet;
}

int CSFileList::GetAt(int nIdx, CSFileListItem* pItem) {
    KELP_LOG("++++++++++++++++++++ start index = %d", nIdx);
    KELP_ASSERT(nIdx >= 0, "index cannot be negative");
    if (m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    KELP_ASSERT_ITEM(pItem);
    (void)m_pDCF->GetAt(nIdx, pItem); // Deliberate: 0 whatever the tree says.
    return kelp::kSuccess;
}

int CSFileList::GetAtSimply(int nIdx, CSFileListItem* pItem) {
    KELP_LOG("++++++++++++++++++++ start index = %d", nIdx);
    KELP_ASSERT(nIdx >= 0, "index cannot be negative");
    if (m_nList < 1 || m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    KELP_ASSERT_ITEM(pItem);
    (void)m_pDCF->GetAtSimply(nIdx, pItem); // Deliberate: 0 whatever the tree says.
    return kelp::kSuccess;
}

bool CSFileList::IsLast(CSFileListItem* pItem) {
    KELP_LOG("start");
    if (pItem == nullptr || m_pDCF == nullptr) {
        return false;
    }
    CSFileListItem last;
    (void)m_pDCF->GetLast(&last); // Deliberate: leaves the tree's cursor on the last file; clients rely on it.
    return std::strncmp(last.m_strURI, pItem->m_strURI, sizeof last.m_strURI) == 0;
}

int CSFileList::SetCur(char* path) {
    KELP_LOG("start");
    if (m_pDCF == nullptr) {
        return kelp::kFailure;
    }
    const int nRet = m_pDCF->SetCurFile(path);
    GetCurIndex();
    return nRet;
}

int CSFileList::SetCurIndex(int nIdx) {
    KELP_LOG("start");
    CSFileListItem item;
    const int nRet = GetAtSimply(nIdx, &item);
    (void)SetCur(item.m_strURI); // Deliberate: the answer is that of the look-up.
    return nRet;
}

int CSFileList::GetCurIndex() {
    KELP_ASSERT_TREE();
    m_nCurGetAtIdx = m_pDCF->GetCurIndex();
    KELP_LOG("m_nCurGetAtIdx = %d", m_nCurGetAtIdx);
    return m_nCurGetAtIdx;
}

int CSFileList::GetFileListIndex(char* path) {
    KELP_LOG("start");
    return m_pDCF == nullptr ? kelp::kNoTree : m_pDCF->GetListIndex(path);
}

int CSFileList::GetInfo(char* path, CSFileListItem* pItem) {
    KELP_LOG("start");
    if (path == nullptr) {
        return kelp::kNoPath;
    }
    if (pItem == nullptr) {
        return kelp::kNoItem;
    }
    return m_pDCF == nullptr ? kelp::kNoTree : m_pDCF->GetInfo(path, pItem);
}

int CSFileList::UpdateFirstIndex(bool ignoreSeries) {
    KELP_LOG("start");
    return m_pDCF == nullptr ? kelp::kNoTree : m_pDCF->UpdateFirstIndex(ignoreSeries);
}

// ---- Selection and batches ----

bool CSFileList::IsSel(int nIdx) {
    KELP_LOG("start");
    return Selected().Contains(nIdx);
}

void CSFileList::SetSel(int nIdx, bool on) {
    KELP_LOG("start");
    kelp::PositionSet& selected = Selected();
    if (selected.Contains(nIdx) == on) {
        return;
    }
    // Deliberate: positions stay as they were selected, whatever becomes of the list.
    if (on) {
        selected.Insert(nIdx);
        m_vecSel.push_back(nIdx);
    } else {
        selected.Erase(nIdx);
        std::erase(m_vecSel, nIdx);
    }
}

/// The selection as a set. It grows and shrinks with m_vecSel here, and matches it anew when that was emptied.
kelp::PositionSet& CSFileList::Selected() {
    m_selected.Match(m_vecSel);
    return m_selected;
}

void CSFileList::SelectCancel() {
    KELP_LOG("start");
    m_vecSel.clear();
}

int CSFileList::GetSelCount() {
    KELP_LOG("start");
    return static_cast<int>(m_vecSel.size());
}

std::vector<int> CSFileList::GetSelectIndecies() {
    KELP_LOG("start");
    return m_vecSel;
}

int CSFileList::Delete(CSFileListItem* pItem) {
    KELP_LOG("start");
    KELP_ASSERT_ITEM(pItem);
    if (pItem->m_bProtect) {
        return kelp::kFailure; // Deliberate: the item's own mark. A file that the tree keeps as protected gives 0.
    }
    KELP_ASSERT_TREE();
    m_pDCF->Delete(pItem->m_strURI);
    m_vecSel.clear();
    m_nList = m_pDCF->GetCount();
    sync();
    return kelp::kSuccess;
}

int CSFileList::DeleteSel() {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    std::sort(m_vecSel.begin(), m_vecSel.end());
    m_pDCF->Delete(m_vecSel);
    const int smallest = m_vecSel.at(0); // Deliberate: nothing selected is the client's error and throws.
    m_nList = m_pDCF->GetCount();
    if (m_nList >= 1) {
        // Deliberate: from the first position selected, whether or not its file was kept.
        SetCurIndex(smallest > 0 ? smallest - 1 : 0);
    }
    m_vecSel.clear();
    sync();
    return kelp::kSuccess;
}

int CSFileList::DeleteAll() {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    m_pDCF->DeleteAll();
    sync();
    m_vecSel.clear();
    ListAgain();
    UpdateFirstIndex(false);
    KELP_LOG("%s end", "DeleteAll");
    return kelp::kSuccess;
}

void CSFileList::ListAgain() {
    delete m_pDCF;
    m_pDCF = nullptr;
    Listup();
}

int CSFileList::SetProtect(CSFileListItem* pItem, bool on) {
    KELP_LOG("start");
    KELP_ASSERT_ITEM(pItem);
    KELP_ASSERT_TREE();
    m_pDCF->SetProtect(pItem->m_strURI, on);
    return kelp::kSuccess; // Deliberate: whatever the card says, here and in the batches.
}

int CSFileList::SetProtectSel(bool on) {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    std::sort(m_vecSel.begin(), m_vecSel.end());
    m_pDCF->SetProtect(m_vecSel, on);
    m_vecSel.clear();
    return kelp::kSuccess;
}

int CSFileList::SetProtectAll(bool on) {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    m_pDCF->SetProtectAll(on);
    return kelp::kSuccess;
}

int CSFileList::SetProtectSelToggle() {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    std::sort(m_vecSel.begin(), m_vecSel.end());
    m_pDCF->SetProtectToggle(m_vecSel);
    m_vecSel.clear();
    return kelp::kSuccess;
}

int CSFileList::SetWifiFlag(CSFileListItem* pItem, bool on) {
    KELP_LOG("start");
    KELP_ASSERT_ITEM(pItem);
    KELP_ASSERT_TREE();
    m_pDCF->SetWifi(pItem->m_strURI, on);
    return kelp::kSuccess;
}

bool CSFileList::IsWifiFlag(CSFileListItem* pItem) {
    KELP_LOG("start");
    return pItem != nullptr && pItem->m_bWifi; // Deliberate: as the item was filled; the tree is not asked.
}

int CSFileList::SetCustomBitAll(int /*bit*/, bool on) {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    m_pDCF->SetWifiAll(on); // Deliberate: the Wi-Fi mark is the only custom bit.
    return kelp::kSuccess;
}

// ---- Naming and capacity ----

void CSFileList::SetFileNameMake(eFILE_NAME_MAKE mode) {
    KELP_LOG("start");
    m_eFileNameMake = mode;
}

void CSFileList::SetFolderNameMake(eFILE_NAME_MAKE mode) {
    KELP_LOG("start");
    m_eFolderNameMake = mode;
}

void CSFileList::SetFileNameColor(eFileListColorMode mode) {
    KELP_LOG("start");
    m_eColorMode = mode;
    char prefix[kMaxPrefixLength + 1];
    kelp::CopyText(prefix, mode == FILE_LIST_COLOR_MODE_STANDARD ? kStandardPrefix : kOptionalPrefix);
    (void)SetFilePrefix(prefix); // Deliberate: replaces the client's own prefix. Always fits.
}

void CSFileList::SetImageType(eFileListImageType type) {
    KELP_LOG("start");
    m_eImageType = type;
}

int CSFileList::SetFilePrefix(char* prefix) {
    KELP_LOG("start");
    if (prefix == nullptr) {
        return kelp::kFailure;
    }
    if (std::strlen(prefix) > kMaxPrefixLength) {
        return kelp::kTooLong;
    }
    kelp::CopyText(m_szFilePrefix, prefix); // Deliberate: up to eight, although four alone make a DCF name.
    return kelp::kSuccess;
}

int CSFileList::GetNewFileName(char* out, int type) {
    KELP_LOG("start");
    if (m_pDCF == nullptr || out == nullptr) {
        return kelp::kFailure;
    }
    std::string extension = fileTypeToString(static_cast<eFileType>(type));
    const bool stereoscopic = type == FILE_TYPE_MP4 && m_eImageType == FILE_LIST_IMAGE_TYPE_STEREOSCOPIC;
    char* prefix = MakeFilePrefix(stereoscopic);
    char fixedSuffix[sizeof kFixedFolderSuffix];
    kelp::CopyText(fixedSuffix, kFixedFolderSuffix);
    char* suffix = m_eFolderNameMake == FILE_NAME_MAKE_FIXED ? fixedSuffix : MakeDateFolder();
    const int nRet = extension.empty() ? kelp::kFailure
                                       : m_pDCF->GetNewFileName(prefix, extension.data(), out, kNewNameSize, suffix);
    // Deliberate: the lines and the new count come with a refusal too.
    KELP_LOG("filename = %s foldername = %s", prefix, suffix);
    KELP_LOG("new filename = %.*s", kNewNameSize, out);
    m_nList = m_pDCF->GetCount();
    return nRet;
}

/// The prefix of the next file name, in the buffer that belongs to the naming mode.
char* CSFileList::MakeFilePrefix(bool stereoscopic) {
    if (m_eFileNameMake == FILE_NAME_MAKE_FIXED) {
        if (stereoscopic) {
            kelp::CopyText(m_sz3DPrefix, "S3D_"); // Deliberate: filled and never used.
        }
        return m_szFilePrefix;
    }
    const kelp::LocalDate date = kelp::ReadLocalDate();
    if (m_eColorMode == FILE_LIST_COLOR_MODE_OPTIONAL && !stereoscopic) {
        // One character for the month: 1 to 9, then A to C, as hexadecimal digits happen to be.
        kelp::Compose(m_szDatePrefix, sizeof m_szDatePrefix, "_%X%02u", unsigned{date.month}, unsigned{date.day});
    } else {
        kelp::Compose(m_szDatePrefix, sizeof m_szDatePrefix, "%02u%02u", unsigned{date.month}, unsigned{date.day});
    }
    return m_szDatePrefix;
}

char* CSFileList::MakeDateFolder() {
    const kelp::LocalDate date = kelp::ReadLocalDate();
    kelp::Compose(m_szDateFolder, sizeof m_szDateFolder, "_%02u%02u", unsigned{date.month}, unsigned{date.day});
    return m_szDateFolder;
}

int CSFileList::GetLatestFileName(char* out, eFileType type) {
    KELP_LOG("start");
    if (m_pDCF == nullptr || out == nullptr) {
        return kelp::kFailure;
    }
    if (type == FILE_TYPE_NONE) {
        return kelp::kNoType;
    }
    CSFileListItem item;
    GetFirst(&item);
    // Deliberate: any type is recorded as the companion's; one that has no companion extension leaves the path as it
    // is.
    if (m_pDCF->SetObject(item.m_strURI, type) == 0) {
        const bool companion = type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
        std::string path(item.m_strURI);
        if (companion && path.length() >= kelp::kExtensionLength) {
            path.replace(path.length() - kelp::kExtensionLength, kelp::kExtensionLength, fileTypeToString(type));
        }
        path.copy(out, path.length()); // Deliberate: no terminator; the caller's buffer is zeroed.
    }
    return kelp::kSuccess;
}

int CSFileList::GetAvailNumOfPhoto() {
    KELP_LOG("start");
    std::int32_t done = Peek(listupDone);
    for (int wait = 0; done != kListed && wait < kMaxWaits; ++wait) {
        usleep(kWaitMicroseconds);
        done = Peek(listupDone);
        KELP_LOG("Listing... %d", done);
    }
    KELP_ASSERT_AS(done == kListed, "listupDone == 1", "listupDone == 1", "listup is not done");
    KELP_ASSERT_TREE();
    int dnum = 0;
    int fnum = 0;
    m_pDCF->GetIndexToNum(m_pDCF->m_nFirstIndex, &dnum, &fnum);
    if (m_nList >= 1) {
        if (dnum == kelp::kMaxDirNumber && !LastDirectoryFits()) {
            KELP_LOG("return 0");
            return 0;
        }
        if (m_nList == kelp::kMaxTotalFiles) {
            KELP_LOG("total count is almost max = %d", m_nList);
        }
    }
    const int nCount = kMaxListed - m_nList;
    const int nName = dnum > kLastPlentyDirNumber ? kelp::kMaxFileNumber - fnum : kPlenty;
    if (nName < nCount) {
        KELP_LOG("return nName = %d", nName);
        return nName;
    }
    KELP_LOG("return nCount = %d", nCount);
    return nCount;
}

/// Whether the last directory's suffix is one that the folder-name mode makes; else no new name can go there.
bool CSFileList::LastDirectoryFits() {
    CSFileListItem item;
    GetAtSimply(0, &item);
    const char* suffix = kelp::From(item.m_strURI, std::strlen(m_pDCF->m_szBaseURI) + kSuffixInPath);
    return kelp::StartsWith(suffix, m_eFolderNameMake == FILE_NAME_MAKE_FIXED ? kFixedFolderSuffix : "_");
}

int CSFileList::RenameDCFFullStorage() {
    KELP_LOG("start");
    KELP_ASSERT_TREE();
    m_pDCF->ReorderDirNames();
    ListAgain(); // Deliberate: the selection stays, though its positions mean other files now.
    return kRenumbered;
}
