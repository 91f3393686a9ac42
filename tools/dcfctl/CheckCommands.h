// The command line of check and explain: their options, and the road from them to the verbs. Called by main. One
// thread.
#ifndef DCFCTL_CHECK_COMMANDS_H
#define DCFCTL_CHECK_COMMANDS_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "ExitCodes.h"
#include "ListVerbs.h"
#include "Output.h"
#include "Renderer.h"

namespace dcfctl {

/// The options of these verbs as they were read.
struct CheckRequest {
    bool all = false;
    std::string what;
};

/// @param json, noCamera the options that all verbs share.
void AddCheckVerbs(CLI::App& app, CheckRequest& request, bool& json, bool& noCamera);

/// @return nothing when the verb is none of these.
[[nodiscard]] std::optional<ExitCode> RunCheckVerb(const CLI::App& app, const CheckRequest& request,
                                                   const CardOptions& card, Renderer& renderer, Output& err);

} // namespace dcfctl

#endif
