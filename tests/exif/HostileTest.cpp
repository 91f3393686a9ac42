// Files that somebody has cut or made up: nothing is filled that is not told, nothing printed, nothing left open.
#include "Collected.h"

#include <filesystem>
#include <iterator>

namespace dcftest {
namespace {

using enum ExifDirectory;

class ExifHostile : public ExifTest {
protected:
    void SetUp() override {
        m_open = OpenDescriptors();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }
    void TearDown() override {
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(OpenDescriptors(), m_open);
    }

    static std::ptrdiff_t OpenDescriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }

    /// Small, with values beside the directories and in them.
    static ExifBuilder Small(ByteOrder order) {
        ExifBuilder exif(order);
        exif.Short(kImage, 0x0112, {8}).Ratio(kExif, 0x829a, {{1, 60}}).Short(kExif, 0x8827, {250});
        return exif.Text(kGps, 1, "N").Ratio(kGps, 6, {{7, 1}}).Byte(kGps, 5, {0});
    }
    static std::string SmallRaw(ByteOrder order) {
        return Small(order).Long(kBelow, 0x0100, {4}).Picture(kBelow, "pixels").Build();
    }

    /// Refused, or whole.
    static void ExpectSound(const Collected& collected, std::size_t at) {
        DcfExifInfo fields = {};
        if (collected.result == DCF_EXIF_OK) {
            EXPECT_TRUE(DcfExifRead(collected.info, &fields)) << at;
            EXPECT_EQ(fields.date[sizeof fields.date - 1], '\0') << at;
        } else {
            EXPECT_TRUE(collected.Refused(DCF_EXIF_NONE)) << at;
        }
    }

private:
    std::ptrdiff_t m_open = 0;
};

TEST_F(ExifHostile, FilesThatAreCutAnywhereTellNothing) {
    for (const ByteOrder order : kByteOrders) {
        for (const std::string& bytes : {JpegWithExif(Small(order).Build()), SmallRaw(order)}) {
            ASSERT_EQ(Collect(bytes).Fields().iso, 250U);
            for (std::size_t size = bytes.size(); size-- > 0;) {
                Resize(static_cast<off_t>(size));
                EXPECT_TRUE(CollectFrom(Path()).Refused(DCF_EXIF_NONE)) << size << " of " << bytes.size();
            }
        }
    }
}

TEST_F(ExifHostile, ExifThatIsCutWithinAWholeFileTellsNothingThatIsCut) {
    const std::string tiff = Small(ByteOrder::kBig).Build();
    for (std::size_t size = 0; size < tiff.size(); ++size) {
        EXPECT_TRUE(Collect(JpegWithExif(tiff.substr(0, size))).Refused(DCF_EXIF_NONE)) << size;
    }
}

TEST_F(ExifHostile, BytesThatAreTurnedDoNoHarm) {
    for (const std::string& bytes : {JpegWithExif(Small(ByteOrder::kLittle).Build()), SmallRaw(ByteOrder::kBig)}) {
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (const int turned : {0x00, 0xff, 0x7f, bytes[at] ^ 0x80}) {
                std::string changed = bytes;
                changed[at] = static_cast<char>(turned);
                ExpectSound(Collect(changed), at);
            }
        }
    }
}

TEST_F(ExifHostile, ValuesOutsideOfTheFileTellNothing) {
    for (const ByteOrder order : kByteOrders) {
        for (const std::uint32_t offset : {0x1000U, 0x7fffffffU, 0xfffffff0U, 0xffffffffU}) {
            for (const std::uint32_t count : {1U, 0x20000000U, 0x80000000U, 0xffffffffU}) {
                ExifBuilder exif = Small(order);
                exif.Entry(kExif, 0x829a, 5, count, offset);
                EXPECT_TRUE(CollectJpeg(exif).Refused(DCF_EXIF_NONE)) << offset << " " << count;
                EXPECT_TRUE(Collect(exif.Build()).Refused(DCF_EXIF_NONE)) << offset << " " << count;
            }
        }
    }
}

TEST_F(ExifHostile, CountsAndTypesThatDoNotFitMakeAFieldUnknownAndNoMore) {
    const struct {
        std::uint32_t type;
        std::uint32_t count;
    } rows[] = {{0, 1},
                {1, 0},
                {2, 4},
                {3, 0},
                {6, 1},
                {7, 4},
                {8, 2},
                {9, 1},
                {11, 1},
                {12, 0},
                {13, 1},
                {255, 9},
                {0xffff, 0xffffffff},
                {5, 0}};
    for (const auto& row : rows) {
        for (const ByteOrder order : kByteOrders) {
            for (const std::uint32_t tag : {0x829aU, 0x8827U, 0x9003U, 0x9209U, 0x9204U, 0xa002U}) {
                ExifBuilder exif = OrdinaryExif(order);
                exif.Without(kExif, 0x9004).Entry(kExif, tag, row.type, row.count, 0x01010101);
                const Collected collected = CollectJpeg(exif);
                EXPECT_EQ(collected.result, DCF_EXIF_OK) << row.type << " " << row.count << " " << tag;
                const DcfExifInfo fields = collected.Fields();
                EXPECT_EQ(fields.fNumber, 280) << "the others stay";
                switch (tag) {
                case 0x829a:
                    EXPECT_EQ(fields.exposureDenominator, 0);
                    break;
                case 0x8827:
                    EXPECT_EQ(fields.iso, 0U) << row.type << " " << row.count;
                    break;
                case 0x9003:
                    EXPECT_STREQ(fields.date, "");
                    break;
                case 0x9209:
                    EXPECT_EQ(fields.flash, 0);
                    break;
                case 0x9204:
                    EXPECT_EQ(fields.exposureBias, DCF_EXIF_UNKNOWN_SIGNED);
                    break;
                default:
                    EXPECT_EQ(fields.width, 640);
                }
            }
        }
    }
}

TEST_F(ExifHostile, DirectoriesThatLeadInCirclesTellNothing) {
    for (const ByteOrder order : kByteOrders) {
        const ExifBuilder small = Small(order);
        const std::uint32_t first = 8;
        const std::uint32_t exif = small.OffsetOf(kExif);
        const auto refused = [&](ExifBuilder builder) {
            return CollectJpeg(builder).Refused(DCF_EXIF_NONE) && Collect(builder.Build()).Refused(DCF_EXIF_NONE);
        };
        EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, 0x8769, {first}))) << "EXIF in the first";
        EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, 0x8825, {exif}))) << "GPS in EXIF";
        EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, 0x8769, {2}))) << "a directory in the header";
        EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, 0x8769, {0xfffffffe})));
        EXPECT_TRUE(refused(ExifBuilder(small).Short(kImage, 0x8769, {1, 2}))) << "two of them";
        // Only a file of its own has more directories.
        for (const std::uint32_t next : {first, exif, 0xffffffffU}) {
            EXPECT_TRUE(Collect(ExifBuilder(small).Next(next).Build()).Refused(DCF_EXIF_NONE)) << next;
            EXPECT_EQ(CollectJpeg(ExifBuilder(small).Next(next)).Fields().iso, 250U) << next;
        }
        EXPECT_TRUE(Collect(ExifBuilder(small).Long(kImage, 0x014a, {first}).Build()).Refused(DCF_EXIF_NONE));
        ExifBuilder many(small);
        many.Long(kImage, 0x014a, ExifBuilder::Numbers(1000, exif));
        EXPECT_TRUE(Collect(many.Build()).Refused(DCF_EXIF_NONE)) << "a thousand directories";
        EXPECT_EQ(CollectJpeg(ExifBuilder(small).Long(kImage, 0x8825, {0})).Fields().iso, 250U) << "0 is none";
    }
}

TEST_F(ExifHostile, DirectoriesWithCountlessEntriesTellNothing) {
    const std::string tiff = Small(ByteOrder::kBig).Build();
    for (const std::uint32_t count : {1025U, 0x7fffU, 0xffffU}) {
        std::string changed = tiff;
        changed.replace(8, 2, NumberBytes(ByteOrder::kBig, count, 2));
        EXPECT_TRUE(Collect(JpegWithExif(changed)).Refused(DCF_EXIF_NONE));
        EXPECT_TRUE(Collect(changed).Refused(DCF_EXIF_NONE));
        EXPECT_TRUE(Collect(changed + std::string(1U << 20U, '\0')).Refused(DCF_EXIF_NONE)) << "all of them there";
    }
}

TEST_F(ExifHostile, OfFieldsOfOneTagTheFirstOneCounts) {
    const auto order = ByteOrder::kLittle;
    const auto iso = [&](std::uint32_t value) {
        return NumberBytes(order, 0x8827, 2) + NumberBytes(order, 3, 2) + NumberBytes(order, 1, 4) +
               NumberBytes(order, value, 4);
    };
    std::string tiff = "II" + NumberBytes(order, 42, 2) + NumberBytes(order, 8, 4) + NumberBytes(order, 3, 2);
    tiff += iso(100) + iso(200) + iso(300) + NumberBytes(order, 0, 4);
    EXPECT_EQ(Collect(JpegWithExif(tiff)).Fields().iso, 100U);
}

TEST_F(ExifHostile, PicturesOutsideOfARawFileTellNothing) {
    for (const ByteOrder order : kByteOrders) {
        const ExifBuilder small = Small(order);
        const auto refused = [&](const ExifBuilder& builder) {
            return Collect(builder.Build()).Refused(DCF_EXIF_NONE);
        };
        for (const auto& [offsets, sizes] : {std::pair{0x0111U, 0x0117U}, {0x0144U, 0x0145U}, {0x0201U, 0x0202U}}) {
            EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, offsets, {8}).Long(kImage, sizes, {100000})));
            EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, offsets, {100000}).Long(kImage, sizes, {1})));
            EXPECT_TRUE(
                refused(ExifBuilder(small).Long(kImage, offsets, {0xffffffff}).Long(kImage, sizes, {0xffffffff})));
            EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, offsets, {8}))) << "a size is missing";
            EXPECT_TRUE(refused(ExifBuilder(small).Long(kImage, offsets, {8, 8, 8}).Long(kImage, sizes, {1, 1})));
            EXPECT_TRUE(refused(ExifBuilder(small).Entry(kImage, offsets, 4, 0xffffffff, 8).Long(kImage, sizes, {1})));
            EXPECT_TRUE(refused(ExifBuilder(small).Text(kImage, offsets, "text").Long(kImage, sizes, {1})));
            EXPECT_FALSE(refused(ExifBuilder(small).Long(kImage, offsets, {8, 9}).Short(kImage, sizes, {1, 1})));
        }
        // A thumbnail within EXIF is nobody's business.
        EXPECT_EQ(CollectJpeg(ExifBuilder(small).Long(kImage, 0x0201, {8}).Long(kImage, 0x0202, {100000})).result, 0);
    }
}

TEST_F(ExifHostile, AMakersNoteIsLeftAlone) {
    ExifBuilder exif = OrdinaryExif(ByteOrder::kBig);
    exif.Entry(kExif, 0x927c, 7, 0xffff, 0xffff0000); // outside of everything
    EXPECT_EQ(CollectJpeg(exif).Fields().iso, 400U);
    EXPECT_EQ(CollectJpeg(exif.Text(kExif, 0x927c, std::string(4000, '\xff'))).Fields().iso, 400U);
}

} // namespace
} // namespace dcftest
