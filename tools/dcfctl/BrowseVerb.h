// browse: playback on a terminal. Lists the card like the other verbs, then hands it to a person.
#ifndef DCFCTL_BROWSE_VERB_H
#define DCFCTL_BROWSE_VERB_H

#include <CLI/CLI.hpp>

#include "ExitCodes.h"
#include "ListVerbs.h"
#include "Output.h"
#include "Renderer.h"

namespace dcfctl {

/// @param noCamera the option that all verbs share.
void AddBrowseVerb(CLI::App& app, bool& noCamera);

/// Until the person leaves. @param out the terminal. A signal that comes meanwhile ends the process.
[[nodiscard]] ExitCode Browse(const CardOptions& card, Renderer& renderer, const Output& out);

} // namespace dcfctl

#endif
