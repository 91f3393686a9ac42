// The fields of a picture as values, read with libexif. It is given a block that was put together from the wanted
// fields alone, all of them whole: neither a maker's note nor an offset of the file's ever reaches it. One thread.
#ifndef DCFEXIF_EXIF_ENTRIES_H
#define DCFEXIF_EXIF_ENTRIES_H

#include <libexif/exif-data.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Tiff.h"

namespace dcfexif {

/// A fraction whose denominator is not 0.
struct Fraction {
    std::int64_t numerator;
    std::int64_t denominator;
};

class ExifEntries {
public:
    /// Throws std::bad_alloc without memory.
    explicit ExifEntries(const TiffContent& content);

    /// The first value of a field of whole numbers. Fields are looked for in EXIF's directory, then in the first one.
    /// @return nothing when there is no such field, or it has another type, or no values.
    [[nodiscard]] std::optional<std::uint32_t> Number(ExifTag tag) const;
    /// The first value of a field of fractions.
    [[nodiscard]] std::optional<Fraction> Ratio(ExifTag tag) const;
    /// A text, up to its first NUL byte or its end.
    [[nodiscard]] std::string Text(ExifTag tag) const;

    // The same in the directory of GPS.
    [[nodiscard]] std::optional<std::uint32_t> GpsNumber(std::uint32_t tag) const;
    [[nodiscard]] std::optional<Fraction> GpsRatio(std::uint32_t tag, std::size_t index) const;
    [[nodiscard]] std::string GpsText(std::uint32_t tag) const;

private:
    struct Release {
        void operator()(ExifData* data) const {
            exif_data_unref(data);
        }
    };

    [[nodiscard]] const ExifEntry* Find(ExifTag tag) const;
    [[nodiscard]] const ExifEntry* FindGps(std::uint32_t tag) const;
    [[nodiscard]] std::optional<std::uint32_t> NumberOf(const ExifEntry* entry) const;
    [[nodiscard]] std::optional<Fraction> RatioOf(const ExifEntry* entry, std::size_t index) const;

    std::unique_ptr<ExifData, Release> m_data;
    ExifByteOrder m_order;
};

} // namespace dcfexif

#endif
