// Values of libexif's entries; see the header.
#include "ExifEntries.h"

#include <libexif/exif-utils.h>

#include <new>

namespace dcfexif {
namespace {

constexpr std::uint32_t kHeaderSize = 8;
constexpr std::size_t kEntrySize = 12;
constexpr std::size_t kInlineSize = 4;
constexpr std::uint32_t kLong = 4;

/// Writes the block that libexif reads, in the byte order in which the values are.
class BlockWriter {
public:
    explicit BlockWriter(bool bigEndian) : m_bigEndian(bigEndian) {}

    [[nodiscard]] std::string Bytes(std::uint32_t number, std::size_t size) const {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[m_bigEndian ? size - 1 - i : i] = static_cast<char>((number >> (8U * i)) & 0xffU);
        }
        return bytes;
    }
    [[nodiscard]] TiffField Pointer(std::uint32_t tag, std::size_t offset) const {
        return {tag, kLong, 1, Bytes(static_cast<std::uint32_t>(offset), 4)};
    }
    [[nodiscard]] std::string Header() const {
        return (m_bigEndian ? "MM" : "II") + Bytes(42, 2) + Bytes(kHeaderSize, 4);
    }
    /// @param offset where the directory is going to stand.
    [[nodiscard]] std::string Directory(const TiffFields& fields, std::size_t offset) const {
        std::string table = Bytes(static_cast<std::uint32_t>(fields.size()), 2);
        std::string values;
        const std::size_t tableSize = 2 + fields.size() * kEntrySize + 4;
        for (const TiffField& field : fields) {
            table += Bytes(field.tag, 2) + Bytes(field.type, 2) + Bytes(field.count, 4);
            if (field.value.size() <= kInlineSize) {
                table += field.value + std::string(kInlineSize - field.value.size(), '\0');
            } else {
                table += Bytes(static_cast<std::uint32_t>(offset + tableSize + values.size()), 4);
                values += field.value;
            }
        }
        return table + Bytes(0, 4) + values; // no further directory
    }

private:
    bool m_bigEndian;
};

std::string Block(const TiffContent& content) {
    const BlockWriter writer(content.bigEndian);
    TiffFields image = content.image;
    image.push_back(writer.Pointer(EXIF_TAG_EXIF_IFD_POINTER, 0));
    image.push_back(writer.Pointer(EXIF_TAG_GPS_INFO_IFD_POINTER, 0));
    const std::size_t exifOffset = kHeaderSize + writer.Directory(image, kHeaderSize).size();
    const std::string exif = writer.Directory(content.exif, exifOffset);
    const std::size_t gpsOffset = exifOffset + exif.size();
    image[image.size() - 2] = writer.Pointer(EXIF_TAG_EXIF_IFD_POINTER, exifOffset);
    image[image.size() - 1] = writer.Pointer(EXIF_TAG_GPS_INFO_IFD_POINTER, gpsOffset);
    return std::string("Exif\0\0", 6) + writer.Header() + writer.Directory(image, kHeaderSize) + exif +
           writer.Directory(content.gps, gpsOffset);
}

/// Whether the entry holds that many values of its type.
bool HasValues(const ExifEntry* entry, std::size_t count) {
    return entry != nullptr && entry->data != nullptr && entry->components >= count &&
           entry->size >= count * exif_format_get_size(entry->format);
}

std::string TextOf(const ExifEntry* entry) {
    if (!HasValues(entry, 1) || entry->format != EXIF_FORMAT_ASCII) {
        return {};
    }
    const std::string text(reinterpret_cast<const char*>(entry->data), entry->size);
    return text.substr(0, text.find('\0'));
}

} // namespace

ExifEntries::ExifEntries(const TiffContent& content) : m_data(exif_data_new()), m_order(EXIF_BYTE_ORDER_INTEL) {
    if (m_data == nullptr) {
        throw std::bad_alloc();
    }
    // The fields as they are: neither those that libexif does not know taken out, nor others put in as the standard
    // asks.
    exif_data_unset_option(m_data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(m_data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    const std::string block = Block(content);
    exif_data_load_data(m_data.get(), reinterpret_cast<const unsigned char*>(block.data()),
                        static_cast<unsigned>(block.size()));
    m_order = exif_data_get_byte_order(m_data.get());
}

const ExifEntry* ExifEntries::Find(ExifTag tag) const {
    const ExifEntry* entry = exif_content_get_entry(m_data->ifd[EXIF_IFD_EXIF], tag);
    return entry != nullptr ? entry : exif_content_get_entry(m_data->ifd[EXIF_IFD_0], tag);
}

const ExifEntry* ExifEntries::FindGps(std::uint32_t tag) const {
    return exif_content_get_entry(m_data->ifd[EXIF_IFD_GPS], static_cast<ExifTag>(tag));
}

std::optional<std::uint32_t> ExifEntries::NumberOf(const ExifEntry* entry) const {
    if (!HasValues(entry, 1)) {
        return std::nullopt;
    }
    switch (entry->format) {
    case EXIF_FORMAT_BYTE:
        return entry->data[0];
    case EXIF_FORMAT_SHORT:
        return exif_get_short(entry->data, m_order);
    case EXIF_FORMAT_LONG:
        return exif_get_long(entry->data, m_order);
    default:
        return std::nullopt;
    }
}

std::optional<Fraction> ExifEntries::RatioOf(const ExifEntry* entry, std::size_t index) const {
    if (!HasValues(entry, index + 1)) {
        return std::nullopt;
    }
    Fraction fraction = {0, 0};
    if (entry->format == EXIF_FORMAT_RATIONAL) {
        const ExifRational value = exif_get_rational(entry->data + index * sizeof value, m_order);
        fraction = {value.numerator, value.denominator};
    } else if (entry->format == EXIF_FORMAT_SRATIONAL) {
        const ExifSRational value = exif_get_srational(entry->data + index * sizeof value, m_order);
        fraction = {value.numerator, value.denominator};
    }
    return fraction.denominator == 0 ? std::nullopt : std::optional<Fraction>(fraction);
}

std::optional<std::uint32_t> ExifEntries::Number(ExifTag tag) const {
    return NumberOf(Find(tag));
}

std::optional<Fraction> ExifEntries::Ratio(ExifTag tag) const {
    return RatioOf(Find(tag), 0);
}

std::string ExifEntries::Text(ExifTag tag) const {
    return TextOf(Find(tag));
}

std::optional<std::uint32_t> ExifEntries::GpsNumber(std::uint32_t tag) const {
    return NumberOf(FindGps(tag));
}

std::optional<Fraction> ExifEntries::GpsRatio(std::uint32_t tag, std::size_t index) const {
    return RatioOf(FindGps(tag), index);
}

std::string ExifEntries::GpsText(std::uint32_t tag) const {
    return TextOf(FindGps(tag));
}

} // namespace dcfexif
