// What the browser browses: the list with its cursor, its selection and its marks, and the guards in front of every
// operation that is called on them. Knows nothing of keys and screens. One thread, one model: the list is one for the
// process.
#ifndef DCFCTL_BROWSE_MODEL_H
#define DCFCTL_BROWSE_MODEL_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "BrowsePhoto.h"
#include "CardFiles.h"
#include "CardListing.h"
#include "ChangeSafety.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "RemoveVerb.h"

namespace dcfctl {

/// What came of a wish: it was done or refused, and what is to be said about it.
struct BrowseReply {
    bool done = true;
    std::string text; ///< One line, names escaped; may be empty.
};

/// One line of the list.
struct BrowseRow {
    FileEntry file;
    bool selected = false;
};

class BrowseModel {
public:
    explicit BrowseModel(CardOptions card);

    /// Lists the card, or lists it anew; the cursor is then on the first file, and nothing is marked for transfer.
    /// @return why it cannot be listed: a list that was there stays where that can be told beforehand.
    [[nodiscard]] std::optional<Finding> Open();

    [[nodiscard]] const std::string& Root() const {
        return m_card.root;
    }
    [[nodiscard]] int Count() const;
    /// List position of the cursor, -1 with an empty list.
    [[nodiscard]] int Cursor() const {
        return m_cursor;
    }
    [[nodiscard]] int Selected() const;
    /// What is odd about the card.
    [[nodiscard]] std::vector<Finding> Warnings() const;
    /// Looks whether the card that was listed is still there. @return a line that says so when it is not.
    [[nodiscard]] std::optional<Finding> CheckThere() const;
    /// Some files of the list; without details when these cannot be had.
    [[nodiscard]] std::vector<BrowseRow> Rows(int from, int count);

    /// What the metadata of the file at the cursor tells.
    [[nodiscard]] BrowseFacts Photo() const;

    // Moves. Each is tried out first.
    BrowseReply First();
    BrowseReply Last();
    BrowseReply Next();
    BrowseReply Previous();
    BrowseReply To(int position);
    /// To a path as the verbs take it, or else to the next file behind the cursor whose path has this text in it.
    BrowseReply ToPath(const std::string& text);

    // Marks: of the selected files, or else of the one at the cursor.
    BrowseReply Select();
    BrowseReply SelectNone();
    /// Protects the files; takes the protection off when all of them are protected.
    BrowseReply Protect(const Tick& tick);
    /// Marks the files for transfer; takes the mark off when all of them have it.
    BrowseReply MarkForTransfer();

    /// What a deletion of the selected files, or else of the one at the cursor, would take: the question's text.
    BrowseReply PlanDeletion(const Tick& tick);
    /// Carries out what was planned last, if the card is still as it was then.
    BrowseReply Delete(const Tick& tick);

private:
    using Operation = std::function<int(ISFileList& list)>;

    [[nodiscard]] ISFileList& List() const;
    [[nodiscard]] std::string Dcim() const;
    [[nodiscard]] Finding CannotPlace(const FileEntry& file) const;
    /// Why nothing can be done with a file at all now.
    [[nodiscard]] std::optional<Finding> CheckReady() const;
    void TakeUpCursor();
    /// @return false when the operation would end the list.
    bool Move(const Operation& operation);
    BrowseReply MoveTo(int position, const Operation& operation);
    BrowseReply Step(int by, const Operation& operation, const char* atTheEnd);
    void SettleAt(int position);
    [[nodiscard]] std::optional<int> FindText(const std::string& text) const;

    [[nodiscard]] std::vector<FileEntry> Chosen() const;
    /// Would a look-up by path meet these very files?
    [[nodiscard]] bool FindsAgain(const std::vector<FileEntry>& files) const;
    /// Looks at the card before a change. @return why the list no longer tells the truth about it.
    [[nodiscard]] std::optional<Finding> CheckUnchanged(CardReport& now) const;
    [[nodiscard]] std::optional<Finding> Plan(const CardReport& now, const std::vector<FileEntry>& files,
                                              const Tick& tick, RemovalPlan& plan) const;
    void DeleteAsPlanned(const RemovalPlan& plan, int first, const Tick& tick);

    CardOptions m_card;
    std::optional<CardListing> m_listing;
    std::optional<EntryState> m_dcim; ///< "DCIM" as it was when the card was listed.
    CardReport m_known;               ///< The card as the list has it.
    bool m_untrue = false;            ///< The list lacks a file that could not be deleted.
    int m_cursor = -1;
    std::optional<RemovalPlan> m_plan;
};

} // namespace dcfctl

#endif
