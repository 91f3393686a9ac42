// Playback: "dcfctl browse" before a person who looks at the screen: the pseudo-terminal, and libvterm in the place of
// the glass. Waits for what appears; never for a time. One thread.
#ifndef TESTS_CLI_BROWSE_PLAYBACK_H
#define TESTS_CLI_BROWSE_PLAYBACK_H

#include <vterm.h>

#include <functional>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "Jpeg.h"
#include "Terminal.h"

namespace clitest {

// Keys as the terminal of these tests sends them.
inline constexpr char kArrowUp[] = "\x1bOA";
inline constexpr char kArrowDown[] = "\x1bOB";
inline constexpr char kArrowRight[] = "\x1bOC";
inline constexpr char kArrowLeft[] = "\x1bOD";
inline constexpr char kHome[] = "\x1b[1~";
inline constexpr char kEnd[] = "\x1b[4~";
inline constexpr char kPageUp[] = "\x1b[5~";
inline constexpr char kPageDown[] = "\x1b[6~";
inline constexpr char kEnter[] = "\r";
inline constexpr char kBackspace[] = "\x7f";
inline constexpr char kEscape[] = "\x1b";

/// A terminal with colours that speaks UTF-8.
[[nodiscard]] Options ColourTerminal();

class Playback {
public:
    explicit Playback(const std::string& root, Options options = ColourTerminal(), TerminalSize size = {24, 80},
                      const Words& words = {});
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;
    ~Playback();

    void Type(const std::string& keys);
    /// Waits until the text stands on the screen, in one line or, at its blanks, in several. @return whether it did
    /// within ten seconds.
    [[nodiscard]] bool Shows(const std::string& text);
    /// Waits until it stands there no more.
    [[nodiscard]] bool Hides(const std::string& text);
    /// Types, and waits for the text.
    [[nodiscard]] bool Answers(const std::string& keys, const std::string& text);
    /// Waits until the cursor is on a position.
    [[nodiscard]] bool IsAt(int position);
    /// Waits until the line of a position begins so: cursor, selection, protection, transfer.
    [[nodiscard]] bool HasMarks(int position, const std::string& marks);
    /// Waits for something about the screen.
    [[nodiscard]] bool Comes(const std::function<bool()>& condition);

    /// Types q. @return the exit code.
    [[nodiscard]] int Quit();
    /// Waits for the end. @return as Terminal::End.
    [[nodiscard]] int End();
    void Resize(TerminalSize size);

    /// The screen, line by line.
    [[nodiscard]] std::string Text() const;
    [[nodiscard]] std::string Line(int row) const;
    [[nodiscard]] bool IsOnOtherScreen() const {
        return m_otherScreen;
    }
    /// Whether any character has a colour of its own.
    [[nodiscard]] bool HasColour() const;
    /// Whether any character has about this colour.
    [[nodiscard]] bool HasTint(dcfctl::Colour colour) const {
        return TintWidth(colour) > 0;
    }
    /// In how many columns there is one.
    [[nodiscard]] int TintWidth(dcfctl::Colour colour) const;
    /// Whether the terminal is as the person had it: its modes, its screen, its cursor.
    [[nodiscard]] bool IsGivenBack() const {
        return m_terminal.IsAsAtTheStart() && !m_otherScreen && m_cursorShown;
    }
    [[nodiscard]] const Terminal& Device() const {
        return m_terminal;
    }

private:
    /// The screen as one line, without what fills its lines up.
    [[nodiscard]] std::string Flowing() const;
    static int TakeProperty(VTermProp property, VTermValue* value, void* self);
    void Feed();
    [[nodiscard]] VTermScreenCell Cell(int row, int column) const;

    Terminal m_terminal;
    TerminalSize m_size;
    VTerm* m_glass;
    VTermScreen* m_screen;
    VTermScreenCallbacks m_callbacks{};
    std::size_t m_fed = 0;
    bool m_otherScreen = false;
    bool m_cursorShown = true;
};

} // namespace clitest

#endif
