// Every field of a record: from which entries it comes, what is made of them, and when it is unknown.
#include "Collected.h"

#include <climits>
#include <functional>

namespace dcftest {
namespace {

using enum ExifDirectory;
using Change = std::function<void(ExifBuilder&)>;

/// What the fields of an ordinary picture are, all of them, in the order of the header.
void ExpectOrdinary(const DcfExifInfo& fields) {
    EXPECT_STREQ(fields.date, "2024:05:01 10:20:30");
    EXPECT_EQ(fields.width, 5472);
    EXPECT_EQ(fields.height, 3648);
    EXPECT_EQ(fields.orientation, 6);
    EXPECT_EQ(fields.iso, 400U);
    EXPECT_EQ(fields.exposureNumerator, 1);
    EXPECT_EQ(fields.exposureDenominator, 125);
    EXPECT_EQ(fields.fNumber, 280);
    EXPECT_EQ(fields.focalLength, 1850);
    EXPECT_EQ(fields.focalLength35, 28);
    EXPECT_EQ(fields.exposureBias, -33);
    EXPECT_EQ(fields.exposureProgram, 3);
    EXPECT_EQ(fields.meteringMode, 5);
    EXPECT_EQ(fields.lightSource, 10);
    EXPECT_EQ(fields.digitalZoom, 150);
    EXPECT_EQ(fields.flash, 0x99);
    EXPECT_TRUE(fields.hasPosition);
    EXPECT_EQ(fields.latitude, 52520000);
    EXPECT_EQ(fields.longitude, 13405100);
    EXPECT_EQ(fields.altitude, 3450);
    EXPECT_EQ(fields.whiteBalance, 1);
    EXPECT_EQ(fields.exposureMode, 2);
    EXPECT_EQ(fields.sceneCaptureType, 1);
    EXPECT_EQ(fields.contrast, 1);
    EXPECT_EQ(fields.saturation, 2);
    EXPECT_EQ(fields.sharpness, 0);
}

class ExifFields : public ExifTest {};

TEST_F(ExifFields, OfAnOrdinaryPictureAreAllKnownInBothByteOrders) {
    for (const ByteOrder order : kByteOrders) {
        ExpectOrdinary(CollectJpeg(OrdinaryExif(order)).Fields());
    }
}

TEST_F(ExifFields, StandInTheirPlacesOfTheRecord) {
    const PhotoInfo info = CollectJpeg(OrdinaryExif(ByteOrder::kLittle)).info;
    EXPECT_EQ(info.attributeByte1, 0x81);
    EXPECT_EQ(info.attributeByte2, 6);
    EXPECT_EQ(info.attributeWord, 400U);
    EXPECT_EQ(info.attributeFlag, 0x99);
    const std::int32_t words[] = {5472, 3648, 1, 125};
    EXPECT_EQ(std::memcmp(info.attributeWords, words, sizeof words), 0);
    EXPECT_STREQ(info.date, "2024:05:01 10:20:30");
    const std::int32_t trailing[] = {280, 1850, 28, -33, 3, 5, 52520000, 13405100, 3450, 10, 150, 1, 2, 1, 1, 2, 0};
    for (std::size_t i = 0; i < std::size(trailing); ++i) {
        EXPECT_EQ(info.trailingWords[i], trailing[i]) << i;
    }
}

TEST_F(ExifFields, ThatAreNotThereAreUnknown) {
    const DcfExifInfo fields = CollectJpeg(ExifBuilder(ByteOrder::kBig).Short(kExif, 0x8827, {100})).Fields();
    EXPECT_STREQ(fields.date, "");
    EXPECT_EQ(fields.width, 640) << "from the frame";
    EXPECT_EQ(fields.height, 480);
    EXPECT_EQ(fields.orientation, 0);
    EXPECT_EQ(fields.iso, 100U);
    EXPECT_EQ(fields.exposureNumerator, 0);
    EXPECT_EQ(fields.exposureDenominator, 0);
    EXPECT_EQ(fields.fNumber, 0);
    EXPECT_EQ(fields.focalLength, 0);
    EXPECT_EQ(fields.focalLength35, 0);
    EXPECT_EQ(fields.exposureBias, DCF_EXIF_UNKNOWN_SIGNED);
    EXPECT_EQ(fields.exposureProgram, 0);
    EXPECT_EQ(fields.meteringMode, 0);
    EXPECT_EQ(fields.lightSource, 0);
    EXPECT_EQ(fields.digitalZoom, 0);
    EXPECT_EQ(fields.flash, 0);
    EXPECT_FALSE(fields.hasPosition);
    EXPECT_EQ(fields.latitude, DCF_EXIF_UNKNOWN_SIGNED);
    EXPECT_EQ(fields.longitude, DCF_EXIF_UNKNOWN_SIGNED);
    EXPECT_EQ(fields.altitude, DCF_EXIF_UNKNOWN_SIGNED);
    EXPECT_EQ(fields.whiteBalance, DCF_EXIF_UNKNOWN_CHOICE);
    EXPECT_EQ(fields.exposureMode, DCF_EXIF_UNKNOWN_CHOICE);
    EXPECT_EQ(fields.sceneCaptureType, DCF_EXIF_UNKNOWN_CHOICE);
    EXPECT_EQ(fields.contrast, DCF_EXIF_UNKNOWN_CHOICE);
    EXPECT_EQ(fields.saturation, DCF_EXIF_UNKNOWN_CHOICE);
    EXPECT_EQ(fields.sharpness, DCF_EXIF_UNKNOWN_CHOICE);
}

/// The date field when the original date is that text, and nothing else tells one.
#define EXPECT_DATE(text, expected)                                                                                    \
    EXPECT_STREQ(CollectJpeg(OrdinaryExif(ByteOrder::kLittle).Without(kExif, 0x9004).Text(kExif, 0x9003, (text)))      \
                     .Fields()                                                                                         \
                     .date,                                                                                            \
                 expected)                                                                                             \
        << (text)

TEST_F(ExifFields, DateIsKnownWhenItIsARealOne) {
    EXPECT_DATE(std::string("1999:12:31 23:59:60\0", 20), "1999:12:31 23:59:60");
    EXPECT_DATE("1999:12:31 23:59:59" + std::string(256 - 19, ' '), "1999:12:31 23:59:59");
    EXPECT_DATE("1999:12:31 23:59:59" + std::string(257 - 19, ' '), ""); // no camera writes that much
    EXPECT_DATE("2024:05:01 10:20:30", "2024:05:01 10:20:30");           // without its NUL byte
    EXPECT_DATE("2024:05:01 10:20:30XYZ", "2024:05:01 10:20:30");
    EXPECT_DATE(std::string("2024:05:01 10:20:30+02:00\0", 26), "2024:05:01 10:20:30");
    for (const char* text : {"    :  :     :  :  ", "0000:00:00 00:00:00", "2024:13:01 10:20:30", "2024:00:01 10:20:30",
                             "2024:05:32 10:20:30", "2024:05:00 10:20:30", "2024:05:01 24:20:30", "2024:05:01 10:60:30",
                             "2024:05:01 10:20:61", "2024-05-01 10:20:30", "2024:05:01T10:20:30", "2024:05:01 10:20:3",
                             "2024:05:01", "\x1b[31m:05:01 10:20:30",
                             "20\xff"
                             "4:05:01 10:20:30",
                             "", "x"}) {
        EXPECT_DATE(std::string(text), "");
        EXPECT_DATE(std::string(text) + '\0', "");
    }
    EXPECT_DATE(std::string("2024:05:01\0 10:20:30", 20), "") << "ends within";
    EXPECT_DATE(std::string(300, '2'), "") << "far too long";
}

TEST_F(ExifFields, DateIsThatOfTheStoringWhenTheOriginalIsUnknownAndNeverThatOfAChange) {
    ExifBuilder exif = OrdinaryExif(ByteOrder::kBig);
    EXPECT_STREQ(CollectJpeg(exif.Without(kExif, 0x9003)).Fields().date, "2024:05:01 10:20:31");
    EXPECT_STREQ(CollectJpeg(exif.Without(kExif, 0x9004)).Fields().date, "");
}

TEST_F(ExifFields, SizeIsThatOfTheFrameWhenExifTellsOnlyHalf) {
    ExifBuilder exif = OrdinaryExif(ByteOrder::kLittle);
    for (const std::uint32_t height : {0U, 0x80000000U}) {
        exif.Long(kExif, 0xa003, {height});
        EXPECT_EQ(CollectJpeg(exif).Fields().width, 640);
        EXPECT_EQ(CollectJpeg(exif).Fields().height, 480);
    }
    exif.Short(kExif, 0xa002, {16}).Short(kExif, 0xa003, {9});
    EXPECT_EQ(CollectJpeg(exif).Fields().width, 16) << "SHORT is as good as LONG";
}

TEST_F(ExifFields, IsoBeyondSixteenBitsStandsInOneOfThreeOtherFields) {
    const struct {
        Change change;
        std::uint32_t iso;
        const char* why;
    } rows[] = {
        {[](ExifBuilder& exif) {
             exif.Short(kExif, 0x8827, {800, 100});
         },
         800, "the first of several"},
        {[](ExifBuilder& exif) { exif.Long(kExif, 0x8827, {1600}); }, 1600, "LONG for SHORT"},
        {[](ExifBuilder& exif) {
             exif.Short(kExif, 0x8827, {65535}).Long(kExif, 0x8832, {102400}).Long(kExif, 0x8833, {204800});
         },
         102400, "the recommended index before the speed"},
        {[](ExifBuilder& exif) { exif.Short(kExif, 0x8827, {0}); }, 0, "unknown"},
        {[](ExifBuilder& exif) { exif.Short(kExif, 0x8827, {65535}); }, 65535, "nothing else is told"},
        {[](ExifBuilder& exif) { exif.Short(kExif, 0x8827, {65535}).Long(kExif, 0x8832, {102400}); }, 102400, "index"},
        {[](ExifBuilder& exif) { exif.Without(kExif, 0x8827).Long(kExif, 0x8833, {204800}); }, 204800, "speed"},
        {[](ExifBuilder& exif) { exif.Without(kExif, 0x8827).Long(kExif, 0x8831, {409600}); }, 409600, "output"},
        {[](ExifBuilder& exif) { exif.Long(kExif, 0x8832, {102400}); }, 400, "16 bits are enough"},
        {[](ExifBuilder& exif) { exif.Text(kExif, 0x8827, "400"); }, 0, "no number"},
    };
    for (const auto& row : rows) {
        ExifBuilder exif = OrdinaryExif(ByteOrder::kBig);
        row.change(exif);
        EXPECT_EQ(CollectJpeg(exif).Fields().iso, row.iso) << row.why;
    }
}

TEST_F(ExifFields, ExposureIsAReducedFraction) {
    const struct {
        std::pair<std::uint32_t, std::uint32_t> written;
        std::pair<int, int> read;
    } rows[] = {
        {{1, 8000}, {1, 8000}},
        {{30, 1}, {30, 1}},
        {{25, 10}, {5, 2}},
        {{10, 600}, {1, 60}},
        {{0xfffffffe, 2}, {INT_MAX, 1}},
        {{2, 0xfffffffe}, {1, INT_MAX}},
        {{0xffffffff, 1}, {0, 0}}, // fits into no int
        {{1, 0xffffffff}, {0, 0}},
        {{0, 100}, {0, 0}},
        {{1, 0}, {0, 0}},
        {{0, 0}, {0, 0}},
    };
    for (const auto& row : rows) {
        const DcfExifInfo fields =
            CollectJpeg(OrdinaryExif(ByteOrder::kLittle).Ratio(kExif, 0x829a, {row.written})).Fields();
        EXPECT_EQ(fields.exposureNumerator, row.read.first) << row.written.first << "/" << row.written.second;
        EXPECT_EQ(fields.exposureDenominator, row.read.second) << row.written.first << "/" << row.written.second;
    }
    EXPECT_EQ(CollectJpeg(OrdinaryExif(ByteOrder::kBig).SignedRatio(kExif, 0x829a, 1, -60)).Fields().exposureNumerator,
              0)
        << "no time is negative";
}

TEST_F(ExifFields, RatiosAreHundredthsAndUnknownWhereTheyAreNone) {
    const struct {
        std::uint32_t tag;
        std::int32_t DcfExifInfo::*field;
        std::pair<std::uint32_t, std::uint32_t> written;
        std::int32_t read;
    } rows[] = {
        {0x829d, &DcfExifInfo::fNumber, {95, 100}, 95},
        {0x829d, &DcfExifInfo::fNumber, {22, 1}, 2200},
        {0x829d, &DcfExifInfo::fNumber, {17999, 10000}, 180}, // rounded
        {0x829d, &DcfExifInfo::fNumber, {0, 1}, 0},
        {0x829d, &DcfExifInfo::fNumber, {28, 0}, 0},
        {0x829d, &DcfExifInfo::fNumber, {1, 1000}, 0},
        {0x829d, &DcfExifInfo::fNumber, {0xffffffff, 1}, 0},
        {0x920a, &DcfExifInfo::focalLength, {800, 1}, 80000},
        {0x920a, &DcfExifInfo::focalLength, {425, 100}, 425},
        {0x920a, &DcfExifInfo::focalLength, {0, 0}, 0},
        {0x920a, &DcfExifInfo::focalLength, {21474837, 1}, 0},
        {0x920a, &DcfExifInfo::focalLength, {21474836, 1}, 2147483600},
        {0xa404, &DcfExifInfo::digitalZoom, {4, 1}, 400},
        {0xa404, &DcfExifInfo::digitalZoom, {0, 1}, 0},
        {0xa404, &DcfExifInfo::digitalZoom, {1, 0}, 0},
    };
    for (const auto& row : rows) {
        const DcfExifInfo fields =
            CollectJpeg(OrdinaryExif(ByteOrder::kBig).Ratio(kExif, row.tag, {row.written})).Fields();
        EXPECT_EQ(fields.*row.field, row.read) << row.written.first << "/" << row.written.second;
    }
}

TEST_F(ExifFields, BiasHasASignAndZeroIsAValue) {
    const struct {
        int numerator;
        int denominator;
        std::int32_t read;
    } rows[] = {{0, 10, 0},
                {2, 3, 67},
                {-10, 10, -100},
                {10, -10, -100},
                {1, 0, DCF_EXIF_UNKNOWN_SIGNED},
                {INT_MAX, 1, DCF_EXIF_UNKNOWN_SIGNED},
                {INT_MIN, 100, DCF_EXIF_UNKNOWN_SIGNED},
                {INT_MIN, -1, DCF_EXIF_UNKNOWN_SIGNED}};
    for (const auto& row : rows) {
        const ExifBuilder exif =
            OrdinaryExif(ByteOrder::kLittle).SignedRatio(kExif, 0x9204, row.numerator, row.denominator);
        EXPECT_EQ(CollectJpeg(exif).Fields().exposureBias, row.read) << row.numerator << "/" << row.denominator;
    }
}

TEST_F(ExifFields, FlashKeepsItsBitsAndOneThatSaysItIsKnown) {
    for (const std::uint32_t value : {0x00U, 0x01U, 0x05U, 0x07U, 0x10U, 0x18U, 0x19U, 0x20U, 0x41U, 0x7fU}) {
        EXPECT_EQ(CollectJpeg(OrdinaryExif(ByteOrder::kBig).Short(kExif, 0x9209, {value})).Fields().flash,
                  value | 0x80U);
    }
    for (const std::uint32_t reserved : {0x80U, 0x100U, 0xffffU}) {
        EXPECT_EQ(CollectJpeg(OrdinaryExif(ByteOrder::kBig).Short(kExif, 0x9209, {reserved})).Fields().flash, 0);
    }
}

TEST_F(ExifFields, PositionIsKnownWhenBothItsHalvesAre) {
    const struct {
        Change change;
        std::int32_t latitude;
        std::int32_t longitude;
        const char* why;
    } rows[] = {
        {[](ExifBuilder& exif) { exif.Text(kGps, 1, std::string("S\0", 2)); }, -52520000, 13405100, "south"},
        {[](ExifBuilder& exif) { exif.Text(kGps, 3, "W"); }, 52520000, -13405100, "west, without its NUL byte"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{905, 10}, {0, 1}, {0, 1}});
         },
         0, 0, "beyond the pole"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{90, 1}, {0, 1}, {0, 1}});
         },
         90000000, 13405100, "the pole"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 4, {{180, 1}, {0, 1}, {1, 1}});
         },
         0, 0, "around the earth"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{52, 1}, {315, 10}, {0, 1}});
         },
         52525000, 13405100, "minutes"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{52, 1}, {61, 1}, {0, 1}});
         },
         0, 0, "61 minutes"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 4, {{13, 1}, {5, 1}, {60, 1}});
         },
         52520000, 13100000, "60 seconds, as a writer leaves them that rounds up"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 4, {{13, 1}, {5, 1}, {6001, 100}});
         },
         0, 0, "more than 60 seconds"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{52, 1}, {31, 1}, {0, 0}});
         },
         0, 0, "a zero below the line"},
        {[](ExifBuilder& exif) {
             exif.Ratio(kGps, 2, {{52, 1}, {31, 1}});
         },
         0, 0, "no seconds"},
        {[](ExifBuilder& exif) { exif.Text(kGps, 1, "X"); }, 0, 0, "neither north nor south"},
        {[](ExifBuilder& exif) { exif.Without(kGps, 1); }, 0, 0, "no reference"},
        {[](ExifBuilder& exif) { exif.Without(kGps, 4); }, 0, 0, "half of it"},
    };
    for (const auto& row : rows) {
        ExifBuilder exif = OrdinaryExif(ByteOrder::kLittle);
        row.change(exif);
        const DcfExifInfo fields = CollectJpeg(exif).Fields();
        const bool known = row.latitude != 0;
        EXPECT_EQ(fields.hasPosition, known) << row.why;
        EXPECT_EQ(fields.latitude, known ? row.latitude : DCF_EXIF_UNKNOWN_SIGNED) << row.why;
        EXPECT_EQ(fields.longitude, known ? row.longitude : DCF_EXIF_UNKNOWN_SIGNED) << row.why;
    }
}

TEST_F(ExifFields, PositionIsUnknownWhenAPartOfItIsNegative) {
    for (const bool negative : {false, true}) {
        for (const bool below : {false, true}) {
            // Minutes of a latitude as signed ratios, -31/1 or 31/-1.
            const std::uint32_t above = negative && !below ? std::uint32_t(-31) : 31;
            ExifBuilder exif = OrdinaryExif(ByteOrder::kLittle);
            exif.Ratio(kGps, 2, {{52, 1}, {above, negative && below ? std::uint32_t(-1) : 1}, {0, 1}});
            std::string tiff = exif.Build();
            const std::size_t entry = tiff.find(std::string("\x02\0\x05\0\x03\0\0\0", 8));
            ASSERT_NE(entry, std::string::npos);
            tiff[entry + 2] = 10; // signed
            EXPECT_EQ(Collect(JpegFile(ExifSegment(tiff))).Fields().hasPosition, !negative) << below;
        }
    }
}

TEST_F(ExifFields, AltitudeIsBelowTheSeaWhenItsReferenceSaysSo) {
    ExifBuilder exif = OrdinaryExif(ByteOrder::kBig);
    EXPECT_EQ(CollectJpeg(exif.Byte(kGps, 5, {1})).Fields().altitude, -3450);
    EXPECT_EQ(CollectJpeg(exif.Byte(kGps, 5, {2})).Fields().altitude, DCF_EXIF_UNKNOWN_SIGNED);
    EXPECT_EQ(CollectJpeg(exif.Without(kGps, 5)).Fields().altitude, 3450);
    EXPECT_EQ(CollectJpeg(exif.Ratio(kGps, 6, {{1, 0}})).Fields().altitude, DCF_EXIF_UNKNOWN_SIGNED);
}

TEST_F(ExifFields, AnythingKnownButTheSizeIsEnough) {
    EXPECT_EQ(CollectJpeg(ExifBuilder(ByteOrder::kLittle).Short(kImage, 0x0112, {1})).Fields().orientation, 1);
    EXPECT_EQ(
        CollectJpeg(ExifBuilder(ByteOrder::kLittle).Byte(kGps, 5, {0}).Ratio(kGps, 6, {{5, 1}})).Fields().altitude,
        500);
    ExifBuilder size(ByteOrder::kLittle);
    size.Long(kExif, 0xa002, {640}).Long(kExif, 0xa003, {480});
    EXPECT_TRUE(CollectJpeg(size).Refused(DCF_EXIF_NONE));
    EXPECT_TRUE(CollectJpeg(ExifBuilder(ByteOrder::kLittle)).Refused(DCF_EXIF_NONE)) << "an empty directory";
}

TEST_F(ExifFields, MayStandInTheFirstDirectoryAsRawFilesHaveThem) {
    ExifBuilder exif(ByteOrder::kBig);
    exif.Short(kImage, 0x8827, {640}).Ratio(kImage, 0x829a, {{1, 50}});
    const DcfExifInfo fields = CollectJpeg(exif).Fields();
    EXPECT_EQ(fields.iso, 640U);
    EXPECT_EQ(fields.exposureDenominator, 50);
    EXPECT_EQ(CollectJpeg(exif.Short(kExif, 0x8827, {200})).Fields().iso, 200U) << "EXIF's own come first";
}

} // namespace
} // namespace dcftest
