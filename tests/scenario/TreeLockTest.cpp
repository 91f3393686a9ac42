// Which operations of the tree hold its mutex, and for how long. The scoped lock is defined here and takes the place of
// the platform's: it notes every mutex that it is given and what the tree looked like at both ends.
#include "Scenario.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "PosixSeam.h"
#include "vell-util.h"

namespace dcftest {
namespace {

struct Hold {
    pthread_mutex_t* mutex;
    Cursor atStart;
    Cursor atEnd;
};

const CSDCFList* g_tree = nullptr;
std::vector<Hold> g_holds;
std::atomic<int> g_waiting = 0; // constructors entered
int g_held = 0;                 // locks held by the one thread of most tests

Cursor WatchedCursor() {
    return g_tree == nullptr ? kUnsetCursor : CursorOf(*g_tree);
}

bool IsHeld(pthread_mutex_t* mutex) {
    const int result = pthread_mutex_trylock(mutex);
    if (result == 0) {
        (void)pthread_mutex_unlock(mutex);
    }
    return result == EBUSY;
}

} // namespace
} // namespace dcftest

namespace vell {

ScopedLock::ScopedLock(pthread_mutex_t* mutex) : m_pMutex(mutex) {
    ++dcftest::g_waiting;
    (void)pthread_mutex_lock(mutex);
    ++dcftest::g_held;
    dcftest::ReportEvent({"lock"});
    dcftest::g_holds.push_back({mutex, dcftest::WatchedCursor(), {}});
}

ScopedLock::~ScopedLock() {
    dcftest::g_holds.back().atEnd = dcftest::WatchedCursor();
    --dcftest::g_held;
    (void)pthread_mutex_unlock(m_pMutex);
}

} // namespace vell

namespace dcftest {
namespace {

std::vector<bool> g_heldInCollector;
std::function<void()> g_inCollector;

int NoteHold(char* /*path*/, PhotoInfo* /*info*/) {
    g_heldInCollector.push_back(g_held == 1 && IsHeld(g_holds.back().mutex));
    if (const auto action = g_inCollector) { // a copy: the action may end itself
        action();
    }
    return -1;
}

class TreeLock : public TreeTest {
protected:
    TreeLock() {
        card.AddFiles("101ABCDE", {DcfName(1), DcfName(2)}).AddFile("100ABCDE", DcfName(5));
        List();
        CSDCFList::RegisterPhotoMetadataCB(NoteHold);
        g_inCollector = nullptr;
        g_tree = tree.get();
        Forget();
    }

    ~TreeLock() override {
        g_tree = nullptr;
    }

    static void Forget() {
        g_holds.clear();
        g_heldInCollector.clear();
    }

    /// The mutex, as the operations show it.
    pthread_mutex_t* TreesMutex() {
        EXPECT_EQ(tree->GetFirst(&item), 0);
        return g_holds.back().mutex;
    }

    /// The operation holds one mutex from before it moved the cursor until behind it, its look at the card and the
    /// collector included, and lets go of it.
    void ExpectLocked(const std::function<int()>& operation, const Cursor& before, const Cursor& after) {
        Forget();
        bool heldAtTheCard = false;
        {
            PosixSeam seam;
            seam.Before("stat", 1, [&] { heldAtTheCard = g_held == 1; });
            EXPECT_EQ(operation(), 0);
        }
        ASSERT_EQ(g_holds.size(), 1U);
        EXPECT_TRUE(heldAtTheCard);
        EXPECT_EQ(g_heldInCollector, std::vector<bool>{true});
        EXPECT_EQ(g_holds[0].atStart, before);
        EXPECT_EQ(g_holds[0].atEnd, after);
        EXPECT_EQ(g_held, 0);
        EXPECT_FALSE(IsHeld(g_holds[0].mutex));
    }

    CSFileListItem item;
};

constexpr Cursor kFirst = {101, 2, 0, 0, 0};
constexpr Cursor kSecond = {101, 1, 0, 1, 1};
constexpr Cursor kLast = {100, 5, 1, 0, 2};

TEST_F(TreeLock, IsHeldByTheMovesAndByGetAtForTheirWholeRun) {
    ExpectLocked([&] { return tree->GetFirst(&item); }, kUnsetCursor, kFirst);
    ExpectLocked([&] { return tree->GetNext(&item); }, kFirst, kSecond);
    ExpectLocked([&] { return tree->GetNext(&item); }, kSecond, kLast);
    ExpectLocked([&] { return tree->GetPrev(&item); }, kLast, kSecond);
    ExpectLocked([&] { return tree->GetPrev(&item); }, kSecond, kFirst);
    ExpectLocked([&] { return tree->GetLast(&item); }, kFirst, kLast);
    tree->m_nCurFnum = 9;
    ExpectLocked([&] { return tree->GetCur(&item); }, {100, 9, 1, 0, 2}, kLast);
    ExpectLocked([&] { return tree->GetAt(0, &item); }, kLast, kLast);
}

TEST_F(TreeLock, IsTakenAndLetGoByAMoveThatIsRefused) {
    ASSERT_EQ(tree->GetLast(&item), 0);
    Forget();
    EXPECT_EQ(tree->GetNext(&item), -1);
    ASSERT_EQ(g_holds.size(), 1U);
    EXPECT_FALSE(IsHeld(g_holds[0].mutex));
    ASSERT_EQ(tree->GetFirst(&item), 0);
    Forget();
    EXPECT_EQ(tree->GetPrev(&item), -1);
    ASSERT_EQ(g_holds.size(), 1U);
    EXPECT_FALSE(IsHeld(g_holds[0].mutex));

    CSDCFList empty;
    Forget();
    EXPECT_EQ(empty.GetFirst(&item), -1);
    EXPECT_EQ(empty.GetLast(&item), -1);
    ASSERT_EQ(g_holds.size(), 2U);
    EXPECT_FALSE(IsHeld(g_holds[0].mutex));
}

TEST_F(TreeLock, IsTakenBeforeTheCursorIsChecked) {
    for (const auto operation : {&CSDCFList::GetCur, &CSDCFList::GetNext, &CSDCFList::GetPrev}) {
        const Ending ending = RunInChild([&] { (tree.get()->*operation)(&item); });
        EXPECT_EQ(ending.signal, SIGABRT);
        ASSERT_FALSE(ending.events.empty());
        EXPECT_EQ(ending.events[0].fields, std::vector<std::string>{"lock"});
    }
}

TEST_F(TreeLock, IsNotTakenByTheOtherOperations) {
    ASSERT_EQ(tree->GetFirst(&item), 0);
    Forget();
    const std::string path = Path("100ABCDE", DcfName(5));
    DCFItem source = tree->m_dirGroup[0]->GetItem(0);
    EXPECT_EQ(tree->GetAtSimply(1, &item), 0);
    EXPECT_EQ(tree->SetCurFile(path.c_str()), 0);
    EXPECT_EQ(tree->SetCurItem(100, 5, 1, source), 2);
    EXPECT_EQ(tree->GetCurIndex(), 2);
    EXPECT_EQ(tree->SetObject(path.c_str(), FILE_TYPE_SRW), 0);
    tree->ConvertFileItemSimply(source, &item, 0);
    EXPECT_EQ(tree->GetListIndex(path.c_str()), 2);
    EXPECT_EQ(tree->GetCount(), 3);
    EXPECT_EQ(tree->GetFileCount(FILE_TYPE_JPG), 3);
    EXPECT_EQ(tree->UpdateFirstIndex(false), 10100002);
    PhotoInfo info = {};
    EXPECT_EQ(tree->AddPhotoMetadata(path.c_str(), info), 0);
    const auto another = ListTree(card);
    EXPECT_TRUE(g_holds.empty());
}

TEST_F(TreeLock, IsNotHeldWhereGetInfoAndAConversionAskTheCollector) {
    std::string path = Path("100ABCDE", DcfName(5));
    DCFItem source = tree->m_dirGroup[0]->GetItem(0);
    int calls = 0;
    pthread_mutex_t* mutex = TreesMutex();
    Forget();
    g_holds.push_back({mutex, {}, {}}); // for NoteHold to look at
    g_inCollector = [&] { ++calls; };
    EXPECT_EQ(tree->GetInfo(path.data(), &item), 0);
    tree->ConvertFileItem(source, &item, 0);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(g_heldInCollector, (std::vector<bool>{false, false}));
    EXPECT_EQ(g_holds.size(), 1U);
}

TEST_F(TreeLock, IsOneForAllTrees) {
    const auto other = ListTree(card);
    ASSERT_EQ(tree->GetFirst(&item), 0);
    ASSERT_EQ(other->GetLast(&item), 0);
    ASSERT_EQ(g_holds.size(), 2U);
    EXPECT_EQ(g_holds[0].mutex, g_holds[1].mutex);
}

TEST_F(TreeLock, IsNotRecursiveSoACollectorCannotTakeItAgain) {
    int again = 0;
    g_inCollector = [&] {
        again = pthread_mutex_trylock(g_holds.back().mutex);
        if (again == 0) {
            (void)pthread_mutex_unlock(g_holds.back().mutex);
        }
    };
    ASSERT_EQ(tree->GetFirst(&item), 0);
    EXPECT_EQ(again, EBUSY);
}

TEST_F(TreeLock, KeepsAConcurrentThreadOutWhileACollectorRuns) {
    ASSERT_EQ(tree->GetFirst(&item), 0);
    std::thread second;
    std::atomic<bool> done = false;
    bool doneDuringCollector = true;
    g_inCollector = [&] {
        g_inCollector = nullptr; // the second thread asks the collector, too
        g_waiting = 0;
        second = std::thread([&] {
            CSFileListItem other;
            EXPECT_EQ(tree->GetLast(&other), 0);
            done = true;
        });
        while (g_waiting == 0 && !done) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        doneDuringCollector = done;
        // The position inside the directory is set before the collector runs, the rest behind it.
        EXPECT_EQ(CursorOf(*tree), (Cursor{101, 2, 0, 1, 0})) << "the second thread moves nothing yet";
    };
    EXPECT_EQ(tree->GetNext(&item), 0);
    second.join();
    EXPECT_FALSE(doneDuringCollector);
    EXPECT_TRUE(done);
    EXPECT_EQ(CursorOf(*tree), kLast);
}

} // namespace
} // namespace dcftest
