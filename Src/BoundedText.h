// Bounded text: the one composer of paths and names, and the reader of number fields. Pure; any thread.
#ifndef BOUNDED_TEXT_H
#define BOUNDED_TEXT_H

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace kelp {

/// Formats into a buffer of size bytes, cut to fit and always terminated.
__attribute__((format(printf, 3, 4))) inline void Compose(char* out, std::size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (std::vsnprintf(out, size, format, arguments) < 0 && size > 0) {
        out[0] = '\0';
    }
    va_end(arguments);
}

/// Puts texts one behind the other into a buffer of size bytes, cut to fit and always terminated. Paths are composed
/// with it for every file that is shown; the formatted way would take most of that time.
inline void Join(char* out, std::size_t size, std::initializer_list<const char*> texts) {
    if (size == 0) {
        return;
    }
    char* const last = out + size - 1;
    for (const char* text : texts) {
        const std::size_t length = strnlen(text, static_cast<std::size_t>(last - out));
        std::memcpy(out, text, length);
        out += length;
    }
    *out = '\0';
}

/// Copies a text into a buffer, cut to fit; the rest of the buffer is zeroed. The text may be the buffer's own.
template <std::size_t Size>
void CopyText(char (&out)[Size], const char* text) {
    const std::size_t length = strnlen(text, Size - 1);
    std::memmove(out, text, length);
    std::memset(out + length, 0, Size - length);
}

/// Copies a text field whole: up to Size characters, which leaves no terminator in a full field; the rest is zeroed.
template <std::size_t Size>
void CopyField(char (&out)[Size], const char (&field)[Size]) {
    const std::size_t length = strnlen(field, Size);
    std::memcpy(out, field, length);
    std::memset(out + length, 0, Size - length);
}

/// The decimal number in the first Width characters of a text, read the standard way (blanks and a sign may stand
/// before it, anything after it is ignored); 0 where there is none.
template <std::size_t Width>
int ReadNumber(const char* text) {
    int number = 0; // digits alone, as nearly every name has them, need no library function
    for (std::size_t i = 0; i < Width; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            char field[Width + 1];
            CopyText(field, text);
            return static_cast<int>(std::strtol(field, nullptr, 10));
        }
        number = number * 10 + (text[i] - '0');
    }
    return number;
}

/// The rest of a text from an offset on, empty where the text is shorter.
inline const char* From(const char* text, std::size_t offset) {
    return text + strnlen(text, offset);
}

/// Whether a text begins with another.
inline bool StartsWith(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

} // namespace kelp

#endif
