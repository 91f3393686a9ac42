// The façade; see the header. Sections: life, core, browsing, selection and batches, naming and capacity.
#include "CSFileList.h"

#include <atomic>
#include <cstddef>
#include <cstring>

#include "BoundedText.h"
#include "CSDCFList.h"
#include "Results.h"

#define KELP_UNIT "CSFileList"
#include "Diagnostics.h"

namespace {

constexpr const char* kDefaultRoot = "/mnt/mmc";
constexpr const char* kDefaultFolderSuffix = "PHOTO";
constexpr const char* kStandardPrefix = "KVR_";
constexpr const char* kOptionalPrefix = "_KVR";
constexpr std::size_t kMaxRootLength = 97;
constexpr std::size_t kMaxPrefixLength = 8;
constexpr int kUnknown = -1;

// Values of listupDone.
constexpr std::int32_t kNeverListed = -1;
constexpr std::int32_t kListing = 0;
constexpr std::int32_t kListed = 1;

/// listupDone is a plain field that another thread may poll while a listing runs.
void Publish(std::int32_t& listupDone, std::int32_t state) {
    std::atomic_ref<std::int32_t>(listupDone).store(state, std::memory_order_release);
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
    kelp::CopyText(m_szDefaultFolder, kDefaultFolderSuffix);
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
    if (uri == nullptr || std::strlen(uri) > kMaxRootLength) {
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
        return kelp::kFailure;
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

bool CSFileList::IsSel(int /*nIdx*/) {
    KELP_LOG("start");
    return false;
}

void CSFileList::SetSel(int /*nIdx*/, bool /*on*/) {
    KELP_LOG("start");
}

void CSFileList::SelectCancel() {
    KELP_LOG("start");
}

int CSFileList::GetSelCount() {
    KELP_LOG("start");
    return kelp::kFailure;
}

std::vector<int> CSFileList::GetSelectIndecies() {
    KELP_LOG("start");
    return {};
}

int CSFileList::Delete(CSFileListItem* /*pItem*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::DeleteSel() {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::DeleteAll() {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::SetProtect(CSFileListItem* /*pItem*/, bool /*on*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::SetProtectSel(bool /*on*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::SetProtectAll(bool /*on*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::SetProtectSelToggle() {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::SetWifiFlag(CSFileListItem* /*pItem*/, bool /*on*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

bool CSFileList::IsWifiFlag(CSFileListItem* /*pItem*/) {
    KELP_LOG("start");
    return false;
}

int CSFileList::SetCustomBitAll(int /*bit*/, bool /*on*/) {
    KELP_LOG("start");
    return kelp::kFailure;
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
    (void)SetFilePrefix(prefix); // always fits
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
    kelp::CopyText(m_szFilePrefix, prefix);
    return kelp::kSuccess;
}

int CSFileList::GetNewFileName(char* /*out*/, int /*type*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::GetLatestFileName(char* /*out*/, eFileType /*type*/) {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::GetAvailNumOfPhoto() {
    KELP_LOG("start");
    return kelp::kFailure;
}

int CSFileList::RenameDCFFullStorage() {
    KELP_LOG("start");
    return kelp::kFailure;
}
