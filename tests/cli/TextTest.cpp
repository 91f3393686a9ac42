// The tool's text functions and the words of the shell, in tables.
#include <gtest/gtest.h>

#include <string>

#include "ShellParser.h"
#include "Text.h"

using namespace std::string_literals;

namespace {

using namespace dcfctl;

TEST(Escaped, ShowsWhatCannotBeSeen) {
    const struct {
        std::string bytes;
        std::string shown;
        const char* why;
    } rows[] = {
        {"", "", "nothing"},
        {"KVR_0001.JPG", "KVR_0001.JPG", "a plain name"},
        {"\\", "\\\\", "a backslash, so that the text can be turned back"},
        {"\n\t\r", "\\n\\t\\x0d", "control characters"},
        {"\x1b[31m", "\\x1b[31m", "a terminal's commands"},
        {"\x7f", "\\x7f", "delete"},
        {"\0"s, "\\x00", "NUL"},
        {"\xc3\xa4\xe2\x82\xac\xf0\x9f\x93\xb7", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x93\xb7", "valid UTF-8 of each length"},
        {"\xff\xfe", "\\xff\\xfe", "never part of UTF-8"},
        {"\xc3", "\\xc3", "cut short"},
        {"\xe2\x82", "\\xe2\\x82", "cut short"},
        {"\xc3(", "\\xc3(", "cut short within a text"},
        {"\x80", "\\x80", "a continuation alone"},
        {"\xc0\xaf", "\\xc0\\xaf", "overlong"},
        {"\xe0\x80\xaf", "\\xe0\\x80\\xaf", "overlong"},
        {"\xf0\x80\x80\xaf", "\\xf0\\x80\\x80\\xaf", "overlong"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80", "a surrogate"},
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", "beyond U+10FFFF"},
        {"\xf5\x80\x80\x80", "\\xf5\\x80\\x80\\x80", "beyond U+10FFFF"},
        {"\xc2\x9b", "\\u{9b}", "a control character above ASCII"},
        {"\xe2\x80\xae", "\\u{202e}", "right-to-left override"},
        {"\xe2\x81\xa6", "\\u{2066}", "an isolate"},
        {"\xe2\x80\x8b", "\\u{200b}", "a blank without width"},
        {"\xe2\x80\xa8", "\\u{2028}", "a line separator"},
        {"\xef\xbb\xbf", "\\u{feff}", "a byte order mark"},
        {"\xf3\xa0\x81\x81", "\\u{e0041}", "a tag character"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Escaped(row.bytes), row.shown) << row.why;
        EXPECT_EQ(Unescaped(Escaped(row.bytes)), row.bytes) << row.why;
        EXPECT_EQ(Unescaped(AsciiOnly(Escaped(row.bytes))), row.bytes) << row.why;
    }
}

TEST(Escaped, CanAlwaysBeTurnedBackAndIsValidUtf8) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second), '\x80', 'x'};
            const std::string shown = Escaped(bytes);
            ASSERT_TRUE(IsUtf8(shown)) << first << " " << second;
            ASSERT_EQ(Unescaped(shown), bytes) << first << " " << second;
            ASSERT_TRUE(IsUtf8(Utf8Replaced(bytes))) << first << " " << second;
        }
    }
}

TEST(AsciiOnlyText, HasNoByteAbove) {
    EXPECT_EQ(AsciiOnly("a\xc3\xa4~\\n"), "a\\xc3\\xa4~\\n");
}

TEST(Unescaped, RefusesWhatIsNoEscape) {
    for (const char* text : {"\\", "\\q", "\\x", "\\x1", "\\xgg", "\\x-1", "\\u", "\\u{", "\\u{}", "\\u{110000}",
                             "\\u{12", "\\u{-1}", "a\\"}) {
        EXPECT_EQ(Unescaped(text), std::nullopt) << text;
    }
    EXPECT_EQ(Unescaped("\\\"\\'\\ \\x41\\u{e4}"), "\"' A\xc3\xa4");
}

TEST(Utf8ReplacedText, KeepsWhatIsValid) {
    EXPECT_EQ(Utf8Replaced("a\xff\xc3\xa4\xc3"), "a\xef\xbf\xbd\xc3\xa4\xef\xbf\xbd");
}

TEST(Base64Text, IsTheStandardOne) {
    const struct {
        std::string bytes;
        std::string text;
    } rows[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"foobar", "Zm9vYmFy"},
        {"\xff\xfe\xfd", "//79"},
        {"\0"s, "AA=="},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Base64(row.bytes), row.text);
    }
}

TEST(UtcTimeText, IsTheSameEverywhere) {
    EXPECT_EQ(UtcTime(0), "") << "unknown";
    EXPECT_EQ(UtcTime(1), "1970-01-01T00:00:01Z");
    EXPECT_EQ(UtcTime(1709210096), "2024-02-29T12:34:56Z");
    EXPECT_EQ(UtcTime(4294967295U), "2106-02-07T06:28:15Z");
}

TEST(WholeNumberText, IsANumberAndNothingElse) {
    const struct {
        const char* text;
        std::optional<long long> number;
    } rows[] = {
        {"0", 0},
        {"-0", 0},
        {"12", 12},
        {"-12", -12},
        {"+12", 12},
        {"007", 7},
        {"", std::nullopt},
        {"+", std::nullopt},
        {"-", std::nullopt},
        {"+-1", std::nullopt},
        {"1 ", std::nullopt},
        {" 1", std::nullopt},
        {"1.0", std::nullopt},
        {"0x1", std::nullopt},
        {"1e3", std::nullopt},
        {"9223372036854775807", 9223372036854775807LL},
        {"9223372036854775808", std::nullopt},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(WholeNumber(row.text), row.number) << row.text;
    }
}

TEST(ShellLine, FallsIntoWords) {
    const struct {
        std::string line;
        std::vector<std::string> words;
        const char* why;
    } rows[] = {
        {"", {}, "blank"},
        {"  \t\r", {}, "blank"},
        {"# GetCount", {}, "a comment"},
        {"  #", {}, "a comment"},
        {"GetCount", {"GetCount"}, "one word"},
        {"  GetAt \t 3  ", {"GetAt", "3"}, "blanks around"},
        {"GetAt 3 # three", {"GetAt", "3"}, "a comment behind"},
        {"GetAt 3#", {"GetAt", "3#"}, "a sign within a word opens none"},
        {"\"a b\" 'c d'", {"a b", "c d"}, "quotes"},
        {"a\"b c\"d", {"ab cd"}, "quotes within a word"},
        {"\"it's\" 'a \"b\"'", {"it's", "a \"b\""}, "the other quote is a character"},
        {"''", {""}, "an empty word"},
        {"a\\ b \\# \\\"", {"a b", "#", "\""}, "escapes"},
        {"\"\\\"\" '\\''", {"\"", "'"}, "escaped quotes"},
        {"\\x41\\n", {"A\n"}, "bytes"},
    };
    for (const auto& row : rows) {
        const ParsedLine parsed = ParseLine(row.line);
        std::vector<std::string> words;
        for (const Word& word : parsed.words) {
            words.push_back(word.text);
        }
        EXPECT_EQ(parsed.error, "") << row.why;
        EXPECT_EQ(words, row.words) << row.why;
    }
}

TEST(ShellLine, RemembersWhatWasQuoted) {
    const ParsedLine parsed = ParseLine("null 'null' nu\"ll\"");
    ASSERT_EQ(parsed.words.size(), 3U);
    EXPECT_FALSE(parsed.words[0].quoted);
    EXPECT_TRUE(parsed.words[1].quoted);
    EXPECT_TRUE(parsed.words[2].quoted);
}

TEST(ShellLine, TellsWhyItCannotBeRead) {
    EXPECT_EQ(ParseLine("a \"b").error, "a quote \" is not closed");
    EXPECT_EQ(ParseLine("a 'b").error, "a quote ' is not closed");
    EXPECT_EQ(ParseLine("a \"b\\\"").error, "a quote \" is not closed");
    EXPECT_EQ(ParseLine("a\\").error, "the backslash in 'a\\\\' begins no escape; write a backslash as \\\\");
    EXPECT_EQ(ParseLine("\\x00").error, "a word cannot hold a NUL byte");
}

} // namespace
