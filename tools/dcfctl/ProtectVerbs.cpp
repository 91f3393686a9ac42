// Protection; see the header.
#include "ProtectVerbs.h"

#include <algorithm>
#include <variant>

#include "CardListing.h"
#include "CardLock.h"
#include "ChangeSafety.h"
#include "DcfNames.h"
#include "Mounts.h"
#include "Phrases.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// Every file costs the card a write, so a batch is small enough to show progress and to stop behind it.
constexpr std::size_t kBatch = 16;

bool Wanted(const Target& target, Protection wanted) {
    // The companion follows its file, also where the two differ.
    return wanted == Protection::kToggle ? !target.file.state.IsProtected() : wanted == Protection::kOn;
}

bool IsAs(const Target& target, bool protect) {
    return target.file.state.IsProtected() == protect &&
           (!target.companion.has_value() || target.companion->state.IsProtected() == protect);
}

/// A second name of the same file may lie outside the card, and permissions belong to the file.
std::optional<Finding> CheckOwnFile(const CardFile& file) {
    if (file.state.names <= 1) {
        return std::nullopt;
    }
    return Refused("file-linked", Quoted(file.path) + " has a second name elsewhere (a hard link), whose protection "
                                                      "would change as well; put a copy in its place first");
}

} // namespace

std::variant<ProtectionWork, Finding> PlanProtection(ChangeSafety& safety, const std::vector<FileEntry>& files,
                                                     Protection wanted, const Tick& tick) {
    auto judgement = safety.Judge(files, tick);
    if (judgement.refusal.has_value()) {
        return *judgement.refusal;
    }
    ProtectionWork work;
    for (Target& target : judgement.targets) {
        if (IsAs(target, Wanted(target, wanted))) {
            ++work.already;
            continue;
        }
        auto finding = CheckOwnFile(target.file);
        if (!finding.has_value() && target.companion.has_value()) {
            finding = CheckOwnFile(*target.companion);
        }
        if (finding.has_value()) {
            return *finding;
        }
        work.targets.push_back(std::move(target));
    }
    return work;
}

namespace {

std::variant<ProtectionWork, Finding> MakePlan(const CardListing& listing, const std::string& root,
                                               const TargetOptions& options, Protection wanted, Progress& progress) {
    ChangeSafety safety(root + "/" + std::string(kDcim), listing.Inspected());
    if (auto finding = safety.CheckCard()) {
        return *finding;
    }
    auto found = FindTargets(listing, root, options);
    if (auto* finding = std::get_if<Finding>(&found)) {
        return *finding;
    }
    const auto tick = [&](std::uint64_t done, std::uint64_t all) { progress.Show(done, all); };
    return PlanProtection(safety, std::get<std::vector<FileEntry>>(found), wanted, tick);
}

void HandOver(ISFileList& list, const std::vector<Target>& targets, std::size_t from, std::size_t to,
              Protection wanted) {
    list.SelectCancel();
    for (std::size_t i = from; i < to; ++i) {
        list.SetSel(targets[i].position, true);
    }
    // Both say 0 whatever happened: the card is looked at afterwards.
    if (wanted == Protection::kToggle) {
        (void)list.SetProtectSelToggle();
    } else {
        (void)list.SetProtectSel(wanted == Protection::kOn);
    }
}

} // namespace

void ProtectAsPlanned(ISFileList& list, const std::vector<Target>& targets, Protection wanted, const Tick& tick) {
    const InterruptGuard guard;
    for (std::size_t from = 0; from < targets.size() && !InterruptGuard::Interrupted(); from += kBatch) {
        const std::size_t to = std::min(from + kBatch, targets.size());
        HandOver(list, targets, from, to, wanted);
        tick(to, targets.size());
    }
}

namespace {

bool TookEffect(const std::string& path, bool protect) {
    const auto state = LookAt(path);
    return state.has_value() && state->IsProtected() == protect;
}

Finding NoEffect(const ProtectionResult& result) {
    std::vector<std::string> paths;
    for (const ProtectionResult::Change& change : result.failed) {
        paths.push_back(change.path);
    }
    const std::string which = " for " + FilesText(paths.size()) + " (" + PathsText(paths) + ")";
    if (InterruptGuard::Interrupted()) {
        return Incomplete("interrupted", "the work was interrupted, and nothing was done" + which + "; run it again");
    }
    return Incomplete("protection-ignored",
                      "the change of protection had no effect" + which + ": " + WhyProtectionFailed(paths.front()));
}

} // namespace

std::optional<Finding> LookAtProtection(const std::vector<Target>& targets, Protection wanted,
                                        ProtectionResult& result) {
    for (const Target& target : targets) {
        const bool protect = Wanted(target, wanted);
        const std::string companion = target.companion.has_value() ? target.companion->path : "";
        const bool done =
            TookEffect(target.file.path, protect) && (companion.empty() || TookEffect(companion, protect));
        (done ? result.changed : result.failed).push_back({target.file.path, companion, protect});
    }
    if (result.failed.empty()) {
        return std::nullopt;
    }
    return NoEffect(result);
}

Report<ProtectionResult> Protect(const CardOptions& card, const TargetOptions& targets, Protection wanted,
                                 Output& err) {
    const CardLock lock(card.root);
    if (lock.Refusal().has_value()) {
        return Failed<ProtectionResult>(*lock.Refusal());
    }
    CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<ProtectionResult>(*listing.Refusal());
    }
    std::variant<ProtectionWork, Finding> plan;
    {
        Progress progress(err, "Looking at the files");
        plan = MakePlan(listing, card.root, targets, wanted, progress);
    }
    if (auto* finding = std::get_if<Finding>(&plan)) {
        return Failed<ProtectionResult>(*finding);
    }
    const auto& work = std::get<ProtectionWork>(plan);
    Progress progress(err, "Changing the protection");
    ProtectAsPlanned(listing.List(), work.targets, wanted,
                     [&](std::uint64_t done, std::uint64_t all) { progress.Show(done, all); });

    Report<ProtectionResult> report;
    ProtectionResult& result = report.value.emplace();
    result.root = card.root;
    result.wanted = wanted;
    result.already = work.already;
    report.error = LookAtProtection(work.targets, wanted, result);
    return report;
}

} // namespace dcfctl
