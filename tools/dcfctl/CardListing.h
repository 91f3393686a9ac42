// A card that has been looked at, rehearsed and listed, for the verbs that read one. One thread.
#ifndef DCFCTL_CARD_LISTING_H
#define DCFCTL_CARD_LISTING_H

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "CardInspector.h"
#include "FileListSession.h"
#include "ListVerbs.h"

namespace dcfctl {

class CardListing {
public:
    explicit CardListing(const CardOptions& card);

    /// Why there is no list; then nothing else may be asked.
    [[nodiscard]] const std::optional<Finding>& Refusal() const {
        return m_report.refusal;
    }
    [[nodiscard]] const CardReport& Inspected() const {
        return m_report;
    }
    [[nodiscard]] int Count() const {
        return m_count;
    }
    /// Asks for the number of files anew, after some were deleted.
    void Recount() {
        m_count = m_session->List().GetCount();
    }
    /// The list itself, for the verbs that change it.
    [[nodiscard]] ISFileList& List() const {
        return m_session->List();
    }
    [[nodiscard]] Counts CountAll() const;
    /// The paths of a position, its type by the path, and its time. Makes no look-up, so it works on every card.
    [[nodiscard]] FileEntry Simple(int position) const;
    /// Adds the details to those entries for which they can be had. Warns where they cannot.
    void AddDetails(std::vector<FileEntry>& entries);
    /// Adds what the pictures tell to entries that have their details. Warns where the list would keep it with another
    /// file.
    void AddMetadata(std::vector<FileEntry>& entries);
    /// What is to be said about a whole list.
    [[nodiscard]] const std::vector<Finding>& Warnings() const {
        return m_report.warnings;
    }
    /// What is to be said where files are looked up one by one: those of "Camera" that share a number.
    [[nodiscard]] std::optional<Finding> SharedInCamera() const;
    /// What is to be said where the marks and details were not asked for: the number of the files, their paths.
    [[nodiscard]] std::vector<Finding> WarningsWithoutDetails() const;

private:
    [[nodiscard]] bool CanLookUp(const FileEntry& entry) const;
    void Detail(FileEntry& entry) const;
    void Describe(FileEntry& entry) const;
    [[nodiscard]] std::set<int> NotFoundByNumber() const;

    CardReport m_report;
    std::optional<FileListSession> m_session;
    int m_count = 0;
};

} // namespace dcfctl

#endif
