// The small JPEG reader; see the header.
#include "JpegReader.h"

#include <cstddef>
#include <map>
#include <stdexcept>
#include <utility>

namespace clitest {
namespace {

constexpr int kComponents = 3;

unsigned At(const std::string& bytes, std::size_t i) {
    return static_cast<unsigned char>(bytes.at(i));
}

unsigned At16(const std::string& bytes, std::size_t i) {
    return (At(bytes, i) << 8U) | At(bytes, i + 1);
}

struct Segment {
    unsigned marker;
    std::string content;
    std::size_t end; ///< Where the next one begins.
};

Segment SegmentAt(const std::string& bytes, std::size_t at) {
    if (At(bytes, at) != 0xff) {
        throw std::runtime_error("no marker where one should be");
    }
    const std::size_t length = At16(bytes, at + 2);
    return {At(bytes, at + 1), bytes.substr(at + 4, length - 2), at + 2 + length};
}

/// From a code and its length to its value.
using HuffmanTable = std::map<std::pair<unsigned, unsigned>, unsigned>;

HuffmanTable ReadTable(const std::string& content) {
    HuffmanTable table;
    std::size_t value = 17;
    unsigned code = 0;
    for (unsigned length = 1; length <= 16; ++length) {
        for (unsigned i = 0; i < At(content, length); ++i) {
            table[{length, code++}] = At(content, value++);
        }
        code <<= 1U;
    }
    return table;
}

class BitReader {
public:
    BitReader(const std::string& bytes, std::size_t at) : m_bytes(bytes), m_at(at) {}

    unsigned Bits(unsigned count) {
        unsigned value = 0;
        for (unsigned i = 0; i < count; ++i) {
            value = (value << 1U) | Bit();
        }
        return value;
    }

    unsigned Value(const HuffmanTable& table) {
        unsigned code = 0;
        for (unsigned length = 1; length <= 16; ++length) {
            code = (code << 1U) | Bit();
            if (const auto found = table.find({length, code}); found != table.end()) {
                return found->second;
            }
        }
        throw std::runtime_error("no such code");
    }

    /// Where the marker behind the scan should stand.
    [[nodiscard]] std::size_t End() const {
        return m_at;
    }

private:
    unsigned Bit() {
        if (m_left == 0) {
            m_byte = At(m_bytes, m_at++);
            m_left = 8;
            if (m_byte == 0xff && At(m_bytes, m_at++) != 0) {
                throw std::runtime_error("the scan ends too early");
            }
        }
        --m_left;
        return (m_byte >> m_left) & 1U;
    }

    const std::string& m_bytes;
    std::size_t m_at;
    unsigned m_byte = 0;
    unsigned m_left = 0;
};

int Difference(BitReader& bits, unsigned sizeClass) {
    const int value = static_cast<int>(bits.Bits(sizeClass));
    return sizeClass > 0 && value < (1 << (sizeClass - 1)) ? value - (1 << sizeClass) + 1 : value;
}

void ReadScan(const std::string& bytes, std::size_t at, std::map<unsigned, HuffmanTable>& tables, Picture& picture) {
    BitReader bits(bytes, at);
    int means[kComponents] = {};
    const std::size_t count = std::size_t{picture.width / 8} * (picture.height / 8);
    while (picture.blocks.size() < count) {
        for (int& mean : means) {
            mean += Difference(bits, bits.Value(tables[0x00]));
            if (bits.Value(tables[0x10]) != 0) {
                throw std::runtime_error("a block with detail");
            }
        }
        picture.blocks.push_back(means[0]);
    }
    if (At(bytes, bits.End()) != 0xff || At(bytes, bits.End() + 1) != 0xd9) {
        throw std::runtime_error("no end behind the scan");
    }
    picture.rest = bytes.substr(bits.End() + 2);
}

} // namespace

Picture DecodeJpeg(const std::string& bytes) {
    if (bytes.substr(0, 2) != "\xff\xd8") {
        throw std::runtime_error("no start of an image");
    }
    Picture picture;
    std::map<unsigned, HuffmanTable> tables;
    std::size_t at = 2;
    while (true) {
        const Segment segment = SegmentAt(bytes, at);
        at = segment.end;
        if (segment.marker == 0xc0) {
            picture.height = At16(segment.content, 1);
            picture.width = At16(segment.content, 3);
        } else if (segment.marker == 0xc4) {
            tables[At(segment.content, 0)] = ReadTable(segment.content);
        } else if (segment.marker == 0xda) {
            ReadScan(bytes, at, tables, picture);
            return picture;
        }
    }
}

std::string ExifOf(const std::string& bytes) {
    const Segment segment = SegmentAt(bytes, 2);
    if (segment.marker != 0xe1 || segment.content.substr(0, 6) != std::string("Exif\0\0", 6)) {
        throw std::runtime_error("no EXIF segment");
    }
    return segment.content;
}

} // namespace clitest
