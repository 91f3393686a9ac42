// Finding the files that are meant; see the header.
#include "Targets.h"

#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>

#include "CardFiles.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

namespace fs = std::filesystem;

/// A path cut behind its last slash.
struct CutPath {
    std::string folder; ///< Without the slash; "/" for the root.
    std::string file;
};

CutPath Cut(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return {".", path};
    }
    return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

/// The real path, empty when there is none.
std::string RealPath(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? std::string() : real.string();
}

Finding UnknownPath(PathIndex& index, const std::string& path) {
    const std::string folder = index.FindFolder(path);
    if (!folder.empty()) {
        return Refused("folder-named", Quoted(path) + " is a folder; name the files, 'dcfctl ls --dir " +
                                           Escaped(folder) + " --paths' shows them");
    }
    return Refused("unknown-path",
                   "the list has no file " + Quoted(path) + "; 'dcfctl ls --paths' shows the paths there are");
}

Finding OutOfRange(const std::string& position, int count) {
    return Refused("position-out-of-range",
                   "there is no position " + Quoted(position) + "; " +
                       (count == 0 ? std::string("the list is empty")
                                   : "the list has the positions 0 to " + std::to_string(count - 1)));
}

Finding CompanionAlone(const std::string& named, const FileEntry& file) {
    return Refused("companion-alone", Quoted(named) + " is the companion of " + Quoted(SplitPath(file.path).file) +
                                          " and always shares its fate; name that file (as well) if both are meant");
}

/// Companions that were named, by the position of their file.
using NamedCompanions = std::map<int, std::string>;

std::optional<Finding> AddPaths(const CardListing& listing, const std::string& root,
                                const std::vector<std::string>& paths, std::set<int>& found,
                                NamedCompanions& companions) {
    if (paths.empty()) {
        return std::nullopt;
    }
    PathIndex index(listing, root);
    for (const std::string& path : paths) {
        const auto place = index.Find(path);
        if (!place.has_value()) {
            return UnknownPath(index, path);
        }
        if (place->companion) {
            companions.emplace(place->position, path);
        } else {
            found.insert(place->position);
        }
    }
    return std::nullopt;
}

std::optional<Finding> AddPositions(const CardListing& listing, const std::vector<std::string>& positions,
                                    std::set<int>& found) {
    for (const std::string& text : positions) {
        const auto position = WholeNumber(text);
        if (!position.has_value() || *position < 0 || *position >= listing.Count()) {
            return OutOfRange(text, listing.Count());
        }
        found.insert(static_cast<int>(*position));
    }
    return std::nullopt;
}

} // namespace

PathIndex::PathIndex(const CardListing& listing, std::string root)
    : m_root(std::move(root)), m_dcim(RealPath(m_root + "/" + std::string(kDcim))),
      m_folders(listing.Inspected().folders) {
    const auto add = [this](const std::string& path, Place place) {
        const PathParts parts = SplitPath(path);
        m_places.emplace(parts.folder + "/" + parts.file, place); // a companion never takes a file's place
    };
    for (int position = 0; position < listing.Count(); ++position) {
        const FileEntry entry = listing.Simple(position);
        add(entry.path, {position, false});
        if (entry.companion.has_value()) {
            add(entry.companion->path, {position, true});
        }
    }
}

/// The name of a folder of the list, empty for any other path.
std::string PathIndex::FolderName(const std::string& folder) {
    const auto [known, added] = m_knownFolders.try_emplace(folder);
    if (!added) {
        return known->second;
    }
    const CutPath real = Cut(RealPath(folder));
    const auto state = real.folder == m_dcim ? LookAt(m_dcim + "/" + real.file) : std::nullopt;
    for (const CardFolder& listed : m_folders) {
        // On a file system that finds names in any case, the person may have typed another one.
        const bool alike = state.has_value() && EqualNoCase(listed.name, real.file);
        const auto same = alike ? LookAt(m_dcim + "/" + listed.name) : std::nullopt;
        if (same.has_value() && same->IsSame(*state)) {
            known->second = listed.name;
            break;
        }
    }
    return known->second;
}

/// The folders of the card that may be meant, in the order of the likelihood.
std::vector<std::string> PathIndex::FolderNames(const std::string& path) {
    std::vector<std::string> forms = {path};
    if (path.front() != '/') {
        forms.push_back(m_root + "/" + path);
        forms.push_back(m_root + "/" + std::string(kDcim) + "/" + path);
    }
    std::vector<std::string> names;
    for (const std::string& form : forms) {
        std::string name = FolderName(form);
        if (!name.empty()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

std::optional<PathIndex::Place> PathIndex::Find(const std::string& path) {
    const CutPath cut = Cut(path);
    for (const std::string& folder : FolderNames(cut.folder)) {
        const auto found = m_places.find(folder + "/" + UpperCased(cut.file));
        if (found != m_places.end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

std::string PathIndex::FindFolder(const std::string& path) {
    const std::vector<std::string> names = path.empty() ? std::vector<std::string>() : FolderNames(path);
    return names.empty() ? "" : names.front();
}

std::variant<std::vector<FileEntry>, Finding> FindTargets(const CardListing& listing, const std::string& root,
                                                          const TargetOptions& options) {
    std::set<int> found;
    NamedCompanions companions;
    if (auto finding = AddPaths(listing, root, options.paths, found, companions)) {
        return *finding;
    }
    if (auto finding = AddPositions(listing, options.positions, found)) {
        return *finding;
    }
    for (const auto& [position, named] : companions) {
        if (!found.contains(position)) {
            return CompanionAlone(named, listing.Simple(position));
        }
    }
    std::vector<FileEntry> files;
    if (options.all) {
        for (int position = 0; position < listing.Count(); ++position) {
            files.push_back(listing.Simple(position));
        }
    } else {
        for (const int position : found) {
            files.push_back(listing.Simple(position));
        }
    }
    return files;
}

} // namespace dcfctl
