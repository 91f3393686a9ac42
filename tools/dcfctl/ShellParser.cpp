// The words of a line; see the header.
#include "ShellParser.h"

#include <algorithm>
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

/// Reads the escapes of a piece of a word and adds it to the word. @return the reason when that cannot be done.
std::string AddPiece(std::string& piece, Word& word) {
    const auto text = Unescaped(piece);
    if (!text.has_value()) {
        return "the backslash in " + Quoted(piece) + " begins no escape; write a backslash as \\\\";
    }
    word.text += *text;
    piece.clear();
    return "";
}

/// Cuts one word from the front of a text that begins with it. @return the reason when it is none.
std::string TakeWord(std::string_view& rest, Word& word) {
    std::string piece; // up to the next quote, which no escape reaches across
    std::string badEscape;
    char quote = '\0';
    std::size_t at = 0;
    for (; at < rest.size(); ++at) {
        const char c = rest[at];
        const bool opens = quote == '\0' && IsQuote(c);
        if (c == '\\') {
            piece += rest.substr(at, 2); // an escape is read later; here it only must not end the word
            ++at;
        } else if (opens || (quote != '\0' && c == quote)) {
            quote = opens ? c : '\0';
            word.quoted = true;
            const std::string reason = AddPiece(piece, word);
            badEscape = badEscape.empty() ? reason : badEscape;
        } else if (quote == '\0' && IsBlank(c)) {
            break;
        } else {
            piece += c;
        }
    }
    rest.remove_prefix(std::min(at, rest.size()));
    if (quote != '\0') {
        return std::string("a quote ") + quote + " is not closed";
    }
    return badEscape.empty() ? AddPiece(piece, word) : badEscape;
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
        Word word;
        parsed.error = TakeWord(line, word);
        if (parsed.error.empty() && word.text.find('\0') != std::string::npos) {
            parsed.error = "a word cannot hold a NUL byte";
        }
        if (!parsed.error.empty()) {
            return parsed;
        }
        parsed.words.push_back(word);
    }
}

} // namespace dcfctl
