// How many calls each operation makes on the card. Time depends on the machine and is judged nowhere; these counts do
// not, and on a card they are most of the time.
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "PosixSeam.h"
#include "Scenario.h"

namespace dcftest {
namespace {

using Counts = std::map<std::string, int>;

const Counts kNothing;
/// Whether one file is protected.
const Counts kOneLook = {{"stat", 1}};

Counts CountsOf(const std::function<void()>& operation) {
    const PosixSeam seam;
    operation();
    Counts counts;
    for (const PosixCall& call : seam.Calls()) {
        ++counts[call.name];
    }
    return counts;
}

Counts operator+(Counts sum, const Counts& other) {
    for (const auto& [name, count] : other) {
        sum[name] += count;
    }
    return sum;
}

Counts operator*(int times, Counts counts) {
    for (auto& [name, count] : counts) {
        count *= times;
    }
    return counts;
}

/// A look whether a folder that still holds files is empty: the two dot entries and one more, however many there are.
const Counts kEmptyCheck = {{"opendir", 1}, {"readdir", 3}, {"closedir", 1}};
const Counts kProtect = {{"stat", 1}, {"chmod", 1}, {"sync", 1}};
const Counts kSync = {{"sync", 1}};

/// A card of three folders with 40, 30 and 20 pictures, from the highest number down; every tenth has a companion file.
class SystemCalls : public FileListTest {
protected:
    static constexpr int kFolders = 3;
    static constexpr int kPictures = 90;
    static constexpr int kCompanions = 9;

    SystemCalls() {
        for (int folder = 0; folder < kFolders; ++folder) {
            for (int number = 1; number <= 20 + 10 * folder; ++number) {
                card.AddFile(Dir(folder), DcfName(number));
                if (number % 10 == 0) {
                    card.AddFile(Dir(folder), DcfName(number, "SRW"));
                }
            }
        }
    }

    static std::string Dir(int folder) {
        return DirName(100 + folder, "PHOTO");
    }

    void Expect(const char* name, const Counts& expected, const std::function<void()>& operation) {
        EXPECT_EQ(CountsOf(operation), expected) << name;
    }

    CSFileListItem ItemAt(int position) {
        CSFileListItem found;
        list->GetAt(position, &found);
        return found;
    }

    CSFileListItem item;
    std::string path = card.Path(Dir(1), DcfName(7)); ///< In the middle, without a companion file.
};

/// Calls that look at one file or at the times of an open folder's files.
int Metadata(const Counts& counts) {
    int sum = 0;
    for (const char* name : {"stat", "fstatat"}) {
        const auto found = counts.find(name);
        sum += found == counts.end() ? 0 : found->second;
    }
    return sum;
}

TEST_F(SystemCalls, OfAListingAreOneScandirForEachFolderAndAtMostOneLookAtEachEntryKept) {
    for (const char* foreign : {"README.TXT", "Thumbs.db", "long-name-of-a-picture.JPG"}) {
        card.AddFile(Dir(0), foreign);
    }
    CSDCFList tree;
    tree.SetBaseURI(card.Root().c_str());
    Counts counts = CountsOf([&] { tree.Listup(true); });
    ASSERT_EQ(tree.GetCount(), kPictures);
    EXPECT_EQ(counts["scandir"], 1 + kFolders);
#ifdef DCF_ENTRY_TIME_DIRENT
    EXPECT_EQ(Metadata(counts), 0);
    EXPECT_EQ(counts["open"], 0);
#else
    EXPECT_GE(Metadata(counts), kPictures);
    EXPECT_LE(Metadata(counts), kPictures + kCompanions);
    EXPECT_LE(counts["open"], kFolders);
#endif
    for (const char* never : {"opendir", "readdir", "chmod", "unlink", "sync", "time"}) {
        EXPECT_EQ(counts[never], 0) << never;
    }
}

TEST_F(SystemCalls, OfAListingThroughTheListAreThoseOfTheTreeAndOneLookAtTheFirstFile) {
    CSDCFList tree;
    tree.SetBaseURI(card.Root().c_str());
    const Counts ofTheTree = CountsOf([&] { tree.Listup(true); });
    Expect("Listup", ofTheTree + kOneLook, [&] { list->Listup(); });
}

TEST_F(SystemCalls, OfAConversionAreOneLookAtTheFile) {
    List();
    Expect("GetFirst", kOneLook, [&] { list->GetFirst(&item); });
    Expect("GetNext", kOneLook, [&] { list->GetNext(&item); });
    Expect("GetCurrent", kOneLook, [&] { list->GetCurrent(&item); });
    Expect("GetPrev", kOneLook, [&] { list->GetPrev(&item); });
    Expect("GetLast", kOneLook, [&] { list->GetLast(&item); });
    Expect("GetAt", kOneLook, [&] { list->GetAt(kPictures / 2, &item); });
    Expect("GetInfo", kOneLook, [&] { list->GetInfo(path.data(), &item); });
    Expect("IsLast", kOneLook, [&] { list->IsLast(&item); });
}

TEST_F(SystemCalls, OfAWalkAreOneLookAtEachFileEachTime) {
    List();
    const auto walk = [&] {
        for (int left = list->GetFirst(&item); left == 0; left = list->GetNext(&item)) {
        }
    };
    Expect("first walk", kPictures * kOneLook, walk);
    Expect("second walk", kPictures * kOneLook, walk);
}

TEST_F(SystemCalls, AreNoneForAConversionOnceTheListHasProtectedTheFile) {
    List();
    item = ItemAt(3);
    list->SetProtect(&item, true);
    Expect("GetAt", kNothing, [&] { list->GetAt(3, &item); });
    EXPECT_TRUE(item.m_bProtect);
}

TEST_F(SystemCalls, AreNoneWhereMemoryKnowsTheAnswer) {
    List();
    item = ItemAt(5);
    Expect("GetAtSimply", kNothing, [&] { list->GetAtSimply(kPictures - 1, &item); });
    Expect("GetFileListIndex", kNothing, [&] { list->GetFileListIndex(path.data()); });
    Expect("SetCur", kNothing, [&] { list->SetCur(path.data()); });
    Expect("SetCurIndex", kNothing, [&] { list->SetCurIndex(kPictures / 2); });
    Expect("GetCurIndex", kNothing, [&] { list->GetCurIndex(); });
    Expect("GetCount", kNothing, [&] { list->GetCount(); });
    Expect("GetFileCount", kNothing, [&] { list->GetFileCount(FILE_TYPE_SRW); });
    Expect("GetAvailNumOfPhoto", kNothing, [&] { list->GetAvailNumOfPhoto(); });
    Expect("UpdateFirstIndex", kNothing, [&] { list->UpdateFirstIndex(false); });
    Expect("SetSeriesMode", kNothing, [&] { list->SetSeriesMode(true); });
    Expect("SetSel", kNothing, [&] { list->SetSel(4, true); });
    Expect("IsSel", kNothing, [&] { list->IsSel(4); });
    Expect("GetSelCount", kNothing, [&] { list->GetSelCount(); });
    Expect("GetSelectIndecies", kNothing, [&] { list->GetSelectIndecies(); });
    Expect("SelectCancel", kNothing, [&] { list->SelectCancel(); });
    Expect("SetWifiFlag", kNothing, [&] { list->SetWifiFlag(&item, true); });
    Expect("SetCustomBitAll", kNothing, [&] { list->SetCustomBitAll(0, false); });
}

TEST_F(SystemCalls, OfADeletionAreOneLookAndOneUnlinkOneEmptyCheckAndOneSync) {
    List();
    item = ItemAt(1);
    const Counts one = kOneLook + Counts{{"unlink", 1}} + kEmptyCheck + kSync;
    Expect("Delete", one, [&] { list->Delete(&item); });
    item = ItemAt(0); // number 40, with a companion file
    Expect("Delete with a companion", one + Counts{{"unlink", 1}}, [&] { list->Delete(&item); });
}

TEST_F(SystemCalls, OfADeletedSetAreOneLookAndOneUnlinkPerFileAndOneEmptyCheckPerFolder) {
    List();
    for (int position = 0; position < kPictures; position += 3) {
        list->SetSel(position, true);
    }
    int companions = 0;
    for (int position = 0; position < kPictures; position += 3) {
        companions += ItemAt(position).m_eObjectType == FILE_TYPE_SRW ? 1 : 0;
    }
    ASSERT_GT(companions, 0);
    const Counts files = 30 * (kOneLook + Counts{{"unlink", 1}});
    Expect("DeleteSel", files + companions * Counts{{"unlink", 1}} + kFolders * kEmptyCheck + kSync,
           [&] { list->DeleteSel(); });
    EXPECT_EQ(list->GetCount(), kPictures - 30);
}

TEST_F(SystemCalls, OfProtectingAreOneLookOneChangeAndOneSyncPerFile) {
    List();
    item = ItemAt(1);
    Expect("SetProtect", kProtect, [&] { list->SetProtect(&item, true); });
    item = ItemAt(0);
    Expect("SetProtect with a companion", 2 * kProtect, [&] { list->SetProtect(&item, true); });
    list->SetSel(2, true);
    list->SetSel(3, true);
    Expect("SetProtectSel", 2 * kProtect, [&] { list->SetProtectSel(true); });
    list->SetSel(3, true);
    Expect("SetProtectSelToggle, known", kProtect, [&] { list->SetProtectSelToggle(); });
    list->SetSel(4, true);
    Expect("SetProtectSelToggle, unknown", kOneLook + kProtect, [&] { list->SetProtectSelToggle(); });
    Expect("SetProtectAll", (kPictures + kCompanions) * kProtect, [&] { list->SetProtectAll(false); });
}

TEST_F(SystemCalls, OfANewNameAreOneLookForItsFolderAndTheTime) {
    List();
    char out[396] = {};
    const Counts lookForFolder = {{"opendir", 1}, {"closedir", 1}, {"time", 1}};
    Expect("in a folder that is there", lookForFolder, [&] { list->GetNewFileName(out, FILE_TYPE_JPG); });
    EXPECT_EQ(out, card.Path(Dir(2), DcfName(41)));
    Expect("GetLatestFileName", kOneLook, [&] { list->GetLatestFileName(out, FILE_TYPE_SRW); });
}

TEST_F(SystemCalls, OfANewNameInANewFolderAreThoseOfMakingItToo) {
    card.AddFile(Dir(2), DcfName(9999));
    List();
    char out[396] = {};
    const Counts expected = {{"opendir", 1}, {"mkdir", 1}, {"umask", 2}, {"sync", 1}, {"time", 1}};
    Expect("GetNewFileName", expected, [&] { list->GetNewFileName(out, FILE_TYPE_JPG); });
    EXPECT_EQ(out, card.Path(Dir(3), DcfName(1)));
}

} // namespace
} // namespace dcftest
