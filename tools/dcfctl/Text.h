// Text as people and programs may see it. Names on a card are bytes that anybody may have chosen, so nothing of them
// reaches a terminal or a JSON document unchecked. Pure functions.
#ifndef DCFCTL_TEXT_H
#define DCFCTL_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dcfctl {

[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// Shows control characters, invalid UTF-8, invisible and direction-changing characters as \n, \t, \xNN or \u{NNNN},
/// and a backslash as two, so that the text can be turned back (see Unescaped).
[[nodiscard]] std::string Escaped(std::string_view bytes);

/// An escaped name in single quotes, for messages.
[[nodiscard]] std::string Quoted(std::string_view bytes);

/// Shows every byte above 0x7e of an escaped text as \xNN, for a terminal that does not speak UTF-8.
[[nodiscard]] std::string AsciiOnly(std::string_view escaped);

/// Turns back what Escaped and AsciiOnly wrote. @return nothing for a text that they cannot have written.
[[nodiscard]] std::optional<std::string> Unescaped(std::string_view text);

/// Puts U+FFFD in the place of every byte that is not part of valid UTF-8.
[[nodiscard]] std::string Utf8Replaced(std::string_view bytes);

[[nodiscard]] std::string Base64(std::string_view bytes);

/// "2024-05-01T12:00:00Z" for seconds since 1970; empty for 0, which means unknown.
[[nodiscard]] std::string UtcTime(std::uint32_t seconds);

/// A whole number, optionally signed, that is the whole text. @return nothing for anything else.
[[nodiscard]] std::optional<long long> WholeNumber(std::string_view text);

/// In ASCII alone, as names on a card are compared: no locale decides.
[[nodiscard]] char UpperCase(char c);
[[nodiscard]] bool EqualNoCase(std::string_view a, std::string_view b);

} // namespace dcfctl

#endif
