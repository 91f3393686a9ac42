// The name rules; see the header.
#include "DcfNames.h"

#include <cstdlib>
#include <stdexcept>

#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::size_t kFolderNameLength = 8;
constexpr std::size_t kFolderNumberLength = 3;
constexpr int kFirstNumber = 100;
constexpr int kLastNumber = 999;

constexpr std::size_t kDcfNameLength = 12;
constexpr std::size_t kCameraNameLength = 19;
constexpr std::size_t kExtensionLength = 3;

/// Where the number stands in a file name.
struct NumberField {
    std::size_t offset;
    std::size_t length;
};
constexpr NumberField kDcfNumber = {4, 4};
constexpr NumberField kCameraNumberField = {9, 6};

std::optional<eFileType> ExtensionType(std::string_view name) {
    return TypeFromText(name.substr(name.size() - kExtensionLength));
}

bool AllDigits(std::string_view text) {
    return text.find_first_not_of("0123456789") == std::string_view::npos;
}

FileName ReadName(const std::string& name, eFileType type, NumberField field) {
    const std::string digits = name.substr(field.offset, field.length);
    // The library converts the same way: leading blanks and a sign count, the first other character ends the number.
    return {type, static_cast<int>(std::strtol(digits.c_str(), nullptr, 10)), AllDigits(digits)};
}

} // namespace

const char* TypeText(eFileType type) {
    switch (type) {
    case FILE_TYPE_JPG:
        return "JPG";
    case FILE_TYPE_SRW:
        return "SRW";
    case FILE_TYPE_MPO:
        return "MPO";
    case FILE_TYPE_MP4:
        return "MP4";
    case FILE_TYPE_AVI:
        return "AVI";
    default:
        return "-";
    }
}

std::optional<eFileType> TypeFromText(std::string_view text) {
    for (const eFileType type : kFileTypes) {
        if (EqualNoCase(text, TypeText(type))) {
            return type;
        }
    }
    return std::nullopt;
}

eFileType TypeOfPath(std::string_view path) {
    for (const eFileType type : kFileTypes) {
        const std::string_view text = TypeText(type);
        if (path.size() >= text.size() && path.substr(path.size() - text.size()) == text) {
            return type;
        }
    }
    return FILE_TYPE_NONE;
}

std::optional<int> FolderNumber(const std::string& name) {
    if (name == kCamera) {
        return kCameraNumber;
    }
    if (name.size() != kFolderNameLength) {
        return std::nullopt;
    }
    try {
        const int leading = std::stoi(name);
        if (leading < kFirstNumber || leading > kLastNumber) {
            return std::nullopt;
        }
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
    // Read from three characters alone, so that "0990ABCD" gives 99.
    const long number = std::strtol(name.substr(0, kFolderNumberLength).c_str(), nullptr, 10);
    return number >= kCameraNumber ? std::optional<int>(static_cast<int>(number)) : std::nullopt;
}

std::optional<FileName> DcfFileName(const std::string& name) {
    if (name.size() != kDcfNameLength || !AllDigits(name.substr(kDcfNumber.offset, kDcfNumber.length))) {
        return std::nullopt;
    }
    const auto type = ExtensionType(name);
    return type.has_value() ? std::optional<FileName>(ReadName(name, *type, kDcfNumber)) : std::nullopt;
}

std::optional<FileName> CameraFileName(const std::string& name) {
    if (name.size() != kCameraNameLength) {
        return std::nullopt;
    }
    const auto type = ExtensionType(name);
    if (!type.has_value() || *type == FILE_TYPE_MP4 || *type == FILE_TYPE_AVI) {
        return std::nullopt;
    }
    return ReadName(name, *type, kCameraNumberField);
}

PathParts SplitPath(std::string_view path) {
    const std::size_t last = path.rfind('/');
    if (last == std::string_view::npos) {
        return {"", std::string(path)};
    }
    const std::string_view folder = path.substr(0, last);
    const std::size_t before = folder.rfind('/');
    const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
    return {std::string(folder.substr(start)), std::string(path.substr(last + 1))};
}

} // namespace dcfctl
