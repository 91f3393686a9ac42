// Buffered writing; see the header.
#include "Output.h"

#include <langinfo.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>

namespace dcfctl {
namespace {

constexpr std::size_t kBufferSize = 1U << 16U;

bool WantsColour() {
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    const bool refused = noColour != nullptr && *noColour != '\0';
    return !refused && terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

/// Asks a locale object instead of setting the process's locale, on which nothing here is to depend.
bool SpeaksUtf8() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false;
    }
    const bool utf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
    freelocale(locale);
    return utf8;
}

} // namespace

Output::Output(int fd)
    : m_fd(fd), m_terminal(isatty(fd) != 0), m_colour(m_terminal && WantsColour()),
      m_asciiTerminal(m_terminal && !SpeaksUtf8()) {}

void Output::Write(std::string_view text) {
    if (m_error != 0) {
        return;
    }
    m_buffer += text;
    if (m_buffer.size() >= kBufferSize) {
        Flush();
    }
}

void Output::Flush() {
    std::string_view rest = m_buffer;
    while (!rest.empty() && m_error == 0) {
        const ssize_t written = write(m_fd, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd waiting = {m_fd, POLLOUT, 0};
            (void)poll(&waiting, 1, -1); // an interruption only makes the loop try again
        } else if (errno != EINTR) {
            m_error = errno;
        }
    }
    m_buffer.clear();
}

} // namespace dcfctl
