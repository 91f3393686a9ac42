// Standard streams and the last net; see the header.
#include "Streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "ExitCodes.h"

namespace {

constexpr int kFirstOwnDescriptor = 10;

constexpr char kLastLine[] =
    "dcfctl: error: the file list has ended on a broken condition and the work is not complete; "
    "set DCF_LOG to a file's path and run again to see which\n";

/// Where the last line goes when standard error has been silenced; -1 before.
int g_realError = -1;

/// What puts the terminal in order before the last line; null when nothing has to.
void (*volatile g_before)() = nullptr;

/// A closed stream must fail when it is written to, and must not be handed out again by open.
void OccupyIfClosed(int fd) {
    if (fcntl(fd, F_GETFD) >= 0) {
        return;
    }
    const int opened = open("/dev/null", O_RDONLY);
    if (opened >= 0 && opened != fd) {
        (void)dup2(opened, fd); // fails only for a descriptor that cannot be
        close(opened);
    }
}

void SendNowhere(int fd) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) {
        (void)dup2(nowhere, fd); // as above
        close(nowhere);
    }
}

bool LogGoesToStandardError() {
    const char* log = std::getenv("DCF_LOG");
    return log != nullptr && std::strcmp(log, "stderr") == 0;
}

extern "C" void EndIncomplete(int /*signal*/) {
    if (g_before != nullptr) {
        g_before();
    }
    [[maybe_unused]] const ssize_t written = // there is nowhere left to tell of a failure
        write(g_realError < 0 ? STDERR_FILENO : g_realError, kLastLine, sizeof kLastLine - 1);
    _exit(static_cast<int>(dcfctl::ExitCode::kIncomplete));
}

} // namespace

/// Replaces the platform's function: the library calls it first when an assertion fails. A person is told in one line
/// (see CatchAborts), so what comes after this call is kept from standard error unless the log was asked for there.
extern "C" __attribute__((visibility("default"))) void vell_print_backtrace(void) {
    if (!LogGoesToStandardError() && g_realError < 0) {
        g_realError = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
        SendNowhere(STDERR_FILENO);
    }
}

namespace dcfctl {

int SeparateOutput() {
    OccupyIfClosed(STDIN_FILENO);
    OccupyIfClosed(STDOUT_FILENO);
    OccupyIfClosed(STDERR_FILENO);
    const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
    if (copy < 0) {
        return STDOUT_FILENO;
    }
    SendNowhere(STDOUT_FILENO);
    return copy;
}

void Silence() {
    SendNowhere(STDOUT_FILENO);
    SendNowhere(STDERR_FILENO);
}

void BeforeLastLine(void (*action)()) {
    g_before = action;
}

void CatchAborts() {
    struct sigaction action = {};
    action.sa_handler = EndIncomplete;
    sigemptyset(&action.sa_mask);
    (void)sigaction(SIGABRT, &action, nullptr); // SIGABRT can always be caught
}

} // namespace dcfctl
