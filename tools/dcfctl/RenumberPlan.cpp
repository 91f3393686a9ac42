// The plan of a renumbering; see the header.
#include "RenumberPlan.h"

#include <dirent.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <memory>

#include "CardSurvey.h"
#include "DcfNames.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr int kFirstNumber = 100;
constexpr int kLastNumber = 999;
constexpr std::size_t kSuffixAt = 3;
constexpr std::size_t kSuffixLength = 5;

/// The entries of "DCIM" as they will be after so many renamings.
class Entries {
public:
    explicit Entries(const std::string& dcim);

    /// Does one renaming as the file system would.
    RenameOutcome Rename(const std::string& from, const std::string& to);
    [[nodiscard]] std::vector<FinalPlace> Places() const;

private:
    struct Entry {
        FinalPlace place;
        bool empty; ///< A folder without contents.

        [[nodiscard]] bool IsFolder() const {
            return place.state.IsFolder();
        }
    };
    using Map = std::map<std::string, Entry>;

    [[nodiscard]] std::string Key(const std::string& name) const {
        return m_anyCase ? UpperCased(name) : name;
    }

    Map m_entries;
    bool m_anyCase = false; ///< The file system finds names in any case.
};

Entries::Entries(const std::string& dcim) {
    const auto self = LookAt(dcim);
    const auto other = LookAt(dcim.substr(0, dcim.size() - kDcim.size()) + "dcim");
    m_anyCase = self.has_value() && other.has_value() && self->IsSame(*other);
    const FolderContents all(dcim, false);
    for (const std::string& name : all.Names()) {
        const std::string path = dcim + "/" + name;
        const auto state = LookAt(path);
        if (!state.has_value()) {
            continue; // gone in the meantime
        }
        const FolderContents contents(path, false);
        m_entries[Key(name)] = {{name, name, *state}, contents.Error() == 0 && contents.Names().empty()};
    }
}

RenameOutcome Entries::Rename(const std::string& from, const std::string& to) {
    const auto source = m_entries.find(Key(from));
    if (source == m_entries.end()) {
        return RenameOutcome::kBlocked; // gone in the meantime
    }
    if (Key(from) == Key(to)) {
        return RenameOutcome::kUnchanged;
    }
    const auto target = m_entries.find(Key(to));
    RenameOutcome outcome = RenameOutcome::kRenamed;
    if (target != m_entries.end()) {
        const bool folder = target->second.IsFolder();
        if (source->second.IsFolder() != folder || (folder && !target->second.empty)) {
            return RenameOutcome::kBlocked;
        }
        outcome = folder ? RenameOutcome::kReplacesEmpty : RenameOutcome::kOverwrites;
    }
    Entry moved = source->second;
    moved.place.to = to;
    m_entries.erase(source);
    m_entries[Key(to)] = moved;
    return outcome;
}

std::vector<FinalPlace> Entries::Places() const {
    std::vector<FinalPlace> places;
    for (const auto& [key, entry] : m_entries) {
        places.push_back(entry.place);
    }
    return places;
}

std::string NewNameFor(const std::string& name, int number) {
    std::array<char, 16> digits = {};
    std::snprintf(digits.data(), digits.size(), "%03d", number);
    return digits.data() + name.substr(kSuffixAt, kSuffixLength);
}

} // namespace

bool RenumberPlan::IsComplete() const {
    return std::all_of(rows.begin(), rows.end(), [](const Renaming& row) { return row.IsClean(); });
}

bool RenumberPlan::DoesHarm() const {
    return std::any_of(rows.begin(), rows.end(), [](const Renaming& row) {
        return row.outcome == RenameOutcome::kOverwrites || row.outcome == RenameOutcome::kBeyond;
    });
}

RenumberPlan PlanRenumbering(const std::string& dcim, const CardReport& report) {
    Entries entries(dcim);
    RenumberPlan plan;
    int number = kFirstNumber;
    for (const std::string& name : NamesInDcim(dcim)) {
        Renaming row;
        row.from = name;
        row.to = NewNameFor(name, number);
        row.camera = name == kCamera;
        row.listed = std::any_of(report.folders.begin(), report.folders.end(),
                                 [&](const CardFolder& folder) { return folder.name == name; });
        row.outcome = entries.Rename(row.from, row.to);
        if (number > kLastNumber && row.WillHaveNewName()) {
            row.outcome = RenameOutcome::kBeyond;
        }
        plan.rows.push_back(std::move(row));
        ++number; // a renaming that fails takes a number too
    }
    plan.entries = entries.Places();
    return plan;
}

std::string OutcomeText(const Renaming& renaming) {
    switch (renaming.outcome) {
    case RenameOutcome::kRenamed:
        if (renaming.camera) {
            return "renamed, and no longer in the list: it is \"Camera\"";
        }
        return renaming.listed ? "renamed" : "renamed, though it is not in the list";
    case RenameOutcome::kUnchanged:
        return renaming.listed ? "has this name already" : "has this name already, and is not in the list";
    case RenameOutcome::kBlocked:
        return "cannot be renamed: " + Quoted(renaming.to) + " is in the way";
    case RenameOutcome::kReplacesEmpty:
        return "renamed, replacing the empty folder " + Quoted(renaming.to);
    case RenameOutcome::kOverwrites:
        return "would overwrite the file " + Quoted(renaming.to);
    case RenameOutcome::kBeyond:
        return "would get a number beyond 999 and vanish from the list";
    }
    return "";
}

const char* OutcomeName(RenameOutcome outcome) {
    constexpr const char* kNames[] = {"renamed", "unchanged", "blocked", "replaces-empty", "overwrites", "beyond-999"};
    return kNames[static_cast<std::size_t>(outcome)];
}

} // namespace dcfctl
