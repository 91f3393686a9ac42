// The work; see the header.
#include "CardCheck.h"

#include <algorithm>
#include <set>
#include <utility>

#include "DcfNames.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kChanged = "; the card may have changed in the meantime: try again, and tell us if it stays so";

std::optional<std::string> FirstDifference(const std::vector<ListedFile>& list, const std::vector<WalkedFile>& walked) {
    for (std::size_t i = 0; i < std::max(list.size(), walked.size()); ++i) {
        if (i >= list.size()) {
            return Quoted(walked[i].listed.name) + " is not in the list";
        }
        if (i >= walked.size() || !(list[i] == walked[i].listed)) {
            return Quoted(list[i].name) + " is in the list" +
                   (list[i].companion.empty() ? "" : " with " + Quoted(list[i].companion));
        }
    }
    return std::nullopt;
}

/// How many entries of a folder the companions' names of the list lead to.
std::size_t CountCompanions(const CensusFolder& folder, const std::vector<ListedFile>& list) {
    std::set<std::string> files;
    std::set<std::string> companions;
    for (const ListedFile& file : list) {
        files.insert(file.name);
        if (!file.companion.empty()) {
            companions.insert(file.companion);
        }
    }
    std::size_t count = 0;
    for (const CensusEntry& entry : folder.entries) {
        const std::string name = UpperCased(entry.name);
        count += companions.contains(name) && !files.contains(name) ? companions.erase(name) : 0;
    }
    return count;
}

} // namespace

CardCheck::CardCheck(CardOptions card, Output& err)
    : m_card(std::move(card)), m_dcim(m_card.root + "/" + std::string(kDcim)), m_dcimState(LookAt(m_dcim)) {
    m_listing.emplace(m_card);
    m_refusal = m_listing->Refusal();
    if (m_refusal.has_value() && m_refusal->exit == ExitCode::kCardUnreadable) {
        m_error = m_refusal;
        return;
    }
    if (!m_refusal.has_value()) {
        for (int position = 0; position < m_listing->Count(); ++position) {
            const FileEntry entry = m_listing->Simple(position);
            const PathParts parts = SplitPath(entry.path);
            m_lists[parts.folder].push_back(
                {parts.file, entry.companion.has_value() ? SplitPath(entry.companion->path).file : ""});
        }
    }
    CensusReport report = TakeCensus(m_dcim, m_card, err);
    m_error = std::move(report.error);
    m_census = std::move(report.census);
    Walk();
}

void CardCheck::Walk() {
    m_walks.clear();
    std::size_t base = 0;
    for (const CensusFolder& folder : m_census.folders) {
        m_walks.push_back(WalkFolder(folder, base, m_lists[folder.self.name]));
        base += m_walks.back().files.size();
    }
}

std::optional<Finding> CardCheck::Disagreement() const {
    const auto now = LookAt(m_dcim);
    if (!now.has_value() || !m_dcimState.has_value() || !now->IsSame(*m_dcimState)) {
        return Incomplete("check-disagrees", Quoted(m_dcim) + " is no longer what it was, so nothing of this is sure; "
                                                              "check whether the card is still there");
    }
    if (m_refusal.has_value()) {
        return std::nullopt; // there is no list
    }
    std::set<std::string> known;
    for (std::size_t i = 0; i < m_census.folders.size(); ++i) {
        const std::string& name = m_census.folders[i].self.name;
        known.insert(name);
        const auto list = m_lists.find(name);
        const auto difference =
            FirstDifference(list == m_lists.end() ? std::vector<ListedFile>() : list->second, m_walks[i].files);
        if (difference.has_value()) {
            return Incomplete("check-disagrees", "the list and the entries of " + Quoted(name) +
                                                     " do not fit together: " + *difference + kChanged);
        }
    }
    const auto unknown =
        std::find_if(m_lists.begin(), m_lists.end(), [&](const auto& list) { return !known.contains(list.first); });
    if (unknown == m_lists.end()) {
        return std::nullopt;
    }
    return Incomplete("check-disagrees", "the list has files of " + Quoted(unknown->first) +
                                             ", and the card has no such folder" + kChanged);
}

CheckFigures CardCheck::Figures() const {
    CheckFigures figures;
    figures.entries = m_census.CountEntries();
    figures.folders = m_census.folders.size();
    if (m_refusal.has_value()) {
        return figures;
    }
    figures.listed = static_cast<std::size_t>(m_listing->Count());
    for (const CensusFolder& folder : m_census.folders) {
        const auto list = m_lists.find(folder.self.name);
        figures.companions += list == m_lists.end() ? 0 : CountCompanions(folder, list->second);
    }
    return figures;
}

std::optional<Finding> CardCheck::Closes(const CheckFigures& figures) const {
    if (figures.entries == figures.listed + figures.companions + figures.leftOut) {
        return std::nullopt;
    }
    return Incomplete("figures-do-not-close",
                      "the figures do not add up: " + std::to_string(figures.entries) + " entries are not " +
                          std::to_string(figures.listed) + " listed and " + std::to_string(figures.companions) +
                          " companions and " + std::to_string(figures.leftOut) + " left out" + kChanged);
}

std::string CardCheck::PathOf(const CensusFolder& folder, std::size_t entry) const {
    return m_dcim + "/" + folder.self.name + "/" + folder.entries[entry].name;
}

std::string CardCheck::PathOf(const CensusEntry& entry) const {
    return m_dcim + "/" + entry.name;
}

std::size_t CardCheck::Suppose(std::optional<std::size_t> folder, const std::string& name) {
    if (!folder.has_value()) {
        m_census.loose.push_back({{name, std::nullopt, 0}, false, 0});
        return m_census.loose.size() - 1;
    }
    std::vector<CensusEntry>& entries = m_census.folders[*folder].entries;
    entries.push_back({name, std::nullopt, 0});
    Walk();
    return entries.size() - 1;
}

} // namespace dcfctl
