// The stored series value: the number index of the newest file named on any card, from which series numbering goes on.
// It lives in the platform's preferences, which tell of trouble on standard error alone; here it becomes an error. One
// thread.
#ifndef DCFCTL_SERIES_STORE_H
#define DCFCTL_SERIES_STORE_H

#include <optional>
#include <string>
#include <variant>

#include "Findings.h"

namespace dcfctl {

/// 999-9999, the highest number index.
inline constexpr long kLastIndex = 99909999;
inline constexpr int kIndexPerFolder = 100000;

struct SeriesStore {
    /// @return the value, 0 when none was ever stored; or why it cannot be had.
    [[nodiscard]] static std::variant<long, Finding> Read();
    /// @return why it could not be stored.
    [[nodiscard]] static std::optional<Finding> Write(long value);
};

/// Whether the stored value is the one that is to be there now. @return why not, as a finding of incomplete work.
[[nodiscard]] std::optional<Finding> CheckStored(long expected);

/// "12300045" or "123-0045". @return nothing for anything that is no number index.
[[nodiscard]] std::optional<long> ReadIndex(const std::string& text);

} // namespace dcfctl

#endif
