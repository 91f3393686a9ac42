// The smallest platform layer: enough to list, protect and delete. Copy it for a new board and fill in what is marked
// with "board". What each function owes the library is in docs/porting.md. Any thread may call any of them.
#include <pthread.h>

#include <cstdarg>
#include <cstdio>

#include "device_property.h"
#include "dlog.h"
#include "pref.h"
#include "vell-util.h"

int __dlog_print(int /*logId*/, int /*priority*/, const char* tag, const char* format, ...) {
    char line[512];
    const int start = std::snprintf(line, sizeof line, "%s: ", tag);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + start, sizeof line - static_cast<unsigned>(start), format, arguments);
    va_end(arguments);
    // Board: its own log, which makes harmless what a card's names bring. One call for the whole line, so that lines of
    // two threads do not mix.
    return std::fputs(line, stderr);
}

long pref_get_long(int /*group*/, int /*key*/) {
    return 0; // Board: reads its parameter memory. Without it series numbering starts anew with each start.
}

int pref_set_long(int /*group*/, int /*key*/, long /*value*/) {
    return -1; // Board: stores the value, and gives 0 when it is durable. Here nothing was stored.
}

int device_set_property(int /*property*/, int /*value*/, int /*arg1*/, int /*arg2*/) {
    return 0; // Board: nothing, unless it has such a property.
}

void vell_print_backtrace(void) {
    // Board: the addresses of this thread's stack, to where its developers look.
}

namespace vell {

ScopedLock::ScopedLock(pthread_mutex_t* mutex) : m_pMutex(mutex) {
    pthread_mutex_lock(m_pMutex);
}

ScopedLock::~ScopedLock() {
    pthread_mutex_unlock(m_pMutex);
}

} // namespace vell
