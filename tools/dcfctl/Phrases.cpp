// Phrases; see the header.
#include "Phrases.h"

#include <array>
#include <cstdio>
#include <iterator>

#include "Text.h"

namespace dcfctl {

std::string CountText(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string FilesText(std::size_t count) {
    return CountText(count, "file", "files");
}

std::string PathsText(const std::vector<std::string>& paths) {
    constexpr std::size_t kShown = 3;
    std::string text;
    for (std::size_t i = 0; i < paths.size() && i < kShown; ++i) {
        text += (i == 0 ? "" : ", ") + Quoted(paths[i]);
    }
    return paths.size() > kShown ? text + " and " + std::to_string(paths.size() - kShown) + " more" : text;
}

std::string SizeText(std::uint64_t bytes) {
    constexpr std::uint64_t kStep = 1000;
    constexpr const char* kUnits[] = {"kB", "MB", "GB", "TB", "PB"};
    if (bytes < kStep) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    std::uint64_t tenths = bytes / (kStep / 10); // of a kB
    const char* unit = kUnits[0];
    for (std::size_t i = 1; i < std::size(kUnits) && tenths >= kStep * 10; ++i) {
        tenths /= kStep;
        unit = kUnits[i];
    }
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " + unit;
}

std::string IndexText(long index) {
    constexpr long kPerFolder = 100000;
    std::array<char, 48> text = {};
    std::snprintf(text.data(), text.size(), "%03ld-%04ld", index / kPerFolder, index % kPerFolder);
    return text.data();
}

std::string SeriesText(long value) {
    return value == 0 ? "none" : IndexText(value);
}

Finding Refused(const char* code, const std::string& text) {
    return {code, ExitCode::kRefused, text};
}

Finding Incomplete(const char* code, const std::string& text) {
    return {code, ExitCode::kIncomplete, text};
}

} // namespace dcfctl
