// The browser's model: selection, protection, transfer marks, deletion. What the verbs refuse is refused here too, by
// the same judge; before every change the card is compared with what the list knows of it.
#include <algorithm>
#include <stdexcept>
#include <variant>

#include "BrowseModel.h"
#include "CardLock.h"
#include "ChangeText.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "ProtectVerbs.h"
#include "Rehearsal.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

BrowseReply Refusal(const Finding& finding) {
    return {false, finding.text};
}

bool SameFolders(const std::vector<CardFolder>& a, const std::vector<CardFolder>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const CardFolder& x, const CardFolder& y) {
        return x.name == y.name && x.number == y.number && x.files == y.files && x.readError == y.readError;
    });
}

std::vector<std::string> PathsOf(const RemovalPlan& plan) {
    std::vector<std::string> paths = plan.kept;
    for (const Target& target : plan.targets) {
        paths.push_back(target.file.path);
        paths.push_back(target.companion.has_value() ? target.companion->path : "");
    }
    paths.insert(paths.end(), plan.folders.begin(), plan.folders.end());
    return paths;
}

std::string Protected(std::size_t files, bool on) {
    return FilesText(files) + (on ? " protected" : " no longer protected");
}

} // namespace

std::vector<FileEntry> BrowseModel::Chosen() const {
    std::vector<int> positions = List().GetSelectIndecies();
    std::sort(positions.begin(), positions.end());
    if (positions.empty() && m_cursor >= 0) {
        positions.push_back(m_cursor);
    }
    std::vector<FileEntry> files;
    files.reserve(positions.size());
    for (const int position : positions) {
        files.push_back(m_listing->Simple(position));
    }
    return files;
}

bool BrowseModel::FindsAgain(const std::vector<FileEntry>& files) const {
    ISFileList& list = List();
    // Placing the cursor makes the look-up that marks and deletions make; here it moves in the child process alone.
    const auto lookUp = [&] {
        for (const FileEntry& file : files) {
            std::string path = file.path;
            (void)list.SetCur(path.data()); // the position tells where it has led
            if (list.GetCurIndex() != file.position) {
                throw std::runtime_error("another file");
            }
        }
    };
    const Rehearsed tried = Rehearse(lookUp);
    return tried == Rehearsed::kFine || tried == Rehearsed::kNotTried;
}

std::optional<Finding> BrowseModel::CheckUnchanged(CardReport& now) const {
    now = CardInspector(m_card.root, m_card.camera).Inspect();
    if (now.refusal.has_value()) {
        return now.refusal;
    }
    if (m_untrue || !SameFolders(now.folders, m_known.folders)) {
        return Refused("card-changed",
                       "the card is no longer as it was listed, so nothing is changed; r lists it anew");
    }
    return ChangeSafety(Dcim(), now).CheckCard();
}

// ---- Selection ----

BrowseReply BrowseModel::Select() {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    if (m_cursor >= 0) {
        List().SetSel(m_cursor, !List().IsSel(m_cursor));
    }
    return {};
}

BrowseReply BrowseModel::SelectNone() {
    if (m_listing.has_value()) {
        List().SelectCancel();
    }
    return {};
}

// ---- Protection and transfer ----

BrowseReply BrowseModel::Protect(const Tick& tick) {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    const CardLock lock(m_card.root);
    CardReport now;
    auto finding = lock.Refusal().has_value() ? lock.Refusal() : CheckUnchanged(now);
    if (finding.has_value()) {
        return Refusal(*finding);
    }
    ChangeSafety safety(Dcim(), now);
    const std::vector<FileEntry> files = Chosen();
    Protection wanted = Protection::kOn;
    auto plan = PlanProtection(safety, files, wanted, tick);
    const auto* work = std::get_if<ProtectionWork>(&plan);
    if (work != nullptr && work->targets.empty()) {
        wanted = Protection::kOff;
        plan = PlanProtection(safety, files, wanted, tick);
        work = std::get_if<ProtectionWork>(&plan);
    }
    if (work == nullptr) {
        return Refusal(std::get<Finding>(plan));
    }
    ProtectAsPlanned(List(), work->targets, wanted, tick);
    ProtectionResult result;
    if (const auto failed = LookAtProtection(work->targets, wanted, result)) {
        return Refusal(*failed);
    }
    return {true, Protected(result.changed.size(), wanted == Protection::kOn) +
                      (work->already > 0 ? ", " + std::to_string(work->already) + " already" : "")};
}

BrowseReply BrowseModel::MarkForTransfer() {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    const std::vector<FileEntry> files = Chosen();
    if (!FindsAgain(files)) {
        return {false, "not marked, because the file list would find another file by these numbers; rename the files "
                       "or folders that share a number (i tells which)"};
    }
    std::vector<CSFileListItem> items(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        (void)List().GetAt(files[i].position, &items[i]); // 0 for every position of the list
    }
    const bool on = !std::all_of(items.begin(), items.end(), [](const CSFileListItem& item) { return item.m_bWifi; });
    for (CSFileListItem& item : items) {
        (void)List().SetWifiFlag(&item, on); // has one result
    }
    return {true, FilesText(items.size()) + (on ? " marked for transfer" : " no longer marked for transfer")};
}

// ---- Deletion ----

std::optional<Finding> BrowseModel::Plan(const CardReport& now, const std::vector<FileEntry>& files, const Tick& tick,
                                         RemovalPlan& plan) const {
    ChangeSafety safety(Dcim(), now);
    return PlanRemoval(Dcim(), now, safety, files, RemovalOptions{}, tick, plan);
}

BrowseReply BrowseModel::PlanDeletion(const Tick& tick) {
    m_plan.reset();
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    CardReport now;
    RemovalPlan plan;
    const std::vector<FileEntry> files = Chosen();
    auto finding = CheckUnchanged(now);
    if (!finding.has_value()) {
        finding = Plan(now, files, tick, plan);
    }
    if (finding.has_value()) {
        return Refusal(*finding);
    }
    std::string text = "Delete " + CountsText(plan.counts);
    if (plan.targets.size() == 1) {
        text += ": " +
                Quoted(SplitPath(plan.targets[0].file.path).folder + "/" + SplitPath(plan.targets[0].file.path).file);
    }
    if (!plan.kept.empty()) {
        text += "; " + FilesText(plan.kept.size()) + " protected and kept";
    }
    m_plan = std::move(plan);
    return {true, text};
}

/// Where the file at the cursor was, the next one is then. A selection leaves the cursor on the file before its first
/// one, as the list's own deletion of a set does.
void BrowseModel::DeleteAsPlanned(const RemovalPlan& plan, int first, const Tick& tick) {
    const InterruptGuard guard;
    const bool selected = Selected() > 0;
    (void)RemoveAsPlanned(List(), plan, tick); // how many are kept is known
    List().SelectCancel();
    m_listing->Recount();
    SettleAt(selected ? first - 1 : first);
}

BrowseReply BrowseModel::Delete(const Tick& tick) {
    if (!m_plan.has_value()) {
        return {false, "nothing was planned"};
    }
    const RemovalPlan asked = std::move(*m_plan);
    m_plan.reset();
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    const CardLock lock(m_card.root);
    const std::vector<FileEntry> files = Chosen();
    CardReport now;
    RemovalResult result;
    auto finding = lock.Refusal().has_value() ? lock.Refusal() : CheckUnchanged(now);
    if (!finding.has_value()) {
        finding = Plan(now, files, tick, result.plan);
    }
    if (!finding.has_value() && PathsOf(result.plan) != PathsOf(asked)) {
        finding = Refused("card-changed", "the card has changed since the question, so nothing was deleted; r lists it "
                                          "anew");
    }
    if (finding.has_value()) {
        return Refusal(*finding);
    }
    DeleteAsPlanned(result.plan, files.front().position, tick);
    m_known = CardInspector(m_card.root, m_card.camera).Inspect();
    if (const auto left = LookAtRemoval(result)) {
        m_untrue = true;
        return Refusal(*left);
    }
    const std::string kept =
        result.plan.kept.empty() ? "" : "; " + FilesText(result.plan.kept.size()) + " protected and kept";
    return {true, "Deleted " + CountsText(result.done) + kept};
}

} // namespace dcfctl
