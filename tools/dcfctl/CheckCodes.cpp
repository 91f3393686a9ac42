// The table; see the header. A title tells what the findings of a code have in common, a cure what to do about them.
#include "CheckCodes.h"

#include <iterator>

namespace dcfctl {

namespace {

constexpr Severity kLeftOut = Severity::kLeftOut;
constexpr Severity kHazard = Severity::kHazard;
constexpr Severity kNote = Severity::kNote;

constexpr const char* kMoveFile = "move it into a folder such as DCIM/100KVR__, under a name such as KVR_0001.JPG";
constexpr const char* kNameFolder = "name it like 100KVR__: three digits from 100 to 999, then five more characters";
constexpr const char* kNameFile =
    "name it like KVR_0012.JPG: four characters, four digits, a dot, and JPG, SRW, MPO, MP4 or AVI";
constexpr const char* kNameCameraFile = "name it like 20240501_123456.JPG";
constexpr const char* kFreeNumber = "give it a number that no other file of the folder has";
constexpr const char* kShorterRoot =
    "mount the card at a shorter path such as /mnt/mmc, or go there and use '--card .'";

} // namespace

const CheckCodeRow kCheckCodes[] = {
    {CheckCode::kFileInDcim, "file-in-dcim", kLeftOut, "It is no folder, and lies directly in 'DCIM'", kMoveFile},
    {CheckCode::kNotAFolder, "not-a-folder", kLeftOut, "It has the name of a folder and is none",
     "move it away: it is taken for an empty folder, and new files may be meant to go there"},
    {CheckCode::kFolderNameLength, "folder-name-length", kLeftOut, "The folder's name has not eight characters",
     kNameFolder},
    {CheckCode::kFolderNoNumber, "folder-no-number", kLeftOut, "The folder's name does not begin with three digits",
     kNameFolder},
    {CheckCode::kFolderFourthDigit, "folder-fourth-digit", kLeftOut,
     "The folder's name begins with more than three digits", kNameFolder},
    {CheckCode::kFolderNumberRange, "folder-number-range", kLeftOut, "The folder's number is below 100", kNameFolder},
    {CheckCode::kFolderNumberTaken, "folder-number-taken", kLeftOut, "Another folder has the folder's number",
     "give one of the two folders a free number"},
    {CheckCode::kFolderUnreadable, "folder-unreadable", kLeftOut, "The folder cannot be read",
     "check its permissions, and then the card: copy off what can be copied before anything else"},
    {CheckCode::kCameraSpelling, "camera-spelling", kLeftOut, "The folder is not spelt 'Camera'",
     "rename it to Camera, with one capital"},
    {CheckCode::kCameraNotAsked, "camera-not-asked", kNote, "'Camera' was left out as asked",
     "leave --no-camera away to have it listed"},
    {CheckCode::kHiddenFile, "hidden-file", kLeftOut, "It is hidden, as computers and phones leave files behind",
     "nothing is lost; delete it on a computer if it is not wanted"},
    {CheckCode::kFolderInFolder, "folder-in-folder", kLeftOut, "It is a folder inside a folder",
     "move its pictures up into the folder, or into a folder of their own in 'DCIM'"},
    {CheckCode::kNameLength, "name-length", kLeftOut, "The name has not twelve characters", kNameFile},
    {CheckCode::kNumberNotDigits, "number-not-digits", kLeftOut, "Characters five to eight of the name are no number",
     kNameFile},
    {CheckCode::kExtensionUnknown, "extension-unknown", kLeftOut, "The extension is none of the list's",
     "only JPG, SRW, MPO, MP4 and AVI are listed (in 'Camera' JPG, SRW and MPO); keep the file elsewhere"},
    {CheckCode::kSecondOfNumber, "second-of-number", kLeftOut, "Another file of its number is listed instead",
     kFreeNumber},
    {CheckCode::kNumberZero, "number-zero", kLeftOut, "The file's number is 0", "give it a number of 1 or more"},
    {CheckCode::kBeyondLimit, "beyond-limit", kLeftOut, "The list is full with 100,000 files",
     "move some files to another card"},
    {CheckCode::kCompanionReplaced, "companion-replaced", kLeftOut, "Another companion of its file is listed instead",
     kFreeNumber},
    {CheckCode::kCompanionPrefix, "companion-prefix", kLeftOut, "It is a companion under another name than its file",
     "give both the same name up to the extension"},
    {CheckCode::kCameraNameLength, "camera-name-length", kLeftOut, "The name has not nineteen characters",
     kNameCameraFile},
    {CheckCode::kCameraMovie, "camera-movie", kLeftOut, "Movies are not listed in 'Camera'",
     "move it into a numbered folder, under a name such as KVR_0012.MP4"},
    {CheckCode::kCameraDigits, "camera-digits", kLeftOut, "Characters 10 to 15 of the name are not six digits",
     kNameCameraFile},
    {CheckCode::kCameraCompanion, "camera-companion", kLeftOut, "It is a companion in 'Camera'",
     "move both files into a numbered folder, or give one of them another time in its name"},
    {CheckCode::kPathCut, "path-cut", kLeftOut, "The path would be cut at 98 characters", kShorterRoot},
    {CheckCode::kCardNotListed, "card-not-listed", kLeftOut, "No list can be made of this card",
     "see the hazard that stands in the way"},
    {CheckCode::kRootCamera, "root-camera", kHazard, "The card's path contains \"Camera\"",
     "mount the card elsewhere, or go there and use '--card .'"},
    {CheckCode::kRootPhoto, "root-photo", kHazard, "The card's path contains \"PHOTO\"",
     "mount the card elsewhere, or go there and use '--card .'"},
    {CheckCode::kRootTooLong, "root-too-long", kHazard, "The card's path is too long", kShorterRoot},
    {CheckCode::kDcimLink, "dcim-link", kHazard, "'DCIM' is a link", "make it a folder of the card"},
    {CheckCode::kListingFails, "listing-fails", kHazard, "No list can be made of the card",
     "copy the pictures off the card, and look at the names of its folders"},
    {CheckCode::kNumbersUsedUp, "numbers-used-up", kHazard, "There is no number left for a new file",
     "see what 'dcfctl renumber --dry-run' would do, or take another card"},
    {CheckCode::kNumbersNearlyUsedUp, "numbers-nearly-used-up", kHazard, "The numbers for new files run out",
     "have another card at hand, and see what 'dcfctl renumber --dry-run' would do"},
    {CheckCode::kNoNextName, "no-next-name", kHazard, "The next new file could not be named",
     "do what the message says; 'dcfctl next-name --dry-run' shows whether it helped"},
    {CheckCode::kEmptyHighestFolder, "empty-highest-folder", kHazard, "The highest folder is empty",
     "remove it if it is not wanted"},
    {CheckCode::kRenumberHarmful, "renumber-harmful", kHazard, "A renumbering would lose it",
     "move it out of 'DCIM' before folders are renumbered"},
    {CheckCode::kRenumberTakesAlong, "renumber-takes-along", kHazard, "A renumbering would rename it",
     "move it out of 'DCIM' before folders are renumbered"},
    {CheckCode::kFolderNumberShared, "shared-folder-number", kHazard, "Two folders of the list have one number",
     "give one of them a free number, for example by renaming it"},
    {CheckCode::kOddFolderNumber, "odd-folder-number", kHazard, "The folder has the number of 'Camera'", kNameFolder},
    {CheckCode::kFolderLink, "folder-link", kHazard, "A folder of the list is a link",
     "put the folder itself there: through a link nothing is deleted or protected"},
    {CheckCode::kNotAFile, "not-a-file", kHazard, "It is listed as a picture and is no file", "move it away"},
    {CheckCode::kLowerCaseName, "lower-case-name", kHazard, "It is listed in capitals, and its name has small letters",
     "give it a name in capitals"},
    {CheckCode::kDeletionLeavesCompanion, "deletion-leaves-companion", kHazard, "Deleting it would leave a file behind",
     "give the file that would stay the same name up to the extension, or a number of its own; in 'Camera' no "
     "name helps: move both into a numbered folder"},
    {CheckCode::kMovieAndPhoto, "movie-and-photo", kHazard, "A movie and a photo have one number",
     "give one of them a number that no other file of the folder has"},
    {CheckCode::kCameraNumberShared, "camera-number-shared", kHazard, "Two files of the list have one number",
     "give one of them another time in its name"},
    {CheckCode::kCameraNumberOdd, "camera-number-odd", kHazard, "Characters 10 to 15 of the name are not six digits",
     kNameCameraFile},
    {CheckCode::kBrowsingStops, "browsing-stops", kHazard, "The file is listed under the number 0",
     "give it a number of 1 or more"},
    {CheckCode::kTypeMisread, "type-misread", kHazard, "The name holds the letters of another kind of file",
     "give it another name in front of the number"},
    {CheckCode::kEmptyFile, "empty-file", kHazard, "The file is empty",
     "look for the picture elsewhere; an empty file is what an interrupted recording or copy leaves"},
    {CheckCode::kContentMismatch, "content-mismatch", kHazard, "The content is not what the extension says",
     "look at it on a computer: it is damaged, or wants another extension"},
    {CheckCode::kFileUnreadable, "file-unreadable", kHazard, "The file cannot be read",
     "check its permissions, and then the card"},
    {CheckCode::kRenumberIncomplete, "renumber-incomplete", kNote, "A renumbering would not end complete",
     "nothing needs to be done as long as there are numbers left"},
    {CheckCode::kForeignFiles, "foreign-files", kNote, "The folder stays when its pictures are deleted",
     "take those entries out, or let the folder stay"},
    {CheckCode::kProtectedFile, "protected-file", kNote, "The file is protected",
     "'dcfctl unprotect' takes the protection off"},
    {CheckCode::kLooseName, "loose-name", kNote, "The name is listed here and may not be on other devices",
     "use A to Z, 0 to 9 and _, and a dot in front of the extension"},
};

const std::size_t kCheckCodeCount = std::size(kCheckCodes);

const CheckCodeRow& RowOf(CheckCode code) {
    return kCheckCodes[static_cast<std::size_t>(code)];
}

const char* SeverityName(Severity severity) {
    constexpr const char* kNames[] = {"left-out", "hazard", "note"};
    return kNames[static_cast<std::size_t>(severity)];
}

} // namespace dcfctl
