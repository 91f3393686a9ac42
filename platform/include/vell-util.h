/// @file
/// The platform's utility library: a backtrace for assertions and a scoped lock.
#ifndef VELL_UTIL_H
#define VELL_UTIL_H

#include <pthread.h>

extern "C" {

/// Prints the stack of the calling thread where the platform's developers look for it. Called once before an assertion
/// ends the process; must return.
void vell_print_backtrace(void);
}

namespace vell {

/// Holds a POSIX mutex from construction to destruction.
class __attribute__((visibility("default"))) ScopedLock {
public:
    /// Locks the mutex, and waits for it where another thread holds it.
    /// @param mutex the caller's; it must outlive this object and must not be held by the calling thread.
    explicit ScopedLock(pthread_mutex_t* mutex);
    /// Unlocks it.
    ~ScopedLock();
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    pthread_mutex_t* m_pMutex;
};

} // namespace vell

#endif
