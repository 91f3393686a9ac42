// The number of the next file: which directory, which file number, and whether a directory has to be made.
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "Change.h"

namespace dcftest {
namespace {

constexpr int kUsedUp = -9999;

struct Row {
    const char* why;
    std::vector<const char*> listed; ///< Directories on the card when it is listed; each gets a file 1.
    std::vector<const char*> made;   ///< Directories made behind the list's back.
    int firstIndex;
    const char* suffix;
    int expected;
    const char* asked; ///< The name that is looked for on the card; null when it does not come to that.
    bool makes;        ///< Whether a directory of that name is to be made.
    bool refused;      ///< Whether the card refuses because there is one.
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.why;
}

class NewNumber : public testing::TestWithParam<Row> {
protected:
    NewNumber() {
        StartAfresh();
    }
    Card card;
};

TEST_P(NewNumber, FollowsTheNewestFile) {
    const Row& row = GetParam();
    for (const char* dir : row.listed) {
        card.AddFile(dir, dir == std::string("Camera") ? CameraName(1) : DcfName(1));
    }
    const auto tree = ListTree(card);
    for (const char* dir : row.made) {
        card.AddDir(dir);
    }
    tree->m_nFirstIndex = row.firstIndex;
    Texts expectedTree = TreeTexts(*tree);
    const Texts cardBefore = card.DirNames();
    ::umask(0022);

    int index = 0;
    Texts calls;
    const std::string printed =
        Printed([&] { calls = CallsOf(card, [&] { index = tree->GetNewFileIndex(row.suffix); }); });

    EXPECT_EQ(index, row.expected);
    EXPECT_EQ(tree->m_nFirstIndex, row.expected == kUsedUp ? row.firstIndex : row.expected);
    Texts expectedCalls;
    Texts expectedCard = cardBefore;
    if (row.asked != nullptr) {
        expectedCalls.push_back(std::string("opendir ") + row.asked);
    }
    if (row.makes) {
        expectedTree.insert(expectedTree.begin(), std::string(row.asked) + ":");
        expectedCalls.insert(expectedCalls.end(),
                             {"umask 0000", std::string("mkdir ") + row.asked + " 0775", "umask 0022"});
        if (!row.refused) {
            expectedCalls.emplace_back("sync");
            expectedCard.emplace_back(row.asked);
            std::sort(expectedCard.begin(), expectedCard.end());
        }
        EXPECT_EQ(tree->m_dirGroup.front()->m_nDnum, row.expected / 100000);
    }
    EXPECT_EQ(calls, expectedCalls);
    EXPECT_EQ(TreeTexts(*tree), expectedTree);
    EXPECT_EQ(card.DirNames(), expectedCard);
    EXPECT_EQ(printed, row.refused ? "make directory fail\n" : "");
}

const Row kRows[] = {
    {"an empty card starts with 100-0001", {}, {}, 0, "PHOTO", 10000001, "100PHOTO", true, false},
    {"a card with Camera alone starts there too", {"Camera"}, {}, 0, "PHOTO", 10000001, "100PHOTO", true, false},
    {"a directory number of 99 counts as 100", {}, {}, 9900007, "PHOTO", 10000008, "100PHOTO", true, false},
    {"the next number of the same directory", {"100PHOTO"}, {}, 10000001, "PHOTO", 10000002, "100PHOTO", false, false},
    {"9998 is followed by 9999", {"100PHOTO"}, {}, 10009998, "PHOTO", 10009999, "100PHOTO", false, false},
    {"9999 is followed by 1 of the next directory",
     {"100PHOTO"},
     {},
     10009999,
     "PHOTO",
     10100001,
     "101PHOTO",
     true,
     false},
    {"so is a number beyond 9999", {"100PHOTO"}, {}, 10012345, "PHOTO", 10100001, "101PHOTO", true, false},
    {"998-9999 is followed by 999-0001", {"998PHOTO"}, {}, 99809999, "PHOTO", 99900001, "999PHOTO", true, false},
    {"999-9998 is followed by 999-9999", {"999PHOTO"}, {}, 99909998, "PHOTO", 99909999, "999PHOTO", false, false},
    {"999-9999 is the end", {"999PHOTO"}, {}, 99909999, "PHOTO", kUsedUp, nullptr, false, false},
    {"so is a directory number beyond 999", {"999PHOTO"}, {}, 100000001, "PHOTO", kUsedUp, nullptr, false, false},
    {"another suffix goes to the next number", {"105AAAAA"}, {}, 10500042, "BBBBB", 10600001, "106BBBBB", true, false},
    {"the suffix is compared exactly", {"105PHOTO"}, {}, 10500042, "photo", 10600001, "106photo", true, false},
    {"as a whole, a shorter one", {"105PHOTO"}, {}, 10500042, "PHOT", 10600001, "106PHOT", true, false},
    {"as a whole, a longer one", {"105PHOTO"}, {}, 10500042, "PHOTOS", 10600001, "106PHOTOS", true, false},
    {"another suffix in 998 goes to 999", {"998AAAAA"}, {}, 99800042, "BBBBB", 99900001, "999BBBBB", true, false},
    {"another suffix in 999 is the end", {"999AAAAA"}, {}, 99900042, "BBBBB", kUsedUp, nullptr, false, false},
    {"one of two directories of the number has it",
     {"105ZZZZZ", "105PHOTO"},
     {},
     10500042,
     "PHOTO",
     10500043,
     "105PHOTO",
     false,
     false},
    {"the first of the two has it",
     {"105ZZZZZ", "105PHOTO"},
     {},
     10500042,
     "ZZZZZ",
     10500043,
     "105ZZZZZ",
     false,
     false},
    {"neither of the two has it", {"105ZZZZZ", "105PHOTO"}, {}, 10500042, "BBBBB", 10600001, "106BBBBB", true, false},
    {"a directory further back takes the number",
     {"107AAAAA", "105BBBBB"},
     {},
     10509999,
     "PHOTO",
     10600001,
     "106PHOTO",
     true,
     false},
    {"a full directory whose next number is taken goes one further",
     {"105PHOTO", "106AAAAA"},
     {},
     10509999,
     "PHOTO",
     10700001,
     "107PHOTO",
     true,
     false},
    {"a full 998 whose next number is taken is the end",
     {"999AAAAA"},
     {},
     99809999,
     "PHOTO",
     kUsedUp,
     nullptr,
     false,
     false},
    {"a number raised beyond the card makes its directory",
     {"100PHOTO"},
     {},
     20000041,
     "PHOTO",
     20000042,
     "200PHOTO",
     true,
     false},
    {"a directory on the card is used although it is not listed",
     {"100PHOTO"},
     {"200PHOTO"},
     20000041,
     "PHOTO",
     20000042,
     "200PHOTO",
     false,
     false},
    {"also in an empty tree", {}, {"100PHOTO"}, 0, "PHOTO", 10000001, "100PHOTO", false, false},
    {"a required directory that is there already is entered all the same",
     {"100PHOTO"},
     {"101PHOTO"},
     10009999,
     "PHOTO",
     10100001,
     "101PHOTO",
     true,
     true},
    {"so is the one for another suffix",
     {"105AAAAA"},
     {"106BBBBB"},
     10500042,
     "BBBBB",
     10600001,
     "106BBBBB",
     true,
     true},
    {"a name is cut at nine characters", {}, {}, 0, "ABCDEFGH", 10000001, "100ABCDEF", true, false},
};

INSTANTIATE_TEST_SUITE_P(Table, NewNumber, testing::ValuesIn(kRows));

class NewDirectory : public TreeTest {
protected:
    NewDirectory() {
        ::umask(0022);
    }
};

TEST_F(NewDirectory, IsMadeForEverybodyWhateverTheUmaskAndSynced) {
    List();
    ::umask(0077);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(tree->CreateNewDirectory("123ABCDE"), 0); }),
              (Texts{"umask 0000", "mkdir 123ABCDE 0775", "umask 0077", "sync"}));
    EXPECT_EQ(::umask(0022), 0077U) << "which is given back";
    EXPECT_EQ(CardTexts(card), (Texts{"123ABCDE/ 0775"}));
}

TEST_F(NewDirectory, ThatCannotBeMadeIsPrintedAndNotSynced) {
    card.AddDir("123ABCDE");
    List();
    int result = 0;
    Texts calls;
    EXPECT_EQ(Printed([&] { calls = CallsOf(card, [&] { result = tree->CreateNewDirectory("123ABCDE"); }); }),
              "make directory fail\n");
    EXPECT_EQ(result, 20) << "what the print gives";
    EXPECT_EQ(calls, (Texts{"umask 0000", "mkdir 123ABCDE 0775", "umask 0022"}));
}

TEST_F(NewDirectory, IsNotEnteredIntoTheTreeByItself) {
    List();
    EXPECT_EQ(tree->CreateNewDirectory("123ABCDE"), 0);
    EXPECT_EQ(tree->m_nDirCount, 0);
}

TEST_F(NewDirectory, ExistsWhenItCanBeOpened) {
    card.AddDir("123ABCDE").AddFile("", "124ABCDE");
    List();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(tree->CheckDirectoryExist("123ABCDE"), 1); }), (Texts{"opendir 123ABCDE"}));
    EXPECT_EQ(tree->CheckDirectoryExist("124ABCDE"), 0) << "a file";
    EXPECT_EQ(tree->CheckDirectoryExist("125ABCDE"), 0);
}

TEST_F(NewDirectory, IsEnteredIntoTheTreeEvenWhenTheCardRefusesIt) {
    card.AddFiles("100PHOTO", {DcfName(1)});
    List();
    tree->m_nFirstIndex = 10009999;
    EXPECT_EQ(Printed([&] {
                  (void)CallsOf(
                      card, [&] { EXPECT_EQ(tree->GetNewFileIndex("PHOTO"), 10100001); },
                      [](PosixSeam& seam) { seam.Fail("mkdir", ENOSPC); });
              }),
              "make directory fail\n");
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101PHOTO:", "100PHOTO: 1"}));
    EXPECT_EQ(card.DirNames(), (Texts{"100PHOTO"}));
}

TEST_F(NewDirectory, IsMadeWhenAnExistingOneCannotBeOpened) {
    card.AddFiles("100PHOTO", {DcfName(1)});
    List();
    EXPECT_EQ(Printed([&] {
                  (void)CallsOf(
                      card, [&] { EXPECT_EQ(tree->GetNewFileIndex("PHOTO"), 10000002); },
                      [](PosixSeam& seam) { seam.Fail("opendir", EMFILE); });
              }),
              "make directory fail\n");
    EXPECT_EQ(TreeTexts(*tree), (Texts{"100PHOTO:", "100PHOTO: 1"})) << "a second directory of the name";
}

TEST_F(NewDirectory, IsNotRegistered) {
    List();
    EXPECT_EQ(tree->GetNewFileIndex("PHOTO"), 10000001);
    EXPECT_EQ(DirPathMapper::getInstance()->m_mapPath.count(100), 0U);
}

TEST(NewDirectoryOnALongRoot, HasItsPathCut) {
    StartAfresh();
    ::umask(0022);
    Card card(90); // "/DCIM/" and two characters of a name fill the buffer
    card.AddDir("105BBBBB");
    CSDCFList tree;
    ASSERT_EQ(tree.SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(tree.GetNewFileIndex("PHOTO"), 10000001); }),
              (Texts{"opendir 10", "umask 0000", "mkdir 10 0775", "umask 0022", "sync"}));
    EXPECT_EQ(TreeTexts(tree), (Texts{"100PHOTO:"})) << "whole in the list";
    EXPECT_EQ(card.DirNames(), (Texts{"10", "105BBBBB"}));
    tree.m_nFirstIndex = 10100001;
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(tree.GetNewFileIndex("PHOTO"), 10100002); }), (Texts{"opendir 10"}))
        << "every other one is taken for it";
}

// What the lock covers is seen from a metadata collector, which runs while it is held.
CSDCFList* g_tree = nullptr;
const Card* g_card = nullptr;
std::thread g_other;
int g_countWhileHeld = -1;

int MakeADirectoryBesideTheLock(char* /*path*/, PhotoInfo* /*info*/) {
    g_other = std::thread([] { (void)g_tree->GetNewFileIndex("PHOTO"); });
    while (!g_card->Exists("101PHOTO")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    g_countWhileHeld = g_tree->m_nDirCount;
    return -1;
}

TEST_F(NewDirectory, IsMadeOnTheCardOutsideTheListsLockAndEnteredUnderIt) {
    card.AddFiles("100PHOTO", {DcfName(9999)});
    List();
    g_tree = tree.get();
    g_card = &card;
    CSDCFList::m_PhotoInfoCollector = MakeADirectoryBesideTheLock;
    CSFileListItem item;
    ASSERT_EQ(tree->GetFirst(&item), 0);
    CSDCFList::m_PhotoInfoCollector = nullptr;
    g_other.join();
    EXPECT_EQ(g_countWhileHeld, 1) << "made, but not entered yet";
    EXPECT_EQ(TreeTexts(*tree), (Texts{"101PHOTO:", "100PHOTO: 9999"}));
}

int TakeTheNextNumberUnderTheLock(char* /*path*/, PhotoInfo* /*info*/) {
    EXPECT_EQ(g_tree->GetNewFileIndex("PHOTO"), 10000002);
    return -1;
}

TEST_F(NewDirectory, ThatIsNotNeededTakesNoLock) {
    card.AddFiles("100PHOTO", {DcfName(1)});
    List();
    const Ending ending = RunInChild([&] {
        ::alarm(20); // a lock taken twice would wait for ever
        g_tree = tree.get();
        CSDCFList::m_PhotoInfoCollector = TakeTheNextNumberUnderTheLock;
        CSFileListItem item;
        EXPECT_EQ(tree->GetFirst(&item), 0);
        EXPECT_EQ(tree->m_nFirstIndex, 10000002);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

} // namespace
} // namespace dcftest
