// How new files are named: the settings as the command line gives them, handed to the file list, and the parts of the
// names that they lead to. One thread.
#ifndef DCFCTL_NAMING_H
#define DCFCTL_NAMING_H

#include <string>

#include "FileListTypes.h"
#include "ISFileList.h"

namespace dcfctl {

struct NamingOptions {
    std::string prefix; ///< Empty for the one of the colour mode.
    eFileListColorMode colour = FILE_LIST_COLOR_MODE_STANDARD;
    bool dateNames = false;
    bool dateFolders = false;
    bool stereoscopic = false;
    bool series = false; ///< Series numbering is on for this run.
};

/// The parts of a new path that come from the settings and the date.
struct NameParts {
    std::string prefix;
    std::string extension;
    std::string folderSuffix;
};

/// @return why a text is no prefix, which is four characters of A to Z, 0 to 9 and "_"; empty when it is one.
[[nodiscard]] std::string CheckPrefix(const std::string& prefix);

/// Hands the settings over, in the order in which one does not undo the other. Series mode is not among them: it can
/// only be set on a list.
void ApplyNaming(ISFileList& list, const NamingOptions& options);

/// What the file list makes of the settings today.
[[nodiscard]] NameParts PartsFor(const NamingOptions& options, eFileType type);

} // namespace dcfctl

#endif
