// Walking pictures; see the header.
#include "PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <optional>

#include "Jpeg.h"
#include "Tiff.h"

namespace dcfctl {
namespace {

constexpr std::string_view kExifName("Exif\0\0", 6);
/// Camera software puts EXIF in front; what comes behind so many segments is not looked for.
constexpr int kMaxSegments = 64;

constexpr std::uint8_t kStartOfScan = 0xda;
constexpr std::uint8_t kApplication0 = 0xe0;
constexpr std::uint8_t kApplication1 = 0xe1;
constexpr std::uint8_t kApplication14 = 0xee; // how the colours are meant
constexpr std::uint8_t kApplication15 = 0xef;
constexpr std::uint8_t kComment = 0xfe;

std::uint32_t ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

std::uint32_t Big16(std::string_view bytes, std::size_t at) {
    return (ByteAt(bytes, at) << 8U) | ByteAt(bytes, at + 1);
}

/// A segment of a JPEG stream: its marker, and the length of what stands behind the marker, with the two bytes of the
/// length itself.
struct Segment {
    std::uint8_t marker;
    std::size_t length;
};

constexpr std::size_t kSegmentHead = 4;

/// @return nothing where no segment with a length begins.
std::optional<Segment> SegmentOf(std::string_view head) {
    if (head.size() < kSegmentHead || ByteAt(head, 0) != 0xff) {
        return std::nullopt;
    }
    const auto marker = static_cast<std::uint8_t>(head[1]);
    const std::size_t length = Big16(head, 2);
    const bool plain = marker >= 0xc0 && (marker < 0xd0 || marker > 0xd9) && marker != 0xff;
    return plain && length >= 2 ? std::optional<Segment>({marker, length}) : std::nullopt;
}

/// Baseline, extended or progressive: what every viewer shows.
bool IsFrame(std::uint8_t marker) {
    return marker == 0xc0 || marker == 0xc1 || marker == 0xc2;
}

bool IsMetadata(std::uint8_t marker) {
    return marker == kComment || (marker > kApplication0 && marker <= kApplication15 && marker != kApplication14);
}

bool HasFittingFrame(std::string_view content) {
    constexpr std::size_t kShortest = 6; // precision, height, width, components
    if (content.size() < kShortest) {
        return false;
    }
    const auto fits = [](std::uint32_t side) { return side > 0 && side <= std::uint32_t{kMaxThumbnailSide}; };
    return fits(Big16(content, 1)) && fits(Big16(content, 3));
}

std::string OrientationSegment(int orientation) {
    TiffDirectory directory;
    directory.Short(0x0112, static_cast<std::uint32_t>(orientation));
    return JpegSegment(kApplication1, std::string(kExifName) + TiffHeader() + directory.Bytes(kTiffHeaderSize));
}

// ---- TIFF ----

constexpr std::size_t kTiffHead = 8;
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kMaxEntries = 512;
constexpr std::size_t kMaxDirectories = 16;

/// Reads numbers in the byte order of a file.
class TiffReader {
public:
    explicit TiffReader(std::string_view head) : m_big(head.substr(0, 2) == "MM") {}

    [[nodiscard]] std::uint32_t Short(std::string_view bytes, std::size_t at) const {
        return m_big ? Big16(bytes, at) : ByteAt(bytes, at) | (ByteAt(bytes, at + 1) << 8U);
    }
    [[nodiscard]] std::uint32_t Long(std::string_view bytes, std::size_t at) const {
        return m_big ? (Short(bytes, at) << 16U) | Short(bytes, at + 2)
                     : Short(bytes, at) | (Short(bytes, at + 2) << 16U);
    }
    /// The first value of an entry of whole numbers.
    [[nodiscard]] std::uint32_t Value(std::string_view entry) const {
        constexpr std::uint32_t kShortType = 3;
        return Short(entry, 2) == kShortType ? Short(entry, 8) : Long(entry, 8);
    }

private:
    bool m_big;
};

bool IsTiffHead(std::string_view head) {
    return head.size() >= kTiffHead &&
           (head.substr(0, 4) == std::string_view("II*\0", 4) || head.substr(0, 4) == std::string_view("MM\0*", 4));
}

/// What one directory tells of a JPEG picture, and of further directories.
struct Directory {
    std::uint32_t jpegOffset = 0;
    std::uint32_t jpegLength = 0;
    std::uint32_t stripOffset = 0;
    std::uint32_t stripLength = 0;
    std::uint32_t compression = 0;
};

constexpr std::uint32_t kSubDirectories = 0x014a;

void ReadEntry(const TiffReader& tiff, std::string_view entry, Directory& directory) {
    const std::uint32_t value = tiff.Value(entry);
    const bool single = tiff.Long(entry, 4) == 1;
    switch (tiff.Short(entry, 0)) {
    case 0x0103:
        directory.compression = value;
        break;
    case 0x0111:
        directory.stripOffset = single ? value : 0;
        break;
    case 0x0117:
        directory.stripLength = single ? value : 0;
        break;
    case 0x0201:
        directory.jpegOffset = value;
        break;
    case 0x0202:
        directory.jpegLength = value;
        break;
    default:
        break;
    }
}

void AddSubDirectories(const PictureFile& file, const TiffReader& tiff, std::string_view entry,
                       std::deque<std::uint32_t>& waiting) {
    const std::size_t count = std::min<std::size_t>(tiff.Long(entry, 4), kMaxDirectories);
    if (count == 1) {
        waiting.push_back(tiff.Long(entry, 8));
        return;
    }
    const std::string offsets = file.Read(tiff.Long(entry, 8), count * 4);
    for (std::size_t at = 0; at + 4 <= offsets.size(); at += 4) {
        waiting.push_back(tiff.Long(offsets, at));
    }
}

void AddPreview(const Directory& directory, std::vector<Span>& found) {
    const bool jpegStrip = directory.compression == 6 || directory.compression == 7;
    if (directory.jpegOffset != 0 && directory.jpegLength != 0) {
        found.push_back({directory.jpegOffset, directory.jpegLength});
    } else if (jpegStrip && directory.stripOffset != 0 && directory.stripLength != 0) {
        found.push_back({directory.stripOffset, directory.stripLength});
    }
}

} // namespace

PictureFile::PictureFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    struct stat state = {};
    if (fd >= 0 && (fstat(fd, &state) != 0 || !S_ISREG(state.st_mode))) {
        close(fd);
        return;
    }
    m_fd = fd;
    m_size = static_cast<std::uint64_t>(state.st_size);
}

PictureFile::~PictureFile() {
    if (m_fd >= 0) {
        close(m_fd);
    }
}

std::string PictureFile::Read(std::uint64_t offset, std::size_t length) const {
    std::string bytes;
    if (offset >= m_size) {
        return bytes;
    }
    bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(length, m_size - offset)));
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = pread(m_fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

Container ContainerOf(const PictureFile& file) {
    const std::string head = file.Read(0, kTiffHead);
    if (IsTiffHead(head)) {
        return Container::kTiff;
    }
    return head.substr(0, 3) == "\xff\xd8\xff" ? Container::kJpeg : Container::kUnknown;
}

std::string ExifBlock(const PictureFile& file) {
    const Container container = ContainerOf(file);
    if (container == Container::kTiff) {
        return std::string(kExifName) + file.Read(0, kMaxThumbnailBytes - kExifName.size());
    }
    std::uint64_t at = 2;
    for (int i = 0; container == Container::kJpeg && i < kMaxSegments; ++i) {
        const std::string head = file.Read(at, kSegmentHead + kExifName.size());
        const auto segment = SegmentOf(head);
        if (!segment.has_value() || segment->marker == kStartOfScan) {
            break;
        }
        if (segment->marker == kApplication1 && head.substr(kSegmentHead) == kExifName) {
            return file.Read(at + kSegmentHead, segment->length - 2);
        }
        at += 2 + segment->length;
    }
    return {};
}

std::vector<Span> TiffPreviews(const PictureFile& file) {
    std::vector<Span> found;
    const std::string head = file.Read(0, kTiffHead);
    if (!IsTiffHead(head)) {
        return found;
    }
    const TiffReader tiff(head);
    std::deque<std::uint32_t> waiting = {tiff.Long(head, 4)};
    for (std::size_t read = 0; read < kMaxDirectories && !waiting.empty(); ++read) {
        const std::uint32_t offset = waiting.front();
        waiting.pop_front();
        const std::string count = file.Read(offset, 2);
        if (offset == 0 || count.size() < 2) {
            continue;
        }
        const std::size_t entries = std::min<std::size_t>(tiff.Short(count, 0), kMaxEntries);
        const std::string bytes = file.Read(std::uint64_t{offset} + 2, entries * kEntrySize + 4);
        Directory directory;
        for (std::size_t at = 0; at + kEntrySize <= std::min(bytes.size(), entries * kEntrySize); at += kEntrySize) {
            const std::string_view entry = std::string_view(bytes).substr(at, kEntrySize);
            if (tiff.Short(entry, 0) == kSubDirectories) {
                AddSubDirectories(file, tiff, entry, waiting);
            } else {
                ReadEntry(tiff, entry, directory);
            }
        }
        AddPreview(directory, found);
        if (bytes.size() == entries * kEntrySize + 4) {
            waiting.push_back(tiff.Long(bytes, entries * kEntrySize));
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Span& a, const Span& b) { return a.length < b.length; });
    return found;
}

std::string CleanThumbnail(std::string_view jpeg, int orientation) {
    const std::size_t end = jpeg.rfind("\xff\xd9");
    if (jpeg.size() > kMaxThumbnailBytes || jpeg.substr(0, 3) != "\xff\xd8\xff" || end == std::string_view::npos) {
        return {};
    }
    std::string clean(jpeg.substr(0, 2));
    if (orientation > 1 && orientation <= 8) {
        clean += OrientationSegment(orientation);
    }
    bool frame = false;
    std::size_t at = 2;
    while (at + kSegmentHead <= end) {
        const auto segment = SegmentOf(jpeg.substr(at));
        if (!segment.has_value() || at + 2 + segment->length > end) {
            return {};
        }
        const std::string_view whole = jpeg.substr(at, 2 + segment->length);
        if (IsFrame(segment->marker)) {
            if (frame || !HasFittingFrame(whole.substr(kSegmentHead))) {
                return {};
            }
            frame = true;
        }
        if (segment->marker == kStartOfScan) {
            return frame ? clean.append(jpeg.substr(at, end + 2 - at)) : std::string();
        }
        if (!IsMetadata(segment->marker)) {
            clean += whole;
        }
        at += whole.size();
    }
    return {};
}

} // namespace dcfctl
