/// @file
/// The interface of the file list: the pictures and movies on one memory card, laid out by the DCF rule.
///
/// A client calls CBIFileListManager::Create, obtains the list, calls Listup() once and then browses,
/// selects, changes and names files through these operations.
///
/// Terms used below:
/// - *list position*: 0-based position of a file in the whole list. Directories stand from the highest
///   number down, "Camera" last; files from the highest file number down, in "Camera" by name.
/// - *cursor*: the file that browsing stands on.
/// - *path*: full path of a file as an item carries it: storage root, "/DCIM/", directory, "/", file name.
/// - *fatal*: a programming error. A backtrace is printed, two lines go to the log and to standard output, the
/// condition
///   and an info text, and the process aborts. The text in quotes is the info text.
/// - *look-up*: finding a listed file again by the two numbers in its path. On a card where two directories, or two
///   files of "Camera", share a number, and with paths that were cut, this may meet another file or be fatal
///   ("cannot find dir index = %d", "cannot found fnum = %d"). Every operation that fills an item with its metadata
///   makes it (GetAtSimply() does not), Listup() for the first file too.
/// - *controlling thread*: the list takes no lock that would make it safe for concurrent change. All operations
///   belong to one thread at a time, the controlling thread. The one exception is GetAvailNumOfPhoto(), which
///   other threads may call while the controlling thread is inside Listup(). Any other overlap is the client's error.
///
/// The order of the virtual functions is part of the binary interface.
#ifndef IS_FILE_LIST_H
#define IS_FILE_LIST_H

#include <vector>

#include "CSFileListItem.h"
#include "FileListTypes.h"
#include "MetadataInfo.h"

/// The file list. Obtained from CBIFileListManager, which owns it.
///
/// Items are the client's: an operation fills the record that it is given and keeps no reference to it. Paths that are
/// handed in are read during the call and not kept; an operation that takes a char* does not write to it unless its
/// parameter is called out. Every operation is the controlling thread's, GetAvailNumOfPhoto() alone excepted.
class KELP_API ISFileList {
public:
    /// For the class that implements the interface; a client obtains its list from CBIFileListManager.
    ISFileList() = default;
    ISFileList(const ISFileList&) = delete;
    ISFileList& operator=(const ISFileList&) = delete;
    /// Destroys the list. The manager's business: see CBIFileListManager::Destroy().
    virtual ~ISFileList();

    /// Switches series numbering, in which new file numbers continue from card to card, and recomputes the
    /// first index (the number index of the newest file).
    /// @param on true: the first index is raised to the stored series value; false: it is the card's own.
    /// @return the first index, 0 or more.
    /// @retval -1 before Listup(); the mode is then not stored.
    virtual int SetSeriesMode(bool on) = 0;

    /// Tells the numbering mode.
    /// @return whether series numbering is on; false from the start.
    virtual bool GetSeriesMode() = 0;

    /// Lists the card and places the cursor on the first file. A missing "DCIM" is made. A card that cannot be
    /// read gives an empty list.
    /// @return the number of files, 0 or more.
    /// @warning Fatal when the card is listed already: "Now m_pDCF is not NULL".
    virtual int Listup() = 0;

    /// Chooses whether the next Listup() also lists the "Camera" folder, whose names are not DCF names.
    /// @param on true, as it is from the start: "Camera" is listed; false: it is passed over.
    virtual void IncludeNonDCF(bool on) = 0;

    /// Deletes one file and its companion file, and its directory when nothing is left in it; empties the
    /// selection. A file that cannot be removed from the card is taken out of the list all the same. The cursor is not
    /// moved: it may then stand on the file that moved up, or on none.
    /// @param item a filled item; its m_strURI and m_bProtect are used.
    /// @retval 0 the file left the list; also for a file that was protected since the item was filled, and stays.
    /// @retval -1 the item is marked as protected, and nothing changes.
    /// @warning Fatal for a null item ("now pItem == NULL(%d) !!!"), before Listup() ("now m_pDCF is NULL") and for a
    /// path that the list does not hold ("cannot find dir index = %d", "cannot found fnum = %d").
    virtual int Delete(CSFileListItem* item) = 0;

    /// Deletes the selected files but for the protected ones, moves the cursor to the position before the first
    /// selected one and empties the selection. A file whose protection cannot be read counts as unprotected.
    ///
    /// A directory with files in the list that holds nothing more on the card leaves the list during the walk (emptied
    /// by this call or by somebody else before it, or one that cannot be opened or read). The directory behind it is
    /// then passed over, and positions meant for it delete the files at those positions of the directory after that.
    /// Select within one directory at a time, the last one first, which is safe as long as every directory in front of
    /// it can be opened and read; or use Delete(), where every file has to be the right one.
    /// @retval 0 always.
    /// @throws std::out_of_range with an empty selection: the one exception that an operation throws of its own.
    /// @warning Fatal before Listup() ("now m_pDCF is NULL") and when the first selected position lies beyond the list
    /// afterwards ("invalid").
    virtual int DeleteSel() = 0;

    /// Deletes all files, protected ones included, and lists the card again. Empties the selection.
    /// @retval 0 always; what could not be deleted is in the new list.
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int DeleteAll() = 0;

    /// Counts the files.
    /// @return the number of files in the list, 0 or more.
    /// @warning Fatal before Listup() ("now m_pDCF is NULL") and when the list changed behind the façade's back
    /// ("m_nList need to check").
    virtual int GetCount() = 0;

    /// Fills an item for a list position. The cursor stays.
    /// @param nIdx list position, 0 to GetCount() - 1.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the item was filled.
    /// @retval -1 with an empty list or before Listup(); the item is left alone.
    /// @warning Fatal for a negative position ("index cannot be negative"), one at or beyond the count ("invalid") and
    /// a null item ("now pItem == NULL(%d) !!!").
    virtual int GetAt(int nIdx, CSFileListItem* item) = 0;

    /// Finds the list position of a path.
    /// @param path path of a listed file.
    /// @return its list position, 0 or more.
    /// @retval -1 its directory is not in the list; also for null and for a path of fewer than 24 characters.
    /// @retval -6 before Listup().
    /// @warning Fatal for a file number that the directory does not hold: "cannot found fnum = %d".
    virtual int GetFileListIndex(char* path) = 0;

    /// Tells where the cursor stands.
    /// @return the list position of the cursor, 0 or more.
    /// @retval -1 before the first file was ever reached.
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int GetCurIndex() = 0;

    /// Fills an item for the file at the cursor. After a deletion that is the file that moved up to its position.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the item was filled.
    /// @retval -1 with an empty list or before Listup(); the item is left alone.
    /// @warning Fatal for a null item ("now pItem == NULL(%d) !!!"), when the cursor stands on file number 0 outside
    /// "Camera" ("need to setting cur file"), when its directory is gone ("GetCur must success"), and when its position
    /// is ("vector index overflow = %d").
    virtual int GetCurrent(CSFileListItem* item) = 0;

    /// Moves the cursor to the first file.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the cursor moved, and the item was filled.
    /// @retval -1 with an empty list or before Listup(); the item is left alone.
    /// @warning Fatal for a null item: "now pItem == NULL(%d) !!!".
    virtual int GetFirst(CSFileListItem* item) = 0;

    /// Moves the cursor to the next file.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the cursor moved, and the item was filled.
    /// @retval -1 at the end of the list, for a null item, with an empty list or before Listup(); the item and the
    ///         cursor stay as they were.
    /// @warning Fatal when the cursor stands on file number 0 outside "Camera": "invalid cursor".
    virtual int GetNext(CSFileListItem* item) = 0;

    /// Moves the cursor to the previous file.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the cursor moved, and the item was filled.
    /// @retval -1 at the start of the list, for a null item, with an empty list or before Listup(); the item and the
    ///         cursor stay as they were.
    /// @warning Fatal when the cursor stands on file number 0 outside "Camera" ("invalid cursor"), and when deletions
    /// left it beyond its directory ("vector index overflow = %d").
    virtual int GetPrev(CSFileListItem* item) = 0;

    /// Moves the cursor to the last file.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the cursor moved, and the item was filled.
    /// @retval -1 for a null item, with an empty list or before Listup(); the item is left alone.
    virtual int GetLast(CSFileListItem* item) = 0;

    /// Compares an item's path with the last file's. Moves the cursor to the last file and leaves it there, but the
    /// cached position (the one that a move stores) stays.
    /// @param item a filled item; its m_strURI is used.
    /// @return whether they are the same; false for a null item and before Listup().
    virtual bool IsLast(CSFileListItem* item) = 0;

    /// Chooses how new file names are made.
    /// @param mode 0: from the file prefix; else: from the local date.
    virtual void SetFileNameMake(eFILE_NAME_MAKE mode) = 0;

    /// Chooses how new folder names are made.
    /// @param mode 0: with the suffix "PHOTO"; else: from the local date.
    virtual void SetFolderNameMake(eFILE_NAME_MAKE mode) = 0;

    /// Chooses the colour mode, which replaces the file prefix, one of the client's own included.
    /// @param mode 0: the prefix is "KVR_"; else: "_KVR". 1 also selects the one-character month of date-made names.
    virtual void SetFileNameColor(eFileListColorMode mode) = 0;

    /// Chooses the image type of new files.
    /// @param type 1: a date-made name of an MP4 file keeps the two-digit month in colour mode 1. Else without effect.
    virtual void SetImageType(eFileListImageType type) = 0;

    /// Takes the next file number, makes a directory for it where one is needed, enters the file into the list and
    /// hands out the path under which the client is to write it. The file stands in the list before it is on the card:
    /// a client that cannot write it takes it back with GetCurrent() and Delete(). The cursor moves to it; the series
    /// value is stored, in series mode or not. A directory that cannot be made shows as "make directory fail" on
    /// standard output and is no error here. So does one that is there and cannot be opened just then: it is entered a
    /// second time, and what is in the first one can be looked up only after a new listing. Files in a new directory
    /// read as unprotected until they are protected through the list or the card is listed again.
    /// @param out receives the path, NUL-terminated; 396 bytes.
    /// @param type an eFileType value with an extension.
    /// @retval 0 the number is taken, and the path is in out.
    /// @retval -1 before Listup(), for a null out, when the numbers are used up or the list holds more than 99,999
    ///         files, for a type without an extension, and when the directory is on the card but the list holds none.
    /// @warning Fatal unless the file prefix has four characters ("more than dcf filename length = %d"); the number and
    /// its directory are then taken already.
    virtual int GetNewFileName(char* out, int type) = 0;

    /// Gives the path of the first file with another extension, for a companion file, and records the companion in
    /// the list: with any type but FILE_TYPE_NONE, on the front file of the first directory of that number. Moves the
    /// cursor to the first file.
    /// @param out receives the path without a terminator; at least 99 bytes, zeroed by the caller.
    /// @param type FILE_TYPE_SRW or FILE_TYPE_MPO; another type leaves the path as it is.
    /// @retval 0 the path is in out.
    /// @retval -1 before Listup() or for a null out.
    /// @retval -200 for FILE_TYPE_NONE; nothing is written.
    /// @warning Fatal with an empty list: "cannot find dir index = %d".
    virtual int GetLatestFileName(char* out, eFileType type) = 0;

    /// Recomputes the first index, the number index (directory number x 100000 + file number) of the newest file.
    /// @param ignoreSeries true: from the card alone; false: raised to the stored series value in series mode.
    /// @return the first index, 0 or more.
    /// @retval -6 before Listup().
    virtual int UpdateFirstIndex(bool ignoreSeries) = 0;

    /// Copies the selection.
    /// @return list positions in the order in which they were selected.
    virtual std::vector<int> GetSelectIndecies() = 0;

    /// Moves the cursor to a path.
    /// @param path path of a listed file.
    /// @retval 0 the cursor moved.
    /// @retval -1 before Listup().
    /// @warning Fatal for null ("cannot be null!") and for a file that is not in the list ("cannot find dir index =
    /// %d", "cannot found fnum = %d").
    virtual int SetCur(char* path) = 0;

    /// Moves the cursor to a list position.
    /// @param nIdx list position, 0 to GetCount() - 1.
    /// @retval 0 the cursor moved.
    /// @retval -1 before Listup().
    /// @warning Fatal as GetAt(), and with an empty list ("cannot find dir index = %d").
    virtual int SetCurIndex(int nIdx) = 0;

    /// Asks for a position of the selection.
    /// @param nIdx list position; any value may be asked for.
    /// @return whether it is selected.
    virtual bool IsSel(int nIdx) = 0;

    /// Selects or deselects a list position. Positions are not shifted when the list changes.
    /// @param nIdx list position, 0 to GetCount() - 1; not checked here.
    /// @param on true: select it; false: take it out of the selection.
    virtual void SetSel(int nIdx, bool on) = 0;

    /// Empties the selection.
    virtual void SelectCancel() = 0;

    /// Counts the selection.
    /// @return the number of selected positions, 0 or more.
    virtual int GetSelCount() = 0;

    /// Sets or clears the Wi-Fi transfer mark of an item's file; it lives in memory only.
    /// @param item a filled item; its m_strURI is used, its own mark stays as it is.
    /// @param on true: mark it; false: take the mark off.
    /// @retval 0 always.
    /// @warning Fatal for a null item ("now pItem == NULL(%d) !!!"), before Listup() ("now m_pDCF is NULL") and for a
    /// path that the list does not hold.
    virtual int SetWifiFlag(CSFileListItem* item, bool on) = 0;

    /// Reads the Wi-Fi mark that an item carries since it was filled; the list is not asked.
    /// @param item a filled item.
    /// @return its mark; false for a null item.
    virtual bool IsWifiFlag(CSFileListItem* item) = 0;

    /// Protects or unprotects an item's file and its companion file: in the list first, then on the card.
    /// @param item a filled item; its m_strURI is used, its own m_bProtect stays as it is.
    /// @param on true: protect; false: take the protection off.
    /// @retval 0 always, also when the card refuses: look at the file to know.
    /// @warning Fatal for a null item ("now pItem == NULL(%d) !!!"), before Listup() ("now m_pDCF is NULL") and for a
    /// path that the list does not hold.
    virtual int SetProtect(CSFileListItem* item, bool on) = 0;

    /// Protects or unprotects the selected files and empties the selection. Positions outside the list are ignored.
    /// @param on true: protect; false: take the protection off.
    /// @retval 0 always, as SetProtect().
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int SetProtectSel(bool on) = 0;

    /// Protects or unprotects every file.
    /// @param on true: protect; false: take the protection off.
    /// @retval 0 always, as SetProtect().
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int SetProtectAll(bool on) = 0;

    /// Flips the protection of each selected file and empties the selection. Positions outside the list are ignored.
    /// @retval 0 always, as SetProtect().
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int SetProtectSelToggle() = 0;

    /// Sets the prefix of new DCF file names.
    /// @param prefix four characters for a DCF name (GetNewFileName() is fatal with any other number), at most eight;
    ///        copied.
    /// @retval 0 the prefix is taken.
    /// @retval -1 for null; the old prefix stays.
    /// @retval -2 for more than eight characters; the old prefix stays.
    virtual int SetFilePrefix(char* prefix) = 0;

    /// Fills an item for a path. The cursor stays.
    /// @param path path of a listed file.
    /// @param item filled, with metadata if any is stored.
    /// @retval 0 the item was filled.
    /// @retval -1 for a path of 99 or more characters; the item is filled all the same.
    /// @retval -2 for a null path.
    /// @retval -3 for a null item.
    /// @retval -6 before Listup(). The null ones are found first.
    /// @warning Fatal for a file that is not in the list ("cannot find dir index = %d", "cannot found fnum = %d").
    virtual int GetInfo(char* path, CSFileListItem* item) = 0;

    /// Tells how many more files the numbering allows; waits for a Listup() on another thread, up to 20 seconds. The
    /// one operation that a thread other than the controlling one may call, while that one is inside Listup().
    /// @return the number of files, at most 20,000; 0 when directory 999 is in
    ///         use and its suffix is not one that the folder-name mode makes; below 0 when the list or a stored series
    ///         value is beyond the last number.
    /// @warning Fatal when that listing does not end by then ("listup is not done"), and before Listup().
    virtual int GetAvailNumOfPhoto() = 0;

    /// Counts the files of a type, companion files counted with the file that they belong to.
    /// @param type any value; one that no file has gives 0.
    /// @return the number of files, 0 or more.
    /// @retval -1 before Listup().
    virtual int GetFileCount(eFileType type) = 0;

    /// Sets or clears the Wi-Fi mark of every file.
    /// @param bit ignored.
    /// @param on true: mark them; false: take the marks off.
    /// @retval 0 always.
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int SetCustomBitAll(int bit, bool on) = 0;

    /// Registers the photo metadata collector, shared by all lists of the process.
    ///
    /// It is called at the first conversion of each file but MP4, with the file's path and a zeroed record, and returns
    /// 0 when it filled the record. The item of that conversion does not carry the metadata yet, every later one does.
    /// Any other result stores nothing, and the collector is asked again. It runs on the thread that browses, with the
    /// list's lock held, and must not call back into the list.
    /// @param collector the client's function; null unregisters it. The path and the record are the list's, for the
    ///        time of the call.
    /// @retval 1 always.
    virtual int RegisterPhotoMetadataCB(int (*collector)(char*, PhotoInfo*)) = 0;

    /// Accepts a video metadata collector and keeps it nowhere: movies receive no metadata of their own accord.
    /// @param collector never called.
    /// @retval 1 always.
    virtual int RegisterVideoMetadataCB(int (*collector)(char*, VideoInfo*)) = 0;

    /// Stores metadata for a listed file; the next conversions carry it.
    /// @param path path of a listed file.
    /// @param info copied.
    /// @retval 0 always.
    /// @warning Fatal before Listup() ("now m_pDCF is NULL") and for a file that is not in the list.
    virtual int AddPhotoMetadata(const char* path, PhotoInfo& info) = 0;

    /// Fills an item's two paths and its time for a list position, nothing else. No metadata, no look at the card, no
    /// move of the cursor.
    /// @param nIdx list position, 0 to GetCount() - 1.
    /// @param item its m_strURI, m_strObject and m_nFileTime are filled; the rest stays as it was.
    /// @return as GetAt().
    /// @warning Fatal as GetAt().
    virtual int GetAtSimply(int nIdx, CSFileListItem* item) = 0;

    /// Renumbers the directories of a full card from 100 on, the highest becoming 100, and lists it again. "Camera" and
    /// every other eight-character entry under "DCIM" take a number too. A rename that fails shows as "rename fail" on
    /// standard output and leaves that directory as it was. The series value becomes 0. The selection stays.
    /// @retval 1 always.
    /// @warning Fatal before Listup(): "now m_pDCF is NULL".
    virtual int RenameDCFFullStorage() = 0;
};

#endif
