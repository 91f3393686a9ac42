// The contents of the sample card's files. Every picture shows its own file number; pictures carry EXIF dates; raw
// pictures, multi-picture files and movies are stand-ins with the right signatures. Pure functions.
#ifndef DCFCTL_SAMPLE_FILES_H
#define DCFCTL_SAMPLE_FILES_H

#include <ctime>
#include <string>

#include "FileListTypes.h"

namespace dcfctl {

/// @param number shown in the picture. @param time when it was taken, in EXIF as UTC.
[[nodiscard]] std::string SampleFileContent(eFileType type, int number, std::time_t time);

} // namespace dcfctl

#endif
