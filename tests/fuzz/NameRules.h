// The rules by which names on a card become directories and files of the list, stated over again without a look at the
// library: what is accepted, which number and kind it gets, and what is a companion. Pure functions.
#ifndef TESTS_FUZZ_NAME_RULES_H
#define TESTS_FUZZ_NAME_RULES_H

#include <optional>
#include <string>
#include <vector>

namespace dcffuzz {

constexpr int kNoKind = -1;
constexpr int kCameraNumber = 99;

/// "kvr_0012.jpg" as the list shows it: ASCII alone is changed.
std::string Upper(const std::string& name);

bool IsDirectoryName(const std::string& name);
/// Of any name; one that is no directory's may have any number.
int DirectoryNumber(const std::string& name);

/// The kind of a file by the name rule of the numbered directories, and by that of "Camera"; kNoKind for a refused one.
int DcfKind(const std::string& name);
int CameraKind(const std::string& name);
/// What stands in the place of the number, whatever it is.
int DcfNumber(const std::string& name);
int CameraNumber(const std::string& name);

/// A file of the list. Several names of one number and extension have no order, so any of them may have been taken.
struct ListedFile {
    std::vector<std::string> names; ///< As the list shows them.
    int number = 0;
    int companion = kNoKind;
};

/// Of the names in a folder, in any order, those that are listed, in the order of the list.
std::vector<ListedFile> ListedFiles(const std::vector<std::string>& names, bool camera);

/// The kind that the list gives a name that it took.
int ShownKind(const std::string& name);

/// Of the names in "DCIM", those that are listed, in the order of the list. @param rootIsPhoto whether "PHOTO" stands
/// in the path of the card.
std::vector<std::string> ListedDirectories(const std::vector<std::string>& names, bool includeCamera, bool rootIsPhoto);

} // namespace dcffuzz

#endif
