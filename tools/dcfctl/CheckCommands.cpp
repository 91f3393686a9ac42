// The command line; see the header.
#include "CheckCommands.h"

#include "CheckVerb.h"
#include "ExplainVerb.h"

namespace dcfctl {

void AddCheckVerbs(CLI::App& app, CheckRequest& request, bool& json, bool& noCamera) {
    CLI::App* check =
        app.add_subcommand("check", "Account for every entry of the card, and tell what could cost a picture");
    check->add_flag("--all", request.all, "Show every finding, not only the first of a kind");
    CLI::App* explain =
        app.add_subcommand("explain", "Tell where a file or folder stands in the list, or why it does not");
    explain->add_option("name", request.what, "Its path, or its name alone; it need not be on the card")
        ->type_name("NAME|PATH")
        ->required();
    for (CLI::App* verb : {check, explain}) {
        verb->add_flag("--json", json, "One JSON document instead of text");
        verb->add_flag("--no-camera", noCamera, "Leave the \"Camera\" folder out");
        verb->group("Verbs");
        verb->fallthrough(); // --card may stand behind the verb
    }
}

std::optional<ExitCode> RunCheckVerb(const CLI::App& app, const CheckRequest& request, const CardOptions& card,
                                     Renderer& renderer, Output& err) {
    const std::string verb = app.get_subcommands().front()->get_name();
    if (verb == "check") {
        Report<CheckResult> report = Check(card, err);
        if (report.value.has_value()) {
            report.value->showAll = request.all;
        }
        return renderer.Show(report);
    }
    if (verb == "explain") {
        return renderer.Show(Explain(card, request.what, err));
    }
    return std::nullopt;
}

} // namespace dcfctl
