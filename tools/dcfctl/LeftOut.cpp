// The rules in sentences; see the header. Sections: entries of "DCIM", names of files, what became of good names.
#include "LeftOut.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "DcfNames.h"
#include "Phrases.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr std::size_t kFolderName = 8;
constexpr std::size_t kDcfName = 12;
constexpr std::size_t kCameraName = 19;
constexpr const char* kHiddenFolder = "it is a hidden folder, as computers and phones leave them behind";

/// A code and its sentence.
struct Cause {
    CheckCode code;
    std::string text;
    std::string other; ///< Path of another entry that plays a part.
};

std::size_t LeadingDigits(const std::string& name) {
    return std::min(name.find_first_not_of("0123456789"), name.size());
}

bool IsAscii(const std::string& name) {
    return std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// "the name has 11 characters, and 12 are needed".
std::string LengthText(const std::string& name, std::size_t wanted) {
    return "the name has " + CountText(name.size(), "character", "characters") +
           (IsAscii(name) ? "" : " (a letter such as \u00e4 counts as two or more)") + ", and " +
           std::to_string(wanted) + " are needed";
}

bool IsHidden(const std::string& name) {
    return name.front() == '.';
}

std::string ExtensionOf(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : name.substr(dot + 1);
}

bool LooksLikePicture(const std::string& name) {
    return TypeFromText(ExtensionOf(name)).has_value() && !IsHidden(name);
}

// ---- Entries of "DCIM" ----

/// What of the names is worth a second look, as the end of a sentence that has counted them.
std::string PicturesText(const std::vector<std::string>& names) {
    const auto pictures = std::count_if(names.begin(), names.end(), LooksLikePicture);
    if (pictures == 0) {
        return "";
    }
    const std::string which = names.size() == 1 ? ", which " : ", " + std::to_string(pictures) + " of which ";
    return which + (pictures == 1 ? "looks like a picture or movie" : "look like pictures or movies");
}

std::string ContentText(const std::string& path) {
    const FolderContents contents(path, false);
    const std::vector<std::string>& names = contents.Names();
    if (contents.Error() != 0) {
        return "; what is in it cannot be read (" + std::string(std::strerror(contents.Error())) + ")";
    }
    if (names.empty()) {
        return "; it is empty";
    }
    return "; with it " + CountText(names.size(), "entry is", "entries are") + " left out" + PicturesText(names);
}

Cause NumberTaken(const CardCheck& check, const std::string& name, int number) {
    const auto shared = check.Entries().shared.find(number);
    std::string holder;
    if (shared != check.Entries().shared.end() && !shared->second.listed.empty()) {
        holder = shared->second.listed.back();
    } else { // the name is only supposed
        const auto found = std::find_if(check.Entries().folders.begin(), check.Entries().folders.end(),
                                        [&](const CensusFolder& folder) { return folder.number == number; });
        if (found == check.Entries().folders.end()) {
            return {CheckCode::kFolderNumberTaken, "another folder has its number", ""};
        }
        holder = found->self.name;
    }
    const bool byRoot = !HoldsPhoto(holder);
    return {CheckCode::kFolderNumberTaken,
            Quoted(holder) + " has the number " + std::to_string(number) + " too and is listed instead of " +
                Quoted(name) + ", because " +
                (byRoot ? "the card's path contains \"PHOTO\"" : "its name contains \"PHOTO\""),
            check.Dcim() + "/" + holder};
}

/// A name of eight characters without a number that counts.
Cause NumberFault(const std::string& name) {
    const std::size_t digits = LeadingDigits(name);
    if (digits < 3) {
        return {CheckCode::kFolderNoNumber,
                "the name must begin with three digits, and begins with " +
                    (digits == 0 ? std::string("none") : std::to_string(digits)),
                ""};
    }
    if (digits > 3) {
        return {CheckCode::kFolderFourthDigit,
                "a digit follows the first three of the name, so that they are not its number", ""};
    }
    return {CheckCode::kFolderNumberRange, "folders are numbered from 100 to 999, and this is " + name.substr(0, 3),
            ""};
}

Cause FolderNameFault(const CardCheck& check, const std::string& name) {
    const auto number = FolderNumber(name);
    if (number == kCameraNumber && !check.Card().camera) {
        return {CheckCode::kCameraNotAsked,
                name == kCamera ? "'Camera' was left out, as asked with --no-camera"
                                : "it has the number of 'Camera', which was left out, as asked with --no-camera",
                ""};
    }
    if (number.has_value()) {
        return NumberTaken(check, name, *number);
    }
    if (EqualNoCase(name, kCamera)) {
        return {CheckCode::kCameraSpelling, "the list knows the folder 'Camera' in this spelling alone", ""};
    }
    return name.size() != kFolderName
               ? Cause{CheckCode::kFolderNameLength, "a folder's " + LengthText(name, kFolderName).substr(4), ""}
               : NumberFault(name);
}

Cause LooseCause(const CardCheck& check, const LooseEntry& entry) {
    const std::optional<EntryState>& state = entry.self.state;
    const bool deadLink = state.has_value() && S_ISLNK(state->mode) && entry.error == ENOENT;
    if (entry.taken && (entry.error == ENOTDIR || deadLink)) {
        return {CheckCode::kNotAFolder,
                std::string("it has the name of a folder, and is ") + (deadLink            ? "a link that leads nowhere"
                                                                       : state.has_value() ? KindText(state->mode)
                                                                                           : "none"),
                ""};
    }
    if (entry.taken) {
        return {CheckCode::kFolderUnreadable,
                "the folder cannot be read (" + std::string(std::strerror(entry.error)) + ")", ""};
    }
    if (state.has_value() && !state->IsFolder()) {
        return {IsHidden(entry.self.name) ? CheckCode::kHiddenFile : CheckCode::kFileInDcim,
                std::string("it is ") + KindText(state->mode) + " directly in 'DCIM', where only folders are looked at",
                ""};
    }
    // Nobody wants the pictures in a phone's folder of thumbnails listed.
    Cause cause = state.has_value() && IsHidden(entry.self.name) ? Cause{CheckCode::kHiddenFile, kHiddenFolder, ""}
                                                                 : FolderNameFault(check, entry.self.name);
    if (state.has_value()) {
        cause.text += ContentText(check.PathOf(entry.self));
    }
    return cause;
}

// ---- Names of files ----

std::string ExtensionFault(const std::string& name, bool camera) {
    return Quoted(name.substr(name.size() - 3)) + " at the end of the name is none of " +
           (camera ? "JPG, SRW and MPO" : "JPG, SRW, MPO, MP4 and AVI");
}

Cause DcfNameFault(const std::string& name) {
    if (name.size() != kDcfName) {
        const std::string extension = ExtensionOf(name);
        const bool known = EqualNoCase(extension, "JPEG");
        return {CheckCode::kNameLength,
                LengthText(name, kDcfName) + (known ? ", with three letters behind the dot" : ""), ""};
    }
    const std::string number = name.substr(4, 4);
    const std::size_t odd = number.find_first_not_of("0123456789");
    if (odd != std::string::npos) {
        return {CheckCode::kNumberNotDigits,
                "the characters five to eight are the file's number, and " + Quoted(number) + " is none", ""};
    }
    return {CheckCode::kExtensionUnknown, ExtensionFault(name, false), ""};
}

Cause CameraNameFault(const std::string& name) {
    const auto type = name.size() < 3 ? std::nullopt : TypeFromText(name.substr(name.size() - 3));
    const eFileType kind = type.value_or(FILE_TYPE_NONE);
    if (kind == FILE_TYPE_MP4 || kind == FILE_TYPE_AVI) {
        return {CheckCode::kCameraMovie, "movies are not listed in 'Camera'", ""};
    }
    if (name.size() != kCameraName) {
        return {CheckCode::kCameraNameLength, "in 'Camera' " + LengthText(name, kCameraName), ""};
    }
    return {CheckCode::kExtensionUnknown, ExtensionFault(name, true), ""};
}

Cause NameFault(const CensusFolder& folder, const CensusEntry& entry) {
    if (entry.IsFolder() && IsHidden(entry.name)) {
        return {CheckCode::kHiddenFile, kHiddenFolder, ""};
    }
    if (entry.IsFolder()) {
        return {CheckCode::kFolderInFolder, "it is a folder inside a folder, and is not looked into", ""};
    }
    if (IsHidden(entry.name)) {
        return {CheckCode::kHiddenFile, "it is a hidden file, as computers leave them behind", ""};
    }
    return folder.camera ? CameraNameFault(entry.name) : DcfNameFault(entry.name);
}

// ---- What became of good names ----

std::string CameraNumber(const std::string& name) {
    return name.substr(9, 6);
}

Cause ZeroCause(const CensusFolder& folder, const std::string& name) {
    if (folder.camera && CameraNumber(name) != "000000") {
        return {CheckCode::kCameraDigits,
                "characters 10 to 15 of the name are its number, and " + Quoted(CameraNumber(name)) +
                    " reads as 0, which is not listed where no other number comes before",
                ""};
    }
    return {CheckCode::kNumberZero,
            folder.camera ? "000000 as characters 10 to 15 of the name is the number 0, which is not listed where no "
                            "other number comes before"
                          : "the number is 0000, and file numbers begin with 0001",
            ""};
}

Cause SecondCause(const CensusFolder& folder, const std::string& name, const std::string& winner) {
    if (UpperCased(name) == winner) {
        return {CheckCode::kSecondOfNumber,
                "the list has names in capitals, and in capitals this is " + Quoted(winner) +
                    ", which is listed instead",
                ""};
    }
    if (folder.camera) {
        const bool odd = CameraNumber(name).find_first_not_of("0123456789") != std::string::npos;
        return {odd ? CheckCode::kCameraDigits : CheckCode::kSecondOfNumber,
                "characters 10 to 15 of the name are its number, and " + Quoted(winner) +
                    ", which comes just before, has the same one and is listed instead",
                ""};
    }
    return {CheckCode::kSecondOfNumber,
            Quoted(winner) + " has the number " + name.substr(4, 4) + " too and is listed instead", ""};
}

Cause FollowerCause(const CensusFolder& folder, const WalkedFile& file, const std::string& name,
                    const std::string& winner) {
    const bool replaced = file.companionEntry.has_value();
    if (replaced) {
        return {CheckCode::kCompanionReplaced,
                "it would be a companion of " + Quoted(winner) + ", which can have one, and has " +
                    Quoted(folder.entries[*file.companionEntry].name),
                ""};
    }
    const std::string composed = "the companion of " + Quoted(winner) + " is looked for as " +
                                 Quoted(file.listed.companion) + ", so that " + Quoted(name) + " is not found";
    return {folder.camera ? CheckCode::kCameraCompanion : CheckCode::kCompanionPrefix, composed, ""};
}

Cause RefusedCause(const std::string& path) {
    if (path.size() > kMaxPath) {
        return {CheckCode::kPathCut,
                "the path has " + std::to_string(path.size()) + " characters and would be cut at " +
                    std::to_string(kMaxPath),
                ""};
    }
    return {CheckCode::kCardNotListed, "its name is good, and no list can be made of this card", ""};
}

} // namespace

CheckFinding WhyLeftOut(const CardCheck& check, const LooseEntry& entry) {
    Cause cause = LooseCause(check, entry);
    return {cause.code, check.PathOf(entry.self), std::move(cause.text), std::move(cause.other)};
}

std::optional<CheckFinding> WhyLeftOut(const CardCheck& check, std::size_t folderIndex, std::size_t entryIndex) {
    const CensusFolder& folder = check.Entries().folders[folderIndex];
    const WalkedFolder& walk = check.Walks()[folderIndex];
    const CensusEntry& entry = folder.entries[entryIndex];
    const WalkedFolder::EntryFate fate = walk.fates[entryIndex];
    const std::string path = check.PathOf(folder, entryIndex);
    const bool taken = fate.fate == Fate::kListed || fate.fate == Fate::kCompanion;
    if (taken && !check.Refusal().has_value()) {
        return std::nullopt;
    }
    Cause cause;
    if (taken) {
        cause = RefusedCause(path);
    } else if (fate.fate == Fate::kNameRefused) {
        cause = NameFault(folder, entry);
    } else if (fate.fate == Fate::kZero) {
        cause = ZeroCause(folder, entry.name);
    } else if (fate.fate == Fate::kBeyond) {
        cause = {CheckCode::kBeyondLimit, "the list takes 100,000 files and was full before this one", ""};
    } else {
        const WalkedFile& file = walk.files[fate.file];
        const std::string& winner = folder.entries[file.entry].name;
        cause = fate.fate == Fate::kSecond ? SecondCause(folder, entry.name, winner)
                                           : FollowerCause(folder, file, entry.name, winner);
        cause.other = check.PathOf(folder, file.entry);
    }
    return CheckFinding{cause.code, path, std::move(cause.text), std::move(cause.other)};
}

std::vector<CheckFinding> AllLeftOut(const CardCheck& check) {
    std::vector<CheckFinding> findings;
    for (const LooseEntry& entry : check.Entries().loose) {
        findings.push_back(WhyLeftOut(check, entry));
    }
    for (std::size_t folder = 0; folder < check.Entries().folders.size(); ++folder) {
        const auto begin = static_cast<std::ptrdiff_t>(findings.size());
        for (std::size_t entry = 0; entry < check.Entries().folders[folder].entries.size(); ++entry) {
            if (auto finding = WhyLeftOut(check, folder, entry)) {
                findings.push_back(std::move(*finding));
            }
        }
        std::sort(findings.begin() + begin, findings.end(),
                  [](const CheckFinding& a, const CheckFinding& b) { return a.path < b.path; });
    }
    return findings;
}

} // namespace dcfctl
