// The pseudo-terminal; see the header.
#include "Terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

namespace clitest {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience(10);

} // namespace

Terminal::Terminal(const Words& arguments, const Options& options, TerminalSize size) : m_child(-1) {
    PrepareToRun();
    const winsize window = {size.rows, size.columns, 0, 0};
    m_child = forkpty(&m_terminal, nullptr, nullptr, &window);
    if (m_child < 0) {
        throw std::system_error(errno, std::generic_category(), "forkpty");
    }
    if (m_child == 0) {
        RunAsIs(arguments, options);
    }
}

Terminal::~Terminal() {
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        (void)waitpid(m_child, nullptr, 0); // it has just been ended
    }
    close(m_terminal);
}

void Terminal::Type(const std::string& keys) {
    if (write(m_terminal, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::system_error(errno, std::generic_category(), "typing");
    }
}

bool Terminal::Take(int milliseconds) {
    pollfd waiting = {m_terminal, POLLIN, 0};
    if (poll(&waiting, 1, milliseconds) <= 0) {
        return true;
    }
    std::array<char, 4096> buffer{};
    const ssize_t length = read(m_terminal, buffer.data(), buffer.size());
    if (length > 0) {
        m_screen.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return length > 0 || (length < 0 && errno == EINTR);
}

bool Terminal::Shows(const std::string& text) {
    const auto limit = Clock::now() + kPatience;
    bool open = true;
    while (true) {
        const std::size_t at = m_screen.find(text, m_seen);
        if (at != std::string::npos) {
            m_seen = at + text.size();
            return true;
        }
        if (!open || Clock::now() > limit) {
            return false;
        }
        open = Take(100);
    }
}

bool Terminal::ShowsPrompt() {
    const auto limit = Clock::now() + kPatience;
    bool shown = Shows("dcfctl> ");
    while (shown && IsAsAtTheStart()) {
        shown = Clock::now() < limit && Take(5);
    }
    return shown;
}

int Terminal::End() {
    const auto limit = Clock::now() + kPatience;
    while (Take(100)) { // reading ends with an error when nobody holds the other side any more
        if (Clock::now() > limit) {
            return -1;
        }
    }
    int status = 0;
    if (waitpid(m_child, &status, 0) != m_child) {
        return -1;
    }
    m_child = -1;
    m_signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Terminal::Send(int signal) const {
    if (m_child > 0) {
        kill(m_child, signal);
    }
}

void Terminal::Resize(TerminalSize size) const {
    const winsize window = {size.rows, size.columns, 0, 0};
    if (ioctl(m_terminal, TIOCSWINSZ, &window) != 0) {
        throw std::system_error(errno, std::generic_category(), "resizing");
    }
}

bool Terminal::IsAsAtTheStart() const {
    termios modes = {};
    return tcgetattr(m_terminal, &modes) == 0 && (modes.c_lflag & ECHO) != 0 && (modes.c_lflag & ICANON) != 0;
}

} // namespace clitest
