// Listing with care; see the header.
#include "CardListing.h"

#include <algorithm>
#include <iterator>

#include "DcfNames.h"
#include "Rehearsal.h"

namespace dcfctl {
namespace {

constexpr const char* kDetailsMissing = "details-missing";

bool IsAboutDetails(const Finding& warning) {
    const std::string code = warning.code;
    return code == kDetailsMissing || code == kSharedFolderNumber;
}

Finding ListingFails() {
    return {"listing-fails", ExitCode::kRefused,
            "the card cannot be listed: its folders or names lead the file list astray, and the details are not to be "
            "had; copy the pictures off the card and look at the names of its folders"};
}

} // namespace

CardListing::CardListing(const CardOptions& card) : m_report(CardInspector(card.root, card.camera).Inspect()) {
    if (m_report.refusal.has_value()) {
        return;
    }
    m_session.emplace(card.root, card.camera);
    ISFileList& list = m_session->List();
    if (Rehearse([&list] { (void)list.Listup(); }) == Rehearsed::kFatal) { // what it returns is asked for below
        m_report.refusal = ListingFails();
        return;
    }
    m_count = list.Listup();
}

Counts CardListing::CountAll() const {
    Counts counts;
    counts.files = m_count;
    for (std::size_t i = 0; i < kFileTypes.size(); ++i) {
        counts.byType[i] = m_session->List().GetFileCount(kFileTypes[i]);
    }
    return counts;
}

FileEntry CardListing::Simple(int position) const {
    CSFileListItem item;
    (void)m_session->List().GetAtSimply(position, &item); // 0 for every position of the list
    FileEntry entry;
    entry.position = position;
    entry.path = item.m_strURI;
    entry.type = TypeOfPath(entry.path);
    entry.time = item.m_nFileTime;
    if (item.m_strObject[0] != '\0') {
        entry.companion = Companion{TypeOfPath(item.m_strObject), item.m_strObject};
    }
    return entry;
}

bool CardListing::CanLookUp(const FileEntry& entry) const {
    return m_report.ambiguous.empty() || !m_report.ambiguous.contains(SplitPath(entry.path).folder);
}

void CardListing::Detail(FileEntry& entry) const {
    CSFileListItem item;
    (void)m_session->List().GetAt(entry.position, &item); // 0 for every position of the list
    entry.type = item.m_eFileType;
    entry.details = FileEntry::Details{item.m_bProtect, item.m_bWifi, item.m_nDirNum, item.m_nFileNum};
}

std::vector<Finding> CardListing::WarningsWithoutDetails() const {
    std::vector<Finding> warnings;
    std::copy_if(m_report.warnings.begin(), m_report.warnings.end(), std::back_inserter(warnings),
                 [](const Finding& warning) { return !IsAboutDetails(warning); });
    return warnings;
}

void CardListing::AddDetails(std::vector<FileEntry>& entries) {
    const auto detailAll = [&] {
        for (FileEntry& entry : entries) {
            if (CanLookUp(entry)) {
                Detail(entry);
            }
        }
    };
    if (Rehearse(detailAll) != Rehearsed::kFatal) {
        detailAll();
        return;
    }
    const auto said = [](const Finding& warning) { return warning.code == std::string(kDetailsMissing); };
    if (std::any_of(m_report.warnings.begin(), m_report.warnings.end(), said)) {
        return;
    }
    m_report.warnings.push_back({kDetailsMissing, ExitCode::kPartial,
                                 "the files are listed without their details, which are not to be had on this card; "
                                 "look at the names of its folders"});
}

} // namespace dcfctl
