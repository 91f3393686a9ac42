// Every operation of the interface that changes something, with the power going behind each change of the card or of
// the preference store: the process ends there and then. A new process finds the card as the reference says; no file is
// gone that was not being deleted, at most one pair of a file and its companion is torn, and the next number that it
// takes has no file and lies behind the stored series value. The number of cuts is printed, and none is a failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <set>

#include "Aftermath.h"
#include "CSDCFList.h"
#include "ChildProcess.h"
#include "FakePlatform.h"
#include "RandomCard.h"

namespace dcftest {
namespace {

constexpr long kNumbersEnd = 99909999;

/// The companions that are on a card without the file that they belong to.
std::set<std::string> Orphans(const ReferenceCard& card) {
    const std::set<std::string> files = FilesOf(card);
    std::set<std::string> orphans;
    for (const std::string& file : files) {
        const std::string stem = file.substr(0, file.size() - 3);
        const std::string extension = file.substr(file.size() - 3);
        const bool owned = files.count(stem + "JPG") + files.count(stem + "MP4") + files.count(stem + "AVI") > 0;
        if ((extension == "SRW" || extension == "MPO") && !owned) {
            orphans.insert(file);
        }
    }
    return orphans;
}

long StoredSeries(const Ending& ending, long before) {
    for (const ChildEvent& event : ending.events) {
        if (event.fields.front() == "series") {
            before = std::stol(event.fields.back());
        }
    }
    return before;
}

/// Whether a folder of a card holds a file of the number that a new path has.
bool IsTaken(const ReferenceCard& card, const std::string& path) {
    const std::string relative = path.substr(card.root.size() + 6);
    const auto folder = card.folders.find(relative.substr(0, 8));
    if (folder == card.folders.end()) {
        return false;
    }
    const auto& files = folder->second.files;
    return std::any_of(files.begin(), files.end(), [&](const auto& file) {
        return file.first.size() == 12 && file.first.substr(4, 4) == relative.substr(13, 4);
    });
}

/// In a new process: the card lists as the reference says, and so does the next number, which is free and not behind
/// the stored one. @return what is wrong.
std::string WrongInNewProcess(const ReferenceCard& card, long series) {
    std::string wrong = ListedAnew(card, series);
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, series);
    Expected expected;
    expected.list.card = card;
    expected.list.card.faults = {};
    expected.list.baseURI = card.root;
    expected.list.storedSeries = series;
    Actual actual;
    (void)actual.list.SetBaseURI(card.root.c_str());
    PosixSeam seam;
    SetClock(seam);
    const auto takeNumber = [](auto& side) {
        (void)side.list.Listup();
        (void)side.list.SetSeriesMode(true);
        return side.NewName(FILE_TYPE_JPG);
    };
    const int result = takeNumber(actual);
    const std::string path = actual.buffer.data();
    if (result != takeNumber(expected) || path != expected.buffer.data()) {
        wrong += "  the next name is " + path + " instead of " + expected.buffer.data() + "\n";
    }
    const long stored = FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey).value_or(0);
    if (result == 0 && IsTaken(card, path)) {
        wrong += "  the number of " + path + " is taken\n";
    }
    if (result == 0 && series < kNumbersEnd && stored <= series) {
        wrong += "  the number of " + path + " is behind the stored one, " + std::to_string(series) + "\n";
    }
    return wrong;
}

class Cuts {
public:
    void Run() {
        for (const Scene& scene : m_stage.Scenes()) {
            const int changes = Foresee(scene, {}).after.list.card.faults.changes;
            for (int change = 1; change <= changes; ++change) {
                Cut(scene, change);
                m_operations.insert(scene.operation.name);
            }
        }
        std::cout << "power cuts: " << m_cuts << " in " << m_operations.size() << " operations:";
        for (const std::string& operation : m_operations) {
            std::cout << " " << operation;
        }
        std::cout << "\n";
        EXPECT_GT(m_cuts, 0);
        for (const char* operation :
             {"Listup", "Delete", "DeleteSel", "DeleteAll", "GetNewFileName", "SetProtect", "SetProtectSel",
              "SetProtectAll", "SetProtectSelToggle", "RenameDCFFullStorage", "SetSeriesMode"}) {
            EXPECT_EQ(1U, m_operations.count(operation)) << operation << " was never cut";
        }
    }

private:
    void Cut(const Scene& scene, int change) {
        CallFaults faults;
        faults.cutAfter = change;
        const Forecast forecast = Foresee(scene, faults);
        const ReferenceCard& card = forecast.after.list.card;
        const std::unique_ptr<Actual> actual = m_stage.Set(scene);
        const long before = FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey).value_or(0);
        const Ending ending = RunInChild([&] {
            PosixSeam seam;
            SetClock(seam);
            seam.CutPowerAfterChange(change);
            FakePlatform::Get().AfterPrefSet([&seam](long value) {
                ReportEvent({"series", std::to_string(value)});
                seam.Changed();
            });
            (void)OnLibrary(scene.operation, *actual);
        });
        ++m_cuts;
        const std::string what = scene.name + ": cut behind change " + std::to_string(change);
        const long series = StoredSeries(ending, before);
        EXPECT_TRUE(forecast.cut && ending.status == PosixSeam::kPowerCutStatus) << what << ending.Describe();
        EXPECT_EQ("", CardDifference(card)) << what;
        EXPECT_EQ(forecast.after.list.storedSeries.value_or(0), series) << what;
        EXPECT_EQ("", LostFiles(scene, card)) << what;
        EXPECT_LE(NewOrphans(scene.before.list.card, card), 1U) << what;
        const Ending again = RunInChild([&] { ReportEvent({"found", WrongInNewProcess(card, series)}); });
        EXPECT_EQ("", again.events.empty() ? again.Describe() : again.events.back().fields.back()) << what;
    }

    static std::size_t NewOrphans(const ReferenceCard& before, const ReferenceCard& after) {
        const std::set<std::string> known = FilesOf(before);
        std::set<std::string> orphans = Orphans(after);
        for (const std::string& orphan : Orphans(before)) {
            orphans.erase(orphan);
        }
        return static_cast<std::size_t>(std::count_if(orphans.begin(), orphans.end(), [&](const std::string& orphan) {
            return known.count(orphan) > 0; // else its directory has another number now, or it never had an owner
        }));
    }

    Stage m_stage;
    int m_cuts = 0;
    std::set<std::string> m_operations;
};

TEST(PowerCut, CostsNothingThatWasNotBeingDeleted) {
    Cuts().Run();
}

} // namespace
} // namespace dcftest
