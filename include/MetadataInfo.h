/// @file
/// The records that a client's metadata collectors fill. Plain data: the library copies the fields and
/// gives them no meaning of its own. The caller owns every record; none is kept by reference.
#ifndef METADATA_INFO_H
#define METADATA_INFO_H

#include <cstdint>

/// What a photo collector tells about one file. Order and widths of the fields are fixed.
struct PhotoInfo {
    std::uint8_t attributeByte1;    ///< Reaches the client as CSFileListItem::m_nMetaFlag.
    std::uint8_t attributeByte2;    ///< Reaches the client as CSFileListItem::m_nMetaFlag2.
    std::uint32_t attributeWord;    ///< Reaches the client as CSFileListItem::m_nMetaWord.
    std::uint8_t attributeFlag;     ///< Reaches the client as CSFileListItem::m_nMetaByte.
    std::int32_t attributeWords[4]; ///< Words 2 and 3: m_nMetaQuad1, m_nMetaQuad2; words 1 and 4: m_aMeta[0], [1].
    char date[20];                  ///< Text; reaches the client as m_szMetaText, bounded to 20 bytes.
    std::int32_t trailingWords[17]; ///< Reach the client as m_aMeta[2] to [18], the eighth behind the eleventh.
};

/// What a video collector would tell about one file. Order and widths of the fields are fixed; units and meaning beyond
/// the names are the collector's and its client's business.
/// No video collector is ever called: see ISFileList::RegisterVideoMetadataCB.
struct VideoInfo {
    std::int32_t imageWidth;   ///< Width of a frame.
    std::int32_t imageHeight;  ///< Height of a frame.
    std::int32_t hasAudio;     ///< Whether there is sound.
    std::int32_t fps;          ///< Frames per second.
    std::int32_t videoBitRate; ///< Bit rate of the pictures.
    std::int32_t audioBitRate; ///< Bit rate of the sound.
    std::int32_t multiMotion;  ///< A mode of the collector's.
    std::int32_t reserved1;    ///< The collector's own.
    std::int32_t totalTime;    ///< How long it plays.
    std::int32_t reserved2;    ///< The collector's own.
    std::int32_t fileSize;     ///< Size of the file.
    std::int32_t reserved3;    ///< The collector's own.
    char date[16];             ///< Text of at most 16 characters; without a terminator where it fills the field.
    std::int32_t reserved4;    ///< The collector's own.
};

#endif
