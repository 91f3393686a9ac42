// Rehearsing in a child process; see the header.
#include "Rehearsal.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "Streams.h"

namespace dcfctl {
namespace {

constexpr int kChildThrew = 77; // unlike the 1 with which a sanitizer ends a program

[[noreturn]] void RunChild(const std::function<void()>& operation) {
    std::signal(SIGABRT, SIG_DFL);
    const rlimit none = {0, 0};
    (void)setrlimit(RLIMIT_CORE, &none);             // a core file more or less changes no result
    (void)prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);        // likewise, where a core pattern names a program
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0); // no child outlives an interrupted tool
    Silence();
    try {
        operation();
    } catch (...) {
        _exit(kChildThrew);
    }
    _exit(0);
}

} // namespace

Rehearsed Rehearse(const std::function<void()>& operation) {
    const pid_t child = fork();
    if (child == 0) {
        RunChild(operation);
    }
    if (child < 0) {
        return Rehearsed::kNotTried;
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return Rehearsed::kNotTried;
        }
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        return Rehearsed::kFine;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == kChildThrew ? Rehearsed::kThrew : Rehearsed::kFatal;
}

} // namespace dcfctl
