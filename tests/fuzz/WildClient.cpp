#include "WildClient.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "CSFileList.h"
#include "Escape.h"
#include "HostileCard.h"
#include "NameRules.h"
#include "PosixSeam.h"
#include "RandomCard.h"
#include "Target.h"

namespace dcffuzz {

namespace {

namespace fs = std::filesystem;
using dcftest::Dice;

constexpr std::size_t kLongestRoot = 97;
constexpr std::size_t kLongestPath = 98;
constexpr int kMostSteps = 40;

/// What the interface names as fatal; see include/ISFileList.h.
const char* const kDocumentedEnds[] = {"cannot find dir index = ",
                                       "cannot found fnum = ",
                                       "need to setting cur file",
                                       "invalid cursor",
                                       "GetCur must success",
                                       "vector index overflow = ",
                                       "invalid",
                                       "more than dcf filename length",
                                       "m_nList need to check",
                                       "index cannot be negative"};

using Names = std::set<std::pair<std::string, std::string>>; ///< Folder and file.

class Client {
public:
    Client(Dice& dice, const std::string& folder) : m_dice(dice), m_root(RootBelow(folder)), m_dcim(m_root + "/DCIM") {
        fs::create_directories(m_root);
        dcftest::ReferenceCard card;
        card.root = m_root;
        DrawHostileCard(m_dice, Ranks::Any, card);
        dcftest::MakeRealCard(card);
        m_base = m_root.substr(0, m_root.find('/', folder.size() + 1));
    }
    ~Client() {
        std::error_code ignored;
        fs::remove_all(m_base, ignored);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void Run() {
        Require(m_list.SetBaseURI(m_root.c_str()) == 0, "the root is refused");
        dcftest::PosixSeam seam; // no sync() that waits for every disk
        try {
            m_list.IncludeNonDCF(m_dice.Pick(0, 7) != 7);
            (void)m_list.SetSeriesMode(m_dice.Pick(0, 1) == 1);
            const int count = m_list.Listup();
            Require(count >= 0 && count == m_list.GetCount(), "the count differs from the listing's");
            CheckWalk();
            CheckPaths();
            for (int step = 0; step < kMostSteps && !m_dice.Exhausted(); ++step) {
                Step();
                Require(m_list.GetCount() >= 0, "a negative count");
            }
            CheckPaths();
        } catch (const Ended& end) {
            const bool documented =
                std::any_of(std::begin(kDocumentedEnds), std::end(kDocumentedEnds),
                            [&end](const std::string& text) { return end.info.compare(0, text.size(), text) == 0; });
            Require(documented, "the process would end by " + Visible(end.condition) + ", " + Visible(end.info));
        }
    }

private:
    std::string RootBelow(const std::string& folder) {
        static const std::vector<std::string> kNames = {"r", "PHOTO", "Camera", "100PHOTO", "DCIM", "x y", "\xff"};
        std::string root = folder + "/" + m_dice.Of(kNames);
        const auto length = static_cast<std::size_t>(m_dice.Pick(0, static_cast<int>(kLongestRoot)));
        while (m_dice.Pick(0, 3) == 3 && root.size() + 2 <= std::min(length, kLongestRoot)) {
            root += "/" + std::string(std::min<std::size_t>(length - root.size() - 1, 20), 'r');
        }
        return root;
    }

    /// Every entry of every folder, as the list would show it.
    Names OnCard() const {
        Names names;
        std::error_code none;
        for (fs::directory_iterator it(m_dcim, none), end; it != end; it.increment(none)) {
            const std::string folder = it->path().filename().string();
            for (fs::directory_iterator file(it->path(), none), last; file != last; file.increment(none)) {
                names.emplace(folder, file->path().filename().string());
            }
        }
        return names;
    }

    void CheckWalk() {
        CSFileListItem item;
        int walked = 0;
        const int count = m_list.GetCount();
        for (int result = m_list.GetFirst(&item); result == 0; result = m_list.GetNext(&item)) {
            Require(m_list.GetCurIndex() == walked, "the cursor stands elsewhere");
            Require(++walked <= count, "the walk has no end");
        }
        Require(walked == count, "the walk has another number of files");
        for (int result = m_list.GetLast(&item); result == 0; result = m_list.GetPrev(&item)) {
            Require(--walked >= 0, "the walk back has no end");
        }
        Require(walked == 0, "the walk back has another number of files");
    }

    /// Before anything was changed, and afterwards but for a new file that nobody has written.
    void CheckPaths() {
        Names shown;
        for (const auto& [folder, name] : OnCard()) {
            shown.emplace(folder, Upper(name));
        }
        for (int position = 0; position < m_list.GetCount(); ++position) {
            CSFileListItem item;
            Require(m_list.GetAtSimply(position, &item) == 0, "a position cannot be read");
            const std::string path = item.m_strURI;
            Require(path.size() <= kLongestPath, "a path is too long");
            const std::string rest = path.substr(std::min(path.size(), m_dcim.size() + 1));
            const std::size_t slash = rest.find('/');
            if (path.size() == kLongestPath || slash == std::string::npos || m_named.count(path) > 0) {
                continue;
            }
            Require(shown.count({rest.substr(0, slash), rest.substr(slash + 1)}) > 0,
                    Visible(path) + " is not on the card");
        }
    }

    int Position() {
        const int count = m_list.GetCount();
        return count > 0 ? m_dice.Pick(0, count - 1) : 0;
    }

    void Step() {
        static void (Client::*const kSteps[])() = {
            &Client::Look,   &Client::LookUp, &Client::Protect, &Client::ProtectSelected, &Client::Delete,
            &Client::Select, &Client::Rename, &Client::Name,    &Client::DeleteAll,       &Client::Ask};
        (this->*kSteps[m_dice.Pick(0, static_cast<int>(std::size(kSteps)) - 1)])();
    }

    void Look() {
        if (m_list.GetCount() > 0) {
            Require(m_list.GetAt(Position(), &m_item) == 0, "a position cannot be read");
            m_filled = true;
        }
    }
    void LookUp() {
        std::string path = m_item.m_strURI;
        if (m_filled) {
            (void)m_list.GetFileListIndex(path.data()); // -1 where two directories share a number
            Require(m_list.SetCur(path.data()) == 0, "the cursor cannot be moved");
            Require(m_list.GetInfo(path.data(), &m_item) == 0, "there is nothing to tell");
        }
    }
    void Protect() {
        if (m_filled) {
            const Names before = OnCard();
            Require(m_list.SetProtect(&m_item, m_dice.Pick(0, 1) == 1) == 0, "an item cannot be protected");
            (void)m_list.SetWifiFlag(&m_item, m_dice.Pick(0, 1) == 1);
            Require(OnCard() == before, "protecting changed the names on the card");
        }
    }
    void ProtectSelected() {
        const Names before = OnCard();
        switch (m_dice.Pick(0, 2)) {
        case 0:
            Require(m_list.SetProtectSel(m_dice.Pick(0, 1) == 1) == 0, "a set cannot be protected");
            break;
        case 1:
            Require(m_list.SetProtectSelToggle() == 0, "a set cannot be flipped");
            break;
        default:
            Require(m_list.SetProtectAll(m_dice.Pick(0, 1) == 1) == 0, "the list cannot be protected");
        }
        Require(OnCard() == before, "protecting changed the names on the card");
    }
    void Select() {
        m_list.SetSel(Position(), m_dice.Pick(0, 3) != 3);
        if (m_list.GetSelCount() > 0 && m_dice.Pick(0, 3) == 0) {
            const Names before = OnCard();
            const auto selected = static_cast<std::size_t>(m_list.GetSelCount());
            Require(m_list.DeleteSel() == 0, "a set cannot be deleted");
            CheckGone(before, 2 * selected);
        }
    }
    void Delete() {
        if (m_filled) {
            const Names before = OnCard();
            m_filled = false;
            const int result = m_list.Delete(&m_item);
            Require(result == 0 || (result == -1 && m_item.m_bProtect && OnCard() == before), "a strange result");
            CheckGone(before, 2); // with its companion
        }
    }
    void DeleteAll() {
        const Names before = OnCard();
        m_filled = false;
        Require(m_list.DeleteAll() == 0, "the list cannot be emptied");
        CheckGone(before, before.size());
    }
    void Rename() {
        std::multiset<std::set<std::string>> contents[2];
        const auto gather = [this](auto& into) {
            std::set<std::string> names;
            std::string folder;
            for (const auto& [name, file] : OnCard()) {
                if (name != folder && !names.empty()) {
                    into.insert(std::exchange(names, {}));
                }
                folder = name;
                names.insert(file);
            }
            into.insert(names);
        };
        gather(contents[0]);
        m_filled = false;
        m_named.clear();
        Require(m_list.RenameDCFFullStorage() == 1, "the card cannot be renumbered");
        gather(contents[1]);
        Require(contents[0] == contents[1], "renumbering lost files, or moved them to other folders");
    }
    void Name() {
        std::array<char, 396> path{};
        const int result = m_list.GetNewFileName(path.data(), m_dice.Pick(-1, 6));
        const std::string name = path.data();
        if (result == 0 && name.size() < kLongestPath) {
            struct stat status {};
            Require(::lstat(name.c_str(), &status) != 0, Visible(name) + " is there already");
            m_named.insert(name);
        }
    }
    void Ask() {
        (void)m_list.GetAvailNumOfPhoto();
        (void)m_list.UpdateFirstIndex(m_dice.Pick(0, 1) == 1);
        for (int type = -1; type < 6; ++type) {
            Require(m_list.GetFileCount(static_cast<eFileType>(type)) <= m_list.GetCount(), "a count of a kind");
        }
        if (m_filled) {
            (void)m_list.IsLast(&m_item);
        }
        std::array<char, 99> latest{};
        if (m_list.GetCount() > 0) {
            (void)m_list.GetLatestFileName(latest.data(), FILE_TYPE_SRW);
        }
    }

    /// Nothing is new, and what is gone was listed: nobody's notes.
    void CheckGone(const Names& before, std::size_t most) {
        const Names after = OnCard();
        std::vector<std::pair<std::string, std::string>> gone;
        std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(gone));
        Require(std::includes(before.begin(), before.end(), after.begin(), after.end()), "a deletion made files");
        Require(gone.size() <= most, "more files are gone than were to be deleted");
        for (const auto& [folder, name] : gone) {
            const bool accepted = DcfKind(name) != kNoKind || CameraKind(name) != kNoKind;
            Require(accepted && IsDirectoryName(folder), Visible(folder + "/" + name) + " is gone");
        }
    }

    Dice& m_dice;
    std::string m_root;
    std::string m_dcim;
    std::string m_base;
    CSFileList m_list;
    CSFileListItem m_item;
    bool m_filled = false;
    std::set<std::string> m_named; ///< Paths handed out for new files.
};

} // namespace

void RunWildClient(Dice& dice, const std::string& folder) {
    Client(dice, folder).Run();
}

} // namespace dcffuzz
