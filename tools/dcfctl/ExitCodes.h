// The exit codes of every verb, in the one table from which the help is printed and against which the man page is
// tested. Plain constants.
#ifndef DCFCTL_EXIT_CODES_H
#define DCFCTL_EXIT_CODES_H

namespace dcfctl {

enum class ExitCode : int {
    kSuccess = 0,
    kFindings = 1,
    kUsage = 2,
    kRefused = 3,
    kCardUnreadable = 4,
    kPartial = 5,
    kIncomplete = 6,
};

struct ExitCodeRow {
    ExitCode code;
    const char* name; ///< Stable, for programs: stands in the JSON output.
    const char* meaning;
};

inline constexpr ExitCodeRow kExitCodes[] = {
    {ExitCode::kSuccess, "success", "Everything was done."},
    {ExitCode::kFindings, "findings", "A check was done and found something to tell."},
    {ExitCode::kUsage, "usage", "The command line, or a line of a shell script, could not be understood."},
    {ExitCode::kRefused, "refused", "What was asked would go wrong; nothing was changed."},
    {ExitCode::kCardUnreadable, "card-unreadable", "There is no card at that path, or it cannot be read."},
    {ExitCode::kPartial, "partial", "The card was listed only in part, or without all details."},
    {ExitCode::kIncomplete, "incomplete", "The work began but did not end complete."},
};

constexpr const ExitCodeRow& RowOf(ExitCode code) {
    for (const ExitCodeRow& row : kExitCodes) {
        if (row.code == code) {
            return row;
        }
    }
    return kExitCodes[0];
}

} // namespace dcfctl

#endif
