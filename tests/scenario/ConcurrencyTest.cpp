// The documented use of one tree from several threads, which must also be clean under ThreadSanitizer: the operations
// that hold its mutex, and the entry of a new directory, which waits for it.
#include "Scenario.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace dcftest {
namespace {

constexpr int kRounds = 150;

int g_insideCollector = 0; // guarded by the tree's mutex: a race on it shows a collector outside the lock
int g_collected = 0;

int CollectUnderLock(char* /*path*/, PhotoInfo* info) {
    EXPECT_EQ(++g_insideCollector, 1);
    info->attributeWord = static_cast<std::uint32_t>(++g_collected);
    std::this_thread::yield();
    --g_insideCollector;
    return g_collected % 3 == 0 ? -1 : 0;
}

class ConcurrentTree : public TreeTest {
protected:
    ConcurrentTree() {
        g_insideCollector = 0;
        g_collected = 0;
        card.Fill(3, 8).AddDir("103ABCDE").AddFiles("Camera", {CameraName(1), CameraName(2)});
        List();
        CSDCFList::RegisterPhotoMetadataCB(CollectUnderLock);
        CSFileListItem item;
        EXPECT_EQ(tree->GetFirst(&item), 0);
    }

    /// An item that an operation filled describes one file, not two.
    void ExpectWhole(const CSFileListItem& item) {
        const bool camera = item.m_nDirNum == 99;
        const std::string dir = camera ? "Camera" : DirName(item.m_nDirNum);
        const std::string name = camera ? CameraName(item.m_nFileNum) : DcfName(item.m_nFileNum);
        EXPECT_EQ(item.m_strURI, Path(dir, name));
    }

    static void RunTogether(const std::vector<std::function<void()>>& pieces) {
        std::vector<std::thread> threads;
        threads.reserve(pieces.size());
        for (const auto& piece : pieces) {
            threads.emplace_back([&piece] {
                for (int round = 0; round < kRounds; ++round) {
                    piece();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    /// A piece that calls an operation and looks at what it filled.
    std::function<void()> Piece(int (CSDCFList::*operation)(CSFileListItem*)) {
        return [this, operation] {
            CSFileListItem item;
            if ((tree.get()->*operation)(&item) == 0) {
                ExpectWhole(item);
            }
        };
    }
};

TEST_F(ConcurrentTree, MovesAndGetAtFromSeveralThreadsGiveWholeItemsAndAWholeCursor) {
    RunTogether({Piece(&CSDCFList::GetFirst), Piece(&CSDCFList::GetNext), Piece(&CSDCFList::GetNext),
                 Piece(&CSDCFList::GetPrev), Piece(&CSDCFList::GetLast), Piece(&CSDCFList::GetCur), [this] {
                     for (const int position : {0, 13, 25}) {
                         CSFileListItem item;
                         EXPECT_EQ(tree->GetAt(position, &item), 0);
                         ExpectWhole(item);
                     }
                 }});
    CSFileListItem current;
    ASSERT_EQ(tree->GetCur(&current), 0);
    ExpectWhole(current);
    EXPECT_EQ(tree->GetListIndex(current.m_strURI), tree->m_nCurListIndex);
    EXPECT_GT(g_collected, 3) << "the files at the ends and at three positions, at least";
}

/// A collector that stays inside until it is let go.
std::atomic<bool> g_inside = false;
std::atomic<bool> g_mayLeave = false;

int StayInside(char* /*path*/, PhotoInfo* /*info*/) {
    g_inside = true;
    while (!g_mayLeave) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return -1;
}

TEST(ConcurrentNewDirectory, IsMadeBesideAGetNextAndEnteredWhenThatHasLetTheLockGo) {
    StartAfresh();
    Card card;
    card.AddFiles("100PHOTO", {DcfName(9999), DcfName(1)});
    const auto tree = ListTree(card);
    CSFileListItem item;
    ASSERT_EQ(tree->GetFirst(&item), 0);
    CSDCFList::RegisterPhotoMetadataCB(StayInside);

    std::thread browsing([&] { EXPECT_EQ(tree->GetNext(&item), 0); });
    while (!g_inside) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::atomic<int> index = 0;
    std::thread naming([&] { index = tree->GetNewFileIndex("PHOTO"); });
    while (!card.Exists("101PHOTO")) { // made before the lock is asked for
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // ample for an entry that does not wait
    EXPECT_EQ(index, 0);
    EXPECT_EQ(tree->m_nDirCount, 1);
    EXPECT_EQ(tree->m_dirGroup.size(), 1U);

    g_mayLeave = true;
    browsing.join();
    naming.join();
    EXPECT_EQ(index, 10100001);
    EXPECT_EQ(tree->m_nDirCount, 2);
    EXPECT_EQ(item.m_strURI, card.Path("100PHOTO", DcfName(1)));
}

} // namespace
} // namespace dcftest
