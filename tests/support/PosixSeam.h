// PosixSeam: stands between the library and the C library's file, clock and sleep calls. While no PosixSeam is armed
// every call goes through untouched. An armed one sees the calls of the thread that armed it: it records them, makes
// chosen ones fail, ends the process behind a chosen change, and sets the clock.
//
// The call names are the plain ones ("stat" also for stat64 and __stat64_time64). What the test itself calls while a
// PosixSeam is armed is seen too: keep the scope around the operation under test. sync() is recorded but not done,
// because it would wait for every disk of the machine.
#ifndef TESTS_SUPPORT_POSIX_SEAM_H
#define TESTS_SUPPORT_POSIX_SEAM_H

#include <dirent.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace dcftest {

/// One recorded call. The text form is "name path argument", for example "chmod /card/x 0444", "sync", "umask 0000".
struct PosixCall {
    std::string name;
    std::string path;     ///< As given; for fstatat the name without its folder handle. Empty where there is none.
    std::string argument; ///< Permission bits in octal, target of a rename, microseconds of a sleep; else empty.

    std::string Text() const;
};

class PosixSeam {
public:
    /// Exit status of a process that CutPowerAfterChange() ended.
    static constexpr int kPowerCutStatus = 77;
    /// Stands in Fail() and FailFrom() for every call that reaches the card and can fail for it: as when the card is
    /// taken out.
    static constexpr const char* kEveryCardCall = "card";

    /// Arms for the calling thread until destruction. Only one per thread.
    PosixSeam();
    ~PosixSeam();
    PosixSeam(const PosixSeam&) = delete;
    PosixSeam& operator=(const PosixSeam&) = delete;

    /// The names of all calls seen, the ones that cannot fail (sync, umask) included.
    static const std::vector<std::string>& KnownNames();

    /// The nth call of that name from now on (1 is the next) fails with an errno and does nothing.
    void Fail(const std::string& name, int error, int nth = 1);
    /// The nth and every later one fails.
    void FailFrom(const std::string& name, int error, int nth = 1);
    /// Runs before the nth call of that name from now on; what it calls is not seen.
    void Before(const std::string& name, int nth, std::function<void()> action);
    /// What scandir() hands out from now on goes through this first: the entries may be replaced by others of the same
    /// kind, made with malloc.
    void RewriteListings(std::function<void(dirent** list, int count)> rewrite);
    /// The process ends at once (no flush, no destructor) behind the nth call that changed the card, counted from now.
    void CutPowerAfterChange(int nth);
    /// time() gives this; localtime() converts as usual.
    void FixTime(std::int64_t now);
    /// localtime() gives this, whatever it is asked.
    void FixLocalTime(const std::tm& now);
    /// usleep() returns 0 at once.
    void SkipSleeps();

    const std::vector<PosixCall>& Calls() const {
        return m_calls;
    }
    /// The text forms in order.
    std::vector<std::string> Texts() const;
    /// The text forms of the calls of these names, in order.
    std::vector<std::string> Texts(const std::vector<std::string>& names) const;
    int Count(const std::string& name) const;
    /// Failures delivered so far.
    int Fired() const {
        return m_fired;
    }
    /// Changes of the card made so far: successful chmod, unlink, remove, rename, mkdir and opens for making.
    int Changes() const {
        return m_changes;
    }
    /// Forgets the recorded calls; rules stay.
    void Forget();

    // For the interposed functions.

    /// Records a call. @return the errno it must fail with, or 0.
    int Enter(PosixCall call);
    void Changed();
    void Listed(void** list, int count, bool large);
    std::optional<std::int64_t> Now() const {
        return m_now;
    }
    std::tm* LocalNow();
    bool SleepsSkipped() const {
        return m_skipSleeps;
    }

private:
    struct Rule {
        std::string name;
        int countdown;
        int error;
        bool persistent;
        std::function<void()> action;
    };

    std::vector<PosixCall> m_calls;
    std::vector<Rule> m_rules;
    std::optional<std::int64_t> m_now;
    std::optional<std::tm> m_localNow;
    std::function<void(dirent**, int)> m_rewrite;
    int m_fired = 0;
    int m_changes = 0;
    int m_cutAfter = 0; ///< 0: never.
    bool m_skipSleeps = false;
};

} // namespace dcftest

#endif
