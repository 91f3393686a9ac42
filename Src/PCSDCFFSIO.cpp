// Listings of folders and changes of files on the card; see the header.
#include "PCSDCFFSIO.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "BoundedText.h"
#include "DcfRules.h"
#include "EntryTimes.h"
#include "Results.h"

namespace {

constexpr mode_t kOwnerWrite = 0200;
constexpr mode_t kDirectoryMode = 0775;
constexpr int kDotEntries = 2;

constexpr int kNoListing = -1;
constexpr int kAllRead = -2;

bool HasLength(const dirent& entry, std::size_t length) {
    return strnlen(entry.d_name, length + 1) == length;
}

/// The order of a listing of "DCIM": the eight-character names from the highest down, "Camera" behind them all. Pair by
/// pair this is CompareDirEntries, but for names that sort behind "Camera" (a folder "Pictures"): with those the pairs
/// alone run in a circle, and a sort by them may leave a lower directory in front of a higher one.
int OrderDirEntries(const dirent** a, const dirent** b) {
    const bool cameraA = std::strcmp((*a)->d_name, kelp::kCameraName) == 0;
    const bool cameraB = std::strcmp((*b)->d_name, kelp::kCameraName) == 0;
    return cameraA || cameraB ? static_cast<int>(cameraA) - static_cast<int>(cameraB)
                              : PCSDCFFSIO::CompareDirEntries(a, b);
}

/// CompareFileEntries for a folder whose filter lets nothing but twelve characters through: a third of what the library
/// itself takes for a listing went into asking for the lengths again in each comparison.
int OrderDcfFileEntries(const dirent** a, const dirent** b) {
    const char* nameA = (*a)->d_name;
    const char* nameB = (*b)->d_name;
    const int byNumber =
        std::memcmp(nameB + kelp::kFileNumberOffset, nameA + kelp::kFileNumberOffset, kelp::kFileNumberLength);
    return byNumber != 0
               ? byNumber
               : std::memcmp(nameA + kelp::kExtensionOffset, nameB + kelp::kExtensionOffset, kelp::kExtensionLength);
}

} // namespace

// A listing.

PCSDCFFSIO::PCSDCFFSIO(const char* path, bool dirMode)
    : m_ppCur(nullptr), m_ppList(nullptr), m_nTotal(0), m_nRemain(0) {
    Open(path, dirMode);
}

PCSDCFFSIO::~PCSDCFFSIO() {
    Close();
}

int PCSDCFFSIO::Open(const char* path, bool dirMode) {
    Close();
    if (dirMode) {
        m_nTotal = scandir(path, &m_ppList, FilterDirEntry, OrderDirEntries);
    } else {
        const bool camera = std::strstr(path, kelp::kCameraName) != nullptr;
        m_nTotal = camera ? scandir(path, &m_ppList, FilterCameraFileEntry, CompareFileEntries)
                          : scandir(path, &m_ppList, FilterDcfFileEntry, OrderDcfFileEntries);
    }
    m_nRemain = m_nTotal;
    m_ppCur = m_ppList;

    m_times.clear();
    if (!dirMode && m_nTotal > 0) {
        try {
            m_times = kelp::ReadEntryTimes(path, m_ppList, m_nTotal);
        } catch (const std::bad_alloc&) {
            m_times.clear(); // a listing without times is better than none
        }
    }
    return 0;
}

int PCSDCFFSIO::Read(PTFile* out) {
    if (m_ppList == nullptr) {
        return kNoListing;
    }
    if (m_nRemain < 1) {
        return kAllRead;
    }
    const int position = m_nTotal - m_nRemain;
    kelp::CopyText(out->szName, m_ppList[position]->d_name);
    out->nTime = m_times.empty() ? 0 : m_times[static_cast<std::size_t>(position)];
    std::free(m_ppList[position]);
    --m_nRemain;
    return 0;
}

void PCSDCFFSIO::Close() {
    if (m_ppList == nullptr) {
        return;
    }
    for (int position = m_nTotal - m_nRemain; position < m_nTotal; ++position) {
        std::free(m_ppList[position]);
    }
    std::free(static_cast<void*>(m_ppList));
    m_ppList = nullptr;
    m_ppCur = nullptr;
}

// Deliberate: filters look at the name alone; whether an entry is a file or a folder is not asked.

int PCSDCFFSIO::FilterDirEntry(const dirent* entry) {
    return HasLength(*entry, kelp::kDirNameLength) || std::strcmp(entry->d_name, kelp::kCameraName) == 0 ? 1 : 0;
}

int PCSDCFFSIO::FilterCameraFileEntry(const dirent* entry) {
    return HasLength(*entry, kelp::kCameraFileNameLength) ? 1 : 0;
}

int PCSDCFFSIO::FilterDcfFileEntry(const dirent* entry) {
    return HasLength(*entry, kelp::kFileNameLength) ? 1 : 0;
}

int PCSDCFFSIO::CompareDirEntries(const dirent** a, const dirent** b) {
    if (HasLength(**a, kelp::kDirNameLength) && HasLength(**b, kelp::kDirNameLength)) {
        return std::strcmp((*b)->d_name, (*a)->d_name);
    }
    return std::strcmp((*a)->d_name, (*b)->d_name);
}

int PCSDCFFSIO::CompareFileEntries(const dirent** a, const dirent** b) {
    if (!HasLength(**a, kelp::kFileNameLength) || !HasLength(**b, kelp::kFileNameLength)) {
        return std::strcmp((*a)->d_name, (*b)->d_name);
    }
    const int byNumber = std::strncmp((*b)->d_name + kelp::kFileNumberOffset, (*a)->d_name + kelp::kFileNumberOffset,
                                      kelp::kFileNumberLength);
    if (byNumber != 0) {
        return byNumber;
    }
    return std::strcmp((*a)->d_name + kelp::kExtensionOffset, (*b)->d_name + kelp::kExtensionOffset);
}

// Single files and folders.

int PCSDCFFSIO::SetProtect(const char* path, bool protect) {
    struct stat status = {};
    if (stat(path, &status) != 0) {
        return kelp::kFailure;
    }
    const mode_t mode = protect ? status.st_mode & ~kOwnerWrite : status.st_mode | kOwnerWrite;
    const int result = chmod(path, mode);
    sync(); // Deliberate: also behind a change that failed.
    return result;
}

bool PCSDCFFSIO::IsProtect(const char* path) {
    struct stat status = {};
    // Deliberate: a file that cannot be examined is not protected.
    return stat(path, &status) == 0 && (status.st_mode & kOwnerWrite) == 0;
}

int PCSDCFFSIO::RemoveFile(const char* path) {
    const int result = unlink(path);
    // Deliberate: whatever the cause of the first failure; an empty folder goes with the second attempt.
    return result != -1 ? result : std::remove(path);
}

int PCSDCFFSIO::MakeDirectory(const char* path) {
    const mode_t previous = umask(0);
    const int result = mkdir(path, kDirectoryMode);
    (void)umask(previous); // gives back the 0 set above
    if (result == 0) {
        sync();
    }
    return result;
}

bool PCSDCFFSIO::IsExist(const char* path) {
    struct stat status = {};
    return stat(path, &status) == 0;
}

bool PCSDCFFSIO::IsDirEmpty(const char* path) {
    DIR* folder = opendir(path);
    if (folder == nullptr) {
        return true; // Deliberate: with it a directory that is gone from the card leaves the list.
    }
    // Deliberate: entries are counted, their names not looked at.
    int entries = 0;
    while (entries <= kDotEntries && readdir(folder) != nullptr) {
        ++entries;
    }
    closedir(folder);
    return entries <= kDotEntries;
}

bool PCSDCFFSIO::IsDirExist(const char* path) {
    DIR* folder = opendir(path);
    if (folder == nullptr) {
        return false;
    }
    closedir(folder);
    return true;
}
