// What is looked at before the shell deletes, names or renumbers: where these operations leave the list, which they
// then go on to use, so that what would end it is found before the card has changed. Read-only. One thread.
#ifndef DCFCTL_SHELL_CHANGE_GUARDS_H
#define DCFCTL_SHELL_CHANGE_GUARDS_H

#include <optional>

#include "Findings.h"
#include "ShellOperations.h"

namespace dcfctl {

/// DeleteSel walks over all folders up to the last selected file, and moves the cursor to the position before the first
/// selected one: does the card still have those folders, and is there a file for the cursor then?
[[nodiscard]] std::optional<Finding> CheckSetDeletion(const ShellState& state, const Operation& operation);

/// GetNewFileName puts the file into the first folder of the list: may that be "Camera", which has other names?
[[nodiscard]] std::optional<Finding> CheckFirstFolder(const ShellState& state, const Operation& operation);

/// DeleteAll and RenameDCFFullStorage list the card again: the one that was chosen last, with the folders as they are
/// then.
[[nodiscard]] std::optional<Finding> CheckRelisting(const ShellState& state, const Operation& operation);

} // namespace dcfctl

#endif
