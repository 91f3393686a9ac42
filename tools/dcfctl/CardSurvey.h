// Reads the names on a card and walks them as a listing will: which folders are taken, which share a number, how many
// files each gives and which of them have an awkward number. Read-only; used by CardInspector.
#ifndef DCFCTL_CARD_SURVEY_H
#define DCFCTL_CARD_SURVEY_H

#include <map>
#include <string>
#include <vector>

#include "CardInspector.h"

namespace dcfctl {

using Names = std::vector<std::string>;

[[nodiscard]] bool HoldsPhoto(const std::string& text);

/// The entries of "DCIM" that take part in a listing or a renumbering, in the library's order.
[[nodiscard]] Names NamesInDcim(const std::string& dcim);

/// Folders that share a number: the listed ones, and the ones left out because of "PHOTO".
struct SharedNumber {
    Names listed;
    Names leftOut;
};

using SharedNumbers = std::map<int, SharedNumber>;

/// The folders that a listing takes, in its order. @return the numbers that more than one folder has.
SharedNumbers ListFolders(const std::string& dcim, bool camera, std::vector<CardFolder>& folders);

/// The same for names that are known, in any order.
SharedNumbers ChooseFolders(Names names, const std::string& dcim, bool camera, std::vector<CardFolder>& folders);

/// @return the file names of the length that counts, in the order of the list; none, with errno in error, for a folder
///         that cannot be read.
[[nodiscard]] Names FileNames(const std::string& path, bool camera, int& error);

/// Files with an awkward number, over all folders.
struct NumberSurvey {
    int zeroNumbers = 0;  ///< Files with number 0.
    int zeroMissing = 0;  ///< ... that the list leaves out.
    std::string zeroName; ///< The first of them, one that is left out if there is one.
    int oddNumbers = 0;   ///< "Camera" files whose number is not made of digits.
    int oddMissing = 0;   ///< ... that the list leaves out.
    std::string oddName;
};

/// Walks the names of a folder. @return how many files the list takes from it.
int SurveyFiles(const Names& sorted, const std::string& folder, NumberSurvey& numbers);

} // namespace dcfctl

#endif
