// Turns the values of the verbs into text or JSON: the only place that writes. Results go to standard output, errors
// and warnings to standard error, one line each. One thread.
#ifndef DCFCTL_RENDERER_H
#define DCFCTL_RENDERER_H

#include <memory>
#include <string_view>

#include "AddVerb.h"
#include "CheckVerb.h"
#include "ExplainVerb.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "NameVerbs.h"
#include "Output.h"
#include "ProtectVerbs.h"
#include "RemoveVerb.h"
#include "RenumberVerb.h"
#include "SampleVerb.h"
#include "SeriesVerb.h"
#include "SheetVerb.h"
#include "ShellTypes.h"

namespace dcfctl {

enum class Format {
    kText,
    kJson,
    kPaths,    ///< ls alone: one path a line.
    kNulPaths, ///< ls alone: paths as they are, each ended by a NUL byte.
};

class Renderer {
public:
    Renderer(Output& out, Output& err) : m_out(out), m_err(err) {}
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;
    virtual ~Renderer() = default;

    /// Shows a report: warnings and error, and the value if there is one. @return the exit code that it stands for.
    template <typename Value>
    ExitCode Show(const Report<Value>& report) {
        SayAll(report.warnings, report.error);
        Put(report);
        m_out.Flush();
        return report.Exit();
    }
    void Show(const ShellReply& reply);

    /// What is going to be deleted, as the first part of the result.
    virtual void Announce(const RemovalPlan& plan) = 0;
    /// The same on standard error, where it is asked about.
    void ShowPlan(const RemovalPlan& plan);

    /// One line on standard error.
    void SayError(std::string_view text);
    void SayWarning(std::string_view text);
    /// Text of the shell for the person at the prompt.
    virtual void Tell(std::string_view text) = 0;

protected:
    virtual void Put(const Report<ListResult>& report) = 0;
    virtual void Put(const Report<CountResult>& report) = 0;
    virtual void Put(const Report<ShowResult>& report) = 0;
    virtual void Put(const Report<SampleResult>& report) = 0;
    virtual void Put(const Report<RemovalResult>& report) = 0;
    virtual void Put(const Report<ProtectionResult>& report) = 0;
    virtual void Put(const Report<LatestNameResult>& report) = 0;
    virtual void Put(const Report<CapacityResult>& report) = 0;
    virtual void Put(const Report<NextNameResult>& report) = 0;
    virtual void Put(const Report<AddResult>& report) = 0;
    virtual void Put(const Report<RenumberResult>& report) = 0;
    virtual void Put(const Report<SeriesResult>& report) = 0;
    virtual void Put(const Report<CheckResult>& report) = 0;
    virtual void Put(const Report<ExplainResult>& report) = 0;
    virtual void Put(const Report<SheetResult>& report) = 0;
    virtual void Put(const ShellReply& reply) = 0;

    [[nodiscard]] Output& Out() {
        return m_out;
    }

private:
    void SayAll(const std::vector<Finding>& warnings, const std::optional<Finding>& error);
    void Say(std::string_view kind, std::string_view colour, std::string_view text);

    Output& m_out;
    Output& m_err;
};

[[nodiscard]] std::unique_ptr<Renderer> MakeRenderer(Format format, Output& out, Output& err);

std::unique_ptr<Renderer> MakeTextRenderer(Format format, Output& out, Output& err);
std::unique_ptr<Renderer> MakeJsonRenderer(Output& out, Output& err);

} // namespace dcfctl

#endif
