// The judge; see the header. Each refusal says what the library would do instead, and what to do about it.
#include "ChangeSafety.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "DcfNames.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// The number under which the list holds a file.
int NumberOf(const PathParts& parts) {
    const auto read = parts.folder == kCamera ? CameraFileName(parts.file) : DcfFileName(parts.file);
    return read.has_value() ? read->number : -1;
}

bool HasListedName(const std::vector<std::string>& names, const std::string& listed) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) { return UpperCased(name) == listed; });
}

/// The first name that is neither of the two, as it stands on the card.
std::string OtherName(const std::vector<std::string>& names, const std::string& file, const std::string& companion) {
    const auto other = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
        return UpperCased(name) != file && UpperCased(name) != companion;
    });
    return other != names.end() ? *other : names.back();
}

std::string Together(const std::string& folder, const std::string& name) {
    return Quoted(folder + "/" + name);
}

Finding SharedInCamera(const PathParts& parts, const std::string& other) {
    return Refused("camera-number-shared",
                   Together(parts.folder, parts.file) + " and " + Together(parts.folder, other) +
                       " have one number in \"Camera\", by which the file list finds a file, so it could take the one "
                       "for the other; rename one of them first");
}

Finding SharedInFolder(const PathParts& parts, const std::string& other, std::size_t count) {
    return Refused("file-number-shared", Together(parts.folder, parts.file) + " is one of " + std::to_string(count) +
                                             " files of one number, and the list knows nothing of " +
                                             Together(parts.folder, other) + "; rename that one first");
}

Finding CompanionInCamera(const PathParts& parts) {
    return Refused("camera-companion",
                   "the list has a companion for " + Together(parts.folder, parts.file) +
                       ", and in \"Camera\" the name that it makes for a companion is never the real one; rename one "
                       "of the files of that number first");
}

Finding CompanionPrefix(const PathParts& parts, const std::string& real, const std::string& composed) {
    return Refused("companion-prefix", "the companion of " + Together(parts.folder, parts.file) + " is called " +
                                           Quoted(real) + ", but the file list would act on " + Quoted(composed) +
                                           "; give both the same first eight characters first");
}

Finding NoFolder(const std::string& path, const EntryState& state) {
    return Refused("folder-link", Quoted(path) + " is " + KindText(state.mode) + " and no folder" +
                                      (S_ISLNK(state.mode) ? ", and nothing outside the card is ever changed" : "") +
                                      "; move it away first");
}

Finding Changed(const PathParts& parts) {
    return Refused("card-changed", Together(parts.folder, parts.file) +
                                       " is in the list and not, or no longer, on the card; try again");
}

} // namespace

ChangeSafety::ChangeSafety(std::string dcim, const CardReport& report) : m_dcim(std::move(dcim)), m_report(report) {}

std::optional<Finding> ChangeSafety::CheckDcim(const std::string& dcim) {
    const auto state = LookAt(dcim);
    if (!state.has_value() || state->IsFolder()) {
        return std::nullopt;
    }
    return Refused("dcim-link", Quoted(dcim) + " is " + KindText(state->mode) +
                                    " and no folder of the card, and nothing outside the card is ever changed; name "
                                    "the card on which the folder really is");
}

std::optional<Finding> ChangeSafety::CheckCard() const {
    if (auto finding = CheckDcim(m_dcim)) {
        return finding;
    }
    for (const CardFolder& folder : m_report.folders) {
        const std::string path = m_dcim + "/" + folder.name;
        const auto state = LookAt(path);
        if (state.has_value() && !state->IsFolder()) {
            return NoFolder(path, *state);
        }
    }
    return std::nullopt;
}

const FolderContents& ChangeSafety::Folder(const std::string& name) {
    return m_folders.try_emplace(name, m_dcim + "/" + name, name == kCamera).first->second;
}

std::optional<Finding> ChangeSafety::CheckNames(const FileEntry& entry, const PathParts& parts,
                                                const std::vector<std::string>& names) const {
    const std::string companion = entry.companion.has_value() ? SplitPath(entry.companion->path).file : "";
    const std::size_t known = entry.companion.has_value() ? 2 : 1;
    if (!HasListedName(names, parts.file)) {
        return Changed(parts);
    }
    if (parts.folder == kCamera && entry.companion.has_value()) {
        return CompanionInCamera(parts);
    }
    if (names.size() > known) {
        const std::string other = OtherName(names, parts.file, companion);
        return parts.folder == kCamera ? SharedInCamera(parts, other) : SharedInFolder(parts, other, names.size());
    }
    if (names.size() < known) {
        return Changed(parts);
    }
    if (entry.companion.has_value() && !HasListedName(names, companion)) {
        return CompanionPrefix(parts, OtherName(names, parts.file, companion), companion);
    }
    return std::nullopt;
}

std::optional<Finding> ChangeSafety::CheckEntry(const std::string& path, const std::string& folder,
                                                const std::vector<std::string>& names, CardFile& found) const {
    const std::string listed = SplitPath(path).file;
    const auto real =
        std::find_if(names.begin(), names.end(), [&](const std::string& name) { return UpperCased(name) == listed; });
    const auto meant = LookAt(m_dcim + "/" + folder + "/" + *real);
    const auto reached = LookAt(path);
    if (!meant.has_value()) {
        return Changed({folder, *real});
    }
    if (!reached.has_value() || !reached->IsSame(*meant)) {
        return Refused("lower-case-name", Together(folder, *real) + " is in the list as " + Quoted(listed) +
                                              ", and this file system tells the two names apart; give it a name in "
                                              "capitals first");
    }
    if (!reached->IsFile()) {
        return Refused("not-a-file", Quoted(path) + " is " + KindText(reached->mode) +
                                         " and no picture or movie, so it is not touched; move it away first");
    }
    found = {path, *reached};
    return std::nullopt;
}

std::optional<Finding> ChangeSafety::JudgeFile(const FileEntry& entry, Target& target) {
    const PathParts parts = SplitPath(entry.path);
    if (m_report.ambiguous.contains(parts.folder)) {
        return Refused(kSharedFolderNumber, Together(parts.folder, parts.file) +
                                                " lies in one of two folders that share a number, by which the file "
                                                "list finds a folder, so it could mean the other one; rename one of "
                                                "the folders first");
    }
    const std::vector<std::string>& names = Folder(parts.folder).OfNumber(NumberOf(parts));
    if (auto finding = CheckNames(entry, parts, names)) {
        return finding;
    }
    target.position = entry.position;
    target.folder = parts.folder;
    if (auto finding = CheckEntry(entry.path, parts.folder, names, target.file)) {
        return finding;
    }
    if (!entry.companion.has_value()) {
        return std::nullopt;
    }
    return CheckEntry(entry.companion->path, parts.folder, names, target.companion.emplace());
}

ChangeSafety::Judgement ChangeSafety::Judge(const std::vector<FileEntry>& files, const Tick& tick) {
    Judgement judgement;
    judgement.targets.reserve(files.size());
    std::size_t refused = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        Target target;
        auto finding = JudgeFile(files[i], target);
        if (!finding.has_value()) {
            judgement.targets.push_back(std::move(target));
        } else if (refused++ == 0) {
            judgement.refusal = std::move(finding);
        }
        tick(i + 1, files.size());
    }
    if (refused > 1) {
        judgement.refusal->text += " (" + std::to_string(refused - 1) + " more of the files named have such a trouble)";
    }
    return judgement;
}

std::optional<Finding> CheckWritable(const std::string& folder, const char* what) {
    const int error = WriteObstacle(folder);
    if (error == 0) {
        return std::nullopt;
    }
    const std::string cure = error == EROFS ? "the card is mounted read-only, or its lock switch is on: unlock it, and "
                                              "mount it for writing"
                                            : "check the permissions of the folder, or run as the user who may";
    return Finding{error == EROFS ? "card-read-only" : "folder-not-writable", ExitCode::kRefused,
                   "nothing can be " + std::string(what) + " in " + Quoted(folder) + " (" + std::strerror(error) +
                       "); " + cure};
}

} // namespace dcfctl
