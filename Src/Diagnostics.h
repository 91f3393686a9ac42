// The one way to log and the one way to end on a programming error. Used by every class of the library; safe from any
// thread as far as the platform's log is.
//
// A source file says which unit it is before it includes this header: #define KELP_UNIT "CSFileList".
#ifndef DIAGNOSTICS_H
#define DIAGNOSTICS_H

namespace kelp {

/// Where a log line or an assertion stands.
struct SourcePlace {
    const char* unit;      // bare source file name
    const char* path;      // "Src/" and the source file name, wherever the tree was built
    const char* function;  // bare function name
    const char* signature; // the compiler's own
    int line;
};

/// Writes one line to the platform's log.
void Log(const SourcePlace& place, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Prints a backtrace, logs the condition and the info, shows both on standard output and aborts.
/// @param logged the condition as it is logged. @param failed the condition as the system's assertion shows it.
[[noreturn]] void FailAssertion(const SourcePlace& place, const char* logged, const char* failed, const char* info, ...)
    __attribute__((format(printf, 4, 5)));

} // namespace kelp

#define KELP_PLACE                                                                                                     \
    kelp::SourcePlace {                                                                                                \
        KELP_UNIT, "Src/" KELP_UNIT ".cpp", __func__, __PRETTY_FUNCTION__, __LINE__                                    \
    }

#define KELP_LOG(...) kelp::Log(KELP_PLACE, __VA_ARGS__)

/// Fatal unless the condition holds, in every build. What follows the condition is the info text and its arguments.
#define KELP_ASSERT(condition, ...) KELP_ASSERT_AS(condition, #condition, #condition, __VA_ARGS__)

/// The same where the texts of the condition are not its source text.
#define KELP_ASSERT_AS(condition, logged, failed, ...)                                                                 \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            kelp::FailAssertion(KELP_PLACE, logged, failed, __VA_ARGS__);                                              \
        }                                                                                                              \
    } while (false)

/// Fatal wherever it is reached; the condition shows as 0.
#define KELP_FAIL(...) kelp::FailAssertion(KELP_PLACE, "0", "0", __VA_ARGS__)

/// A client handed out no item. The value shown is the null pointer's, 0.
#define KELP_ASSERT_ITEM(pItem)                                                                                        \
    KELP_ASSERT_AS((pItem) != nullptr, "pItem != NULL", "pItem != NULL", "now pItem == NULL(%d) !!!", 0)

#endif
