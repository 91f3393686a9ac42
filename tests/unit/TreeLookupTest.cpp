// CSDCFList: how it begins and ends, its storage root, and how directories are found and files counted.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "FakePlatform.h"
#include "PosixSeam.h"
#include "Trees.h"

using dcftest::Append;
using dcftest::AppendDir;
using dcftest::Card;
using dcftest::DcfName;
using dcftest::DiesByAssertion;
using dcftest::FakePlatform;
using dcftest::PosixSeam;
using dcftest::RunInChild;

namespace {

using Texts = std::vector<std::string>;

TEST(Tree, StartsEmptyWithoutACursor) {
    alignas(CSDCFList) unsigned char memory[sizeof(CSDCFList)];
    std::memset(memory, 0xA5, sizeof memory);
    auto* list = new (memory) CSDCFList;
    EXPECT_EQ(list->m_nFirstIndex, 0);
    EXPECT_TRUE(list->m_dirGroup.empty());
    EXPECT_EQ(list->m_nDirCount, 0);
    EXPECT_STREQ(list->m_szBaseURI, "");
    EXPECT_EQ(list->m_nTotalCount, 0);
    EXPECT_EQ(list->m_nCurDnum, -1);
    EXPECT_EQ(list->m_nCurFnum, -1);
    EXPECT_EQ(list->m_CurFileIndex, -1);
    EXPECT_STREQ(list->m_CurItem.m_fileName, "");
    EXPECT_EQ(list->m_CurItem.m_eFileType, FILE_TYPE_NONE);
    EXPECT_EQ(list->m_nCurDidx, -1);
    EXPECT_FALSE(list->m_bSeriesMode);
    EXPECT_EQ(list->m_nCurListIndex, -1);
    list->~CSDCFList();
}

TEST(Tree, SetsOneDevicePropertyWhateverComesOfIt) {
    FakePlatform::Get().Reset();
    {
        const CSDCFList list;
        const std::vector<FakePlatform::PropertyCall> expected = {{17, 8, 0, 0}};
        EXPECT_EQ(FakePlatform::Get().PropertyCalls(), expected);
        FakePlatform::Get().SetPropertyResult(-1);
        const CSDCFList second;
        EXPECT_EQ(FakePlatform::Get().PropertyCalls().size(), 2U) << "once for every tree";
    }
    EXPECT_EQ(FakePlatform::Get().PropertyCalls().size(), 2U);
    EXPECT_TRUE(FakePlatform::Get().Lines().empty());
}

TEST(Tree, MakesNoLookAtTheCardWhenItIsMade) {
    PosixSeam seam;
    const CSDCFList list;
    EXPECT_TRUE(seam.Calls().empty());
}

/// Tells when it is destroyed.
class WatchedDir : public CSDCFDir {
public:
    WatchedDir(int dnum, std::vector<int>& destroyed) : CSDCFDir(dnum, "WATCHED_"), m_destroyed(destroyed) {}
    ~WatchedDir() override {
        m_destroyed.push_back(GetDnum());
    }

private:
    std::vector<int>& m_destroyed;
};

TEST(Tree, DestroysItsDirectoriesFromTheFrontAndLeavesTheRegistry) {
    DirPathMapper::getInstance()->clear();
    DirPathMapper::getInstance()->add(100, "/card/DCIM/100ABCDE");
    std::vector<int> destroyed;
    {
        CSDCFList list;
        list.m_dirGroup = {new WatchedDir(103, destroyed), nullptr, new WatchedDir(102, destroyed),
                           new WatchedDir(101, destroyed)};
    }
    EXPECT_EQ(destroyed, (std::vector<int>{103, 102, 101}));
    EXPECT_EQ(DirPathMapper::getInstance()->getPath(100), "/card/DCIM/100ABCDE");
}

TEST(StorageRoot, HasAtMost97Characters) {
    CSDCFList list;
    EXPECT_EQ(list.SetBaseURI("/mnt/mmc"), 0);
    EXPECT_STREQ(list.m_szBaseURI, "/mnt/mmc");
    const std::string longest(97, 'r');
    EXPECT_EQ(list.SetBaseURI(longest.c_str()), 0);
    EXPECT_EQ(list.m_szBaseURI, longest);
    EXPECT_EQ(list.SetBaseURI(std::string(98, 's').c_str()), -1);
    EXPECT_EQ(list.SetBaseURI(std::string(500, 's').c_str()), -1);
    EXPECT_EQ(list.SetBaseURI(nullptr), -1);
    EXPECT_EQ(list.m_szBaseURI, longest) << "a refused root changes nothing";
    EXPECT_EQ(list.SetBaseURI(""), 0);
    EXPECT_STREQ(list.m_szBaseURI, "");
}

TEST(BaseDirectory, IsMadeUnderTheRootAndItsOutcomeNotLookedAt) {
    const Card card;
    CSDCFList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    const mode_t mask = ::umask(0077);
    PosixSeam seam;
    EXPECT_EQ(list.CreateBaseDirectory(), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"umask 0000", "mkdir " + card.Dcim() + " 0775", "umask 0077", "sync"}));
    seam.Forget();
    EXPECT_EQ(list.CreateBaseDirectory(), 0) << "it is there";
    EXPECT_EQ(seam.Texts(), (Texts{"umask 0000", "mkdir " + card.Dcim() + " 0775", "umask 0077"}));
    (void)::umask(mask);
    struct stat status {};
    ASSERT_EQ(::stat(card.Dcim().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0775U);
    seam.Fail("mkdir", EROFS);
    EXPECT_EQ(list.CreateBaseDirectory(), 0) << "a card that cannot be written";
    EXPECT_EQ(seam.Fired(), 1);
}

TEST(DirByPath, IsFoundByTheEightCharactersBehindTheSecondSlashFromTheEnd) {
    CSDCFList list;
    AppendDir(list, 102, "102ABCDE");
    AppendDir(list, 101, "101PHOTO");
    AppendDir(list, 99, "Camera");
    const struct {
        const char* path;
        int position;
        const char* why;
    } rows[] = {
        {"/mnt/mmc/DCIM/102ABCDE/KVR_0001.JPG", 0, "the usual path"},
        {"/mnt/mmc/DCIM/101PHOTO/KVR_0001.JPG", 1, "the usual path"},
        {"/mnt/mmc/DCIM/Camera/20240131_000001.JPG", 2, "eight characters are the name, a slash and one more"},
        {"/mnt/mmc/DCIM/102ABCXX/KVR_0001.JPG", 0, "six characters agree"},
        {"/mnt/mmc/DCIM/102ABXDE/KVR_0001.JPG", -1, "five do not"},
        {"/mnt/mmc/DCIM/103ABCDE/KVR_0001.JPG", -1, "no such directory"},
        {"/mnt/mmc/DCIM/CameraXY/KVR_0001.JPG", 2, "six characters agree"},
        {"/other/root/102ABCDE/KVR_0001.JPG", 0, "the root does not count"},
        {"/102ABCDE/sub/KVR_0001.JPG/more", -1, "counted from the end"},
        {"/mnt/mmc/102ABCDE/A.JPG", -1, "23 characters"},
        {"/mnt/mmc/102ABCDE/AB.JPG", 0, "24 characters"},
        {"", -1, "empty"},
        {"102ABCDE/KVR_0001.JPG_AND_MORE", -1, "one slash"},
        {"/102ABCDE_AND_NO_OTHER_SLASH", -1, "one slash, at the start"},
        {"no slash in these many characters", -1, "no slash"},
        {"/a/rather/long/path/to/x/y", -1, "a folder of one character"},
        {"////////////////////////////", -1, "slashes alone"},
        {"/mnt/mmc/DCIM/102ABC/KVR_01.JPG", 0, "six characters of the name, then other text"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(list.GetDidx(row.path), row.position) << row.path << ": " << row.why;
    }
    EXPECT_EQ(list.GetDidx(nullptr), -1);
    CSDCFList empty;
    EXPECT_EQ(empty.GetDidx("/mnt/mmc/DCIM/102ABCDE/KVR_0001.JPG"), -1);
}

TEST(DirByPath, TheFirstThatAgreesInSixCharactersWinsOverALaterExactOne) {
    CSDCFList list;
    AppendDir(list, 101, "101ABCDE");
    AppendDir(list, 100, "100ABCXX");
    AppendDir(list, 100, "100ABCDE");
    EXPECT_EQ(list.GetDidx("/mnt/mmc/DCIM/100ABCDE/KVR_0001.JPG"), 1);
}

TEST(DirByNumber, IsTheFirstOfThatNumber) {
    CSDCFList list;
    AppendDir(list, 101, "101ABCDE");
    AppendDir(list, 100, "100ZZZZZ");
    AppendDir(list, 100, "100PHOTO");
    AppendDir(list, 99, "Camera");
    EXPECT_EQ(list.GetDirIndex(101), 0);
    EXPECT_EQ(list.GetDirIndex(100), 1);
    EXPECT_EQ(list.GetDirIndex(99), 3);
}

TEST(DirByNumber, ThatIsNotThereIsFatal) {
    CSDCFList list;
    AppendDir(list, 101, "101ABCDE");
    for (const int number : {100, 0, -1, 999}) {
        EXPECT_TRUE(DiesByAssertion(
            RunInChild([&] { (void)list.GetDirIndex(number); }),
            {"0", "cannot find dir index = " + std::to_string(number), "CSDCFList", "int CSDCFList::GetDirIndex(int)"}))
            << number;
    }
    CSDCFList empty;
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)empty.GetDirIndex(100); }),
                                {"0", "cannot find dir index = 100", "CSDCFList", "int CSDCFList::GetDirIndex(int)"}));
}

TEST(FileCount, IsTheSumOverAllDirectoriesAndRefreshesTheTotal) {
    CSDCFList list;
    list.m_nTotalCount = 555;
    EXPECT_EQ(list.GetCount(), 0) << "no directories";
    EXPECT_EQ(list.m_nTotalCount, 0);
    AppendDir(list, 102, "102ABCDE", {3, 2});
    AppendDir(list, 101, "101ABCDE");
    CSDCFDir& last = AppendDir(list, 100, "100ABCDE", {9, 8, 7});
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_EQ(list.m_nTotalCount, 5);
    last.RemoveItem(0);
    EXPECT_EQ(list.m_nTotalCount, 5) << "as of the last count";
    EXPECT_EQ(list.GetCount(), 4);
    EXPECT_EQ(list.m_nTotalCount, 4);
}

TEST(FileCount, ByTypeSumsOverAllDirectoriesAndLeavesTheTotal) {
    CSDCFList list;
    CSDCFDir& first = AppendDir(list, 102, "102ABCDE");
    Append(first, 102, 2, DcfName(2, "JPG"));
    first.AddObject(FILE_TYPE_SRW);
    Append(first, 102, 1, DcfName(1, "MP4"));
    CSDCFDir& second = AppendDir(list, 100, "100ABCDE");
    Append(second, 100, 7, DcfName(7, "SRW"));
    Append(second, 100, 6, DcfName(6, "JPG"));
    list.m_nTotalCount = 555;
    EXPECT_EQ(list.GetFileCount(FILE_TYPE_JPG), 2);
    EXPECT_EQ(list.GetFileCount(FILE_TYPE_SRW), 2);
    EXPECT_EQ(list.GetFileCount(FILE_TYPE_MP4), 1);
    EXPECT_EQ(list.GetFileCount(FILE_TYPE_MPO), 0);
    EXPECT_EQ(list.GetFileCount(FILE_TYPE_AVI), 0);
    EXPECT_EQ(list.m_nTotalCount, 555);
    CSDCFList empty;
    EXPECT_EQ(empty.GetFileCount(FILE_TYPE_JPG), 0);
}

} // namespace
