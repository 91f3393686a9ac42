// Directories of fields; see the header.
#include "Tiff.h"

#include <libexif/exif-tag.h>

#include <algorithm>
#include <array>
#include <set>

namespace dcfexif {
namespace {

enum Tag : std::uint32_t {
    kImageWidth = 0x0100,
    kImageHeight = 0x0101,
    kStripOffsets = 0x0111,
    kStripSizes = 0x0117,
    kTileOffsets = 0x0144,
    kTileSizes = 0x0145,
    kSubDirectories = 0x014a,
    kJpegOffset = 0x0201,
    kJpegSize = 0x0202,
    kPictureList = 0xb002,
};

enum Type : std::uint32_t { kShort = 3, kLong = 4, kDirectoryOffset = 13 };

constexpr std::array<std::uint32_t, 14> kTypeSizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

constexpr std::uint32_t kHeaderSize = 8;
constexpr std::size_t kEntrySize = 12;
constexpr std::uint64_t kInlineSize = 4;

// Far above what a camera writes.
constexpr std::size_t kMostEntries = 1024;
constexpr std::size_t kMostDirectories = 32;
constexpr std::uint32_t kMostPieces = 65536; ///< Strips or tiles of a picture.
constexpr std::uint64_t kLongestValue = 256; ///< A longer one is none of those that are wanted.

/// What is wanted, in all directories but the one of GPS. Raw files may have all of it in the first one.
constexpr std::array<std::uint32_t, 25> kWanted = {EXIF_TAG_ORIENTATION,
                                                   EXIF_TAG_EXPOSURE_TIME,
                                                   EXIF_TAG_FNUMBER,
                                                   EXIF_TAG_EXPOSURE_PROGRAM,
                                                   EXIF_TAG_ISO_SPEED_RATINGS,
                                                   EXIF_TAG_STANDARD_OUTPUT_SENSITIVITY,
                                                   EXIF_TAG_RECOMMENDED_EXPOSURE_INDEX,
                                                   EXIF_TAG_ISO_SPEED,
                                                   EXIF_TAG_DATE_TIME_ORIGINAL,
                                                   EXIF_TAG_DATE_TIME_DIGITIZED,
                                                   EXIF_TAG_EXPOSURE_BIAS_VALUE,
                                                   EXIF_TAG_METERING_MODE,
                                                   EXIF_TAG_LIGHT_SOURCE,
                                                   EXIF_TAG_FLASH,
                                                   EXIF_TAG_FOCAL_LENGTH,
                                                   EXIF_TAG_PIXEL_X_DIMENSION,
                                                   EXIF_TAG_PIXEL_Y_DIMENSION,
                                                   EXIF_TAG_EXPOSURE_MODE,
                                                   EXIF_TAG_WHITE_BALANCE,
                                                   EXIF_TAG_DIGITAL_ZOOM_RATIO,
                                                   EXIF_TAG_FOCAL_LENGTH_IN_35MM_FILM,
                                                   EXIF_TAG_SCENE_CAPTURE_TYPE,
                                                   EXIF_TAG_CONTRAST,
                                                   EXIF_TAG_SATURATION,
                                                   EXIF_TAG_SHARPNESS};

struct Entry {
    std::uint32_t tag;
    std::uint32_t type;
    std::uint32_t count;
    std::uint64_t offset; ///< Of the value.

    [[nodiscard]] std::uint64_t Size() const {
        return type < kTypeSizes.size() ? std::uint64_t{kTypeSizes[type]} * count : 0;
    }
};

struct Directory {
    std::vector<Entry> entries;
    std::uint32_t next = 0;

    [[nodiscard]] const Entry* Find(std::uint32_t tag) const {
        const auto found =
            std::find_if(entries.begin(), entries.end(), [tag](const Entry& entry) { return entry.tag == tag; });
        return found == entries.end() ? nullptr : &*found;
    }
};

class TiffReader {
public:
    explicit TiffReader(const FilePart& part) : m_part(part) {}

    /// @return the offset of the first directory.
    [[nodiscard]] std::optional<std::uint32_t> Header();
    [[nodiscard]] std::optional<Directory> DirectoryAt(std::uint64_t offset);
    /// Takes the wanted fields over. @return false when a value is not in the part.
    [[nodiscard]] bool Take(const Directory& directory, bool gps, TiffFields& fields) const;
    /// Whole numbers, at most that many. @return nothing when there are more, or other values, or they are not there.
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> Numbers(const Entry& entry, std::uint32_t most) const;
    /// As above, for a field that need not be there: none of them then.
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> Numbers(const Directory& directory, std::uint32_t tag,
                                                                    std::uint32_t most) const;
    [[nodiscard]] bool HoldsPieces(const Directory& directory, std::uint32_t offsets, std::uint32_t sizes) const;
    [[nodiscard]] bool IsBigEndian() const {
        return m_bigEndian;
    }

private:
    const FilePart& m_part;
    bool m_bigEndian = false;
    std::set<std::uint64_t> m_visited;
};

std::optional<std::uint32_t> TiffReader::Header() {
    std::string bytes;
    if (!m_part.Read(0, kHeaderSize, bytes)) {
        return std::nullopt;
    }
    m_bigEndian = bytes[0] == 'M';
    const std::string magic = m_bigEndian ? std::string("MM\0*", 4) : std::string("II*\0", 4);
    if (bytes.compare(0, magic.size(), magic) != 0) {
        return std::nullopt;
    }
    return Number(bytes, 4, 4, m_bigEndian);
}

std::optional<Directory> TiffReader::DirectoryAt(std::uint64_t offset) {
    // One that was read already leads around in a circle.
    if (offset < kHeaderSize || m_visited.size() >= kMostDirectories || !m_visited.insert(offset).second) {
        return std::nullopt;
    }
    std::string bytes;
    if (!m_part.Read(offset, 2, bytes)) {
        return std::nullopt;
    }
    const std::size_t count = Number(bytes, 0, 2, m_bigEndian);
    const std::size_t size = count * kEntrySize;
    if (count > kMostEntries || !m_part.Read(offset + 2, size + 4, bytes)) {
        return std::nullopt;
    }
    Directory directory;
    for (std::size_t at = 0; at < size; at += kEntrySize) {
        Entry entry = {Number(bytes, at, 2, m_bigEndian), Number(bytes, at + 2, 2, m_bigEndian),
                       Number(bytes, at + 4, 4, m_bigEndian), offset + 2 + at + 8};
        if (entry.Size() > kInlineSize) {
            entry.offset = Number(bytes, at + 8, 4, m_bigEndian);
        }
        directory.entries.push_back(entry);
    }
    directory.next = Number(bytes, size, 4, m_bigEndian);
    return directory;
}

bool TiffReader::Take(const Directory& directory, bool gps, TiffFields& fields) const {
    for (const Entry& entry : directory.entries) {
        const bool wanted = gps ? entry.tag >= EXIF_TAG_GPS_LATITUDE_REF && entry.tag <= EXIF_TAG_GPS_ALTITUDE
                                : std::find(kWanted.begin(), kWanted.end(), entry.tag) != kWanted.end();
        if (!wanted || entry.Size() == 0) {
            continue;
        }
        if (!m_part.Holds(entry.offset, entry.Size())) {
            return false;
        }
        const bool again = std::any_of(fields.begin(), fields.end(),
                                       [&entry](const TiffField& field) { return field.tag == entry.tag; });
        if (again || entry.Size() > kLongestValue) {
            continue;
        }
        TiffField field = {entry.tag, entry.type, entry.count, {}};
        if (!m_part.Read(entry.offset, static_cast<std::size_t>(entry.Size()), field.value)) {
            return false;
        }
        fields.push_back(std::move(field));
    }
    return true;
}

std::optional<std::vector<std::uint32_t>> TiffReader::Numbers(const Entry& entry, std::uint32_t most) const {
    std::string bytes;
    const bool whole = entry.type == kShort || entry.type == kLong || entry.type == kDirectoryOffset;
    if (!whole || entry.count > most || !m_part.Read(entry.offset, static_cast<std::size_t>(entry.Size()), bytes)) {
        return std::nullopt;
    }
    const std::size_t size = kTypeSizes[entry.type];
    std::vector<std::uint32_t> numbers;
    for (std::size_t at = 0; at < bytes.size(); at += size) {
        numbers.push_back(Number(bytes, at, size, m_bigEndian));
    }
    return numbers;
}

std::optional<std::vector<std::uint32_t>> TiffReader::Numbers(const Directory& directory, std::uint32_t tag,
                                                              std::uint32_t most) const {
    const Entry* entry = directory.Find(tag);
    return entry == nullptr ? std::vector<std::uint32_t>() : Numbers(*entry, most);
}

bool TiffReader::HoldsPieces(const Directory& directory, std::uint32_t offsets, std::uint32_t sizes) const {
    const auto begins = Numbers(directory, offsets, kMostPieces);
    const auto lengths = Numbers(directory, sizes, kMostPieces);
    if (!begins.has_value() || !lengths.has_value() || begins->size() != lengths->size()) {
        return false;
    }
    for (std::size_t i = 0; i < begins->size(); ++i) {
        if (!m_part.Holds((*begins)[i], (*lengths)[i])) {
            return false;
        }
    }
    return true;
}

/// The pictures of a file, directory by directory.
class PictureWalk {
public:
    PictureWalk(TiffReader& reader, TiffContent& content) : m_reader(reader), m_content(content) {}

    /// @return false when a picture is not whole.
    [[nodiscard]] bool Visit(const Directory& directory);
    /// All directories behind the first one, and those below each.
    [[nodiscard]] bool Walk(Directory directory);

private:
    TiffReader& m_reader;
    TiffContent& m_content;
};

bool PictureWalk::Visit(const Directory& directory) {
    for (const auto& [offsets, sizes] :
         {std::pair{kStripOffsets, kStripSizes}, {kTileOffsets, kTileSizes}, {kJpegOffset, kJpegSize}}) {
        if (!m_reader.HoldsPieces(directory, offsets, sizes)) {
            return false;
        }
    }
    const auto width = m_reader.Numbers(directory, kImageWidth, 1);
    const auto height = m_reader.Numbers(directory, kImageHeight, 1);
    if (width.has_value() && height.has_value() && width->size() == 1 && height->size() == 1 &&
        std::uint64_t{width->front()} * height->front() > std::uint64_t{m_content.width} * m_content.height) {
        m_content.width = width->front();
        m_content.height = height->front();
    }
    return true;
}

bool PictureWalk::Walk(Directory directory) {
    while (true) {
        if (!Visit(directory)) {
            return false;
        }
        const auto below = m_reader.Numbers(directory, kSubDirectories, kMostDirectories);
        if (!below.has_value()) {
            return false;
        }
        for (const std::uint32_t offset : *below) {
            const auto one = m_reader.DirectoryAt(offset);
            if (!one.has_value() || !Visit(*one)) {
                return false;
            }
        }
        if (directory.next == 0) {
            return true;
        }
        auto next = m_reader.DirectoryAt(directory.next);
        if (!next.has_value()) {
            return false;
        }
        directory = std::move(*next);
    }
}

/// Takes the fields of a directory that the first one names; there need be none.
bool TakeNamed(TiffReader& reader, const Directory& first, std::uint32_t tag, TiffFields& fields) {
    const auto offset = reader.Numbers(first, tag, 1);
    if (!offset.has_value()) {
        return false;
    }
    if (offset->empty() || offset->front() == 0) { // 0 is how some writers say "none"
        return true;
    }
    const auto directory = reader.DirectoryAt(offset->front());
    return directory.has_value() && reader.Take(*directory, tag == EXIF_TAG_GPS_INFO_IFD_POINTER, fields);
}

} // namespace

std::uint32_t Number(const std::string& bytes, std::size_t at, std::size_t size, bool bigEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = bigEndian ? at + i : at + size - 1 - i;
        number = (number << 8U) | static_cast<unsigned char>(bytes[place]);
    }
    return number;
}

std::optional<TiffContent> ReadTiff(const FilePart& part, TiffScope scope) {
    TiffReader reader(part);
    const auto offset = reader.Header();
    const auto first = offset.has_value() ? reader.DirectoryAt(*offset) : std::nullopt;
    if (!first.has_value()) {
        return std::nullopt;
    }
    TiffContent content;
    content.bigEndian = reader.IsBigEndian();
    if (!reader.Take(*first, false, content.image) ||
        !TakeNamed(reader, *first, EXIF_TAG_EXIF_IFD_POINTER, content.exif) ||
        !TakeNamed(reader, *first, EXIF_TAG_GPS_INFO_IFD_POINTER, content.gps)) {
        return std::nullopt;
    }
    if (scope == TiffScope::kWholeFile && !PictureWalk(reader, content).Walk(*first)) {
        return std::nullopt;
    }
    return content;
}

bool HoldsItsPictures(const FilePart& index) {
    constexpr std::size_t kPictureSize = 16; // attributes, size, offset, two neighbours
    constexpr std::uint32_t kMostPictures = 1024;
    constexpr std::uint32_t kKind = 0x00ff0000;
    constexpr std::uint32_t kMultiFrame = 0x00020000;
    TiffReader reader(index);
    const auto offset = reader.Header();
    const auto directory = offset.has_value() ? reader.DirectoryAt(*offset) : std::nullopt;
    if (!directory.has_value()) {
        return false;
    }
    const Entry* list = directory->Find(kPictureList);
    std::string bytes;
    if (list == nullptr || list->Size() > kPictureSize * kMostPictures ||
        !index.Read(list->offset, static_cast<std::size_t>(list->Size()), bytes)) {
        return list == nullptr; // an index of something else
    }
    for (std::size_t at = 0; at + kPictureSize <= bytes.size(); at += kPictureSize) {
        const auto number = [&](std::size_t word) { return Number(bytes, at + 4 * word, 4, reader.IsBigEndian()); };
        // Previews and the like are often taken out of a file without a change of its index. The first picture, which
        // begins in front of the index, has its own end looked for.
        if ((number(0) & kKind) == kMultiFrame && number(2) != 0 && !index.Holds(number(2), number(1))) {
            return false;
        }
    }
    return true;
}

} // namespace dcfexif
