// DCFItem: one file of a directory, a plain value record. CSDCFDir holds the items, CSDCFList copies them out.
// No lock: used on the thread that uses the list.
#ifndef CS_DCF_ITEM_LIST_H
#define CS_DCF_ITEM_LIST_H

#include <cstdint>
#include <string>

#include "FileListTypes.h"
#include "MetadataInfo.h"

/// The extension of a file type: "JPG", "SRW", "MPO", "MP4" or "AVI"; empty for every other value.
KELP_API std::string fileTypeToString(eFileType type);

/// One file. Copied whole, owns nothing. The order and the widths of the fields are fixed.
class KELP_API DCFItem {
public:
    /// No name, no type, nothing known; the last six trailing words of the metadata are -1.
    DCFItem();

    /// The file's name, valid as long as this item.
    char* getFileName();
    /// Copies the name and sets the file type from it; the directory number must be set before.
    /// @param name upper-case name without directory, not null. Fatal unless it has exactly 12 characters
    ///        ("more than dcf filename length = %d"), in directory 99 fewer than 30
    ///        ("more than non dcf filename length = %d").
    void setFileName(const char* name);

    int getFileNum();
    void setFileNum(int fileNum);
    short getDirNum();
    void setDirNum(short dirNum);
    unsigned int getFileTime();
    void setFileTime(unsigned int fileTime);
    eFileType getFileType();
    eFileType getObjectType();
    void setObjectType(eFileType type);
    bool getWifi();
    void setWifi(bool on);
    /// The protect state; asks the card the first time, through the directory registered for the item's number.
    bool getProtect();
    /// Sets the protect state in memory; the card is not asked any more.
    void setProtect(bool on);
    /// Whether photo metadata is stored.
    bool getMetadata();
    /// Stores photo metadata field by field.
    void setPhotoData(const PhotoInfo& info);
    /// Does nothing: no video metadata is kept.
    void setVideoData(const VideoInfo& info);

    char m_fileName[30];
    bool m_bProtectKnown;
    bool m_bProtect;
    bool m_bWifi;
    std::uint32_t m_nFileTime;
    std::int32_t m_nFileNum;
    std::int16_t m_nDirNum;
    eFileType m_eFileType;
    eFileType m_eObjectType;
    bool m_bMetadata;
    PhotoInfo m_photo;
};

#endif
