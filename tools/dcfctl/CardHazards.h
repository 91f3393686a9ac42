// What can cost a picture on the whole card: its path, the numbers that are left, and what a renumbering would do.
// Read-only; used by check and explain. One thread.
#ifndef DCFCTL_CARD_HAZARDS_H
#define DCFCTL_CARD_HAZARDS_H

#include <optional>
#include <vector>

#include "CardCheck.h"
#include "CheckVerb.h"
#include "RenumberPlan.h"

namespace dcfctl {

/// How many more files the numbers allow on a card that is mounted where a camera has it; nothing without a list.
[[nodiscard]] std::optional<int> NumbersLeft(const CardCheck& check);

[[nodiscard]] RenumberPlan PlanRenumberingOf(const CardCheck& check);

[[nodiscard]] std::vector<CheckFinding> FindCardHazards(const CardCheck& check, const RenumberPlan& plan);

} // namespace dcfctl

#endif
