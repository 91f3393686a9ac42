// What may run beside a listing on another thread: a wait for its end. It must also be clean under ThreadSanitizer.
// This program's log does nothing at all: a lock in it would order the threads and hide what the list fails to order.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "CSDCFList.h"
#include "CSFileList.h"
#include "Card.h"
#include "dlog.h"

int __dlog_print(int /*logId*/, int /*priority*/, const char* /*tag*/, const char* /*format*/, ...) {
    return 0;
}

namespace dcftest {
namespace {

class ConcurrentListing : public testing::Test {
protected:
    ConcurrentListing() {
        card.Fill(3, 50);
        EXPECT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    }

    std::int32_t Poll() {
        return std::atomic_ref<std::int32_t>(list.listupDone).load(std::memory_order_acquire);
    }

    /// Lists the card while another thread is at its piece.
    template <typename Piece>
    void ListBeside(Piece piece, int count = 150) {
        std::atomic<bool> started = false;
        std::thread other([&] {
            started.store(true, std::memory_order_relaxed);
            piece();
        });
        while (!started.load(std::memory_order_relaxed)) {
            std::this_thread::yield();
        }
        EXPECT_EQ(list.Listup(), count);
        other.join();
    }

    Card card;
    CSFileList list;
};

TEST_F(ConcurrentListing, AThreadThatSeesItsEndSeesAllOfIt) {
    std::vector<std::int32_t> seen = {-1};
    ListBeside([&] {
        while (seen.back() != 1) {
            const std::int32_t state = Poll();
            if (state != seen.back()) {
                seen.push_back(state);
            }
            std::this_thread::yield();
        }
        EXPECT_EQ(list.m_nList, 150);
        EXPECT_EQ(list.m_nCurGetAtIdx, 0);
        EXPECT_EQ(list.m_pDCF->m_nFirstIndex, 10200050);
    });
    EXPECT_EQ(seen.back(), 1);
    EXPECT_LE(seen.size(), 3U) << "never listed, under way, finished";
}

TEST_F(ConcurrentListing, GetAvailNumOfPhotoWaitsForItsEnd) {
    ListBeside([&] { EXPECT_EQ(list.GetAvailNumOfPhoto(), 20000); });
    EXPECT_EQ(list.GetAvailNumOfPhoto(), 20000);
}

TEST_F(ConcurrentListing, GetAvailNumOfPhotoAnswersFromTheListingThatItWaitedFor) {
    card.AddFile("998ABCDE", DcfName(9990));
    ListBeside([&] { EXPECT_EQ(list.GetAvailNumOfPhoto(), 9); }, 151);
}

TEST_F(ConcurrentListing, GetAvailNumOfPhotoLooksAtTheLastDirectoryOfTheListingThatItWaitedFor) {
    card.AddFile("999PHOTO", DcfName(9990));
    ListBeside([&] { EXPECT_EQ(list.GetAvailNumOfPhoto(), 9); }, 151);
}

TEST_F(ConcurrentListing, SeveralThreadsMayWaitForItsEnd) {
    ListBeside([&] {
        std::vector<std::thread> others;
        for (int i = 0; i < 3; ++i) {
            others.emplace_back([&] { EXPECT_EQ(list.GetAvailNumOfPhoto(), 20000); });
        }
        EXPECT_EQ(list.GetAvailNumOfPhoto(), 20000);
        for (std::thread& other : others) {
            other.join();
        }
    });
}

} // namespace
} // namespace dcftest
