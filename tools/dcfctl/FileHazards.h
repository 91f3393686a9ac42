// What can cost a picture although it is listed: of the folders of the list, and of their files. Reads the first bytes
// of files, changes nothing. Used by check and explain. One thread.
#ifndef DCFCTL_FILE_HAZARDS_H
#define DCFCTL_FILE_HAZARDS_H

#include <functional>
#include <string>
#include <vector>

#include "CardCheck.h"
#include "CheckVerb.h"
#include "Output.h"

namespace dcfctl {

/// Whether files are to be opened: for explain, only the ones that were asked for.
using WantsContent = std::function<bool(const std::string& path)>;

[[nodiscard]] std::vector<CheckFinding> FindFolderHazards(const CardCheck& check);
[[nodiscard]] std::vector<CheckFinding> FindFileHazards(const CardCheck& check, const WantsContent& wanted,
                                                        Output& err);

} // namespace dcfctl

#endif
