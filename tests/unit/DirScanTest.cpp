// What a scan of one folder makes of the entries that it finds.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "CSDCFDir.h"
#include "Card.h"
#include "FakePlatform.h"
#include "PosixSeam.h"
#include "Trees.h"

using dcftest::Card;
using dcftest::DcfName;
using dcftest::FakePlatform;
using dcftest::Numbers;
using dcftest::PosixSeam;
using dcftest::Writable;

namespace {

/// An item in short form: name, number, type, companion type.
struct Found {
    std::string name;
    int number;
    int type;
    int object = -1;

    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& found) {
    return out << found.name << " " << found.number << " " << found.type << "/" << found.object;
}

using Finds = std::vector<Found>;

Finds Items(const CSDCFDir& dir) {
    Finds finds;
    for (const DCFItem& item : dir.m_itemGroup) {
        finds.push_back({item.m_fileName, item.m_nFileNum, item.m_eFileType, item.m_eObjectType});
    }
    return finds;
}

int Scan(CSDCFDir& dir, const Card& card, int base = 0, int dnum = 100) {
    return dir.Listup(Writable(card.Root()).data(), dnum, base);
}

struct Row {
    std::vector<std::string> names;
    Finds expected;
    const char* why;
};

void CheckRows(const std::string& dirName, int dnum, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        Card card;
        card.AddDir(dirName).AddFiles(dirName, row.names);
        CSDCFDir dir(dnum, dirName.c_str());
        EXPECT_EQ(Scan(dir, card, 0, dnum), static_cast<int>(row.expected.size())) << row.why;
        EXPECT_EQ(Items(dir), row.expected) << row.why;
        EXPECT_EQ(dir.GetCount(), static_cast<int>(row.expected.size())) << row.why;
    }
}

TEST(DirScan, MakesItemsOfDcfNames) {
    CheckRows("100ABCDE", 100,
              {{{}, {}, "an empty folder"},
               {{"kvr_0012.jpg"}, {{"KVR_0012.JPG", 12, 0}}, "stored in upper case"},
               {{"KVR_0001.JPG", "KVR_0005.JPG", "KVR_0003.JPG"},
                {{"KVR_0005.JPG", 5, 0}, {"KVR_0003.JPG", 3, 0}, {"KVR_0001.JPG", 1, 0}},
                "from the highest number down"},
               {{"KVR_9999.JPG", "KVR_0001.SRW", "KVR_0002.MPO", "KVR_0003.MP4", "KVR_0004.AVI"},
                {{"KVR_9999.JPG", 9999, 0},
                 {"KVR_0004.AVI", 4, 5},
                 {"KVR_0003.MP4", 3, 3},
                 {"KVR_0002.MPO", 2, 2},
                 {"KVR_0001.SRW", 1, 1}},
                "every type"},
               {{"KVR_0001.JPG", "KVR_0002.MOV", "KVR_A003.JPG", "KVR_0004.JPEG", "README.TXT", "ABCD0012XJPG"},
                {{"ABCD0012XJPG", 12, 0}, {"KVR_0001.JPG", 1, 0}},
                "refused names are skipped"},
               {{"JPG_0001.MP4"}, {{"JPG_0001.MP4", 1, 0}}, "the type is the one of the whole name"}});
}

TEST(DirScan, JoinsFilesOfOneNumber) {
    CheckRows("100ABCDE", 100,
              {{{"KVR_0007.JPG", "KVR_0007.SRW"}, {{"KVR_0007.JPG", 7, 0, 1}}, "a raw companion"},
               {{"KVR_0007.JPG", "KVR_0007.MPO"}, {{"KVR_0007.JPG", 7, 0, 2}}, "a multi-picture companion"},
               {{"KVR_0007.SRW"}, {{"KVR_0007.SRW", 7, 1}}, "raw alone"},
               {{"KVR_0007.MPO"}, {{"KVR_0007.MPO", 7, 2}}, "multi-picture alone"},
               {{"KVR_0007.JPG", "KVR_0007.MP4"}, {{"KVR_0007.JPG", 7, 0}}, "a movie is no companion"},
               {{"KVR_0007.AVI", "KVR_0007.JPG"}, {{"KVR_0007.AVI", 7, 5}}, "AVI comes first, a JPG is no companion"},
               {{"KVR_0007.AVI", "KVR_0007.MP4"}, {{"KVR_0007.AVI", 7, 5}}, "AVI comes first"},
               {{"KVR_0007.MP4", "KVR_0007.MPO"}, {{"KVR_0007.MP4", 7, 3, 2}}, "a movie with a companion"},
               {{"KVR_0007.MP4", "KVR_0007.SRW"}, {{"KVR_0007.MP4", 7, 3, 1}}, "a movie with a companion"},
               {{"KVR_0007.MPO", "KVR_0007.SRW"}, {{"KVR_0007.MPO", 7, 2, 1}}, "MPO comes first"},
               {{"KVR_0007.JPG", "KVR_0007.MPO", "KVR_0007.SRW"}, {{"KVR_0007.JPG", 7, 0, 1}}, "the last companion"},
               {{"KVR_0007.AVI", "KVR_0007.JPG", "KVR_0007.MP4", "KVR_0007.MPO", "KVR_0007.SRW"},
                {{"KVR_0007.AVI", 7, 5, 1}},
                "all five"},
               {{"AAAA0007.SRW", "ZZZZ0007.JPG"}, {{"ZZZZ0007.JPG", 7, 0, 1}}, "the prefix does not count"},
               {{"KVR_0007.SRW", "kvr_0007.jpg"}, {{"KVR_0007.SRW", 7, 1}}, "lower case is read later"},
               {{"KVR_0007.JPG", "KVR_0007.SRW", "KVR_0006.SRW", "KVR_0005.JPG", "KVR_0005.MPO"},
                {{"KVR_0007.JPG", 7, 0, 1}, {"KVR_0006.SRW", 6, 1}, {"KVR_0005.JPG", 5, 0, 2}},
                "each companion to its own file"},
               {{"KVR_0007.JPG", "KVR_0007.MOV", "KVR_0007.SRW"}, {{"KVR_0007.JPG", 7, 0, 1}}, "a refused one between"},
               {{"KVR_0007.AAA", "KVR_0007.JPG"}, {{"KVR_0007.JPG", 7, 0}}, "a refused one before leaves no number"},
               {{"KVR_0008.JPG", "KVR_0007.AAA", "KVR_0007.SRW"},
                {{"KVR_0008.JPG", 8, 0}, {"KVR_0007.SRW", 7, 1}},
                "a refused one before is no file to join"}});
}

TEST(DirScan, OfTwoFilesThatAgreeInNumberAndExtensionListsOne) {
    Card card;
    card.AddFiles("100ABCDE", {"AAAA0007.JPG", "ZZZZ0007.JPG", "KVR_0003.JPG"});
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(Scan(dir, card), 2);
    EXPECT_EQ(Numbers(dir), (std::vector<int>{7, 3}));
}

TEST(DirScan, DropsNumberZeroWhereItIsReadFirst) {
    CheckRows("100ABCDE", 100,
              {{{"KVR_0000.JPG"}, {}, "a picture"},
               {{"KVR_0000.MP4"}, {}, "a movie"},
               {{"KVR_0000.AVI"}, {}, "a movie"},
               {{"KVR_0000.SRW"}, {}, "a companion of no file"},
               {{"KVR_0000.MPO"}, {}, "a companion of no file"},
               {{"KVR_0000.MPO", "KVR_0000.SRW"}, {}, "two of them"},
               {{"KVR_0000.JPG", "KVR_0000.SRW"}, {}, "a picture with its companion"},
               {{"KVR_0000.JPG", "KVR_0000.SRW", "KVR_0001.JPG"},
                {{"KVR_0001.JPG", 1, 0}, {"KVR_0000.JPG", 0, 0, 1}},
                "read behind another number it is a file like any other"},
               {{"KVR_0000.SRW", "KVR_0001.JPG"}, {{"KVR_0001.JPG", 1, 0}, {"KVR_0000.SRW", 0, 1}}, "the same"}});
}

TEST(DirScan, MakesItemsOfCameraNames) {
    CheckRows("Camera", 99,
              {{{"20240131_000012.JPG"}, {{"20240131_000012.JPG", 12, 0}}, "number from the tenth character on"},
               {{"20240131_123456.jpg"}, {{"20240131_123456.JPG", 123456, 0}}, "stored in upper case"},
               {{"20240131_000002.JPG", "20240131_000001.JPG", "20230131_000003.JPG"},
                {{"20230131_000003.JPG", 3, 0}, {"20240131_000001.JPG", 1, 0}, {"20240131_000002.JPG", 2, 0}},
                "by name, whatever the numbers"},
               {{"20240131_000001.MP4", "20240131_000002.AVI", "20240131_000003.SRW", "20240131_000004.MPO"},
                {{"20240131_000003.SRW", 3, 1}, {"20240131_000004.MPO", 4, 2}},
                "no movies"},
               {{"KVR_0001.JPG", "20240131_12345.JPG", "20240131_1234567.JPG"}, {}, "other lengths are not listed"},
               {{"20240131_000007.JPG", "20240131_000007.SRW", "20240131_000007.MPO"},
                {{"20240131_000007.JPG", 7, 0, 1}},
                "companions follow by name"},
               {{"20230131_000007.JPG", "20240131_000007.JPG"},
                {{"20230131_000007.JPG", 7, 0}},
                "equal numbers that follow each other are one"},
               {{"20230131_000007.JPG", "20230131_000008.JPG", "20240131_000007.JPG"},
                {{"20230131_000007.JPG", 7, 0}, {"20230131_000008.JPG", 8, 0}, {"20240131_000007.JPG", 7, 0}},
                "equal numbers apart from each other are two"},
               {{"20230131_000007.JPG", "20240131_000007.SRW"},
                {{"20230131_000007.JPG", 7, 0, 1}},
                "a companion by number alone"},
               {{"20230131_000007.JPG", "20230131_000008.MP4", "20240131_000007.SRW"},
                {{"20230131_000007.JPG", 7, 0, 1}},
                "a refused one between does not part them"},
               {{"20240131_1234567JPG"}, {{"20240131_1234567JPG", 123456, 0}}, "no dot needed"}});
}

TEST(DirScan, ReadsTheNumberOfACameraNameTheStandardWay) {
    const struct {
        const char* six;
        int number;
        const char* why;
    } rows[] = {
        {"12ab56", 12, "up to the first other character"},
        {"-12345", -12345, "a sign"},
        {"  1234", 1234, "leading blanks"},
        {"+00012", 12, "a sign"},
        {"999999", 999999, "six digits"},
        {"0x1234", 0, "decimal only"},
        {"abcdef", 0, "no digits"},
        {"1_2345", 1, "up to the first other character"},
    };
    for (const auto& row : rows) {
        // The first file keeps the wanted one from being number 0 read first.
        Card card;
        card.AddFiles("Camera", {"0A_AAAAAA000001.JPG", std::string("AAAAAAAAA") + row.six + ".JPG"});
        CSDCFDir dir(99, "Camera");
        EXPECT_EQ(Scan(dir, card, 0, 99), row.number == 1 ? 1 : 2) << row.six;
        EXPECT_EQ(dir.m_itemGroup.back().m_nFileNum, row.number) << row.six << ": " << row.why;
    }
}

TEST(DirScan, DropsNumberZeroInCameraUntilAnotherNumberWasRead) {
    CheckRows("Camera", 99,
              {{{"AAAAAAAAAabcdef.JPG"}, {}, "a picture without digits"},
               {{"AAAAAAAAAabcdef.SRW", "BBBBBBBBB000000.MPO"}, {}, "companions of no file"},
               {{"AAAAAAAAAabcdef.JPG", "BBBBBBBBB000001.JPG", "CCCCCCCCC000000.JPG", "DDDDDDDDDdddddd.JPG"},
                {{"BBBBBBBBB000001.JPG", 1, 0}, {"CCCCCCCCC000000.JPG", 0, 0}},
                "behind another number the first one counts"}});
}

TEST(DirScan, TakesAnyNameThatBeginsWithCameraForIt) {
    Card card;
    card.AddFiles("CameraXY", {dcftest::CameraName(5), DcfName(1)});
    CSDCFDir dir(99, "CameraXY");
    EXPECT_EQ(Scan(dir, card, 0, 99), 1);
    EXPECT_EQ(Numbers(dir), std::vector<int>{5});
}

TEST(DirScan, BelowARootWithCameraInItsPathFindsNoDcfFile) {
    Card card;
    card.AddFiles("Camera/DCIM/100ABCDE", {dcftest::CameraName(5), DcfName(1)});
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(dir.Listup(Writable(card.Dcim() + "/Camera").data(), 100, 0), 0);
}

TEST(DirScan, WritesTheGivenDirectoryNumberIntoTheItems) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    for (const int dnum : {100, 555, 65636, -1}) {
        CSDCFDir dir(100, "100ABCDE");
        EXPECT_EQ(Scan(dir, card, 0, dnum), 2);
        for (const DCFItem& item : dir.m_itemGroup) {
            EXPECT_EQ(item.m_nDirNum, static_cast<short>(dnum)) << "its low 16 bits";
        }
        EXPECT_EQ(dir.GetDnum(), 100);
    }
}

TEST(DirScan, LeavesProtectMarksAndMetadataUnknown) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1), {"", 0444, {}});
    CSDCFDir dir(100, "100ABCDE");
    ASSERT_EQ(Scan(dir, card), 1);
    EXPECT_FALSE(dir.m_itemGroup[0].m_bProtectKnown);
    EXPECT_FALSE(dir.m_itemGroup[0].m_bWifi);
    EXPECT_FALSE(dir.m_itemGroup[0].m_bMetadata);
}

#ifndef DCF_ENTRY_TIME_DIRENT
TEST(DirScan, TakesTheTimeOfTheFileThatBecomesTheItem) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1, "JPG"), {"", 0644, 1000000001});
    card.AddFile("100ABCDE", DcfName(1, "SRW"), {"", 0644, 1000000002});
    card.AddFile("100ABCDE", DcfName(2, "SRW"), {"", 0644, 1000000003});
    CSDCFDir dir(100, "100ABCDE");
    ASSERT_EQ(Scan(dir, card), 2);
    EXPECT_EQ(dir.m_itemGroup[0].m_nFileTime, 1000000003U);
    EXPECT_EQ(dir.m_itemGroup[1].m_nFileTime, 1000000001U);
}
#endif

TEST(DirScan, StopsBehindTheFileThatCrossesTheLimit) {
    const struct {
        int base;
        int files;
        int listed;
        const char* why;
    } rows[] = {
        {99990, 20, 10, "the tenth is number 100,000 of all"},
        {99979, 20, 20, "the limit is just not crossed"},
        {99980, 20, 20, "the last file crosses it"},
        {99981, 20, 19, "the last but one crosses it"},
        {99998, 20, 2, "one more and the one that crosses it"},
        {99999, 20, 1, "the first one crosses it"},
        {100000, 20, 1, "it was crossed before"},
        {2000000, 20, 1, "it was crossed long before"},
        {-50, 20, 20, "nothing of it"},
    };
    for (const auto& row : rows) {
        Card card;
        card.Fill(1, row.files);
        CSDCFDir dir(100, "100ABCDE");
        EXPECT_EQ(Scan(dir, card, row.base), row.listed) << row.base << ": " << row.why;
        EXPECT_EQ(dir.GetCount(), row.listed);
        EXPECT_EQ(dir.m_itemGroup.front().m_nFileNum, row.files);
    }
}

TEST(DirScan, AtTheLimitReadsNoCompanionAnyMore) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(2, "JPG"), DcfName(2, "SRW"), DcfName(1)});
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(Scan(dir, card, 99999), 1);
    EXPECT_EQ(Items(dir), (Finds{{DcfName(2), 2, 0}}));
}

TEST(DirScan, CountsSkippedFilesNowhere) {
    Card card;
    card.AddFiles("100ABCDE",
                  {DcfName(3), DcfName(3, "MP4"), DcfName(2), DcfName(2, "SRW"), DcfName(1), "KVR_0009.MOV"});
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(Scan(dir, card, 99997), 3) << "companions and dropped files are no files";
}

TEST(DirScan, OfAFolderThatCannotBeListedFindsNothingAndSaysNothing) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1)).AddFile(".", "101ABCDE");
    FakePlatform::Get().Reset();
    CSDCFDir missing(102, "102ABCDE");
    EXPECT_EQ(Scan(missing, card), 0) << "no such folder";
    CSDCFDir file(101, "101ABCDE");
    EXPECT_EQ(Scan(file, card), 0) << "a file";
    CSDCFDir broken(100, "100ABCDE");
    PosixSeam seam;
    seam.Fail("scandir", EIO);
    EXPECT_EQ(Scan(broken, card), 0) << "a broken card";
    EXPECT_EQ(seam.Fired(), 1);
    EXPECT_EQ(broken.GetCount(), 0);
    EXPECT_EQ(Scan(broken, card), 1) << "and later it can";
    EXPECT_TRUE(FakePlatform::Get().Lines().empty());
}

TEST(DirScan, MakesOneScanAndNoLookAtAFileByPath) {
    Card card;
    card.Fill(1, 100);
    CSDCFDir dir(100, "100ABCDE");
    PosixSeam seam;
    EXPECT_EQ(Scan(dir, card), 100);
    EXPECT_EQ(seam.Texts({"scandir", "stat", "opendir", "chmod", "sync"}),
              std::vector<std::string>{"scandir " + card.Path("100ABCDE")});
    EXPECT_EQ(seam.Changes(), 0);
}

TEST(DirScan, ListsFoldersThatAreNamedLikeFiles) {
    Card card;
    card.AddDir("100ABCDE/KVR_0005.JPG").AddFile("100ABCDE", DcfName(3));
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(Scan(dir, card), 2) << "entries are not tested for being files";
}

TEST(DirScan, AppendsToWhatIsThere) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(Scan(dir, card), 2);
    EXPECT_EQ(Scan(dir, card), 2);
    EXPECT_EQ(Numbers(dir), (std::vector<int>{2, 1, 2, 1}));
    EXPECT_EQ(dir.GetFidx(1), 1) << "the first match from the front";
}

TEST(DirScan, CutsTheFoldersPathAt98Characters) {
    // "%s/DCIM/100ABCDE" of a root with 85 characters is 99 long, one too many.
    const Card card(85);
    CSDCFDir dir(100, "100ABCDE");
    PosixSeam seam;
    EXPECT_EQ(Scan(dir, card), 0);
    EXPECT_EQ(seam.Texts({"scandir"}),
              std::vector<std::string>{"scandir " + (card.Root() + "/DCIM/100ABCDE").substr(0, 98)});
    Card fitting(84);
    fitting.AddFile("100ABCDE", DcfName(1));
    EXPECT_EQ(Scan(dir, fitting), 1);
}

} // namespace
