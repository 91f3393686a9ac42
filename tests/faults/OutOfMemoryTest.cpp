// Every operation of the interface on several cards, with each request for memory that the library makes refused: one
// of them alone and from one on all. What leaves the operation then is std::bad_alloc and nothing else, or it ends as
// if nothing had happened. Behind it no file is gone that was not being deleted; the list can be destroyed, and nothing
// stays open, taken or locked; the card can be listed anew and is as the reference says.
#include <gtest/gtest.h>

#include <iostream>
#include <new>

#include "Aftermath.h"
#include "CSDCFList.h"
#include "CapturedOutput.h"
#include "FakePlatform.h"
#include "LibraryMemory.h"

namespace dcftest {
namespace {

struct Attempt {
    int requests = 0;
    int refused = 0;
    bool threw = false;
    std::string result;
};

Attempt Try(const Scene& scene, Actual& actual, int nth, bool persistent) {
    Attempt attempt;
    const CapturedOutput output;
    PosixSeam seam;
    SetClock(seam);
    const LibraryMemory memory(nth, persistent);
    try {
        attempt.result = OnLibrary(scene.operation, actual);
    } catch (const std::bad_alloc&) {
        attempt.threw = true;
    }
    attempt.requests = memory.Requests();
    attempt.refused = memory.Refused();
    return attempt;
}

class Sweep {
public:
    void Run() {
        for (const Scene& scene : m_stage.Scenes()) {
            (void)Refuse(scene, 0, false); // what is made once for the process
            for (const bool persistent : {false, true}) {
                for (int nth = 1; Refuse(scene, nth, persistent); ++nth) {
                }
            }
        }
        std::cout << "requests for memory refused: " << m_refused << ", in " << m_attempts << " operations, "
                  << m_absorbed << " of which went on\n";
        EXPECT_GT(m_refused, 0);
        EXPECT_GT(m_absorbed, 0);
    }

private:
    /// @return whether there was a request to refuse.
    bool Refuse(const Scene& scene, int nth, bool persistent) {
        const std::string trying =
            scene.name + ": request " + std::to_string(nth) + (persistent ? " and later" : "") + " for memory";
        const int descriptors = OpenDescriptors();
        const long live = LibraryMemory::Live();
        std::unique_ptr<Actual> actual;
        {
            const LibraryMemory counted;
            actual = m_stage.Set(scene);
        }
        const Attempt attempt = Try(scene, *actual, nth, persistent);
        const ReferenceCard card = ReadCard(scene.initial.root);
        EXPECT_EQ("", LostFiles(scene, card)) << trying;
        EXPECT_EQ(attempt.threw ? "" : Foresee(scene, {}).result, attempt.result) << trying;
        actual.reset();
        DirPathMapper::getInstance()->clear();
        (void)TakeCollected();
        EXPECT_EQ(descriptors, OpenDescriptors()) << trying;
        if (nth > 0) {
            EXPECT_EQ(live, LibraryMemory::Live()) << trying;
        }
        EXPECT_EQ("", ListedAnew(card, FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey).value_or(0))) << trying;
        m_refused += attempt.refused;
        m_attempts += attempt.refused > 0 ? 1 : 0;
        m_absorbed += attempt.refused > 0 && !attempt.threw ? 1 : 0;
        return attempt.refused > 0;
    }

    Stage m_stage;
    long m_refused = 0;
    long m_attempts = 0;
    long m_absorbed = 0;
};

TEST(OutOfMemory, LeavesCardAndProcessSound) {
    Sweep().Run();
}

} // namespace
} // namespace dcftest
