// The command line of the verbs that change a card or name files: their options, and the road from them to the verbs.
// Called by main. One thread.
#ifndef DCFCTL_CHANGE_COMMANDS_H
#define DCFCTL_CHANGE_COMMANDS_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "ExitCodes.h"
#include "ListVerbs.h"
#include "Naming.h"
#include "Output.h"
#include "Renderer.h"
#include "Targets.h"

namespace dcfctl {

/// The options of these verbs as they were read.
struct ChangeRequest {
    TargetOptions targets;
    NamingOptions naming;
    std::string colour = "standard";
    std::string type;
    std::vector<std::string> files;
    std::vector<std::string> series;
    bool protectedToo = false;
    bool dryRun = false;
    bool yes = false;
    bool force = false;
};

/// @param json, noCamera the options that all verbs share.
void AddChangeVerbs(CLI::App& app, ChangeRequest& request, bool& json, bool& noCamera);

/// @return nothing when the verb is none of these.
[[nodiscard]] std::optional<ExitCode> RunChangeVerb(const CLI::App& app, const ChangeRequest& request,
                                                    const CardOptions& card, Renderer& renderer, Output& err);

} // namespace dcfctl

#endif
