// Columns; see the header.
#include "WideText.h"

#include <langinfo.h>
#include <wchar.h> // NOLINT(modernize-deprecated-headers): wcwidth is not in <cwchar>

#include <cstring>

#include "Text.h"

namespace dcfctl {
namespace {

constexpr wchar_t kCut = L'~';

std::size_t ColumnsOf(wchar_t c) {
    const int columns = wcwidth(c);
    return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

/// As many characters from the front as fit.
std::wstring Front(const std::wstring& text, std::size_t columns) {
    std::size_t used = 0;
    std::size_t end = 0;
    while (end < text.size() && used + ColumnsOf(text[end]) <= columns) {
        used += ColumnsOf(text[end]);
        ++end;
    }
    return text.substr(0, end);
}

std::wstring Back(const std::wstring& text, std::size_t columns) {
    std::size_t used = 0;
    std::size_t begin = text.size();
    while (begin > 0 && used + ColumnsOf(text[begin - 1]) <= columns) {
        used += ColumnsOf(text[begin - 1]);
        --begin;
    }
    return text.substr(begin);
}

std::wstring Filled(std::wstring text, std::size_t columns) {
    const std::size_t used = Columns(text);
    text.append(columns > used ? columns - used : 0, L' ');
    return text;
}

} // namespace

std::wstring Wide(std::string_view escaped) {
    const bool utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    const std::string bytes = utf8 ? std::string(escaped) : AsciiOnly(escaped);
    std::wstring text;
    std::mbstate_t state = {};
    for (std::size_t at = 0; at < bytes.size();) {
        wchar_t c = 0;
        const std::size_t length = std::mbrtowc(&c, &bytes[at], bytes.size() - at, &state);
        if (length == 0 || length > bytes.size()) { // an end, an error: never in an escaped text
            state = {};
            c = L'?';
        }
        // A character that this system cannot measure is not sent: it might be anything to the terminal.
        text += wcwidth(c) < 0 ? L'?' : c;
        at += length == 0 || length > bytes.size() ? 1 : length;
    }
    return text;
}

std::size_t Columns(const std::wstring& text) {
    std::size_t columns = 0;
    for (const wchar_t c : text) {
        columns += ColumnsOf(c);
    }
    return columns;
}

std::wstring Fitted(const std::wstring& text, std::size_t columns) {
    if (Columns(text) <= columns) {
        return Filled(text, columns);
    }
    return columns == 0 ? std::wstring() : Filled(Front(text, columns - 1), columns - 1) + kCut;
}

std::wstring FittedAtEnd(const std::wstring& text, std::size_t columns) {
    if (Columns(text) <= columns) {
        return Filled(text, columns);
    }
    return columns == 0 ? std::wstring() : Filled(kCut + Back(text, columns - 1), columns);
}

std::vector<std::wstring> Wrapped(const std::wstring& text, std::size_t columns) {
    std::vector<std::wstring> lines;
    std::wstring rest = text;
    while (!rest.empty() && columns > 1) {
        std::wstring line = Front(rest, columns);
        if (line.size() < rest.size() && rest[line.size()] != L' ') {
            const std::size_t blank = line.rfind(L' ');
            line = blank == std::wstring::npos || blank == 0 ? line : line.substr(0, blank);
        }
        const std::size_t next = rest.find_first_not_of(L' ', line.size());
        rest = next == std::wstring::npos ? std::wstring() : rest.substr(next);
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace dcfctl
