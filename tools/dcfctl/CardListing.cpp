// Listing with care; see the header.
#include "CardListing.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "DcfNames.h"
#include "Metadata.h"
#include "Rehearsal.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kDetailsMissing = "details-missing";

bool IsAboutDetails(const Finding& warning) {
    const std::string code = warning.code;
    return code == kDetailsMissing || code == kSharedFolderNumber;
}

/// Whether the collector has filled a record since this was last cleared. The list calls it without any way to hand
/// something along.
bool g_collected = false;

int Collect(char* path, PhotoInfo* info) {
    const int result = ExifCollector()(path, info);
    g_collected = g_collected || result == 0;
    return result;
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

/// Positions of files that the list does not find by their number, since another one has the same: only "Camera" can
/// hold such. What is collected for one of them is kept with the first one.
std::set<int> CardListing::NotFoundByNumber() const {
    std::set<int> numbers;
    std::set<int> positions;
    for (int position = m_count - 1; position >= 0; --position) {
        const PathParts path = SplitPath(Simple(position).path);
        if (path.folder != kCamera) {
            break; // "Camera" stands at the end of the list
        }
        positions.insert(position);
    }
    for (auto position = positions.begin(); position != positions.end();) {
        const auto name = CameraFileName(SplitPath(Simple(*position).path).file);
        const bool first = !name.has_value() || numbers.insert(name->number).second;
        position = first ? positions.erase(position) : std::next(position);
    }
    return positions;
}

std::optional<Finding> CardListing::SharedInCamera() const {
    const std::set<int> positions = NotFoundByNumber();
    if (positions.empty()) {
        return std::nullopt;
    }
    const bool one = positions.size() == 1;
    const std::string first = Quoted(SplitPath(Simple(*positions.begin()).path).file);
    return Finding{"camera-number-shared", ExitCode::kSuccess,
                   (one ? first + " in 'Camera' has"
                        : std::to_string(positions.size()) + " files of 'Camera', " + first + " the first, have") +
                       " the number of another file there, the tenth to fifteenth characters of the name, by which the "
                       "list finds a file, so it could be taken for that one; rename " +
                       (one ? "it" : "them")};
}

/// The item carries what was collected from the next conversion on, so the first one is only for collecting.
void CardListing::Describe(FileEntry& entry) const {
    CSFileListItem item;
    DcfExifInfo info = {};
    g_collected = false;
    (void)m_session->List().GetAt(entry.position, &item); // 0 for every position of the list
    if (g_collected) {
        (void)m_session->List().GetAt(entry.position, &item); // likewise
    }
    if (DcfExifRead(item, &info)) {
        entry.metadata = info;
    }
}

void CardListing::AddMetadata(std::vector<FileEntry>& entries) {
    const std::set<int> misled = NotFoundByNumber();
    int missing = 0;
    (void)m_session->List().RegisterPhotoMetadataCB(Collect); // has one result
    for (FileEntry& entry : entries) {
        const bool isMisled = misled.contains(entry.position);
        entry.metadataMissing = isMisled || !entry.details.has_value();
        missing += isMisled ? 1 : 0;
        if (!entry.metadataMissing) {
            Describe(entry);
        }
    }
    (void)m_session->List().RegisterPhotoMetadataCB(nullptr); // has one result
    if (missing > 0) {
        m_report.warnings.push_back(
            {"metadata-missing", ExitCode::kPartial,
             "files of 'Camera' without their metadata: " + std::to_string(missing) +
                 "; the list keeps it by the number, the tenth to fifteenth characters of the name, and another file "
                 "has the same; rename them"});
    }
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
