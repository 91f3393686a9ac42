// The last net: an assertion that nothing foresaw ends the tool with one line and an exit code, not with a signal.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ChildProcess.h"
#include "Rehearsal.h"
#include "Streams.h"

extern "C" void vell_print_backtrace(void);

namespace {

using dcfctl::Rehearse;
using dcfctl::Rehearsed;

constexpr char kLine[] = "dcfctl: error: the file list has ended on a broken condition and the work is not complete; "
                         "set DCF_LOG to a file's path and run again to see which\n";

/// What the library does when an assertion fails.
[[noreturn]] void FailLikeTheLibrary() {
    vell_print_backtrace();
    std::fputs("[MM_FLIST  ] ### assert condition : 0\n", stdout);
    std::fflush(stdout);
    std::fputs("Assertion `0' failed.\n", stderr);
    std::abort();
}

TEST(LastNet, SaysOneLineAndExitsAsIncomplete) {
    const auto ending = dcftest::RunInChild([] {
        unsetenv("DCF_LOG");
        const int out = dcfctl::SeparateOutput();
        dcfctl::CatchAborts();
        (void)!write(out, "whole\n", 6);
        FailLikeTheLibrary();
    });
    EXPECT_EQ(ending.signal, 0);
    EXPECT_EQ(ending.status, 6);
    EXPECT_EQ(ending.out, "whole\n");
    EXPECT_EQ(ending.err, kLine);
}

TEST(LastNet, KeepsTheDetailsWhereTheLogWasAskedFor) {
    const auto ending = dcftest::RunInChild([] {
        setenv("DCF_LOG", "stderr", 1);
        (void)dcfctl::SeparateOutput();
        dcfctl::CatchAborts();
        FailLikeTheLibrary();
    });
    EXPECT_EQ(ending.status, 6);
    EXPECT_EQ(ending.err, std::string("Assertion `0' failed.\n") + kLine);
}

TEST(Rehearsal, TellsHowAnOperationWouldEnd) {
    EXPECT_EQ(Rehearse([] {}), Rehearsed::kFine);
    EXPECT_EQ(Rehearse([] { FailLikeTheLibrary(); }), Rehearsed::kFatal);
    EXPECT_EQ(Rehearse([] { throw 1; }), Rehearsed::kThrew);
    EXPECT_EQ(Rehearse([] { std::exit(1); }), Rehearsed::kFatal);
}

TEST(Rehearsal, LeavesNoTraceInTheProcess) {
    int value = 0;
    const auto ending = dcftest::RunInChild([&value] {
        const auto fine = Rehearse([&value] {
            value = 1;
            std::puts("seen");
            std::fflush(stdout);
            std::fputs("seen", stderr);
        });
        EXPECT_EQ(fine, Rehearsed::kFine);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(Rehearse([] { FailLikeTheLibrary(); }), Rehearsed::kFatal);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "");
}

TEST(Rehearsal, IsCaughtByNoNetOfItsOwn) {
    const auto ending = dcftest::RunInChild([] {
        dcfctl::CatchAborts();
        EXPECT_EQ(Rehearse([] { FailLikeTheLibrary(); }), Rehearsed::kFatal);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "") << "the net's line belongs to the tool, not to its trial runs";
}

} // namespace
