// The model test over the whole interface: random operations, the 47 and what happens to a card from outside, on a
// random card, done on the library and on a reference that is written from the rules alone. After each one everything
// is compared: the result, the client's items and buffer, every field of the file list and the tree, the registry, the
// card on disk, the preference store, and what was logged, printed, called on the card, stored and collected on the
// way. An operation that would end the process is mostly passed over and now and then done in a child, whose death is
// compared.
//
// Rounds, each with a card and a list of its own, follow each other until the operations are used up.
//   DCF_TEST_SEED        the first round's seed (default 1), each further round takes the next
//   DCF_TEST_OPERATIONS  operations in all (default 20000); 1000000 is the long form
//   DCF_TEST_STEP        ends the first round behind that step and prints its operations: replays a difference
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "CapturedOutput.h"
#include "Card.h"
#include "FakePlatform.h"
#include "Operations.h"
#include "PosixSeam.h"
#include "RandomCard.h"

namespace dcftest {
namespace {

const std::vector<std::string> kComparedCalls = {"scandir", "opendir", "stat", "chmod", "unlink", "remove",   "rename",
                                                 "mkdir",   "umask",   "sync", "time",  "usleep", "localtime"};

long FromEnvironment(const char* name, long otherwise) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::stol(value) : otherwise;
}

/// Cards on a file system in memory where there is one and nothing else is wished.
void PreferMemory() {
    if (std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0) {
        (void)::setenv("TMPDIR", "/dev/shm", 1);
    }
}

template <typename List>
std::string Join(const List& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += "    " + text + "\n";
    }
    return all;
}

std::vector<std::string> PrefTexts(const std::vector<PrefCall>& calls, std::size_t from) {
    std::vector<std::string> texts;
    for (std::size_t i = from; i < calls.size(); ++i) {
        texts.push_back(std::string(calls[i].set ? "set " : "get ") + std::to_string(calls[i].group) + " " +
                        std::to_string(calls[i].key) + " " + std::to_string(calls[i].value));
    }
    return texts;
}

std::string Compare(const char* what, const std::vector<std::string>& expected,
                    const std::vector<std::string>& actual) {
    return expected == actual ? ""
                              : std::string("  ") + what + ": expected\n" + Join(expected) + "  got\n" + Join(actual);
}

/// What the test met, over all rounds.
struct Tally {
    std::map<std::string, long> operations;
    Events events;
    long steps = 0;
    long rounds = 0;
};

/// One card, one file list, and some steps.
class Round {
public:
    Round(std::uint32_t seed, Tally& tally) : m_seed(seed), m_dice(seed), m_tally(tally) {
        FakePlatform::Get().Reset();
        CSDCFList::m_PhotoInfoCollector = nullptr;
        DirPathMapper::getInstance()->clear();
        (void)TakeCollected();
        m_actual = std::make_unique<Actual>();

        const std::string root = m_card.Root() + "/" + RootName();
        ::mkdir(root.c_str(), 0755);
        m_expected.list.events = &m_tally.events;
        m_expected.list.card.root = root;
        m_expected.list.baseURI = root;
        (void)m_actual->list.SetBaseURI(root.c_str());
        FakePlatform::Get().ForgetLines();
        m_actual->dcim = root + "/DCIM";
        MakeRandomCard(m_dice, m_expected.list.card);
        MakeRealCard(m_expected.list.card);
        ++m_tally.rounds;
    }

    /// Steps until the round is over or the tally is full. @return what differed, empty when nothing did.
    std::string Run(long operations, long lastStep) {
        const int steps = m_dice.Pick(20, 400);
        for (m_step = 1; m_step <= steps && m_tally.steps < operations && !m_over; ++m_step) {
            const std::string difference = Step(lastStep > 0);
            if (!difference.empty()) {
                return "seed " + std::to_string(m_seed) + ", step " + std::to_string(m_step) + ": " + m_text + "\n" +
                       difference + "run again with DCF_TEST_SEED=" + std::to_string(m_seed) +
                       " DCF_TEST_STEP=" + std::to_string(m_step);
            }
            if (lastStep == m_step) {
                break;
            }
        }
        return "";
    }

private:
    /// So that paths are sometimes cut, and "PHOTO" sometimes stands in every path.
    std::string RootName() {
        if (m_dice.Chance(10)) {
            return "PHOTO";
        }
        const int longest = 75 - static_cast<int>(m_card.Root().size()) - 1;
        return std::string(static_cast<std::size_t>(m_dice.Chance(70) ? 3 : m_dice.Pick(1, longest)), 'r');
    }

    /// An operation that is right now, or one whose death is to be seen.
    Operation Choose() {
        for (;;) {
            Operation operation;
            if (!m_expected.list.tree && m_dice.Chance(60)) {
                operation = MakeOperation("Listup", m_dice, m_expected);
            } else {
                operation = RandomOperation(m_dice, m_expected);
            }
            if (operation.onReference == nullptr) {
                continue;
            }
            m_next = m_expected;
            m_next.list.effects = {};
            m_next.list.card.calls.clear();
            m_next.list.clock = RandomClock();
            m_fatal.reset();
            try {
                m_result = operation.onReference(m_next);
            } catch (const OutOfRange& error) {
                m_result = "threw " + error.text;
            } catch (const Fatal& fatal) {
                m_fatal = fatal;
                if (!CannotBeListed(operation) && !m_dice.Chance(m_expected.list.tree ? 3 : 20)) {
                    continue;
                }
            }
            return operation;
        }
    }

    /// A card whose listing dies is of no further use.
    bool CannotBeListed(const Operation& operation) const {
        return !m_expected.list.tree && operation.name == "Listup";
    }

    Clock RandomClock() {
        Clock clock;
        clock.now = m_dice.Pick(1, 2000000000);
        clock.local.tm_year = m_dice.Pick(70, 200);
        clock.local.tm_mon = m_dice.Pick(0, 11);
        clock.local.tm_mday = m_dice.Of<int>({5, 24});
        clock.broken = m_dice.Chance(5);
        return clock;
    }

    std::string Step(bool trace) {
        const Operation operation = Choose();
        m_text = operation.Text();
        if (trace) {
            std::cout << m_step << " " << m_text << (m_fatal ? " dies" : " " + m_result) << std::endl;
        }
        ++m_tally.steps;
        ++m_tally.operations[operation.name];
        return m_fatal ? CompareDeath(operation) : CompareStep(operation);
    }

    static void SetClock(PosixSeam& seam, const Clock& clock) {
        seam.FixTime(clock.now);
        seam.FixLocalTime(clock.local);
        seam.SkipSleeps();
        if (clock.broken) {
            seam.FailFrom("localtime", EOVERFLOW);
        }
    }

    std::string OnLibrary(const Operation& operation) {
        try {
            return operation.onLibrary(*m_actual);
        } catch (const std::out_of_range& error) {
            const std::string text = error.what();
            return "threw " + text.substr(0, text.find(": "));
        }
    }

    std::string CompareStep(const Operation& operation) {
        FakePlatform& platform = FakePlatform::Get();
        const std::size_t prefCalls = platform.PrefCalls().size();
        const std::size_t trees = platform.PropertyCalls().size();
        const bool outside =
            m_tally.operations.count(operation.name) > 0 && operation.name.find(' ') != std::string::npos;
        std::string result;
        std::string printed;
        std::vector<std::string> calls;
        if (outside) {
            result = OnLibrary(operation);
        } else {
            const CapturedOutput output;
            PosixSeam seam;
            SetClock(seam, m_next.list.clock);
            result = OnLibrary(operation);
            calls = seam.Texts(kComparedCalls);
            printed = output.Text();
        }
        const Effects& effects = m_next.list.effects;
        AdoptTimesBehindNames(m_next, *m_actual);
        std::string difference = Compare("result", {m_result}, {result});
        difference += Compare("log", effects.log, platform.Texts());
        difference += Compare("calls", m_next.list.card.calls, calls);
        difference +=
            Compare("preferences", PrefTexts(effects.prefCalls, 0), PrefTexts(platform.PrefCalls(), prefCalls));
        difference += Compare("printed", {effects.printed}, {printed});
        difference += Compare("collector", effects.collected, TakeCollected());
        if (platform.PropertyCalls().size() != trees + static_cast<std::size_t>(effects.trees)) {
            difference += "  another number of trees was made\n";
        }
        platform.ForgetLines();
        difference += StateDifference(m_next, *m_actual);
        std::swap(m_expected, m_next);
        return difference;
    }

    std::string CompareDeath(const Operation& operation) {
        ++m_tally.events["death"];
        ++m_tally.events["death by " + m_fatal->condition + " in " + m_fatal->signature];
        const Ending ending = RunInChild([&] {
            PosixSeam seam;
            SetClock(seam, m_next.list.clock);
            (void)OnLibrary(operation);
        });
        const bool changed = !m_next.list.card.SameContent(m_expected.list.card); // by the child
        m_over = changed || CannotBeListed(operation);
        const testing::AssertionResult died =
            DiesByAssertion(ending, {m_fatal->condition, m_fatal->info, m_fatal->unit, m_fatal->signature});
        std::string difference = died ? "" : std::string(died.message()) + "\n";
        std::vector<std::string> log;
        for (const LogLine& line : LoggedLines(ending)) {
            log.push_back(line.Text());
        }
        log.resize(std::max<std::size_t>(log.size(), 2) - 2); // the assertion's own
        difference += Compare("log before the death", m_next.list.effects.log, log);
        return difference + CardDifference(m_next.list.card);
    }

    std::uint32_t m_seed;
    Dice m_dice;
    Tally& m_tally;
    Card m_card;
    Expected m_expected;
    Expected m_next;
    std::unique_ptr<Actual> m_actual;
    std::optional<Fatal> m_fatal;
    std::string m_result;
    std::string m_text;
    int m_step = 0;
    bool m_over = false;
};

void ExpectAllMet(const Tally& tally) {
    for (const std::string& name : InterfaceOperations()) {
        EXPECT_GT(tally.operations.count(name) > 0 ? tally.operations.at(name) : 0, 0) << name << " never ran";
    }
    for (const char* event : {"death",
                              "second directory of a number",
                              "first index raised by the series",
                              "exhausted series restarted",
                              "next without the cursor's directory",
                              "previous without the cursor's directory",
                              "companion removed",
                              "directory dropped",
                              "directory dropped with items",
                              "protected file kept by the tree",
                              "protected file kept in a set",
                              "protected item refused",
                              "directory passed over",
                              "companion protected",
                              "no number left",
                              "no directory for the new file",
                              "number taken by another suffix",
                              "making a directory failed",
                              "directory entered",
                              "rename failed",
                              "last directory does not fit"}) {
        EXPECT_GT(tally.events.count(event) > 0 ? tally.events.at(event) : 0, 0) << event << " never happened";
    }
}

TEST(WholeModel, AgreesWithTheReferenceAfterEveryOperation) {
    PreferMemory();
    ::umask(022);
    const long operations = FromEnvironment("DCF_TEST_OPERATIONS", 20000);
    const long lastStep = FromEnvironment("DCF_TEST_STEP", 0);
    Tally tally;
    for (auto seed = static_cast<std::uint32_t>(FromEnvironment("DCF_TEST_SEED", 1)); tally.steps < operations;
         ++seed) {
        Round round(seed, tally);
        const std::string difference = round.Run(operations, lastStep);
        ASSERT_TRUE(difference.empty()) << difference;
        if (lastStep > 0) {
            return;
        }
    }
    std::cout << tally.steps << " operations in " << tally.rounds << " rounds" << std::endl;
    for (const auto& [event, count] : tally.events) {
        std::cout << "  " << event << ": " << count << "\n";
    }
    if (operations >= 20000) {
        ExpectAllMet(tally);
    }
}

} // namespace
} // namespace dcftest
