// First bytes; see the header.
#include "FileSignature.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace dcfctl {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kRead = 16;

enum class Kind { kJpeg, kTiff, kMovie, kAvi, kOther };

struct Row {
    std::size_t offset;
    std::string_view bytes;
    Kind kind;
    const char* text;
};

/// The first row that fits decides.
constexpr Row kRows[] = {
    {0, "\xff\xd8\xff"sv, Kind::kJpeg, "a JPEG picture"},
    {0, "II*\0"sv, Kind::kTiff, "a TIFF or raw picture"},
    {0, "MM\0*"sv, Kind::kTiff, "a TIFF or raw picture"},
    {4, "ftyphei"sv, Kind::kOther, "an HEIF picture"},
    {4, "ftypmif1"sv, Kind::kOther, "an HEIF picture"},
    {4, "ftypavif"sv, Kind::kOther, "an AVIF picture"},
    {4, "ftyp"sv, Kind::kMovie, "an MP4 movie"},
    {4, "moov"sv, Kind::kMovie, "an MP4 movie"},
    {4, "mdat"sv, Kind::kMovie, "an MP4 movie"},
    {4, "wide"sv, Kind::kMovie, "an MP4 movie"},
    {4, "free"sv, Kind::kMovie, "an MP4 movie"},
    {4, "skip"sv, Kind::kMovie, "an MP4 movie"},
    {8, "AVI "sv, Kind::kAvi, "an AVI movie"},
    {8, "WAVE"sv, Kind::kOther, "a sound"},
    {8, "WEBP"sv, Kind::kOther, "a WebP picture"},
    {0, "\x89PNG"sv, Kind::kOther, "a PNG picture"},
    {0, "GIF8"sv, Kind::kOther, "a GIF picture"},
    {0, "BM"sv, Kind::kOther, "a BMP picture"},
    {0, "%PDF"sv, Kind::kOther, "a PDF document"},
    {0, "PK\x03\x04"sv, Kind::kOther, "a ZIP archive"},
};

constexpr Row kZeros = {0, "", Kind::kOther, "only zeros in the beginning"};
constexpr Row kUnknown = {0, "", Kind::kOther, "nothing that is known here"};

const Row& RowFor(std::string_view first) {
    for (const Row& row : kRows) {
        if (first.size() >= row.offset && first.substr(row.offset, row.bytes.size()) == row.bytes) {
            return row;
        }
    }
    return !first.empty() && first.find_first_not_of('\0') == std::string_view::npos ? kZeros : kUnknown;
}

int Open(const std::string& path) {
    constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;
    const int fd = open(path.c_str(), kFlags | O_NOATIME);
    return fd < 0 && errno == EPERM ? open(path.c_str(), kFlags) : fd; // only the owner may leave the time as it is
}

} // namespace

bool FileSignature::Fits(eFileType type) const {
    const Kind kind = RowFor(first).kind;
    switch (type) {
    case FILE_TYPE_JPG:
    case FILE_TYPE_MPO:
        return kind == Kind::kJpeg;
    case FILE_TYPE_SRW:
        return kind == Kind::kTiff;
    case FILE_TYPE_MP4:
        return kind == Kind::kMovie;
    case FILE_TYPE_AVI:
        return kind == Kind::kAvi;
    default:
        return true;
    }
}

const char* FileSignature::Text() const {
    return RowFor(first).text;
}

FileSignature ReadSignature(const std::string& path) {
    FileSignature signature;
    const int fd = Open(path);
    if (fd < 0) {
        signature.error = errno;
        return signature;
    }
    struct stat info = {};
    signature.regular = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    std::array<char, kRead> bytes = {};
    while (signature.regular && signature.first.size() < kRead) {
        const ssize_t got = read(fd, bytes.data(), kRead - signature.first.size());
        if (got < 0 && errno != EINTR) {
            signature.error = errno;
        }
        if (got == 0 || signature.error != 0) {
            break;
        }
        signature.first.append(bytes.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    close(fd);
    return signature;
}

} // namespace dcfctl
