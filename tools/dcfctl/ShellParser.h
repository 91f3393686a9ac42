// Takes a line of the shell apart. Pure functions.
#ifndef DCFCTL_SHELL_PARSER_H
#define DCFCTL_SHELL_PARSER_H

#include <string>
#include <string_view>
#include <vector>

namespace dcfctl {

struct Word {
    std::string text;
    bool quoted = false; ///< So that "null" in quotes is a text like any other.
};

struct ParsedLine {
    std::vector<Word> words; ///< None for a blank line or a comment.
    std::string error;       ///< Why the line cannot be understood; empty when it can.
};

/// Words stand between blanks; quotes, single or double, hold blanks together; a word that begins with '#' opens a
/// comment. A backslash escapes in and outside of quotes, in the forms in which names are shown: \n, \t, \xNN,
/// \u{NNNN}, \\, \", \', \# and a blank.
[[nodiscard]] ParsedLine ParseLine(std::string_view line);

} // namespace dcfctl

#endif
