// PCSDCFFSIO: the only way from the library to the card. One object is one listing of one folder; the static
// operations work on paths. Called by CSDCFList, CSDCFDir and DCFItem. No lock: one listing, one thread.
#ifndef PCSDCFFSIO_H
#define PCSDCFFSIO_H

#include <dirent.h>

#include <cstdint>
#include <vector>

#include "FileListTypes.h"

class KELP_API PCSDCFFSIO {
public:
    /// One entry of a listing.
    struct PTFile {
        char szName[KELP_DCF_MAX_FILE_NAME_LEN]; ///< Name, NUL-terminated, at most 98 characters.
        std::uint32_t nTime;                     ///< Time of the entry, 0 when it cannot be had.
    };

    /// Lists a folder, see Open().
    PCSDCFFSIO(const char* path, bool dirMode);
    PCSDCFFSIO(const PCSDCFFSIO&) = delete;
    PCSDCFFSIO& operator=(const PCSDCFFSIO&) = delete;
    /// Releases the listing.
    virtual ~PCSDCFFSIO();

    /// Lists a folder: directories in descending order with "Camera" last (dirMode), or files from the highest number
    /// down, by name where the path contains "Camera".
    /// @return 0; m_nTotal tells whether the listing could be made (-1 when not).
    int Open(const char* path, bool dirMode);
    /// Hands out the next entry.
    /// @return 0; -1 without a listing; -2 when all entries have been read.
    int Read(PTFile* out);
    /// Releases the listing, entries not yet read included.
    void Close();

    /// Clears (protect) or sets the owner-write bit of a file, then syncs.
    /// @return 0; -1 when the file cannot be examined or changed.
    static int SetProtect(const char* path, bool protect);
    /// Whether the owner-write bit is clear; false for a file that cannot be examined.
    static bool IsProtect(const char* path);
    /// Removes a file or an empty directory. @return 0, or -1 with errno of the second attempt.
    static int RemoveFile(const char* path);
    /// Makes a directory of mode 0775 whatever the umask, and syncs when it was made. Changes the umask of the process
    /// for the length of the call. @return 0, or -1.
    static int MakeDirectory(const char* path);
    /// Whether there is anything at the path.
    static bool IsExist(const char* path);
    /// Whether a directory holds at most its two dot entries, or cannot be opened.
    static bool IsDirEmpty(const char* path);
    /// Whether the path can be opened as a directory.
    static bool IsDirExist(const char* path);

    static int FilterDirEntry(const dirent* entry);
    static int FilterCameraFileEntry(const dirent* entry);
    static int FilterDcfFileEntry(const dirent* entry);
    static int CompareDirEntries(const dirent** a, const dirent** b);
    static int CompareFileEntries(const dirent** a, const dirent** b);

    dirent** m_ppCur;       ///< Copy of m_ppList, taken by Open.
    dirent** m_ppList;      ///< The entries of scandir, null until a listing succeeds.
    std::int32_t m_nTotal;  ///< Number of entries; -1 when the listing failed.
    std::int32_t m_nRemain; ///< Entries not yet read.

    std::vector<std::uint32_t> m_times; ///< Times of the entries in listing order, where they were asked for.
};

#endif
