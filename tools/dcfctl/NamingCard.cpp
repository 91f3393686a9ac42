// Naming on a card; see the header.
#include "NamingCard.h"

#include <array>
#include <cstring>
#include <utility>

#include "ChangeSafety.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "SeriesStore.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// What the file list may write for a new name.
using NameBuffer = std::array<char, 396>;

std::string TextOf(const NameBuffer& buffer) {
    return {buffer.data(), strnlen(buffer.data(), buffer.size())};
}

std::string UsedUp(const NewName& name) {
    return "the number " + IndexText(name.stored) + " is used up";
}

} // namespace

NamingCard::NamingCard(CardOptions card, NamingOptions options)
    : m_card(std::move(card)), m_options(std::move(options)), m_dcim(m_card.root + "/" + std::string(kDcim)) {
    m_refusal = Open();
}

std::optional<Finding> NamingCard::ReadSeries() {
    const auto stored = SeriesStore::Read();
    if (const auto* value = std::get_if<long>(&stored)) {
        m_seriesBefore = *value;
        m_start.seriesValue = *value;
        return std::nullopt;
    }
    // Without series mode the value is not needed; that it cannot be stored shows afterwards.
    Finding finding = std::get<Finding>(stored);
    finding.exit = ExitCode::kRefused;
    return m_options.series ? std::optional<Finding>(finding) : std::nullopt;
}

std::optional<Finding> NamingCard::Open() {
    const CardInspector inspector(m_card.root, m_card.camera);
    auto finding = inspector.CheckRoot();
    if (!finding.has_value()) {
        finding = ChangeSafety::CheckDcim(m_dcim);
    }
    if (!finding.has_value()) {
        finding = ReadSeries();
    }
    m_start.dcim = m_dcim;
    m_start.series = m_options.series;
    if (!finding.has_value()) {
        finding = inspector.HasDcim() ? ListCard() : inspector.CheckNewDcim();
    }
    if (!finding.has_value() && NeedsDcim()) {
        finding = CheckWritable(m_card.root.empty() ? "/" : m_card.root, "made");
    }
    StartAgain();
    return finding;
}

std::optional<Finding> NamingCard::ListCard() {
    m_listing.emplace(m_card);
    if (m_listing->Refusal().has_value()) {
        return m_listing->Refusal();
    }
    m_start.files = m_listing->Count();
    m_start.firstIndex = m_listing->List().UpdateFirstIndex(true);
    return ChangeSafety(m_dcim, m_listing->Inspected()).CheckCard();
}

std::optional<Finding> NamingCard::MakeDcim() {
    {
        const FileListSession session(m_card.root, m_card.camera);
        (void)session.List().Listup(); // makes it; the card is looked at next
    }
    if (!LookAt(m_dcim).has_value()) {
        return Refused("dcim-not-made", "the folder " + Quoted(m_dcim) +
                                            " could not be made; check that the card is not full or damaged");
    }
    m_made.push_back(m_dcim);
    return ListCard();
}

/// What comes before the first name that is really taken.
std::optional<Finding> NamingCard::Begin() {
    m_begun = true;
    if (NeedsDcim()) {
        if (auto finding = MakeDcim()) {
            return finding;
        }
    }
    ApplyNaming(m_listing->List(), m_options);
    if (m_options.series) {
        (void)m_listing->List().SetSeriesMode(true); // the first index, which is foretold
    }
    StartAgain();
    return std::nullopt;
}

void NamingCard::StartAgain() {
    m_numbering.emplace(m_start, m_listing.has_value() ? m_listing->Inspected() : m_emptyReport);
}

std::variant<NewName, Finding> NamingCard::Foretell(eFileType type) {
    return m_numbering->Take(PartsFor(m_options, type));
}

std::variant<NewName, Finding> NamingCard::Take(eFileType type) {
    if (!m_begun) { // the first step makes "DCIM", so it comes after a look at what would follow
        auto trial = Foretell(type);
        if (std::holds_alternative<Finding>(trial)) {
            return trial;
        }
        if (auto finding = Begin()) {
            return *finding;
        }
    }
    auto foretold = Foretell(type);
    if (std::holds_alternative<Finding>(foretold)) {
        return foretold;
    }
    auto& name = std::get<NewName>(foretold);
    NameBuffer buffer = {};
    if (m_listing->List().GetNewFileName(buffer.data(), type) < 0) {
        return Refused("no-name", "the file list gives no new name on this card; look at its folders, and try again");
    }
    const std::string folder = m_dcim + "/" + name.folder;
    const auto state = LookAt(folder);
    if (TextOf(buffer) != name.path) {
        return Incomplete("unexpected-name", "the new name is " + Quoted(TextOf(buffer)) + " and not " +
                                                 Quoted(name.path) + " as foreseen, so it is not used, and " +
                                                 UsedUp(name) + "; try again");
    }
    if (!state.has_value() || !state->IsFolder()) {
        return Incomplete("folder-not-made", "the folder " + Quoted(folder) + " could not be made, and " +
                                                 UsedUp(name) + "; check that the card is not full or damaged");
    }
    if (name.makesFolder) {
        m_made.push_back(folder);
    }
    return foretold;
}

std::variant<std::string, Finding> NamingCard::TakeCompanion(const NewName& name, eFileType type) {
    NameBuffer buffer = {};
    const int code = m_listing->List().GetLatestFileName(buffer.data(), type);
    const std::string expected = name.path.substr(0, name.path.size() - 3) + TypeText(type);
    if (code < 0 || TextOf(buffer) != expected) {
        return Incomplete("unexpected-name", "the companion's name is " + Quoted(TextOf(buffer)) + " and not " +
                                                 Quoted(expected) + " as foreseen, so it is not used, and " +
                                                 UsedUp(name) + "; try again");
    }
    return expected;
}

} // namespace dcfctl
