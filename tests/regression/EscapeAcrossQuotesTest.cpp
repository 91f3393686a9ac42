// The story: the shell took the quotes out of a word before it read the escapes, so an escape could begin within quotes
// and end behind them: "\x4"1 was the letter A. A word now says no more than what stands between two quotes.
#include <gtest/gtest.h>

#include "ShellParser.h"

namespace {

using dcfctl::ParseLine;

TEST(EscapeAcrossQuotes, BeginsNoEscape) {
    for (const char* line : {"\"\\x4\"1", "\\x4\"1\"", "\\x\"41\"", "\\u{4\"1\"}", "'\\u{4'1}", "a \\x4'1' b"}) {
        const auto parsed = ParseLine(line);
        EXPECT_NE(parsed.error.find("begins no escape"), std::string::npos) << line << ": " << parsed.error;
    }
}

TEST(EscapeAcrossQuotes, PiecesOfAWordAreReadEachForItself) {
    const auto parsed = ParseLine("a\"\\x41 \"\\x42'\\x43'd\"\"");
    ASSERT_EQ(parsed.error, "");
    ASSERT_EQ(parsed.words.size(), 1U);
    EXPECT_EQ(parsed.words[0].text, "aA BCd");
    EXPECT_TRUE(parsed.words[0].quoted);
}

TEST(EscapeAcrossQuotes, AnOpenQuoteIsToldFirst) {
    EXPECT_EQ(ParseLine("\\q\"abc").error, "a quote \" is not closed");
}

} // namespace
