// protect, unprotect, toggle: the write protection of files and their companions. Afterwards the card is looked at,
// because some mounts take such a change and ignore it. One thread.
#ifndef DCFCTL_PROTECT_VERBS_H
#define DCFCTL_PROTECT_VERBS_H

#include <cstddef>
#include <string>
#include <vector>

#include "Findings.h"
#include "ListVerbs.h"
#include "Output.h"
#include "Targets.h"

namespace dcfctl {

enum class Protection { kOn, kOff, kToggle };

struct ProtectionResult {
    std::string root;
    Protection wanted = Protection::kOn;
    /// A file whose protection is now another one, or should be.
    struct Change {
        std::string path;
        std::string companion; ///< Path, empty without one.
        bool protect;          ///< What it was to become.
    };
    std::vector<Change> changed;
    std::vector<Change> failed;
    std::size_t already = 0; ///< Files that were as wanted.
};

[[nodiscard]] Report<ProtectionResult> Protect(const CardOptions& card, const TargetOptions& targets, Protection wanted,
                                               Output& err);

} // namespace dcfctl

#endif
