// The terminal in the browser's hands: taken over in the constructor, and given back whatever happens: by the
// destructor, at an assertion, and at a signal that ends the process. Tells of keys, of a new size and of signals. One
// thread, one screen.
#ifndef DCFCTL_BROWSE_SCREEN_H
#define DCFCTL_BROWSE_SCREEN_H

#include <cwchar>
#include <optional>
#include <string>

#include "Findings.h"

namespace dcfctl {

/// What came from outside.
struct ScreenEvent {
    enum class Kind {
        kCharacter, ///< Of the text that is typed.
        kKey,       ///< A key of its own, by its name in curses.
        kResize,
        kOther,  ///< The other descriptor can be read.
        kIdle,   ///< Nothing came in time.
        kSignal, ///< The process is to end.
        kHangUp, ///< The terminal is gone.
    };
    Kind kind = Kind::kIdle;
    std::wint_t key = 0;
};

class BrowseScreen {
public:
    /// Why there can be none: no terminal, or one that cannot place its cursor. @param out descriptor of the output.
    [[nodiscard]] static std::optional<Finding> Check(int out);

    /// @param out as it was checked. @param colour whether colours are wanted.
    BrowseScreen(int out, bool colour);
    BrowseScreen(const BrowseScreen&) = delete;
    BrowseScreen& operator=(const BrowseScreen&) = delete;
    /// Gives the terminal back. A signal that came is passed on to the process afterwards, by Resignal.
    ~BrowseScreen();

    /// Waits for something. @param other a descriptor that is waited for as well, or -1.
    [[nodiscard]] ScreenEvent Wait(int other, int milliseconds);

    [[nodiscard]] bool HasColours() const {
        return m_colours;
    }
    /// Enough of them for a picture.
    [[nodiscard]] bool HasManyColours() const;

    /// After the screen is gone: ends the process by the signal that has come, to the screen or to a work, if one has.
    static void Resignal();

private:
    [[nodiscard]] std::optional<ScreenEvent> Key();
    [[nodiscard]] static ScreenEvent AfterEscape();
    void TakeNewSize() const;

    int m_out;
    bool m_colours = false;
    int m_emptyReads = 0; ///< Readable without a key in it, in a row: the other end is gone.
};

} // namespace dcfctl

#endif
