// Putting EXIF together; see the header.
#include "ExifBuilder.h"

#include <algorithm>

namespace dcftest {
namespace {

enum Type : std::uint32_t { kByte = 1, kText = 2, kShort = 3, kLong = 4, kRatio = 5, kSignedRatio = 10 };

constexpr std::uint32_t kHeaderSize = 8;
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kInlineSize = 4;

constexpr std::size_t Index(ExifDirectory directory) {
    return static_cast<std::size_t>(directory);
}

} // namespace

std::string NumberBytes(ByteOrder order, std::uint32_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[order == ByteOrder::kBig ? size - 1 - i : i] = static_cast<char>((number >> (8U * i)) & 0xffU);
    }
    return bytes;
}

ExifBuilder& ExifBuilder::Add(ExifDirectory directory, Field field) {
    Without(directory, field.tag);
    m_directories[Index(directory)].push_back(std::move(field));
    return *this;
}

std::string ExifBuilder::NumbersBytes(const Numbers& values, std::size_t size) const {
    std::string bytes;
    for (const std::uint32_t value : values) {
        bytes += NumberBytes(m_order, value, size);
    }
    return bytes;
}

ExifBuilder& ExifBuilder::Byte(ExifDirectory directory, std::uint32_t tag, const Numbers& values) {
    return Add(directory, {tag, kByte, static_cast<std::uint32_t>(values.size()), NumbersBytes(values, 1), false});
}

ExifBuilder& ExifBuilder::Short(ExifDirectory directory, std::uint32_t tag, const Numbers& values) {
    return Add(directory, {tag, kShort, static_cast<std::uint32_t>(values.size()), NumbersBytes(values, 2), false});
}

ExifBuilder& ExifBuilder::Long(ExifDirectory directory, std::uint32_t tag, const Numbers& values) {
    return Add(directory, {tag, kLong, static_cast<std::uint32_t>(values.size()), NumbersBytes(values, 4), false});
}

ExifBuilder& ExifBuilder::Ratio(ExifDirectory directory, std::uint32_t tag, const Ratios& values) {
    std::string bytes;
    for (const auto& [numerator, denominator] : values) {
        bytes += NumbersBytes({numerator, denominator}, 4);
    }
    return Add(directory, {tag, kRatio, static_cast<std::uint32_t>(values.size()), bytes, false});
}

ExifBuilder& ExifBuilder::SignedRatio(ExifDirectory directory, std::uint32_t tag, std::int32_t numerator,
                                      std::int32_t denominator) {
    const Numbers both = {static_cast<std::uint32_t>(numerator), static_cast<std::uint32_t>(denominator)};
    return Add(directory, {tag, kSignedRatio, 1, NumbersBytes(both, 4), false});
}

ExifBuilder& ExifBuilder::Text(ExifDirectory directory, std::uint32_t tag, const std::string& text) {
    return Add(directory, {tag, kText, static_cast<std::uint32_t>(text.size()), text, false});
}

ExifBuilder& ExifBuilder::Entry(ExifDirectory directory, std::uint32_t tag, std::uint32_t type, std::uint32_t count,
                                std::uint32_t valueOrOffset) {
    return Add(directory, {tag, type, count, NumberBytes(m_order, valueOrOffset, kInlineSize), true});
}

ExifBuilder& ExifBuilder::Without(ExifDirectory directory, std::uint32_t tag) {
    Fields& fields = m_directories[Index(directory)];
    fields.erase(std::remove_if(fields.begin(), fields.end(), [tag](const Field& field) { return field.tag == tag; }),
                 fields.end());
    return *this;
}

ExifBuilder& ExifBuilder::Picture(ExifDirectory directory, const std::string& bytes) {
    m_pictureDirectory = directory;
    m_picture = bytes;
    return *this;
}

ExifBuilder& ExifBuilder::Next(std::uint32_t offset) {
    m_next = offset;
    return *this;
}

std::string ExifBuilder::DirectoryBytes(const Fields& fields, std::size_t offset, std::uint32_t next) const {
    Fields sorted = fields;
    std::sort(sorted.begin(), sorted.end(), [](const Field& a, const Field& b) { return a.tag < b.tag; });
    std::string table = NumberBytes(m_order, static_cast<std::uint32_t>(sorted.size()), 2);
    std::string values;
    const std::size_t tableSize = 2 + sorted.size() * kEntrySize + 4;
    for (const Field& field : sorted) {
        table += NumberBytes(m_order, field.tag, 2) + NumberBytes(m_order, field.type, 2) +
                 NumberBytes(m_order, field.count, 4);
        if (field.verbatim || field.bytes.size() <= kInlineSize) {
            table += field.bytes + std::string(kInlineSize - field.bytes.size(), '\0');
        } else {
            table += NumberBytes(m_order, static_cast<std::uint32_t>(offset + tableSize + values.size()), 4);
            values += field.bytes + std::string(field.bytes.size() % 2, '\0');
        }
    }
    return table + NumberBytes(m_order, next, 4) + values;
}

ExifBuilder::Directories ExifBuilder::Linked(const Offsets& offsets, std::uint32_t picture) const {
    Directories linked = m_directories;
    const auto add = [&](ExifDirectory directory, std::uint32_t tag, std::uint32_t value) {
        Fields& fields = linked[Index(directory)];
        const bool there =
            std::any_of(fields.begin(), fields.end(), [tag](const Field& field) { return field.tag == tag; });
        if (!there) {
            fields.push_back({tag, kLong, 1, NumberBytes(m_order, value, 4), false});
        }
    };
    if (!m_picture.empty()) {
        add(m_pictureDirectory, 0x0111, picture);
        add(m_pictureDirectory, 0x0117, static_cast<std::uint32_t>(m_picture.size()));
    }
    constexpr std::pair<ExifDirectory, std::uint32_t> kPointers[] = {
        {ExifDirectory::kExif, 0x8769}, {ExifDirectory::kGps, 0x8825}, {ExifDirectory::kBelow, 0x014a}};
    for (const auto& [directory, tag] : kPointers) {
        if (!linked[Index(directory)].empty()) {
            add(ExifDirectory::kImage, tag, offsets[Index(directory)]);
        }
    }
    return linked;
}

ExifBuilder::Offsets ExifBuilder::Places(std::uint32_t& end) const {
    const Directories linked = Linked({}, 0); // the sizes are those of the real ones
    Offsets offsets = {};
    end = kHeaderSize;
    for (std::size_t i = 0; i < linked.size(); ++i) {
        offsets[i] = end;
        end += i == 0 || !linked[i].empty() ? static_cast<std::uint32_t>(DirectoryBytes(linked[i], 0, 0).size()) : 0;
    }
    return offsets;
}

std::string ExifBuilder::Build() const {
    std::uint32_t end = 0;
    const Offsets offsets = Places(end);
    const Directories linked = Linked(offsets, end);
    std::string bytes =
        (m_order == ByteOrder::kBig ? "MM" : "II") + NumberBytes(m_order, 42, 2) + NumberBytes(m_order, kHeaderSize, 4);
    for (std::size_t i = 0; i < linked.size(); ++i) {
        if (i == 0 || !linked[i].empty()) {
            bytes += DirectoryBytes(linked[i], bytes.size(), i == 0 ? m_next : 0);
        }
    }
    return bytes + m_picture;
}

std::uint32_t ExifBuilder::OffsetOf(ExifDirectory directory) const {
    std::uint32_t end = 0;
    return Places(end)[Index(directory)];
}

ExifBuilder OrdinaryExif(ByteOrder order) {
    using enum ExifDirectory;
    ExifBuilder exif(order);
    exif.Short(kImage, 0x0112, {6});
    exif.Text(kImage, 0x0132, std::string("2025:12:24 18:30:00\0", 20)); // changed since
    exif.Ratio(kExif, 0x829a, {{10, 1250}}).Ratio(kExif, 0x829d, {{28, 10}});
    exif.Short(kExif, 0x8822, {3}).Short(kExif, 0x8827, {400});
    exif.Text(kExif, 0x9003, std::string("2024:05:01 10:20:30\0", 20));
    exif.Text(kExif, 0x9004, std::string("2024:05:01 10:20:31\0", 20));
    exif.SignedRatio(kExif, 0x9204, -1, 3);
    exif.Short(kExif, 0x9207, {5}).Short(kExif, 0x9208, {10}).Short(kExif, 0x9209, {0x19});
    exif.Ratio(kExif, 0x920a, {{185, 10}});
    exif.Long(kExif, 0xa002, {5472}).Long(kExif, 0xa003, {3648});
    exif.Short(kExif, 0xa402, {2}).Short(kExif, 0xa403, {1}).Ratio(kExif, 0xa404, {{3, 2}});
    exif.Short(kExif, 0xa405, {28}).Short(kExif, 0xa406, {1});
    exif.Short(kExif, 0xa408, {1}).Short(kExif, 0xa409, {2}).Short(kExif, 0xa40a, {0});
    exif.Text(kGps, 1, std::string("N\0", 2)).Ratio(kGps, 2, {{52, 1}, {31, 1}, {1200, 100}});
    exif.Text(kGps, 3, std::string("E\0", 2)).Ratio(kGps, 4, {{13, 1}, {24, 1}, {1836, 100}});
    exif.Byte(kGps, 5, {0}).Ratio(kGps, 6, {{345, 10}});
    return exif;
}

std::string JpegSegment(int marker, const std::string& content) {
    return std::string{'\xff', static_cast<char>(marker)} +
           NumberBytes(ByteOrder::kBig, static_cast<std::uint32_t>(content.size() + 2), 2) + content;
}

std::string ExifSegment(const std::string& tiff) {
    return JpegSegment(0xe1, std::string("Exif\0\0", 6) + tiff);
}

std::string JpegFile(const std::string& segments) {
    const std::string frame = std::string("\x08\x01\xe0\x02\x80\x01\x01\x11\x00", 9);
    const std::string scan = std::string("\x01\x01\x00\x00\x3f\x00", 6);
    return "\xff\xd8" + segments + JpegSegment(0xc0, frame) + JpegSegment(0xda, scan) +
           std::string("\x12\x34\xff\x00\x56", 5) + "\xff\xd9";
}

std::string JpegWithExif(const std::string& tiff) {
    return JpegFile(ExifSegment(tiff));
}

} // namespace dcftest
