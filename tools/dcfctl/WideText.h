// Text in columns, as a terminal shows it: names may hold characters that take two columns, or none. Depends on the
// locale of the process (LC_CTYPE), which the browser sets. Pure otherwise.
#ifndef DCFCTL_WIDE_TEXT_H
#define DCFCTL_WIDE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dcfctl {

/// Escaped text (see Text.h) as wide characters; in a locale that is not UTF-8 in ASCII alone.
[[nodiscard]] std::wstring Wide(std::string_view escaped);

/// Columns that a text takes.
[[nodiscard]] std::size_t Columns(const std::wstring& text);

/// The text in exactly so many columns: filled with blanks, or cut and ended with "~".
[[nodiscard]] std::wstring Fitted(const std::wstring& text, std::size_t columns);

/// The same for a path, whose end says more than its beginning: cut there.
[[nodiscard]] std::wstring FittedAtEnd(const std::wstring& text, std::size_t columns);

/// The text in lines of at most so many columns, broken at blanks where there are any.
[[nodiscard]] std::vector<std::wstring> Wrapped(const std::wstring& text, std::size_t columns);

} // namespace dcfctl

#endif
