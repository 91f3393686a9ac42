// AwkwardCard: a card of the gallery: how it is made, why it is awkward, and what the file list and dcfctl make of it.
// The tables are in the four *Cards.cpp; GalleryTest.cpp leads every one of them along the same road.
#ifndef TESTS_GALLERY_AWKWARD_CARD_H
#define TESTS_GALLERY_AWKWARD_CARD_H

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace dcftest {

/// Makes what is on a card. Folders and files are under "DCIM"; everything else throws std::system_error.
class CardMaker {
public:
    explicit CardMaker(std::string root) : m_root(std::move(root)) {}

    CardMaker& Folder(const std::string& dir);
    /// A file that begins as its extension says.
    CardMaker& File(const std::string& dir, const std::string& name);
    /// So many empty files.
    CardMaker& Files(const std::string& dir, int count);
    CardMaker& Protected(const std::string& dir, const std::string& name);
    /// A link to a target that is taken as it stands.
    CardMaker& Link(const std::string& dir, const std::string& name, const std::string& target);
    /// A pipe, a socket or a device (the null device). Ends the process as refused where a device may not be made.
    CardMaker& Special(const std::string& dir, const std::string& name, mode_t kind);
    CardMaker& SetMode(const std::string& dir, mode_t mode);

    const std::string& Root() const {
        return m_root;
    }
    std::string Path(const std::string& dir = "") const {
        return m_root + "/DCIM" + (dir.empty() ? "" : "/" + dir);
    }

private:
    std::string m_root;
};

/// Under what circumstances the card is used.
enum class Circumstance {
    kNone,
    kOrdinaryUser,  ///< Not by root, for whom no permission counts.
    kReadOnlyMount, ///< A mount that takes no change.
    kFullMount,     ///< A mount on which nothing new can be made.
    kTakenOut,      ///< Its folder is gone once it was listed.
    kFailing,       ///< Once it was listed every call on it fails, as a reader that was pulled out gives it.
};

/// Stands for a next name of which the look-up is fatal.
inline constexpr char kFatal[] = "fatal";

/// What the file list makes of a card.
struct Listed {
    int files = 0;            ///< In the list.
    const char* listing = ""; ///< The assertion in which the listing itself ends.
    const char* walking = ""; ///< The assertion in which the moves end.
    int mistaken = 0;         ///< Paths that are taken for another file.
    int unknown = 0;          ///< Paths that are fatal to ask for.
    const char* next = "";    ///< The next name, behind "DCIM/"; empty where there is none.
    bool nextTaken = false;   ///< The next name is that of a file which the list cannot see.
};

/// The exit codes of dcfctl.
struct Told {
    int ls;
    int check;
    int count;
};

struct AwkwardCard {
    const char* name;
    const char* why;
    std::function<void(CardMaker&)> make;
    Listed listed{};
    /// Without "Camera", where that makes a difference. The next name is asked for with it.
    std::optional<Listed> listedWithoutCamera{};
    Told told{0, 0, 0};
    Circumstance circumstance = Circumstance::kNone;
    std::size_t rootLength = 0;  ///< Of the storage root, where it matters.
    const char* rootFolder = ""; ///< The last folder of the storage root, where it matters.

    const Listed& In(bool camera) const {
        return camera || !listedWithoutCamera.has_value() ? listed : *listedWithoutCamera;
    }
};

inline void PrintTo(const AwkwardCard& card, std::ostream* out) {
    *out << card.name << " (" << card.why << ")";
}

using AwkwardCards = std::vector<AwkwardCard>;

AwkwardCards FolderCards();  ///< "DCIM" and the folders in it.
AwkwardCards EntryCards();   ///< What else than a picture can have the name of one.
AwkwardCards NumberCards();  ///< Numbers that are shared, used up, 0, or too many.
AwkwardCards StorageCards(); ///< Where the card is, and what it allows.

} // namespace dcftest

#endif
