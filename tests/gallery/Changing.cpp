// What changes the card; see Road.h.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <set>
#include <utility>

#include "Road.h"

namespace dcftest {
namespace {

constexpr int kNewNameSize = 396;

/// A path without the links on the way to it; as it is where that leads nowhere.
std::string Real(const std::filesystem::path& path) {
    std::error_code nowhere;
    const std::filesystem::path folder = std::filesystem::canonical(path.parent_path(), nowhere);
    return nowhere ? path : folder / path.filename();
}

/// What an operation does to the card.
class Change {
public:
    using Operation = std::function<void(CSFileList&)>;

    Change(MadeCard& made, const char* name)
        : m_made(made), m_name(name), m_dcim(std::filesystem::path(Real(made.Dcim() + "/x")).parent_path()),
          m_before(made.Look()) {}

    /// @param renaming whether files are found again under other names.
    const Ending& Run(const Operation& operation, bool renaming = false) {
        m_ending = m_made.Use([&](CSFileList& list) {
            (void)List(list, true);
            m_made.AfterListing();
            operation(list);
        });
        m_after = m_made.Look();
        ExpectSoundEnding();
        if (renaming) {
            EXPECT_EQ(Files(m_after), Files(m_before)) << m_name;
        } else {
            ExpectNothingElseGone();
        }
        return m_ending;
    }

    const CardEntries& Before() const {
        return m_before;
    }
    bool ChangedNames() const {
        return !std::equal(m_before.begin(), m_before.end(), m_after.begin(), m_after.end(),
                           [](const auto& a, const auto& b) { return a.first == b.first; });
    }
    bool IsGone(const std::string& path) const {
        return m_after.count(path) == 0;
    }
    /// The entries whose permissions are others now.
    std::vector<std::string> OtherModes() const {
        std::vector<std::string> paths;
        for (const auto& [path, entry] : m_before) {
            const auto after = m_after.find(path);
            if (after != m_after.end() && after->second.mode != entry.mode) {
                paths.push_back(path);
            }
        }
        return paths;
    }
    /// The paths that the operation told of.
    std::set<std::string> Told(const std::string& kind) const {
        std::set<std::string> paths;
        for (const ChildEvent& event : m_ending.events) {
            if (event.fields.at(0) == kind) {
                paths.insert(event.fields.at(1));
            }
        }
        return paths;
    }

private:
    void ExpectSoundEnding() const {
        const Listed& listed = m_made.What().listed;
        const bool mayEnd =
            *listed.listing != 0 || *listed.walking != 0 || listed.unknown > 0 || listed.next == std::string(kFatal);
        EXPECT_TRUE(m_ending.Completed() || (mayEnd && EndedInALookUp(m_ending))) << m_name << m_ending.Describe();
    }

    /// Everything but folders, wherever it is.
    static std::multiset<std::pair<ino_t, std::string>> Files(const CardEntries& entries) {
        std::multiset<std::pair<ino_t, std::string>> files;
        for (const auto& [path, entry] : entries) {
            if (!S_ISDIR(entry.mode)) {
                files.emplace(entry.inode, path.substr(path.rfind('/')));
            }
        }
        return files;
    }

    void ExpectNothingElseGone() const {
        const std::set<std::string> doomed = Told("deleted");
        for (const auto& [path, entry] : m_before) {
            // Deliberate: a directory goes when it is empty, and what cannot be opened as a folder counts as such.
            const bool directory = std::filesystem::path(path).parent_path() == m_dcim;
            EXPECT_TRUE(!IsGone(path) || directory || doomed.count(path) > 0) << path << " is gone by " << m_name;
        }
    }

    MadeCard& m_made;
    const char* m_name;
    std::string m_dcim;
    CardEntries m_before;
    CardEntries m_after;
    Ending m_ending;
};
bool IsProtectedOnCard(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
}

/// Tells of a file with its companion: what an operation is about to delete or to protect.
void Tell(const char* kind, const CSFileListItem& item) {
    ReportEvent({kind, Real(item.m_strURI)});
    if (*item.m_strObject != 0) {
        ReportEvent({kind, Real(item.m_strObject)});
    }
}

/// Protects the file of a position, looks, and lifts it again.
void ProtectAndUnprotect(CSFileList& list, int position, bool takesChanges) {
    CSFileListItem item = At(list, position);
    const std::string found = Found(list, position);
    Tell("touched", At(list, list.GetCurIndex()));
    for (const bool on : {true, false}) {
        EXPECT_EQ(list.SetProtect(&item, on), 0);
        EXPECT_EQ(list.GetInfo(item.m_strURI, &item), 0);
        EXPECT_EQ(item.m_bProtect, on);
        struct stat status {};
        if (takesChanges && ::stat(found.c_str(), &status) == 0) {
            EXPECT_EQ(IsProtectedOnCard(found), on) << found;
        }
    }
}

void ProtectAt(MadeCard& made, const std::vector<int>& positions) {
    Change change(made, "protection");
    change.Run([&](CSFileList& list) {
        for (const int position : positions) {
            ProtectAndUnprotect(list, position, made.TakesChanges());
        }
    });
    std::set<std::string> touched;
    for (const std::string& path : change.Told("touched")) {
        std::error_code nowhere;
        touched.insert(std::filesystem::canonical(path, nowhere)); // the mode is that of the file behind a link
    }
    for (const std::string& path : change.OtherModes()) {
        EXPECT_EQ(touched.count(path), 1U) << path;
    }
}

/// What was to be deleted is gone where that was possible.
void ExpectGone(const MadeCard& made, const Change& change, const Ending& ending) {
    for (const std::string& path : change.Told("file")) {
        const auto before = change.Before().find(path);
        const bool there = before != change.Before().end() && !S_ISDIR(before->second.mode);
        if (there && made.TakesChanges() && ending.Completed()) {
            EXPECT_TRUE(change.IsGone(path)) << path;
        }
    }
}

/// Tells of a file that an operation may delete: not of a protected one.
void TellUnlessProtected(const CSFileListItem& item) {
    if (!IsProtectedOnCard(item.m_strURI)) {
        Tell("deleted", item);
        ReportEvent({"file", Real(item.m_strURI)});
    }
}

void DeleteOne(CSFileList& list, int position) {
    CSFileListItem item = At(list, position);
    (void)Found(list, position); // now the cursor stands on it
    TellUnlessProtected(At(list, list.GetCurIndex()));
    EXPECT_EQ(list.Delete(&item), 0);
}

void DeleteSelection(CSFileList& list, int position) {
    TellUnlessProtected(At(list, position));
    list.SetSel(position, true);
    EXPECT_EQ(list.DeleteSel(), 0);
}

void DeleteEverything(CSFileList& list) {
    for (int position = 0; position < list.GetCount(); ++position) {
        const CSFileListItem item = At(list, position);
        Tell("deleted", item);
        ReportEvent({"file", Real(item.m_strURI)});
    }
    EXPECT_EQ(list.DeleteAll(), 0);
}

} // namespace

void ExpectProtected(MadeCard& made) {
    const std::vector<int> positions = Choice(std::max(0, made.What().listed.files));
    if (made.What().listed.unknown == 0) {
        ProtectAt(made, positions);
    } else { // for one of them ends the process
        for (const int position : positions) {
            ProtectAt(made, {position});
        }
    }
    Change(made, "protection of all").Run([&](CSFileList& list) {
        if (made.What().listed.files <= kMany) {
            EXPECT_EQ(list.SetProtectAll(true), 0);
            EXPECT_EQ(list.SetProtectAll(false), 0);
        }
        for (int round = 0; round < 2; ++round) {
            list.SetSel(0, true);
            EXPECT_EQ(list.SetProtectSelToggle(), 0);
        }
    });
}

void ExpectNamedAndRenumbered(MadeCard& made) {
    Change naming(made, "a new name");
    const Ending named = naming.Run([](CSFileList& list) {
        std::array<char, kNewNameSize> name{};
        const int result = list.GetNewFileName(name.data(), FILE_TYPE_JPG);
        ReportEvent({"next", result == 0 ? name.data() : ""});
    });
    const std::string next = made.What().listed.next;
    if (next == kFatal) {
        EXPECT_TRUE(EndedInALookUp(named)) << named.Describe();
    } else {
        const std::string path = next.empty() ? "" : made.Dcim() + "/" + next;
        EXPECT_EQ(naming.Told("next"), std::set<std::string>{path}) << named.Describe();
        EXPECT_EQ(naming.Before().count(path) > 0, made.What().listed.nextTaken) << path;
    }
    if (naming.ChangedNames()) {
        made.MakeAnew();
    }
    Change(made, "a renumbering").Run([](CSFileList& list) { EXPECT_EQ(list.RenameDCFFullStorage(), 1); }, true);
}

void ExpectDeleted(MadeCard& made) {
    const auto run = [&](const char* name, const Change::Operation& operation) {
        Change change(made, name);
        ExpectGone(made, change, change.Run(operation));
        if (change.ChangedNames()) {
            made.MakeAnew();
        }
    };
    const int files = std::max(0, made.What().listed.files);
    if (files > kMany) {
        Change change(made, "deletions at both ends");
        const Ending ending = change.Run([&](CSFileList& list) {
            DeleteOne(list, files - 1);
            DeleteOne(list, 0);
            DeleteSelection(list, 0);
        });
        ExpectGone(made, change, ending);
        return;
    }
    for (const int position : Choice(files)) {
        run("a deletion", [&](CSFileList& list) { DeleteOne(list, position); });
        run("a deletion of a selection", [&](CSFileList& list) { DeleteSelection(list, position); });
    }
    run("a deletion of everything", DeleteEverything);
}

} // namespace dcftest
