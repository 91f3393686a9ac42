// The work behind check and explain: the entries of a card, the library's own list of them, and for every entry what
// became of it. That the two agree is verified. Read-only. One thread.
#ifndef DCFCTL_CARD_CHECK_H
#define DCFCTL_CARD_CHECK_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CardCensus.h"
#include "CardListing.h"
#include "CheckVerb.h"
#include "ListWalk.h"

namespace dcfctl {

class CardCheck {
public:
    CardCheck(CardOptions card, Output& err);

    /// Why the card cannot even be looked at; then nothing else may be asked.
    [[nodiscard]] const std::optional<Finding>& Error() const {
        return m_error;
    }
    /// Why the library gives no list of it.
    [[nodiscard]] const std::optional<Finding>& Refusal() const {
        return m_refusal;
    }
    /// Where the entries and the list do not fit together, or the card is gone: to be asked at the end.
    [[nodiscard]] std::optional<Finding> Disagreement() const;
    /// The sum of the figures, which must come out.
    [[nodiscard]] std::optional<Finding> Closes(const CheckFigures& figures) const;

    [[nodiscard]] const CardOptions& Card() const {
        return m_card;
    }
    [[nodiscard]] const std::string& Dcim() const {
        return m_dcim;
    }
    [[nodiscard]] const Census& Entries() const {
        return m_census;
    }
    /// As the folders of the census.
    [[nodiscard]] const std::vector<WalkedFolder>& Walks() const {
        return m_walks;
    }
    /// The library's list; nothing after a refusal.
    [[nodiscard]] const CardListing* Listing() const {
        return m_refusal.has_value() || !m_listing.has_value() ? nullptr : &*m_listing;
    }
    /// Entries, folders, and what the library's list itself says about files and companions. The rest is left at 0.
    [[nodiscard]] CheckFigures Figures() const;
    [[nodiscard]] std::string PathOf(const CensusFolder& folder, std::size_t entry) const;
    [[nodiscard]] std::string PathOf(const CensusEntry& entry) const;

    /// Adds an entry that is not on the card, to see what would become of it. Disagreement is not to be asked then.
    /// @param folder which of the census, or nothing for "DCIM". @return the entry's place there.
    std::size_t Suppose(std::optional<std::size_t> folder, const std::string& name);

private:
    using Lists = std::map<std::string, std::vector<ListedFile>>; // by folder

    void Walk();

    CardOptions m_card;
    std::string m_dcim;
    std::optional<EntryState> m_dcimState; ///< As it was in the beginning.
    std::optional<Finding> m_error;
    std::optional<Finding> m_refusal;
    std::optional<CardListing> m_listing;
    Lists m_lists;
    Census m_census;
    std::vector<WalkedFolder> m_walks;
};

} // namespace dcfctl

#endif
