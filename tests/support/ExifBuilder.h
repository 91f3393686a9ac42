// ExifBuilder: TIFF structures as EXIF has them, in both byte orders, and the smallest files that carry them. What is
// asked for is written, sense or nonsense. Depends on the standard library alone. Plain values.
#ifndef TESTS_SUPPORT_EXIF_BUILDER_H
#define TESTS_SUPPORT_EXIF_BUILDER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace dcftest {

enum class ByteOrder { kLittle, kBig };
inline constexpr ByteOrder kByteOrders[] = {ByteOrder::kLittle, ByteOrder::kBig};

/// The directories of a structure. The last one is named by the first as a directory below it.
enum class ExifDirectory : std::size_t { kImage, kExif, kGps, kBelow };

/// A number in a byte order. @param size 1 to 4.
[[nodiscard]] std::string NumberBytes(ByteOrder order, std::uint32_t number, std::size_t size);

class ExifBuilder {
public:
    using Numbers = std::vector<std::uint32_t>;
    using Ratios = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    explicit ExifBuilder(ByteOrder order) : m_order(order) {}

    // Each takes the place of a field of that tag which is there already.
    ExifBuilder& Byte(ExifDirectory directory, std::uint32_t tag, const Numbers& values);
    ExifBuilder& Short(ExifDirectory directory, std::uint32_t tag, const Numbers& values);
    ExifBuilder& Long(ExifDirectory directory, std::uint32_t tag, const Numbers& values);
    ExifBuilder& Ratio(ExifDirectory directory, std::uint32_t tag, const Ratios& values);
    ExifBuilder& SignedRatio(ExifDirectory directory, std::uint32_t tag, std::int32_t numerator,
                             std::int32_t denominator);
    /// Exactly these characters: a NUL byte at the end is the caller's.
    ExifBuilder& Text(ExifDirectory directory, std::uint32_t tag, const std::string& text);
    /// Any type and count, with the four bytes that stand in the entry: a value, or the offset of one.
    ExifBuilder& Entry(ExifDirectory directory, std::uint32_t tag, std::uint32_t type, std::uint32_t count,
                       std::uint32_t valueOrOffset);
    ExifBuilder& Without(ExifDirectory directory, std::uint32_t tag);
    /// The picture of a TIFF file: behind the structure, as one strip of the first directory, or of the one below it.
    ExifBuilder& Picture(ExifDirectory directory, const std::string& bytes);
    /// Where the directory behind the first one is said to be.
    ExifBuilder& Next(std::uint32_t offset);

    /// The structure from its header on.
    [[nodiscard]] std::string Build() const;
    /// Where a directory stands in it.
    [[nodiscard]] std::uint32_t OffsetOf(ExifDirectory directory) const;

private:
    struct Field {
        std::uint32_t tag;
        std::uint32_t type;
        std::uint32_t count;
        std::string bytes;
        bool verbatim; ///< The bytes stand in the entry whatever the count.
    };
    using Fields = std::vector<Field>;

    ExifBuilder& Add(ExifDirectory directory, Field field);
    [[nodiscard]] std::string NumbersBytes(const Numbers& values, std::size_t size) const;
    [[nodiscard]] std::string DirectoryBytes(const Fields& fields, std::size_t offset, std::uint32_t next) const;
    using Directories = std::array<Fields, 4>;
    using Offsets = std::array<std::uint32_t, 4>;

    /// The directories with what leads to the others and to the picture; what a test has put there itself stays.
    [[nodiscard]] Directories Linked(const Offsets& offsets, std::uint32_t picture) const;
    /// Where each directory stands, and in end where the picture does.
    [[nodiscard]] Offsets Places(std::uint32_t& end) const;

    ByteOrder m_order;
    Directories m_directories;
    ExifDirectory m_pictureDirectory = ExifDirectory::kImage;
    std::string m_picture;
    std::uint32_t m_next = 0;
};

/// The EXIF of an ordinary picture: every field that the collector knows, with values as a camera writes them.
[[nodiscard]] ExifBuilder OrdinaryExif(ByteOrder order);

/// A segment of a JPEG file. @param marker 0xe1 for APP1 and so on.
[[nodiscard]] std::string JpegSegment(int marker, const std::string& content);
[[nodiscard]] std::string ExifSegment(const std::string& tiff);
/// A JPEG file of 640 by 480 pixels, as far as its header tells: segments, frame, a scan of some bytes, its end.
[[nodiscard]] std::string JpegFile(const std::string& segments);
/// The same with EXIF.
[[nodiscard]] std::string JpegWithExif(const std::string& tiff);

} // namespace dcftest

#endif
