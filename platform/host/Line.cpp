// Lines of text; see the header.
#include "Line.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace host {

namespace {

constexpr char kEscape = '\033';

bool IsBetween(char character, char first, char last) {
    return character >= first && character <= last;
}

// Length of the control sequence that the text begins with: ESC, '[', parameters, intermediates, one final character.
// 0 when there is none or it is not complete.
std::size_t SequenceLength(std::string_view text) {
    if (text.size() < 3 || text[0] != kEscape || text[1] != '[') {
        return 0;
    }
    std::size_t at = 2;
    while (at < text.size() && IsBetween(text[at], ' ', '?')) {
        ++at;
    }
    return at < text.size() && IsBetween(text[at], '@', '~') ? at + 1 : 0;
}

bool SetsColours(std::string_view sequence) {
    const std::string_view parameters = sequence.substr(2, sequence.size() - 3);
    return sequence.back() == 'm' && std::all_of(parameters.begin(), parameters.end(),
                                                 [](char character) { return IsBetween(character, '0', ';'); });
}

bool IsControl(char character) {
    return (IsBetween(character, '\0', '\037') && character != '\t') || character == '\177';
}

} // namespace

void Line::Append(std::string_view piece) {
    if (m_full) {
        return;
    }
    if (m_size + piece.size() > kRoom) {
        m_full = true;
        piece = kCut;
    }
    std::memcpy(m_text.data() + m_size, piece.data(), piece.size());
    m_size += piece.size();
}

Line& Line::Add(std::string_view text, Colours colours) {
    static constexpr char kDigits[] = "0123456789abcdef";
    while (!text.empty() && !m_full) {
        const std::string_view sequence = text.substr(0, SequenceLength(text));
        const char first = text.front();
        if (!sequence.empty()) {
            if (colours == Colours::Keep && SetsColours(sequence)) {
                Append(sequence);
            }
        } else if (IsControl(first)) {
            const char visible[] = {'\\', 'x', kDigits[first >> 4], kDigits[first & 0xf]};
            Append({visible, sizeof visible});
        } else {
            Append(text.substr(0, 1));
        }
        text.remove_prefix(std::max<std::size_t>(sequence.size(), 1));
    }
    return *this;
}

Line& Line::Format(const char* format, ...) {
    std::array<char, 128> text{};
    va_list arguments;
    va_start(arguments, format);
    (void)std::vsnprintf(text.data(), text.size(), format, arguments); // a failed conversion leaves what was built
    va_end(arguments);
    return Add(text.data());
}

const char* Line::Text() {
    m_text[m_size] = '\0';
    return m_text.data();
}

int Line::WriteTo(int fd) {
    m_text[m_size] = '\n';
    const std::size_t size = m_size + 1;
    for (;;) {
        const ssize_t written = ::write(fd, m_text.data(), size);
        if (written >= 0) {
            // What a full disk cut off is not sent after: it would stand in the middle of somebody else's line.
            return static_cast<std::size_t>(written) == size ? static_cast<int>(written) : -1;
        }
        if (errno == EAGAIN) {
            // Another owner of the stream has made it non-blocking; the line is not to be lost for that.
            pollfd writable{fd, POLLOUT, 0};
            (void)::poll(&writable, 1, -1);
        } else if (errno != EINTR) {
            return -1;
        }
    }
}

} // namespace host
