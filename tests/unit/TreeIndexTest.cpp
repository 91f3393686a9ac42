// The look-ups of the tree against plain walks over its directories: whatever was listed, added, put in front, renamed
// or removed between two questions, by whomever, the answer is that of a walk from the front.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "ChildProcess.h"
#include "Seed.h"
#include "Trees.h"

using dcftest::Append;
using dcftest::AppendDir;
using dcftest::DcfName;
using dcftest::DiesByAssertion;
using dcftest::RunInChild;
using dcftest::Seed;

namespace {

constexpr eFileType kTypes[] = {FILE_TYPE_NONE,
                                FILE_TYPE_JPG,
                                FILE_TYPE_SRW,
                                FILE_TYPE_MPO,
                                FILE_TYPE_MP4,
                                FILE_TYPE_AVI,
                                static_cast<eFileType>(4),
                                static_cast<eFileType>(77)};

std::string RootOf(const CSDCFList& list) {
    return list.m_szBaseURI;
}

std::string PathIn(const CSDCFList& list, const std::string& dir, const std::string& file) {
    return RootOf(list) + "/DCIM/" + dir + "/" + file;
}

int WalkForNumber(const CSDCFList& list, int dnum) {
    const auto found = std::find_if(list.m_dirGroup.begin(), list.m_dirGroup.end(),
                                    [dnum](CSDCFDir* dir) { return dir->GetDnum() == dnum; });
    return static_cast<int>(found - list.m_dirGroup.begin());
}

int WalkForName(const CSDCFList& list, const std::string& name) {
    const auto found = std::find_if(list.m_dirGroup.begin(), list.m_dirGroup.end(), [&name](const CSDCFDir* dir) {
        return std::strncmp(dir->m_strDirName, name.c_str(), 6) == 0;
    });
    return found == list.m_dirGroup.end() ? -1 : static_cast<int>(found - list.m_dirGroup.begin());
}

int WalkForType(const CSDCFList& list, eFileType type) {
    int files = 0;
    for (CSDCFDir* dir : list.m_dirGroup) {
        files += dir->GetCountByType(type);
    }
    return files;
}

void ExpectPositions(CSDCFList& list) {
    int position = 0;
    for (const CSDCFDir* dir : list.m_dirGroup) {
        for (const DCFItem& item : dir->m_itemGroup) {
            CSFileListItem found;
            ASSERT_EQ(0, list.GetAtSimply(position, &found));
            ASSERT_EQ(PathIn(list, dir->m_strDirName, item.m_fileName), found.m_strURI) << "position " << position;
            ++position;
        }
    }
    ASSERT_EQ(position, list.GetCount());
}

void ExpectWalkedAnswers(CSDCFList& list) {
    ExpectPositions(list);
    int before = 0;
    for (std::size_t didx = 0; didx < list.m_dirGroup.size(); ++didx) {
        CSDCFDir& dir = *list.m_dirGroup[didx];
        ASSERT_EQ(WalkForNumber(list, dir.GetDnum()), list.GetDirIndex(dir.GetDnum()));
        const std::string path = PathIn(list, dir.m_strDirName, "KVR_0001.JPG");
        ASSERT_EQ(WalkForName(list, dir.m_strDirName), list.GetDidx(path.c_str())) << path;
        list.m_nCurDidx = static_cast<int>(didx);
        list.m_CurFileIndex = 3;
        ASSERT_EQ(before + 3, list.GetCurIndex());
        before += dir.GetCount();
    }
    for (const eFileType type : kTypes) {
        ASSERT_EQ(WalkForType(list, type), list.GetFileCount(type)) << type;
    }
    ASSERT_EQ(-1, list.GetDidx(PathIn(list, "555NOONE", "KVR_0001.JPG").c_str()));
}

TEST(TreeIndex, AnswersAsAWalkWhateverTheOrderOfDirectories) {
    struct Dir {
        int dnum;
        const char* name;
        std::vector<int> numbers;
    };
    const struct {
        std::vector<Dir> dirs;
        const char* why;
    } rows[] = {
        {{}, "no directory"},
        {{{100, "100PHOTO", {}}}, "an empty one"},
        {{{102, "102PHOTO", {3, 2, 1}}, {101, "101PHOTO", {}}, {100, "100PHOTO", {5}}}, "an empty one in the middle"},
        {{{101, "101PHOTO", {}}, {100, "100PHOTO", {}}, {99, "Camera", {7, 7}}}, "only \"Camera\" has files"},
        {{{100, "100PHOTO", {2, 1}}, {101, "101PHOTO", {1}}, {102, "102PHOTO", {9}}}, "ascending"},
        {{{101, "101PHOTO", {4}}, {103, "103PHOTO", {2, 1}}, {102, "102PHOTO", {1}}}, "a lower one put in front"},
        {{{100, "100PHOTO", {1}}, {100, "100ABCDE", {2}}, {100, "100AAAAA", {3}}}, "one number three times"},
        {{{100, "100ABCDE", {1}}, {100, "100ABCXY", {2}}, {100, "100PHOTO", {3}}}, "one number, six characters alike"},
        {{{100, "100PHOTO", {1}}, {102, "102PHOTO", {2}}, {100, "100ABCDE", {3}}, {102, "102ABCDE", {4}}}, "mixed"},
        {{{99, "0990ABCD", {1}}, {99, "Camera", {5}}, {100, "100PHOTO", {2}}}, "two of number 99 in front"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.why);
        CSDCFList list;
        list.SetBaseURI("/card");
        for (const Dir& dir : row.dirs) {
            AppendDir(list, dir.dnum, dir.name, dir.numbers);
            ExpectWalkedAnswers(list);
        }
        ExpectWalkedAnswers(list);
    }
}

TEST(TreeIndex, NoticesEveryChangeOfADirectory) {
    CSDCFList list;
    list.SetBaseURI("/card");
    CSDCFDir& high = AppendDir(list, 101, "101PHOTO", {3, 2, 1});
    CSDCFDir& low = AppendDir(list, 100, "100PHOTO", {9, 8, 7});
    const struct {
        void (*change)(CSDCFDir& front, CSDCFDir& back);
        const char* what;
    } rows[] = {
        {[](CSDCFDir& /*front*/, CSDCFDir& back) { Append(back, 100, 6, DcfName(6)); }, "a file appended"},
        {[](CSDCFDir& front, CSDCFDir& /*back*/) { dcftest::PutInFront(front, 101, 4, DcfName(4, "MP4")); },
         "in front"},
        {[](CSDCFDir& front, CSDCFDir& /*back*/) { front.AddHeadObject(FILE_TYPE_MPO); }, "a companion in front"},
        {[](CSDCFDir& /*front*/, CSDCFDir& back) { back.AddObject(FILE_TYPE_SRW); }, "a companion at the end"},
        {[](CSDCFDir& front, CSDCFDir& /*back*/) { front.RemoveItem(1); }, "a file removed"},
        {[](CSDCFDir& /*front*/, CSDCFDir& back) {
             back.RemoveItems({0, 2});
         },
         "two files removed"},
        {[](CSDCFDir& front, CSDCFDir& /*back*/) { front.SetDirName("098OTHER"); }, "a new name"},
        {[](CSDCFDir& front, CSDCFDir& /*back*/) {
             front.SetProtect(0, true);
             front.SetProtect(1, false);
             front.SetProtect(2, false);
             front.RemoveAllItems();
         },
         "all unprotected files removed"},
    };
    for (const auto& row : rows) {
        ExpectWalkedAnswers(list); // the index is fresh
        row.change(high, low);
        SCOPED_TRACE(row.what);
        ExpectWalkedAnswers(list);
    }
    delete list.m_dirGroup.front();
    list.m_dirGroup.pop_front();
    --list.m_nDirCount;
    ExpectWalkedAnswers(list);
}

/// The directories' items are open to everybody. Noticed in trees of up to eight directories, as most are.
TEST(TreeIndex, NoticesAFileThatWasPutPastTheDirectorysOperations) {
    const std::vector<std::vector<int>> rows[] = {{{}},         {{2}},        {{}, {}},
                                                  {{}, {2, 1}}, {{2, 1}, {}}, std::vector<std::vector<int>>(8)};
    for (const auto& row : rows) {
        for (std::size_t changed = 0; changed < row.size(); ++changed) {
            SCOPED_TRACE(std::to_string(row.size()) + " directories, the file in " + std::to_string(changed));
            CSDCFList list;
            list.SetBaseURI("/card");
            int dnum = 110;
            for (const std::vector<int>& numbers : row) {
                AppendDir(list, dnum, std::to_string(dnum) + "PHOTO", numbers);
                --dnum;
            }
            ExpectWalkedAnswers(list); // the index is fresh
            CSDCFDir& dir = *list.m_dirGroup[changed];
            DCFItem item;
            item.setDirNum(dir.m_nDnum);
            item.setFileNum(9);
            item.setFileName("KVR_0009.JPG");
            dir.m_itemGroup.push_front(item);
            ExpectWalkedAnswers(list);
        }
    }
}

TEST(TreeIndex, CountsTypesWithoutANameAsThoseWithOne) {
    CSDCFList list;
    CSDCFDir& dir = AppendDir(list, 100, "100PHOTO", {2, 1});
    for (const int number : {-3, 6, 7}) {
        const auto type = static_cast<eFileType>(number);
        EXPECT_EQ(0, list.GetFileCount(type)) << number;
        dir.AddHeadObject(type);
        EXPECT_EQ(1, list.GetFileCount(type)) << number;
    }
}

TEST(TreeIndex, TakesUpANewFileAtTheFrontWithItsType) {
    for (const int directories : {2, 12}) { // small trees compare themselves with their directories, larger ones do not
        SCOPED_TRACE(directories);
        CSDCFList list;
        list.SetBaseURI("/card");
        for (int dnum = 100 + directories; dnum > 100; --dnum) {
            AppendDir(list, dnum, std::to_string(dnum) + "PHOTO", {2, 1});
        }
        char prefix[] = "KVR_";
        int number = 3;
        for (const char* extension : {"JPG", "SRW", "MPO", "MP4", "AVI", "JPG"}) {
            ExpectWalkedAnswers(list);
            std::vector<char> text = dcftest::Writable(extension);
            char path[99] = "";
            const int index = (100 + directories) * 100000 + number;
            ASSERT_EQ(0, list.GetNewFileIndex_SetInfo(index, prefix, text.data(), path, sizeof path));
            ExpectWalkedAnswers(list);
            ++number;
        }
    }
}

TEST(TreeIndex, MeetsAPositionBeforeTheListInTheFirstDirectory) {
    CSDCFList list;
    AppendDir(list, 101, "101PHOTO", {});
    AppendDir(list, 100, "100PHOTO", {9});
    CSFileListItem item;
    for (const int position : {-1, -7, std::numeric_limits<int>::min()}) {
        EXPECT_TRUE(
            DiesByAssertion(RunInChild([&] { (void)list.GetAtSimply(position, &item); }),
                            {"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(position),
                             "CSDCFDir", "DCFItem CSDCFDir::GetItem(int)"}))
            << position;
    }
}

/// One random change through the operations of the tree's classes.
void ChangeAtRandom(CSDCFList& list, Seed& seed) {
    const int dirs = static_cast<int>(list.m_dirGroup.size());
    if (dirs == 0 || seed.Chance(0.1)) {
        const int dnum = seed.Pick(100, 112);
        const std::string name = std::to_string(dnum) + (seed.Chance(0.7) ? "PHOTO" : "ABCDE");
        CSDCFDir& dir = AppendDir(list, dnum, name);
        if (seed.Chance(0.3)) {
            std::rotate(list.m_dirGroup.begin(), list.m_dirGroup.end() - 1, list.m_dirGroup.end());
            dir.SetDirName(name.c_str()); // a tree puts a directory in front before anybody asks
        }
        return;
    }
    CSDCFDir& dir = *list.m_dirGroup[static_cast<std::size_t>(seed.Pick(0, dirs - 1))];
    const int count = dir.GetCount();
    const int choice = seed.Pick(0, 5);
    if (choice <= 1 || count == 0) {
        Append(dir, dir.m_nDnum, seed.Pick(1, 20), DcfName(seed.Pick(1, 20), seed.Chance(0.5) ? "JPG" : "SRW"));
    } else if (choice == 2) {
        dcftest::PutInFront(dir, dir.m_nDnum, seed.Pick(1, 20), DcfName(7, "MP4"));
    } else if (choice == 3) {
        dir.RemoveItem(seed.Pick(0, count - 1));
    } else if (choice == 4) {
        dir.AddObject(FILE_TYPE_MPO);
    } else {
        dir.AddHeadObject(FILE_TYPE_SRW);
    }
}

TEST(TreeIndex, AnswersAsAWalkAfterRandomChanges) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    for (int round = 0; round < 20; ++round) {
        CSDCFList list;
        list.SetBaseURI("/card");
        for (int step = 0; step < 60; ++step) {
            ChangeAtRandom(list, seed);
            ASSERT_NO_FATAL_FAILURE(ExpectWalkedAnswers(list)) << "round " << round << " step " << step;
        }
    }
}

TEST(TreeIndex, GoesAsFarAsTheCountOfDirectoriesSays) {
    CSDCFList list;
    AppendDir(list, 101, "101ABCDE", {2, 1});
    AppendDir(list, 100, "100ABCDE", {1});
    ASSERT_EQ(list.GetCount(), 3);
    --list.m_nDirCount; // nothing tells of it
    EXPECT_EQ(list.GetCount(), 2);
    ++list.m_nDirCount;
    EXPECT_EQ(list.GetCount(), 3);
}

TEST(TreeIndex, OfOneTreeIsNotDisturbedByAnother) {
    CSDCFList first;
    CSDCFList second;
    first.SetBaseURI("/first");
    second.SetBaseURI("/second");
    AppendDir(first, 101, "101PHOTO", {3, 2, 1});
    AppendDir(second, 101, "101PHOTO", {3});
    ExpectWalkedAnswers(first);
    ExpectWalkedAnswers(second);
    Append(*second.m_dirGroup[0], 101, 2, DcfName(2));
    ExpectWalkedAnswers(first);
    ExpectWalkedAnswers(second);
}

} // namespace
