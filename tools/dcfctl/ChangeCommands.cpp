// The command line; see the header.
#include "ChangeCommands.h"

#include "AddVerb.h"
#include "DcfNames.h"
#include "NameVerbs.h"
#include "Phrases.h"
#include "ProtectVerbs.h"
#include "RemoveVerb.h"
#include "RenumberVerb.h"
#include "SeriesVerb.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kOptional = "optional";

/// A verb and the options that all have.
CLI::App* AddVerb(CLI::App& app, const char* name, const char* help, bool& json) {
    CLI::App* verb = app.add_subcommand(name, help);
    verb->add_flag("--json", json, "One JSON document instead of text");
    verb->group("Verbs that change the card and name new files");
    verb->fallthrough(); // --card may stand behind the verb
    return verb;
}

void AddCamera(CLI::App& verb, bool& noCamera) {
    verb.add_flag("--no-camera", noCamera, "Leave the \"Camera\" folder out");
}

void AddTargets(CLI::App& verb, TargetOptions& targets) {
    CLI::Option* paths = verb.add_option("file", targets.paths, "Paths of files of the list")->type_name("PATH");
    CLI::Option* positions =
        verb.add_option("--pos", targets.positions, "Positions in the list, from 0 on")->type_name("N");
    CLI::Option* all = verb.add_flag("--all", targets.all, "All files of the list");
    paths->excludes(positions)->excludes(all);
    positions->excludes(all);
    verb.callback([&targets, &verb] {
        if (targets.paths.empty() && targets.positions.empty() && !targets.all) {
            throw CLI::ValidationError(verb.get_name(), "no file is named; give paths, --pos N or --all");
        }
    });
}

void AddFolderNaming(CLI::App& verb, NamingOptions& naming) {
    verb.add_flag("--date-folders", naming.dateFolders, "Name new folders after the date, as 100_0501");
    verb.add_flag("--series", naming.series, "Go on from the stored series value, for this run");
}

void AddNaming(CLI::App& verb, ChangeRequest& request) {
    CLI::Option* prefix = verb.add_option("--prefix", request.naming.prefix, "First four characters of new names")
                              ->type_name("ABCD")
                              ->check(CheckPrefix);
    CLI::Option* dates =
        verb.add_flag("--date-names", request.naming.dateNames, "Begin new names with month and day instead");
    prefix->excludes(dates);
    verb.add_option("--colour,--color", request.colour, "Colour mode: standard (KVR_) or optional (_KVR)")
        ->type_name("MODE")
        ->check(CLI::IsMember({"standard", kOptional}));
    verb.add_flag("--3d", request.naming.stereoscopic, "The pictures are stereoscopic");
    AddFolderNaming(verb, request.naming);
}

void AddRemoval(CLI::App& app, ChangeRequest& request, bool& json, bool& noCamera) {
    CLI::App* rm = AddVerb(app, "rm", "Delete files with their companions, and folders that this empties", json);
    AddTargets(*rm, request.targets);
    rm->add_flag("--protected-too", request.protectedToo, "With --all: delete protected files as well")
        ->needs(rm->get_option("--all"));
    rm->add_flag("--dry-run", request.dryRun, "Only show what would be deleted");
    rm->add_flag("--yes", request.yes, "Do not ask");
    AddCamera(*rm, noCamera);
}

void AddProtection(CLI::App& app, ChangeRequest& request, bool& json, bool& noCamera) {
    constexpr const char* kVerbs[][2] = {{"protect", "Protect files and their companions from deletion"},
                                         {"unprotect", "Take the protection off"},
                                         {"toggle", "Protect what is not protected, and the other way round"}};
    for (const auto& [name, help] : kVerbs) {
        CLI::App* verb = AddVerb(app, name, help, json);
        AddTargets(*verb, request.targets);
        AddCamera(*verb, noCamera);
    }
}

void AddNames(CLI::App& app, ChangeRequest& request, bool& json, bool& noCamera) {
    CLI::App* latest = AddVerb(app, "latest-name", "Show the path of the newest file, or of a companion for it", json);
    latest->add_option("--type", request.type, "The companion's type: SRW or MPO")
        ->type_name("TYPE")
        ->check([](const std::string& text) {
            const eFileType type = TypeFromText(text).value_or(FILE_TYPE_NONE);
            const bool fits = type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
            return fits ? "" : Quoted(text) + " is no type of a companion; use SRW or MPO";
        });
    AddCamera(*latest, noCamera);

    CLI::App* capacity =
        AddVerb(app, "capacity", "Show the numbers left for new files, and the free space beside it", json);
    AddFolderNaming(*capacity, request.naming);
    AddCamera(*capacity, noCamera);

    CLI::App* next = AddVerb(app, "next-name", "Take the number of the next file, and show the path for it", json);
    next->add_option("--type", request.type, "The new file's type: JPG (default), SRW, MPO, MP4, AVI")
        ->type_name("TYPE")
        ->check([](const std::string& text) {
            return TypeFromText(text).has_value() ? "" : Quoted(text) + " is no type; use JPG, SRW, MPO, MP4 or AVI";
        });
    AddNaming(*next, request);
    next->add_flag("--dry-run", request.dryRun, "Only foretell the name; nothing is taken or made");
    AddCamera(*next, noCamera);

    CLI::App* add = AddVerb(app, "add", "Copy pictures and movies onto the card under the next names", json);
    add->add_option("file", request.files, "The files; a JPG and an SRW (or MPO) of one name stay a pair")
        ->type_name("FILE")
        ->required();
    AddNaming(*add, request);
    add->add_flag("--dry-run", request.dryRun, "Only show what would be added");
    AddCamera(*add, noCamera);
}

void CheckSeries(const std::vector<std::string>& words) {
    const std::string action = words.empty() ? "show" : words[0];
    const std::size_t wanted = action == "set" ? 2 : 1;
    if (action != "show" && action != "set" && action != "reset") {
        throw CLI::ValidationError("series", Quoted(action) + " is unknown; use show, set N or reset");
    }
    if (words.size() > wanted || (action == "set" && words.size() < wanted)) {
        throw CLI::ValidationError("series", words.size() > wanted ? Quoted(words[wanted]) + " is one word too many"
                                                                   : "the value is missing; it is set N");
    }
}

} // namespace

void AddChangeVerbs(CLI::App& app, ChangeRequest& request, bool& json, bool& noCamera) {
    AddRemoval(app, request, json, noCamera);
    AddProtection(app, request, json, noCamera);
    AddNames(app, request, json, noCamera);

    CLI::App* renumber =
        AddVerb(app, "renumber", "Give the folders of a full card the numbers from 100 on, in reversed order", json);
    renumber->add_flag("--dry-run", request.dryRun, "Only show the plan");
    renumber->add_flag("--force", request.force, "Do what can be done of a plan that is not complete");
    AddCamera(*renumber, noCamera);

    CLI::App* series = AddVerb(app, "series", "Show, set or reset the stored series value", json);
    series->add_option("action", request.series, "show (default), set N, or reset; N is a number such as 100-0012")
        ->type_name("ACTION");
    series->callback([&request] { CheckSeries(request.series); });
}

namespace {

/// Shows what will go and asks, unless the answer stands on the command line.
std::optional<Finding> Agree(const RemovalPlan& plan, bool yes, Renderer& renderer, Output& err) {
    if (yes) {
        renderer.Announce(plan);
        return std::nullopt;
    }
    if (!CanAsk(err)) {
        return Refused("not-asked", "nothing was deleted, because there is no terminal to ask on; --yes deletes "
                                    "without a question, --dry-run only shows what would go");
    }
    renderer.ShowPlan(plan);
    if (Ask(err, "Delete?")) {
        return std::nullopt;
    }
    return Refused("not-agreed", "nothing was deleted, since the answer was not y");
}

ExitCode RunSeries(const std::vector<std::string>& words, Renderer& renderer) {
    if (words.empty() || words[0] == "show") {
        return renderer.Show(ShowSeries());
    }
    return renderer.Show(words[0] == "set" ? SetSeries(words[1]) : ResetSeries());
}

NamingOptions NamingOf(const ChangeRequest& request) {
    NamingOptions naming = request.naming;
    naming.colour = request.colour == kOptional ? FILE_LIST_COLOR_MODE_OPTIONAL : FILE_LIST_COLOR_MODE_STANDARD;
    return naming;
}

} // namespace

std::optional<ExitCode> RunChangeVerb(const CLI::App& app, const ChangeRequest& request, const CardOptions& card,
                                      Renderer& renderer, Output& err) {
    const std::string verb = app.get_subcommands().front()->get_name();
    const auto type = TypeFromText(request.type);
    if (verb == "rm") {
        const auto agree = [&](const RemovalPlan& plan) { return Agree(plan, request.yes, renderer, err); };
        return renderer.Show(Remove(card, {request.targets, request.protectedToo, request.dryRun}, agree, err));
    }
    if (verb == "protect" || verb == "unprotect" || verb == "toggle") {
        const Protection wanted = verb == "protect"     ? Protection::kOn
                                  : verb == "unprotect" ? Protection::kOff
                                                        : Protection::kToggle;
        return renderer.Show(Protect(card, request.targets, wanted, err));
    }
    if (verb == "latest-name") {
        return renderer.Show(LatestName(card, type));
    }
    if (verb == "capacity") {
        return renderer.Show(Capacity(card, NamingOf(request)));
    }
    if (verb == "next-name") {
        return renderer.Show(NextName(card, NamingOf(request), type.value_or(FILE_TYPE_JPG), request.dryRun));
    }
    if (verb == "add") {
        return renderer.Show(Add(card, {request.files, NamingOf(request), request.dryRun}, err));
    }
    if (verb == "renumber") {
        return renderer.Show(Renumber(card, {request.dryRun, request.force}));
    }
    if (verb == "series") {
        return RunSeries(request.series, renderer);
    }
    return std::nullopt;
}

} // namespace dcfctl
