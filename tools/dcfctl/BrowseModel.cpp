// Listing, rows and moves; see the header. The marks and the deletion stand in BrowseMarks.cpp.
#include "BrowseModel.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "DcfNames.h"
#include "Metadata.h"
#include "Phrases.h"
#include "Rehearsal.h"
#include "Targets.h"
#include "Text.h"

namespace dcfctl {
namespace {

BrowseReply Refusal(const Finding& finding) {
    return {false, finding.text};
}

Finding NoList() {
    return Refused("not-listed", "the card is not listed; r lists it, q leaves");
}

/// In capitals, so that nobody has to know how a name is written.
bool Contains(const std::string& path, const std::string& capitals) {
    return UpperCased(path).find(capitals) != std::string::npos;
}

} // namespace

BrowseModel::BrowseModel(CardOptions card) : m_card(std::move(card)) {}

std::string BrowseModel::Dcim() const {
    return m_card.root + "/" + std::string(kDcim);
}

ISFileList& BrowseModel::List() const {
    return m_listing->List();
}

int BrowseModel::Count() const {
    return m_listing.has_value() ? m_listing->Count() : 0;
}

int BrowseModel::Selected() const {
    return m_listing.has_value() ? List().GetSelCount() : 0;
}

std::vector<Finding> BrowseModel::Warnings() const {
    if (!m_listing.has_value()) {
        return {};
    }
    std::vector<Finding> warnings = m_listing->Warnings();
    if (auto shared = m_listing->SharedInCamera()) {
        warnings.push_back(std::move(*shared));
    }
    return warnings;
}

std::optional<Finding> BrowseModel::Open() {
    const CardReport before = CardInspector(m_card.root, m_card.camera).Inspect();
    if (before.refusal.has_value()) {
        return before.refusal;
    }
    m_plan.reset();
    m_listing.reset(); // there is one list in a process
    m_cursor = -1;
    m_dcim = LookAt(Dcim());
    m_listing.emplace(m_card);
    if (auto refusal = m_listing->Refusal()) {
        m_listing.reset();
        return refusal;
    }
    m_known = m_listing->Inspected();
    m_untrue = false;
    TakeUpCursor();
    return std::nullopt;
}

std::optional<Finding> BrowseModel::CheckThere() const {
    const auto now = LookAt(Dcim());
    if (m_dcim.has_value() && now.has_value() && now->IsSame(*m_dcim)) {
        return std::nullopt;
    }
    if (now.has_value()) {
        return Refused("card-exchanged", "this is not the card that was listed; r lists it, q leaves");
    }
    return Refused("card-gone",
                   "the card is gone: there is no " + Quoted(Dcim()) + " any more; put it back and press r, q leaves");
}

std::optional<Finding> BrowseModel::CheckReady() const {
    if (!m_listing.has_value()) {
        return NoList();
    }
    if (auto gone = CheckThere()) {
        return gone;
    }
    if (Count() == 0) {
        return Refused("empty-list", "there is no picture or movie on this card; r looks again, q leaves");
    }
    return std::nullopt;
}

std::vector<BrowseRow> BrowseModel::Rows(int from, int count) {
    std::vector<FileEntry> files;
    const int end = std::min(Count(), from + count);
    for (int position = std::max(0, from); position < end; ++position) {
        files.push_back(m_listing->Simple(position));
    }
    if (!files.empty() && !CheckThere().has_value()) {
        m_listing->AddDetails(files);
    }
    std::vector<BrowseRow> rows;
    rows.reserve(files.size());
    for (FileEntry& file : files) {
        const bool selected = List().IsSel(file.position);
        rows.push_back({std::move(file), selected});
    }
    return rows;
}

/// The first conversion of a file stores its metadata, and the next one carries it. Nothing is collected at any other
/// time: a file that the list does not find again by its number, on which no cursor is ever placed, would leave its
/// metadata with the one that is found in its place.
BrowseFacts BrowseModel::Photo() const {
    BrowseFacts facts;
    if (ExifCollector() == nullptr || m_cursor < 0 || CheckThere().has_value()) {
        return facts;
    }
    const auto read = [&] {
        CSFileListItem item;
        (void)List().RegisterPhotoMetadataCB(ExifCollector()); // has one result
        (void)List().GetAt(m_cursor, &item);                   // 0 for every position of the list
        (void)List().GetAt(m_cursor, &item);
        (void)List().RegisterPhotoMetadataCB(nullptr);
        facts = PhotoFacts(item);
    };
    const Rehearsed tried = Rehearse(read);
    if (tried == Rehearsed::kFine || tried == Rehearsed::kNotTried) {
        read();
    }
    return facts;
}

// ---- Moves ----

void BrowseModel::TakeUpCursor() {
    const int position = Count() > 0 ? List().GetCurIndex() : -1;
    m_cursor = position < Count() ? position : -1;
}

bool BrowseModel::Move(const Operation& operation) {
    ISFileList& list = List();
    const auto tryOut = [&] { (void)operation(list); }; // whether it comes back is the question
    const Rehearsed tried = Rehearse(tryOut);
    if (tried == Rehearsed::kFatal || tried == Rehearsed::kThrew) {
        return false;
    }
    bool done = true;
    try {
        (void)operation(list); // the cursor tells where it has led
    } catch (const std::exception&) {
        done = false; // could not be tried out before
    }
    TakeUpCursor();
    return done;
}

Finding BrowseModel::CannotPlace(const FileEntry& file) const {
    const std::string which = Quoted(SplitPath(file.path).folder + "/" + SplitPath(file.path).file);
    if (m_known.ambiguous.contains(SplitPath(file.path).folder)) {
        return Refused(kSharedFolderNumber, "the cursor cannot be placed on " + which +
                                                ": its folder shares its number with another one, by which the file "
                                                "list finds a folder; rename one of the two");
    }
    return Refused("fatal-here", "the cursor cannot be placed on " + which +
                                     ", which the file list does not find again by its numbers; a position passes it "
                                     "by, i tells what is odd about the card");
}

/// An operation that ends on another file than it was meant for throws where it is tried out, and is not done.
BrowseReply BrowseModel::MoveTo(int position, const Operation& operation) {
    const auto exactly = [&](ISFileList& list) {
        const int result = operation(list);
        if (list.GetCurIndex() != position) {
            throw std::runtime_error("another file");
        }
        return result;
    };
    return Move(exactly) ? BrowseReply{} : Refusal(CannotPlace(m_listing->Simple(position)));
}

BrowseReply BrowseModel::First() {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    return MoveTo(0, [](ISFileList& list) {
        CSFileListItem item;
        return list.GetFirst(&item);
    });
}

BrowseReply BrowseModel::Last() {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    return MoveTo(Count() - 1, [](ISFileList& list) {
        CSFileListItem item;
        return list.GetLast(&item);
    });
}

/// A cursor on a file number of 0 cannot be moved on from; it can be moved away.
BrowseReply BrowseModel::Step(int by, const Operation& operation, const char* atTheEnd) {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    const int wanted = m_cursor + by;
    if (wanted < 0 || wanted >= Count()) {
        return {true, atTheEnd};
    }
    const BrowseReply reply = MoveTo(wanted, operation);
    return reply.done ? reply : To(wanted);
}

BrowseReply BrowseModel::Next() {
    const auto next = [](ISFileList& list) {
        CSFileListItem item;
        return list.GetNext(&item);
    };
    return Step(1, next, "this is the last file");
}

BrowseReply BrowseModel::Previous() {
    const auto previous = [](ISFileList& list) {
        CSFileListItem item;
        return list.GetPrev(&item);
    };
    return Step(-1, previous, "this is the first file");
}

BrowseReply BrowseModel::To(int position) {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    if (position < 0 || position >= Count()) {
        return {false, "there is no position " + std::to_string(position) + "; the list has the positions 0 to " +
                           std::to_string(Count() - 1)};
    }
    return MoveTo(position, [position](ISFileList& list) { return list.SetCurIndex(position); });
}

std::optional<int> BrowseModel::FindText(const std::string& text) const {
    const std::string capitals = UpperCased(text);
    const auto dcim = Dcim().size(); // the card's own path stands in all of them
    for (int step = 1; step <= Count(); ++step) {
        const int position = (m_cursor + step) % Count();
        const FileEntry file = m_listing->Simple(position);
        const bool companion = file.companion.has_value() && Contains(file.companion->path.substr(dcim), capitals);
        if (companion || Contains(file.path.substr(dcim), capitals)) {
            return position;
        }
    }
    return std::nullopt;
}

BrowseReply BrowseModel::ToPath(const std::string& text) {
    if (auto finding = CheckReady()) {
        return Refusal(*finding);
    }
    const std::string path = Unescaped(text).value_or(text);
    if (path.empty()) {
        return {};
    }
    const bool whole = path.find('/') != std::string::npos; // else it is a part of one, or nothing
    const auto place = whole ? PathIndex(*m_listing, m_card.root).Find(path) : std::nullopt;
    const auto position = place.has_value() ? std::optional<int>(place->position) : FindText(path);
    if (!position.has_value()) {
        return {false, "the list has no file " + Quoted(path) + ", and no path with that in it"};
    }
    std::string listed = m_listing->Simple(*position).path;
    return MoveTo(*position, [&listed](ISFileList& list) { return list.SetCur(listed.data()); });
}

/// After a deletion: to a position, or to where the cursor can be placed at all.
void BrowseModel::SettleAt(int position) {
    TakeUpCursor();
    if (Count() == 0 || To(std::clamp(position, 0, Count() - 1)).done) {
        return;
    }
    (void)(First().done || Last().done); // else the next move finds a place
    TakeUpCursor();
}

} // namespace dcfctl
