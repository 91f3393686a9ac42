// The listing of a whole card into a tree: which directories, in which order, with what in the registry, through which
// calls, and what a card that cannot be read gives.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <string>
#include <vector>

#include "CSDCFList.h"
#include "Card.h"
#include "FakePlatform.h"
#include "PosixSeam.h"
#include "Trees.h"

using dcftest::CameraName;
using dcftest::Card;
using dcftest::DcfName;
using dcftest::DirectoryNames;
using dcftest::FakePlatform;
using dcftest::Numbers;
using dcftest::PosixSeam;

namespace {

using Texts = std::vector<std::string>;

class TreeListupTest : public testing::Test {
protected:
    TreeListupTest() {
        FakePlatform::Get().Reset();
        DirPathMapper::getInstance()->clear();
        Choose(m_card);
    }

    void Choose(const Card& card) {
        EXPECT_EQ(m_list.SetBaseURI(card.Root().c_str()), 0);
    }
    const std::map<int, std::string>& Registry() {
        return DirPathMapper::getInstance()->m_mapPath;
    }

    Card m_card;
    CSDCFList m_list;
};

TEST_F(TreeListupTest, MakesAMissingDcim) {
    m_list.m_nFirstIndex = 77;
    EXPECT_EQ(m_list.Listup(true), 0);
    struct stat status {};
    ASSERT_EQ(::stat(m_card.Dcim().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0775U);
    EXPECT_EQ(m_list.m_nDirCount, 0);
    EXPECT_EQ(m_list.GetCount(), 0);
    EXPECT_EQ(m_list.m_nFirstIndex, 0) << "an empty folder was listed";
}

TEST_F(TreeListupTest, ListsFromTheHighestNumberDownAndCameraLast) {
    m_card.AddFiles("100ABCDE", {DcfName(1), DcfName(3)}).AddFile("101ABCDE", DcfName(7));
    m_card.AddFile("Camera", CameraName(5));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), (Texts{"101ABCDE", "100ABCDE", "Camera"}));
    EXPECT_EQ(m_list.m_nDirCount, 3);
    EXPECT_EQ(m_list.m_dirGroup[0]->GetDnum(), 101);
    EXPECT_EQ(m_list.m_dirGroup[1]->GetDnum(), 100);
    EXPECT_EQ(m_list.m_dirGroup[2]->GetDnum(), 99);
    EXPECT_EQ(Numbers(*m_list.m_dirGroup[1]), (std::vector<int>{3, 1}));
    EXPECT_EQ(Numbers(*m_list.m_dirGroup[2]), (std::vector<int>{5}));
    EXPECT_EQ(m_list.m_dirGroup[2]->m_itemGroup[0].m_nDirNum, 99);
    EXPECT_EQ(m_list.m_nTotalCount, 4);
    EXPECT_EQ(m_list.GetCount(), 4);
    EXPECT_EQ(m_list.m_nFirstIndex, 10100007);
    const std::map<int, std::string> expected = {
        {99, m_card.Path("Camera")}, {100, m_card.Path("100ABCDE")}, {101, m_card.Path("101ABCDE")}};
    EXPECT_EQ(Registry(), expected);
}

TEST_F(TreeListupTest, LeavesCameraOutOnRequest) {
    m_card.AddFile("100ABCDE", DcfName(1)).AddFile("101ABCDE", DcfName(7)).AddFile("Camera", CameraName(5));
    EXPECT_EQ(m_list.Listup(false), 0);
    EXPECT_EQ(DirectoryNames(m_list), (Texts{"101ABCDE", "100ABCDE"}));
    EXPECT_EQ(m_list.GetCount(), 2);
    EXPECT_EQ(Registry().count(99), 0U);
}

TEST_F(TreeListupTest, KeepsOnlyWhatTheRulesAccept) {
    const struct {
        Texts names;
        Texts withCamera;
        Texts withoutCamera;
        const char* why;
    } rows[] = {
        {{"099ABCDE"}, {}, {}, "below 100"},
        {{"1000ABCD"}, {}, {}, "the number is 1000"},
        {{"10ABCDEF"}, {}, {}, "two digits"},
        {{" 100ABCD", "+100ABCD", "0100ABCD"}, {}, {}, "accepted by the name rule, but their number is 10"},
        {{"100ABCD", "100ABCDEF"}, {}, {}, "seven and nine characters"},
        {{"CAMERA", "camera", "Camera01"}, {}, {}, "not the one folder"},
        {{"MISC", "EOSMISC_"}, {}, {}, "no number"},
        {{"100ABCDE", "999ABCDE"}, {"999ABCDE", "100ABCDE"}, {"999ABCDE", "100ABCDE"}, "both ends of the range"},
        {{"0999ABCD"}, {"0999ABCD"}, {}, "passes the name rule as 999 and has the number 99"},
        {{" 999ABCD"}, {" 999ABCD"}, {}, "the same by a blank"},
        {{"+999ABCD"}, {"+999ABCD"}, {}, "the same by a sign"},
        {{"0999ABCD", "Camera"}, {"0999ABCD", "Camera"}, {}, "two directories of number 99"},
        {{"100ABCDE", "0999ABCD", "Camera"},
         {"100ABCDE", "0999ABCD", "Camera"},
         {"100ABCDE"},
         "the order is the one of the names"},
    };
    for (const auto& row : rows) {
        for (const bool includeCamera : {true, false}) {
            Card card;
            for (const std::string& name : row.names) {
                card.AddDir(name);
            }
            CSDCFList list;
            ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
            EXPECT_EQ(list.Listup(includeCamera), 0);
            const Texts& expected = includeCamera ? row.withCamera : row.withoutCamera;
            EXPECT_EQ(DirectoryNames(list), expected) << row.why;
            EXPECT_EQ(list.m_nDirCount, static_cast<int>(expected.size())) << row.why;
        }
    }
}

TEST_F(TreeListupTest, ADirectoryThatPassesAsNumber99HoldsDcfFiles) {
    m_card.AddFiles("0999ABCD", {DcfName(5), CameraName(6)});
    EXPECT_EQ(m_list.Listup(true), 0);
    ASSERT_EQ(m_list.GetCount(), 1);
    EXPECT_EQ(m_list.m_dirGroup[0]->m_itemGroup[0].m_nFileNum, 5);
    EXPECT_EQ(m_list.m_dirGroup[0]->m_itemGroup[0].m_nDirNum, 99);
    EXPECT_EQ(m_list.m_nFirstIndex, 0) << "number 99 has no first index";
}

TEST_F(TreeListupTest, TreatsDirectoriesOfOneNumberByTheirSuffix) {
    const struct {
        Texts names;
        Texts listed;
        const char* registered;
        const char* why;
    } rows[] = {
        {{"100PHOTO", "100ABCDE"}, {"100PHOTO"}, "100PHOTO", "the photo folder read first shuts out the others"},
        {{"100ZZZZZ", "100PHOTO"}, {"100ZZZZZ", "100PHOTO"}, "100PHOTO", "read later it is let in and registered"},
        {{"100ZZZZZ", "100PHOTO", "100ABCDE"}, {"100ZZZZZ", "100PHOTO"}, "100PHOTO", "and shuts out a third"},
        {{"100ZZZZZ", "100YYYYY", "100ABCDE"},
         {"100ZZZZZ", "100YYYYY", "100ABCDE"},
         "100ABCDE",
         "without it all are let in, the last one registered"},
        {{"100photo", "100ABCDE"}, {"100photo", "100ABCDE"}, "100ABCDE", "case-sensitive"},
    };
    for (const auto& row : rows) {
        Card card;
        for (const std::string& name : row.names) {
            card.AddFile(name, DcfName(1));
        }
        CSDCFList list;
        ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
        EXPECT_EQ(list.Listup(true), 0);
        EXPECT_EQ(DirectoryNames(list), row.listed) << row.why;
        EXPECT_EQ(list.GetCount(), static_cast<int>(row.listed.size())) << row.why;
        EXPECT_EQ(DirPathMapper::getInstance()->getPath(100), card.Path(row.registered)) << row.why;
        EXPECT_EQ(list.GetDirIndex(100), 0) << row.why;
    }
}

TEST_F(TreeListupTest, BelowARootWithPhotoInItsPathListsOneDirectoryPerNumber) {
    m_card.AddDir("PHOTO/DCIM/100ZZZZZ").AddDir("PHOTO/DCIM/100ABCDE");
    ASSERT_EQ(m_list.SetBaseURI((m_card.Dcim() + "/PHOTO").c_str()), 0);
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), Texts{"100ZZZZZ"});
}

TEST_F(TreeListupTest, KeepsEmptyDirectories) {
    m_card.AddDir("101EMPTY").AddFile("100ABCDE", DcfName(42));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.m_nDirCount, 2);
    EXPECT_EQ(m_list.m_dirGroup[0]->GetCount(), 0);
    EXPECT_EQ(m_list.m_nFirstIndex, 10100000) << "the highest directory decides";
    EXPECT_EQ(Registry().count(101), 1U);
}

TEST_F(TreeListupTest, TakesAFileNamedLikeADirectoryForAnEmptyOne) {
    m_card.AddFile(".", "105ABCDE").AddFile("100ABCDE", DcfName(1));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), (Texts{"105ABCDE", "100ABCDE"}));
    EXPECT_EQ(m_list.GetCount(), 1);
}

TEST_F(TreeListupTest, ReplacesTheRegistryOfTheListingBefore) {
    DirPathMapper::getInstance()->add(555, "/old/DCIM/555PHOTO");
    m_card.AddFile("555ABCDE", DcfName(1));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), Texts{"555ABCDE"}) << "an old photo folder shuts out nobody";
    EXPECT_EQ(Registry(), (std::map<int, std::string>{{555, m_card.Path("555ABCDE")}}));
}

TEST_F(TreeListupTest, ClearsTheRegistryOfACardWithoutDirectories) {
    DirPathMapper::getInstance()->add(555, "/old/DCIM/555PHOTO");
    m_card.AddDir(".");
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_TRUE(Registry().empty()) << "an empty folder is a listing";
}

TEST_F(TreeListupTest, ThatCannotBeMadeChangesNothing) {
    m_card.AddFile("100ABCDE", DcfName(1));
    DirPathMapper::getInstance()->add(555, "/old/DCIM/555PHOTO");
    for (const int error : {EIO, EACCES, ENOMEM}) {
        m_list.SetSeriesMode(true);
        m_list.m_nFirstIndex = 77;
        PosixSeam seam;
        seam.Fail("scandir", error);
        EXPECT_EQ(m_list.Listup(true), 0);
        EXPECT_EQ(seam.Texts({"scandir"}), Texts{"scandir " + m_card.Dcim()});
        EXPECT_EQ(m_list.m_nDirCount, 0);
        EXPECT_EQ(m_list.m_nFirstIndex, 77);
        EXPECT_EQ(Registry(), (std::map<int, std::string>{{555, "/old/DCIM/555PHOTO"}}));
    }
    EXPECT_TRUE(FakePlatform::Get().PrefCalls().empty()) << "the series value is not asked for";
    EXPECT_TRUE(FakePlatform::Get().Lines().empty());
}

TEST_F(TreeListupTest, OfARootThatIsNotThereIsEmpty) {
    ASSERT_EQ(m_list.SetBaseURI((m_card.Root() + "/nowhere").c_str()), 0);
    m_list.m_nFirstIndex = 77;
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.GetCount(), 0);
    EXPECT_EQ(m_list.m_nFirstIndex, 77);
    EXPECT_FALSE(m_card.Exists("../nowhere")) << "only DCIM itself is ever made";
}

TEST_F(TreeListupTest, GoesOnWhenOneDirectoryCannotBeListed) {
    m_card.AddFile("100ABCDE", DcfName(1)).AddFile("101ABCDE", DcfName(2)).AddFile("102ABCDE", DcfName(3));
    PosixSeam seam;
    seam.Fail("scandir", EIO, 3); // DCIM, 102, 101
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), (Texts{"102ABCDE", "101ABCDE", "100ABCDE"}));
    EXPECT_EQ(m_list.m_dirGroup[1]->GetCount(), 0);
    EXPECT_EQ(m_list.GetCount(), 2);
}

TEST_F(TreeListupTest, GoesOnWhenDcimCannotBeMade) {
    m_card.AddFile("100ABCDE", DcfName(1));
    PosixSeam seam;
    seam.Fail("mkdir", EROFS);
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.GetCount(), 1);
}

TEST_F(TreeListupTest, MakesOneScanPerFolderAndNothingElse) {
    m_card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)}).AddFile("101ABCDE", DcfName(7)).AddFile("Camera", "x");
    m_card.AddDir("1000SKIP");
    const mode_t mask = ::umask(0022);
    PosixSeam seam;
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(
        seam.Texts({"scandir", "opendir", "readdir", "stat", "chmod", "mkdir", "umask", "sync", "unlink", "rename"}),
        (Texts{"umask 0000", "mkdir " + m_card.Dcim() + " 0775", "umask 0022", "scandir " + m_card.Dcim(),
               "scandir " + m_card.Path("101ABCDE"), "scandir " + m_card.Path("100ABCDE"),
               "scandir " + m_card.Path("Camera")}))
        << "DCIM is there, so nothing is made and nothing synced";
    (void)::umask(mask);
}

TEST_F(TreeListupTest, GivesEachDirectoryTheRunningTotalForTheLimit) {
    for (const int dnum : {100, 101, 102}) {
        for (int number = 1; number <= 8; ++number) {
            m_card.AddFile(dcftest::DirName(dnum), DcfName(number));
        }
    }
    m_list.m_nTotalCount = 99990; // as if other directories had been listed before
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.m_dirGroup[0]->GetCount(), 8);
    EXPECT_EQ(m_list.m_dirGroup[1]->GetCount(), 2) << "the second one crosses the limit";
    EXPECT_EQ(m_list.m_dirGroup[2]->GetCount(), 1) << "beyond it the first file of each directory is listed";
    EXPECT_EQ(m_list.m_nTotalCount, 11) << "counted again at the end";
}

TEST_F(TreeListupTest, AppendsToWhatIsThere) {
    m_card.AddFile("100ABCDE", DcfName(1));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirectoryNames(m_list), (Texts{"100ABCDE", "100ABCDE"})) << "it is run once, on a fresh tree";
    EXPECT_EQ(m_list.m_nDirCount, 2);
}

TEST_F(TreeListupTest, InSeriesModeRaisesTheFirstIndex) {
    m_card.AddFile("105ABCDE", DcfName(17));
    FakePlatform::Get().SetPreference(3, 512, 12300045);
    m_list.SetSeriesMode(true);
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.m_nFirstIndex, 12300045);
    CSDCFList plain;
    ASSERT_EQ(plain.SetBaseURI(m_card.Root().c_str()), 0);
    EXPECT_EQ(plain.Listup(true), 0);
    EXPECT_EQ(plain.m_nFirstIndex, 10500017);
}

TEST_F(TreeListupTest, LeavesTheCursorUnset) {
    m_card.AddFile("100ABCDE", DcfName(1));
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(m_list.m_nCurDnum, -1);
    EXPECT_EQ(m_list.m_nCurFnum, -1);
    EXPECT_EQ(m_list.m_nCurDidx, -1);
    EXPECT_EQ(m_list.m_CurFileIndex, -1);
    EXPECT_EQ(m_list.m_nCurListIndex, -1);
}

TEST_F(TreeListupTest, CutsItsPathsAt98Characters) {
    const struct {
        std::size_t root;
        const char* why;
    } rows[] = {{93, "DCIM just fits"}, {94, "its last character is cut"}, {97, "only the slash is left"}};
    for (const auto& row : rows) {
        const Card card(row.root);
        CSDCFList list;
        ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
        PosixSeam seam;
        EXPECT_EQ(list.Listup(true), 0);
        const std::string cut = (card.Root() + "/DCIM").substr(0, 98);
        EXPECT_EQ(seam.Texts({"mkdir", "scandir"}), (Texts{"mkdir " + cut + " 0775", "scandir " + cut})) << row.why;
    }
}

TEST_F(TreeListupTest, RegistersPathsCutAt98Characters) {
    Card card(86); // "/DCIM/100ABCDE" makes it 100
    card.AddFile("100ABCDE", DcfName(1));
    Choose(card);
    EXPECT_EQ(m_list.Listup(true), 0);
    EXPECT_EQ(DirPathMapper::getInstance()->getPath(100), card.Path("100ABCDE").substr(0, 98));
    EXPECT_EQ(m_list.GetCount(), 0) << "the cut path names no folder";
}

} // namespace
