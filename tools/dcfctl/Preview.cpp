// The child process that draws; see the header.
#include "Preview.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "Streams.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define DCFCTL_ADDRESS_SANITIZER
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define DCFCTL_ADDRESS_SANITIZER
#endif

namespace dcfctl {
namespace {

constexpr std::chrono::seconds kPatience(4);
constexpr rlim_t kSeconds = 3;
[[maybe_unused]] constexpr rlim_t kMemory = rlim_t{1} << 30U;

/// What goes through the pipe in front of the cells.
struct Header {
    std::int32_t columns;
    std::int32_t rows;
};

void Limit() {
    const rlimit none = {0, 0};
    const rlimit time = {kSeconds, kSeconds};
    (void)setrlimit(RLIMIT_CORE, &none); // where a limit cannot be set, the parent's patience is the one there is
    (void)setrlimit(RLIMIT_FSIZE, &none);
    (void)setrlimit(RLIMIT_CPU, &time);
#ifndef DCFCTL_ADDRESS_SANITIZER // reserves more addresses than that for itself
    const rlimit memory = {kMemory, kMemory};
    (void)setrlimit(RLIMIT_AS, &memory);
#endif
    (void)prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);        // no core where a core pattern names a program
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0); // nobody waits for the picture then
}

bool WriteAll(int fd, const void* data, std::size_t length) {
    const auto* bytes = static_cast<const char*>(data);
    while (length > 0) {
        const ssize_t written = write(fd, bytes, length);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        if (written > 0) {
            bytes += written;
            length -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

[[noreturn]] void RunChild(const PreviewWish& wish, int fd) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGPIPE}) {
        std::signal(signal, SIG_DFL); // NOLINT(cert-err33-c): these can be set
    }
    Silence();
    Limit();
    PreviewImage image;
    bool written = false;
    try {
        const bool drawn = DrawPreview(wish, image);
        const Header header = {image.columns, image.rows};
        written = drawn && WriteAll(fd, &header, sizeof header) &&
                  WriteAll(fd, image.cells.data(), image.cells.size() * sizeof(PreviewCell));
    } catch (...) {
        written = false; // as a picture that cannot be drawn
    }
    _exit(written ? 0 : 1);
}

} // namespace

Preview::~Preview() {
    EndChild();
}

void Preview::EndChild() {
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        while (waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
        }
        m_child = -1;
    }
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
}

void Preview::Drop() {
    EndChild();
    m_state = State::kNothing;
    m_image = PreviewImage{};
}

void Preview::Begin(const PreviewWish& wish) {
    Drop();
    m_wish = wish;
    m_bytes.clear();
    m_state = State::kNone;
    std::array<int, 2> ends{};
    if (wish.columns <= 0 || wish.rows <= 0 || !IsPreviewBuilt() || pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    m_child = fork();
    if (m_child == 0) {
        close(ends[0]);
        RunChild(wish, ends[1]);
    }
    close(ends[1]);
    m_fd = ends[0];
    if (m_child < 0) {
        EndChild();
        return;
    }
    (void)fcntl(m_fd, F_SETFL, O_NONBLOCK); // a pipe takes it
    m_limit = std::chrono::steady_clock::now() + kPatience;
    m_state = State::kWorking;
}

void Preview::Take() {
    if (m_state != State::kWorking) {
        return;
    }
    const std::size_t most =
        sizeof(Header) + sizeof(PreviewCell) * static_cast<std::size_t>(m_wish.columns * m_wish.rows);
    std::array<char, 8192> buffer{};
    ssize_t length = 0;
    while ((length = read(m_fd, buffer.data(), buffer.size())) > 0 && m_bytes.size() <= most) {
        m_bytes.append(buffer.data(), static_cast<std::size_t>(length));
    }
    const bool ended = length == 0 || m_bytes.size() > most;
    if (ended || std::chrono::steady_clock::now() > m_limit) {
        EndChild();
        Finish();
    }
}

/// What the child has written is believed in nothing but its symbols and colours.
void Preview::Finish() {
    Header header = {};
    m_state = State::kNone;
    if (m_bytes.size() < sizeof header) {
        return;
    }
    std::memcpy(&header, m_bytes.data(), sizeof header);
    if (header.columns <= 0 || header.rows <= 0 || header.columns > m_wish.columns || header.rows > m_wish.rows) {
        return;
    }
    const std::size_t cells = static_cast<std::size_t>(header.columns) * static_cast<std::size_t>(header.rows);
    if (m_bytes.size() != sizeof header + cells * sizeof(PreviewCell)) {
        return;
    }
    m_image.columns = header.columns;
    m_image.rows = header.rows;
    m_image.cells.resize(cells);
    std::memcpy(m_image.cells.data(), m_bytes.data() + sizeof header, cells * sizeof(PreviewCell));
    m_state = State::kReady;
}

} // namespace dcfctl
