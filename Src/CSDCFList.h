// CSDCFList: the DCF tree of one storage root: its directories, the numbering, the cursor and what clients receive.
// Made afresh by CSFileList for every listing. DirPathMapper: which path stands for which directory number.
//
// Threads: GetCur, GetFirst, GetLast, GetNext, GetPrev and GetAt hold the unit's mutex for their whole run, metadata
// collectors included. Everything else is unlocked and must not overlap a change of the same tree.
#ifndef CS_DCF_LIST_H
#define CS_DCF_LIST_H

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "CSDCFDir.h"
#include "CSDCFItemList.h"
#include "CSFileListItem.h"
#include "FileListTypes.h"
#include "MetadataInfo.h"
#include "TreeIndex.h"
#include "Visibility.h"

/// Process-wide registry of directory paths by directory number, refilled by every listing.
class KELP_API DirPathMapper {
public:
    /// The instance, made at the first call and never destroyed. The first call must not race with another.
    static DirPathMapper* getInstance();

    void clear();
    /// Whether a (further) directory with this number may be listed. The path is not consulted.
    bool isPossibleAddDirnum(int dnum, const std::string& path);
    /// Registers the path for a number, replacing any earlier one.
    void add(int dnum, const std::string& path);
    /// The path registered for a number. An unknown number is entered with an empty path, which is returned.
    std::string getPath(int dnum);

    static DirPathMapper* m_pInstance;
    std::map<int, std::string> m_mapPath;
};

class KELP_API CSDCFList {
public:
    using PhotoInfoCollector = int (*)(char* path, PhotoInfo* info);
    using VideoInfoCollector = int (*)(char* path, VideoInfo* info);

    CSDCFList();
    CSDCFList(const CSDCFList&) = delete;
    CSDCFList& operator=(const CSDCFList&) = delete;
    virtual ~CSDCFList();

    // The tree and its listing.

    /// @return 0; -1 for null or more than 97 characters, and nothing changes.
    int SetBaseURI(const char* uri);
    /// Makes "DCIM" under the storage root. @return 0, whatever came of it.
    int CreateBaseDirectory();
    /// Builds the tree; run once on a fresh object. @return 0.
    int Listup(bool includeCamera);
    /// The directory-name rule.
    bool CheckDirNameSyntax(const std::string& name);
    /// 99 for a name that begins with "Camera", else the number in the first three characters.
    int GetDnum(const char* name);
    /// Position of the directory that a file path names, by name; -1 when there is none.
    int GetDidx(const char* path);
    /// Position of the first directory with a number. Fatal without one ("cannot find dir index = %d").
    int GetDirIndex(int dnum);
    /// Number of files; refreshes m_nTotalCount.
    int GetCount();
    /// Number of files of one type.
    int GetFileCount(eFileType type);

    // Numbering. A number index is directory number x 100000 + file number.

    void GetIndexToNum(int index, int* dnum, int* fnum);
    int GetNumToIndex(int dnum, int fnum);
    /// Reads the two numbers out of a path by position; leaves them alone when an argument is null.
    void GetNum(const char* path, int* dnum, int* fnum);
    /// List position of a path; -1 when its directory is not listed. Fatal for an unknown file number.
    int GetListIndex(const char* path);
    /// The number index of the newest file; computed, not stored.
    int GetFirstIndex();
    int UpdateFirstIndex(bool ignoreSeries);
    void UpdateFirstIndexWithSeriesValue();
    long ReadSeriesValue();
    int BackupSeriesValue(int value);
    int SetSeriesMode(bool on);
    bool GetSeriesMode();

    // Paths of an item in the directory at position didx. len is the size of the buffer in bytes.

    /// Fatal when the directory has no name ("need check didx").
    void GetFullPath(char* out, int len, int didx, DCFItem& item);
    /// Path of the companion file; writes nothing for an item without one.
    void GetObjectFullPath(char* out, int len, int didx, DCFItem& item);

    // The cursor. Items are the caller's; a null one is fatal ("now pItem == NULL(%d) !!!").

    int GetCurIndex();
    int SetCurItem(int dnum, int fnum, int didx, DCFItem item);
    int SetCurFile(const char* path);
    int GetCur(CSFileListItem* pItem);
    int GetFirst(CSFileListItem* pItem);
    int GetLast(CSFileListItem* pItem);
    int GetNext(CSFileListItem* pItem);
    int GetPrev(CSFileListItem* pItem);
    int GetAt(int index, CSFileListItem* pItem);
    int GetAtSimply(int index, CSFileListItem* pItem);
    int GetInfo(char* path, CSFileListItem* pItem);
    int SetObject(const char* path, eFileType type);
    void ConvertFileItem(DCFItem& src, CSFileListItem* pItem, int didx);
    void ConvertFileItemSimply(DCFItem& src, CSFileListItem* pItem, int didx);

    // Deletion: file before companion file, file before directory. Nothing reports a failure of the card.

    /// Deletes one file by path, unless it is protected. The cursor stays. Fatal for a file that is not listed.
    void Delete(char* path);
    /// Deletes the unprotected files at list positions, given in ascending order. A directory that this empties makes
    /// the walk pass over the one that follows.
    void Delete(const std::vector<int>& indices);
    /// Removes every file from the card, protected or not; the tree stays as it was.
    void DeleteAll();

    // Protection, in memory first and then on the card, and the Wi-Fi mark, in memory only.

    bool GetProtect(char* path);
    void SetProtect(char* path, bool on);
    /// List positions in ascending order.
    void SetProtect(const std::vector<int>& indices, bool on);
    /// Flips each item by itself. List positions in ascending order.
    void SetProtectToggle(const std::vector<int>& indices);
    void SetProtectAll(bool on);
    bool GetWifi(char* path);
    void SetWifi(char* path, bool on);
    void SetWifiAll(bool on);

    // New files and renumbering.

    /// Takes the next file number and enters the file. @param out receives the path, outLen bytes.
    /// @return 0; -1 when the numbers or the 99,999 files are used up.
    int GetNewFileName(char* prefix, char* ext, char* out, int outLen, char* dirSuffix);
    /// The number index of the next file; makes its directory. @return -9999 when the directory numbers are used up.
    int GetNewFileIndex(const char* dirSuffix);
    /// Enters a file into the front directory. @return 0; -1 without a directory.
    int GetNewFileIndex_SetInfo(int index, char* prefix, char* ext, char* out, int outLen);
    /// @return 0, or the number of characters of the failure text on standard output.
    int CreateNewDirectory(const char* name);
    /// @return 1 when the directory can be opened, else 0.
    int CheckDirectoryExist(const char* name);
    /// Renumbers the directories on the card from 100 on, the highest first, and resets the series value. The tree
    /// stays as it was.
    void ReorderDirNames();

    // Metadata.

    static int RegisterPhotoMetadataCB(PhotoInfoCollector collector);
    static int RegisterVideoMetadataCB(VideoInfoCollector collector);
    int AddPhotoMetadata(const char* path, PhotoInfo& info);

    int m_nFirstIndex; ///< Number index of the newest file.

    std::deque<CSDCFDir*> m_dirGroup; ///< The directories in list order, owned.
    int m_nDirCount;                  ///< Entries of m_dirGroup.
    char m_szBaseURI[100];            ///< Storage root, at most 97 characters.
    int m_nTotalCount;                ///< Files over all directories, as of the last count.

    // The cursor.
    int m_nCurDnum;
    int m_nCurFnum;
    int m_CurFileIndex; ///< Position of the file inside its directory.
    DCFItem m_CurItem;
    int m_nCurDidx; ///< Position of the directory in m_dirGroup.

    bool m_bSeriesMode;

    int m_nCurListIndex; ///< Position of the cursor's file in the whole list.

    static PhotoInfoCollector m_PhotoInfoCollector;
    static VideoInfoCollector m_VideoInfoCollector; ///< Never stored, so always null.

private:
    // Not part of the exported class.
    KELP_LOCAL CSDCFDir& Dir(int didx);
    KELP_LOCAL bool HasDirectory(int didx);
    KELP_LOCAL void AddDirectory(int dnum, const char* name, const char* fullPath);
    struct Place {
        int didx;
        int fidx;
    };
    KELP_LOCAL Place Find(const char* path);
    KELP_LOCAL kelp::TreeIndex& Index();
    KELP_LOCAL int FindFilledForward(int didx);
    KELP_LOCAL int FindFilledBackward(int didx);
    KELP_LOCAL int MoveTo(int didx, int fidx, CSFileListItem* pItem);
    KELP_LOCAL void ComposePaths(DCFItem& src, CSFileListItem* pItem, int didx);
    KELP_LOCAL void CollectMetadata(DCFItem& src, char* path);
    KELP_LOCAL void CollectVideo(CSDCFDir& dir, int fidx, char* path);
    KELP_LOCAL void RemoveFromCard(DCFItem& item, int didx);
    KELP_LOCAL void DropDirectoryIfEmpty(int didx);
    KELP_LOCAL void ComposeDirPath(char (&out)[KELP_DCF_MAX_FILE_NAME_LEN], const char* name);
    KELP_LOCAL void ProtectOne(int didx, int fidx, bool on);
    template <typename Visit>
    KELP_LOCAL void VisitIndices(const std::vector<int>& indices, Visit visit);
    template <typename Visit>
    KELP_LOCAL void VisitAll(Visit visit);
    KELP_LOCAL bool NumberTakenByOther(int dnum, const char* dirSuffix);
    KELP_LOCAL int TakeIndex(int dnum, int fnum);

    kelp::TreeIndex m_index; ///< Derived from the directories; asked through Index().
};

#endif
