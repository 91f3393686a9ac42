// Curses and signals; see the header. Sections: giving back in an emergency, signals, the screen.
#include "BrowseScreen.h"

#include <curses.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "Phrases.h"
#include "Streams.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::wint_t kEscapeKey = 0x1b;
constexpr const char* kInstead = "; 'dcfctl ls' lists the card and 'dcfctl shell' takes a script";

// ---- Giving back in an emergency: prepared beforehand, because a signal handler may allocate and call next to nothing

/// What the terminal is told, and the modes it had.
struct Remedy {
    pid_t owner = 0;
    int out = -1;
    termios modes = {};
    std::array<char, 256> bytes = {};
    std::size_t length = 0;
};
Remedy g_remedy;

/// A capability's text without the pauses that old terminals need.
void Append(Remedy& remedy, const char* capability) {
    const char* text = tigetstr(capability);
    if (text == nullptr || text == reinterpret_cast<char*>(-1)) { // NOLINT: how terminfo says that it is no text
        return;
    }
    while (*text != '\0' && remedy.length < remedy.bytes.size()) {
        if (text[0] == '$' && text[1] == '<') {
            const char* end = std::strchr(text, '>');
            text = end == nullptr ? text + 1 : end + 1;
        } else {
            remedy.bytes[remedy.length++] = *text++;
        }
    }
}

/// Before curses changes the modes.
void RememberModes(int out) {
    g_remedy = Remedy{};
    g_remedy.out = out;
    (void)tcgetattr(out, &g_remedy.modes); // it is a terminal
}

/// When curses knows what the terminal can do.
void PrepareRemedy() {
    for (const char* capability : {"sgr0", "rmkx", "cnorm", "rmcup"}) {
        Append(g_remedy, capability);
    }
    g_remedy.owner = getpid();
}

/// A child process that tries something out has the handlers too, and no business with the terminal.
void GiveBack() {
    if (g_remedy.owner != getpid()) {
        return;
    }
    g_remedy.owner = 0;
    [[maybe_unused]] const ssize_t written = write(g_remedy.out, g_remedy.bytes.data(), g_remedy.length);
    (void)tcsetattr(g_remedy.out, TCSANOW, &g_remedy.modes); // there is nowhere left to tell of a failure
}

extern "C" void GiveBackAndDie(int signal) {
    GiveBack();
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    (void)sigaction(signal, &action, nullptr);
    (void)raise(signal); // comes when this handler ends
}

// ---- Signals

constexpr std::array kEnding = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr std::array kBreaking = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

std::array<struct sigaction, kEnding.size()> g_endingBefore;
std::array<struct sigaction, kBreaking.size()> g_breakingBefore;
struct sigaction g_sizeBefore;
std::array<int, 2> g_wake = {-1, -1}; ///< Makes a wait end: a pipe to this process itself.
volatile std::sig_atomic_t g_signal = 0;
volatile std::sig_atomic_t g_newSize = 0;

void Wake() {
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(g_wake[1], "", 1); // full is awake enough
    errno = error;
}

extern "C" void NoteEnding(int signal) {
    g_signal = signal;
    Wake();
}

extern "C" void NoteNewSize(int /*signal*/) {
    g_newSize = 1;
    Wake();
}

void Install(int signal, void (*handler)(int), struct sigaction& before) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    (void)sigaction(signal, nullptr, &before); // all of these can be caught
    if (before.sa_handler != SIG_IGN) {        // under nohup, say: stays ignored
        (void)sigaction(signal, &action, nullptr);
    }
}

void InstallAll() {
    g_signal = 0;
    g_newSize = 0;
    if (pipe2(g_wake.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        g_wake = {-1, -1}; // a wait then ends with the signal itself, or with its time
    }
    for (std::size_t i = 0; i < kEnding.size(); ++i) {
        Install(kEnding[i], NoteEnding, g_endingBefore[i]);
    }
    for (std::size_t i = 0; i < kBreaking.size(); ++i) {
        Install(kBreaking[i], GiveBackAndDie, g_breakingBefore[i]);
    }
    Install(SIGWINCH, NoteNewSize, g_sizeBefore);
}

void RestoreAll() {
    for (std::size_t i = 0; i < kEnding.size(); ++i) {
        (void)sigaction(kEnding[i], &g_endingBefore[i], nullptr);
    }
    for (std::size_t i = 0; i < kBreaking.size(); ++i) {
        (void)sigaction(kBreaking[i], &g_breakingBefore[i], nullptr);
    }
    (void)sigaction(SIGWINCH, &g_sizeBefore, nullptr);
    for (int& fd : g_wake) {
        if (fd >= 0) {
            close(fd);
            fd = -1;
        }
    }
}

void EmptyPipe() {
    std::array<char, 64> bytes{};
    while (read(g_wake[0], bytes.data(), bytes.size()) > 0) {
    }
}

std::FILE* OpenAgain(int fd) {
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    return copy < 0 ? nullptr : fdopen(copy, "w");
}

// What curses works with; there is one screen in a process.
SCREEN* g_screen = nullptr;
std::FILE* g_file = nullptr;

} // namespace

// ---- The screen

std::optional<Finding> BrowseScreen::Check(int out) {
    if (isatty(STDIN_FILENO) == 0 || isatty(out) == 0) {
        return Refused("no-terminal", std::string("browse needs a terminal for its keys and its picture") + kInstead);
    }
    const char* name = std::getenv("TERM");
    int error = 0;
    const bool known = name != nullptr && setupterm(name, out, &error) == OK;
    const bool able = known && tigetstr("cup") != nullptr;
    if (known) {
        del_curterm(cur_term);
    }
    if (able) {
        return std::nullopt;
    }
    return Refused("terminal-unable", "browse needs a terminal that can place its cursor, and TERM says " +
                                          (name == nullptr ? std::string("nothing") : Quoted(name)) + kInstead);
}

BrowseScreen::BrowseScreen(int out, bool colour) : m_out(out) {
    constexpr int kEscapeDelay = 50; // milliseconds; a terminal sends the rest of a key at once
    std::setlocale(LC_CTYPE, "");    // curses and the measuring of names go by it
    InstallAll();                    // before curses, which leaves alone what is taken
    RememberModes(out);
    g_file = OpenAgain(out);
    g_screen = g_file == nullptr ? nullptr : newterm(nullptr, g_file, stdin);
    if (g_screen == nullptr) {
        RestoreAll();
        throw std::runtime_error("the terminal cannot be used");
    }
    PrepareRemedy();
    BeforeLastLine(GiveBack);
    (void)set_escdelay(kEscapeDelay);
    cbreak();
    noecho();
    nonl();
    intrflush(stdscr, FALSE);
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    m_colours = colour && has_colors() && start_color() == OK && use_default_colors() == OK;
    TakeNewSize();
}

BrowseScreen::~BrowseScreen() {
    (void)endwin();
    g_remedy.owner = 0;
    BeforeLastLine(nullptr);
    delscreen(g_screen);
    (void)std::fclose(g_file);
    RestoreAll();
    std::setlocale(LC_CTYPE, "C");
}

bool BrowseScreen::HasManyColours() const {
    constexpr int kMany = 256;
    return m_colours && COLORS >= kMany && COLOR_PAIRS >= kMany;
}

/// The terminal knows its size; what the environment says of it may be old.
void BrowseScreen::TakeNewSize() const {
    winsize size = {};
    if (ioctl(m_out, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
        (void)resizeterm(size.ws_row, size.ws_col); // with no memory for it, the old one stays
    }
}

std::optional<ScreenEvent> BrowseScreen::Key() {
    std::wint_t key = 0;
    const int kind = get_wch(&key);
    if (kind == ERR) {
        return std::nullopt;
    }
    m_emptyReads = 0;
    if (kind == KEY_CODE_YES) {
        return ScreenEvent{key == KEY_RESIZE ? ScreenEvent::Kind::kResize : ScreenEvent::Kind::kKey, key};
    }
    return key == kEscapeKey ? AfterEscape() : ScreenEvent{ScreenEvent::Kind::kCharacter, key};
}

/// The sequence of a key that curses does not know of this terminal is taken whole, since its letters would pass for
/// commands. The digits beside the letters are digits, which such sequences are on many terminals.
ScreenEvent BrowseScreen::AfterEscape() {
    std::wint_t next = 0;
    const int kind = get_wch(&next);
    if (kind == ERR) {
        return {ScreenEvent::Kind::kCharacter, kEscapeKey};
    }
    if (kind == KEY_CODE_YES || (next != L'[' && next != L'O')) {
        (void)(kind == KEY_CODE_YES ? ungetch(static_cast<int>(next)) : unget_wch(static_cast<wchar_t>(next)));
        return {ScreenEvent::Kind::kCharacter, kEscapeKey};
    }
    std::wint_t last = 0;
    while (get_wch(&last) == OK && next == L'[' && (last < L'@' || last > L'~')) {
    }
    if (next == L'O' && last >= L'p' && last <= L'y') {
        return {ScreenEvent::Kind::kCharacter, L'0' + (last - L'p')};
    }
    return {ScreenEvent::Kind::kKey, next == L'O' && last == L'M' ? std::wint_t{KEY_ENTER} : 0};
}

ScreenEvent BrowseScreen::Wait(int other, int milliseconds) {
    constexpr int kEndOfReads = 5;
    if (auto event = Key()) { // curses may have taken several at once
        return *event;
    }
    std::array<pollfd, 3> waiting = {{{STDIN_FILENO, POLLIN, 0}, {g_wake[0], POLLIN, 0}, {other, POLLIN, 0}}};
    const bool come = g_signal == 0 && g_newSize == 0 && poll(waiting.data(), waiting.size(), milliseconds) > 0;
    EmptyPipe();
    if (g_signal != 0) {
        return {ScreenEvent::Kind::kSignal, 0};
    }
    if (g_newSize != 0) {
        g_newSize = 0;
        TakeNewSize();
        return {ScreenEvent::Kind::kResize, 0};
    }
    if (come && (waiting[0].revents & POLLIN) != 0) {
        if (auto event = Key()) {
            return *event;
        }
        ++m_emptyReads;
    }
    if (come && ((waiting[0].revents & (POLLERR | POLLNVAL)) != 0 || waiting[0].revents == POLLHUP ||
                 m_emptyReads >= kEndOfReads)) {
        return {ScreenEvent::Kind::kHangUp, 0};
    }
    const bool otherCame = come && waiting[2].revents != 0;
    return {otherCame ? ScreenEvent::Kind::kOther : ScreenEvent::Kind::kIdle, 0};
}

void BrowseScreen::Resignal() {
    const int signal = g_signal != 0 ? g_signal : InterruptGuard::Signal();
    if (signal != 0) {
        (void)raise(signal); // its handler is the one from before
    }
}

} // namespace dcfctl
