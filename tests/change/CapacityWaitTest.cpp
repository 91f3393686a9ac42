// The one operation that runs beside a listing on another thread: it polls until that has ended.
#include <atomic>
#include <chrono>
#include <thread>

#include "Change.h"

namespace dcftest {
namespace {

class CapacityWait : public FileListTest {
protected:
    Texts WaitCalls(const std::function<void(PosixSeam&)>& rules) {
        return CallsOf(
            card, [&] { EXPECT_EQ(list->GetAvailNumOfPhoto(), 20000); },
            [&](PosixSeam& seam) {
                seam.SkipSleeps();
                rules(seam);
            });
    }
};

ExpectedAssertion NotDone() {
    return {"listupDone == 1", "listup is not done", "CSFileList", "virtual int CSFileList::GetAvailNumOfPhoto()"};
}

TEST_F(CapacityWait, IsNotNeededBehindAListing) {
    ASSERT_EQ(List(), 0);
    EXPECT_EQ(WaitCalls([](PosixSeam&) {}), Texts{});
}

TEST_F(CapacityWait, EndsWhenTheListingDoesAndShowsTheValueJustRead) {
    ASSERT_EQ(List(), 0);
    list->listupDone = 0;
    EXPECT_EQ(WaitCalls([&](PosixSeam& seam) { seam.Before("usleep", 3, [&] { list->listupDone = 1; }); }),
              Texts(3, "usleep 100000"));
    EXPECT_EQ(TakeLog(),
              (Log{"CSFileList GetAvailNumOfPhoto start", "CSFileList GetAvailNumOfPhoto Listing... 0",
                   "CSFileList GetAvailNumOfPhoto Listing... 0", "CSFileList GetAvailNumOfPhoto Listing... 1",
                   "CSFileList GetAvailNumOfPhoto return nName = 20000"}));
}

TEST_F(CapacityWait, SucceedsAtTheLastMoment) {
    ASSERT_EQ(List(), 0);
    list->listupDone = -1;
    EXPECT_EQ(WaitCalls([&](PosixSeam& seam) { seam.Before("usleep", 200, [&] { list->listupDone = 1; }); }),
              Texts(200, "usleep 100000"));
}

TEST_F(CapacityWait, IsFatalAfterTwoHundredTimes) {
    const Ending ending = RunInChild([&] {
        PosixSeam seam;
        seam.SkipSleeps();
        seam.Before("usleep", 200, [] { ReportEvent({"the last sleep"}); });
        seam.Before("usleep", 201, [] { ReportEvent({"one too many"}); });
        (void)list->GetAvailNumOfPhoto();
    });
    EXPECT_TRUE(DiesByAssertion(ending, NotDone()));
    Texts expected = {"start"};
    expected.insert(expected.end(), 200, "Listing... -1");
    EXPECT_EQ(MessagesBeforeAssertion(ending), expected);
    const auto reported = [&](const std::string& what) {
        return std::count_if(ending.events.begin(), ending.events.end(),
                             [&](const ChildEvent& event) { return event.fields.front() == what; });
    };
    EXPECT_EQ(reported("the last sleep"), 1);
    EXPECT_EQ(reported("one too many"), 0);
}

TEST_F(CapacityWait, IsFatalWithoutATree) {
    list->listupDone = 1;
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)list->GetAvailNumOfPhoto(); }),
                                NoTree("virtual int CSFileList::GetAvailNumOfPhoto()")));
}

/// A listing that goes on until it is let go.
class SlowList : public CSFileList {
public:
    int GetFirst(CSFileListItem* pItem) override {
        inside = true;
        while (!mayEnd) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return CSFileList::GetFirst(pItem);
    }

    std::atomic<bool> inside{false};
    std::atomic<bool> mayEnd{false};
};

TEST(CapacityBesideAListing, WaitsForTheOtherThread) {
    StartAfresh();
    Card card;
    card.AddFiles("998PHOTO", {DcfName(9990)});
    SlowList list;
    ASSERT_EQ(list.SetBaseURI(card.Root().c_str()), 0);
    std::thread listing([&] { EXPECT_EQ(list.Listup(), 1); });
    while (!list.inside) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    (void)TakeLog();
    {
        PosixSeam seam;
        seam.Before("usleep", 2, [&] { list.mayEnd = true; });
        EXPECT_EQ(list.GetAvailNumOfPhoto(), 9);
        EXPECT_GE(seam.Count("usleep"), 2);
    }
    listing.join();
    Log log = TakeLog();
    log.erase(
        std::remove_if(log.begin(), log.end(),
                       [](const std::string& line) { return line.find("GetAvailNumOfPhoto") == std::string::npos; }),
        log.end());
    ASSERT_GE(log.size(), 4U);
    EXPECT_EQ(log[0], "CSFileList GetAvailNumOfPhoto start");
    EXPECT_EQ(log[1], "CSFileList GetAvailNumOfPhoto Listing... 0");
    EXPECT_EQ(log[log.size() - 2], "CSFileList GetAvailNumOfPhoto Listing... 1");
    EXPECT_EQ(log.back(), "CSFileList GetAvailNumOfPhoto return nName = 9");
}

} // namespace
} // namespace dcftest
