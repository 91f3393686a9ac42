// AssertionDeath: what a failing assertion of the library leaves behind, compared whole. A test runs the operation with
// RunInChild() and checks the ending:
//
//     EXPECT_TRUE(DiesByAssertion(RunInChild([&] { dir.GetFidx(7); }),
//                                 {"it != m_itemGroup.end()", "cannot found fnum = 7", "CSDCFDir",
//                                  "int CSDCFDir::GetFidx(int)"}));
#ifndef TESTS_SUPPORT_ASSERTION_DEATH_H
#define TESTS_SUPPORT_ASSERTION_DEATH_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FakePlatform.h"

namespace dcftest {

struct ExpectedAssertion {
    std::string condition; ///< As logged.
    std::string info;      ///< As logged, placeholders filled.
    std::string file;      ///< "CSDCFDir" for Src/CSDCFDir.cpp.
    std::string signature; ///< The function as the compiler writes it; spaces do not matter.
    std::string failed{};  ///< The condition in the system's failure line, where it is not the logged one.
};

/// The text "[%-10s] %s" that standard output gets for a message.
std::string PrintedLine(const std::string& message);

/// The log lines of an ending, in order.
std::vector<LogLine> LoggedLines(const Ending& ending);
/// The messages logged before the assertion's own two lines.
std::vector<std::string> MessagesBeforeAssertion(const Ending& ending);

/// Whether the child died as that assertion and nothing else: one backtrace, then the condition in the log and on
/// standard output, then the info in both, and the system's failure line at the end of standard error. Other log lines
/// and output may come before.
testing::AssertionResult DiesByAssertion(const Ending& ending, const ExpectedAssertion& expected);

} // namespace dcftest

#endif
