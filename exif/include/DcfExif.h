/// @file
/// The EXIF collector: what a picture's own EXIF tells, as a PhotoInfo that the file list keeps for each file. This
/// header is the one place that says which field of PhotoInfo means what, in which unit, and which value means
/// "unknown"; docs/metadata.md shows the same as a table.
///
/// A client registers the collector and reads the items it gets (see ISFileList::RegisterPhotoMetadataCB for why an
/// item carries its metadata from the second conversion on):
///
///     list->RegisterPhotoMetadataCB(CollectExif);
///     DcfExifInfo info;
///     if (DcfExifRead(item, &info)) { ... info.iso ... }
///
/// The library libdcfexif exports CollectExif() alone; everything else here is inline and needs no library.
#ifndef DCF_EXIF_H
#define DCF_EXIF_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "CSFileListItem.h"
#include "MetadataInfo.h"

/// Marks what libdcfexif exports.
#define DCF_EXIF_API __attribute__((visibility("default")))

/// What CollectExif() returns. Everything but DCF_EXIF_OK means that nothing was filled.
enum DcfExifResult : std::int32_t {
    DCF_EXIF_OK = 0,             ///< The record was filled.
    DCF_EXIF_NULL_ARGUMENT = -1, ///< The path or the record is null.
    DCF_EXIF_UNREADABLE = -2,    ///< There is no such file, it is none (a folder, a device, ...), or reading it failed.
    DCF_EXIF_NONE = -3,          ///< No picture with EXIF: another kind of file, cut short, broken, empty or too large.
};

/// Fills a record from the EXIF of a JPEG file, a multi-picture (MPO) file or a raw file that is laid out as TIFF.
///
/// Reads what it needs and no more: of a file larger than DCF_EXIF_MAX_FILE nothing. Prints nothing, throws nothing,
/// never waits for a pipe or a device, keeps nothing between calls; any thread, several at once. To be handed to
/// ISFileList::RegisterPhotoMetadataCB() as it is.
/// @param path NUL-terminated path of the file; not written to.
/// @param info the caller's record. Filled whole when the result is DCF_EXIF_OK, and else left as it was.
/// @return a DcfExifResult.
DCF_EXIF_API int CollectExif(char* path, PhotoInfo* info) noexcept;

/// The largest file that is looked at, in bytes.
constexpr std::int64_t DCF_EXIF_MAX_FILE = std::int64_t{1} << 30;

/// Bits of PhotoInfo::attributeByte1. No field has a meaning while DCF_EXIF_PRESENT is not set.
enum DcfExifBits : std::uint8_t {
    DCF_EXIF_PRESENT = 0x80, ///< The record was filled by CollectExif().
    DCF_EXIF_GPS = 0x01,     ///< Latitude and longitude are known.
};

/// Bits of PhotoInfo::attributeFlag. The lower seven are EXIF's own.
enum DcfExifFlashBits : std::uint8_t {
    DCF_EXIF_FLASH_KNOWN = 0x80,       ///< Set when the file tells about the flash; the whole byte is else 0.
    DCF_EXIF_FLASH_FIRED = 0x01,       ///< The flash fired.
    DCF_EXIF_FLASH_RETURN_MASK = 0x06, ///< 4: its light was not seen to return; 6: it was; 0: nothing looked for it.
    DCF_EXIF_FLASH_MODE_MASK = 0x18,   ///< 8: switched on; 16: switched off; 24: automatic; 0: unknown.
    DCF_EXIF_FLASH_NO_FUNCTION = 0x20, ///< The camera has no flash.
    DCF_EXIF_FLASH_RED_EYE = 0x40,     ///< Against red eyes.
};

/// Places in PhotoInfo::attributeWords.
enum DcfExifWord : std::int32_t {
    DCF_EXIF_WIDTH = 0,                ///< Pixels.
    DCF_EXIF_HEIGHT = 1,               ///< Pixels.
    DCF_EXIF_EXPOSURE_NUMERATOR = 2,   ///< Exposure time in seconds, as a reduced fraction.
    DCF_EXIF_EXPOSURE_DENOMINATOR = 3, ///< ... below the line.
};

/// Places in PhotoInfo::trailingWords. What is unknown without metadata too (0, and -1 in the last six) is so here.
enum DcfExifTrailingWord : std::int32_t {
    DCF_EXIF_F_NUMBER = 0,            ///< Aperture as f-number, in hundredths.
    DCF_EXIF_FOCAL_LENGTH = 1,        ///< Hundredths of a millimetre.
    DCF_EXIF_FOCAL_LENGTH_35 = 2,     ///< The same angle on 35 mm film, in millimetres.
    DCF_EXIF_EXPOSURE_BIAS = 3,       ///< Hundredths of an EV.
    DCF_EXIF_EXPOSURE_PROGRAM = 4,    ///< EXIF's values 1 to 8.
    DCF_EXIF_METERING_MODE = 5,       ///< EXIF's values 1 to 6 and 255.
    DCF_EXIF_LATITUDE = 6,            ///< Millionths of a degree, north above 0.
    DCF_EXIF_LONGITUDE = 7,           ///< Millionths of a degree, east above 0.
    DCF_EXIF_ALTITUDE = 8,            ///< Centimetres above the sea.
    DCF_EXIF_LIGHT_SOURCE = 9,        ///< EXIF's values.
    DCF_EXIF_DIGITAL_ZOOM = 10,       ///< Ratio in hundredths.
    DCF_EXIF_WHITE_BALANCE = 11,      ///< 0 automatic, 1 by hand.
    DCF_EXIF_EXPOSURE_MODE = 12,      ///< 0 automatic, 1 by hand, 2 bracket.
    DCF_EXIF_SCENE_CAPTURE_TYPE = 13, ///< 0 to 3.
    DCF_EXIF_CONTRAST = 14,           ///< 0 normal, 1 soft, 2 hard.
    DCF_EXIF_SATURATION = 15,         ///< 0 normal, 1 low, 2 high.
    DCF_EXIF_SHARPNESS = 16,          ///< 0 normal, 1 soft, 2 hard.
};

/// What "unknown" is. Without a note at the field of DcfExifInfo it is 0.
constexpr std::int32_t DCF_EXIF_UNKNOWN_SIGNED = INT32_MIN; ///< Where every small number of either sign is a value.
constexpr std::int32_t DCF_EXIF_UNKNOWN_CHOICE = -1;        ///< Where 0 is a choice of EXIF's.

/// The fields of a PhotoInfo of CollectExif() by their names.
struct DcfExifInfo {
    char date[20];                    ///< When it was taken, "YYYY:MM:DD HH:MM:SS" in the camera's time; "" unknown.
    std::int32_t width;               ///< Pixels.
    std::int32_t height;              ///< Pixels.
    std::int32_t orientation;         ///< 1 to 8, see DcfExifOrientationText().
    std::uint32_t iso;                ///< ISO sensitivity.
    std::int32_t exposureNumerator;   ///< Exposure time in seconds, as a fraction; 0/0 unknown.
    std::int32_t exposureDenominator; ///< ... below the line.
    std::int32_t fNumber;             ///< Hundredths.
    std::int32_t focalLength;         ///< Hundredths of a millimetre.
    std::int32_t focalLength35;       ///< Millimetres.
    std::int32_t exposureBias;        ///< Hundredths of an EV; DCF_EXIF_UNKNOWN_SIGNED.
    std::int32_t exposureProgram;     ///< See DcfExifProgramText().
    std::int32_t meteringMode;        ///< See DcfExifMeteringText().
    std::int32_t lightSource;         ///< See DcfExifLightText().
    std::int32_t digitalZoom;         ///< Hundredths; 0 also when it was not used.
    std::uint8_t flash;               ///< DcfExifFlashBits.
    bool hasPosition;                 ///< Latitude and longitude are known.
    std::int32_t latitude;            ///< Millionths of a degree; DCF_EXIF_UNKNOWN_SIGNED.
    std::int32_t longitude;           ///< Millionths of a degree; DCF_EXIF_UNKNOWN_SIGNED.
    std::int32_t altitude;            ///< Centimetres; DCF_EXIF_UNKNOWN_SIGNED.
    std::int32_t whiteBalance;        ///< See DcfExifWhiteBalanceText(); DCF_EXIF_UNKNOWN_CHOICE.
    std::int32_t exposureMode;        ///< See DcfExifExposureModeText(); DCF_EXIF_UNKNOWN_CHOICE.
    std::int32_t sceneCaptureType;    ///< See DcfExifSceneText(); DCF_EXIF_UNKNOWN_CHOICE.
    std::int32_t contrast;            ///< See DcfExifHardnessText(); DCF_EXIF_UNKNOWN_CHOICE.
    std::int32_t saturation;          ///< See DcfExifSaturationText(); DCF_EXIF_UNKNOWN_CHOICE.
    std::int32_t sharpness;           ///< See DcfExifHardnessText(); DCF_EXIF_UNKNOWN_CHOICE.
};

/// Names the fields of a record.
/// @param from a record; only one of CollectExif() is read.
/// @param to the caller's; filled whole, or not at all.
/// @return whether it was filled: false for a record of another collector or of none.
inline bool DcfExifRead(const PhotoInfo& from, DcfExifInfo* to) {
    if ((from.attributeByte1 & DCF_EXIF_PRESENT) == 0) {
        return false;
    }
    std::memcpy(to->date, from.date, sizeof to->date);
    to->date[sizeof to->date - 1] = '\0';
    to->width = from.attributeWords[DCF_EXIF_WIDTH];
    to->height = from.attributeWords[DCF_EXIF_HEIGHT];
    to->orientation = from.attributeByte2;
    to->iso = from.attributeWord;
    to->exposureNumerator = from.attributeWords[DCF_EXIF_EXPOSURE_NUMERATOR];
    to->exposureDenominator = from.attributeWords[DCF_EXIF_EXPOSURE_DENOMINATOR];
    to->fNumber = from.trailingWords[DCF_EXIF_F_NUMBER];
    to->focalLength = from.trailingWords[DCF_EXIF_FOCAL_LENGTH];
    to->focalLength35 = from.trailingWords[DCF_EXIF_FOCAL_LENGTH_35];
    to->exposureBias = from.trailingWords[DCF_EXIF_EXPOSURE_BIAS];
    to->exposureProgram = from.trailingWords[DCF_EXIF_EXPOSURE_PROGRAM];
    to->meteringMode = from.trailingWords[DCF_EXIF_METERING_MODE];
    to->lightSource = from.trailingWords[DCF_EXIF_LIGHT_SOURCE];
    to->digitalZoom = from.trailingWords[DCF_EXIF_DIGITAL_ZOOM];
    to->flash = from.attributeFlag;
    to->hasPosition = (from.attributeByte1 & DCF_EXIF_GPS) != 0;
    to->latitude = from.trailingWords[DCF_EXIF_LATITUDE];
    to->longitude = from.trailingWords[DCF_EXIF_LONGITUDE];
    to->altitude = from.trailingWords[DCF_EXIF_ALTITUDE];
    to->whiteBalance = from.trailingWords[DCF_EXIF_WHITE_BALANCE];
    to->exposureMode = from.trailingWords[DCF_EXIF_EXPOSURE_MODE];
    to->sceneCaptureType = from.trailingWords[DCF_EXIF_SCENE_CAPTURE_TYPE];
    to->contrast = from.trailingWords[DCF_EXIF_CONTRAST];
    to->saturation = from.trailingWords[DCF_EXIF_SATURATION];
    to->sharpness = from.trailingWords[DCF_EXIF_SHARPNESS];
    return true;
}

/// Where a trailing word stands in CSFileListItem::m_aMeta: the list hands the eighth out behind the eleventh.
/// @param trailingWord its place in PhotoInfo::trailingWords, 0 to 16.
/// @return its place in m_aMeta, 2 to 18.
constexpr std::size_t DcfExifPlaceInItem(std::size_t trailingWord) {
    return trailingWord < 7    ? trailingWord + 2
           : trailingWord == 7 ? 12
           : trailingWord < 11 ? trailingWord + 1
                               : trailingWord + 2;
}

/// The record that the list was given for an item.
/// @param item a filled item.
/// @return the record; for an item without metadata one that DcfExifRead() refuses.
inline PhotoInfo DcfExifPhotoInfo(const CSFileListItem& item) {
    PhotoInfo info = PhotoInfo();
    info.attributeByte1 = item.m_nMetaFlag;
    info.attributeByte2 = item.m_nMetaFlag2;
    info.attributeWord = item.m_nMetaWord;
    info.attributeFlag = item.m_nMetaByte;
    info.attributeWords[0] = item.m_aMeta[0];
    info.attributeWords[1] = item.m_nMetaQuad1;
    info.attributeWords[2] = item.m_nMetaQuad2;
    info.attributeWords[3] = item.m_aMeta[1];
    std::memcpy(info.date, item.m_szMetaText, sizeof info.date);
    for (std::size_t i = 0; i < sizeof info.trailingWords / sizeof info.trailingWords[0]; ++i) {
        info.trailingWords[i] = item.m_aMeta[DcfExifPlaceInItem(i)];
    }
    return info;
}

/// Names the metadata of an item of the list.
/// @param item a filled item.
/// @param to the caller's; filled whole, or not at all.
/// @return whether it was filled: false for an item that has no metadata of CollectExif().
inline bool DcfExifRead(const CSFileListItem& item, DcfExifInfo* to) {
    return DcfExifRead(DcfExifPhotoInfo(item), to);
}

/// A value of EXIF's and what it says.
struct DcfExifWordRow {
    std::int32_t value; ///< A value of EXIF's.
    const char* text;   ///< What it says, in English.
};

/// Looks a value up.
/// @param table the rows to look in.
/// @param value the value.
/// @return what the table says to it; null for "unknown" and for every value that it does not hold.
template <std::size_t Rows>
inline const char* DcfExifTextIn(const DcfExifWordRow (&table)[Rows], std::int32_t value) {
    for (std::size_t i = 0; i < Rows; ++i) {
        if (table[i].value == value) {
            return table[i].text;
        }
    }
    return nullptr;
}

/// How the stored picture is to be turned to be seen upright; mirrored means left to right, before it is turned.
/// @param value DcfExifInfo::orientation.
/// @return the words, which are constants; null for a value that is unknown. So with all the functions below.
inline const char* DcfExifOrientationText(std::int32_t value) {
    static const DcfExifWordRow table[] = {
        {1, "upright"},           {2, "mirror"},     {3, "turn around"},        {4, "mirror, turn around"},
        {5, "mirror, turn left"}, {6, "turn right"}, {7, "mirror, turn right"}, {8, "turn left"}};
    return DcfExifTextIn(table, value);
}

/// What the exposure was set by.
/// @param value DcfExifInfo::exposureProgram.
/// @return the words, or null.
inline const char* DcfExifProgramText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{1, "manual"},           {2, "normal program"}, {3, "aperture priority"},
                                           {4, "shutter priority"}, {5, "creative"},       {6, "action"},
                                           {7, "portrait"},         {8, "landscape"}};
    return DcfExifTextIn(table, value);
}

/// How the light was measured.
/// @param value DcfExifInfo::meteringMode.
/// @return the words, or null.
inline const char* DcfExifMeteringText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{1, "average"}, {2, "centre-weighted"}, {3, "spot"},   {4, "multi-spot"},
                                           {5, "pattern"}, {6, "partial"},         {255, "other"}};
    return DcfExifTextIn(table, value);
}

/// The source of light.
/// @param value DcfExifInfo::lightSource.
/// @return the words, or null.
inline const char* DcfExifLightText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{1, "daylight"},
                                           {2, "fluorescent"},
                                           {3, "tungsten"},
                                           {4, "flash"},
                                           {9, "fine weather"},
                                           {10, "cloudy"},
                                           {11, "shade"},
                                           {12, "daylight fluorescent"},
                                           {13, "day white fluorescent"},
                                           {14, "cool white fluorescent"},
                                           {15, "white fluorescent"},
                                           {16, "warm white fluorescent"},
                                           {17, "standard light A"},
                                           {18, "standard light B"},
                                           {19, "standard light C"},
                                           {20, "D55"},
                                           {21, "D65"},
                                           {22, "D75"},
                                           {23, "D50"},
                                           {24, "studio tungsten"},
                                           {255, "other"}};
    return DcfExifTextIn(table, value);
}

/// How the white balance was set.
/// @param value DcfExifInfo::whiteBalance.
/// @return the words, or null.
inline const char* DcfExifWhiteBalanceText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{0, "automatic"}, {1, "manual"}};
    return DcfExifTextIn(table, value);
}

/// How the exposure was set.
/// @param value DcfExifInfo::exposureMode.
/// @return the words, or null.
inline const char* DcfExifExposureModeText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{0, "automatic"}, {1, "manual"}, {2, "automatic bracket"}};
    return DcfExifTextIn(table, value);
}

/// The kind of scene.
/// @param value DcfExifInfo::sceneCaptureType.
/// @return the words, or null.
inline const char* DcfExifSceneText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{0, "standard"}, {1, "landscape"}, {2, "portrait"}, {3, "night"}};
    return DcfExifTextIn(table, value);
}

/// The contrast or the sharpness that was asked for.
/// @param value DcfExifInfo::contrast or DcfExifInfo::sharpness.
/// @return the words, or null.
inline const char* DcfExifHardnessText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{0, "normal"}, {1, "soft"}, {2, "hard"}};
    return DcfExifTextIn(table, value);
}

/// The saturation that was asked for.
/// @param value DcfExifInfo::saturation.
/// @return the words, or null.
inline const char* DcfExifSaturationText(std::int32_t value) {
    static const DcfExifWordRow table[] = {{0, "normal"}, {1, "low"}, {2, "high"}};
    return DcfExifTextIn(table, value);
}

/// What the flash did.
/// @param flash DcfExifInfo::flash.
/// @return the words, or null.
inline const char* DcfExifFlashText(std::uint8_t flash) {
    if ((flash & DCF_EXIF_FLASH_KNOWN) == 0) {
        return nullptr;
    }
    if ((flash & DCF_EXIF_FLASH_NO_FUNCTION) != 0) {
        return "no flash";
    }
    return (flash & DCF_EXIF_FLASH_FIRED) != 0 ? "fired" : "did not fire";
}

/// What the flash was set to.
/// @param flash DcfExifInfo::flash.
/// @return the words, or null.
inline const char* DcfExifFlashModeText(std::uint8_t flash) {
    static const DcfExifWordRow table[] = {{0x08, "on"}, {0x10, "off"}, {0x18, "automatic"}};
    return (flash & DCF_EXIF_FLASH_KNOWN) != 0 ? DcfExifTextIn(table, flash & DCF_EXIF_FLASH_MODE_MASK) : nullptr;
}

/// Whether the light of the flash came back.
/// @param flash DcfExifInfo::flash.
/// @return the words, or null.
inline const char* DcfExifFlashReturnText(std::uint8_t flash) {
    static const DcfExifWordRow table[] = {{0x04, "no return seen"}, {0x06, "return seen"}};
    return (flash & DCF_EXIF_FLASH_KNOWN) != 0 ? DcfExifTextIn(table, flash & DCF_EXIF_FLASH_RETURN_MASK) : nullptr;
}

#endif
