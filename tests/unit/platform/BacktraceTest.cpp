// The backtrace of a workstation: names, the right thread, and an abort behind it.
#include <gtest/gtest.h>
#include <vell-util.h>

#include <csignal>
#include <cstdlib>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "TempFolder.h"

using dcftest::Contains;
using dcftest::Ending;
using dcftest::LinesOf;
using dcftest::RunInChild;

namespace darkroom {

// Not inlined, and not the last call, so that each has a frame of its own.
__attribute__((noinline)) void Develop(int films) {
    vell_print_backtrace();
    __asm__ volatile("" : : "r"(films));
}

__attribute__((noinline)) void Expose(const std::string& picture) {
    Develop(static_cast<int>(picture.size()));
    __asm__ volatile("");
}

namespace {

[[maybe_unused]] constexpr int kSecretLine = __LINE__ + 2; // where the stack is printed
__attribute__((noinline)) void DevelopInSecret() {
    vell_print_backtrace();
    __asm__ volatile("");
}

} // namespace

__attribute__((noinline)) void Spoil() {
    vell_print_backtrace();
    std::abort();
}

} // namespace darkroom

namespace {

// Position of the first line that holds the text, or -1.
int LineWith(const std::vector<std::string>& lines, const std::string& text) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (Contains(lines[i], text)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

TEST(Backtrace, NamesTheCallersInnermostFirst) {
    const Ending ending = RunInChild([] { darkroom::Expose("picture"); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
    const std::vector<std::string> lines = LinesOf(ending.err);
    ASSERT_GT(lines.size(), 3U) << ending.err;
    EXPECT_EQ(lines[0], "Backtrace, innermost call first:");
    EXPECT_EQ(LineWith(lines, "darkroom::Develop(int)+0x"), 1) << ending.err;
    EXPECT_EQ(LineWith(lines, "darkroom::Expose("), 2) << ending.err;
    EXPECT_GT(LineWith(lines, "main+0x"), 2) << ending.err;
}

TEST(Backtrace, EveryFrameHasAnAddressAndAPlaceInItsFile) {
    const Ending ending = RunInChild([] { darkroom::Expose("picture"); });
    const std::vector<std::string> lines = LinesOf(ending.err);
    const std::regex frame(R"(#\d+ +0x[0-9a-f]+ in .+ \(.+\+0x[0-9a-f]+\))");
    ASSERT_GT(lines.size(), 3U) << ending.err;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        EXPECT_TRUE(std::regex_match(lines[i], frame)) << lines[i];
    }
}

TEST(Backtrace, NamesFunctionsThatAreNotExported) {
    const Ending ending = RunInChild([] { darkroom::DevelopInSecret(); });
    EXPECT_TRUE(Contains(LinesOf(ending.err).at(1), "darkroom::(anonymous namespace)::DevelopInSecret()+0x"))
        << ending.err;
}

#ifndef __clang__ // which leaves out the table of addresses that this needs
TEST(Backtrace, NamesTheSourceLineWhereItIsKnown) {
    const Ending ending = RunInChild([] { darkroom::DevelopInSecret(); });
    const std::string first = LinesOf(ending.err).at(1);
    if (!Contains(first, " at ")) {
        GTEST_SKIP() << "built without debug information";
    }
    const std::regex place(R"(.* at .*BacktraceTest\.cpp:(\d+) \(.*)");
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(first, parts, place)) << first;
    EXPECT_EQ(std::stoi(parts[1]), darkroom::kSecretLine);
}
#endif

TEST(Backtrace, IsOutBeforeTheProcessAborts) {
    const Ending ending = RunInChild([] { darkroom::Spoil(); });
    EXPECT_EQ(ending.signal, SIGABRT);
    // The call of abort is the last instruction of the function; the name must still be this function's.
    EXPECT_TRUE(Contains(ending.err, "darkroom::Spoil()+0x")) << ending.err;
}

TEST(Backtrace, ShowsTheCallingThreadAndNoOther) {
    const Ending ending = RunInChild([] { std::thread([] { darkroom::Expose("picture"); }).join(); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(Contains(ending.err, "darkroom::Develop(int)")) << ending.err;
    EXPECT_FALSE(Contains(ending.err, " main+0x")) << ending.err;
}

} // namespace
