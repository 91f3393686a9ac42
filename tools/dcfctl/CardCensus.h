// Every entry of a card, as the file system gives it: of "DCIM", and of the folders of the list. A folder that is not
// listed is one entry, with all that it holds. Read-only; used by the check. One thread.
#ifndef DCFCTL_CARD_CENSUS_H
#define DCFCTL_CARD_CENSUS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CardFiles.h"
#include "CardSurvey.h"
#include "Findings.h"
#include "ListVerbs.h"
#include "Output.h"

namespace dcfctl {

struct CensusEntry {
    std::string name;
    std::optional<EntryState> state; ///< Nothing when it could not be looked at ...
    int error = 0;                   ///< ... because of this errno; 0 for an entry that is only supposed.

    [[nodiscard]] bool IsFolder() const {
        return state.has_value() && state->IsFolder();
    }
};

struct CensusFolder {
    CensusEntry self;
    int number = 0;
    bool camera = false;
    std::vector<CensusEntry> entries;
};

/// An entry of "DCIM" that is no readable folder of the list.
struct LooseEntry {
    CensusEntry self;
    bool taken = false; ///< The list takes it for a folder all the same ...
    int error = 0;      ///< ... and cannot read it, because of this errno.
};

struct Census {
    std::vector<CensusFolder> folders; ///< Of the list, in its order.
    std::vector<LooseEntry> loose;     ///< In the order of their names.
    SharedNumbers shared;

    [[nodiscard]] std::size_t CountEntries() const;
};

/// @return the census, or why there is none.
struct CensusReport {
    Census census;
    std::optional<Finding> error;
};
[[nodiscard]] CensusReport TakeCensus(const std::string& dcim, const CardOptions& card, Output& err);

} // namespace dcfctl

#endif
