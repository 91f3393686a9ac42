// A program that defines a platform function itself replaces it for everybody, the host layer included.
#include <device_property.h>
#include <dlog.h>
#include <gtest/gtest.h>
#include <pref.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "ChildProcess.h"

namespace {

std::vector<std::string> g_lines;

} // namespace

int __dlog_print(int logId, int priority, const char* tag, const char* format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    g_lines.push_back(std::to_string(logId) + " " + std::to_string(priority) + " " + tag + " " + text);
    return 0;
}

long pref_get_long(int group, int key) {
    return group * 1000L + key;
}

namespace {

TEST(ReplacedFunctions, ThePropertyIsAcceptedAndNotedInTheProgramsOwnLog) {
    g_lines.clear();
    EXPECT_EQ(device_set_property(17, 8, 0, 0), 0);
    EXPECT_EQ(g_lines, std::vector<std::string>{"3 4 DCF_HOST device_set_property(17, 8, 0, 0)"});
}

TEST(ReplacedFunctions, OneReplacedPreferenceFunctionLeavesTheOtherWorking) {
    const dcftest::Ending ending = dcftest::RunInChild([] {
        ::setenv("DCF_PREFERENCES", "/proc/no/place", 1);
        EXPECT_EQ(pref_get_long(3, 512), 3512);
        EXPECT_EQ(pref_set_long(3, 512, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

} // namespace
