/// @file
/// The enumerations and limits that the file list shares with its clients.
/// Plain values, usable from any thread.
#ifndef FILE_LIST_TYPES_H
#define FILE_LIST_TYPES_H

#include <cstdint>

/// Marks what the shared library exports. Everything else in it is hidden.
#define KELP_API __attribute__((visibility("default")))

/// Size in bytes, terminator included, of every buffer that holds a path or a directory name.
/// Paths are composed with bounded formatting, so a longer one is cut at 98 characters.
#define KELP_DCF_MAX_FILE_NAME_LEN 99

/// The kind of one file on the card. The value 4 is never produced.
enum eFileType : std::int32_t {
    FILE_TYPE_NONE = -1, ///< No recognised extension; "no type" where an operation takes a type.
    FILE_TYPE_JPG = 0,   ///< Still picture, extension "JPG".
    FILE_TYPE_SRW = 1,   ///< Raw picture, extension "SRW".
    FILE_TYPE_MPO = 2,   ///< Multi-picture file, extension "MPO".
    FILE_TYPE_MP4 = 3,   ///< Movie, extension "MP4"; the only video type.
    FILE_TYPE_AVI = 5    ///< Movie, extension "AVI"; treated as a photo by the metadata collectors.
};

/// How files are numbered. Accepted by CBIFileListManager::Create and ignored; series numbering is
/// switched with ISFileList::SetSeriesMode.
enum eFileNumberType : std::int32_t {
    FILE_NUMBER_TYPE_DEFAULT = 0 ///< The only value there is a name for.
};

/// What kind of picture is recorded next. Only the value 1 is tested.
enum eFileListImageType : std::int32_t {
    FILE_LIST_IMAGE_TYPE_ORDINARY = 0,    ///< An ordinary picture or movie.
    FILE_LIST_IMAGE_TYPE_STEREOSCOPIC = 1 ///< A stereoscopic one.
};

/// The colour space of the pictures recorded next. Any value but 0 gives the prefix "_KVR";
/// the value 1 also selects the letter form of the month in date-made names.
enum eFileListColorMode : std::int32_t {
    FILE_LIST_COLOR_MODE_STANDARD = 0, ///< DCF basic file: prefix "KVR_".
    FILE_LIST_COLOR_MODE_OPTIONAL = 1  ///< DCF optional file: prefix "_KVR".
};

/// How a new file name or folder name is made. Any value but 0 makes it from the date.
enum eFILE_NAME_MAKE : std::int32_t {
    FILE_NAME_MAKE_FIXED = 0, ///< From the fixed prefix or the fixed folder suffix.
    FILE_NAME_MAKE_DATE = 1   ///< From the local date.
};

#endif
