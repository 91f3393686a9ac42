// CSDCFDir: one folder under "DCIM" with its files in list order. Made and owned by CSDCFList, which guards it; used by
// one thread at a time.
#ifndef CS_DCF_DIR_H
#define CS_DCF_DIR_H

#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

#include "CSDCFItemList.h"
#include "FileListTypes.h"
#include "Visibility.h"

class KELP_API CSDCFDir {
public:
    /// @param dnum directory number; its low 16 bits are kept.
    /// @param name folder name, see SetDirName().
    CSDCFDir(int dnum, const char* name);
    CSDCFDir(const CSDCFDir&) = delete;
    CSDCFDir& operator=(const CSDCFDir&) = delete;
    virtual ~CSDCFDir();

    /// Fatal for null ("cannot be null") and for 99 or more characters ("too long dir name = d").
    void SetDirName(const char* pDirName);

    // The scan.

    /// Lists the folder's files into this object.
    /// @param root storage root. @param dnum number written into the items.
    /// @param base number of files listed in other folders so far; the scan stops when the total exceeds 99,999.
    /// @return the number of files added; 0 for a folder that cannot be listed.
    int Listup(char* root, int dnum, int base);
    /// The DCF file-name rule. Upper-cases the name in place. @return the eFileType value, or -1 for a refused name.
    int CheckFileNameSyntax(char* name);
    /// The rule for "Camera". Upper-cases the name in place. @return the eFileType value, or -1 for a refused name.
    int CheckFileNameSyntaxNonDCF(char* name);
    /// Upper-cases 'a' to 'z' in place; with limit, only a text of at most 12 characters. @return the length.
    int MakeUpperCase(char* str, bool limit);
    /// Appends an item and counts it in *pCount. Fatal for a null pCount ("check!!").
    void AddFile(int dnum, int fnum, char* name, int* pCount, unsigned int time);
    /// Sets the companion type of the last item. The folder must not be empty.
    void AddObject(eFileType type);

    // Counts.

    int GetCount();
    /// Items whose type, or failing that whose companion type, is the given one.
    int GetCountByType(eFileType type);
    short GetDnum();

    // Items by position, 0 being the highest file number. Items are handed out as copies.

    /// Position of the first item with a file number. Fatal without one ("cannot found fnum = %d").
    int GetFidx(int fnum);
    /// Fatal for a position outside the folder ("vector index overflow = %d").
    DCFItem GetItem(int nIndex);
    /// The folder must not be empty.
    DCFItem GetFirstItem();
    /// The folder must not be empty.
    DCFItem GetLastItem();
    /// In memory only; the position must be valid.
    void SetProtect(int index, bool on);
    /// The position must be valid.
    void SetWifi(int index, bool on);
    /// Puts a new item in front of all.
    void AddHead(int dnum, int fnum, char* name, unsigned int time);
    /// Sets the companion type of the front item. The folder must not be empty.
    void AddHeadObject(eFileType type);
    /// The position must be valid.
    void RemoveItem(int index);
    /// Removes positions given in ascending order, from the last given to the first. In another order each one means
    /// the place that it has by then; one without an item removes nothing.
    void RemoveItems(const std::vector<int>& indices);
    /// Removes every item that is not protected; asks the card where the state is not known.
    void RemoveAllItems();
    /// Throws std::out_of_range for a position outside the folder.
    void setPhotoData(int index, const PhotoInfo& info);
    /// Throws std::out_of_range for a position outside the folder.
    void setVideoData(int index, const VideoInfo& info);

    std::int16_t m_nDnum;
    char m_strDirName[KELP_DCF_MAX_FILE_NAME_LEN];
    std::deque<DCFItem> m_itemGroup; ///< In listing order: the highest file number first.

private:
    using NumberAt = std::pair<int, int>; // a file number and its position

    KELP_LOCAL void NoteChange();
    KELP_LOCAL int FindInDescending(int fnum) const;
    KELP_LOCAL int FindInAnyOrder(int fnum);

    // Derived, so that GetFidx need not walk. NoteChange() takes back what a change may have made wrong.
    bool m_bDescending;               ///< The file numbers strictly descend.
    int m_nWalks;                     ///< Walks since the last change.
    std::vector<NumberAt> m_byNumber; ///< In order of number, then position; empty until it pays.
};

#endif
