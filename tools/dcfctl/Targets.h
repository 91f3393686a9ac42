// Which files of the list a person means: by path, by position, or all. One thread.
#ifndef DCFCTL_TARGETS_H
#define DCFCTL_TARGETS_H

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "CardListing.h"
#include "Findings.h"

namespace dcfctl {

struct TargetOptions {
    std::vector<std::string> paths;
    std::vector<std::string> positions; ///< As they were typed.
    bool all = false;
};

/// Finds the list position of a path: full, or from the present folder, the card's root or its "DCIM" on.
class PathIndex {
public:
    PathIndex(const CardListing& listing, std::string root);

    struct Place {
        int position;
        bool companion; ///< The path is that of the file's companion.
    };
    [[nodiscard]] std::optional<Place> Find(const std::string& path);
    /// The name of the folder of the list that a path is the path of; empty for any other path.
    [[nodiscard]] std::string FindFolder(const std::string& path);

private:
    [[nodiscard]] std::vector<std::string> FolderNames(const std::string& path);
    [[nodiscard]] std::string FolderName(const std::string& folder);

    std::string m_root;
    std::string m_dcim;                                ///< The real path of "DCIM".
    std::vector<CardFolder> m_folders;                 ///< Of the list.
    std::unordered_map<std::string, Place> m_places;   ///< By folder name, "/", file name.
    std::map<std::string, std::string> m_knownFolders; ///< Names of folders by the paths that were asked for.
};

/// The files in list order, each once. A companion is refused where its file is not named as well: they go together.
[[nodiscard]] std::variant<std::vector<FileEntry>, Finding>
FindTargets(const CardListing& listing, const std::string& root, const TargetOptions& options);

} // namespace dcfctl

#endif
