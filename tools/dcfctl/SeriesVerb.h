// series: shows, sets and resets the stored series value. Needs no card. One thread.
#ifndef DCFCTL_SERIES_VERB_H
#define DCFCTL_SERIES_VERB_H

#include <string>

#include "Findings.h"

namespace dcfctl {

struct SeriesResult {
    long value = 0;
    long before = 0; ///< The same when nothing was set.
    bool set = false;
};

[[nodiscard]] Report<SeriesResult> ShowSeries();
/// @param value as it was typed: a number index, or folder and file number with a "-" between them.
[[nodiscard]] Report<SeriesResult> SetSeries(const std::string& value);
[[nodiscard]] Report<SeriesResult> ResetSeries();

} // namespace dcfctl

#endif
