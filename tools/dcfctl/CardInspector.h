// Looks at a card by itself, read-only, before the library does: is there something to list, and what will stand in
// the way? Every verb asks it first. One inspector, one thread.
#ifndef DCFCTL_CARD_INSPECTOR_H
#define DCFCTL_CARD_INSPECTOR_H

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Findings.h"

namespace dcfctl {

/// The code of the finding that two listed folders have one number.
inline constexpr const char* kSharedFolderNumber = "shared-folder-number";
/// The code of the finding that a folder of the list cannot be read.
inline constexpr const char* kUnreadableFolder = "folder-unreadable";

/// One folder of "DCIM" as the list takes it.
struct CardFolder {
    std::string name;
    int number = 0;
    int readError = 0; ///< errno when it could not be read.
    int files = 0;     ///< Files that the list takes from it.
};

struct CardReport {
    std::optional<Finding> refusal;  ///< Why the card cannot be listed.
    std::vector<Finding> warnings;   ///< What will be missing or odd in the list.
    std::vector<CardFolder> folders; ///< The folders of the list, in its order.
    std::set<std::string> ambiguous; ///< Names of folders whose files the library cannot look up by their path.
};

/// The storage root as the library is to receive it: without slashes at the end; empty for "/".
[[nodiscard]] std::string NormalisedRoot(std::string root);

class CardInspector {
public:
    /// @param root normalised. @param camera whether the "Camera" folder is going to be listed.
    CardInspector(std::string root, bool camera);

    /// Can the root be a card at all: a path that the library takes, and a folder? "DCIM" is not looked for.
    [[nodiscard]] std::optional<Finding> CheckRoot() const;
    /// CheckRoot, and "DCIM" is there and can be read.
    [[nodiscard]] std::optional<Finding> CheckCard() const;
    [[nodiscard]] bool HasDcim() const;
    /// With no "DCIM" there: may one be made? Not in a folder that itself is one, nor beside one in small letters.
    [[nodiscard]] std::optional<Finding> CheckNewDcim() const;
    /// The names of the folders that a listing takes, in its order.
    [[nodiscard]] std::vector<std::string> FolderNames() const;
    /// CheckCard, and every folder and file name that a listing will meet.
    [[nodiscard]] CardReport Inspect() const;

private:
    std::string m_root;
    std::string m_dcim;
    bool m_camera;
};

} // namespace dcfctl

#endif
