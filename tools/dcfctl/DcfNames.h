// The name rules of the card, as far as the tool must know them to tell beforehand what a listing will do. The list
// itself stays the library's. Pure functions.
#ifndef DCFCTL_DCF_NAMES_H
#define DCFCTL_DCF_NAMES_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "FileListTypes.h"

namespace dcfctl {

inline constexpr std::string_view kDcim = "DCIM";
inline constexpr std::string_view kCamera = "Camera";
inline constexpr int kCameraNumber = 99;

/// The longest storage root that the library takes.
inline constexpr std::size_t kMaxRoot = 97;
/// The longest path that the library composes without cutting it.
inline constexpr std::size_t kMaxPath = KELP_DCF_MAX_FILE_NAME_LEN - 1;
/// What a file of a DCF directory, and one of "Camera", adds to the length of the root.
inline constexpr std::size_t kDcfPathLength = std::string_view("/DCIM/100ABCDE/ABCD0001.JPG").size();
inline constexpr std::size_t kCameraPathLength = std::string_view("/DCIM/Camera/20240501_123456.JPG").size();
/// A list that holds this many files takes no more.
inline constexpr int kMaxFiles = 100000;

inline constexpr std::array kFileTypes = {FILE_TYPE_JPG, FILE_TYPE_SRW, FILE_TYPE_MPO, FILE_TYPE_MP4, FILE_TYPE_AVI};

/// "JPG" and so on; "-" for no type.
[[nodiscard]] const char* TypeText(eFileType type);
/// The type that a text names, in any case; nothing for an unknown one.
[[nodiscard]] std::optional<eFileType> TypeFromText(std::string_view text);
/// The type by the last three characters of a path, upper case only.
[[nodiscard]] eFileType TypeOfPath(std::string_view path);

/// The number under which a folder of "DCIM" is listed: 100 to 999, 99 for "Camera" and for the odd name that reads so;
/// nothing for a name that is left out.
[[nodiscard]] std::optional<int> FolderNumber(const std::string& name);

struct FileName {
    eFileType type;
    int number;
    bool digits; ///< The characters that make the number are digits.
};

/// What the list reads from the name of a file in a DCF directory; nothing for a name that is left out.
[[nodiscard]] std::optional<FileName> DcfFileName(const std::string& name);
/// The same in "Camera".
[[nodiscard]] std::optional<FileName> CameraFileName(const std::string& name);

/// The parts of a path of the list.
struct PathParts {
    std::string folder;
    std::string file;
};
[[nodiscard]] PathParts SplitPath(std::string_view path);

} // namespace dcfctl

#endif
