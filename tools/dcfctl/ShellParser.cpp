// The words of a line; see the header.
#include "ShellParser.h"

#include <cstddef>

#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

bool IsBlank(char c) {
    return kBlanks.find(c) != std::string_view::npos;
}

bool IsQuote(char c) {
    return c == '"' || c == '\'';
}

/// Cuts one word from the front of a text that begins with it. @return the reason when it has no end.
std::string TakeWord(std::string_view& rest, std::string& raw, bool& quoted) {
    char quote = '\0';
    std::size_t at = 0;
    for (; at < rest.size(); ++at) {
        const char c = rest[at];
        if (c == '\\') {
            raw += rest.substr(at, 2); // an escape is read later; here it only must not end the word
            ++at;
        } else if (quote != '\0') {
            if (c == quote) {
                quote = '\0';
            } else {
                raw += c;
            }
        } else if (IsQuote(c)) {
            quote = c;
            quoted = true;
        } else if (IsBlank(c)) {
            break;
        } else {
            raw += c;
        }
    }
    rest.remove_prefix(std::min(at, rest.size()));
    return quote == '\0' ? "" : std::string("a quote ") + quote + " is not closed";
}

} // namespace

ParsedLine ParseLine(std::string_view line) {
    ParsedLine parsed;
    while (true) {
        const std::size_t start = line.find_first_not_of(kBlanks);
        if (start == std::string_view::npos || line[start] == '#') {
            return parsed;
        }
        line.remove_prefix(start);
        std::string raw;
        Word word;
        parsed.error = TakeWord(line, raw, word.quoted);
        if (!parsed.error.empty()) {
            return parsed;
        }
        const auto text = Unescaped(raw);
        if (!text.has_value()) {
            parsed.error = "the backslash in " + Quoted(raw) + " begins no escape; write a backslash as \\\\";
            return parsed;
        }
        if (text->find('\0') != std::string::npos) {
            parsed.error = "a word cannot hold a NUL byte";
            return parsed;
        }
        word.text = *text;
        parsed.words.push_back(word);
    }
}

} // namespace dcfctl
