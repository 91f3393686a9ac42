// A library that is loaded before all others into a dcfctl under test and takes the power away: behind as many changes
// below the folders that CLI_POWER_CUT_IN names (two, with a colon between them) as CLI_POWER_CUT says, the process is
// gone, without a handler, a flush or a destructor. A write changes twice: by its first half, and by the whole.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

int g_changes = 0;

bool IsMeant(const char* path) {
    const char* folders = std::getenv("CLI_POWER_CUT_IN");
    const std::string_view named = folders == nullptr ? "" : folders;
    const std::string_view asked = path;
    const std::size_t colon = named.find(':');
    return colon != std::string_view::npos &&
           (asked.substr(0, colon) == named.substr(0, colon) || asked.find(named.substr(colon + 1)) == 0);
}

bool IsMeant(int fd) {
    std::array<char, 512> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    return readlink(link.c_str(), path.data(), path.size() - 1) > 0 && IsMeant(path.data());
}

/// Whether the power goes behind the change that is about to be made.
bool IsLast() {
    const char* number = std::getenv("CLI_POWER_CUT");
    return ++g_changes == (number == nullptr ? 0 : std::atoi(number));
}

void Cut() {
    (void)kill(getpid(), SIGKILL);
}

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Makes a call; a change that succeeded may be the last one.
template <typename Call>
auto Change(bool meant, Call call) -> decltype(call()) {
    const auto result = call();
    if (meant && result >= 0 && IsLast()) {
        Cut();
    }
    return result;
}

template <typename Write>
ssize_t ChangeTwice(int fd, std::size_t size, Write write) {
    if (!IsMeant(fd)) {
        return write(size);
    }
    if (size > 1 && IsLast()) {
        (void)write(size / 2); // nobody is left to ask
        Cut();
    }
    return Change(true, [&] { return write(size); });
}

} // namespace

extern "C" {

#define CUT_OPEN(symbol)                                                                                               \
    int symbol(const char* path, int flags, ...) {                                                                     \
        va_list rest;                                                                                                  \
        va_start(rest, flags);                                                                                         \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;                                         \
        va_end(rest);                                                                                                  \
        const bool makes = (flags & (O_CREAT | O_TRUNC)) != 0 && IsMeant(path);                                        \
        return Change(makes, [&] { return Next<int(const char*, int, ...)>(#symbol)(path, flags, mode); });            \
    }
CUT_OPEN(open)
CUT_OPEN(open64)

ssize_t write(int fd, const void* data, std::size_t size) {
    return ChangeTwice(fd, size, [&](std::size_t part) {
        return Next<ssize_t(int, const void*, std::size_t)>("write")(fd, data, part);
    });
}

#define CUT_PWRITE(symbol)                                                                                             \
    ssize_t symbol(int fd, const void* data, std::size_t size, off64_t offset) {                                       \
        return ChangeTwice(fd, size, [&](std::size_t part) {                                                           \
            return Next<ssize_t(int, const void*, std::size_t, off64_t)>(#symbol)(fd, data, part, offset);             \
        });                                                                                                            \
    }
CUT_PWRITE(pwrite)
CUT_PWRITE(pwrite64)

#define CUT_TRUNCATE(symbol)                                                                                           \
    int symbol(int fd, off64_t size) noexcept {                                                                        \
        return Change(IsMeant(fd), [&] { return Next<int(int, off64_t)>(#symbol)(fd, size); });                        \
    }
CUT_TRUNCATE(ftruncate)
CUT_TRUNCATE(ftruncate64)

int futimens(int fd, const timespec times[2]) noexcept {
    return Change(IsMeant(fd), [&] { return Next<int(int, const timespec*)>("futimens")(fd, times); });
}

int rename(const char* old, const char* path) noexcept {
    return Change(IsMeant(path), [&] { return Next<int(const char*, const char*)>("rename")(old, path); });
}

int renameat2(int from, const char* old, int to, const char* path, unsigned flags) noexcept {
    return Change(IsMeant(path), [&] {
        return Next<int(int, const char*, int, const char*, unsigned)>("renameat2")(from, old, to, path, flags);
    });
}

int link(const char* old, const char* path) noexcept {
    return Change(IsMeant(path), [&] { return Next<int(const char*, const char*)>("link")(old, path); });
}

int unlink(const char* path) noexcept {
    return Change(IsMeant(path), [&] { return Next<int(const char*)>("unlink")(path); });
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    return Change(IsMeant(folder), [&] { return Next<int(int, const char*, int)>("unlinkat")(folder, path, flags); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    return Change(IsMeant(path), [&] { return Next<int(const char*, mode_t)>("mkdir")(path, mode); });
}

int rmdir(const char* path) noexcept {
    return Change(IsMeant(path), [&] { return Next<int(const char*)>("rmdir")(path); });
}
}
