// One folder under "DCIM"; see the header.
#include "CSDCFDir.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#include "BoundedText.h"
#include "DcfRules.h"
#include "PCSDCFFSIO.h"
#include "TreeIndex.h"

#define KELP_UNIT "CSDCFDir"
#include "Diagnostics.h"

namespace {

DCFItem MakeItem(int dnum, int fnum, const char* name, unsigned int time) {
    DCFItem item;
    item.setFileNum(fnum);
    item.setFileTime(time);
    item.setDirNum(static_cast<short>(dnum));
    item.setFileName(name); // judges the length by the directory number, which therefore comes first
    return item;
}

bool IsCompanionType(int type) {
    return type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
}

/// Sorting costs as much as this many walks, so it has to wait for them: a folder that changes between any two
/// look-ups is better off walked.
constexpr int kWalksWorthSorting = 16;
constexpr int kAbsent = -1;

} // namespace

CSDCFDir::CSDCFDir(int dnum, const char* name)
    : m_nDnum(static_cast<std::int16_t>(dnum)), m_bDescending(true), m_nWalks(0) {
    SetDirName(name);
}

CSDCFDir::~CSDCFDir() {
    NoteChange();
}

void CSDCFDir::SetDirName(const char* pDirName) {
    KELP_ASSERT_AS(pDirName != nullptr, "pDirName != NULL", "pDirName != NULL", "cannot be null");
    KELP_ASSERT(strlen(pDirName) < KELP_DCF_MAX_FILE_NAME_LEN, "too long dir name = d"); // Deliberate: as it stands.
    kelp::CopyText(m_strDirName, pDirName);
    NoteChange();
}

void CSDCFDir::NoteChange() {
    m_nWalks = 0;
    m_byNumber.clear();
    kelp::TreeIndex::NoteChange();
}

// The scan.

int CSDCFDir::Listup(char* root, int dnum, int base) { // NOLINT(readability-non-const-parameter): as clients know it
    char path[KELP_DCF_MAX_FILE_NAME_LEN];
    kelp::Join(path, sizeof path, {root, "/", kelp::kDcimName, "/", m_strDirName});
    PCSDCFFSIO listing(path, false);

    const bool camera = kelp::StartsWith(m_strDirName, kelp::kCameraName);
    int count = 0;
    int previous = 0;
    PCSDCFFSIO::PTFile file;
    while (listing.Read(&file) >= 0) {
        const int type = camera ? CheckFileNameSyntaxNonDCF(file.szName) : CheckFileNameSyntax(file.szName);
        const int number =
            camera ? kelp::ReadNumber<kelp::kCameraFileNumberLength>(file.szName + kelp::kCameraFileNumberOffset)
                   : kelp::ReadNumber<kelp::kFileNumberLength>(file.szName + kelp::kFileNumberOffset);
        if (type < 0) {
            continue;
        }
        if (number != previous) {
            AddFile(dnum, number, file.szName, &count, file.nTime);
            previous = number;
        } else if (IsCompanionType(type) && !m_itemGroup.empty()) {
            AddObject(static_cast<eFileType>(type));
        } else {
            // Deliberate: the first file of a number is the item, a further one that is no companion stays unlisted. A
            // number 0 that comes first equals the start value and is dropped too.
            continue;
        }
        if (base + count > kelp::kMaxTotalFiles) {
            break; // Deliberate: the file that crosses the limit stays listed.
        }
    }
    return count;
}

int CSDCFDir::CheckFileNameSyntax(char* name) {
    if (name == nullptr || strnlen(name, kelp::kFileNameLength + 1) != kelp::kFileNameLength) {
        return FILE_TYPE_NONE;
    }
    MakeUpperCase(name, true);
    // Deliberate: the four characters before the number and the one behind it are free, as cards in the field need it.
    if (!kelp::AreDigits(name + kelp::kFileNumberOffset, kelp::kFileNumberLength)) {
        return FILE_TYPE_NONE;
    }
    return kelp::TypeOfExtension(name + kelp::kExtensionOffset);
}

int CSDCFDir::CheckFileNameSyntaxNonDCF(char* name) {
    if (name == nullptr) {
        return FILE_TYPE_NONE;
    }
    const std::size_t length = std::strlen(name);
    if (length < kelp::kMinCameraFileName || length > kelp::kMaxCameraFileName) {
        return FILE_TYPE_NONE;
    }
    MakeUpperCase(name, false);
    // Deliberate: the last three letters alone count. No dot is looked for, and what stands in the number's place is
    // read the standard way, blanks and a sign included.
    const eFileType type = kelp::TypeOfExtension(name + length - kelp::kExtensionLength);
    const bool movie = type == FILE_TYPE_MP4 || type == FILE_TYPE_AVI;
    return movie ? FILE_TYPE_NONE : type;
}

int CSDCFDir::MakeUpperCase(char* str, bool limit) {
    const std::size_t length = std::strlen(str);
    if (limit && length > kelp::kFileNameLength) {
        return static_cast<int>(length);
    }
    // By hand: the locale must not decide which names a card has.
    std::transform(str, str + length, str,
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; });
    return static_cast<int>(length);
}

void CSDCFDir::AddFile(int dnum, int fnum, char* name, int* pCount, unsigned int time) {
    KELP_ASSERT_AS(pCount != nullptr, "pCount != NULL", "pCount != NULL", "check!!");
    ++*pCount;
    const DCFItem item = MakeItem(dnum, fnum, name, time);
    m_bDescending = m_itemGroup.empty() || (m_bDescending && fnum < m_itemGroup.back().m_nFileNum);
    m_itemGroup.push_back(item);
    NoteChange();
}

void CSDCFDir::AddObject(eFileType type) {
    m_itemGroup.back().setObjectType(type);
    NoteChange();
}

// Counts.

int CSDCFDir::GetCount() {
    return static_cast<int>(m_itemGroup.size());
}

int CSDCFDir::GetCountByType(eFileType type) {
    // Deliberate: a companion counts with the item that it belongs to, and an item once.
    return static_cast<int>(std::count_if(m_itemGroup.begin(), m_itemGroup.end(), [type](const DCFItem& item) {
        return item.m_eFileType == type || item.m_eObjectType == type;
    }));
}

short CSDCFDir::GetDnum() {
    return m_nDnum;
}

// Items by position.

int CSDCFDir::GetFidx(int fnum) {
    // The first item of the number, as in a walk from the front.
    const int fidx = m_bDescending ? FindInDescending(fnum) : FindInAnyOrder(fnum);
    KELP_ASSERT_AS(fidx != kAbsent, "it != m_itemGroup.end()", "it != m_itemGroup.end()", "cannot found fnum = %d",
                   fnum);
    return fidx;
}

/// Where every number is there, it stands as far behind the highest as it is smaller, and as far before the lowest as
/// it is larger. Missing numbers can only make both ways shorter, so the search lies between.
int CSDCFDir::FindInDescending(int fnum) const {
    if (m_itemGroup.empty() || fnum > m_itemGroup.front().m_nFileNum || fnum < m_itemGroup.back().m_nFileNum) {
        return kAbsent;
    }
    const auto last = static_cast<std::int64_t>(m_itemGroup.size()) - 1;
    // Between 0 and last, so that they are positions again.
    const auto highest =
        static_cast<std::ptrdiff_t>(std::min(last, std::int64_t{m_itemGroup.front().m_nFileNum} - fnum));
    const auto lowest = static_cast<std::ptrdiff_t>(
        std::max<std::int64_t>(0, last - (std::int64_t{fnum} - m_itemGroup.back().m_nFileNum)));
    const auto found = std::partition_point(m_itemGroup.begin() + lowest, m_itemGroup.begin() + highest,
                                            [fnum](const DCFItem& item) { return item.m_nFileNum > fnum; });
    return found->m_nFileNum == fnum ? static_cast<int>(found - m_itemGroup.begin()) : kAbsent;
}

int CSDCFDir::FindInAnyOrder(int fnum) {
    if (m_byNumber.empty() && ++m_nWalks > kWalksWorthSorting) {
        for (const DCFItem& item : m_itemGroup) {
            m_byNumber.emplace_back(item.m_nFileNum, static_cast<int>(m_byNumber.size()));
        }
        std::sort(m_byNumber.begin(), m_byNumber.end());
    }
    if (!m_byNumber.empty()) {
        const auto first = std::lower_bound(m_byNumber.begin(), m_byNumber.end(), NumberAt(fnum, 0));
        return first != m_byNumber.end() && first->first == fnum ? first->second : kAbsent;
    }
    const auto first = std::find_if(m_itemGroup.begin(), m_itemGroup.end(),
                                    [fnum](const DCFItem& item) { return item.m_nFileNum == fnum; });
    return first != m_itemGroup.end() ? static_cast<int>(first - m_itemGroup.begin()) : kAbsent;
}

DCFItem CSDCFDir::GetItem(int nIndex) {
    const auto index = static_cast<unsigned int>(nIndex); // a negative position lies beyond the folder too
    KELP_ASSERT(m_itemGroup.size() > index, "vector index overflow = %d", nIndex);
    return m_itemGroup[index];
}

DCFItem CSDCFDir::GetFirstItem() {
    return m_itemGroup.front();
}

DCFItem CSDCFDir::GetLastItem() {
    return m_itemGroup.back();
}

void CSDCFDir::SetProtect(int index, bool on) {
    m_itemGroup[static_cast<std::size_t>(index)].setProtect(on);
}

void CSDCFDir::SetWifi(int index, bool on) {
    m_itemGroup[static_cast<std::size_t>(index)].setWifi(on);
}

void CSDCFDir::AddHead(int dnum, int fnum, char* name, unsigned int time) {
    const DCFItem item = MakeItem(dnum, fnum, name, time);
    m_bDescending = m_itemGroup.empty() || (m_bDescending && fnum > m_itemGroup.front().m_nFileNum);
    m_itemGroup.push_front(item);
    NoteChange();
}

void CSDCFDir::AddHeadObject(eFileType type) {
    m_itemGroup.front().setObjectType(type);
    NoteChange();
}

void CSDCFDir::RemoveItem(int index) {
    m_itemGroup.erase(m_itemGroup.begin() + index);
    NoteChange();
}

void CSDCFDir::RemoveItems(const std::vector<int>& indices) {
    const bool ascending = std::adjacent_find(indices.begin(), indices.end(), std::greater_equal<>()) == indices.end();
    if (!ascending) {
        // To the letter, one removal after the other; a position that holds no item by then removes nothing.
        std::for_each(indices.rbegin(), indices.rend(), [this](int index) {
            if (index >= 0 && index < GetCount()) {
                RemoveItem(index);
            }
        });
        return;
    }
    // The same in one pass, since every position means the one before any removal.
    auto doomed = indices.begin();
    int position = 0;
    const auto isDoomed = [&](const DCFItem&) {
        const bool found = doomed != indices.end() && *doomed == position;
        doomed += found ? 1 : 0;
        ++position;
        return found;
    };
    m_itemGroup.erase(std::remove_if(m_itemGroup.begin(), m_itemGroup.end(), std::ref(isDoomed)), m_itemGroup.end());
    NoteChange();
}

void CSDCFDir::RemoveAllItems() {
    auto kept = m_itemGroup.begin();
    for (DCFItem& item : m_itemGroup) {
        if (item.getProtect()) {
            *kept++ = item;
        }
    }
    m_itemGroup.erase(kept, m_itemGroup.end());
    NoteChange();
}

void CSDCFDir::setPhotoData(int index, const PhotoInfo& info) {
    m_itemGroup.at(static_cast<std::size_t>(index)).setPhotoData(info);
}

void CSDCFDir::setVideoData(int index, const VideoInfo& info) {
    m_itemGroup.at(static_cast<std::size_t>(index)).setVideoData(info);
}
