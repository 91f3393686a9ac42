/// @file
/// The record through which a client receives one file of the list.
#ifndef CS_FILE_LIST_ITEM_H
#define CS_FILE_LIST_ITEM_H

#include <cstdint>

#include "FileListTypes.h"

/// One file as the client sees it. The client allocates and owns it; the file list fills it and keeps no
/// reference. Order and widths of the fields are fixed. Use each record from one thread at a time.
///
/// The metadata fields are the ones of PhotoInfo and carry a meaning only once metadata was stored for the
/// file. Before that they are 0, except for the last six words of #m_aMeta, which are then -1.
class KELP_API CSFileListItem {
public:
    /// Zeroes every field.
    CSFileListItem();
    /// Does nothing.
    ~CSFileListItem();
    /// Copies every field.
    CSFileListItem(const CSFileListItem&) = default;
    /// Copies every field. @return this item.
    CSFileListItem& operator=(const CSFileListItem&) = default;

    char m_strURI[KELP_DCF_MAX_FILE_NAME_LEN];    ///< Full path of the file, cut at 98 characters.
    char m_strObject[KELP_DCF_MAX_FILE_NAME_LEN]; ///< Full path of its companion file; empty without one.
    eFileType m_eFileType;                        ///< Kind of the file.
    eFileType m_eObjectType;                      ///< Kind of the companion file, FILE_TYPE_NONE without one.
    std::uint8_t m_nMetaFlag;                     ///< PhotoInfo::attributeByte1.
    bool m_bProtect;                              ///< The file is write-protected on the card.
    bool m_bWifi;                                 ///< The file carries the Wi-Fi transfer mark.
    std::int32_t m_nDirNum;                       ///< DCF directory number, 100 to 999; 99 for "Camera".
    std::int32_t m_nFileNum;       ///< DCF file number, 0 to 9999; in "Camera" six characters, of any sign.
    std::int32_t m_nMetaQuad1;     ///< PhotoInfo::attributeWords[1].
    std::int32_t m_nMetaQuad2;     ///< PhotoInfo::attributeWords[2].
    std::uint8_t m_aReserved1[36]; ///< Zero; never filled.
    char m_szMetaText[20];         ///< PhotoInfo::date, bounded to 20 bytes; without a terminator
                                   ///< when the collector's text fills all of them.
    std::uint8_t m_nMetaFlag2;     ///< PhotoInfo::attributeByte2.
    std::uint32_t m_nMetaWord;     ///< PhotoInfo::attributeWord.
    std::uint8_t m_nMetaByte;      ///< PhotoInfo::attributeFlag.
    std::int32_t m_aMeta[19];      ///< attributeWords[0] and [3], then trailingWords in their order but
                                   ///< for the eighth, which follows the eleventh.
    std::uint8_t m_aReserved2[24]; ///< Zero; never filled.
    std::uint32_t m_nFileTime;     ///< Modification time of the file in seconds, 0 when unknown.
};

#endif
