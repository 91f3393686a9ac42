// A library that is loaded before all others into a dcfctl under test, and makes the system behave as an awkward card
// does. CLI_CHANGE_SHIM names what it does: words separated by commas. Only calls on paths below a card are touched.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool Asked(const char* what) {
    const char* words = std::getenv("CLI_CHANGE_SHIM");
    const std::size_t length = std::strlen(what);
    for (const char* at = words; at != nullptr; at = std::strchr(at, ',')) {
        at += *at == ',' ? 1 : 0;
        if (std::strncmp(at, what, length) == 0 && (at[length] == ',' || at[length] == '\0')) {
            return true;
        }
    }
    return false;
}

bool OnCard(const char* path) {
    return std::strstr(path, "/DCIM/") != nullptr;
}

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Takes all the room that is left, into the file that CLI_CHANGE_FILLER names.
void FillCard() {
    static const char piece[1U << 16U] = {};
    const int fd = open(std::getenv("CLI_CHANGE_FILLER"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    auto* const next = Next<ssize_t(int, const void*, std::size_t)>("write");
    while (next(fd, piece, sizeof piece) > 0) {
    }
    close(fd);
}

int Refuse(int error) {
    errno = error;
    return -1;
}

} // namespace

extern "C" {

// As FAT with umask=0 does it: accepted and ignored.
int chmod(const char* path, mode_t mode) {
    if (OnCard(path) && Asked("ignore-chmod")) {
        return 0;
    }
    return Next<int(const char*, mode_t)>("chmod")(path, mode);
}

int unlink(const char* path) noexcept {
    if (OnCard(path) && std::strstr(path, ".JPG") != nullptr && Asked("keep-files")) {
        return Refuse(EIO);
    }
    return Next<int(const char*)>("unlink")(path);
}

int remove(const char* path) noexcept {
    if (OnCard(path) && std::strstr(path, ".JPG") != nullptr && Asked("keep-files")) {
        return Refuse(EIO);
    }
    return Next<int(const char*)>("remove")(path);
}

// A file system without flags for renaming, and one without links.
int renameat2(int from, const char* old, int to, const char* path, unsigned flags) noexcept {
    if (flags != 0 && OnCard(path) && Asked("no-flags")) {
        return Refuse(EINVAL);
    }
    if (OnCard(path) && std::strstr(path, ".SRW") != nullptr && Asked("fail-companion")) {
        return Refuse(EIO);
    }
    return Next<int(int, const char*, int, const char*, unsigned)>("renameat2")(from, old, to, path, flags);
}

int link(const char* old, const char* path) noexcept {
    if (OnCard(path) && Asked("no-links")) {
        return Refuse(EPERM);
    }
    return Next<int(const char*, const char*)>("link")(old, path);
}

int rename(const char* old, const char* path) noexcept {
    if (OnCard(path) && Asked("fail-rename")) {
        return Refuse(EIO);
    }
    return Next<int(const char*, const char*)>("rename")(old, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    if (OnCard(path) && Asked("no-folders")) {
        return Refuse(ENOSPC);
    }
    return Next<int(const char*, mode_t)>("mkdir")(path, mode);
}

int fsync(int fd) {
    if (Asked("fail-fsync")) {
        return Refuse(EIO);
    }
    if (Asked("slow-fsync")) {
        usleep(100000);
    }
    return Next<int(int)>("fsync")(fd);
}

// A slow card: half a second for each big piece. And one whose room somebody else takes.
ssize_t write(int fd, const void* data, std::size_t size) {
    constexpr std::size_t kBig = 1U << 19U;
    if (size >= kBig && Asked("slow")) {
        usleep(500000);
    }
    if (size >= kBig && Asked("fill-card")) {
        FillCard();
    }
    return Next<ssize_t(int, const void*, std::size_t)>("write")(fd, data, size);
}

// A slow card, for deletions and for protection, which brings every file to the disk by itself.
void sync() noexcept {
    if (Asked("slow")) {
        usleep(1200000);
    }
    if (Asked("slow-sync")) {
        usleep(80000);
    }
    if (!Asked("no-sync")) {
        Next<void()>("sync")();
    }
}
}
