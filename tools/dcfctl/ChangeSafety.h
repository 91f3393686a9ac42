// Judges, before anything is changed, whether the library would act on the very file that was named. It finds a file by
// its numbers and composes the name of its companion, so on an awkward card it can mean another file. The checks that
// every changing verb shares stand here and nowhere else. Read-only. One thread.
#ifndef DCFCTL_CHANGE_SAFETY_H
#define DCFCTL_CHANGE_SAFETY_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CardFiles.h"
#include "CardInspector.h"
#include "Findings.h"
#include "ListVerbs.h"

namespace dcfctl {

/// One file of the card, as it was found.
struct CardFile {
    std::string path; ///< As the library will use it.
    EntryState state;
};

/// A file of the list that may be changed, and its companion, which always shares its fate.
struct Target {
    int position = 0;
    std::string folder; ///< Name of its folder.
    CardFile file;
    std::optional<CardFile> companion;

    [[nodiscard]] bool AnyProtected() const {
        return file.state.IsProtected() || (companion.has_value() && companion->state.IsProtected());
    }
};

/// Called now and then in a long work: how much of how much is done.
using Tick = std::function<void(std::uint64_t done, std::uint64_t all)>;

class ChangeSafety {
public:
    /// @param dcim path of the card's "DCIM". @param report what a look at the card has found; must outlive this.
    ChangeSafety(std::string dcim, const CardReport& report);

    /// Nothing outside the card may be reached: "DCIM" and the folders of the list are folders and no links.
    [[nodiscard]] std::optional<Finding> CheckCard() const;
    /// The same for "DCIM" alone.
    [[nodiscard]] static std::optional<Finding> CheckDcim(const std::string& dcim);

    /// The files as they may be handed over, or why one of them must not be: the first cause, and how many there are.
    struct Judgement {
        std::vector<Target> targets;
        std::optional<Finding> refusal;
    };
    [[nodiscard]] Judgement Judge(const std::vector<FileEntry>& files, const Tick& tick);

    /// The contents of a folder of the card, read once.
    [[nodiscard]] const FolderContents& Folder(const std::string& name);

private:
    [[nodiscard]] std::optional<Finding> JudgeFile(const FileEntry& entry, Target& target);
    [[nodiscard]] std::optional<Finding> CheckNames(const FileEntry& entry, const PathParts& parts,
                                                    const std::vector<std::string>& names) const;
    [[nodiscard]] std::optional<Finding> CheckEntry(const std::string& path, const std::string& folder,
                                                    const std::vector<std::string>& names, CardFile& found) const;

    std::string m_dcim;
    const CardReport& m_report;
    std::map<std::string, FolderContents> m_folders;
};

/// Why a folder of the card cannot be written, if so. @param what "deleted" and so on, for the message.
[[nodiscard]] std::optional<Finding> CheckWritable(const std::string& folder, const char* what);

} // namespace dcfctl

#endif
