// The child that decodes; see the header. Questions and answers go over a socket, each text behind its length.
#include "Thumbnail.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdint>

#include "PictureFile.h"
#include "Streams.h"
#include "Terminal.h"

namespace dcfctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr rlim_t kMemory = 1U << 30U;
constexpr std::uint32_t kLongestText = 4U << 20U;
constexpr int kChildSocket = 3;

// A sanitizer takes more address space than any machine has memory.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

/// @return false when there is nothing more to come in time.
bool WaitFor(int fd, Clock::time_point until) {
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        pollfd waiting = {fd, POLLIN, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(left));
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR || InterruptGuard::Interrupted()) {
            return false;
        }
    }
}

bool Send(int fd, const void* bytes, std::size_t length) {
    const auto* from = static_cast<const char*>(bytes);
    while (length > 0) {
        const ssize_t sent = send(fd, from, length, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) {
            return false;
        }
        from += sent < 0 ? 0 : sent;
        length -= sent < 0 ? 0 : static_cast<std::size_t>(sent);
    }
    return true;
}

bool SendText(int fd, const std::string& text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    return Send(fd, &length, sizeof length) && Send(fd, text.data(), text.size());
}

bool Receive(int fd, void* bytes, std::size_t length, std::optional<Clock::time_point> until) {
    auto* to = static_cast<char*>(bytes);
    while (length > 0) {
        if (until.has_value() && !WaitFor(fd, *until)) {
            return false;
        }
        const ssize_t got = recv(fd, to, length, 0);
        if (got == 0 || (got < 0 && errno != EINTR)) {
            return false;
        }
        to += got < 0 ? 0 : got;
        length -= got < 0 ? 0 : static_cast<std::size_t>(got);
    }
    return true;
}

bool ReceiveText(int fd, std::string& text, std::optional<Clock::time_point> until = std::nullopt) {
    std::uint32_t length = 0;
    if (!Receive(fd, &length, sizeof length, until) || length > kLongestText) {
        return false;
    }
    text.resize(length);
    return Receive(fd, text.data(), length, until);
}

void Limit(decltype(RLIMIT_CORE) what, rlim_t most) {
    const rlimit limit = {most, most};
    (void)setrlimit(what, &limit); // the parent's patience is a bound of its own
}

/// Whatever the libraries do with a hostile picture, they do it with no file to write, no memory to eat up and nothing
/// open but the socket.
void Confine(int socket) {
    for (const int signal : {SIGABRT, SIGPIPE, SIGTERM}) {
        std::signal(signal, SIG_DFL);
    }
    for (const int signal : {SIGINT, SIGHUP}) {
        std::signal(signal, SIG_IGN); // of a terminal: the parent decides
    }
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0); // as in a rehearsal
    (void)prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    (void)prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    Silence();
    (void)dup2(STDOUT_FILENO, STDIN_FILENO); // leads nowhere now
    if (dup2(socket, kChildSocket) < 0 || close_range(kChildSocket + 1, UINT_MAX, 0) != 0) {
        _exit(1);
    }
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, 0);
    if (!kSanitized) {
        Limit(RLIMIT_AS, kMemory);
    }
}

[[noreturn]] void Serve(int socket) {
    try {
        Confine(socket);
        std::string path;
        std::uint32_t side = 0;
        while (ReceiveText(kChildSocket, path) && Receive(kChildSocket, &side, sizeof side, std::nullopt)) {
            std::vector<std::string> answer(2);
            if (side == 0) {
                const PictureHead head = DecodeHead(path);
                answer = {head.thumbnail, head.date};
            } else {
                answer[0] = DecodeScaled(path, static_cast<int>(side));
            }
            if (!SendText(kChildSocket, answer[0]) || !SendText(kChildSocket, answer[1])) {
                break;
            }
        }
    } catch (...) {
        _exit(1);
    }
    _exit(0);
}

} // namespace

ThumbnailReader::~ThumbnailReader() {
    End();
}

bool ThumbnailReader::Start() {
    int ends[2];
    if (m_child >= 0) {
        return true;
    }
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return false;
    }
    m_child = fork();
    if (m_child == 0) {
        Serve(ends[1]);
    }
    close(ends[1]);
    m_socket = ends[0];
    if (m_child < 0) {
        End();
        return false;
    }
    return true;
}

void ThumbnailReader::End() {
    if (m_socket >= 0) {
        close(m_socket);
        m_socket = -1;
    }
    if (m_child > 0) {
        (void)kill(m_child, SIGKILL); // it holds nothing that it would have to put in order
        while (waitpid(m_child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    m_child = -1;
}

std::optional<ThumbnailReader::Answer> ThumbnailReader::Ask(const std::string& path, int side) {
    if (!Start()) {
        return std::nullopt;
    }
    const auto wanted = static_cast<std::uint32_t>(side);
    const Clock::time_point until = Clock::now() + m_patience;
    Answer answer(2);
    if (SendText(m_socket, path) && Send(m_socket, &wanted, sizeof wanted) && ReceiveText(m_socket, answer[0], until) &&
        ReceiveText(m_socket, answer[1], until)) {
        return answer;
    }
    End();
    return std::nullopt;
}

PictureHead ThumbnailReader::Head(const std::string& path) {
    const auto answer = kCanReadThumbnails ? Ask(path, 0) : std::nullopt;
    return answer.has_value() ? PictureHead{(*answer)[0], (*answer)[1]} : PictureHead{};
}

std::string ThumbnailReader::Made(const std::string& path, int side) {
    const bool fits = side >= 1 && side <= kMaxThumbnailSide;
    const auto answer = kCanMakeThumbnails && fits ? Ask(path, side) : std::nullopt;
    return answer.has_value() ? (*answer)[0] : std::string();
}

std::string EmbeddedThumbnail(const std::string& path) {
    return ThumbnailReader().Head(path).thumbnail;
}

std::string MadeThumbnail(const std::string& path, int side) {
    return ThumbnailReader().Made(path, side);
}

} // namespace dcfctl
