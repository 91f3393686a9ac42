// MadeCard: a card of the gallery in a folder or on a mount of its own, and its use under the circumstances that belong
// to it. Lives in a child process (ChildProcess.h). One thread.
#ifndef TESTS_GALLERY_MADE_CARD_H
#define TESTS_GALLERY_MADE_CARD_H

#include <sys/types.h>

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "AwkwardCard.h"
#include "CSFileList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "PosixSeam.h"

namespace dcftest {

/// The user whom permissions concern where the tests run as root.
inline constexpr unsigned kNobody = 65534;

/// One entry of a card. A link is an entry of its own.
struct CardEntry {
    ino_t inode;
    mode_t mode;

    bool operator==(const CardEntry&) const = default;
};
/// By their paths.
using CardEntries = std::map<std::string, CardEntry>;

class MadeCard {
public:
    /// Ends the process as refused where the card cannot be made.
    explicit MadeCard(const AwkwardCard& card);
    ~MadeCard();
    MadeCard(const MadeCard&) = delete;
    MadeCard& operator=(const MadeCard&) = delete;

    void MakeAnew();
    const AwkwardCard& What() const {
        return m_card;
    }
    const std::string& Root() const {
        return m_root;
    }
    std::string Dcim() const {
        return m_root + "/DCIM";
    }
    /// Everything below the storage root.
    CardEntries Look() const;

    /// Whether changes of it can succeed.
    bool TakesChanges() const;
    /// The user for dcfctl, none where it is the test's own.
    std::optional<unsigned> User() const;

    /// With the mount as the circumstance has it.
    void Sealed(const std::function<void()>& piece);
    /// Hands a file list for the card to the piece, in a child, as the user who is meant. Behind it no descriptor may
    /// be open that was not before. sync() is left out, which would wait for every disk of the machine.
    Ending Use(const std::function<void(CSFileList&)>& piece);
    /// In that piece, behind the listing: what happens to the card then.
    void AfterListing() const;

private:
    void Make();
    void Unmake();
    void FillUp() const;
    void Remount(unsigned long flags) const;

    const AwkwardCard& m_card;
    std::optional<Card> m_place;
    std::string m_root;
};

} // namespace dcftest

#endif
