// The segments of a JPEG file; see the header.
#include "Jpeg.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "Tiff.h"

namespace dcfexif {
namespace {

enum Marker : std::uint32_t {
    kFirstFrame = 0xc0,
    kHuffmanTables = 0xc4,
    kReservedFrame = 0xc8,
    kArithmeticTables = 0xcc,
    kLastFrame = 0xcf,
    kEndOfImage = 0xd9,
    kStartOfScan = 0xda,
    kApplication1 = 0xe1,
    kApplication2 = 0xe2,
};

constexpr std::uint64_t kFirstSegment = 2; ///< Behind the start of the image.
constexpr std::uint64_t kMarkerSize = 2;
constexpr std::uint64_t kLengthSize = 2;
constexpr int kMostSegments = 1024; ///< Far above what a camera writes.

constexpr std::string_view kExifName("Exif\0", 5); ///< A sixth byte follows, which some writers do not leave 0.
constexpr std::uint64_t kExifNameSize = 6;
constexpr std::string_view kIndexName("MPF\0", 4);
constexpr std::string_view kImageEnd("\xff\xd9");

struct Segment {
    std::uint32_t marker = 0;
    std::uint64_t content = 0; ///< Offset behind the length.
    std::uint64_t size = 0;    ///< Of the content.

    [[nodiscard]] std::uint64_t End() const {
        return content + size;
    }
};

std::optional<Segment> SegmentAt(PictureFile& file, std::uint64_t offset) {
    std::string bytes;
    if (!file.Read(offset, kMarkerSize + kLengthSize, bytes)) {
        return std::nullopt;
    }
    while (bytes[0] == '\xff' && bytes[1] == '\xff') { // a marker may have any number of these in front of it
        if (!file.Read(++offset, kMarkerSize + kLengthSize, bytes)) {
            return std::nullopt;
        }
    }
    const std::uint32_t marker = Number(bytes, 1, 1, true);
    const std::uint32_t length = Number(bytes, 2, kLengthSize, true);
    // What has no length stands in no header.
    if (bytes[0] != '\xff' || marker < kFirstFrame || (marker >= 0xd0 && marker <= kEndOfImage) ||
        length < kLengthSize) {
        return std::nullopt;
    }
    const Segment segment = {marker, offset + kMarkerSize + kLengthSize, length - kLengthSize};
    return segment.End() <= file.Size() ? std::optional<Segment>(segment) : std::nullopt;
}

bool IsFrame(std::uint32_t marker) {
    return marker >= kFirstFrame && marker <= kLastFrame && marker != kHuffmanTables && marker != kReservedFrame &&
           marker != kArithmeticTables;
}

/// Whether a segment is long enough for its name and begins with it.
bool HasName(PictureFile& file, const Segment& segment, std::string_view name, std::uint64_t nameSize) {
    std::string bytes;
    return segment.size >= nameSize && file.Read(segment.content, name.size(), bytes) && bytes == name;
}

/// The end of the image is the end of the file, but for what some cameras put behind it: then it is looked for. It
/// cannot stand within the scan, where the byte 0xff is always followed by 0 or by another marker.
bool HasImageEnd(PictureFile& file, std::uint64_t scan) {
    constexpr std::uint64_t kTail = 4096;
    std::string bytes;
    const std::uint64_t tail = std::min(kTail, file.Size() - scan);
    if (!file.Read(file.Size() - tail, static_cast<std::size_t>(tail), bytes)) {
        return false;
    }
    bytes.erase(bytes.find_last_not_of('\0') + 1); // npos + 1 is 0
    if (bytes.size() >= kImageEnd.size() && bytes.compare(bytes.size() - 2, 2, kImageEnd) == 0) {
        return true;
    }
    constexpr std::uint64_t kPiece = std::uint64_t{64} << 10U;
    while (file.Size() - scan >= kImageEnd.size()) {
        const std::uint64_t size = std::min(kPiece, file.Size() - scan);
        if (!file.Read(scan, static_cast<std::size_t>(size), bytes)) {
            return false;
        }
        if (bytes.find(kImageEnd) != std::string::npos) {
            return true;
        }
        scan += size - 1; // its two bytes may stand in two pieces
    }
    return false;
}

/// What has been found so far.
class JpegWalk {
public:
    explicit JpegWalk(PictureFile& file) : m_file(file) {}

    /// @return false when the segment shows that the file is not whole.
    [[nodiscard]] bool Visit(const Segment& segment);
    [[nodiscard]] std::optional<JpegContent> Finish(const Segment& scan);

private:
    PictureFile& m_file;
    JpegContent m_content;
    bool m_hasFrame = false;
    std::uint64_t m_index = 0; ///< Where that of a multi-picture file begins; 0 without one.
};

bool JpegWalk::Visit(const Segment& segment) {
    if (segment.marker == kApplication1 && m_content.exifSize == 0 &&
        HasName(m_file, segment, kExifName, kExifNameSize)) {
        m_content.exifBegin = segment.content + kExifNameSize;
        m_content.exifSize = segment.size - kExifNameSize;
    } else if (segment.marker == kApplication2 && HasName(m_file, segment, kIndexName, kIndexName.size())) {
        m_index = segment.content + kIndexName.size();
    } else if (IsFrame(segment.marker)) {
        constexpr std::size_t kFrameHeader = 6; // precision, height, width, number of components
        std::string bytes;
        if (segment.size < kFrameHeader || !m_file.Read(segment.content, kFrameHeader, bytes)) {
            return false;
        }
        m_content.height = Number(bytes, 1, 2, true);
        m_content.width = Number(bytes, 3, 2, true);
        m_hasFrame = true;
    }
    return true;
}

std::optional<JpegContent> JpegWalk::Finish(const Segment& scan) {
    if (m_content.exifSize == 0 || !m_hasFrame || !HasImageEnd(m_file, scan.End())) {
        return std::nullopt;
    }
    if (m_index != 0 && !HoldsItsPictures({m_file, m_index, m_file.Size() - m_index})) {
        return std::nullopt;
    }
    return m_content;
}

} // namespace

std::optional<JpegContent> ReadJpeg(PictureFile& file) {
    JpegWalk walk(file);
    std::uint64_t offset = kFirstSegment;
    for (int i = 0; i < kMostSegments; ++i) {
        const auto segment = SegmentAt(file, offset);
        if (!segment.has_value()) {
            return std::nullopt;
        }
        if (segment->marker == kStartOfScan) {
            return walk.Finish(*segment);
        }
        if (!walk.Visit(*segment)) {
            return std::nullopt;
        }
        offset = segment->End();
    }
    return std::nullopt;
}

} // namespace dcfexif
