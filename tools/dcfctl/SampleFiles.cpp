// Sample pictures and movies; see the header.
#include "SampleFiles.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "Jpeg.h"
#include "Tiff.h"

namespace dcfctl {
namespace {

constexpr int kColumns = 20;
constexpr int kRows = 15;

constexpr std::uint8_t kApplication1 = 0xe1;
constexpr std::uint8_t kApplication2 = 0xe2;

// ---- The picture ----

/// The digits 0 to 9, three cells wide and five high, a row in three bits.
constexpr std::array<std::array<std::uint8_t, 5>, 10> kDigits = {{{7, 5, 5, 5, 7},
                                                                  {2, 6, 2, 2, 7},
                                                                  {7, 1, 7, 4, 7},
                                                                  {7, 1, 3, 1, 7},
                                                                  {5, 5, 7, 1, 1},
                                                                  {7, 4, 7, 1, 7},
                                                                  {7, 4, 7, 5, 7},
                                                                  {7, 1, 2, 2, 2},
                                                                  {7, 5, 7, 5, 7},
                                                                  {7, 5, 7, 1, 7}}};

bool IsDigitCell(int number, int column, int row) {
    constexpr int kLeft = 3;
    constexpr int kTop = 5;
    constexpr int kDigitWidth = 4; // three cells and a gap
    const int place = (column - kLeft) / kDigitWidth;
    const int x = (column - kLeft) % kDigitWidth;
    const int y = row - kTop;
    if (column < kLeft || place > 3 || x > 2 || y < 0 || y > 4) {
        return false;
    }
    constexpr int kPowers[] = {1000, 100, 10, 1};
    const auto digit = static_cast<std::size_t>(number / kPowers[place] % 10);
    return ((kDigits[digit][static_cast<std::size_t>(y)] >> (2 - x)) & 1U) != 0;
}

/// Sky over land, in colours that change with the number, with the number on it.
Mosaic Picture(int number) {
    Mosaic mosaic = {kColumns, kRows, {}};
    const auto shade = [](int value) { return static_cast<std::uint8_t>(value & 0xff); };
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const bool sky = row < 11;
            Colour cell = sky ? Colour{shade(60 + row * 9), shade(100 + row * 8 + number * 7 % 40), 220}
                              : Colour{shade(70 + number * 13 % 60), shade(120 + column * 3), 60};
            if (IsDigitCell(number, column, row)) {
                cell = {255, 250, 235};
            }
            mosaic.cells.push_back(cell);
        }
    }
    return mosaic;
}

// ---- EXIF ----

std::string ExifDate(std::time_t time) {
    std::tm parts = {};
    char text[20] = "";
    if (gmtime_r(&time, &parts) != nullptr) {
        (void)std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &parts); // a date of four-digit years fits
    }
    return text;
}

void AddMaker(TiffDirectory& directory) {
    directory.Text(0x010f, "Sample Camera");
    directory.Text(0x0110, "dcfctl sample");
}

/// How a picture was taken: one of a few ways, by its number.
struct Exposure {
    std::uint32_t iso;
    std::uint32_t seconds[2]; ///< A fraction.
    std::uint32_t aperture;   ///< Tenths.
    std::uint32_t focal;      ///< Millimetres.
    std::int32_t bias;        ///< Thirds of an EV.
    std::uint32_t flash;
    std::uint32_t scene;
};

constexpr Exposure kExposures[] = {
    {200, {1, 125}, 56, 35, 0, 0x10, 0},   // by day, flash off
    {100, {1, 1000}, 28, 50, -1, 0x18, 2}, // a portrait, flash automatic
    {1600, {1, 60}, 18, 18, 0, 0x19, 0},   // indoors, flash fired
    {100, {4, 1}, 110, 24, 2, 0x10, 3},    // at night
};

TiffDirectory ExposureDirectory(int number, std::time_t time, std::uint32_t width, std::uint32_t height) {
    const Exposure& taken = kExposures[static_cast<std::size_t>(number) % std::size(kExposures)];
    TiffDirectory exif;
    exif.Rational(0x829a, taken.seconds[0], taken.seconds[1]);  // exposure time in seconds
    exif.Rational(0x829d, taken.aperture, 10);                  // aperture
    exif.Short(0x8822, 2);                                      // normal program
    exif.Short(0x8827, taken.iso);                              // ISO speed
    exif.Undefined(0x9000, "0230");                             // EXIF version
    exif.Text(0x9003, ExifDate(time));                          // taken
    exif.Text(0x9004, ExifDate(time));                          // stored
    exif.Undefined(0x9101, std::string("\x01\x02\x03\x00", 4)); // luminance and two colour differences
    exif.SignedRational(0x9204, taken.bias, 3);                 // exposure bias
    exif.Short(0x9207, 5);                                      // pattern metering
    exif.Short(0x9209, taken.flash);
    exif.Rational(0x920a, taken.focal, 1); // focal length in millimetres
    exif.Undefined(0xa000, "0100");        // interchange format version
    exif.Short(0xa001, 1);                 // sRGB
    exif.Long(0xa002, width);
    exif.Long(0xa003, height);
    exif.Short(0xa402, 0);                     // automatic exposure
    exif.Short(0xa403, 0);                     // automatic white balance
    exif.Short(0xa405, taken.focal * 15 / 10); // focal length on 35 mm film
    exif.Short(0xa406, taken.scene);
    return exif;
}

/// Where a picture was taken; not every camera knows.
bool HasPosition(int number) {
    return number % 10 == 3;
}

TiffDirectory PositionDirectory() {
    TiffDirectory gps;
    gps.Undefined(0, std::string("\x02\x03\x00\x00", 4)); // version
    gps.Text(1, "N");
    gps.Rationals(2, {48, 1, 51, 1, 2964, 100});
    gps.Text(3, "E");
    gps.Rationals(4, {2, 1, 17, 1, 4020, 100});
    gps.Byte(5, 0); // above the sea
    gps.Rational(6, 357, 10);
    return gps;
}

/// The directories of EXIF and GPS, for a first directory that is filled by somebody else.
struct ExifPart {
    int number;
    TiffDirectory exposure;

    /// Names them in the first directory. @param offset where the first of them stands.
    void Name(TiffDirectory& first, std::uint32_t offset) const {
        first.Long(0x8769, offset);
        if (HasPosition(number)) {
            first.Long(0x8825, offset + exposure.Size());
        }
    }
    [[nodiscard]] std::string Bytes(std::uint32_t offset) const {
        return exposure.Bytes(offset) +
               (HasPosition(number) ? PositionDirectory().Bytes(offset + exposure.Size()) : std::string());
    }
};

std::string ExifSegment(int number, std::time_t time) {
    const ExifPart part = {number, ExposureDirectory(number, time, kColumns * kBlockSize, kRows * kBlockSize)};
    const auto mainDirectory = [&](std::uint32_t exifOffset) {
        TiffDirectory main;
        AddMaker(main);
        main.Short(0x0112, 1);        // upright
        main.Rational(0x011a, 72, 1); // pixels per inch
        main.Rational(0x011b, 72, 1);
        main.Short(0x0128, 2);
        main.Text(0x0132, ExifDate(time));
        main.Short(0x0213, 1);
        part.Name(main, exifOffset);
        return main;
    };
    const std::uint32_t exifOffset = kTiffHeaderSize + mainDirectory(0).Size();
    return JpegSegment(kApplication1, std::string("Exif\0\0", 6) + TiffHeader() +
                                          mainDirectory(exifOffset).Bytes(kTiffHeaderSize) + part.Bytes(exifOffset));
}

// ---- The kinds of file ----

std::string Jpg(int number, std::time_t time) {
    return EncodeJpeg(Picture(number), ExifSegment(number, time));
}

/// A grey picture in the container that raw files use.
std::string Srw(int number, std::time_t time) {
    const Mosaic picture = Picture(number);
    std::string pixels;
    for (const Colour cell : picture.cells) {
        pixels += static_cast<char>(cell.green);
    }
    const ExifPart part = {number, ExposureDirectory(number, time, kColumns, kRows)};
    const auto directory = [&](std::uint32_t pixelOffset, std::uint32_t exifOffset) {
        TiffDirectory raw;
        raw.Long(0x0100, kColumns);
        raw.Long(0x0101, kRows);
        raw.Short(0x0102, 8); // bits per pixel
        raw.Short(0x0103, 1); // not compressed
        raw.Short(0x0106, 1); // black is 0
        AddMaker(raw);
        raw.Long(0x0111, pixelOffset);
        raw.Short(0x0112, 1); // upright
        raw.Short(0x0115, 1); // one value per pixel
        raw.Long(0x0116, kRows);
        raw.Long(0x0117, static_cast<std::uint32_t>(pixels.size()));
        raw.Text(0x0132, ExifDate(time));
        part.Name(raw, exifOffset);
        return raw;
    };
    const std::uint32_t exifOffset = kTiffHeaderSize + directory(0, 0).Size();
    const auto pixelOffset = static_cast<std::uint32_t>(exifOffset + part.Bytes(0).size());
    return TiffHeader() + directory(pixelOffset, exifOffset).Bytes(kTiffHeaderSize) + part.Bytes(exifOffset) + pixels;
}

/// Two pictures behind each other, with an index in the first that tells where the second is.
std::string Mpo(int number, std::time_t time) {
    const std::string second = EncodeJpeg(Picture(number + 1), ExifSegment(number, time));
    const auto index = [](std::uint32_t firstSize, std::uint32_t secondSize, std::uint32_t secondOffset) {
        constexpr std::uint32_t kLeftRight = 0x00020002;
        constexpr std::uint32_t kRepresentative = 0x20000000;
        TiffDirectory directory;
        directory.Undefined(0xb000, "0100");
        directory.Long(0xb001, 2);
        directory.Undefined(0xb002, LittleEndian32(kRepresentative | kLeftRight) + LittleEndian32(firstSize) +
                                        LittleEndian32(0) + LittleEndian32(0) + LittleEndian32(kLeftRight) +
                                        LittleEndian32(secondSize) + LittleEndian32(secondOffset) + LittleEndian32(0));
        return JpegSegment(kApplication2, std::string("MPF\0", 4) + TiffHeader() + directory.Bytes(kTiffHeaderSize));
    };
    const std::string exif = ExifSegment(number, time);
    const auto firstSize = static_cast<std::uint32_t>(EncodeJpeg(Picture(number), exif + index(0, 0, 0)).size());
    // The index counts from its own header: behind the start of the image, EXIF, the segment's four bytes and its name.
    const auto header = static_cast<std::uint32_t>(2 + exif.size() + 4 + 4);
    const auto secondSize = static_cast<std::uint32_t>(second.size());
    return EncodeJpeg(Picture(number), exif + index(firstSize, secondSize, firstSize - header)) + second;
}

std::string Box(const char* name, const std::string& content) {
    return BigEndian32(static_cast<std::uint32_t>(content.size() + 8)) + name + content;
}

/// A movie without tracks.
std::string Mp4() {
    constexpr std::uint32_t kTicksPerSecond = 1000;
    const std::string header = BigEndian32(0) + BigEndian32(0) + BigEndian32(0) + BigEndian32(kTicksPerSecond) +
                               BigEndian32(2 * kTicksPerSecond) + BigEndian32(0x00010000) + std::string(76, '\0') +
                               BigEndian32(1);
    return Box("ftyp", "mp42" + BigEndian32(0) + "mp42isom") + Box("moov", Box("mvhd", header)) +
           Box("mdat", std::string(64, '\0'));
}

std::string Chunk(const char* name, const std::string& content) {
    return name + LittleEndian32(static_cast<std::uint32_t>(content.size())) + content;
}

/// A movie without frames.
std::string Avi() {
    constexpr std::uint32_t kMicrosecondsPerFrame = 33333;
    const std::string header = LittleEndian32(kMicrosecondsPerFrame) + std::string(28, '\0') +
                               LittleEndian32(kColumns * kBlockSize) + LittleEndian32(kRows * kBlockSize) +
                               std::string(16, '\0');
    return Chunk("RIFF", "AVI " + Chunk("LIST", "hdrl" + Chunk("avih", header)) + Chunk("LIST", "movi"));
}

} // namespace

std::string SampleFileContent(eFileType type, int number, std::time_t time) {
    switch (type) {
    case FILE_TYPE_SRW:
        return Srw(number, time);
    case FILE_TYPE_MPO:
        return Mpo(number, time);
    case FILE_TYPE_MP4:
        return Mp4();
    case FILE_TYPE_AVI:
        return Avi();
    default:
        return Jpg(number, time);
    }
}

} // namespace dcfctl
