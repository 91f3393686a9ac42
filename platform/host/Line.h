// One line of text for a log or for standard error: bounded, without control characters, handed over in one write.
// Allocates nothing, so that a line can be told when memory has run out. One line belongs to one thread.
#ifndef PLATFORM_HOST_LINE_H
#define PLATFORM_HOST_LINE_H

#include <array>
#include <climits>
#include <cstddef>
#include <string_view>

namespace host {

/// What becomes of the colour sequences in a text: a terminal gets them, a file does not.
enum class Colours { Drop, Keep };

class Line {
public:
    /// Adds a text. Control characters other than a tab become visible as \xNN, so that no name on a card can begin a
    /// line of its own or steer a terminal; complete control sequences (ESC [ ...) are left out, or kept if they only
    /// set colours and Colours::Keep is given. A line that is full ends in "...".
    Line& Add(std::string_view text, Colours colours = Colours::Drop);
    /// Adds up to 127 formatted characters, for numbers and the like.
    Line& Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// The line so far, without newline.
    const char* Text();
    /// Writes the line and a newline in one call.
    /// @return bytes written, or -1 when not all of them were.
    int WriteTo(int fd);

private:
    // A pipe takes up to PIPE_BUF bytes in one piece whoever else writes to it; a file takes any number.
    static constexpr std::size_t kCapacity = PIPE_BUF;
    static constexpr std::string_view kCut = "...";
    static constexpr std::size_t kRoom = kCapacity - kCut.size() - 1;

    void Append(std::string_view piece);

    std::array<char, kCapacity> m_text; // the last character is left for the newline or the terminator
    std::size_t m_size = 0;
    bool m_full = false;
};

} // namespace host

#endif
