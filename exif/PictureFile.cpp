// Reading with a limit; see the header.
#include "PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace dcfexif {
namespace {

/// More than the header of any picture takes; only the search for a picture's end comes near it.
constexpr std::uint64_t kMostRead = std::uint64_t{64} << 20U;
/// One read brings the neighbours along: the structures of a header stand close together.
constexpr std::size_t kWindow = std::size_t{16} << 10U;

} // namespace

// Without O_NONBLOCK the open of a pipe would wait for somebody to write.
PictureFile::PictureFile(const char* path)
    : m_fd(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)), m_left(kMostRead) {
    if (m_fd < 0) {
        return;
    }
    struct stat info = {};
    if (fstat(m_fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size < 0) {
        (void)close(m_fd); // was only read
        m_fd = -1;
        return;
    }
    m_size = static_cast<std::uint64_t>(info.st_size);
}

PictureFile::~PictureFile() {
    if (m_fd >= 0) {
        (void)close(m_fd); // was only read
    }
}

bool PictureFile::Load(std::uint64_t offset, std::size_t length) {
    length = std::max(length, kWindow);
    length = static_cast<std::size_t>(std::min<std::uint64_t>(length, m_size - offset));
    if (length > m_left) {
        return false;
    }
    m_left -= length;
    m_window.resize(length);
    m_windowOffset = offset;
    std::size_t read = 0;
    while (read < length) {
        const ssize_t got = pread(m_fd, m_window.data() + read, length - read, static_cast<off_t>(offset + read));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) { // an error, or somebody has cut the file meanwhile
            m_failed = m_failed || got < 0;
            m_window.resize(read);
            return false;
        }
        read += static_cast<std::size_t>(got);
    }
    return true;
}

bool PictureFile::Read(std::uint64_t offset, std::size_t length, std::string& out) {
    if (offset > m_size || length > m_size - offset) {
        return false;
    }
    const bool there = offset >= m_windowOffset && offset - m_windowOffset <= m_window.size() &&
                       length <= m_window.size() - (offset - m_windowOffset);
    if (!there && !Load(offset, length)) {
        return false;
    }
    out.assign(m_window, static_cast<std::size_t>(offset - m_windowOffset), length);
    return true;
}

} // namespace dcfexif
