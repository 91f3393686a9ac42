// renumber; see the header.
#include "RenumberVerb.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <variant>

#include "CardListing.h"
#include "CardLock.h"
#include "ChangeSafety.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "Rehearsal.h"
#include "SeriesStore.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// The first row that is not clean, and how many there are.
std::string Troubles(const RenumberPlan& plan) {
    std::size_t count = 0;
    std::string first;
    for (const Renaming& row : plan.rows) {
        if (!row.IsClean() && count++ == 0) {
            first = Quoted(row.from) + ": " + OutcomeText(row);
        }
    }
    return first + (count > 1 ? " (and " + std::to_string(count - 1) + " more)" : "");
}

std::optional<Finding> CheckPlan(const RenumberPlan& plan, const RenumberOptions& options) {
    if (plan.DoesHarm()) {
        const auto harm = std::find_if(plan.rows.begin(), plan.rows.end(), [](const Renaming& row) {
            return row.outcome == RenameOutcome::kOverwrites || row.outcome == RenameOutcome::kBeyond;
        });
        return Refused("plan-harmful", "the renumbering is not done, not even with --force: " + Quoted(harm->from) +
                                           " " + OutcomeText(*harm) + "; move that entry out of 'DCIM' first");
    }
    if (!plan.IsComplete() && !options.force) {
        return Refused("plan-incomplete", "the renumbering would not end complete: " + Troubles(plan) +
                                              "; 'dcfctl renumber --dry-run' shows the whole plan, and --force does "
                                              "what can be done");
    }
    return std::nullopt;
}

/// Whether the entry is where it is to be now. It is known again by what it is, not by its name alone.
bool IsInPlace(const std::string& dcim, const FinalPlace& entry) {
    const auto now = LookAt(dcim + "/" + entry.to);
    return now.has_value() &&
           (now->IsSame(entry.state) || (entry.to != entry.from && !LookAt(dcim + "/" + entry.from).has_value()));
}

/// An incomplete plan can leave two folders of one number, which the listing at the end may not survive; so that one
/// runs in a process of its own, and the card is looked at afterwards.
bool Run(ISFileList& list, bool contained) {
    const InterruptGuard guard;
    const auto renumber = [&list] { (void)list.RenameDCFFullStorage(); }; // has one result
    if (contained) {
        return Rehearse(renumber) != Rehearsed::kNotTried;
    }
    renumber();
    return true;
}

void LookAtOutcome(const std::string& dcim, RenumberResult& result) {
    for (const FinalPlace& entry : result.plan.entries) {
        if (!IsInPlace(dcim, entry)) {
            result.left.push_back(entry.from);
        }
    }
}

std::optional<Finding> Outcome(const RenumberResult& result) {
    if (!result.left.empty()) {
        return Incomplete("left-behind", "not all entries have their new names: " + PathsText(result.left) +
                                             "; check that 'DCIM' may be written and that nothing in it is in use, "
                                             "then look at 'dcfctl renumber --dry-run'");
    }
    std::vector<std::string> kept;
    for (const Renaming& row : result.plan.rows) {
        if (!row.WillHaveNewName()) {
            kept.push_back(row.from);
        }
    }
    if (!kept.empty()) {
        return Incomplete("partly-renumbered", "as planned, some entries were not renamed: " + PathsText(kept) +
                                                   "; give them free numbers by hand, and look whether two folders "
                                                   "share a number now");
    }
    return CheckStored(0);
}

std::vector<Finding> PlanWarnings(const RenumberPlan& plan) {
    if (plan.IsComplete()) {
        return {};
    }
    return {{"plan-incomplete", ExitCode::kFindings,
             "this renumbering would not end complete: " + Troubles(plan) + "; without --dry-run it is refused" +
                 (plan.DoesHarm() ? "" : " unless --force is given")}};
}

} // namespace

Report<RenumberResult> Renumber(const CardOptions& card, const RenumberOptions& options) {
    const CardLock lock(card.root);
    if (lock.Refusal().has_value()) {
        return Failed<RenumberResult>(*lock.Refusal());
    }
    const CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<RenumberResult>(*listing.Refusal());
    }
    const std::string dcim = card.root + "/" + std::string(kDcim);
    if (auto finding = ChangeSafety(dcim, listing.Inspected()).CheckCard()) {
        return Failed<RenumberResult>(*finding);
    }
    Report<RenumberResult> report;
    RenumberResult& result = report.value.emplace();
    result.root = card.root;
    result.dryRun = options.dryRun;
    result.plan = PlanRenumbering(dcim, listing.Inspected());
    result.complete = result.plan.IsComplete();
    const auto stored = SeriesStore::Read();
    if (const auto* value = std::get_if<long>(&stored)) {
        result.storedBefore = *value;
    }
    if (options.dryRun) {
        report.warnings = PlanWarnings(result.plan);
        return report;
    }
    auto finding = CheckPlan(result.plan, options);
    if (!finding.has_value()) {
        finding = CheckWritable(dcim, "renamed");
    }
    if (!finding.has_value() && !Run(listing.List(), !result.complete)) {
        finding = Refused("no-process", "no process could be started for the work, and nothing was changed; try again");
    }
    if (finding.has_value()) {
        return Failed<RenumberResult>(*finding);
    }
    LookAtOutcome(dcim, result);
    report.error = Outcome(result);
    return report;
}

} // namespace dcfctl
