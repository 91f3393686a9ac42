// check: accounts for every entry of a card, tells why the list leaves some out, and what could cost a picture. Changes
// nothing. One thread.
#ifndef DCFCTL_CHECK_VERB_H
#define DCFCTL_CHECK_VERB_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CheckCodes.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "Output.h"
#include "RenumberPlan.h"

namespace dcfctl {

/// One thing that a check has found.
struct CheckFinding {
    CheckCode code;
    std::string path;  ///< As it is on the card, from the card's folder on; the card's folder for the whole card.
    std::string text;  ///< The cause in a sentence, names escaped.
    std::string other; ///< Path of another entry that plays a part, or empty.

    [[nodiscard]] const CheckCodeRow& Row() const {
        return RowOf(code);
    }
};

/// entries = listed + companions + leftOut. The folders of the list are not among the entries: they hold them.
struct CheckFigures {
    std::size_t entries = 0; ///< Of "DCIM" and of the folders of the list.
    std::size_t folders = 0; ///< Of the list.
    std::size_t listed = 0;
    std::size_t companions = 0;
    std::size_t leftOut = 0;        ///< Each with a finding that says why.
    std::size_t hazards = 0;        ///< Findings.
    std::size_t notes = 0;          ///< Findings.
    std::optional<int> numbersLeft; ///< For new files; nothing for a card that cannot be listed.
};

struct CheckResult {
    std::string root;
    CheckFigures figures;
    std::vector<CheckFinding> findings; ///< By severity, then by code, then in the order of the card.
    RenumberPlan renumbering;           ///< What a renumbering would do.
    std::optional<Finding> refusal;     ///< Why the card cannot be listed at all.
    bool showAll = false;               ///< Text is to show every finding, not only the first ones of a code.
};

/// @param err receives the progress, on a terminal. @return without a value only for a card that cannot be read; with
///        an error beside the value where the figures do not add up; with a warning where anything but notes was found.
[[nodiscard]] Report<CheckResult> Check(const CardOptions& card, Output& err);

} // namespace dcfctl

#endif
