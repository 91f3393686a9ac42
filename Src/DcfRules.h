// The rules of the card layout as constants and pure functions: numbers, name lengths, extensions. Any thread.
#ifndef DCF_RULES_H
#define DCF_RULES_H

#include <cstddef>
#include <cstring>
#include <utility>

#include "FileListTypes.h"

namespace kelp {

constexpr const char* kDcimName = "DCIM";

constexpr std::size_t kMaxRootLength = 97;

// Directories.
constexpr const char* kCameraName = "Camera";
constexpr int kCameraDirNumber = 99;
constexpr int kMinDirNumber = 100;
constexpr int kMaxDirNumber = 999;
constexpr std::size_t kDirNameLength = 8;
constexpr std::size_t kDirNumberLength = 3;
constexpr std::size_t kDirSuffixLength = 5;

// File numbers of new files.
constexpr int kMinFileNumber = 1;
constexpr int kMaxFileNumber = 9999;

// Files of a DCF directory: four free characters, four digits, a dot, three letters.
constexpr std::size_t kFileNameLength = 12;
constexpr std::size_t kFileNumberOffset = 4;
constexpr std::size_t kFileNumberLength = 4;
constexpr std::size_t kExtensionOffset = 9;
constexpr std::size_t kExtensionLength = 3;

// Files of "Camera".
constexpr std::size_t kCameraFileNameLength = 19;
constexpr std::size_t kMinCameraFileName = 12;
constexpr std::size_t kMaxCameraFileName = 40;
constexpr std::size_t kCameraFileNumberOffset = 9;
constexpr std::size_t kCameraFileNumberLength = 6;

/// A listing stops when the whole list holds more files than this.
constexpr int kMaxTotalFiles = 99999;

// Number index: directory number x 100000 + file number.
constexpr int kIndexPerDirectory = 100000;
constexpr int kLastIndex = 99909999;   // 999-9999
constexpr int kFirstSeries = 10000000; // 100-0000

constexpr int NumberIndex(int dnum, int fnum) {
    return fnum + kIndexPerDirectory * dnum;
}

/// The type that a three-letter extension stands for, FILE_TYPE_NONE for an unknown one. Upper case only.
inline eFileType TypeOfExtension(const char* extension) {
    for (const auto& [text, type] :
         {std::pair{"SRW", FILE_TYPE_SRW}, std::pair{"MPO", FILE_TYPE_MPO}, std::pair{"MP4", FILE_TYPE_MP4},
          std::pair{"JPG", FILE_TYPE_JPG}, std::pair{"AVI", FILE_TYPE_AVI}}) {
        if (std::strcmp(extension, text) == 0) {
            return type;
        }
    }
    return FILE_TYPE_NONE;
}

inline bool AreDigits(const char* text, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return false;
        }
    }
    return true;
}

} // namespace kelp

#endif
