// The choices of EXIF: every value that has words, every neighbour that has none, through the collector and back.
#include "Collected.h"

namespace dcftest {
namespace {

using enum ExifDirectory;

struct ChoiceField {
    const char* name;
    ExifDirectory directory;
    std::uint32_t tag;
    std::int32_t DcfExifInfo::*field;
    const char* (*text)(std::int32_t);
    std::int32_t unknown;
    std::vector<std::pair<std::int32_t, const char*>> words;
};

const std::vector<ChoiceField>& ChoiceFields() {
    using I = DcfExifInfo;
    static const std::vector<ChoiceField> fields = {
        {"orientation",
         kImage,
         0x0112,
         &I::orientation,
         DcfExifOrientationText,
         0,
         {{1, "upright"},
          {2, "mirror"},
          {3, "turn around"},
          {4, "mirror, turn around"},
          {5, "mirror, turn left"},
          {6, "turn right"},
          {7, "mirror, turn right"},
          {8, "turn left"}}},
        {"program",
         kExif,
         0x8822,
         &I::exposureProgram,
         DcfExifProgramText,
         0,
         {{1, "manual"},
          {2, "normal program"},
          {3, "aperture priority"},
          {4, "shutter priority"},
          {5, "creative"},
          {6, "action"},
          {7, "portrait"},
          {8, "landscape"}}},
        {"metering",
         kExif,
         0x9207,
         &I::meteringMode,
         DcfExifMeteringText,
         0,
         {{1, "average"},
          {2, "centre-weighted"},
          {3, "spot"},
          {4, "multi-spot"},
          {5, "pattern"},
          {6, "partial"},
          {255, "other"}}},
        {"light",
         kExif,
         0x9208,
         &I::lightSource,
         DcfExifLightText,
         0,
         {{1, "daylight"},
          {2, "fluorescent"},
          {3, "tungsten"},
          {4, "flash"},
          {9, "fine weather"},
          {10, "cloudy"},
          {11, "shade"},
          {12, "daylight fluorescent"},
          {13, "day white fluorescent"},
          {14, "cool white fluorescent"},
          {15, "white fluorescent"},
          {16, "warm white fluorescent"},
          {17, "standard light A"},
          {18, "standard light B"},
          {19, "standard light C"},
          {20, "D55"},
          {21, "D65"},
          {22, "D75"},
          {23, "D50"},
          {24, "studio tungsten"},
          {255, "other"}}},
        {"white balance",
         kExif,
         0xa403,
         &I::whiteBalance,
         DcfExifWhiteBalanceText,
         -1,
         {{0, "automatic"}, {1, "manual"}}},
        {"exposure mode",
         kExif,
         0xa402,
         &I::exposureMode,
         DcfExifExposureModeText,
         -1,
         {{0, "automatic"}, {1, "manual"}, {2, "automatic bracket"}}},
        {"scene",
         kExif,
         0xa406,
         &I::sceneCaptureType,
         DcfExifSceneText,
         -1,
         {{0, "standard"}, {1, "landscape"}, {2, "portrait"}, {3, "night"}}},
        {"contrast", kExif, 0xa408, &I::contrast, DcfExifHardnessText, -1, {{0, "normal"}, {1, "soft"}, {2, "hard"}}},
        {"saturation",
         kExif,
         0xa409,
         &I::saturation,
         DcfExifSaturationText,
         -1,
         {{0, "normal"}, {1, "low"}, {2, "high"}}},
        {"sharpness", kExif, 0xa40a, &I::sharpness, DcfExifHardnessText, -1, {{0, "normal"}, {1, "soft"}, {2, "hard"}}},
    };
    return fields;
}

class ExifWords : public ExifTest {};

TEST_F(ExifWords, ComeBackForEveryValueAndForNoOther) {
    for (const ChoiceField& row : ChoiceFields()) {
        std::size_t known = 0;
        for (std::int32_t value = 0; value <= 256; ++value) {
            const auto number = static_cast<std::uint32_t>(value);
            ExifBuilder exif(ByteOrder::kBig);
            exif.Short(kExif, 0x8827, {100}).Short(row.directory, row.tag, {number});
            const std::int32_t read = CollectJpeg(exif).Fields().*row.field;
            if (known < row.words.size() && row.words[known].first == value) {
                EXPECT_EQ(read, value) << row.name;
                EXPECT_STREQ(row.text(read), row.words[known].second) << row.name << " " << value;
                ++known;
            } else {
                EXPECT_EQ(read, row.unknown) << row.name << " " << value;
                EXPECT_EQ(row.text(value), nullptr) << row.name << " " << value;
            }
        }
        EXPECT_EQ(known, row.words.size()) << row.name;
        EXPECT_EQ(row.text(row.unknown), nullptr) << row.name;
    }
}

TEST_F(ExifWords, AreUnknownForNumbersThatNoIntHoldsAndForOtherTypes) {
    for (const ChoiceField& row : ChoiceFields()) {
        ExifBuilder exif = OrdinaryExif(ByteOrder::kLittle);
        for (const std::uint32_t number : {0x80000000U, 0xffffffffU, 0x00010001U}) {
            EXPECT_EQ(CollectJpeg(exif.Long(row.directory, row.tag, {number})).Fields().*row.field, row.unknown);
        }
        EXPECT_EQ(CollectJpeg(exif.Text(row.directory, row.tag, "1")).Fields().*row.field, row.unknown) << row.name;
        EXPECT_EQ(CollectJpeg(exif.Ratio(row.directory, row.tag, {{1, 1}})).Fields().*row.field, row.unknown);
        EXPECT_EQ(CollectJpeg(exif.Short(row.directory, row.tag, {})).Fields().*row.field, row.unknown) << "no value";
    }
}

TEST(ExifFlash, IsToldInWords) {
    const struct {
        std::uint8_t flash;
        const char* text;
        const char* mode;
        const char* seen;
    } rows[] = {
        {0x00, nullptr, nullptr, nullptr},
        {0x7f, nullptr, nullptr, nullptr}, // not known, whatever else is set
        {0x80, "did not fire", nullptr, nullptr},
        {0x81, "fired", nullptr, nullptr},
        {0x85, "fired", nullptr, "no return seen"},
        {0x87, "fired", nullptr, "return seen"},
        {0x89, "fired", "on", nullptr},
        {0x90, "did not fire", "off", nullptr},
        {0x98, "did not fire", "automatic", nullptr},
        {0xdf, "fired", "automatic", "return seen"},
        {0xa0, "no flash", nullptr, nullptr},
        {0xb0, "no flash", "off", nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(DcfExifFlashText(row.flash), row.text) << int{row.flash};
        EXPECT_STREQ(DcfExifFlashModeText(row.flash), row.mode) << int{row.flash};
        EXPECT_STREQ(DcfExifFlashReturnText(row.flash), row.seen) << int{row.flash};
    }
}

} // namespace
} // namespace dcftest
