// What really lies on the card, name by name, for the verbs that change it: the list has names in capitals and one
// companion for each file, the card may have more. Read-only. One thread.
#ifndef DCFCTL_CARD_FILES_H
#define DCFCTL_CARD_FILES_H

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dcfctl {

/// An entry of the card, looked at without following a link.
struct EntryState {
    dev_t device;
    ino_t node;
    mode_t mode;
    uid_t owner;
    nlink_t names; ///< Hard links.
    std::uint64_t size;

    [[nodiscard]] bool IsFile() const {
        return S_ISREG(mode);
    }
    [[nodiscard]] bool IsFolder() const {
        return S_ISDIR(mode);
    }
    /// As the list reads protection: the owner may not write.
    [[nodiscard]] bool IsProtected() const {
        return (mode & S_IWUSR) == 0;
    }
    [[nodiscard]] bool IsSame(const EntryState& other) const {
        return device == other.device && node == other.node;
    }
};

/// @return nothing when there is no such entry, or when it cannot be reached.
[[nodiscard]] std::optional<EntryState> LookAt(const std::string& path);

/// "a link", "a folder", "a device" and so on.
[[nodiscard]] const char* KindText(mode_t mode);

/// Whether the card can be written at a folder: not mounted read-only, and allowed. @return errno, 0 when it can.
[[nodiscard]] int WriteObstacle(const std::string& folder);

/// One folder under "DCIM".
class FolderContents {
public:
    /// @param camera whether it is the "Camera" folder, which has its own name rule.
    FolderContents(const std::string& path, bool camera);

    /// errno when the folder could not be read.
    [[nodiscard]] int Error() const {
        return m_error;
    }
    /// Every entry but the dots.
    [[nodiscard]] const std::vector<std::string>& Names() const {
        return m_names;
    }
    /// The names from which the list reads a file number, as they stand on the card.
    [[nodiscard]] const std::vector<std::string>& OfNumber(int number) const;

private:
    std::vector<std::string> m_names;
    std::map<int, std::vector<std::string>> m_byNumber;
    int m_error = 0;
};

/// In capitals, as the list shows names.
[[nodiscard]] std::string UpperCased(std::string name);

} // namespace dcfctl

#endif
