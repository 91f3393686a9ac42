// Naming; see the header.
#include "Naming.h"

#include <ctime>

#include "DcfNames.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::size_t kPrefixLength = 4;

struct Day {
    int month;
    int day;
};

Day Today() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    if (localtime_r(&now, &local) == nullptr) {
        return {1, 1}; // as the file list takes it
    }
    return {local.tm_mon + 1, local.tm_mday};
}

std::string TwoDigits(int number) {
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
}

std::string MonthLetter(int month) {
    return std::string(1, "0123456789ABC"[month]);
}

std::string PrefixFor(const NamingOptions& options, eFileType type) {
    if (options.dateNames) {
        const bool letter =
            options.colour == FILE_LIST_COLOR_MODE_OPTIONAL && !(options.stereoscopic && type == FILE_TYPE_MP4);
        const Day today = Today();
        return (letter ? "_" + MonthLetter(today.month) : TwoDigits(today.month)) + TwoDigits(today.day);
    }
    if (!options.prefix.empty()) {
        return options.prefix;
    }
    return options.colour == FILE_LIST_COLOR_MODE_STANDARD ? "KVR_" : "_KVR";
}

} // namespace

std::string CheckPrefix(const std::string& prefix) {
    const bool fits = prefix.size() == kPrefixLength &&
                      prefix.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") == std::string::npos;
    return fits ? ""
                : Quoted(prefix) +
                      " is no prefix for file names; it is exactly four characters of A to Z (capitals), 0 to 9 and _";
}

void ApplyNaming(ISFileList& list, const NamingOptions& options) {
    list.SetFileNameColor(options.colour); // replaces the prefix, so it comes first
    if (!options.prefix.empty()) {
        std::string prefix = options.prefix;
        (void)list.SetFilePrefix(prefix.data()); // four characters always fit
    }
    list.SetFileNameMake(options.dateNames ? FILE_NAME_MAKE_DATE : FILE_NAME_MAKE_FIXED);
    list.SetFolderNameMake(options.dateFolders ? FILE_NAME_MAKE_DATE : FILE_NAME_MAKE_FIXED);
    list.SetImageType(options.stereoscopic ? FILE_LIST_IMAGE_TYPE_STEREOSCOPIC : FILE_LIST_IMAGE_TYPE_ORDINARY);
}

NameParts PartsFor(const NamingOptions& options, eFileType type) {
    const Day today = Today();
    const std::string date = "_" + TwoDigits(today.month) + TwoDigits(today.day);
    return {PrefixFor(options, type), TypeText(type), options.dateFolders ? date : "PHOTO"};
}

} // namespace dcfctl
