// Log lines and assertions alone: the buffer to the byte, and the whole sequence of a fatal end. The helpers are not
// exported, so this program is built with their source.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "AssertionDeath.h"
#include "ChildProcess.h"
#include "FakePlatform.h"

#define KELP_UNIT "DiagnosticsTest"
#include "Diagnostics.h"

using dcftest::DiesByAssertion;
using dcftest::Ending;
using dcftest::FakePlatform;
using dcftest::LogLine;
using dcftest::RunInChild;

// Functions whose signatures both compilers write alike.
namespace checks {

static int Checked(int value) {
    KELP_ASSERT(value != 7, "value is %d", value);
    return value;
}

static void NamedOtherwise(const void* pointer) {
    KELP_ASSERT_AS(pointer != nullptr, "pointer != NULL", "pointer != nil", "no pointer");
}

} // namespace checks

namespace {

class LogTest : public testing::Test {
protected:
    LogTest() {
        FakePlatform::Get().Reset();
    }

    LogLine Only() {
        const std::vector<LogLine> lines = FakePlatform::Get().Lines();
        EXPECT_EQ(lines.size(), 1U);
        FakePlatform::Get().ForgetLines();
        return lines.empty() ? LogLine{} : lines.front();
    }
};

TEST_F(LogTest, HasItsFixedArguments) {
    KELP_LOG("start");
    const int line = __LINE__ - 1;
    const LogLine logged = Only();
    EXPECT_EQ(logged.logId, 3);
    EXPECT_EQ(logged.priority, 4);
    EXPECT_EQ(logged.tag, "MM_FLIST");
    EXPECT_EQ(logged.format, "%s: %s(%d) > %s");
    EXPECT_EQ(logged.file, "DiagnosticsTest");
    EXPECT_EQ(logged.function, "TestBody") << "the bare name of the function";
    EXPECT_EQ(logged.line, line);
    EXPECT_EQ(logged.buffer, "\033[mstart\033[m\n");
}

TEST_F(LogTest, IsFormatted) {
    KELP_LOG("%s end, %d of %ld %%", "Listup", -7, 1234567890L);
    EXPECT_EQ(Only().buffer, "\033[mListup end, -7 of 1234567890 %\033[m\n");
}

TEST_F(LogTest, LosesOneNewlineAtItsEnd) {
    const struct {
        const char* message;
        const char* kept;
        const char* why;
    } rows[] = {
        {"", "", "an empty message"},
        {"\n", "", "a newline alone"},
        {"\n\n", "\n", "one of two"},
        {"text\n", "text", "at the end"},
        {"text\n\n", "text\n", "one of two"},
        {"a\nb", "a\nb", "inside it stays"},
        {"text\n ", "text\n ", "not at the very end"},
        {"text\r", "text\r", "another control character"},
    };
    for (const auto& row : rows) {
        KELP_LOG("%s", row.message);
        EXPECT_EQ(Only().buffer, std::string("\033[m") + row.kept + "\033[m\n") << row.why;
    }
}

TEST_F(LogTest, IsCutAt248Characters) {
    for (const std::size_t length : {246U, 247U, 248U, 249U, 250U, 1000U}) {
        std::string message(length, 'm');
        message[0] = 'A';
        KELP_LOG("%s", message.c_str());
        const LogLine logged = Only();
        EXPECT_EQ(logged.buffer, "\033[m" + message.substr(0, 248) + "\033[m\n") << length;
        EXPECT_LE(logged.buffer.size(), 255U);
    }
}

TEST_F(LogTest, IsCutBeforeItsNewlineIsLookedFor) {
    KELP_LOG("%s\n", std::string(247, 'm').c_str());
    EXPECT_EQ(Only().buffer, "\033[m" + std::string(247, 'm') + "\033[m\n") << "248 with the newline: it goes";
    KELP_LOG("%s\n", std::string(248, 'm').c_str());
    EXPECT_EQ(Only().buffer, "\033[m" + std::string(248, 'm') + "\033[m\n") << "the newline was cut off already";
    KELP_LOG("%s\nxyz", std::string(247, 'm').c_str());
    EXPECT_EQ(Only().buffer, "\033[m" + std::string(247, 'm') + "\033[m\n") << "the cut leaves a newline at the end";
}

TEST_F(LogTest, ShowsNothingOnStandardOutput) {
    const Ending ending = RunInChild([] { KELP_LOG("start"); });
    EXPECT_TRUE(ending.Completed());
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "");
}

TEST(Assertion, ThatHoldsDoesNothing) {
    FakePlatform::Get().Reset();
    EXPECT_EQ(checks::Checked(6), 6);
    EXPECT_TRUE(FakePlatform::Get().Lines().empty());
    EXPECT_EQ(FakePlatform::Get().Backtraces(), 0);
}

TEST(Assertion, EvaluatesItsConditionOnce) {
    int evaluations = 0;
    KELP_ASSERT(++evaluations == 1, "never shown");
    EXPECT_EQ(evaluations, 1);
}

TEST(Assertion, ThatFailsLogsShowsAndAborts) {
    const Ending ending = RunInChild([] { (void)checks::Checked(7); });
    EXPECT_TRUE(DiesByAssertion(ending, {"value != 7", "value is 7", "DiagnosticsTest", "int checks::Checked(int)"}));
    EXPECT_EQ(ending.out, "[MM_FLIST  ] \033[m### assert condition : value != 7\033[m\n"
                          "[MM_FLIST  ] \033[m### assert info : value is 7\033[m\n");
}

TEST(Assertion, LogsItsOwnTextAndFailsWithAnother) {
    EXPECT_TRUE(DiesByAssertion(RunInChild([] { checks::NamedOtherwise(nullptr); }),
                                {"pointer != NULL", "no pointer", "DiagnosticsTest",
                                 "void checks::NamedOtherwise(const void*)", "pointer != nil"}));
}

TEST(Assertion, CutsALongInfoWithItsLine) {
    const std::string name(400, 'n');
    const Ending ending = RunInChild([&] { KELP_ASSERT(name.empty(), "name %s", name.c_str()); });
    ASSERT_EQ(ending.signal, SIGABRT);
    const std::vector<LogLine> lines = dcftest::LoggedLines(ending);
    ASSERT_EQ(lines.size(), 2U);
    const std::string cut = ("### assert info : name " + name).substr(0, 248);
    EXPECT_EQ(lines[1].buffer, dcftest::LogBuffer(cut));
    EXPECT_EQ(ending.out.substr(ending.out.size() - dcftest::PrintedLine(cut).size()), dcftest::PrintedLine(cut));
}

} // namespace
