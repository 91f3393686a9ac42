// vell::ScopedLock over a POSIX mutex. A mutex that cannot be taken or given back is a programming error: going on
// without it would be a data race, so the process ends with one line that says why.
#include "vell-util.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Line.h"

namespace vell {

namespace {

void Require(const char* operation, int error) {
    if (error != 0) {
        host::Line line;
        line.Add("vell::ScopedLock: the mutex cannot be ").Add(operation).Add(": ").Add(std::strerror(error));
        (void)line.WriteTo(STDERR_FILENO); // the process ends in any case
        std::abort();
    }
}

} // namespace

ScopedLock::ScopedLock(pthread_mutex_t* mutex) : m_pMutex(mutex) {
    Require("locked", m_pMutex == nullptr ? EINVAL : ::pthread_mutex_lock(m_pMutex));
}

ScopedLock::~ScopedLock() {
    Require("unlocked", ::pthread_mutex_unlock(m_pMutex));
}

} // namespace vell
