// How many more files the numbering allows.
#include "Change.h"
#include "PrivateMount.h"

namespace dcftest {
namespace {

/// A card and what is left on it. The directories hold one file each, with that number.
struct Row {
    const char* why;
    std::vector<std::pair<const char*, int>> directories;
    int folderMake;
    long series; ///< The stored series value in series mode; 0 without the mode.
    int left;
    const char* lastLine;
    bool asksForTheSuffix;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.why;
}

const Row kRows[] = {
    {"an empty card", {}, 0, 0, 20000, "return nName = 20000", false},
    {"far from the end", {{"100PHOTO", 5}}, 0, 0, 20000, "return nName = 20000", false},
    {"any suffix will do far from the end", {{"100ABCDE", 5}}, 0, 0, 20000, "return nName = 20000", false},
    {"the last of the directories with plenty", {{"997PHOTO", 9999}}, 0, 0, 20000, "return nName = 20000", false},
    {"998 counts its own numbers alone", {{"998PHOTO", 9990}}, 0, 0, 9, "return nName = 9", false},
    {"998 with another suffix as well", {{"998ABCDE", 1}}, 0, 0, 9998, "return nName = 9998", false},
    {"998 full", {{"998PHOTO", 9999}}, 0, 0, 0, "return nName = 0", false},
    {"999", {{"999PHOTO", 9990}}, 0, 0, 9, "return nName = 9", true},
    {"the end", {{"999PHOTO", 9999}}, 0, 0, 0, "return nName = 0", true},
    {"999 with another suffix", {{"999ABCDE", 1}}, 0, 0, 0, "return 0", true},
    {"999 with a suffix like the fixed one", {{"999PHOTS", 1}}, 0, 0, 0, "return 0", true},
    {"999 with a suffix in lower case", {{"999photo", 1}}, 0, 0, 0, "return 0", true},
    {"999 with a date, names fixed", {{"999_1224", 1}}, 0, 0, 0, "return 0", true},
    {"999 with a date, names from the date", {{"999_1224", 1}}, 1, 0, 9998, "return nName = 9998", true},
    {"any value but 0 means the date", {{"999_1224", 1}}, 5, 0, 9998, "return nName = 9998", true},
    {"999 with the fixed suffix, names from the date", {{"999PHOTO", 1}}, 1, 0, 0, "return 0", true},
    {"the underscore alone decides", {{"999_ABCD", 1}}, 1, 0, 9998, "return nName = 9998", true},
    {"998 with the wrong suffix is not judged", {{"998ABCDE", 1}}, 1, 0, 9998, "return nName = 9998", false},
    {"the series counts, not the card", {{"100PHOTO", 1}}, 0, 99809000, 999, "return nName = 999", false},
    {"the suffix is the first file's", {{"100PHOTO", 1}}, 0, 99909000, 999, "return nName = 999", true},
    {"also when it does not fit", {{"100ABCDE", 1}}, 0, 99909000, 0, "return 0", true},
    {"an empty card has no suffix to fit", {}, 0, 99909000, 999, "return nName = 999", false},
    {"an empty card in the series' last but one directory", {}, 0, 99809990, 9, "return nName = 9", false},
};

/// Lists a card made after a row and compares what is left. Runs in a child too.
void CheckRow(const Row& row, CSFileList& list, const Card& card) {
    StoreSeriesValue(row.series);
    list.SetFolderNameMake(static_cast<eFILE_NAME_MAKE>(row.folderMake));
    list.m_bSeriesMode = row.series != 0;
    (void)list.Listup();
    (void)TakeLog();
    const Texts before = EverythingIn(*list.m_pDCF);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list.GetAvailNumOfPhoto(), row.left); }), Texts{});
    Log expected = {"CSFileList GetAvailNumOfPhoto start"};
    if (row.asksForTheSuffix) {
        expected.emplace_back("CSFileList GetAtSimply ++++++++++++++++++++ start index = 0");
    }
    expected.push_back(std::string("CSFileList GetAvailNumOfPhoto ") + row.lastLine);
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_EQ(EverythingIn(*list.m_pDCF), before);
}

void Fill(Card& card, const Row& row) {
    for (const auto& [dir, number] : row.directories) {
        card.AddFile(dir, DcfName(number));
    }
}

class Capacity : public testing::TestWithParam<Row> {
protected:
    Capacity() {
        StartAfresh();
    }
};

TEST_P(Capacity, UnderAShortRootIsAsTheTableSays) {
    Card card;
    Fill(card, GetParam());
    CSFileList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    CheckRow(GetParam(), list, card);
}

TEST_P(Capacity, UnderALongRootIsAsTheTableSays) {
    Card card(70);
    Fill(card, GetParam());
    CSFileList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    CheckRow(GetParam(), list, card);
}

TEST_P(Capacity, UnderTheDefaultRootIsAsTheTableSays) {
    Card card;
    Fill(card, GetParam());
    const Ending ending = RunWithDefaultRoot(card.Root(), [&] {
        CSFileList list;
        CheckRow(GetParam(), list, card);
        if (!GetParam().directories.empty()) {
            CSFileListItem item;
            EXPECT_EQ(list.GetAtSimply(0, &item), 0);
            EXPECT_EQ(std::string(item.m_strURI).substr(17, 5), GetParam().directories.front().first + 3);
        }
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

INSTANTIATE_TEST_SUITE_P(Table, Capacity, testing::ValuesIn(kRows));

class CapacityCount : public FileListTest {
protected:
    /// The number left with that many files and that newest one; 998 and 999 are far enough from a look at the suffix.
    int Left(int count, int firstIndex) {
        list->m_nList = count;
        list->m_pDCF->m_nFirstIndex = firstIndex;
        (void)TakeLog();
        return list->GetAvailNumOfPhoto();
    }

    /// The log behind the entry.
    static Log Rest() {
        Log log = TakeLog();
        EXPECT_EQ(log.front(), "CSFileList GetAvailNumOfPhoto start");
        log.erase(log.begin());
        return log;
    }
};

TEST_F(CapacityCount, IsTheLimitWhenItIsSmallerOrEqual) {
    List();
    EXPECT_EQ(Left(80001, 10000001), 19999);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = 19999"}));
    EXPECT_EQ(Left(80000, 10000001), 20000);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = 20000"})) << "a tie";
    EXPECT_EQ(Left(79999, 10000001), 20000);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nName = 20000"}));
    EXPECT_EQ(Left(90001, 99800000), 9999);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = 9999"})) << "a tie in 998";
}

TEST_F(CapacityCount, NearItsEndIsLoggedAtExactlyOneFile) {
    List();
    EXPECT_EQ(Left(99999, 10000001), 1);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto total count is almost max = 99999",
                           "CSFileList GetAvailNumOfPhoto return nCount = 1"}));
    EXPECT_EQ(Left(99998, 10000001), 2);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = 2"}));
    EXPECT_EQ(Left(100000, 10000001), 0);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = 0"}));
    EXPECT_EQ(Left(99999, 99809999), 0);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto total count is almost max = 99999",
                           "CSFileList GetAvailNumOfPhoto return nName = 0"}));
}

TEST_F(CapacityCount, WithoutFilesIsAHundredThousandLessTheCachedCount) {
    List();
    EXPECT_EQ(Left(0, 99809000), 999);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nName = 999"}));
    EXPECT_EQ(Left(0, 99909000), 999) << "and no file 0 is asked for its suffix";
    EXPECT_EQ(Left(-5, 10000001), 20000);
}

TEST_F(CapacityCount, FallsBelowZeroBeyondTheLastNumber) {
    List();
    EXPECT_EQ(Left(100007, 10000001), -7);
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nCount = -7"}));
    EXPECT_EQ(Left(1, 99812345), -2346) << "a series value that is no DCF number";
    EXPECT_EQ(Rest(), (Log{"CSFileList GetAvailNumOfPhoto return nName = -2346"}));
}

TEST_F(CapacityCount, TakesADirectoryNumberBeyondTheLastForOneNearTheEnd) {
    List();
    EXPECT_EQ(Left(1, 100000009), 9990);
}

TEST_F(CapacityCount, ReadsTheSuffixBehindTheRootOfThePresentTree) {
    card.AddFiles("999PHOTO", {DcfName(9000)});
    ASSERT_EQ(List(), 1);
    ASSERT_EQ(list->SetBaseURI("/a/root/of/another/length/for/the/next/listing"), 0);
    EXPECT_EQ(list->GetAvailNumOfPhoto(), 999);
}

TEST_F(CapacityCount, TakesTheSuffixOfACameraFileFromTheSamePlace) {
    card.AddFiles("Camera", {CameraName(1)});
    ASSERT_EQ(List(), 1);
    EXPECT_EQ(Left(1, 99909000), 0) << "\"era/2\" is no suffix of ours";
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    EXPECT_EQ(Left(1, 99909000), 0);
}

} // namespace
} // namespace dcftest
