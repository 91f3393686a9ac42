#include "NameRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace dcffuzz {

namespace {

constexpr std::size_t kDirectoryLength = 8;
constexpr std::size_t kDcfLength = 12;
constexpr std::size_t kCameraLength = 19;
const std::string kCamera = "Camera";

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Blanks, a sign, digits, whatever follows; nothing where no digit stands. No text here is long enough to overflow.
std::optional<long> LeadingNumber(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size() && IsSpace(text[at])) {
        ++at;
    }
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        ++at;
    }
    if (at == text.size() || !IsDigit(text[at])) {
        return std::nullopt;
    }
    long number = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        number = 10 * number + (text[at] - '0');
    }
    return negative ? -number : number;
}

int NumberAt(const std::string& name, std::size_t offset, std::size_t length) {
    return offset < name.size() ? static_cast<int>(LeadingNumber(name.substr(offset, length)).value_or(0)) : 0;
}

using Kinds = std::vector<std::pair<const char*, int>>;

int KindIn(const Kinds& kinds, const std::string& extension) {
    for (const auto& [text, kind] : kinds) {
        if (extension == text) {
            return kind;
        }
    }
    return kNoKind;
}

/// Bytes compared as unsigned, as C strings are.
int ByBytes(const std::string& a, const std::string& b) {
    return a.compare(b);
}

bool SameRank(const std::string& a, const std::string& b, bool camera) {
    return camera ? a == b : a.compare(4, 4, b, 4, 4) == 0 && a.substr(9) == b.substr(9);
}

bool DcfBefore(const std::string& a, const std::string& b) {
    const int byNumber = ByBytes(b.substr(4, 4), a.substr(4, 4));
    return byNumber != 0 ? byNumber < 0 : ByBytes(a.substr(9), b.substr(9)) < 0;
}

bool DirectoryBefore(const std::string& a, const std::string& b) {
    const bool bothNumbered = a.size() == kDirectoryLength && b.size() == kDirectoryLength;
    return bothNumbered ? ByBytes(b, a) < 0 : ByBytes(a, b) < 0;
}

bool IsCompanionKind(int kind) {
    return kind == 1 || kind == 2;
}

} // namespace

std::string Upper(const std::string& name) {
    std::string upper = name;
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return upper;
}

bool IsDirectoryName(const std::string& name) {
    if (name == kCamera) {
        return true;
    }
    if (name.size() != kDirectoryLength) {
        return false;
    }
    const std::optional<long> number = LeadingNumber(name);
    return number && *number >= 100 && *number <= 999;
}

int DirectoryNumber(const std::string& name) {
    return name.compare(0, kCamera.size(), kCamera) == 0 ? kCameraNumber : NumberAt(name, 0, 3);
}

int DcfKind(const std::string& name) {
    static const Kinds kinds = {{"JPG", 0}, {"SRW", 1}, {"MPO", 2}, {"MP4", 3}, {"AVI", 5}};
    if (name.size() != kDcfLength || !std::all_of(name.begin() + 4, name.begin() + 8, IsDigit)) {
        return kNoKind;
    }
    return KindIn(kinds, Upper(name).substr(9));
}

int CameraKind(const std::string& name) {
    static const Kinds kinds = {{"JPG", 0}, {"SRW", 1}, {"MPO", 2}};
    if (name.size() < 12 || name.size() > 40) {
        return kNoKind;
    }
    return KindIn(kinds, Upper(name).substr(name.size() - 3));
}

int DcfNumber(const std::string& name) {
    return NumberAt(name, 4, 4);
}

int CameraNumber(const std::string& name) {
    return NumberAt(name, 9, 6);
}

int ShownKind(const std::string& name) {
    static const std::array<std::pair<const char*, int>, 5> kinds = {
        {{"JPG", 0}, {"MPO", 2}, {"SRW", 1}, {"MP4", 3}, {"AVI", 5}}};
    for (const auto& [text, kind] : kinds) {
        if (name.find(text) != std::string::npos) {
            return kind;
        }
    }
    return kNoKind;
}

std::vector<ListedFile> ListedFiles(const std::vector<std::string>& names, bool camera) {
    std::vector<std::string> accepted;
    std::copy_if(names.begin(), names.end(), std::back_inserter(accepted), [camera](const std::string& name) {
        return name.size() == (camera ? kCameraLength : kDcfLength) &&
               (camera ? CameraKind(name) : DcfKind(name)) != kNoKind;
    });
    std::stable_sort(accepted.begin(), accepted.end(),
                     [camera](const auto& a, const auto& b) { return camera ? ByBytes(a, b) < 0 : DcfBefore(a, b); });
    std::vector<ListedFile> listed;
    const std::string* taken = nullptr; // the name on the card of the file that was listed last
    int previous = 0;                   // so a number 0 in front is nobody's
    for (const std::string& name : accepted) {
        const int number = camera ? CameraNumber(name) : DcfNumber(name);
        const int kind = camera ? CameraKind(name) : DcfKind(name);
        if (number != previous) {
            listed.push_back({{Upper(name)}, number, kNoKind});
            taken = &name;
            previous = number;
            continue;
        }
        if (taken == nullptr) {
            continue;
        }
        if (SameRank(name, *taken, camera)) {
            listed.back().names.push_back(Upper(name));
        }
        if (IsCompanionKind(kind)) {
            listed.back().companion = kind;
        }
    }
    return listed;
}

std::vector<std::string> ListedDirectories(const std::vector<std::string>& names, bool includeCamera,
                                           bool rootIsPhoto) {
    std::vector<std::string> sorted;
    std::copy_if(names.begin(), names.end(), std::back_inserter(sorted), IsDirectoryName);
    std::sort(sorted.begin(), sorted.end(), DirectoryBefore);
    std::vector<std::string> listed;
    for (const std::string& name : sorted) {
        const int number = DirectoryNumber(name);
        if (number < kCameraNumber || number > 999 || (number == kCameraNumber && !includeCamera)) {
            continue;
        }
        // The one of this number that was taken last decides about the next.
        const auto last = std::find_if(listed.rbegin(), listed.rend(),
                                       [number](const auto& other) { return DirectoryNumber(other) == number; });
        if (last == listed.rend() || (!rootIsPhoto && last->find("PHOTO") == std::string::npos)) {
            listed.push_back(name);
        }
    }
    return listed;
}

} // namespace dcffuzz
