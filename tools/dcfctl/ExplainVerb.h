// explain: the same as check, for one name: where it stands in the list or why it does not, and what could go wrong
// with it; also for a name that is not on the card. Changes nothing. One thread.
#ifndef DCFCTL_EXPLAIN_VERB_H
#define DCFCTL_EXPLAIN_VERB_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CheckVerb.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "Output.h"

namespace dcfctl {

enum class Place {
    kListed,
    kCompanion,
    kFolder, ///< A folder of the list.
    kLeftOut,
};

/// "listed", "companion", "folder", "left-out".
[[nodiscard]] const char* PlaceName(Place place);

struct ExplainedEntry {
    std::string path;
    bool onCard = true; ///< Otherwise all that follows is what would be.
    Place place = Place::kLeftOut;
    std::optional<std::size_t> position; ///< In the list; of its file for a companion.
    std::optional<int> number;           ///< Of the file, or of the folder.
    std::size_t files = 0;               ///< Of a folder.
    std::string partner;                 ///< Path of the companion, or of a companion's file; else empty.
    std::vector<CheckFinding> findings;
};

struct ExplainResult {
    std::string root;
    std::string what;                    ///< As it was asked for.
    std::vector<ExplainedEntry> entries; ///< One, or all that have the name.
};

/// @param what a path, from the card's root or its "DCIM" on, or a name alone.
[[nodiscard]] Report<ExplainResult> Explain(const CardOptions& card, const std::string& what, Output& err);

} // namespace dcfctl

#endif
