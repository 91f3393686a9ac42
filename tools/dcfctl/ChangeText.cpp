// Results as text; see the header.
#include "ChangeText.h"

#include <algorithm>
#include <cstddef>

#include "Phrases.h"

namespace dcfctl {

std::string CountsText(const RemovalCounts& counts) {
    std::string text = FilesText(counts.files);
    if (counts.companions > 0) {
        text += " with " + CountText(counts.companions, "companion", "companions");
    }
    text += " (" + SizeText(counts.bytes) + ")";
    if (counts.folders > 0) {
        text += " and " + CountText(counts.folders, "folder", "folders");
    }
    return text;
}

namespace {

std::string SeriesLine(long stored, const std::optional<long>& before, bool dryRun) {
    std::string text = std::string("  series value ") + (dryRun ? "would be " : "") + SeriesText(stored);
    if (before.has_value() && *before != stored) {
        text += " (before: " + SeriesText(*before) + ")";
    }
    return text + "\n";
}

} // namespace

std::string ChangeText::Lines(const std::vector<std::string>& paths) const {
    std::string text;
    for (const std::string& path : paths) {
        text += "  " + m_show(path) + "\n";
    }
    return text;
}

std::string ChangeText::MadeLines(const std::vector<std::string>& made, bool dryRun) const {
    std::string text;
    for (const std::string& folder : made) {
        text += std::string(dryRun ? "  would make " : "  made ") + m_show(folder) + "\n";
    }
    return text;
}

std::string ChangeText::Of(const RemovalPlan& plan, bool wholeList) const {
    constexpr std::size_t kShown = 20;
    const std::size_t shown = wholeList ? plan.targets.size() : std::min(plan.targets.size(), kShown);
    std::string text = "To be deleted: " + CountsText(plan.counts) + "\n";
    for (std::size_t i = 0; i < shown; ++i) {
        const Target& target = plan.targets[i];
        text += "  " + m_show(target.file.path) + (target.AnyProtected() ? " (protected)" : "") + "\n";
        if (target.companion.has_value()) {
            text += "  " + m_show(target.companion->path) + " (its companion)\n";
        }
    }
    if (shown < plan.targets.size()) {
        text += "  and " + FilesText(plan.targets.size() - shown) + " more, which --dry-run shows\n";
    }
    for (const std::string& folder : plan.folders) {
        text += "  " + m_show(folder) + " (a folder with nothing left in it)\n";
    }
    if (!plan.kept.empty()) {
        text += "Protected and kept: " + FilesText(plan.kept.size()) + "\n" + Lines(plan.kept);
    }
    return text;
}

std::string ChangeText::Of(const RemovalResult& result) const {
    if (result.plan.targets.empty() && result.plan.folders.empty()) {
        return "There is nothing to delete.\n";
    }
    if (result.dryRun) {
        return Of(result.plan, true) + "Nothing was deleted.\n";
    }
    std::string text = "Deleted " + CountsText(result.done) + ".\n";
    if (!result.left.empty()) {
        text += "Still there:\n" + Lines(result.left);
    }
    return text;
}

std::string ChangeText::Of(const ProtectionResult& result) const {
    std::size_t on = 0;
    for (const ProtectionResult::Change& change : result.changed) {
        on += change.protect ? 1 : 0;
    }
    std::string text;
    if (on > 0) {
        text += "Protected " + FilesText(on) + ".\n";
    }
    if (on < result.changed.size()) {
        text += "Unprotected " + FilesText(result.changed.size() - on) + ".\n";
    }
    if (result.already > 0) {
        text += FilesText(result.already) + (result.already == 1 ? " was" : " were") + " so already.\n";
    }
    for (const ProtectionResult::Change& change : result.failed) {
        text += std::string(change.protect ? "Not protected: " : "Not unprotected: ") + m_show(change.path) + "\n";
    }
    return text.empty() ? "There is no file to change.\n" : text;
}

std::string ChangeText::Of(const LatestNameResult& result) const {
    return m_show(result.path) + "\n";
}

std::string ChangeText::Of(const CapacityResult& result) const {
    return "numbers left  " + std::to_string(result.numbersLeft) + "\n" + "free space    " +
           SizeText(result.freeBytes) + " of " + SizeText(result.totalBytes) + "\n";
}

std::string ChangeText::Of(const NextNameResult& result) const {
    return m_show(result.path) + "\n" + MadeLines(result.made, result.dryRun) +
           SeriesLine(result.stored, result.storedBefore, result.dryRun);
}

std::string ChangeText::Of(const AddResult& result) const {
    std::string text;
    for (const AddedFile& file : result.files) {
        text += m_show(file.path) + (file.companion ? " (companion)" : "") + " from " + m_show(file.source) + "\n";
    }
    text += MadeLines(result.made, result.dryRun);
    if (result.stored.has_value()) {
        text += SeriesLine(*result.stored, result.storedBefore, result.dryRun);
    }
    text += std::string(result.dryRun ? "Would add " : "Added ") + FilesText(result.files.size()) + " (" +
            SizeText(result.bytes) + ").\n";
    if (!result.notAdded.empty()) {
        text += "Not added:\n" + Lines(result.notAdded);
    }
    return text;
}

std::string ChangeText::Of(const RenumberResult& result) const {
    std::string text;
    for (const Renaming& row : result.plan.rows) {
        const bool left = std::find(result.left.begin(), result.left.end(), row.from) != result.left.end();
        text += "  " + m_show(row.from) + " -> " + m_show(row.to) + "  " +
                (left ? "NOT DONE" : m_show(OutcomeText(row))) + "\n";
    }
    if (result.dryRun) {
        text +=
            std::string("The plan is ") + (result.complete ? "complete" : "not complete") + ". Nothing was renamed.\n";
    } else {
        text += "Renumbered.\n";
    }
    return text + SeriesLine(result.stored, result.storedBefore, result.dryRun);
}

std::string ChangeText::Of(const SeriesResult& result) const {
    const auto shown = [](long value) { return SeriesText(value) + " (" + std::to_string(value) + ")"; };
    if (!result.set) {
        return shown(result.value) + "\n";
    }
    return "The series value is now " + shown(result.value) + "; before: " + shown(result.before) + ".\n";
}

} // namespace dcfctl
