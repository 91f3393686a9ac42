// Where the lines of the shell come from: a person at a terminal, or a script on standard input. One thread.
#ifndef DCFCTL_LINE_READER_H
#define DCFCTL_LINE_READER_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dcfctl {

class LineReader {
public:
    LineReader() = default;
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    virtual ~LineReader() = default;

    /// @return the next line without its end; nothing at the end of the input.
    virtual std::optional<std::string> Next() = 0;
    [[nodiscard]] virtual bool IsInteractive() const = 0;
    /// errno of a failed read, else 0.
    [[nodiscard]] virtual int Error() const {
        return 0;
    }
};

/// @param before the words before the one to complete. @return what may stand in its place.
using Completer = std::function<std::vector<std::string>(const std::vector<std::string>& before)>;

/// Reads standard input as it comes.
std::unique_ptr<LineReader> MakeScriptReader();

/// Reads from the terminal, with history and completion.
/// @param out descriptor that the prompt is written to.
std::unique_ptr<LineReader> MakePromptReader(int out, Completer completer);

} // namespace dcfctl

#endif
