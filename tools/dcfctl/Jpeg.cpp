// The mosaic encoder; see the header. A block of one colour has a mean (DC) value and no detail (AC) values, so the
// Huffman table for the details needs a single code: "end of block".
#include "Jpeg.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "Tiff.h"

namespace dcfctl {
namespace {

constexpr std::uint8_t kStartOfFrame = 0xc0;
constexpr std::uint8_t kHuffmanTable = 0xc4;
constexpr std::uint8_t kStartOfImage = 0xd8;
constexpr std::uint8_t kEndOfImage = 0xd9;
constexpr std::uint8_t kStartOfScan = 0xda;
constexpr std::uint8_t kQuantisation = 0xdb;

constexpr int kComponents = 3;
/// The mean of a block is stored eightfold; a quantiser of 8 brings it back to the range of a pixel.
constexpr char kQuantiser = 8;

/// Codes of each length, 1 to 16, for the size classes 0 to 11 of a difference of means.
constexpr std::array<std::uint8_t, 16> kMeanLengths = {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr unsigned kMeanClasses = 12;

std::string Marker(std::uint8_t code) {
    return {static_cast<char>(0xff), static_cast<char>(code)};
}

class BitWriter {
public:
    void Put(unsigned bits, unsigned count) {
        for (unsigned i = count; i-- > 0;) {
            m_byte = (m_byte << 1U) | ((bits >> i) & 1U);
            if (++m_used == 8) {
                Append();
            }
        }
    }

    [[nodiscard]] std::string Finish() {
        while (m_used != 0) {
            Put(1, 1); // a scan is filled up with ones
        }
        return m_bytes;
    }

private:
    void Append() {
        m_bytes += static_cast<char>(m_byte);
        if (m_byte == 0xff) {
            m_bytes += '\0'; // else it would read as a marker
        }
        m_byte = 0;
        m_used = 0;
    }

    std::string m_bytes;
    unsigned m_byte = 0;
    unsigned m_used = 0;
};

/// Writes the code of a size class: codes count up within a length and double from one length to the next.
void PutMeanCode(BitWriter& out, unsigned sizeClass) {
    unsigned code = 0;
    unsigned first = 0;
    for (unsigned length = 1; length <= kMeanLengths.size(); ++length) {
        const unsigned count = kMeanLengths[length - 1];
        if (sizeClass < first + count) {
            out.Put(code + sizeClass - first, length);
            return;
        }
        first += count;
        code = (code + count) << 1U;
    }
}

void PutMean(BitWriter& out, int difference) {
    unsigned sizeClass = 0;
    while ((std::abs(difference) >> sizeClass) != 0) {
        ++sizeClass;
    }
    PutMeanCode(out, sizeClass);
    const int bits = difference < 0 ? difference + (1 << sizeClass) - 1 : difference;
    out.Put(static_cast<unsigned>(bits), sizeClass);
}

/// Luminance and the two colour differences, each around 0.
std::array<int, kComponents> Components(Colour colour) {
    const double r = colour.red;
    const double g = colour.green;
    const double b = colour.blue;
    const auto limited = [](double value) { return std::clamp(static_cast<int>(value), -128, 127); };
    return {limited(0.299 * r + 0.587 * g + 0.114 * b - 128), limited(-0.168736 * r - 0.331264 * g + 0.5 * b),
            limited(0.5 * r - 0.418688 * g - 0.081312 * b)};
}

std::string Scan(const Mosaic& mosaic) {
    BitWriter out;
    std::array<int, kComponents> before = {};
    for (const Colour colour : mosaic.cells) {
        const auto means = Components(colour);
        for (std::size_t i = 0; i < kComponents; ++i) {
            PutMean(out, means[i] - before[i]);
            out.Put(0, 1); // end of block
        }
        before = means;
    }
    return out.Finish();
}

std::string Tables() {
    std::string mean(1, '\0'); // table 0 for means
    mean.append(kMeanLengths.begin(), kMeanLengths.end());
    for (unsigned sizeClass = 0; sizeClass < kMeanClasses; ++sizeClass) {
        mean += static_cast<char>(sizeClass);
    }
    std::string detail(1, '\x10'); // table 0 for details: one code of one bit, for the value 0
    detail += '\x01';
    detail += std::string(16, '\0');
    return JpegSegment(kQuantisation, '\0' + std::string(64, kQuantiser)) + JpegSegment(kHuffmanTable, mean) +
           JpegSegment(kHuffmanTable, detail);
}

std::string Frame(const Mosaic& mosaic) {
    const auto pixels = [](int cells) { return BigEndian16(static_cast<std::uint32_t>(cells * kBlockSize)); };
    std::string frame = '\x08' + pixels(mosaic.rows) + pixels(mosaic.columns) + static_cast<char>(kComponents);
    for (char component = 1; component <= kComponents; ++component) {
        frame += component;
        frame += '\x11'; // not subsampled
        frame += '\0';   // quantisation table 0
    }
    return JpegSegment(kStartOfFrame, frame);
}

std::string ScanHeader() {
    std::string header(1, static_cast<char>(kComponents));
    for (char component = 1; component <= kComponents; ++component) {
        header += component;
        header += '\0'; // Huffman tables 0
    }
    const char wholeBlock[] = {0, 63, 0};
    header.append(wholeBlock, sizeof wholeBlock);
    return JpegSegment(kStartOfScan, header);
}

} // namespace

std::string JpegSegment(std::uint8_t marker, std::string_view content) {
    return Marker(marker) + BigEndian16(static_cast<std::uint32_t>(content.size() + 2)) + std::string(content);
}

std::string EncodeJpeg(const Mosaic& mosaic, std::string_view segments) {
    return Marker(kStartOfImage) + std::string(segments) + Tables() + Frame(mosaic) + ScanHeader() + Scan(mosaic) +
           Marker(kEndOfImage);
}

} // namespace dcfctl
