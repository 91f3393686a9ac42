// What is looked at before an operation of the shell runs, so that a fatal misuse costs a line and not the process; see
// ShellOperations.h. What leaves the card alone is tried out in a child process, and only if that dies is the cause
// looked for; what changes the card is judged beforehand, by a harmless equivalent where there is one.
#include <algorithm>

#include "CardInspector.h"
#include "DcfNames.h"
#include "Metadata.h"
#include "Rehearsal.h"
#include "ShellChangeGuards.h"
#include "ShellOperations.h"
#include "Text.h"

namespace dcfctl {
namespace {

Finding Refusal(const Operation& operation, const char* code, const std::string& text) {
    return {code, ExitCode::kRefused, std::string(operation.name) + ": " + text};
}

Finding NotListed(const Operation& operation) {
    return Refusal(operation, "not-listed", "the card is not listed yet; Listup comes first");
}

bool HasNull(const Arguments& arguments) {
    return std::any_of(arguments.begin(), arguments.end(), [](const Argument& argument) {
        const bool path = argument.kind == ArgumentKind::kPath;
        return (argument.kind == ArgumentKind::kNull && argument.number != 0) || (path && !argument.text.has_value());
    });
}

const Argument* Find(const Arguments& arguments, ArgumentKind kind) {
    const auto found = std::find_if(arguments.begin(), arguments.end(),
                                    [kind](const Argument& argument) { return argument.kind == kind; });
    return found == arguments.end() ? nullptr : &*found;
}

/// The count, or nothing when not even that can be asked for.
std::optional<int> CountOf(ISFileList& list) {
    if (Rehearse([&list] { (void)list.GetCount(); }) == Rehearsed::kFatal) { // whether it comes back is the question
        return std::nullopt;
    }
    return list.GetCount();
}

std::string PathAt(ISFileList& list, int position) {
    CSFileListItem item;
    (void)list.GetAtSimply(position, &item); // the caller knows the count
    return item.m_strURI;
}

bool Holds(ISFileList& list, int count, const std::string& path) {
    for (int position = 0; position < count; ++position) {
        if (PathAt(list, position) == path) {
            return true;
        }
    }
    return false;
}

std::optional<Finding> ExplainArguments(const ShellState& state, const Operation& operation, const Arguments& arguments,
                                        int count) {
    if (const Argument* position = Find(arguments, ArgumentKind::kPosition)) {
        if (position->number < 0 || position->number >= count) {
            return Refusal(operation, "position-out-of-range",
                           "there is no position " + std::to_string(position->number) + "; the list has " +
                               (count == 0 ? "none" : "0 to " + std::to_string(count - 1)));
        }
    }
    if (const Argument* path = Find(arguments, ArgumentKind::kPath)) {
        if (!Holds(*state.list, count, *path->text)) {
            return Refusal(operation, "unknown-path",
                           "the list has no file " + Quoted(*path->text) + "; GetAt shows paths as it has them");
        }
    }
    return std::nullopt;
}

/// A cursor on a file number that numbering does not know cannot be read or moved on.
std::optional<Finding> ExplainCursor(const ShellState& state, const Operation& operation, int count) {
    const int current = state.list->GetCurIndex();
    if (current < 0 || current >= count) {
        return std::nullopt;
    }
    const std::string path = PathAt(*state.list, current);
    const PathParts parts = SplitPath(path);
    const auto file = parts.folder == kCamera ? CameraFileName(parts.file) : DcfFileName(parts.file);
    const bool odd = file.has_value() && (parts.folder == kCamera ? file->number < 0 : file->number == 0);
    if (!odd) {
        return std::nullopt;
    }
    return Refusal(operation, "cursor-stuck",
                   "the cursor stands on " + Quoted(path) + ", whose file number is " + std::to_string(file->number) +
                       "; move it away with GetFirst, GetLast or SetCurIndex");
}

std::optional<Finding> ExplainCard(const ShellState& state, const Operation& operation) {
    const CardReport report = CardInspector(state.listedRoot, state.camera).Inspect();
    std::vector<Finding> reasons = report.warnings;
    if (report.refusal.has_value()) {
        reasons.insert(reasons.begin(), *report.refusal);
    }
    const auto shared = std::find_if(reasons.begin(), reasons.end(), [](const Finding& finding) {
        return std::string(finding.code) == kSharedFolderNumber || finding.exit == ExitCode::kCardUnreadable;
    });
    if (shared == reasons.end()) {
        return std::nullopt;
    }
    return Refusal(operation, shared->code, shared->text);
}

/// Why an operation that was tried out is fatal now.
Finding Explain(const ShellState& state, const Operation& operation, const Arguments& arguments) {
    if (!state.listed) {
        return NotListed(operation);
    }
    if (HasNull(arguments)) {
        return Refusal(operation, "null-argument", "null is fatal here; leave it out or name something");
    }
    const auto count = CountOf(*state.list);
    if (!count.has_value()) {
        return Refusal(operation, "stale-count",
                       "the list no longer agrees with its count; Create and Listup make a new one");
    }
    if (auto finding = ExplainArguments(state, operation, arguments, *count)) {
        return *finding;
    }
    if (*count == 0) {
        return Refusal(operation, "empty-list", "the list is empty, which is fatal here");
    }
    if (auto finding = ExplainCursor(state, operation, *count)) {
        return *finding;
    }
    if (auto finding = ExplainCard(state, operation)) {
        return *finding;
    }
    return Refusal(operation, "fatal-here",
                   "it would end the file list as it stands now; Create and Listup make a "
                   "new one");
}

std::optional<Finding> CheckListing(const ShellState& state, const Operation& operation) {
    if (state.listed) {
        return Refusal(operation, "listed-already",
                       "the card is listed already, once for each file list; Create makes a new one");
    }
    const CardInspector inspector(state.root, state.camera);
    auto finding = inspector.CheckRoot();
    if (!finding.has_value() && inspector.HasDcim()) { // a missing one is made by the listing
        finding = inspector.Inspect().refusal;
    }
    if (finding.has_value()) {
        finding->text = std::string(operation.name) + ": " + finding->text;
    }
    return finding;
}

/// A card on which the list cannot tell two folders apart could end it after the change, when it is too late.
std::optional<Finding> CheckOwnNumbers(const ShellState& state, const Operation& operation) {
    return state.listed ? ExplainCard(state, operation) : std::nullopt;
}

std::optional<Finding> CheckNewName(const ShellState& state, const Operation& operation) {
    constexpr std::size_t kPrefixLength = 4;
    if (!state.dateNames && state.prefix.size() != kPrefixLength) {
        return Refusal(operation, "prefix-length",
                       "the prefix " + Quoted(state.prefix) + " does not have four characters; SetFilePrefix sets it");
    }
    const std::set<std::string> folders = FoldersOnCard(state);
    const auto unknown = std::find_if(folders.begin(), folders.end(),
                                      [&](const std::string& name) { return !state.folders.contains(name); });
    if (state.listed && unknown != folders.end()) {
        return Refusal(operation, "folder-came-later",
                       "the folder " + Quoted(*unknown) + " has come after the listing; Create and Listup list anew");
    }
    return CheckFirstFolder(state, operation);
}

/// The rehearsal of an operation that works on the first file and cannot itself be tried out.
std::optional<Finding> CheckFirstFile(const ShellState& state, const Operation& operation, const Arguments& arguments) {
    if (!state.listed || arguments[0].number == FILE_TYPE_NONE) {
        return std::nullopt; // answered without a look at the list
    }
    const auto count = CountOf(*state.list);
    const auto first = [&state] {
        CSFileListItem item;
        (void)state.list->GetFirst(&item); // whether it comes back is the question
    };
    if (count.value_or(0) == 0 || Rehearse(first) == Rehearsed::kFatal) {
        return Explain(state, operation, {});
    }
    return std::nullopt;
}

std::optional<Finding> CheckSelection(const ShellState& state, const Operation& operation) {
    const std::vector<int> selection = state.list->GetSelectIndecies();
    if (selection.empty()) {
        return Refusal(operation, "empty-selection", "nothing is selected; SetSel POSITION true selects");
    }
    const auto count = CountOf(*state.list);
    const auto beyond = std::find_if(selection.begin(), selection.end(),
                                     [&](int position) { return position < 0 || position >= count.value_or(0); });
    if (beyond != selection.end()) {
        return Refusal(operation, "position-out-of-range",
                       "position " + std::to_string(*beyond) + " is selected and not in the list; deselect it");
    }
    return CheckSetDeletion(state, operation);
}

std::optional<Finding> CheckItem(ShellState& state, const Operation& operation, const Arguments& arguments) {
    const bool null = HasNull(arguments);
    if ((operation.guards & kUsesItem) != 0 && !state.hasItem && !null) {
        return Refusal(operation, "no-item", "no item was filled yet; fetch one first, for example with GetFirst");
    }
    if ((operation.guards & kKnownItem) == 0) {
        return std::nullopt;
    }
    if (null) {
        return Refusal(operation, "null-argument", "a null item is fatal here; leave it out");
    }
    const CardReport report = CardInspector(state.listedRoot, state.camera).Inspect();
    if (report.ambiguous.contains(SplitPath(state.item.m_strURI).folder)) {
        return ExplainCard(state, operation);
    }
    const auto lookUp = [&state] {
        CSFileListItem copy = state.item;
        CSFileListItem found;
        (void)state.list->GetInfo(copy.m_strURI, &found); // whether it comes back is the question
    };
    if (Rehearse(lookUp) != Rehearsed::kFatal) {
        return std::nullopt;
    }
    const auto count = CountOf(*state.list);
    if (count.has_value() && !Holds(*state.list, *count, state.item.m_strURI)) {
        return Refusal(operation, "unknown-path",
                       "the item's file " + Quoted(state.item.m_strURI) + " is not in the list; fetch an item anew");
    }
    return Explain(state, operation, {});
}

/// What changes the card cannot be tried out and is judged before.
std::optional<Finding> CheckChange(ShellState& state, const Operation& operation, const Arguments& arguments) {
    std::optional<Finding> finding = CheckItem(state, operation, arguments);
    if (!finding.has_value() && (operation.guards & kSelection) != 0) {
        finding = CheckSelection(state, operation);
    }
    if (!finding.has_value() && (operation.guards & kFirstFile) != 0) {
        finding = CheckFirstFile(state, operation, arguments);
    }
    if (!finding.has_value() && (operation.guards & kNewName) != 0) {
        finding = CheckNewName(state, operation);
    }
    if (!finding.has_value() && (operation.guards & kOwnNumbers) != 0) {
        finding = CheckOwnNumbers(state, operation);
    }
    if (!finding.has_value() && (operation.guards & kRelists) != 0) {
        finding = CheckRelisting(state, operation);
    }
    return finding;
}

} // namespace

std::set<std::string> FoldersOnCard(const ShellState& state) {
    const std::vector<std::string> names = CardInspector(state.listedRoot, state.camera).FolderNames();
    return {names.begin(), names.end()};
}

std::optional<Finding> CheckOperation(ShellState& state, const Operation& operation, const Arguments& arguments) {
    if ((operation.guards & kNoList) != 0) {
        return std::nullopt;
    }
    if (state.list == nullptr) {
        return Refusal(operation, "no-file-list", "there is no file list; Create makes one");
    }
    const Argument* collector = Find(arguments, ArgumentKind::kCollector);
    if (collector != nullptr && collector->text == kExifCollector) {
        if (const auto refusal = MetadataRefusal()) {
            return Refusal(operation, refusal->code, refusal->text);
        }
    }
    if ((operation.guards & kListing) != 0) {
        if (auto finding = CheckListing(state, operation)) {
            return finding;
        }
        if (!CardInspector(state.root, state.camera).HasDcim()) {
            return std::nullopt; // it will be made, so nothing may be tried out, and an empty card has no traps
        }
    }
    if ((operation.guards & kNeedsListing) != 0 && !state.listed) {
        return NotListed(operation);
    }
    if (auto finding = CheckChange(state, operation, arguments)) {
        return finding;
    }
    const bool rehearse = (operation.guards & kRehearse) != 0;
    if (rehearse && Rehearse([&] { (void)operation.call(state, arguments); }) == Rehearsed::kFatal) {
        return Explain(state, operation, arguments);
    }
    return std::nullopt;
}

} // namespace dcfctl
