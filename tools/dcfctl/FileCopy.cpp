// Copying with care; see the header.
#include "FileCopy.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "Text.h"

namespace dcfctl {
namespace {

// A name of 8, 12 or 19 characters could be taken for a folder or a picture.
constexpr std::string_view kBefore = ".dcfctl-";
constexpr std::string_view kBehind = ".part";
constexpr std::size_t kDigits = 8;
constexpr std::size_t kNameLength = kBefore.size() + kDigits + kBehind.size();
static_assert(kNameLength != 8 && kNameLength != 12 && kNameLength != 19);

constexpr std::size_t kPieceSize = 1U << 20U;

[[noreturn]] void Fail(const std::string& what) {
    throw CopyError(what + " (" + std::strerror(errno) + ")");
}

/// Closes a descriptor at the end of a block.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }
    [[nodiscard]] int Get() const {
        return m_fd;
    }

private:
    int m_fd;
};

std::string TemporaryName() {
    std::array<char, kDigits + 1> digits = {};
    std::snprintf(digits.data(), digits.size(), "%08x", std::random_device()());
    return std::string(kBefore) + digits.data() + std::string(kBehind);
}

bool IsTemporaryName(std::string_view name) {
    return name.size() == kNameLength && name.substr(0, kBefore.size()) == kBefore &&
           name.substr(kNameLength - kBehind.size()) == kBehind &&
           name.substr(kBefore.size(), kDigits).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool IsSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsUnchanged(const struct stat& a, const struct stat& b) {
    return IsSame(a, b) && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// Brings the entries of a folder to the disk.
void SyncFolder(const std::string& folder) {
    const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Get() < 0 || (fsync(opened.Get()) != 0 && errno != EINVAL)) { // EINVAL: has nothing to bring
        Fail(Quoted(folder) + " could not be brought to the disk");
    }
}

} // namespace

StagedFile::StagedFile(const std::string& source, const struct stat& expected, const std::string& folder,
                       const Piece& piece)
    : m_folder(folder) {
    try {
        Create(folder);
        Copy(source, expected, piece);
    } catch (...) {
        Discard();
        throw;
    }
}

StagedFile::StagedFile(std::string folder) : m_folder(std::move(folder)) {
    Create(m_folder);
}

StagedFile::~StagedFile() {
    Discard();
}

/// Locked while it is being written, so that another run does not take it for a leftover.
void StagedFile::Create(const std::string& folder) {
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        m_temporary = folder + "/" + TemporaryName();
        m_fd = open(m_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_fd < 0) {
            const bool taken = errno == EEXIST;
            m_temporary.clear();
            if (taken) {
                continue;
            }
            Fail("no file can be made in " + Quoted(folder));
        }
        (void)flock(m_fd, LOCK_EX | LOCK_NB); // a file system without locks has to do without
        struct stat there = {};
        if (fstat(m_fd, &m_state) == 0 && lstat(m_temporary.c_str(), &there) == 0 && IsSame(m_state, there)) {
            return;
        }
        close(m_fd);
        m_fd = -1;
    }
    Fail("no temporary name is free in " + Quoted(folder));
}

void StagedFile::CopyContent(int from, std::uint64_t expected, const Piece& piece) const {
    std::vector<char> buffer(kPieceSize);
    std::uint64_t copied = 0;
    for (;;) {
        const ssize_t got = read(from, buffer.data(), buffer.size());
        if (got < 0 && errno != EINTR) {
            Fail("it cannot be read to its end");
        }
        if (got == 0) {
            break;
        }
        for (ssize_t done = 0; done < got;) {
            const ssize_t written = write(m_fd, buffer.data() + done, static_cast<std::size_t>(got - done));
            if (written < 0 && errno != EINTR) {
                Fail("it cannot be written to the card");
            }
            done += written < 0 ? 0 : written;
        }
        copied += got < 0 ? 0 : static_cast<std::uint64_t>(got);
        if (!piece(got < 0 ? 0 : static_cast<std::uint64_t>(got))) {
            throw CopyError("the work was interrupted");
        }
    }
    if (copied != expected) {
        throw CopyError("it changed while it was copied");
    }
}

void StagedFile::Copy(const std::string& source, const struct stat& expected, const Piece& piece) {
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat state = {};
    if (from.Get() < 0 || fstat(from.Get(), &state) != 0) {
        Fail("it cannot be opened");
    }
    if (!IsUnchanged(state, expected)) {
        throw CopyError("it changed in the meantime");
    }
    (void)posix_fadvise(from.Get(), 0, 0, POSIX_FADV_SEQUENTIAL); // no more than a hint
    CopyContent(from.Get(), static_cast<std::uint64_t>(state.st_size), piece);
    struct stat after = {};
    if (fstat(from.Get(), &after) != 0 || !IsUnchanged(after, expected)) {
        throw CopyError("it changed while it was copied");
    }
    Finish(state);
}

/// The descriptor stays open, and with it the lock, and so does the number by which the file is known again: FAT makes
/// that one up anew when nobody has the file open.
void StagedFile::Finish(const struct stat& source) {
    const timespec times[] = {{0, UTIME_OMIT}, source.st_mtim};
    if (futimens(m_fd, times) != 0) {
        Fail("its time cannot be kept");
    }
    if (fsync(m_fd) != 0) {
        Fail("it cannot be brought to the card");
    }
}

void StagedFile::Rename(const std::string& path) const {
    if (renameat2(AT_FDCWD, m_temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        return;
    }
    if (errno != EINVAL && errno != ENOSYS) { // else a file system without that flag
        Fail("it cannot be given its name");
    }
    if (link(m_temporary.c_str(), path.c_str()) == 0) {
        (void)unlink(m_temporary.c_str()); // it is in place; what stays is a second name that no listing takes
        return;
    }
    if (errno == EEXIST) {
        Fail("it cannot be given its name");
    }
    // A file system without links either: a placeholder of our own is the only thing that may be replaced.
    const int placeholder = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (placeholder < 0) {
        Fail("it cannot be given its name");
    }
    close(placeholder);
    if (rename(m_temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        (void)unlink(path.c_str()); // the placeholder; the error that is told is the first one
        errno = error;
        Fail("it cannot be given its name");
    }
}

void StagedFile::PutInPlace(const std::string& path, bool replace) {
    if (!replace) {
        Rename(path);
    } else if (rename(m_temporary.c_str(), path.c_str()) != 0) {
        Fail("it cannot be given its name");
    }
    m_temporary.clear();
    m_placed = path;
    SyncFolder(m_folder);
}

void StagedFile::TakeBack() {
    struct stat there = {};
    if (!m_placed.empty() && lstat(m_placed.c_str(), &there) == 0 && IsSame(there, m_state)) {
        (void)unlink(m_placed.c_str()); // what stays is told by the caller, who looks
    }
    m_placed.clear();
}

void StagedFile::Discard() {
    if (!m_temporary.empty()) {
        (void)unlink(m_temporary.c_str()); // what cannot be removed is no picture and is removed by a later run
        m_temporary.clear();
    }
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
}

void RemoveLeftovers(const std::string& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(folder.c_str()), closedir);
    if (opened == nullptr) {
        return;
    }
    std::vector<std::string> names;
    while (const dirent* entry = readdir(opened.get())) {
        if (IsTemporaryName(entry->d_name)) {
            names.emplace_back(entry->d_name);
        }
    }
    for (const std::string& name : names) {
        const int at = dirfd(opened.get());
        const Descriptor file(openat(at, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat state = {};
        const bool abandoned = file.Get() >= 0 && fstat(file.Get(), &state) == 0 && S_ISREG(state.st_mode) &&
                               flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
        if (abandoned) {
            (void)unlinkat(at, name.c_str(), 0); // a nuisance at most
        }
    }
}

} // namespace dcfctl
