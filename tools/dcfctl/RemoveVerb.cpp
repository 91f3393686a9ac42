// rm; see the header. Sections: the plan, the work, the look at the card afterwards.
#include "RemoveVerb.h"

#include <algorithm>
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

/// So many positions are handed over at once: few enough to show progress and to stop between them.
constexpr std::size_t kBatch = 256;

using Batch = std::vector<const Target*>;

/// A set that reached over a folder which it empties would, by the library's rule, be matched against the wrong
/// files there. So a batch lies in one folder, and the last ones come first: then no position shifts before its turn.
std::vector<Batch> MakeBatches(const std::vector<Target>& targets) {
    std::vector<Batch> batches;
    for (auto it = targets.rbegin(); it != targets.rend(); ++it) {
        const bool fits =
            !batches.empty() && batches.back().size() < kBatch && batches.back().front()->folder == it->folder;
        if (!fits) {
            batches.emplace_back();
        }
        batches.back().push_back(&*it);
    }
    return batches;
}

void DeleteAsSet(ISFileList& list, const Batch& batch) {
    list.SelectCancel();
    for (const Target* target : batch) {
        list.SetSel(target->position, true);
    }
    (void)list.DeleteSel(); // 0 whatever happened: the card is looked at afterwards
}

/// The set deletion moves the cursor by a path, which must not be looked up on a card with shared folder numbers. One
/// file at a time does without.
void DeleteOneByOne(ISFileList& list, const Batch& batch) {
    for (const Target* target : batch) {
        CSFileListItem item;
        (void)list.GetAt(target->position, &item); // 0 for every position of the list
        (void)list.Delete(&item);                  // as above
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

std::size_t RemoveAsPlanned(ISFileList& list, const CardReport& report, const RemovalPlan& plan, const Tick& tick) {
    std::vector<Target> ordinary;
    std::copy_if(plan.targets.begin(), plan.targets.end(), std::back_inserter(ordinary),
                 [](const Target& target) { return !target.AnyProtected(); });
    std::size_t done = 0;
    for (const Batch& batch : MakeBatches(ordinary)) {
        if (InterruptGuard::Interrupted()) {
            break;
        }
        if (report.ambiguous.empty()) {
            DeleteAsSet(list, batch);
        } else {
            DeleteOneByOne(list, batch);
        }
        done += batch.size();
        tick(done, plan.targets.size());
    }
    return plan.targets.size() - ordinary.size();
}

namespace {

void DoWork(CardListing& listing, const RemovalOptions& options, const RemovalPlan& plan, Output& err) {
    const InterruptGuard guard;
    Progress progress(err, "Deleting");
    const auto tick = [&](std::uint64_t done, std::uint64_t all) { progress.Show(done, all); };
    const std::size_t rest = RemoveAsPlanned(listing.List(), listing.Inspected(), plan, tick);
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
