// vell::ScopedLock: holds the mutex for its life, and ends the process rather than going on without it.
#include <gtest/gtest.h>
#include <pthread.h>
#include <vell-util.h>

#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include "ChildProcess.h"

using dcftest::Ending;
using dcftest::RunInChild;

#ifndef __has_feature
#define __has_feature(feature) 0 // clang alone has it
#endif
#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
#define BUILT_WITH_THREAD_SANITIZER true
#else
#define BUILT_WITH_THREAD_SANITIZER false
#endif

namespace {

constexpr bool kThreadSanitizer = BUILT_WITH_THREAD_SANITIZER;

// A thread other than the holder's tries the mutex.
int TryFromAnotherThread(pthread_mutex_t& mutex) {
    int result = 0;
    std::thread([&] {
        result = ::pthread_mutex_trylock(&mutex);
        if (result == 0) {
            ::pthread_mutex_unlock(&mutex);
        }
    }).join();
    return result;
}

TEST(ScopedLock, HoldsTheMutexFromConstructionToDestruction) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    {
        const vell::ScopedLock lock(&mutex);
        EXPECT_EQ(TryFromAnotherThread(mutex), EBUSY);
    }
    EXPECT_EQ(TryFromAnotherThread(mutex), 0);
}

TEST(ScopedLock, IsOnePointer) {
    EXPECT_EQ(sizeof(vell::ScopedLock), sizeof(void*)); // devices and the library must agree on it
}

TEST(ScopedLockConcurrency, LetsOneOfConcurrentThreadsInAtATime) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    int counter = 0; // plain on purpose
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                const vell::ScopedLock lock(&mutex);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 20000);
}

TEST(ScopedLock, AMutexThatCannotBeLockedEndsTheProcess) {
    const Ending ending = RunInChild([] {
        pthread_mutex_t mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
        const vell::ScopedLock first(&mutex);
        const vell::ScopedLock second(&mutex);
    });
    EXPECT_EQ(ending.signal, SIGABRT);
    EXPECT_EQ(ending.err, "vell::ScopedLock: the mutex cannot be locked: Resource deadlock avoided\n");
}

TEST(ScopedLock, AMutexThatIsMissingEndsTheProcess) {
    const Ending ending = RunInChild([] { const vell::ScopedLock lock(nullptr); });
    EXPECT_EQ(ending.signal, SIGABRT);
    EXPECT_EQ(ending.err, "vell::ScopedLock: the mutex cannot be locked: Invalid argument\n");
}

TEST(ScopedLock, AMutexThatSomebodyElseGaveBackEndsTheProcess) {
    if (kThreadSanitizer) {
        GTEST_SKIP() << "ThreadSanitizer takes this mistake for its own business and stops there";
    }
    const Ending ending = RunInChild([] {
        pthread_mutex_t mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
        const vell::ScopedLock lock(&mutex);
        ::pthread_mutex_unlock(&mutex);
    });
    EXPECT_EQ(ending.signal, SIGABRT);
    EXPECT_EQ(ending.err, "vell::ScopedLock: the mutex cannot be unlocked: Operation not permitted\n");
}

} // namespace
