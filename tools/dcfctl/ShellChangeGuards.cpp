// Before the card changes; see the header.
#include "ShellChangeGuards.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "CardFiles.h"
#include "CardInspector.h"
#include "CardSurvey.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "Rehearsal.h"
#include "RenumberPlan.h"
#include "Text.h"

namespace dcfctl {
namespace {

Finding Refusal(const Operation& operation, const char* code, const std::string& text) {
    return Refused(code, std::string(operation.name) + ": " + text);
}

std::string DcimOf(const std::string& root) {
    return root + "/" + std::string(kDcim);
}

CSFileListItem ItemAt(const ShellState& state, int position) {
    CSFileListItem item;
    (void)state.list->GetAtSimply(position, &item); // 0 for every position of the list
    return item;
}

/// The names that a folder will lose, for all folders that hold files before a position.
using Doomed = std::map<std::string, std::set<std::string>>;

Doomed DoomedBefore(const ShellState& state, const std::vector<int>& selection, int smallest) {
    Doomed doomed;
    for (int position = 0; position < smallest; ++position) {
        doomed.try_emplace(SplitPath(ItemAt(state, position).m_strURI).folder);
    }
    for (const int position : selection) {
        const CSFileListItem item = ItemAt(state, position);
        const PathParts file = SplitPath(item.m_strURI);
        const auto folder = doomed.find(file.folder);
        if (folder != doomed.end()) {
            folder->second.insert({file.file, SplitPath(item.m_strObject).file});
        }
    }
    return doomed;
}

/// A folder that the card has lost drops out of the list while the set is deleted, and what is selected behind it meets
/// other files. That a set which itself empties a folder does so too is how the operation is.
std::optional<Finding> CheckFoldersPassed(const ShellState& state, const Operation& operation, int largest) {
    std::set<std::string> passed;
    for (int position = 0; position < largest; ++position) {
        passed.insert(SplitPath(ItemAt(state, position).m_strURI).folder);
    }
    passed.erase(SplitPath(ItemAt(state, largest).m_strURI).folder);
    for (const std::string& folder : passed) {
        const std::string path = DcimOf(state.listedRoot) + "/" + folder;
        if (FolderContents(path, folder == kCamera).Names().empty()) {
            return Refusal(operation, "folder-lost-files",
                           "the files of " + Quoted(path) +
                               " are no longer on the card, so what is selected behind them would be taken for other "
                               "files; Create and Listup list anew");
        }
    }
    return std::nullopt;
}

/// Folders of one number, of which more than the allowed count are there.
std::optional<std::vector<std::string>> CrowdedNumber(const std::vector<std::string>& names, bool camera,
                                                      std::size_t allowed) {
    std::map<int, std::vector<std::string>> byNumber;
    for (const std::string& name : names) {
        const auto number = FolderNumber(name);
        if (number.has_value() && (camera || *number != kCameraNumber)) {
            std::vector<std::string>& folders = byNumber[*number];
            folders.push_back(name);
            if (folders.size() > allowed) {
                return folders;
            }
        }
    }
    return std::nullopt;
}

/// The card that will be listed, as it is now.
std::optional<Finding> CheckNextCard(const ShellState& state, const Operation& operation) {
    const CardInspector inspector(state.root, state.camera);
    auto finding = inspector.CheckRoot();
    if (!finding.has_value() && inspector.HasDcim()) { // a missing one is made
        finding = inspector.Inspect().refusal;
    }
    if (finding.has_value()) {
        finding->text = std::string(operation.name) + ": it would list again, and " + finding->text;
    }
    return finding;
}

bool Renumbers(const Operation& operation) {
    return std::string(operation.name) == "RenameDCFFullStorage";
}

std::vector<std::string> NamesAfterRenumbering(const std::string& root, bool camera) {
    const CardReport report = CardInspector(root, camera).Inspect();
    std::vector<std::string> names;
    for (const FinalPlace& entry : PlanRenumbering(DcimOf(root), report).entries) {
        names.push_back(entry.to);
    }
    return names;
}

} // namespace

std::optional<Finding> CheckSetDeletion(const ShellState& state, const Operation& operation) {
    const std::vector<int> selection = state.list->GetSelectIndecies();
    const int smallest = *std::min_element(selection.begin(), selection.end());
    if (auto finding = CheckFoldersPassed(state, operation, *std::max_element(selection.begin(), selection.end()))) {
        return finding;
    }
    // A folder that has lost its files behind the list's back goes with all its positions.
    for (const auto& [folder, doomed] : DoomedBefore(state, selection, smallest)) {
        const std::string path = DcimOf(state.listedRoot) + "/" + folder;
        const FolderContents contents(path, folder == kCamera);
        const std::vector<std::string>& names = contents.Names();
        if (std::all_of(names.begin(), names.end(),
                        [&doomed = doomed](const std::string& name) { return doomed.contains(name); })) {
            return Refusal(operation, "folder-lost-files",
                           "the files of " + Quoted(path) +
                               " are no longer all on the card, so the cursor would be lost; Create and Listup list "
                               "anew");
        }
    }
    return std::nullopt;
}

std::optional<Finding> CheckFirstFolder(const ShellState& state, const Operation& operation) {
    constexpr int kFirstNumbered = 10000000;
    const std::vector<std::string> folders = CardInspector(state.listedRoot, state.camera).FolderNames();
    if (!state.listed || folders.size() < 2 || std::count(folders.begin(), folders.end(), kCamera) == 0) {
        return std::nullopt; // then the file gets a folder of its own, or "Camera" is not there
    }
    // The number of the newest file tells which folder is first, if there is a file; that of "Camera" is lower than all
    // others. It is asked for in a child process, because asking changes it; an exception is the answer.
    const auto look = [&] {
        const bool first = state.list->GetCount() > 0 ? state.list->UpdateFirstIndex(true) < kFirstNumbered
                                                      : folders.front() == kCamera;
        if (first) {
            throw std::runtime_error("Camera");
        }
    };
    if (Rehearse(look) != Rehearsed::kThrew) {
        return std::nullopt;
    }
    return Refusal(operation, "no-place",
                   "'Camera' is the first folder of this list, and a new file's name is none for it; move away what is "
                   "no folder of pictures in " +
                       Quoted(DcimOf(state.listedRoot)) + ", then Create and Listup");
}

std::optional<Finding> CheckRelisting(const ShellState& state, const Operation& operation) {
    if (auto finding = CheckNextCard(state, operation)) {
        return finding;
    }
    if (state.root != state.listedRoot) {
        return std::nullopt; // the change is to another card than the listing
    }
    const auto crowded = Renumbers(operation)
                             ? CrowdedNumber(NamesAfterRenumbering(state.root, state.camera), state.camera, 1)
                             : CrowdedNumber(NamesInDcim(DcimOf(state.root)), state.camera, 2);
    if (!crowded.has_value()) {
        return std::nullopt;
    }
    return Refusal(operation, kSharedFolderNumber,
                   "afterwards " + PathsText(*crowded) +
                       " would share a number, with which the card might not be listed again; rename one of them "
                       "before");
}

} // namespace dcfctl
