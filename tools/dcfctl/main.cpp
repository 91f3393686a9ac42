// dcfctl: lists, browses and changes the pictures and movies of a DCF card. This file reads the command line and hands
// over to the verbs; what they return goes to the renderer.
#include <CLI/CLI.hpp>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>

#include "BrowseVerb.h"
#include "CardInspector.h"
#include "ChangeCommands.h"
#include "CheckCommands.h"
#include "DcfNames.h"
#include "ExitCodes.h"
#include "ListVerbs.h"
#include "Output.h"
#include "Renderer.h"
#include "SampleVerb.h"
#include "SheetCommands.h"
#include "ShellVerb.h"
#include "Streams.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kDefaultCard = "/mnt/mmc";

/// The command line as it was read.
struct Request {
    std::string card = kDefaultCard;
    std::string type;
    ListOptions list;
    std::string limit;
    std::string what;
    std::string sampleFolder;
    bool json = false;
    bool noCamera = false;
    bool paths = false;
    bool nul = false;
    ChangeRequest change;
    CheckRequest check;
    SheetOptions sheet;
};

std::string ExitCodeHelp() {
    std::string text = "Exit codes:\n";
    for (const ExitCodeRow& row : kExitCodes) {
        text += "  " + std::to_string(static_cast<int>(row.code)) + "  " + row.meaning + "\n";
    }
    return text;
}

/// What the checks say is escaped later, with everything else that the parser has to say (see Run).
void AddTypeOption(CLI::App& verb, Request& request, const char* help) {
    verb.add_option("--type", request.type, help)->type_name("TYPE")->check([](const std::string& text) {
        return TypeFromText(text).has_value() ? "" : "'" + text + "' is no type; use JPG, SRW, MPO, MP4 or AVI";
    });
}

void AddReadingOptions(CLI::App& verb, Request& request) {
    verb.add_flag("--json", request.json, "One JSON document instead of text");
    verb.add_flag("--no-camera", request.noCamera, "Leave the \"Camera\" folder out");
}

void AddVerbs(CLI::App& app, Request& request) {
    CLI::App* ls = app.add_subcommand("ls", "List the files of the card in order");
    AddTypeOption(*ls, request, "Only files of a type (or with a companion of it): JPG, SRW, MPO, MP4, AVI");
    ls->add_option("--dir", request.list.directory, "Only files of a folder, by its name or number")
        ->type_name("FOLDER");
    ls->add_option("--limit", request.limit, "Only the first N files")
        ->type_name("N")
        ->check([](const std::string& text) {
            const auto number = WholeNumber(text);
            return number.has_value() && *number >= 0 ? "" : "'" + text + "' is no number of files; use 0 or more";
        });
    AddReadingOptions(*ls, request);
    CLI::Option* metadata =
        ls->add_flag("--metadata", request.list.metadata, "What the pictures tell of themselves, too");
    CLI::Option* paths = ls->add_flag("--paths", request.paths, "Only the paths, one a line");
    CLI::Option* nul = ls->add_flag("-0,--null", request.nul, "Only the paths, as they are, each ended by a NUL byte");
    for (CLI::Option* option : {paths, nul}) {
        option->excludes(metadata);
    }
    paths->excludes(ls->get_option("--json"));
    nul->excludes(ls->get_option("--json"));

    CLI::App* count = app.add_subcommand("count", "Show the number of files");
    AddTypeOption(*count, request, "Only files of a type (or with a companion of it): JPG, SRW, MPO, MP4, AVI");
    AddReadingOptions(*count, request);

    CLI::App* show = app.add_subcommand("show", "Show everything about one file");
    show->add_option("file", request.what, "Its path, or its position in the list from 0 on")
        ->type_name("PATH|POSITION")
        ->required();
    AddReadingOptions(*show, request);

    CLI::App* shell =
        app.add_subcommand("shell", "Call the file list's operations by name, at a prompt or from a script");
    shell->add_flag("--json", request.json, "One JSON document for each line instead of text");

    CLI::App* sample = app.add_subcommand("sample", "Make a sample card to try things on");
    sample->add_option("folder", request.sampleFolder, "The card's folder; it must not have a DCIM yet")
        ->type_name("DIR")
        ->required();
    sample->add_flag("--json", request.json, "One JSON document instead of text");
    for (CLI::App* verb : {ls, count, show, shell, sample}) {
        verb->group("Verbs");
        verb->fallthrough(); // --card may stand behind the verb
    }
}

void Describe(CLI::App& app, Request& request) {
    app.name("dcfctl");
    app.option_defaults()->always_capture_default(false);
    app.set_version_flag("--version", "dcfctl " DCFCTL_VERSION);
    app.add_option("--card", request.card, std::string("The card's folder (default: ") + kDefaultCard + ")")
        ->type_name("DIR")
        ->envname("DCF_CARD");
    app.require_subcommand(0, 1); // a missing one is told below, in the words of this tool
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    AddVerbs(app, request);
    AddBrowseVerb(app, request.noCamera);
    AddChangeVerbs(app, request.change, request.json, request.noCamera);
    AddCheckVerbs(app, request.check, request.json, request.noCamera);
    AddSheetVerb(app, request.sheet, request.json, request.noCamera);
    app.footer(ExitCodeHelp());
}

Format FormatOf(const Request& request) {
    if (request.json) {
        return Format::kJson;
    }
    if (request.nul) {
        return Format::kNulPaths;
    }
    return request.paths ? Format::kPaths : Format::kText;
}

ExitCode RunVerb(const CLI::App& app, Request& request, Renderer& renderer, Output& out, Output& err) {
    const CardOptions card = {NormalisedRoot(request.card), !request.noCamera};
    if (const auto code = RunChangeVerb(app, request.change, card, renderer, err)) {
        return *code;
    }
    if (const auto code = RunCheckVerb(app, request.check, card, renderer, err)) {
        return *code;
    }
    if (app.got_subcommand("sheet")) {
        return renderer.Show(MakeSheet(card, request.sheet, out, err));
    }
    const auto type = TypeFromText(request.type);
    if (app.got_subcommand("ls")) {
        request.list.type = type;
        request.list.pathsOnly = request.paths || request.nul;
        if (const auto limit = WholeNumber(request.limit)) {
            request.list.limit = static_cast<std::uint64_t>(*limit);
        }
        return renderer.Show(List(card, request.list));
    }
    if (app.got_subcommand("count")) {
        return renderer.Show(Count(card, type));
    }
    if (app.got_subcommand("show")) {
        return renderer.Show(Show(card, request.what));
    }
    if (app.got_subcommand("browse")) {
        return Browse(card, renderer, out);
    }
    if (app.got_subcommand("sample")) {
        return renderer.Show(MakeSample(NormalisedRoot(request.sampleFolder)));
    }
    return RunShell(card.root, renderer, out);
}

/// The first word that could not be understood is an option.
bool FirstIsOption(const CLI::App& app) {
    const std::vector<std::string> rest = app.remaining();
    return !rest.empty() && rest[0].rfind('-', 0) == 0;
}

/// What the command line's grammar lets pass. An empty folder name is a slip, often of a variable that is not set, and
/// must not mean "/".
std::string FindMistake(const CLI::App& app, const Request& request) {
    if (app.get_subcommands().empty()) {
        std::string verbs;
        for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; })) {
            verbs += (verbs.empty() ? "" : ", ") + verb->get_name();
        }
        const std::vector<std::string> rest = app.remaining();
        return (rest.empty() ? "no verb is given" : "there is no verb " + Quoted(rest[0])) + "; use one of " + verbs;
    }
    if (request.card.empty() || (app.got_subcommand("sample") && request.sampleFolder.empty())) {
        return "the folder's name is empty; name the card's folder";
    }
    return {};
}

ExitCode Run(int argc, char** argv, Output& out, Output& err) {
    const auto textRenderer = MakeTextRenderer(Format::kText, out, err);
    Request request;
    CLI::App app("Lists, browses and changes the pictures and movies of a DCF memory card.");
    Describe(app, request);
    Renderer& text = *textRenderer;
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
        out.Write(std::string(version.what()) + "\n");
        return ExitCode::kSuccess;
    } catch (const CLI::Success&) {
        out.Write(app.help());
        return ExitCode::kSuccess;
    } catch (const CLI::ParseError& error) {
        const bool noVerb = app.get_subcommands().empty() && !FirstIsOption(app) &&
                            dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
        text.SayError((noVerb ? FindMistake(app, request) : Escaped(error.what())) + "; see dcfctl --help");
        return ExitCode::kUsage;
    }
    if (const std::string mistake = FindMistake(app, request); !mistake.empty()) {
        text.SayError(mistake + "; see dcfctl --help");
        return ExitCode::kUsage;
    }
    return RunVerb(app, request, *MakeRenderer(FormatOf(request), out, err), out, err);
}

/// A reader that has had enough is no news; any other failure is.
ExitCode Finish(ExitCode code, Output& out, Output& err) {
    out.Flush();
    if (out.Error() == 0) {
        return code;
    }
    if (out.Error() != EPIPE) {
        MakeTextRenderer(Format::kText, out, err)
            ->SayError(std::string("the output cannot be written (") + std::strerror(out.Error()) +
                       ") and is not complete; look at where it goes");
    }
    return ExitCode::kIncomplete;
}

ExitCode RunSafely(int argc, char** argv, Output& out, Output& err) {
    try {
        return Run(argc, argv, out, err);
    } catch (const std::exception& exception) {
        MakeTextRenderer(Format::kText, out, err)
            ->SayError("the work is not complete: " + Escaped(exception.what()) + "; try again with less at once");
        return ExitCode::kIncomplete;
    }
}

} // namespace
} // namespace dcfctl

int main(int argc, char** argv) {
    dcfctl::Output out(dcfctl::SeparateOutput());
    dcfctl::Output err(STDERR_FILENO);
    dcfctl::CatchAborts();
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(cert-err33-c): SIGPIPE can always be ignored
    return static_cast<int>(dcfctl::Finish(dcfctl::RunSafely(argc, argv, out, err), out, err));
}
