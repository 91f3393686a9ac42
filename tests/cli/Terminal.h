// Terminal: dcfctl at a pseudo-terminal, with a person who types and waits for what appears. One thread.
#ifndef TESTS_CLI_TERMINAL_H
#define TESTS_CLI_TERMINAL_H

#include <sys/types.h>

#include <string>

#include "Cli.h"

namespace clitest {

struct TerminalSize {
    unsigned short rows = 50;
    unsigned short columns = 200;
};

class Terminal {
public:
    /// Starts dcfctl; its standard streams are the terminal.
    explicit Terminal(const Words& arguments, const Options& options = {}, TerminalSize size = {});
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    /// Ends it if it still runs.
    ~Terminal();

    void Type(const std::string& keys);
    /// Waits until the text appears behind what was waited for before. @return whether it did within ten seconds.
    [[nodiscard]] bool Shows(const std::string& text);
    /// Waits for the end. @return the exit code, -1 when a signal ended it or when it did not end in time.
    [[nodiscard]] int End();
    /// The signal that ended it, 0 for none.
    [[nodiscard]] int EndedBy() const {
        return m_signal;
    }
    void Send(int signal) const;
    void Resize(TerminalSize size) const;
    /// Takes up what comes within a time. @return false at the end.
    bool Take(int milliseconds);
    /// Whether the terminal shows what is typed and hands out whole lines, as it did at the start.
    [[nodiscard]] bool IsAsAtTheStart() const;
    /// Waits for the prompt and until the editor has the terminal: keys typed before are not the editor's.
    [[nodiscard]] bool ShowsPrompt();
    /// Everything that has appeared, with line ends as the terminal has them.
    [[nodiscard]] const std::string& Screen() const {
        return m_screen;
    }

private:
    pid_t m_child;
    int m_terminal = -1;
    int m_signal = 0;
    std::string m_screen;
    std::size_t m_seen = 0;
};

inline constexpr char kTab[] = "\t";
inline constexpr char kUp[] = "\x1b[A";
inline constexpr char kInterrupt[] = "\x03";
inline constexpr char kEndOfInput[] = "\x04";

} // namespace clitest

#endif
