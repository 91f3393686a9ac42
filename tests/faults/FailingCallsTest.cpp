// Every operation of the interface on several cards, with each call that it makes failing: the first, the second and so
// on until none is left to fail, one of them alone and from one on all, by the errors that the call can give. Behind
// each failure everything is as the reference of the model test says: result, list, card, what was logged, called,
// stored and printed; no file is gone that was not being deleted; nothing stays open or taken; the card can be listed
// anew. The figures are printed, and a kind of call that never failed is a failure.
//
//   DCF_TEST_FAULTS=full  more cards and scenes, and every error of every call instead of them in turn
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <map>

#include "Aftermath.h"
#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "CapturedOutput.h"
#include "FakePlatform.h"
#include "LibraryMemory.h"
#include "RandomCard.h"

namespace dcftest {
namespace {

/// A kind of call and the errors that it can give; for "pref_get" the values that a failing store hands out.
struct Kind {
    std::string call;
    std::vector<long> errors;
};

const std::vector<Kind> kKinds = {
    {"scandir", {EIO, ENOMEM, EACCES, ENOENT, ENOTDIR, EMFILE, ENFILE, ENAMETOOLONG, ELOOP}},
    {"opendir", {EMFILE, EIO, EACCES, ENOENT, ENOTDIR, ENFILE, ENOMEM, ENAMETOOLONG}},
    {"readdir", {EIO, EBADF, ENOENT, EOVERFLOW}},
    {"closedir", {EIO, EBADF}},
    {"open", {EMFILE, EIO, EACCES, ENOENT, ENFILE, ENOMEM, ENAMETOOLONG}},
    {"stat", {EIO, EACCES, ENOENT, ENAMETOOLONG, ENOMEM, ENOTDIR, EOVERFLOW, ELOOP}},
    {"fstatat", {EIO, EACCES, ENOENT, ENOMEM, ENAMETOOLONG, EOVERFLOW, ELOOP}},
    {"chmod", {EROFS, EPERM, EIO, EACCES, ENOENT, ENAMETOOLONG}},
    {"unlink", {EIO, EROFS, EACCES, EPERM, ENOENT, EBUSY, EISDIR, ENAMETOOLONG}},
    {"remove", {ENOTEMPTY, EIO, EROFS, EACCES, EPERM, ENOENT, EBUSY}},
    {"rename", {EIO, ENOTEMPTY, EEXIST, EROFS, EACCES, ENOSPC, ENOENT, EBUSY, ENAMETOOLONG}},
    {"mkdir", {ENOSPC, EROFS, EIO, EACCES, EEXIST, ENOENT, EMLINK, ENAMETOOLONG}},
    {"time", {EOVERFLOW}},
    {"localtime", {EOVERFLOW}},
    {"pref_get", {0, -1, LONG_MIN, LONG_MAX, 99909999}},
    {"pref_set", {-1}},
    {PosixSeam::kEveryCardCall, {EIO, ENXIO, ENODEV}},
};

/// The assertions that may end an operation because a call failed, and why.
struct AllowedDeath {
    const char* operation;
    const char* info;
    const char* why;
};

constexpr AllowedDeath kAllowedDeaths[] = {
    {"DeleteSel", "invalid",
     "a directory that cannot be read leaves the list with its files, and the first position may lie beyond the rest"},
};

const std::vector<std::string> kComparedCalls = {"scandir", "opendir", "stat", "chmod", "unlink", "remove",   "rename",
                                                 "mkdir",   "umask",   "sync", "time",  "usleep", "localtime"};

/// What is being tried, for the case that it ends the process.
std::string g_trying;

void TellWhatWasTried(int /*signal*/) {
    (void)!::write(STDERR_FILENO, g_trying.data(), g_trying.size());
}

std::vector<std::string> PrefTexts(const std::vector<PrefCall>& calls) {
    std::vector<std::string> texts;
    for (const PrefCall& call : calls) {
        texts.push_back((call.set ? "set " : "get ") + std::to_string(call.value));
    }
    return texts;
}

std::string Compare(const char* what, const std::vector<std::string>& expected,
                    const std::vector<std::string>& actual) {
    if (expected == actual) {
        return "";
    }
    std::string text = std::string("  ") + what + ": expected";
    for (const std::string& line : expected) {
        text += "\n    " + line;
    }
    text += "\n  got";
    for (const std::string& line : actual) {
        text += "\n    " + line;
    }
    return text + "\n";
}

/// Makes the fault happen while it stands.
class Armed {
public:
    Armed(const CallFaults& fault, long error) : m_fault(fault), m_error(error) {
        SetClock(m_seam);
        m_calls = FakePlatform::Get().PrefCalls().size();
        if (fault.name == "pref_get") {
            FakePlatform::Get().AtPrefGet(
                [this] { return m_fault.Fails("pref_get") ? std::optional(m_error) : std::nullopt; });
        } else if (fault.name == "pref_set") {
            FakePlatform::Get().AtPrefSet(
                [this] { FakePlatform::Get().SetPrefSetResult(m_fault.Fails("pref_set") ? -1 : 0); });
        } else if (fault.nth > 0 && fault.persistent) {
            m_seam.FailFrom(fault.name, static_cast<int>(error), fault.nth);
        } else if (fault.nth > 0) {
            m_seam.Fail(fault.name, static_cast<int>(error), fault.nth);
        }
    }
    ~Armed() {
        FakePlatform::Get().AtPrefGet({});
        FakePlatform::Get().AtPrefSet({});
        FakePlatform::Get().SetPrefSetResult(0);
    }
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;

    const PosixSeam& Seam() const {
        return m_seam;
    }
    int Fired() const {
        return m_fault.fired + m_seam.Fired();
    }
    std::vector<PrefCall> PrefCalls() const {
        std::vector<PrefCall> calls = FakePlatform::Get().PrefCalls();
        calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(m_calls));
        return calls;
    }

private:
    CallFaults m_fault;
    long m_error;
    PosixSeam m_seam;
    std::size_t m_calls;
};

/// The time of a file that could not be looked at is 0. Which one it was depends on the order in which the folder holds
/// the files, so the reference takes that over; any other time has to be its own.
void AdoptMissingTimes(Forecast& forecast, const Actual& actual) {
    const auto adopt = [](std::uint32_t expected, std::uint32_t found) {
#ifdef DCF_ENTRY_TIME_DIRENT
        (void)expected; // what the file system left behind the name
        return found;
#else
        return found == 0 ? 0 : expected;
#endif
    };
    if (!forecast.after.list.tree || actual.list.m_pDCF == nullptr) {
        return;
    }
    AdoptTimes(forecast.after, actual, adopt);
    for (std::size_t slot = 0; slot < actual.items.size(); ++slot) {
        std::uint32_t& time = forecast.after.items[slot].m_nFileTime;
        time = adopt(time, actual.items[slot].m_nFileTime);
    }
}

class Sweep {
public:
    Sweep() : m_scenes(m_stage.Scenes()) {
        (void)std::signal(SIGABRT, TellWhatWasTried);
        std::set<std::string> operations;
        std::transform(m_scenes.begin(), m_scenes.end(), std::inserter(operations, operations.end()),
                       [](const Scene& scene) { return scene.operation.name; });
        EXPECT_EQ(operations.size(), InterfaceOperations().size()) << "an operation that no card has a scene for";
    }

    void Run(const std::vector<std::string>& calls) {
        for (const Scene& scene : m_scenes) {
            ExpectUndisturbed(scene);
            for (const Kind& kind : kKinds) {
                if (std::find(calls.begin(), calls.end(), kind.call) != calls.end()) {
                    RunKind(scene, kind);
                }
            }
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
        for (const std::string& call : calls) {
            std::cout << "faults injected, " << call << ": " << m_injected[call] << " in " << m_runs[call] << " runs\n";
            EXPECT_GT(m_injected[call], 0) << call << " never failed";
        }
        std::cout << "scenes: " << m_scenes.size() << ", ended by an allowed assertion: " << m_deaths << "\n";
    }
    /// What the reference met while calls failed.
    const Events& Met() const {
        return m_events;
    }

private:
    void RunKind(const Scene& scene, const Kind& kind) {
        for (const bool persistent : {false, true}) {
            for (int nth = 1;; ++nth) {
                CallFaults fault;
                fault.name = kind.call;
                fault.nth = nth;
                fault.persistent = persistent;
                if (kind.call == "closedir" ? nth > m_closes
                                            : Foresee(scene, fault).after.list.card.faults.fired == 0) {
                    break;
                }
                const std::size_t first = Thorough() ? 0 : static_cast<std::size_t>(m_turn++) % kind.errors.size();
                const std::size_t count = Thorough() ? kind.errors.size() : 1;
                for (std::size_t i = first; i < first + count; ++i) {
                    Inject(scene, fault, kind.errors[i]);
                }
            }
        }
    }

    /// Without a fault the reference makes the same calls, so it knows which ones there are to fail.
    void ExpectUndisturbed(const Scene& scene) {
        const std::unique_ptr<Actual> actual = m_stage.Set(scene);
        Forecast forecast = Foresee(scene, {});
        const CapturedOutput output;
        const Armed armed({}, 0);
        EXPECT_EQ(forecast.result, OnLibrary(scene.operation, *actual)) << scene.name;
        for (const char* call : {"scandir", "opendir", "readdir", "open", "stat", "fstatat", "chmod", "unlink",
                                 "remove", "rename", "mkdir", "time", "localtime"}) {
            ASSERT_EQ(forecast.after.list.card.faults.seen[call], armed.Seam().Count(call))
                << scene.name << ", " << call;
        }
        m_closes = armed.Seam().Count("closedir");
    }

    void Inject(const Scene& scene, CallFaults fault, long error) {
        fault.value = error;
        g_trying = scene.name + ": " + fault.name + " " + std::to_string(fault.nth) +
                   (fault.persistent ? " and later" : "") + " fails by " + std::to_string(error) + "\n";
        Forecast forecast = Foresee(scene, fault, &m_events);
        const int descriptors = OpenDescriptors();
        const long live = LibraryMemory::Live();
        std::string difference;
        ++m_runs[fault.name];
        if (forecast.fatal) {
            difference = Die(scene, fault, error, forecast);
        } else {
            const LibraryMemory memory;
            std::unique_ptr<Actual> actual = m_stage.Set(scene);
            difference = Happen(scene, fault, error, forecast, *actual);
            difference += WrongAfterwards(scene, fault, forecast, *actual);
            actual.reset();
            DirPathMapper::getInstance()->clear();
        }
        EXPECT_EQ(descriptors, OpenDescriptors()) << g_trying;
        EXPECT_EQ(live, LibraryMemory::Live()) << g_trying;
        EXPECT_EQ("", difference) << g_trying;
    }

    std::string Happen(const Scene& scene, const CallFaults& fault, long error, Forecast& forecast, Actual& actual) {
        std::string difference;
        int fired = 0;
        {
            const CapturedOutput output;
            const Armed armed(fault, error);
            difference = Compare("result", {forecast.result}, {OnLibrary(scene.operation, actual)});
            difference += Compare("printed", {forecast.after.list.effects.printed}, {output.Text()});
            difference += Compare("calls", forecast.after.list.card.calls, armed.Seam().Texts(kComparedCalls));
            difference +=
                Compare("preferences", PrefTexts(forecast.after.list.effects.prefCalls), PrefTexts(armed.PrefCalls()));
            fired = armed.Fired();
        }
        m_injected[fault.name] += fired;
        const int foreseen = fault.name == "closedir" ? fired : forecast.after.list.card.faults.fired;
        if (fired < 1 || fired != foreseen) {
            difference += "  another number of calls failed\n";
        }
        AdoptMissingTimes(forecast, actual);
        difference += Compare("log", forecast.after.list.effects.log, FakePlatform::Get().Texts());
        difference += Compare("collector", forecast.after.list.effects.collected, TakeCollected());
        return difference + StateDifference(forecast.after, actual);
    }

    static std::string WrongAfterwards(const Scene& scene, const CallFaults& fault, const Forecast& forecast,
                                       Actual& actual) {
        const ReferenceCard& card = forecast.after.list.card;
        std::string wrong = LostFiles(scene, card, fault.name);
        if (forecast.result.rfind("threw", 0) != 0) { // else the count is the client's to get anew
            wrong += WrongPositions(scene, card, actual);
        }
        return wrong + ListedAnew(card, forecast.after.list.storedSeries.value_or(0));
    }

    std::string Die(const Scene& scene, const CallFaults& fault, long error, const Forecast& forecast) {
        const Fatal& fatal = *forecast.fatal;
        const bool allowed = std::any_of(std::begin(kAllowedDeaths), std::end(kAllowedDeaths), [&](const auto& death) {
            return scene.operation.name == death.operation && fatal.info == death.info;
        });
        if (!allowed) {
            return "  dies by " + fatal.info + "\n";
        }
        const std::unique_ptr<Actual> actual = m_stage.Set(scene);
        const Ending ending = RunInChild([&] {
            (void)std::signal(SIGABRT, SIG_DFL);
            const Armed armed(fault, error);
            (void)OnLibrary(scene.operation, *actual);
        });
        DirPathMapper::getInstance()->clear();
        ++m_deaths;
        m_injected[fault.name] += forecast.after.list.card.faults.fired;
        const auto died = DiesByAssertion(ending, {fatal.condition, fatal.info, fatal.unit, fatal.signature});
        return (died ? "" : std::string(died.message()) + "\n") + CardDifference(forecast.after.list.card) +
               LostFiles(scene, forecast.after.list.card, fault.name);
    }

    Stage m_stage;
    std::vector<Scene> m_scenes;
    std::map<std::string, long> m_injected;
    std::map<std::string, long> m_runs;
    Events m_events;
    unsigned m_turn = 0;
    int m_closes = 0;
    int m_deaths = 0;
};

void ExpectMet(const Sweep& sweep, const std::vector<std::string>& events) {
    for (const std::string& event : events) {
        EXPECT_GT(sweep.Met().count(event), 0U) << event << " never happened";
    }
}

TEST(FailingCalls, ListingsThatFailLeaveWhatCouldBeRead) {
#ifdef DCF_ENTRY_TIME_DIRENT
    Sweep().Run({"scandir"}); // no file is looked at for its time
#else
    Sweep().Run({"scandir", "open", "fstatat"});
#endif
}

TEST(FailingCalls, FoldersThatCannotBeReadDoWhatTheContractSays) {
    Sweep sweep;
    sweep.Run({"opendir", "readdir", "closedir"});
    ExpectMet(sweep, {"directory dropped with items", "making a directory failed"});
}

TEST(FailingCalls, FilesThatCannotBeExaminedOrProtectedAreTakenAsTheContractSays) {
    Sweep sweep;
    sweep.Run({"stat", "chmod"});
    ExpectMet(sweep, {"companion protected", "protected file kept in a set"});
}

TEST(FailingCalls, FilesThatCannotBeRemovedStayOnTheCard) {
    Sweep sweep;
    sweep.Run({"unlink", "remove"});
    ExpectMet(sweep, {"companion removed", "directory dropped"});
}

TEST(FailingCalls, DirectoriesThatCannotBeMadeOrRenamedAreToldOf) {
    Sweep sweep;
    sweep.Run({"rename", "mkdir"});
    ExpectMet(sweep, {"rename failed", "making a directory failed"});
}

TEST(FailingCalls, AClockAndAStoreThatFailDisturbNothingElse) {
    Sweep().Run({"time", "localtime", "pref_get", "pref_set"});
}

TEST(FailingCalls, ACardThatIsTakenOutDuringAnOperationIsSurvived) {
    Sweep().Run({PosixSeam::kEveryCardCall});
}

} // namespace
} // namespace dcftest
