// Results as text; see the header.
#include "CheckText.h"

#include <algorithm>

#include "Phrases.h"

namespace dcfctl {
namespace {

/// How many findings of one code are shown unless all are asked for.
constexpr std::size_t kShown = 10;
/// The library does not count the numbers beyond these.
constexpr int kMany = 20000;

std::string FiguresLine(const CheckFigures& figures) {
    return CountText(figures.entries, "entry", "entries") + " in " + CountText(figures.folders, "folder", "folders") +
           " = " + std::to_string(figures.listed) + " listed + " +
           CountText(figures.companions, "companion", "companions") + " + " + std::to_string(figures.leftOut) +
           " left out\n";
}

std::string RenumberingText(const RenumberPlan& plan) {
    if (plan.rows.empty()) {
        return "would find nothing to rename";
    }
    const auto renamed = std::count_if(plan.rows.begin(), plan.rows.end(), [](const Renaming& row) {
        return row.WillHaveNewName() && row.outcome != RenameOutcome::kUnchanged;
    });
    const std::string complete = plan.DoesHarm()     ? "something would be lost"
                                 : plan.IsComplete() ? "the plan is complete"
                                                     : "the plan is not complete";
    return "would rename " + std::to_string(renamed) + " of " + CountText(plan.rows.size(), "entry", "entries") + "; " +
           complete + " ('dcfctl renumber --dry-run' shows it)";
}

const char* Heading(Severity severity) {
    constexpr const char* kHeadings[] = {"Left out", "Hazards", "Notes"};
    return kHeadings[static_cast<std::size_t>(severity)];
}

} // namespace

std::string CheckText::Path(const std::string& path, const std::string& root) const {
    const std::string above = root + "/";
    return m_name(path.size() > above.size() && path.compare(0, above.size(), above) == 0 ? path.substr(above.size())
                                                                                          : path);
}

/// The findings of one code.
std::string CheckText::Group(const CheckResult& result, std::size_t begin, std::size_t end) const {
    const CheckCodeRow& row = result.findings[begin].Row();
    std::string text = std::string("  ") + row.name + ": " + row.title + "\n";
    const std::size_t shown = result.showAll ? end : std::min(end, begin + kShown);
    for (std::size_t i = begin; i < shown; ++i) {
        const CheckFinding& finding = result.findings[i];
        text += "    " + Path(finding.path, result.root) + ": " + m_text(finding.text) + "\n";
    }
    if (shown < end) {
        text += "    and " + std::to_string(end - shown) + " more, which --all shows\n";
    }
    return text + "    To do: " + row.cure + ".\n";
}

std::string CheckText::Section(const CheckResult& result, Severity severity) const {
    std::string groups;
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < result.findings.size();) {
        std::size_t end = begin;
        while (end < result.findings.size() && result.findings[end].code == result.findings[begin].code) {
            ++end;
        }
        if (result.findings[begin].Row().severity == severity) {
            groups += Group(result, begin, end);
            count += end - begin;
        }
        begin = end;
    }
    return count == 0 ? "" : std::string("\n") + Heading(severity) + ": " + std::to_string(count) + "\n" + groups;
}

std::string CheckText::Of(const CheckResult& result) const {
    std::string text = FiguresLine(result.figures);
    if (result.figures.numbersLeft.has_value()) {
        const int left = *result.figures.numbersLeft;
        text += "Numbers left for new files: " + std::to_string(left) + (left >= kMany ? " or more" : "") + "\n";
    }
    text += "A renumbering " + RenumberingText(result.renumbering) + ".\n";
    for (const Severity severity : {Severity::kLeftOut, Severity::kHazard, Severity::kNote}) {
        text += Section(result, severity);
    }
    return text;
}

std::string CheckText::PlaceLine(const ExplainedEntry& entry, const std::string& root) const {
    const std::string is = entry.onCard ? "is " : "is not on the card, and would be ";
    const std::string position = entry.position.has_value() ? std::to_string(*entry.position) : "";
    const std::string number = entry.number.has_value() ? std::to_string(*entry.number) : "";
    switch (entry.place) {
    case Place::kListed:
        return is + "in the list at position " + position + ", with the number " + number +
               (entry.partner.empty() ? "" : " and the companion " + Path(entry.partner, root));
    case Place::kCompanion:
        return is + "the companion of " + Path(entry.partner, root) + ", which is in the list at position " + position;
    case Place::kFolder:
        return is + "a folder of the list with the number " + number +
               (entry.onCard
                    ? " and " + FilesText(entry.files) + (position.empty() ? "" : ", the first at position " + position)
                    : "");
    case Place::kLeftOut:
        break;
    }
    return is + "left out of the list";
}

std::string CheckText::Of(const ExplainedEntry& entry, const std::string& root) const {
    std::string text = Path(entry.path, root) + "\n  " + PlaceLine(entry, root) + "\n";
    for (const CheckFinding& finding : entry.findings) {
        const CheckCodeRow& row = finding.Row();
        const bool own = finding.path == entry.path;
        text += std::string("  ") + SeverityName(row.severity) + " " + row.name + ": " +
                (own ? "" : Path(finding.path, root) + ": ") + m_text(finding.text) + "\n    To do: " + row.cure +
                ".\n";
    }
    return text;
}

std::string CheckText::Of(const ExplainResult& result) const {
    std::string text;
    for (const ExplainedEntry& entry : result.entries) {
        text += Of(entry, result.root);
    }
    return text;
}

} // namespace dcfctl
