// CSFileList: the façade behind ISFileList. Logs every call, checks its cached state, keeps the client's settings and
// the selection, and forwards the work to one CSDCFList, which it makes at Listup and owns.
// Threads: see ISFileList; listupDone alone is read beside a running Listup.
#ifndef CS_FILE_LIST_H
#define CS_FILE_LIST_H

#include <cstdint>
#include <vector>

#include "ISFileList.h"
#include "PositionSet.h"
#include "Visibility.h"

class CSDCFList;

class KELP_API CSFileList : public ISFileList {
public:
    CSFileList();
    CSFileList(const CSFileList&) = delete;
    CSFileList& operator=(const CSFileList&) = delete;
    ~CSFileList() override;

    int SetSeriesMode(bool on) override;
    bool GetSeriesMode() override;
    int Listup() override;
    void IncludeNonDCF(bool on) override;
    int Delete(CSFileListItem* pItem) override;
    int DeleteSel() override;
    int DeleteAll() override;
    int GetCount() override;
    int GetAt(int nIdx, CSFileListItem* pItem) override;
    int GetFileListIndex(char* path) override;
    int GetCurIndex() override;
    int GetCurrent(CSFileListItem* pItem) override;
    int GetFirst(CSFileListItem* pItem) override;
    int GetNext(CSFileListItem* pItem) override;
    int GetPrev(CSFileListItem* pItem) override;
    int GetLast(CSFileListItem* pItem) override;
    bool IsLast(CSFileListItem* pItem) override;
    void SetFileNameMake(eFILE_NAME_MAKE mode) override;
    void SetFolderNameMake(eFILE_NAME_MAKE mode) override;
    void SetFileNameColor(eFileListColorMode mode) override;
    void SetImageType(eFileListImageType type) override;
    int GetNewFileName(char* out, int type) override;
    int GetLatestFileName(char* out, eFileType type) override;
    int UpdateFirstIndex(bool ignoreSeries) override;
    std::vector<int> GetSelectIndecies() override;
    int SetCur(char* path) override;
    int SetCurIndex(int nIdx) override;
    bool IsSel(int nIdx) override;
    void SetSel(int nIdx, bool on) override;
    void SelectCancel() override;
    int GetSelCount() override;
    int SetWifiFlag(CSFileListItem* pItem, bool on) override;
    bool IsWifiFlag(CSFileListItem* pItem) override;
    int SetProtect(CSFileListItem* pItem, bool on) override;
    int SetProtectSel(bool on) override;
    int SetProtectAll(bool on) override;
    int SetProtectSelToggle() override;
    int SetFilePrefix(char* prefix) override;
    int GetInfo(char* path, CSFileListItem* pItem) override;
    int GetAvailNumOfPhoto() override;
    int GetFileCount(eFileType type) override;
    int SetCustomBitAll(int bit, bool on) override;
    int RegisterPhotoMetadataCB(int (*collector)(char*, PhotoInfo*)) override;
    int RegisterVideoMetadataCB(int (*collector)(char*, VideoInfo*)) override;
    int AddPhotoMetadata(const char* path, PhotoInfo& info) override;
    int GetAtSimply(int nIdx, CSFileListItem* pItem) override;
    int RenameDCFFullStorage() override;

    /// Chooses the storage root for the next Listup.
    /// @return 0; -1 for null or more than 97 characters, and nothing changes.
    int SetBaseURI(const char* uri);

    // Settings of the client.
    char m_szBaseURI[100];
    eFILE_NAME_MAKE m_eFileNameMake;
    eFILE_NAME_MAKE m_eFolderNameMake;
    eFileListColorMode m_eColorMode;
    eFileListImageType m_eImageType;
    bool m_bIncludeNonDCF;

    // Cached state of the tree.
    std::int32_t m_nCurGetAtIdx; ///< List position of the cursor after the last refreshing operation.
    std::int32_t m_nList;        ///< Number of files, or the negative result of the last scan.

    // Defaults, kept as settings and read by no operation.
    char m_szDefaultPath[KELP_DCF_MAX_FILE_NAME_LEN];
    char m_szDefaultFolder[KELP_DCF_MAX_FILE_NAME_LEN];
    char m_szDefaultPrefix[KELP_DCF_MAX_FILE_NAME_LEN];

    bool m_bSeriesMode;
    char m_szFilePrefix[KELP_DCF_MAX_FILE_NAME_LEN];

    // Working buffers of GetNewFileName.
    char m_szDatePrefix[8];
    char m_szDateFolder[8];
    char m_sz3DPrefix[8];

    CSDCFList* m_pDCF;                  ///< The tree, owned; null before the first Listup.
    std::int32_t listupDone;            ///< -1 never listed, 0 a scan is under way, 1 the last one finished.
    std::vector<std::int32_t> m_vecSel; ///< The selected list positions.

private:
    // Not part of the exported class.
    KELP_LOCAL void ListAgain();
    KELP_LOCAL char* MakeFilePrefix(bool stereoscopic);
    KELP_LOCAL char* MakeDateFolder();
    KELP_LOCAL bool LastDirectoryFits();
    KELP_LOCAL kelp::PositionSet& Selected();

    kelp::PositionSet m_selected; ///< Derived from m_vecSel; asked through Selected().
};

#endif
