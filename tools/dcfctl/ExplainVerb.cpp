// explain; see the header. Sections: what is meant, what there is to say about it.
#include "ExplainVerb.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

#include "CardCheck.h"
#include "CardHazards.h"
#include "DcfNames.h"
#include "FileHazards.h"
#include "LeftOut.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

namespace fs = std::filesystem;

/// An entry of the census.
struct Spot {
    std::optional<std::size_t> folder; ///< Nothing for an entry of "DCIM".
    std::optional<std::size_t> entry;  ///< Of the folder, or of the loose ones; nothing for the folder itself.
    bool onCard = true;
};
using Spots = std::vector<Spot>;
/// The parts of a path below "DCIM".
using Parts = std::vector<std::string>;

// ---- What is meant ----

Parts PartsOf(const fs::path& path) {
    Parts parts;
    for (const fs::path& part : path) {
        if (!part.empty() && part != "." && part != "/") {
            parts.push_back(part.string());
        }
    }
    return parts;
}

/// The rest of a path behind a folder, where it lies below that.
std::optional<Parts> Below(const fs::path& path, const fs::path& folder) {
    const auto ends = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    if (ends.first != folder.end() || ends.second == path.end()) {
        return std::nullopt;
    }
    fs::path rest;
    for (auto part = ends.second; part != path.end(); ++part) {
        rest /= *part;
    }
    const Parts parts = PartsOf(rest);
    return parts.empty() ? std::nullopt : std::optional<Parts>(parts);
}

/// As the path itself says, or as the folders on the way to it really are.
std::optional<Parts> BelowDcim(const CardCheck& check, const std::string& path) {
    const fs::path tidied = fs::path(path).lexically_normal();
    if (auto parts = Below(tidied, fs::path(check.Dcim()).lexically_normal())) {
        return parts;
    }
    std::error_code error;
    const fs::path dcim = fs::canonical(check.Dcim(), error);
    if (error) {
        return std::nullopt;
    }
    fs::path folder = tidied.has_filename() ? tidied.parent_path() : tidied.parent_path().parent_path();
    folder = fs::canonical(folder.empty() ? "." : folder, error);
    const fs::path name = tidied.has_filename() ? tidied.filename() : tidied.parent_path().filename();
    return error ? std::nullopt : Below(folder / name, dcim);
}

class Finder {
public:
    explicit Finder(CardCheck& check) : m_check(check) {}

    /// @return the entries that are meant, or none.
    Spots Find(const std::string& what) {
        if (what.empty() || what == "." || what == "..") {
            return {};
        }
        if (what.find('/') == std::string::npos) {
            for (const bool anyCase : {false, true}) {
                m_anyCase = anyCase;
                Spots spots = FindName(what);
                if (!spots.empty()) {
                    return spots;
                }
            }
            return SupposeName(what);
        }
        std::vector<std::string> forms = {what};
        if (what.front() != '/') {
            forms.push_back(m_check.Card().root + "/" + what);
            forms.push_back(m_check.Dcim() + "/" + what);
        }
        std::vector<Parts> candidates;
        for (const std::string& form : forms) {
            if (auto parts = BelowDcim(m_check, form)) {
                candidates.push_back(std::move(*parts));
            }
        }
        for (const Parts& parts : candidates) {
            if (const auto spot = FindParts(parts)) {
                return {*spot};
            }
        }
        for (const Parts& parts : candidates) {
            if (const auto spot = SupposeParts(parts)) {
                return {*spot};
            }
        }
        return {};
    }

private:
    [[nodiscard]] const Census& Entries() const {
        return m_check.Entries();
    }

    /// Exactly so, or else in any case where that is allowed.
    template <typename List, typename NameOf>
    std::optional<std::size_t> IndexOf(const List& list, const std::string& name, NameOf nameOf) const {
        auto found = std::find_if(list.begin(), list.end(), [&](const auto& item) { return nameOf(item) == name; });
        if (found == list.end() && m_anyCase) {
            found = std::find_if(list.begin(), list.end(),
                                 [&](const auto& item) { return EqualNoCase(nameOf(item), name); });
        }
        return found == list.end() ? std::nullopt
                                   : std::optional<std::size_t>(static_cast<std::size_t>(found - list.begin()));
    }
    [[nodiscard]] std::optional<std::size_t> FolderOf(const std::string& name) const {
        return IndexOf(Entries().folders, name, [](const CensusFolder& folder) { return folder.self.name; });
    }
    [[nodiscard]] std::optional<std::size_t> LooseOf(const std::string& name) const {
        return IndexOf(Entries().loose, name, [](const LooseEntry& entry) { return entry.self.name; });
    }
    [[nodiscard]] std::optional<std::size_t> EntryOf(std::size_t folder, const std::string& name) const {
        return IndexOf(Entries().folders[folder].entries, name, [](const CensusEntry& entry) { return entry.name; });
    }

    Spots FindName(const std::string& name) const {
        Spots spots;
        if (const auto loose = LooseOf(name)) {
            spots.push_back({std::nullopt, loose});
        }
        if (const auto folder = FolderOf(name)) {
            spots.push_back({folder, std::nullopt});
        }
        for (std::size_t folder = 0; folder < Entries().folders.size(); ++folder) {
            if (const auto entry = EntryOf(folder, name)) {
                spots.push_back({folder, entry});
            }
        }
        return spots;
    }

    /// What lies below an entry that is left out shares its fate.
    std::optional<Spot> FindParts(const Parts& parts) const {
        if (const auto loose = LooseOf(parts[0])) {
            return Spot{std::nullopt, loose};
        }
        const auto folder = FolderOf(parts[0]);
        if (!folder.has_value()) {
            return std::nullopt;
        }
        if (parts.size() == 1) {
            return Spot{folder, std::nullopt};
        }
        const auto entry = EntryOf(*folder, parts[1]);
        return entry.has_value() ? std::optional<Spot>(Spot{folder, entry}) : std::nullopt;
    }

    std::optional<Spot> SupposeParts(const Parts& parts) {
        if (parts[0] == kDcim) {
            return std::nullopt; // it is "DCIM" itself that was meant
        }
        if (parts.size() == 1) {
            return Spot{std::nullopt, m_check.Suppose(std::nullopt, parts[0]), false};
        }
        const auto folder = FolderOf(parts[0]);
        if (!folder.has_value() || parts.size() > 2) {
            return std::nullopt;
        }
        return Spot{folder, m_check.Suppose(folder, parts[1]), false};
    }

    /// A name alone is supposed where it belongs by its looks.
    Spots SupposeName(const std::string& name) {
        if (name == kDcim) {
            return {};
        }
        const bool file = name.find('.') != std::string::npos;
        const auto wanted =
            std::find_if(Entries().folders.begin(), Entries().folders.end(),
                         [&](const CensusFolder& folder) { return folder.camera == CameraFileName(name).has_value(); });
        if (file && wanted == Entries().folders.end()) {
            return {};
        }
        if (!file) {
            return {{std::nullopt, m_check.Suppose(std::nullopt, name), false}};
        }
        const auto folder = static_cast<std::size_t>(wanted - Entries().folders.begin());
        return {{folder, m_check.Suppose(folder, name), false}};
    }

    CardCheck& m_check;
    bool m_anyCase = true;
};

// ---- What there is to say ----

std::size_t FirstPosition(const CardCheck& check, std::size_t folder) {
    std::size_t position = 0;
    for (std::size_t i = 0; i < folder; ++i) {
        position += check.Walks()[i].files.size();
    }
    return position;
}

/// A folder that is not there: what the list would do with its name.
void SupposeFolder(const CardCheck& check, const LooseEntry& loose, ExplainedEntry& entry) {
    const std::string& name = loose.self.name;
    Names names = NamesInDcim(check.Dcim());
    names.push_back(name);
    std::vector<CardFolder> folders;
    const SharedNumbers shared = ChooseFolders(names, check.Dcim(), check.Card().camera, folders);
    const bool listed =
        std::any_of(folders.begin(), folders.end(), [&](const CardFolder& folder) { return folder.name == name; });
    if (!listed) {
        entry.findings.push_back(WhyLeftOut(check, loose));
        return;
    }
    entry.place = Place::kFolder;
    entry.number = FolderNumber(name);
    const auto found = shared.find(*entry.number);
    if (found != shared.end()) {
        const Names& sharers = found->second.listed.size() > 1 ? found->second.listed : found->second.leftOut;
        const std::string& other = sharers[sharers.front() == name ? 1 : 0];
        entry.findings.push_back(
            {CheckCode::kFolderNumberShared, entry.path,
             "it would share the number " + std::to_string(*entry.number) + " with " + Quoted(other),
             check.Dcim() + "/" + other});
    }
}

ExplainedEntry ExplainLoose(const CardCheck& check, const Spot& spot) {
    const LooseEntry& loose = check.Entries().loose[*spot.entry];
    ExplainedEntry entry;
    entry.path = check.PathOf(loose.self);
    if (!spot.onCard) {
        SupposeFolder(check, loose, entry);
    } else {
        entry.findings.push_back(WhyLeftOut(check, loose));
    }
    return entry;
}

ExplainedEntry ExplainFolder(const CardCheck& check, std::size_t index) {
    const CensusFolder& folder = check.Entries().folders[index];
    ExplainedEntry entry;
    entry.path = check.PathOf(folder.self);
    entry.place = Place::kFolder;
    entry.number = folder.number;
    entry.files = check.Walks()[index].files.size();
    if (entry.files > 0 && !check.Refusal().has_value()) {
        entry.position = FirstPosition(check, index);
    }
    return entry;
}

ExplainedEntry ExplainFile(const CardCheck& check, const Spot& spot) {
    const CensusFolder& folder = check.Entries().folders[*spot.folder];
    const WalkedFolder& walk = check.Walks()[*spot.folder];
    const WalkedFolder::EntryFate fate = walk.fates[*spot.entry];
    ExplainedEntry entry;
    entry.path = check.PathOf(folder, *spot.entry);
    if (auto finding = WhyLeftOut(check, *spot.folder, *spot.entry)) {
        entry.findings.push_back(std::move(*finding));
        return entry;
    }
    const WalkedFile& file = walk.files[fate.file];
    entry.place = fate.fate == Fate::kListed ? Place::kListed : Place::kCompanion;
    entry.position = FirstPosition(check, *spot.folder) + fate.file;
    entry.number = file.read.number;
    if (entry.place == Place::kCompanion) {
        entry.partner = check.PathOf(folder, file.entry);
    } else if (file.companionEntry.has_value()) {
        entry.partner = check.PathOf(folder, *file.companionEntry);
    }
    return entry;
}

ExplainedEntry ExplainSpot(const CardCheck& check, const Spot& spot) {
    ExplainedEntry entry = !spot.folder.has_value()  ? ExplainLoose(check, spot)
                           : !spot.entry.has_value() ? ExplainFolder(check, *spot.folder)
                                                     : ExplainFile(check, spot);
    entry.onCard = spot.onCard;
    return entry;
}

/// The hazards in which the entries play a part, and those of the card where no list can be made of it.
void AddHazards(const CardCheck& check, std::vector<ExplainedEntry>& entries, Output& err) {
    std::set<std::string> paths;
    for (const ExplainedEntry& entry : entries) {
        paths.insert(entry.path);
    }
    const auto asked = [&](const std::string& path) { return paths.contains(path); };
    std::vector<CheckFinding> all = FindCardHazards(check, PlanRenumberingOf(check));
    for (std::vector<CheckFinding> more : {FindFolderHazards(check), FindFileHazards(check, asked, err)}) {
        std::move(more.begin(), more.end(), std::back_inserter(all));
    }
    for (ExplainedEntry& entry : entries) {
        std::copy_if(all.begin(), all.end(), std::back_inserter(entry.findings), [&](const CheckFinding& finding) {
            const bool card = check.Refusal().has_value() && finding.path.size() <= check.Dcim().size();
            return finding.path == entry.path || finding.other == entry.path || card;
        });
    }
}

std::vector<Finding> Warnings(const ExplainResult& result) {
    std::size_t leftOut = 0;
    std::size_t hazards = 0;
    for (const ExplainedEntry& entry : result.entries) {
        for (const CheckFinding& finding : entry.findings) {
            leftOut += finding.Row().severity == Severity::kLeftOut ? 1 : 0;
            hazards += finding.Row().severity == Severity::kHazard ? 1 : 0;
        }
    }
    if (leftOut + hazards == 0) {
        return {};
    }
    const std::string shown = Quoted(result.what);
    return {{"check-findings", ExitCode::kFindings,
             leftOut > 0 ? shown + " is left out of the list; why, and what to do, stands beside it"
                         : CountText(hazards, "hazard", "hazards") + (hazards == 1 ? " was" : " were") + " found at " +
                               shown + "; what to do stands beside each"}};
}

/// A name alone that was not found may lie in a folder that cannot be read.
std::vector<Finding> NotLookedInto(const CardCheck& check) {
    std::vector<Finding> findings;
    if (check.Listing() != nullptr) {
        const std::vector<Finding>& all = check.Listing()->Inspected().warnings;
        std::copy_if(all.begin(), all.end(), std::back_inserter(findings),
                     [](const Finding& finding) { return finding.code == std::string(kUnreadableFolder); });
    }
    return findings;
}

Finding Unknown(const CardOptions& card, const std::string& what) {
    return Refused("unknown-path", Quoted(what) + " is nothing in the folders of " +
                                       Quoted(card.root + "/" + std::string(kDcim)) +
                                       ", and no place for it is there; name a file as FOLDER/NAME, or check the "
                                       "card's path");
}

} // namespace

const char* PlaceName(Place place) {
    constexpr const char* kNames[] = {"listed", "companion", "folder", "left-out"};
    return kNames[static_cast<std::size_t>(place)];
}

Report<ExplainResult> Explain(const CardOptions& card, const std::string& what, Output& err) {
    CardCheck check(card, err);
    auto error = check.Error();
    if (!error.has_value()) {
        error = check.Disagreement();
    }
    if (error.has_value()) {
        return Failed<ExplainResult>(*error);
    }
    const Spots spots = Finder(check).Find(what);
    if (spots.empty()) {
        return Failed<ExplainResult>(Unknown(card, what));
    }
    Report<ExplainResult> report;
    if (!spots.front().onCard && what.find('/') == std::string::npos) {
        report.warnings = NotLookedInto(check);
    }
    ExplainResult& result = report.value.emplace();
    result.root = card.root;
    result.what = what;
    for (const Spot& spot : spots) {
        result.entries.push_back(ExplainSpot(check, spot));
    }
    AddHazards(check, result.entries, err);
    for (Finding& warning : Warnings(result)) {
        report.warnings.push_back(std::move(warning));
    }
    return report;
}

} // namespace dcfctl
