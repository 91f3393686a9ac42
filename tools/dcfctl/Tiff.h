// Writes the small TIFF structures that sample files carry: EXIF, the index of a multi-picture file, a raw stand-in.
// Little-endian. Plain values, any thread.
#ifndef DCFCTL_TIFF_H
#define DCFCTL_TIFF_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dcfctl {

[[nodiscard]] std::string LittleEndian16(std::uint32_t value);
[[nodiscard]] std::string LittleEndian32(std::uint32_t value);
[[nodiscard]] std::string BigEndian16(std::uint32_t value);
[[nodiscard]] std::string BigEndian32(std::uint32_t value);

/// The eight bytes in front of the first directory.
[[nodiscard]] std::string TiffHeader();
inline constexpr std::uint32_t kTiffHeaderSize = 8;

/// One image file directory. Fields are to be added in the order of their tags.
class TiffDirectory {
public:
    void Short(std::uint32_t tag, std::uint32_t value);
    void Long(std::uint32_t tag, std::uint32_t value);
    void Text(std::uint32_t tag, std::string_view text);
    void Rational(std::uint32_t tag, std::uint32_t numerator, std::uint32_t denominator);
    /// Several fractions. @param values numerators and denominators in turn.
    void Rationals(std::uint32_t tag, const std::vector<std::uint32_t>& values);
    void SignedRational(std::uint32_t tag, std::int32_t numerator, std::int32_t denominator);
    void Byte(std::uint32_t tag, std::uint8_t value);
    void Undefined(std::uint32_t tag, std::string_view bytes);

    [[nodiscard]] std::uint32_t Size() const;
    /// @param offset where the directory will stand, counted from the header.
    [[nodiscard]] std::string Bytes(std::uint32_t offset) const;

private:
    struct Field {
        std::uint32_t tag;
        std::uint32_t type;
        std::uint32_t count;
        std::string bytes;
    };
    std::vector<Field> m_fields;
};

} // namespace dcfctl

#endif
