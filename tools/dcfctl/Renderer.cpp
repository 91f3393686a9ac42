// What text and JSON have in common: the lines on standard error. See the header.
#include "Renderer.h"

#include "ChangeText.h"
#include "Text.h"

namespace dcfctl {

void Renderer::Say(std::string_view kind, std::string_view colour, std::string_view text) {
    m_out.Flush(); // what was said before stands before
    std::string line = "dcfctl: ";
    line += m_err.HasColour() ? std::string(colour) + std::string(kind) + "\033[0m" : std::string(kind);
    line += ": ";
    line += m_err.IsAsciiTerminal() ? AsciiOnly(text) : text;
    line += '\n';
    m_err.Write(line);
    m_err.Flush();
}

void Renderer::SayError(std::string_view text) {
    Say("error", "\033[1;31m", text);
}

void Renderer::SayWarning(std::string_view text) {
    Say("warning", "\033[1;33m", text);
}

void Renderer::ShowPlan(const RemovalPlan& plan) {
    const ChangeText text(
        [this](std::string_view name) { return m_err.IsAsciiTerminal() ? AsciiOnly(Escaped(name)) : Escaped(name); });
    m_err.Write(text.Of(plan, false));
    m_err.Flush();
}

void Renderer::SayAll(const std::vector<Finding>& warnings, const std::optional<Finding>& error) {
    for (const Finding& warning : warnings) {
        SayWarning(warning.text);
    }
    if (error.has_value()) {
        SayError(error->text);
    }
}

void Renderer::Show(const ShellReply& reply) {
    std::optional<Finding> error = reply.error;
    if (error.has_value() && reply.line > 0) {
        error->text = "line " + std::to_string(reply.line) + ": " + error->text;
    }
    SayAll(reply.warnings, error);
    Put(reply);
    m_out.Flush();
}

std::unique_ptr<Renderer> MakeRenderer(Format format, Output& out, Output& err) {
    return format == Format::kJson ? MakeJsonRenderer(out, err) : MakeTextRenderer(format, out, err);
}

} // namespace dcfctl
