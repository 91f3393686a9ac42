// Child processes, the check of an assertion death, and the private mount: each tells a wrong ending from a right one.
#include "ChildProcess.h"

#include <dlog.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vell-util.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include "AssertionDeath.h"
#include "CSDCFDir.h"
#include "Card.h"
#include "FakePlatform.h"
#include "PrivateMount.h"

using dcftest::DiesByAssertion;
using dcftest::Ending;
using dcftest::ExpectedAssertion;
using dcftest::RunInChild;

namespace {

TEST(ChildProcess, BringsBackOutputsAndStatus) {
    const Ending done = RunInChild([] {
        (void)std::printf("to out");
        (void)std::fprintf(stderr, "to err");
    });
    EXPECT_TRUE(done.Completed());
    EXPECT_EQ(done.out, "to out");
    EXPECT_EQ(done.err, "to err");
    EXPECT_TRUE(RunInChild([] {}).Completed());
}

TEST(ChildProcess, TellsExitsExceptionsAndSignalsApart) {
    const Ending exited = RunInChild([] { ::_exit(5); });
    EXPECT_EQ(exited.status, 5);
    EXPECT_FALSE(exited.Completed());
    const Ending threw = RunInChild([] { throw std::runtime_error("why"); });
    EXPECT_EQ(threw.status, dcftest::kChildThrew);
    EXPECT_NE(threw.err.find("why"), std::string::npos);
    const Ending aborted = RunInChild([] { std::abort(); });
    EXPECT_EQ(aborted.signal, SIGABRT);
    const Ending refused = RunInChild([] { dcftest::RefuseInChild("no"); });
    EXPECT_TRUE(refused.refused);
    EXPECT_FALSE(refused.Completed());
}

TEST(ChildProcess, AFailedExpectationInTheChildIsAFailureOfTheChild) {
    const Ending ending = RunInChild([] { EXPECT_EQ(1, 2) << "on purpose"; });
    EXPECT_EQ(ending.status, dcftest::kChildFailedExpectation);
    EXPECT_NE(ending.out.find("on purpose"), std::string::npos);
}

TEST(ChildProcess, LosesWhatWasNotFlushedBeforeADeath) {
    const Ending kept = RunInChild([] {
        (void)std::printf("text\n");
        (void)std::fflush(stdout);
        std::abort();
    });
    EXPECT_EQ(kept.out, "text\n");
    const Ending lost = RunInChild([] {
        (void)std::printf("text\n");
        std::abort();
    });
    EXPECT_EQ(lost.out, dcftest::kAbortFlushes ? "text\n" : "");
}

TEST(ChildProcess, KeepsTheOrderOfEventsAndPrintedBytes) {
    const Ending ending = RunInChild([] {
        dcftest::ReportEvent({"first"});
        (void)std::printf("12345");
        dcftest::ReportEvent({"second", "", "with:colon\nand newline"});
        (void)std::fflush(stdout);
        (void)std::printf("678");
        dcftest::ReportEvent({"third"});
    });
    ASSERT_EQ(ending.events.size(), 3U);
    EXPECT_EQ(ending.events[0].printed, 0U);
    EXPECT_EQ(ending.events[1].printed, 5U);
    EXPECT_EQ(ending.events[2].printed, 8U);
    EXPECT_EQ(ending.events[1].fields, (std::vector<std::string>{"second", "", "with:colon\nand newline"}));
}

// A made-up assertion, each step of which can be left out or spoilt.
struct Death {
    int backtraces = 1;
    std::string conditionLog = "### assert condition : a != b";
    std::string conditionOut = conditionLog;
    std::string infoLog = "### assert info : seven 7";
    std::string infoOut = infoLog;
    bool printBeforeLog = false;
    bool flush = true;
    int priority = 4;
    std::string unit = "Unit";
    std::string function = "Method";
    std::string line = "prog: Src/Unit.cpp:12: int Class::Method(char *): Assertion `a != b' failed.\n";
    bool abort = true;

    void Log(const std::string& message) const {
        (void)__dlog_print(3, priority, "MM_FLIST", "%s: %s(%d) > %s", unit.c_str(), function.c_str(), 12,
                           dcftest::LogBuffer(message).c_str());
    }
    static void Print(const std::string& message) {
        (void)std::fputs(dcftest::PrintedLine(message).c_str(), stdout);
    }
    Ending Run() const {
        return RunInChild([this] {
            Log("start");
            (void)std::printf("earlier output\n");
            for (int i = 0; i < backtraces; ++i) {
                vell_print_backtrace();
            }
            if (printBeforeLog) {
                Print(conditionOut);
            }
            Log(conditionLog);
            if (!printBeforeLog) {
                Print(conditionOut);
            }
            Log(infoLog);
            Print(infoOut);
            if (flush) {
                (void)std::fflush(stdout);
            }
            (void)std::fputs(line.c_str(), stderr);
            if (abort) {
                std::abort();
            }
        });
    }
};

const ExpectedAssertion kExpected = {"a != b", "seven 7", "Unit", "int Class::Method(char*)"};

TEST(AssertionDeath, AcceptsTheWholeSequence) {
    const Ending ending = Death{}.Run();
    EXPECT_TRUE(DiesByAssertion(ending, kExpected));
    EXPECT_EQ(dcftest::MessagesBeforeAssertion(ending), std::vector<std::string>{"start"});
    EXPECT_EQ(dcftest::LoggedLines(ending).size(), 3U);
}

TEST(AssertionDeath, AcceptsAFailedExpressionThatIsNotTheLoggedOne) {
    Death death;
    death.line = "prog: Src/Unit.cpp:12: int Class::Method(char *): Assertion `x < 30' failed.\n";
    ExpectedAssertion expected = kExpected;
    EXPECT_FALSE(DiesByAssertion(death.Run(), expected));
    expected.failed = "x < 30";
    EXPECT_TRUE(DiesByAssertion(death.Run(), expected));
}

TEST(AssertionDeath, RefusesEverySpoiltStep) {
    const std::vector<std::pair<const char*, std::function<void(Death&)>>> cases = {
        {"no backtrace", [](Death& d) { d.backtraces = 0; }},
        {"two backtraces", [](Death& d) { d.backtraces = 2; }},
        {"other condition in the log", [](Death& d) { d.conditionLog = "### assert condition : a == b"; }},
        {"other condition on standard output", [](Death& d) { d.conditionOut = "### assert condition : a"; }},
        {"other info in the log", [](Death& d) { d.infoLog = "### assert info : seven %d"; }},
        {"other info on standard output", [](Death& d) { d.infoOut = "### assert info : seven 7\n"; }},
        {"printed before it was logged", [](Death& d) { d.printBeforeLog = true; }},
        {"not flushed", [](Death& d) { d.flush = false; }},
        {"other priority", [](Death& d) { d.priority = 3; }},
        {"other unit in the log", [](Death& d) { d.unit = "Unit.cpp"; }},
        {"other function in the log", [](Death& d) { d.function = "Class::Method"; }},
        {"no abort", [](Death& d) { d.abort = false; }},
        {"absolute source path", [](Death& d) { d.line.replace(d.line.find("Src"), 3, "/x/Src"); }},
        {"other line number", [](Death& d) { d.line.replace(d.line.find("12"), 2, "13"); }},
        {"other function", [](Death& d) { d.line.replace(d.line.find("Method"), 6, "Mothed"); }},
        {"other failed condition", [](Death& d) { d.line.replace(d.line.find("a != b"), 6, "a == b"); }},
        {"something behind the failure line", [](Death& d) { d.line += "more\n"; }},
    };
    for (const auto& [what, spoil] : cases) {
        Death death;
        spoil(death);
        if (!death.flush && dcftest::kAbortFlushes) {
            continue;
        }
        EXPECT_FALSE(DiesByAssertion(death.Run(), kExpected)) << what;
    }
}

TEST(AssertionDeath, ChecksTheLibrarysOwn) {
    CSDCFDir dir(100, "100ABCDE");
    const ExpectedAssertion expected = {"it != m_itemGroup.end()", "cannot found fnum = 7", "CSDCFDir",
                                        "int CSDCFDir::GetFidx(int)"};
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)dir.GetFidx(7); }), expected));
    EXPECT_FALSE(DiesByAssertion(RunInChild([&] { (void)dir.GetFidx(8); }), expected));
}

TEST(PrivateMount, ShowsTheFolderAsTheDefaultRootAndLeavesTheMachinesOwnAlone) {
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat("/mnt", &before), 0);
    dcftest::Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG", {"marker", 0644, {}});
    const Ending ending = dcftest::RunWithDefaultRoot(card.Root(), [] {
        std::string text;
        std::ifstream("/mnt/mmc/DCIM/100ABCDE/KVR_0001.JPG") >> text;
        EXPECT_EQ(text, "marker");
        std::ofstream("/mnt/mmc/DCIM/100ABCDE/KVR_0002.JPG") << "made inside";
    });
    if (ending.refused) {
        GTEST_SKIP() << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(card.Exists("100ABCDE", "KVR_0002.JPG"));
    ASSERT_EQ(::stat("/mnt", &after), 0);
    EXPECT_EQ(before.st_dev, after.st_dev);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

} // namespace
