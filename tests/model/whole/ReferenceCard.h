// ReferenceCard: a memory card as plain maps, with the calls that a card gets and what it answers to them. The real
// card is made from it and compared with it.
#ifndef TESTS_MODEL_WHOLE_REFERENCE_CARD_H
#define TESTS_MODEL_WHOLE_REFERENCE_CARD_H

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CallFaults.h"

namespace dcftest {

/// What an entry of the card may be instead of a file or a folder. A link's mode and time are those of what it names.
enum class Special { None, Pipe, Link, DanglingLink };

struct CardFile {
    mode_t mode = 0644;
    std::uint32_t time = 0;
    bool folder = false; ///< An empty folder with the name of a file.
    Special special = Special::None;

    bool operator==(const CardFile&) const = default;
};

struct CardFolder {
    mode_t mode = 0755;
    bool plain = false; ///< A file with the name of a folder; then it may be a pipe or a dangling link, too.
    std::map<std::string, CardFile> files;
    Special special = Special::None;

    /// A folder itself, not what stands for one.
    bool IsFolder() const {
        return !plain && special == Special::None;
    }

    bool operator==(const CardFolder&) const = default;
};

class ReferenceCard {
public:
    /// The storage root, whose folder exists.
    std::string root;
    bool dcim = true;
    std::map<std::string, CardFolder> folders;

    bool SameContent(const ReferenceCard& other) const {
        return dcim == other.dcim && folders == other.folders;
    }

    // The calls. Each notes itself in `calls` as PosixSeam does.

    std::optional<mode_t> Stat(const std::string& path);
    bool Chmod(const std::string& path, mode_t mode);
    bool Unlink(const std::string& path);
    bool Remove(const std::string& path);
    bool Rename(const std::string& from, const std::string& to);
    bool Mkdir(const std::string& path, mode_t mode);
    bool OpenDir(const std::string& path);
    void Umask(mode_t mask);
    void Sync();
    void Note(const std::string& call) {
        calls.push_back(call);
    }
    /// The names in a folder; nothing when it cannot be listed.
    std::optional<std::vector<std::string>> Scan(const std::string& path);

    // What the system does with the calls.

    /// Owner's write bit: protection.
    bool SetProtect(const std::string& path, bool on);
    bool IsProtect(const std::string& path);
    void RemoveFile(const std::string& path);
    bool MakeDirectory(const std::string& path);
    bool IsDirEmpty(const std::string& path);

    const CardFile* File(const std::string& path) const;

    std::vector<std::string> calls;
    CallFaults faults;

private:
    struct Place {
        bool dcim = false;            ///< "DCIM" itself.
        CardFolder* folder = nullptr; ///< An entry of "DCIM".
        CardFile* file = nullptr;     ///< An entry of a folder.
        std::string folderName;
        std::string fileName;
    };
    Place Find(const std::string& path);
    bool Take(const std::string& path, bool folders);
};

/// A mode as PosixSeam writes it.
std::string ModeText(mode_t mode);

} // namespace dcftest

#endif
