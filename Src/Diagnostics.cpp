// Log lines and assertions; see the header.
#include "Diagnostics.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

// Assertions stay on under NDEBUG, which hides the declaration of the system's assertion failure.
#undef NDEBUG
#include <cassert>

#include "dlog.h"
#include "vell-util.h"

namespace kelp {
namespace {

constexpr int kLogApplications = 3;
constexpr int kPriorityInformation = 4;
constexpr const char* kTag = "MM_FLIST";
constexpr char kReset[] = "\033[m";
constexpr char kEnd[] = "\033[m\n";
constexpr std::size_t kLineSize = 256;
constexpr std::size_t kMaxMessage = 248;

/// A log line's buffer: the reset sequence, the message, the reset sequence and a newline.
class LogLine {
public:
    __attribute__((format(printf, 2, 0))) LogLine(const char* format, va_list arguments) {
        std::memcpy(m_text, kReset, kResetLength);
        char* message = m_text + kResetLength;
        message[0] = '\0';
        (void)std::vsnprintf(message, kMaxMessage + 1, format, arguments); // a failed conversion leaves what was built
        std::size_t length = std::strlen(message);
        if (length > 0 && message[length - 1] == '\n') {
            --length;
        }
        std::memcpy(message + length, kEnd, sizeof kEnd);
    }

    [[nodiscard]] const char* Text() const {
        return m_text;
    }

private:
    static constexpr std::size_t kResetLength = sizeof kReset - 1;
    char m_text[kLineSize];
    static_assert(kResetLength + kMaxMessage + sizeof kEnd == kLineSize);
};

void Send(const SourcePlace& place, const LogLine& line) {
    (void)__dlog_print(kLogApplications, kPriorityInformation, kTag, "%s: %s(%d) > %s", place.unit, place.function,
                       place.line, line.Text()); // a log that fails must not stop the camera
}

__attribute__((format(printf, 2, 3))) void SendAndShow(const SourcePlace& place, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const LogLine line(format, arguments);
    va_end(arguments);
    Send(place, line);
    std::printf("[%-10s] %s", kTag, line.Text());
}

} // namespace

void Log(const SourcePlace& place, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const LogLine line(format, arguments);
    va_end(arguments);
    Send(place, line);
}

void FailAssertion(const SourcePlace& place, const char* logged, const char* failed, const char* info, ...) {
    vell_print_backtrace();
    SendAndShow(place, "### assert condition : %s", logged);

    char text[kMaxMessage + 1] = "";
    va_list arguments;
    va_start(arguments, info);
    (void)std::vsnprintf(text, sizeof text, info, arguments); // cut with the line anyway
    va_end(arguments);
    SendAndShow(place, "### assert info : %s", text);

    std::fflush(stdout); // abort does not, and the lines must survive in a pipe
    __assert_fail(failed, place.path, static_cast<unsigned>(place.line), place.signature);
}

} // namespace kelp
