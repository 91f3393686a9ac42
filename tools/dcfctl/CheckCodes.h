// The codes of what a check can find, in the one table to which docs/check.md has an entry for each. Plain data.
#ifndef DCFCTL_CHECK_CODES_H
#define DCFCTL_CHECK_CODES_H

#include <cstddef>

namespace dcfctl {

enum class Severity {
    kLeftOut, ///< An entry that the list leaves out.
    kHazard,  ///< Something that can cost a picture, or hide one.
    kNote,    ///< Worth knowing, and no reason to act.
};

enum class CheckCode {
    // Why an entry of "DCIM" is not in the list.
    kFileInDcim,
    kNotAFolder,
    kFolderNameLength,
    kFolderNoNumber,
    kFolderFourthDigit,
    kFolderNumberRange,
    kFolderNumberTaken,
    kFolderUnreadable,
    kCameraSpelling,
    kCameraNotAsked,
    kHiddenFile,
    // Why an entry of a folder is not.
    kFolderInFolder,
    kNameLength,
    kNumberNotDigits,
    kExtensionUnknown,
    kSecondOfNumber,
    kNumberZero,
    kBeyondLimit,
    kCompanionReplaced,
    kCompanionPrefix,
    kCameraNameLength,
    kCameraMovie,
    kCameraDigits,
    kCameraCompanion,
    kPathCut,
    kCardNotListed,
    // Hazards of the card.
    kRootCamera,
    kRootPhoto,
    kRootTooLong,
    kDcimLink,
    kListingFails,
    kNumbersUsedUp,
    kNumbersNearlyUsedUp,
    kNoNextName,
    kEmptyHighestFolder,
    kRenumberHarmful,
    kRenumberTakesAlong,
    // Hazards of a folder.
    kFolderNumberShared,
    kOddFolderNumber,
    kFolderLink,
    // Hazards of a file.
    kNotAFile,
    kLowerCaseName,
    kDeletionLeavesCompanion,
    kMovieAndPhoto,
    kCameraNumberShared,
    kCameraNumberOdd,
    kBrowsingStops,
    kTypeMisread,
    kEmptyFile,
    kContentMismatch,
    kFileUnreadable,
    // Notes.
    kRenumberIncomplete,
    kForeignFiles,
    kProtectedFile,
    kLooseName,
};

struct CheckCodeRow {
    CheckCode code;
    const char* name; ///< Stable, for programs.
    Severity severity;
    const char* title; ///< What all findings of the code have in common.
    const char* cure;  ///< What to do.
};

/// In the order of CheckCode.
extern const CheckCodeRow kCheckCodes[];
extern const std::size_t kCheckCodeCount;

[[nodiscard]] const CheckCodeRow& RowOf(CheckCode code);

/// "left-out", "hazard", "note".
[[nodiscard]] const char* SeverityName(Severity severity);

} // namespace dcfctl

#endif
