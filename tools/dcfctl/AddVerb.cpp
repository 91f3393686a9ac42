// add; see the header. Sections: the plan, the copying, the verb.
#include "AddVerb.h"

#include <linux/magic.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <variant>

#include "CardFiles.h"
#include "CardLock.h"
#include "DcfNames.h"
#include "FileCopy.h"
#include "NamingCard.h"
#include "Phrases.h"
#include "SeriesStore.h"
#include "Sources.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

std::string CompanionPath(const std::string& path, const Source& companion) {
    return path.substr(0, path.size() - 3) + TypeText(companion.type);
}

// ---- The plan ----

/// What the files and folders will take of the card, which gives room away in whole clusters.
std::uint64_t RoomFor(const std::vector<Shot>& shots, std::size_t folders, std::uint64_t cluster) {
    const auto whole = [cluster](std::uint64_t size) { return (size + cluster - 1) / cluster * cluster; };
    std::uint64_t room = folders * cluster;
    for (const Shot& shot : shots) {
        room += whole(shot.file.Size());
        room += shot.companion.has_value() ? whole(shot.companion->Size()) : 0;
    }
    return room;
}

std::optional<Finding> CheckSize(const Source& source) {
    constexpr std::uint64_t kFatLimit = 0xffffffff;
    if (source.Size() <= kFatLimit) {
        return std::nullopt;
    }
    return Refused("file-too-big", Quoted(source.path) + " has " + SizeText(source.Size()) +
                                       ", and the card's FAT file system takes at most 4 GiB in one file; use a card "
                                       "with exFAT");
}

std::optional<Finding> CheckSpace(const std::string& root, const std::vector<Shot>& shots, std::size_t folders) {
    struct statfs space = {};
    const std::string dcim = root + "/" + std::string(kDcim);
    if (statfs(dcim.c_str(), &space) != 0 && statfs(root.empty() ? "/" : root.c_str(), &space) != 0) {
        return std::nullopt; // then the copying has to tell
    }
    if (space.f_type == MSDOS_SUPER_MAGIC) {
        for (const Shot& shot : shots) {
            auto finding = CheckSize(shot.file);
            if (!finding.has_value() && shot.companion.has_value()) {
                finding = CheckSize(*shot.companion);
            }
            if (finding.has_value()) {
                return finding;
            }
        }
    }
    const auto cluster = static_cast<std::uint64_t>(space.f_frsize > 0 ? space.f_frsize : space.f_bsize);
    const std::uint64_t free = static_cast<std::uint64_t>(space.f_bavail) * cluster;
    const std::uint64_t needed = RoomFor(shots, folders, cluster);
    if (needed <= free) {
        return std::nullopt;
    }
    return Refused("no-space", "the files need " + SizeText(needed) + " and the card has " + SizeText(free) +
                                   " free, so nothing was added; add fewer files, or make room with 'dcfctl rm'");
}

/// Names every file in the prediction and looks at what will be in the way. @return why nothing may be added.
std::optional<Finding> Plan(NamingCard& naming, const std::string& root, const std::vector<Shot>& shots,
                            AddResult& plan) {
    const std::string dcim = root + "/" + std::string(kDcim);
    if (naming.NeedsDcim()) {
        plan.made.push_back(dcim);
    }
    for (const Shot& shot : shots) {
        const auto foretold = naming.Foretell(shot.file.type);
        if (const auto* finding = std::get_if<Finding>(&foretold)) {
            return *finding;
        }
        const auto& name = std::get<NewName>(foretold);
        if (name.makesFolder) {
            plan.made.push_back(dcim + "/" + name.folder);
        }
        plan.files.push_back({shot.file.path, name.path, shot.file.Size(), false});
        plan.bytes += shot.file.Size();
        if (shot.companion.has_value()) {
            plan.files.push_back(
                {shot.companion->path, CompanionPath(name.path, *shot.companion), shot.companion->Size(), true});
            plan.bytes += shot.companion->Size();
        }
        plan.stored = name.stored;
    }
    naming.StartAgain();
    return CheckSpace(root, shots, plan.made.size());
}

// ---- The copying ----

class Copier {
public:
    Copier(NamingCard& naming, AddResult& result, std::uint64_t all, Output& err)
        : m_naming(naming), m_result(result), m_all(all), m_progress(err, "Copying", true) {}

    /// @return why the shot was not added; nothing of it is then on the card.
    [[nodiscard]] std::optional<Finding> Add(const Shot& shot);

private:
    [[nodiscard]] std::unique_ptr<StagedFile> Stage(const Source& source, const std::string& folder);
    void CopyShot(const Shot& shot, const std::string& path, const std::string& companionPath);
    void Note(const Source& source, const std::string& path, bool companion);

    NamingCard& m_naming;
    AddResult& m_result;
    std::uint64_t m_all;
    std::uint64_t m_done = 0;
    Progress m_progress;
    std::string m_current;             ///< The source that is being copied.
    std::set<std::string> m_cleaned{}; ///< Folders in which leftovers were looked for.
};

std::unique_ptr<StagedFile> Copier::Stage(const Source& source, const std::string& folder) {
    m_current = source.path;
    return std::make_unique<StagedFile>(source.path, source.state, folder, [this](std::uint64_t bytes) {
        m_done += bytes;
        m_progress.Show(m_done, m_all);
        return !InterruptGuard::Interrupted();
    });
}

/// Both files of a pair are whole on the card before either gets its name.
void Copier::CopyShot(const Shot& shot, const std::string& path, const std::string& companionPath) {
    const std::string folder = path.substr(0, path.rfind('/'));
    if (m_cleaned.insert(folder).second) {
        RemoveLeftovers(folder);
    }
    const auto file = Stage(shot.file, folder);
    const auto companion = shot.companion.has_value() ? Stage(*shot.companion, folder) : nullptr;
    try {
        m_current = shot.file.path;
        file->PutInPlace(path);
        if (companion != nullptr) {
            m_current = shot.companion->path;
            companion->PutInPlace(companionPath);
        }
    } catch (const CopyError&) {
        file->TakeBack();
        if (companion != nullptr) {
            companion->TakeBack();
        }
        throw;
    }
}

void Copier::Note(const Source& source, const std::string& path, bool companion) {
    m_result.files.push_back({source.path, path, source.Size(), companion});
    m_result.bytes += source.Size();
}

std::optional<Finding> Copier::Add(const Shot& shot) {
    const auto taken = m_naming.Take(shot.file.type);
    if (const auto* finding = std::get_if<Finding>(&taken)) {
        return *finding;
    }
    const auto& name = std::get<NewName>(taken);
    m_result.stored = name.stored;
    std::string companionPath;
    if (shot.companion.has_value()) {
        const auto companion = m_naming.TakeCompanion(name, shot.companion->type);
        if (const auto* finding = std::get_if<Finding>(&companion)) {
            return *finding;
        }
        companionPath = std::get<std::string>(companion);
    }
    try {
        CopyShot(shot, name.path, companionPath);
    } catch (const CopyError& error) {
        return Incomplete(InterruptGuard::Interrupted() ? "interrupted" : "copy-failed",
                          Quoted(m_current) + " was not added as " + Quoted(name.path) + ": " + error.what() +
                              "; nothing of it was left on the card, the number " + IndexText(name.stored) +
                              " is used up, and it can be added again under the next one");
    }
    Note(shot.file, name.path, false);
    if (shot.companion.has_value()) {
        Note(*shot.companion, companionPath, true);
    }
    return std::nullopt;
}

// ---- The verb ----

/// Folders that were made for files which then did not come.
void RemoveEmptyFolders(AddResult& result) {
    for (std::size_t i = result.made.size(); i-- > 0;) {
        if (rmdir(result.made[i].c_str()) == 0) { // only an empty one can be removed so
            result.made.erase(result.made.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

void AddNames(const Shot& shot, std::vector<std::string>& names) {
    names.push_back(shot.file.path);
    if (shot.companion.has_value()) {
        names.push_back(shot.companion->path);
    }
}

/// @return what ended the work before its time.
std::optional<Finding> CopyAll(NamingCard& naming, const std::vector<Shot>& shots, std::uint64_t all, AddResult& result,
                               Output& err) {
    const InterruptGuard guard;
    Copier copier(naming, result, all, err);
    std::optional<Finding> error;
    for (const Shot& shot : shots) {
        if (!error.has_value() && InterruptGuard::Interrupted()) {
            error = Incomplete("interrupted", "the work was interrupted; add the rest again");
        }
        if (!error.has_value()) {
            error = copier.Add(shot);
        }
        if (error.has_value()) {
            AddNames(shot, result.notAdded);
        }
    }
    result.made = naming.Made();
    if (error.has_value()) {
        RemoveEmptyFolders(result);
        if (result.stored.has_value()) {
            error->exit = ExitCode::kIncomplete;
        }
        if (result.notAdded.size() > 1) {
            error->text += " (" + FilesText(result.notAdded.size()) + " not added in all)";
        }
    }
    return error;
}

} // namespace

Report<AddResult> Add(const CardOptions& card, const AddOptions& options, Output& err) {
    const auto sources = ReadSources(options.files);
    if (const auto* finding = std::get_if<Finding>(&sources)) {
        return Failed<AddResult>(*finding);
    }
    const auto& shots = std::get<std::vector<Shot>>(sources);
    const CardLock lock(card.root);
    if (lock.Refusal().has_value()) {
        return Failed<AddResult>(*lock.Refusal());
    }
    NamingCard naming(card, options.naming);
    if (naming.Refusal().has_value()) {
        return Failed<AddResult>(*naming.Refusal());
    }
    AddResult plan;
    if (auto finding = Plan(naming, card.root, shots, plan)) {
        return Failed<AddResult>(*finding);
    }
    Report<AddResult> report;
    AddResult& result = report.value.emplace();
    if (options.dryRun) {
        result = plan;
    } else {
        report.error = CopyAll(naming, shots, plan.bytes, result, err);
    }
    result.root = card.root;
    result.dryRun = options.dryRun;
    result.series = options.naming.series;
    result.storedBefore = naming.SeriesBefore();
    if (!options.dryRun && result.stored.has_value()) {
        auto unstored = CheckStored(*result.stored);
        if (unstored.has_value() && report.error.has_value()) {
            report.warnings.push_back(*unstored);
        } else if (unstored.has_value()) {
            report.error = unstored;
        }
    }
    return report;
}

} // namespace dcfctl
