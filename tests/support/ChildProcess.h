// ChildProcess: runs a piece of a test in a forked child and brings back how it ended: status, both outputs, and the
// events that the fakes report, in order. For assertion deaths, power cuts, private mounts and process-wide settings.
#ifndef TESTS_SUPPORT_CHILD_PROCESS_H
#define TESTS_SUPPORT_CHILD_PROCESS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace dcftest {

/// What a fake reported: its fields (the first is the kind), and how much had been printed to standard output by then.
struct ChildEvent {
    std::vector<std::string> fields;
    std::size_t printed = 0; ///< Bytes, the ones still in the stream's buffer included.
};

struct Ending {
    bool refused = false; ///< The piece never ran: the system does not allow what it needs (see PrivateMount.h).
    int signal = 0;       ///< The signal that ended the child, 0 if it exited.
    int status = 0;       ///< Exit status: 0 when the piece ran to its end without a failed expectation.
    std::string out;
    std::string err;
    std::vector<ChildEvent> events;

    bool Completed() const {
        return !refused && signal == 0 && status == 0;
    }
    /// Both outputs and the way it ended, for a failure message.
    std::string Describe() const;
};

/// Exit statuses of a child that did not complete.
inline constexpr int kChildFailedExpectation = 70;
inline constexpr int kChildThrew = 71;
inline constexpr int kChildRefused = 72;

/// ThreadSanitizer's abort flushes the streams, so a missing flush cannot be seen under it.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool kAbortFlushes = true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
inline constexpr bool kAbortFlushes = true;
#else
inline constexpr bool kAbortFlushes = false;
#endif
#else
inline constexpr bool kAbortFlushes = false;
#endif

/// Forks, runs the piece and exits without destructors. The child's standard output is fully buffered, so what the
/// piece does not flush is lost when it dies.
Ending RunInChild(const std::function<void()>& piece);

/// In a child: sends an event to the parent. Does nothing elsewhere.
void ReportEvent(const std::vector<std::string>& fields);
/// In a child: ends it as refused.
[[noreturn]] void RefuseInChild(const std::string& why);

} // namespace dcftest

#endif
