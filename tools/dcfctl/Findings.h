// What the tool has to say about a card or a request beside its result: one cause, one cure, one line. Plain data.
#ifndef DCFCTL_FINDINGS_H
#define DCFCTL_FINDINGS_H

#include <optional>
#include <string>
#include <vector>

#include "ExitCodes.h"

namespace dcfctl {

struct Finding {
    const char* code; ///< Stable name of the cause, for programs.
    ExitCode exit;    ///< What it makes of the run; success for a remark that takes nothing away.
    std::string text; ///< One line, names escaped: the cause, and after a semicolon the cure.
};

/// What a verb hands to the renderer: its value, or the error that stood in the way, and what else is to be said.
template <typename Value>
struct Report {
    std::optional<Value> value;
    std::optional<Finding> error;
    std::vector<Finding> warnings;

    /// The error's exit code, else the first one that a warning asks for.
    [[nodiscard]] ExitCode Exit() const {
        if (error.has_value()) {
            return error->exit;
        }
        for (const Finding& warning : warnings) {
            if (warning.exit != ExitCode::kSuccess) {
                return warning.exit;
            }
        }
        return ExitCode::kSuccess;
    }
};

template <typename Value>
Report<Value> Failed(Finding error) {
    Report<Value> report;
    report.error = std::move(error);
    return report;
}

} // namespace dcfctl

#endif
