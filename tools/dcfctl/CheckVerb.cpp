// check; see the header.
#include "CheckVerb.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "CardCheck.h"
#include "CardHazards.h"
#include "FileHazards.h"
#include "LeftOut.h"
#include "Phrases.h"

namespace dcfctl {
namespace {

void Append(std::vector<CheckFinding>& all, std::vector<CheckFinding> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

/// The library refuses a card for something that no other hazard tells of.
void AddRefusal(const Finding& refusal, const std::string& root, std::vector<CheckFinding>& findings) {
    const bool told = std::any_of(findings.begin(), findings.end(), [](const CheckFinding& finding) {
        return finding.code == CheckCode::kRootCamera || finding.code == CheckCode::kRootTooLong ||
               finding.code == CheckCode::kFolderNumberShared;
    });
    if (!told) {
        findings.push_back({CheckCode::kListingFails, root.empty() ? "/" : root, refusal.text, ""});
    }
}

void Order(std::vector<CheckFinding>& findings) {
    std::stable_sort(findings.begin(), findings.end(), [](const CheckFinding& a, const CheckFinding& b) {
        const Severity severityA = a.Row().severity;
        const Severity severityB = b.Row().severity;
        return severityA != severityB ? severityA < severityB : a.code < b.code;
    });
}

std::vector<Finding> Warnings(const CheckFigures& figures, std::size_t leftOutFindings) {
    if (leftOutFindings + figures.hazards == 0) {
        return {};
    }
    return {{"check-findings", ExitCode::kFindings,
             "the list leaves out " + CountText(leftOutFindings, "entry", "entries") + ", and " +
                 CountText(figures.hazards, "hazard", "hazards") +
                 (figures.hazards == 1 ? " was found" : " were found") + "; what to do stands beside each"}};
}

} // namespace

Report<CheckResult> Check(const CardOptions& card, Output& err) {
    const CardCheck check(card, err);
    if (check.Error().has_value()) {
        return Failed<CheckResult>(*check.Error());
    }
    Report<CheckResult> report;
    CheckResult& result = report.value.emplace();
    result.root = card.root;
    result.refusal = check.Refusal();
    result.renumbering = PlanRenumberingOf(check);
    result.findings = AllLeftOut(check);
    result.figures = check.Figures();
    result.figures.leftOut = result.findings.size();
    result.figures.numbersLeft = NumbersLeft(check);
    Append(result.findings, FindCardHazards(check, result.renumbering));
    Append(result.findings, FindFolderHazards(check));
    Append(result.findings, FindFileHazards(
                                check, [](const std::string&) { return true; }, err));
    if (result.refusal.has_value()) {
        AddRefusal(*result.refusal, card.root, result.findings);
    }
    Order(result.findings);
    std::size_t leftOut = 0;
    for (const CheckFinding& finding : result.findings) {
        const Severity severity = finding.Row().severity;
        leftOut += severity == Severity::kLeftOut ? 1 : 0;
        result.figures.hazards += severity == Severity::kHazard ? 1 : 0;
        result.figures.notes += severity == Severity::kNote ? 1 : 0;
    }
    report.warnings = Warnings(result.figures, leftOut);
    report.error = check.Disagreement();
    if (!report.error.has_value()) {
        report.error = check.Closes(result.figures);
    }
    return report;
}

} // namespace dcfctl
