// The verb in which every operation of the file list can be tried out by its own name, at a prompt or from a script.
#ifndef DCFCTL_SHELL_VERB_H
#define DCFCTL_SHELL_VERB_H

#include <string>

#include "ExitCodes.h"
#include "Renderer.h"

namespace dcfctl {

/// Reads standard input to its end, or to "quit". A line that fails costs itself only.
/// @param out the descriptor of the output, for the prompt.
/// @return for a script the exit code of the first line that failed; at a prompt success.
[[nodiscard]] ExitCode RunShell(const std::string& root, Renderer& renderer, const Output& out);

} // namespace dcfctl

#endif
