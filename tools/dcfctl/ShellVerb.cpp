// The shell's loop; see the header.
#include "ShellVerb.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <exception>

#include "CardInspector.h"
#include "FileListSession.h"
#include "LineReader.h"
#include "ShellOperations.h"
#include "ShellParser.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kHelp = "help";
constexpr const char* kQuit = "quit";
constexpr const char* kExit = "exit";

Finding UsageError(const std::string& text) {
    return {"usage", ExitCode::kUsage, text};
}

std::string HelpLine(const Operation& operation) {
    std::string usage = operation.name;
    usage += *operation.signature != '\0' ? std::string(" ") + operation.signature : "";
    constexpr std::size_t kColumn = 42;
    usage.resize(std::max(usage.size() + 2, kColumn), ' ');
    return "  " + usage + operation.summary + "\n";
}

std::string HelpText() {
    std::string text = "Every operation of the file list by its own name:\n";
    for (const Operation& operation : Operations()) {
        text += HelpLine(operation);
    }
    return text + "  help [OPERATION]                          this text\n"
                  "  quit, exit                                leave the shell\n"
                  "FLAG is true or false, TYPE is JPG, SRW, MPO, MP4, AVI, none or a number. Delete, SetProtect,\n"
                  "SetWifiFlag, IsWifiFlag and IsLast work on the item that was filled last. Quotes hold blanks\n"
                  "together, \\xNN is a byte, # begins a comment.\n";
}

std::string Suggestion(const std::string& name) {
    for (const Operation& operation : Operations()) {
        const std::string known = operation.name;
        if (EqualNoCase(known, name) || (name.size() > 3 && EqualNoCase(known.substr(0, name.size()), name))) {
            return "did you mean " + known + "?";
        }
    }
    return "'help' lists the operations";
}

class Shell {
public:
    Shell(const std::string& root, Renderer& renderer) : m_renderer(renderer), m_session(root, true) {
        m_state.root = root;
        m_state.list = &m_session.List();
    }

    /// @return false when the line ends the shell.
    bool Run(const std::string& line, std::size_t number);

    [[nodiscard]] ExitCode FirstFailure() const {
        return m_firstFailure;
    }

    /// What may stand behind the words of a line, for completion.
    [[nodiscard]] std::vector<std::string> Complete(const std::vector<std::string>& before);

private:
    void Answer(ShellReply& reply, const ParsedLine& line);
    void Call(ShellReply& reply, const Operation& operation, const Arguments& arguments);
    void Help(ShellReply& reply, const ParsedLine& line);
    [[nodiscard]] std::vector<std::string> Paths() const;

    Renderer& m_renderer;
    FileListSession m_session;
    ShellState m_state;
    ExitCode m_firstFailure = ExitCode::kSuccess;
};

bool Shell::Run(const std::string& line, std::size_t number) {
    ParsedLine parsed = ParseLine(line);
    ShellReply reply;
    reply.line = number;
    if (parsed.error.empty()) {
        if (parsed.words.empty()) {
            return true;
        }
        reply.operation = parsed.words[0].text;
        if (parsed.words.size() == 1 && (reply.operation == kQuit || reply.operation == kExit)) {
            return false;
        }
        for (std::size_t i = 1; i < parsed.words.size(); ++i) {
            reply.arguments.push_back(parsed.words[i].text);
        }
        Answer(reply, parsed);
    } else {
        reply.error = UsageError(parsed.error);
    }
    if (reply.error.has_value() && m_firstFailure == ExitCode::kSuccess) {
        m_firstFailure = reply.error->exit;
    }
    m_renderer.Show(reply);
    return true;
}

void Shell::Answer(ShellReply& reply, const ParsedLine& line) {
    if (reply.operation == kHelp) {
        Help(reply, line);
        return;
    }
    const Operation* operation = FindOperation(reply.operation);
    if (operation == nullptr) {
        reply.error =
            UsageError("there is no operation " + Quoted(reply.operation) + "; " + Suggestion(reply.operation));
        return;
    }
    const auto read = ReadArguments(*operation, {line.words.begin() + 1, line.words.end()});
    if (const auto* reason = std::get_if<std::string>(&read)) {
        reply.error = UsageError(reply.operation + ": " + *reason);
        return;
    }
    const auto& arguments = std::get<Arguments>(read);
    reply.error = CheckOperation(m_state, *operation, arguments);
    if (!reply.error.has_value()) {
        Call(reply, *operation, arguments);
    }
}

void Shell::Call(ShellReply& reply, const Operation& operation, const Arguments& arguments) {
    const bool listing = (operation.guards & kListing) != 0;
    const CardInspector inspector(m_state.root, m_state.camera);
    const bool hadDcim = inspector.HasDcim();
    try {
        reply.result = operation.call(m_state, arguments);
    } catch (const std::exception& exception) {
        reply.error = Finding{"exception", ExitCode::kIncomplete,
                              reply.operation + ": an exception came back, " + Quoted(exception.what()) +
                                  "; look at the list again before going on"};
    }
    if (listing) {
        reply.warnings = inspector.Inspect().warnings;
        if (!hadDcim && inspector.HasDcim()) {
            reply.warnings.push_back(
                {"dcim-made", ExitCode::kSuccess, "the card had no folder 'DCIM', and listing it has made one"});
        }
    }
}

void Shell::Help(ShellReply& reply, const ParsedLine& line) {
    if (line.words.size() == 1) {
        reply.text = HelpText();
        return;
    }
    const std::string& name = line.words[1].text;
    if (const Operation* operation = FindOperation(name)) {
        reply.text = HelpLine(*operation);
    } else {
        reply.error = UsageError("there is no operation " + Quoted(name) + "; " + Suggestion(name));
    }
}

std::vector<std::string> Shell::Paths() const {
    std::vector<std::string> paths;
    if (!m_state.listed || m_state.list == nullptr) {
        return paths;
    }
    const int count = m_state.list->GetCount();
    for (int position = 0; position < count; ++position) {
        CSFileListItem item;
        (void)m_state.list->GetAtSimply(position, &item); // 0 for every position of the list
        std::string shown = Escaped(item.m_strURI);
        if (shown.find_first_of(" \t'\"#") == std::string::npos) { // completion does not open quotes
            paths.push_back(std::move(shown));
        }
    }
    return paths;
}

std::vector<std::string> Shell::Complete(const std::vector<std::string>& before) {
    std::vector<std::string> words;
    if (before.empty() || (before.size() == 1 && before[0] == kHelp)) {
        for (const Operation& operation : Operations()) {
            words.emplace_back(operation.name);
        }
        words.insert(words.end(), {kHelp, kQuit, kExit});
        std::sort(words.begin(), words.end());
        return words;
    }
    const Operation* operation = FindOperation(before[0]);
    if (operation == nullptr || before.size() > operation->kinds.size()) {
        return {};
    }
    const ArgumentKind kind = operation->kinds[before.size() - 1];
    return kind == ArgumentKind::kPath ? Paths() : WordsFor(kind);
}

} // namespace

ExitCode RunShell(const std::string& root, Renderer& renderer, const Output& out) {
    if (const auto finding = CardInspector(root, true).CheckRoot()) {
        ShellReply reply;
        reply.error = finding;
        renderer.Show(reply);
        return finding->exit;
    }
    Shell shell(root, renderer);
    const bool prompt = isatty(STDIN_FILENO) != 0 && out.IsTerminal();
    const auto reader =
        prompt ? MakePromptReader(out.Descriptor(),
                                  [&shell](const std::vector<std::string>& before) { return shell.Complete(before); })
               : MakeScriptReader();
    if (prompt) {
        renderer.Tell("Card " + Quoted(root.empty() ? "/" : root) +
                      ". Listup lists it, help shows the operations, quit leaves.\n");
    }
    std::size_t number = 0;
    while (const auto line = reader->Next()) {
        ++number;
        if (!shell.Run(*line, prompt ? 0 : number) || out.Error() != 0) {
            break;
        }
    }
    if (reader->Error() != 0) {
        renderer.SayError(std::string("the script cannot be read (") + std::strerror(reader->Error()) +
                          "); give a file or a pipe on standard input");
        return ExitCode::kIncomplete;
    }
    return prompt ? ExitCode::kSuccess : shell.FirstFailure();
}

} // namespace dcfctl
