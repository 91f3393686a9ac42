// protect, unprotect, toggle: the write protection of files and their companions. Afterwards the card is looked at,
// because some mounts take such a change and ignore it. One thread.
#ifndef DCFCTL_PROTECT_VERBS_H
#define DCFCTL_PROTECT_VERBS_H

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ChangeSafety.h"
#include "Findings.h"
#include "ISFileList.h"
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

// The parts of the work, for a caller that has listed the card already and holds its lock.

struct ProtectionWork {
    std::vector<Target> targets; ///< Those that are not yet as wanted, in list order.
    std::size_t already = 0;
};

/// @param safety the card as it is now. @param files of the list.
[[nodiscard]] std::variant<ProtectionWork, Finding>
PlanProtection(ChangeSafety& safety, const std::vector<FileEntry>& files, Protection wanted, const Tick& tick);
/// Until an interruption (see InterruptGuard). Empties the selection.
void ProtectAsPlanned(ISFileList& list, const std::vector<Target>& targets, Protection wanted, const Tick& tick);
/// Looks at what has become of the files. @return where it had no effect.
[[nodiscard]] std::optional<Finding> LookAtProtection(const std::vector<Target>& targets, Protection wanted,
                                                      ProtectionResult& result);

} // namespace dcfctl

#endif
