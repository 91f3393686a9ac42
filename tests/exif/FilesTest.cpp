// Which files tell something, and which are refused with nothing done: kinds, sizes, places in the file system.
#include "Collected.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "Card.h"

namespace dcftest {
namespace {

using enum ExifDirectory;

class ExifFiles : public ExifTest {
protected:
    /// A raw file: EXIF, and a picture that its first directory describes.
    static ExifBuilder Raw(ByteOrder order) {
        return OrdinaryExif(order)
            .Long(kImage, 0x0100, {24})
            .Long(kImage, 0x0101, {2})
            .Picture(kImage, std::string(48, 'p'));
    }
};

TEST_F(ExifFiles, JpegMayHaveOtherSegmentsInFrontOfItsExif) {
    const std::string tiff = OrdinaryExif(ByteOrder::kBig).Build();
    const std::string other = OrdinaryExif(ByteOrder::kBig).Short(kExif, 0x8827, {9999}).Build();
    const std::string jfif = JpegSegment(0xe0, std::string("JFIF\0\1\2\0\0\1\0\1\0\0", 14));
    const std::string xmp = JpegSegment(0xe1, "http://ns.adobe.com/xap/1.0/");
    const std::string comment = JpegSegment(0xfe, std::string(65533, 'c'));
    for (const std::string& segments :
         {jfif + ExifSegment(tiff), xmp + ExifSegment(tiff), comment + comment + ExifSegment(tiff),
          JpegSegment(0xe1, "") + ExifSegment(tiff), "\xff\xff\xff" + ExifSegment(tiff),
          ExifSegment(tiff) + xmp + comment, ExifSegment(tiff) + ExifSegment(other),
          JpegSegment(0xe1, std::string("Exif\0\xff", 6) + tiff), JpegSegment(0xe1, "Exi") + ExifSegment(tiff)}) {
        EXPECT_EQ(Collect(JpegFile(segments)).Fields().iso, 400U);
    }
}

TEST_F(ExifFiles, JpegMayHaveMoreBehindItsEnd) {
    const std::string jpeg = JpegWithExif(OrdinaryExif(ByteOrder::kLittle).Build());
    for (const std::string& behind : {std::string(3, '\0'), std::string(9000, '\0'), std::string("trailer"),
                                      std::string(70000, 'm'), "\xff\xd9" + std::string(8191, 'm')}) {
        EXPECT_EQ(Collect(jpeg + behind).Fields().iso, 400U) << behind.size();
        EXPECT_TRUE(Collect(jpeg.substr(0, jpeg.size() - 2) + std::string(behind.size(), 'm')).Refused(DCF_EXIF_NONE))
            << behind.size() << " bytes, and no end at all";
    }
}

TEST_F(ExifFiles, JpegEndsWhereItsEndIsWhereverThatFalls) {
    // The search goes piece by piece.
    const std::string jpeg = JpegWithExif(OrdinaryExif(ByteOrder::kLittle).Build());
    const std::string start = jpeg.substr(0, jpeg.size() - 2);
    for (const std::size_t size : {65529U, 65530U, 65531U, 65532U, 131064U}) {
        EXPECT_EQ(Collect(start + std::string(size, 's') + "\xff\xd9" + std::string(5000, 't')).Fields().iso, 400U);
    }
}

TEST_F(ExifFiles, JpegWithoutExifTellsNothing) {
    for (const std::string& segments :
         {std::string(), JpegSegment(0xe0, std::string("JFIF\0", 5)), JpegSegment(0xe1, std::string("Exif\0\0", 6)),
          JpegSegment(0xe2, std::string("Exif\0\0", 6) + OrdinaryExif(ByteOrder::kBig).Build()),
          JpegSegment(0xe1, "exif" + OrdinaryExif(ByteOrder::kBig).Build())}) {
        EXPECT_TRUE(Collect(JpegFile(segments)).Refused(DCF_EXIF_NONE));
    }
}

TEST_F(ExifFiles, JpegNeedsAFrameAndAScan) {
    const std::string exif = ExifSegment(OrdinaryExif(ByteOrder::kBig).Build());
    const std::string whole = JpegFile(exif);
    const std::string start = "\xff\xd8" + exif;
    const std::string end = "\xff\xd9";
    EXPECT_TRUE(Collect(start + end).Refused(DCF_EXIF_NONE));
    EXPECT_TRUE(Collect(start + JpegSegment(0xda, "scan") + end).Refused(DCF_EXIF_NONE));
    EXPECT_TRUE(Collect(start + JpegSegment(0xc0, "short") + JpegSegment(0xda, "s") + end).Refused(DCF_EXIF_NONE));
    EXPECT_TRUE(Collect(start + JpegSegment(0xc8, "reserved") + JpegSegment(0xda, "s") + end).Refused(DCF_EXIF_NONE));
    // Tables are no frame.
    EXPECT_TRUE(Collect(start + JpegSegment(0xc4, "tables") + JpegSegment(0xda, "s") + end).Refused(DCF_EXIF_NONE));
    EXPECT_EQ(Collect(start + JpegSegment(0xc2, "progressive") + JpegSegment(0xda, "s") + end).result, DCF_EXIF_OK);
    std::string many = "\xff\xd8";
    for (int i = 0; i < 2000; ++i) {
        many += JpegSegment(0xe5, "");
    }
    EXPECT_TRUE(Collect(many + whole.substr(2)).Refused(DCF_EXIF_NONE)) << "segments without end";
}

/// Two pictures and an index. @param kind of the pictures. @param claimed size of the second.
std::string Mpo(ByteOrder order, std::uint32_t kind, std::size_t claimed, const std::string& second) {
    const std::string exif = ExifSegment(OrdinaryExif(order).Build());
    const auto with = [&](std::size_t firstSize) {
        ExifBuilder index(order);
        const auto size = static_cast<std::uint32_t>(firstSize);
        const auto header = static_cast<std::uint32_t>(2 + exif.size() + 4 + 4);
        std::string list;
        for (const std::uint32_t word :
             {kind, size, 0U, 0U, kind, static_cast<std::uint32_t>(claimed), size - header, 0U}) {
            list += NumberBytes(order, word, 4);
        }
        index.Text(kImage, 0xb002, list);
        return JpegFile(exif + JpegSegment(0xe2, std::string("MPF\0", 4) + index.Build()));
    };
    return with(with(0).size()) + second;
}

TEST_F(ExifFiles, MultiPictureFileTellsOfItsFirstPictureWhenAllAreThere) {
    const std::string second = JpegWithExif(OrdinaryExif(ByteOrder::kBig).Short(kExif, 0x8827, {9999}).Build());
    for (const ByteOrder order : kByteOrders) {
        const std::string whole = Mpo(order, 0x00020002, second.size(), second);
        EXPECT_EQ(Collect(whole).Fields().iso, 400U);
        EXPECT_TRUE(Collect(whole.substr(0, whole.size() - 1)).Refused(DCF_EXIF_NONE)) << "the second is cut";
        EXPECT_TRUE(Collect(Mpo(order, 0x00020002, second.size(), "")).Refused(DCF_EXIF_NONE)) << "and is gone";
        EXPECT_EQ(Collect(Mpo(order, 0x00010001, second.size(), "")).Fields().iso, 400U)
            << "a preview may have been taken out";
        EXPECT_EQ(Collect(Mpo(order, 0x00020002, 4, "\xff\xd8\xff\xd9")).Fields().iso, 400U)
            << "the first is larger than all that follows its index";
    }
}

TEST_F(ExifFiles, MultiPictureIndexNeedNotNamePictures) {
    ExifBuilder index(ByteOrder::kBig);
    index.Text(kImage, 0xb000, "0100");
    EXPECT_EQ(Collect(JpegFile(ExifSegment(OrdinaryExif(ByteOrder::kBig).Build()) +
                               JpegSegment(0xe2, std::string("MPF\0", 4) + index.Build())))
                  .Fields()
                  .iso,
              400U);
}

/// A raw file with so many directories below its first one that hold nothing.
std::string RawWithDirectories(ByteOrder order, std::size_t count) {
    constexpr std::size_t kEmptyDirectory = 6;
    const auto with = [&](std::size_t begin) {
        ExifBuilder::Numbers offsets;
        for (std::size_t i = 0; i < count; ++i) {
            offsets.push_back(static_cast<std::uint32_t>(begin + i * kEmptyDirectory));
        }
        return OrdinaryExif(order).Long(kImage, 0x014a, offsets).Build();
    };
    return with(with(0).size()) + std::string(count * kEmptyDirectory, '\0');
}

TEST_F(ExifFiles, RawFileMayHaveAsManyDirectoriesAsACameraMakes) {
    for (const ByteOrder order : kByteOrders) {
        EXPECT_EQ(Collect(RawWithDirectories(order, 20)).Fields().iso, 400U);
        EXPECT_TRUE(Collect(RawWithDirectories(order, 32)).Refused(DCF_EXIF_NONE)) << "and no more";
    }
}

TEST_F(ExifFiles, RawFileTellsTheSizeOfItsLargestPicture) {
    for (const ByteOrder order : kByteOrders) {
        ExifBuilder raw = Raw(order);
        EXPECT_EQ(Collect(raw.Build()).Fields().width, 5472) << "EXIF's own comes first";
        raw.Without(kExif, 0xa002);
        EXPECT_EQ(Collect(raw.Build()).Fields().width, 24);
        EXPECT_EQ(Collect(raw.Build()).Fields().height, 2);
        raw.Short(kBelow, 0x0100, {6000}).Short(kBelow, 0x0101, {4000});
        const DcfExifInfo fields = Collect(raw.Build()).Fields();
        EXPECT_EQ(fields.width, 6000);
        EXPECT_EQ(fields.height, 4000);
        EXPECT_EQ(fields.iso, 400U);
        EXPECT_STREQ(fields.date, "2024:05:01 10:20:30");
        EXPECT_TRUE(fields.hasPosition);
    }
}

TEST_F(ExifFiles, DirectoriesMayBeNamedByATypeOfTheirOwn) {
    // TIFF has one for offsets of directories, besides the ordinary number that most writers take.
    constexpr std::uint32_t kOffset = 13;
    for (const ByteOrder order : kByteOrders) {
        ExifBuilder raw = Raw(order);
        raw.Without(kExif, 0xa002).Short(kBelow, 0x0100, {6000}).Short(kBelow, 0x0101, {4000});
        ExifBuilder named = raw;
        for (const auto& [directory, tag] : {std::pair{kExif, 0x8769U}, {kGps, 0x8825U}, {kBelow, 0x014aU}}) {
            named.Entry(kImage, tag, kOffset, 1, raw.OffsetOf(directory));
        }
        const DcfExifInfo fields = Collect(named.Build()).Fields();
        EXPECT_EQ(fields.iso, 400U);
        EXPECT_TRUE(fields.hasPosition);
        EXPECT_EQ(fields.width, 6000);
        EXPECT_TRUE(CollectJpeg(named).Fields().hasPosition);
    }
}

TEST_F(ExifFiles, RawFileMayHaveItsExifFarBehindThePixels) {
    for (const ByteOrder order : kByteOrders) {
        ExifBuilder builder(order);
        // The directories as they would stand 200,000 bytes on: all offsets are moved by a first directory there.
        std::string bytes =
            (order == ByteOrder::kBig ? "MM" : "II") + NumberBytes(order, 42, 2) + NumberBytes(order, 200000, 4);
        bytes.resize(200000, 'p');
        const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t value, std::size_t size) {
            return NumberBytes(order, tag, 2) + NumberBytes(order, type, 2) + NumberBytes(order, 1, 4) +
                   NumberBytes(order, value, size) + std::string(4 - size, '\0');
        };
        bytes += NumberBytes(order, 1, 2) + entry(0x8769, 4, 200018, 4) + NumberBytes(order, 0, 4);
        bytes += NumberBytes(order, 2, 2) + entry(0x829d, 5, 200048, 4) + entry(0x8827, 3, 3200, 2) +
                 NumberBytes(order, 0, 4);
        bytes += NumberBytes(order, 63, 4) + NumberBytes(order, 10, 4);
        EXPECT_EQ(Collect(bytes).Fields().iso, 3200U);
        EXPECT_EQ(Collect(bytes).Fields().fNumber, 630);
    }
}

TEST_F(ExifFiles, RawFileWithoutExifTellsNothing) {
    ExifBuilder raw(ByteOrder::kLittle);
    raw.Long(kImage, 0x0100, {24}).Text(kImage, 0x0132, std::string("2024:05:01 10:20:30\0", 20));
    EXPECT_TRUE(Collect(raw.Picture(kImage, "pixels").Build()).Refused(DCF_EXIF_NONE));
}

TEST_F(ExifFiles, OfOtherKindsTellNothing) {
    for (const std::string& bytes :
         {std::string(), std::string("x"), std::string("\xff\xd8"), std::string("II*\0", 4), std::string(100, '\0'),
          std::string("RIFF\x10\0\0\0AVI LIST", 16),
          std::string("\0\0\0\x18"
                      "ftypmp42",
                      12),
          std::string("\x89PNG\r\n\x1a\n", 8), std::string("II+\0\x08\0\0\0", 8), std::string("MM*\0\0\0\0\x08", 8),
          "IM" + OrdinaryExif(ByteOrder::kLittle).Build().substr(2),
          std::string("Exif\0\0", 6) + OrdinaryExif(ByteOrder::kLittle).Build()}) {
        EXPECT_TRUE(Collect(bytes).Refused(DCF_EXIF_NONE)) << bytes.size();
    }
}

TEST_F(ExifFiles, ThatAreNoFilesAreNotWaitedFor) {
    Card card;
    card.AddDir("100ABCDE");
    const std::string pipe = card.Path("100ABCDE", "pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path :
         {pipe, card.Path("100ABCDE"), std::string("/dev/zero"), std::string("/dev/tty"), card.Path("100ABCDE", "none"),
          pipe + "/x", std::string(), std::string(5000, 'x')}) {
        EXPECT_TRUE(CollectFrom(path).Refused(DCF_EXIF_UNREADABLE)) << path;
    }
}

TEST_F(ExifFiles, AreReadThroughLinksAndByNamesOfAnyBytes) {
    Card card;
    FileTraits traits;
    traits.content = JpegWithExif(OrdinaryExif(ByteOrder::kBig).Build());
    card.AddFile("100ABCDE", "KVR_0001.JPG", traits);
    const std::string link = card.Path("100ABCDE", "\xff\xfe\n link");
    std::filesystem::create_symlink(card.Path("100ABCDE", "KVR_0001.JPG"), link);
    EXPECT_EQ(CollectFrom(link).Fields().iso, 400U);
}

TEST_F(ExifFiles, NothingIsDoneWithoutAPathOrARecord) {
    PhotoInfo info = {};
    std::string path = Path();
    EXPECT_EQ(CollectExif(nullptr, &info), DCF_EXIF_NULL_ARGUMENT);
    EXPECT_EQ(CollectExif(path.data(), nullptr), DCF_EXIF_NULL_ARGUMENT);
    EXPECT_EQ(CollectExif(nullptr, nullptr), DCF_EXIF_NULL_ARGUMENT);
}

/// The bytes that this process has read so far.
std::uint64_t BytesRead() {
    std::ifstream io("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    io >> name >> bytes;
    EXPECT_EQ(name, "rchar:");
    return bytes;
}

TEST_F(ExifFiles, OfAnySizeAreReadInSmallParts) {
    const std::string jpeg = JpegWithExif(OrdinaryExif(ByteOrder::kBig).Build());
    const std::string raw = Raw(ByteOrder::kLittle).Build();
    const struct {
        std::string bytes;
        off_t size;
        int result;
        std::uint64_t most;
    } rows[] = {
        {jpeg, 0, DCF_EXIF_OK, 64U << 10U},
        {jpeg, 1 << 30, DCF_EXIF_OK, 256U << 10U},
        {jpeg, (off_t{1} << 30) + 1, DCF_EXIF_NONE, 1U << 10U},
        {raw, 1 << 30, DCF_EXIF_OK, 64U << 10U},
        {raw, off_t{5} << 30, DCF_EXIF_NONE, 1U << 10U},
        {std::string("\0\0\0\x18"
                     "ftypmp42",
                     12),
         1 << 30, DCF_EXIF_NONE, 64U << 10U},
        {jpeg.substr(0, jpeg.size() - 2), 1 << 30, DCF_EXIF_NONE, 65U << 20U},
    };
    for (const auto& row : rows) {
        (void)Collect(row.bytes);
        if (row.size > 0) {
            Resize(row.size);
        }
        const std::uint64_t before = BytesRead();
        EXPECT_EQ(CollectFrom(Path()).result, row.result) << row.size;
        EXPECT_LE(BytesRead() - before, row.most) << row.size;
    }
}

} // namespace
} // namespace dcftest
