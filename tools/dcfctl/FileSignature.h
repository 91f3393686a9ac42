// What kind of content a file has, by its first bytes. Opens regular files alone, never waits for one, and leaves their
// time of access as it is where the system allows it. Any thread.
#ifndef DCFCTL_FILE_SIGNATURE_H
#define DCFCTL_FILE_SIGNATURE_H

#include <string>
#include <string_view>

#include "FileListTypes.h"

namespace dcfctl {

struct FileSignature {
    int error = 0;       ///< errno when it could not be read.
    std::string first;   ///< Up to 16 bytes.
    bool regular = true; ///< It is a file.

    /// Whether such content belongs behind the extension of a type.
    [[nodiscard]] bool Fits(eFileType type) const;
    /// "a JPEG picture", "a PNG picture" and so on; "nothing that is known here".
    [[nodiscard]] const char* Text() const;
};

[[nodiscard]] FileSignature ReadSignature(const std::string& path);

} // namespace dcfctl

#endif
