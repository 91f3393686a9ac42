// renumber: gives the folders of a full card the numbers from 100 on. What happens to each entry is known beforehand,
// and a plan that is not plain sailing is refused. One thread.
#ifndef DCFCTL_RENUMBER_VERB_H
#define DCFCTL_RENUMBER_VERB_H

#include <optional>
#include <string>
#include <vector>

#include "Findings.h"
#include "ListVerbs.h"
#include "RenumberPlan.h"

namespace dcfctl {

struct RenumberOptions {
    bool dryRun = false;
    bool force = false;
};

struct RenumberResult {
    std::string root;
    bool dryRun = false;
    bool complete = true; ///< The plan: every entry is a folder of the list and gets its new name.
    RenumberPlan plan;
    std::vector<std::string> left; ///< Names of entries that have not got the new name that was planned.
    std::optional<long> storedBefore;
    long stored = 0; ///< The series value, now or then.
};

[[nodiscard]] Report<RenumberResult> Renumber(const CardOptions& card, const RenumberOptions& options);

} // namespace dcfctl

#endif
