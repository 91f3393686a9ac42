// Tells of every entry that the list leaves out which rule did it, in a sentence for a person. Pure but for the look
// into folders that are not listed. Used by check and explain.
#ifndef DCFCTL_LEFT_OUT_H
#define DCFCTL_LEFT_OUT_H

#include <cstddef>
#include <optional>
#include <vector>

#include "CardCheck.h"
#include "CheckVerb.h"

namespace dcfctl {

/// Of an entry of "DCIM" that is no folder of the list.
[[nodiscard]] CheckFinding WhyLeftOut(const CardCheck& check, const LooseEntry& entry);

/// Of an entry in a folder of the list. @return nothing for one that is listed, or is a companion.
[[nodiscard]] std::optional<CheckFinding> WhyLeftOut(const CardCheck& check, std::size_t folder, std::size_t entry);

/// Of the whole card, one finding for each entry that is left out.
[[nodiscard]] std::vector<CheckFinding> AllLeftOut(const CardCheck& check);

} // namespace dcfctl

#endif
