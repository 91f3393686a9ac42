// What passes between the shell, its operations and the renderer. Plain data.
#ifndef DCFCTL_SHELL_TYPES_H
#define DCFCTL_SHELL_TYPES_H

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CSFileListItem.h"
#include "Findings.h"

namespace dcfctl {

/// How much of an item an operation fills.
enum class Filled { kWhole, kPathsAndTime };

struct ShownItem {
    CSFileListItem item;
    Filled filled = Filled::kWhole;
};

/// What an operation of the file list gave back.
struct CallResult {
    /// Nothing for an operation without a result.
    std::variant<std::monostate, bool, int, std::vector<int>> value;
    std::optional<ShownItem> item;
    std::optional<std::string> path; ///< A path that was written into a buffer.
};

/// The outcome of one line of the shell.
struct ShellReply {
    std::size_t line = 0; ///< From 1; 0 at a prompt.
    std::string operation;
    std::vector<std::string> arguments;
    std::optional<CallResult> result;
    std::optional<std::string> text; ///< An answer of the shell itself, such as its help.
    std::optional<Finding> error;
    std::vector<Finding> warnings;
};

} // namespace dcfctl

#endif
