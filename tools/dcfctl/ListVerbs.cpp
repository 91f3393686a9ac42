// ls, count and show; see the header.
#include "ListVerbs.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "CardListing.h"
#include "Metadata.h"
#include "Text.h"

namespace dcfctl {
namespace {

bool Matches(const CardFolder& folder, const std::string& wanted) {
    const auto number = WholeNumber(wanted);
    return folder.name == wanted || (number.has_value() && *number == folder.number && wanted.size() <= 3);
}

/// The names of the folders that --dir means; nothing when the card has none of them.
std::optional<std::set<std::string>> FoldersFor(const CardReport& report, const std::string& wanted) {
    std::set<std::string> names;
    for (const CardFolder& folder : report.folders) {
        if (Matches(folder, wanted)) {
            names.insert(folder.name);
        }
    }
    return names.empty() ? std::nullopt : std::optional<std::set<std::string>>(names);
}

/// The same rule as in the interface's own count: the file's type, or failing that its companion's.
bool IsOfType(const FileEntry& entry, eFileType type) {
    return entry.type == type || (entry.companion.has_value() && entry.companion->type == type);
}

Finding UnknownFolder(const CardReport& report, const std::string& wanted) {
    std::string known;
    constexpr std::size_t kShown = 8;
    for (std::size_t i = 0; i < report.folders.size() && i < kShown; ++i) {
        known += (i == 0 ? "" : ", ") + Quoted(report.folders[i].name);
    }
    const bool more = report.folders.size() > kShown;
    return {"unknown-folder", ExitCode::kRefused,
            "the list has no folder " + Quoted(wanted) + "; " +
                (known.empty() ? std::string("the card has none at all")
                               : "name one of " + known + (more ? " ..., or its number" : ", or its number"))};
}

/// Without "." and doubled slashes.
std::string Tidied(const std::string& path) {
    return std::filesystem::path(path).lexically_normal().string();
}

/// The forms in which a person may have meant a path. The list has its file names in capitals, whatever the card has.
std::vector<std::string> Candidates(const std::string& root, std::string what) {
    const std::size_t slash = what.rfind('/');
    std::transform(what.begin() + static_cast<std::ptrdiff_t>(slash + 1), what.end(), // npos + 1 is 0
                   what.begin() + static_cast<std::ptrdiff_t>(slash + 1), UpperCase);
    std::vector<std::string> forms = {what, Tidied(what)};
    if (what[0] != '/') {
        forms.push_back(root + "/" + Tidied(what));
        forms.push_back(root + "/" + std::string(kDcim) + "/" + Tidied(what));
    }
    return forms;
}

bool IsOneOf(const std::string& listed, const std::vector<std::string>& candidates) {
    if (SplitPath(listed).file != SplitPath(candidates[0]).file) {
        return false;
    }
    const std::string tidied = Tidied(listed);
    return std::any_of(candidates.begin(), candidates.end(),
                       [&](const std::string& form) { return form == listed || form == tidied; });
}

std::optional<FileEntry> FindPath(const CardListing& listing, const std::string& root, const std::string& what) {
    const std::vector<std::string> forms = Candidates(root, what);
    for (int position = 0; position < listing.Count(); ++position) {
        FileEntry entry = listing.Simple(position);
        if (IsOneOf(entry.path, forms) || (entry.companion.has_value() && IsOneOf(entry.companion->path, forms))) {
            return entry;
        }
    }
    return std::nullopt;
}

Finding UnknownPath(const std::string& what) {
    return {"unknown-path", ExitCode::kRefused,
            "the list has no file " + Quoted(what) + "; 'dcfctl ls --paths' shows the paths there are"};
}

Finding OutOfRange(const std::string& what, int count) {
    return {"position-out-of-range", ExitCode::kRefused,
            "there is no position " + what + "; " +
                (count == 0 ? std::string("the list is empty")
                            : "the list has the positions 0 to " + std::to_string(count - 1))};
}

} // namespace

Report<ListResult> List(const CardOptions& card, const ListOptions& options) {
    if (options.metadata) {
        if (const auto refusal = MetadataRefusal()) {
            return Failed<ListResult>(*refusal);
        }
    }
    CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<ListResult>(*listing.Refusal());
    }
    std::optional<std::set<std::string>> folders;
    if (!options.directory.empty()) {
        folders = FoldersFor(listing.Inspected(), options.directory);
        if (!folders.has_value()) {
            return Failed<ListResult>(UnknownFolder(listing.Inspected(), options.directory));
        }
    }
    ListResult result{card.root, {}, listing.CountAll(), options.metadata};
    const std::uint64_t limit = options.limit.value_or(UINT64_MAX);
    for (int position = 0; position < listing.Count() && result.files.size() < limit; ++position) {
        FileEntry entry = listing.Simple(position);
        const bool wanted = (!folders.has_value() || folders->count(SplitPath(entry.path).folder) > 0) &&
                            (!options.type.has_value() || IsOfType(entry, *options.type));
        if (wanted) {
            result.files.push_back(std::move(entry));
        }
    }
    if (options.pathsOnly) {
        return {std::move(result), std::nullopt, listing.WarningsWithoutDetails()};
    }
    listing.AddDetails(result.files);
    if (options.metadata) {
        listing.AddMetadata(result.files);
    }
    return {std::move(result), std::nullopt, listing.Warnings()};
}

Report<CountResult> Count(const CardOptions& card, std::optional<eFileType> type) {
    const CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<CountResult>(*listing.Refusal());
    }
    return {CountResult{card.root, listing.CountAll(), type}, std::nullopt, listing.WarningsWithoutDetails()};
}

Report<ShowResult> Show(const CardOptions& card, const std::string& what) {
    CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<ShowResult>(*listing.Refusal());
    }
    std::optional<FileEntry> entry;
    const bool number =
        !what.empty() && what.find_first_not_of("0123456789", what[0] == '-' ? 1 : 0) == std::string::npos;
    if (number) {
        const auto position = WholeNumber(what);
        if (!position.has_value() || *position < 0 || *position >= listing.Count()) {
            return Failed<ShowResult>(OutOfRange(what, listing.Count()));
        }
        entry = listing.Simple(static_cast<int>(*position));
    } else if (!what.empty()) {
        entry = FindPath(listing, card.root, what);
    }
    if (!entry.has_value()) {
        return Failed<ShowResult>(UnknownPath(what));
    }
    std::vector<FileEntry> entries = {*entry};
    listing.AddDetails(entries);
    const bool metadata = !MetadataRefusal().has_value();
    if (metadata) {
        listing.AddMetadata(entries);
    }
    const bool whole = entries[0].details.has_value() && !entries[0].metadataMissing;
    // Nothing is missing from what was asked for when the file itself is whole.
    return {ShowResult{card.root, entries[0], metadata}, std::nullopt,
            whole ? std::vector<Finding>() : listing.Warnings()};
}

} // namespace dcfctl
