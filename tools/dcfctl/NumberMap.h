// Which numbers are taken and which are free, as runs: a folder of 9,999 files without a gap is a single one. Pure
// functions.
#ifndef DCFCTL_NUMBER_MAP_H
#define DCFCTL_NUMBER_MAP_H

#include <set>
#include <string>
#include <vector>

namespace dcfctl {

struct NumberRange {
    int first;
    int last;

    [[nodiscard]] int Count() const {
        return last - first + 1;
    }
};

inline constexpr NumberRange kFileNumbers = {1, 9999};
inline constexpr NumberRange kFolderNumbers = {100, 999};

/// The numbers within a range, ascending.
[[nodiscard]] std::vector<NumberRange> UsedRuns(const std::set<int>& numbers, NumberRange within);
/// What lies between and around them.
[[nodiscard]] std::vector<NumberRange> FreeRuns(const std::vector<NumberRange>& used, NumberRange within);

/// How many numbers there are in all the runs.
[[nodiscard]] int CountOf(const std::vector<NumberRange>& runs);

/// "0001–0004, 0007", with as many digits; the first few of many, and how many more there are; "none".
[[nodiscard]] std::string RunsText(const std::vector<NumberRange>& runs, int digits);

} // namespace dcfctl

#endif
