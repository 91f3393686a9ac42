// __dlog_print for a workstation: silent unless the environment variable DCF_LOG names standard error, syslog or a
// file. The variable is read once, by the first call. Any thread and any number of processes may log at once: each
// line is one write, and files are opened for appending.
#include "dlog.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "Line.h"

namespace {

using host::Colours;
using host::Line;

struct Destination {
    enum class Kind { None, Descriptor, Syslog };
    Kind kind = Kind::None;
    int fd = -1;
    Colours colours = Colours::Drop;
};

// Text of a call: longer than any line that the library builds; Line bounds the whole.
constexpr std::size_t kMaxText = 4096;

// O_NONBLOCK while opening: a named pipe that nobody reads is an error, not a reason to wait. Not below 3: where a
// program has closed its standard streams, the log must not become one of them. A link is not followed: in a folder
// that others may write to it could name any file of the user's. Lines hold paths of pictures, so they are the user's
// alone.
int OpenForAppending(const char* path) {
    const int opened =
        ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | O_NOFOLLOW, 0600);
    if (opened < 0) {
        return -1;
    }
    const int fd = ::fcntl(opened, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    (void)::close(opened); // nothing has been written through it
    if (fd < 0) {
        errno = error;
        return -1;
    }
    (void)::fcntl(fd, F_SETFL, O_APPEND); // cannot fail on a descriptor of our own; clears O_NONBLOCK
    return fd;
}

Destination Choose(const char* setting) {
    const std::string_view name = setting == nullptr ? "" : setting;
    Destination destination;
    if (name == "syslog") {
        destination.kind = Destination::Kind::Syslog;
    } else if (name == "stderr") {
        destination = {Destination::Kind::Descriptor, STDERR_FILENO,
                       ::isatty(STDERR_FILENO) == 1 ? Colours::Keep : Colours::Drop};
    } else if (!name.empty()) {
        const int fd = OpenForAppending(setting);
        if (fd >= 0) {
            destination = {Destination::Kind::Descriptor, fd, Colours::Drop};
        } else {
            const char* cause = errno == ELOOP ? "it is a link" : std::strerror(errno);
            Line complaint;
            complaint.Add("dcfplatform-host: no log: \"").Add(name).Add("\", named by DCF_LOG, cannot be opened: ");
            (void)complaint.Add(cause).WriteTo(STDERR_FILENO); // there is nowhere else to say it
        }
    }
    return destination;
}

const Destination& TheDestination() {
    // secure_getenv: a program that runs with more rights than its caller must not append where the caller says.
    static const Destination destination = Choose(::secure_getenv("DCF_LOG"));
    return destination;
}

// "2026-03-05T09:08:07.123456Z 4711/4712 3/4 ": the time (UTC), process and thread, log buffer and priority.
void AddOrigin(Line& line, int logId, int priority) {
    timespec now{};
    (void)::clock_gettime(CLOCK_REALTIME, &now); // cannot fail for this clock
    tm utc{};
    (void)::gmtime_r(&now.tv_sec, &utc); // a year beyond int is out of this program's reach
    std::array<char, 32> time{};
    (void)std::strftime(time.data(), time.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    line.Format("%s.%06ldZ %ld/%ld %d/%d ", time.data(), now.tv_nsec / 1000, static_cast<long>(::getpid()),
                static_cast<long>(::gettid()), logId, priority);
}

int Send(const Destination& destination, int logId, int priority, std::string_view tag, std::string_view text) {
    Line line;
    if (destination.kind == Destination::Kind::Syslog) {
        // The service adds time and program; every line is an information, which is the only priority there is.
        ::syslog(LOG_USER | LOG_INFO, "%s", line.Add(tag).Add(": ").Add(text).Text());
        return static_cast<int>(std::strlen(line.Text()));
    }
    AddOrigin(line, logId, priority);
    return line.Add(tag).Add(": ").Add(text, destination.colours).WriteTo(destination.fd);
}

int SendText(int logId, int priority, const char* tag, std::string_view text) {
    if (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    return Send(TheDestination(), logId, priority, tag == nullptr ? "-" : tag, text);
}

} // namespace

int __dlog_print(int logId, int priority, const char* tag, const char* format, ...) {
    const int errorOfCaller = errno;
    int result = 0;
    if (TheDestination().kind != Destination::Kind::None) {
        std::array<char, kMaxText> text;
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
        va_end(arguments);
        result = length < 0 ? -1 : SendText(logId, priority, tag, text.data());
    }
    errno = errorOfCaller;
    return result;
}
