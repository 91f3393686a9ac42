// Hazards of folders and files; see the header.
#include "FileHazards.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

#include "DcfNames.h"
#include "FileSignature.h"
#include "Phrases.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kDcfCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

bool IsMovie(eFileType type) {
    return type == FILE_TYPE_MP4 || type == FILE_TYPE_AVI;
}

bool IsDcfText(const std::string& text) {
    return text.find_first_not_of(kDcfCharacters) == std::string::npos;
}

/// The kind that the list takes a name for: the first of these that occurs anywhere in it.
eFileType TypeInName(const std::string& name) {
    for (const eFileType type : {FILE_TYPE_JPG, FILE_TYPE_MPO, FILE_TYPE_SRW, FILE_TYPE_MP4, FILE_TYPE_AVI}) {
        if (name.find(TypeText(type)) != std::string::npos) {
            return type;
        }
    }
    return FILE_TYPE_NONE;
}

std::string PathTo(const CardCheck& check, const std::string& folder) {
    return check.Dcim() + "/" + folder;
}

// ---- Folders ----

void FindShared(const CardCheck& check, std::vector<CheckFinding>& findings) {
    for (const auto& [number, names] : check.Entries().shared) {
        for (std::size_t i = 1; i < names.listed.size(); ++i) {
            findings.push_back({CheckCode::kFolderNumberShared, PathTo(check, names.listed[i]),
                                "it shares the number " + std::to_string(number) + " with " + Quoted(names.listed[0]) +
                                    "; a file is looked up by that number, so details, protection and deletion can "
                                    "hit the other folder's file",
                                PathTo(check, names.listed[0])});
        }
    }
}

/// @param leftOut how many entries the list leaves out in it.
void FindOf(const CardCheck& check, const CensusFolder& folder, std::size_t leftOut,
            std::vector<CheckFinding>& findings) {
    const std::string& name = folder.self.name;
    const std::string path = PathTo(check, name);
    if (folder.number == kCameraNumber && !folder.camera) {
        findings.push_back(
            {CheckCode::kOddFolderNumber, path, "its first three characters read as 99, the number of 'Camera'", ""});
    }
    if (folder.self.state.has_value() && !folder.self.state->IsFolder()) {
        findings.push_back({CheckCode::kFolderLink, path,
                            "it is " + std::string(KindText(folder.self.state->mode)) +
                                ", so its files may not be on this card at all",
                            ""});
    }
    if (leftOut > 0) {
        findings.push_back({CheckCode::kForeignFiles, path,
                            CountText(leftOut, "entry that is", "entries that are") +
                                " not in the list would keep the folder from being removed with its last picture",
                            ""});
    }
    if (!folder.camera && !IsDcfText(name.substr(3))) {
        findings.push_back(
            {CheckCode::kLooseName, path, "behind its number the name has more than A to Z, 0 to 9 and _", ""});
    }
}

// ---- Files ----

class FileSearch {
public:
    FileSearch(const CardCheck& check, const WantsContent& wanted, Output& err)
        : m_check(check), m_wanted(wanted), m_progress(err, "looking into the files"), m_all(check.Figures().entries) {}

    std::vector<CheckFinding> Run() {
        for (std::size_t i = 0; i < m_check.Walks().size(); ++i) {
            m_folder = &m_check.Entries().folders[i];
            const std::vector<WalkedFile>& files = m_check.Walks()[i].files;
            for (const WalkedFile& file : files) {
                LookAtFile(file);
            }
            if (m_folder->camera) {
                LookForSharedNumbers(files);
            }
        }
        return std::move(m_findings);
    }

private:
    void Add(CheckCode code, std::size_t entry, std::string text, std::string other = "") {
        m_findings.push_back({code, m_check.PathOf(*m_folder, entry), std::move(text), std::move(other)});
    }
    [[nodiscard]] const std::string& NameOf(std::size_t entry) const {
        return m_folder->entries[entry].name;
    }

    void LookAtFile(const WalkedFile& file) {
        LookAtName(file);
        LookAtRivals(file);
        LookAtEntry(file.entry, file.listed.name, file.read.type);
        if (file.companionEntry.has_value()) {
            const std::string& name = file.listed.companion;
            LookAtEntry(*file.companionEntry, name, TypeOfPath(name));
        }
    }

    void LookAtName(const WalkedFile& file) {
        const std::string& name = file.listed.name;
        const eFileType read = TypeInName(name);
        if (read != file.read.type) {
            Add(CheckCode::kTypeMisread, file.entry,
                std::string("the letters ") + TypeText(read) + " in the name make the list take it for that kind");
        }
        if (m_folder->camera) {
            if (!file.read.digits) {
                Add(CheckCode::kCameraNumberOdd, file.entry,
                    "characters 10 to 15 of the name are its number, and " + Quoted(name.substr(9, 6)) + " reads as " +
                        std::to_string(file.read.number));
            }
            return;
        }
        if (file.read.number == 0 && m_folder->number != kCameraNumber) {
            Add(CheckCode::kBrowsingStops, file.entry,
                "its number is 0000, and from there a camera cannot go on to the next picture");
        }
        if (name[8] != '.' || !IsDcfText(name.substr(0, 4))) {
            Add(CheckCode::kLooseName, file.entry,
                name[8] != '.' ? "there is no dot in front of the extension"
                               : "in front of its number the name has more than A to Z, 0 to 9 and _");
        }
    }

    void LookAtRivals(const WalkedFile& file) {
        for (const std::size_t follower : file.followers) {
            if (file.companionEntry != follower) {
                Add(CheckCode::kDeletionLeavesCompanion, file.entry,
                    Quoted(NameOf(follower)) + " belongs to it by its number and would stay", PathOf(follower));
                break;
            }
        }
        std::vector<std::size_t> others = file.rivals;
        others.insert(others.end(), file.followers.begin(), file.followers.end());
        const bool movie = IsMovie(file.read.type);
        const auto other = std::find_if(others.begin(), others.end(), [&](std::size_t entry) {
            return IsMovie(*TypeFromText(NameOf(entry).substr(NameOf(entry).size() - 3))) != movie;
        });
        if (other != others.end()) {
            Add(CheckCode::kMovieAndPhoto, file.entry,
                Quoted(NameOf(*other)) + " has the same number, and is " + (movie ? "a photo" : "a movie") +
                    (movie && file.companionEntry == *other ? ", and is deleted and protected with the movie" : ""),
                PathOf(*other));
        }
    }

    /// The list has ascending names there, so that one number can come twice with another between.
    void LookForSharedNumbers(const std::vector<WalkedFile>& files) {
        std::map<int, std::size_t> first;
        for (const WalkedFile& file : files) {
            const auto [found, added] = first.emplace(file.read.number, file.entry);
            if (!added) {
                Add(CheckCode::kCameraNumberShared, file.entry,
                    Quoted(NameOf(found->second)) +
                        " has the same characters 10 to 15, by which a file is looked up, and would be taken for it",
                    PathOf(found->second));
            }
        }
    }

    [[nodiscard]] std::string PathOf(std::size_t entry) const {
        return m_check.PathOf(*m_folder, entry);
    }

    void LookAtEntry(std::size_t index, const std::string& listed, eFileType type) {
        const CensusEntry& entry = m_folder->entries[index];
        m_progress.Show(++m_done, m_all);
        if (!entry.state.has_value()) {
            if (entry.error != 0) { // else it is only supposed
                Add(CheckCode::kFileUnreadable, index,
                    "it cannot be looked at (" + std::string(std::strerror(entry.error)) + ")");
            }
            return;
        }
        if (entry.name != listed) {
            const auto reached = LookAt(PathTo(m_check, m_folder->self.name) + "/" + listed);
            if (!reached.has_value() || !reached->IsSame(*entry.state)) {
                Add(CheckCode::kLowerCaseName, index,
                    "the list has it as " + Quoted(listed) + ", which on this file system is " +
                        (reached.has_value() ? "another file" : "no file") +
                        ", so it is not shown, protected or deleted");
            }
        }
        if (!entry.state->IsFile()) {
            Add(CheckCode::kNotAFile, index, "it is " + std::string(KindText(entry.state->mode)));
            return;
        }
        if (entry.state->IsProtected()) {
            Add(CheckCode::kProtectedFile, index, "it is protected");
        }
        if (entry.state->size == 0) {
            Add(CheckCode::kEmptyFile, index, "it has no content");
        } else if (m_wanted(PathOf(index))) {
            LookInto(index, type);
        }
    }

    void LookInto(std::size_t index, eFileType type) {
        const FileSignature signature = ReadSignature(PathOf(index));
        if (signature.error != 0) {
            Add(CheckCode::kFileUnreadable, index,
                "it cannot be read (" + std::string(std::strerror(signature.error)) + ")");
        } else if (signature.regular && !signature.Fits(type)) {
            Add(CheckCode::kContentMismatch, index,
                std::string("the name says ") + TypeText(type) + ", and it holds " + signature.Text());
        }
    }

    const CardCheck& m_check;
    const WantsContent& m_wanted;
    Progress m_progress;
    std::size_t m_all;
    std::size_t m_done = 0;
    const CensusFolder* m_folder = nullptr;
    std::vector<CheckFinding> m_findings;
};

} // namespace

std::vector<CheckFinding> FindFolderHazards(const CardCheck& check) {
    std::vector<CheckFinding> findings;
    FindShared(check, findings);
    for (std::size_t i = 0; i < check.Walks().size(); ++i) {
        const std::vector<WalkedFolder::EntryFate>& fates = check.Walks()[i].fates;
        const auto leftOut = std::count_if(fates.begin(), fates.end(), [](const WalkedFolder::EntryFate& fate) {
            return fate.fate != Fate::kListed && fate.fate != Fate::kCompanion;
        });
        FindOf(check, check.Entries().folders[i], static_cast<std::size_t>(leftOut), findings);
    }
    return findings;
}

std::vector<CheckFinding> FindFileHazards(const CardCheck& check, const WantsContent& wanted, Output& err) {
    return FileSearch(check, wanted, err).Run();
}

} // namespace dcfctl
