// TIFF structures; see the header.
#include "Tiff.h"

namespace dcfctl {
namespace {

enum FieldType : std::uint32_t {
    kByte = 1,
    kText = 2,
    kShort = 3,
    kLong = 4,
    kRational = 5,
    kUndefined = 7,
    kSignedRational = 10
};

constexpr std::size_t kFieldSize = 12;
constexpr std::size_t kInlineSize = 4;

std::string Bytes(std::uint32_t value, std::size_t count, bool bigEndian) {
    std::string out(count, '\0');
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = bigEndian ? count - 1 - i : i;
        out[at] = static_cast<char>((value >> (8U * i)) & 0xffU);
    }
    return out;
}

/// Values stand on even offsets.
std::string Padded(std::string bytes) {
    if (bytes.size() % 2 != 0) {
        bytes += '\0';
    }
    return bytes;
}

} // namespace

std::string LittleEndian16(std::uint32_t value) {
    return Bytes(value, 2, false);
}

std::string LittleEndian32(std::uint32_t value) {
    return Bytes(value, 4, false);
}

std::string BigEndian16(std::uint32_t value) {
    return Bytes(value, 2, true);
}

std::string BigEndian32(std::uint32_t value) {
    return Bytes(value, 4, true);
}

std::string TiffHeader() {
    return "II" + LittleEndian16(42) + LittleEndian32(kTiffHeaderSize);
}

void TiffDirectory::Short(std::uint32_t tag, std::uint32_t value) {
    m_fields.push_back({tag, kShort, 1, LittleEndian16(value)});
}

void TiffDirectory::Long(std::uint32_t tag, std::uint32_t value) {
    m_fields.push_back({tag, kLong, 1, LittleEndian32(value)});
}

void TiffDirectory::Text(std::uint32_t tag, std::string_view text) {
    std::string bytes(text);
    bytes += '\0';
    m_fields.push_back({tag, kText, static_cast<std::uint32_t>(bytes.size()), bytes});
}

void TiffDirectory::Rational(std::uint32_t tag, std::uint32_t numerator, std::uint32_t denominator) {
    Rationals(tag, {numerator, denominator});
}

void TiffDirectory::Rationals(std::uint32_t tag, const std::vector<std::uint32_t>& values) {
    std::string bytes;
    for (const std::uint32_t value : values) {
        bytes += LittleEndian32(value);
    }
    m_fields.push_back({tag, kRational, static_cast<std::uint32_t>(values.size() / 2), bytes});
}

void TiffDirectory::SignedRational(std::uint32_t tag, std::int32_t numerator, std::int32_t denominator) {
    m_fields.push_back({tag, kSignedRational, 1,
                        LittleEndian32(static_cast<std::uint32_t>(numerator)) +
                            LittleEndian32(static_cast<std::uint32_t>(denominator))});
}

void TiffDirectory::Byte(std::uint32_t tag, std::uint8_t value) {
    m_fields.push_back({tag, kByte, 1, std::string(1, static_cast<char>(value))});
}

void TiffDirectory::Undefined(std::uint32_t tag, std::string_view bytes) {
    m_fields.push_back({tag, kUndefined, static_cast<std::uint32_t>(bytes.size()), std::string(bytes)});
}

std::uint32_t TiffDirectory::Size() const {
    return static_cast<std::uint32_t>(Bytes(0).size());
}

std::string TiffDirectory::Bytes(std::uint32_t offset) const {
    std::string table = LittleEndian16(static_cast<std::uint32_t>(m_fields.size()));
    std::string values;
    const std::size_t tableSize = 2 + m_fields.size() * kFieldSize + 4;
    for (const Field& field : m_fields) {
        table += LittleEndian16(field.tag) + LittleEndian16(field.type) + LittleEndian32(field.count);
        if (field.bytes.size() <= kInlineSize) {
            table += field.bytes + std::string(kInlineSize - field.bytes.size(), '\0');
        } else {
            table += LittleEndian32(offset + static_cast<std::uint32_t>(tableSize + values.size()));
            values += Padded(field.bytes);
        }
    }
    return table + LittleEndian32(0) + values; // no further directory follows
}

} // namespace dcfctl
