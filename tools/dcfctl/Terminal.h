// The person in front of the tool: is shown how far a long work is, and is asked before something is lost. Everything
// goes to standard error, so that results stay clean. One thread.
#ifndef DCFCTL_TERMINAL_H
#define DCFCTL_TERMINAL_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Output.h"

namespace dcfctl {

/// One line that tells how far a work is; only on a terminal, only when it takes longer than about a second, and gone
/// at the end.
class Progress {
public:
    /// @param label what is being done. @param bytes the figures are bytes.
    Progress(Output& err, std::string label, bool bytes = false);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Show(std::uint64_t done, std::uint64_t all);
    /// At once, for a single step that may take long and cannot be watched.
    void ShowNow(const std::string& text);

private:
    using Clock = std::chrono::steady_clock;

    void Write(std::string text);

    Output& m_err;
    std::string m_label;
    bool m_bytes;
    Clock::time_point m_next;
    std::size_t m_shown = 0; ///< Width of what stands there now.
};

/// Whether a question can be put and answered.
[[nodiscard]] bool CanAsk(const Output& err);

/// Puts a question. @return whether the answer was yes; no for anything else, and at the end of the input.
[[nodiscard]] bool Ask(Output& err, const std::string& question);

/// While one of these exists, an interruption (SIGINT, SIGTERM, SIGHUP) does not end the process but is noted, so that
/// a change of the card is never cut in the middle. Not to be nested.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();

    /// During the last one of these.
    [[nodiscard]] static bool Interrupted();
    /// By which signal; 0 for none.
    [[nodiscard]] static int Signal();
};

} // namespace dcfctl

#endif
