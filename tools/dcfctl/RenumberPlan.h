// What a renumbering will do to each entry of "DCIM", worked out without touching the card. It follows the library step
// by step: every entry with a name of eight characters takes part, and "Camera" too, whatever it is. One thread.
#ifndef DCFCTL_RENUMBER_PLAN_H
#define DCFCTL_RENUMBER_PLAN_H

#include <map>
#include <string>
#include <vector>

#include "CardFiles.h"
#include "CardInspector.h"

namespace dcfctl {

enum class RenameOutcome {
    kRenamed,
    kUnchanged,     ///< It has the name already.
    kBlocked,       ///< Something of the new name is in the way: it keeps its old name.
    kReplacesEmpty, ///< An empty folder of the new name is replaced.
    kOverwrites,    ///< A file of the new name would be lost.
    kBeyond,        ///< The new number is beyond 999, so the entry would vanish from the list.
};

struct Renaming {
    std::string from;
    std::string to;
    RenameOutcome outcome = RenameOutcome::kRenamed;
    bool listed = false; ///< It is a folder of the list.
    bool camera = false;

    /// Nothing about it needs a second thought.
    [[nodiscard]] bool IsClean() const {
        const bool fine = outcome == RenameOutcome::kRenamed || outcome == RenameOutcome::kUnchanged;
        return fine && listed && !camera;
    }
    /// It will have its new name afterwards.
    [[nodiscard]] bool WillHaveNewName() const {
        return outcome == RenameOutcome::kRenamed || outcome == RenameOutcome::kUnchanged ||
               outcome == RenameOutcome::kReplacesEmpty;
    }
};

/// Where an entry of "DCIM" will be in the end.
struct FinalPlace {
    std::string from;
    std::string to; ///< The same for one that stays.
    EntryState state;
};

struct RenumberPlan {
    std::vector<Renaming> rows;      ///< In the order in which they are done.
    std::vector<FinalPlace> entries; ///< Of all entries but those that are replaced.

    [[nodiscard]] bool IsComplete() const;
    /// Something would be lost, or vanish from the list.
    [[nodiscard]] bool DoesHarm() const;
};

[[nodiscard]] RenumberPlan PlanRenumbering(const std::string& dcim, const CardReport& report);

/// "is renamed", "stays: ... is in the way" and so on.
[[nodiscard]] std::string OutcomeText(const Renaming& renaming);
/// A stable word for programs.
[[nodiscard]] const char* OutcomeName(RenameOutcome outcome);

} // namespace dcfctl

#endif
