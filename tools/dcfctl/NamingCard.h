// A card on which new files are to be named. It foretells each name before it takes it, so that what would go wrong
// costs no number; until the first name is taken nothing is changed. One thread.
#ifndef DCFCTL_NAMING_CARD_H
#define DCFCTL_NAMING_CARD_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CardListing.h"
#include "Findings.h"
#include "Naming.h"
#include "Numbering.h"

namespace dcfctl {

class NamingCard {
public:
    NamingCard(CardOptions card, NamingOptions options);

    /// Why no name can be given on this card; then nothing else may be asked.
    [[nodiscard]] const std::optional<Finding>& Refusal() const {
        return m_refusal;
    }
    /// Names the next file in the prediction alone.
    [[nodiscard]] std::variant<NewName, Finding> Foretell(eFileType type);
    /// Takes the next number and enters the file into the list. Makes a missing "DCIM".
    [[nodiscard]] std::variant<NewName, Finding> Take(eFileType type);
    /// The name of the companion of the file that was named last, which is entered with it.
    [[nodiscard]] std::variant<std::string, Finding> TakeCompanion(const NewName& name, eFileType type);

    /// Starts the prediction again from the card as it was found. Not after the first name was taken.
    void StartAgain();

    /// Whether "DCIM" is missing yet, and will be made.
    [[nodiscard]] bool NeedsDcim() const {
        return !m_listing.has_value();
    }
    /// Paths of the folders that were made, "DCIM" included.
    [[nodiscard]] const std::vector<std::string>& Made() const {
        return m_made;
    }
    /// The series value as it was before anything was named; nothing when it cannot be had.
    [[nodiscard]] std::optional<long> SeriesBefore() const {
        return m_seriesBefore;
    }

private:
    [[nodiscard]] std::optional<Finding> Open();
    [[nodiscard]] std::optional<Finding> ReadSeries();
    [[nodiscard]] std::optional<Finding> ListCard();
    [[nodiscard]] std::optional<Finding> MakeDcim();
    [[nodiscard]] std::optional<Finding> Begin();

    CardOptions m_card;
    NamingOptions m_options;
    std::string m_dcim;
    CardReport m_emptyReport; ///< Of a card without "DCIM".
    std::optional<CardListing> m_listing;
    std::optional<Finding> m_refusal;
    std::optional<Numbering> m_numbering;
    Numbering::Start m_start;
    std::vector<std::string> m_made;
    std::optional<long> m_seriesBefore;
    bool m_begun = false;
};

} // namespace dcfctl

#endif
