// Progress, questions, interruptions; see the header.
#include "Terminal.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::chrono::milliseconds kPatience(1000);
constexpr std::chrono::milliseconds kBetween(200);

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
std::array<struct sigaction, 3> g_before;
volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void RememberInterruption(int signal) {
    g_interrupted = signal;
}

/// Without the line's end. @return false at the end of the input.
bool ReadLine(std::string& line) {
    line.clear();
    for (;;) {
        char c = 0;
        const ssize_t got = read(STDIN_FILENO, &c, 1); // one at a time: what stands behind the answer is not ours
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return !line.empty();
        }
        if (c == '\n') {
            return true;
        }
        line += c;
    }
}

} // namespace

Progress::Progress(Output& err, std::string label, bool bytes)
    : m_err(err), m_label(std::move(label)), m_bytes(bytes), m_next(Clock::now() + kPatience) {}

Progress::~Progress() {
    if (m_shown > 0) {
        Write("");
    }
}

void Progress::Show(std::uint64_t done, std::uint64_t all) {
    const auto now = Clock::now();
    if (!m_err.IsTerminal() || now < m_next) {
        return;
    }
    m_next = now + kBetween;
    const auto shown = [this](std::uint64_t count) { return m_bytes ? SizeText(count) : std::to_string(count); };
    Write(m_label + ": " + shown(done) + " of " + shown(all));
}

void Progress::ShowNow(const std::string& text) {
    if (m_err.IsTerminal()) {
        Write(text);
    }
}

/// Over what stands there.
void Progress::Write(std::string text) {
    const std::size_t width = text.size();
    if (width < m_shown) {
        text.append(m_shown - width, ' ');
    }
    m_err.Write("\r" + text + "\r" + text.substr(0, width));
    m_err.Flush();
    m_shown = width;
}

bool CanAsk(const Output& err) {
    return isatty(STDIN_FILENO) != 0 && err.IsTerminal();
}

bool Ask(Output& err, const std::string& question) {
    err.Write(question + " [y/N] ");
    err.Flush();
    std::string answer;
    if (!ReadLine(answer)) {
        err.Write("\n");
        err.Flush();
        return false;
    }
    return EqualNoCase(answer, "y") || EqualNoCase(answer, "yes");
}

InterruptGuard::InterruptGuard() {
    g_interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = RememberInterruption;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < g_before.size(); ++i) {
        (void)sigaction(kSignals[i], &action, &g_before[i]); // these can always be caught
        if (g_before[i].sa_handler == SIG_IGN) {
            (void)sigaction(kSignals[i], &g_before[i], nullptr); // under nohup, say: stays ignored
        }
    }
}

InterruptGuard::~InterruptGuard() {
    for (std::size_t i = 0; i < g_before.size(); ++i) {
        (void)sigaction(kSignals[i], &g_before[i], nullptr); // as above
    }
}

bool InterruptGuard::Interrupted() {
    return g_interrupted != 0;
}

int InterruptGuard::Signal() {
    return g_interrupted;
}

} // namespace dcfctl
