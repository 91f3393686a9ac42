/// @file
/// The library's entry: makes, hands out and destroys the one file list of the process.
#ifndef CBI_FILE_LIST_MANAGER_H
#define CBI_FILE_LIST_MANAGER_H

#include "FileListTypes.h"
#include "ISFileList.h"

/// The factory of the file list. It has no instances. The manager owns the list; its operations take no lock
/// and are the controlling thread's (see ISFileList).
class KELP_API CBIFileListManager {
public:
    CBIFileListManager() = delete;

    /// Makes the file list. An existing one is destroyed first, so its pointer becomes invalid.
    /// @param type accepted and ignored.
    /// @return 0.
    static int Create(eFileNumberType type);

    /// Hands out the file list, which stays the manager's.
    /// @return the list, valid until the next Create or Destroy.
    /// Fatal without a list: "filelist is not created!!".
    static ISFileList* GetFileList();

    /// Destroys the file list, if there is one.
    /// @return 0 in both cases.
    static int Destroy();

    /// Chooses another storage root than "/mnt/mmc", used from the next ISFileList::Listup on.
    /// @param uri the root without a trailing slash, at most 97 characters; copied.
    ///        Paths are cut at 98 characters: a root of more than 71 characters (66 where "Camera" is listed) is taken,
    ///        but its files can no longer be told apart by their paths: operations may then be fatal, or mean another
    ///        file. Do not use one.
    /// @return 0; -1 without a list, for null and for a longer root, and then nothing changes.
    static int SetBaseURI(const char* uri);

    static ISFileList* m_pFileList; ///< The only file list of the process, null without one.
};

#endif
