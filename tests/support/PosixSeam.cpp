// The calls are defined here under names of our own, tied to the C library's symbols by assembler labels: so no
// header's declaration is in the way, and stat and stat64 can both be defined. The plain names must not be redirected
// to the ones for large files and late times in this file.
#undef _TIME_BITS
#undef _FILE_OFFSET_BITS

#include "PosixSeam.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace dcftest {

namespace {

constinit thread_local PosixSeam* t_armed = nullptr;
constinit thread_local bool t_inside = false;

std::string Octal(mode_t mode) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%04o", mode);
    return text.data();
}

// Nothing that runs on behalf of a seen call is seen itself.
class Inside {
public:
    Inside() {
        t_inside = true;
    }
    ~Inside() {
        t_inside = false;
    }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
};

enum class Effect { Look, Change };

// Records the call, lets it fail or happen, and counts a change that succeeded. errno stays the call's own.
template <typename Result, typename Real>
Result See(const char* name, const char* path, std::string argument, Result failure, Effect effect, Real real) {
    const Inside inside;
    const int before = errno;
    PosixSeam& seam = *t_armed;
    const int error = seam.Enter({name, path == nullptr ? "" : path, std::move(argument)});
    if (error != 0) {
        errno = error;
        return failure;
    }
    errno = before;
    Result result = real();
    const int after = errno;
    if (effect == Effect::Change && result != failure) {
        seam.Changed();
    }
    errno = after;
    return result;
}

} // namespace

std::string PosixCall::Text() const {
    std::string text = name;
    for (const std::string* part : {&path, &argument}) {
        if (!part->empty()) {
            text += " " + *part;
        }
    }
    return text;
}

namespace {

bool ReachesCard(const std::string& name) {
    static const std::vector<std::string> names = {"scandir", "opendir", "readdir", "open",   "stat", "fstatat",
                                                   "chmod",   "unlink",  "remove",  "rename", "mkdir"};
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

PosixSeam::PosixSeam() {
    if (t_armed != nullptr) {
        throw std::logic_error("a PosixSeam is armed already");
    }
    t_armed = this;
}

PosixSeam::~PosixSeam() {
    t_armed = nullptr;
}

const std::vector<std::string>& PosixSeam::KnownNames() {
    static const std::vector<std::string> names = {"scandir", "opendir", "readdir", "closedir", "open",     "stat",
                                                   "fstatat", "chmod",   "unlink",  "remove",   "rename",   "mkdir",
                                                   "umask",   "sync",    "usleep",  "time",     "localtime"};
    return names;
}

void PosixSeam::Fail(const std::string& name, int error, int nth) {
    m_rules.push_back({name, nth, error, false, {}});
}

void PosixSeam::FailFrom(const std::string& name, int error, int nth) {
    m_rules.push_back({name, nth, error, true, {}});
}

void PosixSeam::Before(const std::string& name, int nth, std::function<void()> action) {
    m_rules.push_back({name, nth, 0, false, std::move(action)});
}

void PosixSeam::RewriteListings(std::function<void(dirent**, int)> rewrite) {
    m_rewrite = std::move(rewrite);
}

void PosixSeam::CutPowerAfterChange(int nth) {
    m_cutAfter = m_changes + nth;
}

void PosixSeam::FixTime(std::int64_t now) {
    m_now = now;
}

void PosixSeam::FixLocalTime(const std::tm& now) {
    m_localNow = now;
}

void PosixSeam::SkipSleeps() {
    m_skipSleeps = true;
}

std::vector<std::string> PosixSeam::Texts() const {
    return Texts(KnownNames());
}

std::vector<std::string> PosixSeam::Texts(const std::vector<std::string>& names) const {
    std::vector<std::string> texts;
    for (const PosixCall& call : m_calls) {
        if (std::find(names.begin(), names.end(), call.name) != names.end()) {
            texts.push_back(call.Text());
        }
    }
    return texts;
}

int PosixSeam::Count(const std::string& name) const {
    return static_cast<int>(
        std::count_if(m_calls.begin(), m_calls.end(), [&](const PosixCall& call) { return call.name == name; }));
}

void PosixSeam::Forget() {
    m_calls.clear();
}

int PosixSeam::Enter(PosixCall call) {
    const std::string name = call.name;
    m_calls.push_back(std::move(call));
    int error = 0;
    for (Rule& rule : m_rules) {
        const bool meant = rule.name == name || (rule.name == kEveryCardCall && ReachesCard(name));
        if (!meant || rule.countdown < 1) {
            continue;
        }
        if (rule.countdown > 1) {
            --rule.countdown;
            continue;
        }
        rule.countdown = rule.persistent ? 1 : 0;
        if (rule.action) {
            rule.action();
        } else {
            error = rule.error;
        }
    }
    m_fired += error != 0 ? 1 : 0;
    return error;
}

void PosixSeam::Changed() {
    ++m_changes;
    if (m_changes == m_cutAfter) {
        ::_exit(kPowerCutStatus);
    }
}

void PosixSeam::Listed(void** list, int count, bool large) {
    if (!m_rewrite || count <= 0) {
        return;
    }
    // The rewriter's entries are those of a program with large files.
    if (!large && sizeof(dirent) != sizeof(dirent64)) {
        throw std::logic_error("a listing without large files cannot be rewritten");
    }
    m_rewrite(reinterpret_cast<dirent**>(list), count);
}

std::tm* PosixSeam::LocalNow() {
    return m_localNow ? &*m_localNow : nullptr;
}

} // namespace dcftest

using dcftest::Effect;
using dcftest::Octal;
using dcftest::See;
using dcftest::t_armed;
using dcftest::t_inside;

// The functions may run before a sanitizer's runtime is up, so they are not instrumented themselves.
#define SEAM_FUNCTION                                                                                                  \
    extern "C" __attribute__((visibility("default"), no_sanitize("address"), no_sanitize("thread"),                    \
                              no_sanitize("undefined")))

namespace {

inline bool Seen() {
    return t_armed != nullptr && !t_inside;
}

} // namespace

// The next definition of a symbol behind the program's own: a sanitizer's, or the C library's.
#define SEAM_REAL(symbol, type)                                                                                        \
    static void* slot = nullptr;                                                                                       \
    void* found = __atomic_load_n(&slot, __ATOMIC_RELAXED);                                                            \
    if (found == nullptr) {                                                                                            \
        found = dlsym(RTLD_NEXT, #symbol);                                                                             \
        __atomic_store_n(&slot, found, __ATOMIC_RELAXED);                                                              \
    }                                                                                                                  \
    const auto real = reinterpret_cast<std::add_pointer_t<type>>(found)

// Calls of the form Result f(const char* path) and Result f(const char* path, Argument).
#define SEAM_PATH(symbol, name, Result, failure, effect)                                                               \
    SEAM_FUNCTION Result Seam_##symbol(const char* path) __asm__(#symbol);                                             \
    SEAM_FUNCTION Result Seam_##symbol(const char* path) {                                                             \
        SEAM_REAL(symbol, Result(const char*));                                                                        \
        return Seen() ? See<Result>(name, path, "", failure, effect, [&] { return real(path); }) : real(path);         \
    }

#define SEAM_PATH_AND(symbol, name, Argument, shown, effect)                                                           \
    SEAM_FUNCTION int Seam_##symbol(const char* path, Argument argument) __asm__(#symbol);                             \
    SEAM_FUNCTION int Seam_##symbol(const char* path, Argument argument) {                                             \
        SEAM_REAL(symbol, int(const char*, Argument));                                                                 \
        return Seen() ? See<int>(name, path, shown, -1, effect, [&] { return real(path, argument); })                  \
                      : real(path, argument);                                                                          \
    }

SEAM_PATH(opendir, "opendir", DIR*, nullptr, Effect::Look)
SEAM_PATH(unlink, "unlink", int, -1, Effect::Change)
SEAM_PATH(remove, "remove", int, -1, Effect::Change)

SEAM_PATH_AND(stat, "stat", struct stat*, "", Effect::Look)
SEAM_PATH_AND(stat64, "stat", struct stat64*, "", Effect::Look)
SEAM_PATH_AND(chmod, "chmod", mode_t, Octal(argument & 07777U), Effect::Change)
SEAM_PATH_AND(mkdir, "mkdir", mode_t, Octal(argument), Effect::Change)
SEAM_PATH_AND(rename, "rename", const char*, argument, Effect::Change)

#define SEAM_SCANDIR(symbol, Entry)                                                                                    \
    SEAM_FUNCTION int Seam_##symbol(const char* path, Entry*** list, int (*filter)(const Entry*),                      \
                                    int (*order)(const Entry**, const Entry**)) __asm__(#symbol);                      \
    SEAM_FUNCTION int Seam_##symbol(const char* path, Entry*** list, int (*filter)(const Entry*),                      \
                                    int (*order)(const Entry**, const Entry**)) {                                      \
        SEAM_REAL(symbol, int(const char*, Entry***, int (*)(const Entry*), int (*)(const Entry**, const Entry**)));   \
        if (!Seen()) {                                                                                                 \
            return real(path, list, filter, order);                                                                    \
        }                                                                                                              \
        return See<int>("scandir", path, "", -1, Effect::Look, [&] {                                                   \
            const int count = real(path, list, filter, order);                                                         \
            const int error = errno;                                                                                   \
            t_armed->Listed(reinterpret_cast<void**>(*list), count, std::is_same_v<Entry, dirent64>);                  \
            errno = error;                                                                                             \
            return count;                                                                                              \
        });                                                                                                            \
    }

SEAM_SCANDIR(scandir, dirent)
SEAM_SCANDIR(scandir64, dirent64)

#define SEAM_READDIR(symbol, Entry)                                                                                    \
    SEAM_FUNCTION Entry* Seam_##symbol(DIR* dir) __asm__(#symbol);                                                     \
    SEAM_FUNCTION Entry* Seam_##symbol(DIR* dir) {                                                                     \
        SEAM_REAL(symbol, Entry*(DIR*));                                                                               \
        return Seen() ? See<Entry*>("readdir", nullptr, "", nullptr, Effect::Look, [&] { return real(dir); })          \
                      : real(dir);                                                                                     \
    }

SEAM_READDIR(readdir, dirent)
SEAM_READDIR(readdir64, dirent64)

#define SEAM_FSTATAT(symbol, Status)                                                                                   \
    SEAM_FUNCTION int Seam_##symbol(int dir, const char* path, Status* status, int flags) __asm__(#symbol);            \
    SEAM_FUNCTION int Seam_##symbol(int dir, const char* path, Status* status, int flags) {                            \
        SEAM_REAL(symbol, int(int, const char*, Status*, int));                                                        \
        const auto call = [&] { return real(dir, path, status, flags); };                                              \
        return Seen() ? See<int>("fstatat", path, "", -1, Effect::Look, call) : call();                                \
    }

SEAM_FSTATAT(fstatat, struct stat)
SEAM_FSTATAT(fstatat64, struct stat64)

// open takes a mode only with O_CREAT or O_TMPFILE.
#define SEAM_OPEN(symbol)                                                                                              \
    SEAM_FUNCTION int Seam_##symbol(const char* path, int flags, ...) __asm__(#symbol);                                \
    SEAM_FUNCTION int Seam_##symbol(const char* path, int flags, ...) {                                                \
        SEAM_REAL(symbol, int(const char*, int, ...));                                                                 \
        mode_t mode = 0;                                                                                               \
        if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {                                              \
            va_list rest;                                                                                              \
            va_start(rest, flags);                                                                                     \
            mode = va_arg(rest, mode_t);                                                                               \
            va_end(rest);                                                                                              \
        }                                                                                                              \
        const auto call = [&] { return real(path, flags, mode); };                                                     \
        const Effect effect = (flags & (O_CREAT | O_TRUNC)) != 0 ? Effect::Change : Effect::Look;                      \
        return Seen() ? See<int>("open", path, "", -1, effect, call) : call();                                         \
    }

SEAM_OPEN(open)
SEAM_OPEN(open64)

// A close that "fails" has closed all the same, as on a real card.
SEAM_FUNCTION int Seam_closedir(DIR* dir) __asm__("closedir");
SEAM_FUNCTION int Seam_closedir(DIR* dir) {
    SEAM_REAL(closedir, int(DIR*));
    if (!Seen()) {
        return real(dir);
    }
    const int result = See<int>("closedir", nullptr, "", -1, Effect::Look, [] { return 0; });
    const int error = errno;
    const int closed = real(dir);
    if (result == 0) {
        return closed;
    }
    errno = error;
    return result;
}

SEAM_FUNCTION mode_t Seam_umask(mode_t mask) __asm__("umask");
SEAM_FUNCTION mode_t Seam_umask(mode_t mask) {
    SEAM_REAL(umask, mode_t(mode_t));
    if (Seen()) {
        (void)See<int>("umask", nullptr, Octal(mask), -1, Effect::Look, [] { return 0; });
    }
    return real(mask);
}

// The machine's other file systems need not be flushed for a test.
SEAM_FUNCTION void Seam_sync() __asm__("sync");
SEAM_FUNCTION void Seam_sync() {
    SEAM_REAL(sync, void());
    if (Seen()) {
        (void)See<int>("sync", nullptr, "", -1, Effect::Look, [] { return 0; });
        return;
    }
    real();
}

SEAM_FUNCTION int Seam_usleep(useconds_t microseconds) __asm__("usleep");
SEAM_FUNCTION int Seam_usleep(useconds_t microseconds) {
    SEAM_REAL(usleep, int(useconds_t));
    if (!Seen()) {
        return real(microseconds);
    }
    return See<int>("usleep", nullptr, std::to_string(microseconds), -1, Effect::Look,
                    [&] { return t_armed->SleepsSkipped() ? 0 : real(microseconds); });
}

#define SEAM_TIME(symbol, Time)                                                                                        \
    SEAM_FUNCTION Time Seam_##symbol(Time* out) __asm__(#symbol);                                                      \
    SEAM_FUNCTION Time Seam_##symbol(Time* out) {                                                                      \
        SEAM_REAL(symbol, Time(Time*));                                                                                \
        if (!Seen()) {                                                                                                 \
            return real(out);                                                                                          \
        }                                                                                                              \
        return See<Time>("time", nullptr, "", -1, Effect::Look, [&] {                                                  \
            const Time now = static_cast<Time>(t_armed->Now().value_or(real(nullptr)));                                \
            if (out != nullptr) {                                                                                      \
                *out = now;                                                                                            \
            }                                                                                                          \
            return now;                                                                                                \
        });                                                                                                            \
    }

#define SEAM_LOCALTIME(symbol, Time)                                                                                   \
    SEAM_FUNCTION std::tm* Seam_##symbol(const Time* when) __asm__(#symbol);                                           \
    SEAM_FUNCTION std::tm* Seam_##symbol(const Time* when) {                                                           \
        SEAM_REAL(symbol, std::tm*(const Time*));                                                                      \
        if (!Seen()) {                                                                                                 \
            return real(when);                                                                                         \
        }                                                                                                              \
        return See<std::tm*>("localtime", nullptr, "", nullptr, Effect::Look, [&] {                                    \
            std::tm* const fixed = t_armed->LocalNow();                                                                \
            return fixed != nullptr ? fixed : real(when);                                                              \
        });                                                                                                            \
    }

SEAM_TIME(time, std::time_t)
SEAM_LOCALTIME(localtime, std::time_t)

// Where time_t has 32 bits, a program that asks for 64 reaches the C library by these names.
#if __TIMESIZE == 32
static_assert(sizeof(std::time_t) == 4, "the plain names are redirected");
SEAM_PATH_AND(__stat64_time64, "stat", void*, "", Effect::Look)
SEAM_FSTATAT(__fstatat64_time64, void)
SEAM_TIME(__time64, __time64_t)
SEAM_LOCALTIME(__localtime64, __time64_t)
#endif
