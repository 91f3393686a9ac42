// Reference: the whole file list in the plainest form: vectors, strings, and every rule written out. One object is one
// state of the world (card, registry, preferences, tree, file list) and can be copied; an operation changes it and
// leaves behind what it logged, printed, called and stored. Ends by exception where the system ends the process.
#ifndef TESTS_MODEL_WHOLE_REFERENCE_H
#define TESTS_MODEL_WHOLE_REFERENCE_H

#include <array>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CSFileListItem.h"
#include "FakePlatform.h"
#include "FileListTypes.h"
#include "MetadataInfo.h"
#include "ReferenceCard.h"

namespace dcftest {

/// The process ends by an assertion.
struct Fatal {
    std::string condition;
    std::string info;
    std::string unit;
    std::string signature;
};

/// The operation ends by the standard out-of-range error.
struct OutOfRange {
    std::string text;
};

/// The client's buffer for a new path.
using NameBuffer = std::array<char, 396>;

/// What the clock says during an operation.
struct Clock {
    std::time_t now = 0;
    std::tm local{};
    bool broken = false; ///< The conversion to local time fails.
};

/// The registered photo collector: none, one that describes most files, one that describes none.
enum class Collector { None, Describing, Failing };

/// What the describing collector says about a file.
bool Describe(const std::string& path, PhotoInfo& info);

struct RefItem {
    RefItem();

    std::string name;
    bool known = false;
    bool protect = false;
    bool wifi = false;
    std::uint32_t time = 0;
    int number = 0;
    int dirNumber = 0;
    int type = -1;
    int object = -1;
    bool described = false;
    PhotoInfo photo{};
};

struct RefDir {
    int number = 0;
    std::string name;
    std::vector<RefItem> items;

    int Count() const {
        return static_cast<int>(items.size());
    }
};

struct RefTree {
    int firstIndex = 0;
    std::vector<RefDir> dirs;
    std::string root;
    int total = 0;
    int curDnum = -1;
    int curFnum = -1;
    int curFidx = -1;
    RefItem curItem;
    int curDidx = -1;
    bool series = false;
    int curPosition = -1;
};

/// What one operation did beside its result.
struct Effects {
    std::vector<std::string> log;
    std::vector<PrefCall> prefCalls;
    std::string printed;
    std::vector<std::string> collected; ///< Paths for which the collector was asked.
    int trees = 0;                      ///< Device properties set: once per tree.
};

/// How often something worth meeting was met.
using Events = std::map<std::string, long>;

class Reference {
public:
    // The world.
    ReferenceCard card;
    std::map<int, std::string> registry;
    std::optional<long> storedSeries;
    bool storeFails = false;
    Collector collector = Collector::None;
    Clock clock;
    Effects effects;
    Events* events = nullptr; ///< Counted where a pointer is set.

    // The file list.
    std::string baseURI = "/mnt/mmc";
    int fileNameMake = 0;
    int folderNameMake = 0;
    int colorMode = 0;
    int imageType = 0;
    bool includeNonDCF = true;
    int curGetAtIdx = -1;
    int listCount = -1;
    bool seriesMode = false;
    std::string filePrefix = "KVR_";
    std::string datePrefix;
    std::string dateFolder;
    std::string stereoPrefix;
    int listupDone = -1;
    std::vector<int> selection;
    std::optional<RefTree> tree;

    // The 47 operations.
    int SetSeriesMode(bool on);
    bool GetSeriesMode();
    int Listup();
    void IncludeNonDCF(bool on);
    int Delete(CSFileListItem* item);
    int DeleteSel();
    int DeleteAll();
    int GetCount();
    int GetAt(int index, CSFileListItem* item);
    int GetFileListIndex(const char* path);
    int GetCurIndex();
    int GetCurrent(CSFileListItem* item);
    int GetFirst(CSFileListItem* item);
    int GetNext(CSFileListItem* item);
    int GetPrev(CSFileListItem* item);
    int GetLast(CSFileListItem* item);
    bool IsLast(CSFileListItem* item);
    void SetFileNameMake(int mode);
    void SetFolderNameMake(int mode);
    void SetFileNameColor(int mode);
    void SetImageType(int type);
    int GetNewFileName(NameBuffer& out, int type);
    int GetLatestFileName(NameBuffer* out, int type);
    int UpdateFirstIndex(bool ignoreSeries);
    std::vector<int> GetSelectIndecies();
    int SetCur(const char* path);
    int SetCurIndex(int index);
    bool IsSel(int index);
    void SetSel(int index, bool on);
    void SelectCancel();
    int GetSelCount();
    int SetWifiFlag(CSFileListItem* item, bool on);
    bool IsWifiFlag(CSFileListItem* item);
    int SetProtect(CSFileListItem* item, bool on);
    int SetProtectSel(bool on);
    int SetProtectAll(bool on);
    int SetProtectSelToggle();
    int SetFilePrefix(const char* prefix);
    int GetInfo(const char* path, CSFileListItem* item);
    int GetAvailNumOfPhoto();
    int GetFileCount(int type);
    int SetCustomBitAll(int bit, bool on);
    int RegisterPhotoMetadataCB(Collector kind);
    int RegisterVideoMetadataCB();
    int AddPhotoMetadata(const char* path, const PhotoInfo& info);
    int GetAtSimply(int index, CSFileListItem* item);
    int RenameDCFFullStorage();

    /// How many files the tree holds, without an effect.
    int FilesInTree() const;
    /// The path of a list position, without an effect.
    std::string PathAt(int position) const;

private:
    // ReferenceTree.cpp: listing, numbers, paths.
    /// The order of what is listed of "DCIM": names of eight characters from the highest down, "Camera" behind them
    /// all.
    static bool StandsBefore(const std::string& a, const std::string& b);
    void ListTree(bool includeCamera);
    void ListDirectory(RefDir& dir, int base);
    bool ReadTimes(std::size_t files);
    void AddItem(RefDir& dir, const std::string& name, int number, bool atHead, std::uint32_t time, int dirNumber);
    int DirIndex(int dnum);
    int DirIndexByName(const std::string& path);
    int FileIndex(const RefDir& dir, int fnum);
    RefItem ItemOf(int didx, int fidx);
    int Count();
    int CountBefore(int didx) const;
    void Numbers(const char* path, int& dnum, int& fnum) const;
    int FirstIndex();
    void ApplySeries();
    int TreeUpdateFirstIndex(bool ignoreSeries);
    long ReadSeries();
    void StoreSeries(int value);
    void Store(long value);
    std::string FilePath(int didx, const RefItem& item) const;
    std::string ObjectPath(int didx, const RefItem& item) const;
    std::string DirPath(const std::string& name) const;
    bool ProtectOf(RefItem& item);

    // ReferenceBrowse.cpp: cursor and conversion.
    int CursorPosition() const;
    void SetCursor(int dnum, int fnum, int didx, const RefItem& item);
    void MoveTo(int didx, int fidx, CSFileListItem* item);
    void SetCurFile(const char* path);
    int TreeGetFirst(CSFileListItem* item);
    int TreeGetLast(CSFileListItem* item);
    int TreeGetNext(CSFileListItem* item);
    int TreeGetPrev(CSFileListItem* item);
    int TreeGetCur(CSFileListItem* item);
    void TreeGetAt(int index, CSFileListItem* item, bool simply);
    void ComposePaths(const RefItem& src, CSFileListItem* item, int didx) const;
    void Convert(RefItem& src, CSFileListItem* item, int didx);
    void Collect(const RefItem& src, const char* path);

    // ReferenceChange.cpp: deletion, protection, new files, renumbering.
    void RemoveFromCard(int didx, const RefItem& item);
    void DropIfEmpty(int didx);
    void TreeDelete(const char* path);
    void TreeDeleteSet(const std::vector<int>& indices);
    void TreeDeleteAll();
    void ProtectOne(int didx, int fidx, bool on);
    void TreeProtect(const std::vector<int>& indices, std::optional<bool> on);
    int TreeGetNewFileName(const std::string& prefix, const std::string& ext, NameBuffer& out,
                           const std::string& suffix);
    int NewFileIndex(const std::string& suffix);
    void ReorderDirNames();

    // Reference.cpp and ReferenceBatch.cpp: the file list's own.
    void Log(const std::string& function, const std::string& message);
    void LogPaths(const std::string& function, const CSFileListItem& item, const std::string& end);
    void NeedItem(const CSFileListItem* item, const std::string& signature) const;
    void NeedTree(const std::string& signature) const;
    std::tm LocalDate();
    void ListAgain();
    void Met(const std::string& event);
};

} // namespace dcftest

#endif
