// rm: deletes files with their companions, and the folders that this empties. What will go is known, shown and agreed
// to before anything goes; afterwards the card is looked at. One thread.
#ifndef DCFCTL_REMOVE_VERB_H
#define DCFCTL_REMOVE_VERB_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ChangeSafety.h"
#include "Findings.h"
#include "ISFileList.h"
#include "ListVerbs.h"
#include "Output.h"
#include "Targets.h"

namespace dcfctl {

struct RemovalOptions {
    TargetOptions targets;
    bool protectedToo = false; ///< With all files only.
    bool dryRun = false;
};

/// What is going to be deleted, or was.
struct RemovalCounts {
    std::size_t files = 0; ///< Without companions.
    std::size_t companions = 0;
    std::uint64_t bytes = 0;
    std::size_t folders = 0;
};

struct RemovalPlan {
    std::vector<Target> targets;          ///< In list order.
    std::vector<std::string> kept;        ///< Paths of protected files that were named and stay.
    std::vector<std::string> folders;     ///< Paths of the folders that will be empty and go too.
    std::vector<std::string> emptyBefore; ///< Those of them that were empty already; go with all files only.
    RemovalCounts counts;
};

struct RemovalResult {
    std::string root;
    bool dryRun = false;
    RemovalPlan plan;
    RemovalCounts done;
    std::vector<std::string> left; ///< Paths that were to go and are still there.
};

/// Is shown what will go. @return why it must not; nothing when it may.
using AgreeToRemoval = std::function<std::optional<Finding>(const RemovalPlan&)>;

[[nodiscard]] Report<RemovalResult> Remove(const CardOptions& card, const RemovalOptions& options,
                                           const AgreeToRemoval& agree, Output& err);

// The parts of the work, for a caller that has listed the card already and holds its lock.

/// @param dcim, report, safety the card as it is now. @param files of the list. @return why nothing may be deleted.
[[nodiscard]] std::optional<Finding> PlanRemoval(const std::string& dcim, const CardReport& report,
                                                 ChangeSafety& safety, const std::vector<FileEntry>& files,
                                                 const RemovalOptions& options, const Tick& tick, RemovalPlan& plan);
/// Deletes what is not protected, until an interruption (see InterruptGuard). @return how many of the plan are
/// protected.
std::size_t RemoveAsPlanned(ISFileList& list, const RemovalPlan& plan, const Tick& tick);
/// Looks at what has become of the plan. @return what is still there.
[[nodiscard]] std::optional<Finding> LookAtRemoval(RemovalResult& result);

} // namespace dcfctl

#endif
