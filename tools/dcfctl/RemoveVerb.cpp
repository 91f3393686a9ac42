// rm; see the header. Sections: the plan, the work, the look at the card afterwards.
#include "RemoveVerb.h"

#include <map>
#include <set>

#include "CardListing.h"
#include "CardLock.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

// ---- The plan ----

void Add(RemovalCounts& counts, const Target& target) {
    ++counts.files;
    counts.bytes += target.file.state.size;
    if (target.companion.has_value()) {
        ++counts.companions;
        counts.bytes += target.companion->state.size;
    }
}

/// The folders in which nothing would stay. The library looks at the card for that, not at its list.
void PlanFolders(const std::string& dcim, const CardReport& report, bool all, ChangeSafety& safety, RemovalPlan& plan) {
    std::map<std::string, std::size_t> going;
    for (const Target& target : plan.targets) {
        going[target.folder] += target.companion.has_value() ? 2 : 1;
    }
    for (const CardFolder& folder : report.folders) {
        const FolderContents& contents = safety.Folder(folder.name);
        const std::string path = dcim + "/" + folder.name;
        const auto found = going.find(folder.name);
        if (found != going.end() && found->second == contents.Names().size()) {
            plan.folders.push_back(path);
        } else if (all && contents.Error() == 0 && contents.Names().empty()) {
            plan.folders.push_back(path);
            plan.emptyBefore.push_back(path);
        }
    }
    plan.counts.folders = plan.folders.size();
}

std::optional<Finding> CheckFoldersWritable(const std::string& dcim, const RemovalPlan& plan) {
    std::set<std::string> folders;
    for (const Target& target : plan.targets) {
        folders.insert(dcim + "/" + target.folder);
    }
    if (!plan.folders.empty()) {
        folders.insert(dcim);
    }
    for (const std::string& folder : folders) {
        if (auto finding = CheckWritable(folder, "deleted")) {
            return finding;
        }
    }
    return std::nullopt;
}

std::optional<Finding> CheckProtected(const RemovalOptions& options, const RemovalPlan& plan) {
    if (plan.kept.empty()) {
        return std::nullopt;
    }
    if (options.targets.all) {
        return Refused("protected-files",
                       FilesText(plan.kept.size()) + " of the card " + (plan.kept.size() == 1 ? "is" : "are") +
                           " protected (" + PathsText(plan.kept) +
                           "); --protected-too deletes them as well, or name the files that are to go");
    }
    if (plan.targets.empty()) {
        return Refused("protected-files", "nothing is deleted, since all that was named is protected (" +
                                              PathsText(plan.kept) + "); 'dcfctl unprotect' takes the protection off");
    }
    return std::nullopt;
}

} // namespace

std::optional<Finding> PlanRemoval(const std::string& dcim, const CardReport& report, ChangeSafety& safety,
                                   const std::vector<FileEntry>& files, const RemovalOptions& options, const Tick& tick,
                                   RemovalPlan& plan) {
    auto judgement = safety.Judge(files, tick);
    if (judgement.refusal.has_value()) {
        return judgement.refusal;
    }
    for (Target& target : judgement.targets) {
        if (target.AnyProtected() && !options.protectedToo) {
            plan.kept.push_back(target.file.path);
        } else {
            Add(plan.counts, target);
            plan.targets.push_back(std::move(target));
        }
    }
    PlanFolders(dcim, report, options.targets.all, safety, plan);
    if (auto finding = CheckProtected(options, plan)) {
        return finding;
    }
    return CheckFoldersWritable(dcim, plan);
}

namespace {

/// @return why nothing may be done.
std::optional<Finding> MakePlan(const CardListing& listing, const std::string& root, const RemovalOptions& options,
                                Output& err, RemovalPlan& plan) {
    const std::string dcim = root + "/" + std::string(kDcim);
    ChangeSafety safety(dcim, listing.Inspected());
    if (auto finding = safety.CheckCard()) {
        return finding;
    }
    auto found = FindTargets(listing, root, options.targets);
    if (auto* finding = std::get_if<Finding>(&found)) {
        return *finding;
    }
    Progress progress(err, "Looking at the files");
    const auto tick = [&](std::uint64_t done, std::uint64_t all) { progress.Show(done, all); };
    return PlanRemoval(dcim, listing.Inspected(), safety, std::get<std::vector<FileEntry>>(found), options, tick, plan);
}

// ---- The work ----

/// One file by its path, and only if that is still what the position means: a folder that has lost its files behind the
/// list's back leaves the list with all its positions.
void DeleteOne(ISFileList& list, const Target& target) {
    if (target.position >= list.GetCount()) {
        return;
    }
    CSFileListItem item;
    (void)list.GetAtSimply(target.position, &item); // 0 for every position of the list
    if (target.file.path == item.m_strURI) {
        (void)list.Delete(&item); // 0 whatever happened: the card is looked at afterwards
    }
}

/// Protected files and folders that were empty before are left to the operation that deletes everything. It may run
/// only when the list holds nothing but what was announced.
void DeleteRest(ISFileList& list, std::size_t announced, Progress& progress) {
    if (list.GetCount() == static_cast<int>(announced)) {
        progress.ShowNow("Deleting the rest");
        (void)list.DeleteAll(); // as above
    }
}

} // namespace

std::size_t RemoveAsPlanned(ISFileList& list, const RemovalPlan& plan, const Tick& tick) {
    std::size_t done = 0;
    std::size_t rest = 0;
    // Never as a set, which is matched by position: when a folder in front turns out to be empty, the set would meet
    // files that nobody named. From the last one on, so that no position shifts before its turn.
    for (auto target = plan.targets.rbegin(); target != plan.targets.rend(); ++target) {
        if (InterruptGuard::Interrupted()) {
            break;
        }
        if (target->AnyProtected()) {
            ++rest;
            continue;
        }
        DeleteOne(list, *target);
        tick(++done, plan.targets.size());
    }
    return rest;
}

namespace {

void DoWork(CardListing& listing, const RemovalOptions& options, const RemovalPlan& plan, Output& err) {
    const InterruptGuard guard;
    Progress progress(err, "Deleting");
    const auto tick = [&](std::uint64_t done, std::uint64_t all) { progress.Show(done, all); };
    const std::size_t rest = RemoveAsPlanned(listing.List(), plan, tick);
    if (!InterruptGuard::Interrupted() && options.targets.all && (rest > 0 || !plan.emptyBefore.empty())) {
        DeleteRest(listing.List(), rest, progress);
    }
}

// ---- Afterwards ----

void CountFile(const CardFile& file, std::size_t& count, RemovalResult& result) {
    if (LookAt(file.path).has_value()) {
        result.left.push_back(file.path);
    } else {
        ++count;
        result.done.bytes += file.state.size;
    }
}

Finding LeftBehind(const RemovalResult& result, bool interrupted) {
    const std::string what = "of what was to be deleted, this is still on the card: " + PathsText(result.left);
    if (interrupted) {
        return Incomplete("interrupted", "the work was interrupted, and " + what + "; run it again");
    }
    return Incomplete("left-behind", what +
                                         "; check that the card is not locked or damaged and that its folders may be "
                                         "written, then run it again");
}

} // namespace

std::optional<Finding> LookAtRemoval(RemovalResult& result) {
    for (const Target& target : result.plan.targets) {
        CountFile(target.file, result.done.files, result);
        if (target.companion.has_value()) {
            CountFile(*target.companion, result.done.companions, result);
        }
    }
    for (const std::string& folder : result.plan.folders) {
        if (LookAt(folder).has_value()) {
            result.left.push_back(folder);
        } else {
            ++result.done.folders;
        }
    }
    if (result.left.empty()) {
        return std::nullopt;
    }
    return LeftBehind(result, InterruptGuard::Interrupted());
}

Report<RemovalResult> Remove(const CardOptions& card, const RemovalOptions& options, const AgreeToRemoval& agree,
                             Output& err) {
    const CardLock lock(card.root);
    if (lock.Refusal().has_value()) {
        return Failed<RemovalResult>(*lock.Refusal());
    }
    CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<RemovalResult>(*listing.Refusal());
    }
    RemovalResult result;
    result.root = card.root;
    result.dryRun = options.dryRun;
    if (auto finding = MakePlan(listing, card.root, options, err, result.plan)) {
        return Failed<RemovalResult>(*finding);
    }
    Report<RemovalResult> report;
    const bool nothing = result.plan.targets.empty() && result.plan.folders.empty();
    if (!options.dryRun && !nothing) {
        if (auto finding = agree(result.plan)) {
            return Failed<RemovalResult>(*finding);
        }
        DoWork(listing, options, result.plan, err);
        report.error = LookAtRemoval(result);
    }
    if (!result.plan.kept.empty()) {
        report.warnings.push_back(
            {"protected-kept", ExitCode::kSuccess,
             FilesText(result.plan.kept.size()) + " protected and kept: " + PathsText(result.plan.kept)});
    }
    report.value = std::move(result);
    return report;
}

} // namespace dcfctl
