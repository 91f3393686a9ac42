// A buffered stream onto a file descriptor that tells what went wrong. Used by the renderer; one thread.
#ifndef DCFCTL_OUTPUT_H
#define DCFCTL_OUTPUT_H

#include <string>
#include <string_view>

namespace dcfctl {

class Output {
public:
    /// @param fd stays the caller's.
    explicit Output(int fd);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() = default; ///< What was not flushed is lost, as is its failure.

    /// Takes the text, and writes when enough has come together. Does nothing after a failure.
    void Write(std::string_view text);
    void Flush();

    [[nodiscard]] bool IsTerminal() const {
        return m_terminal;
    }
    /// Colours are for a terminal that knows them, unless NO_COLOR says otherwise.
    [[nodiscard]] bool HasColour() const {
        return m_colour;
    }
    /// The terminal cannot show more than ASCII.
    [[nodiscard]] bool IsAsciiTerminal() const {
        return m_asciiTerminal;
    }
    /// errno of the write that failed, 0 while all is well.
    [[nodiscard]] int Error() const {
        return m_error;
    }
    [[nodiscard]] int Descriptor() const {
        return m_fd;
    }

private:
    int m_fd;
    bool m_terminal;
    bool m_colour;
    bool m_asciiTerminal;
    int m_error = 0;
    std::string m_buffer;
};

} // namespace dcfctl

#endif
